#include "screens/chart_commands.h"

#include "engine/chart.h"
#include "screens/aspect_window.h"
#include "screens/colour_window.h"
#include "screens/event_input.h"
#include "screens/zodiac_window.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/session.h"
#include "session/text.h"
#include "store/event_database.h"
#include "store/event_rows.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/option_store.h"

#include <algorithm>
#include <cmath>

namespace celestark {

namespace {

// The entry of a table of commands with the name given, or null.
template <typename Entry>
const Entry* find_named(const std::vector<Entry>& entries, const std::string& name) {
    for (const Entry& e : entries)
        if (name == e.name) return &e;
    return nullptr;
}

} // namespace

const std::vector<ChartCommand>& chart_commands() {
    using E = CommandEvents;
    static const std::vector<ChartCommand> commands = {
        {"chart_geocentric", "geo1", "Geocentric", E::active, "Geocentric"},
        {"chart_heliocentric", "helio1", "Heliocentric", E::active, "Heliocentric"},
        {"chart_lemniscate", "lem1", "Lemnicentric", E::active, "Lemnicentric"},
        {"chart_hermetic", "geo1", "Tychonic", E::active, "Tychonic"},
        {"chart_geo_helio", "geo_helio1", "Geo/Helio", E::active, "Geo/Helio"},
        {"Display_triple", "geo_triple", "Geocentric", E::active, "Three World Views"},
        {"display_helio_triple", "helio_triple", "Heliocentric", E::active,
         "Heliocentric Planets, Apsides and Nodes"},
        {"chart_all_planets", "display_all_planets", "Geocentric", E::active, "All World Views"},
        {"au_geo", "data1", "Geocentric", E::active, "Geocentric Data"},
        {"au_hel", "data1", "Heliocentric", E::active, "Heliocentric Data"},
        {"au_lem", "data1", "Lemnicentric", E::active, "Lemnicentric Data"},
        {"geo_star_chart", "star_geo", "Geocentric", E::active, "Geocentric Star Chart"},
        {"her_star_chart", "star_geo", "Tychonic", E::active, "Tychonic Star Chart"},
        {"helio_star_chart", "star_helio", "Heliocentric", E::active, "Heliocentric Star Chart"},
        {"lemniscate_star_chart", "star_lem", "Lemnicentric", E::active, "Lemnicentric Star Chart"},
        {"geo_helio_star_chart", "star_geo_helio", "Geo/Helio", E::active, "Geo/Helio Star Chart"},
        {"sid_trop_star_chart", "star_sid_trop", "Geocentric", E::active,
         "Tropical/Sidereal Star Chart"},
        {"star_conjunctions", "star_analysis_conjunction", "Geocentric", E::active,
         "Stars Conjunct the Chart"},
        {"stars_horizon", "star_analysis_horizon", "Geocentric", E::active, "Stars on the Angles"},
        {"epoch_normal_geo", "geo1", "Geocentric", E::epoch, "Geocentric"},
        {"epoch_normal_hel", "helio1", "Heliocentric", E::epoch, "Heliocentric"},
        {"epoch_normal_lem", "lem1", "Lemnicentric", E::epoch, "Lemnicentric"},
        {"epoch_normal_hermetic", "geo1", "Tychonic", E::epoch, "Tychonic"},
        {"epoch_normal_geo_hel", "geo_helio1", "Geo/Helio", E::epoch, "Geo/Helio"},
        {"epoch_normal_triple_wv", "geo_triple", "Geocentric", E::epoch, "Three World Views"},
        {"epoch_normal_triple_hel", "helio_triple", "Heliocentric", E::epoch,
         "Heliocentric Planets, Apsides and Nodes"},
        {"epoch_all_planets", "display_all_planets", "Geocentric", E::epoch, "All World Views"},
        {"epoch_au_geo", "data1", "Geocentric", E::epoch, "Geocentric Data"},
        {"epoch_au_helio", "data1", "Heliocentric", E::epoch, "Heliocentric Data"},
        {"epoch_au_lemni", "data1", "Lemnicentric", E::epoch, "Lemnicentric Data"},
        {"geo_star_epoch", "star_geo", "Geocentric", E::epoch, "Geocentric Star Chart"},
        {"her_star_epoch", "star_geo", "Tychonic", E::epoch, "Tychonic Star Chart"},
        {"epoch_star_hel", "star_helio", "Heliocentric", E::epoch, "Heliocentric Star Chart"},
        {"epoch_star_lem", "star_lem", "Lemnicentric", E::epoch, "Lemnicentric Star Chart"},
        {"epoch_star_geo_hel", "star_geo_helio", "Geo/Helio", E::epoch, "Geo/Helio Star Chart"},
        {"epoch_star_sid_trop", "star_sid_trop", "Geocentric", E::epoch,
         "Tropical/Sidereal Star Chart"},
        {"epoch_star_conjunctions", "star_analysis_conjunction", "Geocentric", E::epoch,
         "Stars Conjunct the Chart"},
        {"epoch_stars_horizon", "star_analysis_horizon", "Geocentric", E::epoch,
         "Stars on the Angles"},
        {"eb_circ_rad", "prenatal1", "Geocentric", E::prenatal,
         "Epoch and birth: planetary distances"},
        {"eb_circ_lat", "prenatal2", "Geocentric", E::prenatal,
         "Epoch and birth: planetary latitudes"},
        {"eb_rect", "prenatal_rect", "Geocentric", E::prenatal, "Epoch to birth in strips"},
        {"geo_par", "prenatal_rect", "Geocentric", E::prenatal, "Geocentric prenatal strips"},
        {"her_par", "prenatal_rect", "Tychonic", E::prenatal, "Tychonic prenatal strips"},
        {"hermetic_rect", "prenatal_rect", "Tychonic", E::prenatal,
         "Epoch to birth in strips (Tychonic)"},
        {"helio_rect", "prenatal_helio_rect", "Heliocentric", E::prenatal,
         "Epoch to birth in strips (Heliocentric)"},
        {"helio_par", "prenatal_helio_rect", "Heliocentric", E::prenatal,
         "Heliocentric prenatal strips"},
        {"lem_rect", "prenatal_lem_rect", "Lemnicentric", E::prenatal,
         "Epoch to birth in strips (Lemnicentric)"},
        {"lem_par", "prenatal_lem_rect", "Lemnicentric", E::prenatal,
         "Lemnicentric prenatal strips"},
        {"lem_dist", "lem_prenatal1", "Lemnicentric", E::prenatal,
         "Lemnicentric planetary distances"},
        {"lem_3d_with", "lem_prenatal3dwith", "Lemnicentric", E::prenatal,
         "Lemnicentric in three dimensions"},
        {"lem_3d_se", "lem_prenatal3dse", "Lemnicentric", E::prenatal,
         "Lemnicentric Sun and Earth in three dimensions"},
        {"planetary_motion", "plan display", "Geocentric", E::active, "Plan of the Solar System"},
    };
    return commands;
}

const ChartCommand* find_chart_command(const std::string& name) {
    return find_named(chart_commands(), name);
}

namespace {

std::string cell(const EventRow& row, int column) {
    return trim(row[static_cast<std::size_t>(column)]);
}

std::string joined(std::initializer_list<std::string> parts, const char* between) {
    std::string out;
    for (const std::string& p : parts)
        if (!p.empty()) out += (out.empty() ? "" : between) + p;
    return out;
}

std::string angle_text(const EventRow& row, int deg, int dir, int min) {
    return cell(row, deg) + cell(row, dir) +
           two_digits(static_cast<long long>(text_to_number(row[static_cast<std::size_t>(min)])));
}

} // namespace

EventCard event_card(const Session& s, int slot) {
    EventCard c;
    const EventRow& row = s.event_slots[slot];
    if (slot_is_empty(row)) return c;
    c.empty = false;
    c.name =
        joined({cell(row, col::title), cell(row, col::firstname), cell(row, col::surname)}, " ");
    c.event = joined({cell(row, col::event), cell(row, col::version)}, " ");
    c.place = cell(row, col::place);
    c.time = format_date(row[col::day], row[col::month], row[col::year], s.options.text) +
             (cell(row, col::gj) == "J" ? " J " : "  ") +
             format_time(row[col::hours], row[col::mins], row[col::secs], s.options.text);
    c.lat_long = angle_text(row, col::lat_deg, col::lat_ns, col::lat_min) + "  " +
                 angle_text(row, col::long_deg, col::long_ew, col::long_min);
    const std::string lz = cell(row, col::lz);
    if (lz == "L")
        c.meridian = "Local Time";
    else if (lz == "Z")
        c.meridian = "Time Zone " + cell(row, col::time_zone);
    else
        c.meridian = "Meridian " + angle_text(row, col::med_deg, col::med_ew, col::med_min);
    if (text_to_number(row[col::dst]) != 0) c.meridian += ", DST " + cell(row, col::dst);
    if (cell(row, col::epoch_exists) == "Y") {
        c.epoch = "Epoch " +
                  format_date(row[col::epoch_day], row[col::epoch_month], row[col::epoch_year],
                              s.options.text) +
                  "  " +
                  format_time(row[col::epoch_hours], row[col::epoch_mins], row[col::epoch_secs],
                              s.options.text);
        c.epoch_place = cell(row, col::epoch_place);
        c.epoch_lat_long =
            angle_text(row, col::epoch_lat_deg, col::epoch_lat_ns, col::epoch_lat_min) + "  " +
            angle_text(row, col::epoch_long_deg, col::epoch_long_ew, col::epoch_long_min);
    }
    return c;
}

void select_event_card(Session& s, int slot) {
    if (slot >= slot::first_user && slot <= slot::last_user) select_slot(s.event_slots, slot);
}

void remove_epoch(Session& s, int slot) {
    EventRow& row = s.event_slots[slot];
    row[col::epoch_exists] = "N";
    for (int c :
         {col::epoch_place, col::epoch_day, col::epoch_month, col::epoch_year, col::epoch_hours,
          col::epoch_mins, col::epoch_secs, col::moon_on_asc, col::epoch_months, col::epoch_moon})
        row[static_cast<std::size_t>(c)] = " ";
}

namespace {

store::Recordset* event_table(Session& s) {
    return s.stores && s.stores->event_table.is_open() ? &s.stores->event_table : nullptr;
}

} // namespace

bool delete_active_card(Session& s, MessageSink& sink) {
    const int slot = s.event_slots.active_event;
    if (!sink.ask("DELETE ACTIVE EVENT ?", "Are you sure you want to delete the Active Event "
                                           "both from the Table(Disk) and from the screen"))
        return false;
    EventRow& row = s.event_slots[slot];
    const std::string bookmark = row[col::bookmark];
    if (store::Recordset* rs = event_table(s); rs && !bookmark.empty())
        if (rs->go_to(bookmark) == store::Outcome::ok) rs->delete_row();
    row.fill(std::string());
    return true;
}

bool save_active_event(Session& s, MessageSink& sink) {
    const int slot = s.event_slots.active_event;
    store::Recordset* rs = event_table(s);
    if (!rs || slot_is_empty(s.event_slots[slot])) return false;
    EventInput input;
    slot_to_screen(s.event_slots, slot, input);
    input.event_dirty = true;
    EventTable table{*rs, s.event_store.event_index_name};
    if (save_event(input, table, sink) != SaveResult::saved) return false;
    s.event_slots[slot][col::bookmark] = input.event_bookmark;
    return true;
}

std::vector<OptionList> chart_option_lists(Session& s) {
    const std::vector<std::string> houses = {
        "None",    "Asc. MC only", "Meridian",    "Regiomontanus", "Porphyry", "Equal",
        "Morinus", "Koch",         "Topocentric", "Placidus",      "Campanus"};
    std::vector<std::string> zodiacs = {"Tropical", "Draconic"};
    for (const std::string& z : zodiac_list(s))
        if (z != "NO SIDEREAL ZODIACS TO EDIT") zodiacs.push_back(z);
    std::vector<std::string> aspect_sets = {"None"};
    for (const std::string& a : stored_aspect_set_names(s, 22, "selected aspect charts-got focus"))
        aspect_sets.push_back(a);
    std::vector<std::string> colour_sets = {"None"};
    for (const std::string& c : colour_set_list(s)) colour_sets.push_back(c);
    auto chart = [&](const char* control, const char* field, const std::vector<std::string>& e) {
        return OptionList{control, store::chart_options_table, field, e,
                          trim(read_option(s, store::chart_options_table, field).as_text())};
    };
    auto general = [&](const char* control, const char* field, const std::vector<std::string>& e) {
        return OptionList{control, store::general_options_table, field, e,
                          trim(read_option(s, store::general_options_table, field).as_text())};
    };
    return {
        chart("selected_house_system", "house_system", houses),
        chart("Selected_polar_house_system", "polar_house_system", houses),
        chart("selected_zodiac", "zodiac", zodiacs),
        chart("selected_aspect_charts", "aspect_set_charts", aspect_sets),
        chart("selected_display_colour_set", "display_colour_set", colour_sets),
        chart("selected_print_colour_set", "print_colour_set", colour_sets),
        chart("ephemeris_zodiac", "zodiac_ephemeris", zodiacs),
        chart("ephemeris_aspect_set", "aspect_set_ephemeris", aspect_sets),
        general("listings_zodiac", "listings_zodiac", zodiacs),
        general("listings_aspect_set", "listings_aspect_set", aspect_sets),
    };
}

bool choose_option(Session& s, const std::string& control, const std::string& entry,
                   MessageSink& sink) {
    for (const OptionList& list : chart_option_lists(s)) {
        if (control != list.control) continue;
        if (set_option(s, list.table, list.field, store::Value(entry), sink) != store::Outcome::ok)
            return false;
        read_chart_options(s);
        refresh_session_state(s, sink);
        return true;
    }
    return false;
}

std::string event_store_caption(const Session& s) {
    const std::string db = event_database_title(s.event_store.event_db_name);
    const std::string table = to_upper(s.event_store.event_table_name);
    return table.empty() ? db : db + " - " + table;
}

bool active_event_present(const Session& s, MessageSink& sink) {
    const int active = s.event_slots.active_event;
    if (!slot_is_empty(s.event_slots[active])) return true;
    sink.message("NO EVENT",
                 "Event " + std::to_string(active) +
                     " holds no event. Enter one with the event window, or copy one from the "
                     "search window.",
                 MessageIcon::information);
    return false;
}

bool chart_request(Session& s, const ChartCommand& command, MessageSink& sink) {
    EventSlots& slots = s.event_slots;
    const int active = slots.active_event;
    int row = active;
    if (!active_event_present(s, sink)) return false;
    int epoch_row = 0;
    if (command.events != CommandEvents::active) {
        if (trim(slots[active][col::epoch_exists]) != "Y") {
            sink.message("NO EPOCH",
                         "Event " + std::to_string(active) + " has no prenatal epoch yet.",
                         MessageIcon::information);
            return false;
        }
        epoch_row = active + slot::epoch_offset;
        derive_epoch_event(slots, active, epoch_row);
        if (command.events == CommandEvents::epoch) row = epoch_row;
    }
    DrawingState& d = s.drawing;
    d.working_event = row;
    d.inner_event = row;
    // A prenatal chart draws the birth with its epoch as the outer event.
    if (command.events == CommandEvents::prenatal) d.outer_event = epoch_row;
    d.screen_page = command.screen_page;
    s.chart.world_view = command.world_view;
    d.printing = false;
    select_zodiac(s, sink);
    d.allow_stepping = d.show_step_panel = true;
    d.stepping_on = false;
    d.chart_calling = "chart";
    // The work row that stepping changes starts as the event shown.
    slots[slot::work] = slots[row];
    return true;
}

const std::vector<DoubleCommand>& double_commands() {
    using I = DoubleInner;
    using O = DoubleOuter;
    static const std::vector<DoubleCommand> commands = {
        {"comp_geo", "geo_double", "Geocentric", I::active, O::compare, true, "Geocentric"},
        {"comp_helio", "helio_double", "Heliocentric", I::active, O::compare, true, "Heliocentric"},
        {"Comp_hermetic", "geo_double", "Tychonic", I::active, O::compare, true, "Tychonic"},
        {"Comp_Lemni", "lemni_double", "Lemnicentric", I::active, O::compare, true, "Lemnicentric"},
        {"comp_geo_her", "geo_helio_double", "Geo/Helio", I::active, O::compare, true, "Geo/Helio"},
        {"epoch_birth_geo", "geo_double", "Geocentric", I::active, O::epoch, false, "Geocentric"},
        {"epoch_birth_hel", "helio_double", "Heliocentric", I::active, O::epoch, false,
         "Heliocentric"},
        {"epoch_birth_her", "geo_double", "Tychonic", I::active, O::epoch, false, "Tychonic"},
        {"epoch_birth_lem", "lemni_double", "Lemnicentric", I::active, O::epoch, false,
         "Lemnicentric"},
        {"epoch_geo_comp", "geo_double", "Geocentric", I::epoch, O::compare, true, "Geocentric"},
        {"epoch_hel_comp", "helio_double", "Heliocentric", I::epoch, O::compare, true,
         "Heliocentric"},
        {"epoch_her_comp", "geo_double", "Tychonic", I::epoch, O::compare, true, "Tychonic"},
        {"epoch_lem_comp", "lemni_double", "Lemnicentric", I::epoch, O::compare, true,
         "Lemnicentric"},
        {"epoch_geo_her_comp", "geo_helio_double", "Geo/Helio", I::epoch, O::compare, true,
         "Geo/Helio"},
        {"epoch_event_geo_comp", "geo_double", "Geocentric", I::epoch, O::compare_epoch, false,
         "Geocentric"},
        {"epoch_event_helio_comp", "helio_double", "Heliocentric", I::epoch, O::compare_epoch,
         false, "Heliocentric"},
        {"epoch_event_her_comp", "geo_double", "Tychonic", I::epoch, O::compare_epoch, false,
         "Tychonic"},
        {"epoch_event_lemni_comp", "lemni_double", "Lemnicentric", I::epoch, O::compare_epoch,
         false, "Lemnicentric"},
        {"epoch_event_geo_her_comp", "geo_helio_double", "Geo/Helio", I::epoch, O::compare_epoch,
         false, "Geo/Helio"},
        {"geo_crux", "geo_double", "Geocentric", I::active, O::default_event, true, "Geocentric"},
        {"hel_crux", "helio_double", "Heliocentric", I::active, O::default_event, true,
         "Heliocentric"},
        {"lem_crux", "lemni_double", "Lemnicentric", I::active, O::default_event, true,
         "Lemnicentric"},
        {"ty_crux", "geo_double", "Tychonic", I::active, O::default_event, true, "Tychonic"},
        {"epoch_geo_crux", "geo_double", "Geocentric", I::epoch, O::default_event, true,
         "Geocentric"},
        {"epoch_hel_crux", "helio_double", "Heliocentric", I::epoch, O::default_event, true,
         "Heliocentric"},
        {"epoch_lem_crux", "lemni_double", "Lemnicentric", I::epoch, O::default_event, true,
         "Lemnicentric"},
        {"epoch_ty_crux", "geo_double", "Tychonic", I::epoch, O::default_event, true, "Tychonic"},
    };
    return commands;
}

const DoubleCommand* find_double_command(const std::string& name) {
    return find_named(double_commands(), name);
}

namespace {

// Whether the card chosen to compare with holds an event; the box says so when it does not.
bool compared_event_present(const Session& s, int slot_number, MessageSink& sink) {
    if (slot_number >= slot::first_user && slot_number <= slot::last_user &&
        !slot_is_empty(s.event_slots[slot_number]))
        return true;
    sink.message("NO EVENT",
                 "Event " + std::to_string(slot_number) +
                     " holds no event to compare with. Choose a card with Compare, or put an "
                     "event into it.",
                 MessageIcon::information);
    return false;
}

// The epoch row of a user slot, rebuilt from its stored epoch; 0 with the message when the slot
// has none.
int epoch_row_of(Session& s, int slot, MessageSink& sink) {
    EventSlots& slots = s.event_slots;
    if (trim(slots[slot][col::epoch_exists]) != "Y") {
        sink.message("NO EPOCH", "Event " + std::to_string(slot) + " has no prenatal epoch yet.",
                     MessageIcon::information);
        return 0;
    }
    const int row = slot + slot::epoch_offset;
    derive_epoch_event(slots, slot, row);
    return row;
}

} // namespace

bool double_chart_request(Session& s, const DoubleCommand& command, int compare_slot,
                          MessageSink& sink) {
    EventSlots& slots = s.event_slots;
    const int active = slots.active_event;
    if (!active_event_present(s, sink)) return false;
    const bool compared =
        command.outer == DoubleOuter::compare || command.outer == DoubleOuter::compare_epoch;
    if (compared && !compared_event_present(s, compare_slot, sink)) return false;
    int inner = active;
    if (command.inner == DoubleInner::epoch && !(inner = epoch_row_of(s, active, sink)))
        return false;
    int outer = slot::default_event;
    switch (command.outer) {
    case DoubleOuter::compare:
        outer = compare_slot;
        break;
    case DoubleOuter::compare_epoch:
        outer = epoch_row_of(s, compare_slot, sink);
        break;
    case DoubleOuter::epoch:
        outer = epoch_row_of(s, active, sink);
        break;
    case DoubleOuter::default_event:
        break;
    }
    if (!outer) return false;
    DrawingState& d = s.drawing;
    d.working_event = d.inner_event = inner;
    d.outer_event = outer;
    d.chart_kind = "C";
    d.screen_page = command.screen_page;
    s.chart.world_view = command.world_view;
    d.printing = false;
    select_zodiac(s, sink);
    d.allow_stepping = d.show_step_panel = command.stepping;
    d.stepping_on = false;
    d.chart_calling = "chart";
    slots[slot::work] = slots[inner];
    return true;
}

const std::vector<TimeStep>& time_steps() {
    static const std::vector<TimeStep> steps = {
        {"1sec", "1 s", 0, 0, 0, 0, 0, 1},          {"10secs", "10 s", 0, 0, 0, 0, 0, 10},
        {"1min", "1 min", 0, 0, 0, 0, 1, 0},        {"10mins", "10 min", 0, 0, 0, 0, 10, 0},
        {"1hour", "1 hour", 0, 0, 0, 1, 0, 0},      {"2hours", "2 hours", 0, 0, 0, 2, 0, 0},
        {"6hours", "6 hours", 0, 0, 0, 6, 0, 0},    {"1day", "1 day", 0, 0, 1, 0, 0, 0},
        {"1week", "1 week", 0, 0, 7, 0, 0, 0},      {"1month", "1 month", 0, 1, 0, 0, 0, 0},
        {"4months", "4 months", 0, 4, 0, 0, 0, 0},  {"1year", "1 year", 1, 0, 0, 0, 0, 0},
        {"10years", "10 years", 10, 0, 0, 0, 0, 0}, {"100years", "100 years", 100, 0, 0, 0, 0, 0},
    };
    return steps;
}

bool step_time(Session& s, const std::string& step, bool backward) {
    const TimeStep* found = find_named(time_steps(), step);
    if (!found) return false;
    DrawingState& d = s.drawing;
    if (!d.allow_stepping) return false;
    if (!d.stepping_on) {
        if (d.working_event != slot::work)
            s.event_slots[slot::work] = s.event_slots[d.working_event];
        d.stepping_on = true;
    }
    d.working_event = d.inner_event = slot::work;
    const int sign = backward ? -1 : 1;
    add_to_event_time(s.event_slots[slot::work], sign * found->years, sign * found->months,
                      sign * found->days, sign * found->hours, sign * found->minutes,
                      sign * found->seconds, 0);
    return true;
}

std::array<std::string, 6> stepped_time(const Session& s) {
    const EventRow& row = s.event_slots[slot::work];
    return {trim(row[col::day]),   trim(row[col::month]), trim(row[col::year]),
            trim(row[col::hours]), trim(row[col::mins]),  trim(row[col::secs])};
}

bool save_stepped_time(Session& s, MessageSink& sink) {
    store::Recordset* rs = event_table(s);
    if (!rs || slot_is_empty(s.event_slots[slot::work])) return false;
    EventInput input;
    slot_to_screen(s.event_slots, slot::work, input);
    input.event_bookmark.clear();
    input.cells[col::event] = "Test";
    input.cells[col::epoch_exists] = "N";
    input.event_epoch_exists = "N";
    input.event_dirty = true;
    EventTable table{*rs, s.event_store.event_index_name};
    return save_event(input, table, sink) == SaveResult::saved;
}

const std::vector<std::pair<std::string, double>>& walk_orbs() {
    static const std::vector<std::pair<std::string, double>> orbs = {
        {"10 degs", 10},      {"8 degs", 8},        {"6 degs", 6},          {"4 degs", 4},
        {"2 degs", 2},        {"1 deg", 1},         {"30 mins", 30.0 / 60}, {"15 mins", 15.0 / 60},
        {"8 mins", 8.0 / 60}, {"4 mins", 4.0 / 60}, {"2 mins", 2.0 / 60},   {"1 min", 1.0 / 60}};
    return orbs;
}

WalkResult walk_table(Session& s, bool forward, const AspectPattern& pattern, MessageSink& sink) {
    store::Recordset* rs = event_table(s);
    if (!rs) return WalkResult::no_table;
    const int slot = s.event_slots.active_event;
    const EventRow shown = s.event_slots[slot];
    const std::string bookmark = shown[col::bookmark];
    store::Outcome o =
        bookmark.empty() ? (forward ? rs->move_first() : rs->move_last()) : rs->go_to(bookmark);
    if (o != store::Outcome::ok) return WalkResult::end_of_table;
    bool step = !bookmark.empty();
    while (true) {
        if (step) {
            o = forward ? rs->move_next() : rs->move_previous();
            if (o != store::Outcome::ok || rs->eof() || rs->bof() || !rs->has_current()) {
                // At the end of the table the record shown last stays.
                s.event_slots[slot] = shown;
                if (!bookmark.empty()) rs->go_to(bookmark);
                return WalkResult::end_of_table;
            }
        }
        step = true;
        load_event_row(*rs, s.event_slots, slot);
        if (!pattern.wanted) return WalkResult::moved;
        // The pattern: two chart points apart by the angle within the orb.
        calculate_chart(s, slot, false);
        const PositionLists& p = s.engine.pos;
        if (pattern.body_a < p.chart_count && pattern.body_b < p.chart_count) {
            const double sep =
                std::fabs(rad_diff(p.chart_long[static_cast<std::size_t>(pattern.body_a)],
                                   p.chart_long[static_cast<std::size_t>(pattern.body_b)])) *
                rad_to_deg;
            if (std::fabs(sep - pattern.angle) <= pattern.orb) return WalkResult::moved;
        }
        (void)sink;
    }
}

const std::vector<ChartPrintBox>& chart_print_boxes() {
    static const std::vector<ChartPrintBox> boxes = [] {
        struct Group {
            const char* prefix;
            const char* caption;
            int index;
        };
        // The order on the window is that of the printed document.
        static constexpr Group groups[] = {{"geo", "Geocentric", 0},
                                           {"lem", "Lemnicentric", 1},
                                           {"helio", "Heliocentric", 2},
                                           {"geo_helio", "Geo/Helio", 3},
                                           {"hermetic", "Tychonic", 4}};
        struct Page {
            const char* suffix;
            PrintedPage page;
            const char* caption;
        };
        static constexpr Page pages[] = {{"_standard", PrintedPage::standard, "Standard"},
                                         {"_star", PrintedPage::star, "Star"},
                                         {"_compare", PrintedPage::compare, "Compare Chart"},
                                         {"_harmonics", PrintedPage::harmonics, "Harmonics Chart"}};
        std::vector<ChartPrintBox> list;
        for (const Group& g : groups)
            for (const Page& p : pages)
                list.push_back(
                    {std::string(g.prefix) + p.suffix, g.caption, g.index, p.page, p.caption});
        list.push_back({"helio_triple", "Heliocentric", 2, PrintedPage::helio_triple,
                        "Helio planets, apsides, nodes"});
        list.push_back(
            {"All_planets", "All world views", 0, PrintedPage::all_planets, "On one page"});
        return list;
    }();
    return boxes;
}

ChartPrintSelection chart_print_selection(const std::vector<std::string>& ticked) {
    ChartPrintSelection selection;
    for (const ChartPrintBox& box : chart_print_boxes()) {
        if (std::find(ticked.begin(), ticked.end(), box.name) == ticked.end()) continue;
        const auto k = static_cast<std::size_t>(box.group_index);
        switch (box.page) {
        case PrintedPage::standard:
            selection.standard[k] = true;
            break;
        case PrintedPage::star:
            selection.star[k] = true;
            break;
        case PrintedPage::harmonics:
            selection.harmonics[k] = true;
            break;
        case PrintedPage::helio_triple:
            selection.helio_triple = true;
            break;
        case PrintedPage::all_planets:
            selection.all_planets = true;
            break;
        case PrintedPage::compare:
            selection.compare[k] = true;
            break;
        }
    }
    return selection;
}

bool chart_print_request(Session& s, bool epoch, int compare_slot, MessageSink& sink) {
    if (compare_slot != 0 && !compared_event_present(s, compare_slot, sink)) return false;
    const ChartCommand series{"print_event_charts", "geo1", "Geocentric",
                              epoch ? CommandEvents::epoch : CommandEvents::active,
                              "Print charts of the event"};
    if (!chart_request(s, series, sink)) return false;
    // The comparison pages draw the printed event inside and the compared one outside.
    if (compare_slot != 0) {
        s.drawing.outer_event = compare_slot;
        s.drawing.chart_kind = "C";
    }
    // A printed series is no stepping chart.
    s.drawing.allow_stepping = s.drawing.show_step_panel = false;
    return true;
}

} // namespace celestark
