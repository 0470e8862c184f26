#pragma once
// The session values of the drawing: where a page goes, the frame it is drawn in, the state the
// primitives leave behind, the plot list and the ring of the wheel, and the table sizes of the
// page furniture. Plain values; the surfaces themselves are effects at the edge (drawing/).
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace celestark {

// A colour as stored: 0x00BBGGRR.
using Colour = std::uint32_t;
inline constexpr Colour colour_black = 0x000000;
inline constexpr Colour colour_white = 0xFFFFFF;
// The ground of the chart window.
inline constexpr Colour chart_window_ground = 0x400000;

// The plot list and the 360-slot ring of the wheel, indexed from 1 as the layout counts.
inline constexpr int plot_capacity = 200;
struct WheelState {
    std::array<std::string, plot_capacity + 1> plot_glyph;
    std::array<float, plot_capacity + 1> plot_long{};
    int plot_count = 0;
    // "" a free slot, " " a house cusp (a barrier that never moves), anything else a body.
    std::array<std::string, 361> slot_glyph;
    std::array<float, 361> slot_long{};
    // set_chart_detail: 0 glyphs, 1 whole degrees, 2 degrees and minutes; negative glyphs only.
    int plan_degs_level = 0;
    // 1 aspect lines, 2 the event's data in the centre, 0 nothing.
    int agram_level = 0;
};

// The options a page reads many times, read once from the option record when a page begins.
struct PageOptions {
    bool print_colour = true;
    int screen_line_width = 1, printer_line_width = 1;
    bool lat_long_secs = false;
    bool position_sign_only = false;
    std::string user_name;
    bool display_ecliptic = false, display_equator = false, display_horizon = false,
         display_meridian = false;
    int star_zodiac_width = 8;
    bool prenatal_sectors = false; // the epoch to birth sectors of the prenatal pages
};

// What the window that prints the charts of an event selects: for the groups Geocentric,
// Lemnicentric, Heliocentric, Geo/Helio and Tychonic the standard, star and harmonics pages, and
// the heliocentric triple and all world views pages. (The comparison pages join with the double
// charts.)
struct ChartPrintSelection {
    static constexpr int groups = 5; // Geocentric, Lemnicentric, Heliocentric, Geo/Helio, Tychonic
    std::array<bool, groups> standard{}, star{}, harmonics{}, compare{};
    bool helio_triple = false, all_planets = false;
};

// The planetary motion of the chart window: the span the run traces and the bodies it shows.
struct MotionSettings {
    double start_jd = 0, end_jd = 0;   // Universal Time; both 0: a year from the event shown
    std::vector<unsigned char> bodies; // glyph codes; empty: Mercury to Pluto and the Earth
    bool three_d = false;              // the lemnicentric run seen in perspective
};

struct DrawingState {
    bool printing = false;
    std::string display_target = "Chart";
    bool portrait_page = true;
    float surface_width = 0, surface_height = 0;
    float frame_left = 0, frame_right = 0, frame_top = 0, frame_bottom = 0;
    float page_left = 0, page_right = 0, page_top = 0, page_bottom = 0;
    float current_font_size = 0;
    int current_font_size_whole = 0; // the whole-number copy the chart window keeps
    Colour current_colour = 0;
    std::int16_t rotate_text = 0;
    float rotate_x = 0, rotate_y = 0;
    std::int16_t rotate_angle = 0;
    int rotate_mode = 0; // how the printer turns a glyph: 0 left half, 1 right half, 2 slot angle

    // The colour sets last loaded for the screen and for paper, and the line colours.
    std::string loaded_display_set, loaded_print_set;
    Colour line_colour_inside = colour_white, line_colour_outside = colour_white;

    std::string screen_page;
    PageOptions page_options;
    WheelState wheel;

    // Page furniture.
    float table_font_size = 0, table_half_space = 0, character_height_at_20pt = 0;
    std::array<std::array<std::int16_t, 3>, 4> element_counts{};
    // The unit of printed side tables: (page_right - page_left) / 1100.
    float print_unit = 0;

    // The chart window: which slot a page shows and whether time may be stepped.
    int working_event = 0;
    int inner_event = 0, outer_event = 0;
    std::string chart_kind;
    // A double chart of a progression: its kind ("Secondary", "Solar Arc", "OD") and the birth
    // row a ring whose event reads "Progressed" is progressed from; for transits over it,
    // `transits_over` is set.
    std::string progression_kind;
    int progressed_base = 0;
    bool transits_over = false;
    // The prenatal or lifetime biography a "B" double chart belongs to.
    bool prenatal_biography = false;
    std::string chart_calling;
    bool allow_stepping = true, show_step_panel = true, stepping_on = false;
    MotionSettings motion;
    // The time stamp of printed footers; empty: the moment of printing.
    std::string print_time_stamp;
};

} // namespace celestark
