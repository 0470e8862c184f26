#include "engine/epoch.h"

#include "engine/chart.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/event_time.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"

#include <cmath>
#include <cstdio>
#include <functional>

namespace celestark {

namespace {

// The calculation wants the Sun and the Moon's longitude only, at full accuracy; whatever the
// session had is given back afterwards.
class EpochSwitches {
  public:
    explicit EpochSwitches(Session& s) : s_(s), calc_(s.engine.calc), level_(s.accuracy_level) {
        s.engine.calc.calc_sun = true;
        s.engine.calc.calc_moon_long = true;
        s.engine.calc.calc_planets = false;
        s.accuracy_level = 1;
    }
    ~EpochSwitches() {
        s_.engine.calc = calc_;
        s_.accuracy_level = level_;
    }
    EpochSwitches(const EpochSwitches&) = delete;
    EpochSwitches& operator=(const EpochSwitches&) = delete;

  private:
    Session& s_;
    CalcSwitches calc_;
    std::int16_t level_;
};

EpochMoment calculate_row(Session& s, int row) {
    calculate_chart(s, row, false);
    const EngineState& e = s.engine;
    EpochMoment m;
    m.jd = e.event_jd;
    m.t_eph = e.time.t_eph;
    m.sun = e.pos.geo_long[geo::sun];
    m.moon = e.pos.geo_long[geo::moon];
    m.ascendant = e.ascendant;
    return m;
}

// Steps the row by -error / rate days until the error is below the tolerance. `first_error` is
// the error of the row as it stands; `error_of` measures a calculated moment.
EpochMoment iterate(Session& s, int row, double first_error,
                    const std::function<double(const EpochMoment&)>& error_of) {
    const EpochState& ep = s.epoch;
    double error = first_error;
    EpochMoment m;
    bool calculated = false;
    for (int round = 0; std::fabs(error) >= ep.tolerance; ++round) {
        if (round == ep.max_rounds) {
            m.converged = false;
            return m;
        }
        add_days(s.event_slots[row], -error / ep.step_rate);
        m = calculate_row(s, row);
        calculated = true;
        error = error_of(m);
    }
    if (!calculated) m = calculate_row(s, row);
    return m;
}

// Copies the month-return row to a candidate's row, cast at the epoch place.
void start_candidate(EventSlots& slots, int row) {
    slots[row] = slots[epoch_row::month_return];
}

void use_epoch_place(EventRow& row) {
    for (int c = col::place; c <= col::long_sec; ++c)
        row[static_cast<std::size_t>(c)] = row[static_cast<std::size_t>(c + 23)];
}

std::string one_decimal(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", std::floor(value * 10) / 10);
    return text;
}

enum class LineKind { birth, month_return, candidate };

// One line of the epoch window: the date and time in Greenwich time, the days to the birth, the
// ascendant and the Moon, and the moment's own classification.
std::string epoch_line(Session& s, EventRow row, const EpochMoment& m, LineKind kind) {
    const EpochState& ep = s.epoch;
    to_greenwich(row);
    std::string line =
        "  " + format_date(row[col::day], row[col::month], row[col::year], s.options.text) + "  " +
        to_upper(format_time_msecs(row[col::hours], row[col::mins], row[col::secs], row[col::msecs],
                                   s.options.text));
    if (kind != LineKind::birth) line += " (" + one_decimal(ep.moments[0].jd - m.jd) + ")";
    line += " AS" + format_position_dm(m.ascendant, true) + "  " +
            std::string(1, static_cast<char>(glyph::moon)) + " " + format_position_dm(m.moon, true);
    line += moon_waxing(m.moon, m.sun) ? " WAXING" : " WANING";
    line += moon_above(m.moon, m.ascendant) ? " ABOVE" : " BELOW";
    if (kind == LineKind::candidate) line += m.t_eph > ep.moments[1].t_eph ? " SHORTER" : " LONGER";
    if (!m.converged) line += " - NOT FOUND: the Moon did not settle";
    return line;
}

} // namespace

void add_days(EventRow& row, double days) {
    const DayParts p = split_day_fraction(days);
    add_to_event_time(row, 0, 0, static_cast<int>(p.days), p.hours, p.minutes, p.seconds, p.msecs);
}

void to_greenwich(EventRow& row) {
    add_days(row, reduce_event_time(row).greenwich_offset);
    row[col::time_zone] = "GMT";
    row[col::lz] = "Z";
    row[col::med_deg] = "0";
    row[col::med_ew] = "W";
    row[col::med_min] = "0";
    row[col::dst] = "0";
}

bool moon_waxing(double moon, double sun) {
    return rad_diff(moon, sun) > 0;
}

bool moon_above(double moon, double ascendant) {
    return rad_diff(moon, ascendant) <= 0;
}

void calculate_epoch(Session& s) {
    EpochSwitches switches(s);
    EpochState& ep = s.epoch;
    EventSlots& slots = s.event_slots;
    ep.label = std::to_string(ep.months) + (ep.sidereal ? " Sidereal Months" : " Synodic Months");
    ep.recommended = 0;
    ep.arcs = {};

    // The birth.
    const EpochMoment birth = calculate_row(s, epoch_row::birth);
    ep.moments[0] = birth;
    const double birth_asc = birth.ascendant, birth_desc = birth.ascendant + pi;
    ep.birth_waxing = moon_waxing(birth.moon, birth.sun);
    ep.birth_above = moon_above(birth.moon, birth_asc);
    ep.lines[0] = epoch_line(s, slots[epoch_row::birth], birth, LineKind::birth);

    // The month return, at the epoch place from here on.
    EventRow& ret = slots[epoch_row::month_return];
    ret = slots[epoch_row::birth];
    ret[col::event] = "Epoch";
    use_epoch_place(ret);
    EpochMoment first;
    std::function<double(const EpochMoment&)> return_error;
    if (ep.sidereal) {
        add_days(ret, -std::floor(27.32 * ep.months));
        return_error = [&](const EpochMoment& m) { return rad_diff(m.moon, birth.moon); };
    } else {
        add_days(ret, -std::floor(29.53 * ep.months));
        const double target = rad_diff(birth.sun, birth.moon);
        return_error = [&, target](const EpochMoment& m) {
            return rad_diff(target, rad_diff(m.sun, m.moon));
        };
    }
    first = calculate_row(s, epoch_row::month_return);
    const EpochMoment month_return =
        iterate(s, epoch_row::month_return, return_error(first), return_error);
    ep.moments[1] = month_return;
    ep.lines[1] = epoch_line(s, ret, month_return, LineKind::month_return);

    // The four candidates: the Moon on the birth ascendant, then on the descendant, first the
    // crossing nearest the month return, then the one a month on its other side.
    struct Candidate {
        int row;
        bool on_ascendant;
        bool far_side;
    };
    static constexpr Candidate candidates[4] = {{epoch_row::asc1, true, false},
                                                {epoch_row::asc2, true, true},
                                                {epoch_row::desc1, false, false},
                                                {epoch_row::desc2, false, true}};
    for (int k = 0; k < 4; ++k) {
        const Candidate& c = candidates[k];
        start_candidate(slots, c.row);
        const double target = c.on_ascendant ? birth_asc : birth_desc;
        double error = rad_diff(month_return.moon, target);
        // The long way round sends the same iteration to the crossing on the other side.
        if (c.far_side) error += error <= 0 ? two_pi : -two_pi;
        const EpochMoment m = iterate(
            s, c.row, error, [target](const EpochMoment& at) { return rad_diff(at.moon, target); });
        ep.moments[static_cast<std::size_t>(k + 2)] = m;

        // The rule: a waxing birth Moon puts the epoch Moon on the ascendant, a waning one on the
        // descendant; the epoch falls after the month return (a shorter gestation) when a waxing
        // Moon stands above the horizon or a waning one below it, before it otherwise.
        const bool after = m.t_eph > month_return.t_eph, before = m.t_eph < month_return.t_eph;
        const bool selected =
            c.on_ascendant
                ? ep.birth_waxing && ((after && ep.birth_above) || (before && !ep.birth_above))
                : !ep.birth_waxing && ((after && !ep.birth_above) || (before && ep.birth_above));
        if (selected && m.converged) ep.recommended = k + 1;

        ep.lines[static_cast<std::size_t>(k + 2)] =
            epoch_line(s, slots[c.row], m, LineKind::candidate);
        to_greenwich(slots[c.row]);
        ep.arcs[static_cast<std::size_t>(k + 1)] = rad_diff(birth.moon, m.ascendant) * rad_to_deg;
        ep.arcs[static_cast<std::size_t>(k + 5)] =
            rad_diff(birth.moon, m.ascendant + pi) * rad_to_deg;
    }
    to_greenwich(ret);
}

void adjust_birth(Session& s, int hours, int minutes, int seconds, int msecs) {
    add_to_event_time(s.event_slots[epoch_row::birth], 0, 0, 0, hours, minutes, seconds, msecs);
    calculate_epoch(s);
}

void put_epoch_in_event(const Session& s, EventRow& event, int candidate) {
    const EventRow& birth = s.event_slots[epoch_row::birth];
    const EventRow& chosen = s.event_slots[epoch_row::month_return + candidate];
    const auto cell = [&](int column) -> std::string& {
        return event[static_cast<std::size_t>(column)];
    };
    for (int c = col::day; c <= col::year; ++c) cell(c) = birth[static_cast<std::size_t>(c)];
    for (int c = col::hours; c <= col::msecs; ++c) cell(c) = birth[static_cast<std::size_t>(c)];
    // The epoch place and date stand 23 columns after the event's own, its time 22 after.
    for (int c = col::place; c <= col::year; ++c)
        cell(c + 23) = chosen[static_cast<std::size_t>(c)];
    for (int c = col::hours; c <= col::msecs; ++c)
        cell(c + 22) = chosen[static_cast<std::size_t>(c)];
    cell(col::moon_on_asc) = candidate <= 2 ? "Asc" : "Des";
    cell(col::epoch_exists) = "Y";
    cell(col::epoch_months) = std::to_string(s.epoch.months);
    cell(col::epoch_moon) = s.epoch.sidereal ? "T" : "F";
}

double correction_damping(double seconds) {
    const double size = std::fabs(seconds);
    if (size < 3) return 0.85;
    if (size < 6) return 0.8;
    if (size < 30) return 0.7;
    if (size < 200) return 0.6;
    if (size < 500) return 0.45;
    return 0.35;
}

bool correct_birth(Session& s, int direction, int max_steps) {
    EpochState& ep = s.epoch;
    std::array<double, 9> estimate{};
    // How far, in seconds of birth time, each arc is from 0, from its change over the last move.
    const auto estimate_from = [&](const std::array<double, 9>& previous, double moved_seconds) {
        for (std::size_t i = 1; i <= 8; ++i) {
            const double change = previous[i] - ep.arcs[i];
            if (std::fabs(ep.arcs[i]) >= 179)
                estimate[i] = direction * 2000.0; // wrapped: no zero near here
            else if (change == 0)
                estimate[i] = direction * 1e9; // not moving: never the nearest
            else
                estimate[i] = ep.arcs[i] * moved_seconds / change;
        }
    };
    const auto move_birth = [&](double seconds) {
        const std::array<double, 9> previous = ep.arcs;
        const double size = std::fabs(seconds);
        int whole = static_cast<int>(size);
        int msecs = static_cast<int>((size - whole) * 1000);
        if (seconds < 0) {
            whole = -whole;
            msecs = -msecs;
        }
        adjust_birth(s, 0, 0, whole, msecs);
        estimate_from(previous, whole + msecs / 1000.0);
    };

    // One probe of ten milliseconds gives the rates.
    move_birth(direction * 0.01);
    // An arc already at 0 when the correction starts is the one a previous correction settled
    // on: the next zero in the direction is wanted, so the first choice passes over it.
    bool first = true;
    for (int step = 0; step < max_steps; ++step) {
        const double limit = direction * 100000.0;
        double b = limit;
        for (std::size_t i = 1; i <= 8; ++i) {
            const double e = estimate[i];
            if (first && std::fabs(e) <= 0.01) continue;
            if (direction > 0 ? (e > 0 && e < b) : (e < 0 && e > b)) b = e;
        }
        first = false;
        if (std::fabs(b) <= 0.01) return true;
        move_birth(b * correction_damping(b));
    }
    ep.lines[0] += " - THE CORRECTION DID NOT SETTLE";
    return false;
}

} // namespace celestark
