// INPUT_CHART, the event input window.
#include "screens/widgets/input_chart.h"

#include "screens/widgets/chart_window.h"
#include "screens/widgets/desktop.h"
#include "session/session.h"
#include "session/zones.h"

#include <QComboBox>
#include <QDialog>
#include <QEvent>
#include <QFocusEvent>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <tuple>

namespace celestark::screens {

namespace {

// The captions over the short fields are set in a fixed-pitch font, and the fields are as wide as
// the words above them, so that each word of "Degs           Mins Secs" stands over its field.
QFont caption_font() {
    QFont f = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    f.setPointSizeF(QFont().pointSizeF());
    return f;
}

int pitch() {
    return QFontMetrics(caption_font()).horizontalAdvance(QChar('M'));
}

// Room between the short fields of one row.
constexpr int gap = 4;

// The width of a field under `characters` characters of its caption.
int under(int characters) {
    return characters * pitch() - gap;
}

// A form of a group box: captions in a first column of one width in every group, so that the
// fields of all groups line up.
QGridLayout* form_grid(QWidget* box) {
    auto* grid = new QGridLayout(box);
    int widest = 0;
    for (const char* caption : {"Daylight saving", "Lunar months", "S.T. meridian", "First name"})
        widest = std::max(widest, box->fontMetrics().horizontalAdvance(caption));
    grid->setColumnMinimumWidth(0, widest + 8);
    grid->setColumnStretch(1, 1);
    grid->setVerticalSpacing(6);
    return grid;
}

QHBoxLayout* row_of(std::initializer_list<QWidget*> widgets) {
    auto* row = new QHBoxLayout;
    row->setSpacing(gap);
    row->setContentsMargins(0, 0, 0, 0);
    for (QWidget* w : widgets) row->addWidget(w);
    row->addStretch(1);
    return row;
}

QString help_version() {
    return "The version tells apart several records of one event, for instance two birth times "
           "of one person given by different sources. Enter a letter or a number (A, B, 2).\n\n"
           "Surname, first name, event and version together are the key of a stored event: two "
           "records of the table differ in at least one of the four.";
}

QString help_groups() {
    return "The group is a name of your own that gathers events, such as Family, Clients or "
           "Composers. Keep one spelling for all the events of a group.\n\n"
           "It is an optional text; a blank group is stored as a single space.";
}

QString help_lmz() {
    return "The time code says which clock the time of the event was read from.\n\n"
           "L - Local mean time: the time of the place itself, from its longitude. Use it for "
           "events before standard time was kept: a new event dated before 1848 takes it at "
           "once.\n\n"
           "Z - Zone time: the time of a standard time zone. Enter the zone's trigraph (EST, "
           "CET, JST ...); its meridian and daylight saving are filled in from the zone table.\n\n"
           "M - Meridian time: the time of a standard meridian that you give yourself, in "
           "degrees and minutes east or west, with the daylight saving in whole hours.";
}

QString help_sources() {
    return "The source says where the data of the event come from: a birth certificate, a "
           "biography, a newspaper, the person's own word. The reference holds the page, the "
           "record number or the address that leads back to it.\n\n"
           "Source, group, reference and comments are optional texts.";
}

} // namespace

InputChart::InputChart(Desktop& desktop)
    : CelestarkWindow(desktop, "INPUT_CHART", "EVENT DETAILS WINDOW") {
    new_event_defaults(input_);
    loading_ = true; // the lists' first entries are not the user's typing
    auto* layout = new QVBoxLayout(this);
    auto* columns = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    left->addWidget(build_event_group());
    left->addWidget(build_place_group());
    left->addWidget(build_date_group());
    left->addStretch(1);
    auto* right = new QVBoxLayout;
    right->addWidget(build_zone_group());
    right->addWidget(build_notes_group());
    right->addWidget(build_epoch_group());
    right->addStretch(1);
    columns->addLayout(left, 1);
    columns->addLayout(right, 1);
    layout->addLayout(columns);
    layout->addWidget(build_commands());
    auto* foot = new QHBoxLayout;
    status_ = make_label(this, "input_status");
    status_->setMinimumHeight(status_->fontMetrics().height() + 4);
    state_ = make_label(this, "input_state");
    foot->addWidget(status_, 1);
    foot->addWidget(state_);
    layout->addLayout(foot);

    help_ = new QDialog(this);
    help_->setObjectName("input_help");
    auto* help_layout = new QVBoxLayout(help_);
    help_text_ = new QPlainTextEdit(help_);
    help_text_->setObjectName("input_help_text");
    help_text_->setReadOnly(true);
    help_layout->addWidget(help_text_);
    auto* help_ok = make_button(help_, "input_help_ok", "OK");
    connect(help_ok, &QPushButton::clicked, help_, &QDialog::hide);
    help_layout->addWidget(help_ok, 0, Qt::AlignRight);

    setMinimumWidth(860);
    loading_ = false;
    apply_options();
    show_input();
}

QLineEdit* InputChart::field(QWidget* parent, const char* name, int width) {
    QLineEdit* f = make_field(parent, name);
    if (width > 0) f->setFixedWidth(width);
    const std::string n = name;
    fields_[n] = f;
    const InputField* described = find_input_field(n);
    if (described && described->read_only) {
        f->setReadOnly(true);
        f->setFocusPolicy(Qt::NoFocus);
        return f;
    }
    connect(f, &QLineEdit::textChanged, this, [this, n](const QString& t) { field_edited(n, t); });
    connect(f, &QLineEdit::editingFinished, this, [this, n] { field_left(n); });
    f->installEventFilter(this);
    return f;
}

QComboBox* InputChart::list(QWidget* parent, const char* name,
                            const std::vector<std::string>& entries) {
    QComboBox* c = make_list(parent, name, true);
    c->setInsertPolicy(QComboBox::NoInsert);
    c->setMaxVisibleItems(16);
    for (const std::string& e : entries) c->addItem(qt(e));
    const std::string n = name;
    lists_[n] = c;
    // The edit line carries the list's name: it is the field the user types in.
    QLineEdit* line = c->lineEdit();
    line->setObjectName(name);
    fields_[n] = line;
    connect(line, &QLineEdit::textChanged, this,
            [this, n](const QString& t) { field_edited(n, t); });
    connect(line, &QLineEdit::editingFinished, this, [this, n] { field_left(n); });
    connect(c, &QComboBox::activated, this, [this, n, c] {
        field_edited(n, c->currentText());
        field_left(n);
    });
    line->installEventFilter(this);
    return c;
}

QPushButton* InputChart::button(QWidget* parent, const char* name, const QString& caption,
                                void (InputChart::*action)()) {
    QPushButton* b = make_button(parent, name, caption);
    if (action) connect(b, &QPushButton::clicked, this, action);
    return b;
}

QLabel* InputChart::caption(QWidget* parent, const char* name, const QString& text) {
    QLabel* l = make_label(parent, name, text);
    l->setFont(caption_font());
    captions_[name] = l;
    return l;
}

QWidget* InputChart::build_event_group() {
    auto* box = make_group(this, "event_group", "Event");
    auto* grid = form_grid(box);
    list(box, "inp_event", event_kinds());
    list(box, "inp_title", person_titles());
    auto* version_help = button(box, "des_version", "?", nullptr);
    version_help->setToolTip("About the version");
    version_help->setFixedWidth(28);
    connect(version_help, &QPushButton::clicked, this,
            [this] { show_help("VERSION", help_version(), false); });
    grid->addWidget(new QLabel("Event", box), 0, 0);
    grid->addWidget(lists_["inp_event"], 0, 1);
    grid->addWidget(new QLabel("Version", box), 0, 2);
    grid->addLayout(row_of({field(box, "inp_version", under(6)), version_help}), 0, 3);
    grid->addWidget(new QLabel("Title", box), 1, 0);
    grid->addWidget(lists_["inp_title"], 1, 1);
    grid->addWidget(new QLabel("Surname", box), 2, 0);
    grid->addWidget(field(box, "inp_surname"), 2, 1, 1, 3);
    grid->addWidget(new QLabel("First name", box), 3, 0);
    grid->addWidget(field(box, "inp_firstname"), 3, 1, 1, 3);
    return box;
}

QWidget* InputChart::build_place_group() {
    auto* box = make_group(this, "place_group", "Place");
    auto* grid = form_grid(box);
    grid->addWidget(new QLabel("Place", box), 0, 0);
    auto* place = button(box, "place", "ATLAS...", nullptr);
    place->setEnabled(false);
    place->setToolTip("The place lookup in the atlas comes with a later version of Celestark: "
                      "type the latitude and longitude for now");
    auto* place_row = new QHBoxLayout;
    place_row->addWidget(field(box, "inp_place"), 1);
    place_row->addWidget(place);
    grid->addLayout(place_row, 0, 1);
    grid->addWidget(caption(box, "label_degrees"), 1, 1);
    grid->addWidget(new QLabel("Latitude", box), 2, 0);
    grid->addLayout(
        row_of({field(box, "inp_lat_deg", under(10)), field(box, "inp_lat_ns", under(5)),
                field(box, "inp_lat_min", under(5)), field(box, "inp_lat_sec", under(5))}),
        2, 1);
    grid->addWidget(new QLabel("Longitude", box), 3, 0);
    grid->addLayout(
        row_of({field(box, "inp_long_deg", under(10)), field(box, "inp_long_ew", under(5)),
                field(box, "inp_long_min", under(5)), field(box, "inp_long_sec", under(5))}),
        3, 1);
    fields_["inp_lat_ns"]->setToolTip("N or S");
    fields_["inp_long_ew"]->setToolTip("E or W");
    return box;
}

// A day, a month and a year in a row of their own, whose order the date format sets.
QWidget* InputChart::date_fields(QWidget* box, const char* day, const char* month, const char* year,
                                 QGridLayout*& row) {
    auto* date = new QWidget(box);
    row = new QGridLayout(date);
    row->setContentsMargins(0, 0, 0, 0);
    row->setHorizontalSpacing(gap);
    field(date, day, under(5));
    field(date, month, under(6));
    field(date, year, under(7));
    return date;
}

QWidget* InputChart::build_date_group() {
    auto* box = make_group(this, "date_group", "Date and time");
    auto* grid = form_grid(box);
    grid->addWidget(caption(box, "label_date"), 0, 1);
    grid->addWidget(new QLabel("Date", box), 1, 0);
    // The day and month change places by the date format: see apply_options.
    grid->addWidget(date_fields(box, "INP_DAY", "INP_MONTH", "INP_YEAR", date_grid_), 1, 1);
    grid->addWidget(new QLabel("Calendar", box), 2, 0);
    auto* gj = field(box, "INP_GJ", under(5));
    gj->setToolTip("G Gregorian, J Julian");
    auto* gj_hint = new QLabel("G Gregorian or J Julian", box);
    grid->addLayout(row_of({gj, gj_hint}), 2, 1);
    grid->addWidget(caption(box, "label_time"), 3, 1);
    grid->addWidget(new QLabel("Time", box), 4, 0);
    grid->addLayout(row_of({field(box, "inp_hours", under(5)), field(box, "inp_mins", under(5)),
                            field(box, "inp_secs", under(5)), field(box, "inp_am_pm", under(6))}),
                    4, 1);
    fields_["inp_am_pm"]->setToolTip("am or pm");
    return box;
}

QWidget* InputChart::build_zone_group() {
    auto* box = make_group(this, "zone_group", "Time zone");
    auto* grid = form_grid(box);
    grid->addWidget(new QLabel("Time code", box), 0, 0);
    auto* lz = field(box, "inp_lz", under(5));
    lz->setToolTip("L local time, Z zone time, M meridian time");
    auto* lmz = button(box, "LMZ", "?", nullptr);
    lmz->setFixedWidth(28);
    lmz->setToolTip("About the time codes L, Z and M");
    connect(lmz, &QPushButton::clicked, this,
            [this] { show_help("L, Z OR M", help_lmz(), false); });
    grid->addLayout(row_of({lz, new QLabel("L local, Z zone, M meridian", box), lmz}), 0, 1);

    auto* zone_label = make_label(box, "label_time_zone", "Time zone");
    grid->addWidget(zone_label, 1, 0);
    QComboBox* zone = list(box, "inp_time_zone", time_zone_entries());
    zone->setFixedWidth(under(9) + 24);
    auto* zones_help = button(box, "time_zones", "?", nullptr);
    zones_help->setFixedWidth(28);
    zones_help->setToolTip("The table of time zones");
    connect(zones_help, &QPushButton::clicked, this,
            [this] { show_help("TIME ZONES", qt(time_zones_text()), true); });
    grid->addWidget(mode_row({zone, zones_help}), 1, 1);

    auto* med_label = make_label(box, "label_med", "S.T. meridian");
    grid->addWidget(med_label, 2, 0);
    grid->addWidget(
        mode_row({field(box, "inp_med_deg", under(10)), field(box, "inp_med_ew", under(5)),
                  field(box, "inp_med_min", under(5))}),
        2, 1);
    fields_["inp_med_deg"]->setToolTip("Degrees of the standard time meridian");
    fields_["inp_med_ew"]->setToolTip("E or W");
    fields_["inp_med_min"]->setToolTip("Minutes of the standard time meridian");
    auto* dst_label = make_label(box, "label_dst", "Daylight saving");
    grid->addWidget(dst_label, 3, 0);
    auto* dst = field(box, "inp_dst", under(5));
    dst->setToolTip("Hours of daylight saving, normally 1 or 2");
    grid->addWidget(mode_row({dst}), 3, 1);

    mode_controls_ = {{"inp_med_deg", fields_["inp_med_deg"]},
                      {"inp_med_min", fields_["inp_med_min"]},
                      {"inp_med_ew", fields_["inp_med_ew"]},
                      {"inp_dst", dst},
                      {"label_med", med_label},
                      {"label_dst", dst_label},
                      {"label_time_zone", zone_label},
                      {"inp_time_zone", zone},
                      {"time_zones", zones_help}};
    return box;
}

QWidget* InputChart::build_notes_group() {
    auto* box = make_group(this, "notes_group", "Notes");
    auto* grid = form_grid(box);
    auto* sources = button(box, "sources", "?", nullptr);
    sources->setFixedWidth(28);
    sources->setToolTip("About sources and references");
    connect(sources, &QPushButton::clicked, this,
            [this] { show_help("SOURCES", help_sources(), false); });
    auto* groups = button(box, "groups", "?", nullptr);
    groups->setFixedWidth(28);
    groups->setToolTip("About groups");
    connect(groups, &QPushButton::clicked, this,
            [this] { show_help("GROUPS", help_groups(), false); });
    const std::pair<const char*, const char*> rows[] = {{"Source", "inp_source"},
                                                        {"Group", "inp_group"},
                                                        {"Reference", "inp_reference"},
                                                        {"Comments", "inp_comments"}};
    int r = 0;
    for (const auto& [text, name] : rows) {
        grid->addWidget(new QLabel(text, box), r, 0);
        grid->addWidget(field(box, name), r, 1);
        ++r;
    }
    grid->addWidget(sources, 0, 2);
    grid->addWidget(groups, 1, 2);
    return box;
}

QWidget* InputChart::build_epoch_group() {
    auto* box = make_group(this, "epoch", "Prenatal epoch");
    epoch_ = box;
    box->setToolTip("The stored prenatal epoch of the event, shown only");
    auto* grid = form_grid(box);
    grid->addWidget(new QLabel("Place", box), 0, 0);
    grid->addWidget(field(box, "inp_epoch_place"), 0, 1);
    grid->addWidget(caption(box, "label_epoch_degrees"), 1, 1);
    grid->addWidget(new QLabel("Latitude", box), 2, 0);
    grid->addLayout(
        row_of({field(box, "inp_epoch_lat_deg", under(10)),
                field(box, "inp_epoch_lat_ns", under(5)), field(box, "inp_epoch_lat_min", under(5)),
                field(box, "inp_epoch_lat_sec", under(5))}),
        2, 1);
    grid->addWidget(new QLabel("Longitude", box), 3, 0);
    grid->addLayout(row_of({field(box, "inp_epoch_long_deg", under(10)),
                            field(box, "inp_epoch_long_ew", under(5)),
                            field(box, "inp_epoch_long_min", under(5)),
                            field(box, "inp_epoch_long_sec", under(5))}),
                    3, 1);
    grid->addWidget(caption(box, "label_epoch_date"), 4, 1);
    grid->addWidget(new QLabel("Date (GMT)", box), 5, 0);
    grid->addWidget(
        date_fields(box, "inp_epoch_day", "inp_epoch_month", "inp_epoch_year", epoch_grid_), 5, 1);
    grid->addWidget(new QLabel("Time (GMT)", box), 6, 0);
    grid->addLayout(
        row_of({field(box, "inp_epoch_hours", under(5)), field(box, "inp_epoch_mins", under(5)),
                field(box, "inp_epoch_secs", under(5))}),
        6, 1);
    grid->addWidget(new QLabel("Lunar months", box), 7, 0);
    grid->addLayout(row_of({field(box, "inp_epoch_months", under(5)), new QLabel("Kind", box),
                            field(box, "inp_epoch_moon_type", under(5)), new QLabel("Moon on", box),
                            field(box, "inp_moon_on_asc", under(5))}),
                    7, 1);
    fields_["inp_epoch_moon_type"]->setToolTip("T sidereal, F synodic lunar months");
    fields_["inp_moon_on_asc"]->setToolTip("Asc or Des");
    return box;
}

QWidget* InputChart::build_commands() {
    auto* panel = new QWidget(this);
    auto* v = new QVBoxLayout(panel);
    v->setContentsMargins(0, 0, 0, 0);
    auto* records = new QHBoxLayout;
    records->addWidget(button(panel, "save_event", "SAVE", &InputChart::save_command));
    records->addWidget(button(panel, "add_event", "ADD AS NEW EVENT", &InputChart::add_command));
    records->addWidget(button(panel, "delete_event", "DELETE", &InputChart::delete_command));
    records->addSpacing(16);
    records->addWidget(
        button(panel, "previous_event", "<< PREVIOUS", &InputChart::previous_command));
    records->addWidget(button(panel, "next_event", "NEXT >>", &InputChart::next_command));
    search_ = button(panel, "search_record", "SEARCH TABLE", &InputChart::search_command);
    records->addWidget(search_);
    v->addLayout(records);
    auto* cards = new QHBoxLayout;
    for (int n = 1; n <= 4; ++n) {
        const std::string name = "store" + std::to_string(n);
        auto* b = make_button(panel, name.c_str(), "TO EVENT " + QString::number(n));
        b->setToolTip("Copy this event to Event " + QString::number(n) +
                      " of the main window and go back to it");
        connect(b, &QPushButton::clicked, this, [this, n] { store_command(n); });
        cards->addWidget(b);
    }
    cards->addSpacing(16);
    cards->addWidget(button(panel, "inp_exit", "EXIT", &InputChart::exit_command));
    v->addLayout(cards);
    for (QPushButton* b : panel->findChildren<QPushButton*>()) b->setMinimumHeight(30);
    return panel;
}

void InputChart::apply_options() {
    options_ = read_input_options(session());
    captions_["label_degrees"]->setText(qt(degree_caption(options_)));
    captions_["label_epoch_degrees"]->setText(qt(degree_caption(options_)));
    captions_["label_date"]->setText(qt(date_caption(options_)));
    captions_["label_epoch_date"]->setText(qt(date_caption(options_)));
    QString time = "Hrs  Mins ";
    if (options_.time_input_secs) time += "Secs ";
    if (options_.twelve_hour) time += "am/pm";
    captions_["label_time"]->setText(time);

    fields_["inp_am_pm"]->setVisible(options_.twelve_hour);
    fields_["inp_secs"]->setVisible(options_.time_input_secs);
    for (const char* name :
         {"inp_lat_sec", "inp_long_sec", "inp_epoch_lat_sec", "inp_epoch_long_sec"})
        fields_[name]->setVisible(options_.lat_long_secs);

    // The order of the day and month, in the grid and in the order of entry.
    const int day_at = options_.day_first ? 0 : 1;
    for (auto [grid, day, month, year] :
         {std::tuple{date_grid_, "INP_DAY", "INP_MONTH", "INP_YEAR"},
          std::tuple{epoch_grid_, "inp_epoch_day", "inp_epoch_month", "inp_epoch_year"}}) {
        grid->addWidget(fields_[day], 0, day_at);
        grid->addWidget(fields_[month], 0, 1 - day_at);
        grid->addWidget(fields_[year], 0, 2);
        grid->setColumnStretch(3, 1);
    }
    const char* first = options_.day_first ? "INP_DAY" : "INP_MONTH";
    const char* second = options_.day_first ? "INP_MONTH" : "INP_DAY";
    const char* order[] = {"inp_event",     "inp_version",  "inp_title",     "inp_surname",
                           "inp_firstname", "inp_place",    "inp_lat_deg",   "inp_lat_ns",
                           "inp_lat_min",   "inp_lat_sec",  "inp_long_deg",  "inp_long_ew",
                           "inp_long_min",  "inp_long_sec", first,           second,
                           "INP_YEAR",      "INP_GJ",       "inp_hours",     "inp_mins",
                           "inp_secs",      "inp_am_pm",    "inp_lz",        "inp_time_zone",
                           "inp_med_deg",   "inp_med_ew",   "inp_med_min",   "inp_dst",
                           "inp_source",    "inp_group",    "inp_reference", "inp_comments"};
    QWidget* previous = nullptr;
    for (const char* name : order) {
        QWidget* w = lists_.count(name) ? static_cast<QWidget*>(lists_[name]) : fields_[name];
        if (previous) setTabOrder(previous, w);
        previous = w;
    }
}

void InputChart::show_input() {
    loading_ = true;
    for (const InputField& f : input_fields()) {
        const QString text = qt(field_text(input_, f));
        if (auto it = lists_.find(f.name); it != lists_.end()) {
            if (it->second->currentText() != text) it->second->setEditText(text);
        } else if (QLineEdit* e = fields_[f.name]; e->text() != text) {
            e->setText(text);
            e->setCursorPosition(0);
        }
    }
    loading_ = false;
    // The epoch frame is greyed while the event has no stored epoch.
    epoch_->setEnabled(input_.event_epoch_exists == "Y");
    epoch_->setTitle(input_.event_epoch_exists == "Y" ? "Prenatal epoch"
                                                      : "Prenatal epoch (none stored)");
    show_mode();
    QString state = input_.event_bookmark.empty() ? "New event, not stored yet" : "Stored event";
    if (input_.event_dirty) state += ", changed";
    state_->setText(state);
}

QWidget* InputChart::mode_row(std::initializer_list<QWidget*> widgets) {
    auto* row = new QWidget(this);
    row->setLayout(row_of(widgets));
    mode_rows_.push_back(row);
    return row;
}

void InputChart::show_mode() {
    const TimeMode mode = time_mode(input_);
    for (const auto& [name, control] : mode_controls_)
        control->setVisible(shown_in_mode(name, mode));
    // A row of hidden controls takes no room.
    for (QWidget* row : mode_rows_) {
        bool any = false;
        for (const auto& [name, control] : mode_controls_)
            any = any || (row->isAncestorOf(control) && !control->isHidden());
        row->setVisible(any);
    }
}

void InputChart::set_status(const QString& text) {
    status_->setText(text);
}

void InputChart::field_edited(const std::string& name, const QString& text) {
    if (loading_) return;
    if (const InputField* f = find_input_field(name); f && !f->read_only) {
        field_text(input_, *f) = text.toStdString();
        edited_.insert(name);
        if (!input_.event_dirty) {
            input_.event_dirty = true;
            session().event_dirty = true;
            show_input();
        }
    }
}

void InputChart::field_left(const std::string& name) {
    if (loading_ || checking_) return;
    if (recheck_ == name) recheck_.clear();
    // A field passed over without a change is not checked again, unless its check failed.
    if (!edited_.count(name) && failed_ != name) return;
    edited_.erase(name);
    checking_ = true;
    const LeaveResult result = leave_field(input_, name, options_, sink());
    checking_ = false;
    show_input();
    if (!result.ok) {
        // The text stays as typed and the cursor goes back into the field.
        failed_ = name;
        focus_later(name);
        return;
    }
    if (failed_ == name) failed_.clear();
    if (!result.focus.empty()) focus_later(result.focus);
}

void InputChart::focus_later(const std::string& name) {
    QLineEdit* f = fields_.count(name) ? fields_[name] : nullptr;
    if (!f) return;
    QTimer::singleShot(0, f, [f] {
        if (!f->isVisibleTo(f->window())) return;
        f->setFocus(Qt::OtherFocusReason);
        f->selectAll();
    });
}

bool InputChart::eventFilter(QObject* watched, QEvent* event) {
    // A field left without a change after its check failed is checked again: the cursor stays in
    // it until its text passes. Leaving for another window is not leaving the field.
    if (event->type() == QEvent::FocusOut && !failed_.empty() && !checking_) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        auto it = fields_.find(failed_);
        if (it != fields_.end() && it->second == watched && reason != Qt::ActiveWindowFocusReason &&
            reason != Qt::PopupFocusReason) {
            recheck_ = failed_;
            const std::string name = failed_;
            QTimer::singleShot(0, this, [this, name] {
                if (recheck_ == name) field_left(name);
            });
        }
    }
    return CelestarkWindow::eventFilter(watched, event);
}

