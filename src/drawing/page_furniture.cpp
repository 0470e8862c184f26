#include "drawing/page_furniture.h"

#include "aspects/aspect_search.h"
#include "drawing/wheel.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"

#include <algorithm>
#include <cmath>

namespace celestark::drawing {

namespace {

constexpr double one_radian = rad_to_deg;

std::string cell(const EventRow& row, int column) {
    return trim(row[static_cast<std::size_t>(column)]);
}

std::string two(long long v) {
    return two_digits(v);
}

// "51°30'N", with seconds when the option asks for them.
std::string place_angle(const EventRow& row, int deg, int dir, int min, int sec, bool secs) {
    std::string t =
        cell(row, deg) + "\xC2\xB0" +
        two(static_cast<long long>(text_to_number(row[static_cast<std::size_t>(min)]))) + "'";
    if (secs)
        t += two(static_cast<long long>(text_to_number(row[static_cast<std::size_t>(sec)]))) + "\"";
    return t + cell(row, dir);
}

std::string hours_text(double hours) {
    const HoursMinutesSeconds h = split_hours(hours);
    return two(h.h) + ":" + two(h.m) + ":" + two(h.s);
}

// Every row of a table's font: the half blank of the cell margin.
void set_half_space(Drawing& g) {
    float w = 0, h = 0;
    g.display_text_w_h(" ", 1.0f, w, h);
    g.d.table_half_space = w / 2;
}

} // namespace

EventFacts event_facts(Drawing& g, int row_index) {
    const Session& s = g.s;
    const EventRow& row = s.event_slots[row_index];
    EventFacts f;
    f.number = row_index;
    std::string name;
    for (int c : {col::title, col::firstname, col::surname}) {
        const std::string part = cell(row, c);
        if (!part.empty()) name += (name.empty() ? "" : " ") + part;
    }
    const std::string kind = cell(row, col::event);
    if (!kind.empty()) name += (name.empty() ? "" : " - ") + kind;
    f.name = name;
    f.group = cell(row, col::group);
    f.version = cell(row, col::version);
    f.place = cell(row, col::place);
    const bool secs = g.d.page_options.lat_long_secs;
    f.latitude = place_angle(row, col::lat_deg, col::lat_ns, col::lat_min, col::lat_sec, secs);
    f.longitude = place_angle(row, col::long_deg, col::long_ew, col::long_min, col::long_sec, secs);
    f.weekday = std::string(
        day_names[static_cast<std::size_t>(std::clamp(s.engine.day_of_week_number, 0, 7))]);
    f.date = format_date(row[col::day], row[col::month], row[col::year], s.options.text);
    f.julian = cell(row, col::gj) != "G";
    f.time = format_time(row[col::hours], row[col::mins], row[col::secs], s.options.text);
    const std::string lz = cell(row, col::lz);
    if (lz == "L")
        f.time_kind = "Local Time";
    else if (lz == "Z")
        f.time_kind = "Time Zone " + cell(row, col::time_zone);
    else
        f.time_kind = "Meridian " + cell(row, col::med_deg) + cell(row, col::med_ew) +
                      two(static_cast<long long>(text_to_number(row[col::med_min])));
    const double dst = text_to_number(row[col::dst]);
    if (dst == 1)
        f.daylight = ", One hour daylight saving time";
    else if (dst != 0)
        f.daylight = ", Daylight Saving Time " + trim(number_text(dst)) + " hours";
    f.sidereal_time = hours_text(s.engine.local_sidereal_hours);
    f.vernal_point = trim(format_position_dms(s.engine.zodiac_offset, s.chart.sign_form));
    f.zodiac = s.chart.zodiac;
    f.house_system = s.chart.house_system;
    f.aspect_set = s.chart.aspect_set_charts;
    return f;
}

float page_header(Drawing& g, float x, bool with_aspect_set, const std::string& view, float y_first,
                  bool with_zodiac, int row, float max_width) {
    const EventFacts f = event_facts(g, row);
    g.display_font_size(g.d.table_font_size);
    std::vector<std::string> lines;
    std::string title = "(" + std::to_string(f.number) + ") " + f.name;
    if (!f.group.empty()) title += " of " + f.group;
    if (!f.version.empty()) title += " (V. " + f.version + ")";
    title += " - " + view;
    lines.push_back(title);
    lines.push_back((f.place.empty() ? std::string() : "At " + f.place + ", ") + "Latitude " +
                    f.latitude + ", Longitude " + f.longitude);
    lines.push_back("Date: " + f.weekday + ", " + f.date + (f.julian ? " Julian" : " Gregorian"));
    lines.push_back("Time: " + f.time + ", " + f.time_kind + f.daylight);
    std::string sidereal = "Sidereal Time " + f.sidereal_time;
    if (f.zodiac != "Tropical" && f.zodiac != "Draconic")
        sidereal += ", Vernal Point " + f.vernal_point;
    if (view == "Geocentric" || view == "Tychonic" || view == "Geo/Helio")
        sidereal += ",  House System: " + f.house_system;
    lines.push_back(sidereal);
    if (with_zodiac) {
        std::string z = "Zodiac: " + f.zodiac;
        if (with_aspect_set) z += ", Aspect set: " + f.aspect_set;
        lines.push_back(z);
    }
    return draw_header_lines(g, x, y_first, lines, max_width);
}

float draw_header_lines(Drawing& g, float x, float y_first, const std::vector<std::string>& lines,
                        float max_width) {
    float y = y_first;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        // A line wider than the room is broken after its commas.
        std::string rest = lines[i];
        while (!rest.empty()) {
            std::string part = rest;
            float w = 0, h = 0;
            g.display_text_w_h(part, 1.0f, w, h);
            while (max_width > 0 && w > max_width) {
                const std::size_t comma = part.rfind(", ", part.size() - 2);
                if (comma == std::string::npos || comma == 0) break;
                part = part.substr(0, comma + 1);
                g.display_text_w_h(part, 1.0f, w, h);
            }
            if (i == 0)
                g.display_name_outside(x, y, part);
            else
                g.display_text_outside(x, y, part);
            y += h;
            rest = part.size() < rest.size() ? "   " + trim(rest.substr(part.size())) : "";
        }
    }
    return y;
}

