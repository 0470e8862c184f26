// The windows OPEN AND CREATE EVENT DATABASES AND TABLES and EVENT SEARCH WINDOW, driven by their
// controls.
#include "desktop_support.h"

#include "screens/event_input.h"
#include "screens/widgets/event_databases.h"
#include "store/open_stores.h"

#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <fstream>

namespace celestark::testing {
namespace {

std::vector<std::string> lines_of(QListWidget* list) {
    std::vector<std::string> out;
    for (int i = 0; i < list->count(); ++i) out.push_back(list->item(i)->text().toStdString());
    return out;
}

QListWidgetItem* line(QListWidget* list, const std::string& text) {
    for (int i = 0; i < list->count(); ++i)
        if (list->item(i)->text().toStdString() == text) return list->item(i);
    ADD_FAILURE() << "no line " << text << " in " << list->objectName().toStdString();
    return nullptr;
}

// A user's click on a database, and double click on a table.
void click(QListWidget* list, const std::string& text) {
    QListWidgetItem* item = line(list, text);
    ASSERT_NE(item, nullptr);
    list->setCurrentItem(item);
    emit list->itemClicked(item);
}
void double_click(QListWidget* list, const std::string& text) {
    QListWidgetItem* item = line(list, text);
    ASSERT_NE(item, nullptr);
    list->setCurrentItem(item);
    emit list->itemDoubleClicked(item);
}

class EventDatabaseWindows : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(ds.start.started);
        ds.press("open_db");
        window = ds.find<screens::EventDatabaseWindow>("open_db");
        ASSERT_NE(window, nullptr);
        files = ds.find<QListWidget>("db_files");
        tables = ds.find<QListWidget>("table_list");
    }
    std::string text(const char* field) { return ds.find<QLineEdit>(field)->text().toStdString(); }
    // A new database, then a new table in it, through their frames.
    void create(const std::string& database, const std::string& table) {
        ds.press("create_db");
        ds.type("new_database_name", database);
        ds.press("create_new_database");
        ds.press("create_table");
        ds.type("new_table_name", table);
        ds.press("create_new_table");
    }

    DesktopSession ds;
    screens::EventDatabaseWindow* window = nullptr;
    QListWidget *files = nullptr, *tables = nullptr;
};

TEST_F(EventDatabaseWindows, ANewDatabaseAndTableAreMadePickedAndOpened) {
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), "OPEN AND CREATE EVENT DATABASES AND TABLES");
    EXPECT_EQ(lines_of(files), std::vector<std::string>{"Celestark.zod.mdb"});

    auto* frame = ds.find<QGroupBox>("create_db_frame");
    EXPECT_FALSE(frame->isVisible());
    ds.press("create_db");
    EXPECT_TRUE(frame->isVisible());
    EXPECT_EQ(frame->title(), "ENTER THE NAME FOR THE NEW DATABASE");
    ds.press("create_new_database"); // no name: nothing happens
    EXPECT_TRUE(frame->isVisible());
    EXPECT_EQ(files->count(), 1);
    ds.type("new_database_name", "Trial");
    ds.press("create_new_database");
    EXPECT_FALSE(frame->isVisible());
    EXPECT_TRUE(std::filesystem::exists(ds.folder.file("Trial.zod.mdb")));
    EXPECT_EQ(lines_of(files), (std::vector<std::string>{"Celestark.zod.mdb", "Trial.zod.mdb"}));
    EXPECT_EQ(text("sel_file"), "Trial.zod.mdb");
    EXPECT_EQ(lines_of(tables), std::vector<std::string>{"[NONE]"});
    EXPECT_FALSE(ds.find<QPushButton>("exit")->isEnabled());

    ds.press("create_table");
    EXPECT_EQ(ds.find<QGroupBox>("create_table_frame")->title(),
              "ENTER THE NAME FOR THE NEW TABLE");
    ds.type("new_table_name", "People");
    ds.press("create_new_table");
    EXPECT_EQ(lines_of(tables), std::vector<std::string>{"People"});
    EXPECT_EQ(text("sel_table"), "PEOPLE");

    // The standard database and its empty table, picked as a user picks them.
    click(files, "Celestark.zod.mdb");
    EXPECT_EQ(lines_of(tables), std::vector<std::string>{"Events"});
    EXPECT_EQ(text("sel_table"), "");
    EXPECT_FALSE(ds.find<QPushButton>("exit")->isEnabled());
    double_click(tables, "Events");
    EXPECT_EQ(ds.folder.messages_titled("TABLE EMPTY"),
              std::vector<std::string>{"There are no events in the selected table"});
    EXPECT_EQ(text("sel_table"), "EVENTS"); // the empty table stays selected

    click(files, "Trial.zod.mdb");
    double_click(tables, "People");
    ds.press("exit");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ds.s.event_store.event_table_name, "People");
    EXPECT_EQ(ds.find<QLabel>("db_table")->text(), "Event database: TRIAL - PEOPLE");
}

