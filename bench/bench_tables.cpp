// The analysis database of 10,000 events, and the ephemeris export of a hundred years as the
// SQLite file and as CSV files.
#include "bench_folder.h"
#include "store/event_database.h"
#include "store/event_schema.h"
#include "store/table_store.h"
#include "tables/analysis_database.h"
#include "tables/ephemeris_export.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace celestark;
namespace fs = std::filesystem;

constexpr int event_count = 10000;

// An event table of births spread over four centuries, at places all over the globe.
void make_events(const fs::path& file) {
    store::TableStore db;
    store::Recordset rs;
    if (db.create(file) != store::Outcome::ok ||
        db.create_table("Births", store::event_table_fields(), store::event_table_indexes()) !=
            store::Outcome::ok ||
        db.open_recordset("Births", rs) != store::Outcome::ok) {
        std::fprintf(stderr, "bench_tables: cannot make the event table\n");
        std::exit(1);
    }
    store::Transaction work = db.begin_transaction();
    for (int i = 0; i < event_count; ++i) {
        EventRow row = make_default_event();
        row[col::surname] = "Person" + std::to_string(i);
        row[col::firstname] = "Bench";
        row[col::event] = "Birth";
        row[col::version] = " ";
        row[col::day] = std::to_string(1 + i % 28);
        row[col::month] = std::to_string(1 + i % 12);
        row[col::year] = std::to_string(1700 + i % 400);
        row[col::gj] = "G";
        row[col::hours] = std::to_string(i % 24);
        row[col::mins] = std::to_string(i % 60);
        row[col::lz] = "L";
        row[col::lat_deg] = std::to_string(i % 66);
        row[col::long_deg] = std::to_string(i % 180);
        row[col::place] = "Somewhere";
        rs.add_new();
        for (int c = col::event; c < col::notused; ++c) {
            const std::string& text = row[static_cast<std::size_t>(c)];
            rs.set(event_columns_table[static_cast<std::size_t>(c)].field,
                   store::Value(text.empty() ? std::string(" ") : text));
        }
        rs.update();
    }
    work.commit();
}

// The table of births made in the benchmark's folder and open for reading.
struct Births {
    store::TableStore db;
    store::Recordset events;
    explicit Births(const bench::Folder& folder) {
        make_events(folder.dir / "births.zod.mdb");
        open_event_file(folder.dir / "births.zod.mdb", "Births", db, events,
                        store::TableStore::Access::read_only);
    }
};

void BM_AnalysisDatabase10000Events(benchmark::State& state) {
    bench::Folder folder("celestark_bench_analysis");
    Births births(folder);
    store::Recordset& events = births.events;
    const fs::path analysis = folder.dir / analysis_file_name;
    long added = 0;
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove(analysis);
        state.ResumeTiming();
        added = add_table_to_analysis(folder.s, events, analysis, folder.sink).added;
    }
    state.counters["events"] = static_cast<double>(added);
}
BENCHMARK(BM_AnalysisDatabase10000Events)->Unit(benchmark::kSecond)->Iterations(1);

void BM_RecalculateAnalysis10000Events(benchmark::State& state) {
    bench::Folder folder("celestark_bench_recalculate");
    Births births(folder);
    store::Recordset& events = births.events;
    const fs::path analysis = folder.dir / analysis_file_name;
    add_table_to_analysis(folder.s, events, analysis, folder.sink);
    folder.s.chart.zodiac = "Sidereal SVP";
    long done = 0;
    for (auto _ : state) done = recalculate_analysis(folder.s, analysis, folder.sink).added;
    state.counters["events"] = static_cast<double>(done);
}
BENCHMARK(BM_RecalculateAnalysis10000Events)->Unit(benchmark::kSecond)->Iterations(1);

void BM_ExportHundredYears(benchmark::State& state) {
    bench::Folder folder("celestark_bench_export");
    const bool csv = state.range(0) == 1;
    const fs::path target = folder.dir / (csv ? "EPH100" : "EPH100.mdb");
    long days = 0;
    for (auto _ : state) {
        const EphemerisSpan span{1950, 2049, "G"};
        const ExportResult r = csv ? write_ephemeris_csv(folder.s, span, target, folder.sink)
                                   : write_ephemeris_database(folder.s, span, target, folder.sink);
        days = r.days;
        if (r.outcome != ExportOutcome::written) state.SkipWithError(r.error.c_str());
    }
    state.counters["days"] = static_cast<double>(days);
    state.SetLabel(csv ? "CSV folder" : "SQLite file");
}
BENCHMARK(BM_ExportHundredYears)->Arg(0)->Arg(1)->Unit(benchmark::kSecond)->Iterations(1);

} // namespace
