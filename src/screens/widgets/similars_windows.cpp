#include "screens/widgets/similars_windows.h"

#include "drawing/painter_surface.h"
#include "screens/aspect_window.h"
#include "screens/chart_commands.h"
#include "screens/widgets/chart_window.h"
#include "screens/widgets/desktop.h"
#include "screens/widgets/page_display.h"
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
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <tuple>

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
    const auto toggle = [&](QGroupBox* box, const char* name) {
        QCheckBox* c = make_check(box, name, caption_of(name));
        const std::string n = name;
        connect(c, &QCheckBox::toggled, this,
                [changed, n](bool on) { changed(n, on ? "1" : "0"); });
        controls_[n] = c;
        return c;
    };
    const auto check = [&](QGroupBox* box, QLayout* into, const char* name) {
        into->addWidget(toggle(box, name));
    };
    // A frame that begins with the radio buttons of `field`; the rest of it follows them.
    const auto radio_frame = [&](const char* name, const char* title, const char* field) {
        auto* box = make_group(this, name, title);
        auto* into = new QVBoxLayout(box);
        radios(box, into, field);
        return std::pair{box, into};
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
    for (const auto& [name, title, field] :
         {std::tuple{"frame_world_view", "World view", "similars_world_view"},
          {"frame_epoch", "Charts", "similars_epoch"},
          {"frame_option", "List", "similars_option"}}) {
        const auto [box, into] = radio_frame(name, title, field);
        into->addStretch(1);
        top->addWidget(box);
    }

    const auto [planets, pl] =
        radio_frame("frame_planets", "Similar planetary positions", "similars_planets");
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
    const auto [similar, sl] = radio_frame("frame_similar", "Similar charts", "similars_similar");
    orb(similar, sl, "similar_orb_degs", "similar_orb_mins", "similar_hits");
    sl->addStretch(1);
    middle->addWidget(similar);
    const auto [same, ml] =
        radio_frame("frame_same", "Same constellation, decan or house", "similars_same");
    for (const char* box : {"in_constellation", "in_decan", "in_house"}) check(same, ml, box);
    ml->addStretch(1);
    middle->addWidget(same);
    const auto [elements, el] =
        radio_frame("frame_elements", "Heliocentric elements", "similars_elements");
    orb(elements, el, "orb_elements_degs", "orb_elements_mins", nullptr);
    auto* eg = new QGridLayout;
    int k = 0;
    for (const char* box :
         {"elements_nodes", "elements_apsides", "nodes_square", "apsides_square"}) {
        eg->addWidget(toggle(elements, box), k % 2, k / 2);
        ++k;
    }
    el->addLayout(eg);
    el->addStretch(1);
    middle->addWidget(elements);
    const auto [angles, al] =
        radio_frame("frame_angles", "Similar angular separations", "similars_angles");
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

    layout->addLayout(run_buttons(this, [this](bool printing) { run(printing); },
                                  {"sim_display", "sim_print", "sim_exit"}));
}

void SimilarsWindow::open(int event_row) {
    Session& s = session();
    model_.open(s, event_row);
    filling_ = true;
    fill_list(aspects_, stored_aspect_set_names(s, 68, "Similars Aspect Set-Got Focus"),
              qt(model_.params().text("aspect_set")));
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
    bring_to_front(this);
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
    auto* next = make_button(this, "similars_continue", "Continue");
    auto* restart = make_button(this, "similars_restart", "Restart");
    auto* print = make_button(this, "similars_print", "Print");
    auto* menu_button = make_button(this, "similars_menu", "Menu");
    auto* exit = make_button(this, "similars_exit", "Exit");
    done_ = make_page_progress(this, "similars_progress", 1000);
    done_->setTextVisible(false);
    cancel_ = make_button(this, "similars_cancel", "CANCEL");
    cancel_->setEnabled(false);
    state_ = add_page_foot(this, layout, {next, restart, print, menu_button}, "similars_state",
                           {done_, cancel_}, exit, next);

    connect(next, &QPushButton::clicked, this, [this] { next_page(); });
    connect(restart, &QPushButton::clicked, this, [this] {
        if (model_.start(session(), sink())) show_run();
    });
    connect(print, &QPushButton::clicked, this, [this] { print_all(); });
    connect(cancel_, &QPushButton::clicked, this, [this] { cancel_pressed_ = true; });
    connect_menu_button(menu_button, this, [this] { menu_.enter(); });
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
    resize(1200, 860);
}

SimilarsDisplay::~SimilarsDisplay() = default;

void SimilarsDisplay::show_run() {
    stand_before_first_page(this);
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
    return print_portrait(desktop(), "Similars", [&](drawing::Surface& paper) {
        drawing::SimilarsPages pages(desktop().drawing(), paper_run.head(),
                                     similars_columns(paper_run.list()));
        s.drawing.printing = true;
        paper.begin_document();
        DisplayProgress progress(*this, sink(), paper_run.rows_total());
        int page = 0;
        do {
            const std::size_t per_page = pages.lines_per_page();
            std::vector<std::vector<std::string>> cells;
            for (const SimilarLine& l : paper_run.next(s, per_page, progress))
                cells.push_back(similars_cells(paper_run.list(), l));
            if (page > 0 && cells.empty()) break;
            if (page > 0) paper.end_page();
            pages.draw_page(++page, cells);
        } while (!paper_run.finished());
        paper.end_document();
        s.drawing.printing = false;
        return true;
    });
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
