#include "predict/hit_text.h"

#include "session/calendar.h"
#include "session/constants.h"
#include "session/session.h"
#include "session/text.h"

#include <cmath>
#include <cstdio>

namespace celestark {

namespace {

std::string calendar_of(const Session& s) {
    const std::string gj = trim(s.event_slots[s.event_slots.active_event][col::gj]);
    return gj.empty() ? "G" : gj;
}

// A body with its place in sign form and its retrograde mark.
std::string body_at(const std::string& body, double place, const std::string& retro) {
    std::string out = body + " " + format_position_dm(place, true);
    if (retro == "R") out += " R";
    return out;
}

} // namespace

ReportDate report_date(const Session& s, double jd) {
    const double local = jd + s.predictive.zone_hours / 24.0;
    // Rounded to the minute before the date is split, so 23:59:40 is the next day's 00:00.
    const double minutes = std::floor((local + 0.5) * 1440.0 + 0.5);
    const double day_start = std::floor(minutes / 1440.0);
    const CivilDate d = date_from_julian(day_start - 0.5 + 1e-9, calendar_of(s));
    const int of_day = static_cast<int>(minutes - day_start * 1440.0);
    char date[32], time[16];
    std::snprintf(date, sizeof date, "%d-%02d-%02d", d.year, d.month,
                  static_cast<int>(std::floor(d.day)));
    std::snprintf(time, sizeof time, "%02d:%02d", of_day / 60, of_day % 60);
    return {date, time};
}

std::string time_from_event(const Session& s, double jd) {
    const double days = jd - s.predictive.birth_jd;
    if (days < 0) return "-";
    const int months = static_cast<int>(std::floor(days / (365.25 / 12)));
    return std::to_string(months / 12) + "y " + std::to_string(months % 12) + "m";
}

std::string age_text(const Session& s, double jd) {
    return time_from_event(s, jd);
}

RowColumns hit_columns(const Session& /*s*/, const Hit& h, bool narrow) {
    RowColumns c;
    const std::string& k = h.kind;
    c.planet_1 = body_at(h.body_1, h.pos_1, h.retro_1);
    if (k == "A" || k == "B" || k == "E") {
        std::string aspect = h.aspect_glyph;
        if (h.orb_kind == "AE" || h.orb_kind == "AL") aspect = h.orb_kind + " " + aspect;
        if (h.orb_kind == "SL" || h.orb_kind == "SE") aspect += " " + h.orb_kind;
        c.phenomenon = aspect;
        c.planet_2 = body_at(h.body_2, h.pos_2, h.retro_2);
        if (k != "A") c.planet_2 += " " + k;
    } else if (k == "RA" || k == "RB" || k == "RE") {
        c.phenomenon = h.aspect_glyph == "F" ? "= F" : "= R";
        c.planet_2 = body_at(h.body_2, h.pos_2, h.retro_2);
        if (k != "RA") c.planet_2 += k == "RB" ? " B" : " E";
    } else if (k == "IC" || k == "IS" || k == "IH") {
        c.phenomenon = h.orb_kind;
        const char* what = k == "IS"   ? (narrow ? " S" : " SIGN")
                           : k == "IH" ? (narrow ? " H" : " HOUSE")
                                       : (narrow ? " C" : " CONSTELLATION");
        c.planet_2 = h.target_glyph + what;
    } else if (k == "R") {
        c.phenomenon = "R";
        c.planet_2 = h.note == "R" ? "turns retrograde" : "turns direct";
        if (narrow) c.planet_2 = h.note;
    } else if (k == "M" || k == "S") {
        c.phenomenon = h.aspect_glyph;
        c.planet_2 = format_position_dm(h.pos_2, true);
    }
    return c;
}

std::string hit_text(const Session& s, const Hit& h) {
    const RowColumns c = hit_columns(s, h, false);
    return c.planet_1 + "  " + c.phenomenon + "  " + c.planet_2;
}

} // namespace celestark
