// Event databases: the start of the event store with its first-start and failure paths, the
// database window's operations, the table test and the search list.
#include "../support/events.h"
#include "app/body_tables.h"
#include "program_folder.h"
#include "screens/event_database_screen.h"
#include "screens/event_input.h"
#include "screens/event_search.h"
#include "session/text.h"
#include "store/event_database.h"
#include "store/event_schema.h"
#include "store/option_store.h"

#include <gtest/gtest.h>

#include <fstream>

namespace celestark {
namespace {

namespace fs = std::filesystem;
using store::Outcome;
using store::Value;
using testing::ProgramFolder;

std::string option_text(Session& s, const char* field) {
    return read_option(s, "option_name", field).as_text();
}

// Adds events to the open table through the event input, as the input screen stores them.
void add_events(Session& s, std::initializer_list<std::array<const char*, 8>> events) {
    RecordingSink sink;
    EventTable table{s.stores->event_table, s.event_store.event_index_name};
    for (const auto& [surname, firstname, event, version, place, day, month, year] : events) {
        const testing::EventCells cells = {{col::surname, surname}, {col::firstname, firstname},
                                           {col::event, event},     {col::version, version},
                                           {col::place, place},     {col::day, day},
                                           {col::month, month},     {col::year, year}};
        EventInput in = testing::new_input(cells);
        ASSERT_EQ(save_event(in, table, sink), SaveResult::saved) << surname;
    }
}

TEST(EventStoreStart, FirstStartMakesTheStandardDatabaseBesideTheProgram) {
    ProgramFolder folder;
    Session s;
    const StartResult first = folder.start(s);
    ASSERT_TRUE(first.started);
    EXPECT_EQ(first.events.outcome, EventStoreOpen::created);
    EXPECT_EQ(first.events.database_title, "CELESTARK");
    EXPECT_EQ(first.events.table_title, "EVENTS");
    EXPECT_EQ(s.event_store.event_db_name, "CELESTARK.ZOD.MDB");
    EXPECT_EQ(s.event_store.event_table_name, "EVENTS");
    EXPECT_EQ(s.event_store.event_index_name, "Name_Event");
    EXPECT_EQ(s.event_store.event_db_path, folder.path() + "/");
    EXPECT_TRUE(fs::exists(folder.file("Celestark.zod.mdb")));
    EXPECT_EQ(option_text(s, "db_name"), "Celestark.zod.mdb");
    EXPECT_EQ(option_text(s, "db_path"), folder.path());
    EXPECT_EQ(option_text(s, "DB_TABLE"), "Events");
    EXPECT_TRUE(folder.sink.messages.empty());

    // The table has the event shape: 54 text fields and the four indexes.
    std::vector<store::FieldDef> fields;
    std::vector<store::IndexDef> indexes;
    ASSERT_EQ(s.stores->event_db.table_fields("Events", fields), Outcome::ok);
    ASSERT_EQ(s.stores->event_db.table_indexes("Events", indexes), Outcome::ok);
    EXPECT_EQ(fields, store::event_table_fields());
    // The indexes as declared; their fields come back with the table's own spelling.
    ASSERT_EQ(indexes.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        const store::IndexDef& declared = store::event_table_indexes()[i];
        EXPECT_EQ(indexes[i].name, declared.name);
        EXPECT_EQ(indexes[i].unique, declared.unique) << declared.name;
        EXPECT_EQ(indexes[i].primary, declared.primary) << declared.name;
        ASSERT_EQ(indexes[i].fields.size(), declared.fields.size());
        for (std::size_t k = 0; k < declared.fields.size(); ++k)
            EXPECT_EQ(to_upper(indexes[i].fields[k]), to_upper(declared.fields[k]));
    }
    add_events(s, {{"Curie", "Marie", "Birth", " ", "Warsaw", "7", "11", "1867"}});

    // The next start opens what the first made.
    Session again;
    const StartResult second = folder.start(again);
    EXPECT_EQ(second.events.outcome, EventStoreOpen::opened);
    EXPECT_EQ(second.events.database_title, "CELESTARK");
    EXPECT_EQ(second.events.table_title, "EVENTS");
    EXPECT_EQ(again.stores->event_table.record_count(), 1);
}

TEST(EventStoreStart, StoredDatabaseAndTableThatCannotOpenTakeTheirPaths) {
    struct Case {
        const char* name;
        std::function<void(ProgramFolder&, Session&)> spoil;
        EventStoreOpen outcome;
    };
    const Case cases[] = {
        {"database gone",
         [](ProgramFolder& f, Session&) { fs::remove(f.file("Celestark.zod.mdb")); },
         EventStoreOpen::database_failed},
        {"not a database",
         [](ProgramFolder& f, Session&) {
             fs::remove(f.file("Celestark.zod.mdb"));
             std::ofstream(f.file("Celestark.zod.mdb")) << "not a database";
         },
         EventStoreOpen::database_failed},
        {"table gone",
         [](ProgramFolder&, Session& s) {
             RecordingSink sink;
             set_option(s, "option_name", "DB_TABLE", "Lost", sink);
         },
         EventStoreOpen::table_failed},
        {"table of another shape",
         [](ProgramFolder&, Session& s) {
             s.stores->event_db.create_table("Notes",
                                             std::vector<store::FieldDef>{{"F_event", {}, 30}});
             RecordingSink sink;
             set_option(s, "option_name", "DB_TABLE", "Notes", sink);
         },
         EventStoreOpen::table_failed},
        {"table not stored", // a null table option: the standard table is made and opened
         [](ProgramFolder&, Session& s) {
             RecordingSink sink;
             set_option(s, "option_name", "DB_TABLE", Value(), sink);
         },
         EventStoreOpen::created},
    };
    for (const Case& c : cases) {
        ProgramFolder folder;
        {
            Session first;
            ASSERT_TRUE(folder.start(first).started);
            c.spoil(folder, first);
        }
        Session s;
        const StartResult r = folder.start(s);
        EXPECT_TRUE(r.started) << c.name;
        EXPECT_EQ(r.events.outcome, c.outcome) << c.name;
        if (c.outcome == EventStoreOpen::created) {
            EXPECT_EQ(r.events.table_title, "EVENTS");
        } else {
            EXPECT_TRUE(r.events.database_title.empty()) << c.name;
            EXPECT_FALSE(r.events.problem.empty()) << c.name;
        }
        EXPECT_TRUE(folder.fatal_titles.empty()) << c.name;
    }
}

TEST(EventStoreStart, ALeftOverBiographyDatabaseIsRemoved) {
    ProgramFolder folder;
    for (const char* f : {"bio3.zod.mdb", "bio3.zod.mdb-wal", "bio2.zod.mdb"})
        std::ofstream(folder.file(f)) << "left over";
    Session s;
    ASSERT_TRUE(folder.start(s).started);
    EXPECT_FALSE(fs::exists(folder.file("bio3.zod.mdb")));
    EXPECT_FALSE(fs::exists(folder.file("bio3.zod.mdb-wal")));
    EXPECT_TRUE(fs::exists(folder.file("bio2.zod.mdb")));
}

TEST(EventStoreStart, LaterStepsRunInOrderAndTheirProblemsAreKept) {
    ProgramFolder folder;
    Session s;
    std::vector<std::string> order;
    StartSteps steps;
    steps.open_place_database = [&](Session& session) {
        order.push_back("place:" + session.event_store.event_table_name);
        return std::string();
    };
    steps.open_body_tables = [&](Session&) {
        order.push_back("bodies");
        return std::string("outer3.mdb is missing");
    };
    steps.open_star_tables = [&](Session&) {
        order.push_back("stars");
        return std::string();
    };
    const StartResult r = folder.start(s, steps);
    EXPECT_EQ(order, (std::vector<std::string>{"place:EVENTS", "bodies", "stars"}));
    EXPECT_EQ(r.problems, std::vector<std::string>{"outer3.mdb is missing"});
}

TEST(EventDatabaseTitles, NameWithoutItsSuffixInCapitals) {
    const std::pair<const char*, const char*> cases[] = {
        {"CELESTARK.ZOD.MDB", "CELESTARK"},
        {"Family.zod.mdb", "FAMILY"},
        {"a.zod.mdb", "A"},
        {".zod.mdb", ".ZOD.MDB"}, // too short to lose its suffix: shown whole
        {"", ""},
    };
    for (const auto& [name, title] : cases) EXPECT_EQ(event_database_title(name), title) << name;
}

class DatabaseWindow : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(folder_.start(s_).started);
        add_events(s_, {{"Curie", "Marie", "Birth", " ", "Warsaw", "7", "11", "1867"}});
        enter_event_database_screen(s_, screen_);
    }
    ProgramFolder folder_;
    Session s_;
    EventDatabaseScreen screen_;
    RecordingSink sink_;
};

