#include "drawing/prenatal_pages.h"

#include "drawing/page_furniture.h"
#include "drawing/wheel.h"
#include "engine/chart.h"
#include "engine/table_bodies.h"
#include "session/colour_fields.h"
#include "session/constants.h"
#include "session/event_time.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace celestark::drawing {

double distance_scale(unsigned char glyph, double au, double pluto_anchor) {
    switch (glyph) {
    case glyph::jupiter:
        return (au - 5.2) * 0.08 + 1.7;
    case glyph::saturn:
        return (au - 9.55) * 0.07 + 1.8;
    case glyph::uranus:
        return (au - 19.2) * 0.03 + 1.9;
    case glyph::neptune:
        return (au - 30.09) * 0.03 + 2.0;
    case glyph::pluto:
        return (au - pluto_anchor) * 0.02 + 2.0;
    case glyph::ceres:
    case glyph::pallas:
    case glyph::vesta:
    case glyph::juno:
        return au * 0.2;
    default:
        return au * 0.5;
    }
}

bool prenatal_body(unsigned char g) {
    return (g >= glyph::sun && g <= glyph::chiron) || g == glyph::quaoar || g == glyph::sedna ||
           (g >= glyph::ceres && g <= glyph::juno);
}

namespace {

constexpr double one_degree = deg_to_rad;
constexpr double one_radian = rad_to_deg;
// Between epoch and birth a sidereal month of the Moon stands for seven years of life.
constexpr double sidereal_month_days = 27.3217;
constexpr double years_a_month = 7;
// The viewing angles of the perspective pages: the turn about the vertical and the tilt.
constexpr double view_turn = 50 * one_degree, view_tilt = 50 * one_degree;

std::string glyph_text(unsigned char code) {
    return std::string(1, static_cast<char>(code));
}

struct Body {
    unsigned char glyph = 0;
    double lon = 0, lat = 0, dist = 0; // radians, radians, au
};

// One moment of a page: its bodies in the world view in force, and the geocentric Moon, from
// which the epoch to birth sectors run.
struct Moment {
    double jd = 0;
    double moon = 0;
    std::vector<Body> bodies;
    const Body* find(unsigned char glyph) const {
        for (const Body& b : bodies)
            if (b.glyph == glyph) return &b;
        return nullptr;
    }
};

Moment take_moment(const Session& s) {
    Moment m;
    m.jd = s.engine.time.jd;
    m.moon = s.engine.pos.geo_long[geo::moon];
    for (const ListedBody& b : listed_bodies(s))
        if (prenatal_body(b.glyph))
            m.bodies.push_back({b.glyph, b.longitude, b.latitude, b.distance});
    return m;
}

Moment row_moment(Drawing& g, int row) {
    calculate_chart(g.s, row, true);
    return take_moment(g.s);
}

Moment jd_moment(Drawing& g, double jd) {
    calculate_bodies_at(g.s, jd);
    return take_moment(g.s);
}

// The world view a page draws in, for the length of the page.
class ViewFor {
  public:
    ViewFor(Session& s, std::string view) : s_(s), was_(s.chart.world_view) {
        s.chart.world_view = std::move(view);
    }
    ~ViewFor() { s_.chart.world_view = was_; }
    ViewFor(const ViewFor&) = delete;
    ViewFor& operator=(const ViewFor&) = delete;

