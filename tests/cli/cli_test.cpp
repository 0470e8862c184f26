// The command line: options read strictly, inline events, and render writing its three kinds of
// file for a stored and an inline event.
#include "epoch.h"
#include "event_options.h"
#include "render.h"

#include "cli_support.h"

#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSvgRenderer>

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace celestark::cli {
namespace {

TEST(CliOptions, NumbersAndPlacesAreReadStrictly) {
    double v = 0;
    std::string error;
    EXPECT_TRUE(number_option({{"jd", "2451545.5"}}, "jd", v, error));
    EXPECT_DOUBLE_EQ(v, 2451545.5);
    for (const char* bad : {"abc", "12x", "", "1e999"}) {
        EXPECT_FALSE(number_option({{"jd", bad}}, "jd", v, error)) << bad;
        EXPECT_NE(error.find("--jd"), std::string::npos) << bad;
    }
    EXPECT_FALSE(number_option({}, "jd", v, error));
    EXPECT_TRUE(error.empty());

    struct Case {
        const char* text;
        const char* letters;
        int limit;
        bool ok;
    };
    const Case cases[] = {{"51N30", "NS", 90, true},    {"33s52:10", "NS", 90, true},
                          {"95N00", "NS", 90, false},   {"90N01", "NS", 90, false},
                          {"51X30", "NS", 90, false},   {"51N60", "NS", 90, false},
                          {"0W07", "EW", 180, true},    {"180E00", "EW", 180, true},
                          {"180E01", "EW", 180, false}, {"N30", "NS", 90, false}};
    for (const Case& c : cases)
        EXPECT_EQ(parse_place_angle(c.text, c.letters, c.limit).has_value(), c.ok) << c.text;
}

TEST(CliOptions, InlineEventsAreCheckedWhole) {
    Options o = {{"date", "1879-03-14"}, {"time", "11:30:00"}, {"zone", "CET"},
                 {"lat", "48N24"},       {"lon", "10E00"},     {"name", "Einstein"}};
    EventRow row;
    std::string error;
    ASSERT_TRUE(inline_event(o, row, error)) << error;
    EXPECT_EQ(row[col::surname], "Einstein");
    EXPECT_EQ(row[col::lz], "Z");
    EXPECT_EQ(row[col::med_deg], "15");
    EXPECT_EQ(row[col::med_ew], "E");
    const std::pair<const char*, const char*> faults[] = {
        {"date", "1879-02-30"}, {"date", "1879-13-01"}, {"time", "24:00:00"},
        {"zone", "XYZ"},        {"lat", "95N00"},       {"lon", "10Q00"},
    };
    for (const auto& [field, value] : faults) {
        Options bad = o;
        bad[field] = value;
        EXPECT_FALSE(inline_event(bad, row, error)) << field << " " << value;
        EXPECT_NE(error.find(std::string("--") + field), std::string::npos) << error;
    }
    Options missing = o;
    missing.erase("zone");
    EXPECT_FALSE(inline_event(missing, row, error));
}

class Render : public ::testing::Test {
  protected:
    store::testing::ScratchDir dir;
    std::string file(const std::string& name) const { return dir.file(name).string(); }

    // An event table with one stored birth.
    void store_event() {
        const testing::Cells curie = {
            {col::surname, "Curie"}, {col::firstname, "Marie"}, {col::event, "Birth"},
            {col::place, "Warsaw"},  {col::day, "7"},           {col::month, "11"},
            {col::year, "1867"},     {col::hours, "12"},        {col::lz, "L"},
            {col::lat_deg, "52"},    {col::lat_min, "14"},      {col::long_deg, "21"},
            {col::long_ew, "E"},     {col::long_min, "1"}};
        testing::store_one_event(dir.file("People.zod.mdb"), curie);
    }
};

TEST_F(Render, WritesPngPdfAndSvgForStoredAndInlineEvents) {
    store_event();
    const Options stored = {{"db", file("People.zod.mdb")}, {"table", "Events"}, {"row", "1"}};
    const Options inline_event = {{"date", "1946-06-14"},
                                  {"time", "10:54:00"},
                                  {"zone", "EST"},
                                  {"lat", "40N42"},
                                  {"lon", "74W00"}};
    int n = 0;
    for (const Options& event : {stored, inline_event}) {
        for (const char* ext : {".png", ".pdf", ".svg"}) {
            Options o = event;
            const std::string out = file("page" + std::to_string(n++) + ext);
            o["page"] = "geo1";
            o["out"] = out;
            o["width"] = "640";
            if (std::string(ext) == ".pdf") o["printing"] = "";
            ASSERT_EQ(command_render(o), 0) << out;
            ASSERT_TRUE(std::filesystem::file_size(out) > 1000) << out;
            if (std::string(ext) == ".png") {
                QImage image;
                ASSERT_TRUE(image.load(QString::fromStdString(out)));
                EXPECT_EQ(image.width(), 640);
                EXPECT_EQ(image.height(), 400);
            } else if (std::string(ext) == ".svg") {
                EXPECT_TRUE(QSvgRenderer(QString::fromStdString(out)).isValid());
            }
        }
    }
}

// The layout: every drawing call as an object with its primitive and its geometry in twips.
TEST_F(Render, TheLayoutListsEveryCall) {
    const Options o = {{"date", "2000-01-01"},    {"time", "12:00:00"},
                       {"zone", "GMT"},           {"lat", "51N30"},
                       {"lon", "0W07"},           {"page", "geo1"},
                       {"out", file("page.png")}, {"layout", file("page.json")}};
    ASSERT_EQ(command_render(o), 0);
    QFile json(QString::fromStdString(file("page.json")));
    ASSERT_TRUE(json.open(QIODevice::ReadOnly));
    const QJsonArray calls = QJsonDocument::fromJson(json.readAll()).array();
    ASSERT_GT(calls.size(), 200);
    int texts = 0, lines = 0;
    for (const auto& v : calls) {
        const QJsonObject c = v.toObject();
        ASSERT_TRUE(c.contains("op"));
        const QString kind = c["kind"].toString();
        if (kind == "text") {
            ++texts;
            for (const char* key : {"font", "codes", "x", "y", "w", "h", "colour"})
                EXPECT_TRUE(c.contains(key)) << key;
            EXPECT_TRUE(c["colour"].toString().startsWith('#'));
        } else if (kind == "line") {
            ++lines;
            for (const char* key : {"x1", "y1", "x2", "y2"}) EXPECT_TRUE(c.contains(key)) << key;
        }
    }
    EXPECT_GT(texts, 50);
    EXPECT_GT(lines, 100);
}

TEST_F(Render, RefusesWhatItCannotDraw) {
    const Options base = {{"date", "2000-01-01"}, {"time", "12:00:00"}, {"zone", "GMT"},
                          {"lat", "51N30"},       {"lon", "0W07"},      {"page", "geo1"},
                          {"out", file("x.png")}};
    const std::pair<std::string, std::string> bad[] = {
        {"page", "nonsense"}, {"out", file("x.gif")},    {"width", "wide"},
        {"houses", "Vedic"},  {"colour-set", "Rainbow"}, {"world-view", "Martian"}};
    for (const auto& [key, value] : bad) {
        Options o = base;
        o[key] = value;
        EXPECT_NE(command_render(o), 0) << key << "=" << value;
    }
}

// The epoch of a stored and an inline birth: a row for each line of the epoch window, one of
// them recommended.
TEST_F(Render, EpochPrintsTheSixLinesOfAStoredAndAnInlineBirth) {
    store_event();
    const Options stored = {{"db", file("People.zod.mdb")}, {"table", "Events"}, {"row", "1"}};
    const Options inline_birth = {
        {"date", "1879-03-14"}, {"time", "11:30:00"}, {"zone", "LMT"}, {"lat", "48N24"},
        {"lon", "10E00"},       {"month", "synodic"}, {"months", "9"}};
    for (const Options& o : {stored, inline_birth}) {
        ::testing::internal::CaptureStdout();
        ASSERT_EQ(command_epoch(o), 0);
        std::istringstream out(::testing::internal::GetCapturedStdout());
        std::string line;
        std::getline(out, line);
        EXPECT_EQ(line, "row,jd_ut,date,time,moon_lon_deg,asc_lon_deg,recommended,text");
        std::vector<std::string> rows;
        int recommended = 0;
        while (std::getline(out, line)) {
            std::istringstream f(line);
            std::string name, jd, date, time, moon, asc, rec;
            for (std::string* cell : {&name, &jd, &date, &time, &moon, &asc, &rec})
                std::getline(f, *cell, ',');
            rows.push_back(name);
            recommended += std::stoi(rec);
            EXPECT_NE(line.find(",\"  "), std::string::npos) << line; // the window's line
        }
        EXPECT_EQ(rows,
                  (std::vector<std::string>{"birth", "return", "asc1", "asc2", "desc1", "desc2"}));
        EXPECT_EQ(recommended, 1);
    }
    for (const auto& [option, value] :
         {std::pair{"months", "13"}, std::pair{"months", "9.5"}, std::pair{"month", "lunar"},
          std::pair{"epoch-lat", "40N43"}}) {
        Options bad = inline_birth;
        bad[option] = value;
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(command_epoch(bad), 2) << option;
        EXPECT_NE(::testing::internal::GetCapturedStderr().find(std::string("--") + option),
                  std::string::npos)
            << option;
    }
}

} // namespace
} // namespace celestark::cli
