#pragma once
// Calendar and time: Julian dates both ways on the calendar the event names, leap rules, day of
// week, delta T and Greenwich mean sidereal time.
#include <cstdint>
#include <string_view>

namespace celestark {

// "G" is Gregorian; any other text counts as Julian. There is no automatic change at 1582.
bool is_gregorian(std::string_view gj);

double julian_date(double day, int month, int year, std::string_view gj, double day_fraction);

struct CivilDate {
    std::int16_t year = 0;
    std::int16_t month = 0;
    double day = 0; // keeps the fraction of the day
};
CivilDate date_from_julian(double jd, std::string_view gj);

int february_days(int year, std::string_view gj);
int days_in_month(int month, int year, std::string_view gj);

// 1 to 7, Monday = 1 (index into day_names).
int day_of_week(double jd);

double t_from_j2000(double jd);

// Delta T in seconds for a moment t in Julian centuries from J2000.0. The four branches are not
// smoothed at their joins.
double delta_t(double t);

// Greenwich mean sidereal time in hours, 0 to below 24, for t_ut in Julian centuries (no delta T,
// no equation of the equinoxes).
double greenwich_sidereal_hours(double t_ut);

} // namespace celestark
