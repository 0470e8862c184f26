// The table store: every stored table of the program lives in a file of this store, one SQLite
// database per file. Tables keep their rows with a rowid (the bookmark); indexes are SQLite indexes
// under the program's own index names; recordsets walk a table in index order, seek by full or
// partial keys and edit rows in place. Outcomes are values; nothing is thrown across this API.
//
// A store and its recordsets belong to one thread at a time.
#pragma once

#include "store/store_types.h"

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace celestark::store {

namespace detail {
struct Db;
struct RecordsetImpl;
} // namespace detail

class Recordset;
class Transaction;

class TableStore {
  public:
    enum class Access { read_write, read_only };

    TableStore();
    ~TableStore();
    TableStore(TableStore&&) noexcept;
    TableStore& operator=(TableStore&&) noexcept;
    TableStore(const TableStore&) = delete;
    TableStore& operator=(const TableStore&) = delete;

    // Opens an existing file. A file that is not a database, or whose pages are cut short, gives
    // damaged_file; damage deeper inside shows when the rows are read (or through
    // check_integrity). A store already open is closed first.
    Outcome open(const std::filesystem::path& file, Access access = Access::read_write);
    // Creates a new, empty file; file_exists when something is there already.
    Outcome create(const std::filesystem::path& file);
    // Closes the file. Recordsets and transactions of the store report not_open from then on.
    void close();
    bool is_open() const;
    const std::filesystem::path& file() const { return file_; }

    // Reads every page of the file and checks its structure.
    Outcome check_integrity();

    // Reads share one snapshot of the file, renewed by every write through this store and, for
    // writes by other stores or processes, at a seek or move to an end once it is older than a
    // tenth of a second. refresh() renews it now.
    void refresh();

    // The tables made by the program or any other writer, without the engine's own, by name.
    Outcome table_names(std::vector<std::string>& names);
    // Names of tables, fields and indexes are compared without regard to case.
    bool table_exists(std::string_view table);
    Outcome create_table(std::string_view table, std::span<const FieldDef> fields,
                         std::span<const IndexDef> indexes = {});
    Outcome delete_table(std::string_view table);
    // Adds a field at the end of a table; the rows have it null (a flag false).
    Outcome add_field(std::string_view table, const FieldDef& field);
    // The fields in table order, as declared; the indexes in the order they were made.
    Outcome table_fields(std::string_view table, std::vector<FieldDef>& fields);
    Outcome table_indexes(std::string_view table, std::vector<IndexDef>& indexes);

    // Opens a recordset on a table, in rowid order, on its first row if it has one.
    Outcome open_recordset(std::string_view table, Recordset& recordset);

    // Starts a transaction for bulk work; it nests. The guard rolls back unless committed.
    Transaction begin_transaction();

    // Rises with every change written through this store.
    std::uint64_t change_count() const;
    // The engine's text for the last failure, for messages.
    const std::string& last_error() const;

  private:
    std::shared_ptr<detail::Db> db_;
    std::filesystem::path file_;
    std::string error_; // the reason an open or create failed
};

class Transaction {
  public:
    Transaction() = default;
    ~Transaction();
    Transaction(Transaction&&) noexcept;
    Transaction& operator=(Transaction&&) noexcept;
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    // False when the transaction could not start (see outcome()) or has ended.
    bool active() const { return active_; }
    // How the start went.
    Outcome outcome() const { return begun_; }
    Outcome commit();
    Outcome rollback();

  private:
    friend class TableStore;
    bool current() const;

    std::shared_ptr<detail::Db> db_;
    int depth_ = 0;
    std::uint64_t serial_ = 0;
    bool active_ = false;
    Outcome begun_ = Outcome::not_open;
};

// A table recordset: a current row within an order. Order is that of the chosen index (its fields,
// then rowid) or rowid order with no index. Rows added or deleted meanwhile, through this recordset
// or any other of the same store, are met or skipped as their keys say.
class Recordset {
  public:
    Recordset();
    ~Recordset();
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    bool is_open() const;
    const std::string& table_name() const;
    // The table's fields in table order.
    const std::vector<FieldDef>& fields() const;
    // Position of a field in fields(), or -1.
    int field_index(std::string_view name) const;

    // Chooses the order by the index's name; an empty name gives rowid order. The current row
    // stays current; with none, the recordset moves to the first row.
    Outcome set_index(std::string_view name);
    const std::string& index_name() const;

    // Seeks with "=", ">=", ">" (the first row in order that satisfies the comparison) or "<",
    // "<=" (the last such row). Fewer keys than the index has fields compare only that prefix.
    // ok on a match; not_found otherwise, with no current row (eof() and bof() both true).
    Outcome seek(std::string_view op, std::span<const Value> keys);
    Outcome seek(std::string_view op, std::initializer_list<Value> keys) {
        return seek(op, std::span<const Value>(keys.begin(), keys.size()));
    }
    bool no_match() const;

    // Moves. Past either end gives eof() or bof() with no current row; a move from there further
    // out gives no_current_record, move_previous from eof() goes to the last row and move_next from
    // bof() to the first. On an empty table move_first and move_last give no_current_record with
    // eof() and bof() both true.
    Outcome move_first();
    Outcome move_last();
    Outcome move_next();
    Outcome move_previous();
    bool eof() const;
    bool bof() const;
    bool has_current() const;
    std::int64_t record_count();

    // The current row's bookmark (empty with no current row), and the way back to it.
    std::string bookmark() const;
    Outcome go_to(std::string_view bookmark);
    // The row last added or changed through this recordset, or empty.
    std::string last_modified_bookmark() const;

    // Editing. After add_new or edit, set fields, then update() stores them (or cancel_update()).
    // After an added row is stored the current row is what it was before add_new; after an edit
    // it is the edited row. A refused update (duplicate_key, ...) keeps the edit open.
    Outcome add_new();
    Outcome edit();
    Outcome update();
    Outcome cancel_update();
    bool editing() const;
    // Deletes the current row; no row is current until the next move, which goes on from where
    // the row stood.
    Outcome delete_row();

    // Fields by name, without regard to case. While editing, the edited values are read.
    Value get(std::string_view field) const;
    Value get(int field_index) const;
    bool is_null(std::string_view field) const;
    Outcome set(std::string_view field, const Value& value);
    Outcome set(int field_index, const Value& value);

  private:
    friend class TableStore;
    std::unique_ptr<detail::RecordsetImpl> impl_;
};

} // namespace celestark::store
