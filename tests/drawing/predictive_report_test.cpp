// The report of a predictive run on a surface: the formats, the page's margins, cells that never
// run into each other, columns that fill before the page does, the block of the first page, and
// paper pages that follow one another.
#include "../support/events.h"
#include "drawing_support.h"

#include "drawing/predictive_report.h"
#include "predict/predictive_controls.h"
#include "session/fixed_tables.h"

#include <algorithm>

namespace celestark::testing {
namespace {

using drawing::DrawCall;
using drawing::PredictiveReport;

std::string glyph(unsigned char code) {
    return std::string(1, static_cast<char>(code));
}

// Rows of every kind, with the widest marks they can carry.
std::vector<Hit> sample_hits() {
    Hit aspect;
    aspect.kind = "B";
    aspect.body_1 = glyph(glyph::neptune);
    aspect.retro_1 = "R";
    aspect.pos_1 = 5.1;
    aspect.body_2 = glyph(glyph::jupiter);
    aspect.retro_2 = "R";
    aspect.pos_2 = 2.2;
    aspect.aspect_glyph = glyph(aspect_glyphs[9]);
    aspect.orb_kind = "AE";
    Hit ingress = aspect;
    ingress.kind = "IC";
    ingress.orb_kind = "FROM";
    ingress.target_glyph = glyph(sign_glyphs[8]);
    Hit station = aspect;
    station.kind = "R";
    station.note = "D";
    Hit recurrence = aspect;
    recurrence.kind = "RE";
    recurrence.aspect_glyph = "R";
    std::vector<Hit> hits = {aspect, ingress, station, recurrence};
    for (std::size_t i = 0; i < hits.size(); ++i)
        hits[i].date = hits[i].life_date = 2415020.5 + 20 * static_cast<double>(i);
    return hits;
}

class PredictiveReportTest : public ::testing::Test {
  protected:
    DrawingSession ds;
    void SetUp() override {
        ds.canvases.ab = &ds.window;
        put_einstein(ds.s, 1);
        // A short run sets the run's values the pages read.
        PredictiveParameters p = predictive_defaults(ds.s, "T");
        for (const auto& [name, value] : {std::pair{"start_year", "1900"},
                                          {"end_year", "1900"},
                                          {"end_day", "3"},
                                          {"start_day", "1"},
                                          {"start_month", "1"},
                                          {"end_month", "1"}})
            set_predictive_control(p, name, value);
        PredictiveReport report(*ds.g);
        ASSERT_NE(start_predictive_run(ds.s, p, report), RunOutcome::refused);
    }
    drawing::RecordingSurface& surface(bool printing) { return printing ? ds.paper : ds.window; }
    // A report of the format on the screen or on paper, its page begun.
    std::unique_ptr<PredictiveReport> page(const std::string& format, bool printing, int number) {
        ds.s.predictive_params.texts["output_format"] = format;
        ds.g->d.printing = printing;
        surface(printing).forget();
        auto report = std::make_unique<PredictiveReport>(*ds.g);
        report->begin_page(ds.s, number);
        return report;
    }
    static bool has_text(const drawing::RecordingSurface& r, const std::string& text) {
        return std::any_of(r.calls().begin(), r.calls().end(),
                           [&](const DrawCall& c) { return c.codes == text; });
    }
};

TEST_F(PredictiveReportTest, EveryOutputFormatHasItsColumns) {
    const std::vector<std::string>& formats = predictive_output_formats();
    const int columns[] = {1, 2, 3, 4, 5, 6, 8};
    ASSERT_EQ(formats.size(), std::size(columns));
    for (std::size_t i = 0; i < formats.size(); ++i)
        for (const char* mode : {"B", "T", "P"}) {
            const drawing::ReportFormat f = drawing::report_format(mode, formats[i]);
            EXPECT_EQ(f.columns, columns[i]) << formats[i];
            EXPECT_FALSE(f.stops.empty()) << formats[i];
            EXPECT_TRUE(std::is_sorted(f.stops.begin(), f.stops.end())) << formats[i];
        }
    EXPECT_EQ(drawing::report_format("T", "7 Columns").columns, 0);
    // The biography opens with two dates and the age, as the progressions do.
    EXPECT_EQ(drawing::report_format("B", "1 Column").stops,
              drawing::report_format("P", "1 Column").stops);
}

// Every format, on the screen and on paper: rows inside the margins, and no text of a row runs
// into the next one.
TEST_F(PredictiveReportTest, RowsKeepInsideTheMarginsAndApart) {
    const std::vector<Hit> hits = sample_hits();
    for (const char* mode : {"T", "B", "P"})
        for (const std::string& format : predictive_output_formats())
            for (const bool printing : {false, true}) {
                SCOPED_TRACE(std::string(mode) + " " + format + (printing ? " paper" : " screen"));
                ds.s.predictive_params.mode = mode;
                auto report = page(format, printing, 2);
                int printed = 0;
                while (report->print_row(ds.s, hits[static_cast<std::size_t>(printed % 4)]))
                    ASSERT_LT(++printed, 5000);
                ASSERT_GT(printed, 4);
                const drawing::RecordingSurface& r = surface(printing);
                const float W = r.width(), H = r.height(), m = printing ? 0.05f : 0.01f;
                for (const drawing::ReportRow& row : report->rows()) {
                    EXPECT_GE(row.left, W * m - 1);
                    EXPECT_LE(row.right, W * (1 - m) + 1);
                    EXPECT_LE(row.bottom, H - H * m * (printing ? 1.5f : 1.0f) + 1);
                    std::vector<const DrawCall*> texts;
                    for (const DrawCall& c : r.calls())
                        if (c.kind == DrawCall::Kind::text && c.y == row.top && c.x >= row.left &&
                            c.x < row.right - 1)
                            texts.push_back(&c);
                    std::sort(texts.begin(), texts.end(),
                              [](const DrawCall* a, const DrawCall* b) { return a->x < b->x; });
                    for (std::size_t i = 0; i + 1 < texts.size(); ++i)
                        EXPECT_LE(texts[i]->x + texts[i]->w, texts[i + 1]->x + 1)
                            << texts[i]->codes << " runs into " << texts[i + 1]->codes;
                    ASSERT_FALSE(texts.empty());
                    EXPECT_LE(texts.back()->x + texts.back()->w, row.right + 1);
                }
            }
}

TEST_F(PredictiveReportTest, AColumnFillsBeforeTheNextAndThePage) {
    const std::vector<Hit> hits = sample_hits();
    auto report = page("3 Columns", false, 2);
    int printed = 0;
    while (report->print_row(ds.s, hits[0])) ++printed;
    const auto& rows = report->rows();
    ASSERT_EQ(static_cast<int>(rows.size()), printed);
    ASSERT_EQ(printed % 3, 0);
    const int per_column = printed / 3;
    for (int i = 1; i < printed; ++i) {
        const auto& a = rows[static_cast<std::size_t>(i - 1)];
        const auto& b = rows[static_cast<std::size_t>(i)];
        if (i % per_column == 0) {
            EXPECT_GT(b.left, a.left);
            EXPECT_LT(b.top, a.top);
        } else {
            EXPECT_EQ(b.left, a.left);
            EXPECT_GT(b.top, a.top);
        }
    }
    // A click finds the row under it.
    const auto& last = rows.back();
    const Hit* found = report->hit_at((last.left + last.right) / 2, (last.top + last.bottom) / 2);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->kind, hits[0].kind);
    EXPECT_EQ(report->hit_at(last.left, last.bottom + 1), nullptr);
}

TEST_F(PredictiveReportTest, TheFirstPageCarriesTheRunsParameters) {
    const Hit hit = sample_hits()[0];
    auto first = page("1 Column", false, 1);
    EXPECT_TRUE(has_text(ds.window, "Geocentric TRANSITS of: Albert Einstein"));
    EXPECT_TRUE(has_text(ds.window, "Page 1"));
    EXPECT_TRUE(has_text(ds.window, "OPTIONS SELECTED:"));
    EXPECT_TRUE(has_text(ds.window, "TRANSITS OF EVENT CHART"));
    EXPECT_TRUE(has_text(ds.window, "    Aspects"));
    EXPECT_TRUE(has_text(ds.window, "Aspect set: Standard"));
    for (const char* head : {"Date of Transit", "Time from Event", "Planet 1", "Phenomena"})
        EXPECT_TRUE(has_text(ds.window, head)) << head;
    int on_first = 0;
    while (first->print_row(ds.s, hit)) ++on_first;
    auto second = page("1 Column", false, 2);
    EXPECT_TRUE(has_text(ds.window, "Page 2"));
    EXPECT_FALSE(has_text(ds.window, "OPTIONS SELECTED:"));
    int on_second = 0;
    while (second->print_row(ds.s, hit)) ++on_second;
    EXPECT_GT(on_second, on_first);
    // The symbols go in the symbol font.
    EXPECT_TRUE(
        std::any_of(ds.window.calls().begin(), ds.window.calls().end(), [&](const DrawCall& c) {
            return c.font == drawing::ProgramFont::planet_symbols && c.codes == hit.body_1;
        }));
}

TEST_F(PredictiveReportTest, OnPaperAFullPageIsFollowedByTheNext) {
    ds.s.predictive_params.texts["output_format"] = "2 Columns";
    ds.g->d.printing = true;
    ds.paper.forget();
    PredictiveReport report(*ds.g);
    EXPECT_TRUE(report.pages_follow());
    PredictiveParameters p = ds.s.predictive_params;
    set_predictive_control(p, "end_month", "3");
    ASSERT_EQ(start_predictive_run(ds.s, p, report), RunOutcome::finished);
    EXPECT_TRUE(report.ended());
    const int pages = ds.s.predictive.page;
    ASSERT_GT(pages, 1);
    const auto ends =
        std::count_if(ds.paper.calls().begin(), ds.paper.calls().end(),
                      [](const DrawCall& c) { return c.kind == DrawCall::Kind::end_page; });
    EXPECT_EQ(ends, pages - 1);
    EXPECT_TRUE(has_text(ds.paper, "Page " + std::to_string(pages)));
}

} // namespace
} // namespace celestark::testing
