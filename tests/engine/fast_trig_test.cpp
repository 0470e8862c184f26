#include "engine/fast_trig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace celestark {
namespace {

TEST(FastTrig, AgreesWithTheLibraryOverTheSeriesArguments) {
    // The series reach arguments of about 1e6 radians (the fastest lunar terms a few thousand
    // years from 2000); beyond, the reduction loses bits slowly and stays far below what matters.
    struct Case {
        double range, tolerance;
    };
    std::mt19937_64 random(7);
    for (const Case c : {Case{1, 3e-16}, {100, 3e-16}, {1e4, 3e-16}, {1e6, 3e-16}, {1e8, 1e-7}}) {
        std::uniform_real_distribution<double> u(-c.range, c.range);
        for (int i = 0; i < 20000; ++i) {
            const double x = u(random);
            const SinCos sc = sin_cos(x);
            ASSERT_NEAR(sc.sin, std::sin(x), c.tolerance) << x;
            ASSERT_NEAR(sc.cos, std::cos(x), c.tolerance) << x;
        }
    }
    for (double x : {0.0, -0.0, 0.7853981633974483, 1.5707963267948966, 3.141592653589793,
                     -4.71238898038469}) {
        EXPECT_NEAR(sin_cos(x).sin, std::sin(x), 2e-16) << x;
        EXPECT_NEAR(sin_cos(x).cos, std::cos(x), 2e-16) << x;
    }
}

} // namespace
} // namespace celestark
