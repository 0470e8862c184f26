#include "predict.h"

#include "epoch.h"
#include "positions.h"
#include "program_session.h"

#include "drawing/ephemeris_pages.h"
#include "drawing/painter_surface.h"
#include "drawing/predictive_report.h"
#include "engine/epoch.h"
#include "predict/body_fits.h"
#include "predict/eclipses.h"
#include "predict/ephemeris.h"
#include "predict/hit_text.h"
#include "predict/phenomena.h"
#include "predict/predictive_controls.h"
#include "predict/predictive_run.h"
#include "screens/monthly_screen.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/text.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <memory>
#include <sstream>
#include <vector>

namespace celestark::cli {

namespace fs = std::filesystem;

namespace {

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

// The report's pages on paper and the rows in the list: a row goes to the list once it stands on a
// page, so that a row carried to the next page is listed once.
class ReportAndList : public HitPrinter {
  public:
    ReportAndList(drawing::PredictiveReport& report, ListPrinter& list)
        : report_(report), list_(list) {}
    void begin_page(Session& s, int page) override { report_.begin_page(s, page); }
    bool print_row(Session& s, const Hit& hit) override {
        if (!report_.print_row(s, hit)) return false;
        list_.rows.push_back(hit);
        return true;
    }
    bool pages_follow() const override { return true; }
    void end_run(Session& s) override { report_.end_run(s); }