  private:
    Session& s_;
    std::string was_;
};

bool row_holds_event(const Session& s, int row) {
    return row >= 0 && row < event_rows && !slot_is_empty(s.event_slots[row]);
}

bool has_event(const Drawing& g) {
    return row_holds_event(g.s, g.d.working_event);
}

// The epoch stands in the outer slot.
bool has_epoch(const Drawing& g) {
    return g.d.outer_event != g.d.working_event && row_holds_event(g.s, g.d.outer_event);
}

// The view of the distance and latitude wheels: the one in force, Geo/Helio as Geocentric.
std::string wheel_view(const Session& s) {
    const std::string& v = s.chart.world_view;
    if (v == "Heliocentric" || v == "Lemnicentric" || v == "Tychonic") return v;
    return "Geocentric";
}

bool geocentric_view(const std::string& view) {
    return view == "Geocentric" || view == "Tychonic";
}

std::string date_text(const Drawing& g, double jd, int row) {
    const std::string gj = row_holds_event(g.s, row)
                               ? trim(g.s.event_slots[row][static_cast<std::size_t>(col::gj)])
                               : std::string("G");
    return format_date_numeric(jd, gj.empty() ? "G" : gj, g.s.options.text);
}

// The date and time of a slot's event as its cells hold them.
std::string moment_text(const Drawing& g, int row) {
    const EventRow& r = g.s.event_slots[row];
    return format_date(r[col::day], r[col::month], r[col::year], g.s.options.text) +
           (trim(r[col::gj]) == "J" ? " J " : "  ") +
           format_time(r[col::hours], r[col::mins], r[col::secs], g.s.options.text);
}

void centred_text(Drawing& g, float x, float y, const std::string& text) {
    float w = 0, h = 0;
    g.display_text_w_h(text, 1.0f, w, h);
    g.display_text_inside(x - w / 2, y, text);
}

// A circle drawn in dashes, for the guide rings of the scales.
void dashed_circle(Drawing& g, float cx, float cy, float r, Colour colour) {
    constexpr int pieces = 144;
    for (int k = 0; k < pieces; k += 2) {
        const double a = two_pi * k / pieces, b = two_pi * (k + 1) / pieces;
        g.display_line(static_cast<float>(cx + r * std::cos(a)),
                       static_cast<float>(cx + r * std::cos(b)),
                       static_cast<float>(cy - r * std::sin(a)),
                       static_cast<float>(cy - r * std::sin(b)), colour, solid);
    }
}

// --- the layout of the wheel pages ---

// The header's font no wider than its room: its first line, which names the page, is not broken.
void fit_header_font(Drawing& g, const std::string& title, int row, float room) {
    const EventFacts f = event_facts(g, row);
    std::string first = "(" + std::to_string(f.number) + ") " + f.name;
    if (!f.group.empty()) first += " of " + f.group;
    if (!f.version.empty()) first += " (V. " + f.version + ")";
    first += " - " + title;
    g.display_font_size(g.d.table_font_size);
    float w = 0, h = 0;
    g.display_text_w_h(first, 1.0f, w, h);
    if (w > room && room > 0) g.d.table_font_size *= room / w;
}

struct WheelLayout {
    float cx = 0, cy = 0, R = 0;
    float side_left = 0, side_top = 0, side_right = 0, side_bottom = 0;
    bool side_below = false; // on paper the table stands under the wheel
};

// On screen the wheel stands at the left and the header and the table to its right; on paper the
// header runs across the top, the wheel below it and the table under the wheel. `flat`: the
// picture's height to its width (a plane seen at a slant is lower than it is wide). Draws the
// header.
WheelLayout wheel_layout(Drawing& g, const std::string& title, int row, float flat = 1) {
    DrawingState& d = g.d;
    WheelLayout l;
    const float width = d.frame_right - d.frame_left, height = d.frame_bottom - d.frame_top;
    const float unit = (d.page_right - d.page_left) / 1100;
    if (!d.printing && width > height * 1.15f) {
        l.R = std::min(height / flat, width * 0.62f) / 2;
        l.cx = d.frame_left + l.R;
        l.cy = d.frame_top + height / 2;
        l.side_left = d.frame_left + 2 * l.R + width * 0.025f;
        l.side_right = d.frame_right;
        d.table_font_size = std::min(unit * 0.7f, (l.side_right - l.side_left) / 330.0f);
        fit_header_font(g, title, row, l.side_right - l.side_left);
        const float below = page_header(g, l.side_left, false, title, d.frame_top, true, row,
                                        l.side_right - l.side_left);
        l.side_top = below + d.table_font_size * 20 * 0.8f;
        l.side_bottom = d.frame_bottom;
        return l;
    }
    d.table_font_size = std::min(unit, width / 560.0f);
    fit_header_font(g, title, row, width);
    const float below = page_header(g, d.frame_left, false, title, d.frame_top, true, row, width);
    const float table = height * 0.2f;
    l.R = std::max(0.0f,
                   std::min(width, (d.frame_bottom - below - table - height * 0.04f) / flat) / 2);
    l.cx = d.frame_left + width / 2;
    l.cy = below + height * 0.015f + l.R * flat;
    l.side_below = true;
    l.side_left = d.frame_left;
    l.side_right = d.frame_right;
    l.side_top = l.cy + l.R * flat + height * 0.015f;
    l.side_bottom = d.frame_bottom - height * 0.03f; // room for the footer
    return l;
}

struct SideRow {
    unsigned char glyph = 0;
    std::string first, second; // texts that may hold symbol codes
};

// The lines that say what the picture shows, then a table of the bodies with a value at each of
// the two moments; in two blocks side by side when it stands under the wheel.
void side_table(Drawing& g, const WheelLayout& l, const std::vector<std::string>& legend,
                const std::string& first_head, const std::string& second_head,
                const std::vector<SideRow>& rows) {
    DrawingState& d = g.d;
    const int blocks = l.side_below && rows.size() > 6 ? 2 : 1;
    const int per_block = (static_cast<int>(rows.size()) + blocks - 1) / blocks;
    const int lines = static_cast<int>(legend.size()) + 2 + per_block;
    const float room = l.side_bottom - l.side_top, width = l.side_right - l.side_left;
    if (room <= 0 || width <= 0) return;
    const float largest = std::max(d.table_font_size, 1.0f) * 20 * 1.5f;
    const float row = std::min(room / static_cast<float>(lines), largest);
    fit_table_font(g, row, 1.2f);
    // Set smaller while the legend or the blocks are wider than the room.
    float widest = 0, w = 0, h = 0;
    for (const std::string& line : legend) widest = std::max(widest, mixed_text_width(g, line));
    float glyph_w = 0, first_w = mixed_text_width(g, first_head),
          second_w = mixed_text_width(g, second_head);
    for (const SideRow& r : rows) {
        g.display_symbol_w_h(glyph_text(r.glyph), 1.0f, w, h);
        glyph_w = std::max(glyph_w, w);
        first_w = std::max(first_w, mixed_text_width(g, r.first));
        second_w = std::max(second_w, mixed_text_width(g, r.second));
    }
    const float gap = d.table_half_space * 4;
    const float block = glyph_w + first_w + second_w + gap * 2;
    const float needed = std::max(widest, block * static_cast<float>(blocks) +
                                              gap * 2 * static_cast<float>(blocks - 1));
    float scale = 1;
    if (needed > width) {
        scale = width / needed;
        g.display_font_size(std::max(0.01f, d.current_font_size * scale));
    }
    float y = l.side_top;
    for (const std::string& line : legend) {
        draw_mixed_outside(g, l.side_left, y, line);
        y += row;
    }
    y += row * 0.5f;
    for (int b = 0; b < blocks; ++b) {
        const float x = l.side_left + (block + gap * 2) * scale * static_cast<float>(b);
        const float x1 = x + (glyph_w + gap) * scale, x2 = x1 + (first_w + gap) * scale;
        g.display_text_outside(x1, y, first_head);
        g.display_text_outside(x2, y, second_head);
        float ry = y + row;
        for (int i = b * per_block; i < std::min<int>((b + 1) * per_block, rows.size()); ++i) {
            const SideRow& r = rows[static_cast<std::size_t>(i)];
            g.display_glyph_outside(x, ry, glyph_text(r.glyph));
            draw_mixed_outside(g, x1, ry, r.first);
            draw_mixed_outside(g, x2, ry, r.second);
            ry += row;
        }
    }
}

// --- the distance and latitude wheels ---

// The wheel of the circular pages: the band, the birth bodies just inside it, and inside them the
// ring where the scale reaches its end.
struct Ring {
    float cx = 0, cy = 0, R = 0, r_band = 0, r_zodiac = 0;
    double rotation = 0;
    float font = 0; // the birth glyphs' size
    float distance_unit() const { return static_cast<float>(r_zodiac / ring_scale); }
};

Ring draw_birth_wheel(Drawing& g, const WheelLayout& l, double rotation, const Moment& birth) {
    Ring w;
    w.cx = l.cx;
    w.cy = l.cy;
    w.R = l.R;
    w.rotation = rotation;
    w.r_band = l.R * 0.9f;
    draw_zodiac_ring(g, w.cx, w.cy, w.R, w.r_band, rotation);
    draw_degree_ticks(g, w.cx, w.cy, w.r_band, rotation, true);
    w.font = w.r_band * 0.003f;
    WheelState& wheel = g.d.wheel;
    clear_plot_list(wheel);
    wheel.plot_count = 12;
    for (const Body& b : birth.bodies)
        add_plot_entry(wheel, glyph_text(b.glyph), (b.lon + rotation) * one_radian);
    set_chart_detail(g, 0, 0);
    plot_planets(g, w.cx, w.cy, w.r_band, w.font, static_cast<float>(rotation * one_radian), 1);
    w.r_zodiac = w.r_band - 2.0f * w.font * 20;
    g.display_filled_circle(w.cx, w.cy, w.r_zodiac, g.colour(colour_field::inside_background));
    g.display_line_width(2.2f);
    g.display_circle(w.cx, w.cy, w.r_zodiac, g.d.line_colour_inside);
    g.display_line_width(1.0f);
    // The cross of the centre lines.
    g.display_line(w.cx - w.r_zodiac, w.cx + w.r_zodiac, w.cy, w.cy, g.d.line_colour_inside, dot);
    g.display_line(w.cx, w.cx, w.cy - w.r_zodiac, w.cy + w.r_zodiac, g.d.line_colour_inside, dot);
    return w;
}

// The anchors of the scale as dashed rings: one astronomical unit of the inner bodies, then
// Jupiter, Saturn, Uranus and Neptune at their anchors.
void draw_distance_rings(Drawing& g, const Ring& w) {
    struct Guide {
        double s;
        const char* label;
    };
    static constexpr Guide guides[] = {
        {0.5, "1 au"}, {1.7, "5.2"}, {1.8, "9.55"}, {1.9, "19.2"}, {2.0, "30.1"}};
    g.display_font_size(w.font * 0.42f);
    for (const Guide& guide : guides) {
        const float r = static_cast<float>(guide.s) * w.distance_unit();
        dashed_circle(g, w.cx, w.cy, r, g.d.line_colour_inside);
        float tw = 0, th = 0;
        g.display_text_w_h(guide.label, 1.0f, tw, th);
        // Up the right of the vertical line, each just inside its ring.
        g.display_text_inside(w.cx + th * 0.2f, w.cy - r + th * 0.05f, guide.label);
    }
}

// The zero latitude ring at a third of the way in, north outward.
float draw_latitude_rings(Drawing& g, const Ring& w) {
    const float r0 = w.r_zodiac / 1.5f;
    g.display_circle(w.cx, w.cy, r0, g.d.line_colour_inside);
    g.display_font_size(w.font * 0.55f);
    float tw = 0, th = 0;
    g.display_text_w_h("N", 1.0f, tw, th);
    const float x = w.cx + th * 0.3f;
    g.display_text_inside(x, w.cy - r0 - th * 1.9f, "N");
    g.display_text_inside(x, w.cy - r0 - th * 0.5f, "0");
    g.display_text_inside(x, w.cy - r0 + th * 0.9f, "S");
    return r0;
}

// Degrees of latitude a ring's radius stands for: the Moon 18, Pluto 36, the inner planets 144,
// the other planets 72.
double latitude_divisor(unsigned char glyph) {
    switch (glyph) {
    case glyph::moon:
        return 18;
    case glyph::pluto:
        return 36;
    case glyph::sun:
    case glyph::mercury:
    case glyph::venus:
    case glyph::earth:
    case glyph::mars:
        return 144;
    default:
        return 72;
    }
}

// The epoch to birth sectors: twelve equal parts of the Moon's way from its place at the epoch
// to its place at birth.
void draw_sectors(Drawing& g, const Ring& w, double epoch_moon, double birth_moon) {
    double span = std::fmod(birth_moon - epoch_moon, two_pi);
    if (span < 0) span += two_pi;
    if (span <= 0) return;
    g.display_font_size(w.font * 0.45f);
    for (int k = 0; k <= 12; ++k) {
        const double a = epoch_moon + span * k / 12 + w.rotation;
        const WheelPoint p = wheel_point(g.s, w.cx, w.cy, w.r_zodiac, a);
        g.display_line(w.cx, p.x, w.cy, p.y, g.d.line_colour_inside, dash);
        if (k == 12) break;
        const WheelPoint m = wheel_point(g.s, w.cx, w.cy, w.r_zodiac * 0.94, a + span / 24);
        float tw = 0, th = 0;
        const std::string n = std::to_string(k + 1);
        g.display_text_w_h(n, 1.0f, tw, th);
        g.display_text_inside(m.x - tw / 2, m.y - th / 2, n);
    }
}

// The bodies of a moment inside the ring as one figure: each at its radius, a line from the body
// before it in the body's colour, a short tick square to the line, and the body's glyph beside.
void draw_moment_figure(Drawing& g, const Ring& w, const Moment& m,
                        const std::function<double(const Body&)>& radius) {
    const float tick = w.r_zodiac * 0.02f;
    const float size = w.font * 0.75f;
    WheelPoint last{};
    bool have_last = false;
    for (const Body& b : m.bodies) {
        const double r = std::clamp(radius(b), 0.0, static_cast<double>(w.r_zodiac));
        const double a = b.lon + w.rotation;
        const WheelPoint p = wheel_point(g.s, w.cx, w.cy, r, a);
        const std::string glyph = glyph_text(b.glyph);
        const Colour colour = g.glyph_colour(glyph);
        // The tick stands square to the line from the body before, or to the radius.
        double ux = 0, uy = 1;
        const double dx = have_last ? p.x - last.x : p.x - w.cx;
        const double dy = have_last ? p.y - last.y : p.y - w.cy;
        const double length = std::sqrt(dx * dx + dy * dy);
        if (length > 0) {
            ux = -dy / length;
            uy = dx / length;
        }
        if (have_last) g.display_line(last.x, p.x, last.y, p.y, colour, solid);
        g.display_line(static_cast<float>(p.x - ux * tick), static_cast<float>(p.x + ux * tick),
                       static_cast<float>(p.y - uy * tick), static_cast<float>(p.y + uy * tick),
                       colour, solid);
        // The glyph a little outward of the point (inward at the ring, over it at the centre).
        g.display_font_size(size);
        const double em = size * 20 * 0.9;
        const double out = r > w.r_zodiac - em * 1.5 ? -em : em;
        const WheelPoint label = r < em ? WheelPoint{p.x, static_cast<float>(p.y - em)}
                                        : wheel_point(g.s, w.cx, w.cy, r + out, a);
        draw_turned_symbols(g, label, 0, glyph, TurnedColours::glyphs, 0);
        last = p;
        have_last = true;
    }
    g.d.rotate_text = 0;
}

enum class Radial { distance, latitude };

std::string distance_text(double au) {
    char text[32];
    std::snprintf(text, sizeof text, "%8.4f", au);
    return text;
}

void prenatal_wheel(Drawing& g, const std::string& view, Radial radial, const std::string& title) {
    Session& s = g.s;
    DrawingState& d = g.d;
    ViewFor in_view(s, view);
    if (!has_event(g)) return;
    const bool epoch_ok = has_epoch(g);
    Moment epoch;
    if (epoch_ok) epoch = row_moment(g, d.outer_event);
    const Moment birth = row_moment(g, d.working_event);
    const double rotation = geocentric_view(view) ? house_rotation(s) : 0.0;
    const WheelLayout l = wheel_layout(g, title, d.working_event);
    const Ring w = draw_birth_wheel(g, l, rotation, birth);
    float r0 = 0;
    if (radial == Radial::distance)
        draw_distance_rings(g, w);
    else
        r0 = draw_latitude_rings(g, w);
    if (epoch_ok && d.page_options.prenatal_sectors) draw_sectors(g, w, epoch.moon, birth.moon);
    const float unit = w.distance_unit();
    const auto radius = [&](const Body& b) -> double {
        if (radial == Radial::distance)
            return distance_scale(b.glyph, b.dist, prenatal_pluto_anchor) * unit;
        return r0 * (1 + b.lat * one_radian / latitude_divisor(b.glyph));
    };
    if (epoch_ok) draw_moment_figure(g, w, epoch, radius);

    std::vector<std::string> legend = {"Round the band: Birth, " + moment_text(g, d.working_event)};
    legend.push_back(epoch_ok ? "Inside: Epoch, " + moment_text(g, d.outer_event)
                              : "No prenatal epoch: the event has none");
    legend.push_back(radial == Radial::distance
                         ? "Radius: the distance from the centre, compressed"
                         : "Radius: the latitude, north outward of the ring");
    std::vector<SideRow> rows;
    for (const Body& b : birth.bodies) {
        const Body* e = epoch_ok ? epoch.find(b.glyph) : nullptr;
        if (radial == Radial::distance)
            rows.push_back({b.glyph, e ? distance_text(e->dist) : "", distance_text(b.dist)});
        else
            rows.push_back({b.glyph, e ? format_lat_dm(e->lat) : "", format_lat_dm(b.lat)});
    }
    side_table(g, l, legend, "Epoch", "Birth", rows);
}

// --- the strips ---

// The places of the glyphs on a strip, as plot_planets_vertical left them on the ring.
std::map<unsigned char, float> strip_places(const Drawing& g, float y_top, float y_bottom) {
    std::map<unsigned char, float> out;
    const WheelState& w = g.d.wheel;
    const float per_degree = (y_bottom - y_top) / 360;
    for (int i = 1; i <= 360; ++i) {
        const std::string& glyph = w.slot_glyph[static_cast<std::size_t>(i)];
        if (glyph.size() == 1)
            out[static_cast<unsigned char>(glyph[0])] = y_top + static_cast<float>(i) * per_degree;
    }
    return out;
}

// The zodiac of the strips: a line at every fifth degree, the signs' lines drawn full, and the
// signs' glyphs down the left.
void draw_strip_grid(Drawing& g, float left, float right, float y_top, float y_bottom,
                     float glyph_size) {
    const Session& s = g.s;
    const float per_degree = (y_bottom - y_top) / 360;
    for (int k = 0; k <= 72; ++k) {
        const float y = y_top + static_cast<float>(k * 5) * per_degree;
        g.display_line(left, right, y, y, g.d.line_colour_outside, k % 6 == 0 ? solid : dot);
    }
    g.display_font_size(glyph_size);
    float w = 0, h = 0;
    for (int i = 0; i < 12; ++i) {
        const double start = s.option_sets.zodiac.constellation_start[static_cast<std::size_t>(i)];
        const double end =
            i == 11 ? s.option_sets.zodiac.constellation_start[0] + 360
                    : s.option_sets.zodiac.constellation_start[static_cast<std::size_t>(i) + 1];
        const std::string glyph = glyph_text(sign_glyphs[static_cast<std::size_t>(i)]);
        g.display_symbol_w_h(glyph, 1.0f, w, h);
        double mid = std::fmod((start + end) / 2, 360.0);
        if (mid < 0) mid += 360;
        g.display_band_glyph(left - w * 1.3f,
                             y_top + static_cast<float>(mid) * per_degree - h * 0.55f, glyph);
    }
}

// A body's way from one strip to the next; where it passes 360 degrees the line leaves at one
// edge of the strips and comes in at the other.
void draw_path(Drawing& g, float x1, float y1, float x2, float y2, float y_top, float y_bottom,
               Colour colour) {
    const float height = y_bottom - y_top;
    const float f1 = (y1 - y_top) / height, f2 = (y2 - y_top) / height;
    if ((f1 < 0.3f && f2 > 0.7f) || (f1 > 0.7f && f2 < 0.3f)) {
        const bool up = f1 < 0.3f; // from near 0 degrees back over the top to near 360
        const float to = up ? y2 - height : y2 + height;
        const float edge = up ? y_top : y_bottom;
        const float t = (edge - y1) / (to - y1);
        const float xc = x1 + (x2 - x1) * t;
        g.display_line(x1, xc, y1, edge, colour, solid);
        g.display_line(xc, x2, up ? y_bottom : y_top, y2, colour, solid);
        return;
    }
    g.display_line(x1, x2, y1, y2, colour, solid);
}

} // namespace

