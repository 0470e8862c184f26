#include "screens/widgets/monthly_window.h"

#include "drawing/ephemeris_pages.h"
#include "screens/aspect_window.h"
#include "screens/widgets/desktop.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPageLayout>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <memory>

namespace celestark::screens {

MonthlyWindow::MonthlyWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "monthly", "MONTHLY EPHEMERIS") {
    auto* layout = new QVBoxLayout(this);
    auto* span = make_group(this, "span", "Months");
    auto* grid = new QGridLayout(span);
    grid->addWidget(new QLabel("Month", span), 0, 1);
    grid->addWidget(new QLabel("Year", span), 0, 2);
    const std::pair<const char*, const char*> rows[2][2] = {{{"start_month", "start_year"}},
                                                            {{"end_month", "end_year"}}};
    const char* captions[2] = {"From", "To"};
    for (int r = 0; r < 2; ++r) {
        grid->addWidget(new QLabel(captions[r], span), r + 1, 0);
        const auto& [month, year] = rows[r][0];
        fields_[month] = make_field(span, month, 3);
        fields_[year] = make_field(span, year, 6);
        grid->addWidget(fields_[month], r + 1, 1);
        grid->addWidget(fields_[year], r + 1, 2);
    }
    grid->addWidget(new QLabel("Calendar (G or J)", span), 3, 0);
    fields_["g_j_monthly"] = make_field(span, "g_j_monthly", 2);
    grid->addWidget(fields_["g_j_monthly"], 3, 1);
    layout->addWidget(span);

    auto* choices = new QHBoxLayout;
    auto* view = make_group(this, "world_view", "World view");
    auto* view_layout = new QVBoxLayout(view);
    auto* views = new QButtonGroup(this);
    for (const auto& [name, caption] : {std::pair{"geo", "GEOCENTRIC"},
                                        {"hermetic", "TYCHONIC"},
                                        {"helio", "HELIOCENTRIC"},
                                        {"lemni", "LEMNICENTRIC"}}) {
        options_[name] = make_radio(view, name, caption);
        views->addButton(options_[name]);
        view_layout->addWidget(options_[name]);
    }
    choices->addWidget(view);
    auto* phen = make_group(this, "phenomena", "Phenomena");
    auto* phen_layout = new QVBoxLayout(phen);
    auto* phens = new QButtonGroup(this);
    for (const auto& [name, caption] :
         {std::pair{"p_yes", "With the phenomena"}, {"p_no", "Without the phenomena"}}) {
        options_[name] = make_radio(phen, name, caption);
        phens->addButton(options_[name]);
        phen_layout->addWidget(options_[name]);
    }
    phen_layout->addStretch();
    choices->addWidget(phen);
    layout->addLayout(choices);

    sets_group_ = make_group(this, "calender_sets", "Aspect sets of the star calendar");
    auto* sets_layout = new QGridLayout(sets_group_);
    int row = 0;
    for (const auto& [name, caption] :
         {std::pair{"geo_calender", "Geocentric"}, {"helio_calender", "Heliocentric"}}) {
        sets_[name] = make_list(sets_group_, name);
        sets_[name]->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        sets_layout->addWidget(new QLabel(caption, sets_group_), row, 0);
        sets_layout->addWidget(sets_[name], row++, 1);
    }
    layout->addWidget(sets_group_);

    auto* buttons = new QHBoxLayout;
    auto* print_button = make_button(this, "print_monthly", "PRINT");
    auto* exit_button = make_button(this, "exit_monthly", "EXIT");
    buttons->addWidget(print_button);
    buttons->addStretch();
    buttons->addWidget(exit_button);
    layout->addLayout(buttons);
    connect(print_button, &QPushButton::clicked, this, [this] { print(); });
    connect(exit_button, &QPushButton::clicked, this, &QWidget::hide);
}

void MonthlyWindow::enter(bool star_calendar) {
    star_calendar_ = star_calendar;
    setWindowTitle(star_calendar ? "STAR CALENDAR" : "MONTHLY EPHEMERIS");
    const MonthlyScreen defaults = monthly_defaults(session(), star_calendar);
    ephemeris_aspect_set_ = defaults.ephemeris_aspect_set;
    for (auto& [name, field] : fields_) field->setText(qt(defaults.values.at(name)));
    for (auto& [name, option] : options_) option->setChecked(defaults.values.at(name) == "1");
    const std::vector<std::string> names =
        star_calendar ? stored_aspect_set_names(session(), 69, "Monthly Aspect Sets-Got Focus")
                      : std::vector<std::string>{};
    for (auto& [name, list] : sets_) {
        const QString stored = qt(defaults.values.at(name));
        fill_list(list, names, stored);
        list->setCurrentText(stored);
    }
    sets_group_->setVisible(star_calendar);
    adjustSize();
    show();
    raise();
    activateWindow();
}

MonthlyScreen MonthlyWindow::screen() const {
    MonthlyScreen m;
    for (const auto& [name, field] : fields_) m.values[name] = text_of(field);
    for (const auto& [name, option] : options_) m.values[name] = option->isChecked() ? "1" : "0";
    for (const auto& [name, list] : sets_) m.values[name] = list->currentText().toStdString();
    m.star_calendar = star_calendar_;
    m.ephemeris_aspect_set = ephemeris_aspect_set_;
    return m;
}

int MonthlyWindow::print() {
    MonthlyRequest request;
    const MonthlyScreen m = screen();
    if (!monthly_request(m, request, sink())) return 0;
    if (star_calendar_ && !keep_star_calendar_sets(session(), m)) return 0;
    int printed = 0;
    // A month a landscape page.
    desktop().printer().setPageOrientation(QPageLayout::Landscape);
    desktop().print([&] {
        drawing::Surface* paper = desktop().canvases().printer;
        if (!paper || !paper->setup_dialog()) return false;
        BusyPointer busy;
        printed = drawing::print_monthly_ephemeris(session(), *paper, request);
        return true;
    });
    desktop().printer().setPageOrientation(QPageLayout::Portrait);
    return printed;
}

void add_monthly_window(Desktop& desktop) {
    auto window = std::make_shared<std::unique_ptr<MonthlyWindow>>();
    for (const bool star : {false, true})
        desktop.add_command(star ? "star_calender" : "monthly_ephemeris", [&desktop, window, star] {
            if (!*window) *window = std::make_unique<MonthlyWindow>(desktop);
            (*window)->enter(star);
        });
}

} // namespace celestark::screens
