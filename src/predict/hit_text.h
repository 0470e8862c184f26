#pragma once
// A row of a predictive report as text: what the page prints in its columns after the dates,
// with the symbol codes of the bodies, signs and aspects.
#include "session/predictive_state.h"

#include <string>

namespace celestark {

struct Session;

// The date and time of a moment in the report's zone, on the event's calendar: "1987-03-14" and
// "13:05".
struct ReportDate {
    std::string date, time;
};
ReportDate report_date(const Session& s, double jd);

// "Time from Event" of the transit report: whole years with "y" and months with "m", "-" before
// the event.
std::string time_from_event(const Session& s, double jd);

// The age at a life date: years and months, as the biography and progression reports show it.
std::string age_text(const Session& s, double jd);

// The moving body, the phenomenon and the second body or place: "Planet 1", "Planet 2" and
// "Phenomena" of the page, joined by two spaces.
struct RowColumns {
    std::string planet_1, phenomenon, planet_2;
};
RowColumns hit_columns(const Session& s, const Hit& h, bool narrow);
std::string hit_text(const Session& s, const Hit& h);

} // namespace celestark
