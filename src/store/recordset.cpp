// Recordsets. A position in index order is the key of a row: its index values, then its rowid.
// A move runs a scan from the current key: a cascade of queries, each an equal prefix of the key
// and one comparison on the next field, which together give every row beyond the key in order
// (nulls sort first) and each of which SQLite answers straight from the index. A scan is kept
// open after a move and serves further moves in the same direction until anything is written
// through the store, when the next move starts a fresh scan from the current key.
#include "store/table_store.h"

#include "store/sqlite_support.h"

#include <charconv>
#include <unordered_map>

namespace celestark::store {

namespace detail {

namespace {

enum class Term : std::uint8_t { none, greater, less, is_null, not_null };

// One query of a scan: positions [0, level) equal to the key, `term` on position `level`.
struct Part {
    std::uint8_t level;
    Term term;
};

// The order of an index (or rowid order) with its prepared scans.
struct Order {
    std::string name; // empty: rowid order
    std::vector<int> columns;
    bool unique = false;
    // What its scans select: the rowid, then the order's fields and those the recordset reads.
    // `result_of` gives each field's result column, or -1.
    std::string select_list;
    std::vector<int> result_of;
    std::unordered_map<std::uint64_t, Stmt> statements;
};

struct Scan {
    Order* order = nullptr;
    bool ascending = true;
    std::vector<Part> parts;
    std::vector<Value> key;
    std::size_t at = 0;
    sqlite3_stmt* stmt = nullptr; // statement of parts[at] while it runs
    bool valid = false;           // next step gives the row beyond the current one
    std::uint64_t epoch = 0;

    void stop() {
        if (stmt) {
            sqlite3_reset(stmt);
            stmt = nullptr;
        }
        valid = false;
    }
};

enum class Place { row, deleted, outside };
enum class Editing { none, adding, changing };

} // namespace

struct RecordsetImpl final : StatementOwner {
    std::shared_ptr<Db> db;
    TableShape shape;
    std::string select_list; // rowid, then every field
    // Fields read through this recordset so far; scans select only these and the order's own,
    // since SQLite decodes every selected column of every row stepped over.
    std::vector<bool> wanted;
    bool projection_changed = false;
    std::unordered_map<std::string, int, NameHash, NameEq> positions;
    std::string last_name; // the name last looked up, exactly as given
    int last_lookup = -1;
    std::vector<IndexInfo> indexes;
    std::unordered_map<std::string, std::unique_ptr<Order>, NameHash, NameEq> orders;
    Order* order = nullptr;
    Scan forward, backward;
    std::vector<int> every_field; // result columns when every field is selected
    std::vector<Value> seek_key;

    Place place = Place::outside;
    bool eof = true, bof = true, no_match = false;
    // The current row: its rowid, and its fields either still in the scan statement that
    // stands on it (`live`) or copied into `values`.
    std::int64_t rowid = 0;
    sqlite3_stmt* live = nullptr;
    const std::vector<int>* live_columns = nullptr; // result column of each field in `live`
    std::vector<Value> values;
    std::vector<bool> have;         // which of `values` hold the row's field
    std::uint64_t values_as_of = 0; // db->changes when the row was read
    static constexpr std::uint64_t stale = ~std::uint64_t{0};

    Editing editing = Editing::none;
    std::vector<Value> buffer;
    std::vector<bool> dirty;
    std::int64_t last_modified = 0;
    bool has_last_modified = false;

    Stmt by_rowid, insert, remove, count;
    std::unordered_map<std::string, Stmt> updates;

    ~RecordsetImpl() {
        release();
        if (db) std::erase(db->owners, static_cast<StatementOwner*>(this));
    }

    void park() override {
        stop(forward);
        stop(backward);
    }

    // Copies the current row out of its statement, which is about to move or be reset. Fields
    // the statement did not select are read later, by rowid, if asked for.
    void materialize() {
        if (!live) return;
        for (std::size_t i = 0; i < values.size(); ++i) {
            int col = (*live_columns)[i];
            have[i] = col >= 0;
            if (col >= 0) values[i] = column(live, col);
        }
        live = nullptr;
    }

