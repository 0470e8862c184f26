// Writes the reference eclipses, tests/data/eclipse_reference.csv, from the Swiss Ephemeris C
// library (libswe) and its compressed JPL DE431 files: every solar and every lunar eclipse from
// 1600 January 1 to 2400 January 1 (Gregorian, Universal Time). The accuracy test of the
// program's eclipses (tests/predict/eclipse_accuracy_test.cpp) checks them against it. Run at
// setup time only; the program never links the library.
//
//   make_eclipse_reference --out FILE [--ephe DIR]
//
// The tool is built with the rest when libswe's header and library are found; to regenerate:
//
//   cmake --build build/release --target make_eclipse_reference
//   build/release/tools/make_eclipse_reference --out tests/data/eclipse_reference.csv
//
// --ephe names the folder of the ephemeris files (default: the Debian package's,
// /usr/share/libswe/ephe). The output is the same, byte for byte, at every run.
//
// The eclipses and their types are the library's own (swe_sol_eclipse_when_glob,
// swe_lun_eclipse_when, all types); the moment is its greatest eclipse, given in Universal Time
// and, by the library's delta T (swe_deltat_ex), in terrestrial time. The library gives no gamma,
// so the tool works it out from the library's apparent geocentric places of the Sun and the Moon
// (equatorial, true equinox of date, rectangular) at that moment:
//   - Sun: the distance of the shadow axis (the line from the Sun through the Moon) from the
//     Earth's centre, in equatorial Earth radii (6378.137 km), positive when the axis passes
//     north of the centre; and u, the radius of the Moon's umbral cone in the plane through the
//     Earth's centre square to the axis, in the same unit, negative when the cone's vertex lies
//     beyond that plane (total), with the Moon's radius 0.2722810 Earth radii and the Sun's
//     959.63" at one astronomical unit, the figures of the published eclipse canons;
//   - Moon: the distance of the Moon's centre from the axis of the Earth's shadow (the line from
//     the Sun through the Earth's centre), in Earth radii, positive north.
//
// Columns kind,type,central,jd_tt,jd_ut,gamma,u,magnitude,penumbral_magnitude:
//   kind       "S" Sun, "M" Moon
//   type       Sun "T" total, "A" annular, "AT" annular-total (hybrid), "P" partial;
//              Moon "T" total, "P" partial, "PN" penumbral
//   central    Sun, types T, A, AT: "C" central, "N" not central (the axis misses the Earth);
//              empty otherwise
//   jd_tt      greatest eclipse, terrestrial time (Julian date)
//   jd_ut      the same, Universal Time
//   gamma, u   as above (u for the Sun only)
//   magnitude  Sun: the library's magnitude at the place of greatest eclipse (the fraction of
//              the Sun's diameter covered); Moon: the umbral magnitude at greatest eclipse
//              (0 for a penumbral eclipse: the library gives no negative value)
//   penumbral_magnitude  Moon only
// Rows in order of time, the Sun's and the Moon's mixed.

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

constexpr double au_km = 149597870.7;
constexpr double earth_radius_km = 6378.137;
constexpr double moon_radius_earths = 0.2722810;
constexpr double sun_radius_arcsec_at_1au = 959.63;
constexpr double arcsec = 3.14159265358979323846 / (180.0 * 3600.0);
constexpr int ephemeris_flag = SEFLG_SWIEPH;

[[noreturn]] void fail(const char* what, double jd, const char* error) {
    std::fprintf(stderr, "make_eclipse_reference: %s at JD %.6f: %s\n", what, jd, error);
    std::exit(2);
}

