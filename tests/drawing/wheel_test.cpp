// The wheel: placing on the ring of 360 slots, spreading, and the drawn glyphs and ticks.
#include "drawing_support.h"

#include "drawing/wheel.h"
#include "session/fixed_tables.h"

#include <cmath>
#include <map>
#include <random>
#include <set>

namespace celestark::testing {
namespace {

using drawing::DrawCall;

class Wheel : public ::testing::Test {
  protected:
    DrawingSession ds;
    drawing::Drawing& g = *ds.g;
    WheelState& w = g.d.wheel;

    void bodies(const std::vector<double>& longitudes, bool with_cusps = false,
                const std::vector<double>& cusps = {}) {
        drawing::clear_plot_list(w);
        if (with_cusps)
            for (double c : cusps) drawing::add_plot_entry(w, " ", c);
        w.plot_count = 12;
        for (std::size_t i = 0; i < longitudes.size(); ++i)
            drawing::add_plot_entry(w, std::string(1, char(161 + i % 10)), longitudes[i]);
    }
    std::map<int, float> slots_of_bodies() const {
        std::map<int, float> out;
        for (int i = 1; i <= 360; ++i)
            if (!w.slot_glyph[i].empty() && w.slot_glyph[i] != " ") out[i] = w.slot_long[i];
        return out;
    }
};

TEST_F(Wheel, BodiesAtTheSeamKeepTheirOrder) {
    bodies({359.9, 0.1});
    drawing::place_on_ring(g);
    EXPECT_EQ(w.slot_glyph[360], std::string(1, char(161)));
    EXPECT_FLOAT_EQ(w.slot_long[360], 359.9f);
    EXPECT_EQ(w.slot_glyph[1], std::string(1, char(162)));
    EXPECT_FLOAT_EQ(w.slot_long[1], 360.1f);
}

// Whatever the spreading does to bodies, the cusps stand where the placing put them, and no body
// is lost; afterwards bodies stand at least `sep` slots apart wherever there is room.
TEST_F(Wheel, SpreadingNeverMovesACuspNorLosesABody) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> degree(0, 360);
    for (int round = 0; round < 200; ++round) {
        std::vector<double> cusps(12);
        for (double& c : cusps) c = degree(random);
        std::vector<double> longitudes(5 + round % 20);
        for (double& l : longitudes) l = degree(random);
        bodies(longitudes, true, cusps);
        drawing::place_on_ring(g);
        std::vector<int> blanks;
        for (int i = 1; i <= 360; ++i)
            if (w.slot_glyph[i] == " ") blanks.push_back(i);
        const std::size_t placed = slots_of_bodies().size();
        drawing::spread_ring(w, 3, 2);
        std::vector<int> after;
        for (int i = 1; i <= 360; ++i)
            if (w.slot_glyph[i] == " ") after.push_back(i);
        ASSERT_EQ(after, blanks) << "round " << round;
        ASSERT_EQ(slots_of_bodies().size(), placed) << "round " << round;
    }
}

// Seven bodies within 20 degrees, in the order a chart lists them: each gets a slot of its own,
// three slots apart, in longitude order, and the ticks run back to the true places.
TEST_F(Wheel, ACrowdOfSevenSpreadsInOrder) {
    const std::vector<double> crowd = {100.2, 102.7, 104.1, 106.0, 109.5, 112.3, 118.8};
    bodies(crowd);
    drawing::place_on_ring(g);
    EXPECT_LT(drawing::spread_ring(w, 3, 2), 101);
    const auto placed = slots_of_bodies();
    ASSERT_EQ(placed.size(), crowd.size());
    int previous = -100;
    float previous_long = -1;
    for (const auto& [slot, longitude] : placed) {
        EXPECT_GE(slot - previous, 3);
        EXPECT_GT(longitude, previous_long); // order kept
        previous = slot;
        previous_long = longitude;
    }
}

// The insertion rule as the program has it: an entry that belongs between two close neighbours
// pushes the run from its place up to the first free slot, and the first copy carries that free
// slot's emptiness one slot further, so a body standing just past the run leaves the ring. Here
// 105.0 drops out when 100.4 comes last.
TEST_F(Wheel, TheInsertionRuleDropsTheBodyPastTheRun) {
    bodies({100.2, 100.9, 102.3, 103.1, 105.0, 100.4});
    drawing::place_on_ring(g);
    const auto placed = slots_of_bodies();
    std::set<float> kept;
    for (const auto& [slot, longitude] : placed) kept.insert(longitude);
    EXPECT_EQ(placed.size(), 5u);
    EXPECT_EQ(kept.count(105.0f), 0u);
    // The new entry stands before the neighbour it follows: the order is kept as it falls.
    EXPECT_FLOAT_EQ(w.slot_long[100], 100.4f);
    EXPECT_FLOAT_EQ(w.slot_long[101], 100.2f);
    // In list order the same crowd keeps every body.
    bodies({100.2, 100.4, 100.9, 102.3, 103.1, 105.0});
    drawing::place_on_ring(g);
    EXPECT_EQ(slots_of_bodies().size(), 6u);
}

// The drawn glyphs of a crowd never overlap: the boxes of their ink (their advance along the
// radius, 0.8 of the em across it) are apart, turned as drawn.
TEST_F(Wheel, DrawnGlyphsOfACrowdDoNotOverlap) {
    struct Box {
        double cx, cy, half_w, half_h, angle;
    };
    auto overlap = [](const Box& a, const Box& b) {
        // Separating axes of two turned rectangles.
        for (double axis : {a.angle, a.angle + M_PI / 2, b.angle, b.angle + M_PI / 2}) {
            const double ux = std::cos(axis), uy = -std::sin(axis);
            auto reach = [&](const Box& r) {
                return r.half_w * std::fabs(std::cos(r.angle - axis)) +
                       r.half_h * std::fabs(std::sin(r.angle - axis));
            };
            const double gap = std::fabs((b.cx - a.cx) * ux + (b.cy - a.cy) * uy);
            if (gap > reach(a) + reach(b)) return false;
        }
        return true;
    };
    for (int level : {0, 1, 2}) {
        ds.s.chart.display_plan_degs = static_cast<std::int16_t>(level);
        drawing::set_chart_detail(g, 2, -1);
        bodies({100.2, 102.7, 104.1, 106.0, 109.5, 112.3, 118.8});
        ds.window.forget();
        drawing::plot_planets(g, 8000, 8000, 6000, 6000 * 0.004f, 0, 1);
        std::vector<Box> boxes;
        for (const DrawCall& c : ds.window.calls()) {
            if (c.kind != DrawCall::Kind::text || c.codes.size() != 1 ||
                static_cast<unsigned char>(c.codes[0]) < 161)
                continue;
            const double a = c.angle * M_PI / 180, em = c.points * 20;
            const double mx = c.w / 2, my = 0.45 * em;
            boxes.push_back({c.x + mx * std::cos(a) + my * std::sin(a),
                             c.y - mx * std::sin(a) + my * std::cos(a), c.w / 2, 0.4 * em, a});
        }
        ASSERT_EQ(boxes.size(), 7u) << "level " << level;
        for (std::size_t i = 0; i < boxes.size(); ++i)
            for (std::size_t j = i + 1; j < boxes.size(); ++j)
                EXPECT_FALSE(overlap(boxes[i], boxes[j]))
                    << "level " << level << ": " << i << ", " << j;
    }
}

// A real chart: every body of the geocentric list is drawn once on the wheel, with a tick that
// starts on the ring at its true longitude.
TEST_F(Wheel, EveryBodyIsDrawnOnceWithATickToItsTruePlace) {
    ds.event(1879, 3, 14, 11, 30, 48.4, 10.0);
    ASSERT_TRUE(ds.show("geo1"));
    const auto& calls = ds.window.calls();
    // The band's outer circle gives the centre and R; the bodies stand on 0.85 R.
    const auto ring = std::find_if(calls.begin(), calls.end(), [](const DrawCall& c) {
        return c.kind == DrawCall::Kind::circle;
    });
    ASSERT_NE(ring, calls.end());
    const double cx = ring->x, cy = ring->y, r0 = ring->r * 0.85;
    const double rotation = drawing::house_rotation(ds.s);
    const PositionLists& p = ds.s.engine.pos;
    for (int i = 0; i < p.geo_count; ++i) {
        const unsigned char code = p.geo_glyph[static_cast<std::size_t>(i)];
        int glyphs = 0;
        for (const DrawCall& c : calls)
            if (c.kind == DrawCall::Kind::text && c.primitive == "display_glyph_inside" &&
                c.codes == std::string(1, char(code)) && c.angle != 0)
                ++glyphs;
        const double a = p.geo_long[static_cast<std::size_t>(i)] + rotation;
        const double tx = cx + r0 * std::cos(a), ty = cy - r0 * std::sin(a);
        const bool tick = std::any_of(calls.begin(), calls.end(), [&](const DrawCall& c) {
            return c.kind == DrawCall::Kind::line && std::hypot(c.x - tx, c.y - ty) < 2;
        });
        EXPECT_EQ(glyphs, 1) << "glyph " << int(code);
        EXPECT_TRUE(tick) << "glyph " << int(code);
    }
}

} // namespace
} // namespace celestark::testing
