#pragma once
// What the report pages share (listings, similars, phenomena, predictive reports): the frame
// inside the page's margins, the head with the title at the left and "Page n" at the right over a
// rule, the column heads between two rules, the column stops fitted to the widest cells, the
// start of a page on the screen or on paper, and a whole report printed as one document.
#include "drawing/display.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace celestark::drawing {

struct ReportFrame {
    float left = 0, right = 0, top = 0, bottom = 0;
    float head_font = 0; // the size of the head's letters
    // The width between the margins, never below one twip.
    float room() const;
};

// The frame of a page on `out`: a share `screen_margin` of the window for the margins, a
// twentieth of the paper, where the bottom one is half as large again, for the line at the foot.
// The head's size is the room over `head_divisor`.
ReportFrame report_frame(const Surface& out, bool paper, float screen_margin, float head_divisor);

// How the title of a head is written.
enum class TitleText { plain, mixed, name };

// The head of a page at the frame's top in `head_font`: the title at the left, made smaller where
// it would run into "Page n" at the right, and the rule under them. Drawn only with `draw`; the
// size is left at `head_font`. Returns the y where the next line begins.
float report_title(Drawing& g, const ReportFrame& f, float head_font, const std::string& title,
                   int page, bool draw, TitleText kind = TitleText::plain);

// The heads of the columns (up to `count`) at their stops in `font` from y, and the rule under
// them, drawn only with `draw`; returns the y where the rows begin.
float report_column_heads(Drawing& g, const ReportFrame& f, float y, float font,
                          const std::vector<std::string>& heads, const float* stops,
                          std::size_t count, bool draw);

// The stops of `count` columns whose widest cells at the first size are `widest`: each at its
// share of the room, or past the column before it and a gap when that is wider, all scaled down
// together until the last column fits. Returns the scale.
float fit_column_stops(const float* shares, const float* widest, std::size_t count, float room,
                       float gap, float* stops);

// Readies `out` for a page: the page options and the colour set, then the footer under the frame
// on paper, or the ground on the screen.
void begin_report_page(Drawing& g, Surface& out, const ReportFrame& f);

// Every page of a report on the printer as one document; false when there is no printer.
bool print_report(Drawing& g, const std::function<Surface*()>& surface,
                  const std::function<int()>& page_count,
                  const std::function<bool(int)>& draw_page);

} // namespace celestark::drawing
