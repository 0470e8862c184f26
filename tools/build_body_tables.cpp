// Builds the stored position tables of the table-driven bodies, outer3.mdb (Uranus, Neptune,
// Pluto) and asteroid.mdb (Juno, Vesta, Ceres, Pallas; Chiron), from the Swiss Ephemeris files
// (JPL DE431 compressed) through libswe. Run at setup time only; the program reads the tables
// and never links the library.
//
//   build_body_tables --out DIR           builds DIR/outer3.mdb and DIR/asteroid.mdb unless both
//                                         are there and complete (then it only touches them)
//   build_body_tables --out DIR --check   builds if needed, then compares the stored rows with
//                                         the library and measures the five-point reading
//   build_body_tables --steps P,A,C       measures other steps (days) in memory; writes nothing
//
// Options: --ephe DIR (the ephemeris files; default the Debian package's folder), --samples N
// (random moments per table for the measurements, besides the middle of every interval;
// default 10000). The measurements exit with 1 when a body's interpolation errs by 0.01" or more.
//
// Every row is one moment at the table's own even step: the Julian date in ephemeris time and
// the heliocentric ecliptic rectangular coordinates, geometric, of the mean ecliptic and equinox
// of date, in astronomical units. A file is written under a temporary name and renamed into place
// only when it is complete; the output is the same, byte for byte, at every run.

#include "session/angles.h"
#include "store/table_store.h"

#include <sqlite3.h>
#include <swephexp.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <numbers>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fs = std::filesystem;
using namespace celestark;
using store::FieldDef;
using store::FieldType;
using store::IndexDef;
using store::Outcome;
using store::Recordset;
using store::TableStore;
using store::Value;

namespace {

constexpr const char* default_ephemeris_dir = "/usr/share/libswe/ephe";
constexpr int source_flags = SEFLG_SWIEPH | SEFLG_HELCTR | SEFLG_XYZ | SEFLG_NONUT | SEFLG_TRUEPOS;
constexpr double arcsec_per_rad = 206264.80624709636;

// Rows lie on a grid through 2000 January 1.0 TT.
constexpr double grid_origin = 2451544.5;
// The span the planets and asteroids serve: -3000 January 1.0 (Julian calendar) to
// 3001 January 1.0 (Gregorian calendar), TT.
constexpr double served_first = 625307.5;
constexpr double served_last = 2817152.5;
// The span of Chiron's orbit in the ephemeris files (the library refuses outside it: close
// encounters with Saturn before and after).
constexpr double chiron_source_first = 1967601.5;
constexpr double chiron_source_last = 3419437.5;
// The Earth's greatest distance from the Sun, for the smallest possible geocentric distance.
constexpr double earth_aphelion_au = 1.0168;
// What the interpolation may cost, seen from the Earth at the body's closest.
constexpr double error_budget_arcsec = 0.01;

struct Body {
    int id;           // the library's body number
    const char* name; // column prefix
};

struct TableLayout {
    const char* file;
    const char* table;
    double step; // days
    std::vector<Body> bodies;
    bool source_limited; // rows only where the source has the body (Chiron)
};

// The steps: at each the five-point reading errs by less than 0.01" from the Earth at the
// body's closest (see docs/data.md for the measurements).
constexpr double planets_step = 64;
constexpr double asteroids_step = 5;
constexpr double chiron_step = 12;

std::vector<TableLayout> table_layouts(double p_step, double a_step, double c_step) {
    return {
        {"outer3.mdb",
         "planets",
         p_step,
         {{SE_URANUS, "uranus"}, {SE_NEPTUNE, "neptune"}, {SE_PLUTO, "pluto"}},
         false},
        {"asteroid.mdb",
         "asteroids",
         a_step,
         {{SE_JUNO, "juno"}, {SE_VESTA, "vesta"}, {SE_CERES, "ceres"}, {SE_PALLAS, "pallas"}},
         false},
        {"asteroid.mdb", "chiron", c_step, {{SE_CHIRON, "chiron"}}, true},
    };
}

// First and last grid index of a table's rows.
struct RowRange {
    long first;
    long last;
    long count() const { return last - first + 1; }
};

double row_date(const TableLayout& t, long k) {
    return grid_origin + static_cast<double>(k) * t.step;
}

RowRange row_range(const TableLayout& t) {
    if (t.source_limited)
        return {static_cast<long>(std::ceil((chiron_source_first - grid_origin) / t.step)),
                static_cast<long>(std::floor((chiron_source_last - grid_origin) / t.step))};
    // Three rows beyond either end of the span: the reading rule takes two rows before the last
    // row before the moment and three after it.
    return {static_cast<long>(std::floor((served_first - grid_origin) / t.step)) - 3,
            static_cast<long>(std::ceil((served_last - grid_origin) / t.step)) + 3};
}

// The moments a table answers for: after its third row, up to its third row from the end.
std::pair<double, double> served_span(const TableLayout& t) {
    const RowRange r = row_range(t);
    return {row_date(t, r.first + 2), row_date(t, r.last - 2)};
}

std::vector<FieldDef> table_fields(const TableLayout& t) {
    std::vector<FieldDef> fields{{"julian_day_number", FieldType::double_precision, 0}};
    for (const Body& b : t.bodies)
        for (const char* axis : {"_x_position", "_y_position", "_z_position"})
            fields.push_back({std::string(b.name) + axis, FieldType::double_precision, 0});
    return fields;
}

const std::vector<IndexDef> table_indexes = {{"day_number", {"julian_day_number"}, true, true}};

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "build_body_tables: %s\n", what.c_str());
    std::exit(1);
}