    // The current row is about to be replaced: nothing of it need be kept.
    void forget_row() {
        live = nullptr;
        values_as_of = stale;
    }

    void stop(Scan& scan) {
        if (scan.stmt && scan.stmt == live) materialize();
        scan.stop();
    }

    // A field of the current row, which fresh() has found up to date.
    // `want` off: a read by the store itself, which does not widen what scans select.
    Value field(std::size_t i, Outcome& outcome, bool want = true) {
        outcome = Outcome::ok;
        if (want && !wanted[i]) {
            wanted[i] = true;
            projection_changed = true;
        }
        if (live) {
            if (int col = (*live_columns)[i]; col >= 0) return column(live, col);
        } else if (have[i]) {
            return values[i];
        }
        int rc = read_row(rowid, outcome);
        if (rc == SQLITE_ROW) return values[i];
        if (rc == SQLITE_DONE) {
            place = Place::deleted;
            outcome = Outcome::no_current_record;
        }
        return Value::failure(outcome);
    }

    // Builds what the scans of `o` select; after the set of fields read has grown, every scan
    // statement is made again.
    void project(Order& o) {
        if (projection_changed) {
            park();
            for (auto& [name, each] : orders) {
                each->statements.clear();
                each->select_list.clear();
            }
            projection_changed = false;
        }
        if (!o.select_list.empty()) return;
        std::vector<bool> chosen = wanted;
        for (int c : o.columns) chosen[static_cast<std::size_t>(c)] = true;
        o.select_list = shape.rowid;
        o.result_of.assign(chosen.size(), -1);
        int next = 1;
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            if (!chosen[i]) continue;
            o.select_list += ", " + quote(shape.fields[i].name);
            o.result_of[i] = next++;
        }
    }

    void release() override {
        park();
        for (auto& [name, o] : orders) {
            o->statements.clear();
            o->select_list.clear();
        }
        by_rowid = Stmt{};
        insert = Stmt{};
        remove = Stmt{};
        count = Stmt{};
        updates.clear();
    }

    bool usable() const { return db && db->open(); }

    Order* find_order(std::string_view name) {
        if (auto found = orders.find(name); found != orders.end()) return found->second.get();
        const IndexInfo* info = nullptr;
        for (const IndexInfo& ix : indexes)
            if (same_name(ix.def.name, name)) info = &ix;
        if (!info && !name.empty()) return nullptr;
        auto o = std::make_unique<Order>();
        if (info) {
            o->name = info->def.name;
            o->columns = info->columns;
            o->unique = info->def.unique;
        }
        Order* raw = o.get();
        orders.emplace(std::string(name), std::move(o));
        return raw;
    }

    std::string position_sql(const Order& o, std::size_t p) const {
        return p < o.columns.size()
                   ? quote(shape.fields[static_cast<std::size_t>(o.columns[p])].name)
                   : shape.rowid;
    }

