#pragma once
// Sine and cosine of one argument together, for the series loops. The argument is reduced by
// multiples of pi/2 in three parts (Cody-Waite, exact for |x| below about 1.6e6 radians and within
// an ulp or two well beyond), then the kernel polynomials of fdlibm give both functions on
// [-pi/4, pi/4]. Agrees with std::sin and std::cos to a few units in the last place.
#include <cmath>

namespace celestark {

struct SinCos {
    double sin, cos;
};

inline SinCos sin_cos(double x) {
    constexpr double two_over_pi = 6.36619772367581382433e-01;
    constexpr double pio2_1 = 1.57079632673412561417e+00; // first 33 bits of pi/2
    constexpr double pio2_2 = 6.07710050630396597660e-11; // next 33 bits
    constexpr double pio2_3 = 2.02226624871116645580e-21; // the rest
    constexpr double s1 = -1.66666666666666324348e-01, s2 = 8.33333333332248946124e-03,
                     s3 = -1.98412698298579493134e-04, s4 = 2.75573137070700676789e-06,
                     s5 = -2.50507602534068634195e-08, s6 = 1.58969099521155010221e-10;
    constexpr double c1 = 4.16666666666666019037e-02, c2 = -1.38888888888741095749e-03,
                     c3 = 2.48015872894767294178e-05, c4 = -2.75573143513906633035e-07,
                     c5 = 2.08757232129817482790e-09, c6 = -1.13596475577881948265e-11;

    // Nearest integer by the 1.5 * 2^52 shift (exact for |x| below 2^51 radians).
    constexpr double shift = 6755399441055744.0;
    const double k = (x * two_over_pi + shift) - shift;
    const double r = ((x - k * pio2_1) - k * pio2_2) - k * pio2_3;
    const double r2 = r * r;
    const double s = r + r * r2 * (s1 + r2 * (s2 + r2 * (s3 + r2 * (s4 + r2 * (s5 + r2 * s6)))));
    const double c =
        1.0 - 0.5 * r2 + r2 * r2 * (c1 + r2 * (c2 + r2 * (c3 + r2 * (c4 + r2 * (c5 + r2 * c6)))));
    switch (static_cast<long long>(k) & 3) {
    case 0:
        return {s, c};
    case 1:
        return {c, -s};
    case 2:
        return {-s, -c};
    default:
        return {-c, s};
    }
}

inline double fast_cos(double x) {
    return sin_cos(x).cos;
}
inline double fast_sin(double x) {
    return sin_cos(x).sin;
}

} // namespace celestark
