#pragma once
// The wheel: the zodiac band, the house lines, every body as a glyph near its true longitude with
// a tick to the true point, and the aspect lines in the centre. Bodies that fall close together
// are spread on a ring of 360 one-degree slots, with the house cusps as barriers that never move,
// in up to 101 passes of alternating direction.
#include "drawing/display.h"

#include <string>

namespace celestark {
struct AspectMatrix;
}

namespace celestark::drawing {

// Radians added to each longitude so that the Ascendant lies at the left of the wheel: pi minus
// the Ascendant, or 0 without houses.
double house_rotation(const Session& s);

// plan_degs_level: the option `display_plan_degs`, no more than `cap`; agram_level: the option
// `display_agram`, or `aspect_choice` when that is 0 or more.
void set_chart_detail(Drawing& g, int cap, int aspect_choice);

// The plot list: entries from 1; a blank " " marks a house cusp.
void clear_plot_list(WheelState& w);
void add_plot_entry(WheelState& w, std::string glyph, double wheel_degrees);
void fill_house_slots(Drawing& g, double rotation);
// The bodies of the world view in force into the list, and with `with_angles` the labels "A",
// "D", "M", "I" of the angles that no cusp stands on.
void fill_body_slots(Drawing& g, double rotation, bool with_angles);
void fill_heliocentric_slots(Drawing& g, double rotation);
void fill_lemnicentric_slots(Drawing& g, double rotation);

// The ring: placing (first step) and spreading (second step). Exposed for the tests. `strip`:
// the placing of plot_planets_vertical, whose guard is CK64.
void place_on_ring(Drawing& g, bool strip = false);
// The separations of glyphs and cusps, whole degrees, for a font size and a radius.
void ring_separations(int plan_degs_level, float font_size, float radius, int& sep, int& cusp_sep);
// Spreads the ring; returns the passes run (101 when it did not settle).
int spread_ring(WheelState& w, int sep, int cusp_sep);

// Places and draws the whole plot list on a ring of `radius`; `direction` 1 draws inward, -1
// outward (the outer ring of a double chart).
void plot_planets(Drawing& g, float cx, float cy, float radius, float font_size,
                  float rotation_degrees, int direction);
// The same placing on a straight strip from y_top (0 degrees) to y_bottom (360 degrees).
void plot_planets_vertical(Drawing& g, float x, float y_top, float y_bottom, float font_size);

void draw_zodiac_ring(Drawing& g, float cx, float cy, float r_outer, float r_inner,
                      double rotation);
void draw_degree_ticks(Drawing& g, float cx, float cy, float r, double rotation, bool flag);
void draw_house_lines(Drawing& g, float cx, float cy, float r0, float r_inner, double rotation,
                      float font_size, int flag);
// The marks of the last solar and lunar eclipse before the chart's moment, on the ticks of the
// ring r0; `outside` takes the colours of the outer chart.
void draw_eclipse_marks(Drawing& g, float cx, float cy, float r0, double rotation, bool outside);
// Lines between aspected points of the chart's aspect matrix, rows first..last (from 1).
void draw_aspect_lines(Drawing& g, const AspectMatrix& m, double rotation, float cx, float cy,
                       float r, float font_size, bool flag, int first, int last);

// A point of the wheel: x carries the zodiac direction, y grows downward.
struct WheelPoint {
    float x = 0, y = 0;
};
WheelPoint wheel_point(const Session& s, float cx, float cy, double r, double radians);

// Draws a symbol text turned by `angle_degrees` (counterclockwise as seen) with the middle of its
// ink on `centre`, through the rotated-text rule of the primitives; in the glyphs' own colours,
// the band's, or one colour.
enum class TurnedColours { glyphs, band, single };
void draw_turned_symbols(Drawing& g, WheelPoint centre, float angle_degrees, std::string_view text,
                         TurnedColours colours, Colour colour);

} // namespace celestark::drawing
