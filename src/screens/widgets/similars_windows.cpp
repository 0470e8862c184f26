#include "screens/widgets/similars_windows.h"

#include "drawing/painter_surface.h"
#include "screens/aspect_window.h"
#include "screens/chart_commands.h"
#include "screens/widgets/chart_window.h"
#include "screens/widgets/desktop.h"
#include "session/session.h"
#include "session/text.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

namespace celestark::screens {

namespace {

// The radio group of an option field.
const SimilarsGroup& group(const char* field) {
    for (const SimilarsGroup& g : similars_groups())
        if (std::string_view(g.field) == field) return g;
    return similars_groups().front();
}

const char* caption_of(const char* box) {
    for (const SimilarsChoice& c : similars_screen_boxes())
        if (std::string_view(c.name) == box) return c.caption;
    return box;
}

} // namespace

// ---- SIMILARS -----------------------------------------------------------------------------------

SimilarsWindow::SimilarsWindow(Desktop& desktop, SimilarsScreen& model)
    : CelestarkWindow(desktop, "SIMILARS", similars_title), model_(model) {
    auto* layout = new QVBoxLayout(this);
    const auto changed = [this](const std::string& name, const std::string& value) {
        if (filling_) return;
        model_.set(session(), name, value, sink());
        refresh();
    };
    auto* purpose = make_label(this, "similars_purpose", similars_purpose);
    QFont bold = purpose->font();
    bold.setBold(true);
    purpose->setFont(bold);
    layout->addWidget(purpose);
    event_ = make_label(this, "similars_event");
    layout->addWidget(event_);

    const auto radios = [&](QGroupBox* box, QLayout* into, const char* field) {
        auto* exclusive = new QButtonGroup(box);
        for (const SimilarsChoice& c : group(field).choices) {
            QRadioButton* radio = make_radio(box, c.name, c.caption);
            exclusive->addButton(radio);
            const std::string name = c.name;
            connect(radio, &QRadioButton::toggled, this, [changed, name](bool on) {
                if (on) changed(name, "1");
            });
            into->addWidget(radio);
            controls_[name] = radio;
        }
    };
    const auto check = [&](QGroupBox* box, QLayout* into, const char* name) {
        QCheckBox* c = make_check(box, name, caption_of(name));
        const std::string n = name;
        connect(c, &QCheckBox::toggled, this,
                [changed, n](bool on) { changed(n, on ? "1" : "0"); });
        into->addWidget(c);
        controls_[n] = c;
    };
    const auto orb = [&](QGroupBox* box, QVBoxLayout* into, const char* degs, const char* mins,
                         const char* hits) {
        auto* row = new QHBoxLayout;
        row->addWidget(new QLabel("Orb Degs", box));
        for (const char* name : {degs, mins}) {
            if (name == mins) row->addWidget(new QLabel("Mins", box));
            QLineEdit* field = make_field(box, name, 3);
            const std::string n = name;
            connect(field, &QLineEdit::textChanged, this,
                    [changed, n](const QString& text) { changed(n, text.toStdString()); });
            row->addWidget(field);
            controls_[n] = field;
        }
        row->addStretch(1);
        into->addLayout(row);
        if (!hits) return;
        auto* h = new QHBoxLayout;
        h->addWidget(new QLabel("Min. No. of hits", box));
        QLineEdit* field = make_field(box, hits, 3);
        const std::string n = hits;
        connect(field, &QLineEdit::textChanged, this,
                [changed, n](const QString& text) { changed(n, text.toStdString()); });
        h->addWidget(field);
        h->addStretch(1);
        into->addLayout(h);
        controls_[n] = field;
    };

    // The world view, the charts and the list.
    auto* top = new QHBoxLayout;
    auto* views = make_group(this, "frame_world_view", "World view");
    auto* vl = new QVBoxLayout(views);
    radios(views, vl, "similars_world_view");
    vl->addStretch(1);
    top->addWidget(views);
    auto* charts = make_group(this, "frame_epoch", "Charts");
    auto* cl = new QVBoxLayout(charts);
    radios(charts, cl, "similars_epoch");
    cl->addStretch(1);
    top->addWidget(charts);
    auto* lists = make_group(this, "frame_option", "List");
    auto* ll = new QVBoxLayout(lists);
    radios(lists, ll, "similars_option");
    ll->addStretch(1);
    top->addWidget(lists);

    auto* planets = make_group(this, "frame_planets", "Similar planetary positions");
    auto* pl = new QVBoxLayout(planets);
    radios(planets, pl, "similars_planets");
    check(planets, pl, "planets_aspect_set");
    aspects_ = make_list(planets, "aspect_set");
    aspects_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    aspects_->setMinimumContentsLength(12);
    connect(aspects_, &QComboBox::currentTextChanged, this,
            [changed](const QString& text) { changed("aspect_set", text.toStdString()); });
    pl->addWidget(aspects_);
    pl->addStretch(1);
    top->addWidget(planets);
    top->addStretch(1);
    layout->addLayout(top);

    auto* middle = new QHBoxLayout;
    auto* similar = make_group(this, "frame_similar", "Similar charts");
    auto* sl = new QVBoxLayout(similar);
    radios(similar, sl, "similars_similar");
    orb(similar, sl, "similar_orb_degs", "similar_orb_mins", "similar_hits");
    sl->addStretch(1);
    middle->addWidget(similar);
    auto* same = make_group(this, "frame_same", "Same constellation, decan or house");
    auto* ml = new QVBoxLayout(same);
    radios(same, ml, "similars_same");
    for (const char* box : {"in_constellation", "in_decan", "in_house"}) check(same, ml, box);
    ml->addStretch(1);
    middle->addWidget(same);
    auto* elements = make_group(this, "frame_elements", "Heliocentric elements");
    auto* el = new QVBoxLayout(elements);
    radios(elements, el, "similars_elements");
    orb(elements, el, "orb_elements_degs", "orb_elements_mins", nullptr);
    auto* eg = new QGridLayout;
    int k = 0;
    for (const char* box :
         {"elements_nodes", "elements_apsides", "nodes_square", "apsides_square"}) {
        QCheckBox* c = make_check(elements, box, caption_of(box));
        const std::string n = box;
        connect(c, &QCheckBox::toggled, this,
                [changed, n](bool on) { changed(n, on ? "1" : "0"); });
        eg->addWidget(c, k % 2, k / 2);
        controls_[n] = c;
        ++k;
    }
    el->addLayout(eg);
    el->addStretch(1);
    middle->addWidget(elements);
    auto* angles = make_group(this, "frame_angles", "Similar angular separations");
    auto* al = new QVBoxLayout(angles);
    radios(angles, al, "similars_angles");
    orb(angles, al, "angles_orb_degs", "angles_orb_mins", nullptr);
    check(angles, al, "complementary");
    al->addStretch(1);
    middle->addWidget(angles);
    middle->addStretch(1);
    layout->addLayout(middle);

    // The four panels of bodies: the table side and the event side, each twice.
    auto* panels = new QHBoxLayout;
    for (const SimilarsPanel& panel : {tables_panel, tables_panel_2, event_panel, event_panel_2}) {
        const std::string suffix = panel.suffix;
        const std::string side =
            std::string(panel.prefix).substr(0, std::string(panel.prefix).size() - 1);
        auto* column = new QVBoxLayout;
        QLabel* caption = make_label(this, (side + "_text" + suffix).c_str());
        caption->setWordWrap(true);
        caption->setMinimumHeight(caption->fontMetrics().height() * 2 + 4);
        caption->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
        captions_[side + "_text" + suffix] = caption;
        column->addWidget(caption);
        QGroupBox* bodies = make_group(this, (side + "_planets" + suffix).c_str(), "");
        QGroupBox* houses = make_group(this, (side + "_houses" + suffix).c_str(), "Houses");
        frames_[side + "_planets" + suffix] = bodies;
        auto* bg = new QGridLayout(bodies);
        bg->setVerticalSpacing(1);
        auto* hg = new QGridLayout(houses);
        hg->setVerticalSpacing(1);
        int b = 0, h = 0;
        for (const SimilarsChoice& body : similars_bodies()) {
            const bool house = std::string_view(body.name).starts_with("h") &&
                               std::string_view(body.name).size() <= 3;
            QGroupBox* frame = house ? houses : bodies;
            const std::string name = panel_box(panel, body.name);
            QCheckBox* c = make_check(frame, name.c_str(), body.caption);
            connect(c, &QCheckBox::toggled, this,
                    [changed, name](bool on) { changed(name, on ? "1" : "0"); });
            if (house) {
                hg->addWidget(c, h % 6, h / 6);
                ++h;
            } else {
                bg->addWidget(c, b % 10, b / 10);
                ++b;
            }
            controls_[name] = c;
        }
        column->addWidget(bodies);
        column->addWidget(houses);
        column->addStretch(1);
        panels->addLayout(column);
    }
    layout->addLayout(panels);

    auto* buttons = new QHBoxLayout;
    auto* display = make_button(this, "sim_display", "DISPLAY");
    auto* print = make_button(this, "sim_print", "PRINT");
    auto* exit = make_button(this, "sim_exit", "EXIT");
    display->setDefault(true);
    buttons->addWidget(display);
    buttons->addWidget(print);
    buttons->addStretch(1);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    connect(display, &QPushButton::clicked, this, [this] { run(false); });
    connect(print, &QPushButton::clicked, this, [this] { run(true); });
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
}

void SimilarsWindow::open(int event_row) {
    Session& s = session();
    model_.open(s, event_row);
    filling_ = true;
    aspects_->clear();
    for (const std::string& name : stored_aspect_set_names(s, 68, "Similars Aspect Set-Got Focus"))
        aspects_->addItem(qt(name));
    const QString set = qt(model_.params().text("aspect_set"));
    if (aspects_->findText(set) < 0) aspects_->addItem(set);
    filling_ = false;
    const EventRow& row = s.event_slots[event_row];
    event_->setText(
        "Event compared: " + qt(trim(trim(row[col::firstname]) + " " + trim(row[col::surname]))) +
        "  " + qt(format_date(row[col::day], row[col::month], row[col::year], s.options.text)));
    refresh();
    layout()->activate();
    adjustSize();
    enter();
}

void SimilarsWindow::enter() {
    show();
    raise();
    activateWindow();
}

void SimilarsWindow::refresh() {
    const SimilarsParameters& p = model_.params();
    filling_ = true;
    for (auto& [name, widget] : controls_) {
        const std::string value = p.text(name);
        if (auto* field = qobject_cast<QLineEdit*>(widget)) {
            if (field->text().toStdString() != value) field->setText(qt(value));
        } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            if (p.on(name) != button->isChecked()) button->setChecked(p.on(name));
        }
    }
    aspects_->setCurrentText(qt(p.text("aspect_set")));
    for (auto& [name, label] : captions_) label->setText(qt(model_.panel_caption(name)));
    for (auto& [name, frame] : frames_) frame->setTitle(qt(model_.frame_title(name)));
    // The second panels serve the angles alone.
    const bool second = model_.second_panels_used();
    for (const char* side : {"tables", "event"})
        for (const char* part : {"_planets_2", "_houses_2"})
            if (auto* g = findChild<QGroupBox*>(QString(side) + part)) g->setEnabled(second);
    aspects_->setEnabled(p.on("planets_aspect_set"));
    filling_ = false;
}

