#include "screens/event_checks.h"

#include "session/calendar.h"
#include "session/session.h"
#include "session/text.h"
#include "session/zones.h"
#include "store/event_rows.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/option_store.h"

#include <cctype>

namespace celestark {

namespace {

using store::Outcome;

std::string& cell(EventInput& input, int column) {
    return input.cells[static_cast<std::size_t>(column)];
}

double value_of(const std::string& text) {
    return text_to_number(text);
}

bool blank(const std::string& text) {
    return trim(text).empty();
}

// A whole number as the window takes it: digits with an optional leading minus.
bool whole_number(const std::string& text) {
    const std::string t = trim(text);
    std::size_t i = (!t.empty() && t[0] == '-') ? 1 : 0;
    if (i >= t.size()) return false;
    for (; i < t.size(); ++i)
        if (!std::isdigit(static_cast<unsigned char>(t[i]))) return false;
    return true;
}

// A whole number from `low` to `high`; a blank passes when it will take a default.
bool in_range(const std::string& text, double low, double high, bool blank_passes) {
    if (blank(text)) return blank_passes;
    if (!whole_number(text)) return false;
    const double v = value_of(text);
    return v >= low && v <= high;
}

bool one_of(const std::string& text, std::initializer_list<const char*> values) {
    const std::string t = trim(text);
    for (const char* v : values)
        if (t == v) return true;
    return false;
}

std::string to_lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

void box(MessageSink& sink, const std::string& text) {
    sink.message(product_word, text, MessageIcon::information);
}

// Before the Gregorian reform, by year, month and day.
bool before_reform(const EventInput& input) {
    const double year = value_of(input.cells[col::year]);
    const double month = value_of(input.cells[col::month]);
    const double day = value_of(input.cells[col::day]);
    return year < 1582 || (year == 1582 && month < 10) || (year == 1582 && month == 10 && day < 15);
}

store::Recordset* open_table(Session& s) {
    return s.stores && s.stores->event_table.is_open() ? &s.stores->event_table : nullptr;
}

EventTable table_of(store::Recordset& rs) {
    return EventTable{rs, rs.index_name().empty() ? std::string("Name_Event") : rs.index_name()};
}

void no_table(MessageSink& sink) {
    sink.message(product_word, "No event table is open - the event cannot be stored",
                 MessageIcon::exclamation);
}

void set_clean(Session& s, EventInput& input) {
    input.event_dirty = false;
    s.event_dirty = false;
}

} // namespace

InputOptions read_input_options(Session& s) {
    const auto flag = [&s](const char* field) {
        return read_option(s, store::general_options_table, field).as_int() != 0;
    };
    InputOptions o;
    o.day_first = flag("option_date_format");
    o.twelve_hour = flag("option_clock_format");
    o.time_input_secs = flag("option_time_input_secs");
    o.lat_long_secs = flag("option_lat_long_secs");
    return o;
}

std::string degree_caption(const InputOptions& options) {
    return options.lat_long_secs ? "Degs           Mins Secs" : "Degs           Mins";
}

std::string date_caption(const InputOptions& options) {
    return options.day_first ? "Day  Month Year" : "Month Day  Year";
}

const std::vector<std::string>& event_kinds() {
    static const std::vector<std::string> kinds = {
        "Birth",      "Death",      "Epoch",      "Test",         "Today",     "Historic Event",
        "Battle",     "War",        "Coronation", "Earthquake",   "Tornado",   "Accident",
        "Baptism",    "Conception", "Ordenation", "Storm",        "Marriage",  "Divorce",
        "Engagement", "Separation", "Trial",      "Kindergarten", "School",    "University",
        "Job",        "Retired",    "Move",       "House",        "Imprisoned"};
    return kinds;
}

const std::vector<std::string>& person_titles() {
    static const std::vector<std::string> titles = {
        "Mr",       "Ms",      "Dr",      "Professor", "King",       "Queen",    "Pope",  "Prince",
        "Princess", "Emperor", "Empress", "Bishop",    "Archbishop", "Cardinal", "Sultan"};
    return titles;
}

const std::vector<std::string>& time_zone_entries() {
    static const std::vector<std::string> entries = [] {
        std::vector<std::string> e;
        for (const Zone& z : zones) e.emplace_back(z.standard);
        for (const Zone& z : zones) e.emplace_back(z.dst);
        // The list has always offered Baghdad's wartime zone as "GGW".
        for (const Zone& z : zones) e.emplace_back(z.war == "BGW" ? "GGW" : z.war);
        return e;
    }();
    return entries;
}

bool check_digits(std::string_view text, MessageSink& sink) {
    bool minus_told = false, illegal_told = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '-') {
            if (i != 0 && !minus_told) {
                box(sink, "Minus sign not allowed - Re-enter number");
                minus_told = true;
            }
        } else if (c < '0' || c > '9') {
            if (!illegal_told) {
                box(sink, "Illegal character - Re-enter number");
                illegal_told = true;
            }
        }
    }
    return !minus_told && !illegal_told;
}

