// The stored tables of the table-driven bodies as the build makes them (tools/build_body_tables):
// their even steps and spans, and their positions read by the five-point rule against the
// reference ephemeris.
#include "../engine/reference_data.h"
#include "app/body_tables.h"
#include "store/table_store.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace celestark::store {
namespace {

#ifdef CELESTARK_TABLES_DIR

const std::filesystem::path tables_dir = CELESTARK_TABLES_DIR;

// -3000 January 1.0 (Julian calendar) and 3001 January 1.0 (Gregorian calendar), TT.
constexpr double span_first = 625307.5;
constexpr double span_last = 2817152.5;
// Where the ephemeris has Chiron.
constexpr double chiron_first = 1967601.5;
constexpr double chiron_last = 3419437.5;

struct TableShape {
    const char* file;
    const char* table;
    std::vector<std::string> bodies;
    double step;
    BodyTable BodyTables::*in_memory;
};

const std::vector<TableShape> shapes = {
    {"outer3.mdb", "planets", {"uranus", "neptune", "pluto"}, 64, &BodyTables::planets},
    {"asteroid.mdb", "asteroids", {"juno", "vesta", "ceres", "pallas"}, 5, &BodyTables::asteroids},
    {"asteroid.mdb", "chiron", {"chiron"}, 12, &BodyTables::chiron},
};

// What interpolation may cost by the table's steps: 0.01" seen from the Earth at the body's
// closest (its least distance from the Sun in the table less the Earth's greatest), in au.
const std::map<std::string, double> tolerance_au = {
    {"uranus", 8.3e-7}, {"neptune", 1.39e-6}, {"pluto", 1.38e-6}, {"chiron", 3.5e-7},
    {"juno", 4.4e-8},   {"vesta", 5.4e-8},    {"ceres", 6.9e-8},  {"pallas", 3.0e-8},
};

class BodyTablesTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        std::string problems;
        tables_ = open_body_tables(tables_dir, problems);
        ASSERT_TRUE(problems.empty()) << problems;
    }
    // The position of `body` by the program's reading rule, false where its table cannot answer.
    static bool read(const std::string& body, double jde, std::array<double, 3>& xyz) {
        for (const TableShape& t : shapes)
            for (std::size_t i = 0; i < t.bodies.size(); ++i)
                if (t.bodies[i] == body)
                    return ((*tables_).*t.in_memory).position(jde, static_cast<int>(3 * i), xyz);
        ADD_FAILURE() << "no table for " << body;
        return false;
    }
    static std::shared_ptr<const BodyTables> tables_;
};
std::shared_ptr<const BodyTables> BodyTablesTest::tables_;

TEST_F(BodyTablesTest, FilesHoldTheirTables) {
    TableStore store;
    std::vector<std::string> names;
    ASSERT_EQ(store.open(tables_dir / "outer3.mdb", TableStore::Access::read_only), Outcome::ok);
    ASSERT_EQ(store.table_names(names), Outcome::ok);
    EXPECT_EQ(names, (std::vector<std::string>{"planets"}));
    ASSERT_EQ(store.open(tables_dir / "asteroid.mdb", TableStore::Access::read_only), Outcome::ok);
    ASSERT_EQ(store.table_names(names), Outcome::ok);
    EXPECT_EQ(names, (std::vector<std::string>{"asteroids", "chiron"}));
    EXPECT_EQ(store.check_integrity(), Outcome::ok);
}

