#include "screens/predictive_screen.h"

#include "predict/hit_text.h"
#include "predict/predictive_controls.h"
#include "screens/chart_commands.h"
#include "screens/event_checks.h"
#include "screens/event_input.h"
#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/option_store.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <vector>

namespace celestark {

namespace {

bool one_of(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The flag of a body control without its "t_" or "c_", or empty for another control.
std::string_view body_of(std::string_view name) {
    if (name.size() > 2 && (name.substr(0, 2) == "t_" || name.substr(0, 2) == "c_"))
        return name.substr(2);
    return {};
}

// The world view buttons, in the order the run tests them.
std::string chosen_view(const PredictiveParameters& p) {
    for (const char* v : {"geo_helio", "helio", "lemniscate", "hermetic"})
        if (p.on(v)) return v;
    return "geo";
}

bool geo_helio_option(Session& s) {
    if (!s.stores) return true;
    return read_option(s, store::general_options_table, "option_geo_hel").as_int() != 0;
}

// Whether the calculation options put a body in the lists at all.
bool calculated(const Session& s, std::string_view body) {
    const ChartSettings& c = s.chart;
    if (body == "node") return c.moon_node != 0;
    if (body == "perigee") return c.moon_peri != 0;
    if (body == "helio_nodes" || body == "helio_perihelions") return c.helio_elem != 0;
    if (body == "chiron") return c.chiron != 0;
    if (body == "asteroids") return c.asteroids != 0;
    if (body == "parts") return c.part_of_fortune != 0;
    if (body == "stars") return c.stars_in_charts != 0;
    return true;
}

// Whether a world view has a body (the calculation options aside).
bool view_has_body(std::string_view view, std::string_view body) {
    const bool helio_element = body == "helio_nodes" || body == "helio_perihelions";
    if (view == "geo" || view == "hermetic") return body != "earth" && !helio_element;
    if (view == "geo_helio") return !helio_element;
    if (view == "lemniscate")
        return !helio_element &&
               !one_of(body, {"moon", "node", "perigee", "ascendant", "mid_heaven"});
    // Heliocentric: the Earth and the planets, the elements of the planets' orbits.
    return !one_of(body, {"sun", "moon", "node", "perigee", "ascendant", "mid_heaven"});
}

// Whether a world view can search for a content.
bool view_has_content(std::string_view view, std::string_view content) {
    if (one_of(content, {"aspects", "orb", "recur"})) return true;
    if (view == "geo") return true;
    if (view == "hermetic") return content != "retro";
    if (view == "geo_helio") return one_of(content, {"houses", "signs"});
    if (view == "lemniscate") return one_of(content, {"constellations", "retro"});
    return content == "constellations"; // helio
}

bool houses_calculated(const Session& s) {
    return s.chart.house_system != "None" && s.chart.house_system != "Asc. MC only";
}

std::string& text_at(EventRow& row, int column) {
    return row[static_cast<std::size_t>(column)];
}

bool digits(std::string_view t) {
    return !t.empty() && std::all_of(t.begin(), t.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c)) != 0;
    });
}

// "13:05" (seconds may follow) into the hour, minutes and seconds of a row.
bool read_time(const std::string& text, EventRow& row) {
    const std::string t = trim(text);
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (true) {
        const std::size_t colon = t.find(':', start);
        parts.push_back(t.substr(start, colon - start));
        if (colon == std::string::npos) break;
        start = colon + 1;
    }
    if (parts.size() < 2 || parts.size() > 3) return false;
    for (const std::string& p : parts)
        if (!digits(p)) return false;
    const int h = std::stoi(parts[0]), m = std::stoi(parts[1]);
    const int sec = parts.size() == 3 ? std::stoi(parts[2]) : 0;
    if (h > 23 || m > 59 || sec > 59) return false;
    text_at(row, col::hours) = std::to_string(h);
    text_at(row, col::mins) = std::to_string(m);
    text_at(row, col::secs) = std::to_string(sec);
    return true;
}

