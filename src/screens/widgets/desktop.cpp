#include "screens/widgets/desktop.h"

#include "drawing/chart_pages.h"
#include "drawing/painter_surface.h"
#include "screens/chart_commands.h"
#include "screens/widgets/chart_display.h"
#include "screens/widgets/chart_window.h"
#include "screens/widgets/listing_windows.h"
#include "screens/widgets/similars_windows.h"
#include "screens/widgets/tables_windows.h"
#include "session/session.h"

#include <QApplication>
#include <QPrinter>

namespace celestark::screens {

Desktop::Desktop(Session& session) : session_(session), drawing_(session, canvases_) {
    chart_window_ = std::make_unique<ChartWindow>(*this);
    add_event_input_windows(*this);
    add_option_windows(*this);
    add_event_database_windows(*this);
    add_option_set_windows(*this);
    add_star_windows(*this);
    add_help_windows(*this);
    add_print_windows(*this);
    add_epoch_windows(*this);
    add_predictive_windows(*this);
    add_phenomena_windows(*this);
    add_monthly_window(*this);
    add_listing_windows(*this);
    add_tables_windows(*this);
    add_similars_windows(*this);
    chart_window_->enable_known_commands();
}

Desktop::~Desktop() = default;

ChartWindow& Desktop::chart_window() {
    return *chart_window_;
}

ChartDisplay& Desktop::chart_display() {
    if (!chart_display_) chart_display_ = std::make_unique<ChartDisplay>(*this);
    return *chart_display_;
}

bool Desktop::knows(const std::string& command) const {
    return find_chart_command(command) != nullptr || find_double_command(command) != nullptr ||
           commands_.count(command) > 0;
}

void Desktop::add_command(const std::string& command, std::function<void()> open) {
    commands_[command] = std::move(open);
}

bool Desktop::run(const std::string& command) {
    if (const ChartCommand* c = find_chart_command(command)) {
        if (chart_request(session_, *c, session_sink(session_))) show_page();
        return true;
    }
    if (const DoubleCommand* c = find_double_command(command)) {
        if (double_chart_request(session_, *c, chart_window().state().compare_event,
                                 session_sink(session_)))
            show_page();
        return true;
    }
    const auto it = commands_.find(command);
    if (it == commands_.end()) return false;
    it->second();
    return true;
}

void Desktop::edit_event(const EventInput& input) {
    if (event_editor_) event_editor_(input);
}

void Desktop::set_event_editor(std::function<void(const EventInput&)> editor) {
    event_editor_ = std::move(editor);
}

void Desktop::refresh_chart_window() {
    chart_window_->refresh();
    emit slots_changed();
}

void Desktop::show_page() {
    chart_display().show_page();
}

QPrinter& Desktop::printer() {
    if (!printer_) printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
    return *printer_;
}

bool Desktop::print(const std::function<bool()>& draw) {
    drawing::PrinterCanvas paper(printer());
    paper.dialog = print_dialog;
    canvases_.printer = &paper;
    session_.drawing.printing = true;
    const bool printed = draw();
    session_.drawing.printing = false;
    canvases_.printer = nullptr;
    return printed;
}

void Desktop::quit() {
    quitting_ = true;
    QApplication::closeAllWindows();
    QApplication::quit();
}

} // namespace celestark::screens
