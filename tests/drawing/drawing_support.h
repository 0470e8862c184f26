// A started session in a program folder of its own, and a recording surface to draw a page on.
#pragma once

#include "../store/program_folder.h"
#include "drawing/chart_pages.h"
#include "drawing/recording_surface.h"
#include "session/session.h"

#include <cmath>
#include <memory>
#include <string>

namespace celestark::testing {

// The chart window of the screen layout: 1600 by 1000 pixels of 15 twips.
inline constexpr float window_wide = 24000, window_high = 15000;

struct DrawingSession {
    ProgramFolder folder;
    Session s;
    drawing::RecordingSurface window{window_wide, window_high, false};
    drawing::RecordingSurface paper{11906, 16838, true};
    drawing::Canvases canvases;
    std::unique_ptr<drawing::Drawing> g;

    DrawingSession() {
        folder.start(s);
        s.sink = &folder.sink;
        s.fatal_handler = folder.handler();
        canvases.chart = &window;
        canvases.printer = &paper;
        g = std::make_unique<drawing::Drawing>(s, canvases);
        g->d.working_event = slot::first_user;
    }
    // An event in slot 1: the date and local mean time at a place (degrees north and east).
    void event(int year, int month, int day, int hour, int minute, double lat, double lon) {
        EventRow& row = s.event_slots[slot::first_user];
        row = make_default_event();
        row[col::surname] = "Testcase";
        row[col::firstname] = "Ada";
        row[col::event] = "Birth";
        row[col::year] = std::to_string(year);
        row[col::month] = std::to_string(month);
        row[col::day] = std::to_string(day);
        row[col::gj] = "G";
        row[col::hours] = std::to_string(hour);
        row[col::mins] = std::to_string(minute);
        row[col::lz] = "L";
        row[col::lat_deg] = std::to_string(static_cast<int>(std::fabs(lat)));
        row[col::lat_ns] = lat < 0 ? "S" : "N";
        row[col::lat_min] = std::to_string(static_cast<int>(std::fmod(std::fabs(lat), 1) * 60));
        row[col::long_deg] = std::to_string(static_cast<int>(std::fabs(lon)));
        row[col::long_ew] = lon < 0 ? "W" : "E";
        row[col::long_min] = std::to_string(static_cast<int>(std::fmod(std::fabs(lon), 1) * 60));
    }
    bool show(const std::string& page, bool printing = false) {
        window.forget();
        paper.forget();
        g->d.screen_page = page;
        g->d.printing = printing;
        return drawing::screen_display(*g);
    }
};

} // namespace celestark::testing
