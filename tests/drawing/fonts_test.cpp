// The program's fonts: every symbol code has its shape in the fonts built into the program, and
// texts decode as their bytes mean.
#include "drawing/program_fonts.h"
#include "session/fixed_tables.h"
#include "session/star_state.h"

#include <gtest/gtest.h>

namespace celestark::drawing {
namespace {

TEST(ProgramFonts, EverySymbolCodeHasItsShape) {
    std::vector<int> missing;
    EXPECT_TRUE(ProgramFonts::instance().symbol_table_complete(missing))
        << "codes without a shape: " << ::testing::PrintToString(missing);
}

// The codes the charts draw, by their meaning: each must give a character of the font files
// (never another font's, so a chart looks the same everywhere) or a shape of our own.
TEST(ProgramFonts, TheChartCodesDrawTheirUnicodeSymbols) {
    const ProgramFonts& fonts = ProgramFonts::instance();
    struct Case {
        unsigned char code;
        char32_t unicode; // 0: a shape of our own
    };
    const Case cases[] = {
        {glyph::sun, U'\u2609'},
        {glyph::moon, U'\u263D'},
        {glyph::mercury, U'\u263F'},
        {glyph::venus, U'\u2640'},
        {glyph::mars, U'\u2642'},
        {glyph::jupiter, U'\u2643'},
        {glyph::saturn, U'\u2644'},
        {glyph::uranus, U'\u2645'},
        {glyph::neptune, U'\u2646'},
        {glyph::chiron, U'\u26B7'},
        {glyph::north_node, U'\u260A'},
        {glyph::south_node, U'\u260B'},
        {glyph::ceres, U'\u26B3'},
        {glyph::pallas, U'\u26B4'},
        {glyph::juno, U'\u26B5'},
        {glyph::vesta, U'\u26B6'},
        {glyph::sedna, U'\u2BF2'},
        {192, U'\u260C'},
        {202, U'\u260D'},
        {198, U'\u25B3'},
        {197, U'\u25A1'},
        {glyph::quaoar, 0},
        {glyph::part_of_fortune, 0},
        {glyph::perigee, 0},
    };
    for (const Case& c : cases) {
        const std::u32string drawn = fonts.unicode_of(ProgramFont::planet_symbols,
                                                      std::string(1, static_cast<char>(c.code)));
        if (c.unicode == 0)
            EXPECT_TRUE(drawn.empty()) << int(c.code) << " should be a shape of our own";
        else
            EXPECT_EQ(drawn, std::u32string(1, c.unicode)) << int(c.code);
    }
    for (int sign = 0; sign < 12; ++sign)
        EXPECT_EQ(fonts.unicode_of(ProgramFont::planet_symbols,
                                   std::string(1, static_cast<char>(sign_glyphs[sign]))),
                  std::u32string(1, static_cast<char32_t>(0x2648 + sign)));
}

TEST(ProgramFonts, TextsDecodeAsUtf8OrTheOldCodePage) {
    const ProgramFonts& fonts = ProgramFonts::instance();
    EXPECT_EQ(fonts.unicode_of(ProgramFont::arial, "Z\xC3\xBCrich"), U"Z\u00FCrich"); // UTF-8
    EXPECT_EQ(fonts.unicode_of(ProgramFont::arial, "Z\xFCrich"), U"Z\u00FCrich");     // cp1252
    EXPECT_EQ(fonts.unicode_of(ProgramFont::arial, "\x80"), U"\u20AC");
    // The Bayer letters of the catalogue in the Greek font.
    EXPECT_EQ(fonts.unicode_of(ProgramFont::greek, "abgq"), U"\u03B1\u03B2\u03B3\u03B8");
}

// Widths follow the design metrics, so they scale with the size and add up over a text.
TEST(ProgramFonts, MeasuresScaleAndAddUp) {
    const ProgramFonts& fonts = ProgramFonts::instance();
    for (ProgramFont f : {ProgramFont::arial, ProgramFont::planet_symbols, ProgramFont::greek}) {
        const TextSize a = fonts.measure(f, 10, "12");
        const TextSize b = fonts.measure(f, 20, "12");
        EXPECT_NEAR(b.width, 2 * a.width, 1e-3);
        EXPECT_NEAR(b.height, 2 * a.height, 1e-3);
        EXPECT_NEAR(fonts.measure(f, 10, "1").width + fonts.measure(f, 10, "2").width, a.width,
                    1e-3);
    }
    // Liberation Sans keeps Arial's widths: "1" is 0.556 of the em.
    EXPECT_NEAR(fonts.measure(ProgramFont::arial, 20, "1").width, 0.556 * 400, 1.0);
}

} // namespace
} // namespace celestark::drawing
