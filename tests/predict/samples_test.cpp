// The finders of the searches on samples whose answers are known in closed form.
#include "predict/samples.h"
#include "session/constants.h"

#include <gtest/gtest.h>

#include <cmath>

namespace celestark {
namespace {

// Five samples of f at n = -2 .. 2.
template <typename F> Samples samples_of(F f) {
    Samples y;
    for (int i = 0; i < 5; ++i) y[static_cast<std::size_t>(i)] = f(i - 2.0);
    return y;
}

TEST(FindZero, RootsOfKnownCurves) {
    struct Case {
        const char* name;
        double (*f)(double);
        double root;
    };
    const Case cases[] = {
        {"line", [](double n) { return 0.01 * (n - 0.3); }, 0.3},
        {"cubic", [](double n) { return 0.002 * (n + 0.7) * (1 + 0.1 * n * n); }, -0.7},
        {"sine", [](double n) { return 0.05 * std::sin(0.4 * (n - 0.55)); }, 0.55},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Samples y = samples_of(c.f);
        unwrap_samples(y);
        const Zero z = find_zero(y);
        ASSERT_TRUE(z.found);
        // The sine is not a quartic: five points hold it to a few ten-thousandths of a step.
        EXPECT_NEAR(z.n, c.root, 5e-4);
    }
    // A root outside the two middle intervals is left to another step.
    const Zero outside = find_zero(samples_of([](double n) { return 0.01 * (n - 1.5); }));
    EXPECT_FALSE(outside.found);
}

TEST(FindZero, AcrossTheFullCircle) {
    // A separation that runs from just below a full circle through it (a conjunction at the
    // first point of Aries, seen as angles 0 to 2 pi) is found like any other.
    for (const double base : {two_pi, -two_pi, 0.0}) {
        Samples y = samples_of([&](double n) {
            const double v = 0.02 * (n - 0.25);
            return std::fmod(std::fmod(v + base, two_pi) + two_pi, two_pi);
        });
        unwrap_samples(y);
        const Zero z = find_zero(y);
        ASSERT_TRUE(z.found) << base;
        EXPECT_NEAR(z.n, 0.25, 1e-9);
        EXPECT_TRUE(z.rising);
    }
}

TEST(FindZeros, BothCrossingsOfABodyTurningBackOverAPlace) {
    // The body dips below the place and back between two samples; its direction at each
    // crossing is that of the curve, whatever the samples beyond the station say.
    const Samples y = samples_of([](double n) { return 0.001 * ((n - 0.1) * (n - 0.1) - 0.04); });
    const Zeros z = find_zeros(y);
    ASSERT_EQ(z.count, 2);
    EXPECT_NEAR(z.at[0].n, -0.1, 1e-12);
    EXPECT_FALSE(z.at[0].rising);
    EXPECT_NEAR(z.at[1].n, 0.3, 1e-12);
    EXPECT_TRUE(z.at[1].rising);
    // A root on the second slot belongs to the search before; one on the fourth to this one.
    EXPECT_EQ(find_zeros(samples_of([](double n) { return 0.01 * (n + 1); })).count, 0);
    EXPECT_EQ(find_zeros(samples_of([](double n) { return 0.01 * (n - 1); })).count, 1);
}

TEST(FindExtremum, StationOfAParabola) {
    const Samples y = samples_of([](double n) { return 1.0 - 0.003 * (n - 0.4) * (n - 0.4); });
    const Extremum x = find_extremum(y);
    ASSERT_TRUE(x.found);
    EXPECT_NEAR(x.n, 0.4, 1e-9);
    EXPECT_NEAR(x.value, 1.0, 1e-12);
    EXPECT_TRUE(x.maximum);
    const Extremum none = find_extremum(samples_of([](double n) { return 0.1 * n; }));
    EXPECT_FALSE(none.found);
}

TEST(InterpolateSamples, QuarticIsExact) {
    const auto f = [](double n) { return 0.3 + 0.1 * n - 0.02 * n * n + 0.004 * n * n * n * n; };
    const Samples y = samples_of(f);
    for (const double n : {-1.0, -0.37, 0.0, 0.61, 1.0})
        EXPECT_NEAR(interpolate_samples(y, n), f(n), 1e-14);
}

} // namespace
} // namespace celestark
