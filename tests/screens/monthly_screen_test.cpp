// The monthly ephemeris window's checks: each faulty field its line, the calendar its own box,
// and a good screen the request it stands for.
#include "screens/monthly_screen.h"
#include "session/session.h"

#include <gtest/gtest.h>

namespace celestark {
namespace {

TEST(MonthlyScreen, ChecksAndRequest) {
    Session s;
    initialise_session(s, ".");
    MonthlyScreen m = monthly_defaults(s, false);
    m.values["start_month"] = "13";
    m.values["end_year"] = " ";
    RecordingSink sink;
    MonthlyRequest r;
    EXPECT_FALSE(monthly_request(m, r, sink));
    EXPECT_EQ(sink.input_errors,
              (std::vector<std::string>{"START MONTH - Invalid entry ",
                                        "END YEAR - Cannot be left blank or with only spaces ",
                                        "           0 and negative years are allowed",
                                        "           NOTE: enter for example year -35 for 36BC"}));
    m.values["g_j_monthly"] = "X";
    EXPECT_FALSE(monthly_request(m, r, sink));
    EXPECT_EQ(sink.messages.back().title, "CELESTARK");
    EXPECT_EQ(sink.messages.back().text, "Enter G for Gregorian or J for Julian date");

    m = monthly_defaults(s, true);
    m.values = {{"start_month", "11"},
                {"start_year", "-35"},
                {"end_month", "2"},
                {"end_year", "-34"},
                {"g_j_monthly", "j"},
                {"geo", "0"},
                {"hermetic", "0"},
                {"helio", "1"},
                {"lemni", "0"},
                {"p_yes", "0"},
                {"p_no", "1"},
                {"geo_calender", "Major"},
                {"helio_calender", "Minor"}};
    ASSERT_TRUE(monthly_request(m, r, sink));
    EXPECT_EQ(r.first_year, -35);
    EXPECT_EQ(r.last_month, 2);
    EXPECT_EQ(r.gj, "J");
    EXPECT_EQ(r.world_view, "Heliocentric");
    EXPECT_FALSE(r.phenomena);
    // The star calendar of a heliocentric span takes the heliocentric set.
    EXPECT_TRUE(r.star_calendar);
    EXPECT_EQ(r.aspect_set, "Minor");
}

} // namespace
} // namespace celestark
