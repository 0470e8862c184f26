// stars.mdb: the build from the published catalogue, the star caches and the group rules of
// load_star_tables, the start, and what the star and fixed point windows do.
#include "engine/star_analysis.h"
#include "program_folder.h"
#include "screens/star_windows.h"
#include "session/constants.h"
#include "star_test_support.h"
#include "store/option_store.h"
#include "store/star_catalogue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <set>

namespace celestark {
namespace {

namespace fs = std::filesystem;
using store::Outcome;
using store::Value;
using testing::star_row;

// ---- The build from a catalogue ----------------------------------------------------------------

const char* names_csv = "abbr,name,genitive,name_diacritics,genitive_diacritics,"
                        "workbench_list_name\n"
                        "Cae,Caelum,Caeli,Caelum,Caeli,\n"
                        "Sco,Scorpius,Scorpii,Scorpius,Scorpii,Scorpio\n"
                        "Tau,Taurus,Tauri,Taurus,Tauri,Taurus\n";
const char* stars_header =
    "hip,hd,hr,con,bayer,bayer_index,flamsteed,designation,ads_comp,proper_name,name_meaning,"
    "ra_h,ra_m,ra_s,dec_sign,dec_d,dec_m,dec_s,pmra_dadt_arcsec_yr,pmdec_arcsec_yr,vmag,dist_ly,"
    "absmag,lum_solar,spectral_type,luminosity_class\n";
const char* stars_rows =
    "21421,29139,1457,Tau,alpha,,87,α Tau,,Aldebaran,\"Arabic, the follower\",4,35,55.239,+,16,"
    "30,33.49,0.06578,-0.18936,0.87,65.1,-0.64,153.2,K5+,III\n"
    "20889,28305,1409,Tau,epsilon,,74,ε Tau,,Ain,,4,28,36.999,+,19,10,49.54,0.11466,-0.03776,3.53,"
    "147.0,0.15,74.3,G9.5,III\n"
    "21060,28843,1443,Tau,,,,,,,,4,30,50.1,+,0,2,3.4,0,0,5.81,,,,B9,III\n"
    "21770,29875,1502,Cae,,,,,,,,4,40,33.713,-,41,51,49.51,-0.1,0.1,4.44,67.7,2.89,5.95,F2,IV-V\n"
    "80763,148478,6134,Sco,alpha,1,21,α¹ Sco,A,Antares,,16,29,24.46,-,26,25,55.21,-0.01,-0.02,"
    "1.06,604.0,-5.28,1.1e4,M1.5,Iab-Ib\n"
    "80763,148479,6135,Sco,alpha,1,,α¹ Sco,B,,,16,29,24.4,-,26,25,55,-0.01,-0.02,5.5,,,,B2.5,V\n";

class CatalogueBuild : public ::testing::Test {
  protected:
    void write(const std::string& name, const std::string& text) {
        std::ofstream(dir_.file(name), std::ios::binary) << text;
    }
    std::vector<std::map<std::string, Value>> rows(const char* table) {
        store::TableStore db;
        EXPECT_EQ(db.open(dir_.file("stars.mdb"), store::TableStore::Access::read_only),
                  Outcome::ok);
        store::Recordset rs;
        db.open_recordset(table, rs);
        if (std::string(table) == stars_table) rs.set_index(star_index);
        std::vector<std::map<std::string, Value>> out;
        for (rs.move_first(); rs.has_current(); rs.move_next()) {
            auto& row = out.emplace_back();
            for (const auto& f : rs.fields()) row[f.name] = rs.get(f.name);
        }
        return out;
    }
    store::testing::ScratchDir dir_;
};

TEST_F(CatalogueBuild, RowsFromTheCatalogue) {
    write("constellation_names.csv", names_csv);
    write("stars.csv", std::string(stars_header) + stars_rows);
    std::string error;
    ASSERT_TRUE(build_star_database(dir_.file(""), dir_.file("stars.mdb"), error)) << error;
    EXPECT_FALSE(fs::exists(dir_.file("stars.mdb.new")));
    const auto r = rows(stars_table);
    ASSERT_EQ(r.size(), 6u);
    // Index order: constellation, then number by brightness; the list's spellings, and Caelum
    // as it is.
    const struct {
        const char* constellation;
        int number;
        const char* star_number;
        const char* greek;
        const char* same_letter;
        const char* name;
    } expected[] = {
        {"Caelum", 1, "HR 1502", "", "", ""}, {"Scorpio", 1, "0", "a", "1", "Antares"},
        {"Scorpio", 2, "0", "a", "1", ""},    {"Taurus", 1, "0", "a", "", "Aldebaran"},
        {"Taurus", 2, "0", "e", "", "Ain"},   {"Taurus", 3, "HR 1443", "", "", ""},
    };
    for (std::size_t i = 0; i < r.size(); ++i) {
        const auto& e = expected[i];
        EXPECT_EQ(r[i].at("constellation").as_text(), e.constellation) << i;
        EXPECT_EQ(r[i].at("number").as_int(), e.number) << i;
        EXPECT_EQ(r[i].at("star_number").as_text(), e.star_number) << i;
        EXPECT_EQ(r[i].at("greek_letter").as_text(), e.greek) << i;
        EXPECT_EQ(r[i].at("same_letter").as_text(), e.same_letter) << i;
        EXPECT_EQ(r[i].at("star_name").as_text(), e.name) << i;
        EXPECT_EQ(r[i].at("line_to").as_int(), 0) << i;
    }
    const auto& aldebaran = r[3];
    EXPECT_EQ(aldebaran.at("star_name_meaning").as_text(), "Arabic, the follower");
    EXPECT_EQ(aldebaran.at("Description").as_text(), "alpha Tauri, 87 Tauri, HR 1457");
    EXPECT_EQ(aldebaran.at("glyph").as_text(), "\xB6");
    EXPECT_EQ(aldebaran.at("sel_1").as_int(), -1);
    EXPECT_NEAR(aldebaran.at("pm_ra").as_double(), 0.06578, 1e-12);
    EXPECT_NEAR(aldebaran.at("longitude").as_double(), 69.7897, 1e-3);
    EXPECT_NEAR(aldebaran.at("Latitude").as_double(), -5.4676, 1e-3);
    EXPECT_EQ(aldebaran.at("hic").as_int(), 21421);
    EXPECT_EQ(aldebaran.at("in_zodiac").as_int(), -1);
    // Too faint for the star zodiac (Taurus 3), outside the zodiac band (Caelum), outside the
    // zodiac constellations (Antares is Scorpio's and in the band).
    EXPECT_EQ(r[5].at("in_zodiac").as_int(), 0);
    EXPECT_EQ(r[0].at("in_zodiac").as_int(), 0);
    EXPECT_EQ(r[1].at("in_zodiac").as_int(), -1);
    EXPECT_EQ(r[5].at("dec_sign").as_text(), "+");
    EXPECT_EQ(r[0].at("dec_sign").as_text(), "-");
    EXPECT_TRUE(r[5].at("absolute_magnitude").is_null());
    EXPECT_TRUE(r[0].at("glyph").as_text().empty());
    const auto f = rows(fixed_table);
    ASSERT_EQ(f.size(), 3u);
    for (const auto& row : f) EXPECT_EQ(row.at("active").as_int(), 0);
}

TEST_F(CatalogueBuild, FaultsOfTheSourceLeaveNoFile) {
    const struct {
        std::string stars, names, fault;
    } cases[] = {
        {"", names_csv, "cannot read"},
        {"hip,hd\n1,2\n", names_csv, "has no column"},
        {std::string(stars_header) + "1,2,3\n", names_csv, "cells where the header has"},
        {std::string(stars_header) + stars_rows, "abbr,name,genitive,workbench_list_name\n",
         "no constellation Tau"},
        {std::string(stars_header) + "1,2,3,Tau,,,,,,,,4,30,50.1,+,1,2,3.4,0,0,,,,,B9,III\n",
         names_csv, "has no magnitude"},
    };
    for (const auto& c : cases) {
        fs::remove(dir_.file("stars.csv"));
        if (!c.stars.empty()) write("stars.csv", c.stars);
        write("constellation_names.csv", c.names);
        std::string error;
        EXPECT_FALSE(build_star_database(dir_.file(""), dir_.file("stars.mdb"), error));
        EXPECT_NE(error.find(c.fault), std::string::npos) << error;
        EXPECT_FALSE(fs::exists(dir_.file("stars.mdb")));
        EXPECT_FALSE(fs::exists(dir_.file("stars.mdb.new")));
    }
}

// ---- load_star_tables ---------------------------------------------------------------------------

class StarGroup : public ::testing::Test {
  protected:
    // Opens a catalogue of the given rows and reads it.
    void load(const std::vector<testing::Cells>& stars) {
        testing::make_star_file(dir_.file(""), stars);
        testing::open_stars(s_, dir_.file(""), sink_);
    }
    std::vector<std::string> titles() const {
        std::vector<std::string> t;
        for (const auto& m : sink_.messages) t.push_back(m.title);
        return t;
    }
    store::testing::ScratchDir dir_;
    RecordingSink sink_;
    Session s_;
};

// Eight good stars for the chart group, glyphs 182 to 189.
std::vector<testing::Cells> eight_stars() {
    std::vector<testing::Cells> rows;
    for (int i = 0; i < 8; ++i)
        rows.push_back(star_row("Taurus", i + 1, "Star " + std::to_string(i),
                                std::string(1, static_cast<char>(182 + i)), true));
    return rows;
}

TEST_F(StarGroup, FaultsEmptyTheGroupWithTheirMessages) {
    const std::string many = "USER ERROR - TOO MANY STARS IN GROUP STARS IN CHARTS";
    const std::string no_name =
        "USER ERROR - YOU HAVE A STAR IN GROUP STARS IN CHARTS WITHOUT A NAME";
    const std::string no_glyph =
        "USER ERROR - YOU HAVE A STAR IN GROUP STARS IN CHARTS WITHOUT A GLYPH";
    const std::string same =
        "USER ERROR - YOU HAVE A TWO STARS IN GROUP STARS IN CHARTS WITH THE SAME GLYPH";
    const testing::Cells ninth = star_row("Leo", 1, "Regulus", "\xBF", true);
    const testing::Cells excluded = star_row("Leo", 1, "Regulus", "\xBF", true, true);
    const testing::Cells outside = star_row("Leo", 1, "Regulus", "\xBF");
    const testing::Cells blank = star_row("Leo", 1, "Regulus", "", true);
    const struct {
        const char* what;
        testing::Cells extra; // a ninth row
        int change;           // a row of the eight to spoil: 0 none
        const char* field;
        Value value;
        std::vector<std::string> messages;
        int count;
    } cases[] = {
        {"eight", {}, 0, "", Value(), {}, 8},
        {"a ninth star", ninth, 0, "", Value(), {many}, 0},
        {"a ninth but excluded", excluded, 0, "", Value(), {}, 8},
        {"a ninth not in the group", outside, 0, "", Value(), {}, 8},
        {"no name", {}, 3, "star_name", Value(" "), {no_name}, 0},
        {"no glyph", {}, 5, "glyph", Value(""), {no_glyph}, 0},
        {"one glyph twice", {}, 2, "glyph", Value("\xB6"), {same}, 0},
        {"a ninth without a glyph", blank, 0, "", Value(), {many, no_glyph}, 0},
    };
    for (const auto& c : cases) {
        std::vector<testing::Cells> rows = eight_stars();
        if (!c.extra.empty()) rows.push_back(c.extra);
        if (c.change)
            for (auto& [field, value] : rows[static_cast<std::size_t>(c.change)])
                if (field == c.field) value = c.value;
        store::testing::ScratchDir dir;
        testing::make_star_file(dir.file(""), rows);
        RecordingSink sink;
        Session s;
        testing::open_stars(s, dir.file(""), sink);
        std::vector<std::string> seen;
        for (const auto& m : sink.messages) seen.push_back(m.title);
        EXPECT_EQ(seen, c.messages) << c.what;
        EXPECT_EQ(s.stars.chart_star_count, c.count) << c.what;
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(s.stars.star_glyphs[static_cast<std::size_t>(i)], c.count ? 182 + i : 0)
                << c.what;
    }
    // The text of the first fault.
    std::vector<testing::Cells> nine = eight_stars();
    nine.push_back(ninth);
    load(nine);
    ASSERT_EQ(sink_.messages.size(), 1u);
    EXPECT_EQ(sink_.messages[0].text,
              "You have selected more than 8 stars in the group 'stars in charts'. You must reduce "
              "the number to 8 or less and until then this option will not function");
    EXPECT_EQ(sink_.messages[0].icon, MessageIcon::exclamation);
}

TEST_F(StarGroup, TheStarCacheByConstellationRowAndNumber) {
    testing::Cells south = star_row("Scorpio", 2, "Antares", "");
    for (auto& [field, value] : south) {
        if (field == "dec_sign") value = Value("-");
        if (field == "absolute_magnitude") value = Value();
    }
    load({star_row("Aries", 1, "Hamal", ""), south, star_row("Ophiuchus", 3, "", ""),
          star_row("Caelum", 4, "", ""), star_row("Orion", 4, "Bellatrix", "", false, true)});
    EXPECT_EQ(s_.stars.star_count, (std::array<int, 14>{1, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 3, 4}));
    const StarCacheCell& aries = s_.stars.cell(1, 1);
    EXPECT_TRUE(aries.filled);
    EXPECT_NEAR(aries.ra, (4 + 35 / 60.0 + 55.2 / 3600) * 15 * deg_to_rad, 1e-15);
    EXPECT_NEAR(aries.dec, (16 + 30 / 60.0 + 35.1 / 3600) * deg_to_rad, 1e-15);
    EXPECT_FLOAT_EQ(aries.pm_ra, static_cast<float>(0.0657 / 3600 * deg_to_rad));
    EXPECT_FLOAT_EQ(aries.longitude, 69.7897f);
    EXPECT_TRUE(aries.in_zodiac);
    const StarCacheCell& scorpio = s_.stars.cell(8, 2);
    EXPECT_NEAR(scorpio.dec, -aries.dec, 1e-15);
    EXPECT_EQ(scorpio.absolute_magnitude, unknown_absolute_magnitude);
    EXPECT_FALSE(s_.stars.cell(8, 1).filled);
    // Caelum and Orion share the fourteenth row by number; the excluded star is not in_zodiac.
    EXPECT_TRUE(s_.stars.cell(14, 4).filled);
    EXPECT_FALSE(s_.stars.cell(14, 4).in_zodiac);
    EXPECT_TRUE(titles().empty());
    const std::pair<const char*, int> rows[] = {{"Scorpio", 8},    {"Capricorn", 10},
                                                {"Ophiuchus", 13}, {"Scorpius", 14},
                                                {"Caelum", 14},    {"", 14}};
    for (const auto& [name, row] : rows) EXPECT_EQ(star_cache_row(name), row) << name;
}

// ---- The start and the built catalogue ---------------------------------------------------------

#ifdef CELESTARK_TABLES_DIR

// A session started in a program folder with the built catalogue.
class StarSession : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(folder.start(s).started); }
    testing::ProgramFolder folder;
    Session s;
};

