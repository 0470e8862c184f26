// The options windows driven by their controls: the display and print options, the sidereal
// zodiacs, the aspect sets and the colour sets.
#include "desktop_support.h"

#include "screens/option_set_screens.h"
#include "screens/widgets/option_sets.h"
#include "screens/widgets/program_options.h"
#include "session/colour_fields.h"
#include "store/option_store.h"
#include "store/table_store.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

namespace celestark::testing {
namespace {

// A value of a one-row option table, read from option.mdb by a store of its own.
store::Value stored_option(const ProgramFolder& folder, const char* table, const char* field) {
    store::TableStore db;
    store::Recordset rs;
    if (db.open(folder.file("option.mdb"), store::TableStore::Access::read_only) !=
            store::Outcome::ok ||
        db.open_recordset(table, rs) != store::Outcome::ok || rs.move_first() != store::Outcome::ok)
        return store::Value::failure(store::Outcome::not_open);
    return rs.get(field);
}

// A button of one window (several windows have a `save` or an `exit`).
void press_in(QWidget* window, const char* name) {
    auto* b = window->findChild<QPushButton*>(name);
    ASSERT_NE(b, nullptr) << name;
    ASSERT_TRUE(b->isEnabled()) << name;
    b->click();
}

TEST(OptionWindows, ProgramOptionsWriteEachControlAtOnce) {
    DesktopSession ds;
    ds.press("chart_options");
    auto* window = ds.find<QWidget>("Program_options");
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), "CHART DISPLAY AND PRINT OPTIONS");
    // The controls show the stored options.
    EXPECT_TRUE(ds.find<QRadioButton>("def_opt_date_format_uk")->isChecked());
    EXPECT_EQ(ds.find<QRadioButton>("house_opposite")->text(), "Oppostie");
    EXPECT_NE(ds.find<QGroupBox>("f_moon_s_node"), nullptr);

    ds.press("def_opt_date_format_usa");
    EXPECT_EQ(stored_option(ds.folder, "option_name", "option_date_format").as_int(), 0);
    EXPECT_FALSE(ds.s.options.text.date_format);
    ds.press("pp_full");
    EXPECT_EQ(stored_option(ds.folder, "options", "display_plan_degs").as_int(), 2);
    EXPECT_TRUE(ds.find<QCheckBox>("opt_chiron")->isChecked());
    ds.press("opt_chiron");
    EXPECT_EQ(stored_option(ds.folder, "options", "chiron").as_int(), 0);
    ds.press("opt_sedna");
    EXPECT_EQ(stored_option(ds.folder, "options", "sedna").as_int(), 1);
    EXPECT_EQ(ds.s.chart.sedna, 1);
    ds.press("exclude_mc");
    EXPECT_EQ(stored_option(ds.folder, "option_name", "exclude_midheaven").as_int(), -1);
    ds.press("def_opt_save_never");
    EXPECT_EQ(stored_option(ds.folder, "option_name", "option_save_chart").as_int(), 2);

    ds.type("def_opt_user_name", "Jane Doe");
    EXPECT_EQ(stored_option(ds.folder, "option_name", "user_name").as_text(), "Jane Doe");
    ds.type("def_opt_printer_line_width", "4");
    EXPECT_EQ(stored_option(ds.folder, "option_name", "option_printer_line_width").as_int(), 4);
    // A width out of range is refused, and the field shows the stored width again.
    ds.type("def_opt_screen_line_width", "11");
    EXPECT_EQ(ds.folder.sink.messages.back().title, "SCREEN LINE WIDTH ERROR");
    EXPECT_EQ(stored_option(ds.folder, "option_name", "option_screen_line_width").as_int(), 1);
    EXPECT_EQ(ds.find<QLineEdit>("def_opt_screen_line_width")->text(), "1");

    for (const char* link : {"apparent", "extra", "osculating", "Picture1"}) {
        const std::size_t boxes = ds.folder.sink.messages.size();
        ds.press(link);
        EXPECT_EQ(ds.folder.sink.messages.size(), boxes + 1) << link;
    }

    // The frame does not close it; exit does, and the chart window takes the options.
    window->close();
    EXPECT_TRUE(window->isVisible());
    press_in(window, "exit");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ds.s.chart.display_plan_degs, 2);
    // Opened again, the controls show what was stored.
    ds.press("chart_options");
    EXPECT_TRUE(ds.find<QRadioButton>("def_opt_date_format_usa")->isChecked());
    EXPECT_FALSE(ds.find<QCheckBox>("opt_chiron")->isChecked());
    EXPECT_TRUE(ds.find<QCheckBox>("opt_sedna")->isChecked());
}

