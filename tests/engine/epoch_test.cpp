// The prenatal epoch against what it promises: each candidate has the Moon on the birth's
// ascendant or descendant, a lunar month apart; the month return is where the Moon (or its
// elongation) stood at birth; the rule selects by the birth's Moon; the correction ends with an
// arc at zero.
#include "engine/epoch.h"

#include "session/angles.h"
#include "session/constants.h"
#include "session/session.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

namespace celestark {
namespace {

struct Birth {
    int day, month, year, hours, minutes;
    int lat_deg, lat_min;
    char ns;
    int long_deg, long_min;
    char ew;
};

void put_place(EventRow& r, int first, int lat_deg, int lat_min, char ns, int long_deg,
               int long_min, char ew) {
    const auto at = [&](int offset) -> std::string& {
        return r[static_cast<std::size_t>(first + offset)];
    };
    at(0) = "Somewhere";
    at(1) = std::to_string(lat_deg);
    at(2) = std::string(1, ns);
    at(3) = std::to_string(lat_min);
    at(4) = "0";
    at(5) = std::to_string(long_deg);
    at(6) = std::string(1, ew);
    at(7) = std::to_string(long_min);
    at(8) = "0";
}

// A birth in local mean time in row 5, its epoch cast at the same place.
void put_birth(Session& s, const Birth& b) {
    EventRow& r = s.event_slots[epoch_row::birth];
    r = make_default_event();
    r[col::event] = "Birth";
    r[col::day] = std::to_string(b.day);
    r[col::month] = std::to_string(b.month);
    r[col::year] = std::to_string(b.year);
    r[col::gj] = "G";
    r[col::hours] = std::to_string(b.hours);
    r[col::mins] = std::to_string(b.minutes);
    r[col::secs] = "0";
    r[col::msecs] = "0";
    r[col::lz] = "L";
    put_place(r, col::place, b.lat_deg, b.lat_min, b.ns, b.long_deg, b.long_min, b.ew);
    put_place(r, col::epoch_place, b.lat_deg, b.lat_min, b.ns, b.long_deg, b.long_min, b.ew);
}

Session make_session() {
    Session s;
    initialise_session(s, ".");
    s.chart.house_system = "Placidus";
    return s;
}

double days_between(const EpochMoment& a, const EpochMoment& b) {
    return std::fabs(a.jd - b.jd);
}

TEST(Epoch, CandidatesPutTheMoonOnTheBirthAnglesAMonthApart) {
    Session s = make_session();
    std::mt19937 random(2026);
    std::uniform_int_distribution<int> year(1800, 2100), month(1, 12), day(1, 28), hour(0, 23),
        minute(0, 59), lat(0, 59), lon(0, 179), months(6, 12);
    for (int n = 0; n < 200; ++n) {
        const Birth b{day(random),    month(random),  year(random),     hour(random),
                      minute(random), lat(random),    minute(random),   n % 2 ? 'N' : 'S',
                      lon(random),    minute(random), n % 3 ? 'E' : 'W'};
        put_birth(s, b);
        s.epoch.months = months(random);
        s.epoch.sidereal = n % 4 != 0;
        calculate_epoch(s);
        const EpochState& ep = s.epoch;
        const EpochMoment &birth = ep.moments[0], &ret = ep.moments[1];
        SCOPED_TRACE(std::to_string(n) + ": " + std::to_string(b.year) + "-" +
                     std::to_string(b.month) + "-" + std::to_string(b.day));
        for (const EpochMoment& m : ep.moments) ASSERT_TRUE(m.converged);

        // The month return: the Moon (sidereal) or its elongation (synodic) as at birth, the
        // chosen number of months earlier.
        const double month_days = ep.sidereal ? 27.32 : 29.53;
        EXPECT_NEAR(birth.jd - ret.jd, month_days * ep.months, 3.0);
        if (ep.sidereal)
            EXPECT_LT(rad_sep(ret.moon, birth.moon), ep.tolerance);
        else
            EXPECT_LT(rad_sep(rad_diff(ret.sun, ret.moon), rad_diff(birth.sun, birth.moon)),
                      ep.tolerance);

        // The candidates: the Moon on the birth ascendant (asc1, asc2) or descendant (desc1,
        // desc2); the first of each pair nearest the month return, the second a month away.
        for (int k = 0; k < 4; ++k) {
            const EpochMoment& m = ep.moments[static_cast<std::size_t>(k + 2)];
            const double target = birth.ascendant + (k < 2 ? 0 : pi);
            EXPECT_LT(rad_sep(m.moon, target), ep.tolerance) << k;
        }
        for (int pair : {2, 4}) {
            const EpochMoment &near = ep.moments[static_cast<std::size_t>(pair)],
                              &far = ep.moments[static_cast<std::size_t>(pair + 1)];
            // Half a circle at the Moon's slowest, 11.8 degrees a day.
            EXPECT_LE(days_between(near, ret), 180 / 11.8);
            EXPECT_GT(days_between(near, far), 26.0);
            EXPECT_LT(days_between(near, far), 29.0);
            // On the other side of the month return.
            EXPECT_LT((near.jd - ret.jd) * (far.jd - ret.jd), 0);
        }

        // The rule: a waxing Moon at birth places the epoch Moon on the ascendant, a waning one
        // on the descendant; and the selected candidate's line reads SHORTER exactly when a
        // waxing Moon stands above the horizon or a waning one below it.
        ASSERT_GE(ep.recommended, 1);
        EXPECT_EQ(ep.recommended <= 2, ep.birth_waxing);
        const std::string& line = ep.lines[static_cast<std::size_t>(ep.recommended + 1)];
        const bool shorter = line.find(" SHORTER") != std::string::npos;
        EXPECT_EQ(shorter, ep.birth_waxing == ep.birth_above) << line;
        // The birth line tells the birth's own classes.
        EXPECT_NE(ep.lines[0].find(ep.birth_waxing ? " WAXING" : " WANING"), std::string::npos);
        EXPECT_NE(ep.lines[0].find(ep.birth_above ? " ABOVE" : " BELOW"), std::string::npos);
    }
}

// One birth for each branch of the rule, worked by hand from the birth's Sun, Moon and
// ascendant: the kind of the Moon picks the angle, and its place above or below the horizon
// whether the epoch falls after the month return (shorter) or before it (longer).
TEST(Epoch, TheRuleOnHandWorkedBirths) {
    struct Case {
        const char* what;
        Birth birth;
        int recommended;
    };
    const Case cases[] = {
        // Moon 7.7, Sun 336, ascendant 172.3: waxing, above: asc, after the return.
        {"waxing above", {24, 2, 1955, 19, 5, 37, 46, 'N', 122, 25, 'W'}, 1},
        // Moon 261.7, Sun 83, ascendant 161.7: waxing, below: asc, before the return.
        {"waxing below", {14, 6, 1946, 10, 58, 40, 42, 'N', 74, 0, 'W'}, 1},
        // Moon 297.1, Sun 323.6, ascendant 324.2: waning, above: desc, before the return.
        {"waning above", {12, 2, 1809, 7, 0, 37, 32, 'N', 85, 44, 'W'}, 3},
        // Moon 254.5, Sun 353.6, ascendant 101.6: waning, below: desc, after the return.
        {"waning below", {14, 3, 1879, 11, 30, 48, 24, 'N', 10, 0, 'E'}, 3},
    };
    Session s = make_session();
    for (const Case& c : cases) {
        put_birth(s, c.birth);
        calculate_epoch(s);
        EXPECT_EQ(s.epoch.recommended, c.recommended) << c.what;
        const std::string& line = s.epoch.lines[static_cast<std::size_t>(s.epoch.recommended + 1)];
        const bool after =
            std::string(c.what) == "waxing above" || std::string(c.what) == "waning below";
        EXPECT_NE(line.find(after ? " SHORTER" : " LONGER"), std::string::npos) << c.what;
    }
}

TEST(Epoch, TheFirstGuessesAreWholeMonthsOfDays) {
    Session s = make_session();
    put_birth(s, {14, 3, 1879, 11, 30, 48, 24, 'N', 10, 0, 'E'});
    struct Case {
        bool sidereal;
        double first_guess_days;
    };
    for (const Case c : {Case{true, 273}, Case{false, 295}}) {
        s.epoch.months = 10;
        s.epoch.sidereal = c.sidereal;
        calculate_epoch(s);
        // The iteration starts there and moves by less than two days.
        EXPECT_NEAR(s.epoch.moments[0].jd - s.epoch.moments[1].jd, c.first_guess_days, 2.0);
        EXPECT_EQ(s.epoch.label, c.sidereal ? "10 Sidereal Months" : "10 Synodic Months");
    }
}

TEST(Epoch, TheClassesAtTheirBoundaries) {
    // A Moon on the Sun is waning; a Moon on the ascendant is above the horizon.
    EXPECT_FALSE(moon_waxing(1.0, 1.0));
    EXPECT_TRUE(moon_waxing(1.0 + 1e-9, 1.0));
    EXPECT_FALSE(moon_waxing(1.0 - 1e-9, 1.0));
    EXPECT_TRUE(moon_above(2.0, 2.0));
    EXPECT_TRUE(moon_above(2.0 - 1e-9, 2.0));
    EXPECT_FALSE(moon_above(2.0 + 1e-9, 2.0));
    // Across 0 degrees.
    EXPECT_TRUE(moon_waxing(0.01, two_pi - 0.01));
    EXPECT_TRUE(moon_above(two_pi - 0.01, 0.01));
}

TEST(Epoch, AnotherPlaceMovesTheAscendantsNotTheTargets) {
    Session s = make_session();
    const Birth b{14, 3, 1879, 11, 30, 48, 24, 'N', 10, 0, 'E'};
    put_birth(s, b);
    calculate_epoch(s);
    const EpochState here = s.epoch;
    put_place(s.event_slots[epoch_row::birth], col::epoch_place, 40, 43, 'N', 74, 0, 'W');
    calculate_epoch(s);
    for (std::size_t k = 2; k < 6; ++k) {
        // The Moon still meets the birth's angle, at a moment a few hours away at most...
        EXPECT_LT(rad_sep(s.epoch.moments[k].moon, here.moments[k].moon), 2 * s.epoch.tolerance);
        EXPECT_LT(days_between(s.epoch.moments[k], here.moments[k]), 0.1);
        // ...but the candidate's own ascendant is that of New York.
        EXPECT_GT(rad_sep(s.epoch.moments[k].ascendant, here.moments[k].ascendant), 0.2);
    }
    EXPECT_EQ(s.event_slots[epoch_row::asc1][col::place], "Somewhere");
    EXPECT_EQ(s.event_slots[epoch_row::asc1][col::lat_deg], "40");
}

TEST(Epoch, TheCorrectionEndsWithAnArcAtZero) {
    Session s = make_session();
    put_birth(s, {7, 11, 1867, 10, 30, 52, 15, 'N', 21, 0, 'E'});
    calculate_epoch(s);
    const double before = s.epoch.moments[0].jd;
    for (int direction : {1, -1}) {
        ASSERT_TRUE(correct_birth(s, direction));
        double nearest = 180;
        for (std::size_t i = 1; i <= 8; ++i)
            nearest = std::min(nearest, std::fabs(s.epoch.arcs[i]));
        // A hundredth of a second of birth time turns the ascendant by some 4e-5 degrees.
        EXPECT_LT(nearest, 1e-3) << direction;
    }
    // Both corrections together moved the birth by less than a day.
    EXPECT_LT(std::fabs(s.epoch.moments[0].jd - before), 1.0);
    // The row still holds the birth in its own local time.
    EXPECT_EQ(s.event_slots[epoch_row::birth][col::lz], "L");
}

TEST(Epoch, NearThePolesItEndsInsteadOfHanging) {
    // Above the polar circles the ascendant races and jumps: the correction may chase it without
    // settling. It ends within its bound and says so on the birth's line.
    Session s = make_session();
    for (const Birth& b : {Birth{21, 6, 1990, 12, 0, 70, 0, 'N', 25, 0, 'E'},
                           Birth{2, 1, 1955, 3, 15, 78, 13, 'N', 15, 38, 'E'},
                           Birth{10, 12, 2001, 22, 40, 77, 51, 'S', 166, 40, 'E'},
                           Birth{21, 6, 1990, 0, 0, 85, 0, 'N', 25, 0, 'E'}}) {
        put_birth(s, b);
        calculate_epoch(s);
        for (const EpochMoment& m : s.epoch.moments) EXPECT_TRUE(m.converged);
        const bool settled = correct_birth(s, 1, 40);
        EXPECT_EQ(s.epoch.lines[0].find("DID NOT SETTLE") == std::string::npos, settled);
    }
    // The last birth never settles forward.
    EXPECT_FALSE(correct_birth(s, 1, 400));
}

} // namespace
} // namespace celestark
