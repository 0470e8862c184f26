#include "engine/stars.h"

#include "engine/chart_steps.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/session.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace celestark {

void precess_ecliptic_from_j2000(double t, double& longitude, double& latitude) {
    const double t2 = t * t, t3 = t2 * t;
    const double eta = (47.0029 * t - 0.03302 * t2 + 0.00006 * t3) * arcsec_to_rad;
    const double big_pi = 174.876384 * deg_to_rad + (-869.8089 * t + 0.03536 * t2) * arcsec_to_rad;
    const double p = (5029.0966 * t + 1.11113 * t2 - 0.000006 * t3) * arcsec_to_rad;
    const double l = longitude, b = latitude;
    const double a =
        std::cos(eta) * std::cos(b) * std::sin(big_pi - l) - std::sin(eta) * std::sin(b);
    const double bb = std::cos(b) * std::cos(big_pi - l);
    const double c =
        std::cos(eta) * std::sin(b) + std::sin(eta) * std::cos(b) * std::sin(big_pi - l);
    longitude = p + big_pi - arctan2(a, bb);
    latitude = arcsin(c);
}

StarMoment star_moment(const Session& s) {
    StarMoment m;
    const EngineState& e = s.engine;
    m.t = e.time.t_ut;
    m.sun = e.pos.geo_long[geo::sun];
    m.nutation_long = e.nutation.nutation_long;
    m.zodiac_offset = e.zodiac_offset;
    m.actual_position = s.options.actual_position;
    const double t = m.t;
    m.e = 0.016708617 - 0.000042037 * t - 0.0000001236 * t * t;
    m.w = (102.93735 + 1.71953 * t + 0.00046 * t * t) * deg_to_rad;
    return m;
}

void star_place_of_date(double ra, double dec, double pm_ra, double pm_dec, const StarMoment& m,
                        double& longitude, double& latitude) {
    // Proper motion straight onto the equatorial coordinates, before anything else.
    const double years = m.t * 100;
    double l = 0, b = 0;
    equatorial_to_ecliptic_j2000(pm_ra * years + ra, pm_dec * years + dec, l, b);
    precess_ecliptic_from_j2000(m.t, l, b);
    double dl = 0, db = 0;
    if (!m.actual_position) {
        const double k = aberration_constant_arcsec * arcsec_to_rad;
        dl = (-k * std::cos(m.sun - l) + m.e * k * (m.w - l)) / std::cos(b);
        db = -k * std::sin(b) * (std::sin(m.sun - l) - m.e * std::sin(m.w - l));
    }
    longitude = l + dl + m.nutation_long + m.zodiac_offset;
    latitude = b + db;
}

void calculate_chart_stars(Session& s) {
    const StarMoment m = star_moment(s);
    PositionLists& p = s.engine.pos;
    const StarState& stars = s.stars;
    for (int i = 0; i < stars.chart_star_count && i < max_chart_stars; ++i) {
        if (p.geo_count >= geo_capacity || p.chart_count >= chart_capacity) return;
        const ChartStar& star = stars.chart_star_cache[static_cast<std::size_t>(i)];
        double longitude = 0, latitude = 0;
        star_place_of_date(star.ra, star.dec, star.pm_ra, star.pm_dec, m, longitude, latitude);
        const auto g = static_cast<std::size_t>(p.geo_count++);
        p.geo_long[g] = longitude;
        p.geo_lat[g] = latitude;
        p.geo_dist[g] = 0;
        p.geo_glyph[g] = star.glyph;
        p.geo_retro[g + 1] = 0;
        const auto c = static_cast<std::size_t>(p.chart_count++);
        p.chart_long[c] = longitude;
        p.chart_glyph[c] = star.glyph;
    }
}

void add_chart_stars(Session& s) {
    if (s.stars.chart_star_count > 0) calculate_chart_stars(s);
}

namespace {

double interpolated(double o1, double o6, float magnitude) {
    return o1 - (o1 - o6) * (static_cast<double>(magnitude) - 1) / 5;
}

double orb_of_set(const StarOrbOptions& o, char set, float mag, float abs_mag) {
    switch (set) {
    case '1':
        return mag > o.orb_1_magnitude ? 0 : o.orb_1;
    case '2':
        return abs_mag > o.orb_2_magnitude ? 0 : o.orb_2;
    case '4':
        return mag > o.orb_3_magnitude ? 0 : interpolated(o.orb_3_mag1, o.orb_3_mag6, mag);
    case '5':
        return abs_mag > o.orb_4_magnitude ? 0 : interpolated(o.orb_4_mag1, o.orb_4_mag6, mag);
    case '7': {
        int step = 0; // magnitude 1 or less
        for (int m = 6; m >= 2 && step == 0; --m)
            if (mag >= static_cast<float>(m)) step = m - 1;
        return o.orb_5[step];
    }
    case '8':
        if (abs_mag >= 3) return o.orb_6[5];
        if (mag >= 1) return o.orb_6[4];
        if (mag > -2) return o.orb_6[3];
        if (mag > -4) return o.orb_6[2];
        if (mag > -6) return o.orb_6[1];
        return o.orb_6[0];
    default:
        return 0;
    }
}

// Both sets must give an orb; the smaller is taken.
double both(const StarOrbOptions& o, char a, char b, float mag, float abs_mag) {
    const double x = orb_of_set(o, a, mag, abs_mag), y = orb_of_set(o, b, mag, abs_mag);
    return x == 0 || y == 0 ? 0 : std::min(x, y);
}

} // namespace

float star_orb(const StarOrbOptions& options, std::string_view orb_set, float magnitude,
               float absolute_magnitude) {
    if (orb_set.size() != 1) return 0;
    const char set = orb_set[0];
    double orb = 0;
    switch (set) {
    case '3':
        orb = both(options, '1', '2', magnitude, absolute_magnitude);
        break;
    case '6':
        orb = both(options, '4', '5', magnitude, absolute_magnitude);
        break;
    case '9':
        orb = std::min(orb_of_set(options, '7', magnitude, absolute_magnitude),
                       orb_of_set(options, '8', magnitude, absolute_magnitude));
        break;
    default:
        orb = orb_of_set(options, set, magnitude, absolute_magnitude);
    }
    return static_cast<float>(orb);
}

} // namespace celestark
