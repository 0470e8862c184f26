#pragma once
// The pages of the monthly ephemeris: a month a page, landscape, the table of the days at the
// left (weekday and day, sidereal time, a column a body with its glyph at the head, a rule under
// each Sunday, the turn of a planet marked on its day) and the month's phenomena in columns at the
// right, continued on further pages when they do not fit.
#include "drawing/surface.h"
#include "predict/ephemeris.h"
#include "session/session.h"

#include <string>
#include <vector>

namespace celestark::drawing {

// A phenomenon of the month: its moment (Universal Time) and its text with symbol codes.
struct MonthPhenomenon {
    double jd = 0;
    std::string text;
    std::string kind; // as the phenomena list has it
};

// Draws the month on `out`, beginning a page for it and each further page its phenomena need
// (the first month's page is already begun); `heading` is the line over the phenomena.
void draw_ephemeris_month(Surface& out, const EphemerisMonth& month, const std::string& gj,
                          const std::vector<MonthPhenomenon>& phenomena, const std::string& heading,
                          bool first_page);

// Prints the months on `paper` as one document, with the progress window "Click CANCEL to stop
// printout" of the session's sink; a CANCEL ends the document after the page in hand. The
// number of months printed.
int print_monthly_ephemeris(Session& s, Surface& paper, const MonthlyRequest& request);

} // namespace celestark::drawing
