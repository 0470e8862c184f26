#include "drawing/display.h"

#include "session/colour_fields.h"
#include "session/constants.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/option_store.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace celestark::drawing {

namespace {

constexpr double one_degree = deg_to_rad;

std::string ck(int code) {
    return "CK" + std::to_string(code) + "-" + fatal_tail;
}

// The glyph colour table: the colour field of each code in the inside and outside columns, and
// of the sign glyphs on the band; -1 where the table names no colour for a code.
struct ColourColumns {
    std::array<std::int16_t, 256> inside, outside, band;
};

constexpr ColourColumns make_colour_columns() {
    ColourColumns t{};
    for (int i = 0; i < 256; ++i) t.inside[i] = t.outside[i] = t.band[i] = -1;
    namespace f = colour_field;
    auto both = [&](int code, int in, int out) {
        t.inside[code] = static_cast<std::int16_t>(in);
        t.outside[code] = static_cast<std::int16_t>(out);
    };
    for (int c : {161, 123, 124}) both(c, f::sun, f::sun_o);
    for (int c : {162, 225, 191}) both(c, f::moon, f::moon_o);
    both(163, f::mercury, f::mercury_o);
    both(164, f::venus, f::venus_o);
    both(171, f::earth, f::earth_o);
    for (int i = 0; i < 6; ++i) both(165 + i, f::mars + i, f::mars_o + i);
    for (int i = 0; i < 12; ++i) {
        both(209 + i, f::aries_i + i, f::aries_o + i);
        t.band[209 + i] = static_cast<std::int16_t>(f::aries_g + i);
    }
    for (int c : {172, 173}) both(c, f::chiron, f::chiron_o);
    both(224, f::sedna, f::sedna_o);
    both(223, f::quaoar, f::quaoar_o);
    for (int c : {240, 241}) both(c, f::mc, f::mc_o);
    for (int c : {238, 239}) both(c, f::ascendant, f::ascendant_o);
    for (int c : {180, 181, 246, 247}) both(c, f::Perigee, f::perigee_o);
    for (int c : {176, 177, 244, 245}) both(c, f::node, f::node_o);
    both(192, f::conjunction, f::conjunction_o);
    t.inside[230] = t.inside[231] = f::conjunction; // outside: 192 only
    both(193, f::Semisextile, f::semisextile_o);
    both(194, f::semisquare, f::semisquare_o);
    both(195, f::sextile, f::sextile_o);
    both(196, f::quintile, f::quintile_o);
    both(197, f::Square, f::square_o);
    t.inside[232] = t.inside[233] = f::Square; // outside: 197 only
    both(198, f::trine, f::trine_o);
    both(199, f::sesquiquadrate, f::sesquiquadrate_o);
    both(200, f::biquintile, f::biquintile_o);
    both(201, f::quincunx, f::quincunx_o);
    both(202, f::opposition, f::opposition_o);
    for (int c : {203, 204, 205}) both(c, f::septile, f::septile_o);
    for (int c : {206, 207, 208}) both(c, f::Nonile, f::nonile_o);
    for (int c : {226, 227, 228, 229}) both(c, f::asteroids, f::asteroids_outside);
    return t;
}

constexpr ColourColumns colour_columns = make_colour_columns();

} // namespace

int glyph_colour_field(unsigned char code, GlyphColumn column) {
    switch (column) {
    case GlyphColumn::inside:
        return colour_columns.inside[code];
    case GlyphColumn::outside:
        return colour_columns.outside[code];
    case GlyphColumn::band:
        return colour_columns.band[code];
    }
    return -1;
}

Surface* Canvases::window(std::string_view target) const {
    if (target == "Chart") return chart;
    if (target == "AB") return ab;
    if (target == "Listings") return listings;
    if (target == "Similars") return similars;
    if (target == "Phenomena") return phenomena;
    return nullptr;
}

bool Canvases::knows(std::string_view target) const {
    return target == "Chart" || target == "AB" || target == "Listings" || target == "Similars" ||
           target == "Phenomena";
}

Drawing::Drawing(Session& session, Canvases& c) : s(session), d(session.drawing), canvases(c) {}

