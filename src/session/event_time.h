#pragma once
// Reduction of an event row's date, time and place to the moment the engine works from.
#include "session/event.h"

#include <cstdint>

namespace celestark {

struct EventMoment {
    double day_fraction = 0;     // hours, minutes, seconds and milliseconds as part of a day
    double latitude_deg = 0;     // north positive
    double longitude_deg = 0;    // west positive
    double greenwich_offset = 0; // days added to the civil time to reach Universal Time
    double event_jd = 0;         // Julian date of the moment, Universal Time
    int day_of_week_number = 1;  // 1 to 7, Monday = 1, of the civil date as entered
};

// Local mean time ("L", or any code other than "Z" and "M") is offset by the longitude; zone and
// meridian time by the meridian fields less daylight saving. The zone trigraph itself plays no
// part: a zone is only ever taken through its meridian fields.
EventMoment reduce_event_time(const EventRow& row);

} // namespace celestark
