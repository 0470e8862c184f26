#include "store/option_store.h"

#include "session/session.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/sqlite_support.h"
#include "store/store_files.h"
#include "store/table_store.h"

#include <memory>

namespace celestark {

using store::Outcome;
using store::Recordset;
using store::Value;

namespace {

const std::vector<store::OptionDefault>& defaults_for(std::string_view table) {
    return store::detail::same_name(table, store::general_options_table)
               ? store::general_option_defaults()
               : store::chart_option_defaults();
}

Value default_of(std::string_view table, std::string_view field) {
    for (const store::OptionDefault& d : defaults_for(table))
        if (store::detail::same_name(d.field, field)) return d.value.value_or(Value());
    return Value();
}

Recordset* one_row_table(Session& s, std::string_view table) {
    if (!s.stores) return nullptr;
    if (store::detail::same_name(table, store::general_options_table))
        return &s.stores->general_options;
    if (store::detail::same_name(table, store::chart_options_table))
        return &s.stores->chart_options;
    return nullptr;
}

// The first row of a one-row option table, read field by field with the value of a null.
class OptionRow {
  public:
    OptionRow(Session& s, std::string_view table) : table_(table), rs_(one_row_table(s, table)) {
        at_row_ = rs_ && rs_->is_open() && rs_->move_first() == Outcome::ok;
    }
    Value get(std::string_view field) const {
        if (at_row_) {
            Value v = rs_->get(field);
            if (v.ok() && !v.is_null()) return v;
        }
        return default_of(table_, field);
    }
    std::string text(std::string_view field) const { return get(field).as_text(); }
    std::int16_t number(std::string_view field) const {
        const std::int64_t v = get(field).as_int();
        return static_cast<std::int16_t>(v < -32768 ? -32768 : v > 32767 ? 32767 : v);
    }
    bool flag(std::string_view field) const { return number(field) != 0; }

