#include "engine/fixed_points.h"

#include "engine/chart_steps.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"

namespace celestark {

namespace {

// Appends to one of the lists of a world view and to the chart list, as far as both have room.
template <std::size_t N>
void append(std::array<double, N>& lon, std::array<double, N>& lat, std::array<double, N>& dist,
            std::array<unsigned char, N>& glyphs, int& count, PositionLists& p, double longitude,
            unsigned char sigil) {
    if (count >= static_cast<int>(N) || p.chart_count >= chart_capacity) return;
    const auto k = static_cast<std::size_t>(count++);
    lon[k] = longitude;
    lat[k] = 0;
    dist[k] = 0;
    glyphs[k] = sigil;
    const auto c = static_cast<std::size_t>(p.chart_count++);
    p.chart_long[c] = longitude;
    p.chart_glyph[c] = sigil;
}

void add_to_geo(PositionLists& p, double longitude, unsigned char sigil) {
    if (p.geo_count < geo_capacity) p.geo_retro[static_cast<std::size_t>(p.geo_count) + 1] = 0;
    append(p.geo_long, p.geo_lat, p.geo_dist, p.geo_glyph, p.geo_count, p, longitude, sigil);
}
void add_to_helio(PositionLists& p, double longitude, unsigned char sigil) {
    append(p.helio_long, p.helio_lat, p.helio_dist, p.helio_glyph, p.helio_count, p, longitude,
           sigil);
}
void add_to_lemni(PositionLists& p, double longitude, unsigned char sigil) {
    if (p.lemni_count < lemni_capacity)
        p.lemni_retro[static_cast<std::size_t>(p.lemni_count) + 1] = 0;
    append(p.lemni_long, p.lemni_lat, p.lemni_dist, p.lemni_glyph, p.lemni_count, p, longitude,
           sigil);
}

} // namespace

void add_fixed_points(Session& s) {
    if (s.stars.catalogue) s.stars.catalogue->refresh_fixed_points(s.stars);
    const std::string& view = s.chart.world_view;
    PositionLists& p = s.engine.pos;
    for (const FixedPoint& f : s.stars.fixed_points) {
        if (!f.active || f.zodiac != s.chart.zodiac) continue;
        // Already a longitude of this zodiac: the zodiac offset is not added.
        const double longitude = (f.degs + f.mins / 60) * deg_to_rad;
        if (f.world_view == view) {
            if (view == "Geocentric" || view == "Tychonic")
                add_to_geo(p, longitude, f.sigil);
            else if (view == "Heliocentric")
                add_to_helio(p, longitude, f.sigil);
            else if (view == "Lemnicentric")
                add_to_lemni(p, longitude, f.sigil);
        }
        if (view == "Geo/Helio") {
            if (f.world_view == "Geocentric")
                add_to_geo(p, longitude, f.sigil);
            else if (f.world_view == "Heliocentric")
                add_to_helio(p, longitude, f.sigil);
        }
    }
}

bool calculate_part_of_chiron(const Session& s, double& part) {
    const PositionLists& p = s.engine.pos;
    for (int i = 0; i < p.geo_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        if (p.geo_glyph[k] != glyph::chiron) continue;
        const double saturn = p.geo_long[geo::saturn], uranus = p.geo_long[geo::uranus];
        const double midpoint = saturn + rad_diff(uranus, saturn) / 2;
        part = s.engine.ascendant + p.geo_long[k] - midpoint;
        return true;
    }
    return false;
}

void add_part_of_chiron(Session& s) {
    if (s.chart.part_of_chiron != 1 || s.chart.chiron != 1 || !s.engine.chiron_table_ok) return;
    double part = 0;
    if (!calculate_part_of_chiron(s, part)) return;
    add_to_geo(s.engine.pos, part, glyph::part_of_chiron);
}

} // namespace celestark