void prenatal_distances_page(Drawing& g) {
    const std::string view = wheel_view(g.s);
    prenatal_wheel(g, view, Radial::distance, "Prenatal " + view + " Planetary Distances");
}

void prenatal_latitudes_page(Drawing& g) {
    const std::string view = wheel_view(g.s);
    prenatal_wheel(g, view, Radial::latitude, "Prenatal " + view + " Planetary Latitudes");
}

void lem_prenatal_distances_page(Drawing& g) {
    prenatal_wheel(g, "Lemnicentric", Radial::distance,
                   "Prenatal Lemnicentric - Planetary Distances");
}

void prenatal_rectified_page(Drawing& g) {
    Session& s = g.s;
    DrawingState& d = g.d;
    std::string view = s.chart.world_view == "Tychonic" ? "Tychonic" : "Geocentric";
    if (d.screen_page == "prenatal_helio_rect") view = "Heliocentric";
    if (d.screen_page == "prenatal_lem_rect") view = "Lemnicentric";
    ViewFor in_view(s, view);
    if (!has_event(g)) return;
    const bool epoch_ok = has_epoch(g);

    // The four moments: the epoch, a sidereal month after it, a sidereal month before birth, and
    // birth; without an epoch, birth alone.
    std::vector<Moment> moments;
    const char* names[4] = {"Epoch", "Epoch + 1 month", "Birth - 1 month", "Birth"};
    if (epoch_ok) {
        const Moment epoch = row_moment(g, d.outer_event);
        const double birth_jd = reduce_event_time(s.event_slots[d.working_event]).event_jd;
        const double span = birth_jd - epoch.jd;
        const double month = std::clamp(span / 3, 0.0, sidereal_month_days);
        moments.push_back(epoch);
        moments.push_back(jd_moment(g, epoch.jd + month));
        moments.push_back(jd_moment(g, birth_jd - month));
    }
    moments.push_back(row_moment(g, d.working_event));
    const bool timed = epoch_ok && moments.back().jd > moments.front().jd;

    const float width = d.frame_right - d.frame_left, height = d.frame_bottom - d.frame_top;
    d.table_font_size = std::min(0.8f * (d.page_right - d.page_left) / 1650, width / 560.0f);
    fit_header_font(g, "Prenatal " + view + " Chart", d.working_event, width * 0.98f);
    const float header_bottom = page_header(g, d.frame_left, false, "Prenatal " + view + " Chart",
                                            d.frame_top, true, d.working_event, width * 0.98f);
    const float label = d.table_font_size;
    g.display_font_size(label);
    float tw = 0, th = 0;
    g.display_text_w_h("0", 1.0f, tw, th);
    // The zodiac down the height, the time of the months along the width.
    const float left = d.frame_left + width * 0.05f, right = d.frame_right - width * 0.02f;
    const float y_top = header_bottom + th * 2.8f;
    const float y_bottom = d.frame_bottom - height * 0.05f - th * 3.2f;
    const float strip_font = height / 750;
    const float glyph_room = strip_font * 20 * 1.6f;
    const float x0 = left, x1 = right - glyph_room;
    if (y_bottom <= y_top || x1 <= x0) return;
    draw_strip_grid(g, d.frame_left + width / 30, d.frame_right - width / 120, y_top, y_bottom,
                    strip_font * 0.8f);
    const auto x_of = [&](double jd) {
        if (!timed) return x1;
        const double f = (jd - moments.front().jd) / (moments.back().jd - moments.front().jd);
        return static_cast<float>(x0 + (x1 - x0) * f);
    };

    // The month marks.
    if (timed && d.page_options.prenatal_sectors) {
        for (double t = moments.front().jd + sidereal_month_days; t < moments.back().jd;
             t += sidereal_month_days) {
            const float x = x_of(t);
            g.display_line(x, x, y_top, y_bottom, g.d.line_colour_outside, dash);
        }
    }

    // Each strip with its name and date over it, and each body's way from the strip before.
    std::map<unsigned char, float> before;
    float x_before = 0;
    for (std::size_t k = 0; k < moments.size(); ++k) {
        const Moment& m = moments[k];
        const float x = x_of(m.jd);
        g.display_line(x, x, y_top, y_bottom, g.d.line_colour_outside, solid);
        clear_plot_list(d.wheel);
        d.wheel.plot_count = 12;
        for (const Body& b : m.bodies)
            add_plot_entry(d.wheel, glyph_text(b.glyph), b.lon * one_radian);
        plot_planets_vertical(g, x, y_top, y_bottom, strip_font);
        const std::map<unsigned char, float> here = strip_places(g, y_top, y_bottom);
        if (k > 0)
            for (const auto& [code, y] : here)
                if (const auto it = before.find(code); it != before.end())
                    draw_path(g, x_before + glyph_room * 0.85f, it->second, x, y, y_top, y_bottom,
                              g.glyph_colour(glyph_text(code)));
        before = here;
        x_before = x;
        g.display_font_size(label);
        const std::string name = moments.size() == 4 ? names[k] : "Birth";
        const std::string date = date_text(g, m.jd, d.working_event);
        float nw = 0, dw = 0;
        g.display_text_w_h(name, 1.0f, nw, th);
        g.display_text_w_h(date, 1.0f, dw, th);
        const float head = std::max(nw, dw);
        // Over the strip, kept inside the frame; the inner two lean toward the middle.
        float hx = x - head / 2;
        if (k == 0) hx = x;
        if (k + 1 == moments.size()) hx = std::min(x + glyph_room, d.frame_right) - head;
        if (k == 1) hx = std::max(hx, x - head * 0.15f);
        if (k == 2) hx = std::min(hx, x - head * 0.85f);
        g.display_text_outside(hx, y_top - th * 2.5f, name);
        g.display_text_outside(hx, y_top - th * 1.4f, date);
    }

    // The scale of life along the foot: from the epoch, seven years to a sidereal month.
    const float y_scale = y_bottom + th * 0.6f;
    g.display_line(x0, x1, y_scale, y_scale, g.d.line_colour_outside, solid);
    g.display_font_size(label * 0.9f);
    if (timed) {
        const double days = moments.back().jd - moments.front().jd;
        const int years = static_cast<int>(days / sidereal_month_days * years_a_month);
        for (int year = 0; year <= years; ++year) {
            const float x = x_of(moments.front().jd + year * (sidereal_month_days / years_a_month));
            const bool seventh = year % 7 == 0;
            g.display_line(x, x, y_scale, y_scale + th * (seventh ? 0.5f : 0.25f),
                           g.d.line_colour_outside, solid);
            if (seventh) centred_text(g, x, y_scale + th * 0.55f, std::to_string(year));
        }
        const std::string ends =
            "Age in years: a sidereal month of " + std::string("27.3217 days stands for 7 years");
        centred_text(g, (x0 + x1) / 2, y_scale + th * 1.6f, ends);
        const std::string first = "Epoch " + date_text(g, moments.front().jd, d.working_event);
        const std::string last = "Birth " + date_text(g, moments.back().jd, d.working_event);
        g.display_text_w_h(last, 1.0f, tw, th);
        g.display_text_inside(x0, y_scale + th * 1.6f, first);
        g.display_text_inside(x1 - tw, y_scale + th * 1.6f, last);
    } else {
        g.display_text_inside(x0, y_scale + th * 0.6f,
                              epoch_ok ? "The epoch does not come before birth"
                                       : "No prenatal epoch: the event has none");
    }
}