TEST(OptionWindows, AZodiacIsSavedThroughItsControls) {
    DesktopSession ds;
    ds.press("zodiac_options");
    auto* window = ds.find<screens::ZodiacOptionsWindow>("SIDEREAL_ZODIAC");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->windowTitle(), "SIDEREAL ZODIAC OPTIONS");
    // The standard zodiac: its name and delete are locked.
    ds.choose("Edit_zodiac", "Sidereal SVP");
    EXPECT_EQ(window->record().z_name, "Sidereal SVP");
    EXPECT_FALSE(ds.find<QLineEdit>("z_name")->isEnabled());
    EXPECT_FALSE(ds.find<QPushButton>("z_delete")->isEnabled());

    ds.press("z_new");
    ds.type("z_name", "Spica Unequal");
    ds.choose("z_star", "Spica");
    ds.type("z_deg", "174");
    auto* unequal = ds.find<QGroupBox>("f_unequal");
    EXPECT_FALSE(unequal->isVisibleTo(window));
    ds.choose("z_constellation", "Unequal");
    EXPECT_TRUE(unequal->isVisibleTo(window));
    EXPECT_EQ(unequal->title(), "Constellation Boundaries");

    // A blank boundary stops the save with its line.
    auto* leo = ds.find<QLineEdit>("z5_degs");
    leo->setFocus();
    leo->selectAll();
    QTest::keyClick(leo, Qt::Key_Delete);
    ds.leave(leo);
    ds.press("z_save");
    ASSERT_FALSE(ds.folder.sink.input_errors.empty());
    EXPECT_EQ(ds.folder.sink.input_errors.back(),
              "LEO DEGREES - Cannot be left blank or with only spaces");
    EXPECT_TRUE(zodiac_bookmark(ds.s, "Spica Unequal").empty());

    ds.type("z5_degs", "118");
    ds.type("z5_mins", "30");
    ds.press("z_save");
    const std::string bookmark = zodiac_bookmark(ds.s, "Spica Unequal");
    ASSERT_FALSE(bookmark.empty());
    const ZodiacWindow row = zodiac_to_window(ds.s, bookmark);
    EXPECT_EQ(row.z_defined, "Star");
    EXPECT_EQ(row.z_constellation, "Unequal");
    EXPECT_EQ(row.z_star, "Spica");
    EXPECT_EQ(row.z_deg, "174");
    EXPECT_EQ(row.z_degs[4], "118");
    EXPECT_EQ(row.z_mins[4], "30");
    EXPECT_EQ(ds.find<QComboBox>("Edit_zodiac")->currentText(), "Spica Unequal");
    EXPECT_FALSE(window->record().changed);

    // An epoch zodiac shows the date with its hint instead of the star.
    ds.choose("z_defined", "Epoch");
    EXPECT_TRUE(ds.find<QLineEdit>("z_year")->isVisibleTo(window));
    EXPECT_FALSE(ds.find<QComboBox>("z_star")->isVisibleTo(window));
    EXPECT_EQ(ds.find<QLabel>("z_date_hint")->text(), " dd    mm     yyyy        G/J");
    // Leaving with the change asks; No keeps the stored row.
    ds.folder.sink.answers = {false};
    press_in(window, "z_exit");
    EXPECT_EQ(ds.folder.sink.questions.back().title, "ZODIAC HAS CHANGED!");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(zodiac_to_window(ds.s, bookmark).z_defined, "Star");
}

TEST(OptionWindows, ABadDefinitionIsAnsweredAsTheFieldIsLeft) {
    DesktopSession ds;
    ds.press("zodiac_options");
    auto* defined = ds.find<QComboBox>("z_defined");
    defined->setCurrentText("Planet");
    ds.leave(defined->lineEdit());
    ASSERT_FALSE(ds.folder.sink.messages.empty());
    EXPECT_EQ(ds.folder.sink.messages.back().title, "CELESTARK");
    EXPECT_EQ(ds.folder.sink.messages.back().text, "Only 'Epoch' and 'Star' are valid entries");
}