struct Vec {
    double x = 0, y = 0, z = 0;
};
Vec operator-(Vec a, Vec b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Vec operator*(double s, Vec a) {
    return {s * a.x, s * a.y, s * a.z};
}
double dot(Vec a, Vec b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
double norm(Vec a) {
    return std::sqrt(dot(a, a));
}

// The apparent geocentric place of the body, equatorial and of date, in kilometres.
Vec place(int body, double jd_tt) {
    double x[6] = {};
    char error[AS_MAXCH] = {};
    const int got = swe_calc(jd_tt, body, ephemeris_flag | SEFLG_EQUATORIAL | SEFLG_XYZ, x, error);
    if (got < 0 || (got & SEFLG_SWIEPH) == 0)
        fail("position", jd_tt, got < 0 ? error : "the ephemeris files were not found");
    return {x[0] * au_km, x[1] * au_km, x[2] * au_km};
}

// The distance of point p from the line through the origin of direction d (a unit vector), in
// Earth radii, signed by the side of the equator's plane on which the closest point lies: the
// part of p square to d, measured along the celestial north pole's direction square to d.
double signed_axis_distance(Vec p, Vec d) {
    const Vec off = p - dot(p, d) * d;
    const Vec pole{0, 0, 1};
    const Vec north = pole - dot(pole, d) * d;
    const double r = norm(off) / earth_radius_km;
    return dot(off, north) < 0 ? -r : r;
}

struct Row {
    const char* kind = "";
    const char* type = "";
    const char* central = "";
    double jd_tt = 0, jd_ut = 0;
    double gamma = 0, u = 0, magnitude = 0, penumbral = 0;
};

// The program's type codes for the library's flags; null for none of them.
const char* solar_type(int flags) {
    if (flags & SE_ECL_TOTAL) return "T";
    if (flags & SE_ECL_ANNULAR_TOTAL) return "AT";
    if (flags & SE_ECL_ANNULAR) return "A";
    if (flags & SE_ECL_PARTIAL) return "P";
    return nullptr;
}
const char* lunar_type(int flags) {
    if (flags & SE_ECL_TOTAL) return "T";
    if (flags & SE_ECL_PARTIAL) return "P";
    if (flags & SE_ECL_PENUMBRAL) return "PN";
    return nullptr;
}

double terrestrial(double jd_ut) {
    char error[AS_MAXCH] = {};
    return jd_ut + swe_deltat_ex(jd_ut, ephemeris_flag, error);
}

void solar(double from, double to, std::vector<Row>& rows) {
    for (double t = from;;) {
        double when[10] = {};
        char error[AS_MAXCH] = {};
        const int found = swe_sol_eclipse_when_glob(t, ephemeris_flag, 0, when, 0, error);
        if (found <= 0) fail("solar eclipse search", t, error);
        if (when[0] >= to) return;
        Row r;
        r.kind = "S";
        const char* type = solar_type(found);
        if (!type) fail("solar eclipse of no known type", when[0], "");
        r.type = type;
        if (!(found & SE_ECL_PARTIAL)) r.central = (found & SE_ECL_CENTRAL) ? "C" : "N";
        r.jd_ut = when[0];
        r.jd_tt = terrestrial(when[0]);

        const Vec sun = place(SE_SUN, r.jd_tt), moon = place(SE_MOON, r.jd_tt);
        const Vec to_sun = sun - moon;
        const double sun_moon = norm(to_sun);
        const Vec axis = (1.0 / sun_moon) * to_sun; // from the Moon towards the Sun
        r.gamma = signed_axis_distance(moon, axis);
        const double sun_radius = sun_radius_arcsec_at_1au * arcsec * au_km;
        const double moon_radius = moon_radius_earths * earth_radius_km;
        const double f = std::asin((sun_radius - moon_radius) / sun_moon);
        const double z = dot(moon, axis); // the Moon above the plane through the Earth's centre
        r.u = (z * std::tan(f) - moon_radius / std::cos(f)) / earth_radius_km;

        double geo[10] = {}, attr[20] = {};
        if (swe_sol_eclipse_where(r.jd_ut, ephemeris_flag, geo, attr, error) < 0)
            fail("solar eclipse place", r.jd_ut, error);
        r.magnitude = attr[0];
        rows.push_back(r);
        t = r.jd_ut + 1;
    }
}

void lunar(double from, double to, std::vector<Row>& rows) {
    for (double t = from;;) {
        double when[10] = {};
        char error[AS_MAXCH] = {};
        const int found = swe_lun_eclipse_when(t, ephemeris_flag, 0, when, 0, error);
        if (found <= 0) fail("lunar eclipse search", t, error);
        if (when[0] >= to) return;
        Row r;
        r.kind = "M";
        const char* type = lunar_type(found);
        if (!type) fail("lunar eclipse of no known type", when[0], "");
        r.type = type;
        r.jd_ut = when[0];
        r.jd_tt = terrestrial(when[0]);

        const Vec sun = place(SE_SUN, r.jd_tt), moon = place(SE_MOON, r.jd_tt);
        r.gamma = signed_axis_distance(moon, (-1.0 / norm(sun)) * sun);

        double geo[3] = {}, attr[20] = {};
        if (swe_lun_eclipse_how(r.jd_ut, ephemeris_flag, geo, attr, error) < 0)
            fail("lunar eclipse magnitude", r.jd_ut, error);
        r.magnitude = attr[0];
        r.penumbral = attr[1];
        rows.push_back(r);
        t = r.jd_ut + 1;
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::string out = reference::output_file(argc, argv, "make_eclipse_reference");

    const double from = swe_julday(1600, 1, 1, 0, SE_GREG_CAL);
    const double to = swe_julday(2400, 1, 1, 0, SE_GREG_CAL);
    std::vector<Row> rows;
    solar(from, to, rows);
    lunar(from, to, rows);
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& a, const Row& b) { return a.jd_ut < b.jd_ut; });

    std::FILE* f = std::fopen(out.c_str(), "w");
    if (!f) {
        std::fprintf(stderr, "make_eclipse_reference: cannot write %s\n", out.c_str());
        return 2;
    }
    std::fprintf(f, "kind,type,central,jd_tt,jd_ut,gamma,u,magnitude,penumbral_magnitude\n");
    std::size_t solar_count = 0;
    for (const Row& r : rows) {
        std::fprintf(f, "%s,%s,%s,%.6f,%.6f,%.5f,", r.kind, r.type, r.central, r.jd_tt, r.jd_ut,
                     r.gamma);
        if (r.kind[0] == 'S') {
            ++solar_count;
            std::fprintf(f, "%.5f,%.4f,\n", r.u, r.magnitude);
        } else {
            std::fprintf(f, ",%.4f,%.4f\n", r.magnitude, r.penumbral);
        }
    }
    std::fclose(f);

    char version[AS_MAXCH] = {};
    swe_version(version);
    std::printf("make_eclipse_reference: %zu solar and %zu lunar eclipses from Swiss Ephemeris %s "
                "into %s\n",
                solar_count, rows.size() - solar_count, version, out.c_str());
    swe_close();
    return 0;
}