    sqlite3_stmt* statement(Order& o, bool ascending, const Part& part,
                            const std::vector<Value>& key, Outcome& outcome) {
        project(o);
        std::uint64_t nulls = 0;
        for (std::size_t p = 0; p < part.level; ++p)
            if (key[p].is_null()) nulls |= std::uint64_t{1} << p;
        std::uint64_t id = (ascending ? 1u : 0u) | (static_cast<std::uint64_t>(part.term) << 1) |
                           (std::uint64_t{part.level} << 4) | (nulls << 12);
        if (auto found = o.statements.find(id); found != o.statements.end()) {
            outcome = Outcome::ok;
            return found->second.get();
        }
        std::string where;
        auto add = [&where](const std::string& condition) {
            where += where.empty() ? " WHERE " : " AND ";
            where += condition;
        };
        for (std::size_t p = 0; p < part.level; ++p)
            add(position_sql(o, p) +
                (key[p].is_null() ? std::string(" IS NULL") : " = ?" + std::to_string(p + 1)));
        std::string at = position_sql(o, part.level);
        std::string slot = "?" + std::to_string(part.level + 1);
        switch (part.term) {
        case Term::none:
            break;
        case Term::greater:
            add(at + " > " + slot);
            break;
        case Term::less:
            add(at + " < " + slot);
            break;
        case Term::is_null:
            add(at + " IS NULL");
            break;
        case Term::not_null:
            add(at + " IS NOT NULL");
            break;
        }
        std::string sql =
            "SELECT " + o.select_list + " FROM " + quote(shape.name) + where + " ORDER BY ";
        const char* direction = ascending ? " ASC" : " DESC";
        for (std::size_t p = 0; p <= o.columns.size(); ++p)
            sql += (p ? ", " : "") + position_sql(o, p) + direction;
        Stmt s = db->prepare(sql, outcome, true);
        if (!s) return nullptr;
        sqlite3_stmt* raw = s.get();
        o.statements.emplace(id, std::move(s));
        return raw;
    }

    // Sets up a scan from `key` (a prefix of the order's positions). Inclusive scans begin with
    // the rows whose prefix equals the key.
    void plan(Scan& scan, bool ascending, bool inclusive, std::span<const Value> key) {
        stop(scan);
        scan.order = order;
        scan.ascending = ascending;
        scan.key.assign(key.begin(), key.end());
        scan.parts.clear();
        scan.at = 0;
        auto m = static_cast<std::uint8_t>(key.size());
        std::size_t n = order->columns.size();
        if (inclusive || m == 0) scan.parts.push_back({m, Term::none});
        // With a unique key and no nulls in it, no other row shares the index values.
        bool skip_rowid_level = order->unique && m == n + 1;
        for (std::size_t p = 0; p < n && skip_rowid_level; ++p)
            skip_rowid_level = !key[p].is_null();
        for (int j = m - 1; j >= 0; --j) {
            auto level = static_cast<std::uint8_t>(j);
            if (skip_rowid_level && static_cast<std::size_t>(j) == n) continue;
            bool null = key[level].is_null();
            if (ascending) {
                scan.parts.push_back({level, null ? Term::not_null : Term::greater});
            } else if (!null) {
                scan.parts.push_back({level, Term::less});
                if (static_cast<std::size_t>(j) < n) scan.parts.push_back({level, Term::is_null});
            }
        }
        scan.valid = true;
        scan.epoch = db->epoch;
    }

    // The next row of a scan: SQLITE_ROW with the scan's statement on it, SQLITE_DONE, or an error.
    int step(Scan& scan, Outcome& outcome) {
        while (scan.at < scan.parts.size()) {
            if (!scan.stmt) {
                db->hold();
                const Part& part = scan.parts[scan.at];
                sqlite3_stmt* s = statement(*scan.order, scan.ascending, part, scan.key, outcome);
                if (!s) return SQLITE_ERROR;
                std::size_t bound =
                    part.level + (part.term == Term::greater || part.term == Term::less ? 1u : 0u);
                for (std::size_t p = 0; p < bound; ++p)
                    if (!scan.key[p].is_null()) bind(s, static_cast<int>(p + 1), scan.key[p]);
                scan.stmt = s;
            }
            if (scan.stmt == live) forget_row(); // moving on: the row stays only by its rowid
            int rc = sqlite3_step(scan.stmt);
            if (rc == SQLITE_ROW) return rc;
            sqlite3_reset(scan.stmt);
            scan.stmt = nullptr;
            if (rc != SQLITE_DONE) {
                scan.valid = false;
                outcome = db->fail(rc);
                return rc;
            }
            ++scan.at;
        }
        return SQLITE_DONE;
    }

    bool scan_ready(const Scan& scan) const {
        return scan.valid && scan.epoch == db->epoch && scan.order == order;
    }

