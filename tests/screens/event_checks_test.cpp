// The checks of the event input window: digits, the light check of each field with its effects,
// the full check's list in order, and the window's commands on a started session.
#include "../store/program_folder.h"
#include "../support/events.h"

#include "screens/event_checks.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_store.h"

#include <algorithm>
#include <string>
#include <vector>

namespace celestark::testing {
namespace {

using Lines = std::vector<std::string>;

// Records when the gathered input errors are shown.
struct ErrorSink : RecordingSink {
    int shown = 0;
    void show_input_errors() override { ++shown; }
    Lines texts() const {
        Lines out;
        for (const auto& m : messages) out.push_back(m.text);
        return out;
    }
};

TEST(EventChecks, DigitsTellEachKindOfFaultOnce) {
    struct Case {
        const char* text;
        bool ok;
        Lines boxes;
    };
    const Case cases[] = {
        {"1987", true, {}},
        {"-35", true, {}},
        {"", true, {}},
        {"19-5", false, {"Minus sign not allowed - Re-enter number"}},
        {"1a2b", false, {"Illegal character - Re-enter number"}},
        {"a-",
         false,
         {"Illegal character - Re-enter number", "Minus sign not allowed - Re-enter number"}},
        {"4.5", false, {"Illegal character - Re-enter number"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        ErrorSink sink;
        EXPECT_EQ(check_digits(c.text, sink), c.ok);
        EXPECT_EQ(sink.texts(), c.boxes);
        for (const auto& m : sink.messages) EXPECT_EQ(m.title, "Celestark");
    }
}

TEST(EventChecks, LightChecksKeepTheirRangesAndCase) {
    using F = FieldCheck;
    struct Case {
        F check;
        const char* text;
        bool blank_allowed, twelve_hour, ok;
        const char* box; // "" for none
        const char* after;
    };
    const Case cases[] = {
        {F::day, "0", false, true, false, "Invalid number of days", "0"},
        {F::day, "", false, true, false, "Entry cannot be left BLANK", ""},
        {F::day, " 7 ", false, true, true, "", "7"},
        {F::year, "-35", false, true, true, "", "-35"},
        {F::hours, "12", false, true, true, "", "12"},
        {F::hours, "13", false, true, false, "Invalid number of hours", "13"},
        {F::hours, "23", false, false, true, "", "23"},
        {F::latitude, "", true, true, true, "", ""},
        {F::north_south, "s", true, true, true, "", "S"},
        {F::time_code, "m", false, true, true, "", "M"},
        {F::calendar, "g", false, true, false, "Enter G for Gregorian or J for Julian date", "g"},
        {F::am_pm, "PM", false, true, true, "", "pm"},
        {F::dst, "3", true, true, true, "WARNING - Daylight Saving time normally 1 or 2 hours",
         "3"},
        {F::dst, "1-", true, true, false, "Minus sign not allowed - Re-enter number", "1-"},
        {F::time_zone, "", true, true, true, "", ""},
        {F::time_zone, "GGW", true, true, false, "Only a BLANK or a standard TRIGRAPH allowed",
         "GGW"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " check " + std::to_string(static_cast<int>(c.check)));
        ErrorSink sink;
        std::string text = c.text;
        EXPECT_EQ(check_field(c.check, text, c.blank_allowed, c.twelve_hour, sink), c.ok);
        EXPECT_EQ(text, c.after);
        if (std::string(c.box).empty()) {
            EXPECT_TRUE(sink.messages.empty());
        } else {
            ASSERT_EQ(sink.messages.size(), 1u);
            EXPECT_EQ(sink.messages[0].text, c.box);
            EXPECT_EQ(sink.messages[0].title,
                      c.check == F::time_zone ? "INVALID TIME ZONE" : "Celestark");
        }
    }
}

EventInput new_event() {
    EventInput in;
    new_event_defaults(in);
    return in;
}

TEST(EventChecks, LeavingTheYearOfANewEventSetsCalendarAndTimeCode) {
    struct Case {
        const char *day, *month, *year, *bookmark;
        const char *gj, *lz, *focus;
    };
    const Case cases[] = {
        {"4", "10", "1582", "", "J", "L", "INP_GJ"},
        {"15", "10", "1582", "", "G", "L", ""},
        {"31", "12", "1500", "", "J", "L", "INP_GJ"},
        {"1", "1", "1847", "", "G", "L", ""},
        {"1", "1", "1848", "", "G", "Z", ""},
        {"1", "1", "1500", "12", "G", "Z", ""}, // a stored event keeps what it has
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.day) + "/" + c.month + "/" + c.year);
        ErrorSink sink;
        EventInput in = new_event();
        in.event_bookmark = c.bookmark;
        in.cells[col::day] = c.day;
        in.cells[col::month] = c.month;
        in.cells[col::year] = c.year;
        in.cells[col::time_zone] = "CET";
        in.cells[col::med_deg] = "15";
        in.cells[col::med_ew] = "E";
        const LeaveResult r = leave_field(in, "INP_YEAR", InputOptions{}, sink);
        EXPECT_TRUE(r.ok);
        EXPECT_EQ(in.cells[col::gj], c.gj);
        EXPECT_EQ(in.cells[col::lz], c.lz);
        EXPECT_EQ(r.focus, c.focus);
        const bool local = std::string(c.lz) == "L";
        EXPECT_EQ(time_mode(in), local ? TimeMode::local : TimeMode::zone);
        // Local time hides and empties the zone and meridian.
        EXPECT_EQ(in.cells[col::time_zone], local ? "" : "CET");
        EXPECT_EQ(in.cells[col::med_deg], local ? "" : "15");
    }
}

TEST(EventChecks, LeavingFieldsHasItsEffects) {
    ErrorSink sink;
    EventInput in = new_event();
    InputOptions twelve, twenty_four;
    twenty_four.twelve_hour = false;

    in.cells[col::hours] = "12";
    EXPECT_TRUE(leave_field(in, "inp_hours", twelve, sink).ok);
    EXPECT_EQ(in.cells[col::hours], "0");
    in.cells[col::hours] = "12";
    EXPECT_TRUE(leave_field(in, "inp_hours", twenty_four, sink).ok);
    EXPECT_EQ(in.cells[col::hours], "12");

    in.cells[col::med_deg] = "75";
    in.cells[col::time_zone] = "GGW"; // offered by the list, unknown to the zone table
    EXPECT_FALSE(leave_field(in, "inp_time_zone", twelve, sink).ok);
    EXPECT_EQ(in.cells[col::time_zone], "GGW");
    EXPECT_EQ(in.cells[col::med_deg], "75");

    in.cells[col::lat_ns] = "q";
    EXPECT_FALSE(leave_field(in, "inp_lat_ns", twelve, sink).ok);
    EXPECT_EQ(sink.messages.back().text, "Only N & S valid");
    EXPECT_EQ(in.cells[col::lat_ns], "q"); // the text stays for the user to mend
}

TEST(EventChecks, TheClockFitsTheOption) {
    struct Case {
        const char *hours, *am_pm;
        bool twelve;
        const char *hours_after, *am_pm_after;
    };
    const Case cases[] = {
        {"15", "", true, "3", "pm"},  {"0", "", true, "0", "am"},   {"12", "", true, "0", "pm"},
        {"24", "", true, "12", "pm"}, {"3", "pm", false, "15", ""}, {"3", "am", true, "3", "am"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.hours) + c.am_pm);
        EventInput in = new_event();
        in.cells[col::hours] = c.hours;
        in.am_pm = c.am_pm;
        fit_clock(in, c.twelve);
        EXPECT_EQ(in.cells[col::hours], c.hours_after);
        EXPECT_EQ(in.am_pm, c.am_pm_after);
        // Stored again, the hour is what it was.
        if (std::string(c.am_pm).empty()) {
            EXPECT_EQ(fold_pm(in.cells[col::hours], in.am_pm), c.hours);
        }
    }
}

// A new event that passes the full check.
EventInput good_event() {
    const EventCells curie = {
        {col::surname, "Curie"}, {col::firstname, "Marie"}, {col::place, "Warsaw"},
        {col::lat_deg, "52"},    {col::lat_min, "15"},      {col::long_deg, "21"},
        {col::long_ew, "E"},     {col::day, "7"},           {col::month, "11"},
        {col::year, "1867"},     {col::time_zone, "CET"},   {col::med_deg, "15"},
        {col::med_ew, "E"}};
    EventInput in = new_input(curie);
    in.event_dirty = false;
    return in;
}

TEST(EventChecks, TheFullCheckListsEveryFaultInOrder) {
    using Cells = EventCells;
    const Lines year_lines = {"YEAR - Cannot be left blank or with only spaces ",
                              "       0 and negative years are allowed",
                              "       NOTE: enter for example year -35 for 36BC"};
    struct Case {
        const char* name;
        Cells cells;
        Lines lines;
    };
    const std::vector<Case> cases = {
        {"valid", {}, {}},
        {"year -35 is 36 BC", {{col::year, "-35"}}, {}},
        {"year 0", {{col::year, "0"}}, {}},
        {"31 April",
         {{col::day, "31"}, {col::month, "4"}},
         {"DATE - Invalid number of days for the month"}},
        {"29 February 1900 Julian",
         {{col::day, "29"}, {col::month, "2"}, {col::year, "1900"}, {col::gj, "J"}},
         {}},
        {"29 February 1900 Gregorian",
         {{col::day, "29"}, {col::month, "2"}, {col::year, "1900"}, {col::gj, "G"}},
         {"DATE - Invalid number of days for the month"}},
        {"latitude 90 0", {{col::lat_deg, "90"}, {col::lat_min, "0"}}, {}},
        {"latitude 90 1",
         {{col::lat_deg, "90"}, {col::lat_min, "1"}},
         {"LATITUDE - Cannot exceed 90 degrees"}},
        {"longitude 180 0 1",
         {{col::long_deg, "180"}, {col::long_sec, "1"}},
         {"LONGITUDE - Cannot exceed 180 degrees"}},
        {"minus sign not first", {{col::year, "19-5"}}, year_lines},
        {"blank year", {{col::year, "  "}}, year_lines},
        {"month out of range",
         {{col::month, "13"}},
         {"MONTH - Invalid entry - Must be a number between 1 and 12"}},
        {"dst 3 warns only as typed", {{col::lz, "M"}, {col::dst, "3"}}, {}},
        {"GGW from the list",
         {{col::time_zone, "GGW"}},
         {"Invalid TIME ZONE TRIGRAPH - only standard TRIGRAPHS allowed"}},
        {"BGW typed", {{col::time_zone, "BGW"}}, {}},
        {"zone time without a zone",
         {{col::time_zone, ""}},
         {"Invalid TIME ZONE TRIGRAPH - only standard TRIGRAPHS allowed"}},
        {"local time with a meridian and a saving",
         {{col::lz, "L"}, {col::med_deg, "15"}, {col::dst, "1"}},
         {"S.T. MERIDIAN - Must be 0 or blank with LOCAL TIME",
          "DAYLIGHT SAVING TIME - Must be 0 or blank with LOACAL TIME"}},
        {"local time with blanks",
         {{col::lz, "L"}, {col::med_deg, ""}, {col::time_zone, ""}, {col::dst, ""}},
         {}},
        {"bad meridian",
         {{col::lz, "M"}, {col::med_deg, "181"}, {col::med_ew, "X"}, {col::med_min, "60"}},
         {"DEGREES OF S.T. MERIDIAN - Invalid entry - Must be a number between 0 and 180",
          "S.T. MERIDIAN EAST/WEST - 'E' or 'W' are the only valid entries",
          "MINUTES OF S.T. MERIDIAN - Invalid entry - Must be a number between 0 and 59"}},
        {"meridian 180 1",
         {{col::lz, "M"}, {col::med_deg, "180"}, {col::med_min, "1"}},
         {"MERIDIAN - Cannot exceed 180 degrees"}},
        {"everything",
         {{col::event, "  "},
          {col::surname, ""},
          {col::place, " "},
          {col::lat_deg, "95"},
          {col::lat_ns, "X"},
          {col::lat_min, "60"},
          {col::lat_sec, "x"},
          {col::long_deg, "200"},
          {col::long_ew, "N"},
          {col::long_min, "-1"},
          {col::long_sec, "60"},
          {col::day, "0"},
          {col::year, ""},
          {col::gj, "X"},
          {col::hours, ""},
          {col::mins, " "},
          {col::secs, ""},
          {col::lz, "X"},
          {col::dst, "-2"}},
         {"EVENT - Cannot be left blank or with only spaces",
          "SURNAME - Cannot be left blank or with only spaces",
          "PLACE - Cannot be left blank or with only spaces",
          "DEGREES OF LATITUDE - Invalid entry - Must be a number between 0 and 90",
          "LATITUDE NORTH/SOUTH - 'N' or 'S' are the only valid entries",
          "MINUTES OF LATITUDE - Invalid entry - Must be a number between 0 and 59",
          "SECONDS OF LATITUDE - Invalid entry - Must be a number between 0 and 59",
          "DEGREES OF LONGITUDE - Invalid entry - Must be a number between 0 and 180",
          "LONGITUDE EAST/WEST - 'E' or 'W' are the only valid entries",
          "MINUTES OF LONGITUDE - Invalid entry - Must be a number between 0 and 59",
          "SECONDS OF LONGITUDE - Invalid entry - Must be a number between 0 and 59",
          "DAY OF THE MONTH - Invalid entry ",
          year_lines[0],
          year_lines[1],
          year_lines[2],
          "GREGORIAN/JULIAN DATE - 'G' or 'J' are the only valid entries",
          "HOURS - Cannot be left blank or with only spaces",
          "MINUTES - Cannot be left blank or with only spaces",
          "SECONDS - Cannot be left blank or with only spaces",
          "ZONE TIME/LOCAL TIME - 'Z','M' or 'L' are the only valid entries",
          "DAYLIGHT SAVING TIME - Must be positive"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EventInput in = good_event();
        for (const auto& [column, text] : c.cells)
            in.cells[static_cast<std::size_t>(column)] = text;
        ErrorSink sink;
        EXPECT_EQ(check_event_fields(in, sink), c.lines.empty());
        EXPECT_EQ(sink.input_errors, c.lines);
        EXPECT_EQ(sink.shown, c.lines.empty() ? 0 : 1);
    }
}

TEST(EventChecks, APassedCheckGivesBlanksTheirDefaults) {
    EventInput in = good_event();
    in.cells[col::lz] = "L";
    for (int c : {col::lat_ns, col::lat_sec, col::long_ew, col::long_sec, col::med_deg, col::med_ew,
                  col::med_min, col::dst, col::time_zone, col::title, col::version, col::firstname,
                  col::source, col::comments})
        in.cells[static_cast<std::size_t>(c)] = "";
    ErrorSink sink;
    ASSERT_TRUE(check_event_fields(in, sink));
    EXPECT_EQ(in.cells[col::lat_ns], "N");
    EXPECT_EQ(in.cells[col::long_ew], "W");
    EXPECT_EQ(in.cells[col::med_ew], "W");
    EXPECT_EQ(in.cells[col::long_sec], "0");
    EXPECT_EQ(in.cells[col::med_deg], "0");
    EXPECT_EQ(in.cells[col::lat_sec], "0");
    for (int c : {col::title, col::version, col::firstname, col::source, col::comments})
        EXPECT_EQ(in.cells[static_cast<std::size_t>(c)], " ");
}

TEST(EventChecks, TheZoneListOffersGgwForBgw) {
    const Lines& zones = time_zone_entries();
    ASSERT_EQ(zones.size(), 96u);
    EXPECT_EQ(zones[32], "NZD"); // standard, then daylight saving, then wartime
    EXPECT_EQ(std::count(zones.begin(), zones.end(), "GGW"), 1);
    EXPECT_EQ(std::count(zones.begin(), zones.end(), "BGW"), 0);
}

// The commands on a started session with its open event table.
class InputCommands : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    InputOptions options;
    void SetUp() override {
        ASSERT_TRUE(folder.start(s).started);
        options = read_input_options(s);
    }
    void set_save_option(int value) {
        set_option(s, store::general_options_table, "option_save_chart", store::Value(value),
                   folder.sink);
    }
    EventInput stored(const char* surname) {
        EventInput in = good_event();
        in.cells[col::surname] = surname;
        in.event_dirty = true;
        EXPECT_TRUE(add_input_event(s, in, folder.sink));
        return in;
    }
    std::int64_t rows() { return s.stores->event_table.record_count(); }
};

TEST_F(InputCommands, NextAndPreviousWalkTheTableInItsOrder) {
    stored("Bohr");
    stored("Abel");
    stored("Curie");
    EventInput in = new_event();
    const auto step = [&](bool forward) {
        const StepResult r = step_input_event(s, in, forward, options, folder.sink);
        return std::make_pair(r, in.cells[col::surname]);
    };
    EXPECT_EQ(step(true), std::make_pair(StepResult::moved, std::string("Abel")));
    EXPECT_EQ(step(true), std::make_pair(StepResult::moved, std::string("Bohr")));
    EXPECT_EQ(step(true), std::make_pair(StepResult::moved, std::string("Curie")));
    EXPECT_EQ(step(true), std::make_pair(StepResult::at_end, std::string("Curie")));
    EXPECT_EQ(step(false), std::make_pair(StepResult::moved, std::string("Bohr")));
    EXPECT_FALSE(in.event_dirty);
    EXPECT_EQ(in.am_pm, "am"); // the hour of the row, on the window's 12-hour clock

    // A change that fails its check keeps the user on the event.
    set_save_option(2);
    in.cells[col::place] = "";
    in.event_dirty = true;
    EXPECT_EQ(step(true), std::make_pair(StepResult::refused, std::string("Bohr")));
    EXPECT_EQ(folder.sink.input_errors.back(), "PLACE - Cannot be left blank or with only spaces");
}

TEST_F(InputCommands, AddKeepsTheKeyOfARefusedAdd) {
    EventInput abel = stored("Abel");
    const std::string key = abel.event_bookmark;
    ASSERT_FALSE(key.empty());
    abel.cells[col::place] = "Changed";
    abel.event_dirty = true;
    EXPECT_FALSE(add_input_event(s, abel, folder.sink)); // the same four key fields again
    EXPECT_EQ(abel.event_bookmark, key);
    EXPECT_TRUE(abel.event_dirty);
    EXPECT_EQ(folder.sink.messages.back().text.substr(0, 15), "DUPLICATE EVENT");
    abel.cells[col::version] = "B";
    EXPECT_TRUE(add_input_event(s, abel, folder.sink));
    EXPECT_NE(abel.event_bookmark, key);
    EXPECT_EQ(rows(), 2);
}

TEST_F(InputCommands, DeleteAsksThenClearsTheScreenAndTheSlotsKey) {
    EventInput bohr = stored("Bohr");
    ASSERT_TRUE(store_input_in_slot(s, bohr, 2, folder.sink));
    EXPECT_EQ(s.event_slots[2][col::bookmark], bohr.event_bookmark);
    folder.sink.answers = {false, true};
    EXPECT_FALSE(delete_input_event(s, bohr, options, folder.sink));
    EXPECT_EQ(rows(), 1);
    EXPECT_TRUE(delete_input_event(s, bohr, options, folder.sink));
    EXPECT_TRUE(bohr.event_bookmark.empty());
    EXPECT_EQ(s.event_slots[2][col::surname], "Bohr"); // the card still shows the event
    EXPECT_EQ(s.event_slots[2][col::bookmark], "");
}

TEST_F(InputCommands, CopyToASlotNeedsAFullCheck) {
    EventInput in = good_event();
    in.cells[col::hours] = "3";
    in.am_pm = "pm";
    in.cells[col::day] = "31";
    in.cells[col::month] = "4";
    EXPECT_FALSE(store_input_in_slot(s, in, 3, folder.sink));
    EXPECT_TRUE(slot_is_empty(s.event_slots[3]));
    in.cells[col::day] = "30";
    ASSERT_TRUE(store_input_in_slot(s, in, 3, folder.sink));
    EXPECT_EQ(s.event_slots[3][col::hours], "15");
    EXPECT_EQ(s.event_slots[3][col::search_date], "001867/04/30 15:00:00");
    EXPECT_FALSE(store_input_in_slot(s, in, 5, folder.sink)); // only Event 1 to Event 4
}

} // namespace
} // namespace celestark::testing
