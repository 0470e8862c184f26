// celestark-cli predict in its three modes and its refusals; chart with its cusps and the
// progressed charts.
#include "predict.h"
#include "stores.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace celestark::cli {
namespace {

using Options = std::map<std::string, std::string>;

const Options einstein = {{"date", "1879-03-14"},
                          {"time", "11:30:00"},
                          {"zone", "LMT"},
                          {"lat", "48N24"},
                          {"lon", "10E00"}};

// The command's standard output as rows of cells, and its exit code.
// (The rows of chart end at its aspects' header.)
template <typename Command>
std::vector<std::vector<std::string>> run(Command command, const Options& o, int& code) {
    ::testing::internal::CaptureStdout();
    code = command(o);
    std::istringstream out(::testing::internal::GetCapturedStdout());
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(out, line);) {
        std::vector<std::string> cells;
        std::istringstream f(line);
        for (std::string cell; std::getline(f, cell, ',');) cells.push_back(cell);
        if (!cells.empty() && cells[0] == "aspect") break;
        rows.push_back(cells);
    }
    return rows;
}

TEST(PredictCommand, RunsTheThreeModes) {
    struct Case {
        const char* mode;
        const char* from;
        const char* to;
        const char* set;
    };
    const Case cases[] = {
        {"T", "1905-01-01", "1905-03-01", "aspects=1,signs=1,retro=1"},
        // A birth without a stored epoch takes the one the rule selects.
        {"B", "1879-03-14", "1890-01-01", "ab=1,birth_transits=1,aspects=1,t_moon=0"},
        {"P", "1879-03-14", "1920-01-01", "pr_secondary=1,pr_event=1,aspects=1,t_ascendant=1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.mode);
        Options o = einstein;
        o["mode"] = c.mode;
        o["from"] = c.from;
        o["to"] = c.to;
        o["set"] = c.set;
        int code = 0;
        const auto rows = run(command_predict, o, code);
        ASSERT_EQ(code, 0);
        ASSERT_GT(rows.size(), 5u);
        EXPECT_EQ(rows[0], (std::vector<std::string>{"jd_ut", "date", "time", "kind", "moving",
                                                     "radical", "aspect_deg", "text"}));
        double last = 0;
        for (std::size_t i = 1; i < rows.size(); ++i) {
            const double jd = std::stod(rows[i][0]);
            EXPECT_GE(jd, last);
            last = jd;
            EXPECT_GE(rows[i][1], c.from);
            EXPECT_LE(rows[i][1], c.to);
        }
    }
}

TEST(PredictCommand, RefusesWhatItCannotRun) {
    const std::pair<const char*, const char*> faults[] = {
        {"set", "no_such_box=1"}, {"set", "aspects=2"}, {"zone", "XYZ"}, {"mode", "Q"},
        {"from", "1990-13-01"},   {"report", "out.png"}};
    for (const auto& [option, value] : faults) {
        Options o = einstein;
        o["mode"] = "T";
        o[option] = value;
        int code = 0;
        ::testing::internal::CaptureStderr();
        run(command_predict, o, code);
        const std::string said = ::testing::internal::GetCapturedStderr();
        EXPECT_NE(code, 0) << option << "=" << value;
        EXPECT_FALSE(said.empty()) << option;
    }
}

TEST(EclipsesCommand, ListsTheEclipsesOfTheSpanInOrder) {
    int code = 0;
    const auto rows = run(command_eclipses, {{"from", "1999-01-01"}, {"to", "1999-12-31"}}, code);
    ASSERT_EQ(code, 0);
    std::vector<std::string> seen;
    for (std::size_t i = 1; i < rows.size(); ++i)
        seen.push_back(rows[i][0] + rows[i][1] + rows[i][3]);
    // The four eclipses of 1999: a penumbral and a partial lunar, an annular and a total solar.
    EXPECT_EQ(seen, (std::vector<std::string>{"MPN1999-01-31", "SA1999-02-16", "MP1999-07-28",
                                              "ST1999-08-11"}));
    EXPECT_EQ(rows[4][4], "11:03");
    // A span that starts a few days before a lunar eclipse has it first (10 January 2020).
    const auto early = run(command_eclipses, {{"from", "2020-01-01"}, {"to", "2020-01-31"}}, code);
    ASSERT_EQ(early.size(), 2u);
    EXPECT_EQ(early[1][3], "2020-01-10");
    // With eclipses asked for, a transit run has them among its rows.
    Options o = einstein;
    o["mode"] = "T";
    o["from"] = "1999-08-01";
    o["to"] = "1999-08-31";
    o["set"] = "aspects=0,eclipses=1";
    const auto hits = run(command_predict, o, code);
    ASSERT_EQ(code, 0);
    ASSERT_EQ(hits.size(), 2u);
    EXPECT_EQ(hits[1][3], "S");
    EXPECT_EQ(hits[1][1], "1999-08-11");
}

TEST(EphemerisCommand, DailyRowsAndPages) {
    int code = 0;
    const auto rows = run(command_ephemeris, {{"from", "2000-02"}, {"to", "2000-03"}}, code);
    ASSERT_EQ(code, 0);
    EXPECT_EQ(rows.size(), 1u + 29 + 31);
    EXPECT_EQ(rows[1][0], "2000-02-01");
    EXPECT_EQ(rows[0][3], "sun");
    const std::string pdf = ::testing::TempDir() + "celestark_ephemeris.pdf";
    run(command_ephemeris, {{"from", "2020-09"}, {"to", "2020-10"}, {"out", pdf}}, code);
    ASSERT_EQ(code, 0);
    EXPECT_GT(std::filesystem::file_size(pdf), 10000u);
    run(command_ephemeris,
        {{"from", "2020-09"}, {"to", "2020-10"}, {"out", pdf}, {"star-calendar", ""}}, code);
    ASSERT_EQ(code, 0);
    EXPECT_GT(std::filesystem::file_size(pdf), 10000u);
    std::filesystem::remove(pdf);
    run(command_ephemeris, {{"from", "2020-13"}, {"to", "2021-01"}}, code);
    EXPECT_NE(code, 0);
}

TEST(ChartCommand, CuspsAndProgressedCharts) {
    Options o = einstein;
    o["houses"] = "Placidus";
    int code = 0;
    const auto birth = run(command_chart, o, code);
    ASSERT_EQ(code, 0);
    std::map<std::string, double> at_birth;
    for (const auto& r : birth)
        if (r.size() >= 4 && r[0] != "body") at_birth[r[0]] = std::stod(r[1]);
    ASSERT_TRUE(at_birth.count("cusp12") && at_birth.count("asc") && at_birth.count("mc"));
    EXPECT_DOUBLE_EQ(at_birth["cusp1"], at_birth["asc"]);
    EXPECT_DOUBLE_EQ(at_birth["cusp10"], at_birth["mc"]);
    // Thirty years of one degree a year.
    o["progressed"] = "od";
    o["to"] = "1909-03-14T11:30:00";
    const auto od = run(command_chart, o, code);
    ASSERT_EQ(code, 0);
    for (const auto& r : od) {
        if (r.size() < 4 || !at_birth.count(r[0])) continue;
        EXPECT_NEAR(std::remainder(std::stod(r[1]) - at_birth[r[0]] - 30.0, 360.0), 0, 0.01)
            << r[0];
    }
    o["progressed"] = "primary";
    run(command_chart, o, code);
    EXPECT_NE(code, 0);
}

} // namespace
} // namespace celestark::cli
