// The ephemeris export: the checks of the screen, the tables as SQLite reads them, the calendar
// across 1582, negative years, the question before a file is replaced, CANCEL leaving nothing,
// and the CSV folder.
#include "../store/program_folder.h"
#include "../support/sqlite_rows.h"
#include "tables/ephemeris_export.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

namespace celestark::testing {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> files_in(const fs::path& dir) {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(dir)) names.push_back(e.path().filename().string());
    return names;
}

struct ExportFixture : ::testing::Test {
    ProgramFolder folder;
    Session s;
    RecordingSink sink;
    fs::path out;
    void SetUp() override {
        folder.start(s);
        out = folder.file("out");
        fs::create_directories(out);
    }
    EphemerisRequest request(const char* start, const char* end, const char* name = "EPH1") {
        EphemerisRequest r;
        r.start_year = start;
        r.end_year = end;
        r.file_name = name;
        r.folder = out.string();
        return r;
    }
};

TEST_F(ExportFixture, TheChecksListEveryFault) {
    struct Case {
        const char* start;
        const char* end;
        const char* name;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"2000", "2000", "EPH", {"START YEAR must be less then the END YEAR"}},
        {"2001", "2000", "EPH", {"START YEAR must be less then the END YEAR"}},
        {" ",
         "x",
         "",
         {"START YEAR - Cannot be left blank or with only spaces ",
          "             0 and negative years are allowed",
          "             NOTE: enter for example year -35 for 36BC",
          "END YEAR - Cannot be left blank or with only spaces ",
          "           0 and negative years are allowed",
          "           NOTE: enter for example year -35 for 36BC",
          "FILE NAME - Cannot be left blank or with only spaces "}},
        {"2000", "2001", "eph_2000", {"FILE NAME - NOVA-LINK only accepts letters and digits"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.start);
        RecordingSink lines;
        EXPECT_EQ(save_ephemeris(s, request(c.start, c.end, c.name), lines).outcome,
                  ExportOutcome::refused);
        EXPECT_EQ(lines.input_errors, c.lines);
    }
    EXPECT_TRUE(files_in(out).empty());
}

TEST_F(ExportFixture, YearsBeyondThePlanetTablesAreRefused) {
    RecordingSink lines;
    EXPECT_EQ(save_ephemeris(s, request("-9000", "2000"), lines).outcome, ExportOutcome::refused);
    ASSERT_EQ(lines.input_errors.size(), 1u);
    EXPECT_EQ(lines.input_errors[0].rfind("THE YEARS MUST LIE BETWEEN ", 0), 0u);
}

TEST_F(ExportFixture, WritesFourTablesADayARow) {
    const ExportResult r = save_ephemeris(s, request("2000", "2001"), sink);
    ASSERT_EQ(r.outcome, ExportOutcome::written) << r.error;
    const fs::path file = out / "EPH1.mdb";
    EXPECT_EQ(files_in(out), std::vector<std::string>{"EPH1.mdb"});
    const std::pair<const char*, std::size_t> widths[] = {{"geocentric", 9 + 18 * 4},
                                                          {"hermetic", 9 + 18 * 4},
                                                          {"heliocentric", 9 + 42 * 4},
                                                          {"lemnicentric", 9 + 16 * 4}};
    for (const auto& [table, count] : widths) {
        const auto columns = query(file, std::string("PRAGMA table_info(") + table + ")");
        // The store's own row number stands first.
        ASSERT_EQ(columns.size(), count + 1);
        EXPECT_EQ(columns[0][1], "_bookmark");
        const char* head[] = {"Julian_Date", "Day",         "Month",      "Year",
                              "Time_Zone",   "Calender",    "Zodiac",     "World_View",
                              "Day_of_Week", "VP_Floating", "VP_Degrees", "VP_Minutes",
                              "VP_Seconds"};
        for (std::size_t i = 0; i < std::size(head); ++i) EXPECT_EQ(columns[i + 1][1], head[i]);
        // Two years, 2000 a leap year.
        EXPECT_EQ(query(file, std::string("SELECT count(*) FROM ") + table)[0][0], "731");
    }
    EXPECT_EQ(query(file, "SELECT World_View FROM hermetic LIMIT 1")[0][0], "TYCHONIC");
    // 1 January 2000 at 0h UT was a Saturday, with the Sun near 279.86 degrees.
    const auto first = query(file, "SELECT Julian_Date, Day, Month, Year, Time_Zone, Calender, "
                                   "Zodiac, Day_of_Week, SUN_Floating FROM geocentric "
                                   "ORDER BY rowid LIMIT 1")[0];
    EXPECT_EQ(std::vector<std::string>(first.begin(), first.end() - 1),
              (std::vector<std::string>{"2451544.5", "1", "1", "2000", "GMT", "G", "Tropical",
                                        "Saturday"}));
    EXPECT_NEAR(std::stod(first.back()), 279.86, 0.05);
    // The whole degrees, minutes and seconds are those of the decimal longitude.
    for (const auto& row : query(file, "SELECT MOON_Floating, MOON_Degrees, MOON_Minutes, "
                                       "MOON_Seconds FROM geocentric")) {
        const double split = std::stod(row[1]) + std::stod(row[2]) / 60 + std::stod(row[3]) / 3600;
        ASSERT_NEAR(std::stod(row[0]), split, 1.5 / 3600) << row[0];
    }
}

