#include "screens/widgets/chart_display.h"

#include "drawing/chart_pages.h"
#include "drawing/painter_surface.h"
#include "drawing/recording_surface.h"
#include "screens/planet_motion.h"
#include "screens/widgets/desktop.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>
#include <filesystem>

namespace celestark::screens {

namespace {

// Twips of a pixel of the screen.
constexpr float twips_per_pixel = 15;

} // namespace

ChartCanvas::ChartCanvas(QWidget* parent, std::function<void()> redraw)
    : QWidget(parent), redraw_(std::move(redraw)) {
    setObjectName("chart_canvas");
    setMinimumSize(480, 320);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFocusPolicy(Qt::StrongFocus);
}

ChartCanvas::~ChartCanvas() = default;

drawing::RasterCanvas& ChartCanvas::canvas() {
    return drawing::window_canvas(canvas_, width(), height(), devicePixelRatioF());
}

void ChartCanvas::paintEvent(QPaintEvent*) {
    QPainter p(this);
    if (!canvas_) {
        p.fillRect(rect(), QColor(0, 0, 0x40));
        return;
    }
    QImage image = canvas_->image();
    image.setDevicePixelRatio(devicePixelRatioF());
    p.drawImage(0, 0, image);
}

void ChartCanvas::resizeEvent(QResizeEvent*) {
    if (redraw_ && isVisible()) redraw_();
}

ChartDisplay::ChartDisplay(Desktop& desktop)
    : CelestarkWindow(desktop, "chart_display", "CELESTARK - Chart") {
    auto* layout = new QHBoxLayout(this);
    canvas_ = new ChartCanvas(this, [this] { redraw(); });
    auto* picture = new QVBoxLayout;
    picture->addWidget(canvas_, 1);
    picture->addWidget(build_motion_panel());
    layout->addLayout(picture, 1);

    auto* side = new QVBoxLayout;
    layout->addLayout(side);

    // Time stepping: each step forward and back, the stepped moment, and its save.
    step_panel_ = make_group(this, "step_panel", "STEP THE TIME");
    auto* steps = new QGridLayout(step_panel_);
    int row = 0;
    for (const TimeStep& t : time_steps()) {
        auto* minus =
            make_button(step_panel_, ("minus" + std::string(t.name)).c_str(), "- " + qt(t.caption));
        auto* plus =
            make_button(step_panel_, ("plus" + std::string(t.name)).c_str(), "+ " + qt(t.caption));
        const std::string name = t.name;
        connect(minus, &QPushButton::clicked, this, [this, name] { step(name, true); });
        connect(plus, &QPushButton::clicked, this, [this, name] { step(name, false); });
        steps->addWidget(minus, row, 0);
        steps->addWidget(plus, row, 1);
        ++row;
    }
    auto* moment = new QHBoxLayout;
    static constexpr const char* fields[6] = {"ad_day",   "ad_month", "ad_year",
                                              "ad_hours", "ad_mins",  "ad_secs"};
    for (int i = 0; i < 6; ++i) {
        ad_[i] = make_field(step_panel_, fields[i], i == 2 ? 5 : 2);
        ad_[i]->setReadOnly(true);
        moment->addWidget(ad_[i]);
    }
    steps->addLayout(moment, row++, 0, 1, 2);
    step_label_ = make_label(step_panel_, "ap_step");
    steps->addWidget(step_label_, row++, 0, 1, 2);
    auto* save_time = make_button(step_panel_, "save_time", "SAVE THIS TIME");
    connect(save_time, &QPushButton::clicked, this, [this] {
        if (save_stepped_time(session(), sink())) this->desktop().refresh_chart_window();
    });
    steps->addWidget(save_time, row++, 0, 1, 2);
    side->addWidget(step_panel_);

    // Walking the table: the next or previous event, with an aspect to look for.
    auto* walk_panel = make_group(this, "walk_panel", "WALK THROUGH THE TABLE");
    auto* walking = new QGridLayout(walk_panel);
    ap_1_ = make_list(walk_panel, "ap_1");
    ap_2_ = make_list(walk_panel, "ap_2");
    ap_3_ = make_list(walk_panel, "ap_3");
    static constexpr const char* bodies[] = {"Sun",     "Moon",   "Mercury", "Venus",   "Mars",
                                             "Jupiter", "Saturn", "Uranus",  "Neptune", "Pluto"};
    for (const char* b : bodies) {
        ap_1_->addItem(b);
        ap_3_->addItem(b);
    }
    ap_3_->setCurrentIndex(1);
    for (const char* a :
         {"Conjunction 0", "Sextile 60", "Square 90", "Trine 120", "Opposition 180"})
        ap_2_->addItem(a);
    ap_4_ = make_check(walk_panel, "ap_4", "Only events with this aspect");
    ap_search_orb_ = make_list(walk_panel, "ap_search_orb");
    for (const auto& [caption, degrees] : walk_orbs()) ap_search_orb_->addItem(qt(caption));
    walking->addWidget(ap_1_, 0, 0);
    walking->addWidget(ap_2_, 0, 1);
    walking->addWidget(ap_3_, 0, 2);
    walking->addWidget(ap_4_, 1, 0, 1, 2);
    walking->addWidget(ap_search_orb_, 1, 2);
    ap_geo_ = make_radio(walk_panel, "ap_geo", "Geo");
    ap_helio_ = make_radio(walk_panel, "ap_helio", "Helio");
    ap_her_ = make_radio(walk_panel, "ap_her", "Tycho");
    ap_lemni_ = make_radio(walk_panel, "ap_lemni", "Lemni");
    ap_geo_->setChecked(true);
    auto* family = new QHBoxLayout;
    for (QRadioButton* r : {ap_geo_, ap_helio_, ap_her_, ap_lemni_}) family->addWidget(r);
    walking->addLayout(family, 2, 0, 1, 3);
    auto* kinds = new QWidget(walk_panel);
    auto* kind = new QHBoxLayout(kinds);
    kind->setContentsMargins(0, 0, 0, 0);
    ap_standard_ = make_radio(kinds, "ap_standard", "Standard");
    ap_star_ = make_radio(kinds, "ap_star", "Star chart");
    ap_none_ = make_radio(kinds, "ap_none", "No chart");
    ap_standard_->setChecked(true);
    for (QRadioButton* r : {ap_standard_, ap_star_, ap_none_}) kind->addWidget(r);
    walking->addWidget(kinds, 3, 0, 1, 3);
    auto* back = make_button(walk_panel, "ap_back", "<< PREVIOUS");
    auto* forward = make_button(walk_panel, "ap_forward", "NEXT >>");
    connect(back, &QPushButton::clicked, this, [this] { walk(false); });
    connect(forward, &QPushButton::clicked, this, [this] { walk(true); });
    walking->addWidget(back, 4, 0);
    walking->addWidget(forward, 4, 2);
    side->addWidget(walk_panel);

    auto* print = make_button(this, "Print_chart", "PRINT");
    connect(print, &QPushButton::clicked, this, [this] { this->print(); });
    auto* save = make_button(this, "save_chart", "SAVE AS PNG, PDF OR SVG");
    connect(save, &QPushButton::clicked, this, [this] { save_as(); });
    auto* cancel = make_button(this, "screen_cancel", "EXIT");
    connect(cancel, &QPushButton::clicked, this, [this] {
        hide();
        // Back to the window that asked for the page, when it is not the main window.
        const std::string calling = session().drawing.chart_calling;
        if (calling != "chart" && this->desktop().knows(calling)) this->desktop().run(calling);
    });
    side->addWidget(print);
    side->addWidget(save);
    side->addStretch(1);
    side->addWidget(cancel);
    resize(1400, 880);
}

ChartDisplay::~ChartDisplay() = default;

void ChartDisplay::redraw() {
    Session& s = session();
    if (s.drawing.screen_page.empty() || drawing_) return;
    drawing::Surface* surface = &canvas_->canvas();
    if (recording_) {
        recording_->forget();
        recording_->set_inner(surface);
        surface = recording_;
    }
    desktop().canvases().chart = surface;
    s.drawing.printing = false;
    // The planets' motion is shown step by step while its run lets the screen's events through.
    QTimer shown;
    if (s.drawing.screen_page == "planets motion") {
        connect(&shown, &QTimer::timeout, canvas_, [this] { canvas_->update(); });
        shown.start(50);
    }
    drawing_ = true;
    drawing::screen_display(desktop().drawing());
    drawing_ = false;
    ++pages_drawn_;
    canvas_->update();
}

void ChartDisplay::refresh_fields() {
    const DrawingState& d = session().drawing;
    step_panel_->setVisible(d.allow_stepping && d.show_step_panel);
    const auto moment = stepped_time(session());
    for (int i = 0; i < 6; ++i) ad_[i]->setText(qt(moment[static_cast<std::size_t>(i)]));
    step_label_->setText("Arrow keys step by " +
                         qt(time_steps()[static_cast<std::size_t>(step_index_)].caption));
}

void ChartDisplay::show_page() {
    fill_motion_dates();
    show();
    raise();
    activateWindow();
    redraw();
    refresh_fields();
    canvas_->setFocus();
}

void ChartDisplay::step(const std::string& name, bool backward) {
    for (std::size_t i = 0; i < time_steps().size(); ++i)
        if (name == time_steps()[i].name) step_index_ = static_cast<int>(i);
    if (!step_time(session(), name, backward)) return;
    redraw();
    refresh_fields();
}

void ChartDisplay::keyPressEvent(QKeyEvent* event) {
    const int n = static_cast<int>(time_steps().size());
    switch (event->key()) {
    case Qt::Key_Right:
    case Qt::Key_Left:
        step(time_steps()[static_cast<std::size_t>(step_index_)].name,
             event->key() == Qt::Key_Left);
        return;
    case Qt::Key_Up:
        step_index_ = std::min(n - 1, step_index_ + 1);
        break;
    case Qt::Key_Down:
        step_index_ = std::max(0, step_index_ - 1);
        break;
    default:
        CelestarkWindow::keyPressEvent(event);
        return;
    }
    refresh_fields();
}

void ChartDisplay::walk(bool forward) {
    Session& s = session();
    AspectPattern pattern;
    pattern.wanted = ap_4_->isChecked();
    pattern.body_a = ap_1_->currentIndex();
    pattern.body_b = ap_3_->currentIndex();
    static constexpr double angles[] = {0, 60, 90, 120, 180};
    pattern.angle = angles[std::max(0, ap_2_->currentIndex())];
    pattern.orb =
        walk_orbs()[static_cast<std::size_t>(std::max(0, ap_search_orb_->currentIndex()))].second;
    setCursor(Qt::WaitCursor);
    const WalkResult r = walk_table(s, forward, pattern, sink());
    unsetCursor();
    if (r != WalkResult::moved) return;
    desktop().refresh_chart_window();
    // The chart of the family chosen.
    const bool star = ap_star_->isChecked();
    std::string command = star ? "geo_star_chart" : "chart_geocentric";
    if (ap_helio_->isChecked()) command = star ? "helio_star_chart" : "chart_heliocentric";
    if (ap_her_->isChecked()) command = star ? "her_star_chart" : "chart_hermetic";
    if (ap_lemni_->isChecked()) command = star ? "lemniscate_star_chart" : "chart_lemniscate";
    if (ap_none_->isChecked()) return;
    desktop().run(command);
}

void ChartDisplay::print() {
    // A page that lies across is printed on a turned sheet.
    const bool portrait = drawing::page_is_portrait(session().drawing.screen_page);
    desktop().printer().setPageOrientation(portrait ? QPageLayout::Portrait
                                                    : QPageLayout::Landscape);
    desktop().print([this] { return drawing::screen_display(desktop().drawing()); });
    redraw();
}

bool ChartDisplay::save_page(const std::string& path) {
    Session& s = session();
    const std::string ext = to_upper(std::filesystem::path(path).extension().string());
    drawing::Canvases& canvases = desktop().canvases();
    bool ok = true;
    if (ext == ".PNG") {
        drawing::RasterCanvas picture(canvas_->width() * 2, canvas_->height() * 2,
                                      canvas_->width() * twips_per_pixel);
        canvases.chart = &picture;
        ok = drawing::screen_display(desktop().drawing());
        std::string error;
        ok = ok && picture.save_png(path, error);
        if (!ok)
            sink().message(product_word, "The picture could not be saved: " + error,
                           MessageIcon::exclamation);
    } else if (ext == ".PDF") {
        drawing::PageFormat sheet;
        sheet.landscape = !drawing::page_is_portrait(s.drawing.screen_page);
        drawing::PdfCanvas paper(path, sheet);
        canvases.printer = &paper;
        s.drawing.printing = true;
        ok = drawing::screen_display(desktop().drawing());
        s.drawing.printing = false;
        canvases.printer = nullptr;
    } else if (ext == ".SVG") {
        drawing::SvgCanvas picture(path, drawing::PageFormat{}, canvas_->width() * twips_per_pixel,
                                   canvas_->height() * twips_per_pixel);
        canvases.chart = &picture;
        ok = drawing::screen_display(desktop().drawing());
        picture.end_document();
    } else {
        sink().message(product_word, "A page is saved as .png, .pdf or .svg",
                       MessageIcon::information);
        return false;
    }
    redraw();
    return ok;
}

void ChartDisplay::save_as() {
    const QString path = QFileDialog::getSaveFileName(
        this, "Save the page", "chart.png", "PNG picture (*.png);;PDF page (*.pdf);;SVG (*.svg)");
    if (!path.isEmpty()) save_page(path.toStdString());
}

QWidget* ChartDisplay::build_motion_panel() {
    auto* panel = make_group(this, "motion_panel", "MOTION OF THE PLANETS");
    auto* rows = new QVBoxLayout(panel);
    auto* top = new QHBoxLayout;
    int i = 0;
    for (const MotionViewChoice& v : motion_views()) {
        motion_views_[i] = make_radio(panel, v.name, v.caption);
        top->addWidget(motion_views_[i++]);
    }
    motion_views_[1]->setChecked(true);
    top->addSpacing(24);
    static constexpr const char* date_names[6] = {"start_day", "start_month", "start_year",
                                                  "end_day",   "end_month",   "end_year"};
    for (int k = 0; k < 6; ++k) {
        if (k % 3 == 0) top->addWidget(new QLabel(k == 0 ? "From" : "to", panel));
        motion_dates_[k] = make_field(panel, date_names[k], k % 3 == 2 ? 5 : 2);
        motion_dates_[k]->setMaximumWidth(k % 3 == 2 ? 70 : 40);
        top->addWidget(motion_dates_[k]);
    }
    top->addStretch(1);
    auto* show = make_button(panel, "display_motion", "SHOW MOTION");
    connect(show, &QPushButton::clicked, this, [this] { display_motion(); });
    top->addWidget(show);
    rows->addLayout(top);
    auto* boxes = new QHBoxLayout;
    for (const MotionBody& b : motion_bodies()) {
        QCheckBox* box = make_check(panel, b.name, b.caption);
        // The planets and the Earth to begin with.
        box->setChecked(b.glyph != glyph::sun && b.glyph != glyph::moon &&
                        b.glyph != glyph::chiron && b.glyph < glyph::ceres);
        motion_bodies_.push_back(box);
        boxes->addWidget(box);
    }
    boxes->addStretch(1);
    rows->addLayout(boxes);
    return panel;
}

void ChartDisplay::fill_motion_dates() {
    // A year from the active event, until the user types otherwise.
    const Session& s = session();
    const EventRow& row = s.event_slots[s.event_slots.active_event];
    if (slot_is_empty(row) || !text_of(motion_dates_[0]).empty()) return;
    const std::string day = trim(row[col::day]), month = trim(row[col::month]);
    const std::string year = trim(row[col::year]);
    const std::string next = std::to_string(static_cast<long long>(text_to_number(year)) + 1);
    const std::string texts[6] = {day, month, year, day, month, next};
    for (int k = 0; k < 6; ++k) motion_dates_[k]->setText(qt(texts[k]));
}

void ChartDisplay::display_motion() {
    MotionInput input;
    std::string* texts[6] = {&input.start_day, &input.start_month, &input.start_year,
                             &input.end_day,   &input.end_month,   &input.end_year};
    for (int k = 0; k < 6; ++k) *texts[k] = text_of(motion_dates_[k]);
    for (QCheckBox* box : motion_bodies_)
        if (box->isChecked()) input.ticked.push_back(box->objectName().toStdString());
    MotionView view = MotionView::helio;
    for (int k = 0; k < 4; ++k)
        if (motion_views_[k]->isChecked()) view = motion_views()[static_cast<std::size_t>(k)].view;
    if (!motion_request(session(), input, view, sink())) return;
    show_page();
}

} // namespace celestark::screens
