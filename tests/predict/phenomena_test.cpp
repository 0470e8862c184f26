// The phenomena list of the sky itself: its checks, its controls, and the year 2020 against the
// almanac (its eclipses; Mars turning retrograde on 9 September and direct on 14 November).
#include "../store/program_folder.h"

#include "engine/chart.h"
#include "predict/phenomena.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/positions.h"
#include "store/option_sets.h"

#include <algorithm>
#include <cmath>
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

// The Moon's aspects to the heliocentric bodies over a month, found from samples a day apart,
// against an hourly scan of the same positions: each crossing found once, and at the moment
// found the two stand at the aspect's angle.
TEST_F(PhenomenaTest, TheMoonsAspectsToTheHeliocentricBodies) {
    load_aspect_set(s, "Standard", folder.sink);
    const AspectTable set = s.option_sets.aspects;
    ASSERT_GT(set.aspect_count, 0);
    const double first = julian_date(1, 3, 2024, "G", 0), last = julian_date(1, 4, 2024, "G", 0);
    const std::vector<Phenomenon> found = moon_aspects_to_heliocentric(s, first, last);
    // The separations to watch: the Moon from each body, less each angle on each side.
    struct Watch {
        std::size_t body;
        double angle;
    };
    std::vector<Watch> watches;
    calculate_bodies_at(s, first);
    const std::size_t bodies = static_cast<std::size_t>(s.engine.pos.helio_count_base);
    for (std::size_t q = 0; q < bodies; ++q)
        for (std::size_t a = 0; a < set.angle.size(); ++a) {
            if (set.orb_moon[a] == 0) continue;
            watches.push_back({q, set.angle[a] * deg_to_rad});
            if (set.angle[a] > 0 && set.angle[a] < 180)
                watches.push_back({q, -set.angle[a] * deg_to_rad});
        }
    const auto offsets = [&](double t) {
        calculate_bodies_at(s, t);
        std::vector<double> y;
        for (const Watch& w : watches)
            y.push_back(std::remainder(s.engine.pos.geo_long[geo::moon] -
                                           s.engine.pos.helio_long[w.body] - w.angle,
                                       two_pi));
        return y;
    };
    std::size_t crossings = 0;
    std::vector<double> before = offsets(first);
    for (double t = first + 1.0 / 24; t <= last + 1e-9; t += 1.0 / 24) {
        const std::vector<double> now = offsets(t);
        for (std::size_t k = 0; k < now.size(); ++k)
            if (std::fabs(now[k]) < 0.5 && (before[k] < 0) != (now[k] < 0)) ++crossings;
        before = now;
    }
    EXPECT_EQ(found.size(), crossings);
    for (const Phenomenon& ph : found) {
        const std::vector<double> y = offsets(ph.jd);
        double nearest = 1;
        for (const double v : y) nearest = std::min(nearest, std::fabs(v));
        EXPECT_LT(nearest / deg_to_rad * 3600, 10) << ph.text;
        EXPECT_EQ(ph.body_1, "moon");
    }
}

} // namespace
} // namespace celestark::testing