TEST(StarStart, WithoutStarsMdbTheSessionEnds) {
    testing::ProgramFolder folder(true, true, false);
    Session s;
    folder.start(s);
    ASSERT_EQ(folder.fatal_titles.size(), 1u);
    EXPECT_EQ(folder.fatal_titles[0], "Fatal Error in OPEN STAR TABLES");
    EXPECT_NE(folder.fatal_texts[0].find("stars.mdb"), std::string::npos);
    EXPECT_NE(folder.fatal_texts[0].find(fatal_tail), std::string::npos);
}

TEST_F(StarSession, TheCachesTheChartGroupAndTheSigils) {
    EXPECT_TRUE(folder.fatal_titles.empty());
    EXPECT_TRUE(folder.sink.messages.empty());
    ASSERT_EQ(s.stars.chart_star_count, 8);
    // Each of the eight with its own mark; the session's star glyphs in cache order.
    for (int i = 0; i < 8; ++i) {
        const ChartStar& star = s.stars.chart_star_cache[static_cast<std::size_t>(i)];
        const auto mark = std::find_if(star_marks.begin(), star_marks.end(),
                                       [&](const StarMark& m) { return star.star_name == m.star; });
        ASSERT_NE(mark, star_marks.end()) << star.star_name;
        EXPECT_EQ(star.glyph, mark->code) << star.star_name;
        EXPECT_EQ(s.stars.star_glyphs[static_cast<std::size_t>(i)], star.glyph);
    }
    EXPECT_EQ(s.stars.fixed_sigils, (std::vector<unsigned char>{174, 175, 178}));
    int filled = 0, zodiac = 0;
    for (const StarCacheCell& c : s.stars.star_cache) {
        filled += c.filled;
        zodiac += c.in_zodiac;
    }
    EXPECT_GT(filled, 2000); // the other constellations share row 14
    EXPECT_EQ(zodiac, 134);
}