TEST_F(DatabaseWindow, NewDatabaseAndTableThenBackToWhatWasInUse) {
    EXPECT_FALSE(create_new_database(s_, screen_, "   ", sink_)); // empty names do nothing
    ASSERT_TRUE(create_new_database(s_, screen_, "Family", sink_));
    EXPECT_EQ(option_text(s_, "db_name"), "Family.zod.mdb");
    EXPECT_TRUE(s_.event_store.event_table_name.empty());
    EXPECT_FALSE(exit_event_database_screen(s_, screen_, sink_));
    ASSERT_EQ(sink_.messages.size(), 1u);
    EXPECT_EQ(sink_.messages[0].text,
              "You cannot exit until you have selected both a database and a table");

    s_.event_slots[2][col::year] = "1900";
    s_.event_slots.active_event = 2;
    ASSERT_TRUE(create_new_table(s_, screen_, "Cousins", sink_));
    EXPECT_EQ(option_text(s_, "DB_TABLE"), "Cousins");
    EXPECT_TRUE(slot_is_empty(s_.event_slots[2])) << "the user slots are cleared";
    EXPECT_EQ(s_.event_slots.active_event, 1);
    EXPECT_TRUE(exit_event_database_screen(s_, screen_, sink_));

    // The same name again is refused and the table in use stays.
    EXPECT_FALSE(create_new_table(s_, screen_, "cousins", sink_));
    EXPECT_EQ(sink_.messages.back().title, "TABLE EXISTS");
    EXPECT_TRUE(s_.stores->event_table.is_open());
    EXPECT_FALSE(create_new_database(s_, screen_, "Family", sink_));
    EXPECT_EQ(sink_.messages.back().title, "DATABASE EXISTS");
    EXPECT_FALSE(create_new_database(s_, screen_, "../Elsewhere", sink_));

    ASSERT_EQ(cancel_event_database_screen(s_, screen_, sink_), Outcome::ok);
    EXPECT_EQ(s_.event_store.event_db_name, "CELESTARK.ZOD.MDB");
    EXPECT_EQ(s_.stores->event_table.record_count(), 1);
    EXPECT_EQ(option_text(s_, "DB_TABLE"), "EVENTS");
}

