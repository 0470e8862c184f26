#include "screens/star_windows.h"

#include "engine/star_analysis.h"
#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_store.h"
#include "store/star_catalogue.h"

#include <algorithm>
#include <cmath>

namespace celestark {

using store::Outcome;
using store::Recordset;
using store::Value;

namespace {

Recordset* star_rows(Session& s) {
    return s.stars.stores && s.stars.stores->stars.is_open() ? &s.stars.stores->stars : nullptr;
}
Recordset* fixed_rows(Session& s) {
    return s.stars.stores && s.stars.stores->fixed.is_open() ? &s.stars.stores->fixed : nullptr;
}

StarListLine line_of(const Recordset& rs) {
    return {star_list_line(rs.get("star_number").as_text(), rs.get("greek_text").as_text(),
                           rs.get("same_letter").as_text(), rs.get("constellation").as_text(),
                           rs.get("star_name").as_text(), rs.get("number").as_int()),
            rs.bookmark()};
}

void report(MessageSink& sink, const std::string& what, Outcome o) {
    sink.message(product_word, what + ": " + std::string(store::describe(o)),
                 MessageIcon::exclamation);
}

// Edit at the bookmark, set, update: one field written at once, or nothing.
Outcome write_field(Recordset* rs, const std::string& bookmark, const std::string& field,
                    const Value& value) {
    if (!rs) return Outcome::not_open;
    Outcome o = rs->go_to(bookmark);
    if (o == Outcome::ok) o = rs->edit();
    if (o == Outcome::ok) o = rs->set(field, value);
    if (o == Outcome::ok) o = rs->update();
    if (rs->editing()) rs->cancel_update();
    return o;
}

// A check box's text: "True" or "False", or a number (any but 0 is True).
Value box_value(const std::string& text) {
    const std::string t = to_upper(trim(text));
    if (t == "TRUE") return Value(true);
    if (t == "FALSE" || t.empty()) return Value(false);
    return Value(text_to_number(t) != 0);
}

struct StarControl {
    const char* control;
    const char* field;
    enum Kind { words, number, box } kind;
};
constexpr StarControl star_controls[] = {
    {"star_name", "star_name", StarControl::words},
    {"star_name_meaning", "star_name_meaning", StarControl::words},
    {"star_description", "Description", StarControl::words},
    {"star_glyph", "glyph", StarControl::words},
    {"star_in_zodiac", "in_zodiac", StarControl::box},
    {"star_line_to", "line_to", StarControl::number},
    {"star_line_to_2", "line_to_2", StarControl::number},
    {"star_line_to_hd", "line_to_hd", StarControl::number},
    {"star_selection_1", "sel_1", StarControl::box},
    {"star_selection_2", "sel_2", StarControl::box},
    {"star_selection_3", "sel_3", StarControl::box},
    {"star_selection_2_1", "sel_2_1", StarControl::box},
    {"star_selection_2_2", "sel_2_2", StarControl::box},
    {"star_selection_2_3", "sel_2_3", StarControl::box},
    {"star_selection_2_4", "sel_2_4", StarControl::box},
    {"star_selection_2_5", "sel_2_5", StarControl::box},
    {"star_selection_2_6", "sel_2_6", StarControl::box},
    {"star_selection_2_7", "sel_2_7", StarControl::box},
    {"star_selection_2_8", "sel_2_8", StarControl::box},
    {"star_selection_2_9", "sel_2_9", StarControl::box},
    {"star_selection_2_10", "sel_2_10", StarControl::box},
    {"star_selection_4", "sel_4", StarControl::box},
    {"star_distance", "distance", StarControl::number},
    {"star_luminosity", "luminosity", StarControl::number},
    {"star_absolute_magnitude", "absolute_magnitude", StarControl::number},
    {"luminosity_class", "luminosity_class", StarControl::words},
    {"spectral_type", "spectral_type", StarControl::words},
    {"hic_number", "hic", StarControl::number},
};

} // namespace

std::string star_list_line(const std::string& star_number, const std::string& greek_text,
                           const std::string& same_letter, const std::string& constellation,
                           const std::string& star_name, long long number) {
    std::string line = trim(star_number);
    if (line == "0" || line.empty()) line = trim(greek_text) + trim(same_letter);
    line += " " + trim(constellation);
    if (const std::string name = trim(star_name); !name.empty()) line += " " + name;
    return line + " (" + std::to_string(number) + ") ";
}

std::vector<StarListLine> list_constellation(Session& s, const std::string& constellation,
                                             MessageSink& sink) {
    std::vector<StarListLine> lines;
    if (trim(constellation).empty()) {
        sink.message("NO CONSTELLATION", "No constallation selected", MessageIcon::exclamation);
        return lines;
    }
    if (Recordset* rs = star_rows(s); rs && rs->seek(">=", {Value(constellation)}) == Outcome::ok)
        for (; rs->has_current() && rs->get("constellation").as_text() == constellation;
             rs->move_next())
            lines.push_back(line_of(*rs));
    if (lines.empty())
        sink.message("NO STARS", "There are no stars for this constellation",
                     MessageIcon::exclamation);
    return lines;
}

std::vector<StarListLine> list_group(Session& s, const std::string& group, MessageSink& sink) {
    std::vector<StarListLine> lines;
    if (trim(group).empty()) {
        sink.message("NO CONSTELLATION", "No group selected", MessageIcon::exclamation);
        return lines;
    }
    const auto field = star_group_field(group, star_group_names(s));
    Recordset* rs = star_rows(s);
    if (!field || !rs) return lines;
    const int column = field->empty() ? -1 : rs->field_index(*field);
    const int excluded = rs->field_index("sel_4");
    for (Outcome o = rs->move_first(); o == Outcome::ok && rs->has_current(); o = rs->move_next()) {
        if (column >= 0 && rs->get(column).as_int() == 0) continue;
        if (*field != "sel_4" && excluded >= 0 && rs->get(excluded).as_int() != 0) continue;
        lines.push_back(line_of(*rs));
    }
    return lines;
}

std::vector<std::string> star_database_groups(Session& s) {
    std::vector<std::string> groups = {zodiac_group, chart_group};
    for (const std::string& name : star_group_names(s)) groups.push_back(name);
    groups.push_back(excluded_group);
    return groups;
}

std::vector<std::string> star_analysis_groups(Session& s) {
    std::vector<std::string> groups = {no_star_group, zodiac_star_group, chart_star_group};
    for (const std::string& name : star_group_names(s)) groups.push_back(name);
    groups.push_back(all_stars_group);
    return groups;
}

std::vector<std::pair<std::string, Value>> show_star(Session& s, const std::string& bookmark) {
    std::vector<std::pair<std::string, Value>> shown;
    Recordset* rs = star_rows(s);
    if (!rs || rs->go_to(bookmark) != Outcome::ok) return shown;
    for (const store::FieldDef& f : rs->fields()) shown.emplace_back(f.name, rs->get(f.name));
    return shown;
}

Outcome set_star_field(Session& s, const std::string& bookmark, const std::string& control,
                       const std::string& text, MessageSink& sink) {
    const auto it = std::find_if(std::begin(star_controls), std::end(star_controls),
                                 [&](const StarControl& c) { return control == c.control; });
    if (it == std::end(star_controls)) {
        report(sink, "The star field " + control + " cannot be edited", Outcome::no_such_field);
        return Outcome::no_such_field;
    }
    Value value;
    switch (it->kind) {
    case StarControl::words:
        value = Value(text);
        break;
    case StarControl::number:
        value = Value(text_to_number(text));
        break;
    case StarControl::box:
        value = box_value(text);
        break;
    }
    const Outcome o = write_field(star_rows(s), bookmark, it->field, value);
    if (o != Outcome::ok)
        report(sink, std::string("The star's ") + it->field + " could not be stored", o);
    return o;
}

void leave_star_database(Session& s, MessageSink& sink) {
    load_star_tables(s, sink);
}

namespace {

struct OptionRule {
    double low, high;
    bool high_included;
    const char* title;
    const char* text;
};

// The rule of an option of the star options window, or nullptr.
const OptionRule* star_option_rule(const std::string& field) {
    static const OptionRule degrees{0, 15, false, "ERROR IN ORB DEGREE ENTRY",
                                    "Orb degrees must be positive and less than 15"};
    static const OptionRule minutes{0, 60, false, "ERROR IN ORB MINUTES ENTRY",
                                    "Orb minutes must be positive and less than 60"};
    static const struct {
        const char* field;
        OptionRule rule;
    } rules[] = {
        {"orb_1_magnitude",
         {0, 8, false, "ERROR IN STAR MAGNITUDE ENTRY",
          "Visual star magnitude must be positive and less than 8"}},
        {"orb_2_magnitude",
         {-8, 6, true, "ERROR IN STAR MAGNITUDE ENTRY",
          "Absolute star magnitude must be between -8 and 6"}},
        {"orb_3_magnitude",
         {0, 8, false, "ERROR IN STAR MAGNITUDE ENTRY",
          "Visual star magnitude degrees must be positive and less than 8"}},
        {"orb_4_magnitude",
         {-8, 6, true, "ERROR IN STAR MAGNITUDE ENTRY",
          "Absolute star magnitude degrees must be between -8 and 6"}},
        {"additional_by_magnitude",
         {0, 9, false, "ERROR IN STAR MAGNITUDE ENTRY",
          "Star magnitude must be positive and less than 9"}},
        {"star_zodiac_width",
         {1, 5, true, "Error in Zodiac Width", "The Zodiac Width must be from 1 to 5"}},
    };
    for (const auto& r : rules)
        if (field == r.field) return &r.rule;
    const bool orb = field.rfind("orb_", 0) == 0;
    auto ends_with = [&](const char* end) {
        const std::string e(end);
        return field.size() > e.size() && field.compare(field.size() - e.size(), e.size(), e) == 0;
    };
    if (orb && ends_with("_degs")) return &degrees;
    if (orb && ends_with("_mins")) return &minutes;
    return nullptr;
}

} // namespace

bool check_star_option(const std::string& field, const std::string& text, MessageSink& sink) {
    const OptionRule* rule = star_option_rule(field);
    if (!rule) return true;
    const double v = text_to_number(text);
    const bool ok = v >= rule->low && (rule->high_included ? v <= rule->high : v < rule->high);
    if (!ok) sink.message(rule->title, rule->text, MessageIcon::exclamation);
    return ok;
}

Outcome set_star_option(Session& s, const std::string& field, const std::string& text,
                        MessageSink& sink) {
    if (!check_star_option(field, text, sink)) return Outcome::value_out_of_range;
    const Value value = star_option_rule(field) ? Value(text_to_number(text)) : Value(text);
    return set_option(s, store::general_options_table, field, value, sink);
}

Outcome set_star_group_name(Session& s, int group, const std::string& name, MessageSink& sink) {
    if (group < 1 || group > 12) {
        report(sink, "There is no star group " + std::to_string(group), Outcome::no_such_field);
        return Outcome::no_such_field;
    }
    return set_option(s, store::general_options_table, "star_" + std::to_string(group), Value(name),
                      sink);
}

void leave_name_star_groups(Session& s, MessageSink& sink) {
    load_option_screen(s, sink);
}

std::vector<StarListLine> fixed_list(Session& s) {
    std::vector<StarListLine> lines;
    if (Recordset* rs = fixed_rows(s))
        for (Outcome o = rs->move_first(); o == Outcome::ok && rs->has_current();
             o = rs->move_next())
            lines.push_back({rs->get("Name").as_text(), rs->bookmark()});
    return lines;
}

FixedPointWindow show_fixed_point(Session& s, const std::string& bookmark) {
    FixedPointWindow w;
    Recordset* rs = fixed_rows(s);
    if (!rs || rs->go_to(bookmark) != Outcome::ok) return w;
    w.fixed_name = rs->get("Name").as_text();
    w.fixed_active = rs->get("active").as_int() != 0;
    w.fixed_degs = rs->get("degs").as_text();
    w.fixed_mins = rs->get("mins").as_text();
    w.fixed_world_view = rs->get("world_view").as_text();
    w.fixed_zodiac = rs->get("zodiac").as_text();
    w.fixed_sigil = rs->get("sigil").as_text();
    return w;
}

std::vector<std::string> fixed_zodiac_list(Session& s, MessageSink& sink) {
    std::vector<std::string> names = {"Tropical", "Draconic"};
    Recordset zodiacs;
    Outcome o = s.stores ? s.stores->option_db.open_recordset(store::zodiac_table, zodiacs)
                         : Outcome::not_open;
    for (; o == Outcome::ok && zodiacs.has_current(); o = zodiacs.move_next())
        names.push_back(zodiacs.get("Name").as_text());
    if (o != Outcome::ok && o != Outcome::no_current_record)
        fatal_error(sink, "SELECTED ZODIAC-GOT FOCUS",
                    ck_text(27, static_cast<long>(o), std::string(store::describe(o)),
                            std::string(". ") + fatal_tail),
                    s.fatal_handler);
    return names;
}

namespace {

// The field check of a whole number typed into a degrees or minutes field: every character a
// digit or a leading minus, not blank, and within the range. Each fault shows its box (title
// "Celestark"); false when the value is not to be stored.
bool check_whole_field(const std::string& text, int high, const char* range_text,
                       MessageSink& sink) {
    if (text.empty()) {
        sink.message(product_word, "Entry cannot be left BLANK", MessageIcon::exclamation);
        return false;
    }
    bool bad = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '-' && i > 0) {
            sink.message(product_word, "Minus sign not allowed - Re-enter number",
                         MessageIcon::exclamation);
            bad = true;
        } else if (c != '-' && (c < '0' || c > '9')) {
            sink.message(product_word, "Illegal character - Re-enter number",
                         MessageIcon::exclamation);
            bad = true;
        }
    }
    if (bad) return false;
    const double v = text_to_number(text);
    if (v < 0 || v > high) {
        sink.message(product_word, range_text, MessageIcon::exclamation);
        return false;
    }
    return true;
}

} // namespace

