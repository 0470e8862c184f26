// The chart pages: the steps of screen_display, every page on screen and paper, the table font,
// and the files a page can be written to.
#include "drawing_support.h"

#include "drawing/page_furniture.h"
#include "drawing/painter_surface.h"
#include "drawing/program_fonts.h"

#include <QImage>
#include <QPrinter>
#include <QSvgRenderer>

#include <cstdio>
#include <fstream>

namespace celestark::testing {
namespace {

using drawing::DrawCall;

const char* const all_pages[] = {"data1",
                                 "geo1",
                                 "helio1",
                                 "helio_triple",
                                 "lem1",
                                 "geo_helio1",
                                 "geo_triple",
                                 "display_all_planets",
                                 "star_geo",
                                 "star_sid_trop",
                                 "star_geo_helio",
                                 "star_helio",
                                 "star_lem",
                                 "star_analysis_conjunction",
                                 "star_analysis_horizon"};

class Pages : public ::testing::Test {
  protected:
    DrawingSession ds;
    void SetUp() override { ds.event(1946, 6, 14, 10, 54, 40.7, -74.0); }
    bool any_text(const drawing::RecordingSurface& r, const std::string& text) const {
        for (const DrawCall& c : r.calls())
            if (c.kind == DrawCall::Kind::text && c.codes.find(text) != std::string::npos)
                return true;
        return false;
    }
};

TEST_F(Pages, EveryPageDrawsOnScreenAndPaperWithinItsFrame) {
    for (const char* page : all_pages) {
        for (bool printing : {false, true}) {
            ASSERT_TRUE(ds.show(page, printing)) << page;
            const drawing::RecordingSurface& out = printing ? ds.paper : ds.window;
            EXPECT_GT(out.calls().size(), 5u) << page;
            EXPECT_TRUE(ds.folder.fatal_titles.empty()) << page;
            // Nothing but the band's pies reaches beyond the surface.
            for (const DrawCall& c : out.calls())
                if (c.kind == DrawCall::Kind::text) {
                    EXPECT_GE(c.x, -1) << page;
                    EXPECT_LE(c.x, out.width() + 1) << page << " " << c.codes;
                }
        }
    }
}

TEST_F(Pages, ADraconicZodiacWithoutTheNodeDrawsNothing) {
    ds.s.chart.zodiac = "Draconic";
    ds.s.chart.moon_node = 0;
    EXPECT_FALSE(ds.show("geo1"));
    EXPECT_TRUE(ds.window.calls().empty());
    const auto boxes = ds.folder.messages_titled("ERROR USING DRACONIC ZODIAC");
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0], "For the Draconic Zodiac either the Osculating or the Mean Moon Node "
                        "Option must be selected");
}

TEST_F(Pages, AnUnknownPageIsFatalAndACancelledPrintDrawsNothing) {
    EXPECT_FALSE(ds.show("no such page"));
    ASSERT_EQ(ds.folder.fatal_titles.size(), 1u);
    EXPECT_EQ(ds.folder.fatal_titles[0], "Fatal Error in SCREEN DISPLAY");
    EXPECT_EQ(ds.folder.fatal_texts[0], "CK67-This is a fatal error. Please contact Ivan Marlow");
    ds.paper.setup_answer = false;
    EXPECT_FALSE(ds.show("geo1", true));
    EXPECT_TRUE(ds.paper.calls().empty());
}

// The table font makes a line of the table's font exactly one row high, divided by `size`.
TEST_F(Pages, TheTableFontFitsItsRows) {
    drawing::Drawing& g = *ds.g;
    for (float row : {120.0f, 300.0f, 555.5f})
        for (float size : {1.0f, 1.15f, 2.0f}) {
            drawing::fit_table_font(g, row, size);
            float w = 0, h = 0;
            g.display_text_w_h("Houses", 1.0f, w, h);
            EXPECT_NEAR(h * size, row, 0.01) << row << " " << size;
            g.display_text_w_h(" ", 1.0f, w, h);
            EXPECT_NEAR(g.d.table_half_space, w / 2, 1e-4);
        }
}

TEST_F(Pages, TheHeaderTellsTheEventAndAProgressedChartItsHouses) {
    ASSERT_TRUE(ds.show("geo1", true));
    EXPECT_TRUE(any_text(ds.paper, "Ada Testcase - Birth"));
    EXPECT_TRUE(any_text(ds.paper, "Time: 10:54"));
    EXPECT_TRUE(any_text(ds.paper, "Celestark Chart by: Ivan Marlowe - T:"));
    EXPECT_TRUE(any_text(ds.paper, "Houses"));
    EXPECT_FALSE(any_text(ds.paper, "Houses "));
    ds.s.event_slots[slot::first_user][col::event] = "Progressed";
    ASSERT_TRUE(ds.show("geo1", true));
    EXPECT_TRUE(any_text(ds.paper, "Houses "));
}

