// Star positions, star orbs, the stars and fixed points in the chart lists, the part of Chiron and
// the star analysis; the catalogue stars against the reference ephemeris.
#include "../store/program_folder.h"
#include "../store/star_test_support.h"
#include "app/body_tables.h"
#include "engine/chart.h"
#include "engine/chart_steps.h"
#include "engine/fixed_points.h"
#include "engine/star_analysis.h"
#include "engine/stars.h"
#include "engine/table_bodies.h"
#include "event_rows.h"
#include "screens/star_windows.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "store/option_store.h"
#include "store/star_catalogue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

namespace celestark {
namespace {

constexpr double arcsec = arcsec_to_rad;

TEST(StarFrames, EquatorialToTheJ2000Ecliptic) {
    const struct {
        double ra_deg, dec_deg, lon_deg, lat_deg, tolerance_deg;
    } cases[] = {
        {0, 0, 0, 0, 1e-12},                                // the equinox
        {90, 0, 90, -j2000_obliquity_deg, 1e-9},            // the solstice colure
        {270, 90 - j2000_obliquity_deg, 90, 90, 1e-5},      // the ecliptic pole
        {116.328942, 28.026183, 113.215630, 6.684170, 2e-6} // Pollux, Meeus's example 13.a
    };
    for (const auto& c : cases) {
        double lon = 0, lat = 0;
        equatorial_to_ecliptic_j2000(c.ra_deg * deg_to_rad, c.dec_deg * deg_to_rad, lon, lat);
        if (std::fabs(c.lat_deg) < 89) {
            EXPECT_NEAR(norm_rad(lon) * rad_to_deg, c.lon_deg, c.tolerance_deg) << c.ra_deg;
        }
        EXPECT_NEAR(lat * rad_to_deg, c.lat_deg, c.tolerance_deg) << c.ra_deg;
    }
}

// A thousand years back a star on the ecliptic has moved about 14 degrees (the general
// precession of 50.3" a year).
TEST(StarFrames, PrecessionFromJ2000) {
    double lon = 2.0, lat = 0;
    precess_ecliptic_from_j2000(-10, lon, lat);
    EXPECT_NEAR(lon - 2.0, -13.94 * deg_to_rad, 0.01 * deg_to_rad);
}

StarMoment moment_at(double t, bool actual, double nutation, double offset, double sun) {
    StarMoment m;
    m.t = t;
    m.sun = sun;
    m.nutation_long = nutation;
    m.zodiac_offset = offset;
    m.actual_position = actual;
    m.e = 0.016708617 - 0.000042037 * t - 0.0000001236 * t * t;
    m.w = (102.93735 + 1.71953 * t + 0.00046 * t * t) * deg_to_rad;
    return m;
}

TEST(StarPlace, ActualPositionDropsAberrationButKeepsNutationAndTheZodiac) {
    const double ra = 68.98 * deg_to_rad, dec = 16.51 * deg_to_rad, t = 0.2;
    double l0 = 0, b0 = 0;
    equatorial_to_ecliptic_j2000(ra, dec, l0, b0);
    precess_ecliptic_from_j2000(t, l0, b0);
    const struct {
        bool actual;
        double nutation, offset;
    } cases[] = {{true, 0, 0},
                 {true, 15 * arcsec, 0},
                 {true, -12 * arcsec, -0.4},
                 {false, 15 * arcsec, 0},
                 {false, 0, 0.7}};
    for (const auto& c : cases) {
        double lon = 0, lat = 0;
        star_place_of_date(ra, dec, 0, 0, moment_at(t, c.actual, c.nutation, c.offset, 1.0), lon,
                           lat);
        const double shift = lon - (l0 + c.nutation + c.offset);
        if (c.actual) {
            EXPECT_DOUBLE_EQ(shift, 0) << c.nutation << " " << c.offset;
            EXPECT_DOUBLE_EQ(lat, b0);
        } else {
            // The aberration: up to k / cos b in longitude, never zero here.
            EXPECT_GT(std::fabs(shift), 1 * arcsec);
            EXPECT_LT(std::fabs(shift), 22 * arcsec / std::cos(b0));
            EXPECT_NE(lat, b0);
        }
    }
}

StarOrbOptions orb_options() {
    StarOrbOptions o;
    o.orb_1 = 2.5;
    o.orb_1_magnitude = 2;
    o.orb_2 = 1.5;
    o.orb_2_magnitude = 0;
    o.orb_3_mag1 = 6;
    o.orb_3_mag6 = 1;
    o.orb_3_magnitude = 5;
    o.orb_4_mag1 = 4;
    o.orb_4_mag6 = 2;
    o.orb_4_magnitude = -1;
    for (int i = 0; i < 6; ++i) {
        o.orb_5[i] = 6 - i;       // 6 for magnitude 1 ... 1 for magnitude 6
        o.orb_6[i] = 3 - 0.5 * i; // 3 ... 0.5
    }
    return o;
}

TEST(StarOrb, EachSetByItsRule) {
    const StarOrbOptions o = orb_options();
    const struct {
        const char* set;
        float magnitude, absolute;
        float orb;
    } cases[] = {
        {"1", 2.0f, 5, 2.5f},    // at the limit
        {"1", 2.01f, 5, 0},      // above it
        {"2", 3, -0.5f, 1.5f},   // by the absolute magnitude alone
        {"2", -1, 0.5f, 0},      //
        {"3", 1, -1, 1.5f},      // the smaller of the two
        {"3", 1, 1, 0},          // set 2 refuses it
        {"3", 3, -3, 0},         // set 1 refuses it
        {"4", 1, 0, 6},          // the first-magnitude orb
        {"4", 6, 0, 0},          // above the limit of 5
        {"4", 3.5f, 0, 3.5f},    // halfway
        {"4", -1.46f, 0, 8.46f}, // brighter than magnitude 1: more than the first-magnitude orb
        {"5", 1, -2, 4},         //
        {"5", 6, -2, 2},         // interpolated on the visual magnitude, gated by the absolute one
        {"5", 1, 0, 0},          //
        {"6", 1, -2, 4},         // sets 4 and 5 both give one: the smaller
        {"6", 6, -2, 0},         // set 4 refuses it
        {"7", 0.5f, 9, 6},       // magnitude 1 or less
        {"7", 2, 9, 5},          // at or above 2
        {"7", 6, 9, 1},          //
        {"8", -7, 3, 0.5f},      // absolute magnitude 3 or more: the last step
        {"8", 1, -7, 1},         // then the visual magnitude against the absolute steps
        {"8", -2, -7, 2},        //
        {"8", -6, 2, 3},         //
        {"9", 2, -7, 1},         // 7 gives 5, 8 gives 1
        {"9", 6, 4, 0.5f},       // 7 gives 1, 8 gives 0.5
        {"0", 1, 1, 0},          // no such set
        {"10", 1, 1, 0},         //
    };
    for (const auto& c : cases)
        EXPECT_NEAR(star_orb(o, c.set, c.magnitude, c.absolute), c.orb, 1e-5)
            << "set " << c.set << " m " << c.magnitude << " M " << c.absolute;
}

using testing::set_event;

class ChartStars : public ::testing::Test {
  protected:
    void SetUp() override {
        testing::make_star_file(dir_.file(""),
                                {testing::star_row("Taurus", 1, "Aldebaran", "\xB6", true),
                                 testing::star_row("Leo", 1, "Regulus", "\xB7", true)});
        testing::open_stars(s_, dir_.file(""), sink_);
        set_event(s_, 1, 1, 2000, 12);
        s_.chart.moon_node = 0;
    }
    store::testing::ScratchDir dir_;
    RecordingSink sink_;
    Session s_;
};

TEST_F(ChartStars, FollowTheBodiesInTheGeoAndChartLists) {
    // In catalogue order: Leo before Taurus. Both rows have Aldebaran's place.
    ASSERT_EQ(s_.stars.chart_star_count, 2);
    EXPECT_EQ(s_.stars.chart_star_cache[0].star_name, "Regulus");
    EXPECT_EQ(s_.stars.star_glyphs[0], 0xB7);
    EXPECT_EQ(s_.stars.star_glyphs[1], 0xB6);
    for (const int on : {0, 1}) {
        s_.chart.stars_in_charts = static_cast<std::int16_t>(on);
        calculate_chart(s_, 1, false);
        const PositionLists& p = s_.engine.pos;
        ASSERT_EQ(p.geo_count, p.geo_count_base + 2 * on);
        if (!on) continue;
        for (int i = 0; i < 2; ++i) {
            const auto k = static_cast<std::size_t>(p.geo_count_base + i);
            EXPECT_EQ(p.geo_glyph[k], s_.stars.star_glyphs[static_cast<std::size_t>(i)]);
            EXPECT_EQ(p.chart_glyph[k], p.geo_glyph[k]);
            EXPECT_DOUBLE_EQ(p.chart_long[k], p.geo_long[k]);
            // Aldebaran's place in 2000.
            EXPECT_NEAR(p.geo_long[k] * rad_to_deg, 69.79, 0.01);
            EXPECT_NEAR(p.geo_lat[k] * rad_to_deg, -5.47, 0.02);
        }
    }
}

class FixedPoints : public ::testing::Test {
  protected:
    void SetUp() override {
        using testing::fixed_row;
        testing::make_star_file(
            dir_.file(""), {},
            {fixed_row("geo", true, "Tropical", 10, 30, "Geocentric", 174),
             fixed_row("helio", true, "Tropical", 20, 0, "Heliocentric", 175),
             fixed_row("lemni", true, "Tropical", 30, 0, "Lemnicentric", 178),
             fixed_row("tycho", true, "Tropical", 40, 0, "Tychonic", 179),
             fixed_row("inactive", false, "Tropical", 50, 0, "Geocentric", 190),
             fixed_row("svp", true, "Sidereal SVP", 60, 15, "Geocentric", 191)});
        testing::open_stars(s_, dir_.file(""), sink_);
    }
    // The sigils each list takes in a chart of the zodiac and world view.
    std::map<std::string, std::vector<int>> lists_for(const std::string& zodiac,
                                                      const std::string& view) {
        s_.chart.zodiac = zodiac;
        s_.chart.world_view = view;
        PositionLists& p = s_.engine.pos;
        p.geo_count = p.chart_count = 10;
        p.helio_count = 9;
        p.lemni_count = 10;
        add_fixed_points(s_);
        std::map<std::string, std::vector<int>> lists;
        for (int i = 10; i < p.geo_count; ++i)
            lists["geo"].push_back(p.geo_glyph[static_cast<std::size_t>(i)]);
        for (int i = 9; i < p.helio_count; ++i)
            lists["helio"].push_back(p.helio_glyph[static_cast<std::size_t>(i)]);
        for (int i = 10; i < p.lemni_count; ++i)
            lists["lemni"].push_back(p.lemni_glyph[static_cast<std::size_t>(i)]);
        for (int i = 10; i < p.chart_count; ++i)
            lists["chart"].push_back(p.chart_glyph[static_cast<std::size_t>(i)]);
        return lists;
    }
    store::testing::ScratchDir dir_;
    RecordingSink sink_;
    Session s_;
};

TEST_F(FixedPoints, ByZodiacAndWorldView) {
    using L = std::map<std::string, std::vector<int>>;
    const struct {
        const char* zodiac;
        const char* view;
        L expected;
    } cases[] = {
        {"Tropical", "Geocentric", L{{"geo", {174}}, {"chart", {174}}}},
        {"Tropical", "Heliocentric", L{{"helio", {175}}, {"chart", {175}}}},
        {"Tropical", "Lemnicentric", L{{"lemni", {178}}, {"chart", {178}}}},
        // A heliocentric point never enters a Tychonic chart; a Tychonic one goes to geo.
        {"Tropical", "Tychonic", L{{"geo", {179}}, {"chart", {179}}}},
        {"Tropical", "Geo/Helio", L{{"geo", {174}}, {"helio", {175}}, {"chart", {174, 175}}}},
        // A tropical point is absent from a sidereal chart, and the reverse.
        {"Sidereal SVP", "Geocentric", L{{"geo", {191}}, {"chart", {191}}}},
        {"Draconic", "Geocentric", L{}},
    };
    for (const auto& c : cases) EXPECT_EQ(lists_for(c.zodiac, c.view), c.expected) << c.view;
    EXPECT_EQ(s_.stars.fixed_sigils, (std::vector<unsigned char>{174, 175, 178, 179, 190, 191}));
}

TEST_F(FixedPoints, TheLongitudeIsTheZodiacsOwn) {
    s_.engine.zodiac_offset = 0.3; // not added
    lists_for("Sidereal SVP", "Geocentric");
    EXPECT_DOUBLE_EQ(s_.engine.pos.geo_long[10], (60 + 15 / 60.0) * 0.017453292519943278);
    EXPECT_EQ(s_.engine.pos.geo_lat[10], 0);
    EXPECT_DOUBLE_EQ(s_.engine.pos.chart_long[10], s_.engine.pos.geo_long[10]);
}

TEST_F(FixedPoints, AnEditShowsInTheNextChartAndTheListsNeverOverflow) {
    const std::vector<StarListLine> lines = fixed_list(s_);
    ASSERT_EQ(lines.size(), 6u);
    ASSERT_EQ(set_fixed_field(s_, lines[4].bookmark, "fixed_active", "True", sink_),
              store::Outcome::ok);
    EXPECT_EQ(lists_for("Tropical", "Geocentric")["geo"], (std::vector<int>{174, 190}));
    // A full list takes no more.
    PositionLists& p = s_.engine.pos;
    p.geo_count = geo_capacity - 1;
    p.chart_count = 10;
    add_fixed_points(s_);
    EXPECT_EQ(p.geo_count, geo_capacity);
    EXPECT_EQ(p.chart_count, 11);
}

#ifdef CELESTARK_TABLES_DIR

TEST(PartOfChiron, InTheChartOnlyWhenAskedForAndServed) {
    Session s;
    initialise_session(s, ".");
    std::string problems;
    s.body_tables = open_body_tables(CELESTARK_TABLES_DIR, problems);
    set_event(s, 15, 6, 1990, 12);
    s.chart.house_system = "Placidus";
    const struct {
        int part_of_chiron, chiron;
        const char* year;
        bool present;
    } cases[] = {{1, 1, "1990", true},
                 {0, 1, "1990", false},
                 {1, 0, "1990", false},
                 {1, 1, "600", false}}; // before Chiron's table
    for (const auto& c : cases) {
        s.chart.part_of_chiron = static_cast<std::int16_t>(c.part_of_chiron);
        s.chart.chiron = static_cast<std::int16_t>(c.chiron);
        s.event_slots[1][col::year] = c.year;
        calculate_chart(s, 1, false);
        const PositionLists& p = s.engine.pos;
        int found = -1;
        for (int i = 0; i < p.geo_count; ++i)
            if (p.geo_glyph[static_cast<std::size_t>(i)] == glyph::part_of_chiron) found = i;
        EXPECT_EQ(found >= 0, c.present) << c.part_of_chiron << c.chiron << c.year;
        if (found < 0) continue;
        double part = 0;
        ASSERT_TRUE(calculate_part_of_chiron(s, part));
        EXPECT_DOUBLE_EQ(p.geo_long[static_cast<std::size_t>(found)], part);
    }
}

struct ReferenceStar {
    double jd_tt;
    std::string star, mode;
    double lon, lat;
};

std::vector<ReferenceStar> read_reference_stars() {
    std::vector<ReferenceStar> rows;
    std::ifstream in(std::string(CELESTARK_TEST_DATA) + "/stars.csv");
    std::string line;
    std::getline(in, line);
    while (std::getline(in, line)) {
        std::replace(line.begin(), line.end(), ',', ' ');
        std::istringstream cells(line);
        ReferenceStar r;
        cells >> r.jd_tt >> r.star >> r.mode >> r.lon >> r.lat;
        rows.push_back(r);
    }
    return rows;
}

// The catalogue's stars of the reference, apparent within 10" and geometric within 5" from 1000
// to 2500 (largest measured: 4.5" apparent, Antares in 1066; 3.9" geometric).
TEST(StarAccuracy, CatalogueStarsAgainstTheReference) {
    testing::ProgramFolder folder(false, false, true);
    Session s;
    initialise_session(s, folder.path());
    ASSERT_EQ(open_star_tables(s), "");
    std::map<std::string, StarValues> catalogue;
    store::Recordset& rs = s.stars.stores->stars;
    const StarRowReader reader(rs);
    for (rs.move_first(); rs.has_current(); rs.move_next())
        if (const std::string name = reader.text(rs, reader.star_name); !name.empty())
            catalogue[name] = reader.values(rs);
    CalcSwitches& calc = s.engine.calc;
    calc.calc_planets = calc.calc_moon_long = calc.calc_moon_lat = calc.calc_moon_dist = false;
    calc.calc_nodes = false;

    std::map<std::string, double> largest;
    int checked = 0;
    for (const ReferenceStar& r : read_reference_stars()) {
        ASSERT_TRUE(catalogue.count(r.star)) << r.star;
        const StarValues& v = catalogue[r.star];
        s.options.actual_position = r.mode == "true";
        calculate_bodies_at(s, ut_from_ephemeris_time(r.jd_tt));
        double lon = 0, lat = 0;
        star_place_of_date(v.ra, v.dec, v.pm_ra, v.pm_dec, star_moment(s), lon, lat);
        const double dl = std::fabs(rad_diff(lon, r.lon * deg_to_rad)) / arcsec;
        const double db = std::fabs(lat - r.lat * deg_to_rad) / arcsec;
        const double limit = r.mode == "true" ? 5 : 10;
        EXPECT_LT(dl, limit) << r.star << " " << r.mode << " " << r.jd_tt;
        EXPECT_LT(db, limit) << r.star << " " << r.mode << " " << r.jd_tt;
        largest[r.mode] = std::max({largest[r.mode], dl, db});
        ++checked;
    }
    EXPECT_EQ(checked, 1200);
    std::printf("  largest difference: apparent %.2f\", geometric %.2f\"\n", largest["app"],
                largest["true"]);
}

// A session started in a program folder with the built catalogue, the orbs of set "1" at 1 degree
// for stars to magnitude 1.5.
class StarAnalysisTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(folder_.start(s_).started);
        for (const auto& [field, value] : {std::pair<const char*, double>{"orb_1_degs", 1},
                                           {"orb_1_mins", 0},
                                           {"orb_1_magnitude", 1.5}})
            ASSERT_EQ(set_option(s_, "option_name", field, store::Value(value), folder_.sink),
                      store::Outcome::ok);
        // 23 August 2000: the Sun on Regulus.
        set_event(s_, 23, 8, 2000, 12);
        s_.chart.stars_in_charts = 0;
        calculate_chart(s_, 1, false);
    }
    StarAnalysis analyse(const std::string& group, StarAnalysisKind kind, std::size_t max_hits) {
        return star_analysis(s_, group, "1", kind, max_hits, star_group_names(s_),
                             read_star_orb_options(s_));
    }
    testing::ProgramFolder folder_;
    Session s_;
};

