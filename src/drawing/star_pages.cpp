#include "drawing/chart_pages.h"

#include "aspects/aspect_search.h"
#include "drawing/page_furniture.h"
#include "drawing/wheel.h"
#include "engine/chart.h"
#include "engine/star_analysis.h"
#include "engine/stars.h"
#include "session/colour_fields.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/option_store.h"
#include "store/star_catalogue.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace celestark::drawing {

namespace {

constexpr double one_degree = deg_to_rad;
constexpr double one_radian = rad_to_deg;
// The obliquity of J2000 for the great circles of the map.
constexpr double obliquity_j2000 = 23.4392911 * one_degree;

// The polar map of the star wheel: radius shows ecliptic latitude, the ecliptic at r_zero.
struct StarMap {
    float cx = 0, cy = 0, r_outer = 0, r_inner = 0, r_zero = 0;
    double per_degree = 0; // twips of radius a degree of latitude
    double rotation = 0;   // radians added to the longitudes

    bool holds(double latitude_degrees) const {
        const double r = r_zero + latitude_degrees * per_degree;
        return r <= r_outer && r >= r_inner;
    }
    WheelPoint at(const Session& s, double longitude, double latitude) const {
        return wheel_point(s, cx, cy, r_zero + latitude * one_radian * per_degree,
                           longitude + rotation);
    }
};

StarMap make_map(const Session& s, float cx, float cy, float r_outer, float r_inner,
                 double rotation, int width) {
    StarMap m;
    m.cx = cx;
    m.cy = cy;
    m.r_outer = r_outer;
    m.r_inner = r_inner;
    m.r_zero = r_inner + (r_outer - r_inner) / 1.75f;
    // North latitudes up to 6 degrees and 3 more for each step of the zodiac width.
    const int w = std::clamp(width, 1, 8);
    m.per_degree = (r_outer - m.r_zero) / (6.0 + 3.0 * w);
    m.rotation = rotation;
    (void)s;
    return m;
}

// A great circle of the sky (the equator, the horizon, the meridian) through the map, as a line
// of points; each point turned to ecliptic longitude and latitude of date, with the annual
// aberration unless actual positions are asked for.
template <typename PointOf>
void draw_circle_of_sky(Drawing& g, const StarMap& map, int points, Colour colour,
                        PointOf point_of) {
    const Session& s = g.s;
    const StarMoment moment = star_moment(s);
    bool have_last = false;
    WheelPoint last{};
    for (int k = 0; k <= points; ++k) {
        double ra = 0, dec = 0;
        point_of(two_pi * k / points, ra, dec);
        double lon = 0, lat = 0;
        star_place_of_date(ra, dec, 0, 0, moment, lon, lat);
        const bool inside = map.holds(lat * one_radian);
        const WheelPoint p = map.at(s, lon, lat);
        if (inside && have_last) g.display_line(last.x, p.x, last.y, p.y, colour, solid);
        have_last = inside;
        last = p;
    }
}

// The ecliptic, the equator, the horizon and the meridian of the star wheel, as the options ask;
// the horizon and the meridian on the geocentric wheel only.
void draw_sky_circles(Drawing& g, const StarMap& map, bool geocentric) {
    const Session& s = g.s;
    const PageOptions& o = g.d.page_options;
    if (o.display_ecliptic)
        g.display_circle(map.cx, map.cy, map.r_zero, g.colour(colour_field::ecliptic));
    // The equator as the J2000 ecliptic sees it: right ascension all round, declination 0.
    if (o.display_equator)
        draw_circle_of_sky(g, map, 720, g.colour(colour_field::equator),
                           [](double a, double& ra, double& dec) {
                               ra = a;
                               dec = 0;
                           });
    if (!geocentric) return;
    const double lst = s.engine.local_sidereal_hours * 15 * one_degree;
    const double phi = s.engine.latitude_rad;
    // A point of the horizon at azimuth a, and of the meridian at altitude a, to equatorial.
    auto from_horizon = [&](double az, double alt, double& ra, double& dec) {
        const double sd =
            std::sin(phi) * std::sin(alt) + std::cos(phi) * std::cos(alt) * std::cos(az);
        dec = std::asin(std::clamp(sd, -1.0, 1.0));
        const double h = std::atan2(-std::sin(az) * std::cos(alt),
                                    std::cos(phi) * std::sin(alt) -
                                        std::sin(phi) * std::cos(alt) * std::cos(az));
        ra = lst - h;
    };
    if (o.display_horizon)
        draw_circle_of_sky(g, map, 720, g.colour(colour_field::horizon),
                           [&](double a, double& ra, double& dec) { from_horizon(a, 0, ra, dec); });
    if (o.display_meridian) {
        draw_circle_of_sky(
            g, map, 360, g.colour(colour_field::meridian),
            [&](double a, double& ra, double& dec) { from_horizon(0, a - pi, ra, dec); });
        draw_circle_of_sky(
            g, map, 360, g.colour(colour_field::meridian),
            [&](double a, double& ra, double& dec) { from_horizon(pi, a - pi, ra, dec); });
    }
    (void)obliquity_j2000;
}

// The stars of the map: the stars of the star zodiac, and those the star options add by
// magnitude, in Ophiuchus and outside the zodiac; constellation lines between them when asked.
void draw_map_stars(Drawing& g, const StarMap& map) {
    Session& s = g.s;
    const StarState& stars = s.stars;
    if (stars.star_cache.empty()) return;
    auto option = [&](const char* field) {
        return read_option(s, store::general_options_table, field);
    };
    const bool lines = option("display_zodiac_lines").as_int() != 0;
    const double by_magnitude = s.stores ? option("additional_by_magnitude").as_double() : 0;
    const bool ophiuchus = s.stores && option("additional_ophiuchus").as_int() != 0;
    const bool others = s.stores && option("additional_non_zodiac").as_int() != 0;
    const StarMoment moment = star_moment(s);
    const float unit = (map.r_outer - map.r_inner) / 40;
    struct Placed {
        bool shown = false;
        WheelPoint at;
    };
    std::vector<Placed> placed(stars.star_cache.size());
    for (int row = 1; row <= star_cache_rows; ++row) {
        for (int n = 1; n <= stars.star_count[static_cast<std::size_t>(row - 1)]; ++n) {
            const StarCacheCell& c = stars.cell(row, n);
            if (!c.filled) continue;
            const bool added = by_magnitude > 0 && c.magnitude <= by_magnitude &&
                               (row <= 12 || (row == 13 && ophiuchus) || (row == 14 && others));
            if (!c.in_zodiac && !added) continue;
            double lon = 0, lat = 0;
            star_place_of_date(c.ra, c.dec, c.pm_ra, c.pm_dec, moment, lon, lat);
            if (!map.holds(lat * one_radian)) continue;
            const WheelPoint p = map.at(s, lon, lat);
            const auto k = static_cast<std::size_t>((row - 1) * star_cache_numbers + n - 1);
            placed[k] = {true, p};
            // Brighter stars are bigger; the brightest take the mega star colour.
            const float r =
                std::clamp(unit * (2.6f - 0.4f * c.magnitude), unit * 0.5f, unit * 3.2f);
            const Colour colour = g.colour(c.magnitude < 1 ? colour_field::mega_stars
                                                           : colour_field::stars_in_zodiac);
            g.display_filled_circle(p.x, p.y, r, colour);
            if (g.monochrome()) g.display_circle(p.x, p.y, r, g.text_colour());
        }
    }
    if (!lines) return;
    for (int row = 1; row <= star_cache_rows; ++row) {
        for (int n = 1; n <= stars.star_count[static_cast<std::size_t>(row - 1)]; ++n) {
            const auto k = static_cast<std::size_t>((row - 1) * star_cache_numbers + n - 1);
            if (!placed[k].shown) continue;
            const StarCacheCell& c = stars.cell(row, n);
            for (int to : {c.line_to, c.line_to_2}) {
                if (to < 1 || to > star_cache_numbers) continue;
                const auto t = static_cast<std::size_t>((row - 1) * star_cache_numbers + to - 1);
                if (!placed[t].shown) continue;
                g.display_line(placed[k].at.x, placed[t].at.x, placed[k].at.y, placed[t].at.y,
                               g.colour(colour_field::stars_in_zodiac), dot);
            }
        }
    }
}

// The bodies of a view inside (direction 1) or outside (-1) a circle.
void plot_view(Drawing& g, const std::string& view, float cx, float cy, float r, double rotation,
               int direction, bool houses, int detail = 1) {
    Session& s = g.s;
    const std::string was = s.chart.world_view;
    s.chart.world_view = view;
    clear_plot_list(g.d.wheel);
    if (houses) fill_house_slots(g, rotation);
    fill_body_slots(g, rotation, houses);
    set_chart_detail(g, detail, -1);
    if (houses) draw_house_lines(g, cx, cy, r, r * 0.55f, rotation, r * 0.0042f, 1);
    plot_planets(g, cx, cy, r, r * 0.0042f, static_cast<float>(rotation * one_radian), direction);
    s.chart.world_view = was;
}

// The signs of a zodiac offset from the one in force by `offset` radians, as a thin ring.
void sign_ring(Drawing& g, float cx, float cy, float r_outer, float r_inner, double rotation) {
    draw_zodiac_ring(g, cx, cy, r_outer, r_inner, rotation);
}

} // namespace

