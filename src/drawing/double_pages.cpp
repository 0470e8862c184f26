#include "drawing/double_pages.h"

#include "aspects/aspect_search.h"
#include "drawing/page_furniture.h"
#include "drawing/wheel.h"
#include "engine/chart.h"
#include "predict/progressions.h"
#include "session/colour_fields.h"
#include "session/constants.h"
#include "session/predictive_state.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_sets.h"

#include <algorithm>
#include <cmath>

namespace celestark::drawing {

namespace {

constexpr double one_radian = rad_to_deg;

enum class Ring { geo, helio, lemni };

std::string ring_view(Ring r, const std::string& geo_view) {
    return r == Ring::helio ? "Heliocentric" : r == Ring::lemni ? "Lemnicentric" : geo_view;
}

// One event of the pair in the world view of its ring: the engine as the calculation left it,
// the bodies as the tables show them, and the list its cross aspects are searched on.
struct RingChart {
    Ring ring = Ring::geo;
    std::string view;
    EngineState engine;
    std::vector<ListedBody> bodies;
    std::vector<double> longitudes;
    std::vector<unsigned char> glyphs;
    AspectList list() const {
        return {longitudes.data(), glyphs.data(), static_cast<int>(longitudes.size())};
    }
};

RingChart calculate_ring(Drawing& g, int row, Ring ring, const std::string& geo_view) {
    Session& s = g.s;
    RingChart c;
    c.ring = ring;
    c.view = ring_view(ring, geo_view);
    s.chart.world_view = c.view;
    // A progressed ring is the birth moved through symbolic time.
    const bool progressed = trim(s.event_slots[row][col::event]) == "Progressed" &&
                            !g.d.progression_kind.empty() && g.d.progressed_base > 0;
    if (!progressed ||
        !calculate_progressed_event(s, g.d.progressed_base, row, g.d.progression_kind))
        calculate_chart(s, row, true);
    c.engine = s.engine;
    c.bodies = listed_bodies(s);
    const PositionLists& p = s.engine.pos;
    const auto take = [&c](const auto& longs, const auto& glyphs, int count) {
        for (std::size_t k = 0; k < static_cast<std::size_t>(std::max(count, 0)); ++k) {
            c.longitudes.push_back(longs[k]);
            c.glyphs.push_back(glyphs[k]);
        }
    };
    if (ring == Ring::helio)
        take(p.helio_long, p.helio_glyph, p.helio_count);
    else if (ring == Ring::lemni)
        take(p.lemni_long, p.lemni_glyph, p.lemni_count);
    else
        take(p.chart_long, p.chart_glyph, p.chart_count);
    return c;
}

// The bodies of a ring placed on its circle of radius r, inward; with its house cusps' labels
// when the ring is geocentric and houses are drawn.
void plot_ring(Drawing& g, const RingChart& c, double rotation, float cx, float cy, float r,
               float font, bool houses) {
    Session& s = g.s;
    s.engine = c.engine;
    s.chart.world_view = c.view;
    clear_plot_list(g.d.wheel);
    if (houses) fill_house_slots(g, rotation);
    fill_body_slots(g, rotation, houses);
    set_chart_detail(g, 2, -1);
    plot_planets(g, cx, cy, r, font, static_cast<float>(rotation * one_radian), 1);
}

std::string glyph_text(unsigned char c) {
    return std::string(1, static_cast<char>(c));
}

// The positions of both events body by body: the outer first, as the head says.
float double_position_table(Drawing& g, const RingChart& inner, const RingChart& outer, float x,
                            float y_top, float y_bottom, float size) {
    const bool sign_form = g.s.chart.sign_form;
    TableColumn pl{{}, "Pl", true}, out{{}, g.d.printing ? "   OUTER" : "   OUTER", true},
        in{{}, "   INNER", true};
    const auto place = [&](const ListedBody* b) {
        if (!b) return std::string("         ");
        return format_position_dm(b->longitude, sign_form) + (b->retrograde ? " R" : "  ");
    };
    const auto find = [](const RingChart& c, unsigned char glyph) -> const ListedBody* {
        for (const ListedBody& b : c.bodies)
            if (b.glyph == glyph) return &b;
        return nullptr;
    };
    std::vector<unsigned char> glyphs;
    for (const ListedBody& b : inner.bodies) glyphs.push_back(b.glyph);
    for (const ListedBody& b : outer.bodies)
        if (std::find(glyphs.begin(), glyphs.end(), b.glyph) == glyphs.end())
            glyphs.push_back(b.glyph);
    for (const unsigned char glyph : glyphs) {
        pl.cells.push_back(glyph_text(glyph));
        out.cells.push_back(place(find(outer, glyph)));
        in.cells.push_back(place(find(inner, glyph)));
    }
    std::vector<TableColumn> cols{pl, out, in};
    return draw_columns(g, x, y_top, y_bottom, size, cols, static_cast<int>(glyphs.size()));
}

// The grid of cross aspects: the outer bodies down the side, the inner ones along the top.
float cross_aspect_grid(Drawing& g, const AspectMatrix& m, const RingChart& inner,
                        const RingChart& outer, float x, float y_top, float size, float cell,
                        bool narrow) {
    const int columns = std::min<int>(m.rows, static_cast<int>(inner.glyphs.size()));
    const int rows = std::min<int>(m.columns, static_cast<int>(outer.glyphs.size()));
    if (columns <= 0 || rows <= 0 || cell <= 0) return 0;
    fit_table_font(g, cell, size);
    g.display_text_outside(x, y_top,
                           narrow ? "Cross Aspects      INNER PLANETS"
                                  : "Cross Aspects             INNER PLANETS");
    const float top = y_top + cell * 1.3f;
    const Colour lines = g.d.line_colour_outside;
    float w = 0, h = 0;
    for (int i = 1; i <= columns; ++i) {
        const std::string gl = glyph_text(inner.glyphs[static_cast<std::size_t>(i - 1)]);
        g.display_symbol_w_h(gl, 0.8f, w, h);
        g.display_glyph_outside(x + cell * static_cast<float>(i) + (cell - w) / 2, top, gl);
    }
    for (int j = 1; j <= rows; ++j) {
        const float y = top + cell * static_cast<float>(j);
        const std::string gl = glyph_text(outer.glyphs[static_cast<std::size_t>(j - 1)]);
        g.display_symbol_w_h(gl, 0.8f, w, h);
        g.display_glyph_outside(x + (cell - w) / 2, y + (cell - h) / 2, gl);
        for (int i = 1; i <= columns; ++i) {
            const float gx = x + cell * static_cast<float>(i);
            g.display_line(gx, gx + cell, y + cell, y + cell, lines, solid);
            g.display_line(gx, gx, y, y + cell, lines, solid);
            if (!m.in_aspect(i, j)) continue;
            const std::string& a = m.mark(i, j, 1);
            if (a.empty()) continue;
            g.display_symbol_w_h(a, 0.8f, w, h);
            g.display_glyph_outside(gx + (cell - w) / 2, y + (cell - h) / 2, a);
        }
        const float right = x + cell * static_cast<float>(columns + 1);
        g.display_line(right, right, y, y + cell, lines, solid);
    }
    return cell * static_cast<float>(columns + 1);
}

std::string event_line(Drawing& g, int row, bool inner) {
    const EventFacts f = event_facts(g, row);
    std::string line =
        std::string(inner ? "Inner " : "") + "(" + std::to_string(row) + ") " + f.name;
    if (!f.version.empty()) line += " (Version " + f.version + ")";
    return line;
}

std::string moment_line(Drawing& g, int row) {
    const EventFacts f = event_facts(g, row);
    std::string line = f.date + (f.julian ? " J" : "") + ", " + f.time + " " + f.time_kind;
    const std::string dst = trim(g.s.event_slots[row][col::dst]);
    if (!dst.empty() && text_to_number(dst) != 0) line += " DST:" + dst;
    return line;
}

void double_page(Drawing& g, Ring inner_ring, Ring outer_ring) {
    Session& s = g.s;
    DrawingState& d = g.d;
    const std::string was = s.chart.world_view;
    const std::string geo_view = was == "Tychonic" ? "Tychonic" : "Geocentric";
    load_aspect_set(s, s.chart.aspect_set_charts, session_sink(s));
    const RingChart inner = calculate_ring(g, d.inner_event, inner_ring, geo_view);
    const RingChart outer = calculate_ring(g, d.outer_event, outer_ring, geo_view);
    s.engine = inner.engine;
    const bool with_houses = s.chart.house_system != "None";
    const bool houses_inner = inner_ring == Ring::geo && with_houses;
    const bool houses_outer = outer_ring == Ring::geo && with_houses;
    const double rotation = houses_inner ? house_rotation(s) : 0.0;

    // The wheel: on paper at the right of the page, smaller when it has houses; on screen at the
    // left.
    const float width = d.frame_right - d.frame_left, height = d.frame_bottom - d.frame_top;
    const float factor = d.printing && houses_inner ? 0.75f : 1.0f;
    const float R = std::min(width * (d.printing ? 1.0f : 0.64f), height) / 2 * factor;
    const float cx = d.printing ? d.frame_right - R : d.frame_left + R;
    const float cy = d.frame_top + R;
    const float r_in = R * 0.62f, r_band = R * 0.88f;
    const float font = R * 0.0036f;

    draw_zodiac_ring(g, cx, cy, R, r_band, rotation);
    draw_degree_ticks(g, cx, cy, r_in, rotation, true);
    g.display_line_width(1.0f);
    if (houses_inner) {
        draw_house_lines(g, cx, cy, r_in, r_in * 0.55f, rotation, font, 0);
    } else {
        g.display_filled_circle(cx, cy, r_in * 0.55f, g.colour(colour_field::inside_background));
    }
    plot_ring(g, inner, rotation, cx, cy, r_in, font, houses_inner);
    // The eclipses before each event, on the inner scale and on the band's edge.
    if (inner_ring == Ring::geo) draw_eclipse_marks(g, cx, cy, r_in, rotation, false);
    // The outer event's houses run across its own ring; the zodiac stays the inner event's.
    s.engine = outer.engine;
    if (houses_outer) draw_house_lines(g, cx, cy, r_band, r_in, rotation, font, 1);
    g.display_circle(cx, cy, r_in, g.d.line_colour_inside);
    plot_ring(g, outer, rotation, cx, cy, r_band, font, houses_outer);
    if (outer_ring == Ring::geo) draw_eclipse_marks(g, cx, cy, r_band * 0.96f, rotation, true);
    g.display_circle(cx, cy, r_in * 0.55f, g.d.line_colour_inside);

    AspectMatrix cross;
    search_cross_aspects(s.option_sets.aspects, inner.list(), outer.list(), s.stars.star_glyphs,
                         cross);
    draw_aspect_lines(g, cross, rotation, cx, cy, r_in * 0.55f, r_in * 0.003f, true, 1, cross.rows);

    // The header and the tables. On screen they stand to the right of the wheel, the grid under
    // the tables. On paper the header stands to the left of the wheel, and the tables with the
    // grid beside them under it.
    s.engine = inner.engine;
    s.chart.world_view = inner.view;
    const float gap = width * 0.02f;
    const float column_left = d.printing ? d.frame_left : cx + R + gap;
    const float column_right = d.printing ? cx - R - gap : d.frame_right;
    const float unit = (d.page_right - d.page_left) / 1100;
    d.table_font_size =
        std::min(unit * (d.printing ? 0.8f : 0.7f), (column_right - column_left) / 250.0f);
    g.display_font_size(d.table_font_size);
    const float below = draw_header_lines(g, column_left, d.frame_top, double_header_lines(g),
                                          column_right - column_left);
    const int count = static_cast<int>(std::max(inner.bodies.size(), outer.bodies.size()));
    const float line = unit * 20 * (d.printing ? 1.4f : 0.75f);
    const float table_top = d.printing ? cy + R + gap : below + line;
    const float bottom = d.frame_bottom - (d.printing ? height * 0.03f : 0); // the footer's room
    const float room = bottom - table_top;
    // The tables' height follows the count of points, rows no taller than a line of text; on
    // screen the grid under them keeps more than half the room.
    const float table_height =
        std::min({height * (static_cast<float>(count) * 0.015f + 0.4f),
                  line * static_cast<float>(count + 1), d.printing ? room : room * 0.45f});
    float x = d.printing ? d.frame_left : column_left;
    x += double_position_table(g, inner, outer, x, table_top, table_top + table_height, 1.1f);
    if (houses_inner)
        x += house_table(g, x, table_top, table_top + table_height * 13 / (count + 1), 1.1f,
                         d.inner_event);
    const float grid_top = d.printing ? table_top : table_top + table_height + line;
    const float grid_left = d.printing ? x + gap : column_left;
    const float grid_right = d.printing ? d.frame_right : column_right;
    const int cells = std::max(cross.rows, cross.columns) + 2;
    const float cell = std::min((bottom - grid_top) / static_cast<float>(cells),
                                (grid_right - grid_left) / static_cast<float>(cells));
    cross_aspect_grid(g, cross, inner, outer, grid_left, grid_top, 1.1f, cell,
                      grid_right - grid_left < width * 0.4f);

    // Later screens find the single chart of the inner event and its aspects as usual.
    s.engine = inner.engine;
    s.chart.world_view = was;
    chart_aspect_search(s);
}

} // namespace

std::vector<std::string> double_header_lines(Drawing& g) {
    const DrawingState& d = g.d;
    std::string title;
    const std::string& kind = d.chart_kind;
    if (kind == "B") {
        title = std::string(d.prenatal_biography ? "Prenatal " : "Lifetime ") +
                "Astrological Biography Chart";
    } else if (kind == "C") {
        title = "Comparison Chart";
    } else if (kind == "T") {
        title = "Transit Chart";
    } else if (kind == "P") {
        const std::string& p = d.progression_kind;
        const bool over = d.transits_over;
        if (p == "Secondary")
            title = over ? "Transits of Secondary Progressed Chart" : "Secondary Progressed Chart";
        else if (p == "Primary")
            title = over ? "Transits of Primary Progressed Chart" : "Primary Progressed Chart";
        else if (p == "Solar Arc")
            title = over ? "Transits of Solar Arc Directions Chart" : "Solar Arc Directions Chart";
        else
            title = over ? "Transits of OD Directions" : "OD directions Chart";
    } else {
        session_fatal_box(g.s, "Fatal Error in DOUBLE HEADER", std::string("CK61-") + fatal_tail);
        return {};
    }
    std::vector<std::string> lines = {
        event_line(g, d.inner_event, true), moment_line(g, d.inner_event),
        event_line(g, d.outer_event, false), moment_line(g, d.outer_event), title};
    // The run's own terms under the title: the life date and the biography's time keys, or the
    // progression's zone and direction.
    const PredictiveRun& r = g.s.predictive;
    const EventFacts outer = event_facts(g, d.outer_event);
    if (kind == "B") {
        static constexpr const char* directions[] = {"Epoch to Birth", "From Birth forwards",
                                                     "Birth to Epoch"};
        static constexpr const char* ratios[] = {
            "Sidereal lunar month = 7 years", "10 sidereal lunar months = 71.6 years",
            "Synodic lunar month=7 years", "9 synodic months=71.6 years",
            "9 solar months=71.6 years"};
        const auto direction = static_cast<std::size_t>(std::clamp<int>(r.ab_mode, 1, 3) - 1);
        const auto ratio =
            static_cast<std::size_t>(std::clamp(static_cast<int>(r.time_ratio_code), 1, 5) - 1);
        lines.push_back("Lifetime Date: " + outer.date + ", Time Zone: " + r.zone_code);
        lines.push_back(std::string("Prenatal time direction: ") + directions[direction] +
                        " - Time ratio: " + ratios[ratio]);
        lines.push_back(std::string("Time projection: ") +
                        (r.projection_mode == 2 ? " true (using actual position of SUN or MOON)"
                                                : " mean (linear)"));
    } else if (kind == "P") {
        lines.push_back(outer.date + ", Time Zone: " + r.zone_code +
                        " - Time Direction: " + (r.run_direction < 0 ? "Backward" : "Forward"));
    }
    return lines;
}

void geo_double_page(Drawing& g) {
    double_page(g, Ring::geo, Ring::geo);
}
void helio_double_page(Drawing& g) {
    double_page(g, Ring::helio, Ring::helio);
}
void lemni_double_page(Drawing& g) {
    double_page(g, Ring::lemni, Ring::lemni);
}
void geo_helio_double_page(Drawing& g) {
    double_page(g, Ring::geo, Ring::helio);
}
void helio_geo_double_page(Drawing& g) {
    double_page(g, Ring::helio, Ring::geo);
}

} // namespace celestark::drawing
