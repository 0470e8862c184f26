#pragma once
// Event databases: files `<base>.zod.mdb` of any number of event tables, all of one shape (see
// store/event_schema.h). The session keeps one database and one table open; their place is kept
// in the options `db_path`, `db_name` and `DB_TABLE` of `option_name`.
#include "session/messages.h"
#include "store/table_store.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace celestark {

struct Session;

inline constexpr const char* event_file_suffix = ".zod.mdb";
inline constexpr const char* standard_event_base = "Celestark";
inline constexpr const char* standard_event_table = "Events";
// The temporary database of the biography, removed at every start.
inline constexpr const char* biography_event_file = "bio3.zod.mdb";

// A folder as the session keeps it: with a trailing separator.
std::string with_separator(std::string path);
// The name a window title shows: the file name without its last 8 characters (".zod.mdb") and the
// table name, both in capitals.
std::string event_database_title(std::string_view db_name);

// Creates `path + base + ".zod.mdb"`, makes it the open database (no table open), and writes
// `db_name` and `db_path`. The outcome of the store: file_exists when the file is there already.
store::Outcome create_event_database(Session& s, const std::string& path, const std::string& base,
                                     MessageSink& sink);

// Creates an event table in the open database with its 54 fields and four indexes and opens it
// under `Name_Event`; the user slots are cleared and the active event reset; `DB_TABLE` is written.
// A refusal shows its message ("Cannot add a new table to what is probably an old CELESTARK
// database" when the file cannot take a table) and the previous table stays open.
store::Outcome create_event_table(Session& s, const std::string& name, MessageSink& sink);

// Opens `event_db_path + event_db_name` as the open database (no table open) and writes the path
// and name to the options. On failure the previous database stays open.
store::Outcome open_event_database(Session& s, MessageSink& sink);

// Opens `event_table_name` of the open database under `Name_Event` and writes `DB_TABLE`. A table
// without the event fields or the index gives bad_definition; the previous table stays open.
store::Outcome open_event_table(Session& s, MessageSink& sink);

// Writes the path, database and table in use to the options, leaving out any that is blank.
void write_event_path_options(Session& s, MessageSink& sink);

// The start of the event store.
enum class EventStoreOpen {
    opened,          // the database and table of the options
    created,         // first start: the standard database or table was made
    database_failed, // the database could not be opened: the database screen takes over
    table_failed,    // the table could not be opened: the database screen takes over
};
struct EventStoreResult {
    EventStoreOpen outcome = EventStoreOpen::opened;
    std::string database_title, table_title; // for the window titles; empty after a failure
    std::string problem;                     // what failed, for the database screen
};
EventStoreResult open_event_store(Session& s, MessageSink& sink);

// The lines of a database's table list: "[NONE]" alone without tables; otherwise every table
// whose name does not begin with "MSys".
std::vector<std::string> event_table_lines(store::TableStore& db);

// The test of a table by its first row: "TABLE EMPTY" without rows, "TABLE CORRUPT" when the row
// cannot be read. Both messages leave the table selected.
enum class TableTest { has_events, empty, corrupt };
TableTest test_event_table(store::Recordset& table, MessageSink& sink);

// Opens `table` of the event database `file` under `Name_Event` without touching the session: for
// tables other than the open one. A table without the event fields gives bad_definition.
store::Outcome
open_event_file(const std::filesystem::path& file, const std::string& table, store::TableStore& db,
                store::Recordset& records,
                store::TableStore::Access access = store::TableStore::Access::read_write);

// One of the listing tables of the options (`table_n_path`, `table_n_db`, `table_n_name`, n 1 to
// 5), opened under `Name_Event` and left on its first row.
struct ListingTable {
    store::TableStore db;
    store::Recordset table;
    bool has_rows = false;
};
store::Outcome open_listing_table(Session& s, int n, ListingTable& out);

} // namespace celestark
