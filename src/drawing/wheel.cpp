#include "drawing/wheel.h"

#include "predict/eclipses.h"
#include "session/colour_fields.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/positions.h"
#include "session/session.h"
#include "session/text.h"

#include <algorithm>
#include <cmath>

namespace celestark::drawing {

namespace {

constexpr double one_degree = deg_to_rad;
constexpr double one_radian = rad_to_deg;

// A slot number brought into 1 to 360: 361 is 1, 0 is 360.
int slot_of(long long n) {
    long long m = n % 360;
    if (m <= 0) m += 360;
    return static_cast<int>(m);
}

double degrees_0_360(double degrees) {
    double d = std::fmod(degrees, 360.0);
    return d < 0 ? d + 360.0 : d;
}

bool is_free(const WheelState& w, int slot) {
    return w.slot_glyph[slot].empty();
}
bool is_cusp(const WheelState& w, int slot) {
    return w.slot_glyph[slot] == " ";
}
bool is_body(const WheelState& w, int slot) {
    return !is_free(w, slot) && !is_cusp(w, slot);
}

void move_slot(WheelState& w, int from, int to) {
    w.slot_glyph[to] = std::move(w.slot_glyph[from]);
    w.slot_long[to] = w.slot_long[from];
    w.slot_glyph[from].clear();
    w.slot_long[from] = 0;
}

double direction_of(const Session& s) {
    return s.chart.zodiac_direction < 0 ? -1.0 : 1.0;
}

// Whether an angle of the wheel (degrees) lies on its right half, where text reads outward.
bool right_half(double degrees) {
    const double a = degrees_0_360(degrees);
    return a < 91 || a > 269;
}

} // namespace

WheelPoint wheel_point(const Session& s, float cx, float cy, double r, double radians) {
    return {static_cast<float>(cx + r * std::cos(radians) * direction_of(s)),
            static_cast<float>(cy - r * std::sin(radians))};
}

double house_rotation(const Session& s) {
    if (s.chart.house_system == "None") return 0;
    return pi - s.engine.ascendant;
}

void set_chart_detail(Drawing& g, int cap, int aspect_choice) {
    WheelState& w = g.d.wheel;
    w.plan_degs_level = std::min<int>(g.s.chart.display_plan_degs, cap);
    w.agram_level = aspect_choice >= 0 ? aspect_choice : g.s.chart.display_agram;
}

void clear_plot_list(WheelState& w) {
    for (std::string& t : w.plot_glyph) t.clear();
    w.plot_long.fill(0);
    w.plot_count = 0;
}

void add_plot_entry(WheelState& w, std::string glyph, double wheel_degrees) {
    if (w.plot_count >= plot_capacity) return;
    ++w.plot_count;
    w.plot_glyph[static_cast<std::size_t>(w.plot_count)] = std::move(glyph);
    w.plot_long[static_cast<std::size_t>(w.plot_count)] =
        static_cast<float>(degrees_0_360(wheel_degrees));
}

namespace {

bool angles_only(const Session& s) {
    return s.chart.house_system == "Asc. MC only";
}

} // namespace

void fill_house_slots(Drawing& g, double rotation) {
    WheelState& w = g.d.wheel;
    if (g.s.chart.house_system == "None") return;
    // The cusps stand at entries 1 to 12 whatever comes after them; with "Asc. MC only" only
    // the four angles are barriers and the other entries stay empty.
    const auto& cusps = g.s.engine.house_cusps;
    for (int i = 1; i <= 12; ++i) {
        const bool angle = i == 1 || i == 4 || i == 7 || i == 10;
        w.plot_glyph[static_cast<std::size_t>(i)] =
            angles_only(g.s) && !angle ? std::string() : std::string(" ");
        // Into 0 to 360 degrees, so that a cusp and the bodies beside it compare in order.
        w.plot_long[static_cast<std::size_t>(i)] = static_cast<float>(
            degrees_0_360((cusps[static_cast<std::size_t>(i)] + rotation) * one_radian));
    }
    w.plot_count = std::max(w.plot_count, 12);
}

namespace {

void fill_list(Drawing& g, double rotation, const double* longitudes, const unsigned char* glyphs,
               int count) {
    WheelState& w = g.d.wheel;
    if (w.plot_count < 12) w.plot_count = 12; // entries 13 up
    for (int i = 0; i < count; ++i) {
        if (glyphs[i] == 0) continue;
        add_plot_entry(w, std::string(1, static_cast<char>(glyphs[i])),
                       (longitudes[i] + rotation) * one_radian);
    }
}

} // namespace

void fill_body_slots(Drawing& g, double rotation, bool with_angles) {
    const Session& s = g.s;
    const PositionLists& p = s.engine.pos;
    const std::string& view = s.chart.world_view;
    if (view == "Heliocentric") {
        fill_heliocentric_slots(g, rotation);
    } else if (view == "Lemnicentric") {
        fill_lemnicentric_slots(g, rotation);
    } else {
        fill_list(g, rotation, p.geo_long.data(), p.geo_glyph.data(), p.geo_count);
    }
    if (!with_angles || s.chart.house_system == "None") return;
    const EngineState& e = s.engine;
    auto on_a_cusp = [&](double a) {
        for (int i = 1; i <= 12; ++i) {
            const double diff =
                std::remainder(a - e.house_cusps[static_cast<std::size_t>(i)], two_pi);
            if (std::fabs(diff) < 0.001) return true;
        }
        return false;
    };
    struct Label {
        const char* text;
        double at;
        bool shown;
    };
    const Label labels[] = {
        {"A", e.ascendant, true},
        {"D", e.ascendant + pi, !s.options.exclude_ascendant},
        {"M", e.midheaven, !s.options.exclude_midheaven},
        {"I", e.midheaven + pi, !s.options.exclude_midheaven},
    };
    for (const Label& l : labels)
        if (l.shown && !on_a_cusp(l.at))
            add_plot_entry(g.d.wheel, l.text, (l.at + rotation) * one_radian);
}

void fill_heliocentric_slots(Drawing& g, double rotation) {
    const PositionLists& p = g.s.engine.pos;
    fill_list(g, rotation, p.helio_long.data(), p.helio_glyph.data(), p.helio_count);
}

void fill_lemnicentric_slots(Drawing& g, double rotation) {
    const PositionLists& p = g.s.engine.pos;
    fill_list(g, rotation, p.lemni_long.data(), p.lemni_glyph.data(), p.lemni_count);
}

// --- placing ---

namespace {

// The entry goes in at slot p, before the occupant there. The run from p to the first free slot
// moves up one slot; the first copy carries the free slot's emptiness one further, so that an
// entry standing just beyond the run drops out of the ring, and a cusp within the run moves
// with it. Both effects belong to the program's placing and are kept.
void insert_at(Session& s, WheelState& w, int p, const std::string& glyph, float longitude,
               bool strip) {
    int f = p, n = 0;
    bool up_blocked = false;
    while (!is_free(w, f)) {
        if (is_cusp(w, f)) up_blocked = true;
        f = slot_of(f + 1);
        ++n;
    }
    // The walk meant to count downward starts at the same free slot and ends at once.
    const int down_count = 0;
    const bool down_blocked = false;
    int direction = 0;
    if (down_count < n) direction = -1;
    if (up_blocked) direction = -1;
    if (down_blocked) direction = 1;
    if (up_blocked && down_blocked) {
        session_fatal_box(
            s, strip ? "Fatal Error in PLOT PLANETS VERTICAL" : "Fatal Error in PLOT PLANETS",
            std::string(strip ? "CK64-" : "CK63-") + fatal_tail);
        return;
    }
    (void)direction; // the shift runs upward whatever it says
    for (int k = n; k >= 0; --k) {
        const int to = slot_of(p + k + 1), from = slot_of(p + k);
        w.slot_glyph[to] = w.slot_glyph[from];
        w.slot_long[to] = w.slot_long[from];
    }
    w.slot_glyph[p] = glyph;
    w.slot_long[p] = longitude;
}

} // namespace

void place_on_ring(Drawing& g, bool strip) {
    WheelState& w = g.d.wheel;
    for (std::string& t : w.slot_glyph) t.clear();
    w.slot_long.fill(0);
    for (int i = 1; i <= w.plot_count; ++i) {
        const std::string& glyph = w.plot_glyph[static_cast<std::size_t>(i)];
        if (glyph.empty()) continue;
        float longitude = w.plot_long[static_cast<std::size_t>(i)];
        const int s = slot_of(static_cast<long long>(std::floor(longitude + 0.5)));
        // An entry at the seam that rounds past 360 keeps its order with its neighbours.
        if (longitude < 2 && s > 358) longitude += 360;
        if (longitude > 357 && s < 3) longitude -= 360;
        int p = s;
        for (int guard = 0; guard < 720; ++guard) {
            if (is_free(w, p)) {
                w.slot_glyph[p] = glyph;
                w.slot_long[p] = longitude;
                break;
            }
            if (longitude >= w.slot_long[p]) {
                const int q = slot_of(p + 1);
                if (is_free(w, q) || longitude >= w.slot_long[q]) {
                    p = q;
                    continue;
                }
                insert_at(g.s, w, p, glyph, longitude, strip); // a greater occupant follows
                break;
            }
            const int q = slot_of(p - 1);
            if (!is_free(w, q) && w.slot_long[q] <= longitude) {
                insert_at(g.s, w, q, glyph, longitude, strip);
                break;
            }
            p = q;
        }
    }
}

void ring_separations(int plan_degs_level, float font_size, float radius, int& sep, int& cusp_sep) {
    const double font_height = font_size * 20.0;
    const double a = std::atan(font_height / radius / 2) * one_radian;
    sep = static_cast<int>(std::nearbyint(a + 0.5));
    cusp_sep = plan_degs_level >= 1 ? sep : static_cast<int>(std::trunc(sep / 1.8 + 0.5));
}

namespace {

// A crowded house: the body nearest a cusp may cross it into the next house, if the slot beside
// the cusp is free.
void sector_relief(WheelState& w, int sep, int cusp_sep) {
    for (int c = 1; c <= 360; ++c) {
        if (!is_cusp(w, c)) continue;
        // Forward to the next cusp.
        int slots = 0, bodies = 0, first = 0;
        for (int k = 1; k < 360; ++k) {
            const int t = slot_of(c + k);
            if (is_cusp(w, t)) break;
            ++slots;
            if (is_body(w, t)) {
                if (bodies == 0) first = t;
                ++bodies;
            }
        }
        const int behind = slot_of(c - 1);
        if (bodies > 0 && slots < 2 * cusp_sep - 1 + bodies * sep && is_free(w, behind))
            move_slot(w, first, behind);
        // Backward to the previous cusp.
        slots = bodies = first = 0;
        for (int k = 1; k < 360; ++k) {
            const int t = slot_of(c - k);
            if (is_cusp(w, t)) break;
            ++slots;
            if (is_body(w, t)) {
                if (bodies == 0) first = t;
                ++bodies;
            }
        }
        const int ahead = slot_of(c + 1);
        if (bodies > 0 && slots < 2 * cusp_sep + (bodies - 1) * sep && is_free(w, ahead))
            move_slot(w, first, ahead);
    }
}

} // namespace

int spread_ring(WheelState& w, int sep, int cusp_sep) {
    int d = 1, compact = 0, pass = 0;
    for (; pass < 101; ++pass) {
        d = -d;
        if (pass >= 16 && pass <= 25) d = 1;
        if (pass >= 34 && pass <= 47) d = -1;
        bool unsettled = false;
        for (int i = 1; i <= 360; ++i) {
            int s = slot_of(static_cast<long long>(i) * d);
            if (d == -1) s = slot_of(s + 1);
            if (is_free(w, s)) continue;
            const bool body_at_s = is_body(w, s);
            const int need = body_at_s ? sep : cusp_sep;
            for (int k = 1; k <= need; ++k) {
                const int t = slot_of(s + k * d);
                if (is_free(w, t)) continue;
                if (is_cusp(w, t)) {
                    if (body_at_s && k <= cusp_sep) unsettled = true;
                    continue;
                }
                unsettled = true;
                const int u = slot_of(t + d);
                if (is_free(w, u)) {
                    move_slot(w, t, u);
                    break;
                }
            }
        }
        ++compact;
        if (compact > 30) {
            sector_relief(w, sep, cusp_sep);
            compact = 3;
        }
        if (!unsettled) return pass + 1;
    }
    return pass;
}

// --- drawing ---

void draw_turned_symbols(Drawing& g, WheelPoint centre, float angle_degrees, std::string_view text,
                         TurnedColours colours, Colour colour) {
    // Where the turned box's middle lands for a rotation point p under the rotated-text rule:
    // p minus the rule's offset plus the turned half-box. Solved for p.
    float w = 0, h = 0;
    g.display_symbol_w_h(text, 1.0f, w, h);
    const double em = g.d.current_font_size * 20.0;
    const double a = angle_degrees * one_degree, ca = std::cos(a), sa = std::sin(a);
    // The middle of the text's ink: half its width along, and the symbols' middle down.
    const double mx = w / 2.0, my = 0.45 * em;
    // The box's middle, from its top left, turned counterclockwise as seen (y downward).
    const double bx = mx * ca + my * sa, by = -mx * sa + my * ca;
    // The rule's own offset, with y upward: (d cos45 / 2, -d sin45 / 2) turned by the angle.
    const double dx = std::trunc(em * std::cos(45 * one_degree) * 0.5);
    const double dy = std::trunc(-em * std::sin(45 * one_degree) * 0.5);
    const double rx = std::floor(dx * ca - dy * sa + 0.5);
    const double ry = std::floor(dx * sa + dy * ca + 0.5);
    // top left = (p.x - rx, p.y + ry); middle = top left + (bx, by).
    g.d.rotate_x = static_cast<float>(centre.x - bx + rx);
    g.d.rotate_y = static_cast<float>(centre.y - by - ry);
    long long turned = std::lround(angle_degrees) % 360;
    if (turned < 0) turned += 360;
    g.d.rotate_angle = static_cast<std::int16_t>(turned);
    const std::int16_t was = g.d.rotate_text;
    g.d.rotate_text = 1;
    switch (colours) {
    case TurnedColours::glyphs:
        g.display_glyph_inside(g.d.rotate_x, g.d.rotate_y, text);
        break;
    case TurnedColours::band:
        g.display_band_glyph(g.d.rotate_x, g.d.rotate_y, text);
        break;
    case TurnedColours::single:
        g.display_symbol_inside(g.d.rotate_x, g.d.rotate_y, text, colour);
        break;
    }
    g.d.rotate_text = was;
}

namespace {

// The text of a position in the sign: whole degrees at level 1, degrees, sign and minutes at
// level 2.
std::string position_text(const Session& s, double degrees, int level) {
    const double radians = degrees_0_360(degrees) * one_degree;
    return level >= 2 ? format_position_dm(radians, s.chart.sign_form)
                      : format_position_deg(static_cast<float>(radians), s.chart.sign_form);
}

// Draws a position text turned along a radius, its middle at `centre`.
void draw_position_text(Drawing& g, WheelPoint centre, float angle_degrees,
                        const std::string& text) {
    const std::string trimmed = trim(text);
    if (g.d.page_options.position_sign_only)
        draw_turned_symbols(g, centre, angle_degrees, trimmed, TurnedColours::glyphs, 0);
    else
        draw_turned_symbols(g, centre, angle_degrees, trimmed, TurnedColours::single,
                            g.text_colour());
}

} // namespace

void plot_planets(Drawing& g, float cx, float cy, float radius, float font_size,
                  float rotation_degrees, int direction) {
    WheelState& w = g.d.wheel;
    place_on_ring(g);
    int sep = 0, cusp_sep = 0;
    ring_separations(w.plan_degs_level, font_size, radius, sep, cusp_sep);
    spread_ring(w, sep, cusp_sep);

    const double F = font_size * 20.0, d = direction;
    // A glyph never wider than the room its neighbours leave: where the font would make the ink
    // of a glyph wider than 0.9 of the chord to the nearest glyph, that glyph is set smaller, so
    // that spread glyphs never touch; a glyph with room stands at its full size.
    const double glyph_radius = radius - F * d;
    auto glyph_size_at = [&](int slot) {
        int nearest = 180;
        for (int k = 1; k < nearest; ++k)
            if (is_body(w, slot_of(slot + k)) || is_body(w, slot_of(slot - k))) nearest = k;
        const double chord = 2 * std::fabs(glyph_radius) * std::sin(nearest * one_degree / 2);
        // Across the circle a glyph takes its height turned along a radius, and as much as its
        // width when it stands upright.
        float w1 = 0, h1 = 0;
        g.display_font_size(1);
        g.display_symbol_w_h(w.slot_glyph[slot], 1.0f, w1, h1);
        const double across = w.plan_degs_level <= 0 ? std::max(0.8, w1 / 20.0) : 0.8;
        return static_cast<float>(std::min(font_size * 0.9, chord * 0.9 / (across * 20)));
    };
    for (int i = 1; i <= 360; ++i) {
        const std::string& glyph = w.slot_glyph[i];
        if (glyph.empty() || glyph == " ") continue;
        const bool single = glyph.size() == 1;
        const double true_deg = w.slot_long[i];
        const bool moved = slot_of(static_cast<long long>(std::floor(true_deg + 0.5))) != i;
        const double slot_deg = moved ? i : true_deg;
        const double slot_rad = slot_deg * one_degree;

        g.display_font_size(single ? glyph_size_at(i) : font_size * 0.6f);
        const Colour colour = g.glyph_colour(glyph);
        // The tick from the true point to the glyph's slot.
        const WheelPoint from = wheel_point(g.s, cx, cy, radius, true_deg * one_degree);
        const WheelPoint to = wheel_point(g.s, cx, cy, radius - F / 2 * d, slot_rad);
        g.display_line(from.x, to.x, from.y, to.y, colour, solid);

        float gw = 0, gh = 0;
        g.display_symbol_w_h(glyph, 0.8f, gw, gh);
        if (w.plan_degs_level <= 0) {
            // Glyphs only: upright, just inside the tick.
            const double r = radius - (0.55 * F + gh / 2) * d;
            draw_turned_symbols(g, wheel_point(g.s, cx, cy, r, slot_rad), 0, glyph,
                                single ? TurnedColours::glyphs : TurnedColours::single, colour);
            continue;
        }
        // With degrees: the glyph and its position read along the radius, outward on the
        // right half of the wheel and inward on the left.
        const bool right = right_half(slot_deg);
        const double screen_deg = direction_of(g.s) > 0 ? slot_deg : 180 - slot_deg;
        const float turn =
            static_cast<float>(right_half(screen_deg) ? screen_deg : screen_deg + 180);
        (void)right;
        const double glyph_r = radius - (0.55 * F + gw / 2) * d;
        draw_turned_symbols(g, wheel_point(g.s, cx, cy, glyph_r, slot_rad), turn, glyph,
                            single ? TurnedColours::glyphs : TurnedColours::single, colour);
        const std::string text = position_text(g.s, true_deg - rotation_degrees, w.plan_degs_level);
        g.display_font_size(font_size * 0.6f);
        float tw = 0, th = 0;
        g.display_symbol_w_h(trim(text), 1.0f, tw, th);
        const double text_r = glyph_r - (gw / 2 + 0.2 * F + tw / 2) * d;
        draw_position_text(g, wheel_point(g.s, cx, cy, text_r, slot_rad), turn, text);
    }
    g.d.rotate_text = 0;
}

void plot_planets_vertical(Drawing& g, float x, float y_top, float y_bottom, float font_size) {
    WheelState& w = g.d.wheel;
    place_on_ring(g, true);
    // The strip's separations follow the font against the strip's length per degree.
    const double per_degree = (y_bottom - y_top) / 360.0;
    const double F = font_size * 20.0;
    const int sep = std::max(1, static_cast<int>(std::ceil(F * 0.9 / per_degree)));
    spread_ring(w, sep, sep);
    g.display_font_size(font_size * 0.9f);
    for (int i = 1; i <= 360; ++i) {
        const std::string& glyph = w.slot_glyph[i];
        if (glyph.empty() || glyph == " ") continue;
        double true_y = y_top + degrees_0_360(w.slot_long[i]) * per_degree;
        const double slot_y = y_top + i * per_degree;
        // At the seam a point at 0 degrees may stand in the last slot (and one near 360 in the
        // first): its tick goes to the nearer end of the strip.
        if (true_y - slot_y > 180 * per_degree) true_y -= 360 * per_degree;
        if (slot_y - true_y > 180 * per_degree) true_y += 360 * per_degree;
        const Colour colour = g.glyph_colour(glyph);
        g.display_line(x, x + static_cast<float>(F * 0.4), static_cast<float>(true_y),
                       static_cast<float>(slot_y), colour, solid);
        float gw = 0, gh = 0;
        g.display_symbol_w_h(glyph, 0.8f, gw, gh);
        g.display_glyph_inside(x + static_cast<float>(F * 0.5),
                               static_cast<float>(slot_y - gh * 0.55), glyph);
    }
}

// --- the band ---

namespace {

// The boundaries of the zodiac in force, 13 of them, degrees.
std::array<double, 13> boundaries(const Session& s) {
    std::array<double, 13> b{};
    for (std::size_t i = 0; i < 12; ++i) b[i] = s.option_sets.zodiac.constellation_start[i];
    b[12] = b[0] + 360;
    return b;
}

double sector_angle(const Session& s, double boundary_degrees, double rotation) {
    const double b = boundary_degrees * one_degree;
    return direction_of(s) > 0 ? two_pi - b - rotation : b + rotation + pi;
}

Colour mean_colour(Colour a, Colour b) {
    Colour out = 0;
    for (int shift = 0; shift <= 16; shift += 8)
        out |= ((((a >> shift) & 0xFF) + ((b >> shift) & 0xFF)) / 2) << shift;
    return out;
}

Colour blend(Colour a, Colour b, double t) {
    Colour out = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const double ca = (a >> shift) & 0xFF, cb = (b >> shift) & 0xFF;
        out |= static_cast<Colour>(std::lround(ca + (cb - ca) * t)) << shift;
    }
    return out;
}

} // namespace