  private:
    drawing::PredictiveReport& report_;
    ListPrinter& list_;
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

// The session of the options with the parameters of the run: the event in slot 1 (a birth
// without a stored epoch takes the one the rule selects, for a biography), the screen's controls
// as it starts, then the options.
bool prepare_predict(const Options& o, const fs::path& folder, Prepared& prepared,
                     PredictiveParameters& p, std::string& error) {
    const auto mode_it = o.find("mode");
    if (mode_it == o.end() ||
        (mode_it->second != "T" && mode_it->second != "B" && mode_it->second != "P")) {
        error = "predict needs --mode T, B or P";
        return false;
    }
    if (!prepare_session(o, folder, prepared, error)) return false;
    Session& s = prepared.s;
    s.event_slots.active_event = slot::first_user;
    EventRow& birth = s.event_slots[slot::first_user];
    if (mode_it->second == "B" && trim(birth[col::epoch_exists]) != "Y") {
        if (!prepare_epoch(o, s, slot::first_user, error)) return false;
        calculate_epoch(s);
        put_epoch_in_event(s, birth, s.epoch.recommended > 0 ? s.epoch.recommended : 1);
    }
    p = predictive_defaults(s, mode_it->second);
    if (const auto it = o.find("from"); it != o.end() && !put_date(p, it->second, "start", error)) {
        error = "--from: " + error;
        return false;
    }
    if (const auto it = o.find("to"); it != o.end() && !put_date(p, it->second, "end", error)) {
        error = "--to: " + error;
        return false;
    }
    if (const auto it = o.find("aspect-set"); it != o.end()) p.texts["aspect_set"] = it->second;
    // --zone is the report's zone; for an inline event it is also the event's, and a local mean
    // time there leaves the report in Greenwich time.
    if (const auto it = o.find("zone"); it != o.end()) {
        const std::string zone = to_upper(trim(it->second));
        const bool local = has_inline_event(o) && (zone == "LMT" || zone == "LOCAL");
        if (!local && !put_zone(p, zone, error)) return false;
    }
    return apply_set_option(
        o,
        [&p](const std::string& name, const std::string& value) {
            return set_predictive_control(p, name, value);
        },
        error);
}

// A session on the program's default event, in a program folder of its own.
bool prepare_default_session(ProgramFolder& folder, Prepared& prepared, std::string& error) {
    return folder.prepare(error) &&
           prepare_session({{"default-event", ""}}, folder.path(), prepared, error);
}

// A predictive run prepared in a program folder of its own, which lives as long as the run.
struct PreparedRun {
    ProgramFolder folder;
    std::unique_ptr<Prepared> prepared = std::make_unique<Prepared>();
    PredictiveParameters p;
};
bool prepare_run(const Options& o, PreparedRun& r, std::string& error) {
    return r.folder.prepare(error) && prepare_predict(o, r.folder.path(), *r.prepared, r.p, error);
}

} // namespace

int command_predict(const Options& o) {
    std::string error;
    PreparedRun prep;
    if (!prepare_run(o, prep, error)) return fail(error);
    Session& s = prep.prepared->s;
    PredictiveParameters& p = prep.p;
    std::string report_path;
    if (const auto it = o.find("report"); it != o.end()) {
        report_path = it->second;
        if (to_upper(fs::path(report_path).extension().string()) != ".PDF")
            return fail("--report must name a .pdf file, not '" + report_path + "'");
    }
    ListPrinter list;
    RunOutcome outcome = RunOutcome::refused;
    if (report_path.empty()) {
        outcome = start_predictive_run(s, p, list);
    } else {
        // The pages as the printer has them: A4 upright, one after the other.
        HeadlessApplication application;
        drawing::PdfCanvas paper(report_path);
        paper.set_title("Celestark predictive report");
        drawing::Canvases canvases;
        canvases.printer = &paper;
        drawing::Drawing g(s, canvases);
        g.d.printing = true;
        drawing::PredictiveReport report(g);
        ReportAndList both(report, list);
        outcome = start_predictive_run(s, p, both);
        paper.end_document();
        g.d.printing = false;
    }
    if (outcome == RunOutcome::refused || prep.prepared->fatal) return 1;
    std::printf("jd_ut,date,time,kind,moving,radical,aspect_deg,text\n");
    for (const Hit& h : list.rows) {
        const ReportDate d = report_date(s, h.life_date);
        const bool aspect = h.kind == "A" || h.kind == "B" || h.kind == "E";
        char angle[32] = "";
        if (aspect) std::snprintf(angle, sizeof angle, "%.4f", h.value);
        std::printf("%.6f,%s,%s,%s,%s,%s,%s,%s\n", h.life_date, d.date.c_str(), d.time.c_str(),
                    h.kind.c_str(), body_name(static_cast<unsigned char>(h.body_1[0])).c_str(),
                    radical_name(h).c_str(), angle,
                    csv_quoted(symbol_text_utf8(hit_text(s, h))).c_str());
    }
    return 0;
}

int command_eclipses(const Options& o) {
    // The dates on the Gregorian calendar from its start, on the Julian before it.
    const auto calendar_of = [](double jd) { return jd >= 2299160.5 ? "G" : "J"; };
    double span[2] = {0, 0};
    const char* names[2] = {"from", "to"};
    for (int i = 0; i < 2; ++i) {
        const auto it = o.find(names[i]);
        int y = 0, m = 0, d = 0;
        char tail = 0;
        if (it == o.end() ||
            std::sscanf(it->second.c_str(), "%d-%d-%d%c", &y, &m, &d, &tail) != 3 || m < 1 ||
            m > 12 || d < 1 || d > 31)
            return fail("eclipses needs --from YYYY-MM-DD --to YYYY-MM-DD");
        span[i] = julian_date(d, m, y, "G", 0);
        if (span[i] < 2299160.5) span[i] = julian_date(d, m, y, "J", 0);
    }
    if (span[1] < span[0]) return fail("--to lies before --from");
    if (span[1] - span[0] > 36525.0 * 50) return fail("eclipses covers at most 5,000 years a call");
    Session s;
    initialise_session(s, fs::current_path().string());
    if (!attach_body_tables(s)) return 2;
    std::vector<EclipseRow> rows = eclipses_between(s, span[0], span[1]);
    std::erase_if(rows, [&](const EclipseRow& r) { return r.eclipse.jd_ut > span[1] + 1; });
    std::stable_sort(rows.begin(), rows.end(), [](const EclipseRow& a, const EclipseRow& b) {
        return a.eclipse.jd_ut < b.eclipse.jd_ut;
    });
    std::printf("kind,type,jd_ut,date,time,magnitude,sun_lon_deg,moon_lon_deg\n");
    for (const EclipseRow& r : rows) {
        const Eclipse& e = r.eclipse;
        const double minutes = std::floor((e.jd_ut + 0.5) * 1440.0 + 0.5);
        const double day = std::floor(minutes / 1440.0);
        const CivilDate d = date_from_julian(day - 0.5 + 1e-9, calendar_of(e.jd_ut));
        const int of_day = static_cast<int>(minutes - day * 1440.0);
        std::printf("%s,%s,%.6f,%d-%02d-%02d,%02d:%02d,%.4f,%.6f,%.6f\n", e.kind.c_str(),
                    e.type.c_str(), e.jd_ut, d.year, d.month, static_cast<int>(d.day), of_day / 60,
                    of_day % 60, e.magnitude, r.sun * rad_to_deg, r.moon * rad_to_deg);
    }
    return 0;
}

int command_phenomena(const Options& o) {
    std::string error;
    ProgramFolder folder;
    auto prepared = std::make_unique<Prepared>();
    if (!prepare_default_session(folder, *prepared, error)) return fail(error);
    Session& s = prepared->s;
    PhenomenaParameters p = phenomena_defaults(s);
    for (const auto& [option, control] : {std::pair{"from-year", "start"}, {"to-year", "end_year"}})
        if (const auto it = o.find(option); it != o.end()) p.values[control] = it->second;
    if (!apply_set_option(
            o,
            [&p](const std::string& name, const std::string& value) {
                return set_phenomena_control(p, name, value);
            },
            error))
        return fail(error);
    if (!validate_phenomena(p, prepared->sink)) return 1;
    const std::vector<Phenomenon> rows = list_phenomena(s, p);
    if (prepared->fatal) return 1;
    // The dates on the list's own calendar, in Greenwich time.
    s.event_slots[s.event_slots.active_event][col::gj] = p.values["gj"];
    s.predictive.zone_hours = 0;
    std::printf("jd_ut,date,text,body1,body2\n");
    for (const Phenomenon& r : rows) {
        const ReportDate d = report_date(s, r.jd);
        std::printf("%.6f,%s %s,%s,%s,%s\n", r.jd, d.date.c_str(), d.time.c_str(),
                    csv_quoted(symbol_text_utf8(r.text)).c_str(),
                    symbol_text_utf8(r.body_1).c_str(), symbol_text_utf8(r.body_2).c_str());
    }
    return 0;
}

int command_ephemeris(const Options& o) {
    int span[2][2] = {{0, 0}, {0, 0}};
    const char* names[2] = {"from", "to"};
    for (int i = 0; i < 2; ++i) {
        const auto it = o.find(names[i]);
        char tail = 0;
        if (it == o.end() ||
            std::sscanf(it->second.c_str(), "%d-%d%c", &span[i][0], &span[i][1], &tail) != 2 ||
            span[i][1] < 1 || span[i][1] > 12)
            return fail("ephemeris needs --from YYYY-MM --to YYYY-MM");
    }
    if (span[1][0] * 12 + span[1][1] < span[0][0] * 12 + span[0][1])
        return fail("--to lies before --from");
    if ((span[1][0] - span[0][0]) * 12 + span[1][1] - span[0][1] > 12 * 1000)
        return fail("ephemeris covers at most a thousand years a call");
    std::string view = "Geocentric";
    if (const auto it = o.find("world-view"); it != o.end()) view = it->second;
    if (view != "Geocentric" && view != "Tychonic" && view != "Heliocentric" &&
        view != "Lemnicentric")
        return fail("--world-view must be Geocentric, Tychonic, Heliocentric or Lemnicentric");
    const std::string gj = span[0][0] * 12 + span[0][1] >= 1582 * 12 + 10 ? "G" : "J";
    std::string error;
    ProgramFolder folder;
    auto prepared = std::make_unique<Prepared>();
    if (!prepare_default_session(folder, *prepared, error)) return fail(error);
    Session& s = prepared->s;
    if (const auto out = o.find("out"); out != o.end()) {
        if (to_upper(fs::path(out->second).extension().string()) != ".PDF")
            return fail("--out must name a .pdf file, not '" + out->second + "'");
        HeadlessApplication application;
        drawing::PageFormat format;
        format.landscape = true;
        drawing::PdfCanvas paper(out->second, format);
        paper.set_title("Celestark monthly ephemeris");
        // The request as the window makes it, with the aspect sets the options name.
        MonthlyScreen screen = monthly_defaults(s, o.count("star-calendar") > 0);
        screen.values["start_year"] = std::to_string(span[0][0]);
        screen.values["start_month"] = std::to_string(span[0][1]);
        screen.values["end_year"] = std::to_string(span[1][0]);
        screen.values["end_month"] = std::to_string(span[1][1]);
        screen.values["g_j_monthly"] = gj;
        const std::pair<const char*, const char*> views[] = {{"geo", "Geocentric"},
                                                             {"hermetic", "Tychonic"},
                                                             {"helio", "Heliocentric"},
                                                             {"lemni", "Lemnicentric"}};
        for (const auto& [control, name] : views) screen.values[control] = view == name ? "1" : "0";
        MonthlyRequest request;
        RecordingSink checks;
        if (!monthly_request(screen, request, checks)) return fail("the months were refused");
        drawing::print_monthly_ephemeris(s, paper, request);
        return 0;
    }
    if (view == "Tychonic") s.chart.world_view = "Tychonic";
    const auto months =
        monthly_ephemeris(s, span[0][0], span[0][1], span[1][0], span[1][1], gj, view);
    if (months.empty()) return 0;
    std::printf("date,sidereal_time,vernal_point");
    for (const unsigned char g : months.front().glyphs) std::printf(",%s", body_name(g).c_str());
    std::printf("\n");
    for (const EphemerisMonth& m : months)
        for (const EphemerisDay& d : m.days) {
            std::printf("%d-%02d-%02d,%.6f,%.6f", m.year, m.month, d.day, d.sidereal_hours,
                        d.vernal_point_deg);
            for (const double a : d.longitudes) std::printf(",%.6f", a * rad_to_deg);
            std::printf("\n");
        }
    return 0;
}

int command_bench_run(const Options& o) {
    const std::string what = o.at("what");
    // Einstein's birth: a hundred years of transits with the Moon in the geocentric view, or
    // his lifetime biography in the lemnicentric view with the Moon.
    Options run = {{"date", "1879-03-14"},
                   {"time", "11:30:00"},
                   {"zone", "LMT"},
                   {"lat", "48N24"},
                   {"lon", "10E00"}};
    if (what == "run-transits") {
        run["mode"] = "T";
        run["from"] = "1900-01-01";
        run["to"] = "2000-01-01";
        run["set"] = "geo=1,aspects=1,signs=1,retro=1,transit_event=1,t_moon=1";
    } else if (what == "run-biography") {
        run["mode"] = "B";
        run["from"] = "1879-03-14";
        run["to"] = "1955-04-18";
        run["set"] = "lemniscate=1,lifetime=1,ab=1,aspects=1,t_moon=1,c_moon=1";
    } else {
        return fail("--what must be bodies, chart, render, run-transits or run-biography");
    }
    std::string error;
    PreparedRun prep;
    if (!prepare_run(run, prep, error)) return fail(error);
    Session& s = prep.prepared->s;
    PredictiveParameters& p = prep.p;
    s.predictive.use_fits = o.count("direct") == 0;
    // The rows are counted, not kept: the run is measured, not a list of a third of a million.
    class Counter : public HitPrinter {
      public:
        std::size_t count = 0;
        void begin_page(Session&, int) override {}
        bool print_row(Session&, const Hit&) override {
            ++count;
            return true;
        }
        bool pages_follow() const override { return true; }
    } list;
    const auto start = std::chrono::steady_clock::now();
    const std::clock_t cpu_start = std::clock();
    const RunOutcome outcome = start_predictive_run(s, p, list);
    const double cpu = static_cast<double>(std::clock() - cpu_start) / CLOCKS_PER_SEC;
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (outcome == RunOutcome::refused) return 1;
    const PredictiveRun& r = s.predictive;
    const double steps = std::fabs(r.run_cursor - r.scan_start) / static_cast<double>(r.run_step);
    std::printf("what,fitted,seconds,cpu_seconds,steps,step_days,hits,windows\n"
                "%s,%d,%.3f,%.3f,%.0f,%.6f,%zu,%ld\n",
                what.c_str(), r.use_fits ? 1 : 0, seconds, cpu, steps,
                static_cast<double>(r.run_step), list.count,
                (r.stepped_fits ? r.stepped_fits->windows() : 0) +
                    (r.life_fits ? r.life_fits->windows() : 0));
    return 0;
}

} // namespace celestark::cli
