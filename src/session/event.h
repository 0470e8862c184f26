#pragma once
// Events and the event slots: 22 rows of 55 text cells. Every cell is text, also the numeric ones;
// the calculation reads a cell with the lenient text-to-number rule each time.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace celestark {

inline constexpr int event_rows = 22;
inline constexpr int event_columns = 55;

using EventRow = std::array<std::string, event_columns>;

// Rows of the slot table.
namespace slot {
inline constexpr int first_user = 1, last_user = 4; // Event 1 to Event 4
inline constexpr int work = 5;                      // the usual work row; 6 to 10 serve comparisons
inline constexpr int last_work = 10;
inline constexpr int epoch_offset = 16; // the derived epoch row of user slot n is n + 16
inline constexpr int default_event = 21;
} // namespace slot

// Columns of an event row.
namespace col {
enum : int {
    bookmark = 0,
    event,
    version,
    title,
    surname,
    firstname,
    place,
    lat_deg,
    lat_ns,
    lat_min,
    lat_sec,
    long_deg,
    long_ew,
    long_min,
    long_sec,
    day,
    month,
    year,
    gj,
    hours,
    mins,
    secs,
    msecs,
    time_zone,
    lz,
    med_deg,
    med_ew,
    med_min,
    dst,
    epoch_place,
    epoch_lat_deg,
    epoch_lat_ns,
    epoch_lat_min,
    epoch_lat_sec,
    epoch_long_deg,
    epoch_long_ew,
    epoch_long_min,
    epoch_long_sec,
    epoch_day,
    epoch_month,
    epoch_year,
    epoch_hours,
    epoch_mins,
    epoch_secs,
    epoch_msecs,
    moon_on_asc,
    source,
    group,
    reference,
    comments,
    epoch_exists,
    search_date,
    epoch_months,
    epoch_moon,
    notused
};
} // namespace col

// One column: its stored field (empty for columns 0 and 54), what a null stored value becomes,
// its value in the built-in default event, and whether the input screen treats it as a number.
struct EventColumn {
    std::string_view field;
    std::string_view null_value;
    std::string_view default_value;
    bool numeric;
};
extern const std::array<EventColumn, event_columns> event_columns_table;

// Every load writes this constant into the last column.
inline constexpr std::string_view notused_text = "NOTUSED";

struct EventSlots {
    std::array<EventRow, event_rows> rows{};
    std::int16_t active_event = 1;       // 1 to 4
    std::int16_t active_epoch_event = 0; // active_event + 16 once a slot is chosen
    std::int16_t chart_event = 0;        // the row the next chart is calculated from

    EventRow& operator[](int row) { return rows.at(static_cast<std::size_t>(row)); }
    const EventRow& operator[](int row) const { return rows.at(static_cast<std::size_t>(row)); }
};

// The built-in event of row 21.
EventRow make_default_event();
// Fills the fixed rows at start: row 21 takes the default event; the user rows start empty.
void initialise_event_slots(EventSlots& slots);

// A user slot is empty while its year cell is empty.
bool slot_is_empty(const EventRow& row);

// Event 1 to Event 4 pressed: the slot becomes active, and its epoch row is rebuilt when the
// event has a stored epoch.
void select_slot(EventSlots& slots, int user_slot);

// Copies the source row to the target with the epoch place, date and Greenwich time moved over the
// event's own; the calendar is kept.
void derive_epoch_event(EventSlots& slots, int source_row, int target_row);

// Adds the signed amounts to the date and time of `row` and carries each unit into the next,
// milliseconds first and days last (31 January plus one month is 3 March in a common year).
void add_to_event_time(EventRow& row, int years, int months, int days, int hours, int minutes,
                       int seconds, int msecs);

// The moment as sortable text, e.g. "-000043/03/07 06:05:09" for 7 March 44 BC.
std::string search_date(std::string_view year, std::string_view month, std::string_view day,
                        std::string_view hours, std::string_view mins, std::string_view secs);

// The hour with a "pm" screen value folded in: 12 is added whenever the text is "pm" (so "12"
// with "pm" gives "24", as the stored rows have always held it).
std::string fold_pm(std::string_view hours, std::string_view am_pm);

} // namespace celestark
