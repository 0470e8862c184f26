#pragma once
// The drawing primitives every page is written with. A primitive looks at `printing` and
// `display_target` and sends its call to the printer or to the window of the target; it picks
// colours from the colour set in force (glyph by glyph for symbol texts), or black on paper and
// white on screen in monochrome.
#include "drawing/surface.h"

#include <string>
#include <string_view>

namespace celestark {
struct Session;
class MessageSink;
} // namespace celestark

namespace celestark::drawing {

// The surfaces pages go to: the printer, and the window of each display target.
struct Canvases {
    Surface* printer = nullptr;
    Surface* chart = nullptr;     // "Chart": chart_display
    Surface* ab = nullptr;        // "AB": ab_display
    Surface* listings = nullptr;  // "Listings": LISTINGS_DISPLAY
    Surface* similars = nullptr;  // "Similars": similars_display
    Surface* phenomena = nullptr; // "Phenomena": phenomena_display
    // The window of a target word; null for a word no window has.
    Surface* window(std::string_view target) const;
    bool knows(std::string_view target) const;
};

// Which column of the glyph colour table a symbol text takes.
enum class GlyphColumn { inside, outside, band };

class Drawing {
  public:
    Drawing(Session& session, Canvases& canvases);

    Session& s;
    DrawingState& d;
    Canvases& canvases;

    // Reads the options the primitives use from the option record (once a page).
    void read_page_options();

    void initialise_display(float& width, float& height);
    void initialise_frame();
    void display_font_size(float size);
    void display_line_width(float factor);
    void display_glyph_inside(float x, float y, std::string_view text);
    void display_glyph_outside(float x, float y, std::string_view text);
    void display_band_glyph(float x, float y, std::string_view text);
    void display_symbol_inside(float x, float y, std::string_view text, Colour colour);
    void display_name_outside(float x, float y, std::string_view text);
    void display_text_outside(float x, float y, std::string_view text);
    void display_greek_outside(float x, float y, std::string_view text);
    void display_text_inside(float x, float y, std::string_view text);
    void display_circle(float x, float y, float radius, Colour colour);
    void display_filled_circle(float x, float y, float radius, Colour colour);
    void display_arc(float x, float y, float radius, float start, float end, Colour colour);
    // Note the order of the arguments: x1, x2, y1, y2.
    void display_line(float x1, float x2, float y1, float y2, Colour colour, int style);
    void display_radial_line(float cx, float cy, float r1, float r2, float a1, float a2,
                             Colour colour);
    void display_text_w_h(std::string_view text, float factor, float& width, float& height);
    void display_symbol_w_h(std::string_view text, float factor, float& width, float& height);
    Colour glyph_colour(std::string_view text) const;
    Colour text_colour() const;

    // The colour set name "None", or colour printing switched off.
    bool monochrome() const;
    // A field of the colour set in force.
    Colour colour(int field) const;
    // Loads the print set when printing, else the display set, when it differs from the one
    // loaded; then the line colours.
    void load_active_colour_set();

    // The surface the next call goes to (the printer when printing); null after the fatal error
    // of an unknown target word, raised with the primitive's code and title.
    Surface* surface(int code, const char* title);
    // A whole picture in the page's frame has been given to the surface: the page ends.
    void end_page();
    // The line at the foot of a printed page: "Celestark Chart by: " the user, " - T:" the time.
    void page_footer();

  private:
    void glyph_text(float x, float y, std::string_view text, GlyphColumn column, int code,
                    const char* title, const char* primitive);
    void plain_text(float x, float y, std::string_view text, ProgramFont font, Colour colour,
                    int code, const char* title, const char* primitive);
    void measure(int code, ProgramFont font, std::string_view text, float factor, float& width,
                 float& height);
    // A text turned by `rotate_angle` about the point (`rotate_x`, `rotate_y`).
    void draw_rotated(Surface& surface, ProgramFont font, std::string_view text, Colour colour);
    float pen_width_ = 1;
};

// The colour slot (a field of the colour set) of a symbol code in a column of the table, or -1
// for a code the table does not name (the stars and plain text are decided by the caller).
int glyph_colour_field(unsigned char code, GlyphColumn column);

// The width of a text that mixes letters and symbol codes (at or above 128), at the size 1: each
// run measured in its own font.
float mixed_text_width(Drawing& g, std::string_view text);
// The width of a text in the text font at the size 1, and the height of a line of it.
float text_width(Drawing& g, const std::string& text);
float line_height(Drawing& g);

} // namespace celestark::drawing
