// The analysis database: an event table added as one row per event in each world view's table,
// readable by SQLite itself; a second add of the same events, a row that cannot be charted, the
// empty table, clearing and recalculating with another zodiac.
#include "../store/program_folder.h"
#include "../support/events.h"
#include "../support/sqlite_rows.h"
#include "store/event_database.h"
#include "store/event_schema.h"
#include "tables/analysis_database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cmath>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace celestark::testing {
namespace {

double number(const std::filesystem::path& file, const std::string& sql) {
    const auto rows = query(file, sql);
    return rows.empty() ? NAN : std::stod(rows[0][0]);
}

// An event table with Einstein's birth, a second birth, and one whose year no table covers.
void make_events(const std::filesystem::path& file, bool with_events = true) {
    store::TableStore db;
    ASSERT_EQ(db.create(file), store::Outcome::ok);
    ASSERT_EQ(db.create_table("Births", store::event_table_fields(), store::event_table_indexes()),
              store::Outcome::ok);
    if (!with_events) return;
    store::Recordset rs;
    ASSERT_EQ(db.open_recordset("Births", rs), store::Outcome::ok);
    EventCells second = einstein;
    second[0].second = "Curie";
    second[1].second = "Marie";
    EventCells far = einstein;
    far[0].second = "Zukunft";
    far[6].second = "9000";
    for (const EventCells& cells : {einstein, second, far}) {
        EventInput in = new_input(cells);
        EventTable table{rs};
        RecordingSink sink;
        ASSERT_EQ(save_event(in, table, sink), SaveResult::saved);
    }
}

struct AnalysisFixture : ::testing::Test {
    ProgramFolder folder;
    Session s;
    store::TableStore events_db;
    store::Recordset events;
    std::filesystem::path analysis;
    void SetUp() override {
        folder.start(s);
        make_events(folder.file("births.zod.mdb"));
        ASSERT_EQ(open_event_file(folder.file("births.zod.mdb"), "Births", events_db, events),
                  store::Outcome::ok);
        analysis = folder.file("analysis.mdb");
    }
};

TEST_F(AnalysisFixture, AddsEachEventToTheFourTablesReadableBySqlite) {
    RecordingSink sink;
    const AnalysisResult r = add_table_to_analysis(s, events, analysis, sink);
    ASSERT_TRUE(r.done) << r.error;
    EXPECT_EQ(r.added, 2);
    EXPECT_EQ(r.not_charted, 1);
    ASSERT_EQ(sink.input_errors.size(), 1u);
    // Rows are counted in name order: Curie, Einstein, Zukunft.
    EXPECT_EQ(sink.input_errors[0].rfind("ROW 3 (Zukunft Albert, Birth)", 0), 0u)
        << sink.input_errors[0];
    EXPECT_EQ(analysis_event_count(analysis), 2);

    std::set<std::string> tables;
    for (const auto& row : query(analysis, "SELECT name FROM sqlite_master WHERE type='table'"))
        tables.insert(row[0]);
    EXPECT_TRUE(tables.count("geocentric") && tables.count("hermetic") &&
                tables.count("heliocentric") && tables.count("lemnicentric"));
    const std::map<std::string, std::size_t> widths = {{"geocentric", 29 + 18},
                                                       {"hermetic", 29 + 18},
                                                       {"heliocentric", 29 + 42},
                                                       {"lemnicentric", 29 + 16}};
    for (const auto& [table, count] : widths) {
        // The store's own row number stands first.
        const auto columns = query(analysis, "PRAGMA table_info(" + table + ")");
        ASSERT_EQ(columns.size(), count + 1) << table;
        EXPECT_EQ(columns[0][1], "_bookmark");
        EXPECT_EQ(columns[1][1], "F_Event");
        EXPECT_EQ(columns[29][1], "F_search_date");
        EXPECT_EQ(columns[30][1], "VP_Floating");
        EXPECT_EQ(query(analysis, "SELECT count(*) FROM " + table)[0][0], "2");
    }
    const std::string einstein_row = " WHERE F_Surname = 'Einstein'";
    // Einstein's Sun stood at 23 Pisces 30.
    EXPECT_NEAR(number(analysis, "SELECT SUN_Floating FROM geocentric" + einstein_row), 353.5, 0.1);
    // Seen from the Sun, the Earth stands opposite; the Tychonic planets are heliocentric.
    EXPECT_NEAR(number(analysis, "SELECT EARTH_Floating FROM heliocentric" + einstein_row), 173.5,
                0.1);
    EXPECT_NEAR(number(analysis, "SELECT MARS_Floating FROM hermetic" + einstein_row),
                number(analysis, "SELECT MARS_Floating FROM heliocentric" + einstein_row), 1e-4);
    EXPECT_EQ(query(analysis, "SELECT F_day, F_month, F_year FROM lemnicentric" + einstein_row)[0],
              (std::vector<std::string>{"14", "3", "1879"}));
    // Every body is indexed for the queries of outside tools.
    EXPECT_FALSE(query(analysis, "SELECT name FROM sqlite_master WHERE type='index' AND sql LIKE "
                                 "'%SUN_Floating%' AND tbl_name='geocentric'")
                     .empty());
}

TEST_F(AnalysisFixture, ASecondAddSkipsTheEventsAlreadyThereAndSaysSo) {
    RecordingSink sink;
    ASSERT_TRUE(add_table_to_analysis(s, events, analysis, sink).done);
    RecordingSink again;
    const AnalysisResult r = add_table_to_analysis(s, events, analysis, again);
    ASSERT_TRUE(r.done);
    EXPECT_EQ(r.added, 0);
    EXPECT_EQ(r.already_there, 2);
    EXPECT_EQ(analysis_event_count(analysis), 2);
    ASSERT_FALSE(again.messages.empty());
    EXPECT_NE(again.messages.back().text.find("2 events were already in the analysis database"),
              std::string::npos)
        << again.messages.back().text;
}

TEST_F(AnalysisFixture, CancelAddsNothing) {
    RecordingSink sink;
    sink.cancel_after = 2;
    const AnalysisResult r = add_table_to_analysis(s, events, analysis, sink);
    EXPECT_TRUE(r.cancelled);
    EXPECT_EQ(analysis_event_count(analysis), 0);
}

TEST_F(AnalysisFixture, RecalculatesWithTheCurrentZodiacAndClears) {
    RecordingSink sink;
    ASSERT_TRUE(add_table_to_analysis(s, events, analysis, sink).done);
    const std::string row = " FROM geocentric WHERE F_Surname = 'Curie'";
    const double sun = number(analysis, "SELECT SUN_Floating" + row);
    EXPECT_EQ(number(analysis, "SELECT VP_Floating" + row), 0.0);
    s.chart.zodiac = "Sidereal SVP";
    ASSERT_TRUE(recalculate_analysis(s, analysis, sink).done);
    // Every longitude moves by the vernal point of the new zodiac, about 23 degrees in 1879.
    const double vp = number(analysis, "SELECT VP_Floating" + row);
    EXPECT_NEAR(vp, 360 - 23.05, 0.3);
    EXPECT_NEAR(std::remainder(number(analysis, "SELECT SUN_Floating" + row) - sun - vp, 360.0), 0,
                1e-3);

    sink.answers = {false, true};
    EXPECT_FALSE(clear_analysis(analysis, sink));
    EXPECT_EQ(analysis_event_count(analysis), 2);
    EXPECT_TRUE(clear_analysis(analysis, sink));
    EXPECT_EQ(analysis_event_count(analysis), 0);
    EXPECT_EQ(sink.questions.back().title, "CLEAR ANALYSIS DATABASE");
}

TEST(Analysis, AnEmptyTableIsRefused) {
    ProgramFolder folder;
    Session s;
    folder.start(s);
    make_events(folder.file("none.zod.mdb"), false);
    store::TableStore db;
    store::Recordset rs;
    ASSERT_EQ(open_event_file(folder.file("none.zod.mdb"), "Births", db, rs), store::Outcome::ok);
    RecordingSink sink;
    EXPECT_FALSE(add_table_to_analysis(s, rs, folder.file("analysis.mdb"), sink).done);
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0].title, "TABLE EMPTY");
    EXPECT_EQ(sink.messages[0].text, "There are no events in the selected table");
}

} // namespace
} // namespace celestark::testing