void SimilarsWindow::run(bool printing) {
    if (!display_) return;
    if (printing) {
        if (!model_.start(session(), sink())) return;
        display_->print_all();
        return;
    }
    if (!model_.start(session(), sink())) return;
    display_->show_run();
    hide();
}

// ---- the run's progress in the display ----------------------------------------------------------

// The desktop's sink for the boxes, the display's own bar and CANCEL for the progress: a press of
// CANCEL, or of the desktop's, ends the run after its row.
class DisplayProgress : public MessageSink {
  public:
    DisplayProgress(SimilarsDisplay& display, MessageSink& inner, std::int64_t total)
        : display_(display), inner_(inner), total_(std::max<std::int64_t>(1, total)) {}
    void message(const std::string& title, const std::string& text, MessageIcon icon) override {
        inner_.message(title, text, icon);
    }
    bool ask(const std::string& title, const std::string& text) override {
        return inner_.ask(title, text);
    }
    void input_error(const std::string& line) override { inner_.input_error(line); }
    void show_input_errors() override { inner_.show_input_errors(); }
    void progress_begin(const std::string&, int) override {
        display_.cancel_pressed_ = false;
        display_.cancel_->setEnabled(true);
    }
    bool progress(int done) override {
        display_.done_->setValue(static_cast<int>(1000 * done / total_));
        QApplication::processEvents();
        const bool outer = inner_.progress(done);
        return outer || display_.cancel_pressed_;
    }
    void progress_end() override { display_.cancel_->setEnabled(false); }