TEST(BuiltCatalogue, EveryStarInItsPlace) {
    testing::ProgramFolder folder(false, false, true);
    store::TableStore db;
    ASSERT_EQ(db.open(folder.file("stars.mdb"), store::TableStore::Access::read_only), Outcome::ok);
    std::vector<store::FieldDef> fields;
    ASSERT_EQ(db.table_fields(stars_table, fields), Outcome::ok);
    EXPECT_EQ(fields, star_fields());
    std::vector<store::IndexDef> indexes;
    ASSERT_EQ(db.table_indexes(stars_table, indexes), Outcome::ok);
    ASSERT_EQ(indexes.size(), 1u);
    EXPECT_EQ(indexes[0].name, star_index);
    EXPECT_EQ(indexes[0].fields, (std::vector<std::string>{"constellation", "number"}));

    store::Recordset rs;
    ASSERT_EQ(db.open_recordset(stars_table, rs), Outcome::ok);
    ASSERT_EQ(rs.set_index(star_index), Outcome::ok);
    EXPECT_EQ(rs.record_count(), 9033);
    const std::set<std::string> listed(star_database_constellations.begin(),
                                       star_database_constellations.end());
    std::string constellation;
    int expected_number = 0;
    double last_magnitude = -99;
    int chart_group = 0, caelum = 0;
    std::set<std::string> glyphs;
    for (rs.move_first(); rs.has_current(); rs.move_next()) {
        const std::string c = rs.get("constellation").as_text();
        if (c != constellation) {
            constellation = c;
            expected_number = 0;
            last_magnitude = -99;
            ASSERT_TRUE(listed.count(c) || c == "Caelum") << c;
        }
        caelum += c == "Caelum";
        const double magnitude = rs.get("magnitude").as_double();
        EXPECT_EQ(rs.get("number").as_int(), ++expected_number) << c;
        EXPECT_GE(magnitude, last_magnitude) << c << " " << expected_number;
        last_magnitude = magnitude;
        const bool greek = !rs.get("greek_text").as_text().empty();
        EXPECT_EQ(rs.get("star_number").as_text() == "0", greek) << c << " " << expected_number;
        const bool in_band = star_cache_row(c) <= 12 &&
                             std::fabs(rs.get("Latitude").as_double()) <= 9 && magnitude <= 4.5;
        EXPECT_EQ(rs.get("in_zodiac").as_int() != 0, in_band) << c << " " << expected_number;
        EXPECT_EQ(rs.get("line_to").as_int(), 0);
        if (rs.get("sel_1").as_int() != 0) {
            ++chart_group;
            glyphs.insert(rs.get("glyph").as_text());
        }
        const std::string name = rs.get("star_name").as_text();
        if (name == "Polaris") {
            EXPECT_NEAR(rs.get("pm_ra").as_double(), 3.443, 0.001);
        }
        if (name == "Sirius") {
            EXPECT_EQ(rs.get("dec_sign").as_text(), "-");
            EXPECT_EQ(rs.get("number").as_int(), 1);
        }
    }
    EXPECT_EQ(chart_group, 8);
    EXPECT_EQ(glyphs.size(), 8u);
    EXPECT_GT(caelum, 0);
}

