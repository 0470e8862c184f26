#pragma once
// What the window OPEN AND CREATE EVENT DATABASES AND TABLES does: pick a database of a folder and
// one of its tables, make new ones, delete empty databases and tables of other databases, and
// either go on with the choice or go back to what was in use when the window opened.
#include "session/messages.h"
#include "store/event_database.h"

#include <string>
#include <vector>

namespace celestark {

struct Session;

struct EventDatabaseScreen {
    // What was in use when the window opened, for the way back.
    std::string saved_path, saved_name, saved_table, saved_index;
    std::string db_dir;                  // the folder listed, with its trailing separator
    std::vector<std::string> db_files;   // the *.zod.mdb files of the folder, by name
    std::string sel_file, sel_table;     // the choice so far
    std::vector<std::string> table_list; // the lines of the picked database's tables
    bool exit_enabled = false;
};

// Opens the window: remembers what is in use and lists the folder of the open database.
void enter_event_database_screen(Session& s, EventDatabaseScreen& screen);
// Lists the *.zod.mdb files of `folder` (the drive and directory lists).
void choose_event_folder(EventDatabaseScreen& screen, const std::string& folder);

// A file of the list, single click: it becomes the open database and its tables are listed. A file
// that will not open gives "Error opening database" and an empty table list.
bool pick_event_database(Session& s, EventDatabaseScreen& screen, const std::string& file,
                         MessageSink& sink);
// A line of the table list, double click: the table is opened, shown in capitals, the exit is
// enabled, and the table is tested by its first row. "[NONE]" does nothing.
TableTest pick_event_table(Session& s, EventDatabaseScreen& screen, const std::string& line,
                           MessageSink& sink);

// The frames for a new database and a new table; empty names do nothing.
bool create_new_database(Session& s, EventDatabaseScreen& screen, const std::string& name,
                         MessageSink& sink);
bool create_new_table(Session& s, EventDatabaseScreen& screen, const std::string& name,
                      MessageSink& sink);

// Deletes the picked database after a Yes, when it holds no tables and is not the one in use.
bool delete_event_database(Session& s, EventDatabaseScreen& screen, MessageSink& sink);
// Deletes a table of the picked database after a Yes, unless the database is the one in use.
bool delete_event_table(Session& s, EventDatabaseScreen& screen, const std::string& table,
                        MessageSink& sink);

// "OPEN SELECTED TABLE": true when a database and a table are chosen; they stay in use.
bool exit_event_database_screen(Session& s, EventDatabaseScreen& screen, MessageSink& sink);
// "EXIT": back to what was in use when the window opened.
store::Outcome cancel_event_database_screen(Session& s, EventDatabaseScreen& screen,
                                            MessageSink& sink);

} // namespace celestark