// "15E00": degrees, E or W, minutes.
bool read_meridian(const std::string& text, EventRow& row) {
    const std::string t = to_upper(trim(text));
    const std::size_t at = t.find_first_of("EW");
    if (at == std::string::npos) return false;
    const std::string deg = t.substr(0, at), min = t.substr(at + 1);
    if (!digits(deg) || !(min.empty() || digits(min))) return false;
    text_at(row, col::med_deg) = std::to_string(std::stoi(deg));
    text_at(row, col::med_ew) = t.substr(at, 1);
    text_at(row, col::med_min) = min.empty() ? "0" : std::to_string(std::stoi(min));
    return true;
}

// The moment as the input window would hold it: the active event's name and place, the row's
// date, time and meridian; checked as an event is. False after the input errors were shown.
bool moment_input(Session& s, const Hit& hit, const RowMoment& m, EventInput& in,
                  MessageSink& sink) {
    const int active = s.event_slots.active_event;
    slot_to_screen(s.event_slots, active, in);
    in.event_bookmark.clear();
    EventRow& c = in.cells;
    text_at(c, col::bookmark).clear();
    const std::string first = trim(c[col::firstname]);
    text_at(c, col::firstname) = moment_prefix(s) + (first.empty() ? "" : " " + first);
    text_at(c, col::event) = moment_world_view(s, hit);
    text_at(c, col::day) = trim(m.day);
    text_at(c, col::month) = trim(m.month);
    text_at(c, col::year) = trim(m.year);
    text_at(c, col::msecs) = "0";
    in.event_msecs = "0";
    bool ok = true;
    if (!read_time(m.time, c)) {
        sink.input_error("TIME - Invalid entry - Enter hours and minutes as 13:05");
        ok = false;
    }
    if (!read_meridian(m.meridian, c)) {
        sink.input_error("S.T. MERIDIAN - Invalid entry - Enter degrees, E or W and minutes as "
                         "15E00");
        ok = false;
    }
    text_at(c, col::lz) = "M";
    text_at(c, col::dst) = "0";
    text_at(c, col::time_zone) = s.predictive.zone_code;
    if (m.different_place) {
        text_at(c, col::place) = m.place;
        text_at(c, col::lat_deg) = trim(m.lat_deg);
        text_at(c, col::lat_ns) = to_upper(trim(m.lat_ns));
        text_at(c, col::lat_min) = trim(m.lat_min);
        text_at(c, col::lat_sec) = "0";
        text_at(c, col::long_deg) = trim(m.long_deg);
        text_at(c, col::long_ew) = to_upper(trim(m.long_ew));
        text_at(c, col::long_min) = trim(m.long_min);
        text_at(c, col::long_sec) = "0";
    }
    for (int e = col::epoch_place; e <= col::epoch_msecs; ++e)
        text_at(c, e) = std::string(event_columns_table[static_cast<std::size_t>(e)].null_value);
    text_at(c, col::epoch_exists) = "N";
    in.event_epoch_exists = "N";
    in.event_epoch_msecs = "0";
    in.event_dirty = true;
    const bool fields_ok = check_event_fields(in, sink);
    if (!ok && fields_ok) sink.show_input_errors();
    return ok && fields_ok;
}

} // namespace

bool PredictiveScreen::open(Session& s, const std::string& mode, MessageSink& sink) {
    if (!active_event_present(s, sink)) return false;
    params_ = predictive_defaults(s, mode);
    apply_rules(s);
    return true;
}

std::string PredictiveScreen::set(Session& s, std::string_view name, std::string_view value) {
    const std::string why = set_predictive_control(params_, name, value);
    if (why.empty()) apply_rules(s);
    return why;
}

