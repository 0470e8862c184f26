#pragma once
// The drawing surface: the few operations every chart, report and listing page is drawn with, in
// twips (20 to a point of font size), x to the right and y downward. A window canvas, a printer
// page, a PDF, an SVG file, a PNG image and the recording surface of the tests all take the same
// calls; what is drawn where is decided above (drawing/display.h), never here.
#include "session/drawing_state.h"

#include <string_view>

namespace celestark::drawing {

// The program's three fonts by their program names: "ARIAL" for text, "PLANETSYMBOLS" for the
// astrological symbols (one character code a symbol), "GreekMathSymbols" for the Greek letters.
enum class ProgramFont { arial, planet_symbols, greek };
const char* font_name(ProgramFont font);

struct TextSize {
    float width = 0, height = 0;
};

// Line styles as the screen numbers them.
enum LineStyle : int {
    solid = 0,
    dash = 1,
    dot = 2,
    dash_dot = 3,
    dash_dot_dot = 4,
    invisible = 5
};

class Surface {
  public:
    virtual ~Surface() = default;

    // The drawable size in twips, and for a page the printable offsets from its corner.
    virtual float width() const = 0;
    virtual float height() const = 0;
    virtual float left_offset() const { return 0; }
    virtual float top_offset() const { return 0; }
    // True for paper (a printer, a PDF or an image of a page).
    virtual bool is_page() const = 0;

    // Fills the whole surface.
    virtual void clear(Colour ground) = 0;
    // Text in one of the program's fonts with the top left of its box at (x, y); `angle_degrees`
    // turns it counterclockwise about that point.
    virtual void text(ProgramFont font, float points, float x, float y, std::string_view codes,
                      Colour colour, float angle_degrees) = 0;
    // The width of the text and the height of the font's line, twips.
    virtual TextSize measure(ProgramFont font, float points, std::string_view codes) = 0;
    // `width` in pen units: a pixel of the screen, a fine hairline on paper.
    virtual void line(float x1, float y1, float x2, float y2, Colour colour, int style,
                      float width) = 0;
    virtual void circle(float x, float y, float r, Colour colour, float width) = 0;
    virtual void disc(float x, float y, float r, Colour colour) = 0;
    // A filled sector from `from_radians` counterclockwise through `span_radians`, as seen.
    virtual void pie(float x, float y, float r, float from_radians, float span_radians,
                     Colour colour) = 0;

    // Tells the surface which primitive issues the next calls (the recording surface keeps it).
    virtual void note_primitive(std::string_view) {}

    // Pages. The setup dialog of a printer: false when the user cancelled it.
    virtual bool setup_dialog() { return true; }
    virtual void begin_document() {}
    virtual void end_page() {}
    virtual void end_document() {}
};

} // namespace celestark::drawing
