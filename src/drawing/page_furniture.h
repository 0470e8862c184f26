#pragma once
// What chart pages share: the header lines, the event's data in the centre of a wheel, the side
// tables (positions, latitudes and declinations, nodes and perihelia, houses, the aspect grid,
// the elements) and the harmonics page.
#include "drawing/display.h"

#include <string>
#include <vector>

namespace celestark {
struct AspectMatrix;
}

namespace celestark::drawing {

// The facts of the event of a slot as the header and the centre of the wheel show them.
struct EventFacts {
    std::string name; // first name, surname and the event's kind
    std::string group, version;
    int number = 0;                         // the slot
    std::string place, latitude, longitude; // with the quote marks of degrees and minutes
    std::string weekday, date;
    bool julian = false;
    std::string time, time_kind; // "Local Time", "Time Zone GMT", "Meridian 15E00", ...
    std::string daylight;        // ", One hour daylight saving time" or empty
    std::string sidereal_time, vernal_point, zodiac, house_system, aspect_set;
};
EventFacts event_facts(Drawing& g, int row);

// The printed header at x from y_first, in ARIAL at `table_font_size`: title, place, date,
// time, sidereal time and zodiac; with `max_width` a line wider than that is broken after a
// comma. Returns the y below its last line.
float page_header(Drawing& g, float x, bool with_aspect_set, const std::string& view, float y_first,
                  bool with_zodiac, int row, float max_width = 0);
// Header lines at x from y_first at the surface's font, the first as the event's name; a line
// wider than `max_width` (when above 0) is broken after a comma. Returns the y below them.
float draw_header_lines(Drawing& g, float x, float y_first, const std::vector<std::string>& lines,
                        float max_width = 0);
// The same facts centred on the wheel's axis inside a circle of `r_inner`.
void draw_centre_data(Drawing& g, float cx, float cy, float r_inner, int row);

// The table font for rows of `row_height`: table_font_size = row_height x 20 /
// character_height_at_20pt / size; set on the surface, with the half blank of the cell margin.
void fit_table_font(Drawing& g, float row_height, float size);
// The height of an ARIAL line at 20 points, measured once.
float character_height_at_20pt(Drawing& g);

// A text of letters with symbols in it (degree and minute marks, sign glyphs): the letters in
// ARIAL, the symbols in their own font, outside colours. Returns the width drawn.
float draw_mixed_outside(Drawing& g, float x, float y, std::string_view text);

// Columns of texts drawn row by row from y_top under their heads, in symbols or in ARIAL, the
// font fitted to the rows; returns the width taken.
struct TableColumn {
    std::vector<std::string> cells;
    std::string head;
    bool symbols = true;
};
float draw_columns(Drawing& g, float x, float y_top, float y_bottom, float size,
                   std::vector<TableColumn>& columns, int rows);
// A side table in a box; each returns the width it took.
float position_table(Drawing& g, float x, float y_top, float y_bottom, float size);
float latitude_table(Drawing& g, float x, float y_top, float y_bottom, float size);
float nodes_table(Drawing& g, float x, float y_top, float y_bottom, float size);
float house_table(Drawing& g, float x, float y_top, float y_bottom, float size, int row);
float elements_table(Drawing& g, float x, float y_top, float y_bottom, float size);
// The aspect grid of a matrix: glyphs of the bodies along the top, the lower triangle of aspect
// glyphs; `rows_title` names what the grid shows.
float aspect_grid(Drawing& g, const AspectMatrix& m, const unsigned char* glyphs, int count,
                  float x, float y_top, float y_bottom, float size);

// Counts the chart points by element and quality into element_counts.
void count_elements(Drawing& g);

// The 25 harmonic wheels of the chart list on one page.
void harmonics_page(Drawing& g);

// One entry of a position list as the side tables show it.
struct ListedBody {
    unsigned char glyph = 0;
    double longitude = 0, latitude = 0, distance = 0; // radians, radians, au
    bool retrograde = false;
    double node = 0, perihelion = 0; // heliocentric elements, radians
};
// The bodies of the world view in force, as the wheel and the tables take them.
std::vector<ListedBody> listed_bodies(const Session& s);

} // namespace celestark::drawing
