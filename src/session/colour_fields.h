#pragma once
// The fields of a colour set in the order of the stored table, after `Name` and
// `display_or_printer`: the index of each field in `ColourSet::values`. Field names keep their
// mixed cases and the sign field `sagitarius` its one t, as the stored table spells them.
#include <array>
#include <string_view>

namespace celestark {

namespace colour_field {
// clang-format off
enum : int {
    aries_b, taurus_b, gemini_b, cancer_b, leo_b, virgo_b, libra_b, scorpio_b, sagitarius_b,
    capricorn_b, aquarius_b, pisces_b, aries_g, Taurus_g, Gemini_g, Cancer_g, Leo_g, Virgo_g,
    Libra_g, Scorpio_g, Sagitarius_g, Capricorn_g, Aquarius_g, Pisces_g, sun, moon, mercury,
    venus, mars, jupiter, saturn, uranus, neptune, pluto, sedna, quaoar, earth, chiron, mc,
    ascendant, Perigee, node, Nonile, septile, Square, opposition, trine, conjunction, quintile,
    Semisextile, sextile, sesquiquadrate, semisquare, biquintile, quincunx, stars_in_charts,
    stars_in_charts_outside, stars_in_zodiac, stars_in_conjunction, mega_stars, asteroids,
    ecliptic, equator, horizon, meridian, text_inside, text_outside, Lines_inside, lines_outside,
    chart_background, inside_background, print_embryo, embryo_colour, asteroids_outside,
    Sun_eclipse, sun_eclipse_o, Moon_Eclipse, moon_eclipse_o, aries_o, taurus_o, gemini_o,
    cancer_o, leo_o, virgo_o, libra_o, scorpio_o, sagitarius_o, capricorn_o, aquarius_o, pisces_o,
    sun_o, moon_o, mercury_o, venus_o, mars_o, jupiter_o, saturn_o, uranus_o, neptune_o, pluto_o,
    sedna_o, quaoar_o, earth_o, chiron_o, mc_o, ascendant_o, perigee_o, node_o, nonile_o,
    septile_o, square_o, opposition_o, trine_o, conjunction_o, quintile_o, semisextile_o,
    sextile_o, sesquiquadrate_o, semisquare_o, biquintile_o, quincunx_o, name_outside, aries_i,
    taurus_i, gemini_i, cancer_i, leo_i, virgo_i, libra_i, scorpio_i, sagitarius_i, capricorn_i,
    aquarius_i, pisces_i, constellation_lines, flow_colours, stars_as_glyphs, stars_as_planets,
    count
};
// clang-format on
} // namespace colour_field

// clang-format off
inline constexpr std::array<std::string_view, colour_field::count> colour_field_names = {
    "aries_b", "taurus_b", "gemini_b", "cancer_b", "leo_b", "virgo_b", "libra_b", "scorpio_b",
    "sagitarius_b", "capricorn_b", "aquarius_b", "pisces_b", "aries_g", "Taurus_g", "Gemini_g",
    "Cancer_g", "Leo_g", "Virgo_g", "Libra_g", "Scorpio_g", "Sagitarius_g", "Capricorn_g",
    "Aquarius_g", "Pisces_g", "sun", "moon", "mercury", "venus", "mars", "jupiter", "saturn",
    "uranus", "neptune", "pluto", "sedna", "quaoar", "earth", "chiron", "mc", "ascendant",
    "Perigee", "node", "Nonile", "septile", "Square", "opposition", "trine", "conjunction",
    "quintile", "Semisextile", "sextile", "sesquiquadrate", "semisquare", "biquintile",
    "quincunx", "stars_in_charts", "stars_in_charts_outside", "stars_in_zodiac",
    "stars_in_conjunction", "mega_stars", "asteroids", "ecliptic", "equator", "horizon",
    "meridian", "text_inside", "text_outside", "Lines_inside", "lines_outside",
    "chart_background", "inside_background", "print_embryo", "embryo_colour", "asteroids_outside",
    "Sun_eclipse", "sun_eclipse_o", "Moon_Eclipse", "moon_eclipse_o", "aries_o", "taurus_o",
    "gemini_o", "cancer_o", "leo_o", "virgo_o", "libra_o", "scorpio_o", "sagitarius_o",
    "capricorn_o", "aquarius_o", "pisces_o", "sun_o", "moon_o", "mercury_o", "venus_o", "mars_o",
    "jupiter_o", "saturn_o", "uranus_o", "neptune_o", "pluto_o", "sedna_o", "quaoar_o", "earth_o",
    "chiron_o", "mc_o", "ascendant_o", "perigee_o", "node_o", "nonile_o", "septile_o", "square_o",
    "opposition_o", "trine_o", "conjunction_o", "quintile_o", "semisextile_o", "sextile_o",
    "sesquiquadrate_o", "semisquare_o", "biquintile_o", "quincunx_o", "name_outside", "aries_i",
    "taurus_i", "gemini_i", "cancer_i", "leo_i", "virgo_i", "libra_i", "scorpio_i",
    "sagitarius_i", "capricorn_i", "aquarius_i", "pisces_i", "constellation_lines",
    "flow_colours", "stars_as_glyphs", "stars_as_planets",
};
// clang-format on

static_assert(colour_field::count == 138);
static_assert(colour_field_names[colour_field::sun] == "sun");
static_assert(colour_field_names[colour_field::name_outside] == "name_outside");
static_assert(colour_field_names[colour_field::stars_as_planets] == "stars_as_planets");

} // namespace celestark
