// The stored tables of the table-driven bodies as the build makes them (tools/build_body_tables):
// their shape, their even steps and spans, and their positions read by the five-point rule against
// the reference ephemeris.
#include "session/angles.h"
#include "store/table_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
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
};

const std::vector<TableShape> shapes = {
    {"outer3.mdb", "planets", {"uranus", "neptune", "pluto"}, 64},
    {"asteroid.mdb", "asteroids", {"juno", "vesta", "ceres", "pallas"}, 5},
    {"asteroid.mdb", "chiron", {"chiron"}, 12},
};

std::vector<FieldDef> expected_fields(const TableShape& t) {
    std::vector<FieldDef> fields{{"julian_day_number", FieldType::double_precision, 0}};
    for (const std::string& b : t.bodies)
        for (const char* axis : {"_x_position", "_y_position", "_z_position"})
            fields.push_back({b + axis, FieldType::double_precision, 0});
    return fields;
}

// What interpolation may cost by the table's steps: 0.01" seen from the Earth at the body's
// closest (its least distance from the Sun in the table less the Earth's greatest), in au.
const std::map<std::string, double> tolerance_au = {
    {"uranus", 8.3e-7}, {"neptune", 1.39e-6}, {"pluto", 1.38e-6}, {"chiron", 3.5e-7},
    {"juno", 4.4e-8},   {"vesta", 5.4e-8},    {"ceres", 6.9e-8},  {"pallas", 3.0e-8},
};

class BodyTables : public ::testing::Test {
  protected:
    // Opens the table's file read-only and a recordset on it in date order.
    void open(const TableShape& t) {
        ASSERT_EQ(store_.open(tables_dir / t.file, TableStore::Access::read_only), Outcome::ok)
            << (tables_dir / t.file);
        ASSERT_EQ(store_.open_recordset(t.table, rs_), Outcome::ok) << t.table;
        ASSERT_EQ(rs_.set_index("day_number"), Outcome::ok);
    }

    // The reading rule: the last row before the moment, back two rows, six rows forward, the
    // shift past the middle of the interval, five-point interpolation of x, y, z of `body`.
    bool read(const std::string& body, double jde, std::array<double, 3>& xyz) {
        if (rs_.seek("<", {Value(jde)}) != Outcome::ok) return false;
        if (rs_.move_previous() != Outcome::ok || rs_.move_previous() != Outcome::ok) return false;
        std::array<double, 6> date{};
        std::array<std::array<double, 6>, 3> y{};
        for (std::size_t i = 0; i < 6; ++i) {
            if (i > 0 && rs_.move_next() != Outcome::ok) return false;
            if (!rs_.has_current()) return false;
            date[i] = rs_.get("julian_day_number").as_double();
            for (std::size_t k = 0; k < 3; ++k)
                y[k][i] = rs_.get(body + (k == 0   ? "_x_position"
                                          : k == 1 ? "_y_position"
                                                   : "_z_position"))
                              .as_double();
        }
        const double step = date[3] - date[2];
        double n = (jde - date[2]) / step;
        std::size_t s = 0;
        if (n > 0.5) {
            s = 1;
            n = -(date[3] - jde) / step;
        }
        for (std::size_t k = 0; k < 3; ++k)
            xyz[k] = interpolate5(n, y[k][s], y[k][s + 1], y[k][s + 2], y[k][s + 3], y[k][s + 4]);
        return true;
    }

    TableStore store_;
    Recordset rs_;
};

TEST_F(BodyTables, FilesHoldTheirTables) {
    std::vector<std::string> names;
    ASSERT_EQ(store_.open(tables_dir / "outer3.mdb", TableStore::Access::read_only), Outcome::ok);
    ASSERT_EQ(store_.table_names(names), Outcome::ok);
    EXPECT_EQ(names, (std::vector<std::string>{"planets"}));
    ASSERT_EQ(store_.open(tables_dir / "asteroid.mdb", TableStore::Access::read_only), Outcome::ok);
    ASSERT_EQ(store_.table_names(names), Outcome::ok);
    EXPECT_EQ(names, (std::vector<std::string>{"asteroids", "chiron"}));
    EXPECT_EQ(store_.check_integrity(), Outcome::ok);
}

TEST_F(BodyTables, FieldsAndIndex) {
    for (const TableShape& t : shapes) {
        SCOPED_TRACE(t.table);
        ASSERT_EQ(store_.open(tables_dir / t.file, TableStore::Access::read_only), Outcome::ok);
        std::vector<FieldDef> fields;
        ASSERT_EQ(store_.table_fields(t.table, fields), Outcome::ok);
        EXPECT_EQ(fields, expected_fields(t));
        std::vector<IndexDef> indexes;
        ASSERT_EQ(store_.table_indexes(t.table, indexes), Outcome::ok);
        EXPECT_EQ(indexes,
                  (std::vector<IndexDef>{{"day_number", {"julian_day_number"}, true, true}}));
    }
}

