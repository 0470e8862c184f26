// The hits of transit runs against an independent ephemeris: tests/data/transit_reference.csv,
// made by tools/make_transit_reference.cpp from the Swiss Ephemeris (JPL DE431). Every event of
// the reference within the span is found once, at a moment where the separation stands within 15"
// of exact (an ingress: the longitude within 15" of the sign's boundary; a station: the longitude
// within 15" of the station's), and no hit is found that the reference lacks. Aspects of the
// transiting Sun to Saturn to a natal chart over a year for four births; sign ingresses of the
// Sun to Pluto and stations of Mercury to Pluto from 1900 to 2100, a century at a time.
#include "../store/program_folder.h"
#include "engine/chart.h"
#include "predict/predictive_controls.h"
#include "predict/predictive_run.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/event.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/zones.h"

#include "../support/csv_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace celestark {
namespace {

constexpr double tolerance_arcsec = 15;
// A hit pairs with a reference event of its kind, bodies and angle within this many days, the
// nearest pairs first; an event left without one counts as missed, a hit as extra.
constexpr double pairing_days = 30;
// The run goes this many days beyond the span checked, so that a hit late or early by any
// amount still allowed is in the run.
constexpr double run_margin_days = 10;

struct Event {
    std::string kind;        // "B" aspect to the birth chart, "IS" sign ingress, "R" station
    double jd_tt = 0;        // terrestrial time
    std::string body;        // the moving body
    std::string target;      // "B": the natal body; "IS": the sign, 1 to 12
    double angle = 0;        // "B": the aspect; "IS": the boundary; "R": the longitude (degrees)
    std::string note;        // "B": "+", "-" or ""; "IS": "TO" or "FROM"; "R": "R" or "D"
    double speed = 0;        // the moving body's, degrees a day
    bool used = false;       // paired
    std::string key() const; // what must agree between a hit and its reference event
};

std::string Event::key() const {
    char angle_text[16] = "";
    if (kind != "R") std::snprintf(angle_text, sizeof angle_text, "%.0f", angle);
    return kind + "|" + body + "|" + target + "|" + angle_text + "|" + note;
}

struct Group {
    double birth = 0, from = 0, to = 0;
    std::string place;
    std::map<std::string, double> natal; // degrees
    std::vector<Event> events;
};

std::map<std::string, Group> read_reference() {
    std::map<std::string, Group> groups;
    for (const auto& cells : testing::csv_rows("transit_reference.csv", 8)) {
        Group& g = groups[cells[0]];
        const std::string& kind = cells[1];
        const double jd = std::stod(cells[2]);
        if (kind == "birth") {
            g.birth = jd;
            g.place = cells[6];
        } else if (kind == "from") {
            g.from = jd;
        } else if (kind == "to") {
            g.to = jd;
        } else if (kind == "natal") {
            g.natal[cells[3]] = std::stod(cells[5]);
        } else {
            Event e;
            e.kind = kind;
            e.jd_tt = jd;
            e.body = cells[3];
            e.target = cells[4];
            e.angle = std::stod(cells[5]);
            e.note = cells[6];
            e.speed = cells[7].empty() ? 0 : std::stod(cells[7]);
            g.events.push_back(e);
        }
    }
    return groups;
}

const std::map<std::string, Group>& reference() {
    static const std::map<std::string, Group> groups = read_reference();
    return groups;
}

const char* const planet_names[] = {"sun",     "moon",   "mercury", "venus",   "mars",
                                    "jupiter", "saturn", "uranus",  "neptune", "pluto"};

std::string body_name_of(const std::string& glyph_text) {
    if (glyph_text.empty()) return "?";
    const int code = static_cast<unsigned char>(glyph_text[0]) - glyph::sun;
    return code >= 0 && code < 10 ? planet_names[code] : "glyph " + std::to_string(code);
}

int sign_of(const std::string& glyph_text) {
    for (std::size_t i = 0; i < 12; ++i)
        if (!glyph_text.empty() && sign_glyphs[i] == static_cast<unsigned char>(glyph_text[0]))
            return static_cast<int>(i) + 1;
    return 0;
}

// A hit in the reference's terms: terrestrial time by the program's own delta T.
Event from_hit(const Hit& h) {
    Event e;
    e.kind = h.kind;
    e.jd_tt = h.date + delta_t(t_from_j2000(h.date)) / 86400.0;
    e.body = body_name_of(h.body_1);
    if (h.kind == "B") {
        e.target = body_name_of(h.body_2);
        e.angle = h.value;
        if (h.value > 0 && h.value < 180) e.note = rad_diff(h.pos_1, h.pos_2) > 0 ? "+" : "-";
    } else if (h.kind == "IS") {
        e.target = std::to_string(sign_of(h.target_glyph));
        e.angle = 30.0 * (sign_of(h.target_glyph) - 1);
        e.note = h.orb_kind;
    } else if (h.kind == "R") {
        e.angle = h.pos_1 * rad_to_deg;
        e.note = h.note;
    }
    return e;
}

class ListPrinter : public HitPrinter {
  public:
    std::vector<Hit> rows;
    void begin_page(Session&, int) override {}
    bool print_row(Session&, const Hit& hit) override {
        rows.push_back(hit);
        return true;
    }
    bool pages_follow() const override { return true; }
};

// "48N13 16E22" into the place cells of an event.
void put_place(EventRow& row, const std::string& place) {
    std::istringstream in(place);
    std::string lat, lon;
    in >> lat >> lon;
    const auto split = [](const std::string& text, const char* letters, std::string& degrees,
                          std::string& letter, std::string& minutes) {
        const auto at = text.find_first_of(letters);
        degrees = text.substr(0, at);
        letter = text.substr(at, 1);
        minutes = text.substr(at + 1);
    };
    split(lat, "NS", row[col::lat_deg], row[col::lat_ns], row[col::lat_min]);
    split(lon, "EW", row[col::long_deg], row[col::long_ew], row[col::long_min]);
    row[col::lat_sec] = row[col::long_sec] = "0";
}

// The birth of a group in card 1, in Greenwich time to the millisecond: the moment whose
// terrestrial time by the program's delta T is the reference's.
void put_birth(Session& s, const Group& g) {
    const double ut = ut_from_ephemeris_time(g.birth);
    const CivilDate d = date_from_julian(ut, "G");
    const auto ms = static_cast<long long>(std::llround((d.day - std::floor(d.day)) * 86400000.0));
    EventRow& row = s.event_slots[slot::first_user];
    row = make_default_event();
    row[col::surname] = "Reference";
    row[col::event] = "Birth";
    row[col::day] = std::to_string(static_cast<int>(std::floor(d.day)));
    row[col::month] = std::to_string(d.month);
    row[col::year] = std::to_string(d.year);
    row[col::gj] = "G";
    row[col::hours] = std::to_string(ms / 3600000);
    row[col::mins] = std::to_string(ms / 60000 % 60);
    row[col::secs] = std::to_string(ms / 1000 % 60);
    row[col::msecs] = std::to_string(ms % 1000);
    put_place(row, g.place);
    const ZoneMeridian gmt = zone_meridian("GMT");
    row[col::lz] = "Z";
    row[col::time_zone] = "GMT";
    row[col::med_deg] = gmt.degrees;
    row[col::med_ew] = gmt.ew;
    row[col::med_min] = gmt.minutes;
    row[col::dst] = gmt.dst;
    row[col::epoch_exists] = "N";
    s.event_slots.active_event = slot::first_user;
}

void set(PredictiveParameters& p, const std::string& name, const std::string& value) {
    EXPECT_EQ(set_predictive_control(p, name, value), "") << name;
}

void set_date(PredictiveParameters& p, const char* prefix, double jd) {
    const CivilDate d = date_from_julian(jd, "G");
    const std::string pre = prefix;
    set(p, pre + "_day", std::to_string(static_cast<int>(std::floor(d.day))));
    set(p, pre + "_month", std::to_string(d.month));
    set(p, pre + "_year", std::to_string(d.year));
}

// A transit run from `from` to `to` (terrestrial time, widened by the margin) with the moving
// bodies and contents given; every other content and body off, the birth chart's planets the
// targets. The hits in the reference's terms.
std::vector<Event> run(Session& s, double from, double to, const std::vector<std::string>& moving,
                       bool aspects, bool ingresses_and_stations) {
    PredictiveParameters p = predictive_defaults(s, "T");
    for (const PredictiveControl& c : predictive_controls())
        if (c.kind == ControlKind::check) set(p, c.name, "0");
    set(p, "geo", "1");
    set(p, "transit_event", "1");
    set(p, "aspects", aspects ? "1" : "0");
    set(p, "signs", ingresses_and_stations ? "1" : "0");
    set(p, "retro", ingresses_and_stations ? "1" : "0");
    for (const std::string& b : moving) set(p, "t_" + b, "1");
    for (const char* b : planet_names) set(p, std::string("c_") + b, "1");
    set(p, "time_zone", "GMT +0     0");
    set_date(p, "start", from - run_margin_days);
    set_date(p, "end", to + run_margin_days);
    ListPrinter list;
    EXPECT_EQ(start_predictive_run(s, p, list), RunOutcome::finished);
    std::vector<Event> hits;
    for (const Hit& h : list.rows) hits.push_back(from_hit(h));
    return hits;
}

std::string describe(const Event& e) {
    const CivilDate d = date_from_julian(e.jd_tt, "G");
    char text[200];
    std::snprintf(text, sizeof text, "%s %s %s %s %.4f%s at %d-%02d-%05.2f TT (JD %.5f)",
                  e.kind.c_str(), e.body.c_str(), e.target.c_str(), e.note.c_str(), e.angle,
                  e.kind == "R" ? " deg" : "", d.year, d.month, d.day, e.jd_tt);
    return text;
}

// The place a crossing is of, whichever way the body goes: an ingress of either sense.
std::string place_key(const Event& e) {
    return e.kind == "IS" ? e.kind + "|" + e.body + "|" + e.target : e.key();
}

// Two crossings of one place about a station, where the body goes no farther than the tolerance
// beyond the place (on a parabola, a quarter of the speed at a crossing times the time between
// them): a run may find both or neither.
bool grazing(const Event& a, const Event& b) {
    if (place_key(a) != place_key(b) || (a.speed < 0) == (b.speed < 0)) return false;
    const double excursion =
        std::max(std::fabs(a.speed), std::fabs(b.speed)) * std::fabs(a.jd_tt - b.jd_tt) / 4;
    return excursion * 3600 <= tolerance_arcsec;
}

// The error of a hit against its reference event, arc seconds: the time between them turned
// into arc by the body's speed; for a station the difference of the longitudes.
double error_arcsec(const Event& r, const Event& h) {
    if (r.kind == "R") return std::fabs(std::remainder(h.angle - r.angle, 360.0)) * 3600;
    return std::fabs(h.jd_tt - r.jd_tt) * std::fabs(r.speed) * 3600;
}

// Pairs the reference events with the hits of the same kind, bodies and angle, nearest in time
// first, and checks the span [from, to): every event of it found within the tolerance, every hit
// of it an event of the reference.
void compare(std::vector<Event> refs, std::vector<Event> hits, double from, double to,
             const std::string& label) {
    const auto inside = [&](const Event& e) { return e.jd_tt >= from && e.jd_tt < to; };
    struct Pairing {
        double apart;
        Event *ref, *hit;
    };
    std::vector<Pairing> pairings;
    std::map<std::string, std::vector<Event*>> hits_by_key;
    for (Event& h : hits) hits_by_key[h.key()].push_back(&h);
    for (Event& r : refs)
        for (Event* h : hits_by_key[r.key()])
            if (const double apart = std::fabs(h->jd_tt - r.jd_tt); apart <= pairing_days)
                pairings.push_back({apart, &r, h});
    std::sort(pairings.begin(), pairings.end(),
              [](const Pairing& a, const Pairing& b) { return a.apart < b.apart; });
    std::map<const Event*, const Event*> found; // reference event to its hit
    for (const Pairing& p : pairings) {
        if (found.count(p.ref) || p.hit->used) continue;
        found[p.ref] = p.hit;
        p.hit->used = true;
    }

    struct Worst {
        double arcsec = 0;
        std::string where;
    };
    std::map<std::string, Worst> worst;
    std::map<std::string, int> compared;
    int failures = 0, grazings = 0;
    const auto fail = [&](const std::string& what) {
        if (++failures <= 40) ADD_FAILURE() << label << ": " << what;
    };
    for (const Event& r : refs) {
        if (!inside(r)) continue;
        const auto at = found.find(&r);
        if (at == found.end()) {
            const bool excused = std::any_of(refs.begin(), refs.end(), [&](const Event& other) {
                return &other != &r && !found.count(&other) && grazing(r, other);
            });
            if (excused)
                ++grazings;
            else
                fail("missed " + describe(r));
            continue;
        }
        const Event& h = *at->second;
        const double error = error_arcsec(r, h);
        ++compared[r.kind];
        char text[80];
        std::snprintf(text, sizeof text, ": %.2f\" off, found %+.1f s from it", error,
                      (h.jd_tt - r.jd_tt) * 86400);
        Worst& w = worst[r.kind];
        if (error > w.arcsec) w = {error, describe(r) + text};
        if (error > tolerance_arcsec) fail(describe(r) + text);
    }
    for (const Event& h : hits)
        if (!h.used && inside(h)) fail("extra " + describe(h));
    if (failures > 40) ADD_FAILURE() << label << ": " << failures - 40 << " more faults";
    for (const auto& [kind, n] : compared)
        std::printf("  %s %-2s: %5d events, worst %5.2f\" (%s)\n", label.c_str(), kind.c_str(), n,
                    worst[kind].arcsec, worst[kind].where.c_str());
    if (grazings > 0)
        std::printf("  %s: %d crossings not found, of places the body passes by %.0f\" or less\n",
                    label.c_str(), grazings, tolerance_arcsec);
}

#ifdef CELESTARK_TABLES_DIR

class TransitRun : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(folder_.start(s_).started); }
    testing::ProgramFolder folder_;
    Session s_;
};

