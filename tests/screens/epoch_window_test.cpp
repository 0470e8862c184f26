// The epoch windows' logic: who may have an epoch, the options a stored epoch brings, a different
// epoch place and its checks, moving the birth, and storing a candidate in the event.
#include "../store/program_folder.h"
#include "../support/events.h"

#include "screens/epoch_window.h"
#include "screens/event_input.h"
#include "store/open_stores.h"

namespace celestark::testing {
namespace {

class EpochWindowsTest : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    EpochWindows w;
    void SetUp() override {
        ASSERT_TRUE(folder.start(s).started);
        s.chart.house_system = "Placidus";
    }

    // Einstein's birth, stored in the open table and put in the active card.
    void put_birth() {
        EventInput in = new_input(einstein);
        EventTable table{s.stores->event_table};
        ASSERT_EQ(save_event(in, table, folder.sink), SaveResult::saved);
        copy_screen_to_slot(in, s.event_slots, 1);
        s.event_slots.active_event = 1;
    }
};

TEST_F(EpochWindowsTest, OnlyABirthHasAnEpoch) {
    EXPECT_FALSE(w.start(s, folder.sink));
    EXPECT_EQ(folder.sink.messages.back().title, "NO EVENT");
    put_birth();
    s.event_slots[1][col::event] = "Death";
    EXPECT_FALSE(w.start(s, folder.sink));
    EXPECT_EQ(folder.sink.messages.back().title, "NOT A BIRTH");
    s.event_slots[1][col::event] = "Birth";
    EXPECT_TRUE(w.start(s, folder.sink));
    EXPECT_EQ(w.options().place[0], "Ulm");
}

TEST_F(EpochWindowsTest, ADifferentPlaceIsCheckedWithTheEventMessages) {
    put_birth();
    ASSERT_TRUE(w.start(s, folder.sink));
    w.options().same_as_birth = false;
    w.options().place = {"New York", "95", "X", "61", "", "74", "w", "0", ""};
    EXPECT_FALSE(w.calculate(s, folder.sink));
    EXPECT_EQ(folder.sink.input_errors,
              (std::vector<std::string>{
                  "DEGREES OF LATITUDE - Invalid entry - Must be a number between 0 and 90",
                  "LATITUDE NORTH/SOUTH - 'N' or 'S' are the only valid entries",
                  "MINUTES OF LATITUDE - Invalid entry - Must be a number between 0 and 59"}));
    EXPECT_FALSE(w.calculated());
    w.options().place = {"New York", "40", "n", "43", "", "74", "w", "0", ""};
    ASSERT_TRUE(w.calculate(s, folder.sink));
    // The candidates are cast in New York; the birth stays in Ulm.
    EXPECT_EQ(s.event_slots[epoch_row::asc1][col::place], "New York");
    EXPECT_EQ(s.event_slots[epoch_row::asc1][col::lat_ns], "N");
    EXPECT_EQ(s.event_slots[epoch_row::birth][col::place], "Ulm");
}

TEST_F(EpochWindowsTest, TheBirthMovesByHandAndCancelLeavesTheEventAsItWas) {
    put_birth();
    ASSERT_TRUE(w.start(s, folder.sink));
    ASSERT_TRUE(w.calculate(s, folder.sink));
    const EventRow before = s.event_slots[1];
    const double jd = s.epoch.moments[0].jd;
    ASSERT_TRUE(w.adjust(s, "plus20min"));
    EXPECT_NEAR((s.epoch.moments[0].jd - jd) * 1440, 20, 1e-6);
    ASSERT_TRUE(w.adjust(s, "minuspoint1sec"));
    EXPECT_NEAR((s.epoch.moments[0].jd - jd) * 86400, 1199.9, 1e-3);
    EXPECT_FALSE(w.adjust(s, "plus3min"));
    // The chart window may use the work rows in between: the epoch's birth is kept apart.
    s.event_slots[epoch_row::birth] = make_default_event();
    EXPECT_EQ(w.display_row(s, "disp_desc1"), epoch_row::desc1);
    EXPECT_NEAR((s.epoch.moments[0].jd - jd) * 86400, 1199.9, 1e-3);
    EXPECT_FALSE(s.drawing.allow_stepping);
    w.cancel();
    EXPECT_EQ(s.event_slots[1], before);
}

TEST_F(EpochWindowsTest, AStoredCandidateGoesIntoTheEventAndItsTable) {
    put_birth();
    ASSERT_TRUE(w.start(s, folder.sink));
    w.options().months = 9;
    w.options().sidereal = false;
    ASSERT_TRUE(w.calculate(s, folder.sink));
    ASSERT_TRUE(w.adjust(s, "plus1min"));
    const EventRow desc1 = s.event_slots[epoch_row::desc1];
    s.options.option_save_chart = 1; // ask
    folder.sink.answers = {true};    // "UPDATE EVENT?"
    ASSERT_TRUE(w.store(s, 3, folder.sink));
    ASSERT_EQ(folder.sink.questions.size(), 1u);
    EXPECT_EQ(folder.sink.questions[0].title, "UPDATE EVENT?");
    const EventRow& row = s.event_slots[1];
    EXPECT_EQ(row[col::mins], "31"); // the moved birth
    EXPECT_EQ(row[col::epoch_exists], "Y");
    EXPECT_EQ(row[col::moon_on_asc], "Des");
    EXPECT_EQ(row[col::epoch_months], "9");
    EXPECT_EQ(row[col::epoch_moon], "F");
    EXPECT_EQ(row[col::epoch_day], desc1[col::day]);
    EXPECT_EQ(row[col::epoch_hours], desc1[col::hours]);
    EXPECT_EQ(row[col::epoch_msecs], desc1[col::msecs]);
    // The epoch row is built at once, in Greenwich time.
    const EventRow& epoch = s.event_slots[1 + slot::epoch_offset];
    EXPECT_EQ(epoch[col::event], "Epoch");
    EXPECT_EQ(epoch[col::year], desc1[col::year]);
    EXPECT_EQ(epoch[col::lz], "Z");
    // And the table holds it.
    store::Recordset& rs = s.stores->event_table;
    ASSERT_EQ(rs.go_to(row[col::bookmark]), store::Outcome::ok);
    EXPECT_EQ(rs.get("F_epoch_exists").as_text(), "Y");
    EXPECT_EQ(rs.get("F_mins").as_text(), "31");
    // The window opens again on what was stored.
    ASSERT_TRUE(w.start(s, folder.sink));
    EXPECT_EQ(w.options().months, 9);
    EXPECT_FALSE(w.options().sidereal);
}

} // namespace
} // namespace celestark::testing
