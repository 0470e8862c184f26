// Saving events from the input screen into an event table, and loading stored rows into slots.
#include "../store/store_test_support.h"
#include "../support/events.h"
#include "screens/event_input.h"
#include "store/event_schema.h"

#include <gtest/gtest.h>

namespace celestark {
namespace {

using store::Outcome;

class EventStoreTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(db_.create(dir_.file("Test.zod.mdb")), Outcome::ok);
        ASSERT_EQ(
            db_.create_table("Events", store::event_table_fields(), store::event_table_indexes()),
            Outcome::ok);
        ASSERT_EQ(db_.open_recordset("Events", records_), Outcome::ok);
        ASSERT_EQ(records_.set_index("Name_Event"), Outcome::ok);
    }
    EventInput person(const char* surname, const char* firstname) {
        const testing::EventCells cells = {{col::surname, surname}, {col::firstname, firstname},
                                           {col::day, "7"},         {col::month, "3"},
                                           {col::year, "-43"},      {col::hours, "6"},
                                           {col::mins, "5"},        {col::secs, "9"}};
        return testing::new_input(cells);
    }
    std::int64_t rows() { return records_.record_count(); }

    store::testing::ScratchDir dir_;
    store::TableStore db_;
    store::Recordset records_;
};

TEST_F(EventStoreTest, NullFieldsLoadAsTheirNullValues) {
    ASSERT_EQ(records_.add_new(), Outcome::ok);
    records_.set("F_surname", store::Value()); // null, as a damaged record would hold
    records_.set("F_Firstname", "Ann");
    records_.set("F_year", "1950");
    ASSERT_EQ(records_.update(), Outcome::ok);
    ASSERT_EQ(records_.move_first(), Outcome::ok);

    EventSlots slots;
    initialise_event_slots(slots);
    load_event_row(records_, slots, 3);
    const EventRow& r = slots[3];
    EXPECT_EQ(r[col::event], "Faulty");
    EXPECT_EQ(r[col::surname], "Faulty ");
    EXPECT_EQ(r[col::place], "NONE ");
    EXPECT_EQ(r[col::firstname], "Ann");
    EXPECT_EQ(r[col::year], "1950");
    EXPECT_EQ(r[col::time_zone], "GMT");
    EXPECT_EQ(r[col::epoch_months], "10");
    EXPECT_EQ(r[col::notused], "NOTUSED");
    EXPECT_EQ(r[col::bookmark], records_.bookmark());
}

TEST_F(EventStoreTest, AddEditAndDuplicate) {
    RecordingSink sink;
    EventTable table{records_, "Date_Name"};

    // An add takes the bookmark of the row just added, whatever the index order.
    EventInput zed = person("Zed", "Zoe");
    ASSERT_EQ(save_event(zed, table, sink), SaveResult::saved);
    EventInput abel = person("Abel", "Al");
    abel.cells[col::hours] = "12";
    abel.am_pm = "pm";
    abel.cells[col::place] = "";
    ASSERT_EQ(save_event(abel, table, sink), SaveResult::saved);
    ASSERT_FALSE(abel.event_bookmark.empty());
    EXPECT_NE(abel.event_bookmark, zed.event_bookmark);
    EXPECT_EQ(records_.index_name(), "Date_Name") << "the index in use is restored after an add";

    ASSERT_EQ(records_.go_to(abel.event_bookmark), Outcome::ok);
    EXPECT_EQ(records_.get("f_surname").as_text(), "Abel");
    EXPECT_EQ(records_.get("F_hours").as_text(), "24"); // "12" with "pm"
    EXPECT_EQ(records_.get("F_place").as_text(), " ");  // nothing is stored as one blank
    EXPECT_EQ(records_.get("F_search_date").as_text(), "-000043/03/07 24:05:09");

    // An edit goes to the bookmark and changes that row only.
    abel.cells[col::place] = "Rome";
    ASSERT_EQ(save_event(abel, table, sink), SaveResult::saved);
    EXPECT_EQ(rows(), 2);
    ASSERT_EQ(records_.go_to(abel.event_bookmark), Outcome::ok);
    EXPECT_EQ(records_.get("F_place").as_text(), "Rome");

    // The same surname, first name, event and version again: refused with the message.
    EventInput again = person("Zed", "Zoe");
    EXPECT_EQ(save_event(again, table, sink), SaveResult::duplicate);
    EXPECT_TRUE(again.event_bookmark.empty());
    EXPECT_EQ(rows(), 2);
    ASSERT_FALSE(sink.messages.empty());
    EXPECT_EQ(sink.messages.back().title, "Celestark");
    EXPECT_EQ(sink.messages.back().text,
              "DUPLICATE EVENT\n"
              "Event already exists for:-\n"
              "      SURNAME   = Zed\n"
              "      FIRSTNAME = Zoe\n"
              "      EVENT     = Birth\n"
              "      VERSION   = \n"
              "This event will not be saved\n"
              "To save it you must first change one of the four fields above");

    // A different version makes it a different event.
    again.cells[col::version] = "2";
    EXPECT_EQ(save_event(again, table, sink), SaveResult::saved);
    EXPECT_EQ(rows(), 3);
}

