// Writes the reference events of a transit run, tests/data/transit_reference.csv, from the Swiss
// Ephemeris C library (libswe) and its compressed JPL DE431 files, by root finding of its own on
// the library's positions. The accuracy test of the predictive run
// (tests/predict/transit_accuracy_test.cpp) checks the run's hits against it. Run at setup time
// only; the program never links the library.
//
//   make_transit_reference --out FILE [--ephe DIR]
//
// The tool is built with the rest when libswe's header and library are found; to regenerate:
//
//   cmake --build build/release --target make_transit_reference
//   build/release/tools/make_transit_reference --out tests/data/transit_reference.csv
//
// --ephe names the folder of the ephemeris files (default: the Debian package's,
// /usr/share/libswe/ephe). The output is the same, byte for byte, at every run.
//
// Positions are those of the program's default, "Apparent" planetary positions: geocentric,
// tropical, ecliptic and true equinox of date (nutation included), at terrestrial time,
//   Sun              light time and annual aberration          SEFLG_SWIEPH | SEFLG_SPEED
//   Mercury..Pluto   light time and annual aberration, without  SEFLG_SWIEPH | SEFLG_SPEED
//                    the Sun's light deflection                 | SEFLG_NOGDEFL
//   Moon             geometric (the program corrects the Moon   SEFLG_SWIEPH | SEFLG_SPEED
//                    for neither)                               | SEFLG_TRUEPOS
// All times are terrestrial time (swe_calc, never swe_calc_ut): the library's delta T is not the
// program's, and the test converts the run's Universal Time with the program's own.
//
// Contents (columns group,kind,jd_tt,body,target,angle_deg,note,speed_deg_day):
//   - four births (groups "1905", "1950", "2000", "2060"): a row `birth` (jd_tt the birth in
//     terrestrial time, note the place as latitude and longitude), rows `from` and `to` (the
//     year of transits), a row `natal` per body with its longitude and speed, and a row `B` for
//     every exact aspect of the transiting Sun, Mercury, Venus, Mars, Jupiter and Saturn to the
//     natal Sun, Moon and Mercury to Pluto within the year and ten days either side: body the
//     transiting body, target the natal one, angle_deg the aspect of the standard set (0, 30,
//     45, 60, 72, 90, 120, 135, 144, 150, 180), note "+" when the transiting body stands the
//     angle ahead of the natal one, "-" behind, empty at 0 and 180, speed the transiting body's;
//   - group "sky", span 1900 January 1.0 to 2101 January 1.0 TT (events listed ten days beyond):
//     `IS` every tropical sign ingress of the Sun and Mercury to Pluto (target the sign, 1 Aries
//     to 12 Pisces, whose first degree is crossed; angle_deg that boundary; note "TO" entering it
//     forward, "FROM" leaving it backward; speed the body's) and `R` every station of Mercury to
//     Pluto (angle_deg the longitude at the station; note "R" turning retrograde, "D" direct).
// Events are bracketed on a step of a quarter day, the step split at the stations of the body
// (found by bisection on the speed), and each root refined by bisection to below 0.01 s.

#include "reference_args.h"

#include <swephexp.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr double bracket_step = 0.25;   // days
constexpr double root_tolerance = 1e-7; // days: 0.0086 s
constexpr double margin = 10.0;         // days listed beyond each span

struct Body {
    int id;
    const char* name;
};
constexpr Body sun{SE_SUN, "sun"};
constexpr Body moon{SE_MOON, "moon"};
constexpr Body planets[] = {{SE_MERCURY, "mercury"}, {SE_VENUS, "venus"},   {SE_MARS, "mars"},
                            {SE_JUPITER, "jupiter"}, {SE_SATURN, "saturn"}, {SE_URANUS, "uranus"},
                            {SE_NEPTUNE, "neptune"}, {SE_PLUTO, "pluto"}};

// The standard aspect set's angles.
constexpr double aspect_angles[] = {0, 30, 45, 60, 72, 90, 120, 135, 144, 150, 180};

int flags_of(int body) {
    const int base = SEFLG_SWIEPH | SEFLG_SPEED;
    if (body == SE_SUN) return base;
    if (body == SE_MOON) return base | SEFLG_TRUEPOS;
    return base | SEFLG_NOGDEFL;
}