TEST_F(BodyTablesTest, EvenStepOverTheSpan) {
    for (const TableShape& t : shapes) {
        SCOPED_TRACE(t.table);
        TableStore store;
        Recordset rs;
        ASSERT_EQ(store.open(tables_dir / t.file, TableStore::Access::read_only), Outcome::ok);
        ASSERT_EQ(store.open_recordset(t.table, rs), Outcome::ok);
        ASSERT_EQ(rs.set_index("day_number"), Outcome::ok);
        const int columns = static_cast<int>(t.bodies.size()) * 3;
        std::vector<double> dates;
        bool finite = true;
        for (Outcome o = rs.move_first(); o == Outcome::ok && !rs.eof(); o = rs.move_next()) {
            dates.push_back(rs.get(0).as_double());
            for (int c = 1; c <= columns; ++c) {
                const Value v = rs.get(c);
                finite = finite && v.kind() == Value::Kind::real && std::isfinite(v.as_double());
            }
        }
        EXPECT_TRUE(finite);
        ASSERT_GE(dates.size(), 6u);
        EXPECT_EQ(static_cast<std::int64_t>(dates.size()), rs.record_count());
        std::size_t uneven = 0;
        for (std::size_t i = 1; i < dates.size(); ++i)
            if (dates[i] - dates[i - 1] != t.step) ++uneven;
        EXPECT_EQ(uneven, 0u);
        // Rows lie on a grid through 2000 January 1.0.
        EXPECT_EQ(std::fmod(dates.front() - 2451544.5, t.step), 0.0);
        if (std::string(t.table) == "chiron") {
            // As far as the ephemeris has Chiron, to within a step.
            EXPECT_GE(dates.front(), chiron_first);
            EXPECT_LT(dates.front(), chiron_first + t.step);
            EXPECT_LE(dates.back(), chiron_last);
            EXPECT_GT(dates.back(), chiron_last - t.step);
        } else {
            // Three rows to spare beyond either end of -3000..3000.
            EXPECT_LE(dates.front(), span_first - 3 * t.step);
            EXPECT_GE(dates.back(), span_last + 3 * t.step);
        }
    }
}

TEST_F(BodyTablesTest, TheReadingRuleAnswersAtTheEnds) {
    for (const TableShape& t : shapes) {
        SCOPED_TRACE(t.table);
        std::array<double, 3> xyz{};
        const bool chiron = std::string(t.table) == "chiron";
        const double first = chiron ? chiron_first + 3 * t.step : span_first;
        const double last = chiron ? chiron_last - 3 * t.step : span_last;
        for (double jde : {first, first + 0.3 * t.step, last - 0.6 * t.step, last}) {
            EXPECT_TRUE(read(t.bodies.front(), jde, xyz)) << jde;
            const double r = std::sqrt(xyz[0] * xyz[0] + xyz[1] * xyz[1] + xyz[2] * xyz[2]);
            EXPECT_GT(r, 1.5) << jde;
            EXPECT_LT(r, 60.0) << jde;
        }
        // Before the table's third row there is no window.
        const double first_row = ((*tables_).*t.in_memory).first_date();
        EXPECT_FALSE(read(t.bodies.front(), first_row + 1.5 * t.step, xyz));
    }
}

// Every heliocentric rectangular position of the reference file (tests/data/bodies.csv, DE431
// through the Swiss Ephemeris: geometric, mean ecliptic and equinox of date, au, at TT) that a
// table serves.
TEST_F(BodyTablesTest, EveryReferencePosition) {
    std::map<std::string, int> compared;
    std::map<std::string, double> worst;
    for (const testing::ReferenceRow& r : testing::read_reference_bodies()) {
        if (r.mode != "helio_xyz_nonut" || !tolerance_au.count(r.body)) continue;
        if (r.body == "chiron" &&
            (r.jd_tt < chiron_first + 3 * 12 || r.jd_tt > chiron_last - 3 * 12))
            continue;
        std::array<double, 3> xyz{};
        ASSERT_TRUE(read(r.body, r.jd_tt, xyz)) << r.body << " " << r.jd_tt;
        const double d = std::hypot(xyz[0] - r.lon, xyz[1] - r.lat, xyz[2] - r.dist);
        EXPECT_LT(d, tolerance_au.at(r.body)) << r.body << " at " << r.jd_tt;
        ++compared[r.body];
        worst[r.body] = std::max(worst[r.body], d);
    }
    // 120 moments, 96 of them where the ephemeris has Chiron.
    for (const auto& [body, tolerance] : tolerance_au)
        EXPECT_EQ(compared[body], body == "chiron" ? 96 : 120) << body;
    for (const auto& [body, d] : worst)
        std::printf("  %-8s largest difference %.2e au over %d moments\n", body.c_str(), d,
                    compared[body]);
}

#else

TEST(BodyTables, NotBuilt) {
    GTEST_SKIP() << "the build has no body tables (libswe-dev missing)";
}

#endif

} // namespace
} // namespace celestark::store