TEST_F(EventDatabaseWindows, ExitGoesBackToTheTableInUse) {
    const EventStoreState before = ds.s.event_store;
    create("Other", "Stars");
    EXPECT_EQ(ds.s.event_store.event_table_name, "Stars");
    ds.press("cancel");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ds.s.event_store.event_db_name, before.event_db_name);
    EXPECT_EQ(ds.s.event_store.event_table_name, before.event_table_name);
    EXPECT_TRUE(ds.s.stores->event_table.is_open());
    EXPECT_EQ(ds.find<QLabel>("db_table")->text(), "Event database: CELESTARK - EVENTS");
}

TEST_F(EventDatabaseWindows, TablesAndThenTheDatabaseAreDeletedAfterTheirQuestions) {
    create("Spare", "Old");
    // The table of the database in use stays.
    click(files, "Celestark.zod.mdb");
    tables->setCurrentItem(line(tables, "Events"));
    ds.press("del_table");
    EXPECT_EQ(ds.folder.messages_titled("CANNOT DELETE THIS TABLE"),
              std::vector<std::string>{"You cannot a delete table from the active database"});
    EXPECT_EQ(lines_of(tables), std::vector<std::string>{"Events"});

    click(files, "Spare.zod.mdb");
    ds.folder.sink.answers = {true}; // Yes: but the database still holds a table
    ds.press("del_database");
    EXPECT_EQ(ds.folder.messages_titled("DELETE ALL THE TABLES FIRST").size(), 1u);
    EXPECT_TRUE(std::filesystem::exists(ds.folder.file("Spare.zod.mdb")));

    tables->setCurrentItem(line(tables, "Old"));
    ds.folder.sink.answers = {false}; // No: the table stays
    ds.press("del_table");
    EXPECT_EQ(lines_of(tables), std::vector<std::string>{"Old"});
    ds.folder.sink.answers = {true};
    ds.press("del_table");
    EXPECT_EQ(ds.folder.sink.questions.back().title, "DELETE TABLE AND ITS EVENTS?");
    EXPECT_EQ(lines_of(tables), std::vector<std::string>{"[NONE]"});

    ds.folder.sink.answers = {true};
    ds.press("del_database");
    EXPECT_EQ(ds.folder.sink.questions.back().title, "DELETE DATABASE?");
    EXPECT_FALSE(std::filesystem::exists(ds.folder.file("Spare.zod.mdb")));
    EXPECT_EQ(lines_of(files), std::vector<std::string>{"Celestark.zod.mdb"});
    EXPECT_EQ(text("sel_file"), "");

    ds.press("cancel");
    EXPECT_TRUE(ds.s.stores->event_table.is_open());
}

TEST_F(EventDatabaseWindows, TheFolderIsChosenByItsFieldOrTheBrowseButton) {
    const auto elsewhere = ds.folder.file("elsewhere");
    std::filesystem::create_directory(elsewhere);
    window->set_folder_chooser(
        [&](QWidget*, const QString&) { return QString::fromStdString(elsewhere.string()); });
    ds.press("db_drive");
    EXPECT_EQ(files->count(), 0);
    EXPECT_EQ(text("db_dir"), elsewhere.string());

    ds.type("db_dir", ds.folder.file("nowhere").string());
    EXPECT_EQ(ds.folder.messages_titled("FOLDER NOT FOUND").size(), 1u);
    EXPECT_EQ(text("db_dir"), elsewhere.string());

    ds.type("db_dir", ds.folder.path());
    EXPECT_EQ(lines_of(files), std::vector<std::string>{"Celestark.zod.mdb"});
}

TEST_F(EventDatabaseWindows, AFileThatIsNoDatabaseIsReportedAndNotChosen) {
    {
        std::ofstream broken(ds.folder.file("Broken.zod.mdb"));
        broken << "not a database";
    }
    ds.press("open_db"); // listed again
    click(files, "Broken.zod.mdb");
    EXPECT_EQ(ds.folder.sink.messages.back().text, "Error opening database");
    EXPECT_EQ(tables->count(), 0);
    EXPECT_EQ(text("sel_file"), "");
    // The database in use is still open.
    EXPECT_TRUE(ds.s.stores->event_db.is_open());
    EXPECT_EQ(ds.find<QLabel>("db_table")->text(), "Event database: CELESTARK - EVENTS");
}

// ---- The search window --------------------------------------------------------------------------

EventInput person(const char* surname, const char* firstname, const char* event, const char* place,
                  const char* day, const char* month, const char* year) {
    const EventCells cells = {{col::surname, surname}, {col::firstname, firstname},
                              {col::event, event},     {col::place, place},
                              {col::day, day},         {col::month, month},
                              {col::year, year},       {col::hours, "12"}};
    return new_input(cells);
}

