#pragma once
// The values of the event input screen as a plain struct, and the operations that move an event
// between the screen, the slots and the stored event table.
#include "session/event.h"
#include "session/messages.h"
#include "store/event_rows.h"

#include <functional>
#include <string>

namespace celestark {

namespace store {
class Recordset;
}

struct EventInput {
    // One text per column, as the controls hold it. Columns 0, 22, 44 and 50 are not controls:
    // their working copies are the four named fields below.
    EventRow cells{};
    std::string am_pm;                    // "am", "pm" or empty (24-hour entry)
    std::string event_bookmark;           // column 0: empty until the event is stored
    std::string event_msecs = "0";        // column 22
    std::string event_epoch_msecs = "0";  // column 44
    std::string event_epoch_exists = "N"; // column 50
    bool event_dirty = false;             // set by any edit, cleared by a store
};

// The text the screen holds for a column, working copies included.
const std::string& screen_cell(const EventInput& input, int column);

// Clears the screen for a new event: no bookmark, no epoch, event "Birth", text fields empty,
// numbers "0", zone time, Gregorian, west and north.
void new_event_defaults(EventInput& input);

// Shows a slot row on the screen.
void slot_to_screen(const EventSlots& slots, int row, EventInput& input);

// Copies the screen into a slot row (column 0 from the bookmark, the hour with "pm" folded in, the
// search date composed). The caller offers the save first; see `screen_to_slot`.
void copy_screen_to_slot(const EventInput& input, EventSlots& slots, int row);

// What the program around these operations provides: the full input check and the option state
// refresh belong to the input screen and the option readers.
struct EventEditHooks {
    std::function<bool()> validate = [] { return true; }; // the full check; reports its own errors
    std::function<void()> refresh_active_options = [] {};
    std::function<void()> refresh_chart_window = [] {};
};

enum class SaveResult { not_needed, declined, invalid, saved, duplicate, failed };

// The stored event table with the name of the index in use (restored after an add).
struct EventTable {
    store::Recordset& records;
    std::string index_in_use = "Name_Event";
};

// Writes the screen's values into the current record, under an edit or add the caller began.
void write_event_row(const EventInput& input, store::Recordset& records);

// Stores the screen: edits the row at the bookmark, or adds a row and takes its bookmark. A
// duplicate key shows the duplicate message, stores nothing and leaves the bookmark empty.
SaveResult save_event(EventInput& input, EventTable& table, MessageSink& sink);

// Offers to store a changed screen, by the save option: 0 never, 1 ask (or when `ask_always`),
// anything else without asking; the full check runs before any store.
SaveResult offer_save_event(EventInput& input, EventTable& table, MessageSink& sink,
                            int option_save_chart, bool ask_always, const EventEditHooks& hooks);

// The store1..store4 buttons: offer the save, copy the screen into the slot, refresh the options
// when the slot is the active one, and rebuild the epoch row when the event has a stored epoch.
SaveResult screen_to_slot(EventInput& input, EventSlots& slots, int row, EventTable& table,
                          MessageSink& sink, int option_save_chart, const EventEditHooks& hooks);

// The copy itself, without the offer: the screen into the slot, the options refreshed when the
// slot is the active one, the epoch row rebuilt when the event has a stored epoch.
void place_in_slot(const EventInput& input, EventSlots& slots, int row,
                   const EventEditHooks& hooks);

// The lines of the duplicate-key message.
std::string duplicate_event_text(const EventInput& input);

} // namespace celestark
