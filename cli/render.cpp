#include "render.h"

#include "engine/epoch.h"
#include "epoch.h"

#include "event_options.h"
#include "positions.h"
#include "program_session.h"
#include "stores.h"

#include "app/startup.h"
#include "drawing/chart_pages.h"
#include "drawing/page_furniture.h"
#include "drawing/painter_surface.h"
#include "drawing/recording_surface.h"
#include "engine/chart.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_sets.h"

#include <QGuiApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

namespace celestark::cli {

namespace fs = std::filesystem;
using drawing::Canvases;
using drawing::Drawing;
using drawing::Surface;

namespace {

// The chart window the screen layout is drawn for: 1600 by 1000 pixels of 15 twips.
constexpr float window_twips_wide = 1600 * 15.0f, window_twips_high = 1000 * 15.0f;
// An A4 page, portrait, in twips.
constexpr float a4_twips_wide = 210 / 25.4f * 1440, a4_twips_high = 297 / 25.4f * 1440;

struct PageView {
    const char* page;
    const char* world_view;
};
constexpr PageView page_views[] = {
    {"geo1", "Geocentric"},
    {"helio1", "Heliocentric"},
    {"helio_triple", "Heliocentric"},
    {"lem1", "Lemnicentric"},
    {"geo_helio1", "Geo/Helio"},
    {"geo_triple", "Geocentric"},
    {"display_all_planets", "Geocentric"},
    {"data1", "Geocentric"},
    {"star_geo", "Geocentric"},
    {"star_sid_trop", "Geocentric"},
    {"star_geo_helio", "Geo/Helio"},
    {"star_helio", "Heliocentric"},
    {"star_lem", "Lemnicentric"},
    {"star_analysis_conjunction", "Geocentric"},
    {"star_analysis_horizon", "Geocentric"},
    {"harmonics", "Geocentric"},
    {"prenatal1", "Geocentric"},
    {"prenatal2", "Geocentric"},
    {"prenatal_rect", "Geocentric"},
    {"prenatal_helio_rect", "Heliocentric"},
    {"prenatal_lem_rect", "Lemnicentric"},
    {"lem_prenatal1", "Lemnicentric"},
    {"lem_prenatal3dwith", "Lemnicentric"},
    {"lem_prenatal3dse", "Lemnicentric"},
    {"plan display", "Geocentric"},
    {"planets motion", "Heliocentric"},
    {"geo_double", "Geocentric"},
    {"helio_double", "Heliocentric"},
    {"lemni_double", "Lemnicentric"},
    {"geo_helio_double", "Geo/Helio"},
    {"helio_geo_double", "Geo/Helio"},
};

bool double_page(const std::string& page) {
    return page.size() > 7 && page.compare(page.size() - 7, 7, "_double") == 0;
}

// The outer event of a double page: the options that begin with "outer-", read as the event
// options are; without any, the program's default event.
bool load_outer_event(const Options& o, Session& s, int& outer, std::string& error) {
    Options event;
    for (const auto& [name, value] : o)
        if (name.rfind("outer-", 0) == 0) event[name.substr(6)] = value;
    outer = slot::default_event;
    if (event.empty()) return true;
    outer = slot::first_user + 1;
    if (!load_event_option(event, s, outer, error)) {
        error = "outer event: " + error;
        return false;
    }
    return true;
}

// The pages of a birth with its prenatal epoch, and those among them that are landscape.
bool prenatal_page(const std::string& page) {
    return page.rfind("prenatal", 0) == 0 || page.rfind("lem_prenatal", 0) == 0;
}
bool landscape_page(const std::string& page) {
    return page == "prenatal_rect" || page == "prenatal_helio_rect" || page == "prenatal_lem_rect";
}

const char* default_view(const std::string& page) {
    for (const PageView& p : page_views)
        if (page == p.page) return p.world_view;
    return nullptr;
}

std::string pages_list() {
    std::string out;
    for (const PageView& p : page_views) {
        const std::string word = p.page;
        out += (out.empty() ? "" : ", ") +
               (word.find(' ') == std::string::npos ? word : "\"" + word + "\"");
    }
    return out;
}

enum class Format { png, pdf, svg };

bool format_of(const std::string& path, Format& f) {
    const std::string ext = to_upper(fs::path(path).extension().string());
    if (ext == ".PNG")
        f = Format::png;
    else if (ext == ".PDF")
        f = Format::pdf;
    else if (ext == ".SVG")
        f = Format::svg;
    else
        return false;
    return true;
}

// Draws the page of the options with the session's settings; false after a fatal error.
bool draw_page(Prepared& p, const std::string& page, Drawing& g, int outer) {
    g.d.screen_page = page;
    g.d.working_event = slot::first_user;
    g.d.inner_event = slot::first_user;
    g.d.chart_kind = "C";
    // A prenatal page draws the birth with its epoch, which the row's epoch cells give.
    g.d.outer_event = slot::first_user + slot::epoch_offset;
    derive_epoch_event(p.s.event_slots, slot::first_user, g.d.outer_event);
    if (double_page(page)) g.d.outer_event = outer;
    g.d.allow_stepping = true;
    g.d.stepping_on = false;
    if (page != "harmonics") return drawing::screen_display(g) && !p.fatal;
    // The harmonics page has no word of its own on the chart window; it is drawn here alone.
    g.d.display_target = "Chart";
    g.read_page_options();
    g.d.portrait_page = true;
    g.load_active_colour_set();
    g.initialise_frame();
    load_aspect_set(p.s, p.s.chart.aspect_set_charts, p.sink);
    calculate_chart(p.s, slot::first_user, true);
    drawing::harmonics_page(g);
    if (g.d.printing && g.canvases.printer) {
        g.canvases.printer->end_page();
        g.canvases.printer->end_document();
    }
    return !p.fatal;
}

} // namespace

int command_render(const Options& o) {
    const auto page_it = o.find("page"), out_it = o.find("out");
    if (page_it == o.end() || out_it == o.end())
        return fail("render needs --page WORD --out FILE.png|.pdf|.svg");
    const std::string page = page_it->second, out = out_it->second;
    const char* view = default_view(page);
    if (!view) return fail("--page must be one of " + pages_list() + ", not '" + page + "'");
    Format format{};
    if (!format_of(out, format)) return fail("--out must end in .png, .pdf or .svg");
    double width = 1600;
    std::string error;
    if (!number_option(o, "width", width, error) && !error.empty()) return fail(error);
    if (width < 100 || width > 20000) return fail("--width must be 100 to 20000 pixels");
    const bool printing = o.count("printing") > 0;

    ProgramFolder folder;
    if (!folder.prepare(error)) return fail(error);
    HeadlessApplication application;
    auto prepared = std::make_unique<Prepared>();
    if (!prepare_session(o, folder.path(), *prepared, error)) return fail(error);
    Session& s = prepared->s;
    // A prenatal page draws the birth with its epoch: the one stored with the event, or else the
    // one the rule selects (with the epoch options of the command).
    EventRow& birth = s.event_slots[slot::first_user];
    if (prenatal_page(page) && trim(birth[col::epoch_exists]) != "Y") {
        if (!prepare_epoch(o, s, slot::first_user, error)) return fail(error);
        calculate_epoch(s);
        put_epoch_in_event(s, birth, s.epoch.recommended > 0 ? s.epoch.recommended : 1);
    }
    int outer = slot::default_event;
    if (double_page(page) && !load_outer_event(o, s, outer, error)) return fail(error);
    s.chart.world_view = view;
    if (const auto it = o.find("world-view"); it != o.end()) {
        const std::string& w = it->second;
        if (w != "Geocentric" && w != "Heliocentric" && w != "Tychonic" && w != "Lemnicentric" &&
            w != "Geo/Helio")
            return fail("--world-view must be Geocentric, Heliocentric, Tychonic, Lemnicentric "
                        "or Geo/Helio");
        s.chart.world_view = w;
    }

    // The surface: a page of paper when printing, otherwise the chart window's picture.
    std::unique_ptr<Surface> canvas;
    drawing::RasterCanvas* raster = nullptr;
    const int pixels = static_cast<int>(width);
    // The rectified prenatal pages are landscape: on paper the sheet is turned.
    const bool turned = printing && landscape_page(page);
    switch (format) {
    case Format::png: {
        const float twips_wide =
            printing ? (turned ? a4_twips_high : a4_twips_wide) : window_twips_wide;
        const float twips_high =
            printing ? (turned ? a4_twips_wide : a4_twips_high) : window_twips_high;
        auto r = std::make_unique<drawing::RasterCanvas>(
            pixels, static_cast<int>(pixels * twips_high / twips_wide), twips_wide, printing);
        raster = r.get();
        canvas = std::move(r);
        break;
    }
    case Format::pdf:
        if (printing) {
            drawing::PageFormat f;
            f.landscape = turned;
            canvas = std::make_unique<drawing::PdfCanvas>(out, f);
        } else {
            drawing::PageFormat f{window_twips_wide / 1440 * 25.4, window_twips_high / 1440 * 25.4,
                                  0, false};
            canvas = std::make_unique<drawing::PdfCanvas>(out, f);
        }
        break;
    case Format::svg:
        canvas = printing ? std::make_unique<drawing::SvgCanvas>(
                                out, drawing::PageFormat{210, 297, 10, turned})
                          : std::make_unique<drawing::SvgCanvas>(
                                out, drawing::PageFormat{}, window_twips_wide, window_twips_high);
        break;
    }
    std::unique_ptr<drawing::RecordingSurface> recording;
    Surface* target = canvas.get();
    if (o.count("layout")) {
        recording = std::make_unique<drawing::RecordingSurface>(0, 0, printing, canvas.get());
        target = recording.get();
    }
    Canvases canvases;
    if (printing)
        canvases.printer = target;
    else
        canvases.chart = target;
    Drawing g(s, canvases);
    g.d.printing = printing;
    if (!draw_page(*prepared, page, g, outer)) return fail("the page could not be drawn");

    if (raster) {
        if (!raster->save_png(out, error)) return fail(error);
    } else {
        canvas->end_document();
    }
    if (recording) {
        std::ofstream json(o.at("layout"));
        json << recording->json();
        if (!json) return fail("cannot write " + o.at("layout"));
    }
    std::printf("%s\n", out.c_str());
    return 0;
}

int command_bench_render(const Options& o) {
    double moments = 20;
    std::string error;
    if (!number_option(o, "moments", moments, error) && !error.empty()) return fail(error);
    if (moments < 1 || moments > 100000) return fail("--moments must be 1 to 100000");
    ProgramFolder folder;
    if (!folder.prepare(error)) return fail(error);
    HeadlessApplication application;
    auto p = std::make_unique<Prepared>();
    Options event = {{"date", "1879-03-14"}, {"time", "11:30:00"}, {"zone", "LMT"},
                     {"lat", "48N24"},       {"lon", "10E00"},     {"name", "Bench"}};
    if (!prepare_session(event, folder.path(), *p, error)) return fail(error);
    p->s.chart.world_view = "Geocentric";
    drawing::RasterCanvas canvas(1600, 1000, window_twips_wide);
    Canvases canvases;
    canvases.chart = &canvas;
    Drawing g(p->s, canvases);
    const int n = static_cast<int>(moments);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < n; ++i) {
        p->s.event_slots[slot::first_user][col::day] = std::to_string(1 + i % 28);
        if (!draw_page(*p, "geo1", g, slot::default_event))
            return fail("the page could not be drawn");
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("what,pages,ms_per_page\nrender,%d,%.3f\n", n, seconds * 1e3 / n);
    return 0;
}

} // namespace celestark::cli
