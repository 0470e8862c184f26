#include "predict/ephemeris.h"

#include "engine/chart.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace celestark {

namespace {

// The longitudes and glyphs of the world view's list as the engine leaves them.
struct Day {
    double jd = 0;
    std::vector<double> longitudes;
    std::vector<unsigned char> glyphs;
    double sidereal_hours = 0, vernal_point_deg = 0;
};

Day day_at(Session& s, double jd, std::string_view view) {
    // Each day as a moment of its own, as the positions of that moment are anywhere else.
    s.engine.earth_rates_level = 0;
    calculate_bodies_at(s, jd);
    const PositionLists& p = s.engine.pos;
    Day d;
    d.jd = jd;
    const auto take = [&](const auto& longs, const auto& glyphs, int count) {
        for (int i = 0; i < count; ++i) {
            const double a = longs[static_cast<std::size_t>(i)];
            d.longitudes.push_back(a - two_pi * std::floor(a / two_pi));
            d.glyphs.push_back(glyphs[static_cast<std::size_t>(i)]);
        }
    };
    if (view == "Heliocentric")
        take(p.helio_long, p.helio_glyph, p.helio_count);
    else if (view == "Lemnicentric")
        take(p.lemni_long, p.lemni_glyph, p.lemni_count);
    else
        take(p.geo_long, p.geo_glyph, p.geo_count);
    d.sidereal_hours = greenwich_sidereal_hours(t_from_j2000(jd));
    d.vernal_point_deg = s.engine.zodiac_offset_degrees;
    return d;
}

} // namespace

std::vector<EphemerisMonth> monthly_ephemeris(Session& s, int first_year, int first_month,
                                              int last_year, int last_month, std::string_view gj,
                                              std::string_view world_view) {
    std::vector<EphemerisMonth> months;
    const double t0 = julian_date(1, first_month, first_year, gj, 0);
    const int after_month = last_month == 12 ? 1 : last_month + 1;
    const int after_year = last_month == 12 ? last_year + 1 : last_year;
    const double t1 = julian_date(1, after_month, after_year, gj, 0);
    if (!(t1 > t0)) return months;
    // Three days a row: the day before and after tell the direction of motion.
    std::array<Day, 3> window{day_at(s, t0 - 1, world_view), day_at(s, t0, world_view),
                              day_at(s, t0 + 1, world_view)};
    // The direction of each column as the span begins: a mark is written only on the day a
    // planet turns, never for one that is already retrograde on the first day.
    std::vector<std::string> mark_of(window[1].longitudes.size());
    for (std::size_t k = 0; k < mark_of.size() && k < window[2].longitudes.size(); ++k)
        mark_of[k] = rad_diff(window[0].longitudes[k], window[2].longitudes[k]) <= 0 ? "D" : "R";
    for (double t = t0; t < t1; t += 1) {
        if (t > t0) {
            window[0] = std::move(window[1]);
            window[1] = std::move(window[2]);
            window[2] = day_at(s, t + 1, world_view);
        }
        const Day& today = window[1];
        const CivilDate c = date_from_julian(t, gj);
        if (months.empty() || months.back().month != c.month || months.back().year != c.year) {
            months.push_back({c.year, c.month, today.glyphs, {}});
        }
        EphemerisDay row;
        row.jd = t;
        row.weekday = std::string(day_short[static_cast<std::size_t>(day_of_week(t))]);
        row.day = static_cast<int>(c.day);
        row.sidereal_hours = today.sidereal_hours;
        row.vernal_point_deg = today.vernal_point_deg;
        row.longitudes = today.longitudes;
        row.marks.assign(today.longitudes.size(), "");
        // A mark on the day a planet turns; the Sun and the Moon (the first two) never do.
        const std::size_t n = std::min({today.longitudes.size(), window[0].longitudes.size(),
                                        window[2].longitudes.size(), mark_of.size()});
        for (std::size_t k = 2; k < n; ++k) {
            const double d = rad_diff(window[0].longitudes[k], window[2].longitudes[k]);
            if (d <= 0) {
                if (mark_of[k] == "R") row.marks[k] = mark_of[k] = "D";
            } else if (mark_of[k] != "R") {
                row.marks[k] = mark_of[k] = "R";
            }
        }
        months.back().days.push_back(std::move(row));
    }
    return months;
}

} // namespace celestark
