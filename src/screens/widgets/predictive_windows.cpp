#include "screens/widgets/predictive_windows.h"

#include "drawing/painter_surface.h"
#include "predict/predictive_controls.h"
#include "screens/aspect_window.h"
#include "screens/event_checks.h"
#include "screens/widgets/desktop.h"
#include "screens/widgets/page_display.h"
#include "session/session.h"
#include "session/text.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cctype>
#include <cmath>

namespace celestark::screens {

namespace {

// Twips of a pixel of the screen.

const char* mode_heading(const std::string& mode) {
    if (mode == "B") return "Astrological Biography";
    if (mode == "P") return "Progressions and Directions";
    return "Transits";
}

// The user's notes on some controls.
const char* tool_tip(std::string_view name) {
    if (name == "recur")
        return "searches for the repetition of the angular separation of two planets - only "
               "applies to the transit option";
    if (name == "prenatal") return "compare prenatal planets";
    if (name == "lifetime") return "compare lifetime planets with prenatal ones";
    return nullptr;
}

std::string slug(std::string_view group) {
    std::string out = "frame_";
    for (const char c : group)
        out += (c == ' ' || c == '/') ? '_' : static_cast<char>(std::tolower(c));
    return out;
}

} // namespace

// ---- BIOGRAPHY ----------------------------------------------------------------------------------

BiographyWindow::BiographyWindow(Desktop& desktop, PredictiveScreen& model)
    : CelestarkWindow(desktop, "BIOGRAPHY", biography_title), model_(model) {
    auto* layout = new QVBoxLayout(this);
    mode_label_ = make_label(this, "biography_mode");
    QFont big = mode_label_->font();
    big.setBold(true);
    big.setPointSizeF(big.pointSizeF() * 1.2);
    mode_label_->setFont(big);
    layout->addWidget(mode_label_);

    // The frames in the order of the control table; option buttons of a frame exclude each other.
    std::map<std::string, QLayout*> inner;
    std::map<std::string, QButtonGroup*> exclusive;
    std::map<std::string, int> counts;
    const auto frame_for = [&](const std::string& group) -> QLayout* {
        if (QLayout* l = inner[group]) return l;
        QGroupBox* box = make_group(this, slug(group).c_str(), QString::fromStdString(group));
        frames_[group] = box;
        QLayout* l = nullptr;
        if (group == "Transiting/aspecting" || group == "Radical/aspected") {
            l = new QGridLayout(box);
            l->setAlignment(Qt::AlignTop);
        } else {
            l = new QVBoxLayout(box);
        }
        l->setSpacing(2);
        inner[group] = l;
        return l;
    };
    for (const PredictiveControl& c : predictive_controls()) {
        const std::string name = c.name, group = c.group;
        if (c.kind == ControlKind::text) continue;
        QLayout* l = frame_for(group);
        QWidget* box = nullptr;
        if (c.kind == ControlKind::check) {
            QCheckBox* check = make_check(this, c.name, c.caption);
            connect(check, &QCheckBox::toggled, this,
                    [this, name](bool on) { changed(name, on ? "1" : "0"); });
            box = check;
        } else {
            QRadioButton* radio = make_radio(this, c.name, c.caption);
            QButtonGroup*& g = exclusive[group];
            if (!g) g = new QButtonGroup(this);
            g->addButton(radio);
            connect(radio, &QRadioButton::toggled, this, [this, name](bool on) {
                if (on) changed(name, "1");
            });
            box = radio;
        }
        if (const char* tip = tool_tip(name)) box->setToolTip(tip);
        if (auto* grid = qobject_cast<QGridLayout*>(l)) {
            // Two columns of bodies; "No Cross Aspects" heads the radical frame.
            int& n = counts[group];
            if (name == "self") {
                grid->addWidget(box, 0, 0, 1, 2);
                n += 2;
            } else {
                grid->addWidget(box, n / 2, n % 2);
                ++n;
            }
        } else {
            l->addWidget(box);
        }
        controls_[name] = box;
    }
    for (auto& [group, l] : inner)
        if (auto* v = qobject_cast<QVBoxLayout*>(l)) v->addStretch(1);

    auto* top = new QHBoxLayout;
    top->addWidget(frames_["Contents"]);
    auto* views = new QVBoxLayout;
    views->addWidget(frames_["World view"]);
    views->addWidget(frames_["Type"]);
    views->addStretch(1);
    top->addLayout(views);
    auto* modes = new QGridLayout;
    modes->addWidget(frames_["Biography"], 0, 0);
    modes->addWidget(frames_["Direction"], 0, 1);
    modes->addWidget(frames_["Time ratio"], 1, 0);
    modes->addWidget(frames_["Projection"], 1, 1);
    modes->addWidget(frames_["Transits"], 0, 2);
    modes->addWidget(frames_["Progression"], 0, 3);
    modes->addWidget(frames_["Progression direction"], 0, 4);
    modes->addWidget(frames_["Progressions"], 1, 3, 1, 2);
    modes->setRowStretch(2, 1);
    top->addLayout(modes, 1);
    layout->addLayout(top);

    auto* bodies = new QHBoxLayout;
    bodies->addWidget(frames_["Transiting/aspecting"]);
    bodies->addWidget(frames_["Radical/aspected"]);
    bodies->addStretch(1);
    layout->addLayout(bodies);

    // The span, the report's zone and format, the aspect set.
    auto* span = make_group(this, "frame_span", "Span and report");
    frames_["Span"] = span;
    auto* grid = new QGridLayout(span);
    const InputOptions options = read_input_options(session());
    const auto date_row = [&](int row, const char* caption, const char* prefix) {
        grid->addWidget(new QLabel(caption, span), row, 0);
        const std::string p = prefix;
        QLineEdit* day = make_field(span, (p + "_day").c_str(), 2);
        QLineEdit* month = make_field(span, (p + "_month").c_str(), 2);
        QLineEdit* year = make_field(span, (p + "_year").c_str(), 5);
        QLineEdit* first = options.day_first ? day : month;
        QLineEdit* second = options.day_first ? month : day;
        grid->addWidget(first, row, 1);
        grid->addWidget(second, row, 2);
        grid->addWidget(year, row, 3);
        for (QLineEdit* f : {day, month, year}) controls_[f->objectName().toStdString()] = f;
    };
    grid->addWidget(new QLabel(qt(date_caption(options)), span), 0, 1, 1, 3);
    date_row(1, "Start date", "start");
    date_row(2, "End date", "end");
    grid->addWidget(new QLabel("Time zone", span), 0, 5);
    zone_ = make_list(span, "time_zone", true);
    for (const std::string& z : predictive_zone_rows()) zone_->addItem(qt(z));
    zone_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    zone_->setMinimumContentsLength(14);
    grid->addWidget(zone_, 1, 5);
    grid->addWidget(new QLabel("Output format", span), 0, 6);
    format_ = make_list(span, "output_format");
    for (const std::string& f : predictive_output_formats()) format_->addItem(qt(f));
    grid->addWidget(format_, 1, 6);
    grid->addWidget(new QLabel("Aspect set", span), 0, 7);
    aspect_set_ = make_list(span, "aspect_set");
    grid->addWidget(aspect_set_, 1, 7);
    grid->setColumnMinimumWidth(4, 16);
    grid->setColumnStretch(8, 1);
    layout->addWidget(span);

    layout->addLayout(run_buttons(this, [this](bool printing) { run(printing); },
                                  {"biog_display", "biog_print", "biog_exit"}));
}

void BiographyWindow::open(const std::string& mode) {
    Session& s = session();
    if (!model_.open(s, mode, sink())) return;
    const PredictiveParameters& p = model_.params();
    filling_ = true;
    for (const char* f :
         {"start_day", "start_month", "start_year", "end_day", "end_month", "end_year"})
        if (auto* field = qobject_cast<QLineEdit*>(controls_[f])) field->setText(qt(p.text(f)));
    zone_->setCurrentText(qt(p.text("time_zone")));
    format_->setCurrentText(qt(p.text("output_format")));
    std::vector<std::string> sets = {"None"};
    for (std::string& name : stored_aspect_set_names(s, 30, "ACTIVATE BIOGRAPHY FORM"))
        sets.push_back(std::move(name));
    fill_list(aspect_set_, sets, qt(p.text("aspect_set")));
    aspect_set_->setCurrentText(qt(p.text("aspect_set")));
    filling_ = false;
    mode_label_->setText(mode_heading(mode));
    refresh();
    // The frames of the mode and its captions decide the window's size.
    layout()->activate();
    adjustSize();
    enter();
}

void BiographyWindow::enter() {
    bring_to_front(this);
}

void BiographyWindow::changed(const std::string& name, const std::string& value) {
    if (filling_) return;
    model_.set(session(), name, value);
    refresh();
}

void BiographyWindow::refresh() {
    const Session& s = session();
    const PredictiveParameters& p = model_.params();
    filling_ = true;
    for (auto& [group, frame] : frames_) frame->setVisible(model_.frame_shown(group));
    for (auto& [name, widget] : controls_) {
        const PredictiveControl* c = find_predictive_control(name);
        if (!c || c->kind == ControlKind::text) continue;
        const ControlState st = model_.state(s, name);
        auto* button = qobject_cast<QAbstractButton*>(widget);
        button->setEnabled(st.enabled);
        button->setText(qt(st.caption));
        if (p.on(name) != button->isChecked() && (c->kind == ControlKind::check || p.on(name)))
            button->setChecked(p.on(name));
    }
    filling_ = false;
}

void BiographyWindow::collect_fields() {
    PredictiveParameters& p = model_.params();
    for (const char* f :
         {"start_day", "start_month", "start_year", "end_day", "end_month", "end_year"})
        if (auto* field = qobject_cast<QLineEdit*>(controls_[f])) p.texts[f] = text_of(field);
    p.texts["time_zone"] = zone_->currentText().toStdString();
    p.texts["output_format"] = format_->currentText().toStdString();
    p.texts["aspect_set"] = aspect_set_->currentText().toStdString();
}

void BiographyWindow::run(bool printing) {
    if (!report_) return;
    collect_fields();
    const bool done = printing ? report_->print(model_.params()) : report_->start(model_.params());
    if (done) {
        if (!printing) hide();
        return;
    }
    // A faulty date takes the cursor.
    RecordingSink quiet;
    Session& s = session();
    const std::string gj = trim(s.event_slots[s.event_slots.active_event][col::gj]);
    if (!validate_predictive_screen(model_.params(), gj.empty() ? "G" : gj, quiet))
        if (QWidget* f = controls_[PredictiveScreen::first_date_field(s)]) f->setFocus();
}

// ---- the report's page --------------------------------------------------------------------------

// ---- ab_display ---------------------------------------------------------------------------------

ReportWindow::ReportWindow(Desktop& desktop, BiographyWindow& biography)
    : CelestarkWindow(desktop, "ab_display", report_window_title), biography_(biography) {
    events_ = std::make_unique<EventsWindow>(desktop);
    new_date_ = std::make_unique<NewDateWindow>(desktop, *this);
    auto* layout = new QVBoxLayout(this);
    canvas_ = new PageCanvas(this, "ab_canvas", [this](float x, float y) { row_clicked(x, y); });
    canvas_->setCursor(Qt::PointingHandCursor);
    canvas_->setToolTip("Click a row to make a chart of its moment");
    layout->addWidget(canvas_, 1);
    auto* next = make_button(this, "ab_continue", "Continue:Next Page");
    auto* restart = make_button(this, "ab_restart", "Restart:Beginning");
    auto* restart_new = make_button(this, "ab_restart_new", "Restart:New-Lifedate");
    auto* menu = make_button(this, "ab_menu", "AB/Transit/Prog-Menu");
    auto* print = make_button(this, "ab_print", "PRINT");
    auto* exit = make_button(this, "ab_cancel", "Exit");
    state_ = add_page_foot(this, layout, {next, restart, restart_new, menu, print}, "ab_state", {},
                           exit, next);

    connect(next, &QPushButton::clicked, this, [this] {
        screen_run(
            [this](drawing::PredictiveReport& r) { return continue_predictive_run(session(), r); });
    });
    connect(restart, &QPushButton::clicked, this, [this] {
        screen_run(
            [this](drawing::PredictiveReport& r) { return restart_predictive_run(session(), r); });
    });
    connect(restart_new, &QPushButton::clicked, this, [this] { new_date_->enter(); });
    connect_menu_button(menu, this, [this] { biography_.enter(); });
    connect(print, &QPushButton::clicked, this,
            [this] { this->print(session().predictive_params); });
    connect(exit, &QPushButton::clicked, this, [this] {
        hide();
        events_->hide();
        new_date_->hide();
    });
    resize(1200, 860);
}

ReportWindow::~ReportWindow() = default;

void ReportWindow::lock(bool locked) {
    for (QPushButton* b : findChildren<QPushButton*>())
        b->setEnabled(!locked && (b->objectName() != "ab_continue" || can_continue_));
    biography_.setEnabled(!locked);
}

void ReportWindow::screen_run(const std::function<RunOutcome(drawing::PredictiveReport&)>& entry) {
    Session& s = session();
    if (!report_) return;
    s.drawing.printing = false;
    desktop().canvases().ab = &canvas_->canvas();
    lock(true);
    const RunOutcome outcome = entry(*report_);
    lock(false);
    canvas_->update();
    show_state(outcome);
}

bool ReportWindow::start(const PredictiveParameters& params) {
    Session& s = session();
    // The window stands before the run so that its page has its size.
    RecordingSink quiet;
    const std::string gj = trim(s.event_slots[s.event_slots.active_event][col::gj]);
    const bool dates_ok = validate_predictive_screen(params, gj.empty() ? "G" : gj, quiet);
    const bool was_visible = isVisible();
    if (dates_ok) stand_before_first_page(this);
    s.drawing.printing = false;
    desktop().canvases().ab = &canvas_->canvas();
    // A refused run leaves the one shown as it was.
    auto report = std::make_unique<drawing::PredictiveReport>(desktop().drawing());
    lock(true);
    const RunOutcome outcome = start_predictive_run(s, params, *report);
    lock(false);
    if (outcome == RunOutcome::refused) {
        if (!was_visible) hide();
        return false;
    }
    report_ = std::move(report);
    canvas_->update();
    show_state(outcome);
    enter();
    return true;
}

bool ReportWindow::print(const PredictiveParameters& params) {
    Session& s = session();
    // The screen's run is kept and comes back after the printed one.
    const bool keep = report_ != nullptr;
    const PredictiveRun run = s.predictive;
    const PredictiveParameters run_params = s.predictive_params;
    RunOutcome outcome = RunOutcome::refused;
    lock(true);
    print_portrait(desktop(), "AB", [&](drawing::Surface& paper) {
        drawing::PredictiveReport printed(desktop().drawing());
        outcome = start_predictive_run(s, params, printed);
        if (!printed.ended()) paper.end_document();
        return outcome != RunOutcome::refused;
    });
    lock(false);
    if (keep) {
        s.predictive = run;
        s.predictive_params = run_params;
    }
    return outcome != RunOutcome::refused;
}

bool ReportWindow::restart_at(const std::string& day, const std::string& month,
                              const std::string& year) {
    if (!report_) return false;
    Session& s = session();
    s.drawing.printing = false;
    desktop().canvases().ab = &canvas_->canvas();
    lock(true);
    const RunOutcome outcome = restart_predictive_run_at(s, *report_, day, month, year);
    lock(false);
    if (outcome == RunOutcome::refused) return false;
    canvas_->update();
    show_state(outcome);
    enter();
    return true;
}

void ReportWindow::enter() {
    bring_to_front(this);
}

void ReportWindow::show_state(RunOutcome outcome) {
    const int page = report_ ? report_->page() : 0;
    QString text = "Page " + QString::number(page);
    switch (outcome) {
    case RunOutcome::page_full:
        text += " - the run goes on with Continue";
        break;
    case RunOutcome::cancelled:
        text += " - the run was cancelled";
        break;
    default:
        text += " - the end of the run";
        break;
    }
    state_->setText(text);
    can_continue_ = outcome == RunOutcome::page_full;
    findChild<QPushButton*>("ab_continue")->setEnabled(can_continue_);
}

void ReportWindow::row_clicked(float x, float y) {
    if (!report_) return;
    if (const Hit* hit = report_->hit_at(x, y)) events_->open(*hit);
}

// ---- ab_options ---------------------------------------------------------------------------------

NewDateWindow::NewDateWindow(Desktop& desktop, ReportWindow& report)
    : CelestarkWindow(desktop, "ab_options", "NEW LIFE DATE"), report_(report) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("The run starts again from this date of the life:", this));
    auto* fields = new QGridLayout;
    day_ = make_field(this, "ab_start_day", 2);
    month_ = make_field(this, "ab_start_month", 2);
    year_ = make_field(this, "ab_start_year", 5);
    const InputOptions options = read_input_options(session());
    fields->addWidget(new QLabel(options.day_first ? "Day" : "Month", this), 0, 1);
    fields->addWidget(new QLabel(options.day_first ? "Month" : "Day", this), 0, 2);
    fields->addWidget(new QLabel("Year", this), 0, 3);
    fields->addWidget(new QLabel("Start date", this), 1, 0);
    fields->addWidget(options.day_first ? day_ : month_, 1, 1);
    fields->addWidget(options.day_first ? month_ : day_, 1, 2);
    fields->addWidget(year_, 1, 3);
    fields->setColumnStretch(4, 1);
    layout->addLayout(fields);
    auto* buttons = new QHBoxLayout;
    auto* ok = make_button(this, "ab_options_ok", "OK");
    auto* cancel = make_button(this, "ab_options_cancel", "CANCEL");
    ok->setDefault(true);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    connect(ok, &QPushButton::clicked, this, [this] {
        if (report_.restart_at(text_of(day_), text_of(month_), text_of(year_))) hide();
    });
    connect(cancel, &QPushButton::clicked, this, [this] { hide(); });
}

