#pragma once
// Steps of a calculation that belong to their own parts of the engine: houses (houses.cpp), stars
// (stars.cpp), fixed points and the part of Chiron (fixed_points.cpp). Each reads and writes the
// session's engine state.
namespace celestark {

struct Session;

// Cusps and angles from local_sidereal_hours and latitude_rad.
void calculate_houses(Session& s);
// Additional stars and fixed points appended to the geo and chart lists.
void add_chart_stars(Session& s);
void add_fixed_points(Session& s);
// Parts appended to the geo and chart lists.
void add_part_of_chiron(Session& s);
void add_house_points(Session& s);

} // namespace celestark
