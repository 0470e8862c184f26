#pragma once
// The recording surface: keeps every drawing call with the primitive that issued it, its font,
// character codes, position, measured box and colour, and passes the call on to another surface
// when it has one. Tests read the calls; `celestark-cli render --layout` writes them as JSON.
#include "drawing/surface.h"

#include <string>
#include <vector>

namespace celestark::drawing {

struct DrawCall {
    enum class Kind { clear, text, line, circle, disc, pie, end_page } kind = Kind::text;
    std::string primitive; // the primitive that issued it, e.g. "display_glyph_inside"
    ProgramFont font = ProgramFont::arial;
    float points = 0;
    std::string codes;
    float x = 0, y = 0, w = 0, h = 0; // text: the top left of the measured box and its size
    float x2 = 0, y2 = 0;             // line: the second end (x, y is the first)
    float r = 0;                      // circle, disc, pie: x, y is the centre
    float from = 0, span = 0;         // pie, radians
    float angle = 0;                  // text, degrees counterclockwise
    float width = 0;                  // pen units
    int style = 0;
    Colour colour = 0;
};

class RecordingSurface : public Surface {
  public:
    // Without an inner surface the recording stands alone, `width` by `height` twips.
    RecordingSurface(float width, float height, bool page, Surface* inner = nullptr);

    float width() const override;
    float height() const override;
    float left_offset() const override;
    float top_offset() const override;
    bool is_page() const override;
    void clear(Colour ground) override;
    void text(ProgramFont font, float points, float x, float y, std::string_view codes,
              Colour colour, float angle_degrees) override;
    TextSize measure(ProgramFont font, float points, std::string_view codes) override;
    void line(float x1, float y1, float x2, float y2, Colour colour, int style,
              float width) override;
    void circle(float x, float y, float r, Colour colour, float width) override;
    void disc(float x, float y, float r, Colour colour) override;
    void pie(float x, float y, float r, float from_radians, float span_radians,
             Colour colour) override;
    void note_primitive(std::string_view name) override;
    bool setup_dialog() override;
    void begin_document() override;
    void end_page() override;
    void end_document() override;

    const std::vector<DrawCall>& calls() const { return calls_; }
    void forget() { calls_.clear(); }
    // The surface the calls pass on to (null: none).
    void set_inner(Surface* inner) { inner_ = inner; }
    // The page could be cancelled by the test: the answer of the next setup dialog.
    bool setup_answer = true;

    // The calls as a JSON array of objects (op, geometry in twips, font, codes, colour).
    std::string json() const;

  private:
    DrawCall& add(DrawCall::Kind kind, Colour colour);
    float width_, height_;
    bool page_;
    Surface* inner_;
    std::string primitive_;
    std::vector<DrawCall> calls_;
};

// "#RRGGBB" of a stored colour.
std::string colour_hex(Colour c);

} // namespace celestark::drawing
