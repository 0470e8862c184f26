#pragma once
// The similars report drawn a page at a time on a surface: the window `similars_display`, a
// printer or a PDF. A page has its head (the list and the event at the left, "Page " and its
// number at the right), the heads of the list's columns and as many lines as the page holds.
// The lines come from a run that stops at each full page, so a page is drawn from the lines it
// is given.
#include "drawing/display.h"
#include "drawing/report_frame.h"

#include <cstddef>
#include <string>
#include <vector>

namespace celestark::drawing {

class SimilarsPages {
  public:
    SimilarsPages(Drawing& g, std::string title, std::vector<std::string> heads);

    const std::string& title() const { return title_; }
    const std::vector<std::string>& heads() const { return heads_; }
    // How many lines a page holds on the target of the moment: the window, or the printer while
    // printing.
    std::size_t lines_per_page();
    // Draws a page with its lines (each the cells of the columns) on the window or, while
    // printing, on the printer's page. A page without lines says so under its heads. False when
    // there is no surface.
    bool draw_page(int page, const std::vector<std::vector<std::string>>& lines,
                   const std::string& note = {});

  private:
    Surface* surface();
    void lay_out();
    float head(int page);

    Drawing& g_;
    std::string title_;
    std::vector<std::string> heads_;
    ReportFrame frame_;
    float font_ = 0, row_height_ = 0, rows_top_ = 0;
    std::vector<float> stops_;
    std::size_t per_page_ = 1;
};

} // namespace celestark::drawing
