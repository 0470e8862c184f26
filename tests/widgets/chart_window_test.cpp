// The main chart window and the chart window, driven by their controls.
#include "desktop_support.h"

#include "drawing/recording_surface.h"
#include "session/angles.h"
#include "session/constants.h"
#include "store/option_store.h"

#include <QImage>
#include <QLabel>

namespace celestark::testing {
namespace {

void put_einstein(Session& s, int slot) {
    EventRow& row = s.event_slots[slot];
    row = make_default_event();
    const std::pair<int, const char*> cells[] = {{col::surname, "Einstein"},
                                                 {col::firstname, "Albert"},
                                                 {col::event, "Birth"},
                                                 {col::place, "Ulm"},
                                                 {col::day, "14"},
                                                 {col::month, "3"},
                                                 {col::year, "1879"},
                                                 {col::gj, "G"},
                                                 {col::hours, "11"},
                                                 {col::mins, "30"},
                                                 {col::lz, "L"},
                                                 {col::lat_deg, "48"},
                                                 {col::lat_min, "24"},
                                                 {col::long_deg, "10"},
                                                 {col::long_ew, "E"},
                                                 {col::long_min, "0"}};
    for (const auto& [column, text] : cells) row[static_cast<std::size_t>(column)] = text;
}

TEST(ChartWindow, ShowsTheCardsAndDrawsAStepsAChart) {
    DesktopSession ds;
    auto* chart = ds.find<QMainWindow>("Chart");
    ASSERT_NE(chart, nullptr);
    EXPECT_EQ(chart->windowTitle(), "CELESTARK - Version 2.007");
    put_einstein(ds.s, 1);
    ds.desktop->refresh_chart_window();
    EXPECT_EQ(ds.find<QLabel>("EVENT1_NAME")->text(), "Albert Einstein");
    EXPECT_EQ(ds.find<QLabel>("EVENT1_PLACE")->text(), "Ulm");

    drawing::RecordingSurface recording(0, 0, false);
    ds.desktop->chart_display().record_into(&recording);
    ds.press("chart_geocentric");
    auto* display = ds.find<QWidget>("chart_display");
    ASSERT_NE(display, nullptr);
    EXPECT_TRUE(display->isVisible());
    // The page of that event: its name in the header.
    const auto named = [&] {
        for (const auto& c : recording.calls())
            if (c.codes.find("Albert Einstein") != std::string::npos) return true;
        return false;
    };
    EXPECT_TRUE(named());
    EXPECT_EQ(ds.s.drawing.screen_page, "geo1");

    // A day later the Moon has gone on some thirteen degrees.
    const double moon = ds.s.engine.pos.geo_long[1];
    ds.press("plus1day");
    const double moved = rad_diff(ds.s.engine.pos.geo_long[1], moon) * rad_to_deg;
    EXPECT_GT(moved, 11.5);
    EXPECT_LT(moved, 15.5);
    EXPECT_EQ(ds.find<QLineEdit>("ad_day")->text(), "15");
    EXPECT_EQ(ds.s.event_slots[1][col::day], "14"); // the card's event is not changed
    ds.press("minus1day");
    EXPECT_NEAR(rad_diff(ds.s.engine.pos.geo_long[1], moon), 0, 1e-9);
    ds.desktop->chart_display().record_into(nullptr);
}

TEST(ChartWindow, ListsWriteTheirOptionsAtOnce) {
    DesktopSession ds;
    ds.choose("selected_house_system", "Koch");
    EXPECT_EQ(read_option(ds.s, "options", "house_system").as_text(), "Koch");
    EXPECT_EQ(ds.s.chart.house_system, "Koch");
    ds.choose("selected_display_colour_set", "Paper");
    EXPECT_EQ(read_option(ds.s, "options", "display_colour_set").as_text(), "Paper");
}

TEST(ChartWindow, WindowsAreNotClosedByTheirFrame) {
    DesktopSession ds;
    put_einstein(ds.s, 1);
    ds.press("chart_geocentric");
    auto* display = ds.find<QWidget>("chart_display");
    display->close();
    EXPECT_TRUE(display->isVisible());
    EXPECT_EQ(ds.folder.sink.messages.back().text, "You can't close windows in Celestark");
}

TEST(ChartWindow, APageIsSavedAsPngPdfAndSvg) {
    DesktopSession ds;
    put_einstein(ds.s, 1);
    ds.press("chart_heliocentric");
    for (const char* ext : {".png", ".pdf", ".svg"}) {
        const auto file = ds.folder.file(std::string("page") + ext);
        EXPECT_TRUE(ds.desktop->chart_display().save_page(file.string())) << ext;
        EXPECT_GT(std::filesystem::file_size(file), 1000u) << ext;
    }
    QImage png(QString::fromStdString(ds.folder.file("page.png").string()));
    EXPECT_FALSE(png.isNull());
}

} // namespace
} // namespace celestark::testing
