#include "screens/widgets/page_display.h"

#include "drawing/surface.h"
#include "screens/widgets/desktop.h"
#include "screens/widgets/page_canvas.h"
#include "screens/widgets/window_support.h"
#include "session/session.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>

namespace celestark::screens {

QHBoxLayout* run_buttons(QWidget* window, const std::function<void(bool)>& run,
                         const RunButtonNames& names) {
    auto* buttons = new QHBoxLayout;
    auto* display = make_button(window, names.display, "DISPLAY");
    auto* print = make_button(window, names.print, "PRINT");
    auto* exit = make_button(window, names.exit, "EXIT");
    display->setDefault(true);
    buttons->addWidget(display);
    buttons->addWidget(print);
    buttons->addStretch(1);
    buttons->addWidget(exit);
    QObject::connect(display, &QPushButton::clicked, window, [run] { run(false); });
    QObject::connect(print, &QPushButton::clicked, window, [run] { run(true); });
    QObject::connect(exit, &QPushButton::clicked, window, [window] { window->hide(); });
    return buttons;
}

QProgressBar* make_page_progress(QWidget* parent, const char* name, int range) {
    auto* done = new QProgressBar(parent);
    done->setObjectName(name);
    done->setRange(0, range);
    done->setMaximumWidth(220);
    return done;
}

QLabel* add_page_foot(QWidget* window, QVBoxLayout* layout,
                      std::initializer_list<QPushButton*> lead, const char* state_name,
                      std::initializer_list<QWidget*> trail, QPushButton* exit, QPushButton* next) {
    auto* buttons = new QHBoxLayout;
    QLabel* state = make_label(window, state_name);
    for (QPushButton* b : lead) buttons->addWidget(b);
    buttons->addSpacing(12);
    buttons->addWidget(state, 1);
    for (QWidget* w : trail) buttons->addWidget(w);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    next->setDefault(true);
    return state;
}

PageCanvas* add_paged_canvas(QWidget* window, QVBoxLayout* layout, const char* name,
                             const std::function<int()>& shown,
                             const std::function<void(int)>& show_page) {
    auto* canvas = new PageCanvas(window, name, {}, [window, shown, show_page] {
        // A new size lays the pages out again; the page shown keeps its first row in view as
        // nearly as the new count allows.
        if (shown() >= 0 && window->isVisible()) show_page(shown());
    });
    layout->addWidget(canvas, 1);
    return canvas;
}

void connect_paging(QWidget* window, QPushButton* next, QPushButton* restart,
                    const std::function<int()>& shown, const std::function<void(int)>& show_page) {
    QObject::connect(next, &QPushButton::clicked, window, [shown, show_page] {
        if (shown() >= 0) show_page(shown() + 1);
    });
    QObject::connect(restart, &QPushButton::clicked, window, [show_page] { show_page(1); });
}

void connect_menu_button(QPushButton* menu, QWidget* window, std::function<void()> enter_menu) {
    QObject::connect(menu, &QPushButton::clicked, window,
                     [window, enter_menu = std::move(enter_menu)] {
                         window->hide();
                         enter_menu();
                     });
}

void stand_before_first_page(QWidget* window) {
    if (!window->isVisible()) {
        window->show();
        window->layout()->activate();
    }
}

void bring_to_front(QWidget* window) {
    window->show();
    window->raise();
    window->activateWindow();
}

bool print_portrait(Desktop& desktop, const char* display_target,
                    const std::function<bool(drawing::Surface& paper)>& pages) {
    desktop.printer().setPageOrientation(QPageLayout::Portrait);
    const bool printed = desktop.print([&] {
        drawing::Surface* paper = desktop.canvases().printer;
        if (!paper || !paper->setup_dialog()) return false;
        return pages(*paper);
    });
    desktop.session().drawing.display_target = display_target;
    return printed;
}

QString page_of(int page, int count) {
    return "Page " + QString::number(page) + " of " + QString::number(count);
}

} // namespace celestark::screens
