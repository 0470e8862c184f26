#include "drawing/listing_pages.h"

#include "drawing/page_furniture.h"
#include "drawing/report_frame.h"
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
    g_.d.display_target = "Listings";
    frame_ = report_frame(*out, g_.d.printing, 0.012f, head_divisor);
    const float room = frame_.room();

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
    const float scale = fit_column_stops(listing_stops, widest, 5, room, gap, stops_.data());
    font_ = std::max(0.01f, first * scale);
    g_.display_font_size(font_);
    row_height_ = line_height(g_) * 1.05f;
    static const Listing none;
    rows_top_ = head(listings_.empty() ? none : listings_.front(), 0, false);
    per_page_ = static_cast<std::size_t>(
        std::max(1.0f, std::floor((frame_.bottom - rows_top_) / row_height_)));
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
    const float y =
        report_title(g_, frame_, frame_.head_font, l.title, page_number, draw, TitleText::mixed);
    return report_column_heads(g_, frame_, y, font_, l.columns, stops_.data(), 5, draw);
}

bool ListingPages::draw_page(int page) {
    Surface* out = surface();
    if (!out) return false;
    const int pages = page_count();
    if (page < 1 || page > pages) return false;
    g_.d.display_target = "Listings";
    begin_report_page(g_, *out, frame_);
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
        g_.display_text_outside(frame_.left, y, listing_empty_text);
        return true;
    }
    // The lines of the listing: its rows, then the head of the events not listed and each of them.
    const std::size_t from = per_page_ * static_cast<std::size_t>(page_in_listing_ - 1);
    const std::size_t to = std::min(lines_of(l), from + per_page_);
    for (std::size_t i = from; i < to; ++i) {
        if (i < l.rows.size()) {
            const ListingRow& r = l.rows[i];
            for (std::size_t k = 0; k < 5; ++k) {
                float x = frame_.left + stops_[k];
                if (k == 1 && !r.greek.empty()) {
                    g_.display_greek_outside(x, y, r.greek);
                    x += greek_width(r);
                }
                if (!cell(r, k)->empty()) draw_mixed_outside(g_, x, y, *cell(r, k));
            }
        } else if (i == l.rows.size()) {
            g_.display_text_outside(frame_.left, y, listing_skipped_head);
        } else {
            g_.display_text_outside(frame_.left + stops_[1], y, l.skipped[i - l.rows.size() - 1]);
        }
        y += row_height_;
    }
    return true;
}

bool ListingPages::print_all() {
    return print_report(
        g_, [this] { return surface(); }, [this] { return page_count(); },
        [this](int p) { return draw_page(p); });
}

} // namespace celestark::drawing