void draw_centre_data(Drawing& g, float cx, float cy, float r_inner, int row) {
    const EventFacts f = event_facts(g, row);
    std::vector<std::string> lines;
    std::string name = f.name;
    if (!f.group.empty()) name += " of " + f.group;
    lines.push_back(name);
    if (!f.place.empty()) lines.push_back("At " + f.place);
    lines.push_back("Lat: " + f.latitude + ", Long: " + f.longitude);
    lines.push_back(f.weekday + " " + f.date + (f.julian ? " J" : ""));
    lines.push_back("Time: " + f.time + " " + f.time_kind + f.daylight);
    std::string zodiac = "Zodiac: " + f.zodiac;
    if (f.zodiac != "Tropical" && f.zodiac != "Draconic")
        zodiac += ", Vernal Point: " + f.vernal_point;
    lines.push_back(zodiac);
    if (f.house_system != "None") lines.push_back("Houses: " + f.house_system);
    const float size = r_inner / 170;
    g.display_font_size(size);
    const float line = size * 20 * 1.15f;
    float y = cy - line * static_cast<float>(lines.size()) / 2;
    for (const std::string& l : lines) {
        float w = 0, h = 0;
        g.display_text_w_h(l, 0.95f, w, h);
        // A line too wide for the circle is set smaller.
        const float room = 2 * std::sqrt(std::max(0.0f, r_inner * r_inner - (y - cy) * (y - cy)));
        if (w > room * 0.92f && w > 0) {
            g.display_font_size(size * room * 0.92f / w);
            g.display_text_w_h(l, 0.95f, w, h);
        }
        g.display_text_inside(cx - w / 2, y, l);
        g.display_font_size(size);
        y += line;
    }
}

