#include "session/calendar.h"

#include "session/angles.h"
#include "session/constants.h"
#include "session/fixed_tables.h"

#include <algorithm>
#include <cmath>

namespace celestark {

bool is_gregorian(std::string_view gj) {
    return gj == "G";
}

double julian_date(double day, int month, int year, std::string_view gj, double day_fraction) {
    const double d = day + day_fraction;
    double y = year, m = month;
    if (month < 3) {
        y -= 1;
        m += 12;
    }
    double b = 0;
    if (is_gregorian(gj)) {
        const double a = std::floor(y / 100.0);
        b = std::floor(a / 4.0 + 2.0 - a);
    }
    return std::floor(365.25 * (y + 4716.0)) + std::floor(30.6001 * (m + 1.0)) + d + b - 1524.5;
}

CivilDate date_from_julian(double jd, std::string_view gj) {
    const double z = std::floor(jd + 0.5);
    const double f = jd + 0.5 - z;
    double a = z;
    if (gj != "J") {
        const double w = std::floor((z - 1867216.25) / 36524.25);
        a = z + 1.0 + w - std::floor(w / 4.0);
    }
    const double b = a + 1524.0;
    const double c = std::floor((b - 122.1) / 365.25);
    const double d = std::floor(365.25 * c);
    const double e = std::floor((b - d) / 30.6001);
    CivilDate out;
    out.day = b - d - std::floor(30.6001 * e) + f;
    out.month = static_cast<std::int16_t>(e < 14 ? e - 1 : e - 13);
    out.year = static_cast<std::int16_t>(out.month < 3 ? c - 4715 : c - 4716);
    return out;
}

int february_days(int year, std::string_view gj) {
    int days = 28;
    if (year % 4 == 0) days = 29;
    if (is_gregorian(gj) && year % 100 == 0 && (year / 100) % 4 != 0) days = 28;
    return days;
}

int days_in_month(int month, int year, std::string_view gj) {
    switch (month) {
    case 1:
    case 3:
    case 5:
    case 7:
    case 8:
    case 10:
    case 12:
        return 31;
    case 2:
        return february_days(year, gj);
    default:
        return 30;
    }
}

int day_of_week(double jd) {
    const double n = std::floor(jd + 0.5);
    return static_cast<int>(n - 7.0 * std::floor(n / 7.0)) + 1;
}

double t_from_j2000(double jd) {
    return (jd - j2000) / days_per_century;
}

double delta_t(double t) {
    const double y = t * 100.0 + 2000.0;
    if (y > 2000.0) return (t * 32.5 + 123.5) * t + 102.3;
    if (y >= 1620.0) {
        const int i = std::min(static_cast<int>(std::floor((y - 1620.0) / 2.0)), 185);
        const double f = y / 2.0 - i - 810.0;
        const double e0 = delta_t_table[static_cast<std::size_t>(i)];
        const double e1 = delta_t_table[static_cast<std::size_t>(i) + 1];
        return (e0 + (e1 - e0) * f) / 10.0;
    }
    if (y >= 948.0) return (t * 22.5 + 67.5) * t + 50.6;
    return (t * 46.5 + 573.36) * t + 2715.6;
}

double greenwich_sidereal_hours(double t_ut) {
    const double deg =
        280.46061837 +
        ((360.98564736629 * 36525.0 + (0.000387933 - t_ut / 38710000.0) * t_ut) * t_ut);
    return norm_mod(deg / 15.0, 24.0);
}

} // namespace celestark