#endif

// ---- The windows --------------------------------------------------------------------------------

class StarWindows : public StarGroup {
  protected:
    void SetUp() override {
        std::vector<testing::Cells> rows = eight_stars();
        rows.push_back(star_row("Leo", 1, "Regulus", "", false));
        rows.push_back(star_row("Leo", 2, "Denebola", "", false, true));
        load(rows);
    }
};

TEST_F(StarWindows, ListsByConstellationAndGroup) {
    const struct {
        bool by_group;
        const char* name;
        std::vector<std::string> lines;
        std::vector<std::string> messages;
    } cases[] = {
        {false, "", {}, {"NO CONSTELLATION"}},
        {false, "Mega", {}, {"NO STARS"}},
        {false, "Leo", {"alpha Leo Regulus (1) ", "alpha Leo Denebola (2) "}, {}},
        {true, "", {}, {"NO CONSTELLATION"}},
        {true, "Excluded stars", {"alpha Leo Denebola (2) "}, {}},
        {true, "Basic star zodiac stars", {}, {}}, // counted below
        {true, "Star group 3", {}, {}},
    };
    for (const auto& c : cases) {
        sink_.messages.clear();
        const auto lines =
            c.by_group ? list_group(s_, c.name, sink_) : list_constellation(s_, c.name, sink_);
        std::vector<std::string> texts;
        for (const auto& l : lines) texts.push_back(l.text);
        if (std::string(c.name) == "Basic star zodiac stars")
            EXPECT_EQ(texts.size(), 9u); // every row but the excluded one
        else
            EXPECT_EQ(texts, c.lines) << c.name;
        EXPECT_EQ(titles(), c.messages) << c.name;
    }
    EXPECT_EQ(list_group(s_, "Star Group stars in chart", sink_).size(), 8u);
    // A number in place of the letter; the mark of stars that share a letter.
    EXPECT_EQ(star_list_line("87", "", " ", "Taurus", "Aldebaran", 1), "87 Taurus Aldebaran (1) ");
    EXPECT_EQ(star_list_line("0", "alpha", "2", "Taurus", "", 4), "alpha2 Taurus (4) ");
}

