#pragma once
// Similars: one event held against every event of up to five event tables, each table event that
// resembles it in the chosen way listed. Five lists: similar positions (by an aspect set), similar
// whole charts (with or without turning the chart), the same constellation, decan or house,
// aspects to the heliocentric nodes and apsides, and similar angular separations.
//
// The controls of the screen `SIMILARS` are kept by name in `SimilarsParameters`; the bodies of a
// panel become two parallel lists (glyph and orb class) once before the table loops, and every
// table row costs one chart (two with its epoch) with only the bodies the lists read switched on.
#include "session/messages.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace celestark {

struct Session;
struct StarState;

// ---- controls ----------------------------------------------------------------------------------

struct SimilarsParameters {
    std::map<std::string, std::string, std::less<>> values;
    bool on(std::string_view name) const;
    std::string text(std::string_view name) const;
    // A whole number of a field (degrees, minutes, hits); a blank is 0.
    double number(std::string_view name) const;
};

// A choice of a radio group or a box, by control name with its caption.
struct SimilarsChoice {
    const char* name;
    const char* caption;
};
// The radio groups kept in the options: the option field and its buttons in order.
struct SimilarsGroup {
    const char* field;
    std::vector<SimilarsChoice> choices;
};
const std::vector<SimilarsGroup>& similars_groups();
// The orbs and hits kept in the options: control name and option field.
struct SimilarsNumberField {
    const char* control;
    const char* field;
    const char* caption;
};
const std::vector<SimilarsNumberField>& similars_number_fields();
// The boxes of the screen alone (not kept): `complementary`, the elements' boxes, the three
// comparison kinds.
const std::vector<SimilarsChoice>& similars_screen_boxes();
// The boxes of a body panel, by stem (`sun` gives `tables_sun`, `tables_sun_2`, `event_sun` ...).
const std::vector<SimilarsChoice>& similars_bodies();
// The four panels: the prefix and the suffix of their boxes.
struct SimilarsPanel {
    const char* prefix; // "tables_" or "event_"
    const char* suffix; // "" or "_2"
};
inline constexpr SimilarsPanel tables_panel{"tables_", ""}, tables_panel_2{"tables_", "_2"},
    event_panel{"event_", ""}, event_panel_2{"event_", "_2"};
std::string panel_box(const SimilarsPanel& panel, std::string_view stem);

// Every control at its first value: the kept ones from the options record, the first panels with
// the Sun to Pluto, the second panels empty.
SimilarsParameters similars_defaults(Session& s);
// Sets a control from a text; the error names an unknown control or value, empty when set. A
// radio button set to 1 clears the others of its group.
std::string set_similars_control(SimilarsParameters& p, std::string_view name,
                                 std::string_view value);
// The option field a control is kept in with the value to store, or false for a screen-only
// control.
bool similars_option_of(const SimilarsParameters& p, std::string_view control, std::string& field,
                        std::string& value);

enum class SimilarsList { planets, charts, constellation, elements, angles };
SimilarsList similars_list(const SimilarsParameters& p);
// The two world views: the event's and the table event's ("Geocentric", "Tychonic",
// "Heliocentric" or "Lemnicentric").
struct SimilarsViews {
    std::string event, table;
};
SimilarsViews similars_views(const SimilarsParameters& p);
// The words in front of every head, by the world view chosen.
std::string similars_view_text(const SimilarsParameters& p);

// ---- bodies ------------------------------------------------------------------------------------

// The twelve house glyphs, cusp 1 to 12.
inline constexpr std::array<const char*, 12> house_glyphs = {"AS", "2", "3", "IC", "5",  "6",
                                                             "DE", "8", "9", "MC", "11", "12"};
// A panel as two parallel lists: a body's glyph (its symbol code as one character, a house its
// text, each star of the chart stars its own code) and its orb class (Sun and Earth 1, Moon 2,
// planets and asteroids 3, node and perigee 4, stars 5; a house is -3, as it depends on the time).
struct SelectedBodies {
    std::vector<std::string> glyph;
    std::vector<int> orb_class;
    std::size_t count() const { return glyph.size(); }
};
SelectedBodies get_selected_planets(const SimilarsParameters& p, std::string_view prefix,
                                    const StarState& stars);
SelectedBodies get_selected_planets_2(const SimilarsParameters& p, std::string_view prefix,
                                      const StarState& stars);
bool is_house_glyph(std::string_view glyph);
// A body's glyph as a report cell: symbol codes as they stand, houses with an "H" after them.
std::string similars_glyph_cell(std::string_view glyph);
// A body's glyph as plain words, for text output.
std::string similars_glyph_word(std::string_view glyph, const StarState& stars);

// The degrees (0 to below 360) of each body of the list in the last chart by the world view; a
// house takes its cusp in the Geocentric and Tychonic views when the chart has houses. A body the
// chart lacks gets a NaN.
void get_planets_position(const Session& s, std::string_view view, const SelectedBodies& list,
                          std::vector<double>& positions);
// The heliocentric ascending node and perihelion of each body, degrees; NaN where there is none.
void get_elements_position(const Session& s, const SelectedBodies& list, std::vector<double>& nodes,
                           std::vector<double>& perihelia);