void Drawing::read_page_options() {
    PageOptions& o = d.page_options;
    auto general = [&](const char* field) {
        return read_option(s, store::general_options_table, field);
    };
    o.print_colour = general("option_print_colour").as_int() != 0;
    o.screen_line_width = static_cast<int>(general("option_screen_line_width").as_int());
    o.printer_line_width = static_cast<int>(general("option_printer_line_width").as_int());
    o.lat_long_secs = general("option_lat_long_secs").as_int() != 0;
    o.user_name = general("user_name").as_text();
    o.display_ecliptic = general("display_ecliptic").as_int() != 0;
    o.display_equator = general("display_equator").as_int() != 0;
    o.display_horizon = general("display_horizon").as_int() != 0;
    o.display_meridian = general("display_meridian").as_int() != 0;
    o.star_zodiac_width = static_cast<int>(general("star_zodiac_width").as_int());
    o.prenatal_sectors =
        read_option(s, store::chart_options_table, "prenatal_sectors").as_int() != 0;
    // Without an option record (a session started bare) the options keep their first values.
    if (!s.stores) o = PageOptions{};
}

Surface* Drawing::surface(int code, const char* title) {
    if (d.printing) return canvases.printer;
    if (!canvases.knows(d.display_target)) {
        session_fatal_box(s, title, ck(code));
        return nullptr;
    }
    return canvases.window(d.display_target);
}

bool Drawing::monochrome() const {
    return s.option_sets.colours.name == "None" || !d.page_options.print_colour;
}

Colour Drawing::colour(int field) const {
    return static_cast<Colour>(s.option_sets.colours.values[static_cast<std::size_t>(field)]) &
           0xFFFFFF;
}

Colour Drawing::text_colour() const {
    if (monochrome()) return d.printing ? colour_black : colour_white;
    return colour(colour_field::text_inside);
}

namespace {

bool in_glyphs(unsigned char code, const unsigned char* glyphs, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        if (glyphs[i] != 0 && glyphs[i] == code) return true;
    return false;
}

// The colour of one symbol code by the table, in order: the fixed rows, then the glyphs of the
// stars in use, then plain text.
int glyph_field(const Session& s, unsigned char code, GlyphColumn column) {
    const int field = glyph_colour_field(code, column);
    if (field >= 0) return field;
    if (column == GlyphColumn::band) return colour_field::text_inside;
    const auto& stars = s.stars;
    if (in_glyphs(code, stars.star_glyphs.data(), stars.star_glyphs.size()) ||
        in_glyphs(code, stars.star_zodiac_glyphs.data(), stars.star_zodiac_glyphs.size()))
        return column == GlyphColumn::inside ? colour_field::stars_in_charts
                                             : colour_field::stars_in_charts_outside;
    return column == GlyphColumn::inside ? colour_field::text_inside : colour_field::text_outside;
}

} // namespace

Colour Drawing::glyph_colour(std::string_view text) const {
    if (monochrome()) return d.printing ? colour_black : colour_white;
    if (text.empty()) return colour(colour_field::text_inside);
    return colour(glyph_field(s, static_cast<unsigned char>(text[0]), GlyphColumn::inside));
}

void Drawing::load_active_colour_set() {
    const std::string& wanted = d.printing ? s.chart.print_colour_set : s.chart.display_colour_set;
    if (!wanted.empty() && wanted != s.option_sets.colours.name) {
        if (wanted == "None")
            clear_colour_set(s.option_sets.colours);
        else
            load_colour_set(s, wanted, session_sink(s));
    }
    (d.printing ? d.loaded_print_set : d.loaded_display_set) = s.option_sets.colours.name;
    if (!monochrome()) {
        d.line_colour_inside = colour(colour_field::Lines_inside);
        d.line_colour_outside = colour(colour_field::lines_outside);
    } else {
        // The reverse of the text rule; display_line puts the right colour in monochrome.
        d.line_colour_inside = d.line_colour_outside = d.printing ? colour_white : colour_black;
    }
}

void Drawing::initialise_display(float& width, float& height) {
    Surface* out = nullptr;
    if (d.printing) {
        out = canvases.printer;
    } else if (canvases.knows(d.display_target)) {
        out = canvases.window(d.display_target);
    } else {
        session_fatal_box(s, "Fatal Error in INITIALISE DISPLAY",
                          "CK62-Error 5 - Unknown display target " + d.display_target + ". " +
                              fatal_tail);
        width = height = 0;
        return;
    }
    if (!out) {
        width = height = 0;
        return;
    }
    out->note_primitive("initialise_display");
    width = out->width();
    height = out->height();
    if (!d.printing) {
        out->clear(d.display_target == "Chart" ? chart_window_ground : colour_white);
        // The chart window keeps room below the chart for its buttons.
        if (d.display_target == "Chart") height *= 0.95f;
    }
}

