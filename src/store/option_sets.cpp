#include "store/option_sets.h"

#include "session/angles.h"
#include "session/calendar.h"
#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_store.h"
#include "store/sqlite_support.h"
#include "store/table_store.h"

#include <array>

namespace celestark {

using store::Outcome;
using store::Recordset;
using store::Value;

static_assert(ColourSet::value_count == store::colour_value_count);

namespace {

constexpr std::uint32_t white = 0x00FFFFFF;

bool needs_no_row(const std::string& zodiac) {
    return zodiac == "Tropical" || zodiac == "Draconic";
}

int whole(const Value& v) {
    return static_cast<int>(v.as_int());
}

// The title of the system's own notices.
std::string product_title() {
    return to_upper(product_word);
}

void clear_aspects(AspectTable& t) {
    t = AspectTable();
}

} // namespace

double precession_from(double t) {
    return general_precession(t);
}

ZodiacRecord read_zodiac_record(Recordset& rs) {
    ZodiacRecord r;
    r.name = rs.get("Name").as_text();
    r.defined = rs.get("defined").as_text();
    r.constellation = rs.get("constellation").as_text();
    r.star = rs.get("star").as_text();
    r.day = rs.get("day").as_text();
    r.month = rs.get("Month").as_text();
    r.year = rs.get("year").as_text();
    r.gj = rs.get("gj").as_text();
    r.deg = whole(rs.get("deg"));
    r.min = whole(rs.get("Min"));
    r.sec = whole(rs.get("sec"));
    for (std::size_t i = 0; i < 12; ++i) {
        const std::string z = "z" + std::to_string(i + 1);
        r.z_degs[i] = whole(rs.get(z + "_degs"));
        r.z_mins[i] = whole(rs.get(z + "_mins"));
    }
    return r;
}

void load_zodiac(const ZodiacRecord& row, const std::string& zodiac, bool sign_form,
                 ZodiacState& state) {
    for (std::size_t i = 0; i < 12; ++i)
        state.constellation_start[i] = 30.0f * static_cast<float>(i);
    if (!sign_form)
        for (std::size_t i = 0; i < 12; ++i)
            state.constellation_start[i] =
                static_cast<float>(row.z_degs[i] + static_cast<double>(row.z_mins[i]) / 60.0);
    if (needs_no_row(zodiac)) {
        state.reference.clear();
        return;
    }
    const double position = row.deg + row.min / 60.0 + row.sec / 3600.0;
    if (row.defined == "Star") {
        state.reference = row.star;
        state.star_longitude = static_cast<float>(position);
    } else {
        state.reference = "Epoch";
        const double jd = julian_date(text_to_number(row.day), text_to_i16(row.month),
                                      text_to_i16(row.year), trim(row.gj), 0.0);
        state.epoch_position = position + precession_from((jd - 2451545.0) / 36525.0);
    }
}

bool select_zodiac(Session& s, MessageSink& sink) {
    const std::string name = s.chart.zodiac;
    ZodiacState& state = s.option_sets.zodiac;
    if (needs_no_row(name)) {
        s.chart.sign_form = true;
        load_zodiac(state.window, name, true, state);
        return true;
    }
    Recordset* rs = s.stores ? &s.stores->zodiacs : nullptr;
    Outcome o = rs && rs->is_open() ? rs->set_index(store::zodiac_index) : Outcome::not_open;
    if (o == Outcome::ok || o == Outcome::no_current_record) o = rs->seek("=", {Value(name)});
    if (o != Outcome::ok) {
        sink.message(product_title(), "Zodiac: " + name + " does not exist",
                     MessageIcon::information);
        return false;
    }
    s.chart.zodiac_bookmark = rs->bookmark();
    state.window = read_zodiac_record(*rs);
    s.chart.sign_form = state.window.constellation == "Equal";
    load_zodiac(state.window, name, s.chart.sign_form, state);
    return true;
}

unsigned char aspect_glyph(int degrees, int minutes) {
    struct Angle {
        int degrees, minutes;
    };
    static constexpr std::array<Angle, 17> angles = {{{0, 0},
                                                      {30, 0},
                                                      {45, 0},
                                                      {60, 0},
                                                      {72, 0},
                                                      {90, 0},
                                                      {120, 0},
                                                      {135, 0},
                                                      {144, 0},
                                                      {150, 0},
                                                      {180, 0},
                                                      {51, 26},
                                                      {102, 51},
                                                      {154, 17},
                                                      {40, 0},
                                                      {80, 0},
                                                      {160, 0}}};
    for (std::size_t k = 0; k < angles.size(); ++k)
        if (angles[k].degrees == degrees && angles[k].minutes == minutes)
            return static_cast<unsigned char>(192 + k);
    return ' ';
}

void load_aspect_set(Session& s, const std::string& name, MessageSink& sink) {
    AspectTable& t = s.option_sets.aspects;
    clear_aspects(t);
    if (name == "None") return;
    Recordset* rs = s.stores ? &s.stores->aspects : nullptr;
    if (!rs || !rs->is_open()) return;
    auto problem = [&] {
        clear_aspects(t);
        sink.message("ERROR READING ASPECT SET",
                     "Problem reading aspect set " + name + ". Check that it is correct.",
                     MessageIcon::exclamation);
    };
    Outcome o = rs->set_index(store::aspect_index);
    if (o == Outcome::ok || o == Outcome::no_current_record) o = rs->seek(">=", {Value(name)});
    if (o == Outcome::not_found) return; // no row at or after the name: the set is empty
    if (o != Outcome::ok) return problem();

    static constexpr const char* orb_fields[5][2] = {{"sun_degs", "sun_mins"},
                                                     {"moon_degs", "moon_mins"},
                                                     {"planets_degs", "planets_mins"},
                                                     {"elements_degs", "elements_mins"},
                                                     {"stars_degs", "stars_mins"}};
    std::vector<float>* orbs[5] = {&t.orb_sun, &t.orb_moon, &t.orb_planets, &t.orb_elements,
                                   &t.orb_stars};
    int count = 0;
    while (rs->has_current()) {
        const Value set_name = rs->get("Name");
        if (!set_name.ok()) return problem();
        if (!store::detail::same_name(set_name.as_text(), name)) break;
        // Every field of the row must read and hold a value.
        auto read = [&](const char* field, Value& v) {
            v = rs->get(field);
            return v.ok() && !v.is_null();
        };
        Value degs, mins, digraph, aspectogram;
        if (!read("angle_degs", degs) || !read("angle_mins", mins) || !read("digraph", digraph) ||
            !read("aspectogram", aspectogram))
            return problem();
        float orb_values[5];
        for (int k = 0; k < 5; ++k) {
            Value od, om;
            if (!read(orb_fields[k][0], od) || !read(orb_fields[k][1], om)) return problem();
            orb_values[k] = static_cast<float>(od.as_double() + om.as_double() / 60.0);
        }
        t.angle.push_back(static_cast<float>(degs.as_double() + mins.as_double() / 60.0));
        t.glyph.push_back(aspect_glyph(whole(degs), whole(mins)));
        t.digraph.push_back(digraph.as_text());
        t.in_aspectogram.push_back(static_cast<std::int16_t>(aspectogram.as_int()));
        for (int k = 0; k < 5; ++k) orbs[k]->push_back(orb_values[k]);
        ++count;
        o = rs->move_next();
        if (o != Outcome::ok && o != Outcome::no_current_record) return problem();
    }
    t.aspect_count = static_cast<std::int16_t>(count);
}

void clear_colour_set(ColourSet& colours) {
    colours.name = "None";
    colours.display_or_printer.clear();
    const auto& fields = store::colour_value_fields();
    for (std::size_t i = 0; i < fields.size(); ++i)
        colours.values[i] =
            store::is_colour_field(fields[i]) ? static_cast<std::int32_t>(white) : 0;
}

bool load_colour_set(Session& s, const std::string& name, MessageSink& sink) {
    if (name == "None") return true;
    Recordset* rs = s.stores ? &s.stores->colours : nullptr;
    Outcome o = rs && rs->is_open() ? rs->set_index(store::colour_index) : Outcome::not_open;
    if (o == Outcome::ok || o == Outcome::no_current_record) o = rs->seek("=", {Value(name)});
    if (o != Outcome::ok) {
        sink.message(product_title(), "Colour set: " + name + " does not exist",
                     MessageIcon::information);
        return false;
    }
    ColourSet loaded;
    clear_colour_set(loaded);
    loaded.name = rs->get("Name").as_text();
    loaded.display_or_printer = rs->get("display_or_printer").as_text();
    const auto& fields = store::colour_value_fields();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Value v = rs->get(fields[i]);
        // A value that is missing keeps the cleared one.
        if (v.ok() && !v.is_null()) loaded.values[i] = static_cast<std::int32_t>(v.as_int());
    }
    s.option_sets.colours = std::move(loaded);
    return true;
}

