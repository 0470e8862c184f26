#pragma once
// The phenomena list drawn a page at a time on a surface: the window `phenomena_display`, a
// printer or a PDF. A page has its head (the title with the years and the world view at the left,
// "Page" and its number at the right), the heads of the four columns and as many rows as the page
// holds. The eclipse list has a title of its own over its columns.
#include "drawing/display.h"
#include "drawing/report_frame.h"
#include "predict/phenomena.h"

#include <cstddef>
#include <string>
#include <vector>

namespace celestark::drawing {

inline constexpr const char* eclipse_list_title =
    "Sun and Moon Eclipses - Positions at eclipse maximum";

// What the pages show: the head's text, the rows, and the calendar their dates are written in.
struct PhenomenaSheet {
    std::string title;
    bool eclipses = false;
    std::string gj = "G";
    std::vector<Phenomenon> rows;
};

// The four cells of a row. The phenomena list has the date, the phenomenon and the two bodies;
// the eclipse list the date, the type and the places of the Sun and the Moon.
struct PhenomenaCells {
    std::string date, text, first, second;
};
PhenomenaCells phenomena_cells(const Phenomenon& row, bool eclipses, const std::string& gj);
// The column heads of the two lists.
std::vector<std::string> phenomena_heads(bool eclipses);

// Where a row stands on its page (twips) and which row of the sheet it is.
struct PlacedRow {
    float left = 0, top = 0, right = 0, bottom = 0;
    std::size_t index = 0;
};

class PhenomenaPages {
  public:
    PhenomenaPages(Drawing& g, PhenomenaSheet sheet);

    const PhenomenaSheet& sheet() const { return sheet_; }
    // The pages of the list on the target of the moment: the window, or the printer while
    // printing. Never less than one: an empty list has its page that says so.
    int page_count();
    // Draws a page (1 to page_count) on the window or, while printing, on the printer's next
    // page. False when there is no surface or no such page.
    bool draw_page(int page);
    // Every page on the printer as one document; false when there is no printer.
    bool print_all();

    int page() const { return page_; }
    const std::vector<PlacedRow>& rows() const { return rows_; }
    // The rows of the pages up to the one drawn, as a share of the list (0 to 1).
    double shown() const;

  private:
    Surface* surface();
    // The margins, the sizes and the column stops of the target's page.
    void lay_out();
    float head(int page);

    Drawing& g_;
    PhenomenaSheet sheet_;
    int page_ = 0;
    std::vector<PlacedRow> rows_;
    ReportFrame frame_;
    float font_ = 0, row_height_ = 0, rows_top_ = 0, gap_ = 0;
    float stops_[4] = {0, 0, 0, 0};
    std::size_t per_page_ = 1;
};

} // namespace celestark::drawing