void star_wheel_page(Drawing& g) {
    Session& s = g.s;
    DrawingState& d = g.d;
    load_aspect_set(s, s.chart.aspect_set_charts, session_sink(s));
    calculate_chart(s, d.working_event, true);
    const std::string& page = d.screen_page;
    const bool geocentric = s.chart.world_view == "Geocentric" || s.chart.world_view == "Tychonic";
    const float width = d.frame_right - d.frame_left, height = d.frame_bottom - d.frame_top;
    d.table_font_size = std::min((d.page_right - d.page_left) / 1100, width / 560.0f);
    std::string title = page == "star_sid_trop"    ? s.chart.zodiac + " (Tropical/Sidereal)"
                        : page == "star_geo_helio" ? std::string("Geocentric/Heliocentric")
                                                   : s.chart.world_view;
    title += " Star Chart";
    // On a wide window the wheel stands at the left and the header and positions at its right;
    // on paper the header runs across the top.
    const bool wide = !d.printing && width > height * 1.15f;
    float R = 0, cx = 0, cy = 0;
    if (wide) {
        R = height / 2;
        cx = d.frame_left + R;
        cy = d.frame_top + R;
        const float x = d.frame_left + 2 * R + width * 0.02f;
        d.table_font_size = std::min(d.table_font_size, (d.frame_right - x) / 560.0f);
        const float y = page_header(g, x, true, title, d.frame_top, true, d.working_event);
        position_table(g, x, y + height * 0.03f, std::min(d.frame_bottom, y + height * 0.6f),
                       1.15f);
    } else {
        const float header_bottom =
            page_header(g, d.frame_left, true, title, d.frame_top, true, d.working_event);
        const float room_h = d.frame_bottom - header_bottom - height * 0.04f;
        R = std::min(width, room_h) / 2;
        cx = d.frame_left + width / 2;
        cy = header_bottom + room_h / 2;
    }
    const double rotation = geocentric ? house_rotation(s) : 0.0;

    // Rings from the outside: the signs (for the sidereal and tropical chart, the sidereal signs
    // outside the tropical ones), the star map, and the bodies within.
    float outer = R;
    if (page == "star_geo_helio") outer = R * 0.86f; // room for the heliocentric bodies outside
    const float band = outer * 0.1f;
    sign_ring(g, cx, cy, outer, outer - band, rotation);
    float map_outer = outer - band;
    if (page == "star_sid_trop") {
        // The tropical signs: the sidereal zodiac's offset taken back out.
        const auto starts = s.option_sets.zodiac.constellation_start;
        for (std::size_t i = 0; i < 12; ++i)
            s.option_sets.zodiac.constellation_start[i] = static_cast<float>(30 * i);
        sign_ring(g, cx, cy, map_outer, map_outer - band * 0.7f, rotation + s.engine.zodiac_offset);
        s.option_sets.zodiac.constellation_start = starts;
        map_outer -= band * 0.7f;
    }
    const int zodiac_width = d.page_options.star_zodiac_width;
    const float map_depth =
        outer * std::clamp(0.16f + 0.025f * static_cast<float>(zodiac_width), 0.18f, 0.34f);
    const float map_inner = map_outer - map_depth;
    g.display_filled_circle(cx, cy, map_outer, g.colour(colour_field::chart_background));
    const StarMap map = make_map(s, cx, cy, map_outer, map_inner, rotation, zodiac_width);
    draw_degree_ticks(g, cx, cy, map_inner, rotation, true);
    draw_sky_circles(g, map, geocentric);
    draw_map_stars(g, map);
    g.display_circle(cx, cy, map_inner, d.line_colour_inside);

    const std::string view = page == "star_helio" ? "Heliocentric"
                             : page == "star_lem"
                                 ? "Lemnicentric"
                                 : (geocentric ? s.chart.world_view : "Geocentric");
    plot_view(g, view, cx, cy, map_inner, rotation, 1, view == "Geocentric" || view == "Tychonic");
    if (page == "star_geo_helio")
        plot_view(g, "Heliocentric", cx, cy, outer, rotation, -1, false, 0);
    // The stars of the chart group in the map, by their glyphs.
    const PositionLists& p = s.engine.pos;
    g.display_font_size(map_depth / 60);
    for (int i = 0; i < p.geo_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const unsigned char code = p.geo_glyph[k];
        if (!is_star_mark(code) && std::find(s.stars.star_glyphs.begin(), s.stars.star_glyphs.end(),
                                             code) == s.stars.star_glyphs.end())
            continue;
        if (code == 0 || !map.holds(p.geo_lat[k] * one_radian)) continue;
        const WheelPoint at = map.at(s, p.geo_long[k], p.geo_lat[k]);
        const std::string glyph(1, static_cast<char>(code));
        float w = 0, h = 0;
        g.display_symbol_w_h(glyph, 0.8f, w, h);
        g.display_glyph_inside(at.x - w / 2, at.y - h * 1.3f, glyph);
    }
    // Aspects inside.
    chart_aspect_search(s);
    g.display_circle(cx, cy, map_inner * 0.55f, d.line_colour_inside);
    draw_aspect_lines(g, s.aspect_matrices.chart, rotation, cx, cy, map_inner * 0.55f,
                      map_inner * 0.003f, false, 1, s.aspect_matrices.chart.rows);
}

