#include "engine/chart.h"

#include "engine/chart_steps.h"
#include "engine/moon.h"
#include "engine/planets.h"
#include "engine/table_bodies.h"
#include "engine/time_base.h"
#include "engine/world_views.h"
#include "engine/zodiac.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/event_time.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <cmath>

namespace celestark {

namespace {

constexpr unsigned char geo_glyphs[geo::fixed_count] = {
    glyph::sun,     glyph::moon,   glyph::mercury, glyph::venus,   glyph::mars,
    glyph::jupiter, glyph::saturn, glyph::uranus,  glyph::neptune, glyph::pluto};
constexpr unsigned char helio_glyphs[helio::fixed_count] = {
    glyph::earth,  glyph::mercury, glyph::venus,   glyph::mars, glyph::jupiter,
    glyph::saturn, glyph::uranus,  glyph::neptune, glyph::pluto};
constexpr unsigned char lemni_glyphs[lemni::fixed_count] = {
    glyph::sun,     glyph::earth,  glyph::mercury, glyph::venus,   glyph::mars,
    glyph::jupiter, glyph::saturn, glyph::uranus,  glyph::neptune, glyph::pluto};

void reset_lists(PositionLists& p) {
    p.geo_count = geo::fixed_count;
    p.helio_count = helio::fixed_count;
    p.lemni_count = lemni::fixed_count;
    for (int i = 0; i < geo::fixed_count; ++i)
        p.geo_glyph[static_cast<std::size_t>(i)] = geo_glyphs[i];
    for (int i = 0; i < helio::fixed_count; ++i)
        p.helio_glyph[static_cast<std::size_t>(i)] = helio_glyphs[i];
    for (int i = 0; i < lemni::fixed_count; ++i)
        p.lemni_glyph[static_cast<std::size_t>(i)] = lemni_glyphs[i];
}

// Moon, Sun and planets at the time base, in the order the lists are built.
void calculate_bodies(Session& s, double jd) {
    const CalcSwitches& calc = s.engine.calc;
    if (calc.calc_moon_long) moon_longitude(s);
    if (calc.calc_moon_lat) moon_latitude(s);
    if (calc.calc_moon_dist) moon_distance(s);
    if (calc.calc_sun) calculate_sun(s, true);
    if (!calc.calc_planets) return;
    calculate_mercury(s, jd);
    calculate_venus(s, jd);
    calculate_mars(s, jd);
    calculate_jupiter(s, jd);
    calculate_saturn(s, jd);
    calculate_uranus(s, jd);
    calculate_neptune(s, jd);
    calculate_pluto(s, jd);
    calculate_helio_elements(s);
    calculate_distant_bodies(s);
    if (s.chart.chiron) calculate_chiron(s, jd);
    if (s.chart.asteroids) {
        calculate_juno(s, jd);
        calculate_vesta(s, jd);
        calculate_ceres(s, jd);
        calculate_pallas(s, jd);
    }
    if (s.chart.helio_moon) moon_in_helio(s);
}

// The body pass of a chart, at the moment already set in the time base.
void body_pass(Session& s, double jd) {
    EngineState& e = s.engine;
    reset_lists(e.pos);
    calculate_lunar_arguments(e.time, e.lunar);
    calculate_nutation(e.time, e.lunar, e.nutation);
    // Mean local sidereal time, not folded.
    e.local_sidereal_hours = greenwich_sidereal_hours(e.time.t_ut) - e.longitude_deg / 15.0;
    calculate_vernal_point(s);
    calculate_houses(s);
    calculate_bodies(s, jd);
    if (s.engine.calc.calc_planets) calculate_lemni(s);
}

// Nutation into every geo entry; the chart list starts as a copy of the geo list.
void add_nutation_and_start_chart_list(EngineState& e) {
    PositionLists& p = e.pos;
    for (int i = 0; i < p.geo_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        p.geo_long[k] += e.nutation.nutation_long;
        p.chart_long[k] = p.geo_long[k];
        p.chart_glyph[k] = p.geo_glyph[k];
    }
    p.chart_count = p.geo_count;
}

// In the Tychonic view the planets stand where the helio list has them; Sun and Moon stay.
void tychonic_copy(Session& s) {
    if (s.chart.world_view != "Tychonic") return;
    PositionLists& p = s.engine.pos;
    for (int i = geo::mercury; i < p.geo_count && i - 1 < p.helio_count; ++i) {
        const auto g = static_cast<std::size_t>(i), h = g - 1;
        p.geo_long[g] = p.helio_long[h];
        p.chart_long[g] = p.helio_long[h];
        p.geo_lat[g] = p.helio_lat[h];
        p.geo_dist[g] = p.helio_dist[h];
        p.geo_retro[g + 1] = 0;
    }
}

void add_stars_and_fixed_points(Session& s) {
    if (s.chart.stars_in_charts == 0) return;
    add_chart_stars(s);
    add_fixed_points(s);
}

void set_retrograde_marks(PositionLists& p) {
    // Sun and Moon (geo), Sun and Earth (lemni) never carry a mark.
    for (int i = geo::mercury; i < p.geo_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        p.geo_retro[k + 1] = rad_diff(p.geo_long[k], p.geo_long_ahead[k]) > 0 ? 'R' : 0;
    }
    for (int i = lemni::mercury; i < p.lemni_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        p.lemni_retro[k + 1] = rad_diff(p.lemni_long[k], p.lemni_long_ahead[k]) > 0 ? 'R' : 0;
    }
}

} // namespace

void calculate_chart(Session& s, int row, bool retrograde_flag) {
    EngineState& e = s.engine;
    e.zodiac_offset = 0;
    e.zodiac_offset_second = 0;

    const EventMoment m = reduce_event_time(s.event_slots[row]);
    e.latitude_rad = m.latitude_deg * deg_to_rad;
    e.latitude_deg = m.latitude_deg;
    e.event_slot = row;
    e.longitude_deg = m.longitude_deg;
    e.day_of_week_number = m.day_of_week_number;
    e.event_jd = m.event_jd;

    if (retrograde_flag) {
        const double ahead = e.event_jd + 1.0 / 60.0 / 24.0;
        set_calculation_time(e.time, ahead);
        body_pass(s, ahead);
        PositionLists& p = e.pos;
        p.geo_long_ahead = p.geo_long;
        p.helio_long_ahead = p.helio_long;
        p.helio_node_ahead = p.helio_node;
        p.helio_peri_ahead = p.helio_peri;
        p.lemni_long_ahead = p.lemni_long;
    }
    set_calculation_time(e.time, e.event_jd);
    body_pass(s, e.event_jd);
    if (retrograde_flag) set_retrograde_marks(e.pos);

    add_nutation_and_start_chart_list(e);
    tychonic_copy(s);
    e.pos.geo_count_base = e.pos.geo_count;
    e.pos.helio_count_base = e.pos.helio_count;
    add_stars_and_fixed_points(s);
    if (e.calc.calc_nodes) calculate_moon_points(s, true);
    add_part_of_chiron(s);
    add_house_points(s);
}

void calculate_bodies_at(Session& s, double jd) {
    EngineState& e = s.engine;
    set_calculation_time(e.time, jd);
    reset_lists(e.pos);
    calculate_lunar_arguments(e.time, e.lunar);
    calculate_nutation(e.time, e.lunar, e.nutation);
    calculate_vernal_point(s);
    calculate_bodies(s, jd);
    add_nutation_and_start_chart_list(e);
    add_stars_and_fixed_points(s);
    tychonic_copy(s);
    if (e.calc.calc_nodes) calculate_moon_points(s, true);
    calculate_lemni(s);
}

double ut_from_ephemeris_time(double jd_ephemeris) {
    double jd = jd_ephemeris;
    for (int i = 0; i < 6; ++i) jd = jd_ephemeris - delta_t(t_from_j2000(jd)) / 86400.0;
    return jd;
}

} // namespace celestark
