#include "engine/planets.h"

#include "engine/fast_trig.h"
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

// A series sum with its first and second derivatives by tau.
struct Sum3 {
    double v = 0, d1 = 0, d2 = 0;
};

Sum3 sum_series(const vsop87::VsopSeries& series, double tau, int level) {
    const int n = vsop87::vsop_term_count(series.groups, level);
    Sum3 s;
    for (int i = 0; i < n; ++i) {
        const vsop87::VsopTerm& t = series.terms[static_cast<std::size_t>(i)];
        const SinCos sc = sin_cos(t.b + t.c * tau);
        const double ac = t.a * sc.cos;
        s.v += ac;
        s.d1 -= t.a * t.c * sc.sin;
        s.d2 -= ac * t.c * t.c;
    }
    return s;
}

// Sum of tau^k S_k(tau) by Horner's rule, carrying the derivatives along.
template <std::size_t N>
Sum3 sum_powers(const std::array<vsop87::VsopSeries, N>& series, double tau, int level) {
    Sum3 p;
    for (std::size_t k = N; k-- > 0;) {
        const Sum3 s = sum_series(series[k], tau, level);
        p.d2 = 2 * p.d1 + tau * p.d2 + s.d2;
        p.d1 = p.v + tau * p.d1 + s.d1;
        p.v = tau * p.v + s.v;
    }
    return p;
}

SeriesRates evaluate_rates(const vsop87::VsopBody& body, double tau, int level) {
    const Sum3 l = sum_powers(body.l, tau, level);
    const Sum3 b = sum_powers(body.b, tau, level);
    const Sum3 r = sum_powers(body.r, tau, level);
    return {l.v, b.v, r.v, l.d1, b.d1, r.d1, l.d2, b.d2, r.d2};
}

// The body `dtau` millennia from the moment of `rates`.
SphericalPosition position_at(const SeriesRates& k, double dtau, double zodiac_offset) {
    const double h = dtau * dtau / 2;
    SphericalPosition p;
    p.longitude = norm_rad((k.l + k.l1 * dtau + k.l2 * h) / 1e8 + zodiac_offset);
    p.latitude = (k.b + k.b1 * dtau + k.b2 * h) / 1e8;
    p.radius = (k.r + k.r1 * dtau + k.r2 * h) / 1e8;
    return p;
}

// A Taylor step is used within this many millennia of the evaluated moment (about a day); its
// error there stays far below a thousandth of an arc second.
constexpr double taylor_reach = 3e-6;

// The constant of aberration, arc seconds at one astronomical unit.
constexpr double aberration_constant = 20.4898;

void store_earth(EngineState& e, const SphericalPosition& earth) {
    e.earth_long = earth.longitude;
    e.earth_lat = earth.latitude;
    e.earth_dist = earth.radius;
}

} // namespace

void earth_at(Session& s, double tau) {
    EngineState& e = s.engine;
    if (e.earth_rates_level != s.accuracy_level ||
        std::fabs(tau - e.earth_rates_tau) > taylor_reach) {
        e.earth_rates = evaluate_rates(vsop87::earth_series, tau, s.accuracy_level);
        e.earth_rates_tau = tau;
        e.earth_rates_level = s.accuracy_level;
    }
    store_earth(e, position_at(e.earth_rates, tau - e.earth_rates_tau, e.zodiac_offset));
}

namespace {

void store_helio(PositionLists& p, int helio_index, const SphericalPosition& pos) {
    const auto h = static_cast<std::size_t>(helio_index);
    p.helio_long[h] = pos.longitude;
    p.helio_lat[h] = pos.latitude;
    p.helio_dist[h] = pos.radius;
}

void planet(Session& s, double jd, const vsop87::VsopBody& body, int helio_index) {
    EngineState& e = s.engine;
    const int geo_index = helio_index + 1;
    const SeriesRates rates = evaluate_rates(body, e.time.tau, s.accuracy_level);
    store_helio(e.pos, helio_index, position_at(rates, 0, e.zodiac_offset));
    geocentric_from_helio(s, helio_index, geo_index);
    if (s.options.actual_position) return;
    // The planet and the Earth both at the moment the light left the planet, one step back. The
    // lunar arguments and the nutation keep the values of the true moment, and the retarded Earth
    // stays in earth_long/lat/dist.
    TimeBase retarded;
    set_calculation_time(retarded, jd - light_days_per_au *
                                            e.pos.geo_dist[static_cast<std::size_t>(geo_index)]);
    earth_at(s, retarded.tau);
    store_helio(e.pos, helio_index, position_at(rates, retarded.tau - e.time.tau, e.zodiac_offset));
    geocentric_from_helio(s, helio_index, geo_index);
}

} // namespace

SphericalPosition vsop_position(const vsop87::VsopBody& body, double tau, int accuracy_level,
                                double zodiac_offset) {
    return position_at(evaluate_rates(body, tau, accuracy_level), 0, zodiac_offset);
}

void calculate_sun(Session& s, bool flag) {
    EngineState& e = s.engine;
    earth_at(s, e.time.tau);
    if (!flag) return;
    PositionLists& p = e.pos;
    p.geo_long[geo::sun] = e.earth_long + pi;
    p.geo_lat[geo::sun] = -e.earth_lat;
    p.geo_dist[geo::sun] = e.earth_dist;
    if (!s.options.actual_position)
        p.geo_long[geo::sun] -= aberration_constant * arcsec_to_rad / e.earth_dist;
    p.helio_long[helio::earth] = e.earth_long;
    p.helio_lat[helio::earth] = e.earth_lat;
    p.helio_dist[helio::earth] = e.earth_dist;
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
