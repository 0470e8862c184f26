#include "store/table_store.h"

#include "store/sqlite_support.h"

#include <cstring>
#include <fstream>
#include <system_error>

namespace celestark::store {

using detail::Db;
using detail::quote;
using detail::Reset;
using detail::same_name;

namespace fs = std::filesystem;

namespace {

constexpr int busy_timeout_ms = 5000;
constexpr long long mapped_bytes = 256LL << 20;
constexpr int application_id = 0x434B5354; // "CKST"

std::uint32_t big_endian(const unsigned char* p) {
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) |
           std::uint32_t{p[3]};
}

// A first look at the file before the engine reads it: a database begins with its header, and
// its pages are all there.
Outcome check_header(const fs::path& file, std::string& why) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        why = "the file cannot be read";
        return Outcome::io_error;
    }
    unsigned char header[100] = {};
    in.read(reinterpret_cast<char*>(header), sizeof header);
    if (in.gcount() < static_cast<std::streamsize>(sizeof header) ||
        std::memcmp(header, "SQLite format 3", 16) != 0) {
        why = "file is not a database";
        return Outcome::damaged_file;
    }
    std::uint32_t page_size = (std::uint32_t{header[16]} << 8) | header[17];
    if (page_size == 1) page_size = 65536;
    if (page_size < 512 || page_size > 65536 || (page_size & (page_size - 1)) != 0) {
        why = "file is not a database";
        return Outcome::damaged_file;
    }
    std::uint32_t pages = big_endian(header + 28);
    bool size_valid = big_endian(header + 24) == big_endian(header + 92);
    std::error_code ec;
    fs::path wal = file;
    wal += "-wal";
    // Pages still in the write-ahead log complete the file when it is opened.
    bool pending_log = fs::exists(wal, ec) && fs::file_size(wal, ec) > 0;
    std::uintmax_t bytes = fs::file_size(file, ec);
    if (!ec && size_valid && !pending_log && pages > 0 &&
        bytes < std::uintmax_t{pages} * page_size) {
        why = "database disk image is malformed (file cut short)";
        return Outcome::damaged_file;
    }
    return Outcome::ok;
}

Outcome connect(const fs::path& file, int flags, std::shared_ptr<Db>& out, std::string& why) {
    auto db = std::make_shared<Db>();
    int rc =
        sqlite3_open_v2(file.string().c_str(), &db->handle, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) {
        Outcome o = db->fail(rc);
        why = db->last_error;
        return o == Outcome::io_error ? Outcome::no_such_file : o;
    }
    sqlite3_extended_result_codes(db->handle, 1);
    sqlite3_busy_timeout(db->handle, busy_timeout_ms);
    // Pages are read straight from a mapping of the file rather than copied in: a seek on a
    // large table then costs half as much. The store never shrinks a file while it is open.
    db->exec(("PRAGMA mmap_size = " + std::to_string(mapped_bytes)).c_str());
    out = std::move(db);
    return Outcome::ok;
}

} // namespace

TableStore::TableStore() = default;
TableStore::~TableStore() {
    close();
}
TableStore::TableStore(TableStore&& o) noexcept
    : db_(std::move(o.db_)), file_(std::move(o.file_)), error_(std::move(o.error_)) {}
TableStore& TableStore::operator=(TableStore&& o) noexcept {
    if (this != &o) {
        close();
        db_ = std::move(o.db_);
        file_ = std::move(o.file_);
        error_ = std::move(o.error_);
    }
    return *this;
}

