#pragma once
// Steps of a calculation that belong to their own parts of the engine: the vernal point, houses,
// the table-driven bodies, the world views, stars, fixed points and parts. Each reads and writes
// the session's engine state.
namespace celestark {

struct Session;

// Sets zodiac_offset for the active zodiac.
void calculate_vernal_point(Session& s);
// Cusps and angles from local_sidereal_hours and latitude_rad.
void calculate_houses(Session& s);
// Uranus, Neptune, Pluto (through light time) at the time base's moment `jd`.
void calculate_outer_planets(Session& s, double jd);
// Heliocentric nodes and perihelia of the planets.
void calculate_helio_elements(Session& s);
// Quaoar, Sedna, Chiron and the asteroids as the options switch them on.
void calculate_extra_bodies(Session& s, double jd);
// The Moon as the last helio entry.
void add_moon_to_helio(Session& s);
// The lemnicentric list from the helio list and the Moon.
void calculate_lemni_list(Session& s);
// Additional stars and fixed points appended to the geo and chart lists.
void add_chart_stars(Session& s);
void add_fixed_points(Session& s);
// Parts appended to the geo and chart lists.
void add_part_of_chiron(Session& s);
void add_house_points(Session& s);

} // namespace celestark
