#include "screens/monthly_screen.h"

#include "session/session.h"
#include "session/text.h"
#include "store/option_schema.h"
#include "store/option_store.h"

#include <cstdlib>

namespace celestark {

namespace {

std::string value(const MonthlyScreen& m, const char* name) {
    const auto it = m.values.find(name);
    return it == m.values.end() ? std::string() : trim(it->second);
}

// A whole number, possibly negative, and nothing else.
bool whole(const std::string& text, int& out) {
    if (text.empty()) return false;
    char* end = nullptr;
    const long v = std::strtol(text.c_str(), &end, 10);
    if (*end != '\0' || v < -30000 || v > 30000) return false;
    out = static_cast<int>(v);
    return true;
}

} // namespace

MonthlyScreen monthly_defaults(Session& s, bool star_calendar) {
    MonthlyScreen m;
    m.star_calendar = star_calendar;
    std::string year = trim(s.event_slots[s.event_slots.active_event][col::year]);
    if (year.empty()) year = "2000";
    m.values = {{"start_month", "1"}, {"start_year", year}, {"end_month", "12"}, {"end_year", year},
                {"g_j_monthly", "G"}, {"geo", "1"},         {"hermetic", "0"},   {"helio", "0"},
                {"lemni", "0"},       {"p_yes", "1"},       {"p_no", "0"}};
    const auto stored = [&s](const char* option) {
        const std::string set = trim(read_option(s, store::chart_options_table, option).as_text());
        return set.empty() ? std::string("Standard") : set;
    };
    m.values["geo_calender"] = stored("star_calender_geo");
    m.values["helio_calender"] = stored("star_calender_helio");
    m.ephemeris_aspect_set = stored("aspect_set_ephemeris");
    return m;
}

bool monthly_request(const MonthlyScreen& m, MonthlyRequest& r, MessageSink& sink) {
    const std::string gj = to_upper(value(m, "g_j_monthly"));
    if (gj != "G" && gj != "J") {
        sink.message("CELESTARK", "Enter G for Gregorian or J for Julian date",
                     MessageIcon::information);
        return false;
    }
    bool ok = true;
    const auto line = [&](const char* text) {
        sink.input_error(text);
        ok = false;
    };
    int start_month = 0, start_year = 0, end_month = 0, end_year = 0;
    if (!whole(value(m, "start_month"), start_month) || start_month < 1 || start_month > 12)
        line("START MONTH - Invalid entry ");
    if (!whole(value(m, "start_year"), start_year)) {
        line("START YEAR - Cannot be left blank or with only spaces ");
        line("             0 and negative years are allowed");
        line("             NOTE: enter for example year -35 for 36BC");
    }
    if (!whole(value(m, "end_month"), end_month) || end_month < 1 || end_month > 12)
        line("END MONTH - Invalid entry ");
    if (!whole(value(m, "end_year"), end_year)) {
        line("END YEAR - Cannot be left blank or with only spaces ");
        line("           0 and negative years are allowed");
        line("           NOTE: enter for example year -35 for 36BC");
    }
    if (!ok) {
        sink.show_input_errors();
        return false;
    }
    r.first_month = start_month;
    r.first_year = start_year;
    r.last_month = end_month;
    r.last_year = end_year;
    r.gj = gj;
    r.world_view = value(m, "hermetic") == "1" ? "Tychonic"
                   : value(m, "helio") == "1"  ? "Heliocentric"
                   : value(m, "lemni") == "1"  ? "Lemnicentric"
                                               : "Geocentric";
    r.phenomena = value(m, "p_no") != "1";
    r.star_calendar = m.star_calendar;
    const bool geocentric = r.world_view == "Geocentric" || r.world_view == "Tychonic";
    r.aspect_set = !m.star_calendar ? m.ephemeris_aspect_set
                   : geocentric     ? value(m, "geo_calender")
                                    : value(m, "helio_calender");
    return true;
}

bool keep_star_calendar_sets(Session& s, const MonthlyScreen& m) {
    if (!s.stores) return true;
    RecordingSink quiet;
    const store::Outcome o =
        set_options(s, store::chart_options_table,
                    {{"star_calender_geo", store::Value(value(m, "geo_calender"))},
                     {"star_calender_helio", store::Value(value(m, "helio_calender"))}},
                    quiet);
    if (o == store::Outcome::ok) return true;
    session_fatal(s, "Monthly Aspect Sets-Lost Focus",
                  ck_text(69, static_cast<long>(o), std::string(store::describe(o)),
                          std::string(". ") + fatal_tail));
    return false;
}

} // namespace celestark