void Drawing::initialise_frame() {
    float width = 0, height = 0;
    initialise_display(width, height);
    d.surface_width = width;
    d.surface_height = height;
    if (!d.printing) {
        const float mx = width * 1.0f / 100, my = height * 1.0f / 100;
        d.frame_left = mx;
        d.frame_right = width - mx;
        d.frame_top = my;
        d.frame_bottom = height - my;
    } else {
        Surface* p = canvases.printer;
        const float left = p ? p->left_offset() : 0, top = p ? p->top_offset() : 0;
        d.frame_left = left + 10;
        d.frame_right = d.frame_left + width - 10;
        d.frame_top = top + 10;
        d.frame_bottom = d.frame_top + height;
        const float w = d.frame_right - d.frame_left, h = d.frame_bottom - d.frame_top;
        // A page proportion of 1.4.
        if (d.portrait_page) {
            if (w * 1.4f < h)
                d.frame_bottom = d.frame_top + w * 1.4f;
            else
                d.frame_right = d.frame_left + h / 1.4f;
        } else {
            if (h * 1.4f < w)
                d.frame_right = d.frame_left + h * 1.4f;
            else
                d.frame_bottom = d.frame_top + w / 1.4f;
        }
    }
    d.page_right = d.frame_right;
    d.page_top = d.frame_top;
    d.page_bottom = d.frame_bottom;
    if (d.printing) {
        if (d.screen_page == "star calender") d.frame_left += width / 10;
        if (d.screen_page != "star calender" && d.screen_page != "planetary listing" &&
            d.screen_page != "aspects listing")
            page_footer();
    }
    d.page_left = d.frame_left;
}

void Drawing::page_footer() {
    std::string stamp = d.print_time_stamp;
    if (stamp.empty()) {
        const std::time_t now = std::time(nullptr);
        char buf[32];
        std::strftime(buf, sizeof buf, "%d/%m/%Y %H:%M:%S", std::localtime(&now));
        stamp = buf;
    }
    const std::string text = "Celestark Chart by: " + d.page_options.user_name + " - T:" + stamp;
    const float size = (d.page_right - d.frame_left) / 1100 * 0.9f;
    display_font_size(size > 0.01f ? size : 6.0f);
    float w = 0, h = 0;
    display_text_w_h(text, 1.0f, w, h);
    display_text_outside(d.frame_left, d.page_bottom - h, text);
}

void Drawing::display_font_size(float size) {
    Surface* out = surface(56, "Fatal Error in DISPLAY FONT SIZE");
    (void)out;
    if (!(size >= 0.01f)) {
        char value[32];
        std::snprintf(value, sizeof value, "%g", static_cast<double>(size));
        session_sink(s).message("FONT SIZE ERROR",
                                std::string("Font Size = ") + value + "\n" +
                                    "Please report this error to Ivan Marlowe giving full details "
                                    "of the preceeding steps\n" +
                                    "Click OK to continue",
                                MessageIcon::information);
        size = 6.0f;
    }
    d.current_font_size = size;
    if (!d.printing && d.display_target == "Chart")
        d.current_font_size_whole = static_cast<int>(std::lround(size));
}

void Drawing::display_line_width(float factor) {
    // The target test of this primitive knows the listing window as "listings", in small
    // letters, so a call on "Listings" fails: listing pages never set a line width.
    if (!d.printing && d.display_target != "Chart" && d.display_target != "AB" &&
        d.display_target != "listings" && d.display_target != "Similars" &&
        d.display_target != "Phenomena") {
        session_fatal_box(s, "Fatal Error in DISPLAY LINE WIDTH", ck(58));
        return;
    }
    const int minimum =
        d.printing ? d.page_options.printer_line_width : d.page_options.screen_line_width;
    const double w = std::nearbyint(static_cast<double>(minimum) * factor);
    pen_width_ = static_cast<float>(clamp_i16(w));
}

void Drawing::draw_rotated(Surface& out, ProgramFont font, std::string_view text, Colour colour) {
    // The offset from the top left of the text to the middle of its box, a square of the font's
    // height, turned through the angle (worked with y upward, as angles count) and taken off the
    // point, so that the middle of the turned glyph stands on the point.
    const double height = std::sqrt(std::pow(static_cast<double>(d.current_font_size) * 20, 2));
    const double dx = std::trunc(height * std::cos(45 * one_degree) * 0.5);
    const double dy = std::trunc(-height * std::sin(45 * one_degree) * 0.5);
    const double a = d.rotate_angle * one_degree;
    const double rx = std::floor(dx * std::cos(a) - dy * std::sin(a) + 0.5);
    const double ry = std::floor(dx * std::sin(a) + dy * std::cos(a) + 0.5);
    out.text(font, d.current_font_size, static_cast<float>(d.rotate_x - rx),
             static_cast<float>(d.rotate_y + ry), text, colour, static_cast<float>(d.rotate_angle));
}

