#include "drawing/recording_surface.h"

#include "drawing/program_fonts.h"

#include <cstdio>

namespace celestark::drawing {

RecordingSurface::RecordingSurface(float width, float height, bool page, Surface* inner)
    : width_(width), height_(height), page_(page), inner_(inner) {}

float RecordingSurface::width() const {
    return inner_ ? inner_->width() : width_;
}
float RecordingSurface::height() const {
    return inner_ ? inner_->height() : height_;
}
float RecordingSurface::left_offset() const {
    return inner_ ? inner_->left_offset() : 0;
}
float RecordingSurface::top_offset() const {
    return inner_ ? inner_->top_offset() : 0;
}
bool RecordingSurface::is_page() const {
    return inner_ ? inner_->is_page() : page_;
}

DrawCall& RecordingSurface::add(DrawCall::Kind kind, Colour colour) {
    DrawCall& c = calls_.emplace_back();
    c.kind = kind;
    c.primitive = primitive_;
    c.colour = colour;
    return c;
}

void RecordingSurface::note_primitive(std::string_view name) {
    primitive_ = name;
    if (inner_) inner_->note_primitive(name);
}

void RecordingSurface::clear(Colour ground) {
    add(DrawCall::Kind::clear, ground);
    if (inner_) inner_->clear(ground);
}

void RecordingSurface::text(ProgramFont font, float points, float x, float y,
                            std::string_view codes, Colour colour, float angle_degrees) {
    DrawCall& c = add(DrawCall::Kind::text, colour);
    c.font = font;
    c.points = points;
    c.codes = codes;
    c.x = x;
    c.y = y;
    const TextSize size = measure(font, points, codes);
    c.w = size.width;
    c.h = size.height;
    c.angle = angle_degrees;
    if (inner_) inner_->text(font, points, x, y, codes, colour, angle_degrees);
}

TextSize RecordingSurface::measure(ProgramFont font, float points, std::string_view codes) {
    return ProgramFonts::instance().measure(font, points, codes);
}

void RecordingSurface::line(float x1, float y1, float x2, float y2, Colour colour, int style,
                            float width) {
    DrawCall& c = add(DrawCall::Kind::line, colour);
    c.x = x1;
    c.y = y1;
    c.x2 = x2;
    c.y2 = y2;
    c.style = style;
    c.width = width;
    if (inner_) inner_->line(x1, y1, x2, y2, colour, style, width);
}

void RecordingSurface::circle(float x, float y, float r, Colour colour, float width) {
    DrawCall& c = add(DrawCall::Kind::circle, colour);
    c.x = x;
    c.y = y;
    c.r = r;
    c.width = width;
    if (inner_) inner_->circle(x, y, r, colour, width);
}

void RecordingSurface::disc(float x, float y, float r, Colour colour) {
    DrawCall& c = add(DrawCall::Kind::disc, colour);
    c.x = x;
    c.y = y;
    c.r = r;
    if (inner_) inner_->disc(x, y, r, colour);
}

void RecordingSurface::pie(float x, float y, float r, float from_radians, float span_radians,
                           Colour colour) {
    DrawCall& c = add(DrawCall::Kind::pie, colour);
    c.x = x;
    c.y = y;
    c.r = r;
    c.from = from_radians;
    c.span = span_radians;
    if (inner_) inner_->pie(x, y, r, from_radians, span_radians, colour);
}

bool RecordingSurface::setup_dialog() {
    return inner_ ? inner_->setup_dialog() : setup_answer;
}
void RecordingSurface::begin_document() {
    if (inner_) inner_->begin_document();
}
void RecordingSurface::end_page() {
    add(DrawCall::Kind::end_page, 0);
    if (inner_) inner_->end_page();
}
void RecordingSurface::end_document() {
    if (inner_) inner_->end_document();
}

std::string colour_hex(Colour c) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "#%02X%02X%02X", static_cast<unsigned>(c & 0xFF),
                  static_cast<unsigned>((c >> 8) & 0xFF), static_cast<unsigned>((c >> 16) & 0xFF));
    return buf;
}

namespace {

void number(std::string& out, const char* key, double v) {
    char buf[48];
    std::snprintf(buf, sizeof buf, ",\"%s\":%.1f", key, v);
    out += buf;
}

const char* kind_name(DrawCall::Kind k) {
    switch (k) {
    case DrawCall::Kind::clear:
        return "clear";
    case DrawCall::Kind::text:
        return "text";
    case DrawCall::Kind::line:
        return "line";
    case DrawCall::Kind::circle:
        return "circle";
    case DrawCall::Kind::disc:
        return "disc";
    case DrawCall::Kind::pie:
        return "arc";
    case DrawCall::Kind::end_page:
        return "end_page";
    }
    return "";
}

} // namespace

std::string RecordingSurface::json() const {
    std::string out = "[\n";
    bool first = true;
    for (const DrawCall& c : calls_) {
        if (!first) out += ",\n";
        first = false;
        out += "{\"op\":\"";
        out += c.primitive.empty() ? kind_name(c.kind) : c.primitive;
        out += "\",\"kind\":\"";
        out += kind_name(c.kind);
        out += '"';
        switch (c.kind) {
        case DrawCall::Kind::text: {
            out += ",\"font\":\"";
            out += font_name(c.font);
            out += "\",\"codes\":[";
            for (std::size_t i = 0; i < c.codes.size(); ++i) {
                if (i) out += ',';
                out += std::to_string(static_cast<unsigned char>(c.codes[i]));
            }
            out += ']';
            number(out, "x", c.x);
            number(out, "y", c.y);
            number(out, "w", c.w);
            number(out, "h", c.h);
            number(out, "size", c.points);
            if (c.angle != 0) number(out, "angle", c.angle);
            break;
        }
        case DrawCall::Kind::line:
            number(out, "x1", c.x);
            number(out, "y1", c.y);
            number(out, "x2", c.x2);
            number(out, "y2", c.y2);
            out += ",\"style\":" + std::to_string(c.style);
            break;
        case DrawCall::Kind::circle:
        case DrawCall::Kind::disc:
        case DrawCall::Kind::pie:
            number(out, "x", c.x);
            number(out, "y", c.y);
            number(out, "r", c.r);
            if (c.kind == DrawCall::Kind::pie) {
                number(out, "from_deg", c.from * 57.29577951308232);
                number(out, "span_deg", c.span * 57.29577951308232);
            }
            break;
        case DrawCall::Kind::clear:
        case DrawCall::Kind::end_page:
            break;
        }
        if (c.kind != DrawCall::Kind::end_page)
            out += ",\"colour\":\"" + colour_hex(c.colour) + '"';
        out += '}';
    }
    out += "\n]\n";
    return out;
}

} // namespace celestark::drawing
