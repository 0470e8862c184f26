#include "tables/similars.h"

#include "engine/chart.h"
#include "engine/table_bodies.h"
#include "engine/time_base.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/event_time.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/star_state.h"
#include "session/text.h"
#include "store/event_database.h"
#include "store/event_rows.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/option_store.h"
#include "store/store_files.h"
#include "store/table_store.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace celestark {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// The work rows of a run: the event, its epoch, the table event and its epoch.
constexpr int event_work_row = slot::work, event_epoch_row = slot::work + 1,
              table_work_row = slot::work + 2, table_epoch_row = slot::work + 3;

// Radio groups whose value is kept as the name of the button chosen.
const char* const world_view_names[] = {"geo", "her", "hel", "lem", "geo_hel", "hel_geo"};

struct BodyBox {
    const char* stem;
    const char* caption;
    unsigned char glyph; // 0: a house or the stars
    int orb_class;
};

const std::vector<BodyBox>& body_boxes() {
    static const std::vector<BodyBox> boxes = [] {
        std::vector<BodyBox> b = {
            {"sun", "Sun", glyph::sun, 1},
            {"earth", "Earth", glyph::earth, 1},
            {"moon", "Moon", glyph::moon, 2},
            {"nn", "Node", glyph::north_node, 4},
            {"perigee", "Perigee", glyph::perigee, 4},
            {"mercury", "Mercury", glyph::mercury, 3},
            {"venus", "Venus", glyph::venus, 3},
            {"mars", "Mars", glyph::mars, 3},
            {"jupiter", "Jupiter", glyph::jupiter, 3},
            {"saturn", "Saturn", glyph::saturn, 3},
            {"uranus", "Uranus", glyph::uranus, 3},
            {"neptune", "Neptune", glyph::neptune, 3},
            {"pluto", "Pluto", glyph::pluto, 3},
            {"chiron", "Chiron", glyph::chiron, 3},
            {"vesta", "Vesta", glyph::vesta, 3},
            {"juno", "Juno", glyph::juno, 3},
            {"ceres", "Ceres", glyph::ceres, 3},
            {"pallas", "Pallas", glyph::pallas, 3},
            {"stars", "Stars", 0, 5},
        };
        static const char* const house_stems[12] = {"h1", "h2", "h3", "h4",  "h5",  "h6",
                                                    "h7", "h8", "h9", "h10", "h11", "h12"};
        static const char* const house_captions[12] = {
            "Ascendant",  "House 2", "House 3", "I.C.",       "House 5",  "House 6",
            "Descendant", "House 8", "House 9", "Mid Heaven", "House 11", "House 12"};
        for (int h = 0; h < 12; ++h) b.push_back({house_stems[h], house_captions[h], 0, -3});
        return b;
    }();
    return boxes;
}

double to_degrees(double radians) {
    return norm_deg(radians * rad_to_deg);
}

bool absent(double v) {
    return std::isnan(v);
}

std::string joined(std::initializer_list<std::string> parts, const char* between) {
    std::string out;
    for (const std::string& p : parts) {
        const std::string t = trim(p);
        if (t.empty()) continue;
        if (!out.empty()) out += between;
        out += t;
    }
    return out;
}

std::string event_name(const EventRow& row) {
    std::string name = joined({row[col::firstname], row[col::surname]}, " ");
    if (name.empty()) name = trim(row[col::event]);
    return name;
}

} // namespace

// ---- controls ----------------------------------------------------------------------------------

bool SimilarsParameters::on(std::string_view name) const {
    const auto it = values.find(name);
    return it != values.end() && (it->second == "1" || it->second == "-1");
}

std::string SimilarsParameters::text(std::string_view name) const {
    const auto it = values.find(name);
    return it == values.end() ? std::string() : it->second;
}

double SimilarsParameters::number(std::string_view name) const {
    return text_to_number(text(name));
}

const std::vector<SimilarsGroup>& similars_groups() {
    static const std::vector<SimilarsGroup> groups = {
        {"similars_world_view",
         {{"geo", "Geocentric"},
          {"her", "Tychonic"},
          {"hel", "Heliocentric"},
          {"lem", "Lemnicentric"},
          {"geo_hel", "Geocentric/Heliocentric"},
          {"hel_geo", "Heliocentric/Geocentric"}}},
        {"similars_epoch",
         {{"birth", "Normal (birth) chart only"}, {"epoch", "Epoch chart only"}, {"both", "Both"}}},
        {"similars_option",
         {{"similar_planets", "Similar planetary positions"},
          {"similar_charts", "Similar charts"},
          {"same_constellation", "Same constellation, decan or house"},
          {"similar_elements", "Aspects to heliocentric elements"},
          {"similar_angles", "Similar angular separations"}}},
        {"similars_planets",
         {{"planets_same", "Comparing the same planets in both charts"},
          {"planets_all", "Comparing different planets from each chart"}}},
        {"similars_angles",
         {{"angles_same", "Similar angles between the same planets in both charts"},
          {"angles_all", "Similar angles between different planets"}}},
        {"similars_elements",
         {{"elements_same", "With their own elements"},
          {"elements_all", "With elements of other planets"}}},
        {"similars_similar",
         {{"similar_same_same", "Same planets in similar positions"},
          {"similar_same_orientation", "Same planets in similar orientaion"},
          {"similar_all_same", "Other planets in similar positions"},
          {"similar_all_orientation", "Other planets in similar orientation"}}},
        {"similars_same",
         {{"same_same", "Same Planet in both charts"}, {"same_all", "Different planets "}}},
    };
    return groups;
}

const std::vector<SimilarsNumberField>& similars_number_fields() {
    static const std::vector<SimilarsNumberField> fields = {
        {"angles_orb_degs", "similars_angles_orb_degs", "Orb Degs"},
        {"angles_orb_mins", "similars_angles_orb_mins", "Mins"},
        {"orb_elements_degs", "similars_orb_elements_degs", "Orb Degs"},
        {"orb_elements_mins", "similars_orb_elements_mins", "Mins"},
        {"similar_orb_degs", "similars_similar_orb_degs", "Orb Degs"},
        {"similar_orb_mins", "similars_similar_orb_mins", "Mins"},
        {"similar_hits", "similars_similar_hits", "Min. No. of hits"},
    };
    return fields;
}

const std::vector<SimilarsChoice>& similars_screen_boxes() {
    static const std::vector<SimilarsChoice> boxes = {
        {"planets_aspect_set", "Using Aspect Set"},
        {"complementary", "Include supplementary angles (180-angle)"},
        {"elements_nodes", "Nodes"},
        {"elements_apsides", "Apsides"},
        {"nodes_square", "Squares to Nodes"},
        {"apsides_square", "Squares to Apsides"},
        {"in_constellation", "Constellation"},
        {"in_decan", "Decan"},
        {"in_house", "House"},
    };
    return boxes;
}

