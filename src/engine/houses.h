#pragma once
// House cusps, the Ascendant and the Midheaven from a local sidereal time and a latitude, in the
// eleven systems the chart options offer, and the part of Fortune.
//
// The cusps are radians of ecliptic longitude in the active zodiac. `Houses::cusps[i]` (and
// `EngineState::house_cusps[i]`) is the cusp of house i for i = 1 to 12; element 0 is unused and
// stays 0. The zodiac offset is the only normalisation: the direction, start and Hermetic steps
// that follow it may leave a cusp outside 0 to 2 pi, and readers fold with `norm_rad`. The
// Ascendant and Midheaven always lie within 0 to 2 pi.
#include <array>
#include <cstdint>
#include <string_view>

namespace celestark {

struct Session;

// The system texts in the order the chart options list them. The comparison is exact; a text
// that is not among them computes the Ascendant and Midheaven alone, like "Asc. MC only".
inline constexpr std::array<std::string_view, 11> house_system_names = {
    "None",    "Asc. MC only", "Meridian",    "Regiomontanus", "Porphyry", "Equal",
    "Morinus", "Koch",         "Topocentric", "Placidus",      "Campanus"};

// The options that shape the cusps besides the sky.
struct HouseOptions {
    std::string_view system = "Asc. MC only";   // the system asked for
    std::string_view polar_system = "Porphyry"; // taken north of the Arctic circle of the date
    std::int16_t direction = -1;   // -1 (True) "Normal"; 0 "Oppostie": cusps 2..12 run backwards
    std::int16_t start = 0;        // 0 Ascendant on cusp 1, 1 in the centre of house 1,
                                   // 2 cusps at the midpoints of the normal houses
    std::int16_t type = -1;        // -1 (True) "Normal"; 0 "Hermetic"
    bool epoch_descendant = false; // the event's epoch rising field reads "Des"
};

// The sky at the place and moment.
struct HouseSky {
    double sidereal_hours = 0;   // local sidereal time, hours, folded or not
    double latitude_degrees = 0; // north positive
    double true_obliquity = 0, sin_obliquity = 0, cos_obliquity = 0; // radians
    double zodiac_offset = 0;                                        // radians
};

struct Houses {
    std::array<double, 13> cusps{}; // element i: cusp of house i; element 0 unused
    double ascendant = 0, midheaven = 0;
    // The text the calculation took: a view of `options.system` or `options.polar_system`.
    // Copy it before the options change.
    std::string_view system_in_use;
    // The Placidus guard acted: a cusp met a point that never rises or never sets, or the round
    // limit. These latitudes have no Placidus houses; the cusps are the guard's.
    bool placidus_guarded = false;
};

// The cusps and angles for `sky` under `options`.
//
// North of the Arctic circle of the date (90 - obliquity - latitude below 0; the latitude keeps
// its sign, so the test never fires in the south) the polar system replaces the one asked for.
//
// The Placidus iteration has a guard for the latitudes where the semi-arc of a point has no value
// (V = -tan(declination) tan(latitude) beyond 1 in size, south of the Antarctic circle of the
// date, or north of the Arctic circle with a polar system of Placidus). V is held to -1 or 1
// there, the semi-arc of a point that never sets (180 degrees) or never rises (0), and the
// iteration then stops at the latest after `placidus_guarded_round_limit` rounds in all, with its
// last value. An iteration that converges without the guard never meets such a V (its arc would be
// undefined from then on), and it stops within `placidus_round_limit` rounds (the slowest in a
// scan of 10^8 southern cases took under 40 000), so no converging result changes.
Houses compute_houses(const HouseSky& sky, const HouseOptions& options);

inline constexpr int placidus_round_limit = 1000000;
inline constexpr int placidus_guarded_round_limit = 1000;

// The part of Fortune from the Ascendant and the longitudes of Sun and Moon, not reduced to a
// circle: Ascendant - Moon + Sun with the Sun below the horizon (within half a circle after the
// Ascendant), Ascendant + Moon - Sun otherwise.
double part_of_fortune(double ascendant, double sun, double moon);

// Houses of the session's engine at `sidereal_hours` and `latitude_degrees`, with the options of
// `s.chart`, the zodiac offset and true obliquity of `s.engine`, and the epoch rising field of
// `s.event_slots[event_slot]` for the Hermetic step. Writes house_system_in_use, house_count,
// house_cusps, ascendant and midheaven.
void calculate_houses(Session& s, double sidereal_hours, double latitude_degrees, int event_slot);

// part_of_fortune_long from the engine's Ascendant and the first two geo entries (Sun, Moon).
void calculate_part_of_fortune(Session& s);

} // namespace celestark
