// The star database, star options, star group and fixed point windows, driven by their controls,
// with what they write read back from the files.
#include "desktop_support.h"

#include "screens/star_windows.h"
#include "store/option_store.h"
#include "store/star_catalogue.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QListWidget>

namespace celestark::testing {
namespace {

using store::Value;

// A field of the star `number` of a constellation as stars.mdb holds it, read through a handle of
// its own.
Value stored_star_field(const std::filesystem::path& file, const std::string& constellation,
                        int number, const std::string& field) {
    store::TableStore db;
    store::Recordset rs;
    if (db.open(file, store::TableStore::Access::read_only) != store::Outcome::ok ||
        db.open_recordset(stars_table, rs) != store::Outcome::ok ||
        rs.set_index(star_index) != store::Outcome::ok ||
        rs.seek("=", {Value(constellation), Value(number)}) != store::Outcome::ok)
        return Value::failure(store::Outcome::not_found);
    return rs.get(field);
}

int row_with(QListWidget* list, const std::string& part) {
    for (int i = 0; i < list->count(); ++i)
        if (list->item(i)->text().toStdString().find(part) != std::string::npos) return i;
    return -1;
}

class StarScreens : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(ds.start.started); }
    std::string text(const char* field) { return ds.find<QLineEdit>(field)->text().toStdString(); }
    // Types characters that have no key of their own, as a keyboard layout or a paste gives them.
    void paste(const char* field, const QString& text) {
        auto* f = ds.find<QLineEdit>(field);
        f->selectAll();
        f->insert(text);
        ds.leave(f);
    }
    std::vector<std::string> titles() {
        std::vector<std::string> out;
        for (const auto& m : ds.folder.sink.messages) out.push_back(m.title);
        return out;
    }
    DesktopSession ds;
};

TEST_F(StarScreens, AConstellationIsListedAndAWhiteFieldWrittenAtOnce) {
    ds.press("star_database_options");
    EXPECT_TRUE(ds.find<QWidget>("STAR_DATABASE")->isVisible());
    EXPECT_EQ(ds.find<QGroupBox>("star_details")->title(),
              "Star Details - only the white fields can be edited");
    ds.press("list_constellation"); // nothing chosen yet
    EXPECT_EQ(titles(), std::vector<std::string>{"NO CONSTELLATION"});

    ds.choose("constellation_list", "Leo");
    auto* list = ds.find<QListWidget>("star_list");
    const int regulus = row_with(list, "Regulus");
    ASSERT_GE(regulus, 0);
    list->setCurrentRow(regulus);
    EXPECT_EQ(text("star_name"), "Regulus");
    const int number = std::stoi(text("number"));
    EXPECT_TRUE(ds.find<QLineEdit>("magnitude")->isReadOnly());
    EXPECT_TRUE(ds.find<QLineEdit>("ra_hours")->isReadOnly());
    EXPECT_FALSE(ds.find<QLineEdit>("star_distance")->isReadOnly());

    ds.type("star_distance", "79.5 ly");
    EXPECT_EQ(text("star_distance"), "79.5");
    EXPECT_FLOAT_EQ(
        static_cast<float>(
            stored_star_field(ds.folder.file("stars.mdb"), "Leo", number, "distance").as_double()),
        79.5f);
    ds.type("star_name", "Cor Leonis");
    EXPECT_EQ(stored_star_field(ds.folder.file("stars.mdb"), "Leo", number, "star_name").as_text(),
              "Cor Leonis");
    EXPECT_NE(list->item(regulus)->text().toStdString().find("Cor Leonis"), std::string::npos);
    ds.find<QCheckBox>("star_selection_2")->click();
    EXPECT_EQ(stored_star_field(ds.folder.file("stars.mdb"), "Leo", number, "sel_2").as_int(), -1);

    // A glyph is one character of the symbol font.
    paste("star_glyph", QString(QChar(0x20AC)));
    EXPECT_EQ(ds.folder.sink.messages.back().title, "ERROR IN GLYPH ENTRY");
    paste("star_glyph", QString(QChar(0xBE)));
    EXPECT_EQ(stored_star_field(ds.folder.file("stars.mdb"), "Leo", number, "glyph").as_text(),
              "\xBE");
}

TEST_F(StarScreens, LeavingTheStarDatabaseChecksTheChartGroup) {
    ASSERT_EQ(ds.s.stars.chart_star_count, 8);
    ds.press("star_database_options");
    ds.choose("constellation_list", "Leo");
    auto* list = ds.find<QListWidget>("star_list");
    auto* in_charts = ds.find<QCheckBox>("star_selection_1");
    for (int row = 0; row < list->count() && in_charts->isChecked(); ++row)
        list->setCurrentRow(row);
    ASSERT_FALSE(in_charts->isChecked());
    in_charts->click(); // a ninth star: taken now, refused when the window is left
    EXPECT_EQ(ds.s.stars.chart_star_count, 8);
    ds.press("star_exit");
    EXPECT_FALSE(ds.find<QWidget>("STAR_DATABASE")->isVisible());
    EXPECT_EQ(
        ds.folder.messages_titled("USER ERROR - TOO MANY STARS IN GROUP STARS IN CHARTS").size(),
        1u);
    EXPECT_EQ(ds.s.stars.chart_star_count, 0);
}