void draw_zodiac_ring(Drawing& g, float cx, float cy, float r_outer, float r_inner,
                      double rotation) {
    const Session& s = g.s;
    const auto b = boundaries(s);
    const bool mono = g.monochrome();
    if (!mono) {
        const bool flow = g.colour(colour_field::flow_colours) != 0;
        for (int i = 0; i < 12; ++i) {
            const Colour c = g.colour(colour_field::aries_b + i);
            const double start = sector_angle(s, b[static_cast<std::size_t>(i)], rotation);
            const double end = sector_angle(s, b[static_cast<std::size_t>(i) + 1], rotation);
            if (!flow) {
                g.display_arc(cx, cy, r_outer, static_cast<float>(start), static_cast<float>(end),
                              c);
                continue;
            }
            // A gradient of 40 slices: from the mean with the sign before to this sign's colour,
            // then on to the mean with the sign after; each slice overlaps the next.
            const Colour before = mean_colour(g.colour(colour_field::aries_b + (i + 11) % 12), c);
            const Colour after = mean_colour(c, g.colour(colour_field::aries_b + (i + 1) % 12));
            const double span = end - start, half = span / 2;
            for (int part = 0; part < 2; ++part) {
                const double half_start = start + part * half;
                for (int k = 1; k <= 20; ++k) {
                    const Colour slice = part == 0 ? blend(before, c, (k - 1) / 19.0)
                                                   : blend(c, after, (k - 1) / 19.0);
                    const double a = half_start + half * (k - 1) / 20.0;
                    const double e = half_start + half * 1.1 * k / 20.0;
                    g.display_arc(cx, cy, r_outer, static_cast<float>(a),
                                  static_cast<float>(std::min(e, start + span)), slice);
                }
            }
        }
    }
    g.display_filled_circle(cx, cy, r_inner, g.colour(colour_field::chart_background));

    // The outer form: the ring's centre line, the sign glyphs turned on the band.
    const float r_mid = r_outer - (r_outer - r_inner) / 2;
    g.display_line_width(2.0f);
    g.display_circle(cx, cy, r_outer, g.d.line_colour_inside);
    g.display_circle(cx, cy, r_mid, g.d.line_colour_inside);
    g.display_line_width(1.0f);
    g.display_font_size((r_outer - r_inner) / 45);
    const bool spokes = g.colour(colour_field::constellation_lines) != 0 || mono;
    for (int i = 0; i < 12; ++i) {
        const double bi = b[static_cast<std::size_t>(i)], bn = b[static_cast<std::size_t>(i) + 1];
        if (spokes) {
            const double a = bi * one_degree + rotation;
            g.display_radial_line(cx, cy, r_inner, r_outer, static_cast<float>(a),
                                  static_cast<float>(a), g.d.line_colour_inside);
        }
        const double mid = bi + (bn - bi) / 2;
        const double a = mid * one_degree + rotation;
        // The glyph stands in the outer half of the band, its top outward.
        const double screen_deg = (direction_of(s) > 0 ? a * one_radian : 180 - a * one_radian);
        const float turn = static_cast<float>(degrees_0_360(screen_deg - 90));
        const std::string glyph(1, static_cast<char>(sign_glyphs[static_cast<std::size_t>(i)]));
        draw_turned_symbols(g, wheel_point(s, cx, cy, (r_mid + r_outer) / 2.0, a), turn, glyph,
                            TurnedColours::band, 0);
    }
}