Outcome TableStore::open(const fs::path& file, Access access) {
    close();
    error_.clear();
    std::error_code ec;
    fs::file_status status = fs::status(file, ec);
    if (!fs::exists(status)) {
        error_ = "no such file";
        return Outcome::no_such_file;
    }
    if (!fs::is_regular_file(status)) {
        error_ = "not a file";
        return Outcome::damaged_file;
    }
    if (Outcome o = check_header(file, error_); o != Outcome::ok) return o;
    std::shared_ptr<Db> db;
    int flags = access == Access::read_only ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    if (Outcome o = connect(file, flags, db, error_); o != Outcome::ok) return o;
    // The first read of the file: the schema. Pages of a damaged file fail here.
    if (Outcome o = db->exec("SELECT count(*) FROM sqlite_schema"); o != Outcome::ok) {
        error_ = db->last_error;
        return o;
    }
    db->read_only = access == Access::read_only || sqlite3_db_readonly(db->handle, "main") == 1;
    if (!db->read_only) {
        // The write-ahead log keeps every commit atomic and lets readers go on during a write.
        Outcome o = db->exec("PRAGMA journal_mode = WAL");
        if (o == Outcome::damaged_file) {
            error_ = db->last_error;
            return o;
        }
        db->exec("PRAGMA synchronous = NORMAL");
    }
    db_ = std::move(db);
    file_ = file;
    return Outcome::ok;
}

Outcome TableStore::create(const fs::path& file) {
    close();
    error_.clear();
    std::error_code ec;
    if (fs::exists(fs::symlink_status(file, ec))) {
        error_ = "the file exists already";
        return Outcome::file_exists;
    }
    fs::path parent = file.parent_path();
    if (!parent.empty() && !fs::is_directory(parent, ec)) {
        error_ = "no such folder";
        return Outcome::cannot_create;
    }
    std::shared_ptr<Db> db;
    if (connect(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, db, error_) != Outcome::ok)
        return Outcome::cannot_create;
    std::string setup = "PRAGMA application_id = " + std::to_string(application_id) +
                        "; PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
                        "BEGIN IMMEDIATE; CREATE TABLE " +
                        std::string(detail::index_names_table) +
                        " (sql_name TEXT PRIMARY KEY, table_name TEXT NOT NULL COLLATE NOCASE,"
                        " index_name TEXT NOT NULL COLLATE NOCASE, is_primary INTEGER NOT NULL);"
                        "COMMIT;";
    if (db->exec(setup.c_str()) != Outcome::ok) {
        error_ = db->last_error;
        db->close();
        for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
            fs::path p = file;
            p += suffix;
            fs::remove(p, ec);
        }
        return Outcome::cannot_create;
    }
    db->read_only = false;
    db_ = std::move(db);
    file_ = file;
    return Outcome::ok;
}

void TableStore::close() {
    if (db_) db_->close();
    db_.reset();
    file_.clear();
}

bool TableStore::is_open() const {
    return db_ && db_->open();
}

void TableStore::refresh() {
    if (is_open()) db_->quiesce();
}

Outcome TableStore::check_integrity() {
    if (!is_open()) return Outcome::not_open;
    db_->quiesce();
    Outcome o;
    sqlite3_stmt* s = db_->cached("PRAGMA quick_check(1)", o);
    if (!s) return o;
    Reset done(s);
    int rc = sqlite3_step(s);
    if (rc != SQLITE_ROW) return db_->fail(rc);
    const unsigned char* text = sqlite3_column_text(s, 0);
    if (text && std::strcmp(reinterpret_cast<const char*>(text), "ok") == 0) return Outcome::ok;
    return db_->fail_with(Outcome::damaged_file,
                          text ? reinterpret_cast<const char*>(text) : "damaged");
}

Outcome TableStore::table_names(std::vector<std::string>& names) {
    names.clear();
    if (!is_open()) return Outcome::not_open;
    Outcome o;
    sqlite3_stmt* s = db_->cached("SELECT name FROM sqlite_schema WHERE type = 'table' AND "
                                  "name NOT LIKE 'sqlite!_%' ESCAPE '!' AND name <> '" +
                                      std::string(detail::index_names_table) +
                                      "' COLLATE NOCASE ORDER BY name COLLATE NOCASE",
                                  o);
    if (!s) return o;
    Reset done(s);
    int rc;
    while ((rc = sqlite3_step(s)) == SQLITE_ROW)
        names.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(s, 0)));
    return rc == SQLITE_DONE ? Outcome::ok : db_->fail(rc);
}

bool TableStore::table_exists(std::string_view table) {
    if (!is_open()) return false;
    detail::TableShape shape;
    return detail::read_shape(*db_, table, shape) == Outcome::ok;
}

