#pragma once
// The window `monthly`: the span of months, the calendar, the world view and whether the
// phenomena are printed, checked into what the monthly ephemeris prints.
#include "predict/ephemeris.h"
#include "session/messages.h"

#include <map>
#include <string>

namespace celestark {

struct Session;

struct MonthlyScreen {
    // start_month, start_year, end_month, end_year, g_j_monthly; the option buttons geo,
    // hermetic, helio, lemni and p_yes, p_no read "1" when chosen; the star calendar's aspect
    // sets geo_calender and helio_calender.
    std::map<std::string, std::string, std::less<>> values;
    // The star calendar rather than the monthly ephemeris.
    bool star_calendar = false;
    // The aspect set of the monthly ephemeris's phenomena, from the ephemeris options.
    std::string ephemeris_aspect_set = "Standard";
};
// The span of the active event's year (or the current one), Gregorian, geocentric, with phenomena;
// the aspect sets as stored.
MonthlyScreen monthly_defaults(Session& s, bool star_calendar);

// The checks of the fields, each fault a line of the input error list, and the calendar's own box;
// true with the request filled when the ephemeris may be printed. The star calendar's aspects are
// those of geo_calender in the geocentric and Tychonic views, of helio_calender in the others.
bool monthly_request(const MonthlyScreen& screen, MonthlyRequest& request, MessageSink& sink);

// The star calendar's aspect sets of the screen stored as the options star_calender_geo and
// star_calender_helio; a failure of the store is fatal. False when the fatal handler returned.
bool keep_star_calendar_sets(Session& s, const MonthlyScreen& screen);

} // namespace celestark
