#pragma once
// The listings drawn a page at a time on a surface: the window `LISTINGS_DISPLAY`, a printer or a
// PDF. Each listing begins on a page of its own; a page has the listing's title at the left and
// "Page " with the page's number within the listing at the right, the column heads, and as many
// rows as it holds. The events that could not be listed follow the rows.
#include "drawing/display.h"
#include "drawing/report_frame.h"
#include "tables/listings.h"

#include <cstddef>
#include <string>
#include <vector>

namespace celestark::drawing {

inline constexpr const char* listing_skipped_head = "Events not listed:";
inline constexpr const char* listing_empty_text = "No events were listed.";

class ListingPages {
  public:
    ListingPages(Drawing& g, std::vector<Listing> listings);

    const std::vector<Listing>& listings() const { return listings_; }
    // The pages of all listings on the target of the moment (the window, or the printer while
    // printing); at least one a listing.
    int page_count();
    // Draws a page (1 to page_count) on the window or, while printing, on the printer's next page.
    bool draw_page(int page);
    // Every page on the printer as one document; false when there is no printer.
    bool print_all();

    int page() const { return page_; }
    // The listing of the page drawn and the page's number within it.
    std::size_t listing_of_page() const { return listing_; }
    int page_in_listing() const { return page_in_listing_; }
    // The lines of the pages up to the one drawn, as a share of all (0 to 1).
    double shown() const;

  private:
    Surface* surface();
    void lay_out();
    float head(const Listing& l, int page_number, bool draw);
    std::size_t lines_of(const Listing& l) const;
    float greek_width(const ListingRow& r);

    Drawing& g_;
    std::vector<Listing> listings_;
    int page_ = 0, page_in_listing_ = 0;
    std::size_t listing_ = 0;
    ReportFrame frame_;
    float font_ = 0, row_height_ = 0, rows_top_ = 0;
    std::vector<float> stops_;
    std::size_t per_page_ = 1;
};

} // namespace celestark::drawing