bool check_field(FieldCheck check, std::string& text, bool blank_allowed, bool twelve_hour,
                 MessageSink& sink) {
    if (check == FieldCheck::none) return true;
    text = trim(text);
    if (text.empty()) {
        if (blank_allowed) return true;
        box(sink, "Entry cannot be left BLANK");
        return false;
    }
    // A number in a range, with its message.
    const auto number = [&](double low, double high, const char* message) {
        if (!check_digits(text, sink)) return false;
        const double v = value_of(text);
        if (v < low || v > high) {
            box(sink, message);
            return false;
        }
        return true;
    };
    // A letter code in the case the check asks for.
    const auto code = [&](std::string cased, std::initializer_list<const char*> valid,
                          const char* message) {
        for (const char* v : valid)
            if (cased == v) {
                text = cased;
                return true;
            }
        box(sink, message);
        return false;
    };
    switch (check) {
    case FieldCheck::none:
        return true;
    case FieldCheck::day:
        return number(1, 31, "Invalid number of days");
    case FieldCheck::month:
        return number(1, 12, "Invalid month");
    case FieldCheck::year:
        return check_digits(text, sink);
    case FieldCheck::hours:
        return number(0, twelve_hour ? 12 : 23, "Invalid number of hours");
    case FieldCheck::minutes:
        return number(0, 59, "Range 0 to 59");
    case FieldCheck::latitude:
        return number(0, 90, "Valid Range 0 to 90");
    case FieldCheck::longitude:
        return number(0, 180, "Valid Range 0 to 180");
    case FieldCheck::angle_359:
        return number(0, 359, "Valid Range 0 to 359");
    case FieldCheck::north_south:
        return code(to_upper(text), {"N", "S"}, "Only N & S valid");
    case FieldCheck::east_west:
        return code(to_upper(text), {"E", "W"}, "Only E & W valid");
    case FieldCheck::time_code:
        return code(to_upper(text), {"L", "Z", "M"},
                    "Enter 'L'- Local, 'Z'- Zone time or 'M'- Meridian time");
    case FieldCheck::calendar:
        return code(text, {"G", "J"}, "Enter G for Gregorian or J for Julian date");
    case FieldCheck::am_pm:
        return code(to_lower(text), {"am", "pm"}, "Only 'am' or 'pm' are valid");
    case FieldCheck::dst: {
        if (!check_digits(text, sink)) return false;
        const double v = value_of(text);
        if (v != 0 && v != 1 && v != 2)
            box(sink, "WARNING - Daylight Saving time normally 1 or 2 hours");
        return true;
    }
    case FieldCheck::time_zone:
        if (zone_meridian(text).unknown) {
            sink.message("INVALID TIME ZONE", "Only a BLANK or a standard TRIGRAPH allowed",
                         MessageIcon::information);
            return false;
        }
        return true;
    }
    return true;
}