class EventSearch : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(ds.start.started);
        EventTable table{ds.s.stores->event_table};
        for (EventInput in : {person("Einstein", "Albert", "Birth", "Ulm", "14", "3", "1879"),
                              person("Curie", "Marie", "Death", "Passy", "4", "7", "1934")})
            ASSERT_EQ(save_event(in, table, ds.folder.sink), SaveResult::saved);
        ds.press("chart_search_db");
        list = ds.find<QListWidget>("search_list");
        ASSERT_NE(list, nullptr);
    }
    std::vector<std::string> surnames() {
        std::vector<std::string> out;
        for (const std::string& l : lines_of(list)) out.push_back(l.substr(0, l.find(',')));
        return out;
    }

    DesktopSession ds;
    QListWidget* list = nullptr;
};

TEST_F(EventSearch, ListsByTheChosenIndexAndCopiesALineIntoACard) {
    EXPECT_TRUE(ds.find<QWidget>("CHART_SEARCH")->isVisible());
    EXPECT_EQ(surnames(), (std::vector<std::string>{"Curie", "Einstein"}));
    EXPECT_EQ(lines_of(list)[1], "Einstein, Albert - Birth - Ulm - 14/3/1879");

    ds.choose("Index_Name", "Event_Name"); // Birth before Death
    EXPECT_EQ(surnames(), (std::vector<std::string>{"Einstein", "Curie"}));
    EXPECT_EQ(ds.s.event_store.event_index_name, "Event_Name");
    ds.choose("Index_Name", "Place_Name"); // Passy before Ulm
    EXPECT_EQ(surnames(), (std::vector<std::string>{"Curie", "Einstein"}));

    list->setCurrentRow(1);
    ds.press("event_2");
    EXPECT_EQ(ds.find<QLabel>("EVENT2_NAME")->text(), "Albert Einstein");
    EXPECT_EQ(ds.s.event_slots[2][col::place], "Ulm");
    list->setCurrentRow(0);
    ds.press("event_4");
    EXPECT_EQ(ds.find<QLabel>("EVENT4_NAME")->text(), "Marie Curie");

    list->setCurrentRow(-1);
    ds.press("event_1");
    EXPECT_EQ(ds.folder.messages_titled("NO EVENT SELECTED").size(), 1u);

    // DISPLAY SEARCH: the selected event into the active card and its chart shown, from where
    // the chart window walks the table.
    list->setCurrentRow(0);
    ds.press("aspect_pattern");
    EXPECT_EQ(ds.find<QLabel>("EVENT1_NAME")->text(), "Marie Curie");
    EXPECT_TRUE(ds.find<QWidget>("chart_display")->isVisible());
    EXPECT_FALSE(ds.find<QWidget>("CHART_SEARCH")->isVisible());
    ds.press("ap_forward");
    EXPECT_EQ(ds.find<QLabel>("EVENT1_NAME")->text(), "Albert Einstein");
}

TEST_F(EventSearch, ALineIsDeletedAfterItsQuestionOrEdited) {
    list->setCurrentRow(0);
    ds.folder.sink.answers = {false};
    ds.press("search_delete");
    EXPECT_EQ(list->count(), 2);
    ds.folder.sink.answers = {true};
    ds.press("search_delete");
    EXPECT_EQ(ds.folder.sink.questions.back().title, "DELETE SELECTED EVENT ?");
    EXPECT_EQ(ds.folder.sink.questions.back().text,
              "Are you sure you want to delete the selected Event");
    EXPECT_EQ(surnames(), std::vector<std::string>{"Einstein"});
    EXPECT_EQ(ds.s.stores->event_table.record_count(), 1);

    std::optional<EventInput> edited;
    ds.desktop->set_event_editor([&](const EventInput& in) { edited = in; });
    list->setCurrentRow(0);
    ds.press("search_edit");
    ASSERT_TRUE(edited.has_value());
    EXPECT_EQ(edited->cells[col::surname], "Einstein");
    EXPECT_FALSE(edited->event_bookmark.empty());
    EXPECT_FALSE(ds.find<QWidget>("CHART_SEARCH")->isVisible());
}

TEST_F(EventSearch, AListOfAnotherTableIsMadeAgainBeforeItIsUsed) {
    // Another table comes into use while the list is shown.
    ds.press("open_db");
    ds.press("create_table");
    ds.type("new_table_name", "Empty");
    ds.press("create_new_table");
    ds.press("exit");
    list->setCurrentRow(0);
    ds.folder.sink.answers = {true};
    ds.press("search_delete");
    EXPECT_TRUE(ds.folder.sink.questions.empty()); // nothing was asked, nothing deleted
    EXPECT_EQ(ds.folder.messages_titled("EVENT TABLE CHANGED").size(), 1u);
    EXPECT_EQ(list->count(), 0);
}

} // namespace
} // namespace celestark::testing