  private:
    std::string_view table_;
    Recordset* rs_;
    bool at_row_ = false;
};

void report_failure(MessageSink& sink, const std::string& what, Outcome o) {
    sink.message(product_word, what + ": " + std::string(store::describe(o)),
                 MessageIcon::exclamation);
}

// A file of an earlier version lacks the options added since: they are added, null, so that they
// read as their defaults and can be stored.
Outcome add_missing_fields(store::TableStore& db, const char* table) {
    std::vector<store::FieldDef> present;
    if (Outcome o = db.table_fields(table, present); o != Outcome::ok) return o;
    const store::OptionTableDef* def = store::option_table(table);
    if (!def) return Outcome::ok;
    for (const store::FieldDef& f : def->fields) {
        bool found = false;
        for (const store::FieldDef& p : present)
            found = found || store::detail::same_name(p.name, f.name);
        if (found) continue;
        // A file that cannot be written is read with the defaults.
        if (Outcome o = db.add_field(table, f); o != Outcome::ok)
            return o == Outcome::read_only ? Outcome::ok : o;
    }
    return Outcome::ok;
}

// A one-row table without its row gets an empty one.
Outcome ensure_row(Recordset& rs) {
    Outcome o = rs.move_first();
    if (o != Outcome::no_current_record) return o;
    if ((o = rs.add_new()) != Outcome::ok) return o;
    if ((o = rs.update()) != Outcome::ok) {
        rs.cancel_update();
        return o;
    }
    return rs.move_first();
}

// The session values that several readers share, by group.
void take_house_systems(Session& s, const OptionRow& row) {
    s.chart.house_system = row.text("house_system");
    s.chart.polar_house_system = row.text("polar_house_system");
}
void take_colour_sets(Session& s, const OptionRow& row) {
    s.chart.display_colour_set = row.text("display_colour_set");
    s.chart.print_colour_set = row.text("print_colour_set");
}
void take_lunar_points(Session& s, const OptionRow& row) {
    s.chart.moon_node = row.number("moon_node");
    s.chart.moon_peri = row.number("moon_peri");
}
void take_body_flags(Session& s, const OptionRow& row) {
    s.chart.chiron = row.number("chiron");
    s.chart.sedna = row.number("sedna");
    s.chart.quaoar = row.number("quaoar");
    s.chart.asteroids = row.number("asteroids");
    s.chart.part_of_fortune = row.number("part_of_fortune");
    s.chart.stars_in_charts = row.number("stars_in_charts");
}
void take_house_layout(Session& s, const OptionRow& row) {
    s.chart.house_start = row.number("house_start");
    s.chart.house_type = row.number("house_type");
}
void take_wheel(Session& s, const OptionRow& row) {
    s.chart.display_agram = row.number("display_agram");
    s.chart.zodiac_direction = row.number("zodiac_direction");
    s.chart.house_direction = row.number("house_direction");
}

// Everything the chart options set: the chart, biography and similars readers.
void take_all_chart_fields(Session& s, const OptionRow& row) {
    take_house_systems(s, row);
    take_colour_sets(s, row);
    take_lunar_points(s, row);
    s.chart.helio_elem = row.number("helio_elem");
    s.chart.display_plan_degs = row.number("display_plan_degs");
    take_wheel(s, row);
    take_house_layout(s, row);
    take_body_flags(s, row);
    s.options.actual_position = row.flag("actual_position");
    s.chart.zodiac = row.text("zodiac");
}

OptionRow chart_row(Session& s) {
    s.chart.helio_moon = 0;
    return OptionRow(s, store::chart_options_table);
}

} // namespace

bool open_option_database(Session& s, MessageSink& sink, const FatalHandler& handler) {
    if (!s.stores) s.stores = std::make_shared<OpenStores>();
    OpenStores& st = *s.stores;
    auto fatal = [&](int code, Outcome o, const std::string& why, const char* what) {
        std::string description(store::describe(o));
        if (!why.empty() && why != description) description += " (" + why + ")";
        fatal_error(sink, "open option database",
                    ck_text(code, static_cast<long>(o), description,
                            std::string(". ") + what + " " + fatal_tail),
                    handler);
        return false;
    };

    const auto file = store::find_file(s.program_directory, store::option_file_name);
    Outcome o = st.option_db.open(file);
    if (o != Outcome::ok)
        return fatal(1, o, st.option_db.last_error(), "Opening OPTIONS database.");
    for (Recordset* rs : {&st.general_options, &st.chart_options}) {
        const char* table =
            rs == &st.general_options ? store::general_options_table : store::chart_options_table;
        o = add_missing_fields(st.option_db, table);
        if (o == Outcome::ok) o = st.option_db.open_recordset(table, *rs);
        if (o == Outcome::ok) o = ensure_row(*rs);
        if (o != Outcome::ok)
            return fatal(1, o, st.option_db.last_error(), "Opening OPTIONS database.");
    }
    load_option_screen(s, sink);
    read_global_options(s);
    read_chart_options(s);

    struct Lookup {
        Recordset& rs;
        const char* table;
        const char* index;
        int code;
        const char* what;
    };
    for (const Lookup& t : {
             Lookup{st.zodiacs, store::zodiac_table, store::zodiac_index, 2,
                    "Opening ZODIAC  database."},
             Lookup{st.aspects, store::aspects_table, store::aspect_index, 3,
                    "Opening ASPECT database."},
             Lookup{st.colours, store::colour_table, store::colour_index, 4,
                    "Opening COLOUR database."},
         }) {
        o = st.option_db.open_recordset(t.table, t.rs);
        if (o == Outcome::ok) o = t.rs.set_index(t.index);
        if (o != Outcome::ok && o != Outcome::no_current_record)
            return fatal(t.code, o, st.option_db.last_error(), t.what);
    }

    clear_colour_set(s.option_sets.colours);
    // Selects the zodiac of the options and loads the aspect and colour sets.
    refresh_session_state(s, sink);
    return true;
}

std::vector<std::pair<std::string, Value>> load_option_screen(Session& s, MessageSink& sink) {
    std::vector<std::pair<std::string, Value>> shown;
    Recordset* rs = one_row_table(s, store::general_options_table);
    const bool at_row = rs && rs->is_open() && ensure_row(*rs) == Outcome::ok;
    bool editing = at_row && rs->edit() == Outcome::ok;
    bool repaired = false;
    for (const store::OptionDefault& d : store::general_option_defaults()) {
        Value v = at_row ? rs->get(d.field) : Value();
        if (!v.ok()) v = Value(); // a field the file lacks shows its default
        if (v.is_null() && d.value) {
            v = *d.value;
            if (editing && rs->set(d.field, v) == Outcome::ok) repaired = true;
        }
        shown.emplace_back(std::string(d.field), v);
    }
    if (editing && repaired) {
        if (Outcome o = rs->update(); o != Outcome::ok) {
            rs->cancel_update();
            report_failure(sink, "The options could not be stored", o);
        }
    } else if (editing) {
        rs->cancel_update();
    }
    return shown;
}

Outcome set_options(Session& s, std::string_view table,
                    const std::vector<std::pair<std::string, Value>>& values, MessageSink& sink) {
    std::string names;
    for (const auto& [field, value] : values) names += (names.empty() ? "" : ", ") + field;
    const std::string what = "The option " + names + " could not be stored";
    Recordset* rs = one_row_table(s, table);
    if (!rs || !rs->is_open()) {
        report_failure(sink, what, Outcome::not_open);
        return Outcome::not_open;
    }
    Outcome o = ensure_row(*rs);
    if (o == Outcome::ok) o = rs->edit();
    for (const auto& [field, value] : values)
        if (o == Outcome::ok) o = rs->set(field, value);
    if (o == Outcome::ok) o = rs->update();
    if (rs->editing()) rs->cancel_update();
    if (o != Outcome::ok) {
        report_failure(sink, what, o);
        return o;
    }
    if (rs == &s.stores->general_options) read_global_options(s);
    return o;
}

Outcome set_option(Session& s, std::string_view table, std::string_view field, const Value& value,
                   MessageSink& sink) {
    return set_options(s, table, {{std::string(field), value}}, sink);
}

Value read_option(Session& s, std::string_view table, std::string_view field) {
    return OptionRow(s, table).get(field);
}

void read_global_options(Session& s) {
    const OptionRow row(s, store::general_options_table);
    s.options.text.date_format = row.flag("option_date_format");
    s.options.text.clock_format = row.flag("option_clock_format");
    s.options.text.time_output_secs = row.flag("option_time_output_secs");
    s.options.option_save_chart = row.number("option_save_chart");
    s.options.exclude_ascendant = row.flag("exclude_ascendant");
    s.options.exclude_midheaven = row.flag("exclude_midheaven");
}

void read_chart_options(Session& s) {
    const OptionRow row = chart_row(s);
    take_all_chart_fields(s, row);
    s.chart.aspect_set_charts = row.text("aspect_set_charts");
}

void read_biography_options(Session& s) {
    const OptionRow row = chart_row(s);
    take_all_chart_fields(s, row);
    s.chart.aspect_set_charts = row.text("aspect_set_biographies");
    s.option_sets.aspect_set_transits = row.text("aspect_set_transits");
}

void read_ephemeris_options(Session& s) {
    const OptionRow row = chart_row(s);
    s.chart.zodiac = row.text("zodiac_ephemeris");
    s.chart.aspect_set_charts = row.text("aspect_set_ephemeris");
    take_colour_sets(s, row);
    s.chart.helio_elem = row.number("helio_elem");
    s.chart.display_plan_degs = row.number("display_plan_degs");
    take_wheel(s, row);
    take_house_layout(s, row);
    take_house_systems(s, row);
}

void read_planetary_aspect_options(Session& s) {
    const OptionRow row = chart_row(s);
    s.chart.zodiac = row.text("zodiac");
    s.chart.aspect_set_charts = row.text("aspect_set_ephemeris");
    take_colour_sets(s, row);
    s.chart.part_of_fortune = row.number("part_of_fortune");
}

void read_motion_options(Session& s) {
    const OptionRow row = chart_row(s);
    take_colour_sets(s, row);
    s.chart.zodiac_direction = row.number("zodiac_direction");
}

void read_star_list_options(Session& s) {
    const OptionRow row = chart_row(s);
    s.chart.zodiac = row.text("option_list_only_stars_zodiac");
    take_colour_sets(s, row);
    take_lunar_points(s, row);
    s.chart.helio_elem = row.number("helio_elem");
    s.chart.display_plan_degs = row.number("display_plan_degs");
    take_body_flags(s, row);
}

void read_listing_options(Session& s) {
    const OptionRow row = chart_row(s);
    const OptionRow general(s, store::general_options_table);
    // These two have no default of their own: unset, a listing is tropical and without aspects.
    s.chart.zodiac = general.text("listings_zodiac");
    if (s.chart.zodiac.empty()) s.chart.zodiac = "Tropical";
    s.chart.aspect_set_charts = general.text("listings_aspect_set");
    if (s.chart.aspect_set_charts.empty()) s.chart.aspect_set_charts = "None";
    take_house_systems(s, row);
    take_colour_sets(s, row);
    take_lunar_points(s, row);
    s.chart.helio_elem = row.number("helio_elem");
    s.chart.display_plan_degs = row.number("display_plan_degs");
    take_house_layout(s, row);
    take_body_flags(s, row);
}

void read_similars_options(Session& s) {
    const OptionRow row = chart_row(s);
    take_all_chart_fields(s, row);
    s.chart.aspect_set_charts = row.text("similars_planets_aspect_set");
}

} // namespace celestark
