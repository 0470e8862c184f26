// The desktop's two figures: a time step in the chart window (the step, the chart of the new
// moment, the page drawn on the window's image and painted on the screen), and the making of the
// main window from a started session to its first paint.
#include "bench_folder.h"
#include "screens/widgets/chart_display.h"
#include "screens/widgets/chart_window.h"
#include "screens/widgets/desktop.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace {

using namespace celestark;

void BM_time_step_redraw(benchmark::State& state) {
    static bench::Folder folder("celestark_bench_desktop");
    screens::Desktop desktop(folder.s);
    folder.s.event_slots.active_event = slot::first_user;
    desktop.run("chart_geocentric");
    screens::ChartDisplay& display = desktop.chart_display();
    display.resize(1400, 900);
    QApplication::processEvents();
    bool backward = false;
    for (auto _ : state) {
        display.step("1day", backward);
        display.repaint();
        backward = !backward;
    }
    state.counters["pages"] = display.pages_drawn();
}
BENCHMARK(BM_time_step_redraw)->Unit(benchmark::kMillisecond);

void BM_main_window_shown(benchmark::State& state) {
    static bench::Folder folder("celestark_bench_main_window");
    for (auto _ : state) {
        screens::Desktop desktop(folder.s);
        desktop.chart_window().show();
        desktop.chart_window().repaint();
    }
}
BENCHMARK(BM_main_window_shown)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