void NewDateWindow::enter() {
    const PredictiveParameters& p = session().predictive_params;
    day_->setText(qt(p.text("start_day")));
    month_->setText(qt(p.text("start_month")));
    year_->setText(qt(p.text("start_year")));
    bring_to_front(this);
}

// ---- ab_events ----------------------------------------------------------------------------------

EventsWindow::EventsWindow(Desktop& desktop) : CelestarkWindow(desktop, "ab_events", "EVENT") {
    auto* layout = new QVBoxLayout(this);
    row_ = make_label(this, "ab_row");
    QFont bold = row_->font();
    bold.setBold(true);
    row_->setFont(bold);
    layout->addWidget(row_);

    auto* moment = make_group(this, "ab_moment", "Moment");
    auto* grid = new QGridLayout(moment);
    const InputOptions options = read_input_options(session());
    day_ = make_field(moment, "ab_day", 2);
    month_ = make_field(moment, "ab_month", 2);
    year_ = make_field(moment, "ab_year", 5);
    time_ = make_field(moment, "ab_time", 5);
    meridian_ = make_field(moment, "ab_meridian", 5);
    time_->setToolTip("Hours and minutes, as 13:05");
    meridian_->setToolTip("The standard meridian of the time: degrees, E or W, minutes");
    grid->addWidget(new QLabel(qt(date_caption(options)), moment), 0, 1, 1, 3);
    grid->addWidget(new QLabel("Date", moment), 1, 0);
    grid->addWidget(options.day_first ? day_ : month_, 1, 1);
    grid->addWidget(options.day_first ? month_ : day_, 1, 2);
    grid->addWidget(year_, 1, 3);
    grid->addWidget(new QLabel("Time", moment), 2, 0);
    grid->addWidget(time_, 2, 1, 1, 2);
    grid->addWidget(new QLabel("Meridian", moment), 3, 0);
    grid->addWidget(meridian_, 3, 1, 1, 2);
    grid->setColumnStretch(4, 1);
    layout->addWidget(moment);

    auto* place = make_group(this, "ab_place", "Place");
    auto* pg = new QGridLayout(place);
    different_ = make_check(place, "different_place", "Different place from the event's");
    place_ = make_field(place, "new_place");
    lat_deg_ = make_field(place, "new_lat_deg", 3);
    lat_ns_ = make_field(place, "new_lat_ns", 1);
    lat_min_ = make_field(place, "new_lat_min", 2);
    long_deg_ = make_field(place, "new_long_deg", 3);
    long_ew_ = make_field(place, "new_long_ew", 1);
    long_min_ = make_field(place, "new_long_min", 2);
    pg->addWidget(different_, 0, 0, 1, 5);
    pg->addWidget(new QLabel("Place", place), 1, 0);
    pg->addWidget(place_, 1, 1, 1, 4);
    pg->addWidget(new QLabel("Degs", place), 2, 1);
    pg->addWidget(new QLabel("Mins", place), 2, 2);
    pg->addWidget(new QLabel("Latitude", place), 3, 0);
    pg->addWidget(lat_deg_, 3, 1);
    pg->addWidget(lat_min_, 3, 2);
    pg->addWidget(lat_ns_, 3, 3);
    pg->addWidget(new QLabel("Longitude", place), 4, 0);
    pg->addWidget(long_deg_, 4, 1);
    pg->addWidget(long_min_, 4, 2);
    pg->addWidget(long_ew_, 4, 3);
    pg->setColumnStretch(4, 1);
    layout->addWidget(place);
    connect(different_, &QCheckBox::toggled, this, [this] { place_mode_changed(); });

    auto* status = make_label(this, "ab_status");
    layout->addWidget(status);
    auto* buttons = new QHBoxLayout;
    auto* save = make_button(this, "ab_save", "SAVE AS EVENT");
    auto* display = make_button(this, "ab_display", "DISPLAY CHART");
    auto* exit = make_button(this, "ab_events_exit", "EXIT");
    buttons->addWidget(save);
    buttons->addWidget(display);
    buttons->addStretch(1);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    connect(save, &QPushButton::clicked, this, [this, status] {
        const RowMoment m = collect();
        if (save_row_moment(session(), hit_, m, sink()))
            status->setText("Stored in the open table as \"" + qt(moment_prefix(session())) +
                            "\" " + qt(moment_world_view(session(), hit_)));
    });
    connect(display, &QPushButton::clicked, this, [this] {
        if (!display_row_moment(session(), hit_, collect(), sink())) return;
        hide();
        this->desktop().show_page();
    });
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
}

