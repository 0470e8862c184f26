#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace celestark {
namespace {

struct JdCase {
    double day;
    int month, year;
    const char* gj;
    double jd;
};

// Worked examples from Meeus, Astronomical Algorithms, chapter 7, and the calendar switch.
constexpr JdCase jd_cases[] = {
    {1.5, 1, 2000, "G", 2451545.0},    {1.5, 1, -4712, "J", 0.0},
    {4.81, 10, 1957, "G", 2436116.31}, {27.5, 1, 333, "J", 1842713.0},
    {27.0, 1, 1987, "G", 2446822.5},   {19.5, 6, 1987, "G", 2446966.0},
    {27.0, 1, 1988, "G", 2447187.5},   {19.5, 6, 1988, "G", 2447332.0},
    {1.0, 1, 1900, "G", 2415020.5},    {1.0, 1, 1600, "G", 2305447.5},
    {31.0, 12, 1600, "G", 2305812.5},  {10.3, 4, 837, "J", 2026871.8},
    {12.5, 7, -1000, "J", 1356001.0},  {29.0, 2, -1000, "J", 1355866.5},
    {17.9, 8, -1001, "J", 1355671.4},  {4.0, 10, 1582, "J", 2299159.5},
    {15.0, 10, 1582, "G", 2299160.5},
};

TEST(JulianDate, BothWays) {
    for (const auto& c : jd_cases) {
        SCOPED_TRACE(std::to_string(c.year) + "-" + std::to_string(c.month) + "-" +
                     std::to_string(c.day));
        const double whole = std::floor(c.day);
        EXPECT_NEAR(julian_date(whole, c.month, c.year, c.gj, c.day - whole), c.jd, 1e-9);
        const CivilDate back = date_from_julian(c.jd, c.gj);
        EXPECT_EQ(back.year, c.year);
        EXPECT_EQ(back.month, c.month);
        EXPECT_NEAR(back.day, c.day, 1e-6);
    }
}

TEST(JulianDate, CalendarSwitchDaysAreConsecutiveAndNotForced) {
    EXPECT_DOUBLE_EQ(julian_date(15, 10, 1582, "G", 0) - julian_date(4, 10, 1582, "J", 0), 1.0);
    // A Gregorian date before the switch is calculated, not refused or moved.
    EXPECT_DOUBLE_EQ(julian_date(5, 10, 1582, "G", 0), julian_date(15, 10, 1582, "G", 0) - 10);
    // Any calendar text other than "G" counts as Julian.
    EXPECT_DOUBLE_EQ(julian_date(1, 1, 1900, "x", 0), julian_date(1, 1, 1900, "J", 0));
}

TEST(Calendar, LeapRules) {
    struct Case {
        int year;
        const char* gj;
        int february;
    };
    constexpr Case cases[] = {{2000, "G", 29}, {1900, "G", 28}, {1900, "J", 29}, {2100, "G", 28},
                              {2400, "G", 29}, {2023, "G", 28}, {2024, "J", 29}, {0, "J", 29},
                              {-4, "J", 29},   {-400, "G", 29}, {-100, "G", 28}, {-1, "J", 28}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.year);
        EXPECT_EQ(february_days(c.year, c.gj), c.february);
        EXPECT_EQ(days_in_month(2, c.year, c.gj), c.february);
        // The leap rule agrees with the Julian dates of 1 March and 28 February.
        EXPECT_DOUBLE_EQ(julian_date(1, 3, c.year, c.gj, 0) - julian_date(28, 2, c.year, c.gj, 0),
                         c.february - 27);
    }
    const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int m = 1; m <= 12; ++m) EXPECT_EQ(days_in_month(m, 2001, "G"), lengths[m - 1]) << m;
}

TEST(Calendar, DayOfWeekMondayIsOne) {
    EXPECT_EQ(day_of_week(0.0), 1);                                  // JD 0 is a Monday
    EXPECT_EQ(day_of_week(julian_date(1, 1, 2000, "G", 0.5)), 6);    // Saturday
    EXPECT_EQ(day_of_week(julian_date(4, 10, 1582, "J", 0)), 4);     // Thursday
    EXPECT_EQ(day_of_week(julian_date(15, 10, 1582, "G", 0)), 5);    // Friday
    EXPECT_EQ(day_of_week(julian_date(22, 11, 2026, "G", 0.99)), 7); // Sunday
    EXPECT_EQ(day_of_week(-1.0), 7);
}

