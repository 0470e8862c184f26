#include "predict/eclipses.h"

#include "engine/chart.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/positions.h"
#include "session/session.h"

#include <cmath>

namespace celestark {

namespace {

constexpr double synodic_month = 29.530588853;
constexpr double first_new_moon = 2451550.09765; // of January 2000, ephemeris time

// Degrees brought into 0 to 360 and turned into radians.
double angle(double degrees) {
    degrees = std::fmod(degrees, 360.0);
    if (degrees < 0) degrees += 360.0;
    return degrees * deg_to_rad;
}

} // namespace

EclipseElements eclipse_elements(double k) {
    EclipseElements out;
    const bool lunar = k != std::floor(k);
    const double t = k / 1236.85, t2 = t * t;
    double jde = first_new_moon + synodic_month * k +
                 t2 * (0.0001337 + t * (-0.00000015 + 0.00000000073 * t));
    const double e = 1 - t * (0.002516 + 0.0000074 * t);
    const double m = angle(2.5534 + 29.10535669 * k - t2 * (0.0000218 + 0.00000011 * t));
    const double mp =
        angle(201.5643 + 385.81693528 * k + t2 * (0.0107438 + t * (0.00001239 - 0.000000058 * t)));
    const double f =
        angle(160.7108 + 390.67050274 * k - t2 * (0.0016341 + t * (0.00000227 - 0.000000011 * t)));
    const double omega = angle(124.7746 - 1.56375580 * k + t2 * (0.0020691 + 0.00000215 * t));
    // The Moon too far from its node at this lunation.
    if (std::fabs(std::sin(f)) > 0.36) return out;
    const double f1 = f - 0.02665 * deg_to_rad * std::sin(omega);
    const double a1 = angle(299.77 + 0.107408 * k - 0.009173 * t2);
    jde += (lunar ? -0.4065 : -0.4075) * std::sin(mp) +
           (lunar ? 0.1727 : 0.1721) * e * std::sin(m) + 0.0161 * std::sin(2 * mp) -
           0.0097 * std::sin(2 * f1) + 0.0073 * e * std::sin(mp - m) -
           0.0050 * e * std::sin(mp + m) - 0.0023 * std::sin(mp - 2 * f1) +
           0.0021 * e * std::sin(2 * m) + 0.0012 * std::sin(mp + 2 * f1) +
           0.0006 * e * std::sin(2 * mp + m) - 0.0004 * std::sin(3 * mp) -
           0.0003 * e * std::sin(m + 2 * f1) + 0.0003 * std::sin(a1) -
           0.0002 * e * std::sin(m - 2 * f1) - 0.0002 * e * std::sin(2 * mp - m) -
           0.0002 * std::sin(omega);
    const double p = 0.2070 * e * std::sin(m) + 0.0024 * e * std::sin(2 * m) -
                     0.0392 * std::sin(mp) + 0.0116 * std::sin(2 * mp) -
                     0.0073 * e * std::sin(mp + m) + 0.0067 * e * std::sin(mp - m) +
                     0.0118 * std::sin(2 * f1);
    const double q = 5.2207 - 0.0048 * e * std::cos(m) + 0.0020 * e * std::cos(2 * m) -
                     0.3299 * std::cos(mp) - 0.0060 * e * std::cos(mp + m) +
                     0.0041 * e * std::cos(mp - m);
    const double w = std::fabs(std::cos(f1));
    out.possible = true;
    out.jde = jde;
    out.gamma = (p * std::cos(f1) + q * std::sin(f1)) * (1 - 0.0048 * w);
    out.u = 0.0059 + 0.0046 * e * std::cos(m) - 0.0182 * std::cos(mp) + 0.0004 * std::cos(2 * mp) -
            0.0005 * std::cos(m + mp);
    out.m_prime = mp;
    return out;
}

double remove_delta_t(double jde) {
    return jde - delta_t(t_from_j2000(jde)) / 60.0 / 60.0 / 24.0;
}

Eclipse next_lunar_eclipse(double t) {
    // The first full Moon after t (as the first new Moon for the Sun below): counted from the
    // new Moon half a lunation before it, so that a full Moon in the first half of the lunation
    // after t is not passed over.
    double k = std::floor((t - first_new_moon) / synodic_month + 0.53) + 0.5;
    Eclipse out;
    out.kind = "M";
    EclipseElements el;
    for (;; k += 1) {
        el = eclipse_elements(k);
        if (!el.possible) continue;
        out.type = "T";
        const double g = std::fabs(el.gamma);
        out.magnitude = (1.0128 - el.u - g) / 0.5450;
        if (out.magnitude <= 0) {
            out.type = "PN";
            out.magnitude = (1.5573 + el.u - g) / 0.5450;
        }
        if (out.magnitude > 0) break;
    }
    const double g = std::fabs(el.gamma);
    const double n = (0.5458 + 0.04 * std::cos(el.m_prime)) * 24;
    if (out.type == "PN") {
        const double h = 1.5573 + el.u;
        if (g < h) out.semi_penumbral = std::sqrt(h * h - el.gamma * el.gamma) / n;
    } else {
        const double h = 1.5573 + el.u, p = 1.0128 - el.u, tt = 0.4678 - el.u;
        out.semi_penumbral = std::sqrt(h * h - el.gamma * el.gamma) / n;
        if (g < tt)
            out.semi_total = std::sqrt(tt * tt - el.gamma * el.gamma) / n;
        else
            out.type = "P";
        if (g < p) out.semi_partial = std::sqrt(p * p - el.gamma * el.gamma) / n;
    }
    out.jde = el.jde;
    out.jd_ut = remove_delta_t(el.jde);
    out.gamma = el.gamma;
    out.u = el.u;
    return out;
}

Eclipse next_solar_eclipse(double t) {
    double k = std::floor((t - first_new_moon) / synodic_month + 1.03);
    EclipseElements el;
    for (;; k += 1) {
        el = eclipse_elements(k);
        if (el.possible && std::fabs(el.gamma) <= 1.5433 + el.u) break;
    }
    Eclipse out;
    out.kind = "S";
    const double g = std::fabs(el.gamma), u = el.u;
    if (g < 0.9972) {
        // A central eclipse.
        if (u < 0)
            out.type = "T";
        else if (u > 0.0047)
            out.type = "A";
        else
            out.type = u <= 0.00464 * std::sqrt(1 - el.gamma * el.gamma) ? "AT" : "A";
    } else if (g <= 0.9972 + std::fabs(u)) {
        out.type = u < 0.0047 ? "T" : "AT";
    } else {
        out.type = "P";
        out.magnitude = (1.5433 + u - g) / (0.5461 + 2 * u);
    }
    out.jde = el.jde;
    out.jd_ut = remove_delta_t(el.jde);
    out.gamma = el.gamma;
    out.u = u;
    return out;
}

std::vector<EclipseRow> eclipses_between(Session& s, double first, double last) {
    std::vector<EclipseRow> rows;
    // The rows borrow the engine: whatever chart it holds is put back afterwards.
    const EngineState kept = s.engine;
    // The Sun's and the Moon's longitudes are all a row takes from the engine.
    s.engine.calc.calc_planets = s.engine.calc.calc_moon_lat = s.engine.calc.calc_moon_dist = false;
    s.engine.calc.calc_nodes = false;
    const auto circle = [](double a) { return a - two_pi * std::floor(a / two_pi); };
    for (Eclipse (*next)(double) : {&next_lunar_eclipse, &next_solar_eclipse})
        for (double t = first; t < last;) {
            EclipseRow row{next(t), 0, 0};
            calculate_bodies_at(s, row.eclipse.jd_ut);
            row.sun = circle(s.engine.pos.geo_long[geo::sun]);
            row.moon = circle(s.engine.pos.geo_long[geo::moon]);
            t = row.eclipse.jd_ut + 1;
            rows.push_back(row);
        }
    s.engine = kept;
    return rows;
}

ChartEclipses eclipses_before(Session& s, double t) {
    // Every eclipse season holds an eclipse of each kind, penumbral ones counted, so the last
    // of each lies within a year before t.
    ChartEclipses found;
    for (const EclipseRow& row : eclipses_between(s, t - 400, t)) {
        if (row.eclipse.jd_ut >= t) continue;
        EclipseRow& slot = row.eclipse.kind == "S" ? found.solar : found.lunar;
        if (row.eclipse.jd_ut > slot.eclipse.jd_ut || slot.eclipse.kind.empty()) slot = row;
    }
    return found;
}

} // namespace celestark
