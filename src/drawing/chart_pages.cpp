#include "drawing/chart_pages.h"

#include "aspects/aspect_search.h"
#include "drawing/double_pages.h"
#include "drawing/page_furniture.h"
#include "drawing/prenatal_pages.h"
#include "drawing/recording_surface.h"
#include "drawing/wheel.h"
#include "engine/chart.h"
#include "session/colour_fields.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_sets.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

namespace celestark::drawing {

namespace {

constexpr double one_radian = rad_to_deg;

// The list a wheel shows.
enum class View { geo, helio, lemni };

View view_of(const std::string& world_view) {
    if (world_view == "Heliocentric") return View::helio;
    if (world_view == "Lemnicentric") return View::lemni;
    return View::geo;
}

const char* view_title(View v) {
    switch (v) {
    case View::geo:
        return "Geocentric";
    case View::helio:
        return "Heliocentric";
    case View::lemni:
        return "Lemnicentric";
    }
    return "Geocentric";
}

int working_row(const Drawing& g) {
    return g.d.working_event;
}

// The event of the working slot, its aspect set loaded, its chart calculated.
void calculate(Drawing& g) {
    load_aspect_set(g.s, g.s.chart.aspect_set_charts, session_sink(g.s));
    calculate_chart(g.s, working_row(g), true);
}

const AspectMatrix& search(Drawing& g, View v) {
    switch (v) {
    case View::helio:
        helio_aspect_search(g.s);
        return g.s.aspect_matrices.helio;
    case View::lemni:
        lemni_aspect_search(g.s);
        return g.s.aspect_matrices.lemni;
    case View::geo:
        break;
    }
    chart_aspect_search(g.s);
    return g.s.aspect_matrices.chart;
}

// One wheel of the world view `v` in the box of radius R about (cx, cy).
void draw_wheel(Drawing& g, View v, float cx, float cy, float R, bool centre_data) {
    Session& s = g.s;
    const std::string was = s.chart.world_view;
    if (v == View::helio) s.chart.world_view = "Heliocentric";
    if (v == View::lemni) s.chart.world_view = "Lemnicentric";
    if (v == View::geo && (was == "Heliocentric" || was == "Lemnicentric"))
        s.chart.world_view = "Geocentric";
    const float r0 = R * 0.85f;
    const double rotation = v == View::geo ? house_rotation(s) : 0.0;
    draw_zodiac_ring(g, cx, cy, R, r0, rotation);
    draw_degree_ticks(g, cx, cy, r0, rotation, true);
    if (v == View::geo) draw_eclipse_marks(g, cx, cy, r0, rotation, false);
    g.display_line_width(1.0f);
    clear_plot_list(g.d.wheel);
    if (v == View::geo) fill_house_slots(g, rotation);
    fill_body_slots(g, rotation, v == View::geo);
    set_chart_detail(g, 2, -1);
    if (v == View::geo) {
        draw_house_lines(g, cx, cy, r0, r0 * 0.55f, rotation, r0 * 0.004f, 0);
    } else {
        g.display_filled_circle(cx, cy, r0 * 0.55f, g.colour(colour_field::inside_background));
        g.display_circle(cx, cy, r0 * 0.55f, g.d.line_colour_inside);
    }
    plot_planets(g, cx, cy, r0, r0 * 0.004f, static_cast<float>(rotation * one_radian), 1);
    if (g.d.wheel.agram_level == 1) {
        const AspectMatrix& m = search(g, v);
        draw_aspect_lines(g, m, rotation, cx, cy, r0 * 0.55f, r0 * 0.003f, false, 1, m.rows);
    } else if (g.d.wheel.agram_level == 2 && centre_data) {
        draw_centre_data(g, cx, cy, r0 * 0.55f, working_row(g));
    }
    s.chart.world_view = was;
}

// Where a page's wheel and tables go. On screen the wheel stands at the left of the frame and
// the header and tables to its right; on paper the header runs across the top, the wheel below
// it and the tables under the wheel.
struct Layout {
    float cx = 0, cy = 0, R = 0;
    float tables_left = 0, tables_top = 0, tables_right = 0, tables_bottom = 0;
    float header_x = 0, header_y = 0;
};

float header_font(Drawing& g, float width) {
    // The printed pages' unit; on screen no larger than its column takes, its long lines broken.
    const float unit = (g.d.page_right - g.d.page_left) / 1100;
    return std::min(unit * (g.d.printing ? 1.0f : 0.7f), width / 330.0f);
}

Layout single_layout(Drawing& g, int header_lines) {
    DrawingState& d = g.d;
    Layout l;
    const float width = d.frame_right - d.frame_left, height = d.frame_bottom - d.frame_top;
    if (!d.printing && width > height * 1.15f) {
        // The tables keep at least a third of the width.
        l.R = std::min(height, width * 0.64f) / 2;
        l.cx = d.frame_left + l.R;
        l.cy = d.frame_top + height / 2;
        l.tables_left = d.frame_left + 2 * l.R + width * 0.02f;
        l.tables_right = d.frame_right;
        l.header_x = l.tables_left;
        l.header_y = d.frame_top;
        d.table_font_size = header_font(g, l.tables_right - l.tables_left);
        l.tables_top =
            d.frame_top + d.table_font_size * 20 * 1.2f * static_cast<float>(header_lines + 1);
        l.tables_bottom = d.frame_bottom;
        return l;
    }
    d.print_unit = (d.page_right - d.page_left) / 1100;
    d.table_font_size = std::min(d.print_unit, width / 560.0f);
    l.header_x = d.frame_left;
    l.header_y = d.frame_top;
    const float header = d.table_font_size * 20 * 1.2f * static_cast<float>(header_lines + 1);
    const float tables = height * 0.24f;
    l.R = std::min(width, height - header - tables) / 2;
    l.cx = d.frame_left + width / 2;
    l.cy = d.frame_top + header + l.R;
    l.tables_left = d.frame_left;
    l.tables_right = d.frame_right;
    l.tables_top = l.cy + l.R + height * 0.015f;
    l.tables_bottom = d.frame_bottom - height * 0.03f; // room for the footer
    return l;
}

// The side tables of a single wheel: positions, latitudes and declinations, houses (or the
// heliocentric nodes), then the aspect grid with the elements in its empty corner.
void side_tables(Drawing& g, View v, const Layout& l, const AspectMatrix& m) {
    const auto bodies = listed_bodies(g.s);
    const int n = static_cast<int>(bodies.size());
    const float top = l.tables_top, bottom = l.tables_bottom;
    const float height = bottom - top;
    const bool paper = g.d.printing || l.tables_top > l.cy;
    // Rows of the body tables and cells of the grid share the height on screen; on paper the
    // grid stands to the right of the tables.
    const float row =
        paper ? height / static_cast<float>(n + 1) : height / static_cast<float>(2 * n + 2);
    const float table_bottom = top + row * static_cast<float>(n + 1);
    const auto body_tables = [&](float size) {
        float x = l.tables_left;
        x += position_table(g, x, top, table_bottom, size);
        x += latitude_table(g, x, top, table_bottom, size);
        if (v == View::geo && g.s.chart.house_system != "None")
            x += house_table(g, x, top, top + row * 13, size, working_row(g));
        else if (v == View::helio)
            x += nodes_table(g, x, top,
                             top + row * static_cast<float>(g.s.engine.pos.helio_count_base + 1),
                             size);
        return x;
    };
    // Tried first on a surface that only records, then set smaller where they would be wider
    // than their room.
    float size = 1.15f;
    {
        drawing::Surface*& target = g.d.printing ? g.canvases.printer : g.canvases.chart;
        Surface* real = target;
        RecordingSurface trial(real ? real->width() : 0, real ? real->height() : 0,
                               real && real->is_page());
        target = &trial;
        const float needed = body_tables(size) - l.tables_left;
        target = real;
        const float room =
            (paper ? (l.tables_right - l.tables_left) * 0.55f : l.tables_right - l.tables_left);
        if (needed > room && room > 0) size *= needed / room;
    }
    const float x = body_tables(size);
    std::vector<unsigned char> glyphs;
    for (int i = 1; i <= m.rows; ++i) {
        const PositionLists& p = g.s.engine.pos;
        const auto k = static_cast<std::size_t>(i - 1);
        glyphs.push_back(v == View::helio   ? p.helio_glyph[k]
                         : v == View::lemni ? p.lemni_glyph[k]
                                            : p.chart_glyph[k]);
    }
    const int cells = std::max(11, m.rows + 1);
    float grid_x = l.tables_left, grid_top = table_bottom + row * 0.5f;
    float cell = std::min((bottom - grid_top) / static_cast<float>(cells),
                          (l.tables_right - grid_x) / static_cast<float>(cells));
    if (paper) {
        grid_x = x + row;
        grid_top = top;
        cell = std::min(height / static_cast<float>(cells),
                        (l.tables_right - grid_x) / static_cast<float>(cells));
    }
    if (cell > 0) {
        aspect_grid(g, m, glyphs.data(), m.rows, grid_x, grid_top,
                    grid_top + cell * static_cast<float>(cells), 1.1f);
        if (v == View::geo)
            elements_table(g, grid_x + cell * static_cast<float>(cells) * 0.55f, grid_top,
                           grid_top + cell * 5.5f, 1.1f);
    }
}

void single_page(Drawing& g, View v) {
    calculate(g);
    Layout l = single_layout(g, 6);
    const std::string title = v == View::geo ? g.s.chart.world_view : view_title(v);
    const float below = page_header(g, l.header_x, true, title, l.header_y, true, working_row(g),
                                    l.tables_right - l.header_x);
    if (l.tables_top < l.cy) l.tables_top = below + g.d.table_font_size * 20; // on screen
    draw_wheel(g, v, l.cx, l.cy, l.R, true);
    const AspectMatrix& m = search(g, v);
    side_tables(g, v, l, m);
}

} // namespace

void geo_page(Drawing& g) {
    single_page(g, View::geo);
}
void helio_page(Drawing& g) {
    single_page(g, View::helio);
}
void lemni_page(Drawing& g) {
    single_page(g, View::lemni);
}

namespace {

// Several wheels in a row under the header.
void wheels_in_row(Drawing& g, const std::vector<View>& views, const std::string& title) {
    calculate(g);
    DrawingState& d = g.d;
    const float width = d.frame_right - d.frame_left, height = d.frame_bottom - d.frame_top;
    d.table_font_size = header_font(g, width);
    const float header_bottom =
        page_header(g, d.frame_left, true, title, d.frame_top, true, working_row(g), width);
    const auto n = static_cast<float>(views.size());
    const float room = d.frame_bottom - header_bottom - height * 0.03f;
    const float R = std::min(width / n, room) / 2 * 0.96f;
    for (std::size_t i = 0; i < views.size(); ++i) {
        const float cx = d.frame_left + width / n * (static_cast<float>(i) + 0.5f);
        draw_wheel(g, views[i], cx, header_bottom + room / 2, R, false);
        float w = 0, h = 0;
        g.display_font_size(d.table_font_size);
        const std::string label = view_title(views[i]);
        g.display_text_w_h(label, 1.0f, w, h);
        g.display_text_outside(cx - w / 2, header_bottom + room / 2 + R + h * 0.3f, label);
    }
}

} // namespace

void geo_helio_page(Drawing& g) {
    wheels_in_row(g, {View::geo, View::helio}, "Geocentric/Heliocentric");
}

void triple_page(Drawing& g) {
    wheels_in_row(g, {View::geo, View::lemni, View::helio}, "Geocentric/Lemnicentric/Heliocentric");
}

void helio_triple_page(Drawing& g) {
    calculate(g);
    Session& s = g.s;
    Layout l = single_layout(g, 6);
    const float below = page_header(g, l.header_x, true, "Heliocentric (Planets/Apsides/Nodes)",
                                    l.header_y, true, working_row(g), l.tables_right - l.header_x);
    if (l.tables_top < l.cy) l.tables_top = below + g.d.table_font_size * 20; // on screen
    const PositionLists& p = s.engine.pos;
    const float R = l.R, r0 = R * 0.85f;
    draw_zodiac_ring(g, l.cx, l.cy, R, r0, 0);
    draw_degree_ticks(g, l.cx, l.cy, r0, 0, true);
    // Three rings: the planets, their perihelia and their nodes.
    const float radii[3] = {r0, r0 * 0.75f, r0 * 0.5f};
    const char* labels[3] = {"Planets", "Apsides", "Nodes"};
    for (int ring = 0; ring < 3; ++ring) {
        clear_plot_list(g.d.wheel);
        g.d.wheel.plot_count = 12;
        for (int i = 0; i < p.helio_count_base; ++i) {
            const auto k = static_cast<std::size_t>(i);
            const double lon = ring == 0   ? p.helio_long[k]
                               : ring == 1 ? p.helio_peri[k]
                                           : p.helio_node[k];
            if (p.helio_glyph[k] == 0) continue;
            add_plot_entry(g.d.wheel, std::string(1, static_cast<char>(p.helio_glyph[k])),
                           lon * one_radian);
        }
        set_chart_detail(g, ring == 0 ? 2 : 0, -1);
        if (ring > 0) g.display_circle(l.cx, l.cy, radii[ring], g.d.line_colour_inside);
        plot_planets(g, l.cx, l.cy, radii[ring], r0 * 0.0036f, 0, 1);
        g.display_font_size(r0 * 0.0022f);
        float w = 0, h = 0;
        g.display_text_w_h(labels[ring], 1.0f, w, h);
        g.display_text_inside(l.cx - w / 2, l.cy - radii[ring] + h * 0.2f, labels[ring]);
    }
    helio_aspect_search(s);
    side_tables(g, View::helio, l, s.aspect_matrices.helio);
}

// --- the all world views page ---

namespace {

struct Vec3 {
    double x = 0, y = 0, z = 0;
};
Vec3 rectangular(double lon, double lat, double dist) {
    return {dist * std::cos(lat) * std::cos(lon), dist * std::cos(lat) * std::sin(lon),
            dist * std::sin(lat)};
}

} // namespace

void all_planets_page(Drawing& g) {
    calculate(g);
    Session& s = g.s;
    DrawingState& d = g.d;
    const PositionLists& p = s.engine.pos;
    const float width = d.frame_right - d.frame_left;
    d.table_font_size = header_font(g, width);
    const float top = page_header(g, d.frame_left, false, "All World Views (Earth to Saturn)",
                                  d.frame_top, true, working_row(g));
    // The views: the Solar System seen from Saturn, Jupiter, Mars, the Sun, Venus, Mercury and
    // the Earth, from the heliocentric places (the Sun at the origin).
    struct Seat {
        const char* label;
        int helio; // index in the helio list, -1 the Sun
    };
    static constexpr Seat seats[] = {
        {"Sa", helio::saturn}, {"Ju", helio::jupiter}, {"Ma", helio::mars}, {"Su", -1},
        {"Ve", helio::venus},  {"Me", helio::mercury}, {"Ea", helio::earth}};
    const float heading = d.table_font_size * 20 * 1.6f;
    const float y_top = top + heading * 1.4f, y_bottom = d.frame_bottom - heading * 0.5f;
    const float scale_width = width * 0.08f;
    const float column = (width - scale_width) / 7;
    // The scale of signs down the left.
    g.display_font_size(d.table_font_size);
    for (int sign = 0; sign <= 12; ++sign) {
        const float y = y_top + (y_bottom - y_top) * static_cast<float>(sign) / 12;
        g.display_line(d.frame_left + scale_width * 0.6f, d.frame_right, y, y,
                       g.d.line_colour_outside, dot);
        if (sign < 12) {
            const std::string glyph(1,
                                    static_cast<char>(sign_glyphs[static_cast<std::size_t>(sign)]));
            g.display_glyph_outside(d.frame_left,
                                    y + (y_bottom - y_top) / 24 - d.table_font_size * 12, glyph);
        }
    }
    g.display_text_outside(d.frame_left, top, "Sa/Ju/Ma/Su/Ve/Me/Ea");
    for (int v = 0; v < 7; ++v) {
        const Seat& seat = seats[v];
        const Vec3 from = seat.helio < 0
                              ? Vec3{}
                              : rectangular(p.helio_long[static_cast<std::size_t>(seat.helio)],
                                            p.helio_lat[static_cast<std::size_t>(seat.helio)],
                                            p.helio_dist[static_cast<std::size_t>(seat.helio)]);
        clear_plot_list(d.wheel);
        d.wheel.plot_count = 12;
        // The Sun, then every planet but the seat, as seen from it.
        if (seat.helio >= 0) {
            const double lon = std::atan2(-from.y, -from.x) + s.engine.zodiac_offset;
            add_plot_entry(d.wheel, std::string(1, static_cast<char>(glyph::sun)),
                           lon * one_radian);
        }
        for (int i = 0; i <= helio::saturn; ++i) {
            if (i == seat.helio) continue;
            const auto k = static_cast<std::size_t>(i);
            const Vec3 to = rectangular(p.helio_long[k], p.helio_lat[k], p.helio_dist[k]);
            const double lon = std::atan2(to.y - from.y, to.x - from.x);
            add_plot_entry(d.wheel, std::string(1, static_cast<char>(p.helio_glyph[k])),
                           lon * one_radian);
        }
        const float x = d.frame_left + scale_width + column * static_cast<float>(v);
        g.display_font_size(d.table_font_size * 1.2f);
        g.display_text_outside(x + column * 0.3f, top + heading * 0.6f, seat.label);
        g.display_line(x, x, y_top, y_bottom, g.d.line_colour_outside, solid);
        plot_planets_vertical(g, x, y_top, y_bottom,
                              std::min(column / 120, (y_bottom - y_top) / 480));
    }
}

// --- the data page ---

void data_page(Drawing& g) {
    calculate(g);
    Session& s = g.s;
    DrawingState& d = g.d;
    const EngineState& e = s.engine;
    const float width = d.frame_right - d.frame_left;
    d.table_font_size = header_font(g, width);
    const View v = view_of(s.chart.world_view);
    float y =
        page_header(g, d.frame_left, false, s.chart.world_view, d.frame_top, true, working_row(g));
    // The time base of the moment, in two lines.
    const HoursMinutesSeconds st = split_hours(e.local_sidereal_hours);
    char line[256];
    std::snprintf(line, sizeof line, "Sidereal Time %02d:%02d:%02d, Julian Day %.6f, T2000 %.10f",
                  st.h, st.m, st.s, e.time.jd, e.time.t_ut);
    const std::string first = line;
    std::snprintf(line, sizeof line, ", dT %.2fs", e.time.delta_t_seconds);
    const std::string second = "Obliquity " + trim(format_signed_dms(e.nutation.true_obliquity)) +
                               ", Nutation " + trim(format_signed_dms(e.nutation.nutation_long)) +
                               line + ", Vernal Point " +
                               trim(format_position_dms(e.zodiac_offset, s.chart.sign_form));
    g.display_font_size(d.table_font_size);
    float w = 0, h = 0;
    g.display_text_w_h("A", 1.0f, w, h);
    draw_mixed_outside(g, d.frame_left, y, first);
    draw_mixed_outside(g, d.frame_left, y + h, second);
    y += h * 3;

    const auto bodies = listed_bodies(s);
    std::vector<std::string> heads;
    if (v == View::geo)
        heads = {"",           "     NAKSHATRA", "LONGITUDE", "   LATITUDE", "DISTANCE",
                 "RIGHT ASC.", "     DECL.",     "  AZIMUTH", "  ALTITUDE"};
    else
        heads = {"",           "LONGITUDE", "   LATITUDE", "DISTANCE",
                 "  SIDEREAL", " TROPICAL", "   NODES",    "PERIHELIONS"};
    std::vector<std::vector<std::string>> rows;
    const double eps = e.nutation.true_obliquity;
    const double lst = e.local_sidereal_hours * 15 / one_radian;
    const double phi = e.latitude_rad;
    for (const ListedBody& b : bodies) {
        std::vector<std::string> r;
        r.push_back(std::string(1, static_cast<char>(b.glyph)));
        char dist[32];
        std::snprintf(dist, sizeof dist, "%010.7f", b.distance);
        if (v == View::geo) {
            // The lunar mansion: 28 equal mansions from Krittika, which begins at 26 40' of the
            // zodiac in force.
            double m = std::fmod(b.longitude * one_radian - 26.0 - 40.0 / 60 + 720, 360.0);
            const int mansion = 1 + static_cast<int>(m / (360.0 / 28));
            r.push_back(
                std::string(nakshatra_names[static_cast<std::size_t>(std::clamp(mansion, 1, 28))]));
            r.push_back(format_position_dms(b.longitude, s.chart.sign_form));
            r.push_back(format_lat_dms(b.latitude));
            r.push_back(dist);
            const double l = b.longitude - e.zodiac_offset;
            const double ra = std::atan2(
                std::sin(l) * std::cos(eps) - std::tan(b.latitude) * std::sin(eps), std::cos(l));
            const double dec = std::asin(std::sin(b.latitude) * std::cos(eps) +
                                         std::cos(b.latitude) * std::sin(eps) * std::sin(l));
            const HoursMinutesSeconds rah = split_hours(ra * one_radian / 15);
            std::snprintf(line, sizeof line, "%02dh%02dm%02ds", rah.h, rah.m, rah.s);
            r.push_back(line);
            r.push_back(format_lat_dms(dec));
            // Azimuth from the north through the east, and altitude, at the place.
            const double ha = lst - ra;
            const double alt = std::asin(std::sin(phi) * std::sin(dec) +
                                         std::cos(phi) * std::cos(dec) * std::cos(ha));
            double az = std::atan2(-std::sin(ha) * std::cos(dec),
                                   std::cos(phi) * std::sin(dec) -
                                       std::sin(phi) * std::cos(dec) * std::cos(ha));
            r.push_back(format_long_dms(az));
            r.push_back(format_lat_dms(alt));
        } else {
            r.push_back(format_position_dms(b.longitude, s.chart.sign_form));
            r.push_back(format_lat_dms(b.latitude));
            r.push_back(dist);
            r.push_back(format_long_dms(b.longitude));
            r.push_back(format_long_dms(b.longitude - e.zodiac_offset));
            r.push_back(v == View::helio ? format_position_dm(b.node, s.chart.sign_form) : "");
            r.push_back(v == View::helio ? format_position_dm(b.perihelion, s.chart.sign_form)
                                         : "");
        }
        rows.push_back(std::move(r));
    }
    const float row_height =
        std::min((d.frame_bottom - y - h) / static_cast<float>(rows.size() + 1), h * 1.6f);
    fit_table_font(g, row_height, 1.25f);
    // Column widths from the widest text of each column; a table too wide for the frame is set
    // smaller until it fits.
    std::vector<float> widths(heads.size(), 0);
    float total = 0;
    for (int attempt = 0; attempt < 2; ++attempt) {
        total = 0;
        for (std::size_t c = 0; c < heads.size(); ++c) {
            g.display_text_w_h(heads[c], 1.0f, w, h);
            widths[c] = w;
            for (const auto& r : rows) {
                if (c == 1 && v == View::geo)
                    g.display_text_w_h(r[c], 1.0f, w, h);
                else
                    g.display_symbol_w_h(r[c], 1.0f, w, h);
                widths[c] = std::max(widths[c], w);
            }
            total += widths[c] + 2 * d.table_half_space;
        }
        if (total <= width) break;
        g.display_font_size(d.current_font_size * width / total * 0.98f);
        d.table_half_space *= width / total * 0.98f;
    }
    const float gap =
        std::max(d.table_half_space * 2,
                 (width - total) / static_cast<float>(heads.size()) + d.table_half_space * 2);
    float x = d.frame_left;
    for (std::size_t c = 0; c < heads.size(); ++c) {
        g.display_text_outside(x, y, heads[c]);
        float ry = y + row_height;
        for (const auto& r : rows) {
            if (c == 1 && v == View::geo)
                g.display_text_outside(x, ry, r[c]);
            else
                g.display_glyph_outside(x, ry, r[c]);
            ry += row_height;
        }
        x += widths[c] + gap;
    }
}

// --- dispatch ---

namespace {

using PageProc = void (*)(Drawing&);

struct PageEntry {
    PageProc proc;
    bool portrait;
};

const std::map<std::string_view, PageEntry>& pages_table() {
    static const std::map<std::string_view, PageEntry> table = {
        {"data1", {&data_page, true}},
        {"geo1", {&geo_page, true}},
        {"helio1", {&helio_page, true}},
        {"helio_triple", {&helio_triple_page, true}},
        {"lem1", {&lemni_page, true}},
        {"geo_helio1", {&geo_helio_page, true}},
        {"geo_triple", {&triple_page, true}},
        {"display_all_planets", {&all_planets_page, true}},
        {"star_geo", {&star_wheel_page, true}},
        {"star_sid_trop", {&star_wheel_page, true}},
        {"star_geo_helio", {&star_wheel_page, true}},
        {"star_helio", {&star_wheel_page, true}},
        {"star_lem", {&star_wheel_page, true}},
        {"star_analysis_conjunction", {&star_analysis_page, true}},
        {"star_analysis_horizon", {&star_analysis_page, true}},
        {"prenatal1", {&prenatal_distances_page, true}},
        {"prenatal2", {&prenatal_latitudes_page, true}},
        {"prenatal_rect", {&prenatal_rectified_page, false}},
        {"prenatal_helio_rect", {&prenatal_rectified_page, false}},
        {"prenatal_lem_rect", {&prenatal_rectified_page, false}},
        {"lem_prenatal1", {&lem_prenatal_distances_page, true}},
        {"lem_prenatal3dwith", {&lem_prenatal_3d_page, true}},
        {"lem_prenatal3dse", {&lem_prenatal_3d_page, true}},
        {"plan display", {&plan_display_page, true}},
        {"geo_double", {&geo_double_page, true}},
        {"helio_double", {&helio_double_page, true}},
        {"lemni_double", {&lemni_double_page, true}},
        {"geo_helio_double", {&geo_helio_double_page, true}},
        {"helio_geo_double", {&helio_geo_double_page, true}},
        {"planets motion", {&planets_motion_page, true}},
    };
    return table;
}

} // namespace

bool page_known(std::string_view word) {
    return pages_table().count(word) > 0;
}

bool page_is_portrait(std::string_view word) {
    const auto it = pages_table().find(word);
    return it == pages_table().end() || it->second.portrait;
}

bool screen_display(Drawing& g) {
    Session& s = g.s;
    DrawingState& d = g.d;
    d.display_target = "Chart";
    if (s.chart.zodiac == "Draconic" && s.chart.moon_node == 0) {
        session_sink(s).message("ERROR USING DRACONIC ZODIAC",
                                "For the Draconic Zodiac either the Osculating or the Mean Moon "
                                "Node Option must be selected",
                                MessageIcon::information);
        return false;
    }
    Surface* printer = g.canvases.printer;
    if (d.printing) {
        if (!printer || !printer->setup_dialog()) return false; // cancelled: back to the window
        printer->begin_document();
    }
    if (!d.allow_stepping) d.stepping_on = false;
    if (d.stepping_on) {
        d.working_event = slot::work;
        d.inner_event = slot::work;
    }
    const auto it = pages_table().find(d.screen_page);
    if (it == pages_table().end()) {
        session_fatal_box(s, "Fatal Error in SCREEN DISPLAY", std::string("CK67-") + fatal_tail);
        return false;
    }
    g.read_page_options();
    d.portrait_page = it->second.portrait;
    g.load_active_colour_set();
    g.initialise_frame();
    it->second.proc(g);
    d.rotate_text = 0;
    if (d.printing && printer) {
        printer->end_page();
        printer->end_document();
    }
    return true;
}

} // namespace celestark::drawing

