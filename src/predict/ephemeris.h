#pragma once
// The monthly ephemeris: for each month of a span a row a day at 0 hours Universal Time with the
// sidereal time, the vernal point and the longitude of every body of the world view's list, and
// the day on which a planet turns retrograde or direct marked in its column.
#include <string>
#include <string_view>
#include <vector>

namespace celestark {

struct Session;

struct EphemerisDay {
    double jd = 0;       // 0 hours Universal Time
    std::string weekday; // "SU", "MO", ...
    int day = 0;         // of the month
    double sidereal_hours = 0, vernal_point_deg = 0;
    std::vector<double> longitudes; // radians, in the list's order
    std::vector<std::string> marks; // "R" or "D" on the day of a turn, else empty
};

struct EphemerisMonth {
    int year = 0, month = 0;
    std::vector<unsigned char> glyphs; // the bodies of the columns
    std::vector<EphemerisDay> days;
};

// The months from first_year/first_month to last_year/last_month on the calendar gj ("G" or
// "J"), in the world view ("Geocentric", "Tychonic", "Heliocentric" or "Lemnicentric").
std::vector<EphemerisMonth> monthly_ephemeris(Session& s, int first_year, int first_month,
                                              int last_year, int last_month, std::string_view gj,
                                              std::string_view world_view);

// What the monthly ephemeris prints: the span of months, the calendar, the world view
// ("Geocentric", "Tychonic", "Heliocentric", "Lemnicentric") and whether the phenomena stand
// beside the tables.
struct MonthlyRequest {
    int first_year = 2000, first_month = 1, last_year = 2000, last_month = 12;
    std::string gj = "G", world_view = "Geocentric";
    bool phenomena = true;
    // The aspect set of the phenomena.
    std::string aspect_set = "Standard";
    // The star calendar: after each month's table a page of its ingresses, and of its aspects
    // and eclipses.
    bool star_calendar = false;
};

} // namespace celestark