const std::vector<InputField>& input_fields() {
    using F = FieldCheck;
    static const std::vector<InputField> fields = {
        {"inp_event", col::event, F::none, true, false},
        {"inp_version", col::version, F::none, true, false},
        {"inp_title", col::title, F::none, true, false},
        {"inp_surname", col::surname, F::none, true, false},
        {"inp_firstname", col::firstname, F::none, true, false},
        {"inp_place", col::place, F::none, true, false},
        {"inp_lat_deg", col::lat_deg, F::latitude, true, false},
        {"inp_lat_ns", col::lat_ns, F::north_south, true, false},
        {"inp_lat_min", col::lat_min, F::minutes, true, false},
        {"inp_lat_sec", col::lat_sec, F::minutes, true, false},
        {"inp_long_deg", col::long_deg, F::longitude, true, false},
        {"inp_long_ew", col::long_ew, F::east_west, true, false},
        {"inp_long_min", col::long_min, F::minutes, true, false},
        {"inp_long_sec", col::long_sec, F::minutes, true, false},
        {"INP_DAY", col::day, F::day, false, false},
        {"INP_MONTH", col::month, F::month, false, false},
        {"INP_YEAR", col::year, F::year, false, false},
        {"INP_GJ", col::gj, F::calendar, false, false},
        {"inp_hours", col::hours, F::hours, false, false},
        {"inp_mins", col::mins, F::minutes, false, false},
        {"inp_secs", col::secs, F::minutes, false, false},
        {"inp_am_pm", am_pm_column, F::am_pm, false, false},
        {"inp_lz", col::lz, F::time_code, false, false},
        {"inp_time_zone", col::time_zone, F::time_zone, true, false},
        {"inp_med_deg", col::med_deg, F::longitude, true, false},
        {"inp_med_ew", col::med_ew, F::east_west, true, false},
        {"inp_med_min", col::med_min, F::minutes, true, false},
        {"inp_dst", col::dst, F::dst, true, false},
        {"inp_source", col::source, F::none, true, false},
        {"inp_group", col::group, F::none, true, false},
        {"inp_reference", col::reference, F::none, true, false},
        {"inp_comments", col::comments, F::none, true, false},
        {"inp_epoch_place", col::epoch_place, F::none, true, true},
        {"inp_epoch_lat_deg", col::epoch_lat_deg, F::none, true, true},
        {"inp_epoch_lat_ns", col::epoch_lat_ns, F::none, true, true},
        {"inp_epoch_lat_min", col::epoch_lat_min, F::none, true, true},
        {"inp_epoch_lat_sec", col::epoch_lat_sec, F::none, true, true},
        {"inp_epoch_long_deg", col::epoch_long_deg, F::none, true, true},
        {"inp_epoch_long_ew", col::epoch_long_ew, F::none, true, true},
        {"inp_epoch_long_min", col::epoch_long_min, F::none, true, true},
        {"inp_epoch_long_sec", col::epoch_long_sec, F::none, true, true},
        {"inp_epoch_day", col::epoch_day, F::none, true, true},
        {"inp_epoch_month", col::epoch_month, F::none, true, true},
        {"inp_epoch_year", col::epoch_year, F::none, true, true},
        {"inp_epoch_hours", col::epoch_hours, F::none, true, true},
        {"inp_epoch_mins", col::epoch_mins, F::none, true, true},
        {"inp_epoch_secs", col::epoch_secs, F::none, true, true},
        {"inp_epoch_moon_type", col::epoch_moon, F::none, true, true},
        {"inp_epoch_months", col::epoch_months, F::none, true, true},
        {"inp_moon_on_asc", col::moon_on_asc, F::none, true, true},
    };
    return fields;
}

const InputField* find_input_field(std::string_view name) {
    for (const InputField& f : input_fields())
        if (name == f.name) return &f;
    return nullptr;
}

std::string& field_text(EventInput& input, const InputField& field) {
    if (field.column == am_pm_column) return input.am_pm;
    return cell(input, field.column);
}

TimeMode time_mode(const EventInput& input) {
    const std::string lz = to_upper(trim(input.cells[col::lz]));
    if (lz == "L") return TimeMode::local;
    if (lz == "M") return TimeMode::meridian;
    return TimeMode::zone;
}

bool shown_in_mode(std::string_view control, TimeMode mode) {
    const bool zone_control =
        control == "label_time_zone" || control == "inp_time_zone" || control == "time_zones";
    bool mode_control = zone_control;
    for (const char* c : time_mode_controls) mode_control = mode_control || control == c;
    if (!mode_control) return true;
    switch (mode) {
    case TimeMode::local:
        return false;
    case TimeMode::zone:
        return zone_control;
    case TimeMode::meridian:
        return !zone_control;
    }
    return true;
}

std::string apply_time_code(EventInput& input) {
    switch (time_mode(input)) {
    case TimeMode::local:
        for (int c : {col::time_zone, col::med_deg, col::med_min, col::med_ew, col::dst})
            cell(input, c).clear();
        return {};
    case TimeMode::meridian:
        cell(input, col::time_zone).clear();
        return "inp_med_deg";
    case TimeMode::zone:
        return "inp_time_zone";
    }
    return {};
}

