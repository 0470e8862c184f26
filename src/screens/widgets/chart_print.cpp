#include "screens/widgets/chart_print.h"

#include "drawing/chart_pages.h"
#include "screens/chart_commands.h"
#include "screens/widgets/chart_window.h"
#include "screens/widgets/desktop.h"
#include "session/session.h"

#include <QApplication>

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPageSetupDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

#include <memory>
#include <vector>

namespace celestark::screens {

ChartPrintWindow::ChartPrintWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "CHART_PRINT", "PRINT THE CHARTS OF THE EVENT") {
    auto* layout = new QVBoxLayout(this);
    auto* which = make_group(this, "print_which", "Event");
    auto* wl = new QHBoxLayout(which);
    birth_ = make_radio(which, "print_birth", "Birth chart");
    epoch_ = make_radio(which, "print_epoch", "Epoch chart");
    birth_->setChecked(true);
    wl->addWidget(birth_);
    wl->addWidget(epoch_);
    wl->addStretch(1);
    layout->addWidget(which);

    // One frame for each world view, its boxes in the order of the printed document.
    auto* frames = new QGridLayout;
    std::map<std::string, QGridLayout*> grids;
    for (const ChartPrintBox& box : chart_print_boxes()) {
        QGridLayout*& grid = grids[box.group];
        if (!grid) {
            const int n = static_cast<int>(grids.size()) - 1;
            auto* frame =
                make_group(this, ("print_group_" + std::to_string(n + 1)).c_str(), box.group);
            grid = new QGridLayout(frame);
            grid->setAlignment(Qt::AlignTop);
            frames->addWidget(frame, n / 3, n % 3);
        }
        QCheckBox* check = make_check(this, box.name.c_str(), box.caption);
        if (box.page == PrintedPage::compare)
            check->setToolTip("Against the event of the card chosen with Compare");
        connect(check, &QCheckBox::toggled, this, [this] { ticked_changed(); });
        grid->addWidget(check, grid->count(), 0);
        boxes_[box.name] = check;
    }
    layout->addLayout(frames);

    auto* buttons = new QHBoxLayout;
    auto* setup = make_button(this, "print_page_setup", "PAGE SETUP");
    print_ = make_button(this, "print_charts", "PRINT");
    auto* exit = make_button(this, "print_exit", "EXIT");
    buttons->addWidget(setup);
    buttons->addStretch(1);
    buttons->addWidget(print_);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    connect(setup, &QPushButton::clicked, this,
            [this] { this->desktop().run("printer_setup_options"); });
    connect(print_, &QPushButton::clicked, this, [this] { print(); });
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
    ticked_changed();
}

void ChartPrintWindow::enter() {
    show();
    raise();
    activateWindow();
}

void ChartPrintWindow::ticked_changed() {
    bool any = false;
    for (const auto& [name, box] : boxes_) any = any || (box->isEnabled() && box->isChecked());
    print_->setEnabled(any);
}

bool ChartPrintWindow::print() {
    std::vector<std::string> ticked;
    for (const auto& [name, box] : boxes_)
        if (box->isChecked()) ticked.push_back(name);
    const ChartPrintSelection selection = chart_print_selection(ticked);
    const auto pages = drawing::chart_series_pages(selection);
    if (pages.empty()) return false;
    const bool compared = std::find(selection.compare.begin(), selection.compare.end(), true) !=
                          selection.compare.end();
    const int compare_slot = compared ? desktop().chart_window().state().compare_event : 0;
    if (!chart_print_request(session(), epoch_->isChecked(), compare_slot, sink())) return false;
    return desktop().print([&] { return drawing::print_chart_series(desktop().drawing(), pages); });
}

void add_print_windows(Desktop& desktop) {
    auto window = std::make_shared<std::unique_ptr<ChartPrintWindow>>();
    desktop.add_command("print_event_charts", [&desktop, window] {
        if (!*window) *window = std::make_unique<ChartPrintWindow>(desktop);
        (*window)->enter();
    });
    desktop.add_command("printer_setup_options", [&desktop] {
        QPageSetupDialog setup(&desktop.printer(), QApplication::activeWindow());
        setup.exec();
    });
}

} // namespace celestark::screens