void EventsWindow::open(const Hit& hit) {
    hit_ = hit;
    const RowMoment m = row_moment(session(), hit);
    row_->setText(qt(symbol_text_utf8(m.describe)));
    day_->setText(qt(m.day));
    month_->setText(qt(m.month));
    year_->setText(qt(m.year));
    time_->setText(qt(m.time));
    meridian_->setText(qt(m.meridian));
    different_->setChecked(false);
    place_->setText(qt(m.place));
    lat_deg_->setText(qt(m.lat_deg));
    lat_ns_->setText(qt(m.lat_ns));
    lat_min_->setText(qt(m.lat_min));
    long_deg_->setText(qt(m.long_deg));
    long_ew_->setText(qt(m.long_ew));
    long_min_->setText(qt(m.long_min));
    findChild<QLabel*>("ab_status")->clear();
    place_mode_changed();
    enter();
}

void EventsWindow::enter() {
    bring_to_front(this);
}

void EventsWindow::place_mode_changed() {
    const bool own = different_->isChecked();
    for (QLineEdit* f : {place_, lat_deg_, lat_ns_, lat_min_, long_deg_, long_ew_, long_min_})
        f->setEnabled(own);
}

RowMoment EventsWindow::collect() const {
    RowMoment m;
    m.day = text_of(day_);
    m.month = text_of(month_);
    m.year = text_of(year_);
    m.time = text_of(time_);
    m.meridian = text_of(meridian_);
    m.different_place = different_->isChecked();
    m.place = text_of(place_);
    m.lat_deg = text_of(lat_deg_);
    m.lat_ns = text_of(lat_ns_);
    m.lat_min = text_of(lat_min_);
    m.long_deg = text_of(long_deg_);
    m.long_ew = text_of(long_ew_);
    m.long_min = text_of(long_min_);
    return m;
}

// ---- the commands -------------------------------------------------------------------------------

namespace {

struct PredictiveScreens {
    PredictiveScreen model;
    std::unique_ptr<BiographyWindow> biography;
    std::unique_ptr<ReportWindow> report;
    void make(Desktop& desktop) {
        if (biography) return;
        biography = std::make_unique<BiographyWindow>(desktop, model);
        report = std::make_unique<ReportWindow>(desktop, *biography);
        biography->set_report_window(report.get());
    }
};

} // namespace

void add_predictive_windows(Desktop& desktop) {
    auto screens = std::make_shared<PredictiveScreens>();
    for (const auto& [command, mode] : {std::pair{"astro_biog", "B"}, std::pair{"transits", "T"},
                                        std::pair{"progressions", "P"}}) {
        const std::string m = mode;
        desktop.add_command(command, [&desktop, screens, m] {
            screens->make(desktop);
            screens->biography->open(m);
        });
    }
    // The chart window's exit comes back here after a row's chart.
    desktop.add_command("ab_events", [&desktop, screens] {
        screens->make(desktop);
        screens->report->events().enter();
    });
}

} // namespace celestark::screens
