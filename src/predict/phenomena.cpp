#include "predict/phenomena.h"

#include "engine/chart.h"
#include "predict/eclipses.h"
#include "predict/hit_text.h"
#include "predict/predictive_controls.h"
#include "predict/predictive_run.h"
#include "predict/samples.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/positions.h"
#include "session/session.h"
#include "session/text.h"

#include <algorithm>
#include <cmath>

namespace celestark {

namespace {

constexpr const char* world_views[] = {"geo", "tych", "helio", "lemni"};
constexpr const char* contents[] = {"aspects_search", "ingresses_search", "stationary_search",
                                    "nodes_apsides_search", "eclipse_phenomena"};
// The bodies of the columns, and the run's flag each one sets.
struct ColumnBody {
    const char* name;
    const char* flag;
};
constexpr ColumnBody column_bodies[] = {
    {"sun", "sun"},          {"earth", "earth"},     {"moon", "moon"},
    {"mercury", "mercury"},  {"venus", "venus"},     {"mars", "mars"},
    {"jupiter", "jupiter"},  {"saturn", "saturn"},   {"uranus", "uranus"},
    {"neptune", "neptune"},  {"pluto", "pluto"},     {"node", "node"},
    {"perigee", "perigee"},  {"chiron", "chiron"},   {"vesta", "asteroids"},
    {"juno", "asteroids"},   {"ceres", "asteroids"}, {"pallas", "asteroids"},
    {"quaoar", "asteroids"}, {"sedna", "asteroids"}};

bool is_check(std::string_view name) {
    for (const char* c : contents)
        if (name == c) return true;
    for (const ColumnBody& b : column_bodies)
        for (const char* column : {"1", "2"})
            if (name == std::string(b.name) + column) return true;
    return name == "stars2";
}
bool is_world_view(std::string_view name) {
    for (const char* v : world_views)
        if (name == v) return true;
    return false;
}

class Rows : public HitPrinter {
  public:
    std::vector<Hit> hits;
    void begin_page(Session&, int) override {}
    bool print_row(Session&, const Hit& h) override {
        hits.push_back(h);
        return true;
    }
    bool pages_follow() const override { return true; }
};

std::string glyph_name(const std::string& glyph) {
    if (glyph.empty()) return {};
    const std::string flag = body_flag(static_cast<unsigned char>(glyph[0]));
    return flag.empty() ? glyph : flag;
}

} // namespace

bool PhenomenaParameters::on(std::string_view name) const {
    const auto it = values.find(name);
    return it != values.end() && it->second == "1";
}

PhenomenaParameters phenomena_defaults(Session& s) {
    PhenomenaParameters p;
    p.values["start"] = "2005";
    p.values["end_year"] = "2010";
    p.values["gj"] = "G";
    p.values["aspects"] = predictive_defaults(s, "T").text("aspect_set");
    for (const char* v : world_views) p.values[v] = "0";
    p.values["geo"] = "1";
    for (const char* c : contents) p.values[c] = "0";
    p.values["aspects_search"] = "1";
    // The Sun and the planets in both columns.
    for (const ColumnBody& b : column_bodies) {
        const std::string name = b.name;
        const bool planet = name == "sun" || name == "mercury" || name == "venus" ||
                            name == "mars" || name == "jupiter" || name == "saturn" ||
                            name == "uranus" || name == "neptune" || name == "pluto";
        p.values[name + "1"] = p.values[name + "2"] = planet ? "1" : "0";
    }
    p.values["stars2"] = "0";
    return p;
}

std::string set_phenomena_control(PhenomenaParameters& p, std::string_view name,
                                  std::string_view value) {
    const std::string n(name), v(value);
    if (n == "start" || n == "end_year" || n == "aspects") {
        p.values[n] = v;
        return {};
    }
    if (n == "gj") {
        if (v != "G" && v != "J") return "the control 'gj' takes G or J, not '" + v + "'";
        p.values[n] = v;
        return {};
    }
    if (!is_check(n) && !is_world_view(n))
        return "there is no control '" + n + "' on the phenomena screen";
    if (v != "1" && v != "0") return "the control '" + n + "' takes 1 or 0, not '" + v + "'";
    // A world view chosen clears the others.
    if (is_world_view(n) && v == "1")
        for (const char* other : world_views) p.values[other] = "0";
    p.values[n] = v;
    return {};
}

bool validate_phenomena(const PhenomenaParameters& p, MessageSink& sink) {
    bool ok = true;
    const auto fail = [&](const char* title, const char* text) {
        sink.input_error(title);
        sink.input_error(text);
        ok = false;
    };
    const auto year = [&](const char* name, long& out) {
        const auto it = p.values.find(name);
        const std::string text = it == p.values.end() ? std::string() : trim(it->second);
        if (text.empty()) return false;
        out = text_to_i16(text);
        return std::to_string(out) == text;
    };
    long start = 0, end = 0;
    const bool start_ok = year("start", start), end_ok = year("end_year", end);
    if (!start_ok) fail("No entry for Start Year", "Start year cannot be a blank");
    if (!end_ok) fail("No entry for End Year", "End year cannot be a blank");
    if (start_ok && end_ok && start > end)
        fail("Star year greater than end year",
             "The end year cannot be earlier than the start year");
    const auto set = p.values.find("aspects");
    if (set == p.values.end() || trim(set->second).empty())
        fail("No entry for the aspect set", "Aspect set cannot be a blank");
    if (!ok) sink.show_input_errors();
    return ok;
}

std::vector<Phenomenon> list_phenomena(Session& s, const PhenomenaParameters& p) {
    std::vector<Phenomenon> out;
    MessageSink& sink = session_sink(s);
    if (!validate_phenomena(p, sink)) return out;
    const std::string gj = p.values.at("gj");
    const int first_year = text_to_i16(p.values.at("start"));
    const int last_year = text_to_i16(p.values.at("end_year"));
    const double t0 = julian_date(1, 1, first_year, gj, 0);
    const double t1 = julian_date(1, 1, last_year + 1, gj, 0);
    if (p.on("eclipse_phenomena")) {
        for (const EclipseRow& row : eclipses_between(s, t0, t1)) {
            if (row.eclipse.jd_ut >= t1) continue;
            const bool sun = row.eclipse.kind == "S";
            out.push_back({row.eclipse.jd_ut,
                           std::string(sun ? "Sun" : "Moon") + " eclipse " + row.eclipse.type +
                               "  " + format_position_dm(row.sun, true) + "  " +
                               format_position_dm(row.moon, true),
                           "sun", "moon", row.eclipse.kind});
        }
        std::stable_sort(out.begin(), out.end(),
                         [](const Phenomenon& a, const Phenomenon& b) { return a.jd < b.jd; });
        return out;
    }
    // The run of transits on one moving set: the first column moves, the second is aspected.
    PredictiveParameters run = predictive_defaults(s, "T");
    for (const PredictiveControl& c : predictive_controls())
        if (c.kind != ControlKind::text) run.flags[c.name] = 0;
    for (const ColumnBody& b : column_bodies) {
        const std::string name = b.name, flag = b.flag;
        if (p.on(name + "1")) run.flags["t_" + flag] = 1;
        if (p.on(name + "2")) run.flags["c_" + flag] = 1;
    }
    run.flags["c_stars"] = p.on("stars2") ? 1 : 0;
    run.flags["aspects"] = p.on("aspects_search") ? 1 : 0;
    run.flags["signs"] = p.on("ingresses_search") ? 1 : 0;
    run.flags["retro"] = p.on("stationary_search") ? 1 : 0;
    run.flags["transit_transit"] = 1;
    run.flags["prenatal"] = -1;
    const bool mercury = p.on("mercury1") || p.on("mercury2"),
               moon = p.on("moon1") || p.on("moon2");
    if (p.on("helio")) {
        run.flags["helio"] = -1;
        run.step = p.on("venus1") || p.on("venus2") ? 4.0f : 6.0f;
        if (mercury) run.step = 2.0f;
        if (p.on("nodes_apsides_search"))
            run.flags["c_helio_nodes"] = run.flags["c_helio_perihelions"] = 1;
    } else if (p.on("lemni")) {
        run.flags["lemniscate"] = -1;
        run.step = 1.0f;
    } else {
        run.flags[p.on("tych") ? "hermetic" : "geo"] = -1;
        run.step = 5.0f;
        if (mercury) run.step = 2.0f;
        if (moon) run.step = 1.0f;
    }
    const CivilDate end = date_from_julian(t1 - 1, gj);
    run.texts["start_day"] = "1";
    run.texts["start_month"] = "1";
    run.texts["start_year"] = std::to_string(first_year);
    run.texts["end_day"] = std::to_string(static_cast<int>(end.day));
    run.texts["end_month"] = std::to_string(end.month);
    run.texts["end_year"] = std::to_string(end.year);
    run.texts["time_zone"] = predictive_zone_rows().front();
    for (const std::string& row : predictive_zone_rows())
        if (row.rfind("GMT", 0) == 0) {
            run.texts["time_zone"] = row;
            break;
        }
    run.texts["output_format"] = "1 Column";
    run.texts["aspect_set"] = trim(p.values.at("aspects"));
    // The run wants an event: the program's default one stands in, and the cards are left as
    // they were.
    EventSlots& slots = s.event_slots;
    const std::int16_t active = slots.active_event;
    const EventRow work = slots[slot::work];
    slots[slot::work] = slots[slot::default_event];
    slots[slot::work][col::gj] = gj;
    slots.active_event = slot::work;
    Rows rows;
    start_predictive_run(s, run, rows);
    slots.active_event = active;
    slots[slot::work] = work;
    for (const Hit& h : rows.hits)
        out.push_back({h.life_date, hit_text(s, h), glyph_name(h.body_1),
                       h.kind == "IS" ? glyph_name(h.target_glyph) : glyph_name(h.body_2), h.kind});
    return out;
}

std::vector<Phenomenon> moon_aspects_to_heliocentric(Session& s, double first, double last) {
    std::vector<Phenomenon> out;
    const AspectTable& set = s.option_sets.aspects;
    const EngineState kept = s.engine;
    struct Day {
        double moon = 0;
        std::vector<double> helio;
        std::vector<unsigned char> glyphs;
    };
    const auto day_at = [&s](double t) {
        s.engine.earth_rates_level = 0;
        calculate_bodies_at(s, t);
        const PositionLists& p = s.engine.pos;
        Day d;
        d.moon = p.geo_long[geo::moon];
        for (std::size_t i = 0; i < static_cast<std::size_t>(p.helio_count_base); ++i) {
            d.helio.push_back(p.helio_long[i]);
            d.glyphs.push_back(p.helio_glyph[i]);
        }
        return d;
    };
    const auto circle = [](double a) { return a - two_pi * std::floor(a / two_pi); };
    // Days a day apart; each window of five is searched between its second and fourth day, so
    // the middle day moves on by two.
    std::vector<Day> window;
    for (int i = -2; i <= 2; ++i) window.push_back(day_at(first + i));
    for (double mid = first; mid < last + 1; mid += 2) {
        if (mid > first) {
            window.erase(window.begin(), window.begin() + 2);
            window.push_back(day_at(mid + 1));
            window.push_back(day_at(mid + 2));
        }
        Samples moon;
        for (std::size_t i = 0; i < 5; ++i) moon[i] = window[i].moon;
        unwrap_samples(moon);
        for (std::size_t q = 0; q < window[2].helio.size(); ++q) {
            Samples body;
            for (std::size_t i = 0; i < 5; ++i) body[i] = window[i].helio[q];
            unwrap_samples(body);
            for (std::size_t a = 0; a < set.angle.size(); ++a) {
                const double angle = set.angle[a] * deg_to_rad;
                if (angle < 0 || set.orb_moon[a] == 0) continue;
                for (const double side : {1.0, -1.0}) {
                    if (side < 0 && !(set.angle[a] > 0 && set.angle[a] < 180)) continue;
                    Samples y;
                    for (std::size_t i = 0; i < 5; ++i) y[i] = moon[i] - body[i] - side * angle;
                    unwrap_samples(y);
                    const Zeros zeros = find_zeros(y);
                    for (int z = 0; z < zeros.count; ++z) {
                        const double n = zeros.at[static_cast<std::size_t>(z)].n;
                        const double t = mid + n;
                        if (t < first || t >= last) continue;
                        Hit h;
                        h.kind = "A";
                        h.pos_1 = circle(interpolate_samples(moon, n));
                        h.body_1 = std::string(1, static_cast<char>(glyph::moon));
                        h.pos_2 = circle(interpolate_samples(body, n));
                        h.body_2 = std::string(1, static_cast<char>(window[2].glyphs[q]));
                        h.aspect_glyph = std::string(1, static_cast<char>(set.glyph[a]));
                        out.push_back({t, hit_text(s, h), "moon", glyph_name(h.body_2), "A"});
                    }
                }
            }
        }
    }
    s.engine = kept;
    std::stable_sort(out.begin(), out.end(),
                     [](const Phenomenon& a, const Phenomenon& b) { return a.jd < b.jd; });
    return out;
}

} // namespace celestark
