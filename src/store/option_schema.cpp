#include "store/option_schema.h"

#include "session/colour_fields.h"
#include "store/sqlite_support.h"

namespace celestark::store {

namespace {

FieldDef text(std::string_view name, int width) {
    return {std::string(name), FieldType::text, width};
}
FieldDef whole(std::string_view name) {
    return {std::string(name), FieldType::integer, 0};
}
FieldDef real(std::string_view name) {
    return {std::string(name), FieldType::single, 0};
}
FieldDef colour(std::string_view name) {
    return {std::string(name), FieldType::long_integer, 0};
}

// `option_name`: every field with its type and the value of its null.
struct GeneralField {
    FieldDef def;
    std::optional<Value> null_value;
};

std::vector<GeneralField> make_general_fields() {
    std::vector<GeneralField> f;
    auto flag = [&](std::string_view name, bool on) {
        f.push_back({whole(name), Value(on ? option_true : option_false)});
    };
    auto number = [&](std::string_view name, int value) {
        f.push_back({whole(name), Value(value)});
    };
    auto words = [&](std::string_view name, int width, std::string_view value) {
        f.push_back({text(name, width), Value(value)});
    };
    auto open_text = [&](std::string_view name, int width) {
        f.push_back({text(name, width), std::nullopt});
    };

    flag("option_date_format", true);
    flag("option_clock_format", true);
    flag("option_time_input_secs", false);
    flag("option_time_output_secs", false);
    flag("option_lat_long_secs", false);
    number("option_save_chart", option_true);
    flag("option_print_colour", true);
    number("option_screen_line_width", 1);
    number("option_printer_line_width", 1);
    words("user_name", 60, "Ivan Marlowe");
    for (const char* a : {"add1", "add2", "add3", "add4"}) words(a, 60, " ");
    words("tel", 60, " ");
    flag("option_tmm", false);
    flag("option_geo_hel", false);
    flag("exclude_ascendant", false);
    flag("exclude_midheaven", false);
    flag("charts_conj_stars", false);
    words("charts_conj_orb_set", 2, "1");
    words("charts_conj_orb_type", 30, "Longitude");
    flag("display_zodiac_lines", false);
    for (const char* use : {"charts", "listings"}) {
        for (const char* kind : {"longitude", "long_lat", "horizon"})
            words(std::string(use) + "_" + kind + "_star_group", 40, "None");
        for (const char* kind : {"longitude", "long_lat", "horizon"})
            words(std::string(use) + "_" + kind + "_orb_set", 2, "1");
    }
    f.push_back({real("additional_by_magnitude"), Value(0)});
    flag("additional_ophiuchus", false);
    flag("additional_non_zodiac", false);
    flag("display_planets", false);
    flag("display_outer_circle", false);
    for (const char* set : {"orb_1_", "orb_2_"}) {
        number(std::string(set) + "degs", 0);
        number(std::string(set) + "mins", 0);
        f.push_back({real(std::string(set) + "magnitude"), Value(0)});
    }
    for (const char* set : {"orb_3_", "orb_4_"}) {
        for (const char* mag : {"mag1_", "mag6_"}) {
            number(std::string(set) + mag + "degs", 0);
            number(std::string(set) + mag + "mins", 0);
        }
        f.push_back({real(std::string(set) + "magnitude"), Value(0)});
    }
    for (const char* set : {"orb_5_", "orb_6_"}) {
        for (int mag = 1; mag <= 6; ++mag) {
            number(std::string(set) + "mag" + std::to_string(mag) + "_degs", 0);
            number(std::string(set) + "mag" + std::to_string(mag) + "_mins", 0);
        }
    }
    number("star_zodiac_width", 8);
    // The names of the twelve user star groups (sel_2, sel_3, sel_2_1 to sel_2_10).
    for (int n = 1; n <= 12; ++n)
        words("star_" + std::to_string(n), 40, "Star group " + std::to_string(n));
    flag("display_ecliptic", false);
    flag("display_equator", false);
    flag("display_horizon", false);
    flag("display_meridian", false);
    flag("d_mega_colours", false);
    open_text("db_path", 255);
    open_text("db_name", 255);
    open_text("DB_TABLE", 64);
    open_text("listings_aspect_set", 40);
    open_text("listings_zodiac", 40);
    for (int n = 1; n <= 5; ++n) {
        const std::string t = "table_" + std::to_string(n) + "_";
        open_text(t + "path", 255);
        open_text(t + "db", 255);
        open_text(t + "name", 64);
    }
    return f;
}

const std::vector<GeneralField>& general_fields() {
    static const std::vector<GeneralField> fields = make_general_fields();
    return fields;
}

std::vector<GeneralField> make_chart_fields() {
    std::vector<GeneralField> f;
    auto words = [&](std::string_view name, std::string_view value) {
        f.push_back({text(name, 40), Value(value)});
    };
    auto number = [&](std::string_view name, int value) {
        f.push_back({whole(name), Value(value)});
    };
    words("house_system", "None");
    words("polar_house_system", "Porphyry");
    for (const char* z : {"zodiac", "zodiac_ephemeris", "option_list_only_stars_zodiac"})
        words(z, "Tropical");
    for (const char* a : {"aspect_set_charts", "aspect_set_biographies", "aspect_set_transits",
                          "aspect_set_ephemeris", "similars_planets_aspect_set"})
        words(a, "None");
    // The star calendar's aspect sets, geocentric and heliocentric.
    words("star_calender_geo", "Standard");
    words("star_calender_helio", "Standard");
    words("display_colour_set", "None");
    words("print_colour_set", "None");
    number("moon_node", 1);
    number("moon_peri", 0);
    number("helio_elem", 0);
    number("display_plan_degs", 0);
    number("display_agram", 0);
    number("zodiac_direction", 0);
    number("house_direction", option_true);
    number("house_start", 0);
    number("house_type", option_true);
    for (const char* body :
         {"chiron", "sedna", "quaoar", "asteroids", "part_of_fortune", "stars_in_charts"})
        number(body, 0);
    number("prenatal_sectors", 0);
    number("actual_position", option_false);
    number("pc_atlas", option_false);
    // The similars screen: each radio group keeps the name of its button, the orbs and hits
    // their whole numbers.
    words("similars_world_view", "geo");
    words("similars_epoch", "birth");
    words("similars_option", "similar_planets");
    words("similars_planets", "planets_same");
    words("similars_angles", "angles_same");
    words("similars_elements", "elements_same");
    words("similars_similar", "similar_same_same");
    words("similars_same", "same_same");
    number("similars_angles_orb_degs", 1);
    number("similars_angles_orb_mins", 0);
    number("similars_orb_elements_degs", 1);
    number("similars_orb_elements_mins", 0);
    number("similars_similar_orb_degs", 2);
    number("similars_similar_orb_mins", 0);
    number("similars_similar_hits", 5);
    return f;
}

const std::vector<GeneralField>& chart_fields() {
    static const std::vector<GeneralField> fields = make_chart_fields();
    return fields;
}

std::vector<OptionDefault> defaults_of(const std::vector<GeneralField>& fields) {
    std::vector<OptionDefault> out;
    out.reserve(fields.size());
    for (const GeneralField& g : fields) out.push_back({g.def.name, g.null_value});
    return out;
}

std::vector<FieldDef> defs_of(const std::vector<GeneralField>& fields) {
    std::vector<FieldDef> out;
    out.reserve(fields.size());
    for (const GeneralField& g : fields) out.push_back(g.def);
    return out;
}

OptionTableDef zodiac_def() {
    OptionTableDef t{zodiac_table, {}, {}};
    t.fields = {text("Name", 40), text("defined", 10), text("constellation", 10),
                text("star", 20), whole("deg"),        whole("Min"),
                whole("sec"),     text("day", 4),      text("Month", 4),
                text("year", 6),  text("gj", 1)};
    for (int i = 1; i <= 12; ++i) {
        t.fields.push_back(whole("z" + std::to_string(i) + "_degs"));
        t.fields.push_back(whole("z" + std::to_string(i) + "_mins"));
    }
    t.indexes = {{zodiac_index, {"Name"}, true, true}};
    return t;
}

OptionTableDef aspects_def() {
    OptionTableDef t{aspects_table, {}, {}};
    t.fields = {text("Name", 40), whole("angle_degs"), whole("angle_mins"), text("digraph", 2),
                whole("aspectogram")};
    for (const char* orb : {"sun", "moon", "planets", "elements", "stars"}) {
        t.fields.push_back(whole(std::string(orb) + "_degs"));
        t.fields.push_back(whole(std::string(orb) + "_mins"));
    }
    t.indexes = {{aspect_index, {"Name", "angle_degs", "angle_mins"}, true, true}};
    return t;
}

OptionTableDef colour_def() {
    OptionTableDef t{colour_table, {text("Name", 40), text("display_or_printer", 10)}, {}};
    for (std::string_view f : colour_value_fields())
        t.fields.push_back(is_colour_field(f) ? colour(f) : whole(f));
    t.indexes = {{colour_index, {"Name"}, true, true}};
    return t;
}

} // namespace

const std::vector<OptionTableDef>& option_tables() {
    static const std::vector<OptionTableDef> tables = {
        {general_options_table, defs_of(general_fields()), {}},
        {chart_options_table, defs_of(chart_fields()), {}},
        zodiac_def(),
        aspects_def(),
        colour_def(),
    };
    return tables;
}

const OptionTableDef* option_table(std::string_view name) {
    for (const OptionTableDef& t : option_tables())
        if (detail::same_name(t.name, name)) return &t;
    return nullptr;
}

const std::vector<OptionDefault>& general_option_defaults() {
    static const std::vector<OptionDefault> d = defaults_of(general_fields());
    return d;
}

const std::vector<OptionDefault>& chart_option_defaults() {
    static const std::vector<OptionDefault> d = defaults_of(chart_fields());
    return d;
}

const std::array<std::string_view, colour_value_count>& colour_value_fields() {
    return colour_field_names;
}

bool is_colour_field(std::string_view field) {
    for (std::string_view choice : {"print_embryo", "constellation_lines", "flow_colours",
                                    "stars_as_glyphs", "stars_as_planets"})
        if (detail::same_name(field, choice)) return false;
    return true;
}

} // namespace celestark::store
