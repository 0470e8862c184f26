#include "predict/samples.h"

#include "session/constants.h"

#include <array>
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

Zeros find_zeros(const Samples& y) {
    Zeros out;
    // A middle sample far from zero: anything found would be a false root across the wrap.
    if (std::fabs(y[2]) > pi / 10) return out;
    // The three middle samples on one side of zero and all five running one way: a body does
    // not turn and turn back within four steps, so the curve does not reach zero between them.
    const bool one_side = (y[1] > 0 && y[2] > 0 && y[3] > 0) || (y[1] < 0 && y[2] < 0 && y[3] < 0);
    const bool one_way = (y[0] < y[1] && y[1] < y[2] && y[2] < y[3] && y[3] < y[4]) ||
                         (y[0] > y[1] && y[1] > y[2] && y[2] > y[3] && y[3] > y[4]);
    if (one_side && one_way) return out;
    // Nor does a place held still (the lemnicentric Sun and Earth between their jumps).
    if (y[0] == y[2] && y[1] == y[2] && y[3] == y[2] && y[4] == y[2]) return out;
    const Differences d = difference_samples(y);
    const double a4 = d.k / 24, a3 = (d.h + d.j) / 12;
    const double a2 = d.f / 2 - a4, a1 = (d.b + d.c) / 2 - a3, a0 = y[2];
    const auto f = [&](double n) { return (((a4 * n + a3) * n + a2) * n + a1) * n + a0; };
    const auto slope = [&](double n) { return ((4 * a4 * n + 3 * a3) * n + 2 * a2) * n + a1; };
    // A root within a bracket where the curve runs one way: Newton's steps from the secant's
    // point, halving the bracket whenever a step would leave it.
    const auto solve = [](auto g, auto dg, double lo, double hi) {
        double glo = g(lo), ghi = g(hi);
        double n = lo - glo * (hi - lo) / (ghi - glo);
        for (int i = 0; i < 100; ++i) {
            const double gn = g(n);
            if (gn == 0) return n;
            ((gn > 0) == (ghi > 0) ? hi : lo) = n;
            ((gn > 0) == (ghi > 0) ? ghi : glo) = gn;
            const double d = dg(n);
            double next = d != 0 ? n - gn / d : (lo + hi) / 2;
            if (!(next > lo && next < hi)) next = (lo + hi) / 2;
            if (std::fabs(next - n) <= 1e-13 || hi - lo <= 1e-13) return next;
            n = next;
        }
        return n;
    };
    const auto curvature = [&](double n) { return (12 * a4 * n + 6 * a3) * n + 2 * a2; };
    // The interval from the second slot (left out) to the fourth (taken in), cut in eighths and
    // at the curve's turning points: between two cuts the curve runs one way and crosses zero at
    // most once. Two crossings on either side of a station in one window are both found, and
    // each crossing belongs to one search only.
    std::array<double, 24> cuts{};
    std::size_t count = 0;
    double slope_before = 0;
    bool any_sign_change = false;
    double f_first = 0;
    for (int i = 0; i <= 8; ++i) {
        const double n = -1 + i / 4.0;
        const double sn = slope(n), fn = f(n);
        if (i == 0)
            f_first = fn;
        else if ((fn > 0) != (f_first > 0) || fn == 0)
            any_sign_change = true;
        if (i > 0 && sn != 0 && slope_before != 0 && (sn > 0) != (slope_before > 0)) {
            cuts[count] = solve(slope, curvature, cuts[count - 1], n);
            ++count;
            any_sign_change = true; // a turning point may dip across zero between the cuts
        }
        cuts[count++] = n;
        slope_before = sn;
    }
    if (!any_sign_change) return out;
    for (std::size_t i = 1; i < count && out.count < static_cast<int>(out.at.size()); ++i) {
        const double lo = cuts[i - 1], hi = cuts[i];
        const double flo = f(lo), fhi = f(hi);
        double n = 0;
        // A curve that stays on zero (two bodies held at one separation) crosses nothing.
        if (fhi == 0 && flo != 0)
            n = hi;
        else if (flo != 0 && (flo > 0) != (fhi > 0))
            n = solve(f, slope, lo, hi);
        else
            continue;
        const double s = slope(n);
        Zero& z = out.at[static_cast<std::size_t>(out.count++)];
        z.found = true;
        z.n = n;
        // The direction of the crossing from the curve itself at the root: a sample beyond a
        // station would tell it the wrong way.
        z.rising = s != 0 ? s > 0 : fhi > flo;
    }
    return out;
}

Zero find_zero(const Samples& y) {
    const Zeros all = find_zeros(y);
    return all.count > 0 ? all.at[0] : Zero{};
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
