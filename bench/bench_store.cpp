// The table store on the reading pattern of the ephemeris tables: a 200,000-row table of positions
// at an even step, indexed on its day number, read by a seek "<" at a moment and a few rows
// around it.
#include "store/table_store.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace celestark::store;

constexpr int table_rows = 200000;
constexpr double first_day = 2305447.5; // 1600 January 1
constexpr double step_days = 2.0;

const char* const position_fields[] = {
    "uranus_x_position",  "uranus_y_position",  "uranus_z_position",
    "neptune_x_position", "neptune_y_position", "neptune_z_position",
    "pluto_x_position",   "pluto_y_position",   "pluto_z_position"};

// One scratch file with the table, made on first use and removed at exit.
struct PositionTable {
    std::filesystem::path dir;
    TableStore store;
    double build_seconds = 0.0;

    PositionTable() {
        dir = std::filesystem::temp_directory_path() /
              ("celestark_bench_store_" +
               std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
        std::filesystem::create_directories(dir);
        std::vector<FieldDef> fields = {{"jd", FieldType::double_precision, 0}};
        for (const char* name : position_fields)
            fields.push_back({name, FieldType::double_precision, 0});
        const std::vector<IndexDef> indexes = {{"day_number", {"jd"}, true, true}};
        auto start = std::chrono::steady_clock::now();
        if (store.create(dir / "outer3.mdb") != Outcome::ok ||
            store.create_table("planets", fields, indexes) != Outcome::ok)
            fail("cannot create the table");
        Recordset rs;
        if (store.open_recordset("planets", rs) != Outcome::ok) fail("cannot open the table");
        Transaction bulk = store.begin_transaction();
        for (int i = 0; i < table_rows; ++i) {
            rs.add_new();
            double jd = first_day + step_days * i;
            rs.set(0, jd);
            for (int f = 1; f <= 9; ++f) rs.set(f, jd * 1e-6 + f);
            if (rs.update() != Outcome::ok) fail("cannot add a row");
        }
        if (bulk.commit() != Outcome::ok) fail("cannot commit");
        build_seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        // Read it as the program does: a finished file, opened afresh.
        rs = Recordset();
        store.close();
        if (store.open(dir / "outer3.mdb") != Outcome::ok) fail("cannot reopen the file");
    }
    ~PositionTable() {
        store.close();
        std::error_code ec;
        std::filesystem::remove_all(dir, ec);
    }
    [[noreturn]] static void fail(const char* why) {
        std::fprintf(stderr, "bench_store: %s\n", why);
        std::exit(1);
    }
};

PositionTable& table() {
    static PositionTable t;
    return t;
}

// Moments spread over the table, away from its ends so that every read has its rows.
std::vector<double> moments(std::size_t count) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> day(first_day + 10 * step_days,
                                               first_day + (table_rows - 10) * step_days);
    std::vector<double> out(count);
    for (double& d : out) d = day(random);
    return out;
}

Recordset open_planets() {
    Recordset rs;
    if (table().store.open_recordset("planets", rs) != Outcome::ok ||
        rs.set_index("day_number") != Outcome::ok)
        PositionTable::fail("cannot open the recordset");
    return rs;
}

// The target: a seek "<" then six steps forward, reading a number at each.
void BM_SeekThenSixNext(benchmark::State& state) {
    Recordset rs = open_planets();
    const std::vector<double> at = moments(4096);
    std::size_t i = 0;
    double sum = 0.0;
    for (auto _ : state) {
        if (rs.seek("<", {at[i++ & 4095]}) != Outcome::ok) state.SkipWithError("no match");
        for (int k = 0; k < 6; ++k) {
            rs.move_next();
            sum += rs.get("neptune_x_position").as_double();
        }
    }
    benchmark::DoNotOptimize(sum);
    state.counters["build_s"] = table().build_seconds;
}
BENCHMARK(BM_SeekThenSixNext)->Unit(benchmark::kMicrosecond);

// What the body reader does: seek "<", back two rows, then read six rows of every column.
void BM_SeekBackTwoReadSixRows(benchmark::State& state) {
    Recordset rs = open_planets();
    const std::vector<double> at = moments(4096);
    std::size_t i = 0;
    double sum = 0.0;
    for (auto _ : state) {
        rs.seek("<", {at[i++ & 4095]});
        rs.move_previous();
        rs.move_previous();
        for (int row = 0; row < 6; ++row) {
            for (int f = 0; f < 10; ++f) sum += rs.get(f).as_double();
            if (row < 5) rs.move_next();
        }
    }
    benchmark::DoNotOptimize(sum);
}
BENCHMARK(BM_SeekBackTwoReadSixRows)->Unit(benchmark::kMicrosecond);

void BM_SeekOnly(benchmark::State& state) {
    Recordset rs = open_planets();
    const std::vector<double> at = moments(4096);
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(rs.seek("<", {at[i++ & 4095]}));
}
BENCHMARK(BM_SeekOnly)->Unit(benchmark::kMicrosecond);

} // namespace