// The store's own tables are not listed; a table that is not an event table cannot be used.
TEST_F(DatabaseWindow, PickingFilesAndTables) {
    ASSERT_TRUE(create_new_database(s_, screen_, "Family", sink_));
    ASSERT_TRUE(create_new_table(s_, screen_, "Empty", sink_));
    s_.stores->event_db.create_table("MSysObjects", std::vector<store::FieldDef>{{"Id", {}, 10}});
    s_.stores->event_db.create_table("msysKept", std::vector<store::FieldDef>{{"Id", {}, 10}});
    ASSERT_TRUE(pick_event_database(s_, screen_, "Family.zod.mdb", sink_));
    EXPECT_EQ(screen_.table_list, (std::vector<std::string>{"Empty", "msysKept"}));
    EXPECT_EQ(pick_event_table(s_, screen_, "Empty", sink_), TableTest::empty);
    EXPECT_EQ(pick_event_table(s_, screen_, "msysKept", sink_), TableTest::corrupt);
    EXPECT_EQ(sink_.messages.back().title, "TABLE CORRUPT");
    EXPECT_EQ(sink_.messages.back().text, "The selected table is corrupt");
    EXPECT_EQ(pick_event_table(s_, screen_, "[NONE]", sink_), TableTest::empty);

    ASSERT_TRUE(pick_event_database(s_, screen_, "Celestark.zod.mdb", sink_));
    EXPECT_EQ(pick_event_table(s_, screen_, "Events", sink_), TableTest::has_events);
    EXPECT_TRUE(exit_event_database_screen(s_, screen_, sink_));
}