// --- perspective ---

namespace {

// The height of the tilted plane with the signs round it, to its width.
constexpr float perspective_height = 0.75f;

// The view of the perspective pages: the plane turned about the vertical and tilted toward the
// viewer, each by the viewing angles; a point's height and depth pass through the tilt's cosine
// and sine.
struct Perspective {
    float cx = 0, cy = 0;
    double direction = 1; // the zodiac's direction across the page
    WheelPoint at(double x, double y, double z) const {
        const double X = x * std::cos(view_turn) - y * std::sin(view_turn);
        const double Y = x * std::sin(view_turn) + y * std::cos(view_turn);
        return {static_cast<float>(cx + X),
                static_cast<float>(cy - (Y * std::cos(view_tilt) + z * std::sin(view_tilt)))};
    }
    // A point at radius r in the direction of a longitude and a latitude.
    WheelPoint polar(double r, double lon, double lat = 0) const {
        const double h = r * std::cos(lat);
        return at(h * std::cos(lon) * direction, h * std::sin(lon), r * std::sin(lat));
    }
};

Perspective make_perspective(const Session& s, float cx, float cy) {
    Perspective p;
    p.cx = cx;
    p.cy = cy;
    p.direction = s.chart.zodiac_direction < 0 ? -1.0 : 1.0;
    return p;
}

void polyline(Drawing& g, const std::vector<WheelPoint>& points, Colour colour, int style) {
    for (std::size_t i = 1; i < points.size(); ++i)
        g.display_line(points[i - 1].x, points[i].x, points[i - 1].y, points[i].y, colour, style);
}

// The plane of the view laid as a disc: its rim in the colours of the signs with their glyphs
// outside it, the signs' boundaries across it, and the scale's anchors as dashed rings.
void draw_perspective_disc(Drawing& g, const Perspective& p, float r,
                           const std::vector<double>& guides) {
    const Session& s = g.s;
    const auto& starts = s.option_sets.zodiac.constellation_start;
    const bool mono = g.monochrome();
    g.display_font_size(r / 330);
    for (int i = 0; i < 12; ++i) {
        const double a = starts[static_cast<std::size_t>(i)];
        double b = i == 11 ? starts[0] + 360 : starts[static_cast<std::size_t>(i) + 1];
        if (b < a) b += 360;
        std::vector<WheelPoint> arc;
        for (int k = 0; k <= 12; ++k)
            arc.push_back(p.polar(r, (a + (b - a) * k / 12) * one_degree));
        g.display_line_width(5.0f);
        polyline(g, arc, mono ? g.d.line_colour_inside : g.colour(colour_field::aries_b + i),
                 solid);
        g.display_line_width(1.0f);
        const WheelPoint centre = p.polar(0, 0);
        const WheelPoint edge = p.polar(r, a * one_degree);
        g.display_line(centre.x, edge.x, centre.y, edge.y, g.d.line_colour_inside, dot);
        draw_turned_symbols(g, p.polar(r * 1.09, (a + b) / 2 * one_degree), 0,
                            glyph_text(sign_glyphs[static_cast<std::size_t>(i)]),
                            TurnedColours::band, 0);
    }
    for (double guide : guides) {
        std::vector<WheelPoint> ring;
        for (int k = 0; k <= 96; ++k) ring.push_back(p.polar(r * guide, two_pi * k / 96));
        for (std::size_t k = 1; k < ring.size(); k += 2)
            g.display_line(ring[k - 1].x, ring[k].x, ring[k - 1].y, ring[k].y,
                           g.d.line_colour_inside, solid);
    }
    g.d.rotate_text = 0;
}

// The guide rings of the compressed scale, as fractions of the ring: one astronomical unit,
// Jupiter's anchor and Neptune's.
const std::vector<double>& scale_guides() {
    static const std::vector<double> guides = {0.5 / ring_scale, 1.7 / ring_scale,
                                               2.0 / ring_scale};
    return guides;
}

// A body in the perspective at its radius, with its height over the plane.
struct Placed {
    WheelPoint at, foot; // the point, and the point of the plane beneath it
};

Placed place_in_view(const Perspective& p, const Body& b, double r) {
    return {p.polar(r, b.lon, b.lat), p.polar(r * std::cos(b.lat), b.lon, 0)};
}

} // namespace

