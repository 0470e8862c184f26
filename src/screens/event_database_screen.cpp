#include "screens/event_database_screen.h"

#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"
#include "store/sqlite_support.h"
#include "store/store_files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace celestark {

namespace fs = std::filesystem;
using store::Outcome;

namespace {

bool is_event_file(const std::string& name) {
    const std::string_view suffix = event_file_suffix;
    return name.size() > suffix.size() &&
           store::detail::same_name(std::string_view(name).substr(name.size() - suffix.size()),
                                    suffix);
}

// Whether two folder and file names name one file.
bool same_file(const std::string& dir_a, const std::string& name_a, const std::string& dir_b,
               const std::string& name_b) {
    const fs::path a = store::find_file(dir_a, name_a), b = store::find_file(dir_b, name_b);
    std::error_code ec;
    const bool equal = fs::equivalent(a, b, ec);
    return ec ? a.lexically_normal() == b.lexically_normal() : equal;
}

bool picked_is_in_use(const EventDatabaseScreen& screen) {
    return same_file(screen.db_dir, screen.sel_file, screen.saved_path, screen.saved_name);
}

OpenStores& stores_of(Session& s) {
    if (!s.stores) s.stores = std::make_shared<OpenStores>();
    return *s.stores;
}

void list_tables(Session& s, EventDatabaseScreen& screen) {
    screen.table_list = event_table_lines(stores_of(s).event_db);
}

void clear_choice(EventDatabaseScreen& screen) {
    screen.sel_table.clear();
    screen.exit_enabled = false;
}

} // namespace

