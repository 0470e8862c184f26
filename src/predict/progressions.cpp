#include "predict/progressions.h"

#include "engine/chart.h"
#include "engine/epoch.h"
#include "engine/houses.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/event.h"
#include "session/event_time.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"

#include <cmath>

namespace celestark {

namespace {

constexpr double tropical_year = 365.2422;

double circle(double a) {
    a = std::fmod(a, two_pi);
    return a < 0 ? a + two_pi : a;
}

// The latitude of a row in degrees, south negative.
double row_latitude(const EventRow& row) {
    const double lat = text_to_number(row[col::lat_deg]) + text_to_number(row[col::lat_min]) / 60 +
                       text_to_number(row[col::lat_sec]) / 3600;
    return trim(row[col::lat_ns]) == "S" ? -lat : lat;
}

// The angles and the part of Fortune in the lists after the houses were cast again.
void refresh_house_points(Session& s) {
    EngineState& e = s.engine;
    PositionLists& p = e.pos;
    calculate_part_of_fortune(s);
    const auto value_of = [&](unsigned char g, double& out) {
        if (g == glyph::ascendant)
            out = e.ascendant;
        else if (g == glyph::midheaven)
            out = e.midheaven;
        else if (g == glyph::part_of_fortune)
            out = e.part_of_fortune_long;
    };
    for (int i = 0; i < p.geo_count; ++i)
        value_of(p.geo_glyph[static_cast<std::size_t>(i)], p.geo_long[static_cast<std::size_t>(i)]);
    for (int i = 0; i < p.chart_count; ++i)
        value_of(p.chart_glyph[static_cast<std::size_t>(i)],
                 p.chart_long[static_cast<std::size_t>(i)]);
}

// Adds one arc to every place of the chart: the lists, the cusps and the angles.
void shift_chart(Session& s, double d) {
    EngineState& e = s.engine;
    PositionLists& p = e.pos;
    for (int i = 0; i < p.chart_count; ++i)
        p.chart_long[static_cast<std::size_t>(i)] =
            circle(p.chart_long[static_cast<std::size_t>(i)] + d);
    for (int i = 0; i < p.geo_count; ++i)
        p.geo_long[static_cast<std::size_t>(i)] =
            circle(p.geo_long[static_cast<std::size_t>(i)] + d);
    for (int i = 1; i <= 12; ++i) e.house_cusps[static_cast<std::size_t>(i)] += d;
    e.ascendant = circle(e.ascendant + d);
    e.midheaven = circle(e.midheaven + d);
}

double row_jd(Session& s, int row) {
    calculate_chart(s, row, true);
    return s.engine.event_jd;
}

} // namespace

bool calculate_progressed_event(Session& s, int base_row, int progressed_row,
                                const std::string& kind) {
    EngineState& e = s.engine;
    if (kind == "Secondary") {
        calculate_chart(s, base_row, true);
        const double j0 = e.event_jd, s0 = e.local_sidereal_hours;
        const double latitude = row_latitude(s.event_slots[base_row]);
        calculate_chart(s, progressed_row, true);
        const double j1 = e.event_jd;
        const double sidereal = (j1 - j0) * 24 / tropical_year + s0;
        calculate_houses(s, sidereal, latitude, progressed_row);
        refresh_house_points(s);
        return true;
    }
    if (kind == "Solar Arc") {
        calculate_chart(s, progressed_row, true);
        const double sun = e.pos.geo_long[geo::sun];
        calculate_chart(s, base_row, true);
        shift_chart(s, rad_diff(sun, e.pos.geo_long[geo::sun]));
        return true;
    }
    if (kind == "OD") {
        const double j1 = row_jd(s, progressed_row);
        calculate_chart(s, base_row, true);
        shift_chart(s, (j1 - e.event_jd) * deg_to_rad / tropical_year);
        return true;
    }
    return false;
}

void progress_angles(Session& s, double t) {
    EngineState& e = s.engine;
    PositionLists& p = e.pos;
    const FixedChart& birth = s.predictive.birth;
    const double ramc =
        15 * (birth.local_sidereal_hours + (t - s.predictive.birth_jd) * 0.00273790935 * 24) *
        deg_to_rad;
    const double obliquity = e.nutation.true_obliquity;
    const double latitude = birth.latitude_deg * deg_to_rad;
    const double mc = circle(std::atan2(std::sin(ramc), std::cos(ramc) * std::cos(obliquity)));
    const double asc =
        circle(std::atan2(std::cos(ramc), -std::sin(ramc) * std::cos(obliquity) -
                                              std::tan(latitude) * std::sin(obliquity)));
    for (const auto& [value, code] : {std::pair{asc, 'A'}, std::pair{mc, 'M'}}) {
        if (p.geo_count >= geo_capacity) return;
        const auto k = static_cast<std::size_t>(p.geo_count);
        p.geo_long[k] = value;
        p.geo_glyph[k] = static_cast<unsigned char>(code);
        ++p.geo_count;
    }
}

void put_progressed_moment(EventRow& row, double jd) {
    to_greenwich(row);
    add_days(row, jd - reduce_event_time(row).event_jd);
    row[col::event] = "Progressed";
}

double progressed_moment(const std::string& kind, double birth_jd, double life_jd, int direction) {
    const double ratio = kind == "OD" ? 1.0 : tropical_year;
    return birth_jd + direction * (life_jd - birth_jd) / ratio;
}

} // namespace celestark
