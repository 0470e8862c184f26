// The motion of the planets on the chart window: the checks of its dates, span and bodies with
// their messages in order, and the request that sets the page.
#include "../store/program_folder.h"

#include "screens/planet_motion.h"
#include "session/fixed_tables.h"

namespace celestark::testing {
namespace {

struct MotionCase {
    const char* what;
    MotionInput input;
    const char* calendar;
    std::vector<std::string> lines;
};

MotionInput span(const char* d1, const char* m1, const char* y1, const char* d2, const char* m2,
                 const char* y2, std::vector<std::string> ticked = {"mars"}) {
    return {d1, m1, y1, d2, m2, y2, std::move(ticked)};
}

TEST(MotionChecks, EachFaultHasItsLineInOrder) {
    const std::string start_day = "START DAY - Invalid entry ";
    const std::string start_blank = "START YEAR - Cannot be left blank or with only spaces ";
    const std::string end_blank = "END YEAR - Cannot be left blank or with only spaces ";
    const std::string moon = "WITH THE MOON SELECTED THE MAXIMUM PERIOD IS 2 YEARS";
    const std::string century =
        "ONLY THE PLANETS FROM JUPITER CAN BE USED WITH PERIODS GREATER THAN 100 YEARS";
    const std::string most = "THE MAXIMUM PERIOD IS 2000 YEARS";
    const std::string april = "START DATE - Invalid number of days for the month";
    const std::string february = "END DATE - Invalid number of days for the month";
    const std::string start_year = "START YEAR - Invalid entry ";
    const std::string backward = "END DATE IS EARLIER THEN THE START DATE";
    const std::string no_planet = "NO PLANET IS SELECTED";
    const MotionCase cases[] = {
        {"a year of Mars", span("1", "1", "2000", "1", "1", "2001"), "G", {}},
        {"day 32", span("32", "1", "2000", "1", "1", "2001"), "G", {start_day}},
        {"letters and month 13",
         span("x", "13", "2000", "1", "0", "2001"),
         "G",
         {start_day, "START MONTH - Invalid entry ", "END MONTH - Invalid entry "}},
        {"blank years",
         span("1", "1", "  ", "1", "1", ""),
         "G",
         {start_blank, "             0 and negative years are allowed", end_blank,
          "           0 and negative years are allowed"}},
        {"a year of letters", span("1", "1", "19x5", "1", "1", "2001"), "G", {start_year}},
        {"31 April", span("31", "4", "2000", "1", "1", "2001"), "G", {april}},
        {"29 February 1900, Gregorian", span("1", "1", "1899", "29", "2", "1900"), "G", {february}},
        {"29 February 1900, Julian", span("1", "1", "1899", "29", "2", "1900"), "J", {}},
        {"36 BC to 35 BC", span("1", "1", "-35", "1", "1", "-34"), "J", {}},
        {"backward", span("1", "1", "2001", "1", "1", "2000"), "G", {backward}},
        {"3 years of the Moon", span("1", "1", "2000", "1", "1", "2003", {"moon"}), "G", {moon}},
        {"two years of the Moon", span("1", "1", "2000", "31", "12", "2001", {"moon"}), "G", {}},
        {"150 years of Mars", span("1", "1", "1900", "1", "1", "2050"), "G", {century}},
        {"150 years of Jupiter", span("1", "1", "1900", "1", "1", "2050", {"jupiter"}), "G", {}},
        {"2500 years of Saturn", span("1", "1", "-500", "1", "1", "2000", {"saturn"}), "G", {most}},
        {"2500 years of everything",
         span("1", "1", "-500", "1", "1", "2000", {"moon", "vesta", "neptune"}),
         "G",
         {moon, century, most}},
        {"nothing ticked", span("1", "1", "2000", "1", "1", "2001", {}), "G", {no_planet}},
    };
    for (const MotionCase& c : cases) {
        MotionSpan got;
        EXPECT_EQ(motion_errors(c.input, c.calendar, 0, 0, true, got), c.lines) << c.what;
    }
    // The span comes back; dates beyond the outer planets' tables are refused.
    MotionSpan got;
    ASSERT_TRUE(
        motion_errors(span("1", "1", "2000", "2", "1", "2000"), "G", 0, 0, true, got).empty());
    EXPECT_DOUBLE_EQ(got.end_jd - got.start_jd, 1);
    const auto bounded =
        motion_errors(span("1", "1", "2000", "1", "1", "2100"), "G", 2400000, 2470000, true, got);
    ASSERT_EQ(bounded.size(), 1u);
    EXPECT_EQ(bounded[0].rfind("THE DATES MUST LIE BETWEEN THE YEARS", 0), 0u) << bounded[0];
    // The plan needs no bodies.
    EXPECT_TRUE(
        motion_errors(span("1", "1", "2000", "1", "1", "2001", {}), "G", 0, 0, false, got).empty());
}

TEST(MotionChecks, TheRequestShowsTheErrorsOrSetsThePage) {
    ProgramFolder folder;
    Session s;
    ASSERT_TRUE(folder.start(s).started);
    const MotionInput good = span("1", "1", "2000", "1", "1", "2001", {"earth", "moon"});
    EXPECT_FALSE(motion_request(s, good, MotionView::helio, folder.sink));
    EXPECT_EQ(folder.sink.messages.back().title, "NO EVENT");
    s.event_slots[1] = make_default_event();
    EXPECT_FALSE(motion_request(s, span("1", "1", "2003", "1", "1", "2000", {"moon"}),
                                MotionView::helio, folder.sink));
    EXPECT_EQ(folder.sink.input_errors,
              (std::vector<std::string>{"END DATE IS EARLIER THEN THE START DATE"}));
    ASSERT_TRUE(motion_request(s, good, MotionView::lemni_3d, folder.sink));
    const DrawingState& d = s.drawing;
    EXPECT_TRUE(d.motion.three_d);
    EXPECT_EQ(d.motion.bodies, (std::vector<unsigned char>{glyph::moon, glyph::earth}));
    EXPECT_NEAR(d.motion.end_jd - d.motion.start_jd, 366, 1e-9);
    EXPECT_FALSE(d.allow_stepping);
    // The plan: the event at the start date, in the work row.
    ASSERT_TRUE(motion_request(s, span("5", "6", "1990", "1", "1", "1991", {}), MotionView::geo,
                               folder.sink));
    EXPECT_EQ(d.screen_page, "plan display");
    EXPECT_EQ(d.working_event, slot::work);
    EXPECT_EQ(s.event_slots[slot::work][col::year], "1990");
    EXPECT_EQ(s.event_slots[slot::work][col::hours], s.event_slots[1][col::hours]);
}

} // namespace
} // namespace celestark::testing