void draw_degree_ticks(Drawing& g, float cx, float cy, float r, double rotation, bool flag) {
    for (int i = 0; i < 360; ++i) {
        const double a = i * one_degree + rotation;
        const bool fifth = i % 5 == 0;
        g.display_line_width(flag && i % 30 == 0 ? 2.0f : 1.0f);
        g.display_radial_line(cx, cy, r, static_cast<float>(r * (fifth ? 1.035 : 1.02)),
                              static_cast<float>(a), static_cast<float>(a), g.d.line_colour_inside);
    }
    g.display_line_width(1.0f);
}

void draw_eclipse_marks(Drawing& g, float cx, float cy, float r0, double rotation, bool outside) {
    const ChartEclipses last = eclipses_before(g.s, g.s.engine.event_jd);
    const auto mark = [&](const EclipseRow& row, double lon, int inside_field, int outside_field) {
        if (row.eclipse.kind.empty()) return;
        const WheelPoint p = wheel_point(g.s, cx, cy, r0 * 1.02, lon + rotation);
        const float size = r0 * 0.017f;
        g.display_filled_circle(p.x, p.y, size, g.colour(outside ? outside_field : inside_field));
        g.display_circle(p.x, p.y, size, g.d.line_colour_inside);
    };
    mark(last.solar, last.solar.sun, colour_field::Sun_eclipse, colour_field::sun_eclipse_o);
    mark(last.lunar, last.lunar.moon, colour_field::Moon_Eclipse, colour_field::moon_eclipse_o);
}

