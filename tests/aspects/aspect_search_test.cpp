// Body and pair classes, and the aspect searches: the fold of the separation, the orb of each
// pair class, the last aspect winning its cell, mark 2, the cross, element and session searches.
#include "aspect_test_support.h"
#include "engine/chart.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <gtest/gtest.h>

#include <random>

namespace celestark {
namespace {

using testing::aspect_table;
using testing::Bodies;

constexpr StarGlyphs stars = {120, 230, 0, 0, 0, 0, 0, 0};

TEST(AspectClasses, BodyClassFirstMatchAndPairClassInOrder) {
    using namespace glyph;
    const std::vector<std::pair<int, std::vector<unsigned char>>> classes = {
        {1, {sun, earth}},
        {2, {moon}},
        {3, {ascendant, midheaven, mercury, pluto}},
        {4,
         {north_node, perigee, chiron, sedna, quaoar, ceres, juno, part_of_fortune, part_of_chiron,
          117, 124}},
        {5, {120, 230}}, // 120 is a star before it is one of 117 to 124
        {0, {south_node, apogee, descendant, 116, 125, 0}}, // 0: an empty star entry matches none
    };
    for (const auto& [body, codes] : classes)
        for (unsigned char code : codes) EXPECT_EQ(body_class(code, stars), body) << int(code);
    EXPECT_EQ(body_class(sun, StarGlyphs{sun}), 1); // a star glyph that is the Sun's is the Sun

    const int pairs[][3] = {{5, 5, 0}, {5, 1, 5}, {2, 5, 5}, {4, 1, 4}, {2, 4, 4}, {1, 2, 1},
                            {2, 1, 1}, {2, 3, 2}, {3, 3, 3}, {0, 3, 3}, {0, 0, 3}, {0, 1, 1}};
    for (const auto& p : pairs) EXPECT_EQ(pair_class(p[0], p[1]), p[2]) << p[0] << "," << p[1];
}

// A conjunction and an opposition; the orbs differ by class so that the class shows.
const AspectTable two_aspects = aspect_table({
    {0.0f, "Cj", 192, -1, 5.0f, 3.0f, 2.0f, 1.0f, 0.5f},
    {180.0f, "Op", 202, -1, 5.0f, 3.0f, 2.0f, 1.0f, 0.5f},
});

TEST(ChartAspects, PairsTakeTheOrbOfTheirClassAndTheFoldedSeparation) {
    struct Case {
        const char* what;
        unsigned char a, b;
        double at, separation;
        bool in_aspect;
    };
    const Case cases[] = {
        {"Sun and Moon take the Sun orb", glyph::sun, glyph::moon, 10, 4.5, true},
        {"Moon and Mercury the Moon orb", glyph::moon, glyph::mercury, 10, 3.5, false},
        {"two planets", glyph::mars, glyph::venus, 10, 2.1, false},
        {"Sun and Chiron the elements orb", glyph::sun, glyph::chiron, 10, 1.5, false},
        {"Moon and a star the stars orb", glyph::moon, 120, 10, 0.6, false},
        {"a star and a planet within it", 230, glyph::mars, 10, 0.4, true},
        {"two stars never", 120, 230, 10, 0.0, false},
        {"no class beside a planet", glyph::south_node, glyph::mars, 10, 1.9, true},
        {"359 and 1 degrees, orb 2", glyph::mars, glyph::venus, 359, 2.0, true},
    };
    for (const Case& c : cases) {
        const Bodies bodies{{c.a, c.at}, {c.b, c.at + c.separation}};
        AspectMatrix m;
        search_aspects(two_aspects, bodies.list(), stars, m);
        EXPECT_EQ(m.in_aspect(1, 2), c.in_aspect) << c.what;
        EXPECT_NEAR(m.cell(1, 2), c.separation, 1e-4) << c.what;
        EXPECT_EQ(m.mark(1, 2, 0), c.in_aspect ? "Cj" : "") << c.what;
    }
    // Exactly 180 degrees apart folds to -180 both ways and meets the opposition exactly.
    const Bodies apart{{glyph::mars, 0.0}, {glyph::venus, 180.0}};
    AspectMatrix m;
    search_aspects(two_aspects, apart.list(), stars, m);
    EXPECT_FLOAT_EQ(m.cell(1, 2), -180.0f);
    EXPECT_FLOAT_EQ(m.cell(2, 1), -180.0f);
    EXPECT_EQ(m.aspect(2, 1), 2);
    EXPECT_EQ(m.mark(2, 1, 0), "Op");
    EXPECT_FLOAT_EQ(m.orb(2, 1), 0.0f);
    EXPECT_FLOAT_EQ(m.cell(2, 0), 180.0f);
    EXPECT_FALSE(m.in_aspect(1, 1)); // the diagonal is never measured
}

TEST(ChartAspects, TheLastAspectWinsMarkTwoFollowsTheAspectogramAndEachSearchStartsEmpty) {
    // Semisquare (in the aspectogram) and septile (not) overlap at 48 degrees; the septile is
    // farther but later in the set, so it takes marks 0 and 1 while mark 2 keeps the semisquare.
    const AspectTable overlapping = aspect_table({
        {45.0f, "Sm", 194, -1, 4, 4, 4, 4, 4},
        {51.0f + 26.0f / 60.0f, "Sp", 203, 0, 4, 4, 4, 4, 4},
    });
    const Bodies bodies{{glyph::mars, 0.0}, {glyph::venus, 48.0}, {glyph::saturn, 53.0}};
    AspectMatrix m;
    search_aspects(overlapping, bodies.list(), stars, m);
    EXPECT_EQ(m.aspect(1, 2), 2);
    EXPECT_EQ(m.mark(1, 2, 0), "Sp");
    EXPECT_EQ(m.mark(1, 2, 1), std::string(1, char(203)));
    EXPECT_EQ(m.mark(1, 2, 2), std::string(1, char(194)));
    EXPECT_NEAR(m.orb(1, 2), 3.4333, 1e-3);
    EXPECT_EQ(m.mark(1, 3, 0), "Sp"); // the septile alone: no mark 2
    EXPECT_EQ(m.mark(1, 3, 2), "");
    // A zero orb holds only at exactly no difference.
    const AspectTable exact = aspect_table({{60.0f, "Sx", 195, -1, 0, 0, 0, 0, 0}});
    const Bodies sextiles{{glyph::mars, 10.0}, {glyph::venus, 70.0}, {glyph::saturn, 70.01}};
    search_aspects(exact, sextiles.list(), stars, m);
    EXPECT_TRUE(m.in_aspect(1, 2));
    EXPECT_FALSE(m.in_aspect(1, 3));
    EXPECT_EQ(m.mark(1, 3, 0), ""); // nothing left of the search before
    // Without aspects the positions and separations are there, the marks are not.
    search_aspects(AspectTable{}, sextiles.list(), stars, m);
    EXPECT_FLOAT_EQ(m.cell(1, 2), 60.0f);
    EXPECT_FALSE(m.in_aspect(1, 2));
    search_cross_aspects(two_aspects, bodies.list(), Bodies{}.list(), stars, m);
    EXPECT_EQ(m.n, 3);
    EXPECT_EQ(m.columns, 0);
}

// The search told plainly for one cell, aspect by aspect: the aspect that holds the cell, its
// difference and the aspect of mark 2.
std::tuple<int, float, int> plain_cell(const AspectTable& t, float s, int pair) {
    const std::vector<float>* orbs[] = {nullptr,        &t.orb_sun,      &t.orb_moon,
                                        &t.orb_planets, &t.orb_elements, &t.orb_stars};
    int aspect = 0, shown = 0;
    float difference = 0;
    for (std::size_t a = 0; pair != 0 && a < t.angle.size(); ++a) {
        const float d = std::fabs(t.angle[a] - std::fabs(s));
        if (d > (*orbs[pair])[a]) continue;
        aspect = static_cast<int>(a) + 1;
        difference = d;
        if (t.in_aspectogram[a] != 0) shown = aspect;
    }
    return {aspect, difference, shown};
}

TEST(ChartAspects, AgreeWithThePlainSearchOnRandomCharts) {
    std::mt19937 random(7);
    const auto real = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    const auto whole = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    const unsigned char pool[] = {glyph::sun,
                                  glyph::moon,
                                  glyph::mercury,
                                  glyph::mars,
                                  glyph::chiron,
                                  glyph::north_node,
                                  120,
                                  230,
                                  glyph::south_node,
                                  glyph::ascendant,
                                  glyph::earth,
                                  117};
    int hits = 0;
    for (int round = 0; round < 300; ++round) {
        // Eleven aspects in steps of 15 degrees; every tenth set has seventy anywhere.
        const int count = round % 10 == 0 ? 70 : 11;
        AspectTable t;
        for (int a = 0; a < count; ++a) {
            t.angle.push_back(static_cast<float>(count > 11 ? real(0, 181) : whole(0, 12) * 15));
            t.digraph.push_back("A" + std::to_string(a));
            t.glyph.push_back(static_cast<unsigned char>(192 + a % 17));
            t.in_aspectogram.push_back(static_cast<std::int16_t>(-whole(0, 1)));
            for (auto* orbs : {&t.orb_sun, &t.orb_moon, &t.orb_planets, &t.orb_elements,
                               &t.orb_stars}) // whole orbs meet whole separations at their edge
                orbs->push_back(static_cast<float>(whole(0, 2) ? real(0, 12) : whole(0, 10)));
        }
        t.aspect_count = static_cast<std::int16_t>(count);
        Bodies bodies;
        for (int b = 0; b < 12; ++b) {
            bodies.glyphs.push_back(pool[whole(0, 11)]);
            bodies.radians.push_back((whole(0, 1) ? whole(-360, 720) : real(-360, 720)) *
                                     deg_to_rad);
        }
        AspectMatrix m;
        search_aspects(t, bodies.list(), stars, m);
        for (int i = 1; i <= 12; ++i)
            for (int j = 1; j <= 12; ++j) {
                if (i == j) continue;
                const double x = static_cast<double>(m.cell(j, 0)) - m.cell(0, i);
                const double folded = x - 360.0 * std::floor(x / 360.0);
                const float s = static_cast<float>(folded >= 180.0 ? folded - 360.0 : folded);
                const int pair = pair_class(body_class(bodies.glyphs[i - 1], stars),
                                            body_class(bodies.glyphs[j - 1], stars));
                const auto [aspect, difference, shown] = plain_cell(t, s, pair);
                ASSERT_EQ(m.cell(i, j), s) << round << ": " << i << "," << j;
                ASSERT_EQ(m.aspect(i, j), aspect) << round << ": " << i << "," << j;
                ASSERT_EQ(m.orb(i, j), difference);
                ASSERT_EQ(m.mark(i, j, 2),
                          shown ? std::string(1, static_cast<char>(t.glyph[shown - 1])) : "");
                hits += aspect != 0;
            }
    }
    EXPECT_GT(hits, 5000); // many pairs in aspect were compared
}

TEST(OtherAspectSearches, CrossElementsAndTheSessionsMatrices) {
    // Cross: rows the first list, columns the second; a body meets its own place too.
    const Bodies first{{glyph::sun, 10.0}, {glyph::mars, 100.0}, {glyph::moon, 200.0}};
    const Bodies second{{glyph::sun, 11.0}, {glyph::mars, 280.0}};
    AspectMatrix m;
    search_cross_aspects(two_aspects, first.list(), second.list(), stars, m);
    EXPECT_EQ(std::tuple(m.n, m.rows, m.columns), std::tuple(3, 3, 2));
    EXPECT_FLOAT_EQ(m.cell(2, 0), 100.0f);
    EXPECT_FLOAT_EQ(m.cell(0, 2), 280.0f);
    EXPECT_EQ(m.cell(-1, 3), 0.0f); // no third column
    EXPECT_FLOAT_EQ(m.cell(1, 1), 1.0f);
    EXPECT_EQ(m.mark(1, 1, 0), "Cj");
    EXPECT_EQ(m.mark(2, 2, 0), "Op");
    EXPECT_FALSE(m.in_aspect(3, 1)); // Moon at 200 and Sun at 11: 171 degrees
    // Nodes and perihelia are elements, whatever their list's glyphs.
    const Bodies nodes{{glyph::sun, 0.0}, {glyph::moon, 180.8}, {glyph::mars, 1.5}};
    search_element_aspects(two_aspects, nodes.radians.data(), 3, m);
    EXPECT_EQ(m.cell(1, -1), 4.0f);
    EXPECT_TRUE(m.in_aspect(1, 2));  // within the elements orb 1, though the Sun's is 5
    EXPECT_FALSE(m.in_aspect(1, 3)); // 1.5

    Session s;
    initialise_session(s, ".");
    s.option_sets.aspects = two_aspects;
    calculate_chart(s, slot::default_event, true);
    const PositionLists p = s.engine.pos;
    for (auto search :
         {chart_aspect_search, helio_aspect_search, lemni_aspect_search, geo_helio_aspect_search,
          helio_node_aspect_search, helio_peri_aspect_search})
        search(s);
    const AspectMatrices& all = s.aspect_matrices;
    EXPECT_EQ(all.chart.n, p.chart_count);
    EXPECT_FLOAT_EQ(all.chart.cell(1, 0), std::fmod(p.chart_long[0] * rad_to_deg + 720.0, 360.0));
    EXPECT_EQ(std::tuple(all.geo_helio.rows, all.geo_helio.columns),
              std::tuple(p.chart_count, p.helio_count));
    EXPECT_EQ(std::tuple(all.helio.n, all.lemni.n, all.node.n, all.perihelion.n),
              std::tuple(p.helio_count, p.lemni_count, p.helio_count, p.helio_count));
    EXPECT_EQ(all.perihelion.cell(-1, 1), 4.0f);
    EXPECT_EQ(all.lemni.cell(2, -1), 1.0f); // the lemnicentric Earth is of the Sun's class

    // The same event twice: every body meets its own place (Uranus to Pluto only with their
    // tables, without which their places are not kept).
    s.event_slots[2] = s.event_slots[slot::default_event];
    cross_aspect_search(s, slot::default_event, 2);
    for (int i = 1; i <= all.chart.rows; ++i) {
        const unsigned char code = p.chart_glyph[static_cast<std::size_t>(i - 1)];
        if (code >= glyph::uranus && code <= glyph::pluto && !s.engine.outer_planets_ok) continue;
        EXPECT_EQ(all.chart.mark(i, i, 0), "Cj") << i;
        EXPECT_FLOAT_EQ(all.chart.orb(i, i), 0.0f) << i;
    }
    cross_geo_aspect_search(s, slot::default_event, 2);
    cross_helio_aspect_search(s, slot::default_event, 2);
    cross_lemni_aspect_search(s, slot::default_event, 2);
    EXPECT_EQ(std::tuple(all.chart.rows, all.helio.columns, all.lemni.rows),
              std::tuple(p.geo_count, p.helio_count, p.lemni_count));
}

} // namespace
} // namespace celestark
