#include "screens/widgets/phenomena_windows.h"

#include "drawing/painter_surface.h"
#include "screens/aspect_window.h"
#include "screens/widgets/desktop.h"
#include "screens/widgets/page_display.h"
#include "session/session.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace celestark::screens {

// ---- planetary_aspects --------------------------------------------------------------------------

PhenomenaWindow::PhenomenaWindow(Desktop& desktop, PhenomenaScreen& model)
    : CelestarkWindow(desktop, "planetary_aspects", phenomena_title), model_(model) {
    auto* layout = new QVBoxLayout(this);
    const auto changed = [this](const std::string& name, const std::string& value) {
        if (filling_) return;
        model_.set(name, value);
        refresh();
    };

    // The span and its calendar.
    auto* top = new QHBoxLayout;
    auto* span = make_group(this, "frame_years", "Years");
    auto* sg = new QGridLayout(span);
    QLineEdit* start = make_field(span, "start", 5);
    QLineEdit* end = make_field(span, "end_year", 5);
    gj_ = make_list(span, "gj");
    gj_->addItems({"G", "J"});
    gj_->setToolTip("G: Gregorian calendar, J: Julian calendar");
    sg->addWidget(new QLabel("Start year", span), 0, 0);
    sg->addWidget(start, 0, 1);
    sg->addWidget(new QLabel("End year", span), 1, 0);
    sg->addWidget(end, 1, 1);
    sg->addWidget(new QLabel("Calendar", span), 2, 0);
    sg->addWidget(gj_, 2, 1);
    sg->setRowStretch(3, 1);
    for (QLineEdit* field : {start, end}) {
        const std::string name = field->objectName().toStdString();
        controls_[name] = field;
        connect(field, &QLineEdit::textChanged, this,
                [changed, name](const QString& text) { changed(name, text.toStdString()); });
    }
    connect(gj_, &QComboBox::currentTextChanged, this,
            [changed](const QString& text) { changed("gj", text.toStdString()); });
    top->addWidget(span);

    auto* views = make_group(this, "frame_world_view", "World view");
    auto* vl = new QVBoxLayout(views);
    auto* exclusive = new QButtonGroup(this);
    for (const PhenomenaChoice& v : phenomena_world_views()) {
        QRadioButton* radio = make_radio(views, v.name, v.caption);
        exclusive->addButton(radio);
        const std::string name = v.name;
        connect(radio, &QRadioButton::toggled, this, [changed, name](bool on) {
            if (on) changed(name, "1");
        });
        vl->addWidget(radio);
        controls_[name] = radio;
    }
    vl->addStretch(1);
    top->addWidget(views);

    auto* search = make_group(this, "search_for", "Search for");
    auto* cl = new QVBoxLayout(search);
    for (const PhenomenaChoice& c : phenomena_contents()) {
        QCheckBox* check = make_check(search, c.name, c.caption);
        const std::string name = c.name;
        connect(check, &QCheckBox::toggled, this,
                [changed, name](bool on) { changed(name, on ? "1" : "0"); });
        cl->addWidget(check);
        controls_[name] = check;
    }
    cl->addStretch(1);
    top->addWidget(search);

    auto* set = make_group(this, "frame_aspect_set", "Aspect set");
    auto* al = new QVBoxLayout(set);
    aspects_ = make_list(set, "aspects");
    aspects_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    aspects_->setMinimumContentsLength(12);
    al->addWidget(aspects_);
    al->addStretch(1);
    top->addWidget(set);
    top->addStretch(1);
    layout->addLayout(top);

    // The two columns of bodies: the first moves, the second is aspected.
    auto* bodies = new QHBoxLayout;
    for (const char* column : {"1", "2"}) {
        const bool second = column[0] == '2';
        auto* box = make_group(this, second ? "frame_bodies_2" : "frame_bodies_1",
                               second ? "Second bodies" : "First bodies");
        auto* grid = new QGridLayout(box);
        grid->setVerticalSpacing(2);
        const std::vector<PhenomenaBody>& list = phenomena_bodies();
        const int rows = static_cast<int>(list.size() + 1) / 2;
        int n = 0;
        const auto add = [&](const std::string& name, const char* caption) {
            QCheckBox* check = make_check(box, name.c_str(), caption);
            connect(check, &QCheckBox::toggled, this,
                    [changed, name](bool on) { changed(name, on ? "1" : "0"); });
            grid->addWidget(check, n % rows, n / rows);
            controls_[name] = check;
            ++n;
        };
        for (const PhenomenaBody& b : list) add(std::string(b.stem) + column, b.caption);
        if (second) add("stars2", "Stars");
        bodies->addWidget(box);
    }
    auto* clear = make_button(this, "planets_clear", "CLEAR BODIES");
    clear->setToolTip("Clears the boxes of both columns of bodies");
    connect(clear, &QPushButton::clicked, this, [this] {
        model_.clear_bodies();
        refresh();
    });
    auto* side = new QVBoxLayout;
    side->addStretch(1);
    side->addWidget(clear);
    bodies->addLayout(side);
    bodies->addStretch(1);
    layout->addLayout(bodies);

    layout->addLayout(run_buttons(this, [this](bool printing) { run(printing); }));
}

void PhenomenaWindow::open() {
    Session& s = session();
    model_.open(s);
    filling_ = true;
    fill_list(aspects_, stored_aspect_set_names(s, 68, "P Aspect Set-Got Focus"),
              qt(model_.params().values["aspects"]));
    filling_ = false;
    refresh();
    layout()->activate();
    adjustSize();
    enter();
}

