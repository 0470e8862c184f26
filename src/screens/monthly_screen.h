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
    // hermetic, helio, lemni and p_yes, p_no read "1" when chosen.
    std::map<std::string, std::string, std::less<>> values;
};
// The span of the active event's year (or the current one), Gregorian, geocentric, with phenomena.
MonthlyScreen monthly_defaults(const Session& s);

// The checks of the fields, each fault a line of the input error list, and the calendar's own box;
// true with the request filled when the ephemeris may be printed.
bool monthly_request(const MonthlyScreen& screen, MonthlyRequest& request, MessageSink& sink);

} // namespace celestark
