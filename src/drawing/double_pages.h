#pragma once
// The double charts: the event of `inner_event` on the inner ring and that of `outer_event` on
// the outer ring of one zodiac band, the cross aspects between them drawn inside, and beside the
// wheel the two events' positions, the houses and the grid of cross aspects.
#include "drawing/display.h"

#include <string>
#include <vector>

namespace celestark::drawing {

void geo_double_page(Drawing& g);       // geo_double: geocentric or Tychonic rings
void helio_double_page(Drawing& g);     // helio_double
void lemni_double_page(Drawing& g);     // lemni_double
void geo_helio_double_page(Drawing& g); // geo_helio_double: inner geocentric, outer heliocentric
void helio_geo_double_page(Drawing& g); // helio_geo_double: inner heliocentric, outer geocentric

// The lines of the double header: each event with its number, names and version, its date and
// time, then the chart's title by `chart_kind` ("B", "C", "T", "P"). An unknown kind is the
// fatal error CK61; the lines are then empty.
std::vector<std::string> double_header_lines(Drawing& g);

} // namespace celestark::drawing