  private:
    SimilarsDisplay& display_;
    MessageSink& inner_;
    std::int64_t total_;
};

// ---- similars_display ---------------------------------------------------------------------------

SimilarsDisplay::SimilarsDisplay(Desktop& desktop, SimilarsScreen& model, SimilarsWindow& menu)
    : CelestarkWindow(desktop, "similars_display", similars_display_title), model_(model),
      menu_(menu) {
    auto* layout = new QVBoxLayout(this);
    canvas_ = new PageCanvas(this, "similars_canvas", {}, [this] {
        if (pages_ && isVisible()) draw();
    });
    layout->addWidget(canvas_, 1);
    auto* buttons = new QHBoxLayout;
    auto* next = make_button(this, "similars_continue", "Continue");
    auto* restart = make_button(this, "similars_restart", "Restart");
    auto* print = make_button(this, "similars_print", "Print");
    auto* menu_button = make_button(this, "similars_menu", "Menu");
    auto* exit = make_button(this, "similars_exit", "Exit");
    state_ = make_label(this, "similars_state");
    done_ = new QProgressBar(this);
    done_->setObjectName("similars_progress");
    done_->setRange(0, 1000);
    done_->setTextVisible(false);
    done_->setMaximumWidth(220);
    cancel_ = make_button(this, "similars_cancel", "CANCEL");
    cancel_->setEnabled(false);
    for (QPushButton* b : {next, restart, print, menu_button}) buttons->addWidget(b);
    buttons->addSpacing(12);
    buttons->addWidget(state_, 1);
    buttons->addWidget(done_);
    buttons->addWidget(cancel_);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    next->setDefault(true);

    connect(next, &QPushButton::clicked, this, [this] { next_page(); });
    connect(restart, &QPushButton::clicked, this, [this] {
        if (model_.start(session(), sink())) show_run();
    });
    connect(print, &QPushButton::clicked, this, [this] { print_all(); });
    connect(cancel_, &QPushButton::clicked, this, [this] { cancel_pressed_ = true; });
    connect(menu_button, &QPushButton::clicked, this, [this] {
        hide();
        menu_.enter();
    });
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
    resize(1200, 860);
}

