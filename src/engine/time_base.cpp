#include "engine/time_base.h"

#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"

#include <cmath>

namespace celestark {

void set_calculation_time(TimeBase& time, double jd) {
    time.jd = jd;
    time.t_ut = t_from_j2000(jd);
    time.delta_t_seconds = delta_t(time.t_ut);
    time.jd_ephemeris = jd + time.delta_t_seconds / 60.0 / 60.0 / 24.0;
    time.t_eph = time.delta_t_seconds * 3.168808781402895e-10 + time.t_ut;
    time.t2 = time.t_eph * time.t_eph;
    time.t3 = time.t2 * time.t_eph;
    time.t4 = time.t3 * time.t_eph;
    time.tau = time.t_eph / 10.0;
    time.tau2 = time.tau * time.tau;
    time.tau3 = time.tau2 * time.tau;
    time.tau4 = time.tau3 * time.tau;
    time.tau5 = time.tau4 * time.tau;
}

namespace {
double to_folded_rad(double degrees) {
    return norm_rad(degrees * deg_to_rad);
}
} // namespace

void calculate_lunar_arguments(const TimeBase& time, LunarArguments& a) {
    const double t = time.t_eph, t2 = time.t2, t3 = time.t3, t4 = time.t4;
    const double d_lin = 297.8502042 + 445267.11151675 * t;
    const double m_lin = 357.5291092 + 35999.0502909 * t;
    const double mp_lin = 134.9634114 + 477198.8676313 * t;
    const double f_lin = 93.2720993 + 483202.0175273 * t;
    const double d = d_lin - 0.00163 * t2 + t3 / 545868.0 - t4 / 113065000.0;
    const double m = m_lin - 0.0001536 * t2 + t3 / 24490000.0;
    const double mp = mp_lin + 0.008997 * t2 + t3 / 69699.0 - t4 / 14712000.0;
    const double f = f_lin - 0.0034029 * t2 - t3 / 3526000.0 + t4 / 863310000.0;
    const double omega = 125.0446 - 1934.13618 * t + 0.0020762 * t2 + 2.139e-6 * t3 - 1.65e-8 * t4;

    a.d = to_folded_rad(d);
    a.d2 = to_folded_rad(2 * d);
    a.d3 = to_folded_rad(3 * d);
    a.d4 = to_folded_rad(4 * d);
    a.d6 = to_folded_rad(6 * d);
    a.d8 = to_folded_rad(8 * d);
    a.d10 = to_folded_rad(10 * d);
    a.m = to_folded_rad(m);
    a.m2 = to_folded_rad(2 * m);
    for (int k = 0; k <= 8; ++k) a.mp[static_cast<std::size_t>(k)] = to_folded_rad(k * mp);
    a.f = to_folded_rad(f);
    a.f2 = to_folded_rad(2 * f);
    a.f3 = to_folded_rad(3 * f);
    a.f4 = to_folded_rad(4 * f);
    a.omega = to_folded_rad(omega);
    a.omega2 = to_folded_rad(2 * omega);
    a.d_linear = to_folded_rad(d_lin);
    a.d2_linear = to_folded_rad(2 * d_lin);
    a.m_linear = to_folded_rad(m_lin);
    a.mp_linear = to_folded_rad(mp_lin);
    a.f_linear = to_folded_rad(f_lin);
}

void calculate_nutation(const TimeBase& time, const LunarArguments& a, Nutation& n) {
    const double t = time.t_eph;

    // Mean obliquity in arc seconds, Horner's rule from the highest power, in 32-bit floats.
    const float u = static_cast<float>(t / 100.0);
    float eps = obliquity_coeffs[10];
    for (int k = 9; k >= 0; --k) eps = eps * u + obliquity_coeffs[static_cast<std::size_t>(k)];
    n.mean_obliquity = static_cast<double>(eps) * arcsec_to_rad;

    // The anomalies keep the places of these tables: 1426 goes with M' and 712 with M.
    const double om = a.omega, om2 = a.omega2;
    const double f2d2o2 = a.f2 - a.d2 + om2; // 2F - 2D + 2 Omega
    const double f2o2 = a.f2 + om2;          // 2F + 2 Omega
    const double mp = a.mp[1];

    const double deps = (92025 + 8.9 * t) * std::cos(om) + (5736 - 3.1 * t) * std::cos(f2d2o2) +
                        (977 - 0.5 * t) * std::cos(f2o2) + (-895 + 0.5 * t) * std::cos(om2) +
                        (54 - 0.1 * t) * std::cos(mp) + (224 - 0.6 * t) * std::cos(mp + f2d2o2) +
                        200 * std::cos(a.f2 + om) + (129 - 0.1 * t) * std::cos(a.m + f2o2) +
                        (-95 + 0.3 * t) * std::cos(f2d2o2 - mp) - 70 * std::cos(a.f2 - a.d2 + om) -
                        53 * std::cos(a.f2 - a.m + om2);
    n.true_obliquity = n.mean_obliquity + deps * 0.0001 * arcsec_to_rad;
    n.sin_obliquity = std::sin(n.true_obliquity);
    n.cos_obliquity = std::cos(n.true_obliquity);

    const double dpsi = (-171996 - 174.2 * t) * std::sin(om) +
                        (-13187 - 1.6 * t) * std::sin(f2d2o2) + (-2274 - 0.2 * t) * std::sin(f2o2) +
                        (2062 + 0.2 * t) * std::sin(om2) + (1426 - 3.4 * t) * std::sin(mp) +
                        (712 + 0.1 * t) * std::sin(a.m) + (-517 + 1.2 * t) * std::sin(mp + f2d2o2) +
                        (-386 - 0.4 * t) * std::sin(a.f2 + om) - 301 * std::sin(a.m + f2o2) +
                        (217 - 0.5 * t) * std::sin(f2d2o2 - mp) - 158 * std::sin(a.m - a.d2) +
                        (129 + 0.1 * t) * std::sin(a.f2 - a.d2 + om) +
                        123 * std::sin(a.f2 - a.m + om2);
    n.nutation_long = dpsi * 0.0001 * arcsec_to_rad;
}

} // namespace celestark
