// The window `planetary_aspects` without its widgets: its first values, the controls as they set
// the parameters, the clearing of both columns of bodies, the checks of DISPLAY and PRINT, and
// the list they make with the head of its pages.
#include "../store/program_folder.h"

#include "screens/phenomena_screen.h"

#include <algorithm>
#include <string>
#include <vector>

namespace celestark::testing {
namespace {

class PhenomenaScreenTest : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    PhenomenaScreen screen;
    void SetUp() override {
        ASSERT_TRUE(folder.start(s).started);
        s.sink = &folder.sink;
        screen.open(s);
    }
    std::string value(const std::string& name) { return screen.params().values[name]; }
};

TEST_F(PhenomenaScreenTest, ControlsSetTheParameters) {
    struct Case {
        const char* name;
        const char* value;
        bool accepted;
        const char* check; // the control read back
        const char* expected;
    };
    const Case cases[] = {
        {"start", "1990", true, "start", "1990"},
        {"gj", "J", true, "gj", "J"},
        {"gj", "X", false, "gj", "J"},
        {"helio", "1", true, "geo", "0"},
        {"lemni", "1", true, "helio", "0"},
        {"quaoar2", "1", true, "quaoar2", "1"},
        {"stars2", "1", true, "stars2", "1"},
        {"sun1", "yes", false, "sun1", "1"},
        {"stars1", "1", false, "stars1", ""},
        {"print", "1", false, "print", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name) + "=" + c.value);
        EXPECT_EQ(screen.set(c.name, c.value).empty(), c.accepted);
        EXPECT_EQ(value(c.check), c.expected);
    }
    EXPECT_EQ(phenomena_world_view(screen.params()), "Lemnicentric");
    screen.set("eclipse_phenomena", "1");
    EXPECT_EQ(phenomena_world_view(screen.params()), "Geocentric");
}

TEST_F(PhenomenaScreenTest, ClearingEmptiesBothColumnsOnly) {
    screen.set("stars2", "1");
    screen.set("moon1", "1");
    screen.clear_bodies();
    for (const auto& [name, v] : screen.params().values) {
        const bool body = name.back() == '1' || name.back() == '2';
        if (body) {
            EXPECT_EQ(v, "0") << name;
        }
    }
    EXPECT_EQ(value("start"), "2005");
    EXPECT_TRUE(screen.params().on("aspects_search"));
    EXPECT_TRUE(screen.params().on("geo"));
}

TEST_F(PhenomenaScreenTest, FaultyInputIsListedAndNothingIsMade) {
    struct Case {
        const char* start;
        const char* end;
        const char* aspects;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"", "2010", "x", {"No entry for Start Year", "Start year cannot be a blank"}},
        {"2005", " ", "x", {"No entry for End Year", "End year cannot be a blank"}},
        {"19x0", "2010", "x", {"No entry for Start Year", "Start year cannot be a blank"}},
        {"2011",
         "2010",
         "x",
         {"Star year greater than end year", "The end year cannot be earlier than the start year"}},
        {"2005", "2005", "", {"No entry for the aspect set", "Aspect set cannot be a blank"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.start) + ".." + c.end);
        folder.sink.input_errors.clear();
        screen.set("start", c.start);
        screen.set("end_year", c.end);
        screen.set("aspects", c.aspects);
        EXPECT_FALSE(screen.make_list(s, folder.sink));
        EXPECT_EQ(folder.sink.input_errors, c.lines);
        EXPECT_TRUE(screen.rows().empty());
        EXPECT_TRUE(screen.page_title().empty());
    }
}

TEST_F(PhenomenaScreenTest, TheListAndTheHeadOfItsPages) {
    screen.set("start", "2020");
    screen.set("end_year", "2020");
    screen.set("helio", "1");
    screen.set("eclipse_phenomena", "1");
    ASSERT_TRUE(screen.make_list(s, folder.sink));
    EXPECT_TRUE(folder.sink.input_errors.empty());
    EXPECT_TRUE(screen.eclipses());
    EXPECT_EQ(screen.rows().size(), 6u);
    EXPECT_EQ(screen.page_title(), "PLANETARY PHENOMENA   2020 - 2020   Geocentric");

    // A faulty change keeps the list made.
    screen.set("end_year", "2019");
    EXPECT_FALSE(screen.make_list(s, folder.sink));
    EXPECT_EQ(screen.rows().size(), 6u);

    screen.set("end_year", "2020");
    screen.set("eclipse_phenomena", "0");
    screen.set("aspects_search", "0");
    screen.set("ingresses_search", "1");
    screen.set("tych", "1");
    ASSERT_TRUE(screen.make_list(s, folder.sink));
    EXPECT_FALSE(screen.eclipses());
    EXPECT_EQ(screen.page_title(), "PLANETARY PHENOMENA   2020 - 2020   Tychonic");
    ASSERT_FALSE(screen.rows().empty());
    EXPECT_TRUE(
        std::is_sorted(screen.rows().begin(), screen.rows().end(),
                       [](const Phenomenon& a, const Phenomenon& b) { return a.jd < b.jd; }));
    EXPECT_GE(screen.rows().front().jd, 2458849.5); // 1 January 2020
    EXPECT_LT(screen.rows().back().jd, 2459215.5);  // 1 January 2021
}

} // namespace
} // namespace celestark::testing