namespace celestark::drawing {

std::vector<SeriesPage> chart_series_pages(const ChartPrintSelection& selection) {
    struct Group {
        const char* world_view;
        const char* standard;
        const char* star;
        const char* compare;
    };
    static constexpr Group groups[ChartPrintSelection::groups] = {
        {"Geocentric", "geo1", "star_geo", "geo_double"},
        {"Lemnicentric", "lem1", "star_lem", "lemni_double"},
        {"Heliocentric", "helio1", "star_helio", "helio_double"},
        {"Geo/Helio", "geo_helio1", "star_geo_helio", "geo_helio_double"},
        {"Tychonic", "geo1", "star_geo", "geo_double"},
    };
    std::vector<SeriesPage> pages;
    for (int i = 0; i < ChartPrintSelection::groups; ++i) {
        const Group& group = groups[i];
        const auto k = static_cast<std::size_t>(i);
        if (selection.standard[k]) pages.push_back({group.standard, group.world_view});
        if (selection.star[k]) pages.push_back({group.star, group.world_view});
        if (selection.compare[k]) pages.push_back({group.compare, group.world_view});
        if (selection.harmonics[k]) pages.push_back({"harmonics", group.world_view});
        if (i == 2 && selection.helio_triple) pages.push_back({"helio_triple", "Heliocentric"});
    }
    if (selection.all_planets) pages.push_back({"display_all_planets", "Geocentric"});
    return pages;
}

bool print_chart_series(Drawing& g, const std::vector<SeriesPage>& pages) {
    Session& s = g.s;
    DrawingState& d = g.d;
    Surface* printer = g.canvases.printer;
    if (!printer || pages.empty()) return false;
    if (!printer->setup_dialog()) return false;
    printer->begin_document();
    d.printing = true;
    d.display_target = "Chart";
    g.read_page_options();
    g.load_active_colour_set();
    const std::string world_view = s.chart.world_view, screen_page = d.screen_page;
    MessageSink& sink = session_sink(s);
    sink.progress_begin("Printing the charts of the event", static_cast<int>(pages.size()));
    s.run_cancelled = 0;
    int done = 0;
    for (const SeriesPage& page : pages) {
        s.chart.world_view = page.world_view;
        d.screen_page = page.screen_page;
        d.portrait_page = true;
        g.initialise_frame();
        if (page.screen_page == "harmonics") {
            calculate(g);
            harmonics_page(g);
        } else if (const auto it = pages_table().find(page.screen_page);
                   it != pages_table().end()) {
            it->second.proc(g);
        }
        d.rotate_text = 0;
        printer->end_page();
        if (sink.progress(++done)) s.run_cancelled = 1;
        if (s.run_cancelled) break;
    }
    sink.progress_end();
    printer->end_document();
    s.chart.world_view = world_view;
    d.screen_page = screen_page;
    d.printing = false;
    return true;
}

} // namespace celestark::drawing
