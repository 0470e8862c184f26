// The logic of the main chart window and the chart window: cards, commands, option lists, time
// steps and walking the table.
#include "../store/program_folder.h"
#include "../support/events.h"

#include "screens/chart_commands.h"
#include "screens/event_input.h"
#include "store/open_stores.h"
#include "store/option_store.h"

namespace celestark::testing {
namespace {

class ChartCommands : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    void SetUp() override { ASSERT_TRUE(folder.start(s).started); }

    // Stores an event of 1 January of the year in the open table.
    void store(const char* surname, const char* year) {
        const EventCells cells = {{col::surname, surname}, {col::firstname, "Test"},
                                  {col::place, "Here"},    {col::day, "1"},
                                  {col::month, "1"},       {col::year, year},
                                  {col::hours, "12"},      {col::lz, "L"}};
        EventInput in = new_input(cells);
        EventTable table{s.stores->event_table};
        ASSERT_EQ(save_event(in, table, folder.sink), SaveResult::saved);
    }
};

TEST_F(ChartCommands, EveryCommandNamesAPageTheDrawingHas) {
    for (const ChartCommand& c : chart_commands()) {
        EXPECT_EQ(find_chart_command(c.name), &c);
        EXPECT_FALSE(std::string(c.screen_page).empty()) << c.name;
    }
    EXPECT_EQ(find_chart_command("no_such_command"), nullptr);
}

TEST_F(ChartCommands, ARequestNeedsAnEventAndAnEpochForTheEpochCharts) {
    const ChartCommand& geo = *find_chart_command("chart_geocentric");
    EXPECT_FALSE(chart_request(s, geo, folder.sink));
    EXPECT_EQ(folder.sink.messages.back().title, "NO EVENT");
    s.event_slots[1] = make_default_event();
    ASSERT_TRUE(chart_request(s, geo, folder.sink));
    EXPECT_EQ(s.drawing.working_event, 1);
    EXPECT_EQ(s.drawing.screen_page, "geo1");
    EXPECT_EQ(s.chart.world_view, "Geocentric");
    EXPECT_TRUE(s.drawing.allow_stepping);
    EXPECT_FALSE(chart_request(s, *find_chart_command("epoch_normal_geo"), folder.sink));
    EXPECT_EQ(folder.sink.messages.back().title, "NO EPOCH");
    s.event_slots[1][col::epoch_exists] = "Y";
    ASSERT_TRUE(chart_request(s, *find_chart_command("epoch_normal_hermetic"), folder.sink));
    EXPECT_EQ(s.drawing.working_event, 1 + slot::epoch_offset);
    EXPECT_EQ(s.chart.world_view, "Tychonic");
}

// A prenatal chart draws the birth with its epoch, which it needs.
TEST_F(ChartCommands, APrenatalChartDrawsTheBirthWithItsEpoch) {
    s.event_slots[1] = make_default_event();
    s.event_slots[1][col::epoch_exists] = "N";
    for (const char* name :
         {"eb_circ_rad", "eb_rect", "her_par", "helio_rect", "lem_par", "lem_3d_se"}) {
        const ChartCommand& c = *find_chart_command(name);
        EXPECT_EQ(c.events, CommandEvents::prenatal) << name;
        EXPECT_FALSE(chart_request(s, c, folder.sink)) << name;
        EXPECT_EQ(folder.sink.messages.back().title, "NO EPOCH") << name;
        EXPECT_EQ(folder.sink.messages.back().text, "Event 1 has no prenatal epoch yet.");
    }
    s.event_slots[1][col::epoch_exists] = "Y";
    s.event_slots[1][col::epoch_year] = "1999";
    ASSERT_TRUE(chart_request(s, *find_chart_command("hermetic_rect"), folder.sink));
    EXPECT_EQ(s.drawing.working_event, 1);
    EXPECT_EQ(s.drawing.inner_event, 1);
    EXPECT_EQ(s.drawing.outer_event, 1 + slot::epoch_offset);
    EXPECT_EQ(s.event_slots[1 + slot::epoch_offset][col::year], "1999");
    EXPECT_EQ(s.event_slots[1 + slot::epoch_offset][col::event], "Epoch");
    EXPECT_EQ(s.drawing.screen_page, "prenatal_rect");
    EXPECT_EQ(s.chart.world_view, "Tychonic");
    // The plan of the Solar System needs the event alone.
    s.event_slots[1][col::epoch_exists] = "N";
    ASSERT_TRUE(chart_request(s, *find_chart_command("planetary_motion"), folder.sink));
    EXPECT_EQ(s.drawing.screen_page, "plan display");
}

// A double chart draws the active event (or its epoch) inside and the compared event, an epoch
// or the default event outside; each event it needs must be there.
TEST_F(ChartCommands, DoubleChartsNameTheirTwoEvents) {
    s.event_slots[1] = make_default_event();
    s.event_slots[1][col::epoch_exists] = "Y";
    struct Case {
        const char* command;
        int compare;
        const char* refused; // the message's title, or null when the chart is drawn
        int inner, outer;
        const char* page;
        bool stepping;
    };
    const int epoch_1 = 1 + slot::epoch_offset, epoch_2 = 2 + slot::epoch_offset;
    const Case cases[] = {
        {"comp_geo", 2, "NO EVENT", 0, 0, "", false},
        {"comp_geo", 1, nullptr, 1, 1, "geo_double", true},
        {"comp_geo_her", 3, nullptr, 1, 3, "geo_helio_double", true},
        {"epoch_birth_lem", 2, nullptr, 1, epoch_1, "lemni_double", false},
        {"epoch_event_geo_comp", 3, "NO EPOCH", 0, 0, "", false},
        {"epoch_event_geo_comp", 2, nullptr, epoch_1, epoch_2, "geo_double", false},
        {"ty_crux", 4, nullptr, 1, slot::default_event, "geo_double", true},
        {"epoch_hel_crux", 4, nullptr, epoch_1, slot::default_event, "helio_double", true},
    };
    s.event_slots[2] = make_default_event();
    s.event_slots[2][col::epoch_exists] = "Y";
    s.event_slots[3] = make_default_event();
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.command) + " against " + std::to_string(c.compare));
        if (c.refused && std::string(c.refused) == "NO EVENT") s.event_slots[2] = {};
        const bool drawn =
            double_chart_request(s, *find_double_command(c.command), c.compare, folder.sink);
        if (c.refused) {
            EXPECT_FALSE(drawn);
            EXPECT_EQ(folder.sink.messages.back().title, c.refused);
            s.event_slots[2] = make_default_event();
            s.event_slots[2][col::epoch_exists] = "Y";
            continue;
        }
        ASSERT_TRUE(drawn);
        EXPECT_EQ(s.drawing.inner_event, c.inner);
        EXPECT_EQ(s.drawing.outer_event, c.outer);
        EXPECT_EQ(s.drawing.screen_page, c.page);
        EXPECT_EQ(s.drawing.chart_kind, "C");
        EXPECT_EQ(s.drawing.allow_stepping, c.stepping);
    }
}

