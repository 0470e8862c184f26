// The predictive run through its windows: the menu opens `BIOGRAPHY` in its mode, DISPLAY shows
// the first page of the report, Continue the next, a click on a row opens `ab_events`, the menu
// button goes back, a faulty date is listed, and Exit leaves.
#include "desktop_support.h"

#include "drawing/predictive_report.h"
#include "screens/predictive_screen.h"
#include "screens/widgets/predictive_windows.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QPrinter>
#include <QRadioButton>
#include <QTemporaryDir>

#include <algorithm>

namespace celestark::testing {
namespace {

class PredictiveWindows : public ::testing::Test {
  protected:
    DesktopSession ds;
    void SetUp() override {
        put_einstein(ds.s, 1);
        ds.desktop->refresh_chart_window();
    }
    // The transits of two months of 1900.
    void open_transits() {
        ds.press("transits");
        for (const auto& [field, text] : {std::pair{"start_day", "1"},
                                          {"start_month", "1"},
                                          {"start_year", "1900"},
                                          {"end_day", "1"},
                                          {"end_month", "3"},
                                          {"end_year", "1900"}})
            ds.type(field, text);
    }
    const drawing::PredictiveReport* report() {
        auto* w = window_named("ab_display");
        return w ? static_cast<screens::ReportWindow*>(w)->report() : nullptr;
    }
    QString state() { return ds.find<QLabel>("ab_state")->text(); }
};

TEST_F(PredictiveWindows, TheMenuOpensTheScreenInItsMode) {
    ds.press("progressions");
    QWidget* screen = window_named("BIOGRAPHY");
    ASSERT_NE(screen, nullptr);
    EXPECT_TRUE(screen->isVisible());
    EXPECT_EQ(screen->windowTitle(), "ASTROLOGICAL BIOGRAPHY AND TRANSIT WINDOW");
    EXPECT_EQ(ds.find<QRadioButton>("prenatal")->text(), "Normal");
    EXPECT_TRUE(ds.find<QGroupBox>("frame_progression")->isVisibleTo(screen));
    EXPECT_FALSE(ds.find<QGroupBox>("frame_transits")->isVisibleTo(screen));
    EXPECT_TRUE(ds.find<QCheckBox>("t_ascendant")->isEnabled());
    ds.find<QRadioButton>("lifetime")->click();
    EXPECT_EQ(ds.find<QCheckBox>("pr_progressed")->text(), "Transits to Progressed Chart");
    EXPECT_FALSE(ds.find<QCheckBox>("pr_event")->isEnabled());

    ds.press("transits");
    EXPECT_FALSE(ds.find<QGroupBox>("frame_type")->isVisibleTo(screen));
    EXPECT_FALSE(ds.find<QCheckBox>("t_ascendant")->isEnabled());
    // A world view switches off what it cannot search.
    ds.find<QRadioButton>("lemniscate")->click();
    EXPECT_FALSE(ds.find<QCheckBox>("t_moon")->isEnabled());
    EXPECT_FALSE(ds.find<QCheckBox>("t_moon")->isChecked());
    EXPECT_TRUE(ds.find<QCheckBox>("retro")->isEnabled());
}

TEST_F(PredictiveWindows, PagesFollowAndARowMakesAMoment) {
    open_transits();
    ds.press("biog_display");
    QWidget* display = window_named("ab_display");
    ASSERT_NE(display, nullptr);
    ASSERT_TRUE(display->isVisible());
    EXPECT_EQ(display->windowTitle(), "ASTROLOGICAL BIOGRAPHY AND TRANSIT DISPLAY WINDOW");
    EXPECT_FALSE(window_named("BIOGRAPHY")->isVisible());
    ASSERT_NE(report(), nullptr);
    EXPECT_EQ(report()->page(), 1);
    EXPECT_FALSE(report()->rows().empty());
    EXPECT_TRUE(state().startsWith("Page 1"));
    const double last_on_first = report()->rows().back().hit.life_date;

    ds.press("ab_continue");
    EXPECT_EQ(report()->page(), 2);
    ASSERT_FALSE(report()->rows().empty());
    EXPECT_GE(report()->rows().front().hit.life_date, last_on_first);

    // A click on the first row of the page opens its moment.
    const drawing::ReportRow& row = report()->rows().front();
    auto* canvas = ds.find<QWidget>("ab_canvas");
    const QPoint at(static_cast<int>((row.left + 30) / 15),
                    static_cast<int>((row.top + row.bottom) / 30));
    QTest::mouseClick(canvas, Qt::LeftButton, {}, at);
    QWidget* events = window_named("ab_events");
    ASSERT_NE(events, nullptr);
    ASSERT_TRUE(events->isVisible());
    EXPECT_EQ(events->windowTitle(), "EVENT");
    EXPECT_EQ(ds.find<QLineEdit>("ab_year")->text(), "1900");
    EXPECT_FALSE(ds.find<QLineEdit>("ab_time")->text().isEmpty());
    EXPECT_EQ(ds.find<QLineEdit>("ab_meridian")->text(), "0W00");
    EXPECT_FALSE(ds.find<QLineEdit>("new_place")->isEnabled());
    ds.press("ab_save");
    EXPECT_TRUE(ds.find<QLabel>("ab_status")->text().contains("Transit:"));
    // Its chart, and back to the moment.
    QAbstractButton* chart = nullptr;
    for (auto* b : events->findChildren<QAbstractButton*>("ab_display")) chart = b;
    ASSERT_NE(chart, nullptr);
    chart->click();
    EXPECT_TRUE(ds.find<QWidget>("chart_display")->isVisible());
    EXPECT_EQ(ds.s.drawing.screen_page, "geo_double");
    ds.press("screen_cancel");
    EXPECT_TRUE(events->isVisible());
    ds.press("ab_events_exit");

    // A new life date starts the run again from there.
    ds.press("ab_restart_new");
    ASSERT_TRUE(window_named("ab_options")->isVisible());
    ds.type("ab_start_month", "2");
    ds.press("ab_options_ok");
    EXPECT_FALSE(window_named("ab_options")->isVisible());
    EXPECT_EQ(report()->page(), 1);
    ASSERT_FALSE(report()->rows().empty());
    EXPECT_GE(report()->rows().front().hit.life_date, 2415051.5 - 1); // 1 February 1900

    // The printed run leaves the screen's run where it was.
    QTemporaryDir dir;
    ds.desktop->print_dialog = false;
    ds.desktop->printer().setOutputFormat(QPrinter::PdfFormat);
    ds.desktop->printer().setOutputFileName(dir.filePath("report.pdf"));
    const int page = ds.s.predictive.page;
    ds.press("ab_print");
    EXPECT_TRUE(QFileInfo(dir.filePath("report.pdf")).size() > 0);
    EXPECT_EQ(ds.s.predictive.page, page);
    ds.press("ab_continue");
    EXPECT_EQ(report()->page(), page + 1);

    ds.press("ab_menu");
    EXPECT_TRUE(window_named("BIOGRAPHY")->isVisible());
    EXPECT_FALSE(display->isVisible());
    ds.press("biog_display");
    ds.press("ab_cancel");
    EXPECT_FALSE(display->isVisible());
    EXPECT_TRUE(ds.desktop->chart_window().isVisible());
}

TEST_F(PredictiveWindows, AFaultyDateIsListedAndNothingRuns) {
    open_transits();
    ds.type("start_day", "32");
    ds.press("biog_display");
    const auto& lines = ds.folder.sink.input_errors;
    EXPECT_NE(std::find(lines.begin(), lines.end(), "START DAY OF THE MONTH - Invalid entry "),
              lines.end());
    EXPECT_TRUE(window_named("BIOGRAPHY")->isVisible());
    QWidget* display = window_named("ab_display");
    EXPECT_TRUE(display == nullptr || !display->isVisible());
}

} // namespace
} // namespace celestark::testing
