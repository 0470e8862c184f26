// The steps whose full forms live with the zodiacs, houses, table-driven bodies, world views,
// stars and fixed points. Until those are loaded a chart is Tropical, has no houses, and holds the
// bodies of the series alone.
#include "engine/chart_steps.h"

#include "session/session.h"

namespace celestark {

void calculate_vernal_point(Session& s) {
    s.engine.zodiac_offset = 0;
}
void calculate_houses(Session&) {}
void calculate_outer_planets(Session&, double) {}
void calculate_helio_elements(Session&) {}
void calculate_extra_bodies(Session&, double) {}
void add_moon_to_helio(Session&) {}
void calculate_lemni_list(Session&) {}
void add_chart_stars(Session&) {}
void add_fixed_points(Session&) {}
void add_part_of_chiron(Session&) {}
void add_house_points(Session&) {}

} // namespace celestark
