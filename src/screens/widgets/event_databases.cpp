// The event database and event search windows.
#include "screens/widgets/event_databases.h"

#include "screens/widgets/database_chooser.h"
#include "screens/widgets/desktop.h"
#include "session/session.h"
#include "session/text.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

namespace celestark::screens {

namespace {

// Selects the line of a list that reads `text` (case aside), or none.
void select_line(QListWidget* list, const std::string& text) {
    list->setCurrentRow(-1);
    if (text.empty()) return;
    for (int i = 0; i < list->count(); ++i)
        if (to_upper(list->item(i)->text().toStdString()) == to_upper(text)) {
            list->setCurrentRow(i);
            return;
        }
}

// The database and table the session has open, as one text.
std::string table_in_use(const Session& s) {
    return s.event_store.event_db_path + s.event_store.event_db_name + "\n" +
           s.event_store.event_table_name;
}

} // namespace

// ---- OPEN AND CREATE EVENT DATABASES AND TABLES -------------------------------------------------

EventDatabaseWindow::EventDatabaseWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "open_db", "OPEN AND CREATE EVENT DATABASES AND TABLES"),
      chooser_(choose_folder_dialog) {
    build();
}

void EventDatabaseWindow::build() {
    auto* layout = new QVBoxLayout(this);
    auto* columns = new QHBoxLayout;
    layout->addLayout(columns, 1);

    // The databases of a folder.
    const FolderFrame folder =
        make_folder_frame(this,
                          {"databases", "db_dir", "db_drive", "db_files",
                           "Databases of the folder (click one to open it):"},
                          180);
    QGroupBox* databases = folder.group;
    QVBoxLayout* dbl = folder.layout;
    db_dir_ = folder.folder;
    db_dir_->setToolTip("Type a folder and press Enter, or choose one with the button");
    db_files_ = folder.files;
    auto* chosen_db = new QHBoxLayout;
    chosen_db->addWidget(new QLabel("Selected database:", databases));
    sel_file_ = make_field(databases, "sel_file");
    sel_file_->setReadOnly(true);
    chosen_db->addWidget(sel_file_, 1);
    dbl->addLayout(chosen_db);
    auto* db_buttons = new QHBoxLayout;
    auto* create_db = make_button(databases, "create_db", "CREATE NEW DATABASE");
    auto* del_database = make_button(databases, "del_database", "DELETE DATABASE");
    db_buttons->addWidget(create_db);
    db_buttons->addWidget(del_database);
    dbl->addLayout(db_buttons);
    database_frame_ =
        make_group(databases, "create_db_frame", "ENTER THE NAME FOR THE NEW DATABASE");
    auto* dbf = new QHBoxLayout(database_frame_);
    new_database_name_ = make_field(database_frame_, "new_database_name");
    auto* create_new_database = make_button(database_frame_, "create_new_database", "CREATE");
    auto* cancel_new_database = make_button(database_frame_, "cancel_new_database", "CANCEL");
    dbf->addWidget(new_database_name_, 1);
    dbf->addWidget(new QLabel(qt(event_file_suffix), database_frame_));
    dbf->addWidget(create_new_database);
    dbf->addWidget(cancel_new_database);
    dbl->addWidget(database_frame_);
    columns->addWidget(databases, 3);

    // The tables of the chosen database.
    const TableFrame table =
        make_table_frame(this,
                         {"tables", "table_list", "sel_table",
                          "Tables of the database (double click one to select it):"},
                         180);
    QGroupBox* tables = table.group;
    QVBoxLayout* tl = table.layout;
    table_list_ = table.tables;
    sel_table_ = table.selected;
    auto* table_buttons = new QHBoxLayout;
    auto* create_table = make_button(tables, "create_table", "CREATE NEW TABLE");
    auto* del_table = make_button(tables, "del_table", "DELETE TABLE");
    table_buttons->addWidget(create_table);
    table_buttons->addWidget(del_table);
    tl->addLayout(table_buttons);
    table_frame_ = make_group(tables, "create_table_frame", "ENTER THE NAME FOR THE NEW TABLE");
    auto* tf = new QHBoxLayout(table_frame_);
    new_table_name_ = make_field(table_frame_, "new_table_name");
    auto* create_new_table = make_button(table_frame_, "create_new_table", "CREATE");
    auto* cancel_new_table = make_button(table_frame_, "cancel_new_table", "CANCEL");
    tf->addWidget(new_table_name_, 1);
    tf->addWidget(create_new_table);
    tf->addWidget(cancel_new_table);
    tl->addWidget(table_frame_);
    columns->addWidget(tables, 2);

    auto* bottom = new QHBoxLayout;
    exit_ = make_button(this, "exit", "OPEN SELECTED TABLE");
    auto* cancel = make_button(this, "cancel", "EXIT");
    exit_->setMinimumHeight(32);
    cancel->setMinimumHeight(32);
    bottom->addStretch(1);
    bottom->addWidget(exit_);
    bottom->addWidget(cancel);
    layout->addLayout(bottom);

    database_frame_->hide();
    table_frame_->hide();

    connect_folder_choice(
        this, folder, &chooser_, [this] { return shown_folder(screen_.db_dir); },
        [this](const QString& f) { choose_folder(f); });
    connect(db_files_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { pick_file(item); });
    connect(table_list_, &QListWidget::itemDoubleClicked, this,
            [this](QListWidgetItem* item) { pick_table(item); });
    connect(create_db, &QPushButton::clicked, this,
            [this] { show_frame(database_frame_, new_database_name_, true); });
    connect(create_table, &QPushButton::clicked, this,
            [this] { show_frame(table_frame_, new_table_name_, true); });
    connect(cancel_new_database, &QPushButton::clicked, this,
            [this] { show_frame(database_frame_, new_database_name_, false); });
    connect(cancel_new_table, &QPushButton::clicked, this,
            [this] { show_frame(table_frame_, new_table_name_, false); });
    connect(create_new_database, &QPushButton::clicked, this, [this] { create_database(); });
    connect(new_database_name_, &QLineEdit::returnPressed, this, [this] { create_database(); });
    connect(create_new_table, &QPushButton::clicked, this, [this] { this->create_table(); });
    connect(new_table_name_, &QLineEdit::returnPressed, this, [this] { this->create_table(); });
    connect(del_database, &QPushButton::clicked, this, [this] { delete_database(); });
    connect(del_table, &QPushButton::clicked, this, [this] { delete_table(); });
    connect(exit_, &QPushButton::clicked, this, [this] { open_selected(); });
    connect(cancel, &QPushButton::clicked, this, [this] { go_back(); });
    resize(900, 560);
}

