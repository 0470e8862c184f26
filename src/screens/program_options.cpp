#include "screens/program_options.h"

#include "session/session.h"
#include "session/text.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/option_store.h"

#include <algorithm>
#include <cctype>

namespace celestark {

namespace {

constexpr const char* general = store::general_options_table;
constexpr const char* chart = store::chart_options_table;
constexpr int yes = store::option_true;
constexpr int no = store::option_false;

// The display groups, in the window's order of columns.
const std::vector<OptionButton> buttons = {
    {"def_opt_date_format_uk", "Date Entry and Display", "dd mm yyyy", general,
     "option_date_format", yes, true},
    {"def_opt_date_format_usa", "Date Entry and Display", "mm dd yyyy", general,
     "option_date_format", no, true},
    {"def_opt_clock_12", "Time Format", "12 hour clock", general, "option_clock_format", yes, true},
    {"def_opt_clock_24", "Time Format", "24 hour clock", general, "option_clock_format", no, true},
    {"def_opt_save_always", "Saving Events", "After Every Change", general, "option_save_chart", 0,
     false},
    {"def_opt_save_prompt", "Saving Events", "Prompt before saving", general, "option_save_chart",
     1, false},
    {"def_opt_save_never", "Saving Events", "User Saves", general, "option_save_chart", 2, false},
    {"def_opt_colour", "Printer", "Colour. Using a colour set", general, "option_print_colour", yes,
     true},
    {"def_opt_bw", "Printer", "Black and White. Not using a colour set", general,
     "option_print_colour", no, true},
    {"apparent_pos", "Planetary Positions", "Apparent", chart, "actual_position", no, true},
    {"actual_pos", "Planetary Positions", "Actual", chart, "actual_position", yes, true},
    {"pp_sigil", "Display Planets and Houses", "Sigil only / line", chart, "display_plan_degs", 0,
     false},
    {"pp_degs", "Display Planets and Houses", "Sigil and degrees", chart, "display_plan_degs", 1,
     false},
    {"pp_full", "Display Planets and Houses", "Full accuracy", chart, "display_plan_degs", 2,
     false},
    {"cc_empty", "CHART CENTRE", "Empty", chart, "display_agram", 0, false},
    {"cc_astrogram", "CHART CENTRE", "Aspectogram", chart, "display_agram", 1, false},
    {"cc_name", "CHART CENTRE", "Name", chart, "display_agram", 2, false},
    {"mn_no", "MOON'S NODE", "None", chart, "moon_node", 0, false},
    {"mn_true", "MOON'S NODE", "Osculating", chart, "moon_node", 1, false},
    {"mn_mean", "MOON'S NODE", "Mean", chart, "moon_node", 2, false},
    {"mp_no", "MOON'S PERIGEE", "None", chart, "moon_peri", 0, false},
    {"mp_true", "MOON'S PERIGEE", "Osculating", chart, "moon_peri", 1, false},
    {"mp_mean", "MOON'S PERIGEE", "Mean", chart, "moon_peri", 2, false},
    {"he_no", "HELIOCENTRIC ELEMENTS", "None", chart, "helio_elem", 0, false},
    {"he_true", "HELIOCENTRIC ELEMENTS", "Osculating", chart, "helio_elem", 1, false},
    {"he_mean", "HELIOCENTRIC ELEMENTS", "Mean", chart, "helio_elem", 2, false},
    {"zod_clock", "Zodiac Direction", "Clockwise", chart, "zodiac_direction", 0, false},
    {"zod_anticlock", "Zodiac Direction", "Anticlockwise", chart, "zodiac_direction", 1, false},
    {"house_normal", "House Direction", "Normal", chart, "house_direction", yes, true},
    {"house_opposite", "House Direction", "Oppostie", chart, "house_direction", no, true},
    {"house_type_normal", "House Type", "Normal", chart, "house_type", yes, true},
    {"house_type_hermetic", "House Type", "Hermetic", chart, "house_type", no, true},
    {"ascendant_1", "Ascendant/House relationship", "Ascendant on cusp of first house", chart,
     "house_start", 0, false},
    {"ascendant_2", "Ascendant/House relationship", "Ascendant in centre of first house", chart,
     "house_start", 1, false},
    {"ascendant_3", "Ascendant/House relationship", "House cusps midpoints of normal houses", chart,
     "house_start", 2, false},
};

const std::vector<OptionCheck> checks = {
    {"def_opt_time_input", "Include SECONDS for:-", "Time Input", general, "option_time_input_secs",
     true},
    {"def_opt_lat_long", "Include SECONDS for:-", "Lat. and Long.", general, "option_lat_long_secs",
     true},
    {"def_opt_time_output", "Include SECONDS for:-", "Time Output", general,
     "option_time_output_secs", true},
    {"exclude_asc", "Exclude from aspects", "Ascendant", general, "exclude_ascendant", true},
    {"exclude_mc", "Exclude from aspects", "Mid heaven", general, "exclude_midheaven", true},
    {"opt_quaoar", "Incluse Stars, Planetoids, Asteroids and Parts", "Quaoar", chart, "quaoar",
     false},
    {"opt_sedna", "Incluse Stars, Planetoids, Asteroids and Parts", "Sedna", chart, "sedna", false},
    {"opt_chiron", "Incluse Stars, Planetoids, Asteroids and Parts", "Chiron", chart, "chiron",
     false},
    {"opt_asteroids", "Incluse Stars, Planetoids, Asteroids and Parts",
     "Vesta, Juno, Ceres and Pallas", chart, "asteroids", false},
    {"opt_part_of_fortune", "Incluse Stars, Planetoids, Asteroids and Parts", "Part of Fortune",
     chart, "part_of_fortune", false},
    {"opt_stars", "Incluse Stars, Planetoids, Asteroids and Parts", "Chart Stars and Fixed Points",
     chart, "stars_in_charts", false},
    {"sectors", "Include EPOCH to BIRTH SECTORS in prenatal charts", "EPOCH to BIRTH SECTORS",
     chart, "prenatal_sectors", false},
    {"include_tmm", "Additional features", "The TMM charts of Rolf Dunmore", general, "option_tmm",
     true},
    {"include_geo_hel", "Additional features", "The Geocentric/Heliocentric analysis charts",
     general, "option_geo_hel", true},
    {"acs_atlas", "Additional features",
     "Use the ASC PC Atlas, if you have purchased and installed it, instead of the standard "
     "Celestark Atlas",
     chart, "pc_atlas", true},
};

const std::vector<OptionText> texts = {
    {"def_opt_user_name", "Your Name and Address", "Name", "user_name", false},
    {"def_opt_add1", "Your Name and Address", "Address", "add1", false},
    {"def_opt_add2", "Your Name and Address", "", "add2", false},
    {"def_opt_add3", "Your Name and Address", "", "add3", false},
    {"def_opt_add4", "Your Name and Address", "", "add4", false},
    {"def_opt_tel", "Your Name and Address", "Tel.", "tel", false},
    {"def_opt_screen_line_width", "Minimum Linewidths", "Screen", "option_screen_line_width", true},
    {"def_opt_printer_line_width", "Minimum Linewidths", "Printer", "option_printer_line_width",
     true},
};

// A whole number written plainly, blanks around allowed.
bool whole_in(const std::string& text, long low, long high) {
    const std::string t = trim(text);
    if (t.empty() || t.size() > 6) return false;
    if (!std::all_of(t.begin(), t.end(),
                     [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }))
        return false;
    const long v = std::stol(t);
    return v >= low && v <= high;
}

// The session takes the stored change: the global options are read again by the store itself;
// the chart options are read here, and the printer's colour choice picks the colour set.
bool follow(Session& s, const char* table, const std::string& field, store::Outcome o,
            MessageSink& sink) {
    if (o != store::Outcome::ok) return false;
    if (std::string(table) == chart) read_chart_options(s);
    if (field == "option_print_colour") load_active_colour_set(s, sink);
    return true;
}

} // namespace

const std::vector<OptionButton>& option_buttons() {
    return buttons;
}
const std::vector<OptionCheck>& option_checks() {
    return checks;
}
const std::vector<OptionText>& option_texts() {
    return texts;
}

std::vector<std::string> option_groups() {
    std::vector<std::string> groups;
    const auto add = [&](const char* g) {
        if (std::find(groups.begin(), groups.end(), g) == groups.end()) groups.emplace_back(g);
    };
    for (const OptionButton& b : buttons) add(b.group);
    for (const OptionCheck& c : checks) add(c.group);
    for (const OptionText& t : texts) add(t.group);
    return groups;
}

OptionControlStates program_options_states(Session& s, MessageSink& sink) {
    load_option_screen(s, sink);
    OptionControlStates states;
    for (const OptionButton& b : buttons) {
        const std::int64_t stored = read_option(s, b.table, b.field).as_int();
        states.checked[b.control] = b.flag ? (stored != 0) == (b.value != 0) : stored == b.value;
    }
    for (const OptionCheck& c : checks)
        states.checked[c.control] = read_option(s, c.table, c.field).as_int() != 0;
    for (const OptionText& t : texts)
        states.texts[t.control] = read_option(s, general, t.field).as_text();
    return states;
}

bool choose_option_button(Session& s, const OptionButton& button, MessageSink& sink) {
    return follow(s, button.table, button.field,
                  set_option(s, button.table, button.field, store::Value(button.value), sink),
                  sink);
}

bool tick_option_check(Session& s, const OptionCheck& check, bool ticked, MessageSink& sink) {
    const int value = !ticked ? 0 : check.flag ? yes : 1;
    return follow(s, check.table, check.field,
                  set_option(s, check.table, check.field, store::Value(value), sink), sink);
}

OptionTextResult leave_option_text(Session& s, const OptionText& text, const std::string& typed,
                                   MessageSink& sink) {
    store::Value value;
    if (text.line_width) {
        if (!whole_in(typed, 1, 10)) {
            const bool screen = std::string(text.field) == "option_screen_line_width";
            sink.message(screen ? "SCREEN LINE WIDTH ERROR" : "PRINTER LINE WIDTH ERROR",
                         screen ? "Screen line width must be between 1 and 10"
                                : "Printer line width must be between 1 and 10",
                         MessageIcon::exclamation);
            return OptionTextResult::refused;
        }
        value = store::Value(std::stoi(trim(typed)));
    } else {
        // A text field holding nothing is stored as one blank.
        value = store::Value(typed.empty() ? std::string(" ") : typed);
    }
    return set_option(s, general, text.field, value, sink) == store::Outcome::ok
               ? OptionTextResult::stored
               : OptionTextResult::failed;
}

const OptionButton* find_option_button(const std::string& control) {
    for (const OptionButton& b : buttons)
        if (control == b.control) return &b;
    return nullptr;
}
const OptionCheck* find_option_check(const std::string& control) {
    for (const OptionCheck& c : checks)
        if (control == c.control) return &c;
    return nullptr;
}
const OptionText* find_option_text(const std::string& control) {
    for (const OptionText& t : texts)
        if (control == t.control) return &t;
    return nullptr;
}

std::string option_help_text(const std::string& link) {
    if (link == "apparent")
        return "Apparent positions are where the Sun, Moon and planets are seen from the Earth: "
               "each body is shown where it stood when its light set out, and the Sun is moved "
               "back by the aberration of light.\n\n"
               "Actual positions are where the bodies truly are at the moment of the event, "
               "without these corrections. The two differ by a small fraction of a degree.";
    if (link == "osculating")
        return "Osculating values follow the orbit as it is at the moment of the event, with all "
               "its wobbles. Mean values follow the smoothly moving average orbit. None leaves "
               "the point out of the charts.\n\n"
               "The Moon's node and perigee and the heliocentric elements of the planets (their "
               "nodes and perihelia) each take one of these choices.";
    if (link == "extra")
        return "Additional features offer more charts on the main window: the TMM charts and "
               "the Geocentric/Heliocentric analysis charts.\n\n"
               "The PC Atlas option looks places up in the outside PC Atlas instead of the atlas "
               "that comes with Celestark. Tick it only when that atlas is installed.";
    if (link == "Picture1")
        return "The ticked bodies and points are calculated and drawn in the charts beside the "
               "Sun, Moon and planets: the planetoids Quaoar and Sedna, Chiron, the asteroids "
               "Vesta, Juno, Ceres and Pallas, the Part of Fortune, and the chart stars and fixed "
               "points chosen in the star options.\n\n"
               "The epoch to birth sectors are drawn in the prenatal charts only.";
    return {};
}

} // namespace celestark