const std::vector<SimilarsChoice>& similars_bodies() {
    static const std::vector<SimilarsChoice> bodies = [] {
        std::vector<SimilarsChoice> out;
        for (const BodyBox& b : body_boxes()) out.push_back({b.stem, b.caption});
        return out;
    }();
    return bodies;
}

std::string panel_box(const SimilarsPanel& panel, std::string_view stem) {
    return std::string(panel.prefix) + std::string(stem) + panel.suffix;
}

namespace {

const SimilarsGroup* group_of(std::string_view control) {
    for (const SimilarsGroup& g : similars_groups())
        for (const SimilarsChoice& c : g.choices)
            if (control == c.name) return &g;
    return nullptr;
}

bool is_screen_box(std::string_view control) {
    for (const SimilarsChoice& c : similars_screen_boxes())
        if (control == c.name) return true;
    for (const SimilarsPanel& panel : {tables_panel, tables_panel_2, event_panel, event_panel_2})
        for (const BodyBox& b : body_boxes())
            if (control == panel_box(panel, b.stem)) return true;
    return false;
}

const SimilarsNumberField* number_field_of(std::string_view control) {
    for (const SimilarsNumberField& f : similars_number_fields())
        if (control == f.control) return &f;
    return nullptr;
}

std::string option_text(Session& s, const char* field) {
    const store::Value v = read_option(s, store::chart_options_table, field);
    return v.is_null() ? std::string() : trim(v.as_text());
}

void choose(SimilarsParameters& p, const SimilarsGroup& g, std::string_view chosen) {
    for (const SimilarsChoice& c : g.choices) p.values[c.name] = chosen == c.name ? "1" : "0";
}

} // namespace

SimilarsParameters similars_defaults(Session& s) {
    SimilarsParameters p;
    for (const SimilarsGroup& g : similars_groups()) {
        std::string kept = option_text(s, g.field);
        const bool known = std::any_of(g.choices.begin(), g.choices.end(),
                                       [&](const SimilarsChoice& c) { return kept == c.name; });
        choose(p, g, known ? kept : std::string(g.choices.front().name));
    }
    for (const SimilarsNumberField& f : similars_number_fields())
        p.values[f.control] = number_text(std::trunc(text_to_number(option_text(s, f.field))));
    p.values["planets_aspect_set"] = "1";
    p.values["aspect_set"] = option_text(s, "similars_planets_aspect_set");
    for (const SimilarsChoice& c : similars_screen_boxes())
        if (std::string_view(c.name) != "planets_aspect_set") p.values[c.name] = "0";
    p.values["elements_nodes"] = "1";
    p.values["in_constellation"] = "1";
    for (const SimilarsPanel& panel : {tables_panel, tables_panel_2, event_panel, event_panel_2})
        for (const BodyBox& b : body_boxes()) {
            const bool first = std::string_view(panel.suffix).empty();
            const bool sun_to_pluto = b.orb_class >= 1 && b.orb_class <= 3 &&
                                      b.glyph != glyph::earth && b.glyph != glyph::chiron &&
                                      b.glyph >= glyph::sun && b.glyph <= glyph::pluto;
            p.values[panel_box(panel, b.stem)] = first && sun_to_pluto ? "1" : "0";
        }
    return p;
}

std::string set_similars_control(SimilarsParameters& p, std::string_view name,
                                 std::string_view value) {
    const std::string n(name), v(value);
    if (n == "aspect_set") {
        p.values[n] = trim(v);
        return {};
    }
    if (number_field_of(n)) {
        const std::string t = trim(v);
        if (!t.empty() && (t.find_first_not_of("0123456789") != std::string::npos || t.size() > 4))
            return "the control '" + n + "' takes a whole number, not '" + v + "'";
        p.values[n] = t;
        return {};
    }
    const SimilarsGroup* g = group_of(n);
    if (!g && !is_screen_box(n)) return "there is no control '" + n + "' on the similars screen";
    if (v != "1" && v != "0") return "the control '" + n + "' takes 1 or 0, not '" + v + "'";
    if (g) {
        // A radio button is chosen, never cleared alone.
        if (v == "1") choose(p, *g, n);
        return {};
    }
    p.values[n] = v;
    return {};
}

bool similars_option_of(const SimilarsParameters& p, std::string_view control, std::string& field,
                        std::string& value) {
    if (control == "aspect_set") {
        field = "similars_planets_aspect_set";
        value = p.text("aspect_set");
        return true;
    }
    if (const SimilarsNumberField* f = number_field_of(control)) {
        field = f->field;
        value = number_text(std::trunc(p.number(control)));
        return true;
    }
    if (const SimilarsGroup* g = group_of(control)) {
        field = g->field;
        value.clear();
        for (const SimilarsChoice& c : g->choices)
            if (p.on(c.name)) value = c.name;
        return !value.empty();
    }
    return false;
}

SimilarsList similars_list(const SimilarsParameters& p) {
    if (p.on("similar_charts")) return SimilarsList::charts;
    if (p.on("same_constellation")) return SimilarsList::constellation;
    if (p.on("similar_elements")) return SimilarsList::elements;
    if (p.on("similar_angles")) return SimilarsList::angles;
    return SimilarsList::planets;
}

SimilarsViews similars_views(const SimilarsParameters& p) {
    if (p.on("her")) return {"Tychonic", "Tychonic"};
    if (p.on("hel")) return {"Heliocentric", "Heliocentric"};
    if (p.on("lem")) return {"Lemnicentric", "Lemnicentric"};
    if (p.on("geo_hel")) return {"Geocentric", "Heliocentric"};
    if (p.on("hel_geo")) return {"Heliocentric", "Geocentric"};
    return {"Geocentric", "Geocentric"};
}

std::string similars_view_text(const SimilarsParameters& p) {
    static const char* const texts[] = {"Geocentric ",
                                        "Tychonic ",
                                        "Heliocentic ",
                                        "Lemicentric ",
                                        "Heliocentric with Geocentric ",
                                        "Geocentric with Heliocentric "};
    for (std::size_t i = 0; i < std::size(world_view_names); ++i)
        if (p.on(world_view_names[i])) return texts[i];
    return texts[0];
}

// ---- bodies ------------------------------------------------------------------------------------

namespace {

SelectedBodies selected(const SimilarsParameters& p, const SimilarsPanel& panel,
                        const StarState& stars) {
    SelectedBodies out;
    int house = 0;
    for (const BodyBox& b : body_boxes()) {
        const bool is_house = b.glyph == 0 && b.orb_class < 0;
        if (!p.on(panel_box(panel, b.stem))) {
            if (is_house) ++house;
            continue;
        }
        if (is_house) {
            out.glyph.emplace_back(house_glyphs[static_cast<std::size_t>(house++)]);
            out.orb_class.push_back(b.orb_class);
        } else if (b.glyph == 0) {
            // The stars: every star the charts carry, each by its own code.
            for (int i = 0; i < stars.chart_star_count && i < max_chart_stars; ++i) {
                out.glyph.emplace_back(
                    1,
                    static_cast<char>(stars.chart_star_cache[static_cast<std::size_t>(i)].glyph));
                out.orb_class.push_back(5);
            }
        } else {
            out.glyph.emplace_back(1, static_cast<char>(b.glyph));
            out.orb_class.push_back(b.orb_class);
        }
    }
    return out;
}

unsigned char code_of(std::string_view glyph) {
    return glyph.size() == 1 ? static_cast<unsigned char>(glyph[0]) : 0;
}

} // namespace