float draw_mixed_outside(Drawing& g, float x, float y, std::string_view text) {
    const float start = x;
    std::size_t i = 0;
    while (i < text.size()) {
        // A run of plain letters, or of symbol codes (the upper half of the code page).
        const bool symbols = static_cast<unsigned char>(text[i]) >= 0x80;
        std::size_t j = i;
        while (j < text.size() && (static_cast<unsigned char>(text[j]) >= 0x80) == symbols) ++j;
        const std::string_view run = text.substr(i, j - i);
        float w = 0, h = 0;
        if (symbols) {
            g.display_glyph_outside(x, y, run);
            g.display_symbol_w_h(run, 1.0f, w, h);
        } else {
            g.display_text_outside(x, y, run);
            g.display_text_w_h(run, 1.0f, w, h);
        }
        x += w;
        i = j;
    }
    return x - start;
}

float character_height_at_20pt(Drawing& g) {
    if (g.d.character_height_at_20pt <= 0) {
        const float was = g.d.current_font_size;
        g.display_font_size(20);
        float w = 0, h = 0;
        g.display_text_w_h("ABC", 1.0f, w, h);
        g.d.character_height_at_20pt = h;
        g.display_font_size(was > 0.01f ? was : 6.0f);
    }
    return g.d.character_height_at_20pt;
}

void fit_table_font(Drawing& g, float row_height, float size) {
    const float height = character_height_at_20pt(g);
    float points = row_height * 20 / height / (size > 0 ? size : 1);
    if (!(points >= 0.01f)) points = 0.01f;
    g.d.table_font_size = points;
    g.display_font_size(points);
    set_half_space(g);
}

std::vector<ListedBody> listed_bodies(const Session& s) {
    const PositionLists& p = s.engine.pos;
    std::vector<ListedBody> out;
    const std::string& view = s.chart.world_view;
    const bool outer_ok = s.engine.outer_planets_ok;
    auto skip = [&](unsigned char g) {
        return !outer_ok && (g == glyph::uranus || g == glyph::neptune || g == glyph::pluto);
    };
    if (view == "Heliocentric") {
        for (int i = 0; i < p.helio_count; ++i) {
            const auto k = static_cast<std::size_t>(i);
            if (p.helio_glyph[k] == 0 || skip(p.helio_glyph[k])) continue;
            out.push_back({p.helio_glyph[k], p.helio_long[k], p.helio_lat[k], p.helio_dist[k],
                           false, p.helio_node[k], p.helio_peri[k]});
        }
    } else if (view == "Lemnicentric") {
        for (int i = 0; i < p.lemni_count; ++i) {
            const auto k = static_cast<std::size_t>(i);
            if (p.lemni_glyph[k] == 0 || skip(p.lemni_glyph[k])) continue;
            out.push_back({p.lemni_glyph[k], p.lemni_long[k], p.lemni_lat[k], p.lemni_dist[k],
                           p.lemni_retro[k + 1] == 'R', 0, 0});
        }
    } else {
        for (int i = 0; i < p.geo_count; ++i) {
            const auto k = static_cast<std::size_t>(i);
            if (p.geo_glyph[k] == 0 || skip(p.geo_glyph[k])) continue;
            out.push_back({p.geo_glyph[k], p.geo_long[k], p.geo_lat[k], p.geo_dist[k],
                           p.geo_retro[k + 1] == 'R', 0, 0});
        }
    }
    return out;
}

float draw_columns(Drawing& g, float x, float y_top, float y_bottom, float size,
                   std::vector<TableColumn>& columns, int rows) {
    const float row_height = (y_bottom - y_top) / static_cast<float>(rows + 1);
    fit_table_font(g, row_height, size);
    const float half = g.d.table_half_space;
    float cx = x + half;
    for (TableColumn& c : columns) {
        float width = 0, w = 0, h = 0;
        g.display_text_w_h(c.head.empty() ? "ABC" : c.head, 1.0f, w, h);
        width = w;
        for (const std::string& t : c.cells) {
            if (c.symbols)
                g.display_symbol_w_h(t, 1.0f, w, h);
            else
                g.display_text_w_h(t, 1.0f, w, h);
            width = std::max(width, w);
        }
        g.display_text_outside(cx, y_top, c.head);
        float y = y_top + row_height;
        for (const std::string& t : c.cells) {
            if (c.symbols)
                g.display_glyph_outside(cx, y, t);
            else
                g.display_text_outside(cx, y, t);
            y += row_height;
        }
        cx += width + 2 * half;
    }
    return cx - x;
}

