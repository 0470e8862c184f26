// The phenomena windows: the Predictive menu opens `planetary_aspects` with every control, the
// bodies' clearing, a faulty year listed with nothing made, DISPLAY showing the first page of the
// list, Continue the next, Restart the first, Print a document, Menu going back, and Exit.
#include "desktop_support.h"

#include "drawing/phenomena_pages.h"
#include "screens/phenomena_screen.h"
#include "screens/widgets/phenomena_windows.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QLabel>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>

#include <algorithm>

namespace celestark::testing {
namespace {

class PhenomenaWindows : public ::testing::Test {
  protected:
    DesktopSession ds;
    QWidget* menu = nullptr;
    void SetUp() override {
        ds.press("phem_aspects");
        menu = window_named("planetary_aspects");
        ASSERT_NE(menu, nullptr);
    }
    // A control of the phenomena window itself (other windows have an "exit" too).
    template <typename T> T* control(const char* name) { return menu->findChild<T*>(name); }
    void type(const char* name, const char* text) {
        auto* f = control<QLineEdit>(name);
        ASSERT_NE(f, nullptr) << name;
        f->clear();
        QTest::keyClicks(f, text);
    }
    void press(const char* name) {
        auto* b = control<QAbstractButton>(name);
        ASSERT_NE(b, nullptr) << name;
        b->click();
    }
    screens::PhenomenaDisplay* display() {
        return static_cast<screens::PhenomenaDisplay*>(window_named("phenomena_display"));
    }
};

TEST_F(PhenomenaWindows, TheMenuOpensTheWindowWithEveryControl) {
    EXPECT_TRUE(menu->isVisible());
    EXPECT_EQ(menu->windowTitle(), "PLANETARY PHENOMENA");
    std::vector<std::string> names = {"start",
                                      "end_year",
                                      "gj",
                                      "geo",
                                      "tych",
                                      "helio",
                                      "lemni",
                                      "aspects_search",
                                      "ingresses_search",
                                      "stationary_search",
                                      "nodes_apsides_search",
                                      "eclipse_phenomena",
                                      "aspects",
                                      "stars2",
                                      "planets_clear",
                                      "print",
                                      "display",
                                      "exit",
                                      "search_for"};
    for (const PhenomenaBody& b : phenomena_bodies())
        for (const char* column : {"1", "2"}) names.push_back(std::string(b.stem) + column);
    for (const std::string& name : names)
        EXPECT_NE(control<QWidget>(name.c_str()), nullptr) << name;
    EXPECT_EQ(control<QLineEdit>("start")->text(), "2005");
    EXPECT_TRUE(control<QRadioButton>("geo")->isChecked());
    EXPECT_TRUE(control<QCheckBox>("jupiter1")->isChecked());

    // Clearing empties both columns and nothing else.
    control<QCheckBox>("stars2")->click();
    EXPECT_TRUE(control<QCheckBox>("stars2")->isChecked());
    press("planets_clear");
    for (const char* name : {"jupiter1", "jupiter2", "sun1", "stars2"})
        EXPECT_FALSE(control<QCheckBox>(name)->isChecked()) << name;
    EXPECT_TRUE(control<QCheckBox>("aspects_search")->isChecked());

    press("exit");
    EXPECT_FALSE(menu->isVisible());
}

TEST_F(PhenomenaWindows, AFaultyYearIsListedAndNothingRuns) {
    type("start", "");
    type("end_year", "2004x");
    press("display");
    const auto& lines = ds.folder.sink.input_errors;
    for (const char* line : {"No entry for Start Year", "Start year cannot be a blank",
                             "No entry for End Year", "End year cannot be a blank"})
        EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << line;
    EXPECT_TRUE(menu->isVisible());
    EXPECT_TRUE(display() == nullptr || !display()->isVisible());
}

TEST_F(PhenomenaWindows, PagesFollowOneAnother) {
    type("start", "2020");
    type("end_year", "2021");
    press("display");
    ASSERT_NE(display(), nullptr);
    ASSERT_TRUE(display()->isVisible());
    EXPECT_FALSE(menu->isVisible());
    const drawing::PhenomenaPages* pages = display()->pages();
    ASSERT_NE(pages, nullptr);
    EXPECT_EQ(pages->page(), 1);
    ASSERT_FALSE(pages->rows().empty());
    EXPECT_EQ(pages->rows().front().index, 0u);
    EXPECT_TRUE(ds.find<QLabel>("phem_state")->text().startsWith("Page 1 of "));
    const int first_done = ds.find<QProgressBar>("list_done")->value();
    EXPECT_GT(first_done, 0);
    const std::size_t last_on_first = pages->rows().back().index;

    ds.press("phen_next_page");
    EXPECT_EQ(pages->page(), 2);
    ASSERT_FALSE(pages->rows().empty());
    EXPECT_EQ(pages->rows().front().index, last_on_first + 1);
    EXPECT_GT(ds.find<QProgressBar>("list_done")->value(), first_done);
    ds.press("phen_restart");
    EXPECT_EQ(pages->page(), 1);

    // The printed list leaves the page shown where it was.
    QTemporaryDir dir;
    ds.desktop->print_dialog = false;
    ds.desktop->printer().setOutputFormat(QPrinter::PdfFormat);
    ds.desktop->printer().setOutputFileName(dir.filePath("phenomena.pdf"));
    ds.press("print_phem");
    EXPECT_GT(QFileInfo(dir.filePath("phenomena.pdf")).size(), 0);
    EXPECT_EQ(display()->pages()->page(), 1);

    ds.press("phen_menu");
    EXPECT_TRUE(menu->isVisible());
    EXPECT_FALSE(display()->isVisible());
    press("display");
    ASSERT_TRUE(display()->isVisible());
    ds.press("exit_phem");
    EXPECT_FALSE(display()->isVisible());
    EXPECT_TRUE(ds.desktop->chart_window().isVisible());
}

} // namespace
} // namespace celestark::testing
