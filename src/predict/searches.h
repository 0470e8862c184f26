#pragma once
// The searches of a predictive run. Each forms, for a body or a pair, five values from the
// window that are zero at the wanted moment (an aspect exact, an orb's edge crossed, a sign,
// house or constellation entered, a separation recurring) or turn at it (a station), finds the
// moment by interpolation and appends a row to the hit table. No position is calculated here.
#include "session/option_state.h"
#include "session/predictive_state.h"

#include <array>
#include <cstdint>

namespace celestark {

struct Session;

// Which bodies the run moves and which it aspects, by glyph code; made at the start of a run.
struct BodySelection {
    std::array<bool, 256> moving{}, radical{};
    // For each whole degree of a pair's separation (0 to 180), the aspects of the set (bit by
    // number) that a search may find from it.
    std::array<std::uint32_t, 181> aspect_bins{};
};
BodySelection select_bodies(const Session& s, const PredictiveParameters& params);

// The searches of one step in the order of the world view: the stations at every step, the
// others when `full` (every second step, so that the two middle intervals of one search meet
// those of the next).
void search_step(Session& s, const BodySelection& bodies, bool full);

// The orb of an aspect for a pair of body classes, degrees: the planets' orb, the Moon's when
// either is the Moon, the Sun's when either is the Sun or the Earth.
double geocentric_orb(const AspectTable& table, int aspect, int class_p, int class_q);
// Whether neither class has the orb 0 for the aspect.
bool aspect_allowed(const AspectTable& table, int aspect, int class_p, int class_q);

} // namespace celestark