    // A scan statement now stands on the current row; its fields are read from there.
    void take_row(sqlite3_stmt* s, const std::vector<int>& columns) {
        rowid = sqlite3_column_int64(s, 0);
        live = s;
        live_columns = &columns;
        values_as_of = db->changes;
        place = Place::row;
        eof = bof = no_match = false;
    }

    // Takes a row read with every field (by rowid).
    void copy_row(sqlite3_stmt* s) {
        take_row(s, every_field);
        materialize();
    }

    void go_outside(bool at_end, bool at_start) {
        place = Place::outside;
        eof = at_end;
        bof = at_start;
    }

    // Reads the row with `id`: SQLITE_ROW and the row taken, SQLITE_DONE when it is gone.
    int read_row(std::int64_t id, Outcome& outcome) {
        if (!by_rowid) {
            by_rowid = db->prepare("SELECT " + select_list + " FROM " + quote(shape.name) +
                                       " WHERE " + shape.rowid + " = ?1",
                                   outcome, true);
            if (!by_rowid) return SQLITE_ERROR;
        }
        db->hold();
        sqlite3_stmt* s = by_rowid.get();
        Reset done(s);
        sqlite3_bind_int64(s, 1, id);
        int rc = sqlite3_step(s);
        if (rc == SQLITE_ROW)
            copy_row(s);
        else if (rc != SQLITE_DONE)
            outcome = db->fail(rc);
        return rc;
    }

    // Brings the current row's values up to date after writes; false when the row is gone.
    bool fresh(Outcome& outcome) {
        outcome = Outcome::ok;
        if (place != Place::row) return false;
        if (values_as_of == db->changes) return true;
        int rc = read_row(rowid, outcome);
        if (rc == SQLITE_ROW) return true;
        if (rc == SQLITE_DONE) {
            place = Place::deleted;
            outcome = Outcome::no_current_record;
        }
        return false;
    }

    std::vector<Value> current_key() {
        std::vector<Value> key;
        key.reserve(order->columns.size() + 1);
        for (int c : order->columns) {
            Outcome ignored;
            key.push_back(field(static_cast<std::size_t>(c), ignored, false));
        }
        key.emplace_back(rowid);
        return key;
    }

    Outcome arrive(Scan& used, Scan& other, int rc, Outcome outcome, bool ascending) {
        if (rc == SQLITE_ROW) {
            take_row(used.stmt, used.order->result_of);
            other.stop();
            return Outcome::ok;
        }
        stop(other);
        stop(used);
        if (rc != SQLITE_DONE) return outcome;
        go_outside(ascending, !ascending);
        return Outcome::ok;
    }

    Outcome move(bool ascending) {
        if (!usable()) return Outcome::not_open;
        editing = Editing::none;
        Scan& used = ascending ? forward : backward;
        Scan& other = ascending ? backward : forward;
        if (place == Place::outside) {
            if (ascending ? eof : bof) return Outcome::no_current_record;
            return ends(ascending);
        }
        if (!scan_ready(used) || projection_changed) {
            Outcome ignored;
            if (place == Place::row) fresh(ignored); // follow the row if its key changed
            std::vector<Value> key = current_key();
            plan(used, ascending, false, key);
        }
        Outcome outcome = Outcome::ok;
        int rc = step(used, outcome);
        return arrive(used, other, rc, outcome, ascending);
    }

    // move_first (ascending) or move_last.
    Outcome ends(bool ascending) {
        if (!usable()) return Outcome::not_open;
        editing = Editing::none;
        forget_row();
        db->renew();
        Scan& used = ascending ? forward : backward;
        Scan& other = ascending ? backward : forward;
        plan(used, ascending, true, {});
        Outcome outcome = Outcome::ok;
        int rc = step(used, outcome);
        other.stop();
        if (rc == SQLITE_ROW) {
            take_row(used.stmt, used.order->result_of);
            return Outcome::ok;
        }
        used.stop();
        if (rc != SQLITE_DONE) return outcome;
        go_outside(true, true);
        return Outcome::no_current_record;
    }
};

} // namespace detail

using detail::Db;
using detail::Editing;
using detail::Place;
using detail::RecordsetImpl;

