// The similars windows as a user drives them: the menu command opens SIMILARS for the event of the
// card, the choices are kept in the options, the panels say what they select, DISPLAY runs the
// list against the listing table, and a refusal is a box.
#include "desktop_support.h"

#include "../support/stored_events.h"

#include "screens/widgets/similars_windows.h"
#include "store/event_schema.h"
#include "store/option_schema.h"
#include "store/option_store.h"
#include "store/table_store.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>

#include <cstdlib>

namespace celestark::testing {
namespace {

// The events of the listing table: the event itself under another name, and one a year later.
void write_table(const std::filesystem::path& file) {
    write_event_rows(file, "Events",
                     {einstein_with({{col::surname, "Year1879"}, {col::year, "1879"}}),
                      einstein_with({{col::surname, "Year1880"}, {col::year, "1880"}})});
}

std::string stored(Session& s, const char* field) {
    return read_option(s, store::chart_options_table, field).as_text();
}

TEST(SimilarsWindows, ChoicesAreKeptAndTheListIsShown) {
    DesktopSession ds;
    put_einstein(ds.s, 1);
    write_table(ds.folder.file("others.zod.mdb"));
    RecordingSink quiet;
    set_option(ds.s, store::general_options_table, "table_1_db", store::Value("others.zod.mdb"),
               quiet);
    set_option(ds.s, store::general_options_table, "table_1_name", store::Value("Events"), quiet);

    ds.press("selected_events");
    QWidget* menu = window_named("SIMILARS");
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->isVisible());
    EXPECT_EQ(ds.find<QRadioButton>("geo_hel")->text(), "Geocentric/Heliocentric");
    EXPECT_EQ(ds.find<QRadioButton>("similar_same_orientation")->text(),
              "Same planets in similar orientaion");
    EXPECT_EQ(ds.find<QGroupBox>("event_planets")->title(), "GEOCENTRIC PLANETS");

    // The world view and the list: kept at once, the frames and captions follow.
    ds.press("geo_hel");
    EXPECT_EQ(stored(ds.s, "similars_world_view"), "geo_hel");
    EXPECT_EQ(ds.find<QGroupBox>("event_planets")->title(), "GEOCENTRIC PLANETS");
    EXPECT_EQ(ds.find<QGroupBox>("tables_planets")->title(), "HELIOCENTRIC PLANETS");
    ds.press("geo");
    const QString before = ds.find<QLabel>("tables_text_2")->text();
    ds.press("similar_angles");
    EXPECT_NE(ds.find<QLabel>("tables_text_2")->text(), before);
    EXPECT_TRUE(ds.find<QGroupBox>("tables_planets_2")->isEnabled());
    ds.press("similar_charts");
    EXPECT_EQ(stored(ds.s, "similars_option"), "similar_charts");
    EXPECT_FALSE(ds.find<QGroupBox>("tables_planets_2")->isEnabled());
    ds.type("similar_hits", "10");
    ds.type("similar_orb_degs", "1");
    EXPECT_EQ(stored(ds.s, "similars_similar_hits"), "10");

    ds.press("sim_display");
    QWidget* display = window_named("similars_display");
    ASSERT_NE(display, nullptr);
    ASSERT_TRUE(display->isVisible());
    auto* shown = dynamic_cast<screens::SimilarsDisplay*>(display);
    ASSERT_NE(shown, nullptr);
    // Only the twin reaches ten hits: its ten lines, each at no orb.
    ASSERT_EQ(shown->page_lines().size(), 10u);
    for (const auto& cells : shown->page_lines())
        EXPECT_EQ(cells[0].rfind("Albert Year1879", 0), 0u);
    EXPECT_FALSE(ds.find<QPushButton>("similars_continue")->isEnabled());
    if (std::getenv("CELESTARK_GRAB")) {
        display->grab().save("/tmp/similars_display.png");
        menu->show();
        menu->grab().save("/tmp/similars_menu.png");
    }

    // Print sends the whole list to the printer and leaves the page shown.
    QTemporaryDir dir;
    ds.desktop->print_dialog = false;
    ds.desktop->printer().setOutputFormat(QPrinter::PdfFormat);
    const QString pdf = std::getenv("CELESTARK_GRAB") ? "/tmp/similars.pdf" : dir.filePath("s.pdf");
    ds.desktop->printer().setOutputFileName(pdf);
    ds.press("similars_print");
    EXPECT_GT(QFileInfo(pdf).size(), 0);
    EXPECT_EQ(shown->page_lines().size(), 10u);

    // Restart gives the same first page again; exit hides the display.
    ds.press("similars_restart");
    EXPECT_EQ(shown->page(), 1);
    EXPECT_EQ(shown->page_lines().size(), 10u);
    ds.press("similars_exit");
    EXPECT_FALSE(display->isVisible());

    // Reopened, the kept choices are back.
    ds.press("selected_events");
    EXPECT_TRUE(ds.find<QRadioButton>("similar_charts")->isChecked());
}

TEST(SimilarsWindows, ARefusalIsABox) {
    DesktopSession ds;
    put_einstein(ds.s, 1);
    ds.press("selected_events");
    for (const auto& b : similars_bodies())
        if (auto* c = ds.find<QCheckBox>(panel_box(event_panel, b.name))) c->setChecked(false);
    ds.folder.sink.messages.clear();
    ds.press("sim_display");
    ASSERT_FALSE(ds.folder.sink.messages.empty());
    EXPECT_EQ(ds.folder.sink.messages.back().title, "NO EVENT PLANETS SELECTED");
    EXPECT_EQ(ds.folder.sink.messages.back().text, "You must select one or more event planets");
    EXPECT_FALSE(window_named("similars_display") && window_named("similars_display")->isVisible());
}

} // namespace
} // namespace celestark::testing
