#include "drawing/similars_pages.h"

#include "drawing/page_furniture.h"
#include "session/colour_fields.h"
#include "session/session.h"

#include <algorithm>
#include <cmath>

namespace celestark::drawing {

namespace {

// The width between the margins over the size of the letters.
constexpr float row_divisor = 1250, head_divisor = 1150;
// The name column takes this share of the width; the others share the rest evenly.
constexpr float name_share = 0.36f;

} // namespace

SimilarsPages::SimilarsPages(Drawing& g, std::string title, std::vector<std::string> heads)
    : g_(g), title_(std::move(title)), heads_(std::move(heads)) {}

Surface* SimilarsPages::surface() {
    return g_.d.printing ? g_.canvases.printer : g_.canvases.similars;
}

void SimilarsPages::lay_out() {
    Surface* out = surface();
    if (!out) return;
    DrawingState& d = g_.d;
    d.display_target = "Similars";
    const bool paper = d.printing;
    const float W = out->width(), H = out->height();
    const float f = paper ? 0.05f : 0.015f;
    left_ = out->left_offset() + W * f;
    right_ = out->left_offset() + W * (1 - f);
    top_ = out->top_offset() + H * f;
    bottom_ = out->top_offset() + H - H * f * (paper ? 1.5f : 1.0f);
    const float room = std::max(1.0f, right_ - left_);
    head_font_ = std::max(0.01f, room / head_divisor);
    font_ = std::max(0.01f, room / row_divisor);
    stops_.clear();
    const std::size_t n = std::max<std::size_t>(1, heads_.size());
    const float rest = n > 1 ? (1 - name_share) / static_cast<float>(n - 1) : 0;
    for (std::size_t k = 0; k < n; ++k)
        stops_.push_back(k == 0 ? 0 : room * (name_share + rest * static_cast<float>(k - 1)));
    g_.display_font_size(font_);
    row_height_ = line_height(g_) * 1.1f;
    rows_top_ = head(0);
    per_page_ =
        static_cast<std::size_t>(std::max(1.0f, std::floor((bottom_ - rows_top_) / row_height_)));
}

std::size_t SimilarsPages::lines_per_page() {
    lay_out();
    return per_page_;
}

// The head of a page; returns where its lines begin. Page 0 only measures.
float SimilarsPages::head(int page) {
    const bool draw = page > 0;
    DrawingState& d = g_.d;
    g_.display_font_size(head_font_);
    const float line = line_height(g_);
    if (draw) {
        const std::string number = "Page " + std::to_string(page);
        const float number_w = text_width(g_, number);
        const float title_room = right_ - left_ - number_w - text_width(g_, "    ");
        const float title_w = text_width(g_, title_);
        if (title_w > title_room && title_room > 0)
            g_.display_font_size(std::max(0.01f, head_font_ * title_room / title_w));
        g_.display_text_outside(left_, top_, title_);
        g_.display_font_size(head_font_);
        g_.display_text_outside(right_ - number_w, top_, number);
    }
    float y = top_ + line * 1.15f;
    if (draw) g_.display_line(left_, right_, y, y, d.line_colour_outside, solid);
    y += line * 0.3f;
    g_.display_font_size(font_);
    const float row_line = line_height(g_);
    if (draw)
        for (std::size_t k = 0; k < heads_.size() && k < stops_.size(); ++k)
            g_.display_text_outside(left_ + stops_[k], y, heads_[k]);
    y += row_line * 1.05f;
    if (draw) g_.display_line(left_, right_, y, y, d.line_colour_outside, solid);
    return y + row_line * 0.25f;
}

bool SimilarsPages::draw_page(int page, const std::vector<std::vector<std::string>>& lines,
                              const std::string& note) {
    Surface* out = surface();
    if (!out) return false;
    lay_out();
    DrawingState& d = g_.d;
    g_.read_page_options();
    g_.load_active_colour_set();
    if (d.printing) {
        d.frame_left = d.page_left = left_;
        d.page_right = right_;
        d.page_bottom = out->top_offset() + out->height() * 0.98f;
        g_.page_footer();
    } else {
        out->clear(g_.monochrome() ? chart_window_ground
                                   : g_.colour(colour_field::chart_background));
    }
    head(std::max(1, page));
    g_.display_font_size(font_);
    float y = rows_top_;
    const float gap = text_width(g_, "  ");
    for (const std::vector<std::string>& cells : lines) {
        if (y + row_height_ > bottom_ + row_height_ * 0.5f) break;
        for (std::size_t k = 0; k < cells.size() && k < stops_.size(); ++k) {
            if (cells[k].empty()) continue;
            // A cell wider than its column is cut to it; a fault's reason runs on to the right.
            const float x = left_ + stops_[k];
            const bool last = k + 1 == cells.size();
            const float limit = last ? right_ - x : stops_[k + 1] - stops_[k] - gap;
            std::string text = cells[k];
            while (text.size() > 1 && mixed_text_width(g_, text) > limit) text.pop_back();
            draw_mixed_outside(g_, x, y, text);
        }
        y += row_height_;
    }
    if (!note.empty()) draw_mixed_outside(g_, left_, y + row_height_ * 0.5f, note);
    return true;
}

} // namespace celestark::drawing