LeaveResult leave_field(EventInput& input, std::string_view name, const InputOptions& options,
                        MessageSink& sink) {
    const InputField* field = find_input_field(name);
    if (!field || field->read_only || field->check == FieldCheck::none) return {};
    std::string& text = field_text(input, *field);
    LeaveResult result;
    if (!check_field(field->check, text, field->blank_allowed, options.twelve_hour, sink)) {
        result.ok = false;
        return result;
    }
    switch (field->column) {
    case col::hours:
        // Twelve o'clock is kept as 0: twelve in the morning is midnight, and "pm" adds 12.
        if (options.twelve_hour && value_of(text) == 12) text = "0";
        break;
    case col::year:
        if (!input.event_bookmark.empty()) break;
        if (before_reform(input)) {
            cell(input, col::gj) = "J";
            result.focus = "INP_GJ";
        }
        if (value_of(text) < 1848) {
            cell(input, col::lz) = "L";
            const std::string focus = apply_time_code(input);
            if (!focus.empty()) result.focus = focus;
        }
        break;
    case col::lz:
        result.focus = apply_time_code(input);
        break;
    case col::time_zone:
        if (!text.empty()) {
            const ZoneMeridian m = zone_meridian(text);
            cell(input, col::med_deg) = m.degrees;
            cell(input, col::med_min) = m.minutes;
            cell(input, col::med_ew) = m.ew;
            cell(input, col::dst) = m.dst;
        }
        break;
    default:
        break;
    }
    return result;
}

void fit_clock(EventInput& input, bool twelve_hour) {
    std::string& hours = cell(input, col::hours);
    if (!twelve_hour) {
        if (!input.am_pm.empty()) hours = fold_pm(hours, input.am_pm);
        input.am_pm.clear();
        return;
    }
    if (input.am_pm == "am" || input.am_pm == "pm") return;
    input.am_pm = "am";
    if (!whole_number(hours)) return;
    const int h = static_cast<int>(value_of(hours));
    if (h >= 12) {
        hours = std::to_string(h - 12);
        input.am_pm = "pm";
    }
}

bool check_place_cells(EventRow& cells, int place_column, MessageSink& sink) {
    bool ok = true;
    const auto fail = [&](const char* line) {
        sink.input_error(line);
        ok = false;
    };
    // The place's name, then its latitude and longitude, in the order of the event row.
    const auto c = [&](int offset) -> std::string& {
        return cells[static_cast<std::size_t>(place_column + offset)];
    };
    enum { name, lat_deg, lat_ns, lat_min, lat_sec, long_deg, long_ew, long_min, long_sec };
    if (blank(c(name))) fail("PLACE - Cannot be left blank or with only spaces");

    if (!in_range(c(lat_deg), 0, 90, true))
        fail("DEGREES OF LATITUDE - Invalid entry - Must be a number between 0 and 90");
    if (!blank(c(lat_ns)) && !one_of(c(lat_ns), {"N", "S"}))
        fail("LATITUDE NORTH/SOUTH - 'N' or 'S' are the only valid entries");
    if (!in_range(c(lat_min), 0, 59, true))
        fail("MINUTES OF LATITUDE - Invalid entry - Must be a number between 0 and 59");
    if (!in_range(c(lat_sec), 0, 59, true))
        fail("SECONDS OF LATITUDE - Invalid entry - Must be a number between 0 and 59");
    if (value_of(c(lat_deg)) == 90 && (value_of(c(lat_min)) != 0 || value_of(c(lat_sec)) != 0))
        fail("LATITUDE - Cannot exceed 90 degrees");

    if (!in_range(c(long_deg), 0, 180, true))
        fail("DEGREES OF LONGITUDE - Invalid entry - Must be a number between 0 and 180");
    if (!blank(c(long_ew)) && !one_of(c(long_ew), {"E", "W"}))
        fail("LONGITUDE EAST/WEST - 'E' or 'W' are the only valid entries");
    if (!in_range(c(long_min), 0, 59, true))
        fail("MINUTES OF LONGITUDE - Invalid entry - Must be a number between 0 and 59");
    if (!in_range(c(long_sec), 0, 59, true))
        fail("SECONDS OF LONGITUDE - Invalid entry - Must be a number between 0 and 59");
    if (value_of(c(long_deg)) == 180 && (value_of(c(long_min)) != 0 || value_of(c(long_sec)) != 0))
        fail("LONGITUDE - Cannot exceed 180 degrees");
    return ok;
}

