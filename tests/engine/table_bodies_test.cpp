#include "app/body_tables.h"
#include "engine/chart.h"
#include "engine/table_bodies.h"
#include "engine/world_views.h"
#include "reference_data.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "store/dated_rows.h"
#include "store/table_store.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <unistd.h>

namespace celestark {
namespace {

// A table whose coordinates are quartics in the date, at a step of 10 days, for `bodies` bodies.
BodyTable quartic_table(double first, int rows, int bodies = 1) {
    std::vector<double> dates, values;
    for (int i = 0; i < rows; ++i) {
        const double d = first + 10.0 * i;
        dates.push_back(d);
        const double u = (d - first) / 100.0;
        for (int b = 0; b < bodies; ++b)
            values.insert(values.end(),
                          {b + 1 + u - 0.3 * u * u, 2 - 0.1 * u * u * u, 0.01 * u * u * u * u});
    }
    BodyTable t;
    t.assign(std::move(dates), std::move(values), 3 * bodies);
    return t;
}

TEST(TableReading, TheFivePointRule) {
    const BodyTable t = quartic_table(1000.0, 40);
    std::array<double, 3> xyz{};
    // A date exactly on a row: "<" finds the row before, n is 1, the shifted window gives n = 0.
    ASSERT_TRUE(t.position(1200.0, 0, xyz));
    const double u = 2.0;
    EXPECT_EQ(xyz[0], 1 + u - 0.3 * u * u);
    EXPECT_EQ(xyz[1], 2 - 0.1 * u * u * u);
    EXPECT_EQ(xyz[2], 0.01 * u * u * u * u);
    // Anywhere inside, exact for quartics on either side of the middle of an interval.
    for (double d = 1031.0; d < 1360.0; d += 3.7) {
        ASSERT_TRUE(t.position(d, 0, xyz)) << d;
        const double u = (d - 1000.0) / 100.0;
        EXPECT_NEAR(xyz[0], 1 + u - 0.3 * u * u, 1e-12) << d;
        EXPECT_NEAR(xyz[2], 0.01 * u * u * u * u, 1e-12) << d;
    }
    // The first three rows and the last three cannot serve: seek or the six-row read fails.
    struct Case {
        double jd;
        bool ok;
    };
    for (const Case c : {Case{1000.0, false},
                         {1020.0, false},
                         {1020.5, true},
                         {1360.0, true},
                         {1360.5, true},
                         {1370.5, false},
                         {1391.0, false},
                         {900.0, false}})
        EXPECT_EQ(t.position(c.jd, 0, xyz), c.ok) << c.jd;
}

TEST(TableReading, ChunksReadFromTheStoreGiveTheSameRows) {
    namespace fs = std::filesystem;
    const fs::path file =
        fs::temp_directory_path() / ("celestark_chunks_" + std::to_string(::getpid()) + ".mdb");
    fs::remove(file);
    const int rows = 5000; // more than two chunks
    {
        store::TableStore db;
        ASSERT_EQ(db.create(file), store::Outcome::ok);
        std::vector<store::FieldDef> fields = {
            {"julian_day_number", store::FieldType::double_precision, 0}};
        for (const char* c : {"b_x_position", "b_y_position", "b_z_position"})
            fields.push_back({c, store::FieldType::double_precision, 0});
        const std::vector<store::IndexDef> indexes = {
            {"day_number", {"julian_day_number"}, true, true}};
        ASSERT_EQ(db.create_table("t", fields, indexes), store::Outcome::ok);
        store::Recordset rs;
        ASSERT_EQ(db.open_recordset("t", rs), store::Outcome::ok);
        auto tx = db.begin_transaction();
        for (int i = rows - 1; i >= 0; --i) { // stored out of order: the index orders them
            rs.add_new();
            const double u = i / 10.0;
            rs.set("julian_day_number", 1000.0 + 10.0 * i);
            rs.set("b_x_position", std::sin(u));
            rs.set("b_y_position", std::cos(u));
            rs.set("b_z_position", u * 1e-3);
            ASSERT_EQ(rs.update(), store::Outcome::ok);
        }
        ASSERT_EQ(tx.commit(), store::Outcome::ok);
    }
    BodyTable stored;
    store::Outcome opened = store::Outcome::ok;
    ASSERT_TRUE(stored.attach(
        store::open_dated_rows(file, "t", {"b_x_position", "b_y_position", "b_z_position"}, opened),
        3));
    ASSERT_EQ(opened, store::Outcome::ok);
    EXPECT_EQ(stored.rows(), rows);
    EXPECT_EQ(stored.step(), 10.0);
    std::vector<double> dates, values;
    for (int i = 0; i < rows; ++i) {
        const double u = i / 10.0;
        dates.push_back(1000.0 + 10.0 * i);
        values.insert(values.end(), {std::sin(u), std::cos(u), u * 1e-3});
    }
    BodyTable memory;
    memory.assign(dates, values, 3);
    for (double jd :
         {1030.5, 1000.0 + 10 * 2046.5, 1000.0 + 10 * 2047.0, 1000.0 + 10 * 2049.9, 21480.0,
          1000.0 + 10 * 4096.2, 1000.0 + 10 * 4996.0, 1000.0 + 10 * 4997.0, 999.0}) {
        std::array<double, 3> a{}, b{};
        const bool ok_stored = stored.position(jd, 0, a);
        ASSERT_EQ(ok_stored, memory.position(jd, 0, b)) << jd;
        if (ok_stored) {
            EXPECT_EQ(a, b) << jd;
        }
    }
    fs::remove(file);
}

TEST(TableReading, OuterPlanetsOutOfRangeAreFatal) {
    auto tables = std::make_shared<BodyTables>();
    tables->planets = quartic_table(j2000 - 200, 40, 3);
    Session s;
    initialise_session(s, ".");
    s.body_tables = tables;
    RecordingSink sink;
    std::vector<std::string> fatal_titles;
    s.sink = &sink;
    s.fatal_handler = [&](const std::string& title, const std::string&) {
        fatal_titles.push_back(title);
    };

    calculate_bodies_at(s, j2000);
    EXPECT_TRUE(fatal_titles.empty());
    EXPECT_TRUE(s.engine.outer_planets_ok);
    calculate_bodies_at(s, j2000 + 500);
    ASSERT_FALSE(fatal_titles.empty());
    EXPECT_EQ(fatal_titles[0], "Fatal Error in OUTER3");
    EXPECT_EQ(
        sink.messages[0].text,
        "CK14-Error 3021 - No current record. This is a fatal error. Please contact Ivan Marlow");
    EXPECT_FALSE(s.engine.outer_planets_ok);
}

TEST(WorldViews, LemnicentricCentreAndCounts) {
    Session s;
    initialise_session(s, ".");
    s.chart.quaoar = s.chart.sedna = 1;
    s.options.actual_position = true;
    // Near the March equinox the centre sits on the Sun-Earth line in the ecliptic.
    for (double jd = 2451623.0; jd < 2451625.0; jd += 0.05) {
        calculate_bodies_at(s, jd);
        const double l = s.engine.pos.helio_long[helio::earth];
        if (std::fabs(rad_diff(l, 0)) > 0.002) continue;
        const PositionLists& p = s.engine.pos;
        for (int i = helio::mars; i <= helio::saturn; ++i) {
            const auto h = static_cast<std::size_t>(i);
            EXPECT_NEAR(rad_diff(p.lemni_long[h + 1], p.helio_long[h]), 0.0,
                        0.003 / p.helio_dist[h]);
        }
        EXPECT_NEAR(p.lemni_lat[0], 0.0, 0.003);
    }
    struct Case {
        double earth_long;
        bool zero_latitude;
    };
    // The Sun's lemnicentric latitude vanishes only at the four quarter points.
    for (const Case c : {Case{0.0, true},
                         {half_pi, true},
                         {pi, true},
                         {3 * half_pi, true},
                         {0.4, false},
                         {2.0, false},
                         {4.0, false},
                         {5.9, false}}) {
        s.engine.pos.helio_long[helio::earth] = c.earth_long;
        s.engine.pos.helio_dist[helio::earth] = 1.0;
        calculate_lemni(s);
        EXPECT_EQ(std::fabs(s.engine.pos.lemni_lat[0]) < 1e-12, c.zero_latitude) << c.earth_long;
        EXPECT_EQ(s.engine.pos.lemni_count, s.engine.pos.helio_count + 1);
        EXPECT_EQ(s.engine.pos.lemni_glyph[0], glyph::sun);
        EXPECT_EQ(s.engine.pos.lemni_glyph[1], glyph::earth);
    }
    // Quaoar and Sedna grow all three lists, Quaoar first.
    calculate_bodies_at(s, j2000);
    const PositionLists& p = s.engine.pos;
    EXPECT_EQ(p.helio_count, 11);
    EXPECT_EQ(p.lemni_count, 12);
    EXPECT_EQ(p.helio_glyph[9], glyph::quaoar);
    EXPECT_EQ(p.helio_glyph[10], glyph::sedna);
    EXPECT_EQ(p.geo_glyph[10], glyph::quaoar);
    // Sedna near its discovery (2003, 2004): about 90 au from the Sun, in Taurus.
    calculate_bodies_at(s, 2453200.5);
    EXPECT_NEAR(p.helio_dist[10], 89.9, 1.0);
    EXPECT_NEAR(norm_rad(p.helio_long[10]) * rad_to_deg, 48.0, 3.0);
    // Quaoar in 2004: about 43 au, in Ophiuchus/Scorpius longitudes.
    EXPECT_NEAR(p.helio_dist[9], 43.3, 1.0);
    EXPECT_NEAR(norm_rad(p.helio_long[9]) * rad_to_deg, 257.0, 5.0);
}

TEST(WorldViews, HeliocentricElementsAndTheMoonInTheHelioList) {
    Session s;
    initialise_session(s, ".");
    s.chart.helio_moon = 1;
    calculate_bodies_at(s, j2000);
    const PositionLists& p = s.engine.pos;
    // The Earth's orbit has its perihelion near 103 degrees and, in the ecliptic, no node.
    EXPECT_NEAR(p.helio_peri[0] * rad_to_deg, 103, 1);
    EXPECT_EQ(p.helio_node[0], 0.0);
    // The Moon as the last helio entry lies within 0.003 au of the Earth.
    const auto m = static_cast<std::size_t>(p.helio_count - 1);
    EXPECT_EQ(p.helio_glyph[m], glyph::moon);
    EXPECT_NEAR(p.helio_dist[m], p.helio_dist[0], 0.003);
}

// Against the reference, with the stored tables built for the tests.
#ifdef CELESTARK_TABLES_DIR
class TableBodiesAccuracy : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        std::string problems;
        tables_ = open_body_tables(CELESTARK_TABLES_DIR, problems);
        ASSERT_TRUE(problems.empty()) << problems;
    }
    static std::shared_ptr<const BodyTables> tables_;
};
std::shared_ptr<const BodyTables> TableBodiesAccuracy::tables_;

