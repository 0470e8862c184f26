// The main chart window and the chart window, driven by their controls.
#include "desktop_support.h"

#include "drawing/recording_surface.h"
#include "session/angles.h"
#include "session/constants.h"
#include "store/option_store.h"

#include "screens/widgets/qt_message_sink.h"

#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QPrinter>
#include <QProgressDialog>
#include <QRadioButton>
#include <QTimer>

#include <fstream>
#include <regex>
#include <sstream>

namespace celestark::testing {
namespace {

// A user's first task from end to end: an event typed, stored, found again, put in a card, its
// chart drawn and stepped by a day.
TEST(ChartWindow, AnEventTypedStoredAndFoundIsDrawnAndStepped) {
    DesktopSession ds;
    auto* chart = ds.find<QMainWindow>("Chart");
    ASSERT_NE(chart, nullptr);
    EXPECT_EQ(chart->windowTitle(), "CELESTARK - Version 2.007");

    ds.press("chart_edit_active_event");
    const std::pair<const char*, const char*> typed[] = {
        {"inp_surname", "Einstein"}, {"inp_firstname", "Albert"},
        {"inp_place", "Ulm"},        {"inp_lat_deg", "48"},
        {"inp_lat_min", "24"},       {"inp_lat_ns", "n"},
        {"inp_long_deg", "10"},      {"inp_long_min", "0"},
        {"inp_long_ew", "e"},        {"INP_DAY", "14"},
        {"INP_MONTH", "3"},          {"INP_YEAR", "1879"},
        {"inp_hours", "11"},         {"inp_mins", "30"},
        {"inp_am_pm", "am"},         {"inp_lz", "l"}};
    for (const auto& [name, text] : typed) ds.type(name, text);
    ds.choose("inp_event", "Birth");
    ds.press("add_event");
    EXPECT_TRUE(ds.folder.sink.input_errors.empty());
    ds.press("inp_exit");

    ds.press("chart_search_db");
    auto* list = ds.find<QListWidget>("search_list");
    ASSERT_NE(list, nullptr);
    const auto found = list->findItems("Einstein, Albert", Qt::MatchStartsWith);
    ASSERT_EQ(found.size(), 1);
    list->setCurrentItem(found.front());
    ds.press("event_1");
    ds.press("search_cancel");
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

// The pages a PDF file holds, counted from its page objects.
int pdf_pages(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    const std::string text = bytes.str();
    const std::regex page(R"(/Type\s*/Page[^s])");
    return static_cast<int>(std::distance(std::sregex_iterator(text.begin(), text.end(), page),
                                          std::sregex_iterator()));
}

TEST(ChartPrint, PrintsTheTickedChartsAsOneDocumentAndStopsOnCancel) {
    DesktopSession ds;
    put_einstein(ds.s, 1);
    ds.desktop->print_dialog = false;
    ds.desktop->printer().setOutputFormat(QPrinter::PdfFormat);
    const auto file = ds.folder.file("series.pdf");
    ds.desktop->printer().setOutputFileName(QString::fromStdString(file.string()));
    ds.press("print_event_charts");
    auto* print = ds.find<QAbstractButton>("print_charts");
    ASSERT_NE(print, nullptr);
    EXPECT_FALSE(print->isEnabled()); // nothing ticked yet
    for (const char* box : {"geo_standard", "helio_star", "hermetic_harmonics", "All_planets"})
        ds.find<QCheckBox>(box)->setChecked(true);
    ds.press("print_charts");
    EXPECT_EQ(pdf_pages(file), 4);
    EXPECT_EQ(ds.folder.sink.progress_steps, (std::vector<int>{1, 2, 3, 4}));

    // CANCEL after the second page: the document ends there.
    ds.folder.sink.progress_steps.clear();
    ds.folder.sink.cancel_after = 2;
    ds.press("print_charts");
    EXPECT_EQ(pdf_pages(file), 2);
    EXPECT_EQ(ds.s.run_cancelled, 1);

    // A comparison page needs the event of the card chosen with Compare (card 2 at first).
    ds.folder.sink.cancel_after = 0;
    ds.find<QCheckBox>("geo_compare")->setChecked(true);
    ds.press("print_charts");
    EXPECT_EQ(ds.folder.sink.messages.back().title, "NO EVENT");
    put_einstein(ds.s, 2);
    ds.press("print_charts");
    EXPECT_EQ(pdf_pages(file), 5);

    // The epoch of an event that has none is refused with a message.
    ds.find<QRadioButton>("print_epoch")->setChecked(true);
    ds.press("print_charts");
    EXPECT_EQ(ds.folder.sink.messages.back().title, "NO EPOCH");
}

// The progress window lets the screen's events through at each step, so its CANCEL is heard.
TEST(ChartPrint, TheProgressWindowsCancelIsHeardAtTheNextStep) {
    screens::QtMessageSink sink;
    sink.progress_begin("Printing", 10);
    QProgressDialog* dialog = nullptr;
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top->objectName() == "run_status") dialog = qobject_cast<QProgressDialog*>(top);
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(sink.progress(1));
    QTimer::singleShot(0, dialog, [dialog] { dialog->cancel(); });
    EXPECT_TRUE(sink.progress(2));
    sink.progress_end();
}

} // namespace
} // namespace celestark::testing
