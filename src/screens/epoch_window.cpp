#include "screens/epoch_window.h"

#include "engine/epoch.h"
#include "screens/chart_commands.h"
#include "screens/event_checks.h"
#include "screens/event_input.h"
#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"

namespace celestark {

namespace {

constexpr int place_cells = 9; // the place's name, latitude and longitude

std::string& at(EventRow& row, int column) {
    return row[static_cast<std::size_t>(column)];
}

} // namespace

const std::vector<BirthTimeStep>& birth_time_steps() {
    static const std::vector<BirthTimeStep> steps = {
        {"1hour", "1 hour", 1, 0, 0, 0},  {"20min", "20 min", 0, 20, 0, 0},
        {"10min", "10 min", 0, 10, 0, 0}, {"5min", "5 min", 0, 5, 0, 0},
        {"2min", "2 min", 0, 2, 0, 0},    {"1min", "1 min", 0, 1, 0, 0},
        {"20sec", "20 sec", 0, 0, 20, 0}, {"10sec", "10 sec", 0, 0, 10, 0},
        {"5sec", "5 sec", 0, 0, 5, 0},    {"2sec", "2 sec", 0, 0, 2, 0},
        {"1sec", "1 sec", 0, 0, 1, 0},    {"point1sec", "0.1 sec", 0, 0, 0, 100},
    };
    return steps;
}

bool EpochWindows::start(Session& s, MessageSink& sink) {
    const int active = s.event_slots.active_event;
    const EventRow& row = s.event_slots[active];
    if (!active_event_present(s, sink)) return false;
    if (trim(row[col::event]) != "Birth") {
        sink.message("NOT A BIRTH",
                     "Only a birth has a prenatal epoch: the kind of Event " +
                         std::to_string(active) + " must be \"Birth\".",
                     MessageIcon::information);
        return false;
    }
    const int months = text_to_i16(row[col::epoch_months]);
    options_.months = months >= 6 && months <= 12 ? months : 10;
    options_.sidereal = trim(row[col::epoch_moon]) != "F";
    // A stored epoch at a place of its own opens as such; otherwise the epoch is cast at the
    // birth.
    bool same = true;
    for (int i = 0; i < place_cells; ++i)
        same = same && trim(row[static_cast<std::size_t>(col::place + i)]) ==
                           trim(row[static_cast<std::size_t>(col::epoch_place + i)]);
    const bool own_place =
        trim(row[col::epoch_exists]) == "Y" && !trim(row[col::epoch_place]).empty() && !same;
    options_.same_as_birth = !own_place;
    const int first = own_place ? col::epoch_place : col::place;
    for (int i = 0; i < place_cells; ++i)
        options_.place[static_cast<std::size_t>(i)] =
            trim(row[static_cast<std::size_t>(first + i)]);
    calculated_ = false;
    return true;
}

bool EpochWindows::calculate(Session& s, MessageSink& sink) {
    birth_ = s.event_slots[s.event_slots.active_event];
    if (options_.same_as_birth) {
        for (int i = 0; i < place_cells; ++i)
            at(birth_, col::epoch_place + i) = at(birth_, col::place + i);
    } else {
        for (int i = 0; i < place_cells; ++i) {
            std::string text = trim(options_.place[static_cast<std::size_t>(i)]);
            if (col::epoch_place + i == col::epoch_lat_ns ||
                col::epoch_place + i == col::epoch_long_ew)
                text = to_upper(text);
            at(birth_, col::epoch_place + i) = text;
        }
        if (!check_place_cells(birth_, col::epoch_place, sink)) {
            sink.show_input_errors();
            return false;
        }
        // Blank parts of the place are nought.
        for (int i = 1; i < place_cells; ++i)
            if (at(birth_, col::epoch_place + i).empty())
                at(birth_, col::epoch_place + i) = col::epoch_place + i == col::epoch_lat_ns ? "N"
                                                   : col::epoch_place + i == col::epoch_long_ew
                                                       ? "W"
                                                       : "0";
    }
    s.epoch.months = options_.months;
    s.epoch.sidereal = options_.sidereal;
    s.event_slots[epoch_row::birth] = birth_;
    calculate_epoch(s);
    calculated_ = true;
    return true;
}

void EpochWindows::restore(Session& s) {
    s.epoch.months = options_.months;
    s.epoch.sidereal = options_.sidereal;
    s.event_slots[epoch_row::birth] = birth_;
    calculate_epoch(s);
}

bool EpochWindows::adjust(Session& s, const std::string& command) {
    if (!calculated_) return false;
    int sign = 0;
    std::string name;
    if (command.rfind("plus", 0) == 0) {
        sign = 1;
        name = command.substr(4);
    } else if (command.rfind("minus", 0) == 0) {
        sign = -1;
        name = command.substr(5);
    }
    for (const BirthTimeStep& step : birth_time_steps()) {
        if (sign == 0 || name != step.name) continue;
        s.event_slots[epoch_row::birth] = birth_;
        adjust_birth(s, sign * step.hours, sign * step.minutes, sign * step.seconds,
                     sign * step.msecs);
        birth_ = s.event_slots[epoch_row::birth];
        return true;
    }
    return false;
}

bool EpochWindows::correct(Session& s, int direction) {
    if (!calculated_) return false;
    restore(s);
    const bool settled = correct_birth(s, direction);
    birth_ = s.event_slots[epoch_row::birth];
    return settled;
}

const std::array<std::string, 6>& EpochWindows::lines(const Session& s) const {
    return s.epoch.lines;
}

int EpochWindows::recommended(const Session& s) const {
    return s.epoch.recommended;
}

int EpochWindows::display_row(Session& s, const std::string& command) {
    if (!calculated_) return 0;
    for (std::size_t i = 0; i < epoch_display_commands.size(); ++i) {
        if (command != epoch_display_commands[i]) continue;
        restore(s);
        const int row = epoch_row::birth + static_cast<int>(i);
        DrawingState& d = s.drawing;
        d.working_event = d.inner_event = row;
        d.screen_page = "geo1";
        s.chart.world_view = "Geocentric";
        // The work rows are the epoch's: no stepping here, and the chart window's exit comes
        // back to the epoch window.
        d.allow_stepping = d.show_step_panel = d.stepping_on = false;
        d.chart_calling = "epoch_dates";
        return row;
    }
    return 0;
}

bool EpochWindows::store(Session& s, int candidate, MessageSink& sink) {
    if (!calculated_ || candidate < 1 || candidate > 4) return false;
    restore(s);
    EventSlots& slots = s.event_slots;
    const int active = slots.active_event;
    EventRow& row = slots[active];
    put_epoch_in_event(s, row, candidate);

    // Offered for saving as any changed event is.
    EventInput input;
    slot_to_screen(slots, active, input);
    input.event_dirty = true;
    s.event_dirty = true;
    if (s.stores && s.stores->event_table.is_open()) {
        EventTable table{s.stores->event_table, s.event_store.event_index_name};
        if (offer_save_event(input, table, sink, s.options.option_save_chart, false, {}) ==
            SaveResult::saved)
            at(row, col::bookmark) = input.event_bookmark;
    }
    s.event_dirty = false;
    derive_epoch_event(slots, active, active + slot::epoch_offset);
    calculated_ = false;
    return true;
}

void EpochWindows::cancel() {
    calculated_ = false;
}

} // namespace celestark
