// The readable first rows of option.mdb and the file built from them.
#include "store/option_defaults.h"
#include "store/option_schema.h"
#include "store/table_store.h"
#include "store_test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>

namespace celestark::store {
namespace {

using testing::ScratchDir;

TEST(OptionSource, ColoursAreWrittenRedGreenBlueAndStoredBlueGreenRed) {
    struct Case {
        const char* text;
        bool ok;
        long bgr;
    };
    const Case cases[] = {
        {"#000040", true, 0x400000}, // the dark blue ground of the screen
        {"#FF0000", true, 0x0000FF},
        {"#12aBcD", true, 0xCDAB12},
        {" #FFFFFF ", true, 0xFFFFFF},
        {"#FFFFF", false, 0},
        {"FF00000", false, 0},
        {"#GG0000", false, 0},
        {"", false, 0},
    };
    for (const Case& c : cases) {
        long bgr = -1;
        EXPECT_EQ(parse_colour(c.text, bgr), c.ok) << c.text;
        if (c.ok) {
            EXPECT_EQ(bgr, c.bgr) << c.text;
        }
    }
}

TEST(OptionSource, BlocksRowsAndQuotedValues) {
    OptionSource src;
    std::string error;
    ASSERT_TRUE(parse_option_source("# comment\n"
                                    "[colours]\n"
                                    "night = #000040\n"
                                    "[row option_name]\n"
                                    "add1 = \" \"\n"
                                    "user_name =   A. Reader  \n"
                                    "[rows aspects]\n"
                                    "Name | angle_degs | digraph\n"
                                    "Two  | 60         | Sx\n"
                                    "Two  | 120        | Tr\n",
                                    src, error))
        << error;
    ASSERT_EQ(src.rows.size(), 3u);
    EXPECT_EQ(src.rows[0].table, "option_name");
    EXPECT_EQ(src.rows[0].cells[0].second, " ");
    EXPECT_EQ(src.rows[0].cells[1].second, "A. Reader");
    EXPECT_EQ(src.rows[2].cells[1], (std::pair<std::string, std::string>{"angle_degs", "120"}));
    EXPECT_EQ(src.rows[2].line, 10);
    EXPECT_EQ(src.colour_names.at("night"), "#000040");
}

TEST(OptionSource, FaultsNameTheirLine) {
    struct Case {
        const char* text;
        const char* error;
    };
    const Case cases[] = {
        {"x = 1\n", "line 1: a value before any block"},
        {"[row option_name\n", "line 1: a block heading ends with ]"},
        {"\n[row nowhere]\n", "line 2: no table named nowhere"},
        {"[table zodiac]\n", "line 1: expected [row TABLE], [rows TABLE] or [colours]"},
        {"[row zodiac]\nName Sidereal\n", "line 2: expected field = value"},
        {"[rows aspects]\nName | digraph\nA | B | C\n", "line 3: 3 values for 2 fields"},
        {"[colours]\nred = FF0000\n", "line 2: a colour is written #RRGGBB"},
    };
    for (const Case& c : cases) {
        OptionSource src;
        std::string error;
        EXPECT_FALSE(parse_option_source(c.text, src, error)) << c.text;
        EXPECT_EQ(error, c.error) << c.text;
    }
}

TEST(OptionBuild, BadRowsAreRefusedAndLeaveNoFile) {
    const std::string base = "[row option_name]\n[row options]\n";
    struct Case {
        std::string text;
        const char* error_part;
    };
    const Case cases[] = {
        {"[row options]\n", "option_name takes exactly one row"},
        {base + "[row options]\n", "options takes exactly one row"},
        {base + "[row zodiac]\nName = Z\nnowhere = 1\n", "no field nowhere in zodiac"},
        {base + "[row zodiac]\nName = Z\ndeg = many\n", "\"many\" is not a value for deg"},
        {base + "[row zodiac]\ngj = GJ\n", "gj: the text is longer than the field"},
        {base + "[row colour]\nName = Thin\n", "a colour set gives all 140 fields"},
        {base + "[rows aspects]\nName | angle_degs | angle_mins\nA | 1 | 0\nA | 1 | 0\n",
         "a record with this key"},
    };
    for (const Case& c : cases) {
        ScratchDir dir;
        std::string error;
        EXPECT_FALSE(build_option_database(dir.file("option.mdb"), c.text, error)) << c.text;
        EXPECT_NE(error.find(c.error_part), std::string::npos) << error;
        EXPECT_FALSE(std::filesystem::exists(dir.file("option.mdb")));
        EXPECT_FALSE(std::filesystem::exists(dir.file("option.mdb.new")));
    }
}

TEST(OptionBuild, AFailedBuildKeepsTheFileThatWasThere) {
    ScratchDir dir;
    std::string error;
    ASSERT_TRUE(build_option_database(dir.file("option.mdb"), standard_option_source(), error));
    EXPECT_FALSE(build_option_database(dir.file("option.mdb"), "[row options]\n", error));
    TableStore db;
    ASSERT_EQ(db.open(dir.file("option.mdb")), Outcome::ok);
    EXPECT_TRUE(db.table_exists("colour"));
}

class StandardOptions : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(build_option_database(dir_.file("option.mdb"), standard_option_source(), error))
            << error;
        ASSERT_EQ(db_.open(dir_.file("option.mdb")), Outcome::ok);
        ASSERT_EQ(db_.check_integrity(), Outcome::ok);
    }
    std::vector<std::map<std::string, Value>> rows(const char* table) {
        std::vector<std::map<std::string, Value>> out;
        Recordset rs;
        EXPECT_EQ(db_.open_recordset(table, rs), Outcome::ok);
        const OptionTableDef* def = option_table(table);
        if (!def->indexes.empty()) rs.set_index(def->indexes[0].name);
        for (rs.move_first(); rs.has_current(); rs.move_next()) {
            std::map<std::string, Value> row;
            for (const FieldDef& f : def->fields) row[f.name] = rs.get(f.name);
            out.push_back(std::move(row));
        }
        return out;
    }
    ScratchDir dir_;
    TableStore db_;
};

