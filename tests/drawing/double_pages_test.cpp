// The double charts: each ring holds its own event's bodies at their places, an event against
// itself has only conjunctions, and the header's title follows the kind of chart.
#include "drawing_support.h"

#include "drawing/double_pages.h"
#include "engine/chart.h"
#include "session/constants.h"
#include "session/fixed_tables.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace celestark::testing {
namespace {

using drawing::DrawCall;

// The wheel's centre and outer radius: the greatest circle drawn.
struct Wheel {
    float cx = 0, cy = 0, R = 0;
};
Wheel wheel_of(const drawing::RecordingSurface& surface) {
    Wheel w;
    for (const DrawCall& c : surface.calls())
        if ((c.kind == DrawCall::Kind::circle || c.kind == DrawCall::Kind::disc) && c.r > w.R)
            w = {c.x, c.y, c.r};
    return w;
}

// Where the symbol `code` is drawn on the wheel: the distance of each drawing's middle from the
// centre in parts of R, and its angle on the page in degrees.
struct Placed {
    double radius, angle;
};
std::vector<Placed> placed(const drawing::RecordingSurface& surface, const Wheel& w,
                           unsigned char code) {
    std::vector<Placed> out;
    for (const DrawCall& c : surface.calls()) {
        if (c.kind != DrawCall::Kind::text || c.codes != std::string(1, static_cast<char>(code)))
            continue;
        const double dx = c.x + c.w / 2 - w.cx, dy = w.cy - (c.y + c.h / 2);
        const double r = std::hypot(dx, dy) / w.R;
        if (r < 1) out.push_back({r, std::atan2(dy, dx) * rad_to_deg});
    }
    return out;
}

class DoublePages : public ::testing::Test {
  protected:
    DrawingSession ds;
    void SetUp() override {
        ds.event(1990, 6, 15, 12, 0, 51.5, -0.1);
        ds.s.chart.house_system = "None";
        ds.g->d.inner_event = slot::first_user;
        ds.g->d.outer_event = slot::default_event;
        ds.g->d.chart_kind = "C";
    }
    double moon_of(int row) {
        calculate_chart(ds.s, row, true);
        return ds.s.engine.pos.geo_long[geo::moon] * rad_to_deg;
    }
};

// The inner ring shows the inner event's Moon and the outer ring the outer event's, each near
// its own longitude (the band is not turned without houses).
TEST_F(DoublePages, EachRingHoldsItsOwnEvent) {
    const double inner_moon = moon_of(slot::first_user);
    const double outer_moon = moon_of(slot::default_event);
    ASSERT_GT(std::fabs(std::remainder(inner_moon - outer_moon, 360.0)), 30);
    ASSERT_TRUE(ds.show("geo_double"));
    const Wheel w = wheel_of(ds.window);
    ASSERT_GT(w.R, 0);
    const auto moons = placed(ds.window, w, glyph::moon);
    int inner = 0, outer = 0;
    for (const Placed& p : moons) {
        const bool in_inner = p.radius < 0.62;
        const double expected = in_inner ? inner_moon : outer_moon;
        // On the page the zodiac runs counterclockwise or clockwise as the options say.
        const double off = std::min(std::fabs(std::remainder(p.angle - expected, 360.0)),
                                    std::fabs(std::remainder(180 - p.angle - expected, 360.0)));
        EXPECT_LT(off, 8) << (in_inner ? "inner" : "outer") << " Moon at " << p.angle;
        (in_inner ? inner : outer) += 1;
    }
    EXPECT_EQ(inner, 1);
    EXPECT_EQ(outer, 1);
}

// An event against itself: every body meets its own place in a conjunction, drawn as a glyph
// inside the circle; any other aspect is a pair of two bodies, drawn once each way.
TEST_F(DoublePages, AnEventAgainstItselfHasConjunctionsOnly) {
    ds.g->d.outer_event = slot::first_user;
    ASSERT_TRUE(ds.show("helio_double"));
    const Wheel w = wheel_of(ds.window);
    int conjunctions = 0, others = 0;
    for (std::size_t a = 0; a < aspect_glyphs.size(); ++a)
        for (const Placed& p : placed(ds.window, w, aspect_glyphs[a]))
            if (p.radius < 0.62 * 0.55) (a == 0 ? conjunctions : others) += 1;
    EXPECT_GE(conjunctions, 10);
    EXPECT_EQ(others % 2, 0);
}

TEST_F(DoublePages, TheTitleFollowsTheKindOfChart) {
    struct Case {
        const char* kind;
        const char* progression;
        bool over, prenatal;
        const char* title;
    };
    const Case cases[] = {
        {"C", "", false, false, "Comparison Chart"},
        {"T", "", false, false, "Transit Chart"},
        {"B", "", false, true, "Prenatal Astrological Biography Chart"},
        {"P", "Secondary", true, false, "Transits of Secondary Progressed Chart"},
        {"P", "OD", false, false, "OD directions Chart"},
    };
    for (const Case& c : cases) {
        ds.g->d.chart_kind = c.kind;
        ds.g->d.progression_kind = c.progression;
        ds.g->d.transits_over = c.over;
        ds.g->d.prenatal_biography = c.prenatal;
        const auto lines = drawing::double_header_lines(*ds.g);
        ASSERT_GE(lines.size(), 5u);
        EXPECT_EQ(lines[0].rfind("Inner (1) ", 0), 0u) << lines[0];
        EXPECT_EQ(lines[4], c.title);
    }
    // A biography chart says how its time was kept.
    ds.g->d.chart_kind = "B";
    ds.s.predictive.ab_mode = 3;
    ds.s.predictive.time_ratio_code = 4;
    const auto lines = drawing::double_header_lines(*ds.g);
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines[6],
              "Prenatal time direction: Birth to Epoch - Time ratio: 9 synodic months=71.6 years");
    ds.g->d.chart_kind = "X";
    EXPECT_TRUE(drawing::double_header_lines(*ds.g).empty());
    ASSERT_FALSE(ds.folder.fatal_titles.empty());
    EXPECT_EQ(ds.folder.fatal_titles.back(), "Fatal Error in DOUBLE HEADER");
}

} // namespace
} // namespace celestark::testing
