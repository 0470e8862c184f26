#include "screens/event_input.h"

#include "session/text.h"
#include "store/table_store.h"

namespace celestark {

namespace {

constexpr bool is_working_copy(int column) {
    return column == col::bookmark || column == col::msecs || column == col::epoch_msecs ||
           column == col::epoch_exists;
}

const EventColumn& column_of(int c) {
    return event_columns_table[static_cast<std::size_t>(c)];
}

// What the screen gives for a stored or slot column: the hour with "pm" folded in and the search
// date composed from the screen's own moment.
std::string screen_value(const EventInput& input, int c) {
    if (c == col::hours) return fold_pm(input.cells[col::hours], input.am_pm);
    if (c == col::search_date)
        return search_date(input.cells[col::year], input.cells[col::month], input.cells[col::day],
                           fold_pm(input.cells[col::hours], input.am_pm), input.cells[col::mins],
                           input.cells[col::secs]);
    return screen_cell(input, c);
}

} // namespace

const std::string& screen_cell(const EventInput& input, int column) {
    switch (column) {
    case col::bookmark:
        return input.event_bookmark;
    case col::msecs:
        return input.event_msecs;
    case col::epoch_msecs:
        return input.event_epoch_msecs;
    case col::epoch_exists:
        return input.event_epoch_exists;
    default:
        return input.cells.at(static_cast<std::size_t>(column));
    }
}

void new_event_defaults(EventInput& input) {
    for (int c = 0; c < event_columns; ++c)
        input.cells[static_cast<std::size_t>(c)] = column_of(c).numeric ? "0" : "";
    input.cells[col::event] = "Birth";
    input.cells[col::lz] = "Z";
    input.cells[col::gj] = "G";
    input.cells[col::long_ew] = "W";
    input.cells[col::med_ew] = "W";
    input.cells[col::epoch_long_ew] = "W";
    input.cells[col::lat_ns] = "N";
    input.cells[col::epoch_lat_ns] = "N";
    input.cells[col::notused] = std::string(notused_text);
    input.am_pm.clear();
    input.event_bookmark.clear();
    input.event_epoch_exists = "N";
    input.event_msecs = "0";
    input.event_epoch_msecs = "0";
}

void slot_to_screen(const EventSlots& slots, int row, EventInput& input) {
    const EventRow& r = slots[row];
    input.cells = r;
    input.am_pm.clear(); // the row holds the hour 0 to 23 already
    input.event_bookmark = r[col::bookmark];
    input.event_msecs = r[col::msecs];
    input.event_epoch_msecs = r[col::epoch_msecs];
    input.event_epoch_exists = r[col::epoch_exists];
}

void copy_screen_to_slot(const EventInput& input, EventSlots& slots, int row) {
    EventRow& r = slots[row];
    for (int c = 0; c < col::notused; ++c) r[static_cast<std::size_t>(c)] = screen_value(input, c);
    r[col::notused] = std::string(notused_text);
}

void write_event_row(const EventInput& input, store::Recordset& records) {
    for (int c = col::event; c < col::notused; ++c) {
        std::string value = screen_value(input, c);
        // A text field holding nothing is stored as one blank.
        if (value.empty()) value = " ";
        records.set(column_of(c).field, store::Value(value));
    }
}

std::string duplicate_event_text(const EventInput& input) {
    return "DUPLICATE EVENT\n"
           "Event already exists for:-\n"
           "      SURNAME   = " +
           input.cells[col::surname] +
           "\n"
           "      FIRSTNAME = " +
           input.cells[col::firstname] +
           "\n"
           "      EVENT     = " +
           input.cells[col::event] +
           "\n"
           "      VERSION   = " +
           input.cells[col::version] +
           "\n"
           "This event will not be saved\n"
           "To save it you must first change one of the four fields above";
}

SaveResult save_event(EventInput& input, EventTable& table, MessageSink& sink) {
    store::Recordset& records = table.records;
    const bool adding = input.event_bookmark.empty();
    store::Outcome outcome;
    if (!adding) {
        outcome = records.go_to(input.event_bookmark);
        if (outcome == store::Outcome::ok) outcome = records.edit();
    } else {
        outcome = records.set_index("Name_Event");
        if (outcome == store::Outcome::ok) outcome = records.add_new();
    }
    if (outcome == store::Outcome::ok) {
        write_event_row(input, records);
        outcome = records.update();
    }
    if (outcome == store::Outcome::ok && adding)
        input.event_bookmark = records.last_modified_bookmark();
    if (records.editing()) records.cancel_update();
    if (adding) records.set_index(table.index_in_use);

    if (outcome == store::Outcome::ok) return SaveResult::saved;
    if (outcome == store::Outcome::duplicate_key) {
        sink.message(product_word, duplicate_event_text(input), MessageIcon::exclamation);
        return SaveResult::duplicate;
    }
    sink.message(product_word,
                 "The event could not be saved: " + std::string(store::describe(outcome)),
                 MessageIcon::exclamation);
    return SaveResult::failed;
}

SaveResult offer_save_event(EventInput& input, EventTable& table, MessageSink& sink,
                            int option_save_chart, bool ask_always, const EventEditHooks& hooks) {
    if (!input.event_dirty) return SaveResult::not_needed;
    if (option_save_chart == 0) return SaveResult::not_needed;
    if ((option_save_chart == 1 || ask_always) &&
        !sink.ask("UPDATE EVENT?", "The Event has changed - do you want to save it"))
        return SaveResult::declined;
    if (!hooks.validate()) return SaveResult::invalid;
    const SaveResult result = save_event(input, table, sink);
    if (result == SaveResult::saved) {
        input.event_dirty = false;
        sink.message(product_word, "The event has been saved", MessageIcon::information);
    }
    return result;
}

SaveResult screen_to_slot(EventInput& input, EventSlots& slots, int row, EventTable& table,
                          MessageSink& sink, int option_save_chart, const EventEditHooks& hooks) {
    const SaveResult result = offer_save_event(input, table, sink, option_save_chart, false, hooks);
    place_in_slot(input, slots, row, hooks);
    return result;
}

void place_in_slot(const EventInput& input, EventSlots& slots, int row,
                   const EventEditHooks& hooks) {
    copy_screen_to_slot(input, slots, row);
    if (row == slots.active_event) hooks.refresh_active_options();
    if (row >= slot::first_user && row <= slot::last_user && slots[row][col::epoch_exists] == "Y")
        derive_epoch_event(slots, row, row + slot::epoch_offset);
    hooks.refresh_chart_window();
}

} // namespace celestark
