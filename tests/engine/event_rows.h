#pragma once
// Event rows for engine tests.
#include "session/event.h"
#include "session/session.h"

#include <string>

namespace celestark::testing {

// A Greenwich-time event in user slot 1.
inline void set_event(Session& s, int day, int month, int year, int hours) {
    EventRow& r = s.event_slots[1];
    r = make_default_event();
    r[col::day] = std::to_string(day);
    r[col::month] = std::to_string(month);
    r[col::year] = std::to_string(year);
    r[col::gj] = "G";
    r[col::hours] = std::to_string(hours);
    r[col::lz] = "Z";
    r[col::med_deg] = "0";
    r[col::dst] = "0";
}

} // namespace celestark::testing
