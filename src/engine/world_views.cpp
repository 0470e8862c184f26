#include "engine/world_views.h"

#include "engine/planets.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <cmath>

namespace celestark {

namespace {

struct Cubic {
    double c0, c1, c2, c3;
    double at(double t) const { return c0 + t * (c1 + t * (c2 + t * c3)); }
};

// Degrees of the ecliptic and mean equinox of date, T in Julian centuries.
constexpr Cubic perihelia[9] = {
    {102.937348, 1.7195269, 0.00045962, 4.99e-07},
    {77.456119, 1.5564775, 0.00029589, 5.6e-08},
    {131.563707, 1.4022188, -0.00107337, -5.315e-06},
    {336.060234, 1.8410331, 0.00013515, 3.18e-07},
    {14.331309, 1.6126668, 0.00103127, -4.569e-06},
    {93.056787, 1.9637694, 0.00083757, 4.899e-06},
    {173.005159, 1.4863784, 0.00021245, 4.33e-07},
    {48.123691, 1.4262677, 0.00037918, -3e-09},
    {222.83 + 1.3644, 1.3644, 0, 0}, // Pluto: (T + 1) * 1.3644 + 222.83
};
constexpr Cubic nodes[9] = {
    {0, 0, 0, 0}, // the Earth has no node
    {48.330893, 1.186189, 0.00017587, 2.11e-07},
    {76.67992, 0.901119, 0.00040665, -8e-08},
    {49.558093, 0.7720923, 1.605e-05, 2.325e-06},
    {100.464441, 1.020955, 0.00040117, 5.69e-07},
    {113.665524, 0.8770979, -0.00012067, -2.38e-06},
    {74.005947, 0.5211258, 0.00133982, 1.8516e-05},
    {131.784057, 1.1022057, 0.00026006, -6.36e-07},
    {108.95 + 1.33388, 1.33388, 0, 0}, // Pluto: (T + 1) * 1.33388 + 108.95
};

struct Elements {
    unsigned char glyph;
    double mean_anomaly, daily_motion, eccentricity, semimajor_axis, perihelion_argument, node,
        inclination; // degrees and astronomical units, at the epoch
};
constexpr double elements_epoch = 2453200.5;
constexpr Elements quaoar = {glyph::quaoar, 272.30249, 0.00344997, 0.0342882,
                             43.3769317,    155.9252,  188.79917,  7.98377};
constexpr Elements sedna = {glyph::sedna, 357.88147, 8.04e-05,  0.8574338,
                            531.6576335,  311.82711, 144.49288, 11.93041};

void distant_body(Session& s, const Elements& el) {
    EngineState& e = s.engine;
    PositionLists& p = e.pos;
    if (p.helio_count >= helio_capacity || p.geo_count + 1 >= geo_capacity) return;
    const double t = e.time.t_eph;
    const double d = (t - t_from_j2000(elements_epoch)) * days_per_century;
    const double m = norm_rad((el.mean_anomaly + el.daily_motion * d) * deg_to_rad);
    const double w = norm_rad(el.perihelion_argument * deg_to_rad);
    const double node = norm_rad(el.node * deg_to_rad);
    const double inc = el.inclination * deg_to_rad;
    const double ecc = el.eccentricity, a = el.semimajor_axis;

    double ea = m + ecc * std::sin(m) * (1 + ecc * std::cos(m));
    for (int i = 0; i < 10; ++i) ea += (m - ea + ecc * std::sin(ea)) / (1 - ecc * std::cos(ea));
    const double xp = a * (std::cos(ea) - ecc);
    const double yp = a * std::sqrt(1 - ecc * ecc) * std::sin(ea);

    // Into the ecliptic and equinox of J2000.0.
    const double cw = std::cos(w), sw = std::sin(w), cn = std::cos(node), sn = std::sin(node);
    const double ci = std::cos(inc), si = std::sin(inc);
    const double x = xp * (cw * cn - sw * sn * ci) - yp * (sw * cn + cw * sn * ci);
    const double y = xp * (cw * sn + sw * cn * ci) - yp * (sw * sn - cw * cn * ci);
    const double z = xp * sw * si + yp * cw * si;
    const double dist = std::sqrt(x * x + y * y + z * z);
    const double lambda = arctan2(y, x);
    const double beta = arcsin(z / dist);

    // Precession from J2000.0 to the date.
    const double eta = (47.0029 * t - 0.03302 * t * t + 6e-05 * t * t * t) * arcsec_to_rad;
    const double big_pi =
        174.876384 * deg_to_rad + (-869.8089 * t + 0.03536 * t * t) * arcsec_to_rad;
    const double prec = (5029.0966 * t + 1.11113 * t * t - 6e-06 * t * t * t) * arcsec_to_rad;
    const double sd = std::sin(big_pi - lambda);
    const double aa = std::cos(eta) * std::cos(beta) * sd - std::sin(eta) * std::sin(beta);
    const double bb = std::cos(beta) * std::cos(big_pi - lambda);
    const double cc = std::cos(eta) * std::sin(beta) + std::sin(eta) * std::cos(beta) * sd;

    const int entry = p.helio_count;
    const auto h = static_cast<std::size_t>(entry);
    p.helio_dist[h] = dist;
    p.helio_long[h] = norm_rad(prec + big_pi - arctan2(aa, bb) + e.zodiac_offset);
    p.helio_lat[h] = arcsin(cc);
    p.helio_node[h] = norm_rad(node + e.zodiac_offset);
    p.helio_peri[h] = norm_rad(node + w + e.zodiac_offset);
    p.helio_glyph[h] = el.glyph;
    p.geo_glyph[h + 1] = el.glyph;
    p.lemni_glyph[h + 1] = el.glyph;
    geocentric_from_helio(s, entry, entry + 1); // no light time for these two
    ++p.helio_count;
    ++p.geo_count;
    ++p.lemni_count;
}

// Lemnicentric place of a rectangular heliocentric position; `z0` joins the latitude only.
void lemni_entry(PositionLists& p, std::size_t k, double x, double y, double z, double z0,
                 double zodiac_offset) {
    p.lemni_long[k] = arctan2(y, x) + zodiac_offset;
    p.lemni_dist[k] = std::sqrt(x * x + y * y + z * z);
    z += z0;
    const double r = std::sqrt(x * x + y * y + z * z);
    // A body at the centre itself (the Sun at the quarter points) has no latitude.
    p.lemni_lat[k] = r > 1e-12 ? arcsin(z / r) : 0.0;
}

} // namespace

void calculate_helio_elements(Session& s) {
    EngineState& e = s.engine;
    const double t = e.time.t_eph;
    for (std::size_t i = 0; i < 9; ++i) {
        e.pos.helio_peri[i] = norm_rad(perihelia[i].at(t) * deg_to_rad + e.zodiac_offset);
        e.pos.helio_node[i] =
            i == 0 ? 0.0 : norm_rad(nodes[i].at(t) * deg_to_rad + e.zodiac_offset);
    }
}

void calculate_distant_bodies(Session& s) {
    if (s.chart.quaoar) distant_body(s, quaoar);
    if (s.chart.sedna) distant_body(s, sedna);
}

void moon_in_helio(Session& s) {
    PositionLists& p = s.engine.pos;
    if (p.helio_count >= helio_capacity) return;
    const auto rect = [](double lon, double lat, double r, double& x, double& y, double& z) {
        x = r * std::cos(lat) * std::cos(lon);
        y = r * std::cos(lat) * std::sin(lon);
        z = r * std::sin(lat);
    };
    double x, y, z, ex, ey, ez;
    rect(p.geo_long[geo::moon], p.geo_lat[geo::moon], p.geo_dist[geo::moon], x, y, z);
    rect(p.helio_long[helio::earth], p.helio_lat[helio::earth], p.helio_dist[helio::earth], ex, ey,
         ez);
    x += ex;
    y += ey;
    z += ez;
    const auto h = static_cast<std::size_t>(p.helio_count);
    p.helio_dist[h] = std::sqrt(x * x + y * y + z * z);
    p.helio_long[h] = arctan2(y, x);
    p.helio_lat[h] = arcsin(z / p.helio_dist[h]);
    p.helio_glyph[h] = glyph::moon;
    ++p.helio_count;
}

void calculate_lemni(Session& s) {
    EngineState& e = s.engine;
    PositionLists& p = e.pos;
    const double zo = e.zodiac_offset;
    const double l = p.helio_long[helio::earth] - zo; // the Earth's true longitude
    const double r = p.helio_dist[helio::earth];
    const double z0 = lemni_height * std::sin(2 * l);
    const double y0 = r * std::sin(l);

    // The Sun, then the Earth (whose own latitude the centre ignores); their distances take the
    // centre's height in, the planets' below leave it out.
    lemni_entry(p, 0, 0, -y0, z0, 0, zo);
    lemni_entry(p, 1, r * std::cos(l), r * std::sin(l) - y0, z0, 0, zo);
    p.lemni_glyph[0] = glyph::sun;
    p.lemni_glyph[1] = glyph::earth;
    for (int i = 1; i < p.helio_count && i + 1 < lemni_capacity; ++i) {
        const auto h = static_cast<std::size_t>(i);
        const double hl = p.helio_long[h] - zo, hb = p.helio_lat[h], hr = p.helio_dist[h];
        lemni_entry(p, h + 1, hr * std::cos(hb) * std::cos(hl),
                    hr * std::cos(hb) * std::sin(hl) - y0, hr * std::sin(hb), z0, zo);
        p.lemni_glyph[h + 1] = p.helio_glyph[h];
    }
    p.lemni_count = p.helio_count + 1;
}

} // namespace celestark