TEST_F(TableBodiesAccuracy, ReferencePositions) {
    const std::map<std::string, unsigned char> glyphs = {
        {"uranus", glyph::uranus}, {"neptune", glyph::neptune}, {"pluto", glyph::pluto},
        {"chiron", glyph::chiron}, {"juno", glyph::juno},       {"vesta", glyph::vesta},
        {"ceres", glyph::ceres},   {"pallas", glyph::pallas}};
    Session s;
    initialise_session(s, ".");
    s.body_tables = tables_;
    s.chart.chiron = s.chart.asteroids = 1;
    double worst_helio = 0, worst_geo_modern = 0, worst_geo_all = 0;
    int compared = 0;
    const auto rows = testing::read_reference_bodies();
    for (bool actual : {true, false}) {
        s.options.actual_position = actual;
        double last_jd = 0;
        for (const auto& r : rows) {
            const auto g = glyphs.find(r.body);
            if (g == glyphs.end()) continue;
            const bool helio_row = r.mode == "helio_true_nonut" && actual;
            const bool geo_row = r.mode == (actual ? "geo_true" : "geo_app_nodefl");
            if (!helio_row && !geo_row) continue;
            if (r.jd_tt != last_jd) calculate_bodies_at(s, ut_from_ephemeris_time(r.jd_tt));
            last_jd = r.jd_tt;
            const PositionLists& p = s.engine.pos;
            int k = -1;
            for (int i = 0; i < p.helio_count; ++i)
                if (p.helio_glyph[static_cast<std::size_t>(i)] == g->second) k = i;
            if (k < 0) {
                // Only Chiron may be missing, outside its table.
                EXPECT_EQ(r.body, "chiron") << r.jd_tt;
                continue;
            }
            const auto h = static_cast<std::size_t>(k);
            double lon, lat, nut = 0;
            if (helio_row) {
                lon = p.helio_long[h];
                lat = p.helio_lat[h];
            } else {
                lon = p.geo_long[h + 1];
                lat = p.geo_lat[h + 1];
                nut = 0; // geo entries carry the nutation already
            }
            const double err = std::max(std::fabs(rad_diff(lon + nut, r.lon * deg_to_rad)),
                                        std::fabs(lat - r.lat * deg_to_rad)) /
                               arcsec_to_rad;
            ++compared;
            if (helio_row) {
                worst_helio = std::max(worst_helio, err);
                EXPECT_LT(err, 0.1) << r.body << " helio at " << r.jd_tt;
            } else {
                worst_geo_all = std::max(worst_geo_all, err);
                if (r.jd_tt >= testing::jd_1800 && r.jd_tt < testing::jd_2200) {
                    worst_geo_modern = std::max(worst_geo_modern, err);
                    EXPECT_LT(err, 2.0)
                        << r.body << (actual ? " geometric" : " apparent") << " at " << r.jd_tt;
                }
            }
        }
    }
    EXPECT_GT(compared, 1000);
    std::printf("table bodies: helio %.4f\", geo 1800-2200 %.3f\", geo whole span %.3f\"\n",
                worst_helio, worst_geo_modern, worst_geo_all);
}