struct Place {
    double t = 0, lon = 0, speed = 0; // days TT, degrees, degrees a day
};

Place position(int body, double t) {
    double x[6] = {};
    char error[AS_MAXCH] = {};
    const int flags = flags_of(body);
    const int got = swe_calc(t, body, flags, x, error);
    if (got < 0 || (got & SEFLG_SWIEPH) == 0) {
        std::fprintf(stderr, "make_transit_reference: body %d at JD %.6f: %s\n", body, t,
                     got < 0 ? error : "the ephemeris files were not found");
        std::exit(2);
    }
    return {t, x[0], x[3]};
}

// The arc from b to a, -180 to +180 degrees.
double arc(double a, double b) {
    return std::remainder(a - b, 360.0);
}

// Bisection of f (a zero between lo and hi, f(lo) of sign `lo_negative`) to the tolerance.
template <typename F> double bisect(double lo, double hi, bool lo_negative, F f) {
    while (hi - lo > root_tolerance) {
        const double mid = 0.5 * (lo + hi);
        if ((f(mid) < 0) == lo_negative)
            lo = mid;
        else
            hi = mid;
    }
    return 0.5 * (lo + hi);
}

// A piece of the path over which the body's longitude moves one way.
struct Piece {
    Place a, b;
};

// The moment within the piece where the longitude passes `target`, or a negative number.
double crossing(int body, const Piece& p, double target) {
    const double ga = arc(p.a.lon, target), gb = arc(p.b.lon, target);
    if (std::fabs(ga) >= 90 || std::fabs(gb) >= 90 || (ga < 0) == (gb < 0)) return -1;
    return bisect(p.a.t, p.b.t, ga < 0,
                  [&](double t) { return arc(position(body, t).lon, target); });
}

struct Station {
    double t;
    bool retrograde; // turning retrograde
};

// Walks the body from t0 to t1 on the bracketing step and hands each one-way piece to `piece`
// and each station to `station`.
template <typename OnPiece, typename OnStation>
void walk(int body, double t0, double t1, OnPiece piece, OnStation station) {
    Place a = position(body, t0);
    const long steps = static_cast<long>(std::ceil((t1 - t0) / bracket_step));
    for (long k = 1; k <= steps; ++k) {
        const Place b = position(body, t0 + static_cast<double>(k) * bracket_step);
        if ((a.speed < 0) != (b.speed < 0)) {
            const double ts =
                bisect(a.t, b.t, a.speed < 0, [&](double t) { return position(body, t).speed; });
            const Place s = position(body, ts);
            station(Station{ts, a.speed >= 0}, s);
            piece(Piece{a, s});
            piece(Piece{s, b});
        } else {
            piece(Piece{a, b});
        }
        a = b;
    }
}

struct Row {
    std::string group, kind;
    double jd_tt;
    std::string body, target, angle, note, speed;
};

std::string number(double v, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, v);
    return text;
}

struct Birth {
    const char* group;
    int year, month, day;
    double hour_tt;
    const char* place; // latitude and longitude as the command line writes them
    int from_year, from_month, from_day;
};

constexpr Birth births[] = {
    {"1905", 1905, 4, 11, 6 + 20 / 60.0, "48N13 16E22", 1931, 1, 1},
    {"1950", 1950, 9, 3, 21 + 45 / 60.0, "34S36 58W22", 1999, 7, 1},
    {"2000", 2000, 2, 29, 13 + 7 / 60.0, "35N41 139E41", 2042, 3, 1},
    {"2060", 2060, 11, 17, 3 + 33 / 60.0, "1S17 36E49", 2099, 1, 1},
};

