#pragma once
// What the STAR DATABASE, STAR OPTIONS, NAME STAR GROUPS and FIXED POINTS windows do with
// stars.mdb and the star options. The windows themselves only show and pass on the fields.
#include "session/messages.h"
#include "store/store_types.h"

#include <array>
#include <string>
#include <vector>

namespace celestark {

struct Session;

// A line of the star or fixed point list with the bookmark of its row.
struct StarListLine {
    std::string text, bookmark;
};

// STAR DATABASE. The stars of a constellation in number order ("No constallation selected" for
// an empty choice; "There are no stars for this constellation" when it has none), or of a group
// of the screen's group list in catalogue order ("No group selected"). A line: the star's number,
// or its Greek letter in words with the mark that tells stars of one letter apart; the
// constellation; the name; "(" number ") ".
std::vector<StarListLine> list_constellation(Session& s, const std::string& constellation,
                                             MessageSink& sink);
std::vector<StarListLine> list_group(Session& s, const std::string& group, MessageSink& sink);
std::string star_list_line(const std::string& star_number, const std::string& greek_text,
                           const std::string& same_letter, const std::string& constellation,
                           const std::string& star_name, long long number);

// The screen's group list: "Basic star zodiac stars", "Star Group stars in chart", the twelve
// user groups by their names, "Excluded stars".
std::vector<std::string> star_database_groups(Session& s);
// The analysis pages' group list: "None", "Basic Star Zodiac stars", "Star Group for charts", the
// twelve user groups, "All Stars".
std::vector<std::string> star_analysis_groups(Session& s);

inline constexpr const char* star_details_title =
    "Star Details - only the white fields can be edited";
// The fields the screen shows of a star, by field name; empty when the bookmark names no row.
std::vector<std::pair<std::string, store::Value>> show_star(Session& s,
                                                            const std::string& bookmark);

// Writes one edited field of the star at the bookmark at once (edit, set, update). `control` is
// the screen's field: star_name, star_name_meaning, star_description, star_glyph, star_in_zodiac,
// star_line_to, star_line_to_2, star_line_to_hd, star_selection_1 to _3, star_selection_2_1 to
// _2_10, star_selection_4, star_distance, star_luminosity, star_absolute_magnitude,
// luminosity_class, spectral_type, hic_number. Numbers take the lenient text-to-number rule, the
// boxes "True" or "False" (or any number). A failure is told through the sink and returned.
store::Outcome set_star_field(Session& s, const std::string& bookmark, const std::string& control,
                              const std::string& text, MessageSink& sink);
// Leaving the window: the star caches and "Star Group for charts" are read again and checked.
void leave_star_database(Session& s, MessageSink& sink);

// STAR OPTIONS. Checks a value typed into an option of the window; a value out of range shows its
// message and is not stored. Options without a rule are stored as typed.
bool check_star_option(const std::string& field, const std::string& text, MessageSink& sink);
store::Outcome set_star_option(Session& s, const std::string& field, const std::string& text,
                               MessageSink& sink);

// NAME STAR GROUPS: the names of the twelve user groups (options star_1 to star_12); leaving the
// window reads the option screen again.
store::Outcome set_star_group_name(Session& s, int group, const std::string& name,
                                   MessageSink& sink);
void leave_name_star_groups(Session& s, MessageSink& sink);

// FIXED POINTS.
std::vector<StarListLine> fixed_list(Session& s);
struct FixedPointWindow {
    std::string fixed_name, fixed_degs, fixed_mins, fixed_world_view, fixed_zodiac, fixed_sigil;
    bool fixed_active = false;
};
// The row at the bookmark as the frame "EDIT FIXED POINT" shows it.
FixedPointWindow show_fixed_point(Session& s, const std::string& bookmark);
inline constexpr std::array<const char*, 4> fixed_world_views = {"Geocentric", "Heliocentric",
                                                                 "Lemnicentric", "Tychonic"};
// "Tropical", "Draconic" and the zodiacs of the zodiac table in table order. A failure reading
// the table is fatal (CK27).
std::vector<std::string> fixed_zodiac_list(Session& s, MessageSink& sink);
// Writes one field of the point at the bookmark (fixed_name, fixed_active, fixed_degs,
// fixed_mins, fixed_world_view, fixed_zodiac, fixed_sigil). Degrees and minutes pass the field
// check first (0 to 359, 0 to 59); a failing value shows its message and is not stored.
store::Outcome set_fixed_field(Session& s, const std::string& bookmark, const std::string& control,
                               const std::string& text, MessageSink& sink);

} // namespace celestark