SelectedBodies get_selected_planets(const SimilarsParameters& p, std::string_view prefix,
                                    const StarState& stars) {
    const SimilarsPanel panel = prefix.starts_with("event") ? event_panel : tables_panel;
    return selected(p, panel, stars);
}

SelectedBodies get_selected_planets_2(const SimilarsParameters& p, std::string_view prefix,
                                      const StarState& stars) {
    const SimilarsPanel panel = prefix.starts_with("event") ? event_panel_2 : tables_panel_2;
    return selected(p, panel, stars);
}

bool is_house_glyph(std::string_view glyph) {
    return std::any_of(house_glyphs.begin(), house_glyphs.end(),
                       [&](const char* h) { return glyph == h; });
}

std::string similars_glyph_cell(std::string_view glyph) {
    if (is_house_glyph(glyph)) return std::string(glyph) + "H";
    return std::string(glyph);
}

std::string similars_glyph_word(std::string_view glyph, const StarState& stars) {
    if (is_house_glyph(glyph)) return std::string(glyph) + "H";
    const unsigned char code = code_of(glyph);
    for (const BodyBox& b : body_boxes())
        if (b.glyph != 0 && b.glyph == code) return b.caption;
    for (int i = 0; i < stars.chart_star_count && i < max_chart_stars; ++i) {
        const ChartStar& star = stars.chart_star_cache[static_cast<std::size_t>(i)];
        if (star.glyph == code) return trim(star.star_name);
    }
    return symbol_text_utf8(glyph);
}

void get_planets_position(const Session& s, std::string_view view, const SelectedBodies& list,
                          std::vector<double>& positions) {
    const EngineState& e = s.engine;
    const PositionLists& p = e.pos;
    positions.assign(list.count(), nan);
    const bool geo_view = view == "Geocentric" || view == "Tychonic";
    const unsigned char* glyphs = p.geo_glyph.data();
    const double* longs = p.geo_long.data();
    int count = p.geo_count;
    if (view == "Heliocentric") {
        glyphs = p.helio_glyph.data();
        longs = p.helio_long.data();
        count = p.helio_count;
    } else if (view == "Lemnicentric") {
        glyphs = p.lemni_glyph.data();
        longs = p.lemni_long.data();
        count = p.lemni_count;
    }
    for (std::size_t i = 0; i < list.count(); ++i) {
        const std::string& g = list.glyph[i];
        if (list.orb_class[i] < 0) {
            if (!geo_view || !e.chart_has_houses) continue;
            for (std::size_t h = 0; h < house_glyphs.size(); ++h)
                if (g == house_glyphs[h]) positions[i] = to_degrees(e.house_cusps[h + 1]);
            continue;
        }
        const unsigned char code = code_of(g);
        for (int k = 0; k < count; ++k)
            if (glyphs[k] == code) {
                positions[i] = to_degrees(longs[k]);
                break;
            }
    }
}

void get_elements_position(const Session& s, const SelectedBodies& list, std::vector<double>& nodes,
                           std::vector<double>& perihelia) {
    const PositionLists& p = s.engine.pos;
    nodes.assign(list.count(), nan);
    perihelia.assign(list.count(), nan);
    for (std::size_t i = 0; i < list.count(); ++i) {
        const unsigned char code = code_of(list.glyph[i]);
        if (list.orb_class[i] < 0 || code == 0) continue;
        for (int k = 0; k < p.helio_count_base && k < helio_capacity; ++k)
            if (p.helio_glyph[static_cast<std::size_t>(k)] == code) {
                nodes[i] = to_degrees(p.helio_node[static_cast<std::size_t>(k)]);
                perihelia[i] = to_degrees(p.helio_peri[static_cast<std::size_t>(k)]);
                break;
            }
    }
}

double arc_degrees(double a, double b) {
    double d = std::fmod(a - b, 360.0);
    if (d >= 180) d -= 360;
    if (d < -180) d += 360;
    return d;
}

int pair_orb_class(int a, int b) {
    a = std::abs(a);
    b = std::abs(b);
    if (a == 5 && b == 5) return 0;
    for (int c : {5, 4, 1, 2})
        if (a == c || b == c) return c;
    return 3;
}

bool doubtful_version(std::string_view version) {
    const std::string v = trim(version);
    return v.size() == 1 && std::string_view("?!+=#*").find(v[0]) != std::string_view::npos;
}

namespace {

// The walk over boundaries (degrees) shared by the three lookups.
template <typename Boundary> int walk(double position, int n, Boundary boundary, int previous) {
    for (int c = 1; c <= n; ++c) {
        const double lower = boundary(c), upper = boundary(c % n + 1);
        if (norm_deg(lower) == norm_deg(position)) return c;
        const double a = arc_degrees(lower, position), b = arc_degrees(upper, position);
        if (std::fabs(a) < 90 && std::fabs(b) < 90 && a <= 0 && b > 0) return c;
    }
    return previous;
}

} // namespace

int constellation_number(double position, const std::array<float, 12>& boundaries, int previous) {
    return walk(
        position, 12,
        [&](int c) { return static_cast<double>(boundaries[static_cast<std::size_t>(c - 1)]); },
        previous);
}

int decan_number(double position, int previous) {
    return walk(
        position, 36, [](int c) { return (c - 1) * 10.0; }, previous);
}

int house_number(double position, const std::array<double, 13>& cusps, int previous) {
    return walk(
        position, 12, [&](int c) { return to_degrees(cusps[static_cast<std::size_t>(c)]); },
        previous);
}

// ---- checks ------------------------------------------------------------------------------------

SimilarsMessage similars_message(SimilarsFault fault) {
    switch (fault) {
    case SimilarsFault::no_event_planets:
        return {"NO EVENT PLANETS SELECTED", "You must select one or more event planets"};
    case SimilarsFault::no_table_planets:
        return {"NO TABLE PLANETS SELECTED", "You must select one or more table planets"};
    case SimilarsFault::no_comparison_type:
        return {"NO COMPARISON TYPE SELECTED",
                "You must select one or more of Constallation, Decan or House"};
    case SimilarsFault::no_orb:
        return {"NO ORB ENTERED", "You must enter an orb greater than 0"};
    case SimilarsFault::no_event_pair:
        return {"NO EVENT PLANETS SELECTED",
                "You must select at least one first and one second event planet"};
    case SimilarsFault::no_table_pair:
        return {"NO TABLE PLANETS SELECTED",
                "You must select at least one first and one second table planet"};
    case SimilarsFault::identical_event_planets:
        return {"IDENTICAL EVENT PLANETS SELECTED", "You must select different event planets"};
    case SimilarsFault::identical_table_planets:
        return {"IDENTICAL TABLE PLANETS SELECTED", "You must select different table planets"};
    case SimilarsFault::no_epoch:
        return {"NO EPOCH", "No EPOCH has been calculated for this event"};
    }
    return {"", ""};
}

