// The drawing primitives: where a call goes, the colours it takes, and the fatal errors.
#include "drawing_support.h"

#include "drawing/wheel.h"
#include "session/colour_fields.h"
#include "session/fixed_tables.h"
#include "store/option_sets.h"

#include <cmath>

namespace celestark::testing {
namespace {

using drawing::DrawCall;

class Primitives : public ::testing::Test {
  protected:
    DrawingSession ds;
    drawing::Drawing& g = *ds.g;

    void colour_set(const std::string& name) {
        if (name == "None")
            clear_colour_set(ds.s.option_sets.colours);
        else
            ASSERT_TRUE(load_colour_set(ds.s, name, ds.folder.sink));
    }
    std::vector<DrawCall> texts(const drawing::RecordingSurface& r) const {
        std::vector<DrawCall> out;
        for (const DrawCall& c : r.calls())
            if (c.kind == DrawCall::Kind::text) out.push_back(c);
        return out;
    }
};

// Monochrome is white on the dark screen and black on paper, for the colour set "None" and for
// colour printing switched off alike; the colour table is then not read, and discs are not drawn.
TEST_F(Primitives, MonochromeIsWhiteOnScreenAndBlackOnPaper) {
    for (bool printing : {false, true}) {
        for (int way = 0; way < 2; ++way) {
            colour_set("Dark Screen");
            g.d.page_options.print_colour = true;
            if (way == 0)
                colour_set("None");
            else
                g.d.page_options.print_colour = false;
            g.d.printing = printing;
            const Colour expected = printing ? colour_black : colour_white;
            EXPECT_EQ(g.glyph_colour(std::string(1, char(glyph::sun))), expected);
            EXPECT_EQ(g.text_colour(), expected);
            drawing::RecordingSurface& out = printing ? ds.paper : ds.window;
            out.forget();
            g.display_font_size(12);
            g.display_glyph_inside(100, 100, std::string(1, char(glyph::sun)) + char(glyph::moon));
            g.display_line(0, 10, 0, 10, 0x123456, 0);
            g.display_filled_circle(50, 50, 10, 0x123456);
            ASSERT_EQ(out.calls().size(), 2u); // one text call for the whole text, the line
            EXPECT_EQ(out.calls()[0].colour, expected);
            EXPECT_EQ(out.calls()[0].codes.size(), 2u);
            EXPECT_EQ(out.calls()[1].colour, expected);
        }
    }
}

// In colour each character takes its colour by the table in order: a planet's glyph that is also
// a star's glyph keeps the planet's colour; a star's glyph otherwise takes the star colour; an
// outside variant the table does not name outside takes the text colour.
TEST_F(Primitives, GlyphsAreColouredOneByOneInTableOrder) {
    colour_set("Dark Screen");
    const auto colour = [&](int field) { return g.colour(field); };
    ds.s.stars.star_glyphs = {glyph::sun, 182, 0, 0, 0, 0, 0, 0};
    ds.s.stars.star_zodiac_glyphs[3] = 190;
    g.display_font_size(12);
    const std::string text = {char(glyph::sun), char(182), char(190), char(209), char('7')};
    g.display_glyph_inside(1000, 1000, text);
    const auto inside = texts(ds.window);
    ASSERT_EQ(inside.size(), text.size());
    EXPECT_EQ(inside[0].colour, colour(colour_field::sun));
    EXPECT_EQ(inside[1].colour, colour(colour_field::stars_in_charts));
    EXPECT_EQ(inside[2].colour, colour(colour_field::stars_in_charts));
    EXPECT_EQ(inside[3].colour, colour(colour_field::aries_i));
    EXPECT_EQ(inside[4].colour, colour(colour_field::text_inside));
    // Each character stands where the one before it ended; the caller's x is left alone.
    for (std::size_t i = 1; i < inside.size(); ++i)
        EXPECT_NEAR(inside[i].x, inside[i - 1].x + inside[i - 1].w, 0.01);

    ds.window.forget();
    g.display_glyph_outside(0, 0, std::string{char(192), char(230), char(182)});
    const auto outside = texts(ds.window);
    EXPECT_EQ(outside[0].colour, colour(colour_field::conjunction_o));
    EXPECT_EQ(outside[1].colour, colour(colour_field::text_outside));
    EXPECT_EQ(outside[2].colour, colour(colour_field::stars_in_charts_outside));

    ds.window.forget();
    g.display_band_glyph(0, 0, std::string{char(210), char(glyph::sun)});
    const auto band = texts(ds.window);
    EXPECT_EQ(band[0].colour, colour(colour_field::Taurus_g));
    EXPECT_EQ(band[1].colour, colour(colour_field::text_inside));

    // An empty text draws nothing and leaves the colour as it was.
    ds.window.forget();
    const Colour before = g.d.current_colour;
    g.display_glyph_inside(0, 0, "");
    EXPECT_TRUE(texts(ds.window).empty());
    EXPECT_EQ(g.d.current_colour, before);
}

TEST_F(Primitives, FatalErrorsOfTheTargets) {
    // The line width knows the listing window only in small letters.
    g.d.display_target = "Similars";
    ds.canvases.similars = &ds.window;
    g.display_line_width(1);
    EXPECT_TRUE(ds.folder.fatal_titles.empty());
    g.d.display_target = "Listings";
    g.display_line_width(1);
    ASSERT_EQ(ds.folder.fatal_titles.size(), 1u);
    EXPECT_EQ(ds.folder.fatal_titles[0], "Fatal Error in DISPLAY LINE WIDTH");
    EXPECT_EQ(ds.folder.fatal_texts[0], "CK58-This is a fatal error. Please contact Ivan Marlow");

    // A word no window has ends the program at the first primitive, with its own code.
    const std::pair<std::function<void()>, std::string> calls[] = {
        {[&] { g.display_arc(0, 0, 10, 0, 1, 0); }, "CK41"},
        {[&] { g.display_glyph_outside(0, 0, "a"); }, "CK46"},
        {[&] { g.display_circle(0, 0, 10, 0); }, "CK54"},
        {[&] { g.display_line(0, 1, 0, 1, 0, 0); }, "CK57"},
    };
    g.d.display_target = "Elsewhere";
    for (const auto& [call, code] : calls) {
        ds.folder.fatal_texts.clear();
        call();
        ASSERT_EQ(ds.folder.fatal_texts.size(), 1u) << code;
        EXPECT_EQ(ds.folder.fatal_texts[0].substr(0, 5), code + "-");
    }
    EXPECT_EQ(ds.folder.fatal_titles.back(), "Fatal Error in DISPLAY LINE");
}

TEST_F(Primitives, ATooSmallFontSizeIsToldOnceAndDrawsInSixPoints) {
    g.display_font_size(0.005f);
    const auto boxes = ds.folder.messages_titled("FONT SIZE ERROR");
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].substr(0, 17), "Font Size = 0.005");
    EXPECT_FLOAT_EQ(g.d.current_font_size, 6.0f);
}

