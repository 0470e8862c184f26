#include "engine/moon.h"

#include "engine/fast_trig.h"
#include "engine/series/elp_distance.h"
#include "engine/series/elp_latitude.h"
#include "engine/series/elp_longitude.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace celestark {

namespace {

// Powers of time in the scaled form of the lunar series.
struct LunarTime {
    double t, t2, t3, t4;
};

LunarTime lunar_time(const TimeBase& time) {
    return {time.t_eph, time.t2 * 1e-4, time.t3 * 1e-6, time.t4 * 1e-8};
}

int group_end(const elp::ElpGroupEnds& ends, int level) {
    if (level < 2) return ends.level_below_2;
    if (level < 3) return ends.level_below_3;
    return ends.always;
}

double elp_sum(std::span<const elp::ElpTerm> terms, const elp::ElpGroupEnds& ends, int level,
               const LunarTime& lt, bool cosine) {
    const std::size_t n = std::min(terms.size(), static_cast<std::size_t>(group_end(ends, level)));
    double sum = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const elp::ElpTerm& k = terms[i];
        const double arg =
            (k.c0 + k.c1 * lt.t + k.c2 * lt.t2 + k.c3 * lt.t3 + k.c4 * lt.t4) * deg_to_rad;
        const SinCos sc = sin_cos(arg);
        sum += k.amp * (cosine ? sc.cos : sc.sin);
    }
    return sum;
}