TEST_F(StarAnalysisTest, TheSunOnRegulus) {
    const StarAnalysis a = analyse("All Stars", StarAnalysisKind::longitude, 100);
    ASSERT_FALSE(a.skipped);
    const auto regulus = std::find_if(a.hits.begin(), a.hits.end(), [](const StarHit& h) {
        return h.point == glyph::sun && h.star_name == "Regulus";
    });
    ASSERT_NE(regulus, a.hits.end());
    EXPECT_EQ(regulus->label(), "a"); // the Greek letter, in the Greek font
    EXPECT_EQ(regulus->constellation, "Leo");
    EXPECT_LT(std::fabs(regulus->orb), 1.0);
    EXPECT_EQ(regulus->orb_limit, 1.0f);
    for (const StarHit& h : a.hits) {
        EXPECT_LE(h.magnitude, 1.5f) << h.star_name;
        EXPECT_LT(std::fabs(h.orb), 1.0) << h.star_name;
    }
}

TEST_F(StarAnalysisTest, GroupsVariantsAndTheFullPage) {
    const struct {
        const char* group;
        StarAnalysisKind kind;
        std::size_t max_hits;
        bool skipped, too_many, regulus;
    } cases[] = {
        {"None", StarAnalysisKind::longitude, 100, true, false, false},
        {"No such group", StarAnalysisKind::longitude, 100, true, false, false},
        {"Basic Star Zodiac stars", StarAnalysisKind::longitude, 100, false, false, true},
        {"Star Group for charts", StarAnalysisKind::long_lat, 100, false, false, true},
        {"Star group 1", StarAnalysisKind::longitude, 100, false, false, false}, // empty group
        {"All Stars", StarAnalysisKind::longitude, 0, false, true, false},
        {"All Stars", StarAnalysisKind::horizon, 100, false, false, false},
    };
    for (const auto& c : cases) {
        const StarAnalysis a = analyse(c.group, c.kind, c.max_hits);
        EXPECT_EQ(a.skipped, c.skipped) << c.group;
        EXPECT_EQ(a.too_many, c.too_many) << c.group;
        const bool regulus = std::any_of(a.hits.begin(), a.hits.end(), [](const StarHit& h) {
            return h.star_name == "Regulus" && h.point == glyph::sun;
        });
        EXPECT_EQ(regulus, c.regulus) << c.group;
        if (c.kind != StarAnalysisKind::horizon) continue;
        for (const StarHit& h : a.hits)
            EXPECT_TRUE(h.point == glyph::ascendant || h.point == glyph::descendant ||
                        h.point == glyph::midheaven || h.point == glyph::imum_coeli);
    }
    // An excluded star leaves every group.
    const std::vector<StarListLine> leo = list_constellation(s_, "Leo", folder_.sink);
    ASSERT_FALSE(leo.empty());
    ASSERT_EQ(set_star_field(s_, leo[0].bookmark, "star_selection_4", "True", folder_.sink),
              store::Outcome::ok);
    const StarAnalysis a = analyse("All Stars", StarAnalysisKind::longitude, 100);
    EXPECT_TRUE(std::none_of(a.hits.begin(), a.hits.end(),
                             [](const StarHit& h) { return h.star_name == "Regulus"; }));
}

#endif

} // namespace
} // namespace celestark