void EventDatabaseWindow::enter() {
    enter_event_database_screen(session(), screen_);
    show_frame(database_frame_, new_database_name_, false);
    show_frame(table_frame_, new_table_name_, false);
    show_state();
    show();
    raise();
    activateWindow();
}

void EventDatabaseWindow::show_state() {
    db_dir_->setText(shown_folder(screen_.db_dir));
    list_lines(db_files_, screen_.db_files);
    select_line(db_files_, screen_.sel_file);
    list_lines(table_list_, screen_.table_list);
    select_line(table_list_, screen_.sel_table);
    sel_file_->setText(qt(screen_.sel_file));
    sel_table_->setText(qt(screen_.sel_table));
    exit_->setEnabled(screen_.exit_enabled);
}

void EventDatabaseWindow::show_frame(QGroupBox* frame, QLineEdit* name, bool shown) {
    name->clear();
    frame->setVisible(shown);
    if (shown) name->setFocus();
}

void EventDatabaseWindow::choose_folder(const QString& folder) {
    const QString path = existing_folder(folder, sink());
    if (path.isEmpty()) {
        db_dir_->setText(shown_folder(screen_.db_dir));
        return;
    }
    choose_event_folder(screen_, QDir(path).absolutePath().toStdString());
    // A file of another folder is no longer the choice.
    screen_.sel_file.clear();
    screen_.sel_table.clear();
    screen_.table_list.clear();
    screen_.exit_enabled = false;
    show_state();
}

void EventDatabaseWindow::pick_file(QListWidgetItem* item) {
    if (!item) return;
    const std::string file = item->text().toStdString();
    // A file that would not open is not the choice.
    if (!pick_event_database(session(), screen_, file, sink())) screen_.sel_file.clear();
    // The list of files stays as it is: the click came from it.
    list_lines(table_list_, screen_.table_list);
    sel_file_->setText(qt(screen_.sel_file));
    sel_table_->setText(qt(screen_.sel_table));
    exit_->setEnabled(screen_.exit_enabled);
    desktop().refresh_chart_window();
}

