#pragma once
// The Moon from the ELP series, and the lunar nodes and perigee.
namespace celestark {

struct Session;

// Each writes entry 1 of its geo array; the time base and the lunar arguments must be set.
void moon_longitude(Session& s);
void moon_latitude(Session& s);
void moon_distance(Session& s);

// Computes true_node, mean_node, true_perigee and mean_perigee; with `append` and the options on,
// appends the node pair and the perigee pair to the geo list and the north node and perigee to
// the chart list.
void calculate_moon_points(Session& s, bool append);

} // namespace celestark
