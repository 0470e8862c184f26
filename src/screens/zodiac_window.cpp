#include "screens/zodiac_window.h"

#include "session/calendar.h"
#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_store.h"

#include <algorithm>
#include <cctype>

namespace celestark {

namespace {

bool blank(const std::string& text) {
    return trim(text).empty();
}

// A whole number written plainly (an optional minus sign and digits, blanks around), in range.
bool whole_in(const std::string& text, long low, long high, long* out = nullptr) {
    const std::string t = trim(text);
    std::size_t i = (!t.empty() && t[0] == '-') ? 1 : 0;
    if (i == t.size() || t.size() > 9) return false;
    for (std::size_t k = i; k < t.size(); ++k)
        if (!std::isdigit(static_cast<unsigned char>(t[k]))) return false;
    const long v = std::stol(t);
    if (out) *out = v;
    return v >= low && v <= high;
}

constexpr std::array<const char*, 12> sign_words = {
    "ARIES", "TAURUS",  "GEMINI",      "CANCER",    "LEO",      "VIRGO",
    "LIBRA", "SCORPIO", "SAGITTARIUS", "CAPRICORN", "AQUARIUS", "PISCES"};

} // namespace

ZodiacCheck check_zodiac_window(ZodiacWindow& w, MessageSink& sink) {
    ZodiacCheck c;
    const auto fault = [&](const char* field, std::vector<std::string> lines) {
        c.ok = false;
        c.field = field;
        c.messages = std::move(lines);
        for (const std::string& line : c.messages) sink.input_error(line);
        return c;
    };
    const std::string defined = trim(w.z_defined), constellation = trim(w.z_constellation);
    if (defined.empty())
        return fault("z_defined",
                     {"ZODIAC DEFINED BY FIELD - Cannot be left blank or with only spaces"});
    if (defined != "Star" && defined != "Epoch")
        return fault("z_defined", {"ZODIAC can only be DEFINED by either 'Star' or 'Epoch'"});
    if (constellation.empty())
        return fault("z_constellation",
                     {"CONSTELLATION type field - Cannot be left blank or with only spaces"});
    if (constellation != "Equal" && constellation != "Unequal")
        return fault("z_constellation", {"CONSTELLATION TYPE can only be 'Equal' or 'Unequal'"});
    if (blank(w.z_name))
        return fault("z_name", {"ZODIAC NAME - Cannot be left blank or with only spaces"});
    if (!whole_in(w.z_deg, 0, 180))
        return fault("z_deg",
                     {"DEGREES OF LONGITUDE - Invalid entry - Must be a number between 0 and 180"});
    if (!whole_in(w.z_min, 0, 59))
        return fault("z_min",
                     {"MINUTES OF LONGITUDE - Invalid entry - Must be a number between 0 and 59"});
    if (!whole_in(w.z_sec, 0, 59))
        return fault("z_sec",
                     {"SECONDS OF LONGITUDE - Invalid entry - Must be a number between 0 and 59"});

    if (defined == "Star") {
        w.z_day = w.z_month = w.z_year = "0";
        w.z_gj = "G";
        const std::string star = trim(w.z_star);
        if (star.empty())
            return fault("z_star", {"STAR NAME FIELD - Cannot be left blank or with only spaces"});
        if (std::find(zodiac_stars.begin(), zodiac_stars.end(), star) == zodiac_stars.end())
            return fault("z_star",
                         {"Illegal star name. Only those in the drop down list are valid"});
    } else {
        w.z_star = " ";
        long day = 0, month = 0, year = 0;
        if (!whole_in(w.z_day, 1, 31, &day))
            return fault("z_day", {"DAY OF THE MONTH -  Invalid entry"});
        if (!whole_in(w.z_month, 1, 12, &month))
            return fault("z_month", {"MONTH OF THE YEAR - Invalid entry"});
        if (!whole_in(w.z_year, -32768, 32767, &year))
            return fault("z_year", {"YEAR - Cannot be left blank or with only spaces ",
                                    "       0 and negative years are allowed",
                                    "       NOTE: enter for example year -35 for 36BC"});
        const std::string gj = trim(w.z_gj);
        if (gj != "G" && gj != "J")
            return fault("z_gj", {"GREGORIAN/JULIAN DATE - 'G' or 'J' are the only valid entries"});
        if (day > days_in_month(static_cast<int>(month), static_cast<int>(year), gj))
            return fault("z_day", {"DATE - Invalid number of days for the month"});
    }

    if (constellation == "Unequal") {
        for (std::size_t i = 0; i < 12; ++i) {
            if (blank(w.z_degs[i]))
                return fault("z_degs", {std::string(sign_words[i]) +
                                        " DEGREES - Cannot be left blank or with only spaces"});
            if (blank(w.z_mins[i]))
                return fault("z_mins", {std::string(sign_words[i]) +
                                        " MINUTES - Cannot be left blank or with only spaces"});
        }
    } else {
        w.z_degs.fill("0");
        w.z_mins.fill("0");
    }
    return c;
}

ZodiacWindow zodiac_to_window(Session& s, const std::string& bookmark) {
    ZodiacWindow w;
    if (!s.stores) return w;
    store::Recordset& rs = s.stores->zodiacs;
    if (rs.go_to(bookmark) != store::Outcome::ok) return w;
    const auto text = [&rs](const char* f) { return rs.get(f).as_text(); };
    w.z_name = text("Name");
    w.z_defined = text("defined");
    w.z_constellation = text("constellation");
    w.z_star = text("star");
    w.z_deg = text("deg");
    w.z_min = text("Min");
    w.z_sec = text("sec");
    w.z_day = text("day");
    w.z_month = text("Month");
    w.z_year = text("year");
    w.z_gj = text("gj");
    for (std::size_t i = 0; i < 12; ++i) {
        const std::string z = "z" + std::to_string(i + 1);
        w.z_degs[i] = text((z + "_degs").c_str());
        w.z_mins[i] = text((z + "_mins").c_str());
    }
    w.bookmark = bookmark;
    return w;
}

namespace {

store::Outcome write_zodiac(store::Recordset& rs, const ZodiacWindow& w) {
    const auto number = [](const std::string& t) {
        return store::Value(static_cast<long long>(text_to_number(t)));
    };
    store::Outcome o = store::Outcome::ok;
    const auto set = [&](const char* field, const store::Value& v) {
        if (o == store::Outcome::ok) o = rs.set(field, v);
    };
    set("Name", trim(w.z_name));
    set("defined", trim(w.z_defined));
    set("constellation", trim(w.z_constellation));
    set("star", w.z_star.empty() ? std::string(" ") : w.z_star);
    set("deg", number(w.z_deg));
    set("Min", number(w.z_min));
    set("sec", number(w.z_sec));
    set("day", trim(w.z_day));
    set("Month", trim(w.z_month));
    set("year", trim(w.z_year));
    set("gj", trim(w.z_gj));
    for (std::size_t i = 0; i < 12; ++i) {
        const std::string z = "z" + std::to_string(i + 1);
        set((z + "_degs").c_str(), number(w.z_degs[i]));
        set((z + "_mins").c_str(), number(w.z_mins[i]));
    }
    return o;
}

void duplicate_name_message(MessageSink& sink) {
    sink.message("DUPLICATE ZODIAC NAME",
                 "This Zodiac will not be saved\nTo save it you must first change its name",
                 MessageIcon::exclamation);
}

} // namespace

ZodiacSave save_zodiac(Session& s, ZodiacWindow& w, MessageSink& sink) {
    if (!check_zodiac_window(w, sink).ok) return ZodiacSave::invalid;
    if (!s.stores) return ZodiacSave::failed;
    store::Recordset& rs = s.stores->zodiacs;
    // Another row with this name stops the save.
    if (rs.seek("=", {store::Value(trim(w.z_name))}) == store::Outcome::ok &&
        rs.bookmark() != w.bookmark) {
        duplicate_name_message(sink);
        return ZodiacSave::duplicate_name;
    }
    store::Outcome o = w.bookmark.empty() ? rs.add_new() : rs.go_to(w.bookmark);
    if (o == store::Outcome::ok && !w.bookmark.empty()) o = rs.edit();
    if (o == store::Outcome::ok) o = write_zodiac(rs, w);
    if (o == store::Outcome::ok) o = rs.update();
    if (rs.editing()) rs.cancel_update();
    if (o == store::Outcome::duplicate_key) {
        duplicate_name_message(sink);
        return ZodiacSave::duplicate_name;
    }
    if (o != store::Outcome::ok) {
        sink.message(product_word,
                     "The zodiac could not be saved: " + std::string(store::describe(o)),
                     MessageIcon::exclamation);
        return ZodiacSave::failed;
    }
    if (w.bookmark.empty()) w.bookmark = rs.last_modified_bookmark();
    w.changed = false;
    return ZodiacSave::saved;
}

bool zodiac_in_use(Session& s, const std::string& name) {
    const std::string n = trim(name);
    for (const char* field : {"zodiac", "zodiac_ephemeris"})
        if (trim(read_option(s, "options", field).as_text()) == n) return true;
    return trim(read_option(s, "option_name", "listings_zodiac").as_text()) == n ||
           trim(read_option(s, "options", "listings_zodiac").as_text()) == n;
}

ZodiacDelete delete_zodiac(Session& s, ZodiacWindow& w, MessageSink& sink) {
    if (trim(w.z_name) == standard_sidereal_zodiac) {
        sink.message("Sidereal SVP cannot be deleted",
                     "You can't delete the standard sidereal zodiac", MessageIcon::exclamation);
        return ZodiacDelete::standard_zodiac;
    }
    // The window disables delete for a zodiac in use; the operation refuses it too.
    if (zodiac_in_use(s, w.z_name)) return ZodiacDelete::in_use;
    if (!sink.ask("DELETE ZODIAC ?", "Are you sure you want to delete this Zodiac"))
        return ZodiacDelete::declined;
    if (!s.stores || w.bookmark.empty()) return ZodiacDelete::failed;
    store::Recordset& rs = s.stores->zodiacs;
    if (rs.go_to(w.bookmark) != store::Outcome::ok || rs.delete_row() != store::Outcome::ok)
        return ZodiacDelete::failed;
    w = ZodiacWindow{};
    return ZodiacDelete::deleted;
}

std::vector<std::string> zodiac_list(Session& s) {
    std::vector<std::string> names;
    if (s.stores) {
        store::Recordset& rs = s.stores->zodiacs;
        for (store::Outcome o = rs.move_first(); o == store::Outcome::ok && !rs.eof();
             o = rs.move_next())
            names.push_back(rs.get("Name").as_text());
    }
    if (names.empty()) names.push_back("NO SIDEREAL ZODIACS TO EDIT");
    return names;
}

} // namespace celestark
