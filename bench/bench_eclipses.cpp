// Every solar and lunar eclipse of two thousand years, with the Sun's and the Moon's places at
// greatest eclipse; and the phenomena list of the planets over a hundred years, geocentric.
#include "app/body_tables.h"
#include "bench_folder.h"
#include "predict/eclipses.h"
#include "predict/phenomena.h"
#include "session/session.h"

#include <benchmark/benchmark.h>

namespace {

void BM_eclipses_2000_years(benchmark::State& state) {
    using namespace celestark;
    Session s;
    initialise_session(s, ".");
    std::size_t count = 0;
    for (auto _ : state) {
        const auto rows = eclipses_between(s, 1721423.5, 1721423.5 + 2000 * 365.25);
        count = rows.size();
        benchmark::DoNotOptimize(rows.data());
    }
    state.counters["eclipses"] = static_cast<double>(count);
}
BENCHMARK(BM_eclipses_2000_years)->Unit(benchmark::kMillisecond);

void BM_phenomena_100_years(benchmark::State& state) {
    using namespace celestark;
    static bench::Folder folder("celestark_bench_phenomena");
    PhenomenaParameters p = phenomena_defaults(folder.s);
    p.values["start"] = "1900";
    p.values["end_year"] = "1999";
    std::size_t count = 0;
    for (auto _ : state) {
        const auto rows = list_phenomena(folder.s, p);
        count = rows.size();
        benchmark::DoNotOptimize(rows.data());
    }
    state.counters["rows"] = static_cast<double>(count);
}
BENCHMARK(BM_phenomena_100_years)->Unit(benchmark::kMillisecond);

} // namespace