// One page into each kind of file: the PNG decodes, the PDF's text holds the event's name, the
// SVG parses.
TEST_F(Pages, PagesGoToPngPdfAndSvg) {
    const auto dir = ds.folder.file("");
    {
        drawing::RasterCanvas png(800, 500, window_wide);
        ds.canvases.chart = &png;
        ASSERT_TRUE(ds.show("geo1"));
        std::string error;
        ASSERT_TRUE(png.save_png((dir / "page.png").string(), error)) << error;
        QImage image;
        ASSERT_TRUE(image.load(QString::fromStdString((dir / "page.png").string())));
        EXPECT_EQ(image.width(), 800);
    }
    {
        drawing::PdfCanvas pdf((dir / "page.pdf").string());
        ds.canvases.printer = &pdf;
        ASSERT_TRUE(ds.show("geo1", true));
    }
    const std::string command = "pdftotext -q '" + (dir / "page.pdf").string() + "' -";
    FILE* text = popen(command.c_str(), "r");
    ASSERT_NE(text, nullptr);
    std::string extracted;
    char buffer[4096];
    while (std::size_t n = fread(buffer, 1, sizeof buffer, text)) extracted.append(buffer, n);
    ASSERT_EQ(pclose(text), 0) << "pdftotext (poppler-utils) must be installed";
    EXPECT_NE(extracted.find("Ada Testcase"), std::string::npos);
    // The symbols are searchable too: the Sun's glyph comes out as its Unicode character.
    EXPECT_NE(extracted.find("\xE2\x98\x89"), std::string::npos);
    {
        drawing::SvgCanvas svg((dir / "page.svg").string(), drawing::PageFormat{});
        ds.canvases.printer = &svg;
        ASSERT_TRUE(ds.show("geo1", true));
        svg.end_document();
    }
    QSvgRenderer renderer(QString::fromStdString((dir / "page.svg").string()));
    EXPECT_TRUE(renderer.isValid());
}

// A printed series: the pages of the selection in the order of the list, one document.
TEST_F(Pages, ASeriesPrintsTheSelectionInOrder) {
    ChartPrintSelection selection;
    selection.standard = {true, false, true, false, true};
    selection.harmonics[0] = true;
    selection.compare[2] = true;
    selection.all_planets = true;
    ds.g->d.inner_event = slot::first_user;
    ds.g->d.outer_event = slot::default_event;
    ds.g->d.chart_kind = "C";
    const auto pages = drawing::chart_series_pages(selection);
    std::vector<std::string> words;
    for (const auto& p : pages) words.push_back(p.screen_page + "/" + p.world_view);
    EXPECT_EQ(words, (std::vector<std::string>{"geo1/Geocentric", "harmonics/Geocentric",
                                               "helio1/Heliocentric", "helio_double/Heliocentric",
                                               "geo1/Tychonic", "display_all_planets/Geocentric"}));
    ds.paper.forget();
    ASSERT_TRUE(drawing::print_chart_series(*ds.g, pages));
    int ends = 0;
    for (const DrawCall& c : ds.paper.calls()) ends += c.kind == DrawCall::Kind::end_page;
    EXPECT_EQ(ends, 6);
    EXPECT_TRUE(any_text(ds.paper, "Geocentric Harmonics"));
    EXPECT_TRUE(any_text(ds.paper, "Comparison Chart"));
    EXPECT_TRUE(any_text(ds.paper, " - Tychonic"));
    EXPECT_EQ(ds.s.chart.world_view, "Geocentric");
    ds.paper.setup_answer = false;
    EXPECT_FALSE(drawing::print_chart_series(*ds.g, pages));
}

// The printer gives its page size and printable offsets; a page goes to it whole.
TEST_F(Pages, ThePrinterTakesItsPageFromThePrinter) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    const auto file = ds.folder.file("printed.pdf");
    printer.setOutputFileName(QString::fromStdString(file.string()));
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageMargins(QMarginsF(10, 12, 10, 12), QPageLayout::Millimeter);
    drawing::PrinterCanvas canvas(printer);
    canvas.dialog = false;
    EXPECT_NEAR(canvas.width(), (210 - 20) / 25.4 * 1440, 10); // A4 is 595 points wide
    EXPECT_NEAR(canvas.top_offset(), 12 / 25.4 * 1440, 10);
    ds.canvases.printer = &canvas;
    ASSERT_TRUE(ds.show("helio1", true));
    // A4 at 1:1.4: the frame keeps the width and stops at 1.4 times it.
    EXPECT_NEAR(ds.g->d.frame_bottom - ds.g->d.frame_top, (canvas.width() - 10) * 1.4f, 1);
    EXPECT_GT(std::filesystem::file_size(file), 10000u);
}

} // namespace
} // namespace celestark::testing
