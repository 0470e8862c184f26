#include "engine/star_analysis.h"

#include "engine/stars.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"

#include <algorithm>
#include <cmath>

namespace celestark {

std::optional<std::string> star_group_field(const std::string& group,
                                            const std::array<std::string, 12>& user_groups) {
    if (group == zodiac_star_group || group == zodiac_group) return "in_zodiac";
    if (group == chart_star_group || group == chart_group) return "sel_1";
    if (group == all_stars_group) return std::string();
    if (group == excluded_group) return "sel_4";
    if (trim(group).empty() || group == no_star_group) return std::nullopt;
    for (std::size_t i = 0; i < user_groups.size(); ++i)
        if (group == user_groups[i]) return user_group_fields[i];
    return std::nullopt;
}

std::vector<StarAnalysisPoint> star_analysis_points(const Session& s, StarAnalysisKind kind) {
    const EngineState& e = s.engine;
    const PositionLists& p = e.pos;
    std::vector<StarAnalysisPoint> points;
    if (kind == StarAnalysisKind::horizon) {
        points.push_back({glyph::ascendant, e.ascendant, 0});
        points.push_back({glyph::descendant, norm_rad(e.ascendant + pi), 0});
        points.push_back({glyph::midheaven, e.midheaven, 0});
        points.push_back({glyph::imum_coeli, norm_rad(e.midheaven + pi), 0});
        return points;
    }
    const auto& stars = s.stars.star_glyphs;
    for (int i = 0; i < p.chart_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const unsigned char g = p.chart_glyph[k];
        if (g != 0 && std::find(stars.begin(), stars.end(), g) != stars.end()) continue;
        points.push_back({g, p.chart_long[k], i < p.geo_count ? p.geo_lat[k] : 0.0});
    }
    return points;
}

std::string StarHit::label() const {
    if (!trim(greek_letter).empty()) return greek_letter;
    if (const std::string n = trim(star_number); !n.empty() && n != "0") return n;
    return star_name;
}

namespace {

// A star of the group with its place at the moment.
struct PlacedStar {
    double longitude = 0, latitude = 0; // radians
    float orb = 0;                      // degrees
    StarHit data;
};

} // namespace

StarAnalysis star_analysis(Session& s, const std::string& group, const std::string& orb_set,
                           StarAnalysisKind kind, std::size_t max_hits,
                           const std::array<std::string, 12>& user_groups,
                           const StarOrbOptions& orbs) {
    StarAnalysis result;
    const auto field = star_group_field(group, user_groups);
    if (!field) {
        result.skipped = true;
        return result;
    }
    if (!s.stars.catalogue) return result;

    // The group's stars, each placed once.
    const StarMoment moment = star_moment(s);
    std::vector<PlacedStar> stars;
    for (const CatalogueStar& c : s.stars.catalogue->group_stars(*field)) {
        PlacedStar star;
        star.orb = star_orb(orbs, orb_set, c.magnitude, c.absolute_magnitude);
        if (star.orb == 0) continue;
        star_place_of_date(c.ra, c.dec, c.pm_ra, c.pm_dec, moment, star.longitude, star.latitude);
        if (star.longitude < 0) star.longitude += two_pi;
        StarHit& d = star.data;
        static_cast<StarDescription&>(d) = c;
        d.orb_limit = star.orb;
        stars.push_back(std::move(star));
    }

    for (const StarAnalysisPoint& point : star_analysis_points(s, kind)) {
        for (const PlacedStar& star : stars) {
            const double separation = rad_diff(star.longitude, point.longitude) * rad_to_deg;
            if (std::fabs(separation) >= star.orb) continue;
            if (kind == StarAnalysisKind::long_lat &&
                std::fabs(star.latitude - point.latitude) * rad_to_deg >= star.orb)
                continue;
            if (result.hits.size() >= max_hits) {
                result.too_many = true;
                return result;
            }
            StarHit hit = star.data;
            hit.point = point.glyph;
            hit.orb = separation;
            result.hits.push_back(std::move(hit));
        }
    }
    return result;
}

} // namespace celestark
