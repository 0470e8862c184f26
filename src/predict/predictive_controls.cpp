#include "predict/predictive_controls.h"

#include "session/calendar.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "session/zones.h"
#include "store/option_schema.h"
#include "store/option_store.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <deque>

namespace celestark {

namespace {

using K = ControlKind;

// The bodies of the two frames, in the order of the screen.
struct BodyControl {
    const char* flag;
    const char* caption;
    bool moving, radical;
    bool starts_on;
};
constexpr BodyControl body_controls[] = {
    {"sun", "Sun", true, true, true},
    {"moon", "Moon", true, true, true},
    {"mercury", "Mercury", true, true, true},
    {"venus", "Venus", true, true, true},
    {"mars", "Mars", true, true, true},
    {"jupiter", "Jupiter", true, true, true},
    {"saturn", "Saturn", true, true, true},
    {"uranus", "Uranus", true, true, true},
    {"neptune", "Neptune", true, true, true},
    {"pluto", "Pluto", true, true, true},
    {"node", "Node", true, true, false},
    {"perigee", "Perigee", true, true, false},
    {"ascendant", "Ascendant", true, true, false},
    {"mid_heaven", "Mid Heaven", true, true, false},
    {"earth", "Earth", true, true, false},
    {"chiron", "Chiron", true, true, false},
    {"asteroids", "Asteroids", true, true, false},
    {"parts", "Parts", false, true, false},
    {"stars", "Stars", false, true, false},
    {"helio_nodes", "Helio Nodes", false, true, false},
    {"helio_perihelions", "Helio Perihelions", false, true, false},
};

std::vector<PredictiveControl> make_controls() {
    static std::deque<std::string> names; // the body controls' names, kept for their pointers
    std::vector<PredictiveControl> c = {
        {"aspects", "Aspects", K::check, "Contents", "1"},
        {"orb", "Orb entry and exit", K::check, "Contents", "0"},
        {"recur", "Recurrence of Aspects", K::check, "Contents", "0"},
        {"houses", "Ingresses to birth houses", K::check, "Contents", "0"},
        {"signs", "Ingresses to tropical signs", K::check, "Contents", "0"},
        {"constellations", "Ingresses to constellations", K::check, "Contents", "0"},
        {"retro", "Retrograde motion", K::check, "Contents", "0"},
        {"eclipses", "Sun and Moon Eclipses", K::check, "Contents", "0"},
        {"self", "No Cross Aspects", K::check, "Radical/aspected", "0"},
        {"geo", "GEOCENTRIC", K::option, "World view", "1"},
        {"hermetic", "TYCHONIC", K::option, "World view", "0"},
        {"geo_helio", "GEO/HELIO", K::option, "World view", "0"},
        {"helio", "HELIOCENTRIC", K::option, "World view", "0"},
        {"lemniscate", "LEMNICENTRIC", K::option, "World view", "0"},
        {"prenatal", "PRENATAL", K::option, "Type", "1"},
        {"lifetime", "LIFETIME", K::option, "Type", "0"},
        {"ab", "Astrological Biography", K::check, "Biography", "1"},
        {"epoch_transits", "Transits of Epoch Chart", K::check, "Biography", "0"},
        {"birth_transits", "Transits of Birth chart", K::check, "Biography", "0"},
        {"eb", "Epoch to birth", K::option, "Direction", "1"},
        {"be", "Birth to epoch", K::option, "Direction", "0"},
        {"bf", "Birth forward", K::option, "Direction", "0"},
        {"tr1", "Lunar month = 7 years", K::option, "Time ratio", "1"},
        {"tr2", "10 Lunar months = 71.6 yrs", K::option, "Time ratio", "0"},
        {"tr3", "Synodic month = 7 years", K::option, "Time ratio", "0"},
        {"tr4", "9 Synodic months = 71.6 yrs", K::option, "Time ratio", "0"},
        {"tr5", "9 Solar months = 71.6 yrs", K::option, "Time ratio", "0"},
        {"linear_time", "mean (linear)", K::option, "Projection", "1"},
        {"linear_angle", "true ", K::option, "Projection", "0"},
        {"transit_transit", "Transits to Transit Chart", K::check, "Transits", "0"},
        {"transit_event", "Transits to Event Chart", K::check, "Transits", "1"},
        {"pr_secondary", "Secondary", K::option, "Progression", "1"},
        {"pr_primary", "Primary", K::option, "Progression", "0"},
        {"pr_solar_arc", "Solar Arc", K::option, "Progression", "0"},
        {"pr_od", "OD (one degree)", K::option, "Progression", "0"},
        {"pr_forward", "Forward", K::option, "Progression direction", "1"},
        {"pr_backward", "Backward", K::option, "Progression direction", "0"},
        {"pr_progressed", "Aspects in Progressed Chart", K::check, "Progressions", "0"},
        {"pr_event", "Aspects to Event Chart", K::check, "Progressions", "1"},
        {"start_day", "Start day", K::text, "Span", ""},
        {"start_month", "Start month", K::text, "Span", ""},
        {"start_year", "Start year", K::text, "Span", ""},
        {"end_day", "End day", K::text, "Span", ""},
        {"end_month", "End month", K::text, "Span", ""},
        {"end_year", "End year", K::text, "Span", ""},
        {"time_zone", "Time zone", K::text, "Span", "GMT +0     0"},
        {"output_format", "Output format", K::text, "Span", "1 Column"},
        {"aspect_set", "Aspect set", K::text, "Span", ""},
    };
    for (const BodyControl& b : body_controls)
        for (int side = 0; side < 2; ++side) {
            if (side == 0 ? !b.moving : !b.radical) continue;
            names.push_back((side == 0 ? "t_" : "c_") + std::string(b.flag));
            c.push_back({names.back().c_str(), b.caption, K::check,
                         side == 0 ? "Transiting/aspecting" : "Radical/aspected",
                         b.starts_on ? "1" : "0"});
        }
    return c;
}

bool blank(const std::string& text) {
    return trim(text).empty();
}

bool whole_number(const std::string& text, long& value) {
    const std::string t = trim(text);
    if (t.empty()) return false;
    std::size_t i = t[0] == '-' ? 1 : 0;
    if (i == t.size()) return false;
    for (std::size_t k = i; k < t.size(); ++k)
        if (!std::isdigit(static_cast<unsigned char>(t[k]))) return false;
    value = std::stol(t);
    return true;
}

} // namespace

const std::vector<PredictiveControl>& predictive_controls() {
    static const std::vector<PredictiveControl> controls = make_controls();
    return controls;
}

const PredictiveControl* find_predictive_control(std::string_view name) {
    for (const PredictiveControl& c : predictive_controls())
        if (name == c.name) return &c;
    return nullptr;
}

const std::vector<std::string>& predictive_zone_rows() {
    static const std::vector<std::string> rows = [] {
        std::vector<std::string> out;
        // Each standard zone, then its summer time: the trigraph, the standard hours east of
        // Greenwich, the hour of summer time.
        for (const Zone& z : zones)
            for (int summer = 0; summer < 2; ++summer) {
                char text[32];
                const double east = -z.hours_west;
                std::snprintf(text, sizeof text, "%s %s%g     %d",
                              std::string(summer ? z.dst : z.standard).c_str(),
                              east < 0 ? "-" : "+", std::fabs(east), summer);
                out.push_back(text);
            }
        return out;
    }();
    return rows;
}

const std::vector<std::string>& predictive_output_formats() {
    static const std::vector<std::string> formats = {
        "1 Column", "2 Columns", "3 Columns", "4 Columns", "5 Columns", "6 Columns", "8 Columns"};
    return formats;
}

PredictiveParameters predictive_defaults(Session& s, const std::string& mode) {
    PredictiveParameters p;
    p.mode = mode;
    for (const PredictiveControl& c : predictive_controls()) {
        if (c.kind == ControlKind::text)
            p.texts[c.name] = c.start;
        else
            p.flags[c.name] =
                std::string_view(c.start) == "1"
                    ? static_cast<std::int16_t>(c.kind == ControlKind::option ? -1 : 1)
                    : std::int16_t{0};
    }
    // The span: from the active event's date to ten years on.
    const EventRow& row = s.event_slots[s.event_slots.active_event];
    const std::string day = trim(row[col::day]), month = trim(row[col::month]),
                      year = trim(row[col::year]);
    p.texts["start_day"] = day.empty() ? "1" : day;
    p.texts["start_month"] = month.empty() ? "1" : month;
    p.texts["start_year"] = year.empty() ? "2000" : year;
    p.texts["end_day"] = p.texts["start_day"];
    p.texts["end_month"] = p.texts["start_month"];
    p.texts["end_year"] = std::to_string(text_to_i16(p.texts["start_year"]) + 10);
    if (s.stores)
        p.texts["aspect_set"] =
            trim(read_option(s, store::chart_options_table,
                             mode == "B" ? "aspect_set_biographies" : "aspect_set_transits")
                     .as_text());
    if (p.texts["aspect_set"].empty()) p.texts["aspect_set"] = "Standard";
    return p;
}

std::string set_predictive_control(PredictiveParameters& p, std::string_view name,
                                   std::string_view value) {
    const PredictiveControl* c = find_predictive_control(name);
    if (!c) return "there is no control '" + std::string(name) + "' on the screen";
    if (c->kind == ControlKind::text) {
        p.texts[c->name] = std::string(value);
        return {};
    }
    if (value != "1" && value != "0")
        return "the control '" + std::string(name) + "' takes 1 or 0, not '" + std::string(value) +
               "'";
    const bool on = value == "1";
    if (c->kind == ControlKind::check) {
        p.flags[c->name] = on ? 1 : 0;
        return {};
    }
    // An option button chosen clears the others of its group; one cleared leaves them.
    if (on)
        for (const PredictiveControl& other : predictive_controls())
            if (other.kind == ControlKind::option && std::string_view(other.group) == c->group)
                p.flags[other.name] = 0;
    p.flags[c->name] = on ? -1 : 0;
    return {};
}

bool validate_predictive_screen(const PredictiveParameters& p, std::string_view calendar,
                                MessageSink& sink) {
    bool ok = true;
    const auto fail = [&](const char* line) {
        sink.input_error(line);
        ok = false;
    };
    const std::vector<std::string>& zones = predictive_zone_rows();
    if (std::find(zones.begin(), zones.end(), p.text("time_zone")) == zones.end())
        fail("TIME ZONE ENTRY INVALID - Only the pre-set values can be used");
    struct Date {
        const char* day;
        const char* month;
        const char* year;
        const char* day_line;
        const char* month_line;
        const char* year_lines[3];
        const char* length_line;
    };
    static constexpr Date dates[2] = {{"start_day",
                                       "start_month",
                                       "start_year",
                                       "START DAY OF THE MONTH - Invalid entry ",
                                       "START MONTH - Invalid entry ",
                                       {"START YEAR - Cannot be left blank or with only spaces ",
                                        "             0 and negative years are allowed",
                                        "             NOTE: enter for example year -35 for 36BC"},
                                       "START DATE - Invalid number of days for the month"},
                                      {"end_day",
                                       "end_month",
                                       "end_year",
                                       "END DAY OF THE MONTH - Invalid entry ",
                                       "END MONTH - Invalid entry ",
                                       {"END YEAR - Cannot be left blank or with only spaces ",
                                        "           0 and negative years are allowed",
                                        "           NOTE: enter for example year -35 for 36BC"},
                                       "END DATE - Invalid number of days for the month"}};
    for (const Date& d : dates) {
        long day = 0, month = 0, year = 0;
        const bool day_ok = whole_number(p.text(d.day), day) && day >= 1 && day <= 31;
        if (!day_ok) fail(d.day_line);
        const bool month_ok = whole_number(p.text(d.month), month) && month >= 1 && month <= 12;
        if (!month_ok) fail(d.month_line);
        const bool year_ok = !blank(p.text(d.year)) && whole_number(p.text(d.year), year);
        if (!year_ok)
            for (const char* line : d.year_lines) fail(line);
        if (day_ok && month_ok && year_ok &&
            day > days_in_month(static_cast<int>(month), static_cast<int>(year), calendar))
            fail(d.length_line);
    }
    if (!ok) sink.show_input_errors();
    return ok;
}

RunChoices read_predictive_parameters(const PredictiveParameters& p) {
    RunChoices c;
    c.aspects = p.on("aspects");
    c.orb = p.on("orb");
    c.recur = p.on("recur");
    c.houses = p.on("houses");
    c.signs = p.on("signs");
    c.constellations = p.on("constellations");
    c.retro = p.on("retro");
    c.eclipses = p.on("eclipses");
    c.self = p.on("self");
    // The run's own world view, tested in this order.
    c.world_view = "Geocentric";
    if (p.on("geo_helio"))
        c.world_view = "Geo/Helio";
    else if (p.on("helio"))
        c.world_view = "Heliocentric";
    else if (p.on("lemniscate"))
        c.world_view = "Lemnicentric";
    else if (p.on("hermetic"))
        c.world_view = "Tychonic";
    const std::string& m = p.mode;
    c.pass_moving = (m == "B" && p.on("ab")) || (m == "T" && p.on("transit_transit")) ||
                    (m == "P" && p.on("pr_progressed"));
    c.pass_epoch = m == "B" && p.on("epoch_transits");
    c.pass_birth = (m == "B" && p.on("birth_transits")) || (m == "T" && p.on("transit_event")) ||
                   (m == "P" && p.on("pr_event"));
    if (m == "P") {
        if (p.on("pr_secondary"))
            c.progression = "Secondary";
        else if (p.on("pr_primary"))
            c.progression = "Primary";
        else if (p.on("pr_solar_arc"))
            c.progression = "Solar Arc";
        else if (p.on("pr_od"))
            c.progression = "OD";
    }
    return c;
}

std::string body_flag(unsigned char glyph) {
    if (glyph >= glyph::sun && glyph <= glyph::earth)
        return std::string(body_words[glyph - glyph::sun]);
    switch (glyph) {
    case glyph::north_node:
    case glyph::south_node:
        return "node";
    case glyph::perigee:
    case glyph::apogee:
        return "perigee";
    case glyph::ascendant:
    case 'A':
        return "ascendant";
    case glyph::midheaven:
    case 'M':
        return "mid_heaven";
    case glyph::chiron:
        return "chiron";
    // The asteroids, and the far bodies beside them, share one flag.
    case glyph::ceres:
    case glyph::pallas:
    case glyph::vesta:
    case glyph::juno:
    case glyph::quaoar:
    case glyph::sedna:
        return "asteroids";
    case glyph::part_of_fortune:
    case glyph::part_of_chiron:
        return "parts";
    default:
        return {};
    }
}

} // namespace celestark