// Steps change the work row only, and carry as the calendar does; back and forth returns.
TEST_F(ChartCommands, StepsMoveTheShownTimeOnly) {
    s.event_slots[1] = make_default_event();
    s.event_slots[1][col::gj] = "G";
    s.event_slots[1][col::day] = "28";
    s.event_slots[1][col::month] = "2";
    s.event_slots[1][col::year] = "2000";
    chart_request(s, *find_chart_command("chart_geocentric"), folder.sink);
    ASSERT_TRUE(step_time(s, "1day", false));
    EXPECT_EQ(stepped_time(s)[0], "29"); // 2000 is a leap year
    ASSERT_TRUE(step_time(s, "1day", false));
    EXPECT_EQ((std::array<std::string, 2>{stepped_time(s)[0], stepped_time(s)[1]}),
              (std::array<std::string, 2>{"1", "3"}));
    EXPECT_EQ(s.drawing.working_event, slot::work);
    EXPECT_EQ(s.event_slots[1][col::day], "28");
    ASSERT_TRUE(step_time(s, "1week", true));
    EXPECT_EQ(stepped_time(s)[0], "23");
    EXPECT_FALSE(step_time(s, "1fortnight", false));
    s.drawing.allow_stepping = false;
    EXPECT_FALSE(step_time(s, "1day", false));
}