void choose_event_folder(EventDatabaseScreen& screen, const std::string& folder) {
    screen.db_dir = with_separator(folder);
    screen.db_files.clear();
    std::error_code ec;
    for (fs::directory_iterator it(screen.db_dir, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (it->is_regular_file(ec) && is_event_file(name)) screen.db_files.push_back(name);
    }
    std::sort(screen.db_files.begin(), screen.db_files.end());
}

void enter_event_database_screen(Session& s, EventDatabaseScreen& screen) {
    screen = EventDatabaseScreen();
    const EventStoreState& e = s.event_store;
    screen.saved_path = e.event_db_path;
    screen.saved_name = e.event_db_name;
    screen.saved_table = e.event_table_name;
    screen.saved_index = e.event_index_name;
    choose_event_folder(screen, e.event_db_path.empty() ? s.program_directory : e.event_db_path);
}

bool pick_event_database(Session& s, EventDatabaseScreen& screen, const std::string& file,
                         MessageSink& sink) {
    EventStoreState& e = s.event_store;
    const std::string old_path = e.event_db_path, old_name = e.event_db_name;
    e.event_db_path = screen.db_dir;
    e.event_db_name = file;
    screen.sel_file = file;
    clear_choice(screen);
    if (open_event_database(s, sink) != Outcome::ok) {
        e.event_db_path = old_path;
        e.event_db_name = old_name;
        screen.table_list.clear();
        sink.message(product_word, "Error opening database", MessageIcon::exclamation);
        return false;
    }
    list_tables(s, screen);
    return true;
}

TableTest pick_event_table(Session& s, EventDatabaseScreen& screen, const std::string& line,
                           MessageSink& sink) {
    if (line == "[NONE]" || line.empty() || screen.sel_file.empty()) return TableTest::empty;
    const std::string old_table = s.event_store.event_table_name;
    s.event_store.event_table_name = line;
    if (open_event_table(s, sink) != Outcome::ok) {
        s.event_store.event_table_name = old_table;
        sink.message("TABLE CORRUPT", "The selected table is corrupt", MessageIcon::information);
        return TableTest::corrupt;
    }
    screen.sel_table = to_upper(line);
    screen.exit_enabled = true;
    return test_event_table(stores_of(s).event_table, sink);
}

bool create_new_database(Session& s, EventDatabaseScreen& screen, const std::string& name,
                         MessageSink& sink) {
    const std::string base = trim(name);
    if (base.empty()) return false;
    if (base.find_first_of("/\\") != std::string::npos || base == "." || base == "..") {
        sink.message("INVALID DATABASE NAME",
                     "A database name is a file name: it cannot hold / or \\",
                     MessageIcon::exclamation);
        return false;
    }
    const Outcome o = create_event_database(s, screen.db_dir, base, sink);
    if (o == Outcome::file_exists) {
        sink.message("DATABASE EXISTS",
                     "There is a database named " + base + event_file_suffix + " already",
                     MessageIcon::exclamation);
        return false;
    }
    if (o != Outcome::ok) {
        sink.message("CANNOT CREATE DATABASE",
                     "The database " + base + event_file_suffix +
                         " could not be created: " + std::string(store::describe(o)),
                     MessageIcon::exclamation);
        return false;
    }
    choose_event_folder(screen, screen.db_dir);
    screen.sel_file = base + event_file_suffix;
    clear_choice(screen);
    list_tables(s, screen);
    return true;
}

bool create_new_table(Session& s, EventDatabaseScreen& screen, const std::string& name,
                      MessageSink& sink) {
    const std::string table = trim(name);
    if (table.empty()) return false;
    if (create_event_table(s, table, sink) != Outcome::ok) return false;
    // The table went into the open database, which is now the chosen one.
    if (screen.sel_file.empty()) {
        screen.db_dir = with_separator(s.event_store.event_db_path);
        screen.sel_file =
            store::find_file(screen.db_dir, s.event_store.event_db_name).filename().string();
    }
    list_tables(s, screen);
    screen.sel_table = to_upper(table);
    screen.exit_enabled = true;
    return true;
}

bool delete_event_database(Session& s, EventDatabaseScreen& screen, MessageSink& sink) {
    if (screen.sel_file.empty()) return false;
    if (!sink.ask("DELETE DATABASE?", "Are you sure you want to delete the selected database?"))
        return false;
    const fs::path file = store::find_file(screen.db_dir, screen.sel_file);
    OpenStores& st = stores_of(s);
    const bool is_open_one = same_file(screen.db_dir, screen.sel_file, s.event_store.event_db_path,
                                       s.event_store.event_db_name);
    store::TableStore probe;
    store::TableStore& db = is_open_one && st.event_db.is_open() ? st.event_db : probe;
    if (&db == &probe && probe.open(file, store::TableStore::Access::read_only) != Outcome::ok) {
        sink.message(product_word, "Error opening database", MessageIcon::exclamation);
        return false;
    }
    if (event_table_lines(db) != std::vector<std::string>{"[NONE]"}) {
        sink.message("DELETE ALL THE TABLES FIRST",
                     "You must delete all the tables before you can delete the database",
                     MessageIcon::exclamation);
        return false;
    }
    if (picked_is_in_use(screen)) {
        sink.message("CANNOT DELETE THIS DATABASE", "You cannot delete the database in use",
                     MessageIcon::exclamation);
        return false;
    }
    probe.close();
    if (is_open_one) {
        st.event_table = store::Recordset();
        st.event_db.close();
    }
    if (!store::remove_store_file(file)) {
        sink.message(product_word, "The database could not be deleted", MessageIcon::exclamation);
        return false;
    }
    screen.sel_file.clear();
    clear_choice(screen);
    screen.table_list.clear();
    choose_event_folder(screen, screen.db_dir);
    return true;
}

bool delete_event_table(Session& s, EventDatabaseScreen& screen, const std::string& table,
                        MessageSink& sink) {
    if (screen.sel_file.empty() || table.empty() || table == "[NONE]") return false;
    if (picked_is_in_use(screen)) {
        sink.message("CANNOT DELETE THIS TABLE",
                     "You cannot a delete table from the active database",
                     MessageIcon::exclamation);
        return false;
    }
    if (!sink.ask("DELETE TABLE AND ITS EVENTS?",
                  "Are you sure you want to delete the selected table and all its events?"))
        return false;
    OpenStores& st = stores_of(s);
    st.event_table = store::Recordset();
    const std::vector<std::string> lines = event_table_lines(st.event_db);
    const auto found = std::find_if(lines.begin(), lines.end(), [&](const std::string& n) {
        return n != "[NONE]" && store::detail::same_name(n, table);
    });
    if (found == lines.end() || st.event_db.delete_table(*found) != Outcome::ok) {
        sink.message(product_word, "The table " + table + " could not be deleted",
                     MessageIcon::exclamation);
        return false;
    }
    if (store::detail::same_name(screen.sel_table, table)) clear_choice(screen);
    if (store::detail::same_name(s.event_store.event_table_name, table))
        s.event_store.event_table_name.clear();
    list_tables(s, screen);
    return true;
}

bool exit_event_database_screen(Session& s, EventDatabaseScreen& screen, MessageSink& sink) {
    if (screen.sel_table.empty() || !stores_of(s).event_table.is_open()) {
        sink.message("NO DATABASE AND/OR TABLE SELECTED",
                     "You cannot exit until you have selected both a database and a table",
                     MessageIcon::information);
        return false;
    }
    return true;
}

Outcome cancel_event_database_screen(Session& s, EventDatabaseScreen& screen, MessageSink& sink) {
    EventStoreState& e = s.event_store;
    e.event_db_path = screen.saved_path;
    e.event_db_name = screen.saved_name;
    e.event_table_name = screen.saved_table;
    Outcome o = open_event_database(s, sink);
    if (o == Outcome::ok) o = open_event_table(s, sink);
    if (o == Outcome::ok && !screen.saved_index.empty()) {
        const Outcome ix = stores_of(s).event_table.set_index(screen.saved_index);
        if (ix == Outcome::ok || ix == Outcome::no_current_record)
            e.event_index_name = screen.saved_index;
    }
    return o;
}

} // namespace celestark