void InputChart::open_active_event() {
    if (!isVisible() || !input_.event_dirty) {
        apply_options();
        open_on_active_slot(session(), input_, options_);
        show_fresh();
    }
    present();
}

void InputChart::show_fresh() {
    failed_.clear();
    edited_.clear();
    set_status({});
    show_input();
}

void InputChart::present() {
    search_->setEnabled(desktop().knows("chart_search_db"));
    show();
    raise();
    activateWindow();
}

void InputChart::open_event(const EventInput& input) {
    if (isVisible() && !check_event_changed(session(), input_, false, sink())) {
        show_input();
        raise();
        return;
    }
    apply_options();
    input_ = input;
    fit_clock(input_, options_.twelve_hour);
    input_.event_dirty = false;
    session().event_dirty = false;
    show_fresh();
    present();
}

void InputChart::save_command() {
    if (save_input_event(session(), input_, sink())) set_status("The event has been saved");
    show_input();
}

void InputChart::add_command() {
    if (add_input_event(session(), input_, sink())) {
        set_status("The event has been added to the table");
        desktop().refresh_chart_window();
    }
    show_input();
}

void InputChart::delete_command() {
    if (delete_input_event(session(), input_, options_, sink())) {
        set_status("The event has been deleted");
        desktop().refresh_chart_window();
    }
    show_input();
}

