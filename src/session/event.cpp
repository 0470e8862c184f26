#include "session/event.h"

#include "session/calendar.h"
#include "session/text.h"

#include <stdexcept>

namespace celestark {

// clang-format off
const std::array<EventColumn, event_columns> event_columns_table = {{
    {"", "", "", false},
    {"F_event", "Faulty", "Cruxificion", false},
    {"F_version", " ", " ", false},
    {"F_title", " ", " ", false},
    {"F_surname", "Faulty ", " ", false},
    {"F_firstname", " ", "Tidiola ", false},
    {"F_place", "NONE ", " ", false},
    {"F_lat_deg", "0", "31", true},
    {"F_lat_ns", "N", "N", false},
    {"F_lat_min", "0", "46", true},
    {"F_lat_sec", "0", "0", true},
    {"F_long_deg", "0", "35", true},
    {"F_long_ew", "W", "E", false},
    {"F_long_min", "0", "14", true},
    {"F_long_sec", "0", "0", true},
    {"F_day", "1", "3", true},
    {"F_month", "1", "4", true},
    {"F_year", "2000", "33", true},
    {"F_gj", "G", "J", false},
    {"F_hours", "0", "15", true},
    {"F_mins", "0", "0", true},
    {"F_secs", "0", "0", true},
    {"F_msecs", "0", "0", true},
    {"F_time_zone", "GMT", " ", false},
    {"F_lz", "Z", "L", false},
    {"F_med_deg", "0", "0", true},
    {"F_med_ew", "W", "W", false},
    {"F_med_min", "0", "0", true},
    {"F_dst", "0", "0", true},
    {"F_epoch_place", " ", " ", false},
    {"F_epoch_lat_deg", "0", "0", true},
    {"F_epoch_lat_ns", "N", "N", false},
    {"F_epoch_lat_min", "0", "0", true},
    {"F_epoch_lat_sec", "0", "0", true},
    {"F_epoch_long_deg", "0", "0", true},
    {"F_epoch_long_ew", "W", "W", false},
    {"F_epoch_long_min", "0", "0", true},
    {"F_epoch_long_sec", "0", "0", true},
    {"F_epoch_day", "1", "1", true},
    {"F_epoch_month", "1", "1", true},
    {"F_epoch_year", "2000", "2000", true},
    {"F_epoch_hours", "0", "0", true},
    {"F_epoch_mins", "0", "0", true},
    {"F_epoch_secs", "0", "0", true},
    {"F_epoch_msecs", "0", "0", true},
    {"F_moon_on_asc", " ", " ", false},
    {"F_source", " ", " ", false},
    {"F_group", " ", " ", false},
    {"F_reference", " ", " ", false},
    {"F_comments", " ", " ", false},
    {"F_epoch_exists", "N", "N", false},
    {"F_search_date", " ", " ", false},
    {"F_epoch_months", "10", "10", true},
    {"F_epoch_moon", " ", " ", false},
    {"", "", "NOTUSED", false},
}};
// clang-format on

EventRow make_default_event() {
    EventRow row;
    for (int c = 0; c < event_columns; ++c)
        row[static_cast<std::size_t>(c)] =
            event_columns_table[static_cast<std::size_t>(c)].default_value;
    return row;
}

void initialise_event_slots(EventSlots& slots) {
    for (auto& row : slots.rows) row.fill(std::string());
    slots[slot::default_event] = make_default_event();
    slots.active_event = 1;
    slots.active_epoch_event = 0;
    slots.chart_event = 0;
}

bool slot_is_empty(const EventRow& row) {
    return row[col::year].empty();
}

void select_slot(EventSlots& slots, int user_slot) {
    if (user_slot < slot::first_user || user_slot > slot::last_user)
        throw std::out_of_range("event slot outside 1 to 4");
    slots.active_event = static_cast<std::int16_t>(user_slot);
    slots.active_epoch_event = static_cast<std::int16_t>(user_slot + slot::epoch_offset);
    if (slots[user_slot][col::epoch_exists] == "Y")
        derive_epoch_event(slots, user_slot, slots.active_epoch_event);
}

void derive_epoch_event(EventSlots& slots, int source_row, int target_row) {
    const EventRow source = slots[source_row];
    EventRow& target = slots[target_row];
    target = source;
    // The epoch place, latitude, longitude and date stand 23 columns after the event's own...
    for (int c = col::place; c <= col::year; ++c)
        target[static_cast<std::size_t>(c)] = source[static_cast<std::size_t>(c + 23)];
    // ...and the epoch time 22 columns after the event's time.
    for (int c = col::hours; c <= col::msecs; ++c)
        target[static_cast<std::size_t>(c)] = source[static_cast<std::size_t>(c + 22)];
    // The epoch is in Greenwich time; the calendar stays the birth's.
    target[col::event] = "Epoch";
    target[col::time_zone] = "GMT";
    target[col::lz] = "Z";
    target[col::med_deg] = "0";
    target[col::med_ew] = "W";
    target[col::med_min] = "0";
    target[col::dst] = "0";
}

namespace {

// Carries `value` into `next` by `unit` until it lies in [low, low + unit).
void carry(int& value, int& next, int unit, int low) {
    while (value >= low + unit) {
        value -= unit;
        ++next;
    }
    while (value < low) {
        value += unit;
        --next;
    }
}

} // namespace

void add_to_event_time(EventRow& row, int years, int months, int days, int hours, int minutes,
                       int seconds, int msecs) {
    // Each cell goes through a 16-bit integer, as the amounts do.
    int year = text_to_i16(row[col::year]) + static_cast<std::int16_t>(years);
    int month = text_to_i16(row[col::month]) + static_cast<std::int16_t>(months);
    int day = text_to_i16(row[col::day]) + static_cast<std::int16_t>(days);
    int hour = text_to_i16(row[col::hours]) + static_cast<std::int16_t>(hours);
    int minute = text_to_i16(row[col::mins]) + static_cast<std::int16_t>(minutes);
    int second = text_to_i16(row[col::secs]) + static_cast<std::int16_t>(seconds);
    int msec = text_to_i16(row[col::msecs]) + static_cast<std::int16_t>(msecs);

    carry(msec, second, 1000, 0);
    carry(second, minute, 60, 0);
    carry(minute, hour, 60, 0);
    carry(hour, day, 24, 0);
    carry(month, year, 12, 1);

    const std::string& gj = row[col::gj];
    for (;;) {
        const int length = days_in_month(month, year, gj);
        if (day > length) {
            day -= length;
            if (++month > 12) {
                month = 1;
                ++year;
            }
        } else if (day < 1) {
            if (--month < 1) {
                month = 12;
                --year;
            }
            day += days_in_month(month, year, gj);
        } else {
            break;
        }
    }

    row[col::year] = std::to_string(clamp_i16(year));
    row[col::month] = std::to_string(month);
    row[col::day] = std::to_string(day);
    row[col::hours] = std::to_string(hour);
    row[col::mins] = std::to_string(minute);
    row[col::secs] = std::to_string(second);
    row[col::msecs] = std::to_string(msec);
}

std::string search_date(std::string_view year, std::string_view month, std::string_view day,
                        std::string_view hours, std::string_view mins, std::string_view secs) {
    std::string y = trim(year);
    std::string out;
    if (text_to_number(y) < 0) {
        y = "000000" + y.substr(1);
        out = "-" + y.substr(y.size() - 6);
    } else {
        y = "000000" + y;
        out = y.substr(y.size() - 6);
    }
    const auto two = [](std::string_view t) {
        std::string s = trim(t);
        return s.size() == 1 ? "0" + s : s;
    };
    return out + "/" + two(month) + "/" + two(day) + " " + two(hours) + ":" + two(mins) + ":" +
           two(secs);
}

std::string fold_pm(std::string_view hours, std::string_view am_pm) {
    if (am_pm != "pm") return std::string(hours);
    return std::to_string(text_to_i16(hours) + 12);
}

} // namespace celestark
