#pragma once
// Star positions: a catalogue star carried from J2000 to the ecliptic of the working moment
// (proper motion, the J2000 ecliptic, precession, annual aberration, nutation and the zodiac), the
// stars of "Star Group for charts" in the chart lists, and the orb a star gets from its
// brightness.
#include "session/star_state.h"

#include <string_view>

namespace celestark {

struct Session;

// The constant of aberration, seconds of arc.
inline constexpr double aberration_constant_arcsec = 20.49552;

// Ecliptic coordinates of J2000 precessed to the date `t` (Julian centuries of Universal Time from
// J2000.0) in the published form of Meeus. The new longitude is not reduced.
void precess_ecliptic_from_j2000(double t, double& longitude, double& latitude);

// What a star position needs of the working moment.
struct StarMoment {
    double t = 0;   // t_ut
    double sun = 0; // the first entry of geo_long
    double nutation_long = 0, zodiac_offset = 0;
    bool actual_position = false; // true: no aberration
    double e = 0, w = 0;          // the Earth's eccentricity and perihelion (radians) at t
};
StarMoment star_moment(const Session& s);

// Steps 1 to 4 for one star: proper motion added linearly to the right ascension and declination
// (radians, radians a year), the J2000 ecliptic, precession, the annual aberration unless
// `actual_position` (its perihelion term takes the angle w - l itself, as the program always has),
// nutation and the zodiac offset. Radians; the longitude is not reduced.
void star_place_of_date(double ra, double dec, double pm_ra, double pm_dec, const StarMoment& m,
                        double& longitude, double& latitude);

// Appends the stars of the chart star cache to the geo and chart lists (glyph, longitude,
// latitude; no distance), as far as the lists have room.
void calculate_chart_stars(Session& s);

// The orb in degrees that the set "1" to "9" gives a star; 0: the star takes no part. Set "5"
// interpolates on the visual magnitude although the absolute one gates it, the interpolation of
// sets 4 to 6 is not clamped, and set "8" reads the absolute magnitude in its first step only.
float star_orb(const StarOrbOptions& options, std::string_view orb_set, float magnitude,
               float absolute_magnitude);

} // namespace celestark