Outcome TableStore::open_recordset(std::string_view table, Recordset& recordset) {
    recordset.impl_.reset();
    if (!is_open()) return Outcome::not_open;
    auto impl = std::make_unique<RecordsetImpl>();
    impl->db = db_;
    if (Outcome o = detail::read_shape(*db_, table, impl->shape); o != Outcome::ok) return o;
    if (Outcome o = detail::read_indexes(*db_, impl->shape, impl->indexes); o != Outcome::ok)
        return o;
    impl->select_list = impl->shape.rowid;
    for (std::size_t i = 0; i < impl->shape.fields.size(); ++i) {
        impl->select_list += ", " + detail::quote(impl->shape.fields[i].name);
        impl->positions.emplace(impl->shape.fields[i].name, static_cast<int>(i));
    }
    impl->values.resize(impl->shape.fields.size());
    impl->have.assign(impl->shape.fields.size(), false);
    impl->wanted.assign(impl->shape.fields.size(), false);
    for (std::size_t i = 0; i < impl->shape.fields.size(); ++i)
        impl->every_field.push_back(static_cast<int>(i + 1));
    impl->order = impl->find_order("");
    db_->owners.push_back(impl.get());
    Outcome first = impl->ends(true);
    if (first != Outcome::ok && first != Outcome::no_current_record) {
        return first; // impl unregisters itself as it goes
    }
    recordset.impl_ = std::move(impl);
    return Outcome::ok;
}

Recordset::Recordset() = default;
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

bool Recordset::is_open() const {
    return impl_ && impl_->usable();
}

const std::string& Recordset::table_name() const {
    static const std::string none;
    return impl_ ? impl_->shape.name : none;
}

const std::vector<FieldDef>& Recordset::fields() const {
    static const std::vector<FieldDef> none;
    return impl_ ? impl_->shape.fields : none;
}

int Recordset::field_index(std::string_view name) const {
    if (!impl_) return -1;
    RecordsetImpl& r = *impl_;
    // Readers ask for the same few fields over and over.
    if (r.last_lookup >= 0 && name == r.last_name) return r.last_lookup;
    auto found = r.positions.find(name);
    if (found == r.positions.end()) return -1;
    r.last_name.assign(name);
    r.last_lookup = found->second;
    return found->second;
}

Outcome Recordset::set_index(std::string_view name) {
    if (!is_open()) return Outcome::not_open;
    RecordsetImpl& r = *impl_;
    detail::Order* next = r.find_order(name);
    if (!next) {
        // An index made since the recordset was opened.
        if (Outcome o = detail::read_indexes(*r.db, r.shape, r.indexes); o != Outcome::ok) return o;
        next = r.find_order(name);
        if (!next) return r.db->fail_with(Outcome::no_such_index, "no such index");
    }
    r.editing = Editing::none;
    r.park();
    r.order = next;
    if (r.place == Place::outside) {
        Outcome o = r.ends(true);
        return o == Outcome::no_current_record ? Outcome::ok : o;
    }
    return Outcome::ok;
}

const std::string& Recordset::index_name() const {
    static const std::string none;
    return impl_ ? impl_->order->name : none;
}

