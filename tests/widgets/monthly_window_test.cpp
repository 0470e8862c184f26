// The monthly ephemeris window on the desktop: opened from the menu, a faulty field listed, the
// months printed a page each.
#include "desktop_support.h"

#include <QComboBox>
#include <QFileInfo>
#include <QPrinter>
#include <QTemporaryDir>

#include "screens/widgets/monthly_window.h"
#include "store/option_store.h"

namespace celestark::testing {
namespace {

TEST(MonthlyWindow, OpensChecksAndPrints) {
    DesktopSession ds;
    ds.press("monthly_ephemeris");
    auto* window = ds.find<QWidget>("monthly");
    ASSERT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), "MONTHLY EPHEMERIS");
    ds.type("start_month", "0");
    ds.press("print_monthly");
    EXPECT_EQ(ds.folder.sink.input_errors.front(), "START MONTH - Invalid entry ");

    QTemporaryDir dir;
    ds.desktop->print_dialog = false;
    ds.desktop->printer().setOutputFormat(QPrinter::PdfFormat);
    ds.desktop->printer().setOutputFileName(dir.filePath("months.pdf"));
    ds.type("start_month", "1");
    ds.type("start_year", "2020");
    ds.type("end_month", "2");
    ds.type("end_year", "2020");
    ds.press("p_no");
    EXPECT_EQ(static_cast<screens::MonthlyWindow*>(window)->print(), 2);
    EXPECT_GT(QFileInfo(dir.filePath("months.pdf")).size(), 10000);
    ds.press("exit_monthly");
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(ds.find<QWidget>("geo_calender")->isVisibleTo(window));
    // The star calendar chooses its aspect sets, and keeps them when it prints.
    ds.press("star_calender");
    EXPECT_EQ(window->windowTitle(), "STAR CALENDAR");
    auto* geo = ds.find<QComboBox>("geo_calender");
    ASSERT_TRUE(geo->isVisible());
    EXPECT_EQ(geo->currentText(), "Standard");
    geo->setCurrentText("Major");
    ds.type("end_month", "1");
    EXPECT_EQ(static_cast<screens::MonthlyWindow*>(window)->print(), 1);
    EXPECT_EQ(read_option(ds.s, "options", "star_calender_geo").as_text(), "Major");
}

} // namespace
} // namespace celestark::testing