TEST(OptionWindows, AnAspectRowIsSavedThroughItsControls) {
    DesktopSession ds;
    ds.press("aspect_set_options");
    auto* window = ds.find<screens::AspectSetsWindow>("ASPECTS");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(ds.find<QComboBox>("edit_aspect")->currentText(), "Standard");
    auto* list = ds.find<QListWidget>("list_of_aspects");
    ASSERT_EQ(list->count(), 11);

    // The square: its fields and glyph.
    const auto row_of = [&](const char* line) {
        const auto found = list->findItems(line, Qt::MatchExactly);
        return found.isEmpty() ? -1 : list->row(found.front());
    };
    list->setCurrentRow(row_of("90:0"));
    EXPECT_EQ(ds.find<QLineEdit>("asp_digraph")->text(), "Sq");
    EXPECT_EQ(ds.find<screens::SigilView>("sigil")->code(), 192 + 5);
    ds.type("planets_degs", "6");
    press_in(window, "save");
    // The charts' set is the one edited: the session has the new orb at once.
    const AspectTable& table = ds.s.option_sets.aspects;
    ASSERT_EQ(table.aspect_count, 11);
    EXPECT_FLOAT_EQ(table.orb_planets[5], 6);

    // A new row: a bad digraph is refused, then the septile is added with its glyph.
    ds.press("add_new_aspect");
    ds.type("angle_degs", "51");
    ds.type("angle_mins", "26");
    EXPECT_EQ(ds.find<screens::SigilView>("sigil")->code(), 192 + 11);
    ds.type("asp_digraph", "S");
    ds.type("planets_degs", "1");
    press_in(window, "save");
    EXPECT_EQ(ds.folder.sink.input_errors.back(), "DIGRAPH FIELD - Must contain 2 letters");
    ds.type("asp_digraph", "Sp");
    press_in(window, "save");
    EXPECT_EQ(list->count(), 12);
    EXPECT_EQ(list->currentItem()->text(), "51:26");
    EXPECT_EQ(ds.s.option_sets.aspects.aspect_count, 12);

    // A change left for another row asks; No leaves the stored row as it was.
    ds.type("planets_degs", "3");
    ds.folder.sink.answers = {false};
    list->setCurrentRow(row_of("0:0"));
    EXPECT_EQ(ds.folder.sink.questions.back().title, "ASPECT HAS CHANGED!");
    list->setCurrentRow(row_of("51:26"));
    EXPECT_EQ(ds.find<QLineEdit>("planets_degs")->text(), "1");
}

TEST(OptionWindows, ASwatchTakesTheChosenColourAndCancelKeepsTheOld) {
    DesktopSession ds;
    ds.press("colour_options");
    auto* window = ds.find<screens::ColourSetsWindow>("COLOURS");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->record().name, "Dark Screen");
    for (const char* swatch : {"aries_b", "aries_g", "aries_gi", "aries_go", "Taurus_g",
                               "sagitarius_gi", "Perigee", "perigee_o", "Nonile", "meridian"})
        EXPECT_NE(window->findChild<QPushButton*>(swatch), nullptr) << swatch;

    std::vector<std::optional<std::int32_t>> starts;
    std::optional<std::int32_t> answer = 0x0000FF; // red
    window->chooser = [&](std::optional<std::int32_t> start) {
        starts.push_back(start);
        return answer;
    };
    const std::int32_t old_mars = window->record().values[colour_field::mars];
    press_in(window, "mars");
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0], old_mars);
    EXPECT_EQ(window->record().values[colour_field::mars], 0x0000FF);
    EXPECT_TRUE(window->findChild<QPushButton*>("mars")->styleSheet().contains("#ff0000"));

    const std::int32_t old_inside = window->record().values[colour_field::aries_i];
    answer = std::nullopt;
    press_in(window, "aries_gi");
    EXPECT_EQ(window->record().values[colour_field::aries_i], old_inside);

    press_in(window, "save");
    const auto stored = colour_set_to_window(ds.s, "Dark Screen");
    ASSERT_TRUE(stored.has_value());
    EXPECT_EQ(stored->values[colour_field::mars], 0x0000FF);
    EXPECT_EQ(stored->values[colour_field::aries_i], old_inside);
    EXPECT_FALSE(window->record().changed);

    // A choice of the set is a check box; exit asks to save the change.
    window->findChild<QCheckBox*>("flow_colours")->click();
    ds.folder.sink.answers = {true};
    press_in(window, "exit");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ds.folder.sink.questions.back().title, "SAVE ANY CHANGES TO COLOUR SET?");
    EXPECT_NE(colour_set_to_window(ds.s, "Dark Screen")->values[colour_field::flow_colours],
              stored->values[colour_field::flow_colours]);
}

} // namespace
} // namespace celestark::testing