void PhenomenaWindow::enter() {
    bring_to_front(this);
}

void PhenomenaWindow::refresh() {
    const PhenomenaParameters& p = model_.params();
    filling_ = true;
    for (auto& [name, widget] : controls_) {
        const auto it = p.values.find(name);
        const std::string value = it == p.values.end() ? std::string() : it->second;
        if (auto* field = qobject_cast<QLineEdit*>(widget)) {
            if (field->text().toStdString() != value) field->setText(qt(value));
        } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            if ((value == "1") != button->isChecked()) button->setChecked(value == "1");
        }
    }
    gj_->setCurrentText(qt(p.values.count("gj") ? p.values.at("gj") : "G"));
    aspects_->setCurrentText(qt(p.values.count("aspects") ? p.values.at("aspects") : ""));
    filling_ = false;
}

void PhenomenaWindow::collect_fields() {
    for (const char* f : {"start", "end_year"})
        if (auto* field = qobject_cast<QLineEdit*>(controls_[f])) model_.set(f, text_of(field));
    model_.set("gj", gj_->currentText().toStdString());
    model_.set("aspects", aspects_->currentText().toStdString());
}

void PhenomenaWindow::run(bool printing) {
    if (!display_) return;
    collect_fields();
    bool made = false;
    {
        BusyPointer busy;
        made = model_.make_list(session(), sink());
    }
    if (!made) {
        // A faulty year takes the cursor.
        const std::string start = model_.params().values["start"];
        controls_[start.find_first_not_of(' ') == std::string::npos ? "start" : "end_year"]
            ->setFocus();
        return;
    }
    if (printing) {
        display_->print_list(model_);
        return;
    }
    display_->show_list(model_);
    hide();
}

// ---- the page of the list -----------------------------------------------------------------------

// ---- phenomena_display --------------------------------------------------------------------------

PhenomenaDisplay::PhenomenaDisplay(Desktop& desktop, PhenomenaWindow& menu)
    : CelestarkWindow(desktop, "phenomena_display", phenomena_display_title), menu_(menu) {
    auto* layout = new QVBoxLayout(this);
    const auto shown = [this] { return pages_ ? pages_->page() : -1; };
    const auto show = [this](int page) { show_page(page); };
    canvas_ = add_paged_canvas(this, layout, "phem_canvas", shown, show);
    auto* print = make_button(this, "print_phem", "Print");
    auto* next = make_button(this, "phen_next_page", "Continue: next page");
    auto* restart = make_button(this, "phen_restart", "Restart: beginning");
    auto* menu_button = make_button(this, "phen_menu", "Menu");
    auto* exit = make_button(this, "exit_phem", "Exit");
    done_ = make_page_progress(this, "list_done", 100);
    state_ = add_page_foot(this, layout, {print, next, restart, menu_button}, "phem_state", {done_},
                           exit, next);

    connect_paging(this, next, restart, shown, show);
    connect(print, &QPushButton::clicked, this, [this] {
        if (pages_) print_sheet(pages_->sheet());
    });
    connect_menu_button(menu_button, this, [this] { menu_.enter(); });
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
    resize(1200, 860);
}

PhenomenaDisplay::~PhenomenaDisplay() = default;

void PhenomenaDisplay::show_list(const PhenomenaScreen& model) {
    stand_before_first_page(this);
    drawing::PhenomenaSheet sheet{model.page_title(), model.eclipses(), model.calendar(),
                                  model.rows()};
    pages_ = std::make_unique<drawing::PhenomenaPages>(desktop().drawing(), std::move(sheet));
    show_page(1);
    raise();
    activateWindow();
}

void PhenomenaDisplay::show_page(int page) {
    if (!pages_) return;
    Session& s = session();
    s.drawing.printing = false;
    desktop().canvases().phenomena = &canvas_->canvas();
    page_count_ = pages_->page_count();
    pages_->draw_page(std::clamp(page, 1, page_count_));
    canvas_->update();
    state_->setText(page_of(pages_->page(), page_count_) + ", " +
                    QString::number(pages_->sheet().rows.size()) + " rows");
    done_->setValue(static_cast<int>(std::lround(pages_->shown() * 100)));
    findChild<QPushButton*>("phen_next_page")->setEnabled(pages_->page() < page_count_);
}

bool PhenomenaDisplay::print_list(const PhenomenaScreen& model) {
    return print_sheet({model.page_title(), model.eclipses(), model.calendar(), model.rows()});
}

bool PhenomenaDisplay::print_sheet(const drawing::PhenomenaSheet& sheet) {
    return print_portrait(desktop(), "Phenomena", [&](drawing::Surface&) {
        drawing::PhenomenaPages printed_pages(desktop().drawing(), sheet);
        return printed_pages.print_all();
    });
}

} // namespace celestark::screens

namespace celestark::screens {

namespace {

struct PhenomenaWindows {
    PhenomenaScreen model;
    std::unique_ptr<PhenomenaWindow> menu;
    std::unique_ptr<PhenomenaDisplay> display;
    void make(Desktop& desktop) {
        if (menu) return;
        menu = std::make_unique<PhenomenaWindow>(desktop, model);
        display = std::make_unique<PhenomenaDisplay>(desktop, *menu);
        menu->set_display(display.get());
    }
};

} // namespace

void add_phenomena_windows(Desktop& desktop) {
    auto windows = std::make_shared<PhenomenaWindows>();
    desktop.add_command("phem_aspects", [&desktop, windows] {
        windows->make(desktop);
        windows->menu->open();
    });
}

} // namespace celestark::screens