// --- The source ---

// The ephemeris files each cover 600 years, from January 1 of a year divisible by 600, and
// overlap their neighbours a little, where they differ by up to about 1e-7 au; for the first days
// of its years a file may also leave the answer to its neighbour. The library answers from the file
// it has open as long as that file covers the moment, so its answers would depend on what was
// asked before. The tool makes every answer the one a freshly opened library gives: it reopens the
// library when the moment's 600 years change, and before every reading within 60 days of where
// two files meet.
struct SourceState {
    std::string ephemeris_dir;
    long block = std::numeric_limits<long>::min();
    bool near_edge = false;
};
SourceState source_state;

constexpr double file_edge_days = 60;

void reopen_source() {
    swe_close();
    swe_set_ephe_path(source_state.ephemeris_dir.data());
}

void open_source(const std::string& ephemeris_dir) {
    source_state.ephemeris_dir = ephemeris_dir;
    source_state.block = std::numeric_limits<long>::min();
    reopen_source();
}

// January 1.0 of the year, on the calendar the library names its files by.
double new_year(long year) {
    const double gregorian = swe_julday(static_cast<int>(year), 1, 1, 0, SE_GREG_CAL);
    return gregorian >= 2305447.5 ? gregorian
                                  : swe_julday(static_cast<int>(year), 1, 1, 0, SE_JUL_CAL);
}

void use_file_of(double jde) {
    long block = static_cast<long>(std::floor((2000.0 + (jde - 2451544.5) / 365.2425) / 600.0));
    while (jde < new_year(600 * block)) --block;
    while (jde >= new_year(600 * (block + 1))) ++block;
    const bool near_edge = jde - new_year(600 * block) < file_edge_days ||
                           new_year(600 * (block + 1)) - jde < file_edge_days;
    if (block != source_state.block || near_edge || source_state.near_edge) reopen_source();
    source_state.block = block;
    source_state.near_edge = near_edge;
}