class AspectsToABirth : public TransitRun, public ::testing::WithParamInterface<const char*> {};

TEST_P(AspectsToABirth, EveryExactAspectOfAYearFoundOnceWithin15Arcseconds) {
    const auto it = reference().find(GetParam());
    ASSERT_NE(it, reference().end());
    const Group& g = it->second;
    ASSERT_GT(g.events.size(), 500u);
    put_birth(s_, g);
    const std::vector<Event> hits = run(
        s_, g.from, g.to, {"sun", "mercury", "venus", "mars", "jupiter", "saturn"}, true, false);
    // The natal places, for the record: they enter every aspect's error.
    double natal_worst = 0;
    std::string natal_body;
    const FixedChart& birth = s_.predictive.birth;
    for (int q = 0; q < birth.geo_count; ++q) {
        const std::string name = body_name_of(
            std::string(1, static_cast<char>(birth.geo_glyph[static_cast<std::size_t>(q)])));
        const auto at = g.natal.find(name);
        if (at == g.natal.end()) continue;
        const double d =
            std::fabs(std::remainder(
                birth.geo[static_cast<std::size_t>(q)] * rad_to_deg - at->second, 360.0)) *
            3600;
        if (d > natal_worst) natal_worst = d, natal_body = name;
    }
    std::printf("  birth %s: natal places within %.2f\" (%s)\n", GetParam(), natal_worst,
                natal_body.c_str());
    compare(g.events, hits, g.from, g.to, std::string("birth ") + GetParam());
}