TEST_F(StandardOptions, FiveTablesWithTheirFieldsAndIndexes) {
    std::vector<std::string> names;
    ASSERT_EQ(db_.table_names(names), Outcome::ok);
    EXPECT_EQ(names,
              (std::vector<std::string>{"aspects", "colour", "option_name", "options", "zodiac"}));
    for (const OptionTableDef& t : option_tables()) {
        std::vector<FieldDef> fields;
        std::vector<IndexDef> indexes;
        ASSERT_EQ(db_.table_fields(t.name, fields), Outcome::ok);
        ASSERT_EQ(db_.table_indexes(t.name, indexes), Outcome::ok);
        EXPECT_EQ(fields, t.fields) << t.name;
        EXPECT_EQ(indexes, t.indexes) << t.name;
    }
}

// Every field of the first chart options, the aspect sets and the zodiacs holds a value; the
// global options are left to their defaults, the event database to the first start.
TEST_F(StandardOptions, FirstRowsAreComplete) {
    for (const char* table : {"options", "aspects", "zodiac"})
        for (const auto& row : rows(table))
            for (const auto& [field, value] : row) EXPECT_FALSE(value.is_null()) << table << field;
    const auto general = rows("option_name");
    ASSERT_EQ(general.size(), 1u);
    EXPECT_TRUE(general[0].at("db_name").is_null());
    EXPECT_TRUE(general[0].at("star_zodiac_width").is_null());
}

// The Sun and Moon take orbs at least as wide as the planets', the planets as the elements'.
TEST_F(StandardOptions, AspectOrbsInOrder) {
    for (const auto& r : rows("aspects")) {
        EXPECT_GE(r.at("sun_degs").as_int(), r.at("planets_degs").as_int());
        EXPECT_GE(r.at("planets_degs").as_int(), r.at("elements_degs").as_int());
        EXPECT_LE(r.at("sun_degs").as_int(), 10);
    }
}