void lem_prenatal_3d_page(Drawing& g) {
    Session& s = g.s;
    DrawingState& d = g.d;
    // With the event: every body of birth and epoch; without it: the Sun and the Earth alone,
    // with their ways from epoch to birth round the moving centre.
    const bool with_event = d.screen_page != "lem_prenatal3dse";
    ViewFor in_view(s, "Lemnicentric");
    if (!has_event(g)) return;
    const bool epoch_ok = has_epoch(g);
    Moment epoch;
    if (epoch_ok) epoch = row_moment(g, d.outer_event);
    Moment birth = row_moment(g, d.working_event);
    const auto keep = [&](Moment& m) {
        if (with_event) return;
        std::erase_if(m.bodies, [](const Body& b) {
            return b.glyph != glyph::sun && b.glyph != glyph::earth;
        });
    };
    keep(epoch);
    keep(birth);
    const WheelLayout l = wheel_layout(g, "Prenatal Lemnicentric - 3 Dimentional", d.working_event,
                                       perspective_height);
    const Perspective p = make_perspective(s, l.cx, l.cy);
    const float r = l.R * 0.88f;
    const float unit = r / static_cast<float>(ring_scale);
    // The Sun and the Earth alone keep within an astronomical unit or so of the centre: their page
    // is drawn to a plain scale, 1.25 au to the rim.
    constexpr double se_rim_au = 1.25;
    const auto radius = [&](const Body& b) {
        const double at = with_event ? distance_scale(b.glyph, b.dist, prenatal_pluto_anchor) * unit
                                     : b.dist / se_rim_au * r;
        return std::min(at, static_cast<double>(r));
    };
    draw_perspective_disc(
        g, p, r, with_event ? scale_guides() : std::vector<double>{0.5 / se_rim_au, 1 / se_rim_au});
    const WheelPoint centre = p.polar(0, 0);
    g.display_filled_circle(centre.x, centre.y, r * 0.012f, g.d.line_colour_inside);

    // The ways of the Sun and the Earth between the two moments.
    if (!with_event && epoch_ok && birth.jd > epoch.jd) {
        constexpr int samples = 120;
        std::map<unsigned char, std::vector<WheelPoint>> ways;
        for (int k = 0; k <= samples; ++k) {
            const Moment m = jd_moment(g, epoch.jd + (birth.jd - epoch.jd) * k / samples);
            for (const Body& b : m.bodies)
                if (b.glyph == glyph::sun || b.glyph == glyph::earth)
                    ways[b.glyph].push_back(place_in_view(p, b, radius(b)).at);
        }
        for (const auto& [code, way] : ways)
            polyline(g, way, g.glyph_colour(glyph_text(code)), solid);
        calculate_chart(s, d.working_event, true);
    }

    const float size = r * 0.0028f;
    const auto draw_moment = [&](const Moment& m, bool figure) {
        WheelPoint last{};
        bool have_last = false;
        for (const Body& b : m.bodies) {
            const Placed at = place_in_view(p, b, radius(b));
            const std::string glyph = glyph_text(b.glyph);
            const Colour colour = g.glyph_colour(glyph);
            g.display_line(at.foot.x, at.at.x, at.foot.y, at.at.y, colour, dot);
            if (figure && have_last)
                g.display_line(last.x, at.at.x, last.y, at.at.y, colour, solid);
            g.display_filled_circle(at.at.x, at.at.y, r * (figure ? 0.006f : 0.009f), colour);
            g.display_font_size(figure ? size * 0.65f : size);
            draw_turned_symbols(g, {at.at.x, at.at.y - size * 20 * (figure ? 0.6f : 0.85f)}, 0,
                                glyph, TurnedColours::glyphs, 0);
            last = at.at;
            have_last = true;
        }
        g.d.rotate_text = 0;
    };
    if (epoch_ok) draw_moment(epoch, true);
    draw_moment(birth, false);

    std::vector<std::string> legend = {"Large glyphs: Birth, " + moment_text(g, d.working_event)};
    legend.push_back(epoch_ok ? "Small glyphs joined: Epoch, " + moment_text(g, d.outer_event)
                              : "No prenatal epoch: the event has none");
    legend.push_back(with_event ? "Seen from the moving centre; the distances compressed"
                                : "The Sun and the Earth from epoch to birth; 1.25 au to the rim");
    std::vector<SideRow> rows;
    for (const Body& b : birth.bodies) {
        const Body* e = epoch_ok ? epoch.find(b.glyph) : nullptr;
        rows.push_back({b.glyph, e ? distance_text(e->dist) + "  " + format_lat_dm(e->lat) : "",
                        distance_text(b.dist) + "  " + format_lat_dm(b.lat)});
    }
    side_table(g, l, legend, "Epoch (au, lat.)", "Birth (au, lat.)", rows);
}