bool check_event_fields(EventInput& input, MessageSink& sink) {
    bool ok = true;
    const auto fail = [&](const char* line) {
        sink.input_error(line);
        ok = false;
    };
    const auto c = [&](int column) -> std::string& { return cell(input, column); };

    if (blank(c(col::event))) fail("EVENT - Cannot be left blank or with only spaces");
    for (int column : {col::title, col::version})
        if (blank(c(column))) c(column) = " ";
    if (blank(c(col::surname))) fail("SURNAME - Cannot be left blank or with only spaces");
    if (blank(c(col::firstname))) c(col::firstname) = " ";
    if (!check_place_cells(input.cells, col::place, sink)) ok = false;

    const bool day_ok = in_range(c(col::day), 1, 31, false);
    if (!day_ok) fail("DAY OF THE MONTH - Invalid entry ");
    // The field's own check keeps the month in range as it is typed; a month that came otherwise
    // is named here rather than passed to the calendar.
    const bool month_ok = in_range(c(col::month), 1, 12, false);
    if (!month_ok) fail("MONTH - Invalid entry - Must be a number between 1 and 12");
    const bool year_ok = whole_number(c(col::year));
    if (!year_ok) {
        fail("YEAR - Cannot be left blank or with only spaces ");
        fail("       0 and negative years are allowed");
        fail("       NOTE: enter for example year -35 for 36BC");
    }
    if (!one_of(c(col::gj), {"G", "J"}))
        fail("GREGORIAN/JULIAN DATE - 'G' or 'J' are the only valid entries");
    if (day_ok && month_ok && year_ok) {
        const int month = static_cast<int>(value_of(c(col::month)));
        const int year = text_to_i16(c(col::year));
        if (value_of(c(col::day)) > days_in_month(month, year, trim(c(col::gj))))
            fail("DATE - Invalid number of days for the month");
    }

    if (blank(c(col::hours))) fail("HOURS - Cannot be left blank or with only spaces");
    if (blank(c(col::mins))) fail("MINUTES - Cannot be left blank or with only spaces");
    if (blank(c(col::secs))) fail("SECONDS - Cannot be left blank or with only spaces");

    const std::string lz = trim(c(col::lz));
    if (lz != "Z" && lz != "M" && lz != "L")
        fail("ZONE TIME/LOCAL TIME - 'Z','M' or 'L' are the only valid entries");
    if (lz == "L") {
        if (value_of(c(col::med_deg)) != 0 || value_of(c(col::med_min)) != 0)
            fail("S.T. MERIDIAN - Must be 0 or blank with LOCAL TIME");
        if (value_of(c(col::dst)) != 0)
            fail("DAYLIGHT SAVING TIME - Must be 0 or blank with LOACAL TIME");
    } else if (lz == "Z") {
        if (zone_meridian(trim(c(col::time_zone))).unknown)
            fail("Invalid TIME ZONE TRIGRAPH - only standard TRIGRAPHS allowed");
    } else if (lz == "M") {
        if (!in_range(c(col::med_deg), 0, 180, true))
            fail("DEGREES OF S.T. MERIDIAN - Invalid entry - Must be a number between 0 and 180");
        if (!blank(c(col::med_ew)) && !one_of(c(col::med_ew), {"E", "W"}))
            fail("S.T. MERIDIAN EAST/WEST - 'E' or 'W' are the only valid entries");
        if (!in_range(c(col::med_min), 0, 59, true))
            fail("MINUTES OF S.T. MERIDIAN - Invalid entry - Must be a number between 0 and 59");
        if (value_of(c(col::med_deg)) == 180 && value_of(c(col::med_min)) != 0)
            fail("MERIDIAN - Cannot exceed 180 degrees");
    }
    if (value_of(c(col::dst)) < 0) fail("DAYLIGHT SAVING TIME - Must be positive");

    if (!ok) {
        sink.show_input_errors();
        return false;
    }
    for (int column : {col::lat_deg, col::lat_min, col::lat_sec, col::long_deg, col::long_min,
                       col::long_sec, col::med_deg, col::med_min, col::dst})
        if (blank(c(column))) c(column) = "0";
    for (int column : {col::med_ew, col::long_ew})
        if (blank(c(column))) c(column) = "W";
    if (blank(c(col::lat_ns))) c(col::lat_ns) = "N";
    // A text field holding nothing is stored as one blank.
    for (int column : {col::source, col::group, col::reference, col::comments})
        if (blank(c(column))) c(column) = " ";
    return true;
}

void open_on_active_slot(Session& s, EventInput& input, const InputOptions& options) {
    const int slot = s.event_slots.active_event;
    if (slot_is_empty(s.event_slots[slot]))
        new_event_defaults(input);
    else
        slot_to_screen(s.event_slots, slot, input);
    fit_clock(input, options.twelve_hour);
    set_clean(s, input);
}

