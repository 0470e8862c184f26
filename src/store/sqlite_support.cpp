#include "store/sqlite_support.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>

namespace celestark::store::detail {

namespace {

char lower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string upper(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return out;
}

std::size_t characters(std::string_view utf8) {
    std::size_t n = 0;
    for (unsigned char c : utf8)
        if ((c & 0xC0) != 0x80) ++n;
    return n;
}

} // namespace

void Db::close() {
    if (!handle) return;
    for (StatementOwner* owner : owners) owner->release();
    cache.clear();
    anchor = Stmt{};
    anchored = false;
    sqlite3_close_v2(handle);
    handle = nullptr;
}

Outcome Db::fail(int rc) {
    last_error = handle ? sqlite3_errmsg(handle) : sqlite3_errstr(rc);
    switch (rc & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
        return Outcome::ok;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return Outcome::damaged_file;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return Outcome::busy;
    case SQLITE_READONLY:
        return Outcome::read_only;
    case SQLITE_IOERR:
    case SQLITE_FULL:
    case SQLITE_CANTOPEN:
        return Outcome::io_error;
    case SQLITE_CONSTRAINT:
        if (rc == SQLITE_CONSTRAINT_UNIQUE || rc == SQLITE_CONSTRAINT_PRIMARYKEY)
            return Outcome::duplicate_key;
        return Outcome::store_error;
    default:
        if (last_error.rfind("no such table", 0) == 0) return Outcome::no_such_table;
        if (last_error.rfind("no such column", 0) == 0) return Outcome::no_such_field;
        return Outcome::store_error;
    }
}

void Db::quiesce() {
    for (StatementOwner* owner : owners) owner->park();
    if (anchored) {
        sqlite3_reset(anchor.get());
        anchored = false;
    }
    ++epoch;
}

void Db::hold() {
    if (anchored || !handle || !sqlite3_get_autocommit(handle)) return;
    if (!anchor) {
        Outcome ignored;
        anchor = prepare("SELECT count(*) FROM sqlite_schema", ignored, true);
        if (!anchor) return;
    }
    // The statement stays on its row, and so keeps the read transaction open, until reset.
    if (sqlite3_step(anchor.get()) == SQLITE_ROW) {
        anchored = true;
        anchored_at = std::chrono::steady_clock::now();
    } else {
        sqlite3_reset(anchor.get());
    }
}

Outcome Db::exec(const char* sql) {
    if (!handle) return Outcome::not_open;
    int rc = sqlite3_exec(handle, sql, nullptr, nullptr, nullptr);
    return rc == SQLITE_OK ? Outcome::ok : fail(rc);
}

Outcome Db::run(const std::string& sql) {
    Outcome o;
    sqlite3_stmt* s = cached(sql, o);
    if (!s) return o;
    Reset done(s);
    int rc = sqlite3_step(s);
    return rc == SQLITE_DONE || rc == SQLITE_ROW ? Outcome::ok : fail(rc);
}

Stmt Db::prepare(std::string_view sql, Outcome& outcome, bool persistent) {
    sqlite3_stmt* s = nullptr;
    if (!handle) {
        outcome = Outcome::not_open;
        return Stmt{};
    }
    int rc = sqlite3_prepare_v3(handle, sql.data(), static_cast<int>(sql.size()),
                                persistent ? SQLITE_PREPARE_PERSISTENT : 0, &s, nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_finalize(s);
        outcome = fail(rc);
        return Stmt{};
    }
    outcome = Outcome::ok;
    return Stmt(s);
}

sqlite3_stmt* Db::cached(const std::string& sql, Outcome& outcome) {
    auto found = cache.find(sql);
    if (found != cache.end()) {
        outcome = Outcome::ok;
        return found->second.get();
    }
    Stmt s = prepare(sql, outcome, true);
    if (!s) return nullptr;
    sqlite3_stmt* raw = s.get();
    cache.emplace(sql, std::move(s));
    return raw;
}

std::string quote(std::string_view name) {
    std::string out;
    out.reserve(name.size() + 2);
    out.push_back('"');
    for (char c : name) {
        if (c == '"') out.push_back('"');
        out.push_back(c);
    }
    out.push_back('"');
    return out;
}

bool same_name(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (lower(a[i]) != lower(b[i])) return false;
    return true;
}

std::size_t NameHash::operator()(std::string_view s) const {
    std::size_t h = 1469598103934665603ull;
    for (char c : s) h = (h ^ static_cast<unsigned char>(lower(c))) * 1099511628211ull;
    return h;
}

bool valid_name(std::string_view name) {
    if (name.empty() || characters(name) > 64 || name.front() == ' ') return false;
    for (unsigned char c : name)
        if (c < 32 || c == 127 || c == '.' || c == '!' || c == '`' || c == '[' || c == ']')
            return false;
    return true;
}

std::string declared_type(const FieldDef& field) {
    switch (field.type) {
    case FieldType::text:
        return "TEXT(" + std::to_string(field.width) + ")";
    case FieldType::memo:
        return "LONGTEXT";
    case FieldType::boolean:
        return "BIT";
    case FieldType::byte:
        return "BYTE";
    case FieldType::integer:
        return "SMALLINT";
    case FieldType::long_integer:
        return "INTEGER";
    case FieldType::single:
        return "REAL";
    case FieldType::double_precision:
        return "DOUBLE";
    case FieldType::date:
        return "DATETIME";
    case FieldType::unknown:
        return "";
    }
    return "";
}

FieldDef field_from_declared(std::string name, std::string_view declared) {
    FieldDef f;
    f.name = std::move(name);
    std::string type = upper(declared);
    std::string base = type.substr(0, type.find('('));
    while (!base.empty() && base.back() == ' ') base.pop_back();
    int width = 0;
    if (auto open = type.find('('); open != std::string::npos) {
        const char* first = type.data() + open + 1;
        std::from_chars(first, type.data() + type.size(), width);
    }
    struct Name {
        const char* word;
        FieldType type;
    };
    static constexpr Name names[] = {
        {"TEXT", FieldType::text},
        {"VARCHAR", FieldType::text},
        {"CHAR", FieldType::text},
        {"LONGTEXT", FieldType::memo},
        {"MEMO", FieldType::memo},
        {"BIT", FieldType::boolean},
        {"YESNO", FieldType::boolean},
        {"BOOLEAN", FieldType::boolean},
        {"BYTE", FieldType::byte},
        {"TINYINT", FieldType::byte},
        {"SMALLINT", FieldType::integer},
        {"SHORT", FieldType::integer},
        {"INTEGER", FieldType::long_integer},
        {"LONG", FieldType::long_integer},
        {"INT", FieldType::long_integer},
        {"REAL", FieldType::single},
        {"SINGLE", FieldType::single},
        {"DOUBLE", FieldType::double_precision},
        {"FLOAT", FieldType::double_precision},
        {"DATETIME", FieldType::date},
        {"DATE", FieldType::date},
    };
    for (const Name& n : names) {
        if (base == n.word) {
            f.type = n.type;
            if (f.type == FieldType::text) {
                if (width >= 1 && width <= 255)
                    f.width = width;
                else
                    f.type = FieldType::memo; // text without a usable width holds any length
            }
            return f;
        }
    }
    f.type = FieldType::unknown;
    return f;
}

namespace {

Outcome to_number(const Value& in, double& out) {
    switch (in.kind()) {
    case Value::Kind::integer:
    case Value::Kind::real:
        out = in.as_double();
        return Outcome::ok;
    case Value::Kind::text:
        return parse_number(*in.text_ptr(), out) ? Outcome::ok : Outcome::type_mismatch;
    case Value::Kind::null:
        break;
    }
    return Outcome::type_mismatch;
}

Outcome to_whole(const Value& in, std::int64_t low, std::int64_t high, Value& out) {
    if (in.kind() == Value::Kind::integer) {
        std::int64_t v = in.as_int();
        if (v < low || v > high) return Outcome::value_out_of_range;
        out = Value(v);
        return Outcome::ok;
    }
    double d = 0.0;
    if (Outcome o = to_number(in, d); o != Outcome::ok) return o;
    d = std::nearbyint(d);
    if (d < static_cast<double>(low) || d > static_cast<double>(high))
        return Outcome::value_out_of_range;
    out = Value(static_cast<std::int64_t>(d));
    return Outcome::ok;
}

bool flag_word(std::string_view text, bool& flag) {
    static constexpr std::pair<const char*, bool> words[] = {{"true", true}, {"yes", true},
                                                             {"on", true},   {"false", false},
                                                             {"no", false},  {"off", false}};
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    for (const auto& [word, value] : words) {
        if (same_name(text, word)) {
            flag = value;
            return true;
        }
    }
    return false;
}

} // namespace

Outcome coerce(const FieldDef& field, const Value& in, Value& out, bool check_width) {
    if (!in.ok()) return Outcome::type_mismatch;
    if (in.is_null() && field.type != FieldType::boolean) {
        out = Value();
        return Outcome::ok;
    }
    switch (field.type) {
    case FieldType::text:
    case FieldType::memo: {
        std::string text = in.as_text();
        if (check_width && field.type == FieldType::text &&
            characters(text) > static_cast<std::size_t>(field.width))
            return Outcome::field_too_small;
        out = Value(std::move(text));
        return Outcome::ok;
    }
    case FieldType::boolean: {
        bool flag = false;
        if (in.kind() == Value::Kind::text && flag_word(*in.text_ptr(), flag)) {
            out = Value(flag);
            return Outcome::ok;
        }
        double d = 0.0;
        if (Outcome o = to_number(in, d); o != Outcome::ok) return o;
        out = Value(d != 0.0);
        return Outcome::ok;
    }
    case FieldType::byte:
        return to_whole(in, 0, 255, out);
    case FieldType::integer:
        return to_whole(in, -32768, 32767, out);
    case FieldType::long_integer:
        return to_whole(in, INT32_MIN, INT32_MAX, out);
    case FieldType::single: {
        double d = 0.0;
        if (Outcome o = to_number(in, d); o != Outcome::ok) return o;
        if (std::fabs(d) > FLT_MAX) return Outcome::value_out_of_range;
        out = Value(static_cast<double>(static_cast<float>(d)));
        return Outcome::ok;
    }
    case FieldType::double_precision:
    case FieldType::date: {
        double d = 0.0;
        if (Outcome o = to_number(in, d); o != Outcome::ok) return o;
        out = Value(d);
        return Outcome::ok;
    }
    case FieldType::unknown:
        out = in;
        return Outcome::ok;
    }
    return Outcome::type_mismatch;
}

void bind(sqlite3_stmt* s, int index, const Value& v) {
    switch (v.kind()) {
    case Value::Kind::null:
        sqlite3_bind_null(s, index);
        break;
    case Value::Kind::integer:
        sqlite3_bind_int64(s, index, v.as_int());
        break;
    case Value::Kind::real:
        sqlite3_bind_double(s, index, v.as_double());
        break;
    case Value::Kind::text: {
        const std::string& t = *v.text_ptr();
        sqlite3_bind_text(s, index, t.data(), static_cast<int>(t.size()), SQLITE_TRANSIENT);
        break;
    }
    }
}

Value column(sqlite3_stmt* s, int index) {
    switch (sqlite3_column_type(s, index)) {
    case SQLITE_INTEGER:
        return Value(static_cast<std::int64_t>(sqlite3_column_int64(s, index)));
    case SQLITE_FLOAT:
        return Value(sqlite3_column_double(s, index));
    case SQLITE_NULL:
        return Value();
    default: {
        const unsigned char* text = sqlite3_column_text(s, index);
        int bytes = sqlite3_column_bytes(s, index);
        return Value(
            std::string_view(reinterpret_cast<const char*>(text), static_cast<std::size_t>(bytes)));
    }
    }
}

Outcome read_shape(Db& db, std::string_view table, TableShape& shape) {
    Outcome o;
    sqlite3_stmt* s = db.cached(
        "SELECT name FROM sqlite_schema WHERE type = 'table' AND name = ?1 COLLATE NOCASE", o);
    if (!s) return o;
    {
        Reset done(s);
        sqlite3_bind_text(s, 1, table.data(), static_cast<int>(table.size()), SQLITE_TRANSIENT);
        int rc = sqlite3_step(s);
        if (rc == SQLITE_DONE) return db.fail_with(Outcome::no_such_table, "no such table");
        if (rc != SQLITE_ROW) return db.fail(rc);
        shape.name = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
    }
    if (same_name(shape.name, index_names_table))
        return db.fail_with(Outcome::no_such_table, "no such table");
    s = db.cached("SELECT name, type, pk FROM pragma_table_info(?1) ORDER BY cid", o);
    if (!s) return o;
    Reset done(s);
    sqlite3_bind_text(s, 1, shape.name.data(), static_cast<int>(shape.name.size()),
                      SQLITE_TRANSIENT);
    shape.fields.clear();
    shape.rowid.clear();
    int pk_columns = 0;
    std::string pk_name, pk_type;
    int rc;
    while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
        std::string name = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
        const unsigned char* type = sqlite3_column_text(s, 1);
        std::string declared = type ? reinterpret_cast<const char*>(type) : "";
        if (sqlite3_column_int(s, 2) > 0) {
            ++pk_columns;
            pk_name = name;
            pk_type = upper(declared);
        }
        if (same_name(name, bookmark_column)) continue;
        shape.fields.push_back(field_from_declared(std::move(name), declared));
    }
    if (rc != SQLITE_DONE) return db.fail(rc);
    if (pk_columns == 1 && pk_type == "INTEGER") {
        shape.rowid = quote(pk_name);
    } else {
        for (const char* alias : {"rowid", "_rowid_", "oid"}) {
            bool taken = false;
            for (const FieldDef& f : shape.fields) taken = taken || same_name(f.name, alias);
            if (!taken) {
                shape.rowid = alias;
                break;
            }
        }
        if (shape.rowid.empty())
            return db.fail_with(Outcome::store_error, "the table's row numbers cannot be named");
    }
    return Outcome::ok;
}