TEST_F(ChartCommands, OptionListsOfferTheStoredSetsAndWriteTheirOption) {
    const auto lists = chart_option_lists(s);
    ASSERT_EQ(lists.size(), 10u);
    for (const OptionList& l : lists) {
        EXPECT_FALSE(l.entries.empty()) << l.control;
        EXPECT_NE(std::find(l.entries.begin(), l.entries.end(), l.selected), l.entries.end())
            << l.control << " selects " << l.selected;
    }
    ASSERT_TRUE(choose_option(s, "selected_zodiac", "Sidereal SVP", folder.sink));
    EXPECT_EQ(read_option(s, "options", "zodiac").as_text(), "Sidereal SVP");
    EXPECT_EQ(s.chart.zodiac, "Sidereal SVP");
    EXPECT_FALSE(choose_option(s, "no_such_list", "x", folder.sink));
}

TEST_F(ChartCommands, CardsShowTheSlotAndRemovingTheEpochKeepsTheEvent) {
    EXPECT_TRUE(event_card(s, 2).empty);
    s.event_slots[2] = make_default_event();
    s.event_slots[2][col::epoch_exists] = "Y";
    s.event_slots[2][col::epoch_place] = "Jerusalem";
    EventCard card = event_card(s, 2);
    EXPECT_FALSE(card.empty);
    EXPECT_EQ(card.name, "Tidiola");
    EXPECT_EQ(card.meridian, "Local Time");
    EXPECT_EQ(card.epoch_place, "Jerusalem");
    remove_epoch(s, 2);
    card = event_card(s, 2);
    EXPECT_TRUE(card.epoch.empty());
    EXPECT_EQ(card.name, "Tidiola");
    EXPECT_EQ(s.event_slots[2][col::epoch_place], " ");
}

// Walking goes row by row in the table's order and stops at the end with the last row shown.
TEST_F(ChartCommands, WalkingTheTableStopsAtItsEnd) {
    store("Alpha", "1990");
    store("Beta", "1991");
    store("Gamma", "1992");
    AspectPattern none;
    ASSERT_EQ(walk_table(s, true, none, folder.sink), WalkResult::moved);
    EXPECT_EQ(s.event_slots[1][col::surname], "Alpha");
    ASSERT_EQ(walk_table(s, true, none, folder.sink), WalkResult::moved);
    ASSERT_EQ(walk_table(s, true, none, folder.sink), WalkResult::moved);
    EXPECT_EQ(s.event_slots[1][col::surname], "Gamma");
    EXPECT_EQ(walk_table(s, true, none, folder.sink), WalkResult::end_of_table);
    EXPECT_EQ(s.event_slots[1][col::surname], "Gamma");
    ASSERT_EQ(walk_table(s, false, none, folder.sink), WalkResult::moved);
    EXPECT_EQ(s.event_slots[1][col::surname], "Beta");
    // A pattern no row shows leaves the shown row at the end.
    AspectPattern impossible{true, 0, 0, 90, 1}; // the Sun square itself
    EXPECT_EQ(walk_table(s, true, impossible, folder.sink), WalkResult::end_of_table);
    EXPECT_EQ(s.event_slots[1][col::surname], "Beta");
}

TEST_F(ChartCommands, SavingTheActiveCardStoresItOnce) {
    s.event_slots[1] = make_default_event();
    ASSERT_TRUE(save_active_event(s, folder.sink));
    EXPECT_FALSE(s.event_slots[1][col::bookmark].empty());
    EXPECT_EQ(s.stores->event_table.record_count(), 1);
    ASSERT_TRUE(save_active_event(s, folder.sink)); // the same row again
    EXPECT_EQ(s.stores->event_table.record_count(), 1);
    folder.sink.answers = {true};
    ASSERT_TRUE(delete_active_card(s, folder.sink));
    EXPECT_EQ(s.stores->event_table.record_count(), 0);
    EXPECT_TRUE(event_card(s, 1).empty);
}

} // namespace
} // namespace celestark::testing