SimilarsDisplay::~SimilarsDisplay() = default;

void SimilarsDisplay::show_run() {
    // The window stands before the first page so that the page has its size.
    if (!isVisible()) {
        show();
        layout()->activate();
    }
    const SimilarsRun& run = model_.run();
    pages_ = std::make_unique<drawing::SimilarsPages>(desktop().drawing(), run.head(),
                                                      similars_columns(run.list()));
    page_ = 0;
    lines_.clear();
    next_page();
    raise();
    activateWindow();
}

void SimilarsDisplay::next_page() {
    if (!pages_ || model_.run().finished()) return;
    Session& s = session();
    s.drawing.printing = false;
    desktop().canvases().similars = &canvas_->canvas();
    const std::size_t per_page = pages_->lines_per_page();
    DisplayProgress progress(*this, sink(), model_.run().rows_total());
    std::vector<SimilarLine> lines;
    {
        BusyPointer busy;
        lines = model_.run().next(s, per_page, progress);
    }
    lines_.clear();
    for (const SimilarLine& l : lines) lines_.push_back(similars_cells(model_.run().list(), l));
    ++page_;
    draw();
}

void SimilarsDisplay::draw() {
    if (!pages_) return;
    session().drawing.printing = false;
    desktop().canvases().similars = &canvas_->canvas();
    pages_->draw_page(page_, lines_);
    canvas_->update();
    update_state();
}