// The fields as the window writes them, and one it has not.
TEST_F(StarWindows, FieldsAreWrittenAsTheWindowHasThem) {
    const auto leo = list_constellation(s_, "Leo", sink_);
    ASSERT_EQ(leo.size(), 2u);
    EXPECT_EQ(set_star_field(s_, leo[0].bookmark, "star_selection_1", "True", sink_), Outcome::ok);
    EXPECT_EQ(set_star_field(s_, leo[0].bookmark, "star_distance", "79.3 ly", sink_), Outcome::ok);
    EXPECT_EQ(set_star_field(s_, leo[0].bookmark, "star_description", "Cor Leonis", sink_),
              Outcome::ok);
    const auto shown = show_star(s_, leo[0].bookmark);
    std::map<std::string, Value> fields(shown.begin(), shown.end());
    EXPECT_FLOAT_EQ(static_cast<float>(fields.at("distance").as_double()), 79.3f);
    EXPECT_EQ(fields.at("Description").as_text(), "Cor Leonis");
    EXPECT_EQ(fields.at("sel_1").as_int(), -1);
    EXPECT_EQ(set_star_field(s_, leo[0].bookmark, "star_magnitude", "1", sink_),
              Outcome::no_such_field);
    EXPECT_EQ(set_star_field(s_, "9999", "star_name", "x", sink_), Outcome::not_found);
    EXPECT_TRUE(show_star(s_, "9999").empty());
}