void PredictiveScreen::apply_rules(Session& s) {
    PredictiveParameters& p = params_;
    geo_helio_allowed_ = geo_helio_option(s);
    const auto clear = [&](const std::string& name) {
        if (p.flags.count(name)) p.flags[name] = 0;
    };
    // A world view the options do not offer gives way to the geocentric one.
    if (p.on("geo_helio") && !geo_helio_allowed_) set_predictive_control(p, "geo", "1");
    const std::string view = chosen_view(p);
    if (view == "lemniscate") {
        clear("t_moon");
        clear("c_moon");
    }
    if (!houses_calculated(s)) clear("houses");
    for (const char* body : {"node", "perigee", "helio_nodes", "helio_perihelions", "chiron",
                             "asteroids", "parts", "stars"})
        if (!calculated(s, body)) {
            clear(std::string("t_") + body);
            clear(std::string("c_") + body);
        }
    if (p.mode == "P") {
        // Primary directions have no second type.
        if (p.on("pr_primary") && p.on("lifetime")) set_predictive_control(p, "prenatal", "1");
        // The transits of a progressed chart look for recurrences and not for aspects to the
        // event chart; the normal type the other way round.
        if (p.on("lifetime"))
            clear("pr_event");
        else
            clear("recur");
    }
}

bool PredictiveScreen::frame_shown(std::string_view group) const {
    const std::string& m = params_.mode;
    if (one_of(group, {"Biography", "Direction", "Time ratio", "Projection"})) return m == "B";
    if (group == "Transits") return m == "T";
    if (one_of(group, {"Progression", "Progression direction", "Progressions"})) return m == "P";
    if (group == "Type") return m != "T";
    return true;
}

ControlState PredictiveScreen::state(const Session& s, std::string_view name) const {
    ControlState st;
    const PredictiveControl* c = find_predictive_control(name);
    if (!c) {
        st.shown = st.enabled = false;
        return st;
    }
    const PredictiveParameters& p = params_;
    const std::string& mode = p.mode;
    st.caption = c->caption;
    st.shown = frame_shown(c->group);
    if (mode == "P") {
        if (name == "prenatal") st.caption = "Normal";
        if (name == "lifetime") st.caption = "Transits to Progressed Ch.";
        if (name == "pr_progressed" && p.on("lifetime"))
            st.caption = "Transits to Progressed Chart";
    }
    const std::string view = chosen_view(p);
    if (const std::string_view body = body_of(name); !body.empty()) {
        const bool moving = name[0] == 't';
        st.enabled = view_has_body(view, body) && calculated(s, body);
        // Only the progressed angles move.
        if (moving && (body == "ascendant" || body == "mid_heaven"))
            st.enabled = st.enabled && mode == "P";
        return st;
    }
    if (one_of(name, {"aspects", "orb", "recur", "houses", "signs", "constellations", "retro",
                      "eclipses"})) {
        st.enabled = view_has_content(view, name);
        if (name == "houses") st.enabled = st.enabled && houses_calculated(s);
        if (name == "signs") st.enabled = st.enabled && s.chart.zodiac == "Tropical";
        if (name == "recur" && mode == "P") st.enabled = p.on("lifetime");
        return st;
    }
    if (name == "geo_helio") st.enabled = geo_helio_allowed_;
    if (name == "lifetime" && mode == "P") st.enabled = !p.on("pr_primary");
    if (name == "pr_event") st.enabled = !p.on("lifetime");
    return st;
}

std::string PredictiveScreen::first_date_field(Session& s) {
    return read_input_options(s).day_first ? "start_day" : "start_month";
}

RowMoment row_moment(const Session& s, const Hit& hit) {
    const PredictiveRun& r = s.predictive;
    const std::string& mode = s.predictive_params.mode;
    const bool stepped = mode != "T" && r.ab_prenatal;
    const ReportDate d = report_date(s, stepped ? hit.date : hit.life_date);
    RowMoment m;
    // "1987-03-14", the year perhaps negative.
    const std::size_t last = d.date.rfind('-');
    const std::size_t middle = d.date.rfind('-', last - 1);
    m.year = d.date.substr(0, middle);
    m.month = std::to_string(std::stoi(d.date.substr(middle + 1, last - middle - 1)));
    m.day = std::to_string(std::stoi(d.date.substr(last + 1)));
    m.time = d.time;
    const double degrees = std::fabs(r.zone_hours) * 15;
    const long minutes = std::lround(degrees * 60);
    m.meridian =
        std::to_string(minutes / 60) + (r.zone_hours > 0 ? "E" : "W") + two_digits(minutes % 60);
    const EventRow& e = s.event_slots[s.event_slots.active_event];
    m.place = trim(e[col::place]);
    m.lat_deg = trim(e[col::lat_deg]);
    m.lat_ns = trim(e[col::lat_ns]);
    m.lat_min = trim(e[col::lat_min]);
    m.long_deg = trim(e[col::long_deg]);
    m.long_ew = trim(e[col::long_ew]);
    m.long_min = trim(e[col::long_min]);
    m.describe = d.date + " " + d.time + "   " + hit_text(s, hit);
    return m;
}