TEST_F(EventStoreTest, OfferSaveFollowsTheOptionAndTheAnswer) {
    struct Case {
        int option;
        bool ask_always, dirty, answer, valid;
        SaveResult expected;
        std::size_t questions;
        std::int64_t rows_after;
    };
    const Case cases[] = {
        {1, false, false, true, true, SaveResult::not_needed, 0, 0},
        {0, true, true, true, true, SaveResult::not_needed, 0, 0},
        {1, false, true, false, true, SaveResult::declined, 1, 0},
        {1, false, true, true, true, SaveResult::saved, 1, 1},
        {2, false, true, false, true, SaveResult::saved, 0, 1},
        {2, true, true, false, true, SaveResult::declined, 1, 0},
        {2, false, true, true, false, SaveResult::invalid, 0, 0},
    };
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(n);
        RecordingSink sink;
        sink.answers.push_back(c.answer);
        EventTable table{records_, "Name_Event"};
        EventInput in = person("Case", std::to_string(n++).c_str());
        in.event_dirty = c.dirty;
        EventEditHooks hooks;
        hooks.validate = [&] { return c.valid; };
        const std::int64_t before = rows();
        EXPECT_EQ(offer_save_event(in, table, sink, c.option, c.ask_always, hooks), c.expected);
        EXPECT_EQ(sink.questions.size(), c.questions);
        if (c.questions) {
            EXPECT_EQ(sink.questions[0].title, "UPDATE EVENT?");
        }
        EXPECT_EQ(rows() - before, c.rows_after);
        EXPECT_EQ(in.event_dirty, c.dirty && c.expected != SaveResult::saved);
    }
}

TEST_F(EventStoreTest, StoreInSlotRebuildsTheEpochRowAndRefreshes) {
    RecordingSink sink;
    EventTable table{records_, "Name_Event"};
    EventSlots slots;
    initialise_event_slots(slots);
    EventInput in = person("Epoch", "Eve");
    in.event_epoch_exists = "Y";
    in.cells[col::epoch_day] = "12";
    in.cells[col::hours] = "3";
    in.am_pm = "pm";
    int refreshed = 0;
    EventEditHooks hooks;
    hooks.refresh_active_options = [&] { ++refreshed; };
    EXPECT_EQ(screen_to_slot(in, slots, 1, table, sink, 2, hooks), SaveResult::saved);
    EXPECT_EQ(slots[1][col::bookmark], in.event_bookmark);
    EXPECT_EQ(slots[1][col::hours], "15");
    EXPECT_EQ(slots[1][col::notused], "NOTUSED");
    EXPECT_EQ(slots[17][col::event], "Epoch");
    EXPECT_EQ(slots[17][col::day], "12");
    EXPECT_EQ(refreshed, 1); // slot 1 is the active one

    in.event_epoch_exists = "N";
    slots[18][col::event] = "untouched";
    screen_to_slot(in, slots, 2, table, sink, 2, hooks);
    EXPECT_EQ(slots[18][col::event], "untouched");
    EXPECT_EQ(refreshed, 1);
}

} // namespace
} // namespace celestark