TEST(StarOptions, EachRuleWithItsMessage) {
    const struct {
        const char* field;
        const char* text;
        const char* title; // empty: taken
    } cases[] = {
        {"orb_1_degs", "14", ""},
        {"orb_1_degs", "15", "ERROR IN ORB DEGREE ENTRY"},
        {"orb_5_mag2_mins", "59", ""},
        {"orb_6_mag1_mins", "60", "ERROR IN ORB MINUTES ENTRY"},
        {"orb_1_magnitude", "8", "ERROR IN STAR MAGNITUDE ENTRY"},
        {"orb_2_magnitude", "-8", ""},
        {"orb_2_magnitude", "6.1", "ERROR IN STAR MAGNITUDE ENTRY"},
        {"orb_4_magnitude", "6", ""},
        {"additional_by_magnitude", "9", "ERROR IN STAR MAGNITUDE ENTRY"},
        {"star_zodiac_width", "8", "Error in Zodiac Width"},
        {"star_zodiac_width", "5", ""},
        {"charts_conj_orb_type", "Longitude and latitude", ""},
    };
    for (const auto& c : cases) {
        RecordingSink sink;
        EXPECT_EQ(check_star_option(c.field, c.text, sink), *c.title == '\0') << c.field;
        if (*c.title) {
            ASSERT_EQ(sink.messages.size(), 1u);
            EXPECT_EQ(sink.messages[0].title, c.title);
        }
    }
    RecordingSink sink;
    check_star_option("orb_4_magnitude", "7", sink);
    EXPECT_EQ(sink.messages[0].text, "Absolute star magnitude degrees must be between -8 and 6");
}

