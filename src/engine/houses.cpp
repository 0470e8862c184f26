#include "engine/houses.h"

#include "engine/chart_steps.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/event.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <cmath>
#include <cstddef>

namespace celestark {

namespace {

enum class System {
    none,
    asc_mc_only,
    meridian,
    regiomontanus,
    porphyry,
    equal,
    morinus,
    koch,
    topocentric,
    placidus,
    campanus,
    other // an unknown text: the angles alone
};

System system_of(std::string_view text) {
    for (std::size_t i = 0; i < house_system_names.size(); ++i)
        if (text == house_system_names[i]) return static_cast<System>(i);
    return System::other;
}

using Cusps = std::array<double, 13>;

// The working values of one cast: the sky reduced to radians and the obliquity's functions.
struct Frame {
    double r = 0;            // RAMC
    double f = 0, tan_f = 0; // latitude
    double eps = 0, sin_eps = 0, cos_eps = 0, tan_eps = 0;
};

// A = (30 i + 60) degrees: 90 for cusp 1, 360 for cusp 10.
double cusp_arc(int i) {
    return (30.0 * i + 60.0) * deg_to_rad;
}

void rewrite_meridian(Cusps& c, double midheaven) {
    c[10] = midheaven;
    c[4] = midheaven + pi;
}

void rewrite_angles(Cusps& c, double ascendant, double midheaven) {
    rewrite_meridian(c, midheaven);
    c[1] = ascendant;
    c[7] = ascendant + pi;
}

void opposite_cusps(Cusps& c) {
    for (int i = 1; i <= 6; ++i)
        c[static_cast<std::size_t>(i + 6)] = c[static_cast<std::size_t>(i)] + pi;
}

void meridian(Cusps& c, const Frame& w) {
    for (int i = 1; i <= 12; ++i) {
        const double ra = w.r + cusp_arc(i);
        c[static_cast<std::size_t>(i)] = arctan2(std::sin(ra), std::cos(ra) * w.cos_eps);
    }
}

void regiomontanus(Cusps& c, const Frame& w) {
    for (int i = 1; i <= 12; ++i) {
        const double a = cusp_arc(i), ra = w.r + a;
        c[static_cast<std::size_t>(i)] =
            arctan2(std::sin(ra), std::cos(ra) * w.cos_eps - std::sin(a) * w.tan_f * w.sin_eps);
    }
}

void porphyry(Cusps& c, double ascendant, double midheaven) {
    double q = ascendant - midheaven;
    if (q < 0) q += two_pi;
    q /= 3;
    c[5] = (pi + midheaven) + q;
    c[6] = (pi + midheaven) + 2 * q;
    q = (pi + midheaven) - ascendant;
    if (q < 0) q += two_pi;
    if (q > two_pi) q -= two_pi;
    q /= 3;
    c[2] = ascendant + q;
    c[3] = ascendant + 2 * q;
    c[4] = ascendant + 3 * q;
    c[1] = ascendant;
    opposite_cusps(c);
}

void equal(Cusps& c, double ascendant) {
    c[1] = ascendant;
    for (int i = 2; i <= 12; ++i) c[static_cast<std::size_t>(i)] = ascendant + (i - 1) * pi / 6;
}

void morinus(Cusps& c, const Frame& w) {
    for (int i = 1; i <= 12; ++i) {
        const double ra = w.r + cusp_arc(i);
        c[static_cast<std::size_t>(i)] = arctan2(std::sin(ra) * w.cos_eps, std::cos(ra));
    }
}

// The ascensional difference of the Midheaven is taken as sin R tan F tan e itself, without the
// arcsine: the system's own approximation.
void koch(Cusps& c, const Frame& w) {
    const double k = std::sin(w.r) * w.tan_f * w.tan_eps;
    for (int i = 1; i <= 12; ++i) {
        const double d = norm_deg(30.0 * i + 60.0);
        const double m = d < 180 ? d / 90 - 1 : d / 90 - 3;
        const double sign = d < 180 ? 1.0 : -1.0;
        const double x = (w.r * rad_to_deg + d + m * (k * rad_to_deg)) * deg_to_rad;
        c[static_cast<std::size_t>(i)] =
            arctan2(std::sin(x), std::cos(x) * w.cos_eps - sign * w.tan_f * w.sin_eps);
    }
}

double topocentric_cusp(double p, double h, double eps) {
    const double q = std::atan(std::tan(p) / std::cos(h));
    const double c = std::cos(q + eps);
    double l = std::atan(std::cos(q) * std::tan(h) / c);
    if (l < 0) l += pi;
    if (std::sin(h) < 0) l += pi;
    return l;
}

void topocentric(Cusps& c, const Frame& w) {
    const double p1 = std::atan(w.tan_f / 3);
    const double p2 = std::atan((w.tan_f + w.tan_f) / 3);
    c[5] = topocentric_cusp(p1, w.r + 30 * deg_to_rad, w.eps) + pi;
    c[6] = topocentric_cusp(p2, w.r + 60 * deg_to_rad, w.eps) + pi;
    c[2] = topocentric_cusp(p2, w.r + 120 * deg_to_rad, w.eps);
    c[3] = topocentric_cusp(p1, w.r + 150 * deg_to_rad, w.eps);
    opposite_cusps(c);
}

// One Placidus semi-arc: the cusp, its opposite, the start from the RAMC, the sign of the
// declination term, the divisor of the semi-arc, and whether it is measured back from the IC.
struct SemiArc {
    int cusp, opposite;
    double start_deg, sign, divisor;
    bool from_ic;
};
constexpr SemiArc semi_arcs[] = {{11, 5, 30, -1, 3, false},
                                 {12, 6, 60, -1, 1.5, false},
                                 {2, 8, 120, 1, 1.5, true},
                                 {3, 9, 150, 1, 3, true}};

// The iteration stops when a round moves the right ascension by less than 0.01 degree. Returns
// whether the guard acted for any cusp.
bool placidus(Cusps& c, const Frame& w) {
    bool any_guarded = false;
    for (const SemiArc& a : semi_arcs) {
        double x = w.r + a.start_deg * deg_to_rad;
        bool guarded = false;
        for (int round = 1;; ++round) {
            double v = a.sign * std::sin(x) * w.tan_eps * w.tan_f;
            if (std::fabs(v) > 1) {
                v = v > 0 ? 1.0 : -1.0;
                guarded = true;
            }
            const double d = arccos(v);
            const double next = a.from_ic ? (w.r + pi) - d / a.divisor : d / a.divisor + w.r;
            const double e = (next - x) * rad_to_deg;
            x = next;
            if (std::fabs(e) < 0.01) break;
            if (round >= (guarded ? placidus_guarded_round_limit : placidus_round_limit)) {
                guarded = true;
                break;
            }
        }
        any_guarded = any_guarded || guarded;
        const double cusp = arctan2(std::sin(x), std::cos(x) * w.cos_eps);
        c[static_cast<std::size_t>(a.cusp)] = cusp;
        c[static_cast<std::size_t>(a.opposite)] = cusp + pi;
    }
    return any_guarded;
}

void campanus(Cusps& c, const Frame& w) {
    for (int i = 1; i <= 12; ++i) {
        const double b = (60.000001 + 30.0 * i) * deg_to_rad;
        const double p = arctan2(std::sin(b) * std::cos(w.f), std::cos(b));
        const double ra = w.r + p;
        c[static_cast<std::size_t>(i)] =
            arctan2(std::sin(ra), std::cos(ra) * w.cos_eps - std::sin(p) * w.tan_f * w.sin_eps);
    }
}

// The intermediate cusps of `system`; the angles stand in cusps 1, 4, 7, 10 already. Returns
// whether the Placidus guard acted.
bool cast(System system, Cusps& c, const Frame& w, double ascendant, double midheaven) {
    bool guarded = false;
    switch (system) {
    case System::none:
    case System::asc_mc_only:
    case System::other:
        return false;
    case System::meridian:
        meridian(c, w);
        rewrite_meridian(c, midheaven);
        return false;
    case System::regiomontanus:
        regiomontanus(c, w);
        break;
    case System::porphyry:
        porphyry(c, ascendant, midheaven);
        break;
    case System::equal:
        equal(c, ascendant);
        return false;
    case System::morinus:
        morinus(c, w);
        return false;
    case System::koch:
        koch(c, w);
        break;
    case System::topocentric:
        topocentric(c, w);
        break;
    case System::placidus:
        guarded = placidus(c, w);
        break;
    case System::campanus:
        campanus(c, w);
        break;
    }
    rewrite_angles(c, ascendant, midheaven);
    return guarded;
}

} // namespace

Houses compute_houses(const HouseSky& sky, const HouseOptions& options) {
    Houses h;
    // North of the Arctic circle of the date only: the latitude keeps its sign.
    h.system_in_use = 90 - sky.true_obliquity * rad_to_deg - sky.latitude_degrees < 0
                          ? options.polar_system
                          : options.system;

    Frame w;
    w.r = 15 * sky.sidereal_hours * deg_to_rad;
    w.f = sky.latitude_degrees * deg_to_rad;
    w.tan_f = std::tan(w.f);
    w.eps = sky.true_obliquity;
    w.sin_eps = sky.sin_obliquity;
    w.cos_eps = sky.cos_obliquity;
    w.tan_eps = std::tan(w.eps);

    Cusps& c = h.cusps;
    double mc = arctan2(std::sin(w.r), std::cos(w.r) * w.cos_eps);
    if (mc < 0) mc += two_pi;
    double asc = arctan2(std::cos(w.r), -std::sin(w.r) * w.cos_eps - w.tan_f * w.sin_eps);
    if (asc < 0) asc += two_pi;

    c[10] = mc;
    c[4] = mc + pi;
    c[1] = asc;
    c[7] = asc + pi;
    h.placidus_guarded = cast(system_of(h.system_in_use), c, w, asc, mc);

    // The zodiac: the only normalisation of the cusps.
    h.ascendant = norm_rad(asc + sky.zodiac_offset);
    h.midheaven = norm_rad(mc + sky.zodiac_offset);
    for (int i = 1; i <= 12; ++i) {
        const auto k = static_cast<std::size_t>(i);
        c[k] = norm_rad(c[k] + sky.zodiac_offset);
    }

    // Direction: cusps 2 to 12 in the reverse order, cusp 1 stays.
    if (options.direction == 0) {
        const Cusps old = c;
        for (int i = 2; i <= 12; ++i)
            c[static_cast<std::size_t>(i)] = old[static_cast<std::size_t>(14 - i)];
    }

    // Start: the Ascendant in the centre of the first house moves every cusp by half the first
    // house; the midpoints take half of each house backwards from its cusp.
    if (options.start == 1) {
        const double half = rad_diff(c[2], c[1]) / 2;
        for (int i = 1; i <= 12; ++i) c[static_cast<std::size_t>(i)] -= half;
    } else if (options.start == 2) {
        const Cusps old = c;
        for (int i = 1; i <= 12; ++i) {
            const auto k = static_cast<std::size_t>(i);
            const auto j = static_cast<std::size_t>(i == 12 ? 1 : i + 1);
            c[k] = old[k] + rad_diff(old[k], old[j]) / 2;
        }
    }

    // Hermetic houses with the epoch's Moon on the Descendant turn the wheel half a circle.
    if (options.type == 0 && options.epoch_descendant)
        for (int i = 1; i <= 12; ++i) c[static_cast<std::size_t>(i)] += pi;
    return h;
}

double part_of_fortune(double ascendant, double sun, double moon) {
    if (rad_diff(ascendant, sun) < 0) return ascendant - moon + sun;
    return ascendant + moon - sun;
}

void calculate_houses(Session& s, double sidereal_hours, double latitude_degrees, int event_slot) {
    EngineState& e = s.engine;
    HouseSky sky;
    sky.sidereal_hours = sidereal_hours;
    sky.latitude_degrees = latitude_degrees;
    sky.true_obliquity = e.nutation.true_obliquity;
    sky.sin_obliquity = e.nutation.sin_obliquity;
    sky.cos_obliquity = e.nutation.cos_obliquity;
    sky.zodiac_offset = e.zodiac_offset;
    HouseOptions options;
    options.system = s.chart.house_system;
    options.polar_system = s.chart.polar_house_system;
    options.direction = s.chart.house_direction;
    options.start = s.chart.house_start;
    options.type = s.chart.house_type;
    options.epoch_descendant = s.event_slots[event_slot][col::moon_on_asc] == "Des";

    const Houses h = compute_houses(sky, options);
    e.house_system_in_use.assign(h.system_in_use);
    e.house_count = 12;
    e.house_cusps = h.cusps;
    e.ascendant = h.ascendant;
    e.midheaven = h.midheaven;
}

void calculate_part_of_fortune(Session& s) {
    EngineState& e = s.engine;
    e.part_of_fortune_long =
        part_of_fortune(e.ascendant, e.pos.geo_long[geo::sun], e.pos.geo_long[geo::moon]);
}

// The chart step: the houses of the chart's moment, place and slot.
void calculate_houses(Session& s) {
    const EngineState& e = s.engine;
    calculate_houses(s, e.local_sidereal_hours, e.latitude_deg, e.event_slot);
}

// The part of Fortune into the geo and chart lists, then the Ascendant and Midheaven into the
// chart list unless the options keep them out of aspect work. A chart cast with "None" has no
// houses and gets none of the three.
void add_house_points(Session& s) {
    EngineState& e = s.engine;
    PositionLists& p = e.pos;
    // The chart's own setting decides, as the option names it (a polar fallback to "None" still
    // has its angles).
    e.chart_has_houses = s.chart.house_system != "None";
    if (!e.chart_has_houses) return;
    if (s.chart.part_of_fortune == 1 && p.geo_count < geo_capacity &&
        p.chart_count < chart_capacity) {
        calculate_part_of_fortune(s);
        const auto g = static_cast<std::size_t>(p.geo_count);
        p.geo_long[g] = e.part_of_fortune_long;
        p.geo_lat[g] = 0;
        p.geo_dist[g] = 0;
        p.geo_glyph[g] = glyph::part_of_fortune;
        p.geo_retro[g + 1] = 0;
        ++p.geo_count;
        const auto c = static_cast<std::size_t>(p.chart_count);
        p.chart_long[c] = e.part_of_fortune_long;
        p.chart_glyph[c] = glyph::part_of_fortune;
        ++p.chart_count;
    }
    const auto append_chart = [&p](double longitude, unsigned char code) {
        if (p.chart_count >= chart_capacity) return;
        const auto c = static_cast<std::size_t>(p.chart_count);
        p.chart_long[c] = longitude;
        p.chart_glyph[c] = code;
        ++p.chart_count;
    };
    if (!s.options.exclude_ascendant) append_chart(e.ascendant, glyph::ascendant);
    if (!s.options.exclude_midheaven) append_chart(e.midheaven, glyph::midheaven);
}

} // namespace celestark
