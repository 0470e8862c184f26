#pragma once
// The world views beyond the geocentric list: the heliocentric nodes and perihelia, the distant
// bodies Quaoar and Sedna from their orbital elements, the Moon in the helio list, and the
// lemnicentric list around a centre that moves on a figure of eight about the Sun.
namespace celestark {

struct Session;

// Nodes (entries 1 to 8) and perihelia (entries 0 to 8) of the ecliptic and mean equinox of date.
void calculate_helio_elements(Session& s);
// Quaoar then Sedna, each when its option is on, growing the three lists.
void calculate_distant_bodies(Session& s);
// Appends the Moon to the helio list.
void moon_in_helio(Session& s);
// Fills the lemni list from the helio list: one entry more than the helio list holds.
void calculate_lemni(Session& s);

// The figure-of-eight constant: the centre's height above the ecliptic, astronomical units.
inline constexpr double lemni_height = 0.2;

} // namespace celestark
