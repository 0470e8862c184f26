#pragma once
// The prenatal epoch of the birth in work row 5: what the calculation takes (the lunar months,
// their kind) and what it leaves for the epoch window (the six lines, the candidate the rule
// selects, the arcs between the birth Moon and the candidates' angles). Plain values.
#include <array>
#include <string>

namespace celestark {

// The work rows of the calculation.
namespace epoch_row {
inline constexpr int birth = 5;        // a copy of the active event
inline constexpr int month_return = 6; // the month-return date
inline constexpr int asc1 = 7, asc2 = 8, desc1 = 9, desc2 = 10;
} // namespace epoch_row

// What one row of the calculation came to.
struct EpochMoment {
    double jd = 0;                           // Universal Time
    double t_eph = 0;                        // Julian centuries of ephemeris time
    double sun = 0, moon = 0, ascendant = 0; // radians, in the zodiac in force
    bool converged = true;
};

struct EpochState {
    int months = 10;      // 6 to 12 lunar months
    bool sidereal = true; // sidereal months; false: synodic
    // The assumed motion of every iteration, radians a day, and where it stops, radians.
    double step_rate = 0.223;
    double tolerance = 5e-05;
    // An iteration gives up after this many rounds: each round cuts the error at least fivefold
    // (the Moon moves 0.18 to 0.27 radians a day against the assumed 0.223), so seven rounds
    // reach the tolerance from half a circle; the bound only catches what cannot converge.
    int max_rounds = 60;

    std::string label; // "10 Sidereal Months"
    // birth, month return, asc1, asc2, desc1, desc2
    std::array<std::string, 6> lines;
    std::array<EpochMoment, 6> moments;
    int recommended = 0; // 1 to 4: asc1, asc2, desc1, desc2; 0 when none qualifies
    // Degrees, from 1: entries 1 to 4 the birth Moon less each candidate's ascendant, 5 to 8 less
    // its descendant.
    std::array<double, 9> arcs{};
    bool birth_waxing = false, birth_above = false;
};

} // namespace celestark