#ifdef CELESTARK_TABLES_DIR

TEST_F(StarSession, StarOptionsStoredOnlyWhenTakenAndGroupNames) {
    EXPECT_EQ(set_star_option(s, "star_zodiac_width", "9", folder.sink),
              Outcome::value_out_of_range);
    EXPECT_EQ(read_option(s, "option_name", "star_zodiac_width").as_int(), 8);
    EXPECT_EQ(set_star_option(s, "charts_conj_orb_set", "9", folder.sink), Outcome::ok);
    EXPECT_EQ(read_option(s, "option_name", "charts_conj_orb_set").as_text(), "9");

    ASSERT_EQ(set_star_group_name(s, 2, "Royal stars", folder.sink), Outcome::ok);
    EXPECT_EQ(set_star_group_name(s, 13, "x", folder.sink), Outcome::no_such_field);
    leave_name_star_groups(s, folder.sink);
    const auto groups = star_database_groups(s);
    ASSERT_EQ(groups.size(), 15u);
    EXPECT_EQ(groups[0], "Basic star zodiac stars");
    EXPECT_EQ(groups[3], "Royal stars");
    EXPECT_EQ(groups[14], "Excluded stars");
    const auto pages = star_analysis_groups(s);
    EXPECT_EQ(pages.front(), "None");
    EXPECT_EQ(pages[4], "Royal stars");
    EXPECT_EQ(pages.back(), "All Stars");
    EXPECT_EQ(star_group_field("Royal stars", star_group_names(s)), "sel_3");
}

TEST_F(StarSession, FixedPointFieldsWithTheirChecks) {
    const auto points = fixed_list(s);
    ASSERT_EQ(points.size(), 3u);
    EXPECT_EQ(points[0].text, "Galactic Centre (J2000)");
    const std::string& at = points[0].bookmark;
    const struct {
        const char* control;
        const char* text;
        std::vector<std::string> messages;
        const char* stored; // the degrees or minutes after the attempt
    } cases[] = {
        {"fixed_degs", "359", {}, "359"},
        {"fixed_degs", "360", {"Valid Range 0 to 359"}, "359"},
        {"fixed_degs", "-5", {"Valid Range 0 to 359"}, "359"},
        {"fixed_degs", "1a", {"Illegal character - Re-enter number"}, "359"},
        {"fixed_degs",
         "1-2x",
         {"Minus sign not allowed - Re-enter number", "Illegal character - Re-enter number"},
         "359"},
        {"fixed_degs", "", {"Entry cannot be left BLANK"}, "359"},
        {"fixed_mins", "59", {}, "59"},
        {"fixed_mins", "60", {"Range 0 to 59"}, "59"},
    };
    for (const auto& c : cases) {
        folder.sink.messages.clear();
        set_fixed_field(s, at, c.control, c.text, folder.sink);
        std::vector<std::string> texts;
        for (const auto& m : folder.sink.messages) texts.push_back(m.text);
        EXPECT_EQ(texts, c.messages) << c.control << " " << c.text;
        const FixedPointWindow w = show_fixed_point(s, at);
        EXPECT_EQ(std::string(c.control) == "fixed_degs" ? w.fixed_degs : w.fixed_mins, c.stored)
            << c.control << " " << c.text;
    }
    EXPECT_EQ(set_fixed_field(s, at, "fixed_sigil", "\xBE", folder.sink), Outcome::ok);
    EXPECT_EQ(s.stars.fixed_sigils[0], 0xBE);
    EXPECT_EQ(fixed_zodiac_list(s, folder.sink),
              (std::vector<std::string>{"Tropical", "Draconic", "Sidereal SVP", "Sidereal Spica"}));
    EXPECT_TRUE(folder.fatal_titles.empty());
}

#endif

} // namespace
} // namespace celestark
