// The session over its stores: a damaged stored event still calculates, and a save cut off by
// the end of the process leaves every stored file whole.
#include "../store/program_folder.h"
#include "engine/chart.h"
#include "screens/event_input.h"
#include "store/option_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace celestark {
namespace {

using store::Outcome;
using store::Value;
using testing::ProgramFolder;

TEST(StoredEvents, ARecordWithNullNamesLoadsAsFaultyAndStillCalculates) {
    ProgramFolder folder;
    Session s;
    ASSERT_TRUE(folder.start(s).started);
    store::Recordset& rs = s.stores->event_table;
    const std::pair<const char*, const char*> cells[] = {{"F_firstname", "Marie"},
                                                         {"F_day", "7"},
                                                         {"F_month", "11"},
                                                         {"F_year", "1867"},
                                                         {"F_gj", "G"},
                                                         {"F_hours", "12"},
                                                         {"F_lz", "L"},
                                                         {"F_Lat_deg", "52"},
                                                         {"F_lat_ns", "N"},
                                                         {"F_long_deg", "21"},
                                                         {"F_long_ew", "E"}};
    // The same moment twice: once whole, once with the event and surname fields null.
    for (const bool damaged : {false, true}) {
        ASSERT_EQ(rs.add_new(), Outcome::ok);
        for (const auto& [field, value] : cells) rs.set(field, Value(value));
        rs.set("F_version", Value(damaged ? "d" : "w"));
        if (!damaged) {
            rs.set("F_event", Value("Birth"));
            rs.set("F_surname", Value("Curie"));
        }
        ASSERT_EQ(rs.update(), Outcome::ok);
    }
    ASSERT_EQ(rs.move_first(), Outcome::ok); // the null surname sorts first
    load_event_row(rs, s.event_slots, 2);
    ASSERT_EQ(rs.move_next(), Outcome::ok);
    load_event_row(rs, s.event_slots, 1);
    EXPECT_EQ(s.event_slots[2][col::surname], "Faulty ");

    calculate_chart(s, 1, true);
    const PositionLists whole = s.engine.pos;
    calculate_chart(s, 2, true);
    ASSERT_GT(s.engine.pos.geo_count, geo::pluto - 3);
    EXPECT_EQ(s.engine.pos.geo_count, whole.geo_count);
    for (std::size_t i = 0; i < static_cast<std::size_t>(whole.geo_count); ++i)
        EXPECT_DOUBLE_EQ(s.engine.pos.geo_long[i], whole.geo_long[i]) << i;
    EXPECT_NEAR(whole.geo_long[0] * 180 / 3.14159265358979, 224.58, 0.01); // the Sun
    EXPECT_TRUE(folder.fatal_titles.empty());
}

// The kill test: a child process saves events and options in a loop until it is killed at a
// random moment after its first save (which it signals on `ready`); the files must then open
// whole, every stored row complete.
void writer_loop(const std::string& folder, int ready) {
    Session s;
    RecordingSink sink;
    start_session(s, folder, sink, [](const std::string&, const std::string&) { _exit(3); });
    if (!s.stores || !s.stores->event_table.is_open()) _exit(4);
    EventTable table{s.stores->event_table};
    for (int i = 0;; ++i) {
        EventInput in;
        new_event_defaults(in);
        const std::string n = std::to_string(i);
        in.cells[col::surname] = "Person " + n;
        in.cells[col::firstname] = n;
        in.cells[col::year] = n;
        in.cells[col::comments] = std::string(200, static_cast<char>('a' + i % 26));
        if (save_event(in, table, sink) != SaveResult::saved) _exit(5);
        // Two options in one update: a reader never sees one without the other.
        if (set_options(s, "option_name", {{"add1", Value(n)}, {"tel", Value("tel " + n)}}, sink) !=
            Outcome::ok)
            _exit(6);
        if (i == 0 && write(ready, "s", 1) != 1) _exit(7);
    }
}

TEST(Durability, AKilledWriterLeavesTheFilesWholeAndThePreviousRowsIntact) {
    ProgramFolder folder;
    {
        Session s;
        ASSERT_TRUE(folder.start(s).started); // makes the event database
    }
    std::mt19937 random(12345);
    std::uniform_int_distribution<int> delay_ms(0, 300);
    long long stored = 0;
    for (int round = 0; round < 4; ++round) {
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) writer_loop(folder.path(), ready[1]);
        // However slowly the writer starts, it is killed while it writes.
        close(ready[1]);
        char signal = 0;
        ASSERT_EQ(read(ready[0], &signal, 1), 1) << "the writer ended before its first save";
        close(ready[0]);
        std::this_thread::sleep_for(std::chrono::milliseconds(delay_ms(random)));
        ASSERT_EQ(kill(child, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer stopped by itself: " << status;

        for (const char* file : {"Celestark.zod.mdb", "option.mdb"}) {
            store::TableStore db;
            ASSERT_EQ(db.open(folder.file(file)), Outcome::ok) << file;
            EXPECT_EQ(db.check_integrity(), Outcome::ok) << file;
        }
        Session s;
        ASSERT_TRUE(folder.start(s).started);
        store::Recordset& rs = s.stores->event_table;
        // Every row is complete (its fields agree with each other), and the rows are those of
        // the saves 0 to n-1 without a gap: no earlier row was lost.
        std::vector<long long> numbers;
        for (rs.move_first(); rs.has_current(); rs.move_next()) {
            const std::string n = rs.get("F_firstname").as_text();
            ASSERT_EQ(rs.get("F_surname").as_text(), "Person " + n);
            ASSERT_EQ(rs.get("F_year").as_text(), n);
            const std::string comments = rs.get("F_comments").as_text();
            ASSERT_EQ(comments.size(), 200u);
            ASSERT_EQ(comments.find_first_not_of(comments[0]), std::string::npos);
            numbers.push_back(std::stoll(n));
        }
        std::sort(numbers.begin(), numbers.end());
        for (std::size_t i = 0; i < numbers.size(); ++i)
            ASSERT_EQ(numbers[i], static_cast<long long>(i));
        const long long n = static_cast<long long>(numbers.size());
        stored += n;
        // The two options of one update agree, and are those of the last or the one before.
        const std::string add1 = read_option(s, "option_name", "add1").as_text();
        EXPECT_EQ(read_option(s, "option_name", "tel").as_text(),
                  add1 == " " ? " " : "tel " + add1);
        if (n >= 2) {
            EXPECT_TRUE(add1 == std::to_string(n - 1) || add1 == std::to_string(n - 2)) << add1;
        }
        // The next writer numbers its rows from 0 again.
        while (rs.move_first() == Outcome::ok) rs.delete_row();
    }
    EXPECT_GE(stored, 4);
    EXPECT_TRUE(folder.fatal_titles.empty());
}

} // namespace
} // namespace celestark

namespace celestark::testing {
namespace {

TEST(StartBodyTables, MissingTablesEndTheStartAndPresentOnesServeTheCharts) {
    {
        ProgramFolder folder(true, false);
        Session s;
        folder.start(s);
        ASSERT_EQ(folder.fatal_titles.size(), 1u);
        EXPECT_EQ(folder.fatal_titles[0], "Fatal Error in OPEN OUTER TABLE");
        EXPECT_NE(folder.fatal_texts[0].find("outer3.mdb"), std::string::npos);
        EXPECT_FALSE(s.body_tables);
    }
#ifdef CELESTARK_TABLES_DIR
    ProgramFolder folder;
    Session s;
    ASSERT_TRUE(folder.start(s).started);
    EXPECT_TRUE(folder.fatal_titles.empty());
    ASSERT_TRUE(s.body_tables);
    s.event_slots[1] = make_default_event();
    s.event_slots[1][col::year] = "1990";
    s.event_slots[1][col::gj] = "G";
    calculate_chart(s, 1, false);
    EXPECT_TRUE(s.engine.outer_planets_ok);
    EXPECT_GT(s.engine.pos.geo_dist[geo::neptune], 28.0); // Neptune, from its table
#endif
}

} // namespace
} // namespace celestark::testing