std::string moment_prefix(const Session& s) {
    const std::string& mode = s.predictive_params.mode;
    const bool normal = s.predictive.ab_prenatal;
    if (mode == "B") return normal ? "Prenatal AB:" : "Lifetime AB:";
    if (mode == "P") return normal ? "Progressed:" : "Trans. of Prog.:";
    return "Transit:";
}

std::string moment_world_view(const Session& s, const Hit& hit) {
    const std::string& view = s.predictive.choices.world_view;
    if (view == "Heliocentric" || view == "Lemnicentric") return view;
    // The rows of a Geo/Helio run carry the list of the moving body after its glyph.
    if (view == "Geo/Helio")
        return !hit.body_1.empty() && hit.body_1.back() == 'H' ? "Helio/Geo" : "Geo/Helio";
    return "Geocentric";
}

bool save_row_moment(Session& s, const Hit& hit, const RowMoment& m, MessageSink& sink) {
    EventInput in;
    if (!moment_input(s, hit, m, in, sink)) return false;
    if (!s.stores || !s.stores->event_table.is_open()) {
        sink.message(product_word, "No event table is open - the event cannot be stored",
                     MessageIcon::exclamation);
        return false;
    }
    EventTable table{s.stores->event_table, s.event_store.event_index_name};
    return save_event(in, table, sink) == SaveResult::saved;
}

bool display_row_moment(Session& s, const Hit& hit, const RowMoment& m, MessageSink& sink) {
    EventInput in;
    if (!moment_input(s, hit, m, in, sink)) return false;
    // The double chart of the run's event inside and the row's moment outside: a transit, a
    // progressed or a biography chart by the mode.
    constexpr int moment_row = slot::work + 1;
    copy_screen_to_slot(in, s.event_slots, moment_row);
    const std::string view = moment_world_view(s, hit);
    const std::string& mode = s.predictive_params.mode;
    DrawingState& d = s.drawing;
    d.inner_event = d.working_event = s.event_slots.active_event;
    d.outer_event = moment_row;
    d.chart_kind = mode == "B" || mode == "P" ? mode : "T";
    d.prenatal_biography = s.predictive.ab_prenatal;
    d.transits_over = false;
    d.progression_kind.clear();
    d.progressed_base = 0;
    if (mode == "P") {
        s.event_slots[moment_row][col::event] = "Progressed";
        d.progression_kind = s.predictive.choices.progression;
        d.progressed_base = s.event_slots.active_event;
    }
    if (view == "Heliocentric") {
        d.screen_page = "helio_double";
        s.chart.world_view = "Heliocentric";
    } else if (view == "Lemnicentric") {
        d.screen_page = "lemni_double";
        s.chart.world_view = "Lemnicentric";
    } else if (view == "Geo/Helio" || view == "Helio/Geo") {
        d.screen_page = view == "Geo/Helio" ? "geo_helio_double" : "helio_geo_double";
        s.chart.world_view = "Geo/Helio";
    } else {
        d.screen_page = "geo_double";
        s.chart.world_view =
            s.predictive.choices.world_view == "Tychonic" ? "Tychonic" : "Geocentric";
    }
    d.printing = false;
    select_zodiac(s, sink);
    // The moment is fixed by its row: no stepping.
    d.allow_stepping = d.show_step_panel = false;
    d.stepping_on = false;
    d.chart_calling = "ab_events";
    return true;
}

} // namespace celestark