namespace {

double orb_of(const SimilarsParameters& p, const char* degs, const char* mins) {
    return p.number(degs) + p.number(mins) / 60.0;
}

bool overlap(const SelectedBodies& a, const SelectedBodies& b) {
    for (const std::string& g : a.glyph)
        if (std::find(b.glyph.begin(), b.glyph.end(), g) != b.glyph.end()) return true;
    return false;
}

} // namespace

bool check_similars(const SimilarsParameters& p, const StarState& stars, SimilarsFault& fault) {
    const SimilarsList list = similars_list(p);
    const SelectedBodies event = get_selected_planets(p, "event", stars);
    const SelectedBodies table = get_selected_planets(p, "tables", stars);
    const auto fail = [&](SimilarsFault f) {
        fault = f;
        return true;
    };
    if (list == SimilarsList::angles) {
        const SelectedBodies event_2 = get_selected_planets_2(p, "event", stars);
        const SelectedBodies table_2 = get_selected_planets_2(p, "tables", stars);
        if (event.count() == 0 || event_2.count() == 0) return fail(SimilarsFault::no_event_pair);
        if (table.count() == 0 || table_2.count() == 0) return fail(SimilarsFault::no_table_pair);
        if (overlap(event, event_2)) return fail(SimilarsFault::identical_event_planets);
        if (overlap(table, table_2)) return fail(SimilarsFault::identical_table_planets);
        if (orb_of(p, "angles_orb_degs", "angles_orb_mins") <= 0)
            return fail(SimilarsFault::no_orb);
        return false;
    }
    if (event.count() == 0) return fail(SimilarsFault::no_event_planets);
    if (table.count() == 0) return fail(SimilarsFault::no_table_planets);
    if (list == SimilarsList::constellation && !p.on("in_constellation") && !p.on("in_decan") &&
        !p.on("in_house"))
        return fail(SimilarsFault::no_comparison_type);
    if (list == SimilarsList::elements && orb_of(p, "orb_elements_degs", "orb_elements_mins") <= 0)
        return fail(SimilarsFault::no_orb);
    if (list == SimilarsList::charts && orb_of(p, "similar_orb_degs", "similar_orb_mins") <= 0)
        return fail(SimilarsFault::no_orb);
    return false;
}

// ---- tables and rows ---------------------------------------------------------------------------

std::vector<SimilarsTable> similars_option_tables(Session& s) {
    std::vector<SimilarsTable> out;
    const auto option = [&](const std::string& field) {
        const store::Value v = read_option(s, store::general_options_table, field);
        return v.is_null() ? std::string() : trim(v.as_text());
    };
    for (int n = 1; n <= 5; ++n) {
        const std::string prefix = "table_" + std::to_string(n) + "_";
        SimilarsTable t{option(prefix + "path"), option(prefix + "db"), option(prefix + "name")};
        if (!t.db.empty() && !t.name.empty()) out.push_back(std::move(t));
    }
    return out;
}

std::string similars_row_fault(const Session& s, int row) {
    const EventRow& r = s.event_slots[row];
    const auto whole_in = [&](int column, double low, double high, bool blank_ok) {
        const std::string t = trim(r[static_cast<std::size_t>(column)]);
        if (t.empty()) return blank_ok;
        const double v = text_to_number(t);
        return std::isfinite(v) && v >= low && v <= high;
    };
    if (!whole_in(col::year, -13000, 17000, false) || !whole_in(col::month, 1, 12, false) ||
        !whole_in(col::day, 1, 31, false))
        return "the date is not a date";
    if (!whole_in(col::hours, 0, 24, true) || !whole_in(col::mins, 0, 59, true) ||
        !whole_in(col::secs, 0, 59, true))
        return "the time is not a time";
    if (!whole_in(col::lat_deg, 0, 90, true) || !whole_in(col::long_deg, 0, 180, true))
        return "the place is not a place";
    const EventMoment m = reduce_event_time(r);
    if (!std::isfinite(m.event_jd)) return "the date is not a date";
    if (const BodyTables* tables = s.body_tables.get(); tables && tables->planets.loaded()) {
        TimeBase t;
        set_calculation_time(t, m.event_jd);
        // The outer planets are read a few rows either side of the moment and of its light time.
        const double margin = 60;
        if (t.jd_ephemeris < tables->planets.first_date() + margin ||
            t.jd_ephemeris > tables->planets.last_date() - margin)
            return "the date lies outside the tables of the outer planets";
    }
    return {};
}

// ---- report cells ------------------------------------------------------------------------------

std::string similars_orb_text(double degrees) {
    const double v = std::fabs(degrees);
    long minutes = std::lround(v * 60);
    std::string out = degrees < 0 && minutes > 0 ? "-" : "";
    out += std::to_string(minutes / 60);
    out += static_cast<char>(glyph::degree);
    out += two_digits(minutes % 60);
    out += static_cast<char>(glyph::minute);
    return out;
}

std::string similars_head(const SimilarsParameters& p, const std::string& event_text) {
    static const char* const words[] = {"Planetary Similars for ", "similars charts for ",
                                        "planets in same constellation, decan or house for ",
                                        "planets aspecting heliocentric elements for ",
                                        "Similar Plantary Angles for "};
    // The elements are heliocentric whatever the view.
    const SimilarsList list = similars_list(p);
    const std::string view =
        list == SimilarsList::elements ? std::string("Heliocentic ") : similars_view_text(p);
    return view + words[static_cast<int>(list)] + event_text;
}

std::vector<std::string> similars_columns(SimilarsList list) {
    switch (list) {
    case SimilarsList::planets:
        return {"Name", "Planet", "Event planet", "Aspect", "      Orb"};
    case SimilarsList::charts:
        return {"Name", "Planet", "Event Planet", "  Orb", " Rotation"};
    case SimilarsList::constellation:
        return {"Name", "Planet", "Event planet", ""};
    case SimilarsList::elements:
        return {"Name", "Planet", "Element", "Aspect", "  Orb pl.", "  Orb el."};
    case SimilarsList::angles:
        return {"Name", "Planets angle", "Event planets angle", "      Orb"};
    }
    return {};
}