// The body's position at `jde` with the table flags; false (with the library's text) when the
// library cannot give it from the ephemeris files.
bool source_position(int body, double jde, std::array<double, 3>& xyz, std::string& why,
                     int flags = source_flags) {
    use_file_of(jde);
    char error[AS_MAXCH] = {};
    double x[6] = {};
    const int got = swe_calc(jde, body, flags, x, error);
    if (got < 0) {
        why = error;
        return false;
    }
    // The library falls back to its analytical ephemeris when a file is missing: refuse that.
    if ((got & SEFLG_SWIEPH) == 0 || (got & (SEFLG_MOSEPH | SEFLG_JPLEPH)) != 0) {
        why = std::string("not from the ephemeris files: ") + error;
        return false;
    }
    if ((got & flags) != flags) {
        why = "the library dropped flags " + std::to_string(flags & ~got);
        return false;
    }
    xyz = {x[0], x[1], x[2]};
    return true;
}

std::array<double, 3> source_or_fail(int body, double jde) {
    std::array<double, 3> xyz{};
    std::string why;
    if (!source_position(body, jde, xyz, why))
        fail("body " + std::to_string(body) + " at JD " + std::to_string(jde) + ": " + why);
    return xyz;
}

double norm(const std::array<double, 3>& v) {
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

double angle_diff_deg(double a, double b) {
    return std::remainder(a - b, 360.0);
}

// Shows that the flags give what the tables promise, at a moment a thousand years from J2000
// where precession and nutation are large: rectangular coordinates in au of the polar place, the
// mean equinox of date (the true one differs by the nutation in longitude), the ecliptic of date
// (not of J2000: they differ by the general precession), geometric (the barycentric body minus
// the barycentric Sun at the same instant) and heliocentric.
void verify_source_frame() {
    const double jde = 2816787.5; // 3000 January 1
    const double t = (jde - 2451545.0) / 36525.0;
    for (int body : {SE_URANUS, SE_JUNO, SE_CHIRON}) {
        const auto xyz = source_or_fail(body, jde);
        std::array<double, 3> polar{}, with_nutation{}, j2000{}, bary{}, sun{};
        std::string why;
        if (!source_position(body, jde, polar, why, source_flags & ~SEFLG_XYZ) ||
            !source_position(body, jde, with_nutation, why,
                             source_flags & ~(SEFLG_XYZ | SEFLG_NONUT)) ||
            !source_position(body, jde, j2000, why, (source_flags & ~SEFLG_XYZ) | SEFLG_J2000) ||
            !source_position(body, jde, bary, why,
                             (source_flags & ~SEFLG_HELCTR) | SEFLG_BARYCTR) ||
            !source_position(SE_SUN, jde, sun, why, (source_flags & ~SEFLG_HELCTR) | SEFLG_BARYCTR))
            fail("frame check: " + why);
        const double r = norm(xyz);
        const double lon = std::atan2(xyz[1], xyz[0]) * 180.0 / std::numbers::pi;
        const double lat = std::asin(xyz[2] / r) * 180.0 / std::numbers::pi;
        if (std::abs(r - polar[2]) > 1e-12 || std::abs(angle_diff_deg(lon, polar[0])) > 1e-9 ||
            std::abs(lat - polar[1]) > 1e-9)
            fail("frame check: the rectangular coordinates are not those of the polar place");
        char error[AS_MAXCH] = {};
        double nut[6] = {};
        use_file_of(jde);
        if (swe_calc(jde, SE_ECL_NUT, SEFLG_SWIEPH, nut, error) < 0) fail(error);
        if (std::abs(angle_diff_deg(with_nutation[0] - polar[0], nut[2])) > 1e-8)
            fail("frame check: not the mean equinox of date");
        const double precession = general_precession(t);
        if (std::abs(angle_diff_deg(polar[0] - j2000[0], precession)) > 0.2)
            fail("frame check: not the ecliptic and equinox of date");
        for (std::size_t i = 0; i < 3; ++i)
            if (std::abs(bary[i] - sun[i] - xyz[i]) > 1e-11)
                fail("frame check: not the geometric heliocentric position");
        if (r < 1.5 || r > 60) fail("frame check: the distance is not in astronomical units");
    }
    // Chiron's ends: the library has it at both and refuses one day beyond.
    std::array<double, 3> xyz{};
    std::string why;
    if (!source_position(SE_CHIRON, chiron_source_first, xyz, why) ||
        !source_position(SE_CHIRON, chiron_source_last, xyz, why))
        fail("Chiron at the ends of its span: " + why);
    if (source_position(SE_CHIRON, chiron_source_first - 1, xyz, why) ||
        source_position(SE_CHIRON, chiron_source_last + 1, xyz, why))
        fail("Chiron's span in the ephemeris files is wider than this tool assumes");
}

// --- Writing ---

// Is `file` a finished copy of what this tool writes now?
bool complete(const fs::path& file, const std::vector<TableLayout>& layouts) {
    TableStore db;
    if (db.open(file, TableStore::Access::read_only) != Outcome::ok) return false;
    for (const TableLayout& t : layouts) {
        if (file.filename() != t.file) continue;
        std::vector<FieldDef> fields;
        std::vector<IndexDef> indexes;
        if (db.table_fields(t.table, fields) != Outcome::ok || fields != table_fields(t))
            return false;
        if (db.table_indexes(t.table, indexes) != Outcome::ok || indexes != table_indexes)
            return false;
        Recordset rs;
        if (db.open_recordset(t.table, rs) != Outcome::ok ||
            rs.set_index("day_number") != Outcome::ok)
            return false;
        const RowRange r = row_range(t);
        if (rs.record_count() != r.count()) return false;
        // The first, middle and last rows hold the source's values at their dates.
        for (long k : {r.first, r.first + r.count() / 2, r.last}) {
            const double jde = row_date(t, k);
            if (rs.seek("=", {Value(jde)}) != Outcome::ok) return false;
            int column = 1;
            for (const Body& b : t.bodies)
                for (double v : source_or_fail(b.id, jde))
                    if (rs.get(column++).as_double() != v) return false;
        }
        if (rs.move_first() != Outcome::ok || rs.get(0).as_double() != row_date(t, r.first))
            return false;
        if (rs.move_last() != Outcome::ok || rs.get(0).as_double() != row_date(t, r.last))
            return false;
    }
    return true;
}

void remove_with_side_files(const fs::path& file) {
    std::error_code ec;
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
        fs::path p = file;
        p += suffix;
        fs::remove(p, ec);
    }
}