// The main sum plus the three small sums: S + A0 + A1 T + A2 t2, the small sums scaled by `small`.
#define CELESTARK_ELP_TOTAL(name, level, lt, cosine, small)                                        \
    (elp_sum(elp::name##_s, elp::name##_s_ends, level, lt, cosine) +                               \
     (elp_sum(elp::name##_a1, elp::name##_a1_ends, level, lt, cosine) * (lt).t +                   \
      elp_sum(elp::name##_a0, elp::name##_a0_ends, level, lt, cosine) +                            \
      elp_sum(elp::name##_a2, elp::name##_a2_ends, level, lt, cosine) * (lt).t2) *                 \
         (small))

} // namespace

void moon_longitude(Session& s) {
    EngineState& e = s.engine;
    const LunarTime lt = lunar_time(e.time);
    const double w1 = elp::w1[0] + elp::w1[1] * lt.t + elp::w1[2] * lt.t2 + elp::w1[3] * lt.t3 +
                      elp::w1[4] * lt.t4;
    const double degrees = w1 + CELESTARK_ELP_TOTAL(longitude, s.accuracy_level, lt, false, 0.001);
    e.pos.geo_long[geo::moon] = norm_rad(degrees * deg_to_rad) + e.zodiac_offset;
}

void moon_latitude(Session& s) {
    EngineState& e = s.engine;
    const LunarTime lt = lunar_time(e.time);
    const double degrees = CELESTARK_ELP_TOTAL(latitude, s.accuracy_level, lt, false, 0.001);
    e.pos.geo_lat[geo::moon] = degrees * deg_to_rad;
}

void moon_distance(Session& s) {
    EngineState& e = s.engine;
    const LunarTime lt = lunar_time(e.time);
    const double km =
        elp::mean_distance_km + CELESTARK_ELP_TOTAL(distance, s.accuracy_level, lt, true, 1.0);
    e.pos.geo_dist[geo::moon] = km / elp::km_per_au;
}

#undef CELESTARK_ELP_TOTAL

namespace {

struct PointTerm {
    double amplitude;
    double argument;
};

template <std::size_t N> double sine_sum(const PointTerm (&terms)[N]) {
    double sum = 0;
    for (const PointTerm& t : terms) sum += t.amplitude * std::sin(t.argument);
    return sum;
}

void append_pair(PositionLists& p, double longitude, unsigned char glyph_first,
                 unsigned char glyph_second) {
    if (p.geo_count + 2 > geo_capacity || p.chart_count + 1 > chart_capacity) return;
    const auto g = static_cast<std::size_t>(p.geo_count);
    p.geo_long[g] = longitude;
    p.geo_lat[g] = 0;
    p.geo_dist[g] = 0;
    p.geo_glyph[g] = glyph_first;
    p.geo_long[g + 1] = longitude + pi;
    p.geo_lat[g + 1] = 0;
    p.geo_dist[g + 1] = 0;
    p.geo_glyph[g + 1] = glyph_second;
    p.geo_retro[g + 1] = 0;
    p.geo_retro[g + 2] = 0;
    p.geo_count += 2;
    const auto c = static_cast<std::size_t>(p.chart_count);
    p.chart_long[c] = longitude;
    p.chart_glyph[c] = glyph_first;
    p.chart_count += 1;
}

} // namespace

void calculate_moon_points(Session& s, bool append) {
    EngineState& e = s.engine;
    const LunarArguments& a = e.lunar;
    const double t = e.time.t_eph;
    const double d = a.d, d2 = a.d2, d3 = a.d3, d4 = a.d4, d6 = a.d6, d8 = a.d8, d10 = a.d10;
    const double m = a.m, m2 = a.m2, f2 = a.f2, f4 = a.f4;
    const auto& mp = a.mp;

    const double lm = norm_rad((481267.8813424 * t + 218.31665436) * deg_to_rad);
    const double ls = norm_rad((35999.372854 * t + 100.46645) * deg_to_rad);

    const PointTerm n1_terms[] = {
        {-1.4979, d2 - f2},    {-0.15, m},
        {-0.1226, d2},         {0.1176, f2},
        {-0.0801, mp[2] - f2}, {-0.0616, d2 - m - f2},
        {0.049, d2 - mp[1]},   {0.0409, mp[1] - f2},
        {0.0327, mp[1]},       {0.0324, d2 + m - f2},
        {0.0196, d4 - f4},     {0.018, d2 - mp[1] - f2},
        {0.015, d2 - mp[2]},   {-0.015, d2 + mp[1] - f2},
        {-0.0078, d2 - m},     {-0.0045, d2 + mp[1]},
        {0.0044, mp[1] + f2},  {-0.0042, d - mp[1]},
        {-0.0031, m - f2},     {0.0031, d2 - m - mp[1]},
        {0.0029, d2 - f4},     {0.0028, m + f2},
    };
    const double n1 = sine_sum(n1_terms);
    const double n2 = 25.9 * std::sin(lm - a.f_linear) -
                      4.3 * std::sin(ls + a.d_linear - a.f_linear - 84.87 * deg_to_rad);
    const double n3 = 0.38 * std::sin(a.m_linear);
    e.mean_node = a.omega;
    e.true_node = norm_rad(((n3 * t + n2) * 0.001 + n1) * deg_to_rad + a.omega + e.zodiac_offset);

    const PointTerm p1_terms[] = {
        {-15.448, d2 - mp[1]},    {-9.642, d2 - mp[2]},
        {-2.721, mp[1]},          {2.607, d4 - mp[3]},
        {2.085, d4 - mp[2]},      {1.477, d2 + mp[1]},
        {0.968, d4 - mp[4]},      {-0.949, d2 - m - mp[1]},
        {-0.703, d6 - mp[4]},     {-0.66, d2},
        {-0.577, d2 - mp[3]},     {-0.524, mp[2]},
        {-0.482, d6 - mp[5]},     {0.452, m},
        {-0.381, d6 - mp[3]},     {-0.342, d2 - m - mp[2]},
        {-0.312, mp[3]},          {0.282, d - mp[1]},
        {0.255, d4 - m - mp[2]},  {0.252, d4 - m - mp[3]},
        {-0.211, mp[2] - f2},     {0.193, d8 - mp[5]},
        {0.191, d8 - mp[6]},      {-0.184, d2 - mp[4]},
        {0.182, d2 + mp[2]},      {-0.158, d6 - mp[6]},
        {0.148, d4 - mp[5]},      {-0.111, d6 - m - mp[4]},
        {0.101, d2 - m + mp[1]},  {0.1, d8 - mp[7]},
        {0.087, d2 + m - mp[1]},  {0.08, d8 - mp[4]},
        {0.08, m - mp[1]},        {0.077, d4 - m - mp[4]},
        {-0.073, d2 - mp[5]},     {-0.071, d6 - m - mp[3]},
        {-0.069, d10 - mp[7]},    {-0.067, d6 - m - mp[5]},
        {-0.067, d3 - mp[2]},     {0.055, d4 - mp[6]},
        {0.055, mp[1] - f2},      {-0.054, d10 - mp[6]},
        {-0.052, mp[4]},          {-0.05, d10 - mp[8]},
        {-0.049, d3 - mp[3]},     {-0.047, d2 - mp[3] + f2},
        {-0.044, d + m - mp[1]},  {-0.043, d2 - m},
        {0.042, d8 - m - mp[5]},  {-0.042, m + mp[1]},
        {-0.041, d6 - mp[7]},     {-0.04, d2 - m2 - mp[1]},
        {0.038, d8 - m - mp[6]},  {-0.037, d2 - mp[4] + f2},
        {0.036, d4 - mp[1]},      {0.035, d8 - mp[8]},
        {-0.034, d2 - m - mp[3]}, {0.031, m - mp[2]},
    };
    const double p1 = sine_sum(p1_terms);
    const double p2 = 0.0024 * std::sin(a.d2_linear - a.m_linear - a.mp_linear);
    const double pm = 83.353 + 4069.0137 * t - 0.0103238 * e.time.t2 - 1.2492e-05 * e.time.t3 +
                      5.263e-08 * e.time.t4;
    e.mean_perigee = pm * deg_to_rad;
    e.true_perigee = norm_rad((pm + p1 + p2 * t) * deg_to_rad + e.zodiac_offset);

    if (!append) return;
    PositionLists& p = e.pos;
    if (s.chart.moon_node >= 1) {
        const double node = s.chart.moon_node == 2 ? a.omega + e.zodiac_offset : e.true_node;
        append_pair(p, node, glyph::north_node, glyph::south_node);
    }
    if (s.chart.moon_peri >= 1) {
        const double perigee =
            s.chart.moon_peri == 2 ? e.mean_perigee + e.zodiac_offset : e.true_perigee;
        append_pair(p, perigee, glyph::perigee, glyph::apogee);
    }
}

} // namespace celestark
