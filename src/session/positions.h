#pragma once
// The engine's working values for one moment: time base, lunar arguments, nutation, and the
// position lists in fixed-size arrays, so that a calculation never allocates.
#include <array>
#include <cstdint>
#include <string>

namespace celestark {

inline constexpr int geo_capacity = 39;
inline constexpr int helio_capacity = 35;
inline constexpr int lemni_capacity = 36;
inline constexpr int chart_capacity = 39;

// Index of the fixed bodies in each list.
namespace geo {
enum : int {
    sun = 0,
    moon,
    mercury,
    venus,
    mars,
    jupiter,
    saturn,
    uranus,
    neptune,
    pluto,
    fixed_count
};
}
namespace helio {
enum : int {
    earth = 0,
    mercury,
    venus,
    mars,
    jupiter,
    saturn,
    uranus,
    neptune,
    pluto,
    fixed_count
};
}
namespace lemni {
enum : int {
    sun = 0,
    earth,
    mercury,
    venus,
    mars,
    jupiter,
    saturn,
    uranus,
    neptune,
    pluto,
    fixed_count
};
}

struct TimeBase {
    double jd = 0;   // the moment, Universal Time
    double t_ut = 0; // Julian centuries from J2000.0, no delta T
    double delta_t_seconds = 0;
    double jd_ephemeris = 0;
    double t_eph = 0; // Julian centuries of ephemeris time
    double t2 = 0, t3 = 0, t4 = 0;
    double tau = 0; // Julian millennia of ephemeris time
    double tau2 = 0, tau3 = 0, tau4 = 0, tau5 = 0;
};

// The fundamental lunar arguments in radians with the multiples the series use, and their linear
// parts (cut after the T term).
struct LunarArguments {
    double d = 0, d2 = 0, d3 = 0, d4 = 0, d6 = 0, d8 = 0, d10 = 0;
    double m = 0, m2 = 0;
    std::array<double, 9> mp{}; // M' times 0 to 8
    double f = 0, f2 = 0, f3 = 0, f4 = 0;
    double omega = 0, omega2 = 0;
    double d_linear = 0, d2_linear = 0, m_linear = 0, mp_linear = 0, f_linear = 0;
};

struct Nutation {
    double nutation_long = 0; // radians
    double mean_obliquity = 0, true_obliquity = 0, sin_obliquity = 0, cos_obliquity = 0;
};

// What a driver call calculates. The chart screens switch everything on.
struct CalcSwitches {
    bool calc_planets = true, calc_sun = true, calc_moon_long = true, calc_moon_lat = true,
         calc_moon_dist = true, calc_nodes = true;
};

// A retrograde mark: 'R' or empty ('\0').
using RetroMark = char;

struct PositionLists {
    std::array<double, geo_capacity> geo_long{}, geo_lat{}, geo_dist{};
    std::array<unsigned char, geo_capacity> geo_glyph{};
    std::array<RetroMark, geo_capacity + 1> geo_retro{}; // indexed one above the body's index
    int geo_count = 0;

    std::array<double, helio_capacity> helio_long{}, helio_lat{}, helio_dist{}, helio_node{},
        helio_peri{};
    std::array<unsigned char, helio_capacity> helio_glyph{};
    int helio_count = 0;

    std::array<double, lemni_capacity> lemni_long{}, lemni_lat{}, lemni_dist{};
    std::array<unsigned char, lemni_capacity> lemni_glyph{};
    std::array<RetroMark, lemni_capacity + 1> lemni_retro{};
    int lemni_count = 0;

    std::array<double, chart_capacity> chart_long{};
    std::array<unsigned char, chart_capacity> chart_glyph{};
    int chart_count = 0;

    // The bodies alone, before stars, fixed points, nodes and parts are appended.
    int geo_count_base = 0, helio_count_base = 0;

    // The lists one minute ahead, for the retrograde marks.
    std::array<double, geo_capacity> geo_long_ahead{};
    std::array<double, helio_capacity> helio_long_ahead{}, helio_node_ahead{}, helio_peri_ahead{};
    std::array<double, lemni_capacity> lemni_long_ahead{};
};

// A VSOP body's raw sums at one moment with their first and second derivatives by tau, so that a
// moment a few hours away (the light time) follows by a Taylor step instead of a new pass.
struct SeriesRates {
    double l = 0, b = 0, r = 0;
    double l1 = 0, b1 = 0, r1 = 0;
    double l2 = 0, b2 = 0, r2 = 0;
};

struct EngineState {
    double event_jd = 0; // the moment of the last chart, Universal Time
    TimeBase time;
    LunarArguments lunar;
    Nutation nutation;
    CalcSwitches calc;
    PositionLists pos;

    // Reduction of the event row.
    int day_of_week_number = 1;
    double latitude_rad = 0;
    double latitude_deg = 0;  // north positive, as the row gives it
    double longitude_deg = 0; // west positive
    int event_slot = 0;       // the slot of the last chart
    double local_sidereal_hours = 0;

    double zodiac_offset = 0;         // radians added to every longitude
    double zodiac_offset_degrees = 0; // the same in degrees, 0 to below 360
    double zodiac_offset_second = 0;

    // The heliocentric Earth of the last Sun calculation.
    double earth_long = 0, earth_lat = 0, earth_dist = 0;
    // The Earth's sums at the moment of the last Sun calculation, for the retarded Earths.
    SeriesRates earth_rates;
    double earth_rates_tau = 0;
    int earth_rates_level = 0; // 0: none yet

    // Whether the stored tables answered for the last moment: Uranus to Pluto, the asteroids,
    // Chiron.
    bool outer_planets_ok = false;
    bool asteroid_table_ok = false, chiron_table_ok = false;
    long table_reads = 0; // positions read from the stored tables, for measurements

    // Lunar points, radians.
    double true_node = 0, mean_node = 0, true_perigee = 0, mean_perigee = 0;

    // Houses of the last chart, radians in the active zodiac (engine/houses.h). house_cusps[i] is
    // the cusp of house i for i = 1 to house_count (12); element 0 is unused and stays 0. The
    // cusps may lie outside 0 to 2 pi, the Ascendant and Midheaven do not.
    std::array<double, 13> house_cusps{};
    int house_count = 12;
    double ascendant = 0, midheaven = 0;
    // The system text the last house calculation took; "None" draws and lists no houses.
    std::string house_system_in_use = "None";
    // Whether the last chart has houses: cleared when it was cast with "None".
    bool chart_has_houses = false;
    double part_of_fortune_long = 0; // not reduced to a circle
};

} // namespace celestark
