#include "store/event_database.h"

#include "session/session.h"
#include "session/text.h"
#include "store/event_schema.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_store.h"
#include "store/store_files.h"

#include <filesystem>
#include <memory>

namespace celestark {

namespace fs = std::filesystem;
using store::Outcome;
using store::Recordset;
using store::TableStore;
using store::Value;

namespace {

OpenStores& stores_of(Session& s) {
    if (!s.stores) s.stores = std::make_shared<OpenStores>();
    return *s.stores;
}

bool blank(const std::string& text) {
    return trim(text).empty();
}

// The folder without its trailing separator, as `db_path` keeps it.
std::string without_separator(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

// An option of `option_name` as text, or empty when it is null or blank.
std::string general_option(Session& s, const char* field) {
    const Value v = read_option(s, store::general_options_table, field);
    return v.is_null() ? std::string() : trim(v.as_text());
}

bool has_event_shape(const Recordset& rs) {
    for (const store::FieldDef& f : store::event_table_fields())
        if (rs.field_index(f.name) < 0) return false;
    return true;
}

// Opens a table of `db` as an event table under `Name_Event`.
Outcome open_event_recordset(TableStore& db, const std::string& table, Recordset& out) {
    Recordset rs;
    Outcome o = db.open_recordset(table, rs);
    if (o != Outcome::ok) return o;
    if (!has_event_shape(rs)) return Outcome::bad_definition;
    o = rs.set_index(store::event_primary_index);
    if (o != Outcome::ok && o != Outcome::no_current_record) return o;
    out = std::move(rs);
    return Outcome::ok;
}

void clear_user_slots(Session& s) {
    for (int row = slot::first_user; row <= slot::last_user; ++row)
        for (std::string& cell : s.event_slots[row]) cell.clear();
    s.event_slots.active_event = 1;
    s.event_slots.active_epoch_event = 0;
}

// The standard table of the open database: opened when it is there, created otherwise.
Outcome standard_table(Session& s, MessageSink& sink) {
    if (stores_of(s).event_db.table_exists(standard_event_table)) {
        s.event_store.event_table_name = standard_event_table;
        return open_event_table(s, sink);
    }
    return create_event_table(s, standard_event_table, sink);
}

} // namespace

std::string with_separator(std::string path) {
    if (path.empty() || path.back() != '/') path += '/';
    return path;
}

std::string event_database_title(std::string_view db_name) {
    const std::size_t suffix = std::string_view(event_file_suffix).size();
    return to_upper(db_name.size() > suffix ? db_name.substr(0, db_name.size() - suffix) : db_name);
}

Outcome create_event_database(Session& s, const std::string& path, const std::string& base,
                              MessageSink& sink) {
    const std::string name = base + event_file_suffix;
    TableStore db;
    const Outcome o = db.create(fs::path(path) / name);
    if (o != Outcome::ok) return o;
    OpenStores& st = stores_of(s);
    st.event_table = Recordset();
    st.event_db = std::move(db);
    s.event_store.event_db_path = with_separator(path);
    s.event_store.event_db_name = name;
    s.event_store.event_table_name.clear();
    set_options(s, store::general_options_table,
                {{"db_name", Value(name)}, {"db_path", Value(without_separator(path))}}, sink);
    return Outcome::ok;
}

Outcome create_event_table(Session& s, const std::string& name, MessageSink& sink) {
    OpenStores& st = stores_of(s);
    Outcome o = st.event_db.is_open() ? st.event_db.create_table(name, store::event_table_fields(),
                                                                 store::event_table_indexes())
                                      : Outcome::not_open;
    Recordset rs;
    if (o == Outcome::ok) o = open_event_recordset(st.event_db, name, rs);
    switch (o) {
    case Outcome::ok:
        break;
    case Outcome::invalid_name:
        sink.message("INVALID TABLE NAME",
                     "A table cannot be named \"" + name +
                         "\": use letters, digits, blanks and underscores",
                     MessageIcon::exclamation);
        return o;
    case Outcome::table_exists:
        sink.message("TABLE EXISTS", "There is a table named " + name + " in this database already",
                     MessageIcon::exclamation);
        return o;
    default:
        sink.message("CANNOT CREATE NEW TABLE TO THIS DB",
                     "Cannot add a new table to what is probably an old CELESTARK database",
                     MessageIcon::exclamation);
        return o;
    }
    st.event_table = std::move(rs);
    s.event_store.event_table_name = name;
    s.event_store.event_index_name = store::event_primary_index;
    set_option(s, store::general_options_table, "DB_TABLE", Value(name), sink);
    clear_user_slots(s);
    return Outcome::ok;
}

Outcome open_event_database(Session& s, MessageSink& sink) {
    TableStore db;
    const Outcome o =
        db.open(store::find_file(s.event_store.event_db_path, s.event_store.event_db_name));
    if (o != Outcome::ok) return o;
    OpenStores& st = stores_of(s);
    st.event_table = Recordset();
    st.event_db = std::move(db);
    write_event_path_options(s, sink);
    return Outcome::ok;
}

Outcome open_event_table(Session& s, MessageSink& sink) {
    OpenStores& st = stores_of(s);
    Recordset rs;
    const Outcome o = st.event_db.is_open()
                          ? open_event_recordset(st.event_db, s.event_store.event_table_name, rs)
                          : Outcome::not_open;
    if (o != Outcome::ok) return o;
    st.event_table = std::move(rs);
    s.event_store.event_index_name = store::event_primary_index;
    write_event_path_options(s, sink);
    return Outcome::ok;
}

void write_event_path_options(Session& s, MessageSink& sink) {
    std::vector<std::pair<std::string, Value>> values;
    const EventStoreState& e = s.event_store;
    if (!blank(e.event_db_path))
        values.emplace_back("db_path", Value(without_separator(e.event_db_path)));
    if (!blank(e.event_db_name)) values.emplace_back("db_name", Value(e.event_db_name));
    if (!blank(e.event_table_name)) values.emplace_back("DB_TABLE", Value(e.event_table_name));
    if (!values.empty()) set_options(s, store::general_options_table, values, sink);
}

EventStoreResult open_event_store(Session& s, MessageSink& sink) {
    EventStoreResult result;
    EventStoreState& e = s.event_store;
    const std::string db_path = general_option(s, "db_path");
    e.event_db_path = with_separator(db_path.empty() ? s.program_directory : db_path);

    auto failed = [&](EventStoreOpen how, const std::string& what, Outcome o) {
        result.outcome = how;
        result.problem = what + ": " + std::string(store::describe(o));
        return result;
    };

    const std::string db_name = general_option(s, "db_name");
    if (db_name.empty()) {
        // First start: the standard database beside the program (opened if it is there already).
        const std::string standard = std::string(standard_event_base) + event_file_suffix;
        Outcome o = create_event_database(s, e.event_db_path, standard_event_base, sink);
        if (o == Outcome::file_exists) {
            e.event_db_name = standard;
            o = open_event_database(s, sink);
        }
        if (o != Outcome::ok)
            return failed(EventStoreOpen::database_failed,
                          "The event database " + e.event_db_path + standard + " cannot be made",
                          o);
        e.event_db_name = to_upper(standard);
        if ((o = standard_table(s, sink)) != Outcome::ok)
            return failed(EventStoreOpen::table_failed,
                          std::string("The table ") + standard_event_table + " cannot be made", o);
        e.event_table_name = to_upper(standard_event_table);
        result.outcome = EventStoreOpen::created;
    } else {
        e.event_db_name = db_name;
        if (Outcome o = open_event_database(s, sink); o != Outcome::ok)
            return failed(EventStoreOpen::database_failed,
                          "The event database " + e.event_db_path + db_name + " cannot be opened",
                          o);
        const std::string table = general_option(s, "DB_TABLE");
        if (table.empty()) {
            if (Outcome o = standard_table(s, sink); o != Outcome::ok)
                return failed(EventStoreOpen::table_failed,
                              std::string("The table ") + standard_event_table + " cannot be made",
                              o);
            e.event_table_name = to_upper(standard_event_table);
            result.outcome = EventStoreOpen::created;
        } else {
            e.event_table_name = table;
            if (Outcome o = open_event_table(s, sink); o != Outcome::ok)
                return failed(EventStoreOpen::table_failed,
                              "The table " + table + " of " + db_name + " cannot be opened", o);
        }
    }
    e.event_index_name = store::event_primary_index;
    if (!blank(e.event_db_path) && !blank(e.event_db_name) && !blank(e.event_table_name)) {
        result.database_title = event_database_title(e.event_db_name);
        result.table_title = to_upper(e.event_table_name);
    }
    return result;
}

std::vector<std::string> event_table_lines(TableStore& db) {
    std::vector<std::string> names, lines;
    if (db.table_names(names) == Outcome::ok)
        for (const std::string& n : names)
            if (n.compare(0, 4, "MSys") != 0) lines.push_back(n);
    if (lines.empty()) lines.push_back("[NONE]");
    return lines;
}

TableTest test_event_table(Recordset& table, MessageSink& sink) {
    Outcome o = table.move_first();
    if (o == Outcome::ok)
        for (const store::FieldDef& f : store::event_table_fields())
            if (!table.get(f.name).ok()) o = Outcome::damaged_file;
    if (o == Outcome::ok) return TableTest::has_events;
    if (o == Outcome::no_current_record) {
        sink.message("TABLE EMPTY", "There are no events in the selected table",
                     MessageIcon::information);
        return TableTest::empty;
    }
    sink.message("TABLE CORRUPT", "The selected table is corrupt", MessageIcon::information);
    return TableTest::corrupt;
}

Outcome open_event_file(const fs::path& file, const std::string& table, TableStore& db,
                        Recordset& records, TableStore::Access access) {
    TableStore opened;
    Recordset rs;
    Outcome o = opened.open(file, access);
    if (o == Outcome::ok) o = open_event_recordset(opened, table, rs);
    if (o != Outcome::ok) return o;
    records = Recordset();
    db = std::move(opened);
    records = std::move(rs);
    return Outcome::ok;
}

Outcome open_listing_table(Session& s, int n, ListingTable& out) {
    out = ListingTable();
    if (n < 1 || n > 5) return Outcome::no_such_table;
    const std::string prefix = "table_" + std::to_string(n) + "_";
    const std::string path = general_option(s, (prefix + "path").c_str());
    const std::string db = general_option(s, (prefix + "db").c_str());
    const std::string table = general_option(s, (prefix + "name").c_str());
    if (db.empty()) return Outcome::no_such_file;
    if (table.empty()) return Outcome::no_such_table;
    const fs::path folder = path.empty() ? fs::path(s.program_directory) : fs::path(path);
    if (Outcome o = open_event_file(store::find_file(folder, db), table, out.db, out.table);
        o != Outcome::ok) {
        out = ListingTable();
        return o;
    }
    out.has_rows = out.table.move_first() == Outcome::ok;
    return Outcome::ok;
}

} // namespace celestark
