#include "screens/planet_motion.h"

#include "engine/table_bodies.h"
#include "screens/chart_commands.h"
#include "session/calendar.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_sets.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <optional>

namespace celestark {

const std::vector<MotionViewChoice>& motion_views() {
    static const std::vector<MotionViewChoice> views = {
        {"motion_geo", MotionView::geo, "Plan"},
        {"motion_hel", MotionView::helio, "Helio"},
        {"motion_lem", MotionView::lemni, "Lemni"},
        {"motion_lem_3d", MotionView::lemni_3d, "Lemni 3D"},
    };
    return views;
}

const std::vector<MotionBody>& motion_bodies() {
    static const std::vector<MotionBody> bodies = {
        {"sun", glyph::sun, "Sun", true},
        {"moon", glyph::moon, "Moon", false},
        {"mercury", glyph::mercury, "Mercury", true},
        {"venus", glyph::venus, "Venus", true},
        {"earth", glyph::earth, "Earth", true},
        {"mars", glyph::mars, "Mars", true},
        {"vesta", glyph::vesta, "Vesta", true},
        {"pallas", glyph::pallas, "Pallas", true},
        {"ceres", glyph::ceres, "Ceres", true},
        {"juno", glyph::juno, "Juno", true},
        {"jupiter", glyph::jupiter, "Jupiter", false},
        {"saturn", glyph::saturn, "Saturn", false},
        {"chiron", glyph::chiron, "Chiron", false},
        {"uranus", glyph::uranus, "Uranus", false},
        {"neptune", glyph::neptune, "Neptune", false},
        {"pluto", glyph::pluto, "Pluto", false},
    };
    return bodies;
}

namespace {

// A whole number as typed: digits only, a minus first where allowed.
std::optional<int> whole(const std::string& typed, bool signed_allowed) {
    const std::string t = trim(typed);
    std::size_t i = 0;
    if (signed_allowed && !t.empty() && t[0] == '-') i = 1;
    if (i >= t.size() || t.size() - i > 5) return std::nullopt;
    for (std::size_t k = i; k < t.size(); ++k)
        if (!std::isdigit(static_cast<unsigned char>(t[k]))) return std::nullopt;
    return std::atoi(t.c_str());
}

// One date of the span: its lines added in order; the Julian date when it is good.
std::optional<double> check_date(const std::string& which, const std::string& indent,
                                 const std::string& day_text, const std::string& month_text,
                                 const std::string& year_text, const std::string& calendar,
                                 std::vector<std::string>& lines) {
    const auto day = whole(day_text, false);
    const auto month = whole(month_text, false);
    const bool day_ok = day && *day >= 1 && *day <= 31;
    const bool month_ok = month && *month >= 1 && *month <= 12;
    if (!day_ok) lines.push_back(which + " DAY - Invalid entry ");
    if (!month_ok) lines.push_back(which + " MONTH - Invalid entry ");
    std::optional<int> year;
    if (trim(year_text).empty()) {
        lines.push_back(which + " YEAR - Cannot be left blank or with only spaces ");
        lines.push_back(indent + "0 and negative years are allowed");
    } else {
        year = whole(year_text, true);
        if (!year) lines.push_back(which + " YEAR - Invalid entry ");
    }
    if (!day_ok || !month_ok || !year) return std::nullopt;
    if (*day > days_in_month(*month, *year, calendar)) {
        lines.push_back(which + " DATE - Invalid number of days for the month");
        return std::nullopt;
    }
    return julian_date(*day, *month, *year, calendar, 0);
}

std::string year_of(double jd, const std::string& calendar) {
    return year_text(date_from_julian(jd, calendar).year);
}

} // namespace

std::vector<std::string> motion_errors(const MotionInput& input, const std::string& calendar,
                                       double first_jd, double last_jd, bool needs_bodies,
                                       MotionSpan& span) {
    std::vector<std::string> lines;
    const auto start = check_date("START", "             ", input.start_day, input.start_month,
                                  input.start_year, calendar, lines);
    const auto end = check_date("END", "           ", input.end_day, input.end_month,
                                input.end_year, calendar, lines);
    const auto ticked = [&](const char* name) {
        return std::find(input.ticked.begin(), input.ticked.end(), name) != input.ticked.end();
    };
    if (start && end) {
        span = {*start, *end};
        if (*end < *start) lines.push_back("END DATE IS EARLIER THEN THE START DATE");
        const double years = (*end - *start) / 365.25;
        if (ticked("moon") && years > 2)
            lines.push_back("WITH THE MOON SELECTED THE MAXIMUM PERIOD IS 2 YEARS");
        bool held = false;
        for (const MotionBody& b : motion_bodies())
            held = held || (b.held_to_a_century && ticked(b.name));
        if (held && years > 100)
            lines.push_back(
                "ONLY THE PLANETS FROM JUPITER CAN BE USED WITH PERIODS GREATER THAN 100 YEARS");
        if (years > 2000) lines.push_back("THE MAXIMUM PERIOD IS 2000 YEARS");
        if ((first_jd != 0 || last_jd != 0) &&
            (std::min(*start, *end) < first_jd || std::max(*start, *end) > last_jd))
            lines.push_back("THE DATES MUST LIE BETWEEN THE YEARS " + year_of(first_jd, calendar) +
                            " AND " + year_of(last_jd, calendar) +
                            ", WHICH THE TABLES OF THE OUTER PLANETS COVER");
    }
    if (needs_bodies && input.ticked.empty()) lines.push_back("NO PLANET IS SELECTED");
    return lines;
}

bool motion_request(Session& s, const MotionInput& input, MotionView view, MessageSink& sink) {
    EventSlots& slots = s.event_slots;
    const int active = slots.active_event;
    if (!active_event_present(s, sink)) return false;
    const std::string calendar = trim(slots[active][col::gj]) == "J" ? "J" : "G";
    // The run reads the outer planets' table, which ends the session outside its dates: a
    // month's margin within them for the light time.
    double first = 0, last = 0;
    if (const BodyTables* tables = s.body_tables.get(); tables && tables->planets.loaded()) {
        first = tables->planets.first_date() + 31;
        last = tables->planets.last_date() - 31;
    }
    MotionSpan span;
    const std::vector<std::string> lines =
        motion_errors(input, calendar, first, last, view != MotionView::geo, span);
    if (!lines.empty()) {
        for (const std::string& line : lines) sink.input_error(line);
        sink.show_input_errors();
        return false;
    }
    DrawingState& d = s.drawing;
    d.printing = false;
    select_zodiac(s, sink);
    d.chart_calling = "chart";
    d.motion.start_jd = span.start_jd;
    d.motion.end_jd = span.end_jd;
    d.motion.three_d = view == MotionView::lemni_3d;
    d.motion.bodies.clear();
    for (const MotionBody& b : motion_bodies())
        if (std::find(input.ticked.begin(), input.ticked.end(), b.name) != input.ticked.end())
            d.motion.bodies.push_back(b.glyph);
    if (view == MotionView::geo) {
        // The plan at the start date: the event's time and place on that day, in the work row
        // that stepping moves on from.
        d.screen_page = "plan display";
        s.chart.world_view = "Geocentric";
        EventRow& row = slots[slot::work];
        row = slots[active];
        row[col::day] = trim(input.start_day);
        row[col::month] = trim(input.start_month);
        row[col::year] = trim(input.start_year);
        d.working_event = d.inner_event = slot::work;
        d.allow_stepping = d.show_step_panel = true;
        d.stepping_on = true;
        return true;
    }
    d.screen_page = "planets motion";
    s.chart.world_view = view == MotionView::helio ? "Heliocentric" : "Lemnicentric";
    d.working_event = d.inner_event = active;
    // The run has its own time: no stepping.
    d.allow_stepping = d.show_step_panel = d.stepping_on = false;
    return true;
}

} // namespace celestark
