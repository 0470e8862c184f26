#pragma once
// Solar and lunar eclipses from the lunation number, by the method of the eclipse chapter of
// Meeus's Astronomical Algorithms: the moment of greatest eclipse, the elements gamma and u, and
// from them the type and magnitude. No path on the Earth is worked out.
#include <string>
#include <vector>

namespace celestark {

struct Session;

// The elements of the new (k whole) or full (k + 0.5) Moon k lunations after that of January
// 2000. `possible` is false when the Moon is too far from its node for any eclipse; the other
// fields are then not filled.
struct EclipseElements {
    bool possible = false;
    double jde = 0; // Julian ephemeris date of greatest eclipse
    double gamma = 0, u = 0;
    double m_prime = 0; // the Moon's mean anomaly, radians
};
EclipseElements eclipse_elements(double k);

// One eclipse: its kind ("S" Sun, "M" Moon), type (Sun "T", "A", "AT", "P"; Moon "T", "P",
// "PN"), the moment of greatest eclipse, the magnitude (the Sun's only for partial eclipses; the
// Moon's umbral, or penumbral for "PN"), and for the Moon the semidurations of the penumbral,
// partial and total phases in days (0 when the phase does not occur).
struct Eclipse {
    std::string kind, type;
    double jd_ut = 0, jde = 0;
    double magnitude = 0, gamma = 0, u = 0;
    double semi_penumbral = 0, semi_partial = 0, semi_total = 0;
};
// The first eclipse of the kind whose lunation starts after t (a Julian date); the search goes on
// lunation by lunation until one is found.
Eclipse next_lunar_eclipse(double t);
Eclipse next_solar_eclipse(double t);

// Universal Time from a Julian ephemeris date by the program's delta T.
double remove_delta_t(double jde);

// The eclipses from `first` to `last` (Julian dates, Universal Time), lunar ones first, each
// with the longitudes of the Sun and the Moon at greatest eclipse in radians; as the run keeps
// them, the last of each kind may lie past `last`.
struct EclipseRow {
    Eclipse eclipse;
    double sun = 0, moon = 0;
};
// The engine's state is as it was before.
std::vector<EclipseRow> eclipses_between(Session& s, double first, double last);

// The last solar and the last lunar eclipse before t (Universal Time), for the marks of a chart.
struct ChartEclipses {
    EclipseRow solar, lunar;
};
ChartEclipses eclipses_before(Session& s, double t);

} // namespace celestark
