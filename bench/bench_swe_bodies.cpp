// For comparison only: the time the Swiss Ephemeris (libswe, its compressed JPL files) takes to
// compute the bodies a hundred-year transit run moves (the Sun, the Moon, Mercury to Pluto) at
// the run's step of a third of a day, and the same for this program's calculate_bodies_at. Put
// beside `celestark-cli bench --what run-transits`, which does the whole run.
#include "app/body_tables.h"
#include "engine/chart.h"
#include "session/session.h"

#include <benchmark/benchmark.h>
#include <swephexp.h>

namespace {

constexpr double first = 2415020.5, last = 2451544.5; // 1900 to 2000
constexpr double step = static_cast<double>(1.0f / 3.0f);

void BM_swe_bodies_100_years(benchmark::State& state) {
    swe_set_ephe_path(const_cast<char*>("/usr/share/libswe/ephe"));
    double checksum = 0;
    for (auto _ : state) {
        for (double jd = first; jd < last; jd += step)
            for (int body = SE_SUN; body <= SE_PLUTO; ++body) {
                double xx[6];
                char error[AS_MAXCH];
                swe_calc_ut(jd, body, SEFLG_SWIEPH, xx, error);
                checksum += xx[0];
            }
    }
    benchmark::DoNotOptimize(checksum);
    swe_close();
}
BENCHMARK(BM_swe_bodies_100_years)->Iterations(1)->Unit(benchmark::kSecond);

void BM_celestark_bodies_100_years(benchmark::State& state) {
    using namespace celestark;
    Session s;
    initialise_session(s, ".");
#ifdef CELESTARK_TABLES_DIR
    std::string problems;
    s.body_tables = open_body_tables(CELESTARK_TABLES_DIR, problems);
#endif
    double checksum = 0;
    for (auto _ : state)
        for (double jd = first; jd < last; jd += step) {
            calculate_bodies_at(s, jd);
            checksum += s.engine.pos.geo_long[1];
        }
    benchmark::DoNotOptimize(checksum);
}
BENCHMARK(BM_celestark_bodies_100_years)->Iterations(1)->Unit(benchmark::kSecond);

} // namespace
