#include "drawing/report_frame.h"

#include "drawing/page_furniture.h"
#include "session/colour_fields.h"
#include "session/session.h"

#include <algorithm>

namespace celestark::drawing {

float ReportFrame::room() const {
    return std::max(1.0f, right - left);
}

ReportFrame report_frame(const Surface& out, bool paper, float screen_margin, float head_divisor) {
    ReportFrame r;
    const float W = out.width(), H = out.height();
    const float f = paper ? 0.05f : screen_margin;
    r.left = out.left_offset() + W * f;
    r.right = out.left_offset() + W * (1 - f);
    r.top = out.top_offset() + H * f;
    r.bottom = out.top_offset() + H - H * f * (paper ? 1.5f : 1.0f);
    r.head_font = std::max(0.01f, r.room() / head_divisor);
    return r;
}

float report_title(Drawing& g, const ReportFrame& f, float head_font, const std::string& title,
                   int page, bool draw, TitleText kind) {
    DrawingState& d = g.d;
    g.display_font_size(head_font);
    const float line = line_height(g);
    if (draw) {
        const std::string number = "Page " + std::to_string(page);
        const float number_w = text_width(g, number);
        const float title_room = f.right - f.left - number_w - text_width(g, "    ");
        const float title_w =
            kind == TitleText::mixed ? mixed_text_width(g, title) : text_width(g, title);
        if (title_w > title_room && title_room > 0)
            g.display_font_size(std::max(0.01f, head_font * title_room / title_w));
        switch (kind) {
        case TitleText::plain:
            g.display_text_outside(f.left, f.top, title);
            break;
        case TitleText::mixed:
            draw_mixed_outside(g, f.left, f.top, title);
            break;
        case TitleText::name:
            g.display_name_outside(f.left, f.top, title);
            break;
        }
        g.display_font_size(head_font);
        g.display_text_outside(f.right - number_w, f.top, number);
    }
    const float y = f.top + line * 1.15f;
    if (draw) g.display_line(f.left, f.right, y, y, d.line_colour_outside, solid);
    return y + line * 0.3f;
}

float report_column_heads(Drawing& g, const ReportFrame& f, float y, float font,
                          const std::vector<std::string>& heads, const float* stops,
                          std::size_t count, bool draw) {
    g.display_font_size(font);
    const float row_line = line_height(g);
    if (draw)
        for (std::size_t k = 0; k < heads.size() && k < count; ++k)
            g.display_text_outside(f.left + stops[k], y, heads[k]);
    y += row_line * 1.05f;
    if (draw) g.display_line(f.left, f.right, y, y, g.d.line_colour_outside, solid);
    return y + row_line * 0.25f;
}

float fit_column_stops(const float* shares, const float* widest, std::size_t count, float room,
                       float gap, float* stops) {
    float scale = 1;
    if (count == 0) return scale;
    for (int attempt = 0; attempt < 40; ++attempt) {
        float x = 0;
        for (std::size_t k = 0; k < count; ++k) {
            if (k > 0) x = std::max(shares[k] * room, x + (widest[k - 1] + gap) * scale);
            stops[k] = x;
        }
        const float need = stops[count - 1] + widest[count - 1] * scale;
        if (need <= room) break;
        scale *= std::min(0.98f, room / need);
    }
    return scale;
}

void begin_report_page(Drawing& g, Surface& out, const ReportFrame& f) {
    DrawingState& d = g.d;
    g.read_page_options();
    g.load_active_colour_set();
    if (d.printing) {
        d.frame_left = d.page_left = f.left;
        d.page_right = f.right;
        d.page_bottom = out.top_offset() + out.height() * 0.98f;
        g.page_footer();
    } else {
        out.clear(g.monochrome() ? chart_window_ground : g.colour(colour_field::chart_background));
    }
}

bool print_report(Drawing& g, const std::function<Surface*()>& surface,
                  const std::function<int()>& page_count,
                  const std::function<bool(int)>& draw_page) {
    DrawingState& d = g.d;
    const bool was_printing = d.printing;
    d.printing = true;
    Surface* paper = surface();
    if (!paper) {
        d.printing = was_printing;
        return false;
    }
    paper->begin_document();
    const int pages = page_count();
    for (int p = 1; p <= pages; ++p) {
        if (p > 1) paper->end_page();
        draw_page(p);
    }
    paper->end_document();
    d.printing = was_printing;
    return true;
}

} // namespace celestark::drawing