std::vector<std::string> similars_cells(SimilarsList list, const SimilarLine& l) {
    std::string name = l.name + (l.epoch ? " (E)" : "");
    if (!l.date.empty()) name += "  " + l.date;
    if (l.fault) return {name, "row " + std::to_string(l.row) + ": " + l.why};
    const std::string t = similars_glyph_cell(l.planet), e = similars_glyph_cell(l.event_planet);
    switch (list) {
    case SimilarsList::planets:
        return {name, t, e, l.aspect, similars_orb_text(l.orb)};
    case SimilarsList::charts:
        return {name, t, e, similars_orb_text(l.orb), similars_orb_text(l.rotation)};
    case SimilarsList::constellation:
        return {name, t, e, l.place};
    case SimilarsList::elements:
        return {name,
                t,
                e + " " + l.element,
                l.aspect,
                similars_orb_text(l.orb),
                similars_orb_text(l.orb_2)};
    case SimilarsList::angles: {
        std::string orb = similars_orb_text(l.orb);
        if (l.complementary) orb += " (C)";
        return {name, t + "-" + similars_glyph_cell(l.planet_2) + " " + similars_orb_text(l.angle),
                e + "-" + similars_glyph_cell(l.event_planet_2) + " " +
                    similars_orb_text(l.event_angle),
                orb};
    }
    }
    return {name};
}

// ---- the comparisons ---------------------------------------------------------------------------

namespace {

// One chart's places for the panels it is compared by.
struct ChartPlaces {
    std::vector<double> first, second;    // degrees, NaN where the chart lacks the body
    std::vector<double> nodes, perihelia; // the elements of the first panel
    std::vector<int> sign, decan, house;  // the constellation list's numbers of the first panel
    std::array<double, 13> cusps{};
};

struct Comparison {
    const SimilarsParameters* p = nullptr;
    SimilarsList list = SimilarsList::planets;
    SelectedBodies table, table_2, event, event_2;
    const AspectTable* aspects = nullptr;
    bool doubtful = false; // the table event's version mark
    SimilarLine base;      // name, date, slot, row of the table event
};

bool skip_time_point(const Comparison& c, int orb_class) {
    return orb_class < 0 && c.doubtful;
}

void list_similar_planets(const Comparison& c, const ChartPlaces& t, const ChartPlaces& e,
                          std::vector<SimilarLine>& out) {
    const AspectTable& a = *c.aspects;
    const bool same = c.p->on("planets_same");
    // Without "Using Aspect Set" only the conjunctions of the set count.
    const bool every_aspect = c.p->on("planets_aspect_set");
    for (std::size_t i = 0; i < c.table.count(); ++i) {
        if (absent(t.first[i]) || skip_time_point(c, c.table.orb_class[i])) continue;
        for (std::size_t j = 0; j < c.event.count(); ++j) {
            if (absent(e.first[j])) continue;
            if (same && c.table.glyph[i] != c.event.glyph[j]) continue;
            const int cls = pair_orb_class(c.table.orb_class[i], c.event.orb_class[j]);
            if (cls == 0) continue;
            const double d = arc_degrees(e.first[j], t.first[i]);
            for (std::size_t k = 0; k < static_cast<std::size_t>(a.aspect_count); ++k) {
                if (!every_aspect && a.angle[k] != 0) continue;
                const double v = std::fabs(std::fabs(a.angle[k]) - std::fabs(d));
                const std::vector<float>* orbs[] = {&a.orb_sun, &a.orb_moon, &a.orb_planets,
                                                    &a.orb_elements, &a.orb_stars};
                if (v > (*orbs[cls - 1])[k]) continue;
                SimilarLine l = c.base;
                l.planet = c.table.glyph[i];
                l.event_planet = c.event.glyph[j];
                l.aspect =
                    a.glyph[k] > ' ' ? std::string(1, static_cast<char>(a.glyph[k])) : a.digraph[k];
                l.aspect_name = a.digraph[k];
                l.orb = v;
                out.push_back(std::move(l));
            }
        }
    }
}

void list_similar_charts(const Comparison& c, const ChartPlaces& t, const ChartPlaces& e,
                         std::vector<SimilarLine>& out) {
    const SimilarsParameters& p = *c.p;
    const double orb = orb_of(p, "similar_orb_degs", "similar_orb_mins");
    const int wanted = std::max(1, static_cast<int>(p.number("similar_hits")));
    const bool same = p.on("similar_same_same") || p.on("similar_same_orientation");
    const bool turned = p.on("similar_same_orientation") || p.on("similar_all_orientation");
    const auto usable = [&](std::size_t i, std::size_t j) {
        if (absent(t.first[i]) || absent(e.first[j])) return false;
        if (skip_time_point(c, c.table.orb_class[i])) return false;
        if (pair_orb_class(c.table.orb_class[i], c.event.orb_class[j]) == 0) return false;
        return !same || c.table.glyph[i] == c.event.glyph[j];
    };
    std::vector<SimilarLine> group;
    const auto pairs = [&](double r, std::size_t t0, std::size_t e0) {
        group.clear();
        for (std::size_t i = 0; i < c.table.count(); ++i) {
            if (i == t0) continue;
            for (std::size_t j = 0; j < c.event.count(); ++j) {
                if (j == e0 || !usable(i, j)) continue;
                const double v = std::fabs(arc_degrees(arc_degrees(e.first[j], t.first[i]) + r, 0));
                if (v > orb) continue;
                SimilarLine l = c.base;
                l.planet = c.table.glyph[i];
                l.event_planet = c.event.glyph[j];
                l.orb = v;
                l.rotation = r;
                group.push_back(std::move(l));
            }
        }
        if (static_cast<int>(group.size()) < wanted) return;
        for (SimilarLine& l : group) {
            l.score = static_cast<int>(group.size());
            out.push_back(std::move(l));
        }
    };
    constexpr std::size_t none = static_cast<std::size_t>(-1);
    if (!turned) {
        pairs(0, none, none);
        return;
    }
    for (std::size_t i = 0; i < c.table.count(); ++i)
        for (std::size_t j = 0; j < c.event.count(); ++j)
            if (usable(i, j)) pairs(arc_degrees(t.first[i], e.first[j]), i, j);
}

void list_similar_constellation(const Comparison& c, const ChartPlaces& t, const ChartPlaces& e,
                                std::vector<SimilarLine>& out) {
    const bool same = c.p->on("same_same");
    struct Kind {
        const char* box;
        const std::vector<int> ChartPlaces::*numbers;
    };
    const Kind kinds[] = {{"in_constellation", &ChartPlaces::sign},
                          {"in_decan", &ChartPlaces::decan},
                          {"in_house", &ChartPlaces::house}};
    for (std::size_t i = 0; i < c.table.count(); ++i) {
        if (absent(t.first[i]) || skip_time_point(c, c.table.orb_class[i])) continue;
        for (std::size_t j = 0; j < c.event.count(); ++j) {
            if (absent(e.first[j])) continue;
            if (same && c.table.glyph[i] != c.event.glyph[j]) continue;
            if (pair_orb_class(c.table.orb_class[i], c.event.orb_class[j]) == 0) continue;
            for (const Kind& k : kinds) {
                if (!c.p->on(k.box)) continue;
                const int n = (t.*k.numbers)[i];
                if (n == 0 || n != (e.*k.numbers)[j]) continue;
                SimilarLine l = c.base;
                l.planet = c.table.glyph[i];
                l.event_planet = c.event.glyph[j];
                if (k.numbers == &ChartPlaces::sign)
                    l.place = std::string("IN ") +
                              static_cast<char>(sign_glyphs[static_cast<std::size_t>(n - 1)]);
                else if (k.numbers == &ChartPlaces::decan)
                    l.place = "IN decan " + std::to_string(n);
                else
                    l.place = "IN house " + std::to_string(n);
                out.push_back(std::move(l));
            }
        }
    }
}

void list_similar_elements(const Comparison& c, const ChartPlaces& t, const ChartPlaces& e,
                           std::vector<SimilarLine>& out) {
    const SimilarsParameters& p = *c.p;
    const double orb = orb_of(p, "orb_elements_degs", "orb_elements_mins");
    const bool same = p.on("elements_same");
    struct Point {
        const char* box;
        bool node;
        double turn;
        const char* element;
        bool square;
    };
    const Point points[] = {
        {"elements_nodes", true, 0, "Node", false},
        {"elements_nodes", true, 180, "South Node", false},
        {"nodes_square", true, 90, "Node", true},
        {"nodes_square", true, -90, "Node", true},
        {"elements_apsides", false, 0, "Perihelion", false},
        {"elements_apsides", false, 180, "Aphelion", false},
        {"apsides_square", false, 90, "Perihelion", true},
        {"apsides_square", false, -90, "Perihelion", true},
    };
    for (std::size_t i = 0; i < c.table.count(); ++i) {
        if (absent(t.first[i]) || skip_time_point(c, c.table.orb_class[i])) continue;
        for (std::size_t j = 0; j < c.event.count(); ++j) {
            if (same && c.table.glyph[i] != c.event.glyph[j]) continue;
            if (pair_orb_class(c.table.orb_class[i], c.event.orb_class[j]) == 0) continue;
            for (const Point& pt : points) {
                if (!p.on(pt.box)) continue;
                const double element = pt.node ? e.nodes[j] : e.perihelia[j];
                if (absent(element)) continue;
                const double d = arc_degrees(t.first[i], element + pt.turn);
                if (std::fabs(d) > orb) continue;
                SimilarLine l = c.base;
                l.planet = c.table.glyph[i];
                l.event_planet = c.event.glyph[j];
                l.element = pt.element;
                l.aspect = std::string(1, static_cast<char>(aspect_glyph(pt.square ? 90 : 0, 0)));
                l.aspect_name = pt.square ? "Sq" : "Cj";
                l.orb = d;
                l.orb_2 = orb;
                out.push_back(std::move(l));
            }
        }
    }
}

void list_similar_angles(const Comparison& c, const ChartPlaces& t, const ChartPlaces& e,
                         std::vector<SimilarLine>& out) {
    const SimilarsParameters& p = *c.p;
    const double orb = orb_of(p, "angles_orb_degs", "angles_orb_mins");
    const bool same = p.on("angles_same"), complementary = p.on("complementary");
    for (std::size_t i1 = 0; i1 < c.table.count(); ++i1) {
        if (absent(t.first[i1]) || skip_time_point(c, c.table.orb_class[i1])) continue;
        for (std::size_t i2 = 0; i2 < c.table_2.count(); ++i2) {
            if (absent(t.second[i2]) || skip_time_point(c, c.table_2.orb_class[i2])) continue;
            if (c.table.glyph[i1] == c.table_2.glyph[i2]) continue;
            if (pair_orb_class(c.table.orb_class[i1], c.table_2.orb_class[i2]) == 0) continue;
            const double s1 = std::fabs(arc_degrees(t.first[i1], t.second[i2]));
            for (std::size_t j1 = 0; j1 < c.event.count(); ++j1) {
                if (absent(e.first[j1])) continue;
                if (same && c.event.glyph[j1] != c.table.glyph[i1]) continue;
                for (std::size_t j2 = 0; j2 < c.event_2.count(); ++j2) {
                    if (absent(e.second[j2])) continue;
                    if (same && c.event_2.glyph[j2] != c.table_2.glyph[i2]) continue;
                    if (c.event.glyph[j1] == c.event_2.glyph[j2]) continue;
                    if (pair_orb_class(c.event.orb_class[j1], c.event_2.orb_class[j2]) == 0)
                        continue;
                    const double s2 = std::fabs(arc_degrees(e.first[j1], e.second[j2]));
                    for (int form = 0; form < (complementary ? 2 : 1); ++form) {
                        const double a = form == 0 ? s1 : 180 - s1;
                        const double v = std::fabs(std::fabs(a) - s2);
                        if (v > orb) continue;
                        SimilarLine l = c.base;
                        l.planet = c.table.glyph[i1];
                        l.planet_2 = c.table_2.glyph[i2];
                        l.event_planet = c.event.glyph[j1];
                        l.event_planet_2 = c.event_2.glyph[j2];
                        l.angle = a;
                        l.event_angle = s2;
                        l.orb = v;
                        l.complementary = form == 1;
                        out.push_back(std::move(l));
                    }
                }
            }
        }
    }
}

} // namespace