TEST_F(StarScreens, StarOptionsOutOfRangeAreRefusedWithTheirMessages) {
    ds.press("star_options_config");
    EXPECT_EQ(text("star_zodiac_width"), "8"); // the default shows until it is changed
    const struct {
        const char* field;
        const char* typed;
        const char* title; // empty: taken
        const char* shown; // the field afterwards
    } cases[] = {
        {"orb_1_degs", "15", "ERROR IN ORB DEGREE ENTRY", "0"},
        {"orb_1_degs", "12", "", "12"},
        {"orb_6_mag1_mins", "60", "ERROR IN ORB MINUTES ENTRY", "0"},
        {"orb_1_magnitude", "8", "ERROR IN STAR MAGNITUDE ENTRY", "0"},
        {"orb_2_magnitude", "-8", "", "-8"},
        {"star_zodiac_width", "3", "", "3"},
        {"star_zodiac_width", "8", "Error in Zodiac Width", "3"},
    };
    for (const auto& c : cases) {
        ds.folder.sink.messages.clear();
        ds.type(c.field, c.typed);
        EXPECT_EQ(titles(),
                  *c.title ? std::vector<std::string>{c.title} : std::vector<std::string>{})
            << c.field << " " << c.typed;
        EXPECT_EQ(text(c.field), c.shown) << c.field << " " << c.typed;
        EXPECT_EQ(read_option(ds.s, "option_name", c.field).as_text(), c.shown) << c.field;
    }

    ds.choose("charts_conj_orb_type", "Longitude and latitude");
    EXPECT_EQ(read_option(ds.s, "option_name", "charts_conj_orb_type").as_text(),
              "Longitude and latitude");
    ds.choose("listings_horizon_star_group", "All Stars");
    EXPECT_EQ(read_option(ds.s, "option_name", "listings_horizon_star_group").as_text(),
              "All Stars");
    ds.find<QCheckBox>("additional_ophiuchus")->click();
    EXPECT_NE(read_option(ds.s, "option_name", "additional_ophiuchus").as_int(), 0);
}

TEST_F(StarScreens, AGroupNameIsStoredAndShownInTheStarDatabase) {
    ds.press("star_groups");
    ds.type("star_2", "Royal stars");
    EXPECT_EQ(read_option(ds.s, "option_name", "star_2").as_text(), "Royal stars");
    ds.type("star_3", "royal stars");
    ds.type("star_4", " ");
    EXPECT_EQ(titles(), (std::vector<std::string>{"GROUP NAME IN USE", "NO GROUP NAME"}));
    EXPECT_EQ(text("star_3"), "Star group 3");
    EXPECT_EQ(read_option(ds.s, "option_name", "star_4").as_text(), "Star group 4");
    ds.press("star_groups_exit");

    ds.press("star_database_options");
    auto* groups = ds.find<QComboBox>("group_list");
    EXPECT_GE(groups->findText("Royal stars"), 0);
    EXPECT_EQ(ds.find<QCheckBox>("star_selection_3")->text(), "Royal stars");
}

TEST_F(StarScreens, AFixedPointIsEdited) {
    ds.press("Fixed_points_activate");
    auto* list = ds.find<QListWidget>("fixed_list");
    ASSERT_EQ(list->count(), 3);
    list->setCurrentRow(0);
    EXPECT_EQ(ds.find<QGroupBox>("edit_fixed_point")->title(), "EDIT FIXED POINT");
    EXPECT_EQ(text("fixed_name"), "Galactic Centre (J2000)");
    const std::string degrees = text("fixed_degs");

    ds.type("fixed_degs", "360");
    EXPECT_EQ(ds.folder.sink.messages.back().text, "Valid Range 0 to 359");
    EXPECT_EQ(text("fixed_degs"), degrees);
    ds.type("fixed_degs", "12");
    ds.type("fixed_name", "Sgr A*");
    EXPECT_EQ(list->item(0)->text(), "Sgr A*");
    EXPECT_EQ(list->currentRow(), 0);
    ds.choose("fixed_world_view", "Heliocentric");
    ds.choose("fixed_zodiac", "Sidereal SVP");
    ds.find<QCheckBox>("fixed_active")->click();

    const FixedPointWindow stored = show_fixed_point(ds.s, fixed_list(ds.s)[0].bookmark);
    EXPECT_EQ(stored.fixed_name, "Sgr A*");
    EXPECT_EQ(stored.fixed_degs, "12");
    EXPECT_EQ(stored.fixed_world_view, "Heliocentric");
    EXPECT_EQ(stored.fixed_zodiac, "Sidereal SVP");
    EXPECT_EQ(stored.fixed_active, ds.find<QCheckBox>("fixed_active")->isChecked());
    EXPECT_EQ(ds.s.stars.fixed_points[0].world_view, "Heliocentric");
}

} // namespace
} // namespace celestark::testing
