#pragma once
// The chart pages: `screen_display` turns the word in `screen_page` into a frame, a page
// procedure, its header, side tables and wheels.
#include "drawing/display.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace celestark::drawing {

// Draws the page named by `screen_page` for the working slot on the "Chart" target, or on the
// printer when printing. False when nothing was drawn (the Draconic message, a cancelled print
// dialog, a fatal error).
bool screen_display(Drawing& g);

// Whether `screen_display` has a page for a word, and whether that page stands upright (the
// rectified prenatal pages lie across).
bool page_known(std::string_view word);
bool page_is_portrait(std::string_view word);

// One page of a printed series: its word (or "harmonics" for the harmonics page) and the world
// view it is drawn in.
struct SeriesPage {
    std::string screen_page, world_view;
};
// The selected pages in the order of the list, Geocentric first.
std::vector<SeriesPage> chart_series_pages(const ChartPrintSelection& selection);
// Prints the pages of the working slot as one document: the printer's dialog once, then each
// page in its world view with its own frame, a progress window advancing page by page; its CANCEL
// ends the document after the current page. False when the dialog was cancelled.
bool print_chart_series(Drawing& g, const std::vector<SeriesPage>& pages);

// The single pages, for callers that draw into a frame of their own (the print series, tests).
void geo_page(Drawing& g);          // geo1
void helio_page(Drawing& g);        // helio1
void lemni_page(Drawing& g);        // lem1
void geo_helio_page(Drawing& g);    // geo_helio1
void triple_page(Drawing& g);       // geo_triple
void helio_triple_page(Drawing& g); // helio_triple
void all_planets_page(Drawing& g);  // display_all_planets
void data_page(Drawing& g);         // data1
void star_wheel_page(Drawing& g);   // star_geo, star_helio, star_lem, star_geo_helio, star_sid_trop
void star_analysis_page(Drawing& g); // star_analysis_conjunction, star_analysis_horizon

} // namespace celestark::drawing
