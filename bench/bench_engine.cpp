// Microseconds per calculate_bodies_at (levels 1, 2, 3) and per calculate_chart, every body
// switched on (Sun to Pluto, Chiron, the four asteroids, Quaoar and Sedna), over moments spread
// through the years so that no two calls see the same arguments.
#include "app/body_tables.h"
#include "engine/chart.h"
#include "engine/houses.h"
#include "engine/table_bodies.h"
#include "session/constants.h"
#include "session/session.h"

#include <benchmark/benchmark.h>

namespace {

using namespace celestark;

Session bench_session(int level) {
    Session s;
    initialise_session(s, ".");
    s.accuracy_level = static_cast<std::int16_t>(level);
    s.chart.chiron = s.chart.asteroids = s.chart.quaoar = s.chart.sedna = 1;
#ifdef CELESTARK_TABLES_DIR
    std::string problems;
    s.body_tables = open_body_tables(CELESTARK_TABLES_DIR, problems);
#endif
    return s;
}

void BM_calculate_bodies_at(benchmark::State& state) {
    Session s = bench_session(static_cast<int>(state.range(0)));
    double jd = j2000;
    for (auto _ : state) {
        calculate_bodies_at(s, jd);
        benchmark::DoNotOptimize(s.engine.pos.geo_long[0]);
        jd += 0.37;
    }
}
BENCHMARK(BM_calculate_bodies_at)->Arg(1)->Arg(2)->Arg(3)->Unit(benchmark::kMicrosecond);

// Arguments: retrograde marks (0 or 1) and the house system by its place in house_system_names.
void BM_calculate_chart(benchmark::State& state) {
    Session s = bench_session(1);
    s.chart.moon_node = 1;
    s.chart.moon_peri = 1;
    s.chart.part_of_fortune = 1;
    s.chart.house_system =
        std::string(house_system_names[static_cast<std::size_t>(state.range(1))]);
    state.SetLabel(s.chart.house_system);
    EventRow& row = s.event_slots[slot::work];
    row = make_default_event();
    row[col::gj] = "G";
    row[col::year] = "1990";
    int i = 0;
    for (auto _ : state) {
        row[col::day] = std::to_string(1 + i % 28);
        row[col::month] = std::to_string(1 + (i / 28) % 12);
        calculate_chart(s, slot::work, state.range(0) != 0);
        benchmark::DoNotOptimize(s.engine.pos.geo_long[0]);
        ++i;
    }
}
BENCHMARK(BM_calculate_chart)
    ->ArgsProduct({{0, 1}, {0, 4, 7, 9, 10}}) // None, Porphyry, Koch, Placidus, Campanus
    ->ArgNames({"retrograde", "houses"})
    ->Unit(benchmark::kMicrosecond);

} // namespace
