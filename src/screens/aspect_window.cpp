#include "screens/aspect_window.h"

#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/sqlite_support.h"

#include <array>
#include <cctype>

namespace celestark {

using store::Outcome;
using store::Recordset;
using store::Value;

namespace {

// A whole number written plainly (an optional minus sign and digits, blanks around), in range.
bool whole_in(const std::string& text, long low, long high) {
    const std::string t = trim(text);
    const std::size_t first = (!t.empty() && t[0] == '-') ? 1 : 0;
    if (first == t.size() || t.size() > 9) return false;
    for (std::size_t k = first; k < t.size(); ++k)
        if (!std::isdigit(static_cast<unsigned char>(t[k]))) return false;
    const long v = std::stol(t);
    return v >= low && v <= high;
}

bool two_letters(const std::string& text) {
    const std::string t = trim(text);
    return t.size() == 2 && std::isalpha(static_cast<unsigned char>(t[0])) &&
           std::isalpha(static_cast<unsigned char>(t[1]));
}

// The ten orb fields in the order of the checks, with their lines.
struct OrbField {
    std::string AspectWindow::*degrees;
    std::string AspectWindow::*minutes;
    const char* degrees_field;
    const char* minutes_field;
    const char* degrees_line;
    const char* minutes_line;
};
constexpr std::array<OrbField, 5> orb_fields = {{
    {&AspectWindow::sun_degs, &AspectWindow::sun_mins, "sun_degs", "sun_mins",
     "DEGREE ORB FOR SUN - Must be a number between 0 and 45",
     "ORB FOR SUN (MINUTES) - Must be a number between 0 and 59"},
    {&AspectWindow::moon_degs, &AspectWindow::moon_mins, "moon_degs", "moon_mins",
     "DEGREE ORB FOR MOON - Must be a number between 0 and 45",
     "ORB FOR MOON (MINUTES) - Must be a number between 0 and 59"},
    {&AspectWindow::planets_degs, &AspectWindow::planets_mins, "planets_degs", "planets_mins",
     "DEGREE ORB FOR THE PLANETS - Must be a number between 0 and 45",
     "ORB FOR THE PLANETS (MINUTES) - Must be a number between 0 and 59"},
    {&AspectWindow::stars_degs, &AspectWindow::stars_mins, "stars_degs", "stars_mins",
     "DEGREE ORB FOR THE  STARS - Must be a number between 0 and 45",
     "ORB FOR THE STARS (MINUTES) - Must be a number between 0 and 59"},
    {&AspectWindow::elements_degs, &AspectWindow::elements_mins, "elements_degs", "elements_mins",
     "DEGREE ORB FOR THE ELEMENTS - Must be a number between 0 and 45",
     "ORB FOR THE ELEMENTS (MINUTES) - Must be a number between 0 and 59"},
}};

Recordset* aspects_of(Session& s) {
    return s.stores && s.stores->aspects.is_open() ? &s.stores->aspects : nullptr;
}

bool same_set(const Value& stored, const std::string& name) {
    return stored.ok() && store::detail::same_name(stored.as_text(), name);
}

// Whether a set of this name is stored.
bool set_exists(Recordset& rs, const std::string& name) {
    if (rs.set_index(store::aspect_index) == Outcome::not_open) return false;
    return rs.seek(">=", {Value(name)}) == Outcome::ok && same_set(rs.get("Name"), name);
}

void clear_row_fields(AspectWindow& w) {
    w.angle_degs.clear();
    w.angle_mins.clear();
    w.asp_digraph.clear();
    w.aspectogram = false;
    for (const OrbField& f : orb_fields) {
        w.*f.degrees = std::string();
        w.*f.minutes = std::string();
    }
    w.aspect_bookmark.clear();
}

void fill_from_row(const Recordset& rs, AspectWindow& w) {
    const auto text = [&rs](const std::string& field) { return trim(rs.get(field).as_text()); };
    w.angle_degs = text("angle_degs");
    w.angle_mins = text("angle_mins");
    w.asp_digraph = text("digraph");
    w.aspectogram = rs.get("aspectogram").as_int() != 0;
    for (const OrbField& f : orb_fields) {
        w.*f.degrees = text(f.degrees_field);
        w.*f.minutes = text(f.minutes_field);
    }
}

Outcome write_row(Recordset& rs, const AspectWindow& w) {
    Outcome o = Outcome::ok;
    const auto set = [&](const std::string& field, const Value& v) {
        if (o == Outcome::ok) o = rs.set(field, v);
    };
    const auto number = [](const std::string& t) { return Value(text_to_i16(t)); };
    set("Name", trim(w.aspect_set_name));
    set("angle_degs", number(w.angle_degs));
    set("angle_mins", number(w.angle_mins));
    set("digraph", trim(w.asp_digraph));
    set("aspectogram", Value(w.aspectogram));
    for (const OrbField& f : orb_fields) {
        set(f.degrees_field, number(w.*f.degrees));
        set(f.minutes_field, number(w.*f.minutes));
    }
    return o;
}

void duplicate_name_message(MessageSink& sink) {
    sink.message("DUPLICATE ASPECT SET NAME",
                 "This aspect will not be saved\nTo save it you must first change its name",
                 MessageIcon::exclamation);
}

} // namespace

std::vector<std::string> stored_aspect_set_names(Session& s, int code,
                                                 const std::string& operation) {
    std::vector<std::string> names;
    if (!s.stores) return names;
    Recordset& rs = s.stores->aspects;
    const auto fatal = [&](Outcome o) {
        session_fatal(s, operation,
                      ck_text(code, static_cast<long>(o), std::string(store::describe(o)),
                              std::string(". ") + fatal_tail));
        names.clear();
        return names;
    };
    Outcome o = rs.set_index(store::aspect_index);
    if (o == Outcome::ok || o == Outcome::no_current_record) o = rs.move_first();
    if (o == Outcome::no_current_record) return names; // no rows
    while (o == Outcome::ok && rs.has_current()) {
        const Value name = rs.get("Name");
        if (!name.ok()) return fatal(name.outcome());
        if (names.empty() || !store::detail::same_name(names.back(), name.as_text()))
            names.push_back(name.as_text());
        o = rs.move_next();
    }
    if (o != Outcome::ok && o != Outcome::no_current_record) return fatal(o);
    return names;
}

std::vector<std::string> aspect_edit_choices(Session& s) {
    std::vector<std::string> names = stored_aspect_set_names(s, 29, "Edit Aspect-Got Focus");
    if (names.empty()) names.emplace_back(no_aspect_sets_text);
    return names;
}

std::vector<std::string> aspect_set_lines(Session& s, const std::string& name) {
    std::vector<std::string> lines;
    Recordset* rs = aspects_of(s);
    if (!rs || !set_exists(*rs, name)) return lines;
    while (rs->has_current() && same_set(rs->get("Name"), name)) {
        lines.push_back(trim(rs->get("angle_degs").as_text()) + ":" +
                        trim(rs->get("angle_mins").as_text()));
        if (rs->move_next() != Outcome::ok) break;
    }
    return lines;
}

void aspect_edit(Session& s, AspectWindow& w, const std::string& name) {
    clear_row_fields(w);
    w.aspect_set_name = name;
    w.list_of_aspects = aspect_set_lines(s, name);
    w.new_set = false;
    w.changed = false;
}

bool aspect_pick(Session& s, AspectWindow& w, const std::string& line) {
    const std::size_t colon = line.find(':');
    Recordset* rs = aspects_of(s);
    if (!rs || colon == std::string::npos) return false;
    const Value degrees(text_to_i16(line.substr(0, colon)));
    const Value minutes(text_to_i16(line.substr(colon + 1)));
    if (rs->set_index(store::aspect_index) == Outcome::not_open ||
        rs->seek("=", {Value(w.aspect_set_name), degrees, minutes}) != Outcome::ok)
        return false;
    w.aspect_bookmark = rs->bookmark();
    fill_from_row(*rs, w);
    w.changed = false;
    return true;
}

void aspect_new(AspectWindow& w) {
    w.aspect_bookmark.clear();
    w.angle_degs = w.angle_mins = "0";
    for (const OrbField& f : orb_fields) {
        w.*f.degrees = "0";
        w.*f.minutes = "0";
    }
    w.asp_digraph.clear();
}

void aspect_new_set(AspectWindow& w) {
    clear_row_fields(w);
    w.aspect_set_name.clear();
    w.list_of_aspects.clear();
    w.new_set = true;
    w.changed = false;
}

unsigned char aspect_sigil(const AspectWindow& w) {
    if (!whole_in(w.angle_degs, 0, 180) || !whole_in(w.angle_mins, 0, 59)) return ' ';
    return aspect_glyph(std::stoi(trim(w.angle_degs)), std::stoi(trim(w.angle_mins)));
}

bool aspect_name_left(Session& s, const AspectWindow& w, MessageSink& sink) {
    if (!w.new_set) return true;
    Recordset* rs = aspects_of(s);
    if (!rs || !set_exists(*rs, trim(w.aspect_set_name))) return true;
    duplicate_name_message(sink);
    return false;
}

AspectCheck check_aspect_window(const AspectWindow& w, MessageSink& sink) {
    AspectCheck c;
    const auto fault = [&](const char* field, const char* line) {
        c.ok = false;
        c.field = field;
        c.message = line;
        sink.input_error(c.message);
        return c;
    };
    const auto blank = [](const std::string& t) { return trim(t).empty(); };
    if (blank(w.aspect_set_name))
        return fault("aspect_set_name",
                     "ASPECT SET NAME FIELD - Cannot be left blank or with only spaces");
    if (blank(w.angle_degs))
        return fault("angle_degs",
                     "ASPECT DEGREE ANGLE FIELD - Cannot be left blank or with only spaces");
    if (!whole_in(w.angle_degs, 0, 180))
        return fault("angle_degs",
                     "ASPECT DEGREE ANGLE FIELD - Invalid entry - Must be between 0 and 180 "
                     "inclusive");
    if (blank(w.angle_mins))
        return fault("angle_mins",
                     "ASPECT MINUTE ANGLE FIELD - Cannot be left blank or with only spaces");
    if (!whole_in(w.angle_mins, 0, 59))
        return fault("angle_mins",
                     "ASPECT MINUTE ANGLE FIELD - Invalid entry - Must be between 0 and 59 "
                     "inclusive");
    if (!two_letters(w.asp_digraph))
        return fault("asp_digraph", "DIGRAPH FIELD - Must contain 2 letters");
    for (const OrbField& f : orb_fields)
        if (!whole_in(w.*f.degrees, 0, 45)) return fault(f.degrees_field, f.degrees_line);
    for (const OrbField& f : orb_fields)
        if (!whole_in(w.*f.minutes, 0, 59)) return fault(f.minutes_field, f.minutes_line);
    return c;
}

AspectSave aspect_save(Session& s, AspectWindow& w, MessageSink& sink) {
    if (!check_aspect_window(w, sink).ok) return AspectSave::invalid;
    Recordset* rs = aspects_of(s);
    if (!rs) return AspectSave::failed;
    if (w.new_set && !aspect_name_left(s, w, sink)) return AspectSave::duplicate_name;

    store::Transaction work = s.stores->option_db.begin_transaction();
    Outcome o = work.outcome();
    const bool adding = w.aspect_bookmark.empty();
    std::string bookmark = w.aspect_bookmark;
    if (o == Outcome::ok && !adding) {
        o = rs->go_to(bookmark);
        if (o == Outcome::ok) o = rs->edit();
    } else if (o == Outcome::ok) {
        // A new row is added outside the index order, then the index is set again.
        o = rs->set_index("");
        if (o == Outcome::ok || o == Outcome::no_current_record) o = rs->add_new();
    }
    if (o == Outcome::ok) o = write_row(*rs, w);
    if (o == Outcome::ok) o = rs->update();
    if (rs->editing()) rs->cancel_update();
    if (o == Outcome::ok && adding) bookmark = rs->last_modified_bookmark();
    if (adding) {
        const Outcome indexed = rs->set_index(store::aspect_index);
        if (o == Outcome::ok && indexed != Outcome::no_current_record) o = indexed;
    }
    if (o == Outcome::ok) o = work.commit();
    if (o != Outcome::ok) {
        if (work.active()) work.rollback();
        sink.message(product_word,
                     "The aspect could not be saved: " + std::string(store::describe(o)),
                     MessageIcon::exclamation);
        return AspectSave::failed;
    }
    w.aspect_bookmark = bookmark;
    w.new_set = false;
    w.changed = false;
    w.list_of_aspects = aspect_set_lines(s, trim(w.aspect_set_name));
    return AspectSave::saved;
}

AspectDelete aspect_delete(Session& s, AspectWindow& w, MessageSink& sink) {
    Recordset* rs = aspects_of(s);
    if (!rs || w.aspect_bookmark.empty()) return AspectDelete::no_row;
    if (!sink.ask("DELETE ASPECT ?", "Are you sure you want to delete this Aspect"))
        return AspectDelete::declined;
    store::Transaction work = s.stores->option_db.begin_transaction();
    Outcome o = work.outcome();
    if (o == Outcome::ok) o = rs->go_to(w.aspect_bookmark);
    if (o == Outcome::ok) o = rs->delete_row();
    if (o == Outcome::ok) o = work.commit();
    if (o != Outcome::ok) {
        if (work.active()) work.rollback();
        return AspectDelete::failed;
    }
    clear_row_fields(w);
    w.changed = false;
    w.list_of_aspects = aspect_set_lines(s, trim(w.aspect_set_name));
    return AspectDelete::deleted;
}

bool aspect_leave(Session& s, AspectWindow& w, MessageSink& sink) {
    if (!w.changed) return true;
    if (!sink.ask("ASPECT HAS CHANGED!", "Aspect has changed. Do you want to save it ?")) {
        w.changed = false;
        return true;
    }
    return aspect_save(s, w, sink) == AspectSave::saved;
}

} // namespace celestark