TEST_F(BodyTables, EvenStepOverTheSpan) {
    for (const TableShape& t : shapes) {
        SCOPED_TRACE(t.table);
        open(t);
        const int columns = static_cast<int>(t.bodies.size()) * 3;
        std::vector<double> dates;
        bool finite = true;
        for (Outcome o = rs_.move_first(); o == Outcome::ok && !rs_.eof(); o = rs_.move_next()) {
            dates.push_back(rs_.get(0).as_double());
            for (int c = 1; c <= columns; ++c) {
                const Value v = rs_.get(c);
                finite = finite && v.kind() == Value::Kind::real && std::isfinite(v.as_double());
            }
        }
        EXPECT_TRUE(finite);
        ASSERT_GE(dates.size(), 6u);
        EXPECT_EQ(static_cast<std::int64_t>(dates.size()), rs_.record_count());
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

TEST_F(BodyTables, TheReadingRuleAnswersAtTheEnds) {
    for (const TableShape& t : shapes) {
        SCOPED_TRACE(t.table);
        open(t);
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
        rs_.move_first();
        const double first_row = rs_.get(0).as_double();
        EXPECT_FALSE(read(t.bodies.front(), first_row + 1.5 * t.step, xyz));
    }
}

const TableShape& shape_of(const std::string& body) {
    for (const TableShape& t : shapes)
        for (const std::string& b : t.bodies)
            if (b == body) return t;
    throw std::runtime_error("no table for " + body);
}

// A few positions of the reference ephemeris in tests/data/bodies.csv (DE431 through the Swiss
// Ephemeris): heliocentric, geometric, mean ecliptic and equinox of date, au, at TT.
struct Reference {
    double jd_tt;
    const char* body;
    double x, y, z;
};
const Reference references[] = {
    {1355796.052550, "uranus", 19.002401231, 4.732935237, -0.190395508038},
    {1355796.052550, "neptune", -30.065731971, -4.037302978, 1.081372654060},
    {1355796.052550, "pluto", -19.705462221, 23.913166042, 8.291822858596},
    {1355796.052550, "juno", 1.970098047, -0.429812784, 0.046555626007},
    {1355796.052550, "pallas", 2.289042189, -2.411820276, 1.163792754484},
    {2246420.117149, "chiron", 17.681236617, 3.038441944, 0.585232989104},
    {2433635.243498, "chiron", -1.020598682, -10.624099037, 1.072320259225},
    {2454350.207485, "ceres", 2.355076059, 1.582596909, -0.385374772974},
    {2454350.207485, "vesta", 0.406057084, -2.131450894, 0.015291613797},
    {2460641.739669, "uranus", 11.119658785, 16.090536454, -0.084970918951},
    {2460641.739669, "neptune", 29.882325265, -0.562572573, -0.673092928026},
    {2460641.739669, "pluto", 18.314892510, -29.929772519, -2.030120465780},
    {2460641.739669, "juno", -2.766844383, -1.599685836, 0.472231169513},
};

TEST_F(BodyTables, ReferencePositions) {
    for (const Reference& r : references) {
        SCOPED_TRACE(std::string(r.body) + " at " + std::to_string(r.jd_tt));
        const TableShape& t = shape_of(r.body);
        open(t);
        std::array<double, 3> xyz{};
        ASSERT_TRUE(read(r.body, r.jd_tt, xyz));
        const double d = std::hypot(xyz[0] - r.x, xyz[1] - r.y, xyz[2] - r.z);
        EXPECT_LT(d, tolerance_au.at(r.body));
    }
}

// Every heliocentric rectangular position of the reference file that a table serves.
TEST_F(BodyTables, EveryReferencePosition) {
    std::ifstream in(std::filesystem::path(CELESTARK_TEST_DATA) / "bodies.csv");
    ASSERT_TRUE(in) << "bodies.csv";
    std::string line;
    std::map<std::string, int> compared;
    std::map<std::string, double> worst;
    const TableShape* opened = nullptr;
    while (std::getline(in, line)) {
        std::stringstream cells(line);
        std::string jd, body, mode, x, y, z;
        std::getline(cells, jd, ',');
        std::getline(cells, body, ',');
        std::getline(cells, mode, ',');
        std::getline(cells, x, ',');
        std::getline(cells, y, ',');
        std::getline(cells, z, ',');
        if (mode != "helio_xyz_nonut" || !tolerance_au.count(body)) continue;
        const double jde = std::stod(jd);
        if (body == "chiron" && (jde < chiron_first + 3 * 12 || jde > chiron_last - 3 * 12))
            continue;
        const TableShape& t = shape_of(body);
        if (&t != opened) open(t), opened = &t;
        std::array<double, 3> xyz{};
        ASSERT_TRUE(read(body, jde, xyz)) << body << " " << jd;
        const double d =
            std::hypot(xyz[0] - std::stod(x), xyz[1] - std::stod(y), xyz[2] - std::stod(z));
        EXPECT_LT(d, tolerance_au.at(body)) << body << " at " << jd;
        ++compared[body];
        worst[body] = std::max(worst[body], d);
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
