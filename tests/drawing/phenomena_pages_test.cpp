// The phenomena list on a surface: the rows of every page inside its margins and apart, the pages
// taking every row once in order, the eclipse list with its title and columns, and the printed
// document with a page for each page of the list.
#include "drawing_support.h"

#include "drawing/phenomena_pages.h"
#include "session/fixed_tables.h"

#include <algorithm>

namespace celestark::testing {
namespace {

using drawing::DrawCall;
using drawing::PhenomenaPages;
using drawing::PhenomenaSheet;

std::string glyph(unsigned char code) {
    return std::string(1, static_cast<char>(code));
}

// Rows as wide as the list gives them: an aspect with both places and a retrograde mark.
PhenomenaSheet aspect_sheet(std::size_t count) {
    PhenomenaSheet sheet;
    sheet.title = "PLANETARY PHENOMENA   2005 - 2010   Geocentric";
    for (std::size_t i = 0; i < count; ++i)
        sheet.rows.push_back({2453371.5 + static_cast<double>(i) * 0.7,
                              glyph(glyph::neptune) + " R 28" + glyph(sign_glyphs[11]) + "59  " +
                                  glyph(aspect_glyphs[9]) + " AE  " + glyph(glyph::pluto) +
                                  " R 29" + glyph(sign_glyphs[10]) + "59",
                              "neptune", "pluto", "A"});
    return sheet;
}

class PhenomenaPagesTest : public ::testing::Test {
  protected:
    DrawingSession ds;
    void SetUp() override { ds.canvases.phenomena = &ds.window; }
    drawing::RecordingSurface& surface(bool paper) { return paper ? ds.paper : ds.window; }
    static std::vector<const DrawCall*> texts(const drawing::RecordingSurface& r) {
        std::vector<const DrawCall*> out;
        for (const DrawCall& c : r.calls())
            if (c.kind == DrawCall::Kind::text) out.push_back(&c);
        return out;
    }
    static bool has_text(const drawing::RecordingSurface& r, const std::string& text) {
        return std::any_of(r.calls().begin(), r.calls().end(),
                           [&](const DrawCall& c) { return c.codes == text; });
    }
};

TEST_F(PhenomenaPagesTest, RowsStayInsideThePageAndEveryRowIsShownOnce) {
    for (const bool paper : {false, true}) {
        SCOPED_TRACE(paper ? "paper" : "screen");
        ds.g->d.printing = paper;
        PhenomenaPages pages(*ds.g, aspect_sheet(150));
        const int count = pages.page_count();
        ASSERT_GT(count, 1);
        std::vector<std::size_t> seen;
        drawing::RecordingSurface& r = surface(paper);
        for (int p = 1; p <= count; ++p) {
            r.forget();
            ASSERT_TRUE(pages.draw_page(p));
            EXPECT_TRUE(has_text(r, "Page " + std::to_string(p)));
            EXPECT_TRUE(has_text(r, "PLANET 2"));
            ASSERT_FALSE(pages.rows().empty());
            for (const drawing::PlacedRow& row : pages.rows()) {
                seen.push_back(row.index);
                EXPECT_LE(row.bottom, r.height());
            }
            // No text leaves the page, and the cells of a row keep apart.
            std::vector<const DrawCall*> t = texts(r);
            for (const DrawCall* c : t) {
                EXPECT_GE(c->x, 0) << c->codes;
                EXPECT_LE(c->x + c->w, r.width()) << c->codes;
                EXPECT_LE(c->y + c->h, r.height()) << c->codes;
            }
            for (const DrawCall* a : t)
                for (const DrawCall* b : t)
                    if (a != b && a->y == b->y && a->x < b->x) {
                        EXPECT_LE(a->x + a->w, b->x + 1) << a->codes << " | " << b->codes;
                    }
        }
        EXPECT_FALSE(pages.draw_page(count + 1));
        std::vector<std::size_t> all(150);
        for (std::size_t i = 0; i < all.size(); ++i) all[i] = i;
        EXPECT_EQ(seen, all);
        EXPECT_DOUBLE_EQ(pages.shown(), 1.0);
    }
}

TEST_F(PhenomenaPagesTest, TheEclipseListHasItsTitleAndColumns) {
    PhenomenaSheet sheet;
    sheet.title = "PLANETARY PHENOMENA   2020 - 2020   Geocentric";
    sheet.eclipses = true;
    const std::string sun = "10" + glyph(sign_glyphs[9]) + "07",
                      moon = " 9" + glyph(sign_glyphs[3]) + "55";
    sheet.rows.push_back({2458859.3, "Moon eclipse PN  " + sun + "  " + moon, "sun", "moon", "M"});
    const drawing::PhenomenaCells c = drawing::phenomena_cells(sheet.rows[0], true, "G");
    EXPECT_EQ(c.date, "2020-01-10  19:12");
    EXPECT_EQ(c.text, "Moon eclipse PN");
    EXPECT_EQ(c.first, sun);
    EXPECT_EQ(c.second, trim(moon));

    PhenomenaPages pages(*ds.g, sheet);
    ASSERT_TRUE(pages.draw_page(1));
    for (const char* text : {"Sun and Moon Eclipses - Positions at eclipse maximum", "DATE",
                             "Type of Eclipse", "SUN", "MOON", "Moon eclipse PN"})
        EXPECT_TRUE(has_text(ds.window, text)) << text;
    EXPECT_FALSE(has_text(ds.window, "PHENOMENA"));
    EXPECT_EQ(pages.page_count(), 1);
}

TEST_F(PhenomenaPagesTest, AnEmptyListHasOnePageAndPrintingMakesADocument) {
    PhenomenaPages empty(*ds.g, PhenomenaSheet{"PLANETARY PHENOMENA", false, "G", {}});
    EXPECT_EQ(empty.page_count(), 1);
    EXPECT_TRUE(empty.draw_page(1));
    EXPECT_TRUE(empty.rows().empty());

    PhenomenaPages pages(*ds.g, aspect_sheet(150));
    ASSERT_TRUE(pages.print_all());
    ds.g->d.printing = true;
    const int count = pages.page_count();
    const auto breaks =
        std::count_if(ds.paper.calls().begin(), ds.paper.calls().end(),
                      [](const DrawCall& c) { return c.kind == DrawCall::Kind::end_page; });
    EXPECT_EQ(breaks, count - 1);
    EXPECT_TRUE(has_text(ds.paper, "Page " + std::to_string(count)));
    EXPECT_FALSE(ds.g->canvases.printer == nullptr);
}

} // namespace
} // namespace celestark::testing