// --- houses ---

void draw_house_lines(Drawing& g, float cx, float cy, float r0, float r_inner, double rotation,
                      float font_size, int flag) {
    const Session& s = g.s;
    if (s.chart.house_system == "None") return;
    const bool only_angles = angles_only(s);
    if (flag == 0) {
        g.display_filled_circle(cx, cy, r_inner, g.colour(colour_field::inside_background));
        g.display_circle(cx, cy, r_inner, g.d.line_colour_inside);
    }
    const auto& cusps = s.engine.house_cusps;
    const double F = font_size * 20.0;
    const int level = g.d.wheel.plan_degs_level;
    for (int i = 1; i <= 12; ++i) {
        const bool angle = i == 1 || i == 4 || i == 7 || i == 10;
        if (only_angles && !angle) continue;
        g.display_line_width(angle && !only_angles ? 2.0f : 1.0f);
        const double cusp = cusps[static_cast<std::size_t>(i)];
        const auto a = static_cast<float>(cusp + rotation);
        if (level <= 0) {
            g.display_radial_line(cx, cy, r_inner, r0, a, a, g.d.line_colour_inside);
            continue;
        }
        g.display_radial_line(cx, cy, r_inner, static_cast<float>(r0 - 3.5 * F), a, a,
                              g.d.line_colour_inside);
        g.display_radial_line(cx, cy, static_cast<float>(r0 - 1.3 * F), r0, a, a,
                              g.d.line_colour_inside);
        // The cusp's position in the sign in the gap of the spoke, read along it.
        g.display_font_size(font_size * 0.6f);
        const std::string text = trim(position_text(s, cusp * one_radian, level));
        const double deg = a * one_radian;
        const double screen_deg = direction_of(s) > 0 ? deg : 180 - deg;
        const float turn =
            static_cast<float>(right_half(screen_deg) ? screen_deg : screen_deg + 180);
        const WheelPoint at = wheel_point(s, cx, cy, r0 - 2.4 * F, a);
        draw_position_text(g, at, turn, text);
    }
    g.display_line_width(1.0f);
    if (only_angles) return;
    // The house numbers, halfway to the next cusp.
    g.display_font_size(font_size * 0.5f);
    for (int i = 1; i <= 12; ++i) {
        const double here = cusps[static_cast<std::size_t>(i)];
        const double next = cusps[static_cast<std::size_t>(i % 12 + 1)];
        double span = std::fmod(next - here, two_pi);
        if (span < 0) span += two_pi;
        const double a = here + span / 2 + rotation;
        const std::string number = std::to_string(i);
        float w = 0, h = 0;
        g.display_text_w_h(number, 1.0f, w, h);
        const WheelPoint at = wheel_point(s, cx, cy, r_inner * 1.07 + h / 2, a);
        g.display_text_inside(at.x - w / 2, at.y - h / 2, number);
    }
}