// ---- the run -----------------------------------------------------------------------------------

struct SimilarsRun::State {
    SimilarsParameters p;
    Comparison cmp;
    SimilarsViews views;
    bool birth = true, epoch = false;
    std::vector<SimilarsTable> tables;
    // The settings of the run's charts, put in place for each stretch of the run.
    ChartSettings chart;
    ZodiacState zodiac;
    AspectTable aspects;
    CalcSwitches calc;
    ChartPlaces event_birth, event_epoch, table_birth, table_epoch;
    std::string head;
    // Where the run stands.
    std::size_t slot = 0; // index into tables
    std::int64_t row = 0; // rows of the slot done
    bool open = false;
    store::TableStore db;
    store::Recordset records;
    std::vector<SimilarLine> waiting; // lines beyond the last stretch's count
    bool finished = false, cancelled = false;
    std::int64_t done = 0, total = 0, charts = 0;
};

SimilarsRun::SimilarsRun() = default;
SimilarsRun::~SimilarsRun() = default;
SimilarsRun::SimilarsRun(SimilarsRun&&) noexcept = default;
SimilarsRun& SimilarsRun::operator=(SimilarsRun&&) noexcept = default;

namespace {

// The session values a run changes, to be put back after each stretch.
struct SavedSettings {
    ChartSettings chart;
    ZodiacState zodiac;
    AspectTable aspects;
    CalcSwitches calc;
    std::int16_t accuracy_level;
    explicit SavedSettings(Session& s)
        : chart(s.chart), zodiac(s.option_sets.zodiac), aspects(s.option_sets.aspects),
          calc(s.engine.calc), accuracy_level(s.accuracy_level) {}
    void restore(Session& s) const {
        s.chart = chart;
        s.option_sets.zodiac = zodiac;
        s.option_sets.aspects = aspects;
        s.engine.calc = calc;
        s.accuracy_level = accuracy_level;
    }
};

// Switches off whatever no selected body needs: the lists read only these.
void fit_switches(Session& s, const std::vector<const SelectedBodies*>& lists,
                  const SimilarsViews& views, SimilarsList list) {
    bool houses = false, stars = false, planets = false, moon = false, node = false,
         perigee = false, chiron = false, asteroids = false;
    for (const SelectedBodies* b : lists)
        for (std::size_t i = 0; i < b->count(); ++i) {
            const unsigned char code = code_of(b->glyph[i]);
            if (b->orb_class[i] < 0)
                houses = true;
            else if (b->orb_class[i] == 5)
                stars = true;
            else if (code == glyph::moon)
                moon = true;
            else if (code == glyph::north_node)
                node = true;
            else if (code == glyph::perigee)
                perigee = true;
            else if (code == glyph::chiron)
                chiron = planets = true;
            else if (code == glyph::juno || code == glyph::vesta || code == glyph::ceres ||
                     code == glyph::pallas)
                asteroids = planets = true;
            else if (code != glyph::sun)
                planets = true;
        }
    const bool lemni = views.event == "Lemnicentric" || views.table == "Lemnicentric";
    const bool helio = lemni || views.event == "Heliocentric" || views.table == "Heliocentric" ||
                       views.event == "Tychonic" || list == SimilarsList::elements;
    ChartSettings& c = s.chart;
    c.world_view = views.event == "Tychonic" ? "Tychonic" : "Geocentric";
    if (!houses) c.house_system = "None";
    c.stars_in_charts = stars ? std::int16_t{1} : std::int16_t{0};
    c.moon_node = node ? std::max<std::int16_t>(c.moon_node, 1) : std::int16_t{0};
    c.moon_peri = perigee ? std::max<std::int16_t>(c.moon_peri, 1) : std::int16_t{0};
    c.chiron = chiron ? std::int16_t{1} : std::int16_t{0};
    c.asteroids = asteroids ? std::int16_t{1} : std::int16_t{0};
    c.sedna = c.quaoar = c.part_of_fortune = c.part_of_chiron = c.helio_moon = 0;
    CalcSwitches& k = s.engine.calc;
    k.calc_sun = true;
    k.calc_planets = planets || helio;
    k.calc_moon_long = moon || lemni;
    k.calc_moon_lat = k.calc_moon_dist = lemni;
    k.calc_nodes = node || perigee;
}

// The series of the Moon and the planets at the medium level: within 25" of the full series from
// 1800 to 2200 and about a minute of arc over -1000 to 3000, far inside the orbs of a comparison,
// for well under half the work. The event and the table events are charted alike, so an event
// that stands in a table still matches itself exactly.
constexpr std::int16_t similars_accuracy_level = 2;

} // namespace