namespace {

std::string glyph_text(unsigned char c) {
    return std::string(1, static_cast<char>(c));
}

} // namespace

float position_table(Drawing& g, float x, float y_top, float y_bottom, float size) {
    const auto bodies = listed_bodies(g.s);
    TableColumn pl{{}, "Pl", true}, pos{{}, "Position", true};
    for (const ListedBody& b : bodies) {
        pl.cells.push_back(glyph_text(b.glyph));
        pos.cells.push_back(format_position_dm(b.longitude, g.s.chart.sign_form) +
                            (b.retrograde ? " R" : "  "));
    }
    std::vector<TableColumn> cols{pl, pos};
    return draw_columns(g, x, y_top, y_bottom, size, cols, static_cast<int>(bodies.size()));
}

float latitude_table(Drawing& g, float x, float y_top, float y_bottom, float size) {
    const auto bodies = listed_bodies(g.s);
    const Nutation& n = g.s.engine.nutation;
    TableColumn pl{{}, "Pl", true}, lat{{}, " Lat.", true}, dec{{}, "Decl.", true};
    for (const ListedBody& b : bodies) {
        pl.cells.push_back(glyph_text(b.glyph));
        lat.cells.push_back(format_lat_dm(b.latitude));
        // The declination from the tropical longitude and the latitude, on the true obliquity.
        const double l = b.longitude - g.s.engine.zodiac_offset;
        const double sd = std::sin(b.latitude) * n.cos_obliquity +
                          std::cos(b.latitude) * n.sin_obliquity * std::sin(l);
        dec.cells.push_back(format_lat_dm(std::asin(std::clamp(sd, -1.0, 1.0))));
    }
    std::vector<TableColumn> cols{pl, lat, dec};
    return draw_columns(g, x, y_top, y_bottom, size, cols, static_cast<int>(bodies.size()));
}

float nodes_table(Drawing& g, float x, float y_top, float y_bottom, float size) {
    const PositionLists& p = g.s.engine.pos;
    TableColumn pl{{}, "Pl", true}, nodes{{}, "Nodes", true}, peri{{}, "Perih.", true};
    for (int i = 0; i < p.helio_count_base; ++i) {
        const auto k = static_cast<std::size_t>(i);
        if (p.helio_glyph[k] == 0) continue;
        pl.cells.push_back(glyph_text(p.helio_glyph[k]));
        nodes.cells.push_back(format_position_dm(p.helio_node[k], g.s.chart.sign_form));
        peri.cells.push_back(format_position_dm(p.helio_peri[k], g.s.chart.sign_form));
    }
    const int rows = static_cast<int>(pl.cells.size());
    std::vector<TableColumn> cols{pl, nodes, peri};
    return draw_columns(g, x, y_top, y_bottom, size, cols, rows);
}

float house_table(Drawing& g, float x, float y_top, float y_bottom, float size, int row) {
    const Session& s = g.s;
    const bool progressed = cell(s.event_slots[row], col::event) == "Progressed";
    TableColumn number{{}, progressed ? "Houses " : "Houses", false}, pos{{}, " ", true};
    for (int i = 1; i <= 12; ++i) {
        number.cells.push_back(std::to_string(i));
        pos.cells.push_back(format_position_dm(s.engine.house_cusps[static_cast<std::size_t>(i)],
                                               s.chart.sign_form));
    }
    std::vector<TableColumn> cols{number, pos};
    return draw_columns(g, x, y_top, y_bottom, size, cols, 12);
}

