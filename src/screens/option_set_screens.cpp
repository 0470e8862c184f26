#include "screens/option_set_screens.h"

#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_sets.h"

namespace celestark {

std::string zodiac_bookmark(Session& s, const std::string& name) {
    if (!s.stores || !s.stores->zodiacs.is_open()) return {};
    store::Recordset& rs = s.stores->zodiacs;
    const store::Outcome o = rs.set_index(store::zodiac_index);
    if (o != store::Outcome::ok && o != store::Outcome::no_current_record) return {};
    if (rs.seek("=", {store::Value(trim(name))}) != store::Outcome::ok) return {};
    return rs.bookmark();
}

ZodiacWindow new_zodiac_window() {
    ZodiacWindow w;
    w.z_defined = "Star";
    w.z_constellation = "Equal";
    w.z_deg = w.z_min = w.z_sec = "0";
    w.z_day = w.z_month = w.z_year = "0";
    w.z_gj = "G";
    w.z_degs.fill("0");
    w.z_mins.fill("0");
    return w;
}

ZodiacSave zodiac_window_save(Session& s, ZodiacWindow& w, MessageSink& sink, std::string* focus) {
    // The check is made once more on a copy, quietly, for the field that takes the focus.
    ZodiacWindow probe = w;
    RecordingSink quiet;
    const ZodiacCheck check = check_zodiac_window(probe, quiet);
    const ZodiacSave result = save_zodiac(s, w, sink);
    if (result == ZodiacSave::invalid) sink.show_input_errors();
    if (focus)
        *focus = result == ZodiacSave::invalid          ? check.field
                 : result == ZodiacSave::duplicate_name ? std::string("z_name")
                                                        : std::string();
    if (result == ZodiacSave::saved && trim(s.chart.zodiac) == trim(w.z_name))
        select_zodiac(s, sink);
    return result;
}

bool zodiac_leave(Session& s, ZodiacWindow& w, MessageSink& sink) {
    if (!w.changed) return true;
    if (!sink.ask("ZODIAC HAS CHANGED!", "Zodiac has changed. Do you want to save it ?")) {
        w.changed = false;
        return true;
    }
    return zodiac_window_save(s, w, sink) == ZodiacSave::saved;
}

bool zodiac_defined_left(const std::string& text, MessageSink& sink) {
    const std::string t = trim(text);
    if (t == "Star" || t == "Epoch") return true;
    sink.message("CELESTARK", "Only 'Epoch' and 'Star' are valid entries",
                 MessageIcon::exclamation);
    return false;
}

bool zodiac_constellation_left(const std::string& text, MessageSink& sink) {
    const std::string t = trim(text);
    if (t == "Equal" || t == "Unequal") return true;
    sink.message("CELESTARK", "Only 'Equal' and 'Unequal' are valid entries",
                 MessageIcon::exclamation);
    return false;
}

ZodiacWindowParts zodiac_window_parts(Session& s, const ZodiacWindow& w) {
    ZodiacWindowParts p;
    p.star = trim(w.z_defined) == "Star";
    p.epoch = trim(w.z_defined) == "Epoch";
    p.boundaries = trim(w.z_constellation) == "Unequal";
    // A stored zodiac keeps the name it is known by while the options use it; the stored name
    // counts, not the one being typed.
    const std::string name =
        w.bookmark.empty() ? std::string() : trim(zodiac_to_window(s, w.bookmark).z_name);
    p.name_locked = name == standard_sidereal_zodiac || (!name.empty() && zodiac_in_use(s, name));
    return p;
}

std::string zodiac_date_hint(const Session& s) {
    return s.options.text.date_format ? " dd    mm     yyyy        G/J"
                                      : " mm    dd     yyyy        G/J";
}

} // namespace celestark