void star_analysis_page(Drawing& g) {
    Session& s = g.s;
    DrawingState& d = g.d;
    calculate_chart(s, d.working_event, true);
    const bool horizon = d.screen_page == "star_analysis_horizon";
    auto option = [&](const std::string& field) {
        return s.stores ? read_option(s, store::general_options_table, field).as_text() : "";
    };
    const bool long_lat = option("charts_conj_orb_type") == "Longitude and latitude";
    const std::string kind = horizon ? "horizon" : long_lat ? "long_lat" : "longitude";
    std::string group = option("charts_" + kind + "_star_group");
    std::string orb_set = option("charts_" + kind + "_orb_set");
    if (group.empty()) group = no_star_group;
    if (orb_set.empty()) orb_set = "1";

    const float width = d.frame_right - d.frame_left;
    d.table_font_size = std::min((d.page_right - d.page_left) / 1100, width / 560.0f);
    const EventFacts facts = event_facts(g, d.working_event);
    const std::string variant = horizon ? "Horizon" : long_lat ? "Long. and Lat." : "Longitude";
    float y = page_header(g, d.frame_left, false,
                          "Geocentric star analysis for " + facts.name + " (" + variant + ")",
                          d.frame_top, true, d.working_event);
    g.display_font_size(d.table_font_size);
    float w = 0, h = 0;
    g.display_text_w_h("A", 1.0f, w, h);
    y += h * 0.5f;
    g.display_text_outside(d.frame_left, y, "Star group: " + group + ", orb set " + orb_set);
    y += h * 1.5f;
    const std::size_t rows = static_cast<std::size_t>(std::max(1.0f, (d.frame_bottom - y) / h - 3));
    const StarAnalysis analysis =
        star_analysis(s, group, orb_set,
                      horizon    ? StarAnalysisKind::horizon
                      : long_lat ? StarAnalysisKind::long_lat
                                 : StarAnalysisKind::longitude,
                      rows, star_group_names(s), read_star_orb_options(s));
    if (analysis.skipped) {
        g.display_text_outside(d.frame_left, y, "No star group is chosen for this analysis");
        return;
    }
    // Two blocks of columns: the point, the star and its constellation with the orb; then the
    // star's magnitudes, spectrum and distance.
    const float col_star = d.frame_left + width * 0.05f, col_const = d.frame_left + width * 0.2f;
    const float col_orb = d.frame_left + width * 0.38f, col_data = d.frame_left + width * 0.5f;
    g.display_text_outside(d.frame_left, y, star_analysis_heading_longitude);
    g.display_text_outside(col_data, y, star_analysis_heading_data);
    y += h * 1.3f;
    char buf[128];
    for (const StarHit& hit : analysis.hits) {
        g.display_glyph_outside(d.frame_left, y, std::string(1, static_cast<char>(hit.point)));
        const std::string label = hit.label();
        if (hit.label_is_greek()) {
            g.display_greek_outside(col_star, y, label);
            g.display_text_w_h(label, 1.0f, w, h);
            g.display_text_outside(col_star + w * 1.4f, y, hit.star_name);
        } else {
            g.display_text_outside(col_star, y, label);
        }
        g.display_text_outside(col_const, y, hit.constellation);
        std::snprintf(buf, sizeof buf, "%+6.2f (%.2f)", hit.orb,
                      static_cast<double>(hit.orb_limit));
        g.display_text_outside(col_orb, y, buf);
        std::snprintf(buf, sizeof buf, "%5.2f  %5.2f  %-8s %-4s %8.1f",
                      static_cast<double>(hit.magnitude),
                      static_cast<double>(hit.absolute_magnitude), hit.spectral_type.c_str(),
                      hit.luminosity_class.c_str(), hit.distance);
        g.display_text_outside(col_data, y, buf);
        y += h * 1.1f;
    }
    if (analysis.hits.empty()) g.display_text_outside(d.frame_left, y, "No star within its orb");
    if (analysis.too_many) g.display_text_outside(d.frame_left, y, too_many_hits);
}

} // namespace celestark::drawing
