#include "screens/widgets/chart_window.h"

#include "screens/widgets/desktop.h"
#include "screens/widgets/window_support.h"
#include "session/session.h"
#include "store/option_store.h"

#include <QAction>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <QVBoxLayout>

#include <set>

namespace celestark::screens {

namespace {

// The cards stand on the chart's own dark blue; the active one in green.
constexpr const char* card_style =
    "QGroupBox { background: #000040; color: white; border: 1px solid #5060a0;"
    " border-radius: 4px; margin-top: 1.2em; padding: 6px; }"
    "QGroupBox::title { subcontrol-origin: margin; left: 8px; padding: 0 3px; color: black; }"
    "QLabel, QRadioButton { color: white; }"
    "QRadioButton::indicator { width: 11px; height: 11px; border-radius: 6px;"
    " border: 1px solid #c0c8ff; background: #000040; }"
    "QRadioButton::indicator:checked { background: qradialgradient(cx:0.5, cy:0.5, radius:0.5,"
    " fx:0.5, fy:0.5, stop:0 #00ff00, stop:0.55 #00ff00, stop:0.65 #000040); }";
constexpr const char* active_card_style = "QLabel { color: #00FF00; }";

struct MenuEntry {
    const char* name;
    const char* caption;
};

// Commands of windows and Parts that come later: shown, disabled until they arrive.
constexpr MenuEntry later_charts[] = {
    {"tmm_event", "TMM Event Chart"},
    {"tmm_identity", "TMM Identity Chart"},
    {"tmm_spirit", "TMM Spirit Chart"},
};
constexpr MenuEntry predictive_commands[] = {
    {"astro_biog", "Astrological biography"},   {"transits", "Transits"},
    {"progressions", "Progressions"},           {"phem_aspects", "Phenomena"},
    {"monthly_ephemeris", "Monthly ephemeris"}, {"star_calender", "Star calendar"},
    {"save_ephemeris", "Ephemeris to file"},
};
constexpr MenuEntry table_commands[] = {
    {"list_planetary", "List positions"},
    {"list_aspects", "List aspects"},
    {"list_stars", "List stars"},
    {"list_star_aspects", "List star aspects"},
    {"list_seperations", "List separations"},
    {"selected_tables", "Listing tables"},
    {"selected_events", "Similars"},
    {"print_event_charts", "Print charts of the event"},
    {"analysis_database", "Analysis database"},
};
constexpr MenuEntry option_commands[] = {
    {"chart_options", "Display and print options"},
    {"zodiac_options", "Sidereal zodiacs"},
    {"aspect_set_options", "Aspect sets"},
    {"colour_options", "Colour sets"},
    {"star_options_config", "Star options"},
    {"star_database_options", "Star database"},
    {"star_groups", "Star group names"},
    {"Fixed_points_activate", "Fixed points"},
    {"places_options", "Places"},
    {"printer_setup_options", "Printer setup"},
};
constexpr MenuEntry database_commands[] = {
    {"open_db", "Open or create an event database"},
    {"chart_search_db", "Search the event table"},
    {"organize", "Move and copy events"},
    {"backup", "Backup"},
};
constexpr MenuEntry help_commands[] = {
    {"help_info", "User guide"},
    {"about", "About Celestark"},
};

} // namespace

ChartWindow::ChartWindow(Desktop& desktop) : desktop_(desktop) {
    setObjectName("Chart");
    setWindowTitle(chart_window_title);
    build_menus();
    auto* central = new QWidget(this);
    auto* layout = new QHBoxLayout(central);
    auto* left = new QVBoxLayout;
    left->addWidget(build_cards());
    left->addWidget(build_lists());
    layout->addLayout(left, 3);
    layout->addWidget(build_chart_buttons(), 2);
    setCentralWidget(central);
    store_caption_ = make_label(this, "db_table");
    statusBar()->addWidget(store_caption_);
    resize(1320, 820);
    refresh();
}

void ChartWindow::build_menus() {
    auto add = [this](QMenu* menu, const char* name, const QString& caption) {
        QAction* a = menu->addAction(caption);
        a->setObjectName(name);
        const std::string command = name;
        connect(a, &QAction::triggered, this, [this, command] { run(command); });
    };
    QMenu* program = menuBar()->addMenu("&Celestark");
    add(program, "exit_program", "Exit");
    QMenu* charts = menuBar()->addMenu("C&harts");
    QMenu* epoch = menuBar()->addMenu("&Epoch");
    for (const ChartCommand& c : chart_commands())
        if (c.events != CommandEvents::prenatal)
            add(c.events == CommandEvents::epoch ? epoch : charts, c.name, qt(c.caption));
    // The prenatal charts draw the birth with its epoch: a section of their own.
    epoch->addSection("Prenatal charts");
    for (const ChartCommand& c : chart_commands())
        if (c.events == CommandEvents::prenatal) add(epoch, c.name, qt(c.caption));
    charts->addSeparator();
    for (const MenuEntry& e : later_charts) add(charts, e.name, e.caption);
    epoch->addSeparator();
    add(epoch, "calculate_epoch", "Find the prenatal epoch");
    // The double charts, a section for each pair of events.
    QMenu* comparisons = menuBar()->addMenu("C&ompare");
    const std::pair<DoubleInner, DoubleOuter> sections[] = {
        {DoubleInner::active, DoubleOuter::compare},
        {DoubleInner::active, DoubleOuter::epoch},
        {DoubleInner::active, DoubleOuter::default_event},
        {DoubleInner::epoch, DoubleOuter::compare},
        {DoubleInner::epoch, DoubleOuter::compare_epoch},
        {DoubleInner::epoch, DoubleOuter::default_event}};
    const char* section_titles[] = {
        "Active event against the compared one",    "Birth against its epoch",
        "Active event against the default event",   "Epoch against the compared event",
        "Epoch against the compared event's epoch", "Epoch against the default event"};
    for (std::size_t k = 0; k < std::size(sections); ++k) {
        comparisons->addSection(section_titles[k]);
        for (const DoubleCommand& c : double_commands())
            if (c.inner == sections[k].first && c.outer == sections[k].second)
                add(comparisons, c.name, c.caption);
    }
    QMenu* predictive = menuBar()->addMenu("&Predictive");
    for (const MenuEntry& e : predictive_commands) add(predictive, e.name, e.caption);
    QMenu* tables = menuBar()->addMenu("&Tables");
    for (const MenuEntry& e : table_commands) add(tables, e.name, e.caption);
    QMenu* options = menuBar()->addMenu("O&ptions");
    for (const MenuEntry& e : option_commands) add(options, e.name, e.caption);
    QMenu* database = menuBar()->addMenu("&Database");
    for (const MenuEntry& e : database_commands) add(database, e.name, e.caption);
    QMenu* help = menuBar()->addMenu("&Help");
    for (const MenuEntry& e : help_commands) add(help, e.name, e.caption);
}

QWidget* ChartWindow::build_cards() {
    auto* panel = new QWidget(this);
    auto* grid = new QGridLayout(panel);
    auto* select = new QButtonGroup(this);
    auto* compare = new QButtonGroup(this);
    auto* similar = new QButtonGroup(this);
    static constexpr const char* line_names[9] = {
        "EVENT%1_NAME",  "EVENT%1_EVENT",       "EVENT%1_PLACE",
        "EVENT%1_TIME",  "EVENT%1_LAT_LONG",    "EVENT%1_MERIDIAN",
        "EVENT%1_EPOCH", "event%1_epoch_place", "event%1_epoch_place_lat_long"};
    for (int i = 0; i < 4; ++i) {
        Card& c = cards_[static_cast<std::size_t>(i)];
        const int slot = i + 1;
        c.box = make_group(panel, ("card_" + std::to_string(slot)).c_str(),
                           "Event " + QString::number(slot));
        c.box->setStyleSheet(card_style);
        auto* v = new QVBoxLayout(c.box);
        auto* top = new QHBoxLayout;
        c.select = make_radio(c.box, ("event" + std::to_string(slot)).c_str(), "Active");
        c.compare = make_radio(c.box, ("compare_" + std::to_string(slot)).c_str(), "Compare");
        c.similar = make_radio(c.box, ("similar_" + std::to_string(slot)).c_str(), "Similar");
        select->addButton(c.select);
        compare->addButton(c.compare);
        similar->addButton(c.similar);
        top->addWidget(c.select);
        top->addStretch(1);
        top->addWidget(c.compare);
        top->addWidget(c.similar);
        v->addLayout(top);
        for (int k = 0; k < 9; ++k) {
            c.lines[static_cast<std::size_t>(k)] =
                make_label(c.box, QString(line_names[k]).arg(slot).toStdString().c_str());
            c.lines[static_cast<std::size_t>(k)]->setMinimumWidth(260);
            v->addWidget(c.lines[static_cast<std::size_t>(k)]);
        }
        v->addStretch(1);
        connect(c.select, &QRadioButton::clicked, this, [this, slot] {
            select_event_card(desktop_.session(), slot);
            refresh();
        });
        connect(c.compare, &QRadioButton::clicked, this,
                [this, slot] { state_.compare_event = slot; });
        connect(c.similar, &QRadioButton::clicked, this,
                [this, slot] { state_.similar_event = slot; });
        grid->addWidget(c.box, i / 2, i % 2);
    }
    auto* buttons = new QHBoxLayout;
    const std::pair<const char*, const char*> commands[] = {
        {"chart_edit_active_event", "EDIT EVENT"},
        {"chart_search_db", "SEARCH TABLE"},
        {"save_active_event", "SAVE EVENT"},
        {"delete_active_event", "DELETE EVENT"},
        {"remove_epoch", "REMOVE EPOCH"}};
    for (const auto& [name, caption] : commands) {
        auto* b = make_button(panel, name, caption);
        const std::string command = name;
        connect(b, &QPushButton::clicked, this, [this, command] { run(command); });
        buttons->addWidget(b);
    }
    grid->addLayout(buttons, 2, 0, 1, 2);
    return panel;
}

QWidget* ChartWindow::build_lists() {
    auto* box = make_group(this, "chart_settings", "Chart settings");
    auto* form = new QGridLayout(box);
    static constexpr std::pair<const char*, const char*> captions[] = {
        {"selected_house_system", "House system"},
        {"Selected_polar_house_system", "Polar house system"},
        {"selected_zodiac", "Zodiac"},
        {"selected_aspect_charts", "Aspect set"},
        {"selected_display_colour_set", "Screen colours"},
        {"selected_print_colour_set", "Printer colours"},
        {"ephemeris_zodiac", "Ephemeris zodiac"},
        {"ephemeris_aspect_set", "Ephemeris aspect set"},
        {"listings_zodiac", "Listings zodiac"},
        {"listings_aspect_set", "Listings aspect set"}};
    int i = 0;
    for (const auto& [name, caption] : captions) {
        auto* list = make_list(box, name);
        lists_[name] = list;
        const std::string control = name;
        connect(list, &QComboBox::currentTextChanged, this, [this, control](const QString& t) {
            if (filling_) return;
            choose_option(desktop_.session(), control, t.toStdString(),
                          session_sink(desktop_.session()));
        });
        form->addWidget(new QLabel(caption, box), i / 2, (i % 2) * 2);
        form->addWidget(list, i / 2, (i % 2) * 2 + 1);
        ++i;
    }
    return box;
}

QWidget* ChartWindow::build_chart_buttons() {
    auto* box = make_group(this, "chart_commands", "Charts of the active event");
    auto* grid = new QGridLayout(box);
    static constexpr std::pair<const char*, const char*> buttons[] = {
        {"chart_geocentric", "GEOCENTRIC"},
        {"chart_heliocentric", "HELIOCENTRIC"},
        {"chart_lemniscate", "LEMNICENTRIC"},
        {"chart_hermetic", "TYCHONIC"},
        {"chart_geo_helio", "GEO/HELIO"},
        {"Display_triple", "GEO/LEMNI/HELIO"},
        {"display_helio_triple", "HELIO PLANETS, APSIDES, NODES"},
        {"chart_all_planets", "ALL WORLD VIEWS"},
        {"au_geo", "GEOCENTRIC DATA"},
        {"au_hel", "HELIOCENTRIC DATA"},
        {"au_lem", "LEMNICENTRIC DATA"},
        {"geo_star_chart", "GEOCENTRIC STARS"},
        {"helio_star_chart", "HELIOCENTRIC STARS"},
        {"lemniscate_star_chart", "LEMNICENTRIC STARS"},
        {"sid_trop_star_chart", "TROPICAL/SIDEREAL STARS"},
        {"star_conjunctions", "STARS ON THE CHART"},
        {"stars_horizon", "STARS ON THE ANGLES"},
        {"chart_options", "DISPLAY AND PRINT OPTIONS"}};
    int i = 0;
    for (const auto& [name, caption] : buttons) {
        auto* b = make_button(box, name, caption);
        b->setMinimumHeight(34);
        const std::string command = name;
        connect(b, &QPushButton::clicked, this, [this, command] { run(command); });
        grid->addWidget(b, i / 2, i % 2);
        ++i;
    }
    grid->setRowStretch(i / 2 + 1, 1);
    return box;
}

void ChartWindow::run(const std::string& command) {
    Session& s = desktop_.session();
    MessageSink& sink = session_sink(s);
    if (command == "exit_program") {
        desktop_.quit();
    } else if (command == "remove_epoch") {
        remove_epoch(s, s.event_slots.active_event);
        refresh();
    } else if (command == "delete_active_event") {
        if (delete_active_card(s, sink)) refresh();
    } else if (command == "save_active_event") {
        save_active_event(s, sink);
    } else {
        desktop_.run(command);
    }
}

void ChartWindow::enable_known_commands() {
    static const std::set<std::string> own = {"exit_program", "remove_epoch", "delete_active_event",
                                              "save_active_event"};
    for (QAction* a : findChildren<QAction*>()) {
        const std::string name = a->objectName().toStdString();
        if (!name.empty()) a->setEnabled(own.count(name) || desktop_.knows(name));
    }
    for (QPushButton* b : findChildren<QPushButton*>()) {
        const std::string name = b->objectName().toStdString();
        if (!name.empty()) b->setEnabled(own.count(name) || desktop_.knows(name));
    }
}

void ChartWindow::fill_lists() {
    filling_ = true;
    for (const OptionList& list : chart_option_lists(desktop_.session())) {
        QComboBox* box = lists_[list.control];
        if (!box) continue;
        box->clear();
        for (const std::string& e : list.entries) box->addItem(qt(e));
        box->setCurrentText(qt(list.selected));
    }
    filling_ = false;
}

void ChartWindow::refresh() {
    Session& s = desktop_.session();
    const int active = s.event_slots.active_event;
    for (int i = 0; i < 4; ++i) {
        Card& c = cards_[static_cast<std::size_t>(i)];
        const EventCard card = event_card(s, i + 1);
        const std::string texts[9] = {card.name,  card.event,       card.place,
                                      card.time,  card.lat_long,    card.meridian,
                                      card.epoch, card.epoch_place, card.epoch_lat_long};
        for (int k = 0; k < 9; ++k)
            c.lines[static_cast<std::size_t>(k)]->setText(k == 0 && card.empty ? QString("(empty)")
                                                                               : qt(texts[k]));
        const bool is_active = i + 1 == active;
        c.select->setChecked(is_active);
        c.compare->setChecked(i + 1 == state_.compare_event);
        c.similar->setChecked(i + 1 == state_.similar_event);
        for (QLabel* l : c.lines) l->setStyleSheet(is_active ? active_card_style : "");
    }
    store_caption_->setText("Event database: " + qt(event_store_caption(s)));
    fill_lists();
}

void ChartWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        read_chart_options(desktop_.session());
        refresh();
    }
    QMainWindow::changeEvent(event);
}

void ChartWindow::closeEvent(QCloseEvent* event) {
    // Closing the main window is the program's exit.
    if (!desktop_.quitting()) {
        event->ignore();
        desktop_.quit();
        return;
    }
    event->accept();
}

} // namespace celestark::screens
