// The steps whose full forms live with the stars, fixed points and parts. Until those are loaded
// a chart has no stars, fixed points or part of Chiron. (Houses: engine/houses.cpp.)
#include "engine/chart_steps.h"

#include "session/session.h"

namespace celestark {

void add_chart_stars(Session&) {}
void add_fixed_points(Session&) {}
void add_part_of_chiron(Session&) {}

} // namespace celestark