void Drawing::glyph_text(float x, float y, std::string_view text, GlyphColumn column, int code,
                         const char* title, const char* primitive) {
    Surface* out = surface(code, title);
    if (!out) return;
    out->note_primitive(primitive);
    const bool rotated = d.rotate_text == 1 && (d.printing || d.display_target == "Chart");
    if (monochrome()) {
        d.current_colour = d.printing ? colour_black : colour_white;
        if (rotated)
            draw_rotated(*out, ProgramFont::planet_symbols, text, d.current_colour);
        else
            out->text(ProgramFont::planet_symbols, d.current_font_size, x, y, text,
                      d.current_colour, 0);
        return;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view one = text.substr(i, 1);
        d.current_colour = colour(glyph_field(s, static_cast<unsigned char>(text[i]), column));
        if (rotated)
            draw_rotated(*out, ProgramFont::planet_symbols, one, d.current_colour);
        else
            out->text(ProgramFont::planet_symbols, d.current_font_size, x, y, one, d.current_colour,
                      0);
        float w = 0, h = 0;
        display_symbol_w_h(one, 1.0f, w, h);
        x += w;
        out->note_primitive(primitive);
    }
}

void Drawing::display_glyph_inside(float x, float y, std::string_view text) {
    glyph_text(x, y, text, GlyphColumn::inside, 44, "Fatal Error in DISPLAY GLYPH INSIDE",
               "display_glyph_inside");
}

void Drawing::display_glyph_outside(float x, float y, std::string_view text) {
    glyph_text(x, y, text, GlyphColumn::outside, 46, "Fatal Error in DISPLAY GLYPH outside",
               "display_glyph_outside");
}

void Drawing::display_band_glyph(float x, float y, std::string_view text) {
    glyph_text(x, y, text, GlyphColumn::band, 48, "Fatal Error in DISPLAY GLYPH INSIDE",
               "display_band_glyph");
}

void Drawing::plain_text(float x, float y, std::string_view text, ProgramFont font, Colour colour,
                         int code, const char* title, const char* primitive) {
    Surface* out = surface(code, title);
    if (!out) return;
    out->note_primitive(primitive);
    if (monochrome()) colour = d.printing ? colour_black : colour_white;
    d.current_colour = colour;
    if (font == ProgramFont::planet_symbols && d.rotate_text == 1 &&
        (d.printing || d.display_target == "Chart"))
        draw_rotated(*out, font, text, colour);
    else
        out->text(font, d.current_font_size, x, y, text, colour, 0);
}

void Drawing::display_symbol_inside(float x, float y, std::string_view text, Colour c) {
    plain_text(x, y, text, ProgramFont::planet_symbols, c, 53, "Fatal Error in DISPLAY TEXT INSIDE",
               "display_symbol_inside");
}

void Drawing::display_name_outside(float x, float y, std::string_view text) {
    plain_text(x, y, text, ProgramFont::arial, colour(colour_field::name_outside), 49,
               "Fatal Error in DISPLAY NAME OUTSIDE", "display_name_outside");
}

void Drawing::display_text_outside(float x, float y, std::string_view text) {
    plain_text(x, y, text, ProgramFont::arial, colour(colour_field::text_outside), 51,
               "Fatal Error in DISPLAY TEXT OUTSIDE", "display_text_outside");
}

void Drawing::display_greek_outside(float x, float y, std::string_view text) {
    plain_text(x, y, text, ProgramFont::greek, colour(colour_field::text_outside), 50,
               "Fatal Error in DISPLAY TEXT OUTSIDE", "display_greek_outside");
}

void Drawing::display_text_inside(float x, float y, std::string_view text) {
    plain_text(x, y, text, ProgramFont::arial, colour(colour_field::text_inside), 52,
               "Fatal Error in DISPLAY TEXT INSIDE", "display_text_inside");
}

void Drawing::display_circle(float x, float y, float radius, Colour c) {
    Surface* out = surface(54, "Fatal Error in DISPLAY CIRCLE");
    if (!out) return;
    out->note_primitive("display_circle");
    if (monochrome()) c = d.printing ? colour_black : colour_white;
    out->circle(x, y, radius, c, pen_width_);
}

