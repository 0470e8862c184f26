#pragma once
// What the main chart window `Chart` and the chart window `chart_display` do: the event cards,
// the chart commands with the page, world view and events each sets, the option lists, stepping
// the time of the shown event, and walking the event table. The windows only show and pass on.
#include "session/drawing_state.h"
#include "session/messages.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace celestark {

struct Session;

inline constexpr const char* chart_window_title = "CELESTARK - Version 2.007";

// Which event a chart command draws: the active one, its epoch, or the active birth together with
// its epoch (the prenatal charts).
enum class CommandEvents { active, epoch, prenatal };

struct ChartCommand {
    const char* name;        // the control, e.g. "chart_geocentric"
    const char* screen_page; // the page word
    const char* world_view;
    CommandEvents events;
    const char* caption; // what the window shows
};
// The single chart commands whose pages exist.
const std::vector<ChartCommand>& chart_commands();
const ChartCommand* find_chart_command(const std::string& name);

// The lines of one event card: EVENTn_NAME, EVENTn_EVENT, EVENTn_PLACE, EVENTn_TIME,
// EVENTn_LAT_LONG, EVENTn_MERIDIAN, EVENTn_EPOCH, eventn_epoch_place, eventn_epoch_place_lat_long.
struct EventCard {
    std::string name, event, place, time, lat_long, meridian, epoch, epoch_place, epoch_lat_long;
    bool empty = true;
};
EventCard event_card(const Session& s, int slot);

// The window's state beside the session's: the slots chosen for comparisons and similars.
struct ChartWindowState {
    int compare_event = 2, similar_event = 1;
};

// Clicking a card: the slot becomes the active one (its epoch row rebuilt when it has one).
void select_event_card(Session& s, int slot);
// `remove_epoch`: the epoch flag to "N" and the stored epoch's ten text fields to a blank.
void remove_epoch(Session& s, int slot);
// The delete command of the active card: "DELETE ACTIVE EVENT ?"; on Yes the slot is emptied.
bool delete_active_card(Session& s, MessageSink& sink);
// `save_active_event`: the slot's event into the open table (a new row, or over its stored row).
bool save_active_event(Session& s, MessageSink& sink);

// The lists of the window, each with its leading entries ("None" for aspect and colour sets,
// "Tropical" and "Draconic" for zodiacs) ahead of the stored names, the option each writes, and
// the entry the options hold.
struct OptionList {
    const char* control;
    const char* table; // "options" or "option_name"
    const char* field;
    std::vector<std::string> entries;
    std::string selected;
};
std::vector<OptionList> chart_option_lists(Session& s);
// A list's selection writes its option at once; the session's state follows.
bool choose_option(Session& s, const std::string& control, const std::string& entry,
                   MessageSink& sink);

// The database and table the window's title shows: the name without ".zod.mdb" and the table, in
// capitals.
std::string event_store_caption(const Session& s);

// Whether the active card holds an event; when it does not, the box says how to put one there.
bool active_event_present(const Session& s, MessageSink& sink);

// A chart command: the slot it draws (the active one, or its epoch), the page and the world view
// go to the drawing values; stepping is allowed and the shown event is copied to the work row
// that stepping changes. A prenatal chart draws the active slot with its epoch row as the outer
// event. False when the slot holds no event, or no epoch where one is needed (the message says
// so).
bool chart_request(Session& s, const ChartCommand& command, MessageSink& sink);

// The double charts: an inner event against an outer one on one band, with their cross aspects.
// The inner event is the active one or its epoch; the outer one the event chosen to compare
// with, its epoch, the active event's epoch, or the program's default event.
enum class DoubleInner { active, epoch };
enum class DoubleOuter { compare, compare_epoch, epoch, default_event };
struct DoubleCommand {
    const char* name;
    const char* screen_page;
    const char* world_view;
    DoubleInner inner;
    DoubleOuter outer;
    bool stepping;
    const char* caption;
};
const std::vector<DoubleCommand>& double_commands();
const DoubleCommand* find_double_command(const std::string& name);
// Sets the drawing values of a double chart as `chart_request` does for one event: the inner
// and outer slots, the kind "C", the page and the world view. False, with the message, when a
// slot holds no event or an epoch is missing.
bool double_chart_request(Session& s, const DoubleCommand& command, int compare_slot,
                          MessageSink& sink);

// The time steps of `chart_display`: "plus1sec" ... "plus100years" and the "minus" ones.
struct TimeStep {
    const char* name;
    const char* caption;
    int years, months, days, hours, minutes, seconds;
};
const std::vector<TimeStep>& time_steps();
// One step of the shown event: the work row takes the step (the first step starts from the
// event shown) and becomes the one drawn. False for an unknown step.
bool step_time(Session& s, const std::string& step, bool backward);
// The fields ad_day, ad_month, ad_year, ad_hours, ad_mins, ad_secs of the stepped time.
std::array<std::string, 6> stepped_time(const Session& s);
// `save_time`: the stepped moment as a new stored event (the event's kind becomes "Test").
bool save_stepped_time(Session& s, MessageSink& sink);

// Walking the event table from the chart window: the next (or previous) row goes into the active
// slot and is drawn, until one shows the aspect pattern when a pattern is asked for. The orb list
// `ap_search_orb`.
const std::vector<std::pair<std::string, double>>& walk_orbs(); // caption, degrees
struct AspectPattern {
    bool wanted = false;
    int body_a = 0, body_b = 1; // entries of the chart list
    double angle = 0;           // degrees
    double orb = 10;            // degrees
};
enum class WalkResult { moved, end_of_table, no_table };
WalkResult walk_table(Session& s, bool forward, const AspectPattern& pattern, MessageSink& sink);

// The window that prints the charts of an event as one document: a box for each page of each
// world view, and the birth chart or its epoch.
enum class PrintedPage { standard, star, compare, harmonics, helio_triple, all_planets };
struct ChartPrintBox {
    std::string name;  // the box, e.g. "geo_standard"
    const char* group; // the frame it stands in
    int group_index;   // the group of ChartPrintSelection
    PrintedPage page;
    const char* caption;
};
const std::vector<ChartPrintBox>& chart_print_boxes();
// The selection of the ticked boxes.
ChartPrintSelection chart_print_selection(const std::vector<std::string>& ticked);
// Makes the active slot's event (or its epoch) the one printed, as a chart command does before
// it draws, and a user slot other than 0 the outer event of the comparison pages. False, with
// the message, when either holds no event.
bool chart_print_request(Session& s, bool epoch, int compare_slot, MessageSink& sink);

} // namespace celestark