Outcome Recordset::seek(std::string_view op, std::span<const Value> keys) {
    if (!is_open()) return Outcome::not_open;
    RecordsetImpl& r = *impl_;
    r.editing = Editing::none;
    bool ascending = true, inclusive = true, exact = false;
    if (op == "=")
        exact = true;
    else if (op == ">=") {
    } else if (op == ">")
        inclusive = false;
    else if (op == "<")
        ascending = inclusive = false;
    else if (op == "<=")
        ascending = false;
    else
        return r.db->fail_with(Outcome::bad_seek, "unknown comparison");
    if (r.order->columns.empty() || keys.empty() || keys.size() > r.order->columns.size())
        return r.db->fail_with(Outcome::bad_seek, "keys do not suit the index");
    std::vector<Value>& key = r.seek_key;
    key.resize(keys.size());
    for (std::size_t p = 0; p < keys.size(); ++p) {
        const FieldDef& f = r.shape.fields[static_cast<std::size_t>(r.order->columns[p])];
        // A key longer than its text field just finds no equal row.
        if (Outcome o = detail::coerce(f, keys[p], key[p], false); o != Outcome::ok) return o;
    }
    r.forget_row();
    r.db->renew();
    detail::Scan& used = ascending ? r.forward : r.backward;
    detail::Scan& other = ascending ? r.backward : r.forward;
    other.stop();
    r.plan(used, ascending, inclusive, key);
    Outcome outcome = Outcome::ok;
    int rc = r.step(used, outcome);
    if (rc == SQLITE_ROW && (!exact || used.at == 0)) {
        r.take_row(used.stmt, used.order->result_of);
        return Outcome::ok;
    }
    used.stop();
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) return outcome;
    r.go_outside(true, true);
    r.no_match = true;
    return Outcome::not_found;
}

bool Recordset::no_match() const {
    return impl_ && impl_->no_match;
}

Outcome Recordset::move_first() {
    return impl_ ? impl_->ends(true) : Outcome::not_open;
}
Outcome Recordset::move_last() {
    return impl_ ? impl_->ends(false) : Outcome::not_open;
}
Outcome Recordset::move_next() {
    return impl_ ? impl_->move(true) : Outcome::not_open;
}
Outcome Recordset::move_previous() {
    return impl_ ? impl_->move(false) : Outcome::not_open;
}

bool Recordset::eof() const {
    return !impl_ || impl_->eof;
}
bool Recordset::bof() const {
    return !impl_ || impl_->bof;
}
bool Recordset::has_current() const {
    return impl_ && impl_->place == Place::row;
}

std::int64_t Recordset::record_count() {
    if (!is_open()) return 0;
    RecordsetImpl& r = *impl_;
    Outcome o;
    if (!r.count) {
        r.count = r.db->prepare("SELECT count(*) FROM " + detail::quote(r.shape.name), o, true);
        if (!r.count) return 0;
    }
    detail::Reset done(r.count.get());
    if (sqlite3_step(r.count.get()) != SQLITE_ROW) return 0;
    return sqlite3_column_int64(r.count.get(), 0);
}

std::string Recordset::bookmark() const {
    return has_current() ? std::to_string(impl_->rowid) : std::string();
}

Outcome Recordset::go_to(std::string_view bookmark) {
    if (!is_open()) return Outcome::not_open;
    RecordsetImpl& r = *impl_;
    std::int64_t id = 0;
    auto [end, error] = std::from_chars(bookmark.data(), bookmark.data() + bookmark.size(), id);
    if (bookmark.empty() || error != std::errc() || end != bookmark.data() + bookmark.size())
        return r.db->fail_with(Outcome::bad_bookmark, "not a bookmark");
    r.editing = Editing::none;
    r.materialize();
    r.db->renew();
    // Keep the current row should the bookmark lead nowhere.
    std::int64_t was_rowid = r.rowid;
    std::vector<Value> was_values = r.values;
    std::vector<bool> was_have = r.have;
    Place was_place = r.place;
    bool was_eof = r.eof, was_bof = r.bof;
    std::uint64_t was_as_of = r.values_as_of;
    Outcome outcome = Outcome::ok;
    int rc = r.read_row(id, outcome);
    if (rc == SQLITE_ROW) return Outcome::ok;
    r.rowid = was_rowid;
    r.values = std::move(was_values);
    r.have = std::move(was_have);
    r.place = was_place;
    r.eof = was_eof;
    r.bof = was_bof;
    r.values_as_of = was_as_of;
    if (rc == SQLITE_DONE) return r.db->fail_with(Outcome::not_found, "no row at the bookmark");
    return outcome;
}

std::string Recordset::last_modified_bookmark() const {
    return impl_ && impl_->has_last_modified ? std::to_string(impl_->last_modified) : std::string();
}

