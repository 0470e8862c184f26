#include "drawing/listing_pages.h"

#include "drawing/page_furniture.h"
#include "session/colour_fields.h"
#include "session/session.h"

#include <algorithm>
#include <cmath>

namespace celestark::drawing {

namespace {

// Where the cells of a row begin, as shares of the width between the margins; a cell wider than
// its share pushes the next one on.
constexpr float listing_stops[5] = {0, 0.12f, 0.36f, 0.60f, 0.86f};
// The width between the margins over the size of the letters.
constexpr float row_divisor = 1250, head_divisor = 1150;

const std::string* cell(const ListingRow& r, std::size_t k) {
    const std::string* cells[5] = {&r.event, &r.name, &r.date, &r.text, &r.orb};
    return cells[k];
}

} // namespace

ListingPages::ListingPages(Drawing& g, std::vector<Listing> listings)
    : g_(g), listings_(std::move(listings)) {}

Surface* ListingPages::surface() {
    return g_.d.printing ? g_.canvases.printer : g_.canvases.listings;
}

// The room a star's Greek letter takes before its name, measured in the letters of the text
// font, which are as wide as the Greek ones near enough, with blanks after it.
float ListingPages::greek_width(const ListingRow& r) {
    if (r.greek.empty()) return 0;
    return text_width(g_, r.greek + "  ");
}

std::size_t ListingPages::lines_of(const Listing& l) const {
    const std::size_t skipped = l.skipped.empty() ? 0 : l.skipped.size() + 1;
    return std::max<std::size_t>(1, l.rows.size() + skipped);
}

double ListingPages::shown() const {
    std::size_t all = 0, through = 0;
    for (std::size_t i = 0; i < listings_.size(); ++i) {
        const std::size_t n = lines_of(listings_[i]);
        all += n;
        if (i < listing_) through += n;
        if (i == listing_ && page_ > 0)
            through += std::min(n, per_page_ * static_cast<std::size_t>(page_in_listing_));
    }
    return all == 0 ? 1.0 : static_cast<double>(through) / static_cast<double>(all);
}

void ListingPages::lay_out() {
    Surface* out = surface();
    if (!out) return;
    DrawingState& d = g_.d;
    d.display_target = "Listings";
    const bool paper = d.printing;
    const float W = out->width(), H = out->height();
    const float f = paper ? 0.05f : 0.012f;
    left_ = out->left_offset() + W * f;
    right_ = out->left_offset() + W * (1 - f);
    top_ = out->top_offset() + H * f;
    bottom_ = out->top_offset() + H - H * f * (paper ? 1.5f : 1.0f);
    const float room = std::max(1.0f, right_ - left_);
    head_font_ = std::max(0.01f, room / head_divisor);

    // The widest cell of each column over all listings, at the first size.
    const float first = std::max(0.01f, room / row_divisor);
    g_.display_font_size(first);
    float widest[5] = {0, 0, 0, 0, 0};
    for (const Listing& l : listings_) {
        for (std::size_t k = 0; k < l.columns.size() && k < 5; ++k)
            widest[k] = std::max(widest[k], text_width(g_, l.columns[k]));
        for (const ListingRow& r : l.rows)
            for (std::size_t k = 0; k < 5; ++k)
                widest[k] = std::max(widest[k], mixed_text_width(g_, *cell(r, k)) +
                                                    (k == 1 ? greek_width(r) : 0.0f));
    }
    const float gap = text_width(g_, "   ");
    stops_.assign(5, 0);
    float scale = 1;
    for (int attempt = 0; attempt < 40; ++attempt) {
        float x = 0;
        for (std::size_t k = 0; k < 5; ++k) {
            if (k > 0) x = std::max(listing_stops[k] * room, x + (widest[k - 1] + gap) * scale);
            stops_[k] = x;
        }
        const float need = stops_[4] + widest[4] * scale;
        if (need <= room) break;
        scale *= std::min(0.98f, room / need);
    }
    font_ = std::max(0.01f, first * scale);
    g_.display_font_size(font_);
    row_height_ = line_height(g_) * 1.05f;
    static const Listing none;
    rows_top_ = head(listings_.empty() ? none : listings_.front(), 0, false);
    per_page_ =
        static_cast<std::size_t>(std::max(1.0f, std::floor((bottom_ - rows_top_) / row_height_)));
}

int ListingPages::page_count() {
    lay_out();
    int pages = 0;
    for (const Listing& l : listings_)
        pages += static_cast<int>((lines_of(l) + per_page_ - 1) / per_page_);
    return std::max(1, pages);
}

// The head of a page; returns where its rows begin.
float ListingPages::head(const Listing& l, int page_number, bool draw) {
    DrawingState& d = g_.d;
    g_.display_font_size(head_font_);
    const float line = line_height(g_);
    if (draw) {
        const std::string number = "Page " + std::to_string(page_number);
        const float number_w = text_width(g_, number);
        const float title_room = right_ - left_ - number_w - text_width(g_, "    ");
        const float title_w = mixed_text_width(g_, l.title);
        if (title_w > title_room && title_room > 0)
            g_.display_font_size(std::max(0.01f, head_font_ * title_room / title_w));
        draw_mixed_outside(g_, left_, top_, l.title);
        g_.display_font_size(head_font_);
        g_.display_text_outside(right_ - number_w, top_, number);
    }
    float y = top_ + line * 1.15f;
    if (draw) g_.display_line(left_, right_, y, y, d.line_colour_outside, solid);
    y += line * 0.3f;
    g_.display_font_size(font_);
    const float row_line = line_height(g_);
    if (draw)
        for (std::size_t k = 0; k < l.columns.size() && k < 5; ++k)
            g_.display_text_outside(left_ + stops_[k], y, l.columns[k]);
    y += row_line * 1.05f;
    if (draw) g_.display_line(left_, right_, y, y, d.line_colour_outside, solid);
    return y + row_line * 0.25f;
}

bool ListingPages::draw_page(int page) {
    Surface* out = surface();
    if (!out) return false;
    const int pages = page_count();
    if (page < 1 || page > pages) return false;
    DrawingState& d = g_.d;
    d.display_target = "Listings";
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
    page_ = page;
    // The listing of the page and the page's place within it.
    static const Listing none;
    int first_page = 1;
    listing_ = 0;
    page_in_listing_ = 1;
    for (std::size_t i = 0; i < listings_.size(); ++i) {
        const int n = static_cast<int>((lines_of(listings_[i]) + per_page_ - 1) / per_page_);
        if (page < first_page + n) {
            listing_ = i;
            page_in_listing_ = page - first_page + 1;
            break;
        }
        first_page += n;
    }
    const Listing& l = listings_.empty() ? none : listings_[listing_];
    head(l, page_in_listing_, true);
    g_.display_font_size(font_);
    float y = rows_top_;
    if (l.rows.empty() && l.skipped.empty()) {
        g_.display_text_outside(left_, y, listing_empty_text);
        return true;
    }
    // The lines of the listing: its rows, then the head of the events not listed and each of them.
    const std::size_t from = per_page_ * static_cast<std::size_t>(page_in_listing_ - 1);
    const std::size_t to = std::min(lines_of(l), from + per_page_);
    for (std::size_t i = from; i < to; ++i) {
        if (i < l.rows.size()) {
            const ListingRow& r = l.rows[i];
            for (std::size_t k = 0; k < 5; ++k) {
                float x = left_ + stops_[k];
                if (k == 1 && !r.greek.empty()) {
                    g_.display_greek_outside(x, y, r.greek);
                    x += greek_width(r);
                }
                if (!cell(r, k)->empty()) draw_mixed_outside(g_, x, y, *cell(r, k));
            }
        } else if (i == l.rows.size()) {
            g_.display_text_outside(left_, y, listing_skipped_head);
        } else {
            g_.display_text_outside(left_ + stops_[1], y, l.skipped[i - l.rows.size() - 1]);
        }
        y += row_height_;
    }
    return true;
}

bool ListingPages::print_all() {
    DrawingState& d = g_.d;
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