void transits(const Birth& birth, std::vector<Row>& rows) {
    const double born = swe_julday(birth.year, birth.month, birth.day, birth.hour_tt, SE_GREG_CAL);
    const double from =
        swe_julday(birth.from_year, birth.from_month, birth.from_day, 0, SE_GREG_CAL);
    const double to =
        swe_julday(birth.from_year + 1, birth.from_month, birth.from_day, 0, SE_GREG_CAL);
    const std::string g = birth.group;
    rows.push_back({g, "birth", born, "", "", "", birth.place, ""});
    rows.push_back({g, "from", from, "", "", "", "", ""});
    rows.push_back({g, "to", to, "", "", "", "", ""});

    std::vector<Body> natal{sun, moon};
    natal.insert(natal.end(), std::begin(planets), std::end(planets));
    std::vector<double> natal_lon;
    for (const Body& b : natal) {
        const Place p = position(b.id, born);
        natal_lon.push_back(p.lon);
        rows.push_back({g, "natal", born, b.name, "", number(p.lon, 7), "", number(p.speed, 7)});
    }

    std::vector<Body> moving{sun};
    moving.insert(moving.end(), std::begin(planets), std::begin(planets) + 5);
    for (const Body& m : moving) {
        walk(
            m.id, from - margin, to + margin,
            [&](const Piece& piece) {
                for (std::size_t q = 0; q < natal.size(); ++q)
                    for (const double angle : aspect_angles)
                        for (const int side : {1, -1}) {
                            if (side < 0 && (angle == 0 || angle == 180)) continue;
                            const double t = crossing(m.id, piece, natal_lon[q] + side * angle);
                            if (t < 0) continue;
                            const char* note = angle == 0 || angle == 180 ? ""
                                               : side > 0                 ? "+"
                                                                          : "-";
                            rows.push_back({g, "B", t, m.name, natal[q].name, number(angle, 0),
                                            note, number(position(m.id, t).speed, 7)});
                        }
            },
            [](const Station&, const Place&) {});
    }
}

void sky(std::vector<Row>& rows) {
    const double from = swe_julday(1900, 1, 1, 0, SE_GREG_CAL);
    const double to = swe_julday(2101, 1, 1, 0, SE_GREG_CAL);
    rows.push_back({"sky", "from", from, "", "", "", "", ""});
    rows.push_back({"sky", "to", to, "", "", "", "", ""});
    std::vector<Body> bodies{sun};
    bodies.insert(bodies.end(), std::begin(planets), std::end(planets));
    for (const Body& b : bodies) {
        walk(
            b.id, from - margin, to + margin,
            [&](const Piece& piece) {
                for (int sign = 1; sign <= 12; ++sign) {
                    const double boundary = 30.0 * (sign - 1);
                    const double t = crossing(b.id, piece, boundary);
                    if (t < 0) continue;
                    const bool forward = arc(piece.b.lon, piece.a.lon) > 0;
                    rows.push_back({"sky", "IS", t, b.name, std::to_string(sign),
                                    number(boundary, 0), forward ? "TO" : "FROM",
                                    number(position(b.id, t).speed, 7)});
                }
            },
            [&](const Station& s, const Place& at) {
                rows.push_back(
                    {"sky", "R", s.t, b.name, "", number(at.lon, 7), s.retrograde ? "R" : "D", ""});
            });
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::string out = reference::output_file(argc, argv, "make_transit_reference");

    std::vector<Row> rows;
    for (const Birth& b : births) transits(b, rows);
    sky(rows);
    // Each group in order of time; the span and birth rows first.
    const auto rank = [](const Row& r) {
        return r.kind == "birth"   ? 0
               : r.kind == "from"  ? 1
               : r.kind == "to"    ? 2
               : r.kind == "natal" ? 3
                                   : 4;
    };
    std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
        if (a.group != b.group) return a.group < b.group;
        if (rank(a) != rank(b)) return rank(a) < rank(b);
        return a.jd_tt < b.jd_tt;
    });

    std::FILE* f = std::fopen(out.c_str(), "w");
    if (!f) {
        std::fprintf(stderr, "make_transit_reference: cannot write %s\n", out.c_str());
        return 2;
    }
    std::fprintf(f, "group,kind,jd_tt,body,target,angle_deg,note,speed_deg_day\n");
    for (const Row& r : rows)
        std::fprintf(f, "%s,%s,%.8f,%s,%s,%s,%s,%s\n", r.group.c_str(), r.kind.c_str(), r.jd_tt,
                     r.body.c_str(), r.target.c_str(), r.angle.c_str(), r.note.c_str(),
                     r.speed.c_str());
    std::fclose(f);

    char version[AS_MAXCH] = {};
    swe_version(version);
    std::printf("make_transit_reference: %zu rows from Swiss Ephemeris %s into %s\n", rows.size(),
                version, out.c_str());
    swe_close();
    return 0;
}
