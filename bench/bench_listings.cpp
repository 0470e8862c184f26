// A planetary listing over a table of 10,000 events (one every 3.65 days from 1900): every event
// loaded, charted and its Sun placed, then sorted. Also the Sun, the Moon and Mars together, which
// costs the same walk.
#include "bench_folder.h"

#include "session/calendar.h"
#include "store/event_schema.h"
#include "store/option_store.h"
#include "store/table_store.h"
#include "tables/listings.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

using namespace celestark;

constexpr int table_events = 10000;

struct ListingFolder {
    bench::Folder folder{"celestark_bench_listings"};
    ListingFolder() {
        store::TableStore db;
        db.create(folder.dir / "Many.zod.mdb");
        db.create_table("Events", store::event_table_fields(), store::event_table_indexes());
        store::Recordset rs;
        db.open_recordset("Events", rs);
        store::Transaction work = db.begin_transaction();
        for (int i = 0; i < table_events; ++i) {
            const double jd = 2415020.5 + 3.65 * i;
            const CivilDate d = date_from_julian(jd, "G");
            const auto put = [&](int column, const std::string& text) {
                rs.set(std::string(event_columns_table[static_cast<std::size_t>(column)].field),
                       store::Value(text));
            };
            rs.add_new();
            put(col::surname, "Person " + std::to_string(100000 + i));
            put(col::firstname, "Test");
            put(col::event, "Birth");
            put(col::day, std::to_string(static_cast<int>(std::floor(d.day))));
            put(col::month, std::to_string(d.month));
            put(col::year, std::to_string(d.year));
            put(col::hours, std::to_string(i % 24));
            put(col::lat_deg, "51");
            rs.update();
        }
        work.commit();
        set_options(folder.s, "option_name",
                    {{"table_1_path", store::Value(folder.dir.string())},
                     {"table_1_db", store::Value("Many.zod.mdb")},
                     {"table_1_name", store::Value("Events")}},
                    folder.sink);
    }
};

void run(benchmark::State& state, std::vector<std::string> bodies) {
    static ListingFolder f;
    ListingRequest q;
    q.report = planetary_listing;
    q.ticked = std::move(bodies);
    std::size_t rows = 0;
    for (auto _ : state) {
        std::vector<Listing> out;
        run_listing(f.folder.s, q, out, f.folder.sink);
        f.folder.sink.progress_steps.clear();
        rows = out.empty() ? 0 : out.front().rows.size();
        benchmark::DoNotOptimize(out);
    }
    state.counters["events"] = static_cast<double>(rows);
}

void BM_PlanetaryListingSun(benchmark::State& state) {
    run(state, {"geo_sun"});
}
void BM_PlanetaryListingThreeBodies(benchmark::State& state) {
    run(state, {"geo_sun", "geo_moon", "geo_mars"});
}

BENCHMARK(BM_PlanetaryListingSun)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_PlanetaryListingThreeBodies)->Unit(benchmark::kMillisecond)->Iterations(2);

} // namespace
