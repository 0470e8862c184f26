#include "engine/table_bodies.h"

#include "engine/planets.h"
#include "engine/time_base.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <algorithm>
#include <cmath>
#include <mutex>

namespace celestark {

struct BodyTable::Impl {
    // The stored table stays open while rows remain to be read.
    std::unique_ptr<DatedRowSource> source;
    int columns = 0;

    std::int64_t count = 0;
    double first = 0, last = 0, step = 0;
    bool even = false;

    // Rows by chunk; a chunk's dates and values are filled at its first use.
    struct Chunk {
        std::vector<double> dates, values;
    };
    mutable std::mutex mutex;
    mutable std::vector<std::unique_ptr<Chunk>> chunks;
    bool loaded = false;

    const Chunk* chunk(std::int64_t k) const {
        std::lock_guard lock(mutex);
        auto& slot = chunks[static_cast<std::size_t>(k)];
        if (!slot) {
            auto c = std::make_unique<Chunk>();
            auto& self = const_cast<Impl&>(*this);
            const std::int64_t begin = k * chunk_rows;
            const double date = even ? first + static_cast<double>(begin) * step : first;
            if (!self.source || !self.source->read(date - (even ? step / 2 : 0.0),
                                                   even ? chunk_rows : count, c->dates, c->values))
                return nullptr;
            slot = std::move(c);
        }
        return slot.get();
    }

    // Date and values of row `r`, reading its chunk when needed.
    bool row(std::int64_t r, double& date, const double*& values) const {
        const std::int64_t k = even ? r / chunk_rows : 0;
        const Chunk* c = chunk(k);
        const std::int64_t i = even ? r - k * chunk_rows : r;
        if (!c || i >= static_cast<std::int64_t>(c->dates.size())) return false;
        date = c->dates[static_cast<std::size_t>(i)];
        values = c->values.data() + static_cast<std::size_t>(i) * static_cast<std::size_t>(columns);
        return true;
    }

    // Index of the last row dated before `jde`, or -1.
    std::int64_t last_before(double jde) const {
        if (!(jde > first)) return -1;
        std::int64_t r = even ? static_cast<std::int64_t>(std::ceil((jde - first) / step)) - 1 : -1;
        if (!even) {
            const Chunk* c = chunk(0);
            if (!c) return -1;
            return (std::lower_bound(c->dates.begin(), c->dates.end(), jde) - c->dates.begin()) - 1;
        }
        r = std::clamp<std::int64_t>(r, 0, count - 1);
        // Settle rounding at the row dates themselves.
        double d;
        const double* v;
        while (r > 0 && row(r, d, v) && !(d < jde)) --r;
        while (r + 1 < count && row(r + 1, d, v) && d < jde) ++r;
        return r;
    }
};

BodyTable::BodyTable() : impl_(std::make_unique<Impl>()) {}
BodyTable::~BodyTable() = default;
BodyTable::BodyTable(BodyTable&&) noexcept = default;
BodyTable& BodyTable::operator=(BodyTable&&) noexcept = default;

bool BodyTable::loaded() const {
    return impl_->loaded;
}
std::int64_t BodyTable::rows() const {
    return impl_->count;
}
double BodyTable::first_date() const {
    return impl_->first;
}
double BodyTable::last_date() const {
    return impl_->last;
}
double BodyTable::step() const {
    return impl_->step;
}

bool BodyTable::attach(std::unique_ptr<DatedRowSource> source, int columns) {
    impl_ = std::make_unique<Impl>();
    Impl& m = *impl_;
    if (!source || source->count() < 6) return false;
    m.columns = columns;
    m.count = source->count();
    m.first = source->first_date();
    m.step = source->second_date() - m.first;
    m.last = source->last_date();
    // The first two rows give the step; the last row tells whether it holds throughout.
    m.even = m.step > 0 && std::fabs(m.first + m.step * static_cast<double>(m.count - 1) - m.last) <
                               1e-6 * m.step;
    m.chunks.resize(m.even ? static_cast<std::size_t>((m.count + chunk_rows - 1) / chunk_rows) : 1);
    m.source = std::move(source);
    m.loaded = true;
    return true;
}

void BodyTable::assign(std::vector<double> dates, std::vector<double> values, int columns) {
    impl_ = std::make_unique<Impl>();
    Impl& m = *impl_;
    m.columns = columns;
    m.count = static_cast<std::int64_t>(dates.size());
    m.first = dates.front();
    m.last = dates.back();
    m.step = dates.size() > 1 ? dates[1] - dates[0] : 0;
    m.even = false;
    auto c = std::make_unique<Impl::Chunk>();
    c->dates = std::move(dates);
    c->values = std::move(values);
    m.chunks.push_back(std::move(c));
    m.loaded = m.count >= 6;
}

bool BodyTable::position(double jde, int first, std::array<double, 3>& xyz) const {
    const Impl& m = *impl_;
    if (!m.loaded) return false;
    // The last row before the moment, back two rows, and six rows forward from there.
    const std::int64_t start = m.last_before(jde) - 2;
    if (start < 0 || start + 6 > m.count) return false;
    double d[6];
    const double* v[6];
    for (int i = 0; i < 6; ++i)
        if (!m.row(start + i, d[i], v[i])) return false;
    const double step = d[3] - d[2];
    double n = (jde - d[2]) / step;
    int window = 0;
    if (n > 0.5) {
        window = 1;
        n = -(d[3] - jde) / step;
    }
    for (int k = 0; k < 3; ++k) {
        const int c = first + k;
        xyz[static_cast<std::size_t>(k)] =
            interpolate5(n, v[window][c], v[window + 1][c], v[window + 2][c], v[window + 3][c],
                         v[window + 4][c]);
    }
    return true;
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
        // A session started without the stored tables has no outer planets: their entries are
        // cleared so that nothing stale is carried from call to call.
        EngineState& e = s.engine;
        e.outer_planets_ok = false;
        const auto h = static_cast<std::size_t>(entry);
        e.pos.helio_long[h] = e.pos.helio_lat[h] = e.pos.helio_dist[h] = 0;
        e.pos.geo_long[h + 1] = e.pos.geo_lat[h + 1] = e.pos.geo_dist[h + 1] = 0;
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
