// The listing windows: the Tables menu opens `listing_planetary` with its boxes; DISPLAY shows the
// first page of the listings, Continue the next, Restart the first, Print a document, Listing
// Menu goes back; the separations command opens the aspects window for separations; and
// `Listing_tables` chooses a table for a slot and removes it again.
#include "../tables/listing_support.h"
#include "desktop_support.h"

#include "screens/widgets/listing_windows.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>

namespace celestark::testing {
namespace {

class ListingWindows : public ::testing::Test {
  protected:
    DesktopSession ds;
    void SetUp() override {
        std::vector<RowCells> rows;
        for (int i = 0; i < 40; ++i)
            rows.push_back(event_at("P" + std::to_string(100 + i), 2433700.5 + 9.25 * i));
        make_event_table(ds.folder.file("Lists.zod.mdb"), "People", rows);
        choose_listing_table(ds.s, 1, ds.folder.path(), "Lists.zod.mdb", "People");
    }
    template <typename T> T* in(const char* window, const char* name) {
        QWidget* w = window_named(window);
        return w ? w->findChild<T*>(name) : nullptr;
    }
    void click(const char* window, const char* name) {
        auto* b = in<QAbstractButton>(window, name);
        ASSERT_NE(b, nullptr) << window << " " << name;
        ASSERT_TRUE(b->isEnabled()) << name;
        b->click();
    }
    screens::ListingsDisplay* display() {
        return static_cast<screens::ListingsDisplay*>(window_named("LISTINGS_DISPLAY"));
    }
};

TEST_F(ListingWindows, PlanetaryListingsPageByPage) {
    ds.press("list_planetary");
    QWidget* menu = window_named("listing_planetary");
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->isVisible());
    EXPECT_EQ(menu->windowTitle(), "PLANETARY LISTINGS");
    for (const ListingBody& b : planetary_listing_bodies())
        EXPECT_NE(in<QCheckBox>("listing_planetary", b.control), nullptr) << b.control;
    in<QCheckBox>("listing_planetary", "geo_sun")->click();
    in<QCheckBox>("listing_planetary", "geo_moon")->click();
    click("listing_planetary", "display");

    ASSERT_NE(display(), nullptr);
    ASSERT_TRUE(display()->isVisible());
    EXPECT_EQ(display()->windowTitle(), "LISTINGS DISPLAY");
    EXPECT_FALSE(menu->isVisible());
    const drawing::ListingPages* pages = display()->pages();
    ASSERT_NE(pages, nullptr);
    ASSERT_EQ(pages->listings().size(), 2u);
    EXPECT_EQ(pages->listings()[0].rows.size(), 40u);
    EXPECT_EQ(pages->page(), 1);
    EXPECT_EQ(pages->listing_of_page(), 0u);
    const int first_done = ds.find<QProgressBar>("listing_done")->value();

    for (const char* caption :
         {"Print", "Continue: Next Page", "Restart: Beginning", "Listing Menu", "Exit"}) {
        bool found = false;
        for (QPushButton* b : display()->findChildren<QPushButton*>())
            found = found || b->text() == caption;
        EXPECT_TRUE(found) << caption;
    }
    // The Moon's listing begins on a page of its own, numbered 1 again.
    while (pages->listing_of_page() == 0) click("LISTINGS_DISPLAY", "continue");
    EXPECT_EQ(pages->page_in_listing(), 1);
    EXPECT_GT(ds.find<QProgressBar>("listing_done")->value(), first_done);
    click("LISTINGS_DISPLAY", "restart");
    EXPECT_EQ(pages->page(), 1);

    QTemporaryDir dir;
    ds.desktop->print_dialog = false;
    ds.desktop->printer().setOutputFormat(QPrinter::PdfFormat);
    ds.desktop->printer().setOutputFileName(dir.filePath("listing.pdf"));
    click("LISTINGS_DISPLAY", "print_listing");
    EXPECT_GT(QFileInfo(dir.filePath("listing.pdf")).size(), 0);
    EXPECT_EQ(display()->pages()->page(), 1);

    click("LISTINGS_DISPLAY", "listing_menu");
    EXPECT_TRUE(menu->isVisible());
    EXPECT_FALSE(display()->isVisible());
    click("listing_planetary", "display");
    click("LISTINGS_DISPLAY", "exit");
    EXPECT_FALSE(display()->isVisible());
}

TEST_F(ListingWindows, SeparationsOpenTheAspectsWindow) {
    ds.press("list_seperations");
    QWidget* w = window_named("listing_aspects");
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w->windowTitle(), "SEPARATION LISTINGS");
    for (const char* box : {"geo", "a_sun", "b_moon"})
        in<QCheckBox>("listing_aspects", box)->click();
    click("listing_aspects", "display");
    ASSERT_NE(display(), nullptr);
    ASSERT_EQ(display()->pages()->listings().size(), 1u);
    EXPECT_EQ(display()->pages()->listings()[0].title,
              " Sorted Angular Separation listing for GEO Sun and GEO Moon");
    ds.press("list_aspects");
    EXPECT_EQ(w->windowTitle(), "ASPECT LISTINGS");
}

TEST_F(ListingWindows, ListingTablesChooseAndRemove) {
    ds.press("selected_tables");
    QWidget* w = window_named("Listing_tables");
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w->windowTitle(),
              "THE TABLES TO BE INCLUDED WHEN LISTING PLANETARY PHENOMENA OR SIMILARS");
    for (int n = 1; n <= 5; ++n) {
        const std::string k = std::to_string(n);
        EXPECT_EQ(in<QPushButton>("Listing_tables", ("add_table_" + k).c_str())->text(),
                  QString::fromStdString("ADD/CHANGE TABLE " + k));
        EXPECT_EQ(in<QPushButton>("Listing_tables", ("remove_table_" + k).c_str())->text(),
                  QString::fromStdString("REMOVE TABLE " + k));
    }
    EXPECT_TRUE(in<QLabel>("Listing_tables", "table_1")->text().contains("PEOPLE"));
    EXPECT_EQ(in<QLabel>("Listing_tables", "table_4")->text(), "(none)");

    click("Listing_tables", "add_table_4");
    auto* files = in<QListWidget>("Listing_tables", "db_files");
    ASSERT_NE(files, nullptr);
    const auto found = files->findItems("Lists.zod.mdb", Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1);
    emit files->itemClicked(found.front());
    auto* tables = in<QListWidget>("Listing_tables", "table_list");
    ASSERT_EQ(tables->count(), 1);
    emit tables->itemDoubleClicked(tables->item(0));
    EXPECT_TRUE(in<QLabel>("Listing_tables", "table_4")->text().contains("PEOPLE"));
    ListingTablesScreen stored;
    stored.open(ds.s);
    EXPECT_EQ(stored.tables_in_use(), 2);

    click("Listing_tables", "remove_table_1");
    EXPECT_EQ(in<QLabel>("Listing_tables", "table_1")->text(), "(none)");
    stored.open(ds.s);
    EXPECT_EQ(stored.tables_in_use(), 1);
    EXPECT_EQ(stored.slot(4).name, "People");
}

} // namespace
} // namespace celestark::testing