Outcome read_indexes(Db& db, const TableShape& shape, std::vector<IndexInfo>& indexes) {
    indexes.clear();
    Outcome o;
    sqlite3_stmt* list = db.cached("SELECT name, \"unique\" FROM pragma_index_list(?1) "
                                   "WHERE origin = 'c' ORDER BY seq DESC",
                                   o);
    if (!list) return o;
    std::vector<std::pair<std::string, bool>> found;
    {
        Reset done(list);
        sqlite3_bind_text(list, 1, shape.name.data(), static_cast<int>(shape.name.size()),
                          SQLITE_TRANSIENT);
        int rc;
        while ((rc = sqlite3_step(list)) == SQLITE_ROW)
            found.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(list, 0)),
                               sqlite3_column_int(list, 1) != 0);
        if (rc != SQLITE_DONE) return db.fail(rc);
    }
    // The program's names, where this store made the index.
    bool have_names = false;
    {
        sqlite3_stmt* t =
            db.cached("SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = '" +
                          std::string(index_names_table) + "'",
                      o);
        if (!t) return o;
        Reset done(t);
        int rc = sqlite3_step(t);
        if (rc != SQLITE_ROW && rc != SQLITE_DONE) return db.fail(rc);
        have_names = rc == SQLITE_ROW;
    }
    sqlite3_stmt* names = nullptr;
    if (have_names) {
        names = db.cached("SELECT index_name, is_primary FROM " + std::string(index_names_table) +
                              " WHERE sql_name = ?1",
                          o);
        if (!names) return o;
    }
    sqlite3_stmt* info = db.cached("SELECT name FROM pragma_index_info(?1) ORDER BY seqno", o);
    if (!info) return o;
    for (auto& [sql_name, unique] : found) {
        IndexInfo ix;
        ix.def.name = sql_name;
        ix.def.unique = unique;
        if (names) {
            Reset done(names);
            sqlite3_bind_text(names, 1, sql_name.data(), static_cast<int>(sql_name.size()),
                              SQLITE_TRANSIENT);
            int rc = sqlite3_step(names);
            if (rc == SQLITE_ROW) {
                ix.def.name = reinterpret_cast<const char*>(sqlite3_column_text(names, 0));
                ix.def.primary = sqlite3_column_int(names, 1) != 0;
            } else if (rc != SQLITE_DONE) {
                return db.fail(rc);
            }
        }
        Reset done(info);
        sqlite3_bind_text(info, 1, sql_name.data(), static_cast<int>(sql_name.size()),
                          SQLITE_TRANSIENT);
        int rc;
        bool usable = true;
        while ((rc = sqlite3_step(info)) == SQLITE_ROW) {
            const unsigned char* col = sqlite3_column_text(info, 0);
            int position = -1;
            if (col) {
                std::string_view name(reinterpret_cast<const char*>(col));
                for (std::size_t i = 0; i < shape.fields.size(); ++i)
                    if (same_name(shape.fields[i].name, name)) position = static_cast<int>(i);
            }
            if (position < 0)
                usable = false; // an index on an expression or on the rowid
            else {
                ix.def.fields.push_back(shape.fields[static_cast<std::size_t>(position)].name);
                ix.columns.push_back(position);
            }
        }
        if (rc != SQLITE_DONE) return db.fail(rc);
        if (usable && !ix.columns.empty()) indexes.push_back(std::move(ix));
    }
    return Outcome::ok;
}

} // namespace celestark::store::detail
