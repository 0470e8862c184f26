#pragma once
// The star analysis: the catalogue stars of a group that stand within their orb of the points of
// the last chart ("Geocentric star analysis for " + the event, in longitude, in longitude and
// latitude, and on the angles). The pages that show the hits come with the drawing.
#include "session/star_state.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace celestark {

struct Session;

// The group names of the analysis pages, with the twelve user groups between "Star Group for
// charts" and "All Stars".
inline constexpr const char* no_star_group = "None";
inline constexpr const char* zodiac_star_group = "Basic Star Zodiac stars";
inline constexpr const char* chart_star_group = "Star Group for charts";
inline constexpr const char* all_stars_group = "All Stars";

// The field of `stars` that marks a group's stars: "in_zodiac", "sel_1", a user group's field,
// "sel_4" for "Excluded stars", or an empty text for "All Stars". Both the analysis pages' and the
// star database screen's names are known. Nothing for "None" and for a name that is no group.
std::optional<std::string> star_group_field(const std::string& group,
                                            const std::array<std::string, 12>& user_groups);

enum class StarAnalysisKind {
    longitude, // the chart points by longitude
    long_lat,  // the same, and the latitudes too within the orb
    horizon,   // the Ascendant, Descendant, Midheaven and Imum Coeli by longitude
};

struct StarAnalysisPoint {
    unsigned char glyph = 0;
    double longitude = 0, latitude = 0; // radians
};
// The points of the last chart an analysis takes: the chart list (with the latitudes of its geo
// entries, 0 for the chart points), without the stars in charts themselves; for the horizon the
// four angles.
std::vector<StarAnalysisPoint> star_analysis_points(const Session& s, StarAnalysisKind kind);

struct StarHit : StarDescription {
    unsigned char point = 0; // the chart point's glyph
    double orb = 0;          // degrees: the star's longitude less the point's
    float orb_limit = 0;     // degrees: the orb the set gives the star
    // The star as the page names it: its Greek letter, else its number, else its name.
    std::string label() const;
    bool label_is_greek() const { return !greek_letter.empty(); }
};

struct StarAnalysis {
    bool skipped = false;  // the group "None" (or no group of that name): no page
    bool too_many = false; // more hits than the page holds: it ends with "Too many hits"
    std::vector<StarHit> hits;
};
inline constexpr const char* too_many_hits = "Too many hits";
inline constexpr const char* star_analysis_heading_longitude =
    " LONGITUDES                       ORB";
inline constexpr const char* star_analysis_heading_data = " m      M  Spectra   ly            ORB";

// For each point in turn and each star of the group in catalogue order: the star's place at the
// moment of the last chart (a negative longitude with 2 pi added), its orb of the orb set ("1" to
// "9"; an orb of 0 leaves it out), and a hit when the separation is below the orb. Excluded stars
// never take part. Stops after `max_hits` hits.
// The user groups' names (the options star_1 to star_12) and the orb options come from the
// option record.
StarAnalysis star_analysis(Session& s, const std::string& group, const std::string& orb_set,
                           StarAnalysisKind kind, std::size_t max_hits,
                           const std::array<std::string, 12>& user_groups,
                           const StarOrbOptions& orbs);

} // namespace celestark