void load_active_colour_set(Session& s, MessageSink& sink) {
    const bool colour =
        read_option(s, store::general_options_table, "option_print_colour").as_int() != 0;
    const std::string wanted = !colour              ? std::string("None")
                               : s.chart.print_mode ? s.chart.print_colour_set
                                                    : s.chart.display_colour_set;
    if (wanted == s.option_sets.colours.name) return;
    if (wanted == "None")
        clear_colour_set(s.option_sets.colours);
    else
        load_colour_set(s, wanted, sink);
}

std::int32_t colour_value(const ColourSet& colours, std::string_view field) {
    const auto& fields = store::colour_value_fields();
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (store::detail::same_name(fields[i], field)) return colours.values[i];
    return -1;
}

void refresh_session_state(Session& s, MessageSink& sink) {
    auto option = [&](const char* field) {
        return read_option(s, store::chart_options_table, field).as_text();
    };
    s.chart.aspect_set_charts = option("aspect_set_charts");
    s.chart.display_colour_set = option("display_colour_set");
    s.chart.print_colour_set = option("print_colour_set");
    s.chart.zodiac = option("zodiac");
    load_aspect_set(s, s.chart.aspect_set_charts, sink);
    select_zodiac(s, sink);
    load_active_colour_set(s, sink);
}

} // namespace celestark
