#pragma once
// The event input window without its widgets: the digit test of a number, the light check of a
// field as it is left with the effects it has on other fields, the full check before anything is
// stored, and the window's commands over the screen's values, the session and a message sink.
#include "screens/event_input.h"
#include "session/messages.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace celestark {

struct Session;

// The global options that shape the window: its captions and which fields show.
struct InputOptions {
    bool day_first = true;        // option_date_format: day before month
    bool twelve_hour = true;      // option_clock_format: hours 0 to 12 with am/pm
    bool time_input_secs = false; // option_time_input_secs: the seconds field shows
    bool lat_long_secs = false;   // option_lat_long_secs: seconds of arc show
};
InputOptions read_input_options(Session& s);

// "Degs           Mins Secs" with seconds of arc, else "Degs           Mins".
std::string degree_caption(const InputOptions& options);
// "Day  Month Year" or "Month Day  Year".
std::string date_caption(const InputOptions& options);

// The entries of the editable lists: kinds of event, titles, and the zone trigraphs (standard,
// then daylight saving, then wartime; the wartime Baghdad entry reads "GGW", which the zone table
// does not know).
const std::vector<std::string>& event_kinds();
const std::vector<std::string>& person_titles();
const std::vector<std::string>& time_zone_entries();

// Tests each character of a typed number: a minus sign anywhere but first gives "Minus sign not
// allowed - Re-enter number", any other character than a digit or a minus "Illegal character -
// Re-enter number". Every character is tested, so both boxes may show. True when all passed.
bool check_digits(std::string_view text, MessageSink& sink);

// The light checks made as a field is left.
enum class FieldCheck {
    none,
    day,
    month,
    year,
    hours,
    minutes, // also seconds
    latitude,
    longitude,
    angle_359,
    north_south,
    east_west,
    time_code,
    calendar,
    am_pm,
    dst,
    time_zone,
};

// Runs one light check on `text`: an empty text passes when blank is allowed and otherwise gives
// "Entry cannot be left BLANK"; numbers go through `check_digits` and their range. Letters are
// compared in the case the check asks for and written back in it. True when the field may be left
// (a daylight saving outside 0 to 2 warns and passes).
bool check_field(FieldCheck check, std::string& text, bool blank_allowed, bool twelve_hour,
                 MessageSink& sink);

// A field of the window: its control name, its column (or `am_pm_column`), its light check and
// whether blank passes it; the epoch fields are shown only.
inline constexpr int am_pm_column = -1;
struct InputField {
    const char* name;
    int column;
    FieldCheck check;
    bool blank_allowed;
    bool read_only;
};
const std::vector<InputField>& input_fields();
const InputField* find_input_field(std::string_view name);
std::string& field_text(EventInput& input, const InputField& field);

// The time code decides which of the zone and meridian controls show.
enum class TimeMode { local, zone, meridian };
TimeMode time_mode(const EventInput& input);
inline constexpr std::array<const char*, 9> time_mode_controls = {
    "inp_med_deg", "inp_med_min",     "inp_med_ew",    "inp_dst",   "label_med",
    "label_dst",   "label_time_zone", "inp_time_zone", "time_zones"};
// Whether a control shows in a mode; controls outside the list above always do.
bool shown_in_mode(std::string_view control, TimeMode mode);

// The result of leaving a field: whether the check passed and, when it did, the control the
// cursor goes to (empty: on to the next field as usual).
struct LeaveResult {
    bool ok = true;
    std::string focus;
};
// The light check of the named field on the screen's text, with its effects: the 12-hour clock
// keeps 12 o'clock as 0; a new event's year brings the Julian calendar before 15 October 1582 and
// local time before 1848; the time code sets the mode; a known trigraph fills the meridian and the
// daylight saving.
LeaveResult leave_field(EventInput& input, std::string_view name, const InputOptions& options,
                        MessageSink& sink);

// A time code takes effect: local time empties the zone, meridian and daylight saving fields,
// which it hides; meridian time empties the zone. Returns the control the cursor goes to.
std::string apply_time_code(EventInput& input);

// Brings the hour to the window's clock: on the 12-hour clock an hour of the row (0 to 23, or 24
// for a stored "12 pm") becomes 0 to 12 with "am" or "pm"; on the 24-hour clock "pm" is folded in.
void fit_clock(EventInput& input, bool twelve_hour);

// The place's name, latitude and longitude in the nine cells from `place_column` (the event's
// own place or its epoch place): each failed rule adds its line to the input error list. True
// when all passed.
bool check_place_cells(EventRow& cells, int place_column, MessageSink& sink);

// The full check: every failed rule adds its line to the input error list, in order; when one
// failed, the list is shown and false returned. When all passed, blank places, meridians and
// optional texts take their defaults.
bool check_event_fields(EventInput& input, MessageSink& sink);

// The commands of the window. The stored table is the session's open event table.

// Opens on the active slot's event, or on a new event when that slot is empty.
void open_on_active_slot(Session& s, EventInput& input, const InputOptions& options);

// Leaving changed data: by `option_save_chart`, 0 does nothing, 1 (or `ask`) asks "UPDATE
// EVENT?" and a No goes on unsaved, any other value saves without asking. A save that fails its
// check or the store keeps the user on the screen: false.
bool check_event_changed(Session& s, EventInput& input, bool ask, MessageSink& sink);

// Save: the full check, then the store of the screen (an update, or an add for a new event).
bool save_input_event(Session& s, EventInput& input, MessageSink& sink);
// Add: the same as a new record, the stored key kept when the add fails.
bool add_input_event(Session& s, EventInput& input, MessageSink& sink);
// Delete: asks; on Yes deletes the stored record and clears the screen. Slots that came from the
// record keep their event but no longer its key.
bool delete_input_event(Session& s, EventInput& input, const InputOptions& options,
                        MessageSink& sink);

enum class StepResult { moved, at_end, refused, no_table };
// Next and Previous through the open table in its index order, after `check_event_changed`.
StepResult step_input_event(Session& s, EventInput& input, bool forward,
                            const InputOptions& options, MessageSink& sink);

// store1 to store4: `check_event_changed`, the full check, then the screen into the slot (the
// options refreshed for the active slot, the epoch row rebuilt for a stored epoch). True when the
// event went into the slot.
bool store_input_in_slot(Session& s, EventInput& input, int user_slot, MessageSink& sink);

// Exit: true when the window may close.
bool exit_input(Session& s, EventInput& input, MessageSink& sink);

} // namespace celestark