// --- aspects ---

void draw_aspect_lines(Drawing& g, const AspectMatrix& m, double rotation, float cx, float cy,
                       float r, float font_size, bool flag, int first, int last) {
    const double F = font_size * 20.0;
    g.display_font_size(font_size);
    const std::int16_t was = g.d.rotate_text;
    g.d.rotate_text = 0;
    for (int i = std::max(1, first); i <= std::min(last, m.rows); ++i) {
        for (int j = flag ? 1 : i + 1; j <= m.columns; ++j) {
            // In a cross matrix a body meets its own place in the other chart.
            if ((!flag && i == j) || !m.in_aspect(i, j)) continue;
            const std::string& glyph = m.mark(i, j, 2);
            if (glyph.empty()) continue;
            const double li = m.cell(i, 0) * one_degree + rotation;
            const double lj = m.cell(0, j) * one_degree + rotation;
            float gw = 0, gh = 0;
            g.display_symbol_w_h(glyph, 0.8f, gw, gh);
            if (static_cast<unsigned char>(glyph[0]) == aspect_glyphs[0]) {
                // A conjunction: its glyph inside the circle between the two points.
                const double mean = li + std::remainder(lj - li, two_pi) / 2;
                const WheelPoint at = wheel_point(g.s, cx, cy, r * 0.8, mean);
                g.display_glyph_inside(at.x - gw / 2, at.y - gh * 0.55f, glyph);
                continue;
            }
            const WheelPoint a = wheel_point(g.s, cx, cy, r, li);
            const WheelPoint b = wheel_point(g.s, cx, cy, r, lj);
            const double lx = a.x - b.x, ly = a.y - b.y;
            const double length = std::hypot(lx, ly);
            if (length <= 0) continue;
            const double ux = lx / length, uy = ly / length;
            const double mx = (a.x + b.x) / 2, my = (a.y + b.y) / 2;
            g.display_glyph_inside(static_cast<float>(mx - gw / 2),
                                   static_cast<float>(my - gh * 0.55), glyph);
            const Colour c = g.d.current_colour;
            const double piece = std::max(0.0, (length - F) / 2);
            const double ax2 = a.x - ux * piece, ay2 = a.y - uy * piece;
            const double bx2 = b.x + ux * piece, by2 = b.y + uy * piece;
            g.display_line(a.x, static_cast<float>(ax2), a.y, static_cast<float>(ay2), c, solid);
            g.display_line(b.x, static_cast<float>(bx2), b.y, static_cast<float>(by2), c, solid);
        }
    }
    g.d.rotate_text = was;
}

} // namespace celestark::drawing
