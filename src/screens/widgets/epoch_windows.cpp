#include "screens/widgets/epoch_windows.h"

#include "screens/event_checks.h"
#include "screens/widgets/chart_display.h"
#include "screens/widgets/desktop.h"
#include "session/session.h"
#include "session/text.h"

#include <QButtonGroup>
#include <QEvent>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <memory>
#include <tuple>

namespace celestark::screens {

namespace {

// The lines stand on the chart's dark blue, in white; the selected candidate in green.
constexpr const char* line_style = "QLineEdit { background: #000040; color: #FFFFFF; }";
constexpr const char* selected_style = "QLineEdit { background: #000040; color: #00FF00; }";

QLabel* caption_label(QWidget* parent, const QString& text) {
    return new QLabel(text, parent);
}

} // namespace

// ---- Epoch_options ------------------------------------------------------------------------------

EpochOptionsWindow::EpochOptionsWindow(Desktop& desktop, EpochWindows& model)
    : CelestarkWindow(desktop, "Epoch_options", "PRENATAL EPOCH - OPTIONS"), model_(model) {
    auto* layout = new QVBoxLayout(this);

    auto* length =
        make_group(this, "epoch_length", "Length of epoch to nearest number of lunar months");
    auto* lengths = new QHBoxLayout(length);
    auto* month_group = new QButtonGroup(this);
    for (int n = 6; n <= 12; ++n) {
        QRadioButton* b =
            make_radio(length, ("epoch_" + std::to_string(n)).c_str(), QString::number(n));
        month_group->addButton(b);
        lengths->addWidget(b);
        months_[n] = b;
    }
    lengths->addStretch(1);
    layout->addWidget(length);

    auto* kind = make_group(this, "epoch_month_kind", "Lunar month");
    auto* kinds = new QHBoxLayout(kind);
    sidereal_ = make_radio(kind, "Sidereal_month", "Sidereal (normal)");
    synodic_ = make_radio(kind, "Synodic_month", "Synodic");
    kinds->addWidget(sidereal_);
    kinds->addWidget(synodic_);
    kinds->addStretch(1);
    layout->addWidget(kind);

    auto* place = make_group(this, "epoch_place_group", "Place of the epoch");
    auto* grid = new QGridLayout(place);
    auto* place_group = new QButtonGroup(this);
    same_ = make_radio(place, "same_as_birth", "Same as birth");
    different_ = make_radio(place, "different_to_birth", "Different to birth");
    place_group->addButton(same_);
    place_group->addButton(different_);
    auto* modes = new QHBoxLayout;
    modes->addWidget(same_);
    modes->addWidget(different_);
    modes->addStretch(1);
    grid->addLayout(modes, 0, 0, 1, 6);
    for (std::size_t i = 0; i < epoch_place_fields.size(); ++i)
        place_[i] = make_field(place, epoch_place_fields[i], i == 0 ? 0 : 3);
    grid->addWidget(caption_label(place, "Place"), 1, 0);
    grid->addWidget(place_[0], 1, 1, 1, 5);
    grid->addWidget(caption_label(place, "Degs"), 2, 1);
    grid->addWidget(caption_label(place, "Mins"), 2, 2);
    seconds_[0] = caption_label(place, "Secs");
    grid->addWidget(seconds_[0], 2, 3);
    // Latitude: degrees, minutes, seconds, then N or S; longitude likewise with E or W.
    for (int row = 0; row < 2; ++row) {
        const std::size_t first = row == 0 ? 1 : 5; // deg, ns, min, sec in the row's order
        grid->addWidget(caption_label(place, row == 0 ? "Latitude" : "Longitude"), 3 + row, 0);
        grid->addWidget(place_[first], 3 + row, 1);
        grid->addWidget(place_[first + 2], 3 + row, 2);
        grid->addWidget(place_[first + 3], 3 + row, 3);
        grid->addWidget(place_[first + 1], 3 + row, 4);
    }
    seconds_[1] = nullptr;
    grid->setColumnStretch(5, 1);
    layout->addWidget(place);

    auto* buttons = new QHBoxLayout;
    auto* calculate = make_button(this, "calculate_epoch", "CALCULATE EPOCH");
    auto* exit = make_button(this, "epoch_options_exit", "EXIT");
    calculate->setDefault(true);
    buttons->addWidget(calculate);
    buttons->addStretch(1);
    buttons->addWidget(exit);
    layout->addLayout(buttons);

    connect(same_, &QRadioButton::toggled, this, [this] { place_mode_changed(); });
    connect(calculate, &QPushButton::clicked, this, [this] { this->calculate(); });
    connect(exit, &QPushButton::clicked, this, [this] {
        model_.cancel();
        hide();
    });
}

void EpochOptionsWindow::enter() {
    const EpochOptionsScreen& o = model_.options();
    if (const auto it = months_.find(o.months); it != months_.end()) it->second->setChecked(true);
    (o.sidereal ? sidereal_ : synodic_)->setChecked(true);
    (o.same_as_birth ? same_ : different_)->setChecked(true);
    for (std::size_t i = 0; i < place_.size(); ++i) place_[i]->setText(qt(o.place[i]));
    // Seconds of arc only where the options ask for them.
    const bool secs = read_input_options(session()).lat_long_secs;
    seconds_[0]->setVisible(secs);
    place_[4]->setVisible(secs);
    place_[8]->setVisible(secs);
    place_mode_changed();
    show();
    raise();
    activateWindow();
}

void EpochOptionsWindow::place_mode_changed() {
    const bool own = different_->isChecked();
    for (QLineEdit* f : place_) f->setEnabled(own);
}

void EpochOptionsWindow::collect() {
    EpochOptionsScreen& o = model_.options();
    for (const auto& [n, b] : months_)
        if (b->isChecked()) o.months = n;
    o.sidereal = sidereal_->isChecked();
    o.same_as_birth = same_->isChecked();
    for (std::size_t i = 0; i < place_.size(); ++i) o.place[i] = text_of(place_[i]);
}

void EpochOptionsWindow::calculate() {
    collect();
    if (!model_.calculate(session(), sink())) return;
    hide();
    if (dates_) dates_->enter();
}

// ---- Epoch_dates --------------------------------------------------------------------------------

EpochDatesWindow::EpochDatesWindow(Desktop& desktop, EpochWindows& model)
    : CelestarkWindow(desktop, "Epoch_dates", "PRENATAL EPOCH"), model_(model) {
    auto* layout = new QVBoxLayout(this);
    heading_ = make_label(this, "epoch_label");
    QFont big = heading_->font();
    big.setBold(true);
    big.setPointSizeF(big.pointSizeF() * 1.2);
    heading_->setFont(big);
    layout->addWidget(heading_);

    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    auto line_row = [&](QGridLayout* grid, int row, std::size_t k, const QString& caption) {
        lines_[k] = make_field(this, epoch_line_fields[k]);
        lines_[k]->setReadOnly(true);
        lines_[k]->setFont(fixed);
        lines_[k]->setMinimumWidth(QFontMetrics(fixed).horizontalAdvance(QString(86, 'M')));
        lines_[k]->setStyleSheet(line_style);
        auto* show = make_button(this, epoch_display_commands[k], "CHART");
        show->setToolTip("Draw the chart of this moment");
        connect(show, &QPushButton::clicked, this,
                [this, k] { display(epoch_display_commands[k]); });
        grid->addWidget(caption_label(this, caption), row, 0);
        grid->addWidget(lines_[k], row, 1);
        grid->addWidget(show, row, 2);
    };
    auto* top = new QGridLayout;
    line_row(top, 0, 0, "Birth");
    line_row(top, 1, 1, "Month return");
    layout->addLayout(top);

    auto* save = make_group(this, "epoch_save_frame",
                            "To save Epoch date (and new birth time if corrected)");
    auto* save_layout = new QVBoxLayout(save);
    save_layout->addWidget(caption_label(
        save, "Click on the field with the desired  Epoch date (not the Birth date field)"));
    auto* candidates = new QGridLayout;
    candidates->addWidget(caption_label(save, "Ascendant"), 0, 1);
    line_row(candidates, 1, 2, "asc1");
    line_row(candidates, 2, 3, "asc2");
    candidates->addWidget(caption_label(save, "Descendant"), 3, 1);
    line_row(candidates, 4, 4, "desc1");
    line_row(candidates, 5, 5, "desc2");
    save_layout->addLayout(candidates);
    layout->addWidget(save);
    for (std::size_t k = 2; k < lines_.size(); ++k) {
        lines_[k]->installEventFilter(this);
        lines_[k]->setCursor(Qt::PointingHandCursor);
        lines_[k]->setToolTip("Click to store this epoch in the event");
    }

    auto* controls = new QHBoxLayout;
    auto* manual = make_group(this, "epoch_manual", "Ajust Birth Time Manually");
    auto* steps = new QGridLayout(manual);
    int col = 0;
    for (const BirthTimeStep& step : birth_time_steps()) {
        for (int sign = 0; sign < 2; ++sign) {
            const std::string name = (sign == 0 ? "plus" : "minus") + std::string(step.name);
            auto* b =
                make_button(manual, name.c_str(), (sign == 0 ? "+" : "-") + QString(step.caption));
            connect(b, &QPushButton::clicked, this, [this, name] {
                model_.adjust(session(), name);
                show_lines();
            });
            steps->addWidget(b, sign, col);
        }
        ++col;
    }
    controls->addWidget(manual, 1);
    auto* correction = make_group(this, "epoch_correction", "Apply Birth Time Correction");
    auto* corrections = new QVBoxLayout(correction);
    for (const auto& [name, caption, direction] :
         {std::tuple{"backward", "BACKWARD", -1}, std::tuple{"forward", "FORWARD", 1}}) {
        auto* b = make_button(correction, name, caption);
        b->setToolTip("Move the birth time until an angle of a candidate meets the birth Moon");
        const int d = direction;
        connect(b, &QPushButton::clicked, this, [this, d] {
            BusyPointer busy;
            model_.correct(session(), d);
            show_lines();
        });
        corrections->addWidget(b);
    }
    controls->addWidget(correction);
    layout->addLayout(controls);

    auto* buttons = new QHBoxLayout;
    state_ = make_label(this, "epoch_state");
    auto* options = make_button(this, "epoch_opt", "OPTIONS");
    auto* cancel = make_button(this, "cancel", "EXIT");
    buttons->addWidget(state_, 1);
    buttons->addWidget(options);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    connect(options, &QPushButton::clicked, this, [this] {
        hide();
        if (options_) options_->enter();
    });
    connect(cancel, &QPushButton::clicked, this, [this] {
        model_.cancel();
        hide();
    });
}

void EpochDatesWindow::enter() {
    show_lines();
    show();
    raise();
    activateWindow();
}

void EpochDatesWindow::show_lines() {
    const Session& s = session();
    heading_->setText(qt(s.epoch.label));
    setWindowTitle("PRENATAL EPOCH - " + qt(s.epoch.label));
    const auto& lines = model_.lines(s);
    for (std::size_t k = 0; k < lines_.size(); ++k) {
        lines_[k]->setText(qt(symbol_text_utf8(lines[k])));
        lines_[k]->setCursorPosition(0);
        const bool selected = k >= 2 && static_cast<int>(k) - 1 == model_.recommended(s);
        lines_[k]->setStyleSheet(selected ? selected_style : line_style);
    }
    state_->setText(
        model_.recommended(s) > 0
            ? "The rule selects " +
                  qt(epoch_line_fields[static_cast<std::size_t>(model_.recommended(s) + 1)]) +
                  ", shown in green"
            : "No candidate meets the rule");
}

void EpochDatesWindow::display(const std::string& command) {
    if (model_.display_row(session(), command) == 0) return;
    desktop().show_page();
}

void EpochDatesWindow::store(int candidate) {
    if (!model_.store(session(), candidate, sink())) return;
    hide();
    desktop().refresh_chart_window();
}

bool EpochDatesWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease)
        for (std::size_t k = 2; k < lines_.size(); ++k)
            if (watched == lines_[k]) {
                store(static_cast<int>(k) - 1);
                return true;
            }
    return CelestarkWindow::eventFilter(watched, event);
}

// ---- The commands -------------------------------------------------------------------------------

namespace {

struct EpochScreens {
    EpochWindows model;
    std::unique_ptr<EpochOptionsWindow> options;
    std::unique_ptr<EpochDatesWindow> dates;
    void make(Desktop& desktop) {
        if (options) return;
        options = std::make_unique<EpochOptionsWindow>(desktop, model);
        dates = std::make_unique<EpochDatesWindow>(desktop, model);
        options->set_dates_window(dates.get());
        dates->set_options_window(options.get());
    }
};

} // namespace

void add_epoch_windows(Desktop& desktop) {
    auto screens = std::make_shared<EpochScreens>();
    desktop.add_command("calculate_epoch", [&desktop, screens] {
        screens->make(desktop);
        if (!screens->model.start(desktop.session(), session_sink(desktop.session()))) return;
        screens->options->enter();
    });
    // The chart window's exit comes back here after a line's chart.
    desktop.add_command("epoch_dates", [&desktop, screens] {
        screens->make(desktop);
        if (screens->model.calculated()) screens->dates->enter();
    });
}

} // namespace celestark::screens
