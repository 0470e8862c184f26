#pragma once
// The two calculation drivers. `calculate_chart` works from an event row and gives also houses,
// retrograde marks and the chart point list; `calculate_bodies_at` works from a bare Julian date
// for the searches and tables, which call it thousands of times, and allocates nothing.
namespace celestark {

struct Session;

void calculate_chart(Session& s, int row, bool retrograde_flag);
void calculate_bodies_at(Session& s, double jd);

// The Universal Time whose ephemeris time is `jd_ephemeris` under this program's delta T.
double ut_from_ephemeris_time(double jd_ephemeris);

} // namespace celestark