void write_table(TableStore& db, const TableLayout& t) {
    const std::vector<FieldDef> fields = table_fields(t);
    if (Outcome o = db.create_table(t.table, fields, table_indexes); o != Outcome::ok)
        fail(std::string("create table ") + t.table + ": " + std::string(store::describe(o)));
    Recordset rs;
    if (Outcome o = db.open_recordset(t.table, rs); o != Outcome::ok)
        fail(std::string(store::describe(o)));
    store::Transaction tx = db.begin_transaction();
    if (!tx.active()) fail("cannot start a transaction: " + db.last_error());
    const RowRange r = row_range(t);
    for (long k = r.first; k <= r.last; ++k) {
        const double jde = row_date(t, k);
        Outcome o = rs.add_new();
        if (o == Outcome::ok) o = rs.set(0, Value(jde));
        int column = 1;
        for (const Body& b : t.bodies) {
            const auto xyz = source_or_fail(b.id, jde);
            for (double v : xyz)
                if (o == Outcome::ok) o = rs.set(column++, Value(v));
        }
        if (o == Outcome::ok) o = rs.update();
        if (o != Outcome::ok)
            fail(std::string("writing ") + t.table + ": " + std::string(store::describe(o)) + " " +
                 db.last_error());
    }
    if (Outcome o = tx.commit(); o != Outcome::ok)
        fail(std::string("commit ") + t.table + ": " + std::string(store::describe(o)));
}

