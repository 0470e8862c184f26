// INPUT_CHART, the event input window, typed into as a user does.
#include "desktop_support.h"

#include "screens/widgets/input_chart.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_store.h"

#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

#include <string>
#include <utility>
#include <vector>

namespace celestark::testing {
namespace {

using Lines = std::vector<std::string>;

class InputChartTest : public ::testing::Test {
  protected:
    DesktopSession ds;

    screens::InputChart* window() { return ds.find<screens::InputChart>("INPUT_CHART"); }
    void open() {
        ds.press("chart_edit_active_event");
        ASSERT_NE(window(), nullptr);
        ASSERT_TRUE(window()->isVisible());
    }
    std::string text(const std::string& name) {
        return ds.find<QLineEdit>(name)->text().toStdString();
    }
    bool shown(const std::string& name) {
        auto* w = ds.find<QWidget>(name);
        return w && w->isVisibleTo(window());
    }
    // Empties a field as a user does, and leaves it.
    void clear(const std::string& name) {
        auto* f = ds.find<QLineEdit>(name);
        f->setFocus();
        f->selectAll();
        QTest::keyClick(f, Qt::Key_Delete);
        ds.leave(f);
    }
    using Entries = std::vector<std::pair<std::string, std::string>>;
    void type_all(const Entries& entries) {
        for (const auto& [name, value] : entries) ds.type(name, value);
    }
    void type_curie() {
        const Entries curie = {
            {"inp_surname", "Curie"}, {"inp_firstname", "Marie"}, {"inp_place", "Warsaw"},
            {"inp_lat_deg", "52"},    {"inp_lat_ns", "n"},        {"inp_lat_min", "15"},
            {"inp_long_deg", "21"},   {"inp_long_ew", "e"},       {"inp_long_min", "0"},
            {"INP_DAY", "7"},         {"INP_MONTH", "11"},        {"INP_YEAR", "1867"},
            {"inp_hours", "10"},      {"inp_mins", "30"},         {"inp_am_pm", "AM"},
            {"inp_lz", "z"},          {"inp_time_zone", "CET"}};
        type_all(curie);
    }
    void set_global(const char* field, int value) {
        set_option(ds.s, store::general_options_table, field, store::Value(value), ds.folder.sink);
    }
    // The stored row with the surname, as surname and place, or empty.
    std::string stored_place(const std::string& surname) {
        store::Recordset& rs = ds.s.stores->event_table;
        for (auto o = rs.move_first(); o == store::Outcome::ok; o = rs.move_next())
            if (rs.get("F_surname").as_text() == surname) return rs.get("F_place").as_text();
        return {};
    }
    std::int64_t rows() { return ds.s.stores->event_table.record_count(); }
};

TEST_F(InputChartTest, OpensOnTheActiveEventWithTheOptionsCaptions) {
    ds.s.event_slots[1] = make_default_event();
    open();
    EXPECT_EQ(window()->windowTitle(), "EVENT DETAILS WINDOW");
    EXPECT_EQ(text("inp_firstname"), "Tidiola ");
    EXPECT_EQ(ds.find<QComboBox>("inp_event")->currentText(), "Cruxificion");
    // 15 hours on the 12-hour clock of the standard options; local time hides the zone.
    EXPECT_EQ(text("inp_hours"), "3");
    EXPECT_EQ(text("inp_am_pm"), "pm");
    EXPECT_TRUE(shown("inp_am_pm"));
    EXPECT_FALSE(shown("inp_secs"));
    EXPECT_FALSE(shown("inp_lat_sec"));
    EXPECT_FALSE(shown("inp_time_zone"));
    EXPECT_FALSE(shown("label_med"));
    EXPECT_EQ(ds.find<QLabel>("label_degrees")->text(), "Degs           Mins");
    EXPECT_EQ(ds.find<QLabel>("label_date")->text(), "Day  Month Year");
    EXPECT_TRUE(ds.find<QWidget>("epoch")->isVisible());
    EXPECT_TRUE(ds.find<QLineEdit>("inp_epoch_place")->isReadOnly());
    EXPECT_FALSE(ds.find<QPushButton>("place")->isEnabled());
    EXPECT_FALSE(ds.find<QPushButton>("place")->toolTip().isEmpty());

    ds.press("inp_exit");
    EXPECT_FALSE(window()->isVisible());
    set_global("option_lat_long_secs", -1);
    set_global("option_date_format", 0);
    set_global("option_clock_format", 0);
    set_global("option_time_input_secs", -1);
    open();
    EXPECT_EQ(text("inp_hours"), "15");
    EXPECT_FALSE(shown("inp_am_pm"));
    EXPECT_TRUE(shown("inp_secs"));
    EXPECT_TRUE(shown("inp_lat_sec"));
    EXPECT_EQ(ds.find<QLabel>("label_degrees")->text(), "Degs           Mins Secs");
    EXPECT_EQ(ds.find<QLabel>("label_date")->text(), "Month Day  Year");
    // The month comes first, also in the order of entry.
    EXPECT_LT(ds.find<QWidget>("INP_MONTH")->x(), ds.find<QWidget>("INP_DAY")->x());
    EXPECT_EQ(ds.find<QWidget>("INP_MONTH")->nextInFocusChain(), ds.find<QWidget>("INP_DAY"));
}

TEST_F(InputChartTest, LightChecksSpeakAtOnceAndTheFullCheckListsEverything) {
    open(); // the active slot is empty: a new event
    EXPECT_EQ(ds.find<QComboBox>("inp_event")->currentText(), "Birth");
    ds.folder.sink.messages.clear();
    clear("inp_event");
    const Entries faults = {{"inp_lat_deg", "95"},   {"inp_lat_ns", "x"},  {"inp_lat_min", "60"},
                            {"inp_long_deg", "200"}, {"inp_long_ew", "q"}, {"inp_long_min", "6-0"},
                            {"INP_DAY", "0"},        {"INP_GJ", "X"},      {"inp_lz", "x"}};
    type_all(faults);
    clear("INP_YEAR");
    clear("inp_hours");
    clear("inp_mins");
    const Lines boxes = {"Valid Range 0 to 90",
                         "Only N & S valid",
                         "Range 0 to 59",
                         "Valid Range 0 to 180",
                         "Only E & W valid",
                         "Minus sign not allowed - Re-enter number",
                         "Invalid number of days",
                         "Enter G for Gregorian or J for Julian date",
                         "Enter 'L'- Local, 'Z'- Zone time or 'M'- Meridian time",
                         "Entry cannot be left BLANK",
                         "Entry cannot be left BLANK",
                         "Entry cannot be left BLANK"};
    Lines told;
    for (const auto& m : ds.folder.sink.messages) told.push_back(m.text);
    EXPECT_EQ(told, boxes);
    EXPECT_EQ(text("inp_lat_ns"), "x"); // a failed field keeps its text
    EXPECT_EQ(text("inp_long_min"), "6-0");
    EXPECT_TRUE(window()->input().event_dirty);

    // The full check lists every fault, in the order and words of the event checks.
    ds.press("save_event");
    ASSERT_EQ(ds.folder.sink.input_errors.size(), 18u);
    EXPECT_EQ(ds.folder.sink.input_errors[0], "EVENT - Cannot be left blank or with only spaces");
    // A new event's month is 0 until one is typed.
    EXPECT_EQ(ds.folder.sink.input_errors[10],
              "MONTH - Invalid entry - Must be a number between 1 and 12");
    EXPECT_EQ(rows(), 0);
}

TEST_F(InputChartTest, ModesFollowTheTimeCodeAndTheYear) {
    open();
    ds.type("inp_lz", "m");
    EXPECT_EQ(text("inp_lz"), "M");
    EXPECT_TRUE(shown("inp_med_deg"));
    EXPECT_TRUE(shown("label_dst"));
    EXPECT_FALSE(shown("inp_time_zone"));
    EXPECT_FALSE(shown("time_zones"));
    ds.type("inp_lz", "Z");
    EXPECT_TRUE(shown("inp_time_zone"));
    EXPECT_TRUE(shown("label_time_zone"));
    EXPECT_FALSE(shown("inp_dst"));
    // A trigraph chosen from the list fills the meridian.
    ds.choose("inp_time_zone", "EDT");
    ds.leave(ds.find<QLineEdit>("inp_time_zone"));
    EXPECT_EQ(window()->input().cells[col::med_deg], "75");
    EXPECT_EQ(window()->input().cells[col::dst], "1");
    // A new event of 1847 is in local time, its zone hidden.
    type_all({{"INP_DAY", "4"}, {"INP_MONTH", "10"}, {"INP_YEAR", "1847"}});
    EXPECT_EQ(text("inp_lz"), "L");
    EXPECT_FALSE(shown("inp_time_zone"));
    EXPECT_FALSE(shown("inp_med_deg"));
    EXPECT_FALSE(shown("label_time_zone"));
}

TEST_F(InputChartTest, AValidEventIsSavedIntoTheOpenTable) {
    open();
    type_curie();
    EXPECT_TRUE(ds.folder.sink.messages.empty()) << ds.folder.sink.messages[0].text;
    EXPECT_EQ(text("inp_lat_ns"), "N");
    EXPECT_EQ(text("inp_am_pm"), "am");
    EXPECT_EQ(text("inp_med_deg"), "15");
    ds.press("save_event");
    EXPECT_TRUE(ds.folder.sink.input_errors.empty());
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(stored_place("Curie"), "Warsaw");
    store::Recordset& rs = ds.s.stores->event_table;
    ASSERT_EQ(rs.go_to(window()->input().event_bookmark), store::Outcome::ok);
    EXPECT_EQ(rs.get("F_hours").as_text(), "10");
    EXPECT_EQ(rs.get("F_time_zone").as_text(), "CET");
    EXPECT_EQ(rs.get("F_med_ew").as_text(), "E");
    EXPECT_EQ(rs.get("F_source").as_text(), " ");
    EXPECT_FALSE(window()->input().event_dirty);
    EXPECT_EQ(ds.find<QLabel>("input_state")->text(), "Stored event");

    // Saved again after a change, the same row is updated.
    ds.type("inp_place", "Warszawa");
    ds.press("save_event");
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(stored_place("Curie"), "Warszawa");
}

TEST_F(InputChartTest, LeavingAChangedEventAsksWhenTheOptionSaysSo) {
    set_global("option_save_chart", 1);
    open();
    type_curie();
    ds.press("add_event");
    ds.type("inp_surname", "Bohr");
    ds.type("inp_firstname", "Niels");
    ds.press("add_event");
    ASSERT_EQ(rows(), 2);
    EXPECT_TRUE(ds.folder.sink.questions.empty());

    // No: the change is dropped and the next event in the table's order shows.
    EXPECT_EQ(text("inp_surname"), "Bohr");
    ds.type("inp_place", "Copenhagen");
    ds.folder.sink.answers = {false};
    ds.press("next_event");
    ASSERT_EQ(ds.folder.sink.questions.size(), 1u);
    EXPECT_EQ(ds.folder.sink.questions[0].title, "UPDATE EVENT?");
    EXPECT_EQ(ds.folder.sink.questions[0].text, "The Event has changed - do you want to save it");
    EXPECT_EQ(stored_place("Bohr"), "Warsaw");
    EXPECT_EQ(text("inp_surname"), "Curie");
    EXPECT_EQ(text("inp_place"), "Warsaw");
    EXPECT_FALSE(window()->input().event_dirty);

    // Yes: saved, then the window closes.
    ds.type("inp_place", "Paris");
    ds.folder.sink.answers = {true};
    ds.press("inp_exit");
    EXPECT_EQ(ds.folder.sink.questions.size(), 2u);
    EXPECT_EQ(stored_place("Curie"), "Paris");
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(InputChartTest, CopyToEvent2ShowsOnTheSecondCard) {
    open();
    type_curie();
    ds.press("store2");
    EXPECT_FALSE(window()->isVisible());
    EXPECT_TRUE(ds.find<QWidget>("Chart")->isVisible());
    EXPECT_EQ(ds.find<QLabel>("EVENT2_NAME")->text(), "Marie Curie");
    EXPECT_EQ(ds.find<QLabel>("EVENT2_PLACE")->text(), "Warsaw");
    EXPECT_EQ(ds.find<QLabel>("EVENT2_MERIDIAN")->text(), "Time Zone CET");
    EXPECT_EQ(ds.s.event_slots[2][col::hours], "10");
    EXPECT_EQ(ds.find<QLabel>("EVENT1_NAME")->text(), "(empty)");
}

TEST_F(InputChartTest, DeleteSearchHelpAndTheFrame) {
    open();
    type_curie();
    ds.press("save_event");
    ASSERT_EQ(rows(), 1);
    ds.folder.sink.answers = {true};
    ds.press("delete_event");
    EXPECT_EQ(ds.folder.sink.questions.back().title, "DELETE ACTIVE EVENT ?");
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(text("inp_surname"), "");

    ds.press("time_zones");
    auto* help = ds.find<QPlainTextEdit>("input_help_text");
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    EXPECT_TRUE(
        help->toPlainText().contains("NB The drop menu only allows the standard time zones."));
    for (const char* name : {"des_version", "groups", "LMZ", "sources"}) {
        const QString before = help->toPlainText();
        ds.press(name);
        EXPECT_NE(help->toPlainText(), before) << name;
    }

    window()->close();
    EXPECT_TRUE(window()->isVisible());
    EXPECT_EQ(ds.folder.sink.messages.back().text, "You can't close windows in Celestark");

    // The search window's EDIT EVENT comes in through the desktop.
    EventSlots found;
    found[1] = make_default_event();
    EventInput in;
    slot_to_screen(found, 1, in);
    ds.desktop->edit_event(in);
    EXPECT_EQ(text("inp_firstname"), "Tidiola ");
    EXPECT_EQ(text("inp_am_pm"), "pm");
}

} // namespace
} // namespace celestark::testing
