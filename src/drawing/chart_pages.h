#pragma once
// The chart pages: `screen_display` turns the word in `screen_page` into a frame, a page
// procedure, its header, side tables and wheels.
#include "drawing/display.h"

#include <string_view>

namespace celestark::drawing {

// Draws the page named by `screen_page` for the working slot on the "Chart" target, or on the
// printer when printing. False when nothing was drawn (the Draconic message, a cancelled print
// dialog, a fatal error).
bool screen_display(Drawing& g);

// Whether `screen_display` has a page for a word.
bool page_known(std::string_view word);

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
