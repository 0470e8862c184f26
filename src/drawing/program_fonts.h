#pragma once
// The program's three fonts, drawn from font files compiled into the program: "ARIAL" from
// Liberation Sans (metric-compatible with Arial), "GreekMathSymbols" from the Greek letters of
// Liberation Sans, "PLANETSYMBOLS" from Noto Sans Symbols and Symbols2, letters of Liberation Sans
// and a few vector shapes of our own. Texts are measured from the fonts' design metrics, so a
// layout is the same on every surface and at every resolution. Needs a QGuiApplication.
#include "drawing/surface.h"

#include <QColor>
#include <QPainterPath>
#include <QPointF>
#include <QRawFont>

#include <array>
#include <string>
#include <string_view>
#include <vector>

class QPainter;

namespace celestark::drawing {

// The font files.
enum class FontFile : int { sans = 0, symbols = 1, symbols2 = 2 };
inline constexpr int font_file_count = 3;

// Shapes of our own, where Unicode or the fonts have none.
enum class Shape : int {
    none = 0,
    quaoar,
    perigee,         // the apogee's mark turned over
    part_of_fortune, // a circle with a saltire
    semisquare,      // an angle of 45 degrees
    ring,            // an open circle
    disc,            // a filled circle
    triangle_up,     // filled
    triangle_down,   // filled
    square,          // filled
    diamond,         // filled
    open_diamond,    //
    six_point_star,  //
    circle_bar,      // a circle with an upright bar
    circle_dot,      // a circle with a dot
    solar_eclipse,   // a disc in a ring
    lunar_eclipse,   // a half-filled circle
    star_cross,      // a four-point star
};

// What one character code of the symbol font draws: up to three characters of a font file,
// squeezed across by `scale_x` and scaled by `scale`, a shape, and a mark beside or around them.
struct GlyphEntry {
    FontFile file = FontFile::sans;
    std::u32string chars;
    Shape shape = Shape::none;
    Shape mark = Shape::none; // a small mark at the top right (variants), or a ring around
    float scale = 1.0f, scale_x = 1.0f;
    bool ring_around = false;
};

// The glyph table of the symbol font: one entry for every character code.
const std::array<GlyphEntry, 256>& symbol_glyphs();
// The Greek letter that a letter of "GreekMathSymbols" stands for (a alpha, b beta, ...), or 0.
char32_t greek_letter_for(unsigned char code);

class ProgramFonts {
  public:
    // The fonts of this process, loaded at the first call.
    static const ProgramFonts& instance();

    // Line metrics of a program font in ems: the top of a text's box lies `ascent` above its
    // baseline, the box is `ascent + descent` high.
    float ascent_em(ProgramFont font) const;
    float descent_em(ProgramFont font) const;
    // The width of a text in ems.
    float width_em(ProgramFont font, std::string_view codes) const;
    TextSize measure(ProgramFont font, float points, std::string_view codes) const;

    // Draws `codes` with the top left of its box at `top_left` (device units), `em` device units
    // to the em, turned counterclockwise by `angle_degrees`. With `outlines` every glyph is
    // filled as a path (SVG); otherwise font glyphs go out as text (PDF keeps them searchable).
    void draw(QPainter& painter, ProgramFont font, QPointF top_left, double em,
              std::string_view codes, const QColor& colour, double angle_degrees,
              bool outlines) const;

    // Whether every code of the symbol table has its shape: a character the font file holds, or
    // a shape of our own. `missing` lists the codes that have not.
    bool symbol_table_complete(std::vector<int>& missing) const;
    // Whether a font file holds a character (no other font is ever asked).
    bool file_has(FontFile file, char32_t c) const;
    // A text of a program font in the Unicode characters it shows (for PDF text and tests).
    std::u32string unicode_of(ProgramFont font, std::string_view codes) const;

  private:
    ProgramFonts();
    struct Piece; // one drawn part of a character
    void pieces(ProgramFont font, std::string_view codes, std::vector<Piece>& out) const;

    std::array<QRawFont, font_file_count> files_; // at a size of one em = 1000 units
    std::array<float, 256> symbol_advance_{}, greek_advance_{};
    std::array<float, 256> latin_advance_{}; // Liberation Sans for Latin-1 code points
    // How a symbol of the Noto fonts is brought to the common size: scale, offsets in ems.
    struct Fit {
        bool fitted = false;
        float scale = 1, dx = 0, dy = 0;
    };
    std::array<Fit, 256> symbol_fit_{};
};

// Decodes a text of the "ARIAL" font: UTF-8 when the bytes are valid UTF-8, otherwise the
// Windows code page of the program's old files (every byte one character).
std::u32string decode_text(std::string_view bytes);

// A stored colour (0x00BBGGRR) as a QColor.
inline QColor to_qcolor(Colour c) {
    return QColor(static_cast<int>(c & 0xFF), static_cast<int>((c >> 8) & 0xFF),
                  static_cast<int>((c >> 16) & 0xFF));
}

} // namespace celestark::drawing