Outcome Recordset::add_new() {
    if (!is_open()) return Outcome::not_open;
    RecordsetImpl& r = *impl_;
    if (r.db->read_only) return r.db->fail_with(Outcome::read_only, "the file is read only");
    r.buffer.assign(r.shape.fields.size(), Value());
    for (std::size_t i = 0; i < r.buffer.size(); ++i)
        if (r.shape.fields[i].type == FieldType::boolean) r.buffer[i] = Value(false);
    r.dirty.assign(r.buffer.size(), true);
    r.editing = Editing::adding;
    return Outcome::ok;
}

Outcome Recordset::edit() {
    if (!is_open()) return Outcome::not_open;
    RecordsetImpl& r = *impl_;
    if (r.db->read_only) return r.db->fail_with(Outcome::read_only, "the file is read only");
    r.editing = Editing::none;
    Outcome outcome;
    if (!r.fresh(outcome)) return outcome == Outcome::ok ? Outcome::no_current_record : outcome;
    int rc = r.read_row(r.rowid, outcome); // every field, as stored now
    if (rc == SQLITE_DONE) {
        r.place = Place::deleted;
        return Outcome::no_current_record;
    }
    if (rc != SQLITE_ROW) return outcome;
    r.buffer = r.values;
    r.dirty.assign(r.buffer.size(), false);
    r.editing = Editing::changing;
    return Outcome::ok;
}

bool Recordset::editing() const {
    return impl_ && impl_->editing != Editing::none;
}

Outcome Recordset::update() {
    if (!is_open()) return Outcome::not_open;
    RecordsetImpl& r = *impl_;
    if (r.editing == Editing::none) return Outcome::not_editing;
    Outcome o = Outcome::ok;
    if (r.editing == Editing::adding) {
        if (!r.insert) {
            std::string sql = "INSERT INTO " + detail::quote(r.shape.name);
            if (r.shape.fields.empty()) {
                sql += " DEFAULT VALUES";
            } else {
                std::string names, slots;
                for (std::size_t i = 0; i < r.shape.fields.size(); ++i) {
                    names += (i ? ", " : "") + detail::quote(r.shape.fields[i].name);
                    slots += (i ? ", ?" : "?") + std::to_string(i + 1);
                }
                sql += " (" + names + ") VALUES (" + slots + ")";
            }
            r.insert = r.db->prepare(sql, o, true);
            if (!r.insert) return o;
        }
        bool current_unchanged = r.values_as_of == r.db->changes;
        r.db->writing();
        sqlite3_stmt* s = r.insert.get();
        detail::Reset done(s);
        for (std::size_t i = 0; i < r.buffer.size(); ++i)
            detail::bind(s, static_cast<int>(i + 1), r.buffer[i]);
        int rc = sqlite3_step(s);
        if (rc != SQLITE_DONE) return r.db->fail(rc);
        r.last_modified = sqlite3_last_insert_rowid(r.db->handle);
        r.has_last_modified = true;
        r.editing = Editing::none;
        // A new row leaves every other row as it was.
        if (current_unchanged) r.values_as_of = r.db->changes;
        return Outcome::ok;
    }
    std::string mask;
    std::string sets;
    int slot = 0;
    for (std::size_t i = 0; i < r.dirty.size(); ++i) {
        mask.push_back(r.dirty[i] ? '1' : '0');
        if (!r.dirty[i]) continue;
        if (slot++ > 0) sets += ", ";
        sets += detail::quote(r.shape.fields[i].name) + " = ?" + std::to_string(slot);
    }
    if (slot == 0) {
        r.editing = Editing::none;
        return Outcome::ok;
    }
    auto found = r.updates.find(mask);
    if (found == r.updates.end()) {
        std::string sql = "UPDATE " + detail::quote(r.shape.name) + " SET " + sets + " WHERE " +
                          r.shape.rowid + " = ?" + std::to_string(slot + 1);
        detail::Stmt s = r.db->prepare(sql, o, true);
        if (!s) return o;
        found = r.updates.emplace(mask, std::move(s)).first;
    }
    r.db->writing();
    sqlite3_stmt* s = found->second.get();
    {
        detail::Reset done(s);
        int n = 0;
        for (std::size_t i = 0; i < r.dirty.size(); ++i)
            if (r.dirty[i]) detail::bind(s, ++n, r.buffer[i]);
        sqlite3_bind_int64(s, n + 1, r.rowid);
        int rc = sqlite3_step(s);
        if (rc != SQLITE_DONE) return r.db->fail(rc);
        if (sqlite3_changes(r.db->handle) == 0) {
            r.editing = Editing::none;
            r.place = Place::deleted;
            return r.db->fail_with(Outcome::no_current_record, "the row has been deleted");
        }
    }
    r.last_modified = r.rowid;
    r.has_last_modified = true;
    r.editing = Editing::none;
    r.read_row(r.rowid, o);
    return Outcome::ok;
}