// --- the plan of the Solar System ---

namespace {

struct Vec {
    double x = 0, y = 0, z = 0;
};

Vec rectangular(double lon, double lat, double dist) {
    return {dist * std::cos(lat) * std::cos(lon), dist * std::cos(lat) * std::sin(lon),
            dist * std::sin(lat)};
}

Body from_vector(unsigned char glyph, const Vec& v) {
    Body b;
    b.glyph = glyph;
    b.dist = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    b.lon = std::atan2(v.y, v.x);
    b.lat = b.dist > 0 ? std::asin(v.z / b.dist) : 0;
    return b;
}

// A body as the lists hold it now, seen from the Sun or from the lemnicentric centre; the Moon
// stands beside the Earth. False when the lists have no such body.
bool place_now(const Session& s, bool lemni, unsigned char glyph, Body& out) {
    const PositionLists& p = s.engine.pos;
    const int count = lemni ? p.lemni_count : p.helio_count;
    const auto at = [&](unsigned char code, Body& b) {
        if (!lemni && code == glyph::sun) {
            b = Body{glyph::sun, 0, 0, 0};
            return true;
        }
        for (int i = 0; i < count; ++i) {
            const auto k = static_cast<std::size_t>(i);
            if ((lemni ? p.lemni_glyph[k] : p.helio_glyph[k]) != code) continue;
            if (lemni)
                b = Body{code, p.lemni_long[k], p.lemni_lat[k], p.lemni_dist[k]};
            else
                b = Body{code, p.helio_long[k], p.helio_lat[k], p.helio_dist[k]};
            return true;
        }
        return false;
    };
    if (glyph != glyph::moon) return at(glyph, out);
    Body earth;
    if (!at(glyph::earth, earth)) return false;
    const Vec e = rectangular(earth.lon, earth.lat, earth.dist);
    const Vec m = rectangular(p.geo_long[geo::moon], p.geo_lat[geo::moon], p.geo_dist[geo::moon]);
    out = from_vector(glyph::moon, {e.x + m.x, e.y + m.y, e.z + m.z});
    return true;
}

const std::vector<unsigned char>& plan_bodies() {
    static const std::vector<unsigned char> bodies = {
        glyph::mercury, glyph::venus,  glyph::earth,   glyph::mars,    glyph::ceres,
        glyph::pallas,  glyph::juno,   glyph::vesta,   glyph::jupiter, glyph::saturn,
        glyph::chiron,  glyph::uranus, glyph::neptune, glyph::pluto};
    return bodies;
}

// The band and the ring of the plan; returns the ring's radius.
float draw_plan_band(Drawing& g, const WheelLayout& l) {
    const float r_band = l.R * 0.9f;
    draw_zodiac_ring(g, l.cx, l.cy, l.R, r_band, 0);
    draw_degree_ticks(g, l.cx, l.cy, r_band, 0, true);
    const float r = r_band * 0.96f;
    g.display_circle(l.cx, l.cy, r, g.d.line_colour_inside);
    return r;
}

} // namespace