namespace {

void places_of(Session& s, const Comparison& c, const std::string& first_view,
               const std::string& second_view, const SelectedBodies& first,
               const SelectedBodies& second, ChartPlaces& out) {
    get_planets_position(s, first_view, first, out.first);
    if (c.list == SimilarsList::angles) get_planets_position(s, second_view, second, out.second);
    if (c.list == SimilarsList::elements) get_elements_position(s, first, out.nodes, out.perihelia);
    out.cusps = s.engine.house_cusps;
    if (c.list != SimilarsList::constellation) return;
    const std::size_t n = first.count();
    out.sign.assign(n, 0);
    out.decan.assign(n, 0);
    out.house.assign(n, 0);
    const bool houses = s.engine.chart_has_houses;
    for (std::size_t i = 0; i < n; ++i) {
        if (absent(out.first[i])) continue;
        out.sign[i] = constellation_number(out.first[i], s.option_sets.zodiac.constellation_start);
        out.decan[i] = decan_number(out.first[i]);
        if (houses) out.house[i] = house_number(out.first[i], out.cusps);
    }
}

void compare(const Comparison& c, const ChartPlaces& t, const ChartPlaces& e,
             std::vector<SimilarLine>& out) {
    switch (c.list) {
    case SimilarsList::planets:
        list_similar_planets(c, t, e, out);
        break;
    case SimilarsList::charts:
        list_similar_charts(c, t, e, out);
        break;
    case SimilarsList::constellation:
        list_similar_constellation(c, t, e, out);
        break;
    case SimilarsList::elements:
        list_similar_elements(c, t, e, out);
        break;
    case SimilarsList::angles:
        list_similar_angles(c, t, e, out);
        break;
    }
}

} // namespace

bool SimilarsRun::start(Session& s, const SimilarsParameters& p, int event_row,
                        std::vector<SimilarsTable> tables, MessageSink& sink) {
    st_.reset();
    SimilarsFault fault;
    if (check_similars(p, s.stars, fault)) {
        const SimilarsMessage m = similars_message(fault);
        sink.message(m.title, m.text, MessageIcon::exclamation);
        return false;
    }
    auto st = std::make_unique<State>();
    st->p = p;
    st->epoch = p.on("epoch") || p.on("both");
    st->birth = !p.on("epoch");
    const EventRow& event = s.event_slots[event_row];
    if (st->epoch && trim(event[col::epoch_exists]) != "Y") {
        const SimilarsMessage m = similars_message(SimilarsFault::no_epoch);
        sink.message(m.title, m.text, MessageIcon::exclamation);
        return false;
    }
    Comparison& c = st->cmp;
    c.p = &st->p;
    c.list = similars_list(p);
    c.table = get_selected_planets(p, "tables", s.stars);
    c.event = get_selected_planets(p, "event", s.stars);
    if (c.list == SimilarsList::angles) {
        c.table_2 = get_selected_planets_2(p, "tables", s.stars);
        c.event_2 = get_selected_planets_2(p, "event", s.stars);
    }
    st->views = similars_views(p);
    if (c.list == SimilarsList::elements) st->views = {"Heliocentric", "Heliocentric"};

    const SavedSettings saved(s);
    read_similars_options(s);
    if (c.list == SimilarsList::planets) s.chart.aspect_set_charts = p.text("aspect_set");
    select_zodiac(s, sink);
    load_aspect_set(s, s.chart.aspect_set_charts, sink);
    fit_switches(s, {&c.table, &c.table_2, &c.event, &c.event_2}, st->views, c.list);
    st->chart = s.chart;
    st->zodiac = s.option_sets.zodiac;
    st->aspects = s.option_sets.aspects;
    st->calc = s.engine.calc;
    s.accuracy_level = similars_accuracy_level;

    // The event, and its epoch when asked.
    s.event_slots[event_work_row] = event;
    std::string why = similars_row_fault(s, event_work_row);
    if (why.empty() && st->epoch) {
        derive_epoch_event(s.event_slots, event_work_row, event_epoch_row);
        why = similars_row_fault(s, event_epoch_row);
    }
    if (!why.empty()) {
        saved.restore(s);
        sink.message("SIMILARS", "The event cannot be compared: " + why, MessageIcon::exclamation);
        return false;
    }
    const auto chart_event = [&](int row, ChartPlaces& out) {
        calculate_chart(s, row, false);
        ++st->charts;
        places_of(s, c, st->views.event, st->views.event, c.event, c.event_2, out);
    };
    if (st->birth) chart_event(event_work_row, st->event_birth);
    if (st->epoch) chart_event(event_epoch_row, st->event_epoch);
    saved.restore(s);

    st->head = similars_head(p, joined({event_name(event),
                                        format_date(event[col::day], event[col::month],
                                                    event[col::year], s.options.text),
                                        event[col::place]},
                                       ", "));
    c.aspects = &st->aspects;
    st->tables = std::move(tables);
    // The count of rows, for the progress.
    for (const SimilarsTable& t : st->tables) {
        store::TableStore db;
        store::Recordset rs;
        const std::filesystem::path folder = t.folder.empty() ? s.program_directory : t.folder;
        if (open_event_file(store::find_file(folder, t.db), t.name, db, rs,
                            store::TableStore::Access::read_only) == store::Outcome::ok)
            st->total += rs.record_count();
    }
    st_ = std::move(st);
    return true;
}

