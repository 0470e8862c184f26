// Milliseconds per chart page: the geo1 page of one event (the chart, its aspects, the wheel and
// the side tables) drawn onto the chart window's image at 1600 by 1000 pixels, and the same page
// onto the recording surface alone, which shows the cost of the layout without the painting.
#include "app/startup.h"
#include "drawing/chart_pages.h"
#include "drawing/painter_surface.h"
#include "drawing/recording_surface.h"
#include "session/session.h"
#include "store/option_defaults.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

namespace {

using namespace celestark;
namespace fs = std::filesystem;

// A program folder with a new option.mdb and the built body tables, and a session started in it
// with Einstein's birth in slot 1.
struct Folder {
    fs::path dir = fs::temp_directory_path() / "celestark_bench_render";
    Session s;
    RecordingSink sink;
    Folder() {
        fs::remove_all(dir);
        fs::create_directories(dir);
        std::string error;
        store::build_option_database(dir / "option.mdb", store::standard_option_source(), error);
#ifdef CELESTARK_TABLES_DIR
        for (const char* name : {"outer3.mdb", "asteroid.mdb", "stars.mdb"})
            fs::create_symlink(fs::path(CELESTARK_TABLES_DIR) / name, dir / name);
#endif
        start_session(s, dir.string(), sink, [](const std::string&, const std::string&) {});
        EventRow& row = s.event_slots[slot::first_user];
        row = make_default_event();
        const std::pair<int, const char*> cells[] = {
            {col::surname, "Einstein"}, {col::firstname, "Albert"}, {col::day, "14"},
            {col::month, "3"},          {col::year, "1879"},        {col::gj, "G"},
            {col::hours, "11"},         {col::mins, "30"},          {col::lz, "L"},
            {col::lat_deg, "48"},       {col::lat_min, "24"},       {col::long_deg, "10"},
            {col::long_ew, "E"},        {col::long_min, "0"}};
        for (const auto& [column, text] : cells) row[static_cast<std::size_t>(column)] = text;
    }
    ~Folder() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

void draw(benchmark::State& state, drawing::Surface& surface) {
    static Folder folder;
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

} // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
