#include "screens/colour_window.h"

#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_sets.h"

namespace celestark {

using store::Outcome;
using store::Recordset;
using store::Value;

namespace {

Recordset* colours(Session& s) {
    return s.stores && s.stores->colours.is_open() ? &s.stores->colours : nullptr;
}

ColourWindow read_row(Recordset& rs) {
    ColourWindow w;
    w.name = rs.get("Name").as_text();
    w.display_or_printer = rs.get("display_or_printer").as_text();
    for (int i = 0; i < colour_field::count; ++i) {
        const Value v = rs.get(colour_field_names[static_cast<std::size_t>(i)]);
        if (!v.ok() || v.is_null()) {
            w.null_values.set(static_cast<std::size_t>(i));
            continue;
        }
        w.values[static_cast<std::size_t>(i)] = static_cast<std::int32_t>(v.as_int());
    }
    w.bookmark = rs.bookmark();
    return w;
}

Outcome write_row(Recordset& rs, const ColourWindow& w) {
    Outcome o = rs.set("Name", Value(trim(w.name)));
    if (o == Outcome::ok)
        o = rs.set("display_or_printer",
                   Value(w.display_or_printer.empty() ? std::string(" ") : w.display_or_printer));
    for (int i = 0; i < colour_field::count && o == Outcome::ok; ++i) {
        const auto k = static_cast<std::size_t>(i);
        o = rs.set(colour_field_names[k],
                   w.null_values.test(k) ? Value() : Value(static_cast<long long>(w.values[k])));
    }
    return o;
}

void duplicate_name_message(MessageSink& sink) {
    sink.message("DUPLICATE COLOUR SET NAME",
                 "This colour set will not be saved\nTo save it you must first change its "
                 "name\nCelestark",
                 MessageIcon::exclamation);
}

} // namespace

std::vector<std::string> colour_set_list(Session& s) {
    std::vector<std::string> names;
    Recordset* rs = colours(s);
    if (!rs) return names;
    rs->set_index(store::colour_index);
    for (Outcome o = rs->move_first(); o == Outcome::ok && !rs->eof(); o = rs->move_next())
        names.push_back(rs->get("Name").as_text());
    return names;
}

std::optional<ColourWindow> colour_set_to_window(Session& s, const std::string& name) {
    Recordset* rs = colours(s);
    if (!rs) return std::nullopt;
    Outcome o = rs->set_index(store::colour_index);
    if (o == Outcome::ok || o == Outcome::no_current_record) o = rs->seek("=", {Value(name)});
    if (o != Outcome::ok) return std::nullopt;
    return read_row(*rs);
}

std::optional<std::int32_t> swatch_start(const ColourWindow& w, int field) {
    const auto k = static_cast<std::size_t>(field);
    if (w.null_values.test(k)) return std::nullopt;
    return w.values[k];
}

void choose_swatch(ColourWindow& w, int field, std::optional<std::int32_t> chosen) {
    if (!chosen) return; // cancelled: the old colour stays
    const auto k = static_cast<std::size_t>(field);
    w.values[k] = *chosen & 0xFFFFFF;
    w.null_values.reset(k);
    w.changed = true;
}

void set_choice(ColourWindow& w, int field, bool on) {
    const auto k = static_cast<std::size_t>(field);
    w.values[k] = on ? 1 : 0;
    w.null_values.reset(k);
    w.changed = true;
}

bool offer_save_colours(Session& s, ColourWindow& w, MessageSink& sink) {
    if (!w.changed) return true;
    if (!sink.ask("SAVE ANY CHANGES TO COLOUR SET?",
                  "Do you want to save any changes you may have made to the current colour set?")) {
        w.changed = false;
        return true;
    }
    return save_colour_set(s, w, sink) == ColourSave::saved;
}

bool pick_colour_set(Session& s, ColourWindow& w, const std::string& name, MessageSink& sink) {
    if (!offer_save_colours(s, w, sink)) return false;
    const auto picked = colour_set_to_window(s, name);
    if (!picked) return false;
    w = *picked;
    return true;
}

void new_colour_set(Session& s, ColourWindow& w, MessageSink& sink) {
    if (!offer_save_colours(s, w, sink)) return;
    w.name.clear();
    w.bookmark.clear();
    w.changed = true;
}

ColourSave save_colour_set(Session& s, ColourWindow& w, MessageSink& sink) {
    const std::string name = trim(w.name);
    if (name.empty() || name == "None") {
        sink.message(product_word,
                     "COLOUR SET MUST HAVE VALID NAME - Cannot be 'None',left blank or with only "
                     "spaces",
                     MessageIcon::exclamation);
        return ColourSave::bad_name;
    }
    Recordset* rs = colours(s);
    if (!rs) return ColourSave::failed;
    Outcome o = rs->set_index(store::colour_index);
    if ((o == Outcome::ok || o == Outcome::no_current_record) &&
        rs->seek("=", {Value(name)}) == Outcome::ok && rs->bookmark() != w.bookmark) {
        duplicate_name_message(sink);
        return ColourSave::duplicate_name;
    }
    o = w.bookmark.empty() ? rs->add_new() : rs->go_to(w.bookmark);
    if (o == Outcome::ok && !w.bookmark.empty()) o = rs->edit();
    if (o == Outcome::ok) o = write_row(*rs, w);
    if (o == Outcome::ok) o = rs->update();
    if (rs->editing()) rs->cancel_update();
    if (o == Outcome::duplicate_key) {
        duplicate_name_message(sink);
        return ColourSave::duplicate_name;
    }
    if (o != Outcome::ok) {
        sink.message(product_word,
                     "The colour set could not be saved: " + std::string(store::describe(o)),
                     MessageIcon::exclamation);
        return ColourSave::failed;
    }
    if (w.bookmark.empty()) w.bookmark = rs->last_modified_bookmark();
    w.name = name;
    w.changed = false;
    // The set on show takes its new colours at once.
    if (s.option_sets.colours.name == name) {
        s.option_sets.colours.name.clear();
        load_colour_set(s, name, sink);
    }
    return ColourSave::saved;
}

ColourDelete delete_colour_set(Session& s, ColourWindow& w, MessageSink& sink) {
    if (!sink.ask("DELETE COLOUR SET ?", "Are you sure you want to delete this Colour Set"))
        return ColourDelete::declined;
    Recordset* rs = colours(s);
    if (!rs || w.bookmark.empty()) return ColourDelete::failed;
    if (rs->go_to(w.bookmark) != Outcome::ok || rs->delete_row() != Outcome::ok)
        return ColourDelete::failed;
    w = ColourWindow{};
    return ColourDelete::deleted;
}

bool exit_colour_window(Session& s, ColourWindow& w, MessageSink& sink) {
    return offer_save_colours(s, w, sink);
}

} // namespace celestark