std::vector<SimilarLine> SimilarsRun::next(Session& s, std::size_t lines, MessageSink& sink) {
    std::vector<SimilarLine> out;
    if (!st_) return out;
    State& st = *st_;
    out.swap(st.waiting);
    if (st.finished || out.size() >= lines) {
        if (out.size() > lines) {
            st.waiting.assign(std::make_move_iterator(out.begin() + static_cast<long>(lines)),
                              std::make_move_iterator(out.end()));
            out.resize(lines);
        }
        return out;
    }
    const SavedSettings saved(s);
    s.chart = st.chart;
    s.option_sets.zodiac = st.zodiac;
    s.option_sets.aspects = st.aspects;
    s.engine.calc = st.calc;
    s.accuracy_level = similars_accuracy_level;
    Comparison& c = st.cmp;
    sink.progress_begin("Similars", static_cast<int>(std::min<std::int64_t>(st.total, 1 << 30)));
    s.run_cancelled = 0;
    while (out.size() < lines && st.slot < st.tables.size()) {
        const SimilarsTable& t = st.tables[st.slot];
        store::Outcome moved;
        if (!st.open) {
            const std::filesystem::path folder = t.folder.empty() ? s.program_directory : t.folder;
            const store::Outcome o =
                open_event_file(store::find_file(folder, t.db), t.name, st.db, st.records,
                                store::TableStore::Access::read_only);
            if (o != store::Outcome::ok) {
                SimilarLine l;
                l.table = static_cast<int>(st.slot) + 1;
                l.name = t.name;
                l.fault = true;
                l.why = "the table " + t.name + " of " + t.db + " cannot be opened (" +
                        std::string(store::describe(o)) + ")";
                out.push_back(std::move(l));
                ++st.slot;
                continue;
            }
            st.open = true;
            st.row = 0;
            moved = st.records.move_first();
        } else {
            moved = st.records.move_next();
        }
        if (moved != store::Outcome::ok || st.records.eof()) {
            st.open = false;
            st.records = store::Recordset();
            st.db = store::TableStore();
            ++st.slot;
            continue;
        }
        ++st.row;
        ++st.done;
        load_event_row(st.records, s.event_slots, table_work_row);
        const EventRow& row = s.event_slots[table_work_row];
        c.base = SimilarLine();
        c.base.table = static_cast<int>(st.slot) + 1;
        c.base.row = st.row;
        c.base.name = event_name(row);
        c.base.date = format_date(row[col::day], row[col::month], row[col::year], s.options.text);
        c.doubtful = doubtful_version(row[col::version]);
        const bool with_epoch = st.epoch && trim(row[col::epoch_exists]) == "Y";
        if (with_epoch) derive_epoch_event(s.event_slots, table_work_row, table_epoch_row);
        std::string why = similars_row_fault(s, table_work_row);
        if (why.empty() && with_epoch) why = similars_row_fault(s, table_epoch_row);
        if (!why.empty()) {
            SimilarLine l = c.base;
            l.fault = true;
            l.why = why;
            out.push_back(std::move(l));
        } else {
            const auto chart_table = [&](int slot, ChartPlaces& places) {
                calculate_chart(s, slot, false);
                ++st.charts;
                places_of(s, c, st.views.table, st.views.table, c.table, c.table_2, places);
            };
            if (st.birth) {
                chart_table(table_work_row, st.table_birth);
                compare(c, st.table_birth, st.event_birth, out);
            }
            if (with_epoch) {
                chart_table(table_epoch_row, st.table_epoch);
                c.base.epoch = true;
                compare(c, st.table_epoch, st.event_epoch, out);
            }
        }
        if ((st.done & 31) == 0 && sink.progress(static_cast<int>(st.done))) {
            st.cancelled = true;
            s.run_cancelled = -1;
            break;
        }
    }
    sink.progress_end();
    if (st.cancelled || st.slot >= st.tables.size()) st.finished = true;
    saved.restore(s);
    if (out.size() > lines) {
        st.waiting.assign(std::make_move_iterator(out.begin() + static_cast<long>(lines)),
                          std::make_move_iterator(out.end()));
        out.resize(lines);
    }
    return out;
}

bool SimilarsRun::started() const {
    return st_ != nullptr;
}
bool SimilarsRun::finished() const {
    return !st_ || (st_->finished && st_->waiting.empty());
}
bool SimilarsRun::cancelled() const {
    return st_ && st_->cancelled;
}
SimilarsList SimilarsRun::list() const {
    return st_ ? st_->cmp.list : SimilarsList::planets;
}
const std::string& SimilarsRun::head() const {
    static const std::string none;
    return st_ ? st_->head : none;
}
int SimilarsRun::table_slot() const {
    return st_ ? static_cast<int>(st_->slot) + 1 : 0;
}
std::int64_t SimilarsRun::table_row() const {
    return st_ ? st_->row : 0;
}
std::int64_t SimilarsRun::rows_done() const {
    return st_ ? st_->done : 0;
}
std::int64_t SimilarsRun::rows_total() const {
    return st_ ? st_->total : 0;
}
std::int64_t SimilarsRun::charts() const {
    return st_ ? st_->charts : 0;
}

bool list_similars_all(Session& s, const SimilarsParameters& p, int event_row,
                       std::vector<SimilarsTable> tables, MessageSink& sink,
                       std::vector<SimilarLine>& lines) {
    SimilarsRun run;
    lines.clear();
    if (!run.start(s, p, event_row, std::move(tables), sink)) return false;
    while (!run.finished()) {
        std::vector<SimilarLine> more = run.next(s, 4096, sink);
        lines.insert(lines.end(), std::make_move_iterator(more.begin()),
                     std::make_move_iterator(more.end()));
    }
    return true;
}

} // namespace celestark
