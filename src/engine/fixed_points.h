#pragma once
// Fixed points, the user's degrees of the zodiac that take part in charts as bodies, and the part
// of Chiron. add_fixed_points and add_part_of_chiron are steps of calculate_chart
// (engine/chart_steps.h).
namespace celestark {

struct Session;

// The part of Chiron in radians, not reduced: the Ascendant plus Chiron less the midpoint of
// Saturn and Uranus (Saturn plus half their signed difference). Chiron is found in the geo list by
// its glyph; false when it is not there.
bool calculate_part_of_chiron(const Session& s, double& part);

} // namespace celestark