TEST_F(DatabaseWindow, AFileThatCannotTakeATableKeepsTheTableInUse) {
    // The open database, opened again for reading only: the store refuses a new table.
    store::TableStore read_only;
    ASSERT_EQ(
        read_only.open(folder_.file("Celestark.zod.mdb"), store::TableStore::Access::read_only),
        Outcome::ok);
    std::swap(read_only, s_.stores->event_db);
    EXPECT_EQ(create_event_table(s_, "More", sink_), Outcome::read_only);
    ASSERT_EQ(sink_.messages.size(), 1u);
    EXPECT_EQ(sink_.messages[0].title, "CANNOT CREATE NEW TABLE TO THIS DB");
    EXPECT_EQ(sink_.messages[0].text,
              "Cannot add a new table to what is probably an old CELESTARK database");
    EXPECT_EQ(s_.event_store.event_table_name, "EVENTS");
    EXPECT_EQ(option_text(s_, "DB_TABLE"), "Events");
    std::swap(read_only, s_.stores->event_db);
}

TEST_F(DatabaseWindow, EventNameRefusesASecondRowWithItsKey) {
    // A table with the Event_Name index alone refuses the key as the primary index would.
    const store::IndexDef event_name = store::event_table_indexes()[1];
    ASSERT_EQ(event_name.name, "Event_Name");
    ASSERT_EQ(s_.stores->event_db.create_table("Alone", store::event_table_fields(),
                                               std::vector<store::IndexDef>{event_name}),
              Outcome::ok);
    store::Recordset rs;
    ASSERT_EQ(s_.stores->event_db.open_recordset("Alone", rs), Outcome::ok);
    auto add = [&](const char* version) {
        rs.add_new();
        for (const auto& [f, v] : {std::pair{"F_event", "Birth"},
                                   {"F_surname", "Curie"},
                                   {"F_firstname", "Marie"},
                                   {"F_version", version}})
            rs.set(f, Value(v));
        const Outcome o = rs.update();
        if (rs.editing()) rs.cancel_update();
        return o;
    };
    EXPECT_EQ(add(" "), Outcome::ok);
    EXPECT_EQ(add(" "), Outcome::duplicate_key);
    EXPECT_EQ(add("2"), Outcome::ok);
    EXPECT_EQ(rs.record_count(), 2);
}

TEST(ListingTables, OpenedFromTheirOptions) {
    ProgramFolder folder;
    Session s;
    ASSERT_TRUE(folder.start(s).started);
    add_events(s, {{"Curie", "Marie", "Birth", " ", "Warsaw", "7", "11", "1867"}});
    RecordingSink sink;
    ASSERT_EQ(set_options(s, "option_name",
                          {{"table_2_path", Value(folder.path())},
                           {"table_2_db", Value("celestark.zod.mdb")},
                           {"table_2_name", Value("events")}},
                          sink),
              Outcome::ok);
    ListingTable listing;
    ASSERT_EQ(open_listing_table(s, 2, listing), Outcome::ok);
    EXPECT_TRUE(listing.has_rows);
    EXPECT_EQ(listing.table.get("F_surname").as_text(), "Curie");
    EXPECT_EQ(open_listing_table(s, 3, listing), Outcome::no_such_file); // not set
    EXPECT_EQ(open_listing_table(s, 6, listing), Outcome::no_such_table);
    EXPECT_FALSE(listing.table.is_open());
}

class SearchWindow : public DatabaseWindow {};

