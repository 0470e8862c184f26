// Inside the table store: the SQLite connection shared by a store and its recordsets, statement
// handles, names and the mapping of field types to declared column types. Not for callers.
#pragma once

#include "store/store_types.h"

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace celestark::store::detail {

// Name of the table that keeps the program's index names beside SQLite's.
inline constexpr std::string_view index_names_table = "celestark_indexes";
// Name of the column that holds a row's bookmark in tables made here.
inline constexpr std::string_view bookmark_column = "_bookmark";

class Stmt {
  public:
    Stmt() = default;
    explicit Stmt(sqlite3_stmt* s) : s_(s) {}
    ~Stmt() { sqlite3_finalize(s_); }
    Stmt(Stmt&& o) noexcept : s_(std::exchange(o.s_, nullptr)) {}
    Stmt& operator=(Stmt&& o) noexcept {
        if (this != &o) {
            sqlite3_finalize(s_);
            s_ = std::exchange(o.s_, nullptr);
        }
        return *this;
    }
    Stmt(const Stmt&) = delete;
    Stmt& operator=(const Stmt&) = delete;
    sqlite3_stmt* get() const { return s_; }
    explicit operator bool() const { return s_ != nullptr; }

  private:
    sqlite3_stmt* s_ = nullptr;
};

// Resets a statement and clears its bindings when a one-shot use ends, so that it holds no read
// transaction open.
class Reset {
  public:
    explicit Reset(sqlite3_stmt* s) : s_(s) {}
    ~Reset() {
        if (s_) {
            sqlite3_reset(s_);
            sqlite3_clear_bindings(s_);
        }
    }
    Reset(const Reset&) = delete;
    Reset& operator=(const Reset&) = delete;

  private:
    sqlite3_stmt* s_;
};

// What a recordset does when the store needs its statements quiet or gone.
class StatementOwner {
  public:
    // Resets any statement left part way through its rows.
    virtual void park() = 0;
    // Finalizes every statement; the store is closing.
    virtual void release() = 0;

  protected:
    ~StatementOwner() = default;
};

struct Db {
    sqlite3* handle = nullptr;
    bool read_only = false;
    std::uint64_t changes = 0; // rises with every write through this connection
    std::uint64_t epoch = 0;   // rises whenever statements part way through rows are reset
    std::vector<std::uint64_t> transactions; // serial of each open transaction, outermost first
    std::uint64_t next_serial = 0;
    std::string last_error;
    std::vector<StatementOwner*> owners;
    std::unordered_map<std::string, Stmt> cache;

    Db() = default;
    Db(const Db&) = delete;
    Db& operator=(const Db&) = delete;
    ~Db() { close(); }

    bool open() const { return handle != nullptr; }
    void close();
    // Records the engine's message and maps the result code.
    Outcome fail(int rc);
    Outcome fail_with(Outcome o, std::string text) {
        last_error = std::move(text);
        return o;
    }
    // Reads share one snapshot of the file: a read transaction held open between calls by an
    // anchor statement, since starting a read transaction costs more than a seek. A write through
    // this connection ends it first; so do refresh() and a positioning read once the snapshot is
    // older than `snapshot_age`, so that writes of other connections come into view.
    static constexpr std::chrono::milliseconds snapshot_age{100};
    Stmt anchor;
    bool anchored = false;
    std::chrono::steady_clock::time_point anchored_at;
    // Takes the snapshot if none is held (outside explicit transactions, which hold their own).
    void hold();
    // Called by seeks and other positioning reads.
    void renew() {
        if (anchored && std::chrono::steady_clock::now() - anchored_at > snapshot_age) quiesce();
        hold();
    }

    // Resets every statement part way through its rows, the anchor too; the connection then holds
    // no read transaction of its own and the next query sees the file as it is now.
    void quiesce();
    // Called before every write through the connection.
    void writing() {
        quiesce();
        ++changes;
    }
    Outcome exec(const char* sql);
    // Runs a statement without results, prepared once.
    Outcome run(const std::string& sql);
    // A statement prepared once for the life of the connection.
    sqlite3_stmt* cached(const std::string& sql, Outcome& outcome);
    Stmt prepare(std::string_view sql, Outcome& outcome, bool persistent);
};

std::string quote(std::string_view name);
bool same_name(std::string_view a, std::string_view b);
// The program's rule for names of tables, fields and indexes.
bool valid_name(std::string_view name);

std::string declared_type(const FieldDef& field);
FieldDef field_from_declared(std::string name, std::string_view declared);
// Turns a value into what the field stores; `check_width` off lets text run past the field's
// width (for keys to compare with).
Outcome coerce(const FieldDef& field, const Value& in, Value& out, bool check_width = true);

void bind(sqlite3_stmt* s, int index, const Value& v);
Value column(sqlite3_stmt* s, int index);

// Field list of a table, and the expression that names its rowid.
struct TableShape {
    std::string name; // as stored
    std::vector<FieldDef> fields;
    std::string rowid; // quoted column or rowid alias
};
Outcome read_shape(Db& db, std::string_view table, TableShape& shape);

struct IndexInfo {
    IndexDef def;
    std::vector<int> columns; // positions in TableShape::fields
};
Outcome read_indexes(Db& db, const TableShape& shape, std::vector<IndexInfo>& indexes);

// ASCII case-insensitive hashing and equality for lookups by field name.
struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const;
};
struct NameEq {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return same_name(a, b); }
};

} // namespace celestark::store::detail
