#include "predict.h"

#include "positions.h"
#include "program_session.h"

#include "predict/hit_text.h"
#include "predict/predictive_controls.h"
#include "predict/predictive_run.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/text.h"

#include <cmath>
#include <cstdio>
#include <sstream>
#include <vector>

namespace celestark::cli {

namespace {

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + '"';
}

// The rows of a run as they come: a list never fills.
class ListPrinter : public HitPrinter {
  public:
    std::vector<Hit> rows;
    void begin_page(Session&, int) override {}
    bool print_row(Session&, const Hit& hit) override {
        rows.push_back(hit);
        return true;
    }
    bool pages_follow() const override { return true; }
};

// "YYYY-MM-DD" (the year may be negative or 0) into the three fields of the screen.
bool put_date(PredictiveParameters& p, const std::string& text, const char* prefix,
              std::string& error) {
    const auto last = text.rfind('-');
    const auto middle =
        last == std::string::npos || last == 0 ? std::string::npos : text.rfind('-', last - 1);
    if (middle == std::string::npos || middle == 0) {
        error = "dates read YYYY-MM-DD, not '" + text + "'";
        return false;
    }
    const std::string pre = prefix;
    p.texts[pre + "_year"] = text.substr(0, middle);
    p.texts[pre + "_month"] = text.substr(middle + 1, last - middle - 1);
    p.texts[pre + "_day"] = text.substr(last + 1);
    return true;
}

// A zone by its trigraph ("CET", "CED") or its whole row.
bool put_zone(PredictiveParameters& p, const std::string& zone, std::string& error) {
    for (const std::string& row : predictive_zone_rows())
        if (row == zone || row.substr(0, row.find(' ')) == zone) {
            p.texts["time_zone"] = row;
            return true;
        }
    error = "--zone: there is no time zone '" + zone + "' (give its three letters, as CET)";
    return false;
}

// A sign by its glyph; a constellation of the zodiac bears the sign's name.
std::string sign_name(unsigned char glyph) {
    static constexpr const char* names[12] = {"Aries",       "Taurus",    "Gemini",   "Cancer",
                                              "Leo",         "Virgo",     "Libra",    "Scorpio",
                                              "Sagittarius", "Capricorn", "Aquarius", "Pisces"};
    for (std::size_t i = 0; i < 12; ++i)
        if (sign_glyphs[i] == glyph) return names[i];
    return "?";
}

std::string radical_name(const Hit& h) {
    const std::string& k = h.kind;
    if (k == "IS") return sign_name(static_cast<unsigned char>(h.target_glyph[0]));
    if (k == "IH") return "house " + h.target_glyph;
    if (k == "IC")
        return "constellation of " + sign_name(static_cast<unsigned char>(h.target_glyph[0]));
    if (k == "R") return h.note == "R" ? "retrograde" : "direct";
    if (h.body_2.empty()) return "";
    return body_name(static_cast<unsigned char>(h.body_2[0]));
}

} // namespace

int command_predict(const Options& o) {
    std::string error;
    const auto mode_it = o.find("mode");
    if (mode_it == o.end() ||
        (mode_it->second != "T" && mode_it->second != "B" && mode_it->second != "P"))
        return fail("predict needs --mode T, B or P");
    ProgramFolder folder;
    if (!folder.prepare(error)) return fail(error);
    auto prepared = std::make_unique<Prepared>();
    if (!prepare_session(o, folder.path(), *prepared, error)) return fail(error);
    Session& s = prepared->s;
    s.event_slots.active_event = slot::first_user;

    PredictiveParameters p = predictive_defaults(s, mode_it->second);
    if (const auto it = o.find("from"); it != o.end() && !put_date(p, it->second, "start", error))
        return fail("--from: " + error);
    if (const auto it = o.find("to"); it != o.end() && !put_date(p, it->second, "end", error))
        return fail("--to: " + error);
    if (const auto it = o.find("aspect-set"); it != o.end()) p.texts["aspect_set"] = it->second;
    // --zone is the report's zone; for an inline event it is also the event's, and a local mean
    // time there leaves the report in Greenwich time.
    if (const auto it = o.find("zone"); it != o.end()) {
        const std::string zone = to_upper(trim(it->second));
        const bool local = has_inline_event(o) && (zone == "LMT" || zone == "LOCAL");
        if (!local && !put_zone(p, zone, error)) return fail(error);
    }
    if (const auto it = o.find("set"); it != o.end()) {
        std::istringstream in(it->second);
        std::string item;
        while (std::getline(in, item, ',')) {
            const auto eq = item.find('=');
            if (eq == std::string::npos)
                return fail("--set takes NAME=VALUE pairs, not '" + item + "'");
            const std::string why =
                set_predictive_control(p, item.substr(0, eq), item.substr(eq + 1));
            if (!why.empty()) return fail("--set: " + why);
        }
    }

    ListPrinter list;
    const RunOutcome outcome = start_predictive_run(s, p, list);
    if (outcome == RunOutcome::refused || prepared->fatal) return 1;
    std::printf("jd_ut,date,time,kind,moving,radical,aspect_deg,text\n");
    for (const Hit& h : list.rows) {
        const ReportDate d = report_date(s, h.life_date);
        const bool aspect = h.kind == "A" || h.kind == "B" || h.kind == "E";
        char angle[32] = "";
        if (aspect) std::snprintf(angle, sizeof angle, "%.4f", h.value);
        std::printf("%.6f,%s,%s,%s,%s,%s,%s,%s\n", h.life_date, d.date.c_str(), d.time.c_str(),
                    h.kind.c_str(), body_name(static_cast<unsigned char>(h.body_1[0])).c_str(),
                    radical_name(h).c_str(), angle,
                    quoted(symbol_text_utf8(hit_text(s, h))).c_str());
    }
    return 0;
}

} // namespace celestark::cli
