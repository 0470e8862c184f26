#include "predict/predictive_run.h"

#include "engine/chart.h"
#include "engine/houses.h"
#include "predict/body_fits.h"
#include "predict/eclipses.h"
#include "predict/predictive_controls.h"
#include "predict/progressions.h"
#include "predict/samples.h"
#include "predict/searches.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_sets.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace celestark {

namespace {

constexpr double sidereal_month = 27.32166;
constexpr double synodic_month = 29.53059;

// The place of a moving body in a fixed chart: by glyph, since the chart's list carries points
// the stepped list does not.
int fixed_index(const FixedChart& chart, unsigned char glyph) {
    for (int q = 0; q < chart.geo_count; ++q)
        if (chart.geo_glyph[static_cast<std::size_t>(q)] == glyph) return q;
    return -1;
}

void copy_fixed_chart(const Session& s, FixedChart& f) {
    const EngineState& e = s.engine;
    const PositionLists& p = e.pos;
    f = FixedChart{};
    f.jd = e.event_jd;
    f.geo_count = p.geo_count;
    f.helio_count = p.helio_count;
    f.lemni_count = p.lemni_count;
    for (int i = 0; i < p.geo_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        f.geo[k] = p.geo_long[k];
        f.geo_glyph[k] = p.geo_glyph[k];
        f.geo_retro[k] = p.geo_retro[k + 1] ? 'R' : 0;
    }
    for (int i = 0; i < p.helio_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        f.helio[k] = p.helio_long[k];
        f.helio_node[k] = p.helio_node[k];
        f.helio_peri[k] = p.helio_peri[k];
        f.helio_glyph[k] = p.helio_glyph[k];
    }
    for (int i = 0; i < p.lemni_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        f.lemni[k] = p.lemni_long[k];
        f.lemni_glyph[k] = p.lemni_glyph[k];
        f.lemni_retro[k] = p.lemni_retro[k + 1] ? 'R' : 0;
    }
    f.cusps = e.house_cusps;
    f.sun = p.geo_long[geo::sun];
    f.moon = p.geo_long[geo::moon];
    f.local_sidereal_hours = e.local_sidereal_hours;
    f.latitude_deg = e.latitude_deg;
}

// The position lists of the engine into one sample.
void copy_sample(const Session& s, Sample& out, double t) {
    const PositionLists& p = s.engine.pos;
    out.time = t;
    std::copy_n(p.geo_long.begin(), p.geo_count, out.geo.begin());
    std::copy_n(p.helio_long.begin(), p.helio_count, out.helio.begin());
    std::copy_n(p.helio_node.begin(), p.helio_count, out.helio_node.begin());
    std::copy_n(p.helio_peri.begin(), p.helio_count, out.helio_peri.begin());
    std::copy_n(p.lemni_long.begin(), p.lemni_count, out.lemni.begin());
}

// The lists' shapes (counts and glyphs) as the last calculation left them.
void take_list_shapes(Session& s) {
    PredictiveRun& r = s.predictive;
    const PositionLists& p = s.engine.pos;
    r.geo_count = p.geo_count;
    r.helio_count = p.helio_count;
    r.lemni_count = p.lemni_count;
    r.geo_glyph = p.geo_glyph;
    r.helio_glyph = p.helio_glyph;
    r.lemni_glyph = p.lemni_glyph;
}

// The bodies at a stepped moment with the progression applied: the lists of the engine, then
// for Secondary the progressed angles appended, for Solar Arc and OD the birth shifted.
void stepped_bodies(Session& s, double t) {
    PredictiveRun& r = s.predictive;
    if (r.stepped_fits)
        r.stepped_fits->bodies_at(s, t);
    else
        calculate_bodies_at(s, t);
    if (s.predictive_params.mode == "P" && r.choices.progression == "Secondary")
        progress_angles(s, t);
}

void apply_arc(Session& s, Sample& slot) {
    PredictiveRun& r = s.predictive;
    const std::string& kind = r.choices.progression;
    if (s.predictive_params.mode != "P" || (kind != "Solar Arc" && kind != "OD")) return;
    const double d = kind == "OD" ? (slot.time - r.birth_jd) * deg_to_rad / 365.2422
                                  : rad_diff(slot.geo[geo::sun], r.birth.sun);
    for (int p = 0; p < r.geo_count; ++p) {
        const int q = fixed_index(r.birth, r.geo_glyph[static_cast<std::size_t>(p)]);
        if (q >= 0)
            slot.geo[static_cast<std::size_t>(p)] = d + r.birth.geo[static_cast<std::size_t>(q)];
    }
}

// Slot 5 (index 4) of the window from the engine's lists, and its life set.
void fill_newest(Session& s, double t) {
    PredictiveRun& r = s.predictive;
    Sample& slot = r.window[4];
    copy_sample(s, slot, t);
    apply_arc(s, slot);
    const std::string& mode = s.predictive_params.mode;
    if (mode == "T") {
        r.life[4] = slot;
        return;
    }
    if (mode != "B" && mode != "P")
        session_fatal_box(s, "Fatal Error in ADD NEXT INTERVAL",
                          "CK16-This is a fatal error. Please contact Ivan Marlow");
    const double life = map_to_life_date(s, t, 5);
    if (r.ab_prenatal) {
        r.life[4] = slot;
    } else {
        // The real sky at the life date; the progressed angles, which it lacks, stay beside it.
        r.life[4] = slot;
        if (r.life_fits)
            r.life_fits->bodies_at(s, life);
        else
            calculate_bodies_at(s, life);
        copy_sample(s, r.life[4], life);
    }
    r.life[4].time = life;
}

// The step of stepped time, held in single precision as the step table gives it.
float choose_step(const PredictiveParameters& p, const PredictiveRun& r) {
    if (p.step > 0) return p.step;
    const std::string& view = r.choices.world_view;
    float step = 1.0f;
    if (p.mode == "T") {
        if (view == "Heliocentric")
            step = p.on("t_mercury") ? 2.0f : 5.0f;
        else if (view == "Lemnicentric")
            step = p.on("t_moon") ? 1.0f / 50.0f : 2.0f;
        else
            step = p.on("t_moon") ? 1.0f / 3.0f : 2.0f;
    } else if (r.ab_prenatal) {
        step = view == "Lemnicentric" && (p.on("t_moon") || p.on("c_moon")) ? 1.0f / 300.0f : 1.0f;
    } else if (view == "Heliocentric") {
        step = p.on("t_mercury") || p.on("c_mercury") ? 1.0f / 50.0f : 1.0f / 20.0f;
    } else if (view == "Lemnicentric") {
        if (p.on("t_moon"))
            step = 1.0f / 5000.0f;
        else if (p.on("c_moon"))
            step = 1.0f / 300.0f;
        else if (p.on("t_mercury"))
            step = 1.0f / 50.0f;
        else
            step = 1.0f / 20.0f;
    } else {
        if (p.on("t_moon") || p.on("c_moon"))
            step = 1.0f / 300.0f;
        else if (p.on("t_mercury") || p.on("c_mercury"))
            step = 1.0f / 50.0f;
        else
            step = 1.0f / 30.0f;
    }
    if (p.mode == "P" && r.choices.progression == "OD") step = 30.0f;
    return step;
}

// The zone row of the screen: its trigraph and the hours to add to Universal Time.
void read_zone(PredictiveRun& r, const std::string& row) {
    std::istringstream in(row);
    std::string code;
    double east = 0;
    int summer = 0;
    in >> code >> east >> summer;
    r.zone_code = code;
    r.zone_hours = east + summer;
}

double screen_date(const PredictiveRun& r, const std::string& day, const std::string& month,
                   const std::string& year, std::string_view gj) {
    return julian_date(text_to_number(day), text_to_i16(month), text_to_i16(year), gj, 0) -
           r.zone_hours / 24.0;
}

std::string event_calendar(const Session& s) {
    const std::string gj = trim(s.event_slots[s.event_slots.active_event][col::gj]);
    return gj.empty() ? "G" : gj;
}

// Steps 1 to 7 of a new run: the ratios, the fixed charts, the stepped span.
bool prepare_run(Session& s, MessageSink& sink) {
    PredictiveRun& r = s.predictive;
    const PredictiveParameters& p = s.predictive_params;
    const std::string& mode = p.mode;
    r.ab_prenatal = mode == "T" || p.on("prenatal");
    r.run_direction = 1;
    r.ab_mode = 2;
    r.projection_mode = mode == "B" && p.on("linear_angle") ? 2 : 1;
    if (mode == "B") {
        if (p.on("eb"))
            r.ab_mode = 1;
        else if (p.on("be")) {
            r.ab_mode = 3;
            r.run_direction = -1;
        }
    }
    if (mode == "P" && !p.on("pr_forward")) r.run_direction = -1;

    const int active = s.event_slots.active_event;
    calculate_chart(s, active, true);
    copy_fixed_chart(s, r.birth);
    r.birth_jd = r.birth.jd;
    r.precession_degree_days = precession_degree_days(s.engine.time.t_ut);
    const double P = r.precession_degree_days;
    r.time_ratio = 1.0;
    r.time_ratio_code = 1.0;
    if (mode == "B") {
        static constexpr const char* ratios[] = {"tr1", "tr2", "tr3", "tr4", "tr5"};
        for (int i = 0; i < 5; ++i)
            if (p.on(ratios[i])) r.time_ratio_code = i + 1;
        switch (static_cast<int>(r.time_ratio_code)) {
        case 1:
            r.time_ratio = 7 * 365.25 / sidereal_month;
            break;
        case 2:
            r.time_ratio = P / 10 / sidereal_month;
            break;
        case 3:
            r.time_ratio = 7 * 365.25 / synodic_month;
            break;
        case 4:
            r.time_ratio = P / 9 / synodic_month;
            break;
        default:
            r.time_ratio = P / 365.25 / 0.75;
            break;
        }
        const int epoch_row = active + slot::epoch_offset;
        derive_epoch_event(s.event_slots, active, epoch_row);
        calculate_chart(s, epoch_row, true);
        copy_fixed_chart(s, r.epoch);
        r.epoch_jd = r.epoch.jd;
        switch (r.ab_mode) {
        case 1:
            r.stepped_origin = r.epoch_jd;
            r.stepped_end = r.birth_jd;
            break;
        case 3:
            r.stepped_origin = r.birth_jd;
            r.stepped_end = r.epoch_jd;
            break;
        default:
            r.stepped_origin = r.birth_jd;
            r.stepped_end = 2 * r.birth_jd - r.epoch_jd;
            break;
        }
    } else if (mode == "P") {
        r.time_ratio = r.choices.progression == "OD" ? 1.0 : 365.2422;
        r.stepped_origin = r.birth_jd;
    } else {
        // Transits step real time: the mean formula with the ratio 1 from the birth is the
        // moment itself.
        r.stepped_origin = r.birth_jd;
    }
    (void)sink;
    return true;
}

// The fitted series where they save work: a window costs its degree + 1 calculations, so a step
// must be well below the window's width over that.
void make_fits(const PredictiveParameters& p, PredictiveRun& r) {
    r.stepped_fits.reset();
    r.life_fits.reset();
    if (!r.use_fits) return;
    FittedLists lists;
    const std::string& view = r.choices.world_view;
    lists.helio = view == "Heliocentric" || view == "Geo/Helio";
    lists.lemni = view == "Lemnicentric";
    // The geocentric list where the searches, the true projection or a direction read it.
    lists.geo = !lists.lemni && view != "Heliocentric";
    lists.geo = lists.geo || p.mode == "P" || (p.mode == "B" && r.projection_mode == 2);
    // Small steps take short windows: a series of fewer terms is read at every step, and the
    // windows' calculations are spread over many steps all the same.
    const auto fits_for = [&](double step, int direction) -> std::shared_ptr<BodyFits> {
        const double days = step < 0.001 ? 8.0 : step < 0.05 ? 16.0 : 128.0;
        const int degree = step < 0.001 ? 40 : step < 0.05 ? 32 : 112;
        if (step <= 0 || (degree + 1) * step >= days / 2) return nullptr;
        return std::make_shared<BodyFits>(lists, days, degree, direction);
    };
    const double step = static_cast<double>(r.run_step);
    r.stepped_fits = fits_for(step, r.run_direction);
    if (!r.ab_prenatal) r.life_fits = fits_for(step * r.time_ratio, 1);
}

// The eclipses of the run's span: the life span, or for progressions and prenatal biographies
// the stepped span that stands for it.
void build_eclipse_list(Session& s) {
    PredictiveRun& r = s.predictive;
    const std::string& mode = s.predictive_params.mode;
    double first = r.life_start, last = r.life_end;
    if (mode == "P") {
        first = progressed_moment(r.choices.progression, r.birth_jd, r.life_start, r.run_direction);
        last = progressed_moment(r.choices.progression, r.birth_jd, r.life_end, r.run_direction);
        if (first > last) std::swap(first, last);
    } else if (mode == "B" && r.ab_prenatal) {
        first = r.ab_mode == 2 ? r.birth_jd : r.epoch_jd;
        last = r.ab_mode == 2 ? 2 * r.birth_jd - r.epoch_jd : r.birth_jd;
    }
    for (const EclipseRow& row : eclipses_between(s, first, last))
        r.eclipses.push_back(
            {row.eclipse.kind, row.eclipse.type, row.eclipse.jd_ut, row.sun, row.moon});
}

// Steps 8 to 14: the life span, the first moment stepped, the window.
void enter_span(Session& s, const std::string& day, const std::string& month,
                const std::string& year) {
    PredictiveRun& r = s.predictive;
    const PredictiveParameters& p = s.predictive_params;
    const std::string& mode = p.mode;
    read_zone(r, p.text("time_zone"));
    const std::string gj = event_calendar(s);
    r.life_start = screen_date(r, day, month, year, gj);
    r.life_end = screen_date(r, p.text("end_day"), p.text("end_month"), p.text("end_year"), gj);
    if (mode == "B" && r.life_start < r.birth_jd) r.life_start = r.birth_jd;
    if (mode == "T") {
        r.scan_start = r.life_start - 3.0;
    } else {
        r.scan_start =
            r.stepped_origin + r.run_direction * (r.life_start - r.birth_jd) / r.time_ratio;
        if (mode == "B" && r.projection_mode == 2)
            r.scan_start -= (r.ab_prenatal ? 3.0 : 1.0) * r.run_direction;
        if (r.run_direction > 0)
            r.scan_start = std::max(r.scan_start, r.stepped_origin);
        else
            r.scan_start = std::min(r.scan_start, r.stepped_origin);
    }
    r.run_cursor = r.scan_start;
    r.run_step = choose_step(p, r);
    make_fits(p, r);
    fill_sample_window(s, r.run_cursor);
    if (mode == "B" && r.life[4].time < r.life_start - 3.0) {
        r.run_cursor =
            r.scan_start + r.run_direction * 0.9 * (r.life_start - r.life[4].time) / r.time_ratio;
        fill_sample_window(s, r.run_cursor);
    }
    r.hits.clear();
    r.search_toggle = 0;
    r.finished = false;
    r.progress_percent = 0;
    r.eclipses.clear();
    const std::string& view = r.choices.world_view;
    if (r.choices.eclipses && (view == "Geocentric" || view == "Tychonic")) build_eclipse_list(s);
}

int percent_of(const PredictiveRun& r) {
    if (r.life_end == r.life_start) return 100;
    const double f = 100.0 * (r.life[2].time - r.life_start) / (r.life_end - r.life_start);
    return std::clamp(static_cast<int>(f), 0, 100);
}

// Whether a row of the table ends the run: after the life span, or (biography) outside the
// prenatal span.
bool ends_run(const PredictiveRun& r, const std::string& mode, const Hit& h) {
    if (h.life_date > r.life_end) return true;
    if (mode != "B") return false;
    switch (r.ab_mode) {
    case 1:
        return h.date > r.birth_jd;
    case 3:
        return h.date < r.epoch_jd;
    default:
        return h.date > 2 * r.birth_jd - r.epoch_jd;
    }
}

enum class Flush { done, page_full, ended };

// The table in date order to the printer. Rows that did not fit on a page full on the screen
// stay in the table for the next page.
Flush flush_hits(Session& s, HitPrinter& printer) {
    PredictiveRun& r = s.predictive;
    const std::string& mode = s.predictive_params.mode;
    sort_hits(r.hits);
    // A station of this step may lie beyond moments the next search will still find: rows after
    // the middle of the window wait for the next flush, so the pages keep the order of dates.
    const double frontier = r.window[2].time;
    std::vector<Hit> later;
    std::erase_if(r.hits, [&](const Hit& h) {
        if ((h.date - frontier) * r.run_direction <= 0) return false;
        later.push_back(h);
        return true;
    });
    const auto keep_later = [&] { r.hits.insert(r.hits.end(), later.begin(), later.end()); };
    for (std::size_t i = 0; i < r.hits.size(); ++i) {
        const Hit& h = r.hits[i];
        if (ends_run(r, mode, h)) {
            r.hits.clear();
            return Flush::ended;
        }
        if (h.life_date < r.life_start || (mode != "T" && h.life_date < r.birth_jd)) continue;
        if (printer.print_row(s, h)) continue;
        if (!printer.pages_follow()) {
            r.hits.erase(r.hits.begin(), r.hits.begin() + static_cast<std::ptrdiff_t>(i));
            keep_later();
            return Flush::page_full;
        }
        printer.begin_page(s, ++r.page);
        printer.print_row(s, h);
    }
    r.hits.clear();
    keep_later();
    return Flush::done;
}

std::string progress_date_text(double jd, std::string_view gj) {
    const CivilDate d = date_from_julian(jd, gj);
    char text[48];
    std::snprintf(text, sizeof text, "%d-%02d-%02d", d.year, d.month, static_cast<int>(d.day));
    return text;
}

// The loop of a run, from wherever it was left.
RunOutcome run_loop(Session& s, HitPrinter& printer) {
    PredictiveRun& r = s.predictive;
    MessageSink& sink = session_sink(s);
    const BodySelection bodies = select_bodies(s, s.predictive_params);
    const std::string gj = event_calendar(s);
    s.run_cancelled = 0;
    sink.progress_begin("Predictive run", 100);
    using clock = std::chrono::steady_clock;
    auto last_shown = clock::now() - std::chrono::seconds(1);
    RunOutcome outcome = RunOutcome::finished;
    for (;;) {
        bool flush_now = false;
        if (r.run_phase == 3) {
            r.run_phase = -1;
            r.search_toggle = -1;
            flush_now = true;
        } else {
            r.run_phase = -1;
            add_next_interval(s, r.run_cursor);
            if (r.life[0].time > r.life_end) break;
            r.progress_date = r.life[2].time;
            if (r.life[4].time > r.life_start) {
                const bool full = r.search_toggle == -1;
                r.search_toggle = full ? 0 : -1;
                search_step(s, bodies, full);
            }
            flush_now = r.search_toggle == -1;
        }
        if (flush_now && !r.hits.empty()) {
            const Flush f = flush_hits(s, printer);
            if (f == Flush::ended) break;
            if (f == Flush::page_full) {
                outcome = RunOutcome::page_full;
                break;
            }
        }
        if (r.search_toggle == -1) {
            r.progress_percent = percent_of(r);
            // The screen is let through a few times a second, which keeps CANCEL prompt
            // without handing the thread away at every step.
            const auto now = clock::now();
            if (now - last_shown >= std::chrono::milliseconds(50)) {
                last_shown = now;
                sink.progress_label(progress_date_text(r.progress_date, gj));
                if (sink.progress(r.progress_percent)) s.run_cancelled = 1;
            }
        }
        if (s.run_cancelled) {
            outcome = RunOutcome::cancelled;
            break;
        }
    }
    sink.progress_end();
    if (outcome == RunOutcome::page_full) return outcome;
    r.finished = true;
    if (outcome == RunOutcome::finished) r.progress_percent = 100;
    printer.end_run(s);
    return outcome;
}

} // namespace