void EventDatabaseWindow::pick_table(QListWidgetItem* item) {
    if (!item) return;
    const std::string line = item->text().toStdString();
    pick_event_table(session(), screen_, line, sink());
    sel_table_->setText(qt(screen_.sel_table));
    exit_->setEnabled(screen_.exit_enabled);
    desktop().refresh_chart_window();
}

void EventDatabaseWindow::create_database() {
    if (trim(text_of(new_database_name_)).empty()) return;
    if (!create_new_database(session(), screen_, text_of(new_database_name_), sink())) return;
    show_frame(database_frame_, new_database_name_, false);
    show_state();
    desktop().refresh_chart_window();
}

void EventDatabaseWindow::create_table() {
    if (trim(text_of(new_table_name_)).empty()) return;
    if (!create_new_table(session(), screen_, text_of(new_table_name_), sink())) return;
    show_frame(table_frame_, new_table_name_, false);
    show_state();
    desktop().refresh_chart_window();
}

void EventDatabaseWindow::delete_database() {
    if (!delete_event_database(session(), screen_, sink())) return;
    show_state();
    desktop().refresh_chart_window();
}

void EventDatabaseWindow::delete_table() {
    const QListWidgetItem* line = table_list_->currentItem();
    const std::string table = line ? line->text().toStdString() : screen_.sel_table;
    if (!delete_event_table(session(), screen_, table, sink())) return;
    show_state();
    desktop().refresh_chart_window();
}

void EventDatabaseWindow::open_selected() {
    if (!exit_event_database_screen(session(), screen_, sink())) return;
    hide();
    desktop().refresh_chart_window();
}

void EventDatabaseWindow::go_back() {
    const store::Outcome o = cancel_event_database_screen(session(), screen_, sink());
    desktop().refresh_chart_window();
    if (o != store::Outcome::ok) {
        sink().message("NO DATABASE AND/OR TABLE SELECTED",
                       "The database and table in use before cannot be opened again. Please "
                       "select a database and a table",
                       MessageIcon::information);
        screen_.sel_table.clear();
        screen_.exit_enabled = false;
        show_state();
        return;
    }
    hide();
}

// ---- EVENT SEARCH WINDOW ------------------------------------------------------------------------

EventSearchWindow::EventSearchWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "CHART_SEARCH", "EVENT SEARCH WINDOW") {
    auto* layout = new QHBoxLayout(this);
    auto* left = new QVBoxLayout;
    auto* order = new QHBoxLayout;
    order->addWidget(new QLabel("Order of the list:", this));
    index_name_ = make_list(this, "Index_Name");
    for (const char* index : search_indexes) index_name_->addItem(index);
    order->addWidget(index_name_);
    order->addStretch(1);
    left->addLayout(order);
    left->addWidget(new QLabel("Single click selects, double click edits", this));
    search_list_ = make_list_box(this, "search_list");
    search_list_->setMinimumSize(560, 380);
    left->addWidget(search_list_, 1);
    layout->addLayout(left, 1);

    auto* side = new QVBoxLayout;
    auto* copy = make_group(this, "copy_to_event", "Copy to Event Number");
    auto* copies = new QHBoxLayout(copy);
    for (int slot = 1; slot <= 4; ++slot) {
        auto* b =
            make_button(copy, ("event_" + std::to_string(slot)).c_str(), QString::number(slot));
        b->setToolTip("Copy the selected event to Event " + QString::number(slot));
        b->setMinimumWidth(44);
        copies->addWidget(b);
        connect(b, &QPushButton::clicked, this, [this, slot] { copy_to(slot); });
    }
    side->addWidget(copy);
    auto* search_edit = make_button(this, "search_edit", "EDIT EVENT");
    auto* search_delete = make_button(this, "search_delete", "DELETE EVENT");
    auto* aspect_pattern = make_button(this, "aspect_pattern", "DISPLAY SEARCH");
    aspect_pattern->setToolTip("Show the chart of the selected event; the chart window then walks "
                               "the table from it, optionally to the events with an aspect");
    auto* search_cancel = make_button(this, "search_cancel", "EXIT");
    side->addWidget(search_edit);
    side->addWidget(search_delete);
    side->addWidget(aspect_pattern);
    side->addStretch(1);
    side->addWidget(search_cancel);
    layout->addLayout(side);

    connect(index_name_, &QComboBox::currentTextChanged, this, [this](const QString& index) {
        if (!filling_) fill(index.toStdString());
    });
    connect(search_list_, &QListWidget::itemDoubleClicked, this, [this] { edit(); });
    connect(search_edit, &QPushButton::clicked, this, [this] { edit(); });
    connect(search_delete, &QPushButton::clicked, this, [this] { remove(); });
    connect(aspect_pattern, &QPushButton::clicked, this, [this] { display(); });
    connect(search_cancel, &QPushButton::clicked, this, [this] { hide(); });
    resize(860, 520);
}