Outcome set_fixed_field(Session& s, const std::string& bookmark, const std::string& control,
                        const std::string& text, MessageSink& sink) {
    static const struct {
        const char* control;
        const char* field;
    } fields[] = {
        {"fixed_name", "Name"},  {"fixed_active", "active"},         {"fixed_degs", "degs"},
        {"fixed_mins", "mins"},  {"fixed_world_view", "world_view"}, {"fixed_zodiac", "zodiac"},
        {"fixed_sigil", "sigil"}};
    const auto it = std::find_if(std::begin(fields), std::end(fields),
                                 [&](const auto& f) { return control == f.control; });
    if (it == std::end(fields)) {
        report(sink, "The fixed point field " + control + " cannot be edited",
               Outcome::no_such_field);
        return Outcome::no_such_field;
    }
    Value value(text);
    if (control == "fixed_degs" || control == "fixed_mins") {
        const bool degrees = control == "fixed_degs";
        if (!check_whole_field(text, degrees ? 359 : 59,
                               degrees ? "Valid Range 0 to 359" : "Range 0 to 59", sink))
            return Outcome::value_out_of_range;
        value = Value(text_to_number(text));
    } else if (control == "fixed_active") {
        value = box_value(text);
    }
    const Outcome o = write_field(fixed_rows(s), bookmark, it->field, value);
    if (o != Outcome::ok)
        report(sink, std::string("The fixed point's ") + it->field + " could not be stored", o);
    else
        load_fixed_points(s.stars); // the charts and the sigils take the change at once
    return o;
}

} // namespace celestark