void count_elements(Drawing& g) {
    const Session& s = g.s;
    auto& counts = g.d.element_counts;
    for (auto& row : counts) row.fill(0);
    const PositionLists& p = s.engine.pos;
    const auto& starts = s.option_sets.zodiac.constellation_start;
    for (int i = 0; i < p.chart_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const unsigned char code = p.chart_glyph[k];
        if (code == glyph::north_node && s.chart.moon_node == 0) continue;
        if (code == glyph::perigee && s.chart.moon_peri == 0) continue;
        double lon = std::fmod(p.chart_long[k] * one_radian, 360.0);
        if (lon < 0) lon += 360;
        // The sign by the boundaries of the zodiac in force, compared in order.
        int sign = 11;
        for (int z = 0; z < 12; ++z) {
            const double from = starts[static_cast<std::size_t>(z)];
            const double to = starts[static_cast<std::size_t>((z + 1) % 12)];
            const double span = std::fmod(to - from + 720.0, 360.0);
            if (std::fmod(lon - from + 720.0, 360.0) < span) {
                sign = z;
                break;
            }
        }
        ++counts[static_cast<std::size_t>(sign % 4)][static_cast<std::size_t>(sign % 3)];
    }
}

float elements_table(Drawing& g, float x, float y_top, float y_bottom, float size) {
    count_elements(g);
    const float row_height = (y_bottom - y_top) / 5;
    fit_table_font(g, row_height, size);
    const float half = g.d.table_half_space;
    static constexpr const char* side[4] = {"Fire", "Ear", "Air", "Wat"};
    static constexpr const char* across[3] = {"Ca", "Fi", "Mu"};
    float w = 0, h = 0;
    g.display_text_w_h("Fire", 1.0f, w, h);
    const float first = w + 2 * half;
    g.display_text_w_h("Ca", 1.0f, w, h);
    const float column = std::max(w, 0.0f) + 2 * half;
    for (int c = 0; c < 3; ++c)
        g.display_text_outside(x + half + first + column * static_cast<float>(c), y_top, across[c]);
    for (int r = 0; r < 4; ++r) {
        const float y = y_top + row_height * static_cast<float>(r + 1);
        g.display_text_outside(x + half, y, side[r]);
        for (int c = 0; c < 3; ++c) {
            const std::string count = pad_left(
                std::to_string(
                    g.d.element_counts[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)]),
                2);
            g.display_glyph_outside(x + half + first + column * static_cast<float>(c), y, count);
        }
    }
    return first + 3 * column + 2 * half;
}

float aspect_grid(Drawing& g, const AspectMatrix& m, const unsigned char* glyphs, int count,
                  float x, float y_top, float y_bottom, float size) {
    count = std::min(count, m.rows);
    if (count <= 0) return 0;
    const int rows = std::max(11, count + 1);
    const float cell_size = (y_bottom - y_top) / static_cast<float>(rows);
    fit_table_font(g, cell_size, size);
    const Colour lines = g.d.line_colour_outside;
    // The bodies along the top and down the side, a cell of the lower triangle for each pair.
    for (int i = 1; i <= count; ++i) {
        const std::string gl = glyph_text(glyphs[i - 1]);
        float w = 0, h = 0;
        g.display_symbol_w_h(gl, 0.8f, w, h);
        const float cx = x + cell_size * static_cast<float>(i - 1);
        // The body's glyph closes its row, on the diagonal.
        g.display_glyph_outside(cx + (cell_size - w) / 2,
                                y_top + cell_size * static_cast<float>(i - 1) + (cell_size - h) / 2,
                                gl);
        for (int j = 1; j < i; ++j) {
            const float gx = x + cell_size * static_cast<float>(j - 1);
            const float gy = y_top + cell_size * static_cast<float>(i - 1);
            g.display_line(gx, gx + cell_size, gy + cell_size, gy + cell_size, lines, solid);
            g.display_line(gx, gx, gy, gy + cell_size, lines, solid);
            if (!m.in_aspect(i, j)) continue;
            const std::string& a = m.mark(i, j, 1);
            if (a.empty()) continue;
            g.display_symbol_w_h(a, 0.8f, w, h);
            g.display_glyph_outside(gx + (cell_size - w) / 2, gy + (cell_size - h) / 2, a);
        }
    }
    return cell_size * static_cast<float>(count);
}

