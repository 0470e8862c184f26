#include "engine/planets.h"

#include "engine/series/vsop87_earth.h"
#include "engine/series/vsop87_jupiter.h"
#include "engine/series/vsop87_mars.h"
#include "engine/series/vsop87_mercury.h"
#include "engine/series/vsop87_saturn.h"
#include "engine/series/vsop87_venus.h"
#include "engine/time_base.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/session.h"

#include <cmath>

namespace celestark {

namespace {

double sum_series(const vsop87::VsopSeries& series, double tau, int level) {
    const int n = vsop87::vsop_term_count(series.groups, level);
    double sum = 0;
    for (int i = 0; i < n; ++i) {
        const vsop87::VsopTerm& t = series.terms[static_cast<std::size_t>(i)];
        sum += t.a * std::cos(t.b + t.c * tau);
    }
    return sum;
}

template <std::size_t N>
double sum_powers(const std::array<vsop87::VsopSeries, N>& series, double tau, int level) {
    double sum = 0;
    for (std::size_t k = N; k-- > 0;) sum = sum * tau + sum_series(series[k], tau, level);
    return sum;
}

// The constant of aberration, arc seconds at one astronomical unit.
constexpr double aberration_constant = 20.4898;

} // namespace

SphericalPosition vsop_position(const vsop87::VsopBody& body, double tau, int accuracy_level,
                                double zodiac_offset) {
    SphericalPosition p;
    p.longitude = norm_rad(sum_powers(body.l, tau, accuracy_level) / 1e8 + zodiac_offset);
    p.latitude = sum_powers(body.b, tau, accuracy_level) / 1e8;
    p.radius = sum_powers(body.r, tau, accuracy_level) / 1e8;
    return p;
}

void calculate_sun(Session& s, bool flag) {
    EngineState& e = s.engine;
    const SphericalPosition earth =
        vsop_position(vsop87::earth_series, e.time.tau, s.accuracy_level, e.zodiac_offset);
    e.earth_long = earth.longitude;
    e.earth_lat = earth.latitude;
    e.earth_dist = earth.radius;
    if (!flag) return;
    PositionLists& p = e.pos;
    p.geo_long[geo::sun] = earth.longitude + pi;
    p.geo_lat[geo::sun] = -earth.latitude;
    p.geo_dist[geo::sun] = earth.radius;
    if (!s.options.actual_position)
        p.geo_long[geo::sun] -= aberration_constant * arcsec_to_rad / earth.radius;
    p.helio_long[helio::earth] = earth.longitude;
    p.helio_lat[helio::earth] = earth.latitude;
    p.helio_dist[helio::earth] = earth.radius;
}

void geocentric_from_helio(Session& s, int helio_index, int geo_index) {
    EngineState& e = s.engine;
    PositionLists& p = e.pos;
    const auto h = static_cast<std::size_t>(helio_index);
    const double cb = std::cos(p.helio_lat[h]);
    double x = p.helio_dist[h] * cb * std::cos(p.helio_long[h]);
    double y = p.helio_dist[h] * cb * std::sin(p.helio_long[h]);
    double z = p.helio_dist[h] * std::sin(p.helio_lat[h]);
    const double ce = std::cos(e.earth_lat);
    x -= e.earth_dist * ce * std::cos(e.earth_long);
    y -= e.earth_dist * ce * std::sin(e.earth_long);
    z -= e.earth_dist * std::sin(e.earth_lat);
    const double dist = std::sqrt(x * x + y * y + z * z);
    const auto g = static_cast<std::size_t>(geo_index);
    p.geo_dist[g] = dist;
    p.geo_long[g] = arctan2(y, x);
    p.geo_lat[g] = dist > 0 ? arcsin(z / dist) : 0.0;
}

namespace {

// The light-time wrapper for any heliocentric source: `series` fills the helio entry at the
// current time base.
template <typename Series>
void with_light_time(Session& s, double jd, int helio_index, int geo_index, Series series) {
    EngineState& e = s.engine;
    series();
    geocentric_from_helio(s, helio_index, geo_index);
    if (s.options.actual_position) return;
    // One pass: the planet and the Earth both at the moment the light left the planet. The lunar
    // arguments and the nutation keep the values of the true moment.
    set_calculation_time(e.time, jd - light_days_per_au *
                                          e.pos.geo_dist[static_cast<std::size_t>(geo_index)]);
    calculate_sun(s, false);
    series();
    geocentric_from_helio(s, helio_index, geo_index);
    set_calculation_time(e.time, jd);
}

void planet(Session& s, double jd, const vsop87::VsopBody& body, int helio_index) {
    with_light_time(s, jd, helio_index, helio_index + 1, [&s, &body, helio_index] {
        EngineState& e = s.engine;
        const SphericalPosition p =
            vsop_position(body, e.time.tau, s.accuracy_level, e.zodiac_offset);
        const auto h = static_cast<std::size_t>(helio_index);
        e.pos.helio_long[h] = p.longitude;
        e.pos.helio_lat[h] = p.latitude;
        e.pos.helio_dist[h] = p.radius;
    });
}

} // namespace

void calculate_mercury(Session& s, double jd) {
    planet(s, jd, vsop87::mercury_series, helio::mercury);
}
void calculate_venus(Session& s, double jd) {
    planet(s, jd, vsop87::venus_series, helio::venus);
}
void calculate_mars(Session& s, double jd) {
    planet(s, jd, vsop87::mars_series, helio::mars);
}
void calculate_jupiter(Session& s, double jd) {
    planet(s, jd, vsop87::jupiter_series, helio::jupiter);
}
void calculate_saturn(Session& s, double jd) {
    planet(s, jd, vsop87::saturn_series, helio::saturn);
}

} // namespace celestark
