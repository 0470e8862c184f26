#pragma once
// The star values a session keeps: the two star caches that load_star_tables fills from the
// catalogue in stars.mdb, the glyphs of the stars in charts, and the fixed points of the table
// `fixed`. A chart reads these and never a star row.
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace celestark {

struct StarStores; // store/star_catalogue.h

// The glyph codes of stars in charts: eight codes of the symbol font that no body, sign, aspect
// or chart point uses. The drawing's glyph table draws each as a star mark with its letter; the
// catalogue gives them to the eight stars of "Star Group for charts" (the letter recalls the
// star), and any star may take any of them on the star database screen.
struct StarMark {
    unsigned char code;
    char letter;
    const char* star; // the star that has it in a new catalogue
};
inline constexpr std::array<StarMark, 8> star_marks = {{{182, 'A', "Aldebaran"},
                                                        {183, 'R', "Regulus"},
                                                        {184, 'N', "Antares"},
                                                        {185, 'F', "Fomalhaut"},
                                                        {186, 'S', "Spica"},
                                                        {187, 'P', "Pollux"},
                                                        {188, 'L', "Alcyone"},
                                                        {189, 'D', "Sirius"}}};
// Whether a code is one of the star marks.
constexpr bool is_star_mark(unsigned char code) {
    return code >= star_marks.front().code && code <= star_marks.back().code;
}

// The star cache: 14 constellation rows (1 Aries to 12 Pisces, 13 Ophiuchus, 14 every other
// constellation) by 800 star numbers, both counted from 1.
inline constexpr int star_cache_rows = 14;
inline constexpr int star_cache_numbers = 800;
inline constexpr int max_chart_stars = 8;

struct StarCacheCell {
    double ra = 0, dec = 0;            // J2000, radians
    float longitude = 0, latitude = 0; // J2000 ecliptic, degrees, as the catalogue shows them
    float pm_ra = 0, pm_dec = 0;       // radians a year; pm_ra is the change of right ascension
    float magnitude = 0, absolute_magnitude = 0;
    bool in_zodiac = false;                     // false too for an excluded star
    std::int32_t line_to = 0, line_to_2 = 0;    // numbers in the same constellation, 0 none
    std::int32_t line_to_hd = 0, hd_number = 0; // HD numbers
    bool filled = false;
};

// A star of "Star Group for charts".
struct ChartStar {
    double ra = 0, dec = 0;             // J2000, radians
    double longitude = 0, latitude = 0; // J2000 ecliptic, degrees
    double pm_ra = 0, pm_dec = 0;       // radians a year
    float magnitude = 0;
    std::string star_name;
    unsigned char glyph = 0;
};

// A row of the table `fixed`.
struct FixedPoint {
    std::string name;
    bool active = false;
    std::string zodiac;
    double degs = 0, mins = 0;
    std::string world_view;
    unsigned char sigil = 0;
};

// The orb options of `option_name`: sets 1 and 2 (one orb and a magnitude limit), 3 and 4 (orbs
// for magnitude 1 and 6 and a limit), 5 and 6 (orbs for magnitudes 1 to 6). Degrees.
struct StarOrbOptions {
    double orb_1 = 0, orb_2 = 0;
    float orb_1_magnitude = 0, orb_2_magnitude = 0;
    double orb_3_mag1 = 0, orb_3_mag6 = 0, orb_4_mag1 = 0, orb_4_mag6 = 0;
    float orb_3_magnitude = 0, orb_4_magnitude = 0;
    double orb_5[6]{}, orb_6[6]{}; // magnitude 1 to 6
};

// The groups of the star database screen and the field that marks each; the twelve user groups
// take their names from the options star_1 to star_12.
inline constexpr const char* zodiac_group = "Basic star zodiac stars";
inline constexpr const char* chart_group = "Star Group stars in chart";
inline constexpr const char* excluded_group = "Excluded stars";
inline constexpr std::array<const char*, 12> user_group_fields = {
    "sel_2",   "sel_3",   "sel_2_1", "sel_2_2", "sel_2_3", "sel_2_4",
    "sel_2_5", "sel_2_6", "sel_2_7", "sel_2_8", "sel_2_9", "sel_2_10"};

// A star of the catalogue as the star analysis reads it: J2000 place and proper motion in radians
// (radians a year), magnitudes, and what names it.
// What the pages say of a star: its names, its brightness, its kind and its distance.
struct StarDescription {
    std::string greek_letter, star_number, star_name, constellation;
    float magnitude = 0, absolute_magnitude = 0;
    std::string spectral_type, luminosity_class;
    double distance = 0; // light years
};

struct CatalogueStar : StarDescription {
    double ra = 0, dec = 0, pm_ra = 0, pm_dec = 0;
};

struct StarState;

// What the engine reads of stars.mdb, which the store provides: the stars of a group (the field
// that marks it; empty for every star; excluded stars drop out of every group but their own), and
// the fixed points again when the file has been written since they were read.
class StarCatalogueSource {
  public:
    virtual ~StarCatalogueSource() = default;
    virtual std::vector<CatalogueStar> group_stars(const std::string& field) = 0;
    virtual void refresh_fixed_points(StarState& stars) = 0;
};

struct StarState {
    // Cell (row, number) at (row - 1) * star_cache_numbers + number - 1; empty until loaded.
    std::vector<StarCacheCell> star_cache;
    std::array<int, star_cache_rows> star_count{}; // the highest number met in each row
    std::array<ChartStar, max_chart_stars> chart_star_cache;
    int chart_star_count = 0; // 0 whenever the group is invalid
    // The glyphs of the stars in charts in cache order; 0 for an empty entry, which never matches
    // a glyph. Cleared with the group.
    std::array<unsigned char, max_chart_stars> star_glyphs{};
    // The glyphs of the twelve stars of the star zodiac, filled by a star group; 0 is empty.
    std::array<unsigned char, 12> star_zodiac_glyphs{};
    // The sigil of every row of `fixed`, in table order.
    std::vector<unsigned char> fixed_sigils;
    // The rows of `fixed` in table order, read again when the store has changed since.
    std::vector<FixedPoint> fixed_points;
    std::uint64_t fixed_points_read_at = 0; // the store's change count when they were read
    bool fixed_points_read = false;
    // stars.mdb with its tables `stars` (under `star`) and `fixed`, open for the session, and the
    // same file as the engine reads it.
    std::shared_ptr<StarStores> stores;
    std::shared_ptr<StarCatalogueSource> catalogue;

    const StarCacheCell& cell(int row, int number) const {
        return star_cache[static_cast<std::size_t>((row - 1) * star_cache_numbers + number - 1)];
    }
    StarCacheCell& cell(int row, int number) {
        return star_cache[static_cast<std::size_t>((row - 1) * star_cache_numbers + number - 1)];
    }
};

} // namespace celestark