// Writes one file with its tables under a temporary name, then renames it into place.
void write_file(const fs::path& dir, const char* file, const std::vector<TableLayout>& layouts) {
    const fs::path final_path = dir / file;
    fs::path partial = final_path;
    partial += ".partial";
    remove_with_side_files(partial);
    {
        TableStore db;
        if (Outcome o = db.create(partial); o != Outcome::ok)
            fail("cannot create " + partial.string() + ": " + db.last_error());
        for (const TableLayout& t : layouts)
            if (std::string_view(t.file) == file) write_table(db, t);
        db.close();
    }
    // Back from the store's write-ahead log to a rollback journal: the finished file is then one
    // file, and readers that open it read-only leave nothing beside it.
    sqlite3* handle = nullptr;
    const bool journal_set = sqlite3_open_v2(partial.string().c_str(), &handle,
                                             SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK &&
                             sqlite3_exec(handle, "PRAGMA journal_mode = DELETE", nullptr, nullptr,
                                          nullptr) == SQLITE_OK;
    sqlite3_close(handle);
    if (!journal_set) fail("cannot finish " + partial.string());
    std::error_code ec;
    for (const char* suffix : {"-wal", "-shm", "-journal"}) {
        fs::path side = partial;
        side += suffix;
        if (fs::exists(side, ec)) fail(side.string() + " was left behind");
    }
    remove_with_side_files(final_path);
    fs::rename(partial, final_path, ec);
    if (ec) fail("cannot rename " + partial.string() + ": " + ec.message());
    remove_with_side_files(partial);
}

// Builds what is missing; the files written.
std::vector<std::string> build(const fs::path& dir, const std::vector<TableLayout>& layouts) {
    std::error_code ec;
    fs::create_directories(dir, ec);
    if (!fs::is_directory(dir)) fail("cannot make the folder " + dir.string());
    std::vector<std::string> written;
    for (const char* file : {"outer3.mdb", "asteroid.mdb"}) {
        const fs::path path = dir / file;
        if (complete(path, layouts)) {
            // Newer than the tool, so that a build system sees it up to date.
            fs::last_write_time(path, fs::file_time_type::clock::now(), ec);
            continue;
        }
        write_file(dir, file, layouts);
        written.push_back(file);
    }
    return written;
}

// --- Measuring ---

// A table's rows in memory: dates and, per row, the body columns.
struct Rows {
    std::vector<double> dates;
    std::vector<double> values;
    std::size_t columns = 0;
    double at(std::size_t row, std::size_t column) const { return values[row * columns + column]; }
};

Rows computed_rows(const TableLayout& t) {
    Rows rows;
    rows.columns = t.bodies.size() * 3;
    const RowRange r = row_range(t);
    for (long k = r.first; k <= r.last; ++k) {
        const double jde = row_date(t, k);
        rows.dates.push_back(jde);
        for (const Body& b : t.bodies)
            for (double v : source_or_fail(b.id, jde)) rows.values.push_back(v);
    }
    return rows;
}

bool stored_rows(Recordset& rs, const TableLayout& t, Rows& rows) {
    rows = Rows{};
    rows.columns = t.bodies.size() * 3;
    // A move past the last row is ok with eof(); the next one gives no_current_record.
    Outcome o;
    for (o = rs.move_first(); o == Outcome::ok && !rs.eof(); o = rs.move_next()) {
        rows.dates.push_back(rs.get(0).as_double());
        for (std::size_t c = 0; c < rows.columns; ++c)
            rows.values.push_back(rs.get(static_cast<int>(c + 1)).as_double());
    }
    return o == Outcome::ok || o == Outcome::no_current_record;
}

// Six consecutive rows from `first`: the reading rule's window.
struct Window {
    std::array<double, 6> dates{};
    std::vector<std::array<double, 6>> columns; // per column, the six rows
};

Window window_of(const Rows& rows, std::size_t first) {
    Window w;
    w.columns.assign(rows.columns, {});
    for (std::size_t i = 0; i < 6; ++i) {
        w.dates[i] = rows.dates[first + i];
        for (std::size_t c = 0; c < rows.columns; ++c) w.columns[c][i] = rows.at(first + i, c);
    }
    return w;
}

// The window of a moment in rows kept in memory: the last row before it, back two rows.
bool memory_window(const Rows& rows, double jde, Window& w) {
    const auto after = std::lower_bound(rows.dates.begin(), rows.dates.end(), jde);
    const std::ptrdiff_t before = after - rows.dates.begin() - 1;
    if (before < 2 || before + 3 >= static_cast<std::ptrdiff_t>(rows.dates.size())) return false;
    w = window_of(rows, static_cast<std::size_t>(before - 2));
    return true;
}

// The window of a stored table: seek "<" on the date, back two rows, six rows forward.
bool stored_window(Recordset& rs, std::size_t columns, double jde, Window& w) {
    if (rs.seek("<", {Value(jde)}) != Outcome::ok) return false;
    if (rs.move_previous() != Outcome::ok || rs.move_previous() != Outcome::ok) return false;
    w.columns.assign(columns, {});
    for (std::size_t i = 0; i < 6; ++i) {
        if (i > 0 && rs.move_next() != Outcome::ok) return false;
        if (!rs.has_current()) return false;
        w.dates[i] = rs.get(0).as_double();
        for (std::size_t c = 0; c < columns; ++c)
            w.columns[c][i] = rs.get(static_cast<int>(c + 1)).as_double();
    }
    return true;
}

// The reading rule on a window: step and n from rows 3 and 4, the shift past the middle of the
// interval, five-point interpolation. `low` and `high` give the dates of the five rows used.
std::array<double, 3> read_by_rule(const Window& w, std::size_t first_column, double jde,
                                   double& low, double& high) {
    const auto& d = w.dates;
    const double step = d[3] - d[2];
    double n = (jde - d[2]) / step;
    std::size_t start = 0;
    if (n > 0.5) {
        start = 1;
        n = -(d[3] - jde) / step;
    }
    low = d[start];
    high = d[start + 4];
    std::array<double, 3> xyz{};
    for (std::size_t k = 0; k < 3; ++k) {
        const auto& y = w.columns[first_column + k];
        xyz[k] = interpolate5(n, y[start], y[start + 1], y[start + 2], y[start + 3], y[start + 4]);
    }
    return xyz;
}

// The largest fifth difference of the source's positions over [low, high] at an eighth of the
// step. A discontinuity of the source (where two of its fitted segments meet) shows as up to six
// times its size; smooth motion leaves it far smaller.
double largest_fifth_difference(int body, double low, double high, double spacing) {
    std::vector<std::array<double, 3>> p;
    for (double t = low - 2 * spacing; t <= high + 2.5 * spacing; t += spacing)
        p.push_back(source_or_fail(body, t));
    double largest = 0;
    for (std::size_t i = 0; i + 5 < p.size(); ++i) {
        std::array<double, 3> d{};
        for (std::size_t k = 0; k < 3; ++k)
            d[k] = p[i + 5][k] - 5 * p[i + 4][k] + 10 * p[i + 3][k] - 10 * p[i + 2][k] +
                   5 * p[i + 1][k] - p[i][k];
        largest = std::max(largest, norm(d));
    }
    return largest;
}

struct BodyReport {
    double closest_au = 0;   // smallest possible geocentric distance
    double smooth_max = 0;   // arc seconds, the interpolation's own largest error
    double smooth_at = 0;    // its moment
    double jump_max = 0;     // arc seconds, the largest error where the five rows span a jump
    double jump_at = 0;      // its moment
    double largest_jump = 0; // au, the largest jump of the source seen
    long moments = 0;
    long over_jumps = 0;
};

// Below this share of the budget an error is taken as the interpolation's own without looking
// for a jump of the source in its rows.
constexpr double examine_share = 0.2;

void account(const TableLayout& t, std::size_t b, const Window& w, double jde, BodyReport& rep) {
    double low = 0, high = 0;
    const auto got = read_by_rule(w, b * 3, jde, low, high);
    const auto want = source_or_fail(t.bodies[b].id, jde);
    const double error = norm({got[0] - want[0], got[1] - want[1], got[2] - want[2]}) /
                         rep.closest_au * arcsec_per_rad;
    ++rep.moments;
    if (error > examine_share * error_budget_arcsec) {
        // A jump of the source smaller than a tenth of the budget counts as smooth.
        const double floor_au = 0.1 * error_budget_arcsec / arcsec_per_rad * rep.closest_au;
        const double fifth = largest_fifth_difference(t.bodies[b].id, low, high, t.step / 8);
        if (fifth > 6 * floor_au) {
            ++rep.over_jumps;
            rep.largest_jump = std::max(rep.largest_jump, fifth / 6);
            if (error > rep.jump_max) rep.jump_max = error, rep.jump_at = jde;
            return;
        }
    }
    if (error > rep.smooth_max) rep.smooth_max = error, rep.smooth_at = jde;
}

// Compares the reading rule with the source at the middle of every interval (where five-point
// interpolation errs most) and at `samples` random moments of the served span, read through the
// store's seeks when `stored` is given. Errors are seen from the Earth at the body's closest:
// its smallest heliocentric distance in the table less the Earth's aphelion distance.
std::vector<BodyReport> measure(const TableLayout& t, const Rows& rows, Recordset* stored,
                                long samples) {
    std::vector<BodyReport> reports(t.bodies.size());
    for (std::size_t b = 0; b < t.bodies.size(); ++b) {
        double least = 1e9;
        for (std::size_t i = 0; i < rows.dates.size(); ++i)
            least = std::min(
                least, norm({rows.at(i, b * 3), rows.at(i, b * 3 + 1), rows.at(i, b * 3 + 2)}));
        reports[b].closest_au = least - earth_aphelion_au;
    }
    for (std::size_t i = 2; i + 3 < rows.dates.size(); ++i) {
        const Window w = window_of(rows, i - 2);
        const double jde = rows.dates[i] + t.step / 2;
        for (std::size_t b = 0; b < t.bodies.size(); ++b) account(t, b, w, jde, reports[b]);
    }
    const auto [low_end, high_end] = served_span(t);
    std::mt19937_64 random(20260101);
    std::uniform_real_distribution<double> anywhere(low_end, high_end);
    Window w;
    for (long s = 0; s < samples; ++s) {
        const double jde = anywhere(random);
        const bool ok =
            stored ? stored_window(*stored, rows.columns, jde, w) : memory_window(rows, jde, w);
        if (!ok) fail(std::string("no window in ") + t.table + " at JD " + std::to_string(jde));
        for (std::size_t b = 0; b < t.bodies.size(); ++b) account(t, b, w, jde, reports[b]);
    }
    return reports;
}

double year_of(double jd) {
    return 2000.0 + (jd - 2451544.5) / 365.25;
}

bool print_measurements(const TableLayout& t, const std::vector<BodyReport>& reports) {
    const auto [low, high] = served_span(t);
    const RowRange r = row_range(t);
    std::printf("%s (%s): step %g days, %ld rows, JD %.1f..%.1f, serves JD %.1f..%.1f "
                "(years %.1f..%.1f)\n",
                t.table, t.file, t.step, r.count(), row_date(t, r.first), row_date(t, r.last), low,
                high, year_of(low), year_of(high));
    bool within = true;
    for (std::size_t b = 0; b < t.bodies.size(); ++b) {
        const BodyReport& rep = reports[b];
        std::printf("  %-8s closest %6.3f au, %ld moments: interpolation %.5f\" (JD %.2f)",
                    t.bodies[b].name, rep.closest_au, rep.moments, rep.smooth_max, rep.smooth_at);
        if (rep.over_jumps > 0)
            std::printf("; %ld over a jump of the source: %.5f\" (JD %.2f), jumps to %.2e au",
                        rep.over_jumps, rep.jump_max, rep.jump_at, rep.largest_jump);
        std::printf("\n");
        if (rep.smooth_max >= error_budget_arcsec) within = false;
    }
    return within;
}

bool check_stored(const fs::path& dir, const std::vector<TableLayout>& layouts, long samples) {
    bool ok = true;
    for (const TableLayout& t : layouts) {
        TableStore db;
        if (db.open(dir / t.file, TableStore::Access::read_only) != Outcome::ok)
            fail("cannot open " + (dir / t.file).string());
        Recordset rs;
        Rows rows;
        if (db.open_recordset(t.table, rs) != Outcome::ok ||
            rs.set_index("day_number") != Outcome::ok || !stored_rows(rs, t, rows))
            fail(std::string("cannot read ") + t.table);
        // The stored rows are the source's values at the grid's dates, to the bit.
        const Rows want = computed_rows(t);
        if (rows.dates != want.dates || rows.values != want.values) {
            std::printf("%s: the stored rows are not the source's\n", t.table);
            ok = false;
        }
        ok = print_measurements(t, measure(t, rows, &rs, samples)) && ok;
    }
    return ok;
}

std::vector<double> parse_steps(const std::string& text) {
    std::vector<double> steps;
    std::size_t at = 0;
    while (at <= text.size()) {
        const std::size_t comma = std::min(text.find(',', at), text.size());
        steps.push_back(std::atof(text.substr(at, comma - at).c_str()));
        at = comma + 1;
    }
    if (steps.size() != 3 || std::any_of(steps.begin(), steps.end(), [](double s) {
            return !(s > 0) || std::fmod(s * 2, 1.0) != 0;
        }))
        fail("--steps wants three steps in whole or half days: planets,asteroids,chiron");
    return steps;
}

void usage() {
    std::fprintf(stderr, "usage: build_body_tables --out DIR [--check] [--samples N] [--ephe DIR]\n"
                         "       build_body_tables --steps P,A,C [--samples N] [--ephe DIR]\n");
    std::exit(2);
}

} // namespace

