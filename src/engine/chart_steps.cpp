// The steps whose full forms live with the zodiacs, houses, stars and fixed points. Until those
// are loaded a chart is Tropical, has no houses and no stars.
#include "engine/chart_steps.h"

#include "session/session.h"

namespace celestark {

void calculate_houses(Session&) {}
void add_chart_stars(Session&) {}
void add_fixed_points(Session&) {}
void add_part_of_chiron(Session&) {}
void add_house_points(Session&) {}

} // namespace celestark
