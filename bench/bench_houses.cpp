// Microseconds per house calculation in each system, and per calculate_chart with houses (the
// part of Fortune, Ascendant and Midheaven entered) against the same chart with "None".
#include "engine/chart.h"
#include "engine/houses.h"
#include "session/constants.h"
#include "session/session.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

namespace {

using namespace celestark;

void BM_compute_houses(benchmark::State& state) {
    const auto system = house_system_names[static_cast<std::size_t>(state.range(0))];
    state.SetLabel(std::string(system));
    HouseSky sky;
    sky.latitude_degrees = 51.5;
    sky.true_obliquity = 23.44 * deg_to_rad;
    sky.sin_obliquity = std::sin(sky.true_obliquity);
    sky.cos_obliquity = std::cos(sky.true_obliquity);
    HouseOptions options;
    options.system = system;
    double hours = 0;
    for (auto _ : state) {
        sky.sidereal_hours = hours;
        const Houses h = compute_houses(sky, options);
        benchmark::DoNotOptimize(h.cusps[2]);
        hours += 0.731; // a new sky each call
    }
}
BENCHMARK(BM_compute_houses)->DenseRange(1, 10)->Unit(benchmark::kNanosecond);

} // namespace