double precession_degree_days(double t_ut) {
    return 365.25 * 360000 / (5029.0966 + 2.22226 * t_ut - 0.000042 * t_ut * t_ut);
}

double map_to_life_date(const Session& s, double t, int slot) {
    const PredictiveRun& r = s.predictive;
    const PredictiveParameters& p = s.predictive_params;
    if (p.mode != "B" || r.projection_mode != 2)
        return (t - r.stepped_origin) * r.time_ratio * r.run_direction + r.birth_jd;
    double moon = 0, sun = 0;
    if (slot >= 1 && slot <= 5) {
        moon = r.window[static_cast<std::size_t>(slot - 1)].geo[geo::moon];
        sun = r.window[static_cast<std::size_t>(slot - 1)].geo[geo::sun];
    } else {
        const double n =
            (t - r.window[2].time) / (r.run_direction * static_cast<double>(r.run_step));
        Samples ym, ys;
        for (std::size_t i = 0; i < 5; ++i) {
            ym[i] = r.window[i].geo[geo::moon];
            ys[i] = r.window[i].geo[geo::sun];
        }
        unwrap_samples(ym);
        unwrap_samples(ys);
        moon = interpolate_samples(ym, n);
        sun = interpolate_samples(ys, n);
    }
    const FixedChart& origin = r.ab_mode == 1 ? r.epoch : r.birth;
    const int code = static_cast<int>(r.time_ratio_code);
    double a = 0;
    if (code <= 2)
        a = rad_diff(moon, origin.moon);
    else if (code <= 4)
        a = rad_diff(rad_diff(moon, sun), rad_diff(origin.moon, origin.sun));
    else
        a = rad_diff(sun, origin.sun);
    if (r.run_direction > 0 && a < 0) a += two_pi;
    if (r.run_direction < 0 && a > 0) a -= two_pi;
    const double P = r.precession_degree_days;
    if (code == 5) return P * (a / two_pi) / 0.75 * r.run_direction + r.birth_jd;
    const double e = t - r.stepped_origin;
    const double month = code <= 2 ? sidereal_month : synodic_month;
    // The whole months that agree with mean motion within six days; a Moon that never agrees
    // (it cannot in a real chart) stops the count after a life's worth of months.
    int k = -r.run_direction;
    for (int guard = 0; std::fabs((k * two_pi + a) * month / two_pi - e) >= 6.0; ++guard) {
        if (guard > 4000) break;
        k += r.run_direction;
    }
    const double m = a / two_pi + k;
    switch (code) {
    case 1:
    case 3:
        return 7 * 365.25 * m * r.run_direction + r.birth_jd;
    case 2:
        return P * m / 10 * r.run_direction + r.birth_jd;
    default:
        return P * m / 9 * r.run_direction + r.birth_jd;
    }
}