TEST(DeltaT, BranchesAndTableEnds) {
    struct Case {
        double year;
        double seconds;
        double tol;
    };
    constexpr Case cases[] = {
        {1620.0, 124.0, 1e-9},   {1621.0, 119.5, 1e-9}, {1992.0, 58.0, 1e-9},
        {2000.0, 62.4, 1e-9},    {1900.0, -2.7, 1e-9},  {1619.999, 119.001, 1e-3},
        {948.0, 1830.584, 1e-6}, {0.0, 9848.4, 1e-6},   {-500.0, 17444.1, 1e-6},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.year);
        EXPECT_NEAR(delta_t((c.year - 2000.0) / 100.0), c.seconds, c.tol);
    }
    // The moment after 2000.0 takes the polynomial, with no smoothing at the join.
    EXPECT_NEAR(delta_t(1e-12), 102.3, 1e-6);
}

TEST(Sidereal, GreenwichMeanSiderealTime) {
    // Meeus, example 12.a: 1987 April 10, 0h UT gives 13h 10m 46.3668s.
    const double t = t_from_j2000(2446895.5);
    EXPECT_NEAR(greenwich_sidereal_hours(t), 13.0 + 10.0 / 60 + 46.3668 / 3600, 1e-7);
    EXPECT_NEAR(greenwich_sidereal_hours(0.0), 18.697374558, 1e-8);
    for (double jd = 2400000.0; jd < 2500000.0; jd += 12345.678) {
        const double h = greenwich_sidereal_hours(t_from_j2000(jd));
        EXPECT_GE(h, 0.0);
        EXPECT_LT(h, 24.0);
    }
}

TEST(Angles, NormalisationAndDifferencesAtTheWrap) {
    EXPECT_DOUBLE_EQ(norm_deg(-30.0), 330.0);
    EXPECT_DOUBLE_EQ(norm_deg(720.0), 0.0);
    EXPECT_NEAR(norm_rad(-0.5), two_pi - 0.5, 1e-15);
    EXPECT_DOUBLE_EQ(norm_mod(25.0, 24.0), 1.0);
    EXPECT_NEAR(rad_diff(0.1, two_pi - 0.1), 0.2, 1e-12);
    EXPECT_NEAR(rad_diff(two_pi - 0.1, 0.1), -0.2, 1e-12);
    EXPECT_NEAR(rad_sep(two_pi - 0.1, 0.1), 0.2, 1e-12);
    EXPECT_DOUBLE_EQ(deg_diff(359.0, 1.0), -2.0);
    EXPECT_DOUBLE_EQ(deg_diff(1.0, 359.0), 2.0);
    EXPECT_DOUBLE_EQ(deg_diff(180.0, 0.0), 180.0);
    EXPECT_NEAR(deg_diff(0.0, 180.0), 180.0, 1e-12); // -180 folds to 180
    EXPECT_FLOAT_EQ(deg_diff(359.0f, 1.0f), -2.0f);
    EXPECT_NEAR(rad_diff(0.1f, two_pi_f - 0.1f), 0.2f, 1e-5f);

    struct IntCase {
        int in, out;
    };
    for (const auto& c : {IntCase{0, 360}, {360, 360}, {361, 1}, {720, 360}, {-359, 1}, {1, 1}})
        EXPECT_EQ(norm_int_deg(c.in), c.out) << c.in;
}

TEST(Angles, InverseTrigonometryMatchesTheLibrary) {
    // With x negative, pi is added or taken by the sign of atan(y / x), not of y.
    EXPECT_NEAR(arctan2(-0.5, -1.0), std::atan(0.5) + pi, 1e-15);
    EXPECT_NEAR(arctan2(0.5, -1.0), -std::atan(0.5) - pi, 1e-15);
    EXPECT_EQ(arctan2(0.0, 0.0), 0.0);
    EXPECT_EQ(arcsin(0.0), 0.0);
    for (double a = -3.1; a < 3.15; a += 0.1) {
        const double y = std::sin(a), x = std::cos(a);
        // The same direction, though not always in -pi..pi: every reader folds.
        EXPECT_NEAR(rad_diff(arctan2(y, x), a), 0.0, 1e-13) << a;
        EXPECT_NEAR(
            rad_diff(arctan2(static_cast<float>(y), static_cast<float>(x)), static_cast<float>(a)),
            0.0f, 2e-6f)
            << a;
    }
    for (double x = -0.99; x < 1.0; x += 0.11) {
        EXPECT_NEAR(arcsin(x), std::asin(x), 1e-13) << x;
        EXPECT_NEAR(arccos(x), std::acos(x), 1e-13) << x;
    }
}

TEST(Interpolation, FivePointIsExactForQuartics) {
    const auto f = [](double x) {
        return 3 - 2 * x + 0.5 * x * x - 0.1 * x * x * x + 0.02 * x * x * x * x;
    };
    for (double n = -0.5; n <= 0.5; n += 0.125)
        EXPECT_NEAR(interpolate5(n, f(-2), f(-1), f(0), f(1), f(2)), f(n), 1e-12) << n;
}

} // namespace
} // namespace celestark