INSTANTIATE_TEST_SUITE_P(TransitAccuracy, AspectsToABirth,
                         ::testing::Values("1905", "1950", "2000", "2060"));

class IngressesAndStations : public TransitRun, public ::testing::WithParamInterface<int> {};

TEST_P(IngressesAndStations, EveryOneOfTheCenturyFoundOnceWithin15Arcseconds) {
    const auto it = reference().find("sky");
    ASSERT_NE(it, reference().end());
    const Group& g = it->second;
    // The centuries from 1900 January 1.0 TT; the last takes the year 2100 too.
    const int century = GetParam();
    const double from = julian_date(1, 1, century, "G", 0);
    const double to = century == 2000 ? g.to : julian_date(1, 1, century + 100, "G", 0);
    ASSERT_GE(from, g.from);
    ASSERT_LE(to, g.to);
    put_birth(s_, reference().at("1950"));
    const std::vector<Event> hits =
        run(s_, from, to,
            {"sun", "mercury", "venus", "mars", "jupiter", "saturn", "uranus", "neptune", "pluto"},
            false, true);
    compare(g.events, hits, from, to, std::to_string(century) + "s");
}

INSTANTIATE_TEST_SUITE_P(TransitAccuracy, IngressesAndStations, ::testing::Values(1900, 2000));

#endif

} // namespace
} // namespace celestark
