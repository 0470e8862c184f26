#include "predict/samples.h"

#include "session/constants.h"

#include <cmath>

namespace celestark {

void unwrap_samples(Samples& y) {
    for (std::size_t i = 1; i < 5; ++i) {
        while (y[i] - y[i - 1] >= pi) y[i] -= two_pi;
        while (y[i] - y[i - 1] <= -pi) y[i] += two_pi;
    }
    for (std::size_t i = 0; i < 5; ++i) {
        while (y[i] >= two_pi)
            for (double& v : y) v -= two_pi;
        while (y[i] <= -two_pi)
            for (double& v : y) v += two_pi;
    }
    // The middle sample nearest to zero: a zero just below a full circle (a conjunction across
    // the first point of Aries, an aspect whose difference comes to nearly minus a circle) would
    // otherwise stand almost a circle away and be missed.
    if (y[2] > pi)
        for (double& v : y) v -= two_pi;
    else if (y[2] < -pi)
        for (double& v : y) v += two_pi;
}

Differences difference_samples(const Samples& y) {
    Differences d{};
    d.a = y[1] - y[0];
    d.b = y[2] - y[1];
    d.c = y[3] - y[2];
    d.d = y[4] - y[3];
    d.e = d.b - d.a;
    d.f = d.c - d.b;
    d.g = d.d - d.c;
    d.h = d.f - d.e;
    d.j = d.g - d.f;
    d.k = d.j - d.h;
    return d;
}

double interpolate_samples(const Samples& y, double n) {
    const Differences d = difference_samples(y);
    const double n2 = n * n;
    return y[2] + n * (d.b + d.c) / 2 + n2 * d.f / 2 + n * (n2 - 1) * (d.h + d.j) / 12 +
           n2 * (n2 - 1) * d.k / 24;
}

Zero find_zero(const Samples& y) {
    Zero z;
    // A middle sample far from zero: anything found would be a false root across the wrap.
    if (std::fabs(y[2]) > pi / 10) return z;
    if ((y[1] > 0 && y[2] > 0 && y[3] > 0) || (y[1] < 0 && y[2] < 0 && y[3] < 0)) return z;
    const Differences d = difference_samples(y);
    const double a4 = d.k / 24, a3 = (d.h + d.j) / 12;
    const double a2 = d.f / 2 - a4, a1 = (d.b + d.c) / 2 - a3;
    double n = 0;
    for (int pass = 0;; ++pass) {
        if (pass == 100) return z;
        const double f = (((a4 * n + a3) * n + a2) * n + a1) * n + y[2];
        const double slope = ((4 * a4 * n + 3 * a3) * n + 2 * a2) * n + a1;
        const double next = n - f / slope;
        const bool settled = std::fabs(next - n) <= 1e-8;
        n = next;
        if (!std::isfinite(n)) return z;
        if (settled) break;
    }
    if (std::fabs(n) > 1) return z;
    z.found = true;
    z.n = n;
    z.rising = y[3] > y[2];
    return z;
}

Extremum find_extremum(const Samples& y) {
    Extremum x;
    if ((y[1] < y[2] && y[2] < y[3]) || (y[1] > y[2] && y[2] > y[3])) return x;
    const Differences d = difference_samples(y);
    const double denominator = d.k - 12 * d.f;
    if (denominator == 0) return x;
    double n = 0;
    for (int pass = 0;; ++pass) {
        // The iteration contracts fast near a true turning point; one that wanders is none.
        if (pass == 100) return x;
        const double next =
            (6 * d.b + 6 * d.c - d.h - d.j + 3 * (d.h + d.j) * n * n + 2 * d.k * n * n * n) /
            denominator;
        const bool settled = std::fabs(next - n) <= 1e-9;
        n = next;
        if (!std::isfinite(n)) return x;
        if (settled) break;
    }
    if (std::fabs(n) > 1) return x;
    x.found = true;
    x.n = n;
    x.value = interpolate_samples(y, n);
    x.maximum = x.value > y[2] || (x.value == y[2] && x.value > y[1]);
    return x;
}

} // namespace celestark