void Drawing::display_filled_circle(float x, float y, float radius, Colour c) {
    Surface* out = surface(55, "Fatal Error in DISPLAY CIRCLE");
    if (!out || monochrome()) return;
    out->note_primitive("display_filled_circle");
    out->disc(x, y, radius, c);
}

void Drawing::display_arc(float x, float y, float radius, float start, float end, Colour c) {
    Surface* out = surface(41, "Fatal Error in DISPLAY ARC");
    if (!out) return;
    out->note_primitive("display_arc");
    // The angles are counted clockwise as seen (both surfaces of the program turn them over);
    // each is brought into 0 to 2 pi and the sector between them is drawn, 0.05 degrees short at
    // its end counterclockwise so that a band of touching sectors never paints over a
    // neighbour's edge. Two equal angles give the whole circle, less those 0.05 degrees.
    auto reduce = [](double a) {
        a = std::fmod(a, two_pi);
        return a < 0 ? a + two_pi : a;
    };
    double a = reduce(start), b = reduce(end);
    double span = reduce(b - a);
    if (span > pi) { // the sector lies the other way round from a
        std::swap(a, b);
        span = two_pi - span;
    }
    if (span == 0) span = two_pi;
    // As seen, counterclockwise from the mirror of its far end.
    const double from = reduce(two_pi - a - span);
    span -= 0.05 * one_degree;
    out->pie(x, y, radius, static_cast<float>(from), static_cast<float>(span), c);
}

void Drawing::display_line(float x1, float x2, float y1, float y2, Colour c, int style) {
    Surface* out = surface(57, "Fatal Error in DISPLAY LINE");
    if (!out) return;
    out->note_primitive("display_line");
    if (monochrome()) c = d.printing ? colour_black : colour_white;
    // The printer numbers its pens otherwise; a style it does not know draws solid.
    if (d.printing && (style < 0 || style > 5)) style = solid;
    out->line(x1, y1, x2, y2, c, style, pen_width_);
}

void Drawing::display_radial_line(float cx, float cy, float r1, float r2, float a1, float a2,
                                  Colour c) {
    const double dir = s.chart.zodiac_direction < 0 ? -1.0 : 1.0;
    const double x1 = cx + r1 * std::cos(a1) * dir, y1 = cy - r1 * std::sin(a1);
    const double x2 = cx + r2 * std::cos(a2) * dir, y2 = cy - r2 * std::sin(a2);
    display_line(static_cast<float>(x1), static_cast<float>(x2), static_cast<float>(y1),
                 static_cast<float>(y2), c, solid);
}

void Drawing::measure(int code, ProgramFont font, std::string_view text, float factor, float& width,
                      float& height) {
    Surface* out = surface(code, "Fatal Error in DISPLAY TEXT W H");
    if (!out) {
        width = height = 0;
        return;
    }
    const TextSize size = out->measure(font, d.current_font_size, text);
    width = size.width;
    height = size.height * factor;
}

void Drawing::display_text_w_h(std::string_view text, float factor, float& width, float& height) {
    measure(59, ProgramFont::arial, text, factor, width, height);
}

void Drawing::display_symbol_w_h(std::string_view text, float factor, float& width, float& height) {
    measure(60, ProgramFont::planet_symbols, text, factor, width, height);
}

void Drawing::end_page() {
    if (Surface* out = d.printing ? canvases.printer : canvases.window(d.display_target))
        out->end_page();
}

float mixed_text_width(Drawing& g, std::string_view text) {
    const auto symbol = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
    float total = 0;
    std::size_t i = 0;
    while (i < text.size()) {
        const bool symbols = symbol(text[i]);
        std::size_t j = i;
        while (j < text.size() && symbol(text[j]) == symbols) ++j;
        float w = 0, h = 0;
        if (symbols)
            g.display_symbol_w_h(text.substr(i, j - i), 1.0f, w, h);
        else
            g.display_text_w_h(text.substr(i, j - i), 1.0f, w, h);
        total += w;
        i = j;
    }
    return total;
}

float text_width(Drawing& g, const std::string& text) {
    float w = 0, h = 0;
    g.display_text_w_h(text, 1.0f, w, h);
    return w;
}

float line_height(Drawing& g) {
    float w = 0, h = 0;
    g.display_text_w_h("Ag", 1.0f, w, h);
    return h;
}

} // namespace celestark::drawing