void EventSearchWindow::enter() {
    std::string index = session().event_store.event_index_name;
    bool known = false;
    for (const char* i : search_indexes) known = known || index == i;
    if (!known) index = search_indexes[0];
    filling_ = true;
    index_name_->setCurrentText(qt(index));
    filling_ = false;
    show();
    raise();
    activateWindow();
    fill(index);
}

void EventSearchWindow::fill(const std::string& index) {
    {
        BusyPointer busy;
        fill_search_list(session(), index, list_, sink());
    }
    listed_table_ = table_in_use(session());
    const int row = search_list_->currentRow();
    list_lines(search_list_, list_.lines);
    if (search_list_->count() > 0)
        search_list_->setCurrentRow(std::clamp(row, 0, search_list_->count() - 1));
}

std::optional<std::size_t> EventSearchWindow::chosen_line() {
    if (table_in_use(session()) != listed_table_) {
        sink().message("EVENT TABLE CHANGED",
                       "Another event table is in use now: the list shows its events",
                       MessageIcon::information);
        fill(index_name_->currentText().toStdString());
        return std::nullopt;
    }
    const int row = search_list_->currentRow();
    if (row < 0 || static_cast<std::size_t>(row) >= list_.lines.size()) {
        sink().message("NO EVENT SELECTED", "Please select an event in the list first",
                       MessageIcon::information);
        return std::nullopt;
    }
    return static_cast<std::size_t>(row);
}

bool EventSearchWindow::copy_to(int slot) {
    const auto line = chosen_line();
    if (!line) return false;
    if (!search_line_to_slot(session(), list_, *line, slot)) {
        sink().message("EVENT NOT FOUND",
                       "The event of this line is no longer in the table: the list is made again",
                       MessageIcon::information);
        fill(index_name_->currentText().toStdString());
        return false;
    }
    desktop().refresh_chart_window();
    return true;
}

void EventSearchWindow::display() {
    if (!copy_to(session().event_slots.active_event)) return;
    hide();
    desktop().run("chart_geocentric");
}

void EventSearchWindow::edit() {
    const auto line = chosen_line();
    if (!line) return;
    EventInput input;
    if (!search_line_to_screen(session(), list_, *line, input)) {
        sink().message("EVENT NOT FOUND",
                       "The event of this line is no longer in the table: the list is made again",
                       MessageIcon::information);
        fill(index_name_->currentText().toStdString());
        return;
    }
    hide();
    desktop().edit_event(input);
}

void EventSearchWindow::remove() {
    const auto line = chosen_line();
    if (!line) return;
    if (!delete_search_line(session(), list_, *line, sink())) return;
    const int row = search_list_->currentRow();
    list_lines(search_list_, list_.lines);
    if (search_list_->count() > 0)
        search_list_->setCurrentRow(std::clamp(row, 0, search_list_->count() - 1));
    desktop().refresh_chart_window();
}

// ---- The commands -------------------------------------------------------------------------------

namespace {

// The two windows, made at their first use and gone with the desktop.
struct DatabaseWindows {
    std::unique_ptr<EventDatabaseWindow> databases;
    std::unique_ptr<EventSearchWindow> search;
};

} // namespace

void add_event_database_windows(Desktop& desktop) {
    auto windows = std::make_shared<DatabaseWindows>();
    desktop.add_command("open_db", [&desktop, windows] {
        if (!windows->databases)
            windows->databases = std::make_unique<EventDatabaseWindow>(desktop);
        windows->databases->enter();
    });
    desktop.add_command("chart_search_db", [&desktop, windows] {
        if (!windows->search) windows->search = std::make_unique<EventSearchWindow>(desktop);
        windows->search->enter();
    });
}

} // namespace celestark::screens