Outcome Recordset::cancel_update() {
    if (!is_open()) return Outcome::not_open;
    if (impl_->editing == Editing::none) return Outcome::not_editing;
    impl_->editing = Editing::none;
    return Outcome::ok;
}

Outcome Recordset::delete_row() {
    if (!is_open()) return Outcome::not_open;
    RecordsetImpl& r = *impl_;
    r.editing = Editing::none;
    if (r.place != Place::row) return Outcome::no_current_record;
    if (r.db->read_only) return r.db->fail_with(Outcome::read_only, "the file is read only");
    Outcome o;
    if (!r.remove) {
        r.remove = r.db->prepare("DELETE FROM " + detail::quote(r.shape.name) + " WHERE " +
                                     r.shape.rowid + " = ?1",
                                 o, true);
        if (!r.remove) return o;
    }
    r.db->writing();
    sqlite3_stmt* s = r.remove.get();
    detail::Reset done(s);
    sqlite3_bind_int64(s, 1, r.rowid);
    int rc = sqlite3_step(s);
    if (rc != SQLITE_DONE) return r.db->fail(rc);
    r.place = Place::deleted;
    if (sqlite3_changes(r.db->handle) == 0)
        return r.db->fail_with(Outcome::no_current_record, "the row has been deleted");
    return Outcome::ok;
}

Value Recordset::get(std::string_view field) const {
    int i = field_index(field);
    if (i < 0) return Value::failure(impl_ ? Outcome::no_such_field : Outcome::not_open);
    return get(i);
}

Value Recordset::get(int field_index) const {
    if (!is_open()) return Value::failure(Outcome::not_open);
    RecordsetImpl& r = *impl_;
    if (field_index < 0 || static_cast<std::size_t>(field_index) >= r.values.size())
        return Value::failure(Outcome::no_such_field);
    auto i = static_cast<std::size_t>(field_index);
    if (r.editing != Editing::none) return r.buffer[i];
    Outcome outcome;
    if (!r.fresh(outcome))
        return Value::failure(outcome == Outcome::ok ? Outcome::no_current_record : outcome);
    return r.field(i, outcome);
}

bool Recordset::is_null(std::string_view field) const {
    return get(field).is_null();
}

Outcome Recordset::set(std::string_view field, const Value& value) {
    int i = field_index(field);
    if (i < 0) return impl_ ? Outcome::no_such_field : Outcome::not_open;
    return set(i, value);
}

Outcome Recordset::set(int field_index, const Value& value) {
    if (!is_open()) return Outcome::not_open;
    RecordsetImpl& r = *impl_;
    if (field_index < 0 || static_cast<std::size_t>(field_index) >= r.values.size())
        return Outcome::no_such_field;
    if (r.editing == Editing::none) return Outcome::not_editing;
    auto i = static_cast<std::size_t>(field_index);
    Value stored;
    if (Outcome o = detail::coerce(r.shape.fields[i], value, stored); o != Outcome::ok) return o;
    r.buffer[i] = std::move(stored);
    r.dirty[i] = true;
    return Outcome::ok;
}

} // namespace celestark::store
