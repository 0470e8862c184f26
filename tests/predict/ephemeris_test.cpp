// The monthly ephemeris: its rows are the positions of 0 hours of each day, a planet's turn is
// marked on the first day that shows it (Mars in 2020 by the almanac), and a year before our era
// has its months.
#include "app/body_tables.h"
#include "engine/chart.h"
#include "predict/ephemeris.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace celestark {
namespace {

Session with_tables() {
    Session s;
    initialise_session(s, ".");
#ifdef CELESTARK_TABLES_DIR
    std::string problems;
    s.body_tables = open_body_tables(CELESTARK_TABLES_DIR, problems);
#endif
    return s;
}

TEST(MonthlyEphemeris, RowsAreThePositionsOfEachDayAndTurnsAreMarkedOnTheirDay) {
    Session s = with_tables();
    const auto months = monthly_ephemeris(s, 2020, 9, 2020, 11, "G", "Geocentric");
    ASSERT_EQ(months.size(), 3u);
    EXPECT_EQ(months[0].days.size(), 30u);
    EXPECT_EQ(months[1].days.size(), 31u);
    EXPECT_EQ(months[0].days[0].weekday, "TU"); // 1 September 2020
    std::size_t mars = 0;
    while (months[0].glyphs[mars] != glyph::mars) ++mars;
    std::vector<std::string> marks;
    for (const auto& m : months)
        for (const auto& d : m.days) {
            if (!d.marks[mars].empty())
                marks.push_back(std::to_string(m.month) + "-" + std::to_string(d.day) +
                                d.marks[mars]);
            EXPECT_TRUE(d.marks[0].empty() && d.marks[1].empty()); // the Sun and the Moon
        }
    // Mars stood still at 22:22 UT on 9 September and at 0:36 UT on 14 November: the first days
    // on which the days about them show the new direction are the 10th and the 15th.
    EXPECT_EQ(marks, (std::vector<std::string>{"9-10R", "11-15D"}));
    // The row of a day is the engine's position at 0 hours of it.
    Session direct = with_tables();
    const EphemerisDay& day = months[1].days[14];
    direct.engine.earth_rates_level = 0;
    calculate_bodies_at(direct, day.jd);
    for (std::size_t k = 0; k < day.longitudes.size(); ++k)
        EXPECT_NEAR(std::remainder(day.longitudes[k] - direct.engine.pos.geo_long[k], two_pi), 0,
                    1e-12);
}

TEST(MonthlyEphemeris, YearZeroAndBefore) {
    Session s = with_tables();
    const auto months = monthly_ephemeris(s, -1, 12, 0, 2, "J", "Heliocentric");
    ASSERT_EQ(months.size(), 3u);
    EXPECT_EQ(months[0].year, -1);
    EXPECT_EQ(months[2].year, 0);
    EXPECT_EQ(months[2].days.size(), 29u); // the year 0 is a leap year of the Julian calendar
    EXPECT_EQ(months[0].glyphs.front(), glyph::earth);
}

} // namespace
} // namespace celestark
