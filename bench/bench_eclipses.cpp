// Every solar and lunar eclipse of two thousand years, with the Sun's and the Moon's places at
// greatest eclipse.
#include "app/body_tables.h"
#include "predict/eclipses.h"
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

} // namespace