void SimilarsDisplay::update_state() {
    const SimilarsRun& run = model_.run();
    QString text = "Page " + QString::number(page_) + ", " + QString::number(run.rows_done()) +
                   " of " + QString::number(run.rows_total()) + " table events compared";
    if (run.cancelled())
        text += ": cancelled";
    else if (run.finished())
        text += lines_.empty() && page_ == 1 ? ": no similars found" : ": the end of the tables";
    state_->setText(text);
    const std::int64_t total = std::max<std::int64_t>(1, run.rows_total());
    done_->setValue(static_cast<int>(1000 * run.rows_done() / total));
    findChild<QPushButton*>("similars_continue")->setEnabled(!run.finished());
}

bool SimilarsDisplay::print_all() {
    // A run of its own from the beginning, page by page onto the paper.
    SimilarsScreen& m = model_;
    SimilarsRun paper_run;
    Session& s = session();
    if (!paper_run.start(s, m.params(), m.event_row(), similars_option_tables(s), sink()))
        return false;
    desktop().printer().setPageOrientation(QPageLayout::Portrait);
    const bool printed = desktop().print([&] {
        drawing::Surface* paper = desktop().canvases().printer;
        if (!paper || !paper->setup_dialog()) return false;
        drawing::SimilarsPages pages(desktop().drawing(), paper_run.head(),
                                     similars_columns(paper_run.list()));
        s.drawing.printing = true;
        paper->begin_document();
        DisplayProgress progress(*this, sink(), paper_run.rows_total());
        int page = 0;
        do {
            const std::size_t per_page = pages.lines_per_page();
            std::vector<std::vector<std::string>> cells;
            for (const SimilarLine& l : paper_run.next(s, per_page, progress))
                cells.push_back(similars_cells(paper_run.list(), l));
            if (page > 0 && cells.empty()) break;
            if (page > 0) paper->end_page();
            pages.draw_page(++page, cells);
        } while (!paper_run.finished());
        paper->end_document();
        s.drawing.printing = false;
        return true;
    });
    session().drawing.display_target = "Similars";
    return printed;
}

// ---- the command --------------------------------------------------------------------------------

namespace {

struct SimilarsWindows {
    SimilarsScreen model;
    std::unique_ptr<SimilarsWindow> menu;
    std::unique_ptr<SimilarsDisplay> display;
    void make(Desktop& desktop) {
        if (menu) return;
        menu = std::make_unique<SimilarsWindow>(desktop, model);
        display = std::make_unique<SimilarsDisplay>(desktop, model, *menu);
        menu->set_display(display.get());
    }
};

} // namespace

void add_similars_windows(Desktop& desktop) {
    auto windows = std::make_shared<SimilarsWindows>();
    desktop.add_command("selected_events", [&desktop, windows] {
        windows->make(desktop);
        // The event chosen as "Similar" on its card, or the active one when that card is empty.
        Session& s = desktop.session();
        int slot = desktop.chart_window().state().similar_event;
        if (slot < slot::first_user || slot > slot::last_user || slot_is_empty(s.event_slots[slot]))
            slot = s.event_slots.active_event;
        windows->menu->open(slot);
    });
}

} // namespace celestark::screens
