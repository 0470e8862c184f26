// Microseconds per aspect search of a chart: 30 points (Sun, Moon, planets, the elements, two
// stars, the angles) against the eleven aspects of the standard set, both orders of every pair.
#include "aspects/aspect_search.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <benchmark/benchmark.h>

#include <array>

namespace {

using namespace celestark;

// The standard set of the first option rows: angle, digraph, glyph, aspectogram, five orbs.
AspectTable standard_set() {
    struct Row {
        float angle;
        const char* digraph;
        bool aspectogram;
        float sun, moon, planets, elements, stars;
    };
    constexpr Row rows[] = {
        {0, "Cj", true, 10, 10, 8, 2, 1},          {30, "Ss", false, 2, 2, 2, 0.5f, 0},
        {45, "Sm", false, 2.5f, 2.5f, 2, 0.5f, 0}, {60, "Sx", true, 6, 6, 5, 1, 0},
        {72, "Qn", false, 2, 2, 1.5f, 0.5f, 0},    {90, "Sq", true, 8, 8, 7, 2, 0},
        {120, "Tr", true, 8, 8, 7, 2, 0},          {135, "Sc", false, 2.5f, 2.5f, 2, 0.5f, 0},
        {144, "Bq", false, 2, 2, 1.5f, 0.5f, 0},   {150, "Qx", true, 3, 3, 2, 0.5f, 0},
        {180, "Op", true, 10, 10, 8, 2, 1},
    };
    AspectTable t;
    for (const Row& r : rows) {
        t.angle.push_back(r.angle);
        t.digraph.emplace_back(r.digraph);
        t.glyph.push_back(aspect_glyphs[0]); // the glyph's value does not change the cost
        t.in_aspectogram.push_back(r.aspectogram ? -1 : 0);
        t.orb_sun.push_back(r.sun);
        t.orb_moon.push_back(r.moon);
        t.orb_planets.push_back(r.planets);
        t.orb_elements.push_back(r.elements);
        t.orb_stars.push_back(r.stars);
    }
    t.aspect_count = static_cast<std::int16_t>(t.angle.size());
    return t;
}

constexpr std::array<unsigned char, 30> chart_glyphs = {glyph::sun,
                                                        glyph::moon,
                                                        glyph::mercury,
                                                        glyph::venus,
                                                        glyph::mars,
                                                        glyph::jupiter,
                                                        glyph::saturn,
                                                        glyph::uranus,
                                                        glyph::neptune,
                                                        glyph::pluto,
                                                        glyph::chiron,
                                                        glyph::ceres,
                                                        glyph::pallas,
                                                        glyph::vesta,
                                                        glyph::juno,
                                                        glyph::sedna,
                                                        glyph::quaoar,
                                                        glyph::north_node,
                                                        glyph::perigee,
                                                        120,
                                                        121,
                                                        glyph::part_of_chiron,
                                                        glyph::part_of_fortune,
                                                        117,
                                                        118,
                                                        119,
                                                        122,
                                                        123,
                                                        glyph::ascendant,
                                                        glyph::midheaven};

void BM_chart_aspect_search(benchmark::State& state) {
    Session s;
    s.option_sets.aspects = standard_set();
    s.stars.star_glyphs = {120, 121, 0, 0, 0, 0, 0, 0};
    PositionLists& p = s.engine.pos;
    p.chart_count = static_cast<int>(chart_glyphs.size());
    // Spread so that about one pair in six is in aspect, as in a real chart.
    for (std::size_t i = 0; i < chart_glyphs.size(); ++i) {
        p.chart_glyph[i] = chart_glyphs[i];
        p.chart_long[i] = static_cast<double>((i * 137 + i * i * 11) % 360) * deg_to_rad + 0.01;
    }
    long hits = 0;
    for (auto _ : state) {
        chart_aspect_search(s);
        benchmark::DoNotOptimize(s.aspect_matrices.chart.orbs.data());
        p.chart_long[0] += 0.013; // the Sun moves a little each time
    }
    for (std::int16_t a : s.aspect_matrices.chart.aspects) hits += a != 0;
    state.counters["pairs_in_aspect"] = static_cast<double>(hits);
}
BENCHMARK(BM_chart_aspect_search)->Unit(benchmark::kMicrosecond);

} // namespace