void plan_display_page(Drawing& g) {
    Session& s = g.s;
    DrawingState& d = g.d;
    ViewFor in_view(s, "Heliocentric");
    if (!has_event(g)) return;
    calculate_chart(s, d.working_event, true);
    const WheelLayout l = wheel_layout(g, "Plan of the Solar System", d.working_event);
    const float r = draw_plan_band(g, l);
    const float unit = r / static_cast<float>(ring_scale);
    const float size = r * 0.0032f;
    g.display_font_size(size);
    draw_turned_symbols(g, {l.cx, l.cy}, 0, glyph_text(glyph::sun), TurnedColours::glyphs, 0);
    std::vector<SideRow> rows;
    for (unsigned char code : plan_bodies()) {
        Body b;
        if (!place_now(s, false, code, b)) continue;
        const double radius = std::min(distance_scale(code, b.dist, prenatal_pluto_anchor) * unit,
                                       static_cast<double>(r));
        const std::string glyph = glyph_text(code);
        const Colour colour = g.glyph_colour(glyph);
        g.display_circle(l.cx, l.cy, static_cast<float>(radius), g.d.line_colour_inside);
        const WheelPoint at = wheel_point(s, l.cx, l.cy, radius, b.lon);
        g.display_filled_circle(at.x, at.y, r * 0.008f, colour);
        g.display_font_size(size);
        draw_turned_symbols(g, {at.x, at.y - size * 20 * 0.8f}, 0, glyph, TurnedColours::glyphs, 0);
        rows.push_back({code, distance_text(b.dist), format_position_dm(b.lon, s.chart.sign_form)});
    }
    g.d.rotate_text = 0;
    side_table(g, l,
               {"Seen from above, the Sun in the centre, at " + moment_text(g, d.working_event),
                "Radius: the distance from the Sun, compressed"},
               "Distance (au)", "Longitude", rows);
}