TEST_F(StandardOptions, SiderealZodiacsGiveTheirVernalPoints) {
    std::map<std::string, std::map<std::string, Value>> zodiacs;
    for (auto& r : rows("zodiac")) zodiacs[r.at("Name").as_text()] = r;
    ASSERT_EQ(zodiacs.size(), 2u);
    const auto& svp = zodiacs.at("Sidereal SVP");
    EXPECT_EQ(svp.at("defined").as_text(), "Star");
    EXPECT_EQ(svp.at("constellation").as_text(), "Equal");
    EXPECT_EQ(svp.at("star").as_text(), "Aldebaran");
    // Aldebaran's tropical longitude at 1950.0 is 69.09005 degrees in the star table of the
    // zodiacs; its place in this zodiac leaves 24 deg 02' 31" of precession at 1950.0.
    const double in_zodiac = svp.at("deg").as_double() + svp.at("Min").as_double() / 60.0 +
                             svp.at("sec").as_double() / 3600.0;
    const double precession_seconds = (69.09005 - in_zodiac) * 3600.0;
    EXPECT_NEAR(precession_seconds, 24 * 3600 + 2 * 60 + 31, 0.5);
    const auto& spica = zodiacs.at("Sidereal Spica");
    EXPECT_EQ(spica.at("star").as_text(), "Spica");
    EXPECT_EQ(spica.at("deg").as_int(), 180);
}

// The relative luminance and contrast ratio of colours stored 0x00BBGGRR.
double luminance(long bgr) {
    auto channel = [](long v) {
        const double c = static_cast<double>(v & 0xFF) / 255.0;
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(bgr) + 0.7152 * channel(bgr >> 8) + 0.0722 * channel(bgr >> 16);
}
double contrast(long a, long b) {
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

TEST_F(StandardOptions, ColourSetsAreCompleteAndLegible) {
    const auto sets = rows("colour");
    ASSERT_EQ(sets.size(), 2u);
    for (const auto& set : sets) {
        const std::string name = set.at("Name").as_text();
        for (const auto& [field, value] : set) EXPECT_FALSE(value.is_null()) << name << field;
        const long ground = set.at("chart_background").as_int();
        const long inner = set.at("inside_background").as_int();
        auto check = [&](const std::string& field, long under, double least) {
            EXPECT_GE(contrast(set.at(field).as_int(), under), least) << name << ": " << field;
        };
        const char* signs[] = {"aries", "taurus",  "gemini",     "cancer",    "leo",      "virgo",
                               "libra", "scorpio", "sagitarius", "capricorn", "aquarius", "pisces"};
        const char* glyph_fields[] = {"aries_g",      "Taurus_g",    "Gemini_g",   "Cancer_g",
                                      "Leo_g",        "Virgo_g",     "Libra_g",    "Scorpio_g",
                                      "Sagitarius_g", "Capricorn_g", "Aquarius_g", "Pisces_g"};
        for (std::size_t i = 0; i < 12; ++i) {
            const std::string sign = signs[i];
            check(glyph_fields[i], set.at(sign + "_b").as_int(), 4.5);
            check(sign + "_o", ground, 4.5);
            check(sign + "_i", inner, 4.5);
        }
        for (const auto& [field, value] : set) {
            if (!is_colour_field(field) || field == "Name" || field == "display_or_printer" ||
                field == "chart_background" || field == "inside_background" ||
                field.ends_with("_b") || field.ends_with("_g") || field.ends_with("_i"))
                continue;
            const bool outside = field.ends_with("_o") || field.ends_with("outside");
            const bool line = field == "Lines_inside" || field == "lines_outside" ||
                              field == "ecliptic" || field == "equator" || field == "horizon" ||
                              field == "meridian";
            check(field, outside ? ground : inner, line ? 3.0 : 4.5);
        }
    }
}

} // namespace
} // namespace celestark::store