void sort_hits(std::vector<Hit>& hits) {
    std::stable_sort(hits.begin(), hits.end(),
                     [](const Hit& a, const Hit& b) { return a.life_date < b.life_date; });
}

void fill_sample_window(Session& s, double t) {
    PredictiveRun& r = s.predictive;
    for (int k = 1; k <= 5; ++k) {
        const double at = t + (k - 5) * r.run_direction * static_cast<double>(r.run_step);
        stepped_bodies(s, at);
        if (k == 1) take_list_shapes(s);
        // Each slot is made as the newest, then moved down to its place.
        if (k > 1)
            for (std::size_t i = 0; i < 4; ++i) {
                r.window[i] = r.window[i + 1];
                r.life[i] = r.life[i + 1];
            }
        fill_newest(s, at);
    }
}

void add_next_interval(Session& s, double& t) {
    PredictiveRun& r = s.predictive;
    for (std::size_t i = 0; i < 4; ++i) {
        r.window[i] = r.window[i + 1];
        r.life[i] = r.life[i + 1];
    }
    t += r.run_direction * static_cast<double>(r.run_step);
    stepped_bodies(s, t);
    fill_newest(s, t);
}

RunOutcome start_predictive_run(Session& s, const PredictiveParameters& params,
                                HitPrinter& printer) {
    MessageSink& sink = session_sink(s);
    PredictiveRun& r = s.predictive;
    const EventSlots& slots = s.event_slots;
    const int active = slots.active_event;
    if (slot_is_empty(slots[active])) {
        sink.message("NO EVENT", "There is no event in the active card.", MessageIcon::information);
        return RunOutcome::refused;
    }
    if (!validate_predictive_screen(params, event_calendar(s), sink)) return RunOutcome::refused;
    const auto& formats = predictive_output_formats();
    if (std::find(formats.begin(), formats.end(), params.text("output_format")) == formats.end()) {
        sink.message("", "TEST", MessageIcon::information);
        return RunOutcome::refused;
    }
    if (s.chart.zodiac == "Draconic" && s.chart.moon_node == 0) {
        sink.message("ERROR USING DRACONIC ZODIAC",
                     "For the Draconic Zodiac either the Osculating or the Mean Moon Node Option "
                     "must be selected",
                     MessageIcon::information);
        return RunOutcome::refused;
    }
    if (params.mode == "B" && trim(slots[active][col::epoch_exists]) != "Y") {
        sink.message("NO EPOCH",
                     "Event " + std::to_string(active) +
                         " has no prenatal epoch yet: a biography maps the time from the epoch "
                         "to the birth onto the life.",
                     MessageIcon::information);
        return RunOutcome::refused;
    }
    RunChoices choices = read_predictive_parameters(params);
    if (params.mode == "P" && choices.progression == "Primary") {
        sink.message("PRIMARY DIRECTIONS",
                     "Primary directions are not calculated by this version. Choose Secondary, "
                     "Solar Arc or OD.",
                     MessageIcon::information);
        return RunOutcome::refused;
    }
    if (params.mode == "P" && choices.progression.empty()) choices.progression = "Secondary";
    load_aspect_set(s, params.text("aspect_set"), sink);

    s.predictive_params = params;
    const bool use_fits = r.use_fits;
    r = PredictiveRun{};
    r.use_fits = use_fits;
    r.choices = choices;
    r.run_phase = 0;
    if (!prepare_run(s, sink)) return RunOutcome::refused;
    enter_span(s, params.text("start_day"), params.text("start_month"), params.text("start_year"));
    r.page = 1;
    printer.begin_page(s, r.page);
    return run_loop(s, printer);
}

RunOutcome continue_predictive_run(Session& s, HitPrinter& printer) {
    PredictiveRun& r = s.predictive;
    if (r.finished) return RunOutcome::finished;
    r.run_phase = 3;
    printer.begin_page(s, ++r.page);
    return run_loop(s, printer);
}

RunOutcome restart_predictive_run(Session& s, HitPrinter& printer) {
    const PredictiveParameters& p = s.predictive_params;
    return restart_predictive_run_at(s, printer, p.text("start_day"), p.text("start_month"),
                                     p.text("start_year"));
}

RunOutcome restart_predictive_run_at(Session& s, HitPrinter& printer, const std::string& day,
                                     const std::string& month, const std::string& year) {
    PredictiveParameters check = s.predictive_params;
    check.texts["start_day"] = day;
    check.texts["start_month"] = month;
    check.texts["start_year"] = year;
    if (!validate_predictive_screen(check, event_calendar(s), session_sink(s)))
        return RunOutcome::refused;
    PredictiveRun& r = s.predictive;
    r.run_phase = 1;
    enter_span(s, day, month, year);
    r.page = 1;
    printer.begin_page(s, r.page);
    return run_loop(s, printer);
}

} // namespace celestark