TEST_F(TableBodiesAccuracy, ChironOutsideItsTableDropsOutAndActualPositionHalvesTheReads) {
    Session s;
    initialise_session(s, ".");
    s.body_tables = tables_;
    s.chart.chiron = s.chart.asteroids = 1;
    calculate_bodies_at(s, julian_date(1, 1, 2000, "G", 0));
    const PositionLists& p = s.engine.pos;
    EXPECT_EQ(p.helio_count, 14);
    EXPECT_EQ(p.helio_glyph[9], glyph::chiron);
    EXPECT_EQ(p.helio_glyph[10], glyph::juno);
    const long apparent_reads = s.engine.table_reads;
    s.engine.table_reads = 0;
    s.options.actual_position = true;
    calculate_bodies_at(s, julian_date(1, 1, 2000, "G", 0));
    EXPECT_EQ(s.engine.table_reads * 2, apparent_reads);

    calculate_bodies_at(s, julian_date(1, 1, 400, "J", 0)); // before Chiron's table
    EXPECT_FALSE(s.engine.chiron_table_ok);
    EXPECT_TRUE(s.engine.asteroid_table_ok);
    EXPECT_EQ(p.helio_count, 13);
    EXPECT_EQ(p.geo_glyph[14], glyph::north_node); // the node pair follows the 14 bodies
    EXPECT_EQ(p.lemni_count, 14);
    EXPECT_EQ(p.helio_glyph[9], glyph::juno) << "the later entries move down";
    EXPECT_EQ(p.geo_glyph[10], glyph::juno);
}
#endif

} // namespace
} // namespace celestark
