#include "engine/table_bodies.h"

#include "engine/planets.h"
#include "engine/time_base.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "store/table_store.h"

#include <algorithm>
#include <cmath>

namespace celestark {

bool BodyTable::position(double jde, int first, std::array<double, 3>& xyz) const {
    if (!loaded) return false;
    // The last row before the moment...
    const auto after = std::lower_bound(dates.begin(), dates.end(), jde);
    if (after == dates.begin()) return false;
    const std::ptrdiff_t before = after - dates.begin() - 1;
    // ...back two rows, and six rows forward from there.
    const std::ptrdiff_t start = before - 2;
    if (start < 0 || start + 6 > static_cast<std::ptrdiff_t>(dates.size())) return false;
    const double* d = dates.data() + start; // d[0..5] are rows 1 to 6
    const double step = d[3] - d[2];
    double n = (jde - d[2]) / step;
    std::ptrdiff_t window = start;
    if (n > 0.5) {
        window = start + 1;
        n = -(d[3] - jde) / step;
    }
    const auto cell = [&](std::ptrdiff_t row, int column) {
        return values[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                      static_cast<std::size_t>(column)];
    };
    for (int k = 0; k < 3; ++k)
        xyz[static_cast<std::size_t>(k)] = interpolate5(
            n, cell(window, first + k), cell(window + 1, first + k), cell(window + 2, first + k),
            cell(window + 3, first + k), cell(window + 4, first + k));
    return true;
}

store::Outcome load_body_table(const std::filesystem::path& file, const std::string& table,
                               const std::vector<std::string>& columns, BodyTable& out) {
    out = BodyTable{};
    store::TableStore db;
    store::Outcome o = db.open(file, store::TableStore::Access::read_only);
    if (o != store::Outcome::ok) return o;
    store::Recordset rs;
    if ((o = db.open_recordset(table, rs)) != store::Outcome::ok) return o;
    if ((o = rs.set_index("day_number")) != store::Outcome::ok) return o;
    const int date_field = rs.field_index("julian_day_number");
    if (date_field < 0) return store::Outcome::no_such_field;
    std::vector<int> fields;
    for (const std::string& c : columns) {
        fields.push_back(rs.field_index(c));
        if (fields.back() < 0) return store::Outcome::no_such_field;
    }
    out.columns = static_cast<int>(columns.size());
    for (o = rs.move_first(); o == store::Outcome::ok; o = rs.move_next()) {
        const store::Value date = rs.get(date_field);
        if (!date.ok() || date.is_null()) return store::Outcome::damaged_file;
        out.dates.push_back(date.as_double());
        for (int f : fields) out.values.push_back(rs.get(f).as_double());
    }
    if (o != store::Outcome::no_current_record) return o;
    out.loaded = out.dates.size() >= 6;
    return store::Outcome::ok;
}

std::shared_ptr<const BodyTables> open_body_tables(const std::filesystem::path& directory,
                                                   std::string& problems) {
    auto tables = std::make_shared<BodyTables>();
    problems.clear();
    const auto xyz = [](std::initializer_list<const char*> bodies) {
        std::vector<std::string> columns;
        for (const char* b : bodies)
            for (const char* axis : {"_x_position", "_y_position", "_z_position"})
                columns.push_back(std::string(b) + axis);
        return columns;
    };
    const auto load = [&](const char* file, const char* table,
                          const std::vector<std::string>& columns, BodyTable& out) {
        const store::Outcome o = load_body_table(directory / file, table, columns, out);
        if (o != store::Outcome::ok)
            problems +=
                std::string(file) + " (" + table + "): " + std::string(store::describe(o)) + "\n";
    };
    load("outer3.mdb", "planets", xyz({"uranus", "neptune", "pluto"}), tables->planets);
    load("asteroid.mdb", "asteroids", xyz({"juno", "vesta", "ceres", "pallas"}), tables->asteroids);
    load("asteroid.mdb", "chiron", xyz({"chiron"}), tables->chiron);
    return tables;
}

void store_table_body(Session& s, double x, double y, double z, int entry) {
    EngineState& e = s.engine;
    PositionLists& p = e.pos;
    const auto h = static_cast<std::size_t>(entry);
    p.helio_dist[h] = std::sqrt(x * x + y * y + z * z);
    p.helio_long[h] = arctan2(y, x) + e.zodiac_offset;
    p.helio_lat[h] = p.helio_dist[h] > 0 ? arcsin(z / p.helio_dist[h]) : 0.0;
    geocentric_from_helio(s, entry, entry + 1);
}

namespace {

enum class Read { ok, first_failed, retarded_failed };

// The light-time wrapper of a table body: read at the moment, then once more at the moment the
// light left the body, with the Earth taken then too.
Read table_body(Session& s, double jd, const BodyTable* table, int column, int entry) {
    EngineState& e = s.engine;
    std::array<double, 3> xyz{};
    ++e.table_reads;
    if (!table || !table->position(e.time.jd_ephemeris, column, xyz)) return Read::first_failed;
    store_table_body(s, xyz[0], xyz[1], xyz[2], entry);
    if (s.options.actual_position) return Read::ok;
    TimeBase retarded;
    set_calculation_time(retarded, jd - light_days_per_au *
                                            e.pos.geo_dist[static_cast<std::size_t>(entry + 1)]);
    ++e.table_reads;
    if (!table->position(retarded.jd_ephemeris, column, xyz)) return Read::retarded_failed;
    earth_at(s, retarded.tau);
    store_table_body(s, xyz[0], xyz[1], xyz[2], entry);
    return Read::ok;
}

void outer_planet(Session& s, double jd, int column, int entry) {
    const BodyTables* tables = s.body_tables.get();
    if (!tables) {
        // A session started without the stored tables has no outer planets.
        s.engine.outer_planets_ok = false;
        return;
    }
    if (table_body(s, jd, &tables->planets, column, entry) != Read::ok) {
        s.engine.outer_planets_ok = false;
        session_fatal(s, "OUTER3",
                      "CK14-Error 3021 - No current record. This is a fatal error. Please contact "
                      "Ivan Marlow");
    }
}

struct ExtraBody {
    unsigned char glyph;
    double node_deg,
        peri_deg; // fixed on purpose: these elements stand still at their listed values
};

// Chiron or an asteroid: when its table answers, the next entry of all three lists.
void extra_table_body(Session& s, double jd, const BodyTable* table, bool& table_ok, int column,
                      const ExtraBody& body) {
    EngineState& e = s.engine;
    PositionLists& p = e.pos;
    table_ok = true;
    if (p.helio_count >= helio_capacity || p.geo_count + 1 >= geo_capacity) return;
    const int entry = p.helio_count;
    const Read read = table_body(s, jd, table, column, entry);
    if (read == Read::first_failed) {
        table_ok = false;
        return;
    }
    if (read == Read::retarded_failed) table_ok = false;
    const auto h = static_cast<std::size_t>(entry);
    p.helio_glyph[h] = body.glyph;
    p.geo_glyph[h + 1] = body.glyph;
    p.lemni_glyph[h + 1] = body.glyph;
    p.helio_node[h] = norm_rad(body.node_deg * deg_to_rad + e.zodiac_offset);
    p.helio_peri[h] = norm_rad(body.peri_deg * deg_to_rad + e.zodiac_offset);
    ++p.helio_count;
    ++p.geo_count;
    ++p.lemni_count;
}

const BodyTable* asteroid_table(const Session& s) {
    return s.body_tables ? &s.body_tables->asteroids : nullptr;
}

} // namespace

void calculate_uranus(Session& s, double jd) {
    s.engine.outer_planets_ok = true;
    outer_planet(s, jd, 0, helio::uranus);
}
void calculate_neptune(Session& s, double jd) {
    outer_planet(s, jd, 3, helio::neptune);
}
void calculate_pluto(Session& s, double jd) {
    outer_planet(s, jd, 6, helio::pluto);
}

void calculate_chiron(Session& s, double jd) {
    extra_table_body(s, jd, s.body_tables ? &s.body_tables->chiron : nullptr,
                     s.engine.chiron_table_ok, 0, {glyph::chiron, 208.1482658, 337.407213});
}
void calculate_juno(Session& s, double jd) {
    extra_table_body(s, jd, asteroid_table(s), s.engine.asteroid_table_ok, 0,
                     {glyph::juno, 103.2197222, 149.6386111});
}
void calculate_vesta(Session& s, double jd) {
    extra_table_body(s, jd, asteroid_table(s), s.engine.asteroid_table_ok, 3,
                     {glyph::vesta, 170.137777, 245.3752778});
}
void calculate_ceres(Session& s, double jd) {
    extra_table_body(s, jd, asteroid_table(s), s.engine.asteroid_table_ok, 6,
                     {glyph::ceres, 80.23555556, 71.079444});
}
void calculate_pallas(Session& s, double jd) {
    extra_table_body(s, jd, asteroid_table(s), s.engine.asteroid_table_ok, 9,
                     {glyph::pallas, 172.497222, 310.166111});
}

} // namespace celestark
