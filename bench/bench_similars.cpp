// Similars of one event against a table of 100,000 stored events: one chart a row with only the
// bodies the comparison reads. The table is made in the benchmark's own temporary folder.
#include "bench_folder.h"

#include "engine/chart.h"
#include "store/event_schema.h"
#include "store/table_store.h"
#include "tables/similars.h"

#include <benchmark/benchmark.h>

#include <string>

namespace celestark::bench {
namespace {

constexpr int table_rows = 100000;

// Events spread over two centuries, each at its own hour and place.
void make_table(const fs::path& file) {
    store::TableStore db;
    db.create(file);
    db.create_table("Events", store::event_table_fields(), store::event_table_indexes());
    store::Recordset rs;
    db.open_recordset("Events", rs);
    store::Transaction t = db.begin_transaction();
    for (int i = 0; i < table_rows; ++i) {
        EventRow row = make_default_event();
        row[col::surname] = "Person" + std::to_string(i);
        row[col::firstname] = "Bench";
        row[col::day] = std::to_string(1 + i % 28);
        row[col::month] = std::to_string(1 + (i / 28) % 12);
        row[col::year] = std::to_string(1850 + (i * 7) % 200);
        row[col::hours] = std::to_string(i % 24);
        row[col::mins] = std::to_string((i * 13) % 60);
        row[col::lat_deg] = std::to_string(i % 70);
        row[col::long_deg] = std::to_string(i % 180);
        rs.add_new();
        for (int c = col::event; c < col::notused; ++c) {
            const std::string& v = row[static_cast<std::size_t>(c)];
            rs.set(event_columns_table[static_cast<std::size_t>(c)].field,
                   store::Value(v.empty() ? std::string(" ") : v));
        }
        rs.update();
    }
    t.commit();
}

void run_similars(benchmark::State& state, const char* list) {
    static Folder folder("celestark_bench_similars");
    static const bool made = (make_table(folder.dir / "bench.zod.mdb"), true);
    (void)made;
    SimilarsParameters p = similars_defaults(folder.s);
    set_similars_control(p, list, "1");
    std::int64_t lines = 0, charts = 0;
    for (auto _ : state) {
        std::vector<SimilarLine> out;
        SimilarsRun run;
        run.start(folder.s, p, slot::first_user, {{folder.dir.string(), "bench.zod.mdb", "Events"}},
                  folder.sink);
        while (!run.finished()) {
            std::vector<SimilarLine> more = run.next(folder.s, 1 << 20, folder.sink);
            out.insert(out.end(), more.begin(), more.end());
        }
        lines = static_cast<std::int64_t>(out.size());
        charts = run.charts();
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["charts"] = static_cast<double>(charts);
    state.counters["lines"] = static_cast<double>(lines);
}

void BM_SimilarPlanets100k(benchmark::State& state) {
    run_similars(state, "similar_planets");
}
void BM_SimilarCharts100k(benchmark::State& state) {
    run_similars(state, "similar_charts");
}
// The charts alone, for comparison: the same settings, the event row's hour stepped.
void BM_ChartsAlone100k(benchmark::State& state) {
    static Folder folder("celestark_bench_similars_charts");
    Session& s = folder.s;
    s.chart.house_system = "None";
    s.chart.stars_in_charts = s.chart.sedna = s.chart.quaoar = s.chart.asteroids = 0;
    s.chart.part_of_fortune = s.chart.moon_peri = 0;
    s.engine.calc.calc_moon_lat = s.engine.calc.calc_moon_dist = false;
    s.engine.calc.calc_nodes = false;
    s.accuracy_level = static_cast<std::int16_t>(state.range(0));
    for (auto _ : state)
        for (int i = 0; i < table_rows; ++i) {
            s.event_slots[slot::work] = s.event_slots[slot::first_user];
            s.event_slots[slot::work][col::year] = std::to_string(1850 + (i * 7) % 200);
            calculate_chart(s, slot::work, false);
            benchmark::DoNotOptimize(s.engine.pos.geo_long[0]);
        }
}
BENCHMARK(BM_ChartsAlone100k)->Arg(1)->Arg(2)->Unit(benchmark::kSecond)->Iterations(1);
BENCHMARK(BM_SimilarPlanets100k)->Unit(benchmark::kSecond)->Iterations(1);
BENCHMARK(BM_SimilarCharts100k)->Unit(benchmark::kSecond)->Iterations(1);

} // namespace
} // namespace celestark::bench
