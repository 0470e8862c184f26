#include "session/event_time.h"

#include "session/calendar.h"
#include "session/text.h"

namespace celestark {

EventMoment reduce_event_time(const EventRow& row) {
    const auto num = [&row](int c) { return text_to_number(row[static_cast<std::size_t>(c)]); };
    EventMoment m;
    m.day_fraction = (num(col::hours) + num(col::mins) / 60.0 + num(col::secs) / 3600.0 +
                      num(col::msecs) / 3600000.0) /
                     24.0;
    m.latitude_deg = num(col::lat_deg) + num(col::lat_min) / 60.0 + num(col::lat_sec) / 3600.0;
    if (row[col::lat_ns] == "S") m.latitude_deg = -m.latitude_deg;
    m.longitude_deg = num(col::long_deg) + num(col::long_min) / 60.0 + num(col::long_sec) / 3600.0;
    if (row[col::long_ew] == "E") m.longitude_deg = -m.longitude_deg;

    // The date goes through 16-bit integers, rounding a non-integer text.
    const int day = text_to_i16(row[col::day]);
    const int month = text_to_i16(row[col::month]);
    const int year = text_to_i16(row[col::year]);
    const std::string& gj = row[col::gj];
    m.day_of_week_number = day_of_week(julian_date(day, month, year, gj, 0.0));

    const std::string& lz = row[col::lz];
    if (lz != "Z" && lz != "M") {
        m.greenwich_offset = m.longitude_deg / 360.0;
    } else {
        double meridian_hours = (num(col::med_deg) + num(col::med_min) / 60.0) / 15.0;
        if (row[col::med_ew] == "E") meridian_hours = -meridian_hours;
        m.greenwich_offset = (meridian_hours - num(col::dst)) / 24.0;
    }
    m.event_jd = julian_date(day, month, year, gj, m.day_fraction + m.greenwich_offset);
    return m;
}

} // namespace celestark
