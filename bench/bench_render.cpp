// Milliseconds per chart page: the geo1 page of one event (the chart, its aspects, the wheel and
// the side tables) drawn onto the chart window's image at 1600 by 1000 pixels, and the same page
// onto the recording surface alone, which shows the cost of the layout without the painting.
// Seconds for a year of the monthly ephemeris with its phenomena written as PDF, and for the
// star calendar of the same year.
#include "bench_folder.h"
#include "drawing/chart_pages.h"
#include "drawing/ephemeris_pages.h"
#include "drawing/painter_surface.h"
#include "drawing/recording_surface.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

namespace {

using namespace celestark;

void draw(benchmark::State& state, drawing::Surface& surface) {
    static bench::Folder folder("celestark_bench_render");
    drawing::Canvases canvases;
    canvases.chart = &surface;
    drawing::Drawing g(folder.s, canvases);
    g.d.working_event = slot::first_user;
    g.d.screen_page = "geo1";
    for (auto _ : state) {
        drawing::screen_display(g);
        benchmark::ClobberMemory();
    }
}

void BM_geo1_page_image(benchmark::State& state) {
    drawing::RasterCanvas image(1600, 1000, 24000);
    draw(state, image);
}
BENCHMARK(BM_geo1_page_image)->Unit(benchmark::kMillisecond);

void BM_geo1_page_layout_only(benchmark::State& state) {
    drawing::RecordingSurface recording(24000, 15000, false);
    draw(state, recording);
}
BENCHMARK(BM_geo1_page_layout_only)->Unit(benchmark::kMillisecond);

void year_pdf(benchmark::State& state, bool star_calendar) {
    static bench::Folder folder("celestark_bench_ephemeris");
    const std::string file =
        (std::filesystem::temp_directory_path() / "celestark_bench_year.pdf").string();
    MonthlyRequest request;
    request.first_year = request.last_year = 2024;
    request.star_calendar = star_calendar;
    int pages = 0;
    for (auto _ : state) {
        drawing::PageFormat format;
        format.landscape = true;
        drawing::PdfCanvas paper(file, format);
        pages = drawing::print_monthly_ephemeris(folder.s, paper, request);
    }
    state.counters["months"] = pages;
}

void BM_monthly_ephemeris_year_pdf(benchmark::State& state) {
    year_pdf(state, false);
}
BENCHMARK(BM_monthly_ephemeris_year_pdf)->Unit(benchmark::kMillisecond);

void BM_star_calendar_year_pdf(benchmark::State& state) {
    year_pdf(state, true);
}
BENCHMARK(BM_star_calendar_year_pdf)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