int main(int argc, char** argv) {
    std::optional<fs::path> out;
    std::optional<std::string> steps;
    std::string ephemeris = default_ephemeris_dir;
    bool check = false;
    long samples = 10000;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        const bool has_value = i + 1 < argc;
        if (arg == "--out" && has_value)
            out = argv[++i];
        else if (arg == "--check")
            check = true;
        else if (arg == "--steps" && has_value)
            steps = argv[++i];
        else if (arg == "--ephe" && has_value)
            ephemeris = argv[++i];
        else if (arg == "--samples" && has_value)
            samples = std::atol(argv[++i]);
        else
            usage();
    }
    if (!out && !steps) usage();
    if (samples < 2) usage();

    open_source(ephemeris);
    verify_source_frame();

    if (steps) {
        const auto s = parse_steps(*steps);
        bool within = true;
        for (const TableLayout& t : table_layouts(s[0], s[1], s[2]))
            within =
                print_measurements(t, measure(t, computed_rows(t), nullptr, samples)) && within;
        swe_close();
        return within ? 0 : 1;
    }

    const auto layouts = table_layouts(planets_step, asteroids_step, chiron_step);
    const auto started = std::chrono::steady_clock::now();
    const std::vector<std::string> written = build(*out, layouts);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    if (!written.empty()) {
        std::printf("build_body_tables: wrote");
        for (const std::string& file : written) {
            std::error_code ec;
            std::printf(" %s (%.1f MB)", file.c_str(),
                        static_cast<double>(fs::file_size(*out / file, ec)) / 1e6);
        }
        std::printf(" in %.1f s\n", seconds);
    }
    bool ok = true;
    if (check) ok = check_stored(*out, layouts, samples);
    swe_close();
    return ok ? 0 : 1;
}