TEST_F(ExportFixture, AJulianSpanOver1582StepsOneDayAtATime) {
    auto r = request("1582", "1583");
    r.julian = true;
    ASSERT_EQ(save_ephemeris(s, r, sink).outcome, ExportOutcome::written);
    const auto rows =
        query(out / "EPH1.mdb",
              "SELECT Julian_Date, Day, Month, Calender FROM lemnicentric ORDER BY rowid");
    ASSERT_EQ(rows.size(), 730u);
    for (std::size_t i = 1; i < rows.size(); ++i)
        ASSERT_EQ(std::stod(rows[i][0]) - std::stod(rows[i - 1][0]), 1.0);
    // In the Julian calendar 4 October 1582 is followed by the 5th.
    const std::size_t oct4 = 273 + 3; // days before October, then the 4th
    EXPECT_EQ(rows[oct4][1] + "/" + rows[oct4][2], "4/10");
    EXPECT_EQ(rows[oct4 + 1][1] + "/" + rows[oct4 + 1][2], "5/10");
    EXPECT_EQ(rows[0][3], "J");
}

TEST_F(ExportFixture, NegativeYearsAreStoredNegative) {
    ASSERT_EQ(save_ephemeris(s, request("-35", "-34"), sink).outcome, ExportOutcome::written);
    const auto years =
        query(out / "EPH1.mdb", "SELECT min(Year), max(Year), count(*) FROM heliocentric");
    EXPECT_EQ(years[0], (std::vector<std::string>{"-35", "-34", "730"}));
}

TEST_F(ExportFixture, TheDuplicateQuestionKeepsOrReplacesTheFile) {
    {
        std::ofstream old(out / "EPH1.mdb");
        old << "the old file";
    }
    sink.answers = {false};
    EXPECT_EQ(save_ephemeris(s, request("2000", "2001"), sink).outcome, ExportOutcome::refused);
    ASSERT_EQ(sink.questions.size(), 1u);
    EXPECT_EQ(sink.questions[0].title, "DUPLICATE FILE NAME");
    EXPECT_EQ(sink.questions[0].text,
              "The database file EPH1.mdb already exists. Do you wish to overwrite it?");
    EXPECT_EQ(fs::file_size(out / "EPH1.mdb"), 12u);
    sink.answers = {true};
    EXPECT_EQ(save_ephemeris(s, request("2000", "2001"), sink).outcome, ExportOutcome::written);
    EXPECT_EQ(query(out / "EPH1.mdb", "SELECT count(*) FROM geocentric")[0][0], "731");
}

TEST_F(ExportFixture, CancelLeavesNoFileAndTheOldOneAlone) {
    for (const bool csv : {false, true}) {
        SCOPED_TRACE(csv);
        RecordingSink cancel;
        cancel.cancel_after = 40;
        auto r = request("1990", "2010");
        r.csv = csv;
        EXPECT_EQ(save_ephemeris(s, r, cancel).outcome, ExportOutcome::cancelled);
        EXPECT_TRUE(files_in(out).empty());
        EXPECT_EQ(cancel.progress_steps.back(), 40);
    }
    std::ofstream(out / "EPH1.mdb") << "kept";
    RecordingSink cancel;
    cancel.answers = {true};
    cancel.cancel_after = 10;
    EXPECT_EQ(save_ephemeris(s, request("1990", "2010"), cancel).outcome, ExportOutcome::cancelled);
    EXPECT_EQ(files_in(out), std::vector<std::string>{"EPH1.mdb"});
    EXPECT_EQ(fs::file_size(out / "EPH1.mdb"), 4u);
}

TEST_F(ExportFixture, CsvFilesHoldTheSameColumns) {
    auto r = request("2000", "2001");
    r.csv = true;
    ASSERT_EQ(save_ephemeris(s, r, sink).outcome, ExportOutcome::written);
    for (int t = 0; t < ephemeris_table_count; ++t) {
        std::ifstream in(out / "EPH1" / (std::string(ephemeris_tables[t]) + ".csv"));
        std::string header, line;
        std::getline(in, header);
        std::string expected;
        for (const auto& f : ephemeris_fields(t))
            expected += (expected.empty() ? "" : ",") + f.name;
        EXPECT_EQ(header, expected);
        int rows = 0;
        std::string first;
        while (std::getline(in, line)) {
            if (rows++ == 0) first = line;
        }
        EXPECT_EQ(rows, 731);
        EXPECT_EQ(first.rfind(std::string("2451544.5,1,1,2000,GMT,G,Tropical,") +
                                  ephemeris_world_views[t] + ",Saturday,",
                              0),
                  0u)
            << first;
    }
}

} // namespace
} // namespace celestark::testing