// The band's sectors: each is the short way between its two angles, 0.05 degrees short of its
// neighbour, so that twelve of them leave twelve hairlines of the circle; equal angles give the
// whole circle less those 0.05 degrees.
TEST_F(Primitives, ArcsAreSectorsShortOfTheirNeighbours) {
    colour_set("Dark Screen");
    g.display_arc(0, 0, 100, 1.0f, 1.0f, 0);
    ASSERT_EQ(ds.window.calls().size(), 1u);
    EXPECT_NEAR(ds.window.calls()[0].span * 57.29578, 359.95, 1e-3);
    ds.window.forget();
    const double pi = 3.14159265358979;
    for (int i = 0; i < 12; ++i) { // the band's order, the angles going down
        const double a = 2 * pi - i * pi / 6 - 0.3, b = 2 * pi - (i + 1) * pi / 6 - 0.3;
        g.display_arc(0, 0, 100, static_cast<float>(a), static_cast<float>(b), 0);
    }
    double total = 0;
    for (const DrawCall& c : ds.window.calls()) total += c.span * 57.29578;
    EXPECT_NEAR(total, 360 - 12 * 0.05, 1e-2);
    // As seen the first sign starts where its boundary's radial line runs: counterclockwise from
    // the mirror of the given angle.
    EXPECT_NEAR(ds.window.calls()[0].from, 0.3, 1e-4);
}

// A turned glyph stands with the middle of its ink on the point asked for, whatever the angle
// (the rotated-text rule of the primitives and the placing of the wheel together).
TEST_F(Primitives, TurnedGlyphsCentreOnTheirPoint) {
    colour_set("Dark Screen");
    g.display_font_size(20);
    const float em = 400;
    for (int angle = 0; angle < 360; angle += 15) {
        ds.window.forget();
        drawing::draw_turned_symbols(g, {5000, 5000}, static_cast<float>(angle),
                                     std::string(1, char(glyph::sun)),
                                     drawing::TurnedColours::glyphs, 0);
        const auto t = texts(ds.window);
        ASSERT_EQ(t.size(), 1u);
        EXPECT_FLOAT_EQ(t[0].angle, static_cast<float>(angle));
        // The ink's middle: half the width along, 0.45 em down, turned about the top left.
        const double a = angle * 3.14159265358979 / 180;
        const double mx = t[0].w / 2, my = 0.45 * em;
        const double cx = t[0].x + mx * std::cos(a) + my * std::sin(a);
        const double cy = t[0].y - mx * std::sin(a) + my * std::cos(a);
        EXPECT_NEAR(cx, 5000, 1.5) << angle;
        EXPECT_NEAR(cy, 5000, 1.5) << angle;
    }
}

} // namespace
} // namespace celestark::testing
