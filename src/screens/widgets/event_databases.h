#pragma once
// The windows OPEN AND CREATE EVENT DATABASES AND TABLES (`open_db`), where the user picks the
// event database and table in use or makes and deletes them, and EVENT SEARCH WINDOW
// (`CHART_SEARCH`), which lists the open table by one of its indexes and copies, edits or deletes
// the events of its lines.
#include "screens/event_database_screen.h"
#include "screens/event_search.h"
#include "screens/widgets/database_chooser.h"
#include "screens/widgets/window_support.h"

#include <functional>
#include <optional>
#include <string>

class QComboBox;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace celestark::screens {

class EventDatabaseWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit EventDatabaseWindow(Desktop& desktop);

    // Remembers the database, table and index in use, lists the folder of the open database and
    // shows the window.
    void enter();
    // The folder dialog behind the browse button (a QFileDialog unless replaced).
    void set_folder_chooser(FolderChooser chooser) { chooser_ = std::move(chooser); }
    const EventDatabaseScreen& screen() const { return screen_; }

  private:
    void build();
    void choose_folder(const QString& folder);
    void pick_file(QListWidgetItem* item);
    void pick_table(QListWidgetItem* item);
    void create_database();
    void create_table();
    void delete_database();
    void delete_table();
    void open_selected();
    void go_back();
    // Shows the lists and the choice of the screen's state.
    void show_state();
    void show_frame(QGroupBox* frame, QLineEdit* name, bool shown);

    EventDatabaseScreen screen_;
    FolderChooser chooser_;
    QLineEdit* db_dir_ = nullptr;
    QListWidget* db_files_ = nullptr;
    QListWidget* table_list_ = nullptr;
    QLineEdit* sel_file_ = nullptr;
    QLineEdit* sel_table_ = nullptr;
    QGroupBox* database_frame_ = nullptr;
    QGroupBox* table_frame_ = nullptr;
    QLineEdit* new_database_name_ = nullptr;
    QLineEdit* new_table_name_ = nullptr;
    QPushButton* exit_ = nullptr;
};

class EventSearchWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit EventSearchWindow(Desktop& desktop);

    // Lists the open table by the index in use and shows the window.
    void enter();
    const SearchList& list() const { return list_; }

  private:
    void fill(const std::string& index);
    // The chosen line, after making sure that the list still stands for the open table; none
    // (with a message) when no line is chosen or the list had to be made again.
    std::optional<std::size_t> chosen_line();
    bool copy_to(int slot);
    void display();
    void edit();
    void remove();

    SearchList list_;
    std::string listed_table_; // the database and table the list was made from
    QComboBox* index_name_ = nullptr;
    QListWidget* search_list_ = nullptr;
    bool filling_ = false;
};

} // namespace celestark::screens
