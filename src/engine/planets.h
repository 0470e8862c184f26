#pragma once
// The Sun and the planets Mercury to Saturn from the VSOP87D series, with the light-time wrappers
// and the conversion from heliocentric to geocentric places.
#include "engine/series/vsop87_types.h"

namespace celestark {

struct Session;

struct SphericalPosition {
    double longitude = 0, latitude = 0, radius = 0;
};

// L, B, R of a body at the time base, with the terms the accuracy level allows. The longitude
// carries the zodiac offset and is folded.
SphericalPosition vsop_position(const vsop87::VsopBody& body, double tau, int accuracy_level,
                                double zodiac_offset);

// The Earth into earth_long/lat/dist; with `flag` also the Sun's geo entry 0 (aberration unless
// actual_position) and the Earth's helio entry 0.
void calculate_sun(Session& s, bool flag);

// The Earth at `tau` into earth_long/lat/dist: by a Taylor step from the sums of the last Sun
// calculation when they are near enough in time, else from the series anew.
void earth_at(Session& s, double tau);

// Converts helio entry `helio_index` to geo entry `geo_index` through the last Earth.
void geocentric_from_helio(Session& s, int helio_index, int geo_index);

// Runs a planet's series into its helio entry and converts it; with actual_position false, once
// more at the moment the light left it, with the Earth taken at that moment too. The time base is
// restored to `jd`; the retarded Earth is left in earth_long/lat/dist.
void calculate_mercury(Session& s, double jd);
void calculate_venus(Session& s, double jd);
void calculate_mars(Session& s, double jd);
void calculate_jupiter(Session& s, double jd);
void calculate_saturn(Session& s, double jd);

// Light time for one astronomical unit, in days.
inline constexpr double light_days_per_au = 0.0057755183;

} // namespace celestark
