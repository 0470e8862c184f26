#include "drawing/similars_pages.h"

#include "drawing/page_furniture.h"
#include "drawing/report_frame.h"
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
    g_.d.display_target = "Similars";
    frame_ = report_frame(*out, g_.d.printing, 0.015f, head_divisor);
    const float room = frame_.room();
    font_ = std::max(0.01f, room / row_divisor);
    stops_.clear();
    const std::size_t n = std::max<std::size_t>(1, heads_.size());
    const float rest = n > 1 ? (1 - name_share) / static_cast<float>(n - 1) : 0;
    for (std::size_t k = 0; k < n; ++k)
        stops_.push_back(k == 0 ? 0 : room * (name_share + rest * static_cast<float>(k - 1)));
    g_.display_font_size(font_);
    row_height_ = line_height(g_) * 1.1f;
    rows_top_ = head(0);
    per_page_ = static_cast<std::size_t>(
        std::max(1.0f, std::floor((frame_.bottom - rows_top_) / row_height_)));
}

std::size_t SimilarsPages::lines_per_page() {
    lay_out();
    return per_page_;
}

// The head of a page; returns where its lines begin. Page 0 only measures.
float SimilarsPages::head(int page) {
    const bool draw = page > 0;
    const float y = report_title(g_, frame_, frame_.head_font, title_, page, draw);
    return report_column_heads(g_, frame_, y, font_, heads_, stops_.data(), stops_.size(), draw);
}

bool SimilarsPages::draw_page(int page, const std::vector<std::vector<std::string>>& lines,
                              const std::string& note) {
    Surface* out = surface();
    if (!out) return false;
    lay_out();
    begin_report_page(g_, *out, frame_);
    head(std::max(1, page));
    g_.display_font_size(font_);
    float y = rows_top_;
    const float gap = text_width(g_, "  ");
    for (const std::vector<std::string>& cells : lines) {
        if (y + row_height_ > frame_.bottom + row_height_ * 0.5f) break;
        for (std::size_t k = 0; k < cells.size() && k < stops_.size(); ++k) {
            if (cells[k].empty()) continue;
            // A cell wider than its column is cut to it; a fault's reason runs on to the right.
            const float x = frame_.left + stops_[k];
            const bool last = k + 1 == cells.size();
            const float limit = last ? frame_.right - x : stops_[k + 1] - stops_[k] - gap;
            std::string text = cells[k];
            while (text.size() > 1 && mixed_text_width(g_, text) > limit) text.pop_back();
            draw_mixed_outside(g_, x, y, text);
        }
        y += row_height_;
    }
    if (!note.empty()) draw_mixed_outside(g_, frame_.left, y + row_height_ * 0.5f, note);
    return true;
}

} // namespace celestark::drawing
