#pragma once
// The prenatal pages: what lies between the prenatal epoch and birth, drawn for the birth in the
// working slot and its epoch in the outer slot. Two wheels put the planets at their distance or
// latitude from the centre for both moments on one picture; three landscape pages unroll the
// months between them into strips against a scale of life years; the lemnicentric distances are
// drawn flat and in perspective; and the plan of the Solar System shows the planets from above,
// also moving over a span of time.
#include "drawing/display.h"

namespace celestark::drawing {

// The distances are compressed through these anchors: a body's distance from the centre of the
// view in astronomical units becomes a scale value s, and its radius on the page is s times
// `distance_unit`, the radius of the zodiac ring divided by `ring_scale`. The inner bodies take
// half their distance, the asteroids a fifth; Jupiter, Saturn, Uranus, Neptune and Pluto run on
// lines through their anchors, and a body beyond its anchor keeps to its line (it may pass the
// ring). Pluto's anchor is 39.5 on the prenatal pages and 41 in the planetary motion.
inline constexpr double ring_scale = 2.2;
inline constexpr double prenatal_pluto_anchor = 39.5;
inline constexpr double motion_pluto_anchor = 41.0;
double distance_scale(unsigned char glyph, double au, double pluto_anchor);

// Whether a glyph code names one of the bodies the prenatal pages draw (the Sun, the Moon, the
// planets, the Earth, Chiron, the asteroids, Quaoar and Sedna).
bool prenatal_body(unsigned char glyph);

void prenatal_distances_page(Drawing& g); // prenatal1
void prenatal_latitudes_page(Drawing& g); // prenatal2
void prenatal_rectified_page(Drawing& g); // prenatal_rect, prenatal_helio_rect, prenatal_lem_rect
void lem_prenatal_distances_page(Drawing& g); // lem_prenatal1
void lem_prenatal_3d_page(Drawing& g);        // lem_prenatal3dwith, lem_prenatal3dse
void plan_display_page(Drawing& g);           // plan display
void planets_motion_page(Drawing& g);         // planets motion

} // namespace celestark::drawing
