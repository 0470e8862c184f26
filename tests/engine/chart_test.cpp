#include "engine/chart.h"
#include "engine/moon.h"
#include "engine/time_base.h"
#include "event_rows.h"
#include "reference_data.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

namespace celestark {
namespace {

constexpr double arcsec = arcsec_to_rad;

Session make_session() {
    Session s;
    initialise_session(s, ".");
    return s;
}

using testing::set_event;

// Universal Time from ephemeris time and back again.
TEST(TimeBase, EphemerisTimeRoundTrip) {
    TimeBase t;
    set_calculation_time(t, j2000);
    EXPECT_DOUBLE_EQ(t.jd_ephemeris, j2000 + 62.4 / 86400.0);
    for (double jd : {1355796.05255, 2451545.0, 2524593.5})
        EXPECT_NEAR(t_from_j2000(ut_from_ephemeris_time(jd) +
                                 delta_t(t_from_j2000(ut_from_ephemeris_time(jd))) / 86400.0),
                    t_from_j2000(jd), 1e-12);
}

TEST(Nutation, AgreesWithTheReference) {
    // The thirteen terms keep the anomalies in the places of their own tables, which moves the
    // nutation by up to 0.2" from the full series; the obliquity is Laskar's in 32-bit floats.
    const auto rows = testing::read_reference_bodies();
    int checked = 0;
    for (const auto& r : rows) {
        if (r.body != "ecl_nut" || r.jd_tt < testing::jd_1800 || r.jd_tt >= testing::jd_2200)
            continue;
        TimeBase t;
        set_calculation_time(t, ut_from_ephemeris_time(r.jd_tt));
        LunarArguments a;
        Nutation n;
        calculate_lunar_arguments(t, a);
        calculate_nutation(t, a, n);
        // Columns: true obliquity, mean obliquity, nutation in longitude (degrees).
        EXPECT_NEAR(n.mean_obliquity, r.lat * deg_to_rad, 0.1 * arcsec) << r.jd_tt;
        EXPECT_NEAR(n.nutation_long, r.dist * deg_to_rad, 0.5 * arcsec) << r.jd_tt;
        EXPECT_NEAR(n.true_obliquity, r.lon * deg_to_rad, 0.5 * arcsec) << r.jd_tt;
        EXPECT_DOUBLE_EQ(n.sin_obliquity, std::sin(n.true_obliquity));
        ++checked;
    }
    EXPECT_GT(checked, 50);
}

TEST(Planets, LightTimeTakesOnePassAndLeavesTheRetardedEarth) {
    Session s = make_session();
    set_event(s, 14, 6, 1985, 6);
    s.options.actual_position = true;
    calculate_chart(s, 1, false);
    const double true_earth = s.engine.pos.helio_long[helio::earth];
    const double geometric_saturn = s.engine.pos.geo_long[geo::saturn];
    // With actual positions nothing is retarded: the Earth stays the Sun's Earth.
    EXPECT_DOUBLE_EQ(s.engine.earth_long, true_earth);

    s.options.actual_position = false;
    calculate_chart(s, 1, false);
    // The last retarded Earth, Saturn's, is left behind: Saturn's light takes over an hour, and the
    // Earth moves about 2.5" a minute.
    EXPECT_GT(std::fabs(rad_diff(true_earth, s.engine.earth_long)), 60 * arcsec);
    // Saturn shifts by its own motion and the Earth's over the light time, never by more than 60".
    EXPECT_GT(std::fabs(rad_diff(s.engine.pos.geo_long[geo::saturn], geometric_saturn)),
              1 * arcsec);
    EXPECT_LT(std::fabs(rad_diff(s.engine.pos.geo_long[geo::saturn], geometric_saturn)),
              60 * arcsec);
}

// Puts a Universal Time moment into user slot 1 as a Greenwich-time event.
void set_event_at(Session& s, double jd) {
    const CivilDate d = date_from_julian(jd, "G");
    const double day = std::floor(d.day);
    set_event(s, static_cast<int>(day), d.month, d.year, 0);
    EventRow& r = s.event_slots[1];
    const double seconds = (d.day - day) * 86400.0;
    r[col::hours] = std::to_string(static_cast<int>(seconds / 3600));
    r[col::mins] = std::to_string(static_cast<int>(std::fmod(seconds, 3600) / 60));
    r[col::secs] = std::to_string(static_cast<int>(std::fmod(seconds, 60)));
}

TEST(Chart, RetrogradeMarksBetweenTheStations) {
    // Stations from the reference: midway between turning retrograde and turning direct the mark
    // is "R"; midway between turning direct and the next retrograde turn it is empty.
    struct Station {
        std::string body, kind;
        double jd;
    };
    std::vector<Station> stations;
    std::ifstream in(std::string(CELESTARK_TEST_DATA) + "/events.csv");
    std::string line;
    std::getline(in, line);
    while (std::getline(in, line)) {
        std::istringstream f(line);
        std::string what, body, kind, jd;
        std::getline(f, what, ',');
        std::getline(f, body, ',');
        std::getline(f, kind, ',');
        std::getline(f, jd, ',');
        if (what == "station") stations.push_back({body, kind, std::stod(jd)});
    }
    const std::map<std::string, int> index = {{"mercury", geo::mercury},
                                              {"venus", geo::venus},
                                              {"mars", geo::mars},
                                              {"jupiter", geo::jupiter}};
    Session s = make_session();
    int checked = 0;
    for (std::size_t i = 0; i + 1 < stations.size() && checked < 120; i += 7) {
        const Station& a = stations[i];
        const auto next = std::find_if(stations.begin() + static_cast<long>(i) + 1, stations.end(),
                                       [&](const Station& b) { return b.body == a.body; });
        if (next == stations.end()) continue;
        set_event_at(s, (a.jd + next->jd) / 2);
        calculate_chart(s, 1, true);
        const char expected = a.kind == "R" ? 'R' : 0;
        EXPECT_EQ(s.engine.pos.geo_retro[static_cast<std::size_t>(index.at(a.body) + 1)], expected)
            << a.body << " after the " << a.kind << " station at JD " << a.jd;
        ++checked;
    }
    EXPECT_GT(checked, 40);
}

TEST(Chart, MarksStayWithoutTheFlagAndNeverOnTheLights) {
    Session s = make_session();
    set_event(s, 1, 4, 2000, 12);
    s.engine.pos.geo_retro.fill('X');
    calculate_chart(s, 1, false);
    EXPECT_EQ(s.engine.pos.geo_retro[geo::mercury + 1], 'X') << "without the flag the marks stay";
    calculate_chart(s, 1, true);
    EXPECT_EQ(s.engine.pos.geo_retro[geo::sun + 1], 'X')
        << "the Sun and the Moon never carry a mark";
    EXPECT_EQ(s.engine.pos.geo_retro[geo::moon + 1], 'X');
    EXPECT_NE(s.engine.pos.geo_retro[geo::mercury + 1], 'X');
}

TEST(Chart, ListsNodesAndTychonicCopy) {
    struct Case {
        int moon_node, moon_peri, geo_count, chart_count;
    };
    for (const Case c :
         {Case{0, 0, 10, 10}, Case{1, 0, 12, 11}, Case{2, 1, 14, 12}, Case{0, 2, 12, 11}}) {
        Session s = make_session();
        s.chart.moon_node = static_cast<std::int16_t>(c.moon_node);
        s.chart.moon_peri = static_cast<std::int16_t>(c.moon_peri);
        set_event(s, 3, 9, 1950, 4);
        calculate_chart(s, 1, false);
        const PositionLists& p = s.engine.pos;
        SCOPED_TRACE(c.moon_node * 10 + c.moon_peri);
        EXPECT_EQ(p.geo_count, c.geo_count);
        EXPECT_EQ(p.chart_count, c.chart_count);
        EXPECT_EQ(p.geo_count_base, 10);
        EXPECT_NE(s.engine.true_node, 0.0) << "the node is calculated even when not listed";
        if (c.moon_node > 0) {
            EXPECT_EQ(p.geo_glyph[10], glyph::north_node);
            EXPECT_EQ(p.geo_glyph[11], glyph::south_node);
            EXPECT_DOUBLE_EQ(p.geo_long[11] - p.geo_long[10], pi);
            EXPECT_DOUBLE_EQ(p.chart_long[10], p.geo_long[10]);
            const double expected = c.moon_node == 2 ? s.engine.mean_node : s.engine.true_node;
            EXPECT_DOUBLE_EQ(p.geo_long[10], expected);
        }
    }
    // The true node swings about the mean one by up to 1.7 degrees.
    Session s = make_session();
    set_event(s, 3, 9, 1950, 4);
    calculate_chart(s, 1, false);
    EXPECT_LT(std::fabs(rad_diff(s.engine.true_node, s.engine.mean_node)), 1.8 * deg_to_rad);
    EXPECT_LT(std::fabs(rad_diff(s.engine.true_perigee, s.engine.mean_perigee)), 31 * deg_to_rad);

    s.chart.world_view = "Tychonic";
    s.event_slots[1][col::hours] = "5";
    calculate_chart(s, 1, true);
    const PositionLists& p = s.engine.pos;
    for (int i = geo::mercury; i <= geo::saturn; ++i) {
        EXPECT_DOUBLE_EQ(p.geo_long[static_cast<std::size_t>(i)],
                         p.helio_long[static_cast<std::size_t>(i - 1)]);
        EXPECT_DOUBLE_EQ(p.chart_long[static_cast<std::size_t>(i)],
                         p.helio_long[static_cast<std::size_t>(i - 1)]);
        EXPECT_EQ(p.geo_retro[static_cast<std::size_t>(i + 1)], 0);
    }
    EXPECT_NE(p.geo_long[geo::moon], p.helio_long[0]);
}

TEST(Levels, ShorterSeriesKeepTheLeadingTerms) {
    Session s = make_session();
    double moon[4] = {}, mars[4] = {};
    for (int level = 1; level <= 3; ++level) {
        s.accuracy_level = static_cast<std::int16_t>(level);
        calculate_bodies_at(s, 2440000.5);
        moon[level] = s.engine.pos.geo_long[geo::moon];
        mars[level] = s.engine.pos.geo_long[geo::mars];
    }
    for (int level = 2; level <= 3; ++level) {
        EXPECT_NE(moon[level], moon[1]);
        EXPECT_LT(std::fabs(rad_diff(moon[level], moon[1])), 120 * arcsec) << level;
        EXPECT_LT(std::fabs(rad_diff(mars[level], mars[1])), 300 * arcsec) << level;
    }
    // Far from 2000 the series run on without a guard.
    calculate_bodies_at(s, 0.0);
    for (int i = 0; i < 7; ++i)
        EXPECT_TRUE(std::isfinite(s.engine.pos.geo_long[static_cast<std::size_t>(i)]));
}

} // namespace
} // namespace celestark
