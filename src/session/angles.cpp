#include "session/angles.h"

#include "session/constants.h"

#include <cmath>

namespace celestark {
namespace {

template <typename T> T norm_mod_t(T a, T modulus) {
    return a - std::floor(a / modulus) * modulus;
}

template <typename T> T signed_diff(T a, T b, T full, T half) {
    T d = norm_mod_t(a - b, full);
    if (d > half) d -= full;
    if (d < -half) d += full;
    return d;
}

template <typename T> T arctan2_t(T y, T x, T pi_v) {
    if (x == 0 && y == 0) return 0;
    if (std::fabs(x) >= std::fabs(y)) {
        T r = std::atan(y / x);
        if (x < 0) r += (r >= 0) ? pi_v : -pi_v;
        return r;
    }
    T r = pi_v / 2 - std::atan(x / y);
    if (y < 0) r -= pi_v;
    return r;
}

} // namespace

double norm_mod(double a, double modulus) {
    return norm_mod_t(a, modulus);
}
double norm_rad(double a) {
    return norm_mod_t(a, two_pi);
}
double norm_deg(double a) {
    return norm_mod_t(a, 360.0);
}

int norm_int_deg(int n) {
    while (n >= 361) n -= 360;
    while (n < 1) n += 360;
    return n;
}

double rad_diff(double a, double b) {
    return signed_diff(a, b, two_pi, pi);
}
double rad_sep(double a, double b) {
    return std::fabs(rad_diff(a, b));
}
double deg_diff(double a, double b) {
    double d = norm_deg(a - b);
    if (d > 180.0) d -= 360.0;
    if (d < -180.0) d += 360.0;
    return d;
}

double arcsin(double x) {
    if (x == 0.0) return 0.0;
    return std::atan(x / std::sqrt(1.0 - x * x));
}
double arccos(double x) {
    return pi / 2.0 - arcsin(x);
}
double arctan2(double y, double x) {
    return arctan2_t(y, x, pi);
}

float norm_mod(float a, float modulus) {
    return norm_mod_t(a, modulus);
}
float norm_rad(float a) {
    return norm_mod_t(a, two_pi_f);
}
float norm_deg(float a) {
    return norm_mod_t(a, 360.0f);
}
float rad_diff(float a, float b) {
    return signed_diff(a, b, two_pi_f, pi_f);
}
float rad_sep(float a, float b) {
    return std::fabs(rad_diff(a, b));
}
float deg_diff(float a, float b) {
    return signed_diff(a, b, 360.0f, 180.0f);
}
float arctan2(float y, float x) {
    return arctan2_t(y, x, pi_f);
}

double general_precession(double t) {
    return ((0.000616667 * t / 2.0) + 1.3960011) * t;
}

void equatorial_to_ecliptic_j2000(double ra, double dec, double& longitude, double& latitude) {
    const double e = j2000_obliquity_deg * deg_to_rad;
    longitude = arctan2(std::sin(ra) * std::cos(e) + std::tan(dec) * std::sin(e), std::cos(ra));
    latitude = arcsin(std::sin(dec) * std::cos(e) - std::cos(dec) * std::sin(e) * std::sin(ra));
}

double interpolate5(double n, double y1, double y2, double y3, double y4, double y5) {
    const double a = y2 - y1, b = y3 - y2, c = y4 - y3, d = y5 - y4;
    const double e = b - a, f = c - b, g = d - c;
    const double h = f - e, j = g - f;
    const double k = j - h;
    const double n2 = n * n;
    return y3 + n * ((b + c) / 2.0 - (h + j) / 12.0) + n2 * (f / 2.0 - k / 24.0) +
           n2 * n * (h + j) / 12.0 + n2 * n2 * k / 24.0;
}

} // namespace celestark
