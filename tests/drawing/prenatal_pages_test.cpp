// The prenatal pages and the plan of the Solar System: every page on each kind of surface, each
// body once for each moment, the strips dated at both ends on a landscape page, the compressed
// distances at their anchors, and the planets' motion with its progress and CANCEL.
#include "drawing_support.h"

#include "drawing/painter_surface.h"
#include "drawing/prenatal_pages.h"
#include "session/fixed_tables.h"
#include "store/option_schema.h"
#include "store/option_store.h"

#include <QImage>

#include <map>

namespace celestark::testing {
namespace {

using drawing::DrawCall;

const char* const prenatal_pages[] = {"prenatal1",           "prenatal2",         "prenatal_rect",
                                      "prenatal_helio_rect", "prenatal_lem_rect", "lem_prenatal1",
                                      "lem_prenatal3dwith",  "lem_prenatal3dse",  "plan display",
                                      "planets motion"};

class PrenatalPages : public ::testing::Test {
  protected:
    DrawingSession ds;
    void SetUp() override {
        ds.event(1946, 6, 14, 10, 54, 40.7, -74.0);
        // The birth's epoch cells, and its epoch row in the outer slot, as a prenatal command
        // leaves them.
        EventRow& row = ds.s.event_slots[slot::first_user];
        const std::pair<int, const char*> epoch[] = {
            {col::epoch_exists, "Y"}, {col::epoch_place, "New York"}, {col::epoch_day, "2"},
            {col::epoch_month, "9"},  {col::epoch_year, "1945"},      {col::epoch_hours, "17"},
            {col::epoch_mins, "20"},  {col::epoch_secs, "0"},         {col::epoch_msecs, "0"}};
        for (const auto& [column, text] : epoch) row[static_cast<std::size_t>(column)] = text;
        for (int c = col::lat_deg; c <= col::long_sec; ++c)
            row[static_cast<std::size_t>(c + col::epoch_lat_deg - col::lat_deg)] =
                row[static_cast<std::size_t>(c)];
        derive_epoch_event(ds.s.event_slots, slot::first_user,
                           slot::first_user + slot::epoch_offset);
        ds.g->d.outer_event = slot::first_user + slot::epoch_offset;
    }
    // The glyphs drawn in the picture (not in the tables beside it), counted by code.
    static std::map<unsigned char, int> glyphs_drawn(const drawing::RecordingSurface& r) {
        std::map<unsigned char, int> n;
        for (const DrawCall& c : r.calls())
            if (c.kind == DrawCall::Kind::text && c.primitive == "display_glyph_inside" &&
                c.codes.size() == 1 &&
                drawing::prenatal_body(static_cast<unsigned char>(c.codes[0])))
                ++n[static_cast<unsigned char>(c.codes[0])];
        return n;
    }
    static bool any_text(const drawing::RecordingSurface& r, const std::string& start,
                         const std::string& also) {
        for (const DrawCall& c : r.calls())
            if (c.kind == DrawCall::Kind::text && c.codes.rfind(start, 0) == 0 &&
                c.codes.find(also) != std::string::npos)
                return true;
        return false;
    }
};

TEST_F(PrenatalPages, EveryPageDrawsOnScreenAndPaperWithinItsFrame) {
    for (const char* page : prenatal_pages) {
        for (bool printing : {false, true}) {
            ASSERT_TRUE(ds.show(page, printing)) << page;
            const drawing::RecordingSurface& out = printing ? ds.paper : ds.window;
            EXPECT_GT(out.calls().size(), 100u) << page;
            EXPECT_TRUE(ds.folder.fatal_titles.empty()) << page;
            for (const DrawCall& c : out.calls())
                if (c.kind == DrawCall::Kind::text) {
                    EXPECT_GE(c.x, -1) << page << " " << c.codes;
                    EXPECT_LE(c.x + c.w, out.width() + 1) << page << " " << c.codes;
                    EXPECT_GE(c.y, -1) << page << " " << c.codes;
                    EXPECT_LE(c.y, out.height()) << page << " " << c.codes;
                }
        }
    }
}

// A picture takes every page, a landscape PDF page the strips.
TEST_F(PrenatalPages, PicturesAndLandscapePdfTakeThePages) {
    const auto dir = ds.folder.file("");
    for (const char* page : prenatal_pages) {
        drawing::RasterCanvas png(640, 400, window_wide);
        ds.canvases.chart = &png;
        ASSERT_TRUE(ds.show(page)) << page;
        std::string error;
        ASSERT_TRUE(png.save_png((dir / "page.png").string(), error)) << error;
        QImage image;
        ASSERT_TRUE(image.load(QString::fromStdString((dir / "page.png").string()))) << page;
    }
    {
        drawing::PdfCanvas pdf((dir / "strips.pdf").string(),
                               drawing::PageFormat{210, 297, 10, true});
        ds.canvases.printer = &pdf;
        ASSERT_TRUE(ds.show("prenatal_rect", true));
    }
    EXPECT_GT(std::filesystem::file_size(dir / "strips.pdf"), 10000u);
    EXPECT_TRUE(ds.folder.fatal_titles.empty());
}

// On the wheels each body stands once for the birth and once for the epoch; on the strips once
// in each of the four; without the event the perspective keeps the Sun and the Earth.
TEST_F(PrenatalPages, EachBodyIsDrawnOnceForEachMoment) {
    const std::pair<const char*, int> pages[] = {
        {"prenatal1", 2},          {"prenatal2", 2},     {"lem_prenatal1", 2},
        {"lem_prenatal3dwith", 2}, {"prenatal_rect", 4}, {"prenatal_helio_rect", 4},
        {"prenatal_lem_rect", 4}};
    for (const auto& [page, times] : pages) {
        ASSERT_TRUE(ds.show(page)) << page;
        const auto drawn = glyphs_drawn(ds.window);
        for (unsigned char body : {glyph::mercury, glyph::venus, glyph::mars, glyph::jupiter,
                                   glyph::saturn, glyph::uranus, glyph::neptune, glyph::pluto})
            EXPECT_EQ(drawn.count(body) ? drawn.at(body) : 0, times) << page << " " << int(body);
        for (const auto& [body, n] : drawn) EXPECT_EQ(n, times) << page << " " << int(body);
    }
    ASSERT_TRUE(ds.show("prenatal1"));
    EXPECT_EQ(glyphs_drawn(ds.window).at(glyph::moon), 2);
    ASSERT_TRUE(ds.show("lem_prenatal3dse"));
    EXPECT_EQ(glyphs_drawn(ds.window),
              (std::map<unsigned char, int>{{glyph::sun, 2}, {glyph::earth, 2}}));
}

// The rectified pages are landscape; their strips and their scale of life name the epoch at the
// left and birth at the right.
TEST_F(PrenatalPages, TheStripsAreLandscapeAndDatedAtBothEnds) {
    for (const char* page : {"prenatal_rect", "prenatal_helio_rect", "prenatal_lem_rect"}) {
        ASSERT_TRUE(ds.show(page, true)) << page;
        const DrawingState& d = ds.g->d;
        EXPECT_FALSE(d.portrait_page) << page;
        EXPECT_GT(d.frame_right - d.frame_left, d.frame_bottom - d.frame_top) << page;
        // The epoch's date over the first strip and at the left end of the scale of life, the
        // birth's over the last strip and at the right end.
        float epoch_x = 1e9f, birth_x = -1e9f;
        int epoch_dates = 0, birth_dates = 0;
        for (const DrawCall& c : ds.paper.calls()) {
            if (c.kind != DrawCall::Kind::text || c.codes.rfind("Date:", 0) == 0) continue;
            if (c.codes.find("1945") != std::string::npos) {
                ++epoch_dates;
                epoch_x = std::min(epoch_x, c.x);
            }
            if (c.codes.find("1946") != std::string::npos) {
                ++birth_dates;
                birth_x = std::max(birth_x, c.x + c.w);
            }
        }
        EXPECT_GE(epoch_dates, 2) << page;
        EXPECT_GE(birth_dates, 2) << page;
        EXPECT_TRUE(any_text(ds.paper, "Epoch", "1945")) << page;
        EXPECT_TRUE(any_text(ds.paper, "Birth", "1946")) << page;
        EXPECT_LT(epoch_x - d.frame_left, (d.frame_right - d.frame_left) * 0.1f) << page;
        EXPECT_GT(birth_x - d.frame_left, (d.frame_right - d.frame_left) * 0.9f) << page;
    }
    ASSERT_TRUE(ds.show("prenatal1", true));
    EXPECT_TRUE(ds.g->d.portrait_page);
}

TEST(DistanceScale, PlutosTwoAnchorsAndTheLineBeyond) {
    using drawing::distance_scale;
    const double prenatal = drawing::prenatal_pluto_anchor, motion = drawing::motion_pluto_anchor;
    EXPECT_NEAR(distance_scale(glyph::pluto, 41, motion), 2.0, 1e-12);
    EXPECT_LT(distance_scale(glyph::pluto, 41, prenatal) - distance_scale(glyph::pluto, 41, motion),
              0.05);
    EXPECT_GT(distance_scale(glyph::pluto, 41, prenatal), distance_scale(glyph::pluto, 41, motion));
    // Beyond the last anchor the line goes on, past the ring.
    const auto pluto = [&](double au) { return distance_scale(glyph::pluto, au, prenatal); };
    EXPECT_NEAR(pluto(59.5) - pluto(49.5), pluto(49.5) - pluto(39.5), 1e-12);
    EXPECT_GT(pluto(60), drawing::ring_scale);
    EXPECT_NEAR(distance_scale(glyph::mars, 1.0, prenatal), 0.5, 1e-12);
    EXPECT_NEAR(distance_scale(glyph::ceres, 1.0, prenatal), 0.2, 1e-12);
}

// Without an epoch a prenatal page draws the birth and says what is missing.
TEST_F(PrenatalPages, WithoutAnEpochTheBirthStandsAlone) {
    ds.g->d.outer_event = 0;
    ASSERT_TRUE(ds.show("prenatal1"));
    EXPECT_TRUE(any_text(ds.window, "No prenatal epoch", ""));
    EXPECT_EQ(glyphs_drawn(ds.window).at(glyph::sun), 1);
    ASSERT_TRUE(ds.show("prenatal_rect"));
    EXPECT_EQ(glyphs_drawn(ds.window).at(glyph::sun), 1);
    EXPECT_TRUE(ds.folder.fatal_titles.empty());
}

// The option of the epoch to birth sectors numbers twelve sectors on the wheel.
TEST_F(PrenatalPages, TheSectorsOptionMarksTwelveSectors) {
    ASSERT_TRUE(ds.show("prenatal1"));
    EXPECT_FALSE(any_text(ds.window, "12", ""));
    ASSERT_EQ(set_option(ds.s, store::chart_options_table, "prenatal_sectors", store::Value(1),
                         ds.folder.sink),
              store::Outcome::ok);
    ASSERT_TRUE(ds.show("prenatal1"));
    for (int k = 1; k <= 12; ++k) EXPECT_TRUE(any_text(ds.window, std::to_string(k), "")) << k;
}

// The run shows its progress step by step; CANCEL stops it after the step it is in.
TEST_F(PrenatalPages, ThePlanetsMotionRunsUntilItsEndOrItsCancel) {
    MotionSettings& m = ds.g->d.motion;
    m.start_jd = 2451545;
    m.end_jd = m.start_jd + 100;
    m.bodies = {glyph::earth, glyph::mars, glyph::moon};
    ASSERT_TRUE(ds.show("planets motion"));
    ASSERT_FALSE(ds.folder.sink.progress_steps.empty());
    EXPECT_EQ(ds.folder.sink.progress_steps.back(), 251); // a step of 0.4 days with the Moon
    EXPECT_EQ(ds.s.run_cancelled, 0);
    ds.folder.sink.progress_steps.clear();
    ds.folder.sink.cancel_after = 3;
    ASSERT_TRUE(ds.show("planets motion"));
    EXPECT_EQ(ds.folder.sink.progress_steps, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(ds.s.run_cancelled, 1);
    EXPECT_TRUE(any_text(ds.window, "Stopped at", ""));
    // Without an event there is nothing to run.
    ds.s.event_slots[slot::first_user] = EventRow{};
    ASSERT_TRUE(ds.show("planets motion"));
    EXPECT_EQ(ds.folder.messages_titled(product_word).back(),
              "There are no events in the selected table");
}

} // namespace
} // namespace celestark::testing