void planets_motion_page(Drawing& g) {
    Session& s = g.s;
    DrawingState& d = g.d;
    MessageSink& sink = session_sink(s);
    if (!has_event(g)) {
        sink.message(product_word, "There are no events in the selected table",
                     MessageIcon::information);
        return;
    }
    const bool lemni = s.chart.world_view == "Lemnicentric";
    const std::string view = lemni ? "Lemnicentric" : "Heliocentric";
    ViewFor in_view(s, view);
    const bool three_d = lemni && d.motion.three_d;
    calculate_chart(s, d.working_event, true);

    // The span, within the tables of the outer planets.
    double start = d.motion.start_jd, end = d.motion.end_jd;
    if (start == 0 && end == 0) {
        start = s.engine.time.jd;
        end = start + 365.25;
    }
    if (const BodyTables* tables = s.body_tables.get(); tables && tables->planets.loaded()) {
        const double first = tables->planets.first_date() + 60;
        const double last = tables->planets.last_date() - 60;
        start = std::clamp(start, first, last);
        end = std::clamp(end, first, last);
    }
    end = std::max(start, end);
    std::vector<unsigned char> bodies = d.motion.bodies;
    if (bodies.empty()) {
        bodies = {glyph::mercury, glyph::venus,  glyph::earth,   glyph::mars, glyph::jupiter,
                  glyph::saturn,  glyph::uranus, glyph::neptune, glyph::pluto};
        if (lemni) bodies.insert(bodies.begin(), glyph::sun);
    }
    const bool moon = std::find(bodies.begin(), bodies.end(), glyph::moon) != bodies.end();
    // A step of 0.4 days with the Moon, 10 without; at most 4000 steps.
    double step = moon ? 0.4 : 10;
    int steps = static_cast<int>(std::ceil((end - start) / step));
    if (steps > 4000) {
        steps = 4000;
        step = (end - start) / steps;
    }
    steps = std::max(steps, 0);

    const std::string title = "Planetary Motion - " + view + (three_d ? " in 3 Dimensions" : "");
    const WheelLayout l =
        wheel_layout(g, title, d.working_event, three_d ? perspective_height : 1.0f);
    float r = 0;
    Perspective p;
    if (three_d) {
        p = make_perspective(s, l.cx, l.cy);
        r = l.R * 0.88f;
        draw_perspective_disc(g, p, r, scale_guides());
    } else {
        r = draw_plan_band(g, l);
    }
    const float unit = r / static_cast<float>(ring_scale);
    const auto point = [&](const Body& b) {
        const double radius = std::min(distance_scale(b.glyph, b.dist, motion_pluto_anchor) * unit,
                                       static_cast<double>(r));
        if (three_d) return p.polar(radius, b.lon, b.lat);
        return wheel_point(s, l.cx, l.cy, radius * std::cos(b.lat), b.lon);
    };
    const float size = r * 0.0032f;
    if (!lemni) {
        g.display_font_size(size);
        draw_turned_symbols(g, {l.cx, l.cy}, 0, glyph_text(glyph::sun), TurnedColours::glyphs, 0);
        g.d.rotate_text = 0;
    }

    // Each body is a small disc on its way: the disc of the step before is painted over in the
    // ground and joined to the new one by a line, so that the way stays and the disc moves on.
    const Colour ground = g.colour(colour_field::chart_background);
    constexpr float disc = 15;
    std::vector<WheelPoint> last(bodies.size());
    std::vector<Body> first(bodies.size()), final(bodies.size());
    std::vector<bool> seen(bodies.size(), false);
    s.run_cancelled = 0;
    sink.progress_begin("Planetary motion", steps + 1);
    double reached = start;
    for (int i = 0; i <= steps; ++i) {
        const double jd = i == steps ? end : start + step * i;
        calculate_bodies_at(s, jd);
        reached = jd;
        for (std::size_t k = 0; k < bodies.size(); ++k) {
            Body b;
            if (!place_now(s, lemni, bodies[k], b)) continue;
            if (!lemni && bodies[k] == glyph::sun) continue;
            const WheelPoint at = point(b);
            const Colour colour = g.glyph_colour(glyph_text(bodies[k]));
            if (seen[k]) {
                g.display_filled_circle(last[k].x, last[k].y, disc, ground);
                g.display_line(last[k].x, at.x, last[k].y, at.y, colour, solid);
            } else {
                first[k] = b;
                g.display_circle(at.x, at.y, r * 0.01f, colour);
            }
            g.display_filled_circle(at.x, at.y, disc, colour);
            last[k] = at;
            final[k] = b;
            seen[k] = true;
        }
        if (sink.progress(i + 1)) {
            s.run_cancelled = 1;
            break;
        }
    }
    sink.progress_end();

    // The glyphs where the run ended.
    std::vector<SideRow> rows;
    g.display_font_size(size);
    for (std::size_t k = 0; k < bodies.size(); ++k) {
        if (!seen[k]) continue;
        const std::string glyph = glyph_text(bodies[k]);
        g.display_filled_circle(last[k].x, last[k].y, r * 0.007f, g.glyph_colour(glyph));
        draw_turned_symbols(g, {last[k].x, last[k].y - size * 20 * 0.8f}, 0, glyph,
                            TurnedColours::glyphs, 0);
        rows.push_back({bodies[k], distance_text(first[k].dist), distance_text(final[k].dist)});
    }
    g.d.rotate_text = 0;
    std::vector<std::string> legend = {
        "From " + date_text(g, start, d.working_event) + " to " +
            date_text(g, end, d.working_event),
        s.run_cancelled ? "Stopped at " + date_text(g, reached, d.working_event)
                        : "Circles: where each body began; glyphs: where it ended"};
    char line[96];
    std::snprintf(line, sizeof line, "A step of %.1f days, %d steps", step, steps);
    legend.push_back(line);
    side_table(g, l, legend, "Start (au)", "End (au)", rows);
}

} // namespace celestark::drawing