Outcome TableStore::create_table(std::string_view table, std::span<const FieldDef> fields,
                                 std::span<const IndexDef> indexes) {
    if (!is_open()) return Outcome::not_open;
    if (db_->read_only) return db_->fail_with(Outcome::read_only, "the file is read only");
    auto reject = [&](Outcome o, const std::string& why) { return db_->fail_with(o, why); };
    if (!detail::valid_name(table) || same_name(table, detail::index_names_table) ||
        (table.size() >= 7 && same_name(table.substr(0, 7), "sqlite_")))
        return reject(Outcome::invalid_name, "not a valid table name");
    if (fields.empty()) return reject(Outcome::bad_definition, "a table needs a field");
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const FieldDef& f = fields[i];
        if (!detail::valid_name(f.name) || same_name(f.name, detail::bookmark_column))
            return reject(Outcome::invalid_name, "not a valid field name: " + f.name);
        for (std::size_t j = 0; j < i; ++j)
            if (same_name(fields[j].name, f.name))
                return reject(Outcome::bad_definition, "field named twice: " + f.name);
        if (f.type == FieldType::text && (f.width < 1 || f.width > 255))
            return reject(Outcome::bad_definition, "text width out of 1 to 255: " + f.name);
        if (f.type == FieldType::unknown)
            return reject(Outcome::bad_definition, "field without a type: " + f.name);
    }
    int primaries = 0;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        const IndexDef& ix = indexes[i];
        if (!detail::valid_name(ix.name))
            return reject(Outcome::invalid_name, "not a valid index name: " + ix.name);
        for (std::size_t j = 0; j < i; ++j)
            if (same_name(indexes[j].name, ix.name))
                return reject(Outcome::bad_definition, "index named twice: " + ix.name);
        if (ix.fields.empty()) return reject(Outcome::bad_definition, "index without fields");
        for (std::size_t k = 0; k < ix.fields.size(); ++k) {
            bool known = false;
            for (const FieldDef& f : fields) known = known || same_name(f.name, ix.fields[k]);
            if (!known) return reject(Outcome::no_such_field, "no such field: " + ix.fields[k]);
            for (std::size_t j = 0; j < k; ++j)
                if (same_name(ix.fields[j], ix.fields[k]))
                    return reject(Outcome::bad_definition, "field twice in index: " + ix.name);
        }
        if (ix.primary) ++primaries;
    }
    if (primaries > 1) return reject(Outcome::bad_definition, "more than one primary index");
    if (table_exists(table)) return reject(Outcome::table_exists, "table exists already");

    std::string sql = "CREATE TABLE " + quote(table) + " (" + quote(detail::bookmark_column) +
                      " INTEGER PRIMARY KEY AUTOINCREMENT";
    for (const FieldDef& f : fields) {
        sql += ", " + quote(f.name) + " " + detail::declared_type(f);
        if (f.type == FieldType::text || f.type == FieldType::memo) sql += " COLLATE NOCASE";
        if (f.type == FieldType::boolean) sql += " DEFAULT 0";
    }
    sql += ")";

    Transaction work = begin_transaction();
    if (!work.active()) return work.outcome();
    auto failed = [&](Outcome o) {
        std::string why = db_->last_error;
        work.rollback();
        db_->last_error = why;
        switch (o) {
        case Outcome::read_only:
        case Outcome::busy:
        case Outcome::damaged_file:
        case Outcome::io_error:
            return o;
        default:
            return Outcome::cannot_create;
        }
    };
    if (Outcome o = db_->exec(sql.c_str()); o != Outcome::ok) return failed(o);
    std::string names_table(detail::index_names_table);
    if (!indexes.empty()) {
        std::string make_names = "CREATE TABLE IF NOT EXISTS " + names_table +
                                 " (sql_name TEXT PRIMARY KEY, table_name TEXT NOT NULL COLLATE "
                                 "NOCASE, index_name TEXT NOT NULL COLLATE NOCASE, is_primary "
                                 "INTEGER NOT NULL)";
        if (Outcome o = db_->exec(make_names.c_str()); o != Outcome::ok) return failed(o);
    }
    for (const IndexDef& ix : indexes) {
        // Names hold no "." so that table and index together name the SQLite index uniquely.
        std::string sql_name = std::string(table) + "." + ix.name;
        std::string make = std::string("CREATE ") + (ix.unique || ix.primary ? "UNIQUE " : "") +
                           "INDEX " + quote(sql_name) + " ON " + quote(table) + " (";
        for (std::size_t k = 0; k < ix.fields.size(); ++k)
            make += (k ? ", " : "") + quote(ix.fields[k]);
        make += ")";
        if (Outcome o = db_->exec(make.c_str()); o != Outcome::ok) return failed(o);
        Outcome o;
        sqlite3_stmt* s = db_->cached("INSERT OR REPLACE INTO " + names_table +
                                          " (sql_name, table_name, index_name, is_primary) "
                                          "VALUES (?1, ?2, ?3, ?4)",
                                      o);
        if (!s) return failed(o);
        Reset done(s);
        sqlite3_bind_text(s, 1, sql_name.data(), static_cast<int>(sql_name.size()),
                          SQLITE_TRANSIENT);
        sqlite3_bind_text(s, 2, table.data(), static_cast<int>(table.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(s, 3, ix.name.data(), static_cast<int>(ix.name.size()), SQLITE_TRANSIENT);
        sqlite3_bind_int(s, 4, ix.primary ? 1 : 0);
        if (int rc = sqlite3_step(s); rc != SQLITE_DONE) return failed(db_->fail(rc));
    }
    db_->writing();
    return work.commit();
}

Outcome TableStore::add_field(std::string_view table, const FieldDef& f) {
    if (!is_open()) return Outcome::not_open;
    detail::TableShape shape;
    if (Outcome o = detail::read_shape(*db_, table, shape); o != Outcome::ok) return o;
    if (db_->read_only) return db_->fail_with(Outcome::read_only, "the file is read only");
    if (!detail::valid_name(f.name) || same_name(f.name, detail::bookmark_column))
        return db_->fail_with(Outcome::invalid_name, "not a valid field name: " + f.name);
    if (f.type == FieldType::unknown ||
        (f.type == FieldType::text && (f.width < 1 || f.width > 255)))
        return db_->fail_with(Outcome::bad_definition, "not a valid field: " + f.name);
    std::vector<FieldDef> fields;
    if (Outcome o = table_fields(shape.name, fields); o != Outcome::ok) return o;
    for (const FieldDef& known : fields)
        if (same_name(known.name, f.name))
            return db_->fail_with(Outcome::bad_definition, "field exists already: " + f.name);
    std::string sql = "ALTER TABLE " + quote(shape.name) + " ADD COLUMN " + quote(f.name) + " " +
                      detail::declared_type(f);
    if (f.type == FieldType::text || f.type == FieldType::memo) sql += " COLLATE NOCASE";
    if (f.type == FieldType::boolean) sql += " DEFAULT 0";
    db_->writing();
    return db_->exec(sql.c_str());
}

Outcome TableStore::delete_table(std::string_view table) {
    if (!is_open()) return Outcome::not_open;
    detail::TableShape shape;
    if (Outcome o = detail::read_shape(*db_, table, shape); o != Outcome::ok) return o;
    if (db_->read_only) return db_->fail_with(Outcome::read_only, "the file is read only");
    Transaction work = begin_transaction();
    if (!work.active()) return work.outcome();
    db_->writing();
    std::string drop = "DROP TABLE " + quote(shape.name);
    if (Outcome o = db_->exec(drop.c_str()); o != Outcome::ok) return o;
    Outcome o;
    sqlite3_stmt* exists = db_->cached("SELECT 1 FROM sqlite_schema WHERE type = 'table' AND "
                                       "name = '" +
                                           std::string(detail::index_names_table) + "'",
                                       o);
    if (!exists) return o;
    bool have_names = false;
    {
        Reset done(exists);
        have_names = sqlite3_step(exists) == SQLITE_ROW;
    }
    if (have_names) {
        sqlite3_stmt* forget = db_->cached(
            "DELETE FROM " + std::string(detail::index_names_table) + " WHERE table_name = ?1", o);
        if (!forget) return o;
        Reset done(forget);
        sqlite3_bind_text(forget, 1, shape.name.data(), static_cast<int>(shape.name.size()),
                          SQLITE_TRANSIENT);
        if (int rc = sqlite3_step(forget); rc != SQLITE_DONE) return db_->fail(rc);
    }
    return work.commit();
}

Outcome TableStore::table_fields(std::string_view table, std::vector<FieldDef>& fields) {
    fields.clear();
    if (!is_open()) return Outcome::not_open;
    detail::TableShape shape;
    Outcome o = detail::read_shape(*db_, table, shape);
    if (o == Outcome::ok) fields = std::move(shape.fields);
    return o;
}

Outcome TableStore::table_indexes(std::string_view table, std::vector<IndexDef>& indexes) {
    indexes.clear();
    if (!is_open()) return Outcome::not_open;
    detail::TableShape shape;
    if (Outcome o = detail::read_shape(*db_, table, shape); o != Outcome::ok) return o;
    std::vector<detail::IndexInfo> infos;
    if (Outcome o = detail::read_indexes(*db_, shape, infos); o != Outcome::ok) return o;
    for (auto& info : infos) indexes.push_back(std::move(info.def));
    return Outcome::ok;
}

Transaction TableStore::begin_transaction() {
    Transaction t;
    if (!is_open()) return t;
    t.db_ = db_;
    db_->quiesce();
    int depth = static_cast<int>(db_->transactions.size()) + 1;
    std::string sql = depth > 1        ? "SAVEPOINT ck_level_" + std::to_string(depth)
                      : db_->read_only ? "BEGIN"
                                       : "BEGIN IMMEDIATE";
    t.begun_ = db_->run(sql);
    if (t.begun_ != Outcome::ok) return t;
    t.depth_ = depth;
    t.serial_ = ++db_->next_serial;
    t.active_ = true;
    db_->transactions.push_back(t.serial_);
    return t;
}

std::uint64_t TableStore::change_count() const {
    return db_ ? db_->changes : 0;
}

const std::string& TableStore::last_error() const {
    return db_ ? db_->last_error : error_;
}

// Transaction

Transaction::~Transaction() {
    if (active_) rollback();
}

Transaction::Transaction(Transaction&& o) noexcept
    : db_(std::move(o.db_)), depth_(o.depth_), serial_(o.serial_), active_(o.active_),
      begun_(o.begun_) {
    o.active_ = false;
}

Transaction& Transaction::operator=(Transaction&& o) noexcept {
    if (this != &o) {
        if (active_) rollback();
        db_ = std::move(o.db_);
        depth_ = o.depth_;
        serial_ = o.serial_;
        active_ = std::exchange(o.active_, false);
        begun_ = o.begun_;
    }
    return *this;
}

bool Transaction::current() const {
    if (!active_ || !db_ || !db_->open()) return false;
    auto level = static_cast<std::size_t>(depth_);
    return level <= db_->transactions.size() && db_->transactions[level - 1] == serial_;
}

Outcome Transaction::commit() {
    if (!current()) {
        active_ = false;
        return db_ && !db_->open() ? Outcome::not_open : Outcome::not_in_transaction;
    }
    if (static_cast<std::size_t>(depth_) != db_->transactions.size())
        return Outcome::not_in_transaction; // an inner transaction is still open
    db_->quiesce();
    Outcome o = db_->run(depth_ == 1 ? std::string("COMMIT")
                                     : "RELEASE ck_level_" + std::to_string(depth_));
    if (o != Outcome::ok) return o; // still open: the guard rolls it back
    db_->transactions.pop_back();
    active_ = false;
    return Outcome::ok;
}

Outcome Transaction::rollback() {
    if (!current()) {
        active_ = false;
        return db_ && !db_->open() ? Outcome::not_open : Outcome::not_in_transaction;
    }
    // Rolling back a level rolls back every level inside it.
    db_->writing();
    Outcome o = Outcome::ok;
    if (depth_ == 1) {
        o = db_->run("ROLLBACK");
    } else {
        std::string name = "ck_level_" + std::to_string(depth_);
        o = db_->run("ROLLBACK TO " + name);
        if (o == Outcome::ok) o = db_->run("RELEASE " + name);
    }
    db_->transactions.resize(static_cast<std::size_t>(depth_ - 1));
    active_ = false;
    return o;
}

} // namespace celestark::store
