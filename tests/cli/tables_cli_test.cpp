// celestark-cli events add (CSV with quotes, a byte order mark and CRLF; a bad row refused by
// line and reason, the others added), export killed in the middle, and analysis.
#include "cli_support.h"
#include "store/event_database.h"
#include "tables.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace celestark::cli {
namespace {

namespace fs = std::filesystem;

struct TablesCli : ::testing::Test {
    store::testing::ScratchDir dir;
    fs::path db = dir.file("people.zod.mdb");
    void SetUp() override {
        store::TableStore t;
        ASSERT_EQ(t.create(db), store::Outcome::ok);
        ASSERT_EQ(
            t.create_table("Events", store::event_table_fields(), store::event_table_indexes()),
            store::Outcome::ok);
    }
    // The stored fields of the event with the surname.
    std::map<std::string, std::string> stored(const std::string& surname) {
        store::TableStore t;
        store::Recordset rs;
        EXPECT_EQ(open_event_file(db, "Events", t, rs), store::Outcome::ok);
        EXPECT_EQ(rs.seek(">=", {store::Value(surname)}), store::Outcome::ok);
        std::map<std::string, std::string> out;
        for (const auto& f : store::event_table_fields()) out[f.name] = rs.get(f.name).as_text();
        return out;
    }
};

TEST_F(TablesCli, AddsTheGoodRowsAndNamesTheBadOnesByLine) {
    const std::string csv =
        "\xEF\xBB\xBF"
        "F_Surname,f_firstname,F_day,F_month,F_year,F_hours,F_mins,F_Place,F_lat_deg,F_lat_ns,"
        "F_long_deg,F_long_ew,F_time_zone,F_comments\r\n"
        "Curie,Marie,7,11,1867,12,0,Warsaw,52,N,21,E,GMT,plain\r\n"
        "Nobody,Bad,32,1,1900,12,0,Nowhere,10,N,10,E,GMT,\r\n"
        "\"O\"\"Brien, Jr\",Pat,1,2,1903,6,30,\"Cork, Ireland\",51,N,8,W,GMT,\"two\r\nlines\"\r\n"
        "Old,Timer,5,6,1700,0,0,London,51,N,0,W,,\r\n";
    const CsvAddResult r = add_events_from_csv(db.string(), "Events", csv);
    ASSERT_TRUE(r.read) << r.error;
    EXPECT_EQ(r.added, 3);
    ASSERT_EQ(r.refused.size(), 1u);
    EXPECT_EQ(r.refused[0].rfind("line 3: ", 0), 0u) << r.refused[0];
    EXPECT_GT(r.refused[0].size(), 10u);

    const auto obrien = stored("O\"");
    EXPECT_EQ(obrien.at("F_Surname"), "O\"Brien, Jr");
    EXPECT_EQ(obrien.at("F_Place"), "Cork, Ireland");
    EXPECT_EQ(obrien.at("F_comments"), "two\r\nlines");
    // Left out: what a new event has on the input screen.
    EXPECT_EQ(obrien.at("F_Event"), "Birth");
    EXPECT_EQ(obrien.at("F_gj"), "G");
    EXPECT_EQ(obrien.at("F_lz"), "Z");
    // A year before 1848 brings local time, as typing it on the screen does.
    EXPECT_EQ(stored("Old").at("F_lz"), "L");
    EXPECT_EQ(stored("Curie").at("F_long_ew"), "E");
    // A second add of the same rows finds them there.
    const CsvAddResult again = add_events_from_csv(db.string(), "Events", csv);
    EXPECT_EQ(again.added, 0);
    EXPECT_EQ(again.refused.size(), 4u);
}

TEST_F(TablesCli, RefusesAHeaderWithAnUnknownField) {
    const CsvAddResult r =
        add_events_from_csv(db.string(), "Events", "F_Surname,F_nonsense\nA,B\n");
    EXPECT_FALSE(r.read);
    EXPECT_NE(r.error.find("unknown field 'F_nonsense'"), std::string::npos) << r.error;
    std::vector<std::vector<std::string>> records;
    std::vector<long> lines;
    std::string error;
    EXPECT_FALSE(parse_csv("a,b\n\"open,c\n", records, lines, error));
    EXPECT_EQ(error, "line 2: a quoted field is never closed");
}

// The program itself, beside the test program's folder.
fs::path program() {
    return fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "cli" / "celestark-cli";
}

// Starts an export of many years in the program folder `folder` and kills it with the signal
// once its temporary file is there.
int killed_export(const fs::path& folder, const fs::path& target, int signal_number) {
    const pid_t child = fork();
    if (child == 0) {
        if (chdir(folder.c_str()) != 0) _exit(126);
        execl(program().c_str(), "celestark-cli", "export", "--from-year", "1000", "--to-year",
              "2900", "--out", target.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    fs::path partial = target;
    partial += ".new";
    for (int i = 0; i < 600 && !fs::exists(partial); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    kill(child, signal_number);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : -1;
}

TEST_F(TablesCli, AKilledExportLeavesNoFileOfItsName) {
    if (!fs::exists(program())) GTEST_SKIP() << "no " << program();
    // A program folder of the built stores, so that a killed program leaves nothing elsewhere.
    const fs::path folder = dir.file("program"),
                   built = program().parent_path().parent_path() / "data";
    fs::create_directories(folder);
    fs::copy_file(built / "option.mdb", folder / "option.mdb");
    for (const char* name : {"outer3.mdb", "asteroid.mdb", "stars.mdb"})
        fs::create_symlink(built / name, folder / name);
    const fs::path out = dir.file("exports");
    fs::create_directories(out);
    const fs::path target = out / "EPH.mdb";
    EXPECT_EQ(killed_export(folder, target, SIGTERM), SIGTERM);
    EXPECT_TRUE(fs::is_empty(out));
    // A process killed outright cannot tidy up: its temporary file goes with the next export.
    EXPECT_EQ(killed_export(folder, target, SIGKILL), SIGKILL);
    EXPECT_FALSE(fs::exists(target));
    ::testing::internal::CaptureStdout();
    const int code =
        command_export({{"from-year", "2000"}, {"to-year", "2001"}, {"out", target.string()}});
    ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(code, 0);
    std::vector<std::string> left;
    for (const auto& e : fs::directory_iterator(out)) left.push_back(e.path().filename().string());
    EXPECT_EQ(left, std::vector<std::string>{"EPH.mdb"});
}

TEST_F(TablesCli, AnalysisAddsATable) {
    ASSERT_TRUE(add_events_from_csv(db.string(), "Events",
                                    "F_Surname,F_day,F_month,F_year,F_Place,F_lz\n"
                                    "Einstein,14,3,1879,Ulm,L\nCurie,7,11,1867,Warsaw,L\n")
                    .read);
    const fs::path analysis = dir.file("analysis.mdb");
    ::testing::internal::CaptureStdout();
    const int code =
        command_analysis({{"db", db.string()}, {"table", "Events"}, {"out", analysis.string()}});
    const std::string out = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(code, 0);
    EXPECT_EQ(out, "added,already_there,not_charted,in_database\n2,0,0,2\n");
}

} // namespace
} // namespace celestark::cli