void InputChart::next_command() {
    step(true);
}

void InputChart::previous_command() {
    step(false);
}

void InputChart::step(bool forward) {
    switch (step_input_event(session(), input_, forward, options_, sink())) {
    case StepResult::moved:
        failed_.clear();
        edited_.clear();
        set_status({});
        break;
    case StepResult::at_end:
        set_status(forward ? "This is the last event of the table"
                           : "This is the first event of the table");
        break;
    case StepResult::no_table:
        set_status("No event table is open");
        break;
    case StepResult::refused:
        break;
    }
    show_input();
}

void InputChart::search_command() {
    desktop().run("chart_search_db");
}

void InputChart::store_command(int slot) {
    if (!store_input_in_slot(session(), input_, slot, sink())) {
        show_input();
        return;
    }
    back_to_chart();
}

void InputChart::exit_command() {
    if (!exit_input(session(), input_, sink())) {
        show_input();
        focus_later("inp_event");
        return;
    }
    back_to_chart();
}

void InputChart::back_to_chart() {
    hide();
    help_->hide();
    desktop().refresh_chart_window();
    ChartWindow& chart = desktop().chart_window();
    chart.show();
    chart.raise();
    chart.activateWindow();
}

void InputChart::show_help(const QString& title, const QString& text, bool fixed_pitch) {
    help_->setWindowTitle(title);
    QString plain = text;
    plain.replace("\r\n", "\n");
    help_text_->setPlainText(plain);
    help_text_->setFont(fixed_pitch ? caption_font() : QFont());
    help_text_->setLineWrapMode(fixed_pitch ? QPlainTextEdit::NoWrap : QPlainTextEdit::WidgetWidth);
    help_->resize(fixed_pitch ? 640 : 480, fixed_pitch ? 560 : 300);
    help_->show();
    help_->raise();
}

void add_event_input_windows(Desktop& desktop) {
    // The window is made when it is first asked for, and lives as long as the desktop.
    auto window = std::make_shared<std::unique_ptr<InputChart>>();
    auto get = [&desktop, window]() -> InputChart& {
        if (!*window) *window = std::make_unique<InputChart>(desktop);
        return **window;
    };
    desktop.add_command("chart_edit_active_event", [get] { get().open_active_event(); });
    desktop.set_event_editor([get](const EventInput& input) { get().open_event(input); });
}

} // namespace celestark::screens