bool check_event_changed(Session& s, EventInput& input, bool ask, MessageSink& sink) {
    if (!input.event_dirty) return true;
    const int option = static_cast<int>(
        read_option(s, store::general_options_table, "option_save_chart").as_int());
    if (option == 0) return true;
    store::Recordset* rs = open_table(s);
    if (!rs) {
        no_table(sink);
        return true;
    }
    EventTable table = table_of(*rs);
    EventEditHooks hooks;
    hooks.validate = [&] { return check_event_fields(input, sink); };
    const SaveResult result = offer_save_event(input, table, sink, option, ask, hooks);
    s.event_dirty = input.event_dirty;
    return result == SaveResult::not_needed || result == SaveResult::declined ||
           result == SaveResult::saved;
}

bool save_input_event(Session& s, EventInput& input, MessageSink& sink) {
    if (!check_event_fields(input, sink)) return false;
    store::Recordset* rs = open_table(s);
    if (!rs) {
        no_table(sink);
        return false;
    }
    EventTable table = table_of(*rs);
    if (save_event(input, table, sink) != SaveResult::saved) return false;
    set_clean(s, input);
    return true;
}

bool add_input_event(Session& s, EventInput& input, MessageSink& sink) {
    const bool valid = check_event_fields(input, sink);
    const std::string kept = input.event_bookmark;
    input.event_bookmark.clear();
    bool saved = false;
    if (valid) {
        if (store::Recordset* rs = open_table(s)) {
            EventTable table = table_of(*rs);
            saved = save_event(input, table, sink) == SaveResult::saved;
        } else {
            no_table(sink);
        }
    }
    if (input.event_bookmark.empty()) input.event_bookmark = kept;
    if (saved) set_clean(s, input);
    return saved;
}

bool delete_input_event(Session& s, EventInput& input, const InputOptions& options,
                        MessageSink& sink) {
    if (!sink.ask("DELETE ACTIVE EVENT ?", "Are you sure you want to delete the Active Event "
                                           "both from the Table(Disk) and from the screen"))
        return false;
    const std::string bookmark = input.event_bookmark;
    if (bookmark.empty()) return false;
    store::Recordset* rs = open_table(s);
    if (!rs || rs->go_to(bookmark) != Outcome::ok || rs->delete_row() != Outcome::ok) {
        sink.message(product_word, "The event could not be deleted", MessageIcon::exclamation);
        return false;
    }
    // The slots keep the event they show, but it is no longer a stored one.
    for (int row = slot::first_user; row < slot::default_event; ++row)
        if (s.event_slots[row][col::bookmark] == bookmark)
            s.event_slots[row][col::bookmark].clear();
    new_event_defaults(input);
    fit_clock(input, options.twelve_hour);
    set_clean(s, input);
    return true;
}

StepResult step_input_event(Session& s, EventInput& input, bool forward,
                            const InputOptions& options, MessageSink& sink) {
    store::Recordset* rs = open_table(s);
    if (!rs) return StepResult::no_table;
    if (!check_event_changed(s, input, false, sink)) return StepResult::refused;
    const std::string from = input.event_bookmark;
    const bool placed = !from.empty() && rs->go_to(from) == Outcome::ok;
    Outcome moved;
    if (placed)
        moved = forward ? rs->move_next() : rs->move_previous();
    else
        moved = forward ? rs->move_first() : rs->move_last();
    if (moved != Outcome::ok || !rs->has_current()) {
        if (placed) rs->go_to(from);
        return StepResult::at_end;
    }
    EventSlots loaded;
    load_event_row(*rs, loaded, slot::work);
    slot_to_screen(loaded, slot::work, input);
    fit_clock(input, options.twelve_hour);
    set_clean(s, input);
    return StepResult::moved;
}

bool store_input_in_slot(Session& s, EventInput& input, int user_slot, MessageSink& sink) {
    if (user_slot < slot::first_user || user_slot > slot::last_user) return false;
    if (!check_event_changed(s, input, false, sink)) return false;
    if (!check_event_fields(input, sink)) return false;
    EventEditHooks hooks;
    hooks.refresh_active_options = [&] { refresh_session_state(s, sink); };
    place_in_slot(input, s.event_slots, user_slot, hooks);
    return true;
}

bool exit_input(Session& s, EventInput& input, MessageSink& sink) {
    return check_event_changed(s, input, false, sink);
}

} // namespace celestark