TEST_F(SearchWindow, LinesFollowTheChosenIndex) {
    add_events(s_, {{"Abel", " ", "Death", "2", "Rome", "1", "2", "-43"},
                    {"Zeno", "Ann", "Birth", " ", "Athens", "30", "12", "1950"}});
    SearchList list;
    ASSERT_EQ(fill_search_list(s_, "Name_Event", list, sink_), TableTest::has_events);
    EXPECT_EQ(list.lines, (std::vector<std::string>{
                              "Abel - Death(2) - Rome - 1/2/-43",
                              "Curie, Marie - Birth - Warsaw - 7/11/1867",
                              "Zeno, Ann - Birth - Athens - 30/12/1950",
                          }));
    s_.options.text.date_format = false; // month first
    ASSERT_EQ(fill_search_list(s_, "Date_Name", list, sink_), TableTest::has_events);
    EXPECT_EQ(list.lines.back(), "Zeno, Ann - Birth - Athens - 12/30/1950");

    // The commands on a line.
    ASSERT_TRUE(search_line_to_slot(s_, list, 0, 3));
    EXPECT_EQ(s_.event_slots[3][col::surname], list.lines[0].substr(0, 4));
    EXPECT_EQ(s_.event_slots[3][col::bookmark], list.bookmarks[0]);
    EXPECT_FALSE(search_line_to_slot(s_, list, 0, 5)); // not a user slot
    EXPECT_FALSE(search_line_to_slot(s_, list, 9, 1)); // no such line
    sink_.answers = {true};
    EXPECT_TRUE(delete_search_line(s_, list, 1, sink_));
    EXPECT_EQ(list.lines.size(), 2u);
}

TEST_F(SearchWindow, BlankPartsAreLeftOutAndNullsShowTheirValues) {
    auto& rs = s_.stores->event_table;
    ASSERT_EQ(rs.move_first(), Outcome::ok);
    struct Case {
        const char* field;
        Value value;
        const char* line;
    };
    const Case cases[] = {
        {"F_version", "B", "Curie, Marie - Birth(B) - Warsaw - 7/11/1867"},
        {"F_version", " ", "Curie, Marie - Birth - Warsaw - 7/11/1867"},
        {"F_firstname", " ", "Curie - Birth - Warsaw - 7/11/1867"},
        {"F_surname", Value(), "Faulty  - Birth - Warsaw - 7/11/1867"},
        {"F_place", Value(), "Faulty  - Birth - NONE  - 7/11/1867"},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(rs.edit(), Outcome::ok);
        ASSERT_EQ(rs.set(c.field, c.value), Outcome::ok);
        ASSERT_EQ(rs.update(), Outcome::ok);
        EXPECT_EQ(search_line(rs, s_.options.text), c.line);
    }
}

TEST_F(SearchWindow, AnEmptyTableReports) {
    ASSERT_TRUE(create_new_table(s_, screen_, "Empty", sink_));
    SearchList list;
    EXPECT_EQ(fill_search_list(s_, "Name_Event", list, sink_), TableTest::empty);
    EXPECT_EQ(sink_.messages.back().title, "TABLE EMPTY");
    EXPECT_EQ(fill_search_list(s_, "No_Such_Index", list, sink_), TableTest::corrupt);
    EXPECT_TRUE(list.lines.empty());
}

TEST_F(SearchWindow, ATableLongerThanTheListFillsItAndSaysSo) {
    auto& rs = s_.stores->event_table;
    {
        store::Transaction work = s_.stores->event_db.begin_transaction();
        for (std::size_t i = 0; i < search_list_capacity + 4; ++i) {
            ASSERT_EQ(rs.add_new(), Outcome::ok);
            rs.set("F_surname", Value("P" + std::to_string(100000 + i)));
            rs.set("F_event", Value("Birth"));
            ASSERT_EQ(rs.update(), Outcome::ok);
        }
        ASSERT_EQ(work.commit(), Outcome::ok);
    }
    SearchList list;
    ASSERT_EQ(fill_search_list(s_, "Name_Event", list, sink_), TableTest::has_events);
    EXPECT_EQ(list.lines.size(), search_list_capacity);
    EXPECT_EQ(list.bookmarks.size(), search_list_capacity);
    EXPECT_FALSE(list.complete);
    EXPECT_EQ(sink_.messages.back().title, "SEARCH LIST FULL");
    EXPECT_EQ(list.lines.front().substr(0, 5), "Curie");
    EXPECT_EQ(list.lines.back().substr(0, 7), "P119999");
}

} // namespace
} // namespace celestark
