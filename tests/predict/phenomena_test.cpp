// The phenomena list of the sky itself: its checks, its controls, and the year 2020 against the
// almanac (its eclipses; Mars turning retrograde on 9 September and direct on 14 November).
#include "../store/program_folder.h"

#include "predict/phenomena.h"

#include <algorithm>
#include <string>
#include <vector>

namespace celestark::testing {
namespace {

class PhenomenaTest : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    PhenomenaParameters p;
    void SetUp() override {
        ASSERT_TRUE(folder.start(s).started);
        s.sink = &folder.sink;
        p = phenomena_defaults(s);
        p.values["start"] = p.values["end_year"] = "2020";
    }
};

TEST_F(PhenomenaTest, ChecksAndControls) {
    p.values["start"] = "2021";
    p.values["aspects"] = " ";
    EXPECT_FALSE(validate_phenomena(p, folder.sink));
    EXPECT_EQ(
        folder.sink.input_errors,
        (std::vector<std::string>{"Star year greater than end year",
                                  "The end year cannot be earlier than the start year",
                                  "No entry for the aspect set", "Aspect set cannot be a blank"}));
    EXPECT_TRUE(list_phenomena(s, p).empty());
    EXPECT_NE(set_phenomena_control(p, "no_such_box", "1").find("no_such_box"), std::string::npos);
    EXPECT_NE(set_phenomena_control(p, "sun1", "2").find("'2'"), std::string::npos);
    EXPECT_EQ(set_phenomena_control(p, "helio", "1"), "");
    EXPECT_FALSE(p.on("geo"));
}

TEST_F(PhenomenaTest, TheYear2020) {
    set_phenomena_control(p, "eclipse_phenomena", "1");
    std::vector<std::string> eclipses;
    for (const Phenomenon& e : list_phenomena(s, p))
        eclipses.push_back(e.text.substr(0, e.text.find("  ")));
    EXPECT_EQ(eclipses,
              (std::vector<std::string>{"Moon eclipse PN", "Moon eclipse PN", "Sun eclipse A",
                                        "Moon eclipse PN", "Moon eclipse PN", "Sun eclipse T"}));

    set_phenomena_control(p, "eclipse_phenomena", "0");
    set_phenomena_control(p, "aspects_search", "0");
    set_phenomena_control(p, "stationary_search", "1");
    std::vector<double> mars;
    const std::vector<Phenomenon> rows = list_phenomena(s, p);
    for (const Phenomenon& r : rows)
        if (r.body_1 == "mars") mars.push_back(r.jd);
    ASSERT_EQ(mars.size(), 2u);
    EXPECT_NEAR(mars[0], 2459101.5 + 0.95, 0.5); // 2020-09-09 22 h
    EXPECT_NEAR(mars[1], 2459167.5 + 0.0, 0.5);  // 2020-11-14
    EXPECT_TRUE(
        std::is_sorted(rows.begin(), rows.end(),
                       [](const Phenomenon& a, const Phenomenon& b) { return a.jd < b.jd; }));
}

} // namespace
} // namespace celestark::testing