// The signed arc a - b in degrees, in -180 to below 180.
double arc_degrees(double a, double b);
// The orb class of a pair: 0 (no comparison) for two stars, else 5, 4, 1, 2, 3 in that order.
int pair_orb_class(int a, int b);
// A version mark of a doubtful birth time: "?", "!", "+", "=", "#" or "*".
bool doubtful_version(std::string_view version);

// The place of a position (degrees) among boundaries: 1 to 12 (constellations, from the
// boundaries of the zodiac in degrees), 1 to 36 (decans of 10 degrees), 1 to 12 (house cusps in
// radians, index 1 to 12). When no interval fits, `previous` is returned.
int constellation_number(double position, const std::array<float, 12>& boundaries,
                         int previous = 0);
int decan_number(double position, int previous = 0);
int house_number(double position, const std::array<double, 13>& cusps, int previous = 0);

// ---- checks ------------------------------------------------------------------------------------

enum class SimilarsFault {
    no_event_planets,
    no_table_planets,
    no_comparison_type,
    no_orb,
    no_event_pair,
    no_table_pair,
    identical_event_planets,
    identical_table_planets,
    no_epoch,
};
struct SimilarsMessage {
    const char* title;
    const char* text;
};
SimilarsMessage similars_message(SimilarsFault fault);
// The first fault of the selections for the list chosen; false when there is none.
bool check_similars(const SimilarsParameters& p, const StarState& stars, SimilarsFault& fault);

// ---- the run -----------------------------------------------------------------------------------

// A table to compare with: its folder (blank: the program's), its database file and table.
struct SimilarsTable {
    std::string folder, db, name;
};
// The tables of the five listing slots in use, from the options.
std::vector<SimilarsTable> similars_option_tables(Session& s);

// Why a row cannot be charted, or empty: a date, time or place that is not one, or a moment
// outside the stored tables of the outer planets.
std::string similars_row_fault(const Session& s, int row);

// One line of the report. A row that could not be charted has `fault` set and its reason in
// `why`.
struct SimilarLine {
    int table = 0;                        // 1 to 5: the slot
    std::int64_t row = 0;                 // 1 on, in the table's order
    std::string name, date;               // of the table event
    bool epoch = false;                   // a hit on the epoch charts
    std::string planet, event_planet;     // glyphs (the angles: the first of the pair)
    std::string planet_2, event_planet_2; // the angles: the second of the pair
    std::string aspect;                   // an aspect's glyph (its digraph when it has none)
    std::string aspect_name;              // its digraph
    std::string place;                    // the constellation list: "IN" and the place
    std::string element;                  // the elements list: "Node", "Perihelion", ...
    double orb = 0;   // degrees; the elements list: the planet's signed arc from the exact aspect
    double orb_2 = 0; // the elements list: the orb allowed
    double angle = 0, event_angle = 0; // the angles list: both separations, degrees
    double rotation = 0;               // the charts list, degrees
    int score = 0;                     // the charts list: the hits of the group
    bool complementary = false;
    bool fault = false;
    std::string why;
};

// The head of the pages and the column heads of a list.
std::string similars_head(const SimilarsParameters& p, const std::string& event_text);
std::vector<std::string> similars_columns(SimilarsList list);
// A line as the cells of its columns.
std::vector<std::string> similars_cells(SimilarsList list, const SimilarLine& line);
// Degrees and minutes with the symbol marks, as the orbs print.
std::string similars_orb_text(double degrees);

class SimilarsRun {
  public:
    SimilarsRun();
    ~SimilarsRun();
    SimilarsRun(SimilarsRun&&) noexcept;
    SimilarsRun& operator=(SimilarsRun&&) noexcept;

    // The checks, the active event's chart (from `event_row`) and the tables. False when refused,
    // with the message shown; a table that cannot be opened becomes a fault line.
    bool start(Session& s, const SimilarsParameters& p, int event_row,
               std::vector<SimilarsTable> tables, MessageSink& sink);
    // Goes on from the saved table slot and row until `lines` lines are at hand (the lines of the
    // last row compared may go beyond), the tables end or CANCEL is pressed in the progress
    // window. The session's chart settings are as they were afterwards.
    std::vector<SimilarLine> next(Session& s, std::size_t lines, MessageSink& sink);

    bool started() const;
    bool finished() const;
    bool cancelled() const;
    SimilarsList list() const;
    const std::string& head() const;
    // Where the run stands: the slot (1 to 5) and the row of it done last.
    int table_slot() const;
    std::int64_t table_row() const;
    std::int64_t rows_done() const;
    std::int64_t rows_total() const;
    std::int64_t charts() const; // charts calculated, for measurements

  private:
    struct State;
    std::unique_ptr<State> st_;
};

// A whole run at once, for the command line and the tests: every line, in table order. False
// when refused.
bool list_similars_all(Session& s, const SimilarsParameters& p, int event_row,
                       std::vector<SimilarsTable> tables, MessageSink& sink,
                       std::vector<SimilarLine>& lines);

} // namespace celestark