void harmonics_page(Drawing& g) {
    Session& s = g.s;
    DrawingState& d = g.d;
    PositionLists& p = s.engine.pos;
    const float width = d.frame_right - d.frame_left, height = d.frame_bottom - d.frame_top;
    g.display_font_size(width / 700);
    const std::string title = s.chart.world_view + " Harmonics";
    float tw = 0, th = 0;
    g.display_text_w_h(title, 1.0f, tw, th);
    g.display_text_outside(d.frame_left + (width - tw) / 2, d.frame_top, title);
    // Five by five cells, each 1.15 times as high as wide; on a wide window the height decides.
    const float cell_w = std::min(width / 5, (height - th * 1.2f) / 5 / 1.15f);
    const float cell_h = cell_w * 1.15f;
    const float grid_left = d.frame_left + (width - cell_w * 5) / 2;
    const auto true_longs = p.chart_long;
    // Only conjunctions and oppositions of the set are looked for.
    AspectTable cap;
    const AspectTable& set = s.option_sets.aspects;
    for (int a = 0; a < set.aspect_count; ++a) {
        const auto k = static_cast<std::size_t>(a);
        if (set.angle[k] != 0 && set.angle[k] != 180) continue;
        ++cap.aspect_count;
        cap.angle.push_back(set.angle[k]);
        cap.digraph.push_back(set.digraph[k]);
        cap.glyph.push_back(set.glyph[k]);
        cap.in_aspectogram.push_back(set.in_aspectogram[k]);
        cap.orb_sun.push_back(set.orb_sun[k]);
        cap.orb_moon.push_back(set.orb_moon[k]);
        cap.orb_planets.push_back(set.orb_planets[k]);
        cap.orb_elements.push_back(set.orb_elements[k]);
        cap.orb_stars.push_back(set.orb_stars[k]);
    }
    for (int h = 1; h <= 25; ++h) {
        for (int i = 0; i < p.chart_count; ++i) {
            const auto k = static_cast<std::size_t>(i);
            p.chart_long[k] = std::fmod(true_longs[k] * h, two_pi);
        }
        search_aspects(cap, AspectList{p.chart_long.data(), p.chart_glyph.data(), p.chart_count},
                       s.stars.star_glyphs, s.aspect_matrices.chart);
        const int column = (h - 1) % 5, row = (h - 1) / 5;
        const float left = grid_left + cell_w * static_cast<float>(column);
        const float top = d.frame_top + th * 1.2f + cell_h * static_cast<float>(row);
        // The band at 0.7 of the half cell, the bodies inside it.
        const float R = cell_w / 2 * 0.9f;
        const float cx = left + cell_w / 2, cy = top + cell_h / 2 + cell_w * 0.04f;
        g.display_font_size(cell_w / 220);
        g.display_glyph_outside(left + cell_w * 0.04f, top, std::to_string(h));
        draw_zodiac_ring(g, cx, cy, R, R * 0.85f, 0);
        set_chart_detail(g, 0, 1);
        clear_plot_list(d.wheel);
        d.wheel.plot_count = 12;
        for (int i = 0; i < p.chart_count; ++i) {
            const auto k = static_cast<std::size_t>(i);
            const unsigned char code = p.chart_glyph[k];
            if (code == glyph::north_node && s.chart.moon_node == 0) continue;
            if (code == glyph::perigee && s.chart.moon_peri == 0) continue;
            if (code == glyph::ascendant || code == glyph::midheaven) continue;
            add_plot_entry(d.wheel, glyph_text(code), p.chart_long[k] * one_radian);
        }
        const float r_inner = R * 0.85f;
        plot_planets(g, cx, cy, r_inner, r_inner * 0.007f, 0, 1);
        g.display_circle(cx, cy, r_inner * 0.7f, d.line_colour_inside);
        draw_aspect_lines(g, s.aspect_matrices.chart, 0, cx, cy, r_inner * 0.7f, r_inner * 0.005f,
                          false, 1, s.aspect_matrices.chart.rows);
    }
    p.chart_long = true_longs;
}

} // namespace celestark::drawing
