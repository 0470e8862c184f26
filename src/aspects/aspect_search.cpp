#include "aspects/aspect_search.h"

#include "engine/chart.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace celestark {

static_assert(std::is_same_v<StarGlyphs, decltype(StarState::star_glyphs)>);

namespace {

// Radians to degrees as the searches take them.
constexpr double degrees_per_radian = 57.29577951308238;

// x less 360 times the floor of x / 360: 0 up to 360.
double fold_360(double x) {
    return x - 360.0 * std::floor(x / 360.0);
}

float position_degrees(double radians) {
    return static_cast<float>(fold_360(radians * degrees_per_radian));
}

// The separation of `to` from `from`, folded to 0 up to 360 and less 360 from 180 on: -180 up to
// 180. The difference of two singles is exact in double. Both lie in 0 to 360, so the fold by
// the floor comes to adding 360 below 0 and taking it away from 360 on.
float separation(float from, float to) {
    // Written as products of the tests, so that no branch is taken on the random sign.
    double x = static_cast<double>(to) - static_cast<double>(from);
    x += 360.0 * static_cast<double>(x < 0.0);
    x -= 360.0 * static_cast<double>(x >= 360.0);
    x -= 360.0 * static_cast<double>(x >= 180.0);
    return static_cast<float>(x);
}

bool between(unsigned char code, unsigned char low, unsigned char high) {
    return code >= low && code <= high;
}

bool is_star(unsigned char code, const StarGlyphs& star_glyphs) {
    if (code == 0) return false;
    return std::find(star_glyphs.begin(), star_glyphs.end(), code) != star_glyphs.end();
}

// The aspect set made ready for one search: the orbs of each pair class, the aspectogram flags
// as bits (64 aspects to a word) and, for a set of at most 64 aspects, the candidates: for each
// pair class and each whole degree b of |s| (0 to 180), the aspects whose angle less and plus
// their orb reaches |s| from b to b + 1, with a degree to spare either side. Only the candidates
// can hold, so a pair tries one to three aspects rather than all of them; the order of the set
// is kept by the bits.
struct PreparedSet {
    const AspectTable& table;
    int count = 0; // aspect_count, or fewer if a list of the table is short
    std::array<const float*, 6> class_orbs{};
    std::vector<std::uint64_t> aspectogram_bits;
    bool bucketed = false;
    std::array<std::array<std::uint64_t, 181>, 6> candidates;

    explicit PreparedSet(const AspectTable& t) : table(t) {
        std::size_t n = t.aspect_count > 0 ? static_cast<std::size_t>(t.aspect_count) : 0;
        for (std::size_t size : {t.angle.size(), t.digraph.size(), t.glyph.size(),
                                 t.in_aspectogram.size(), t.orb_sun.size(), t.orb_moon.size(),
                                 t.orb_planets.size(), t.orb_elements.size(), t.orb_stars.size()})
            n = std::min(n, size);
        count = static_cast<int>(n);
        using namespace body_class_of;
        class_orbs[sun] = t.orb_sun.data();
        class_orbs[moon] = t.orb_moon.data();
        class_orbs[planet] = t.orb_planets.data();
        class_orbs[element] = t.orb_elements.data();
        class_orbs[star] = t.orb_stars.data();
        aspectogram_bits.assign((n + 63) / 64, 0);
        for (std::size_t a = 0; a < n; ++a)
            if (t.in_aspectogram[a] != 0) aspectogram_bits[a / 64] |= std::uint64_t{1} << (a % 64);
        bucketed = n <= 64;
        if (!bucketed) return;
        for (std::size_t pair = sun; pair <= star; ++pair) {
            std::array<std::uint64_t, 181>& buckets = candidates[pair];
            buckets.fill(0);
            for (std::size_t a = 0; a < n; ++a) {
                const double angle = t.angle[a], orb = class_orbs[pair][a];
                // A NaN angle or orb and a negative orb never hold.
                if (!std::isfinite(angle) || !(orb >= 0.0)) continue;
                const double low = std::max(std::floor(angle - orb) - 1.0, 0.0);
                const double high = std::min(std::floor(angle + orb) + 1.0, 180.0);
                for (double b = low; b <= high; ++b)
                    buckets[static_cast<std::size_t>(b)] |= std::uint64_t{1} << a;
            }
        }
    }
};

// The highest set bit of a word that has one.
int last_bit(std::uint64_t bits) {
    return 63 - std::countl_zero(bits);
}

// The aspects of one pair: every aspect of the set is tried in order and the last that holds wins
// the cell; mark 2 goes to the last that holds and is in the aspectogram. The aspects that hold
// are gathered as bits: which of them hold is as good as random from pair to pair, and bits keep
// the loop free of branches.
void try_aspects(const PreparedSet& set, int pair, float s, AspectMatrix& m, int i, int j) {
    const float* orbs = set.class_orbs[static_cast<std::size_t>(pair)];
    const float abs_s = std::fabs(s);
    const float* angles = set.table.angle.data();
    int hit = -1, aspectogram_hit = -1;
    if (set.bucketed && abs_s <= 180.0f) {
        const std::uint64_t candidates =
            set.candidates[static_cast<std::size_t>(pair)][static_cast<std::size_t>(abs_s)];
        std::uint64_t holds = 0;
        for (std::uint64_t c = candidates; c != 0; c &= c - 1) {
            const int a = std::countr_zero(c);
            holds |= static_cast<std::uint64_t>(std::fabs(angles[a] - abs_s) <= orbs[a]) << a;
        }
        if (holds == 0) return;
        hit = last_bit(holds);
        if (const std::uint64_t shown = holds & set.aspectogram_bits[0]; shown != 0)
            aspectogram_hit = last_bit(shown);
    } else {
        for (int base = 0; base < set.count; base += 64) {
            const int end = std::min(set.count, base + 64);
            std::uint64_t holds = 0;
            for (int a = base; a < end; ++a)
                holds |= static_cast<std::uint64_t>(std::fabs(angles[a] - abs_s) <= orbs[a])
                         << (a - base);
            if (holds == 0) continue;
            hit = base + last_bit(holds);
            const std::uint64_t shown =
                holds & set.aspectogram_bits[static_cast<std::size_t>(base / 64)];
            if (shown != 0) aspectogram_hit = base + last_bit(shown);
        }
    }
    if (hit < 0) return;
    const AspectTable& t = set.table;
    const std::size_t k = m.inner_index(i, j);
    const auto h = static_cast<std::size_t>(hit);
    m.orb(i, j) = std::fabs(angles[hit] - abs_s);
    m.aspects[k] = static_cast<std::int16_t>(hit + 1);
    std::array<std::string, 3>& marks = m.marks[k];
    marks[0] = t.digraph[h];
    marks[1].assign(1, static_cast<char>(t.glyph[h]));
    if (aspectogram_hit >= 0)
        marks[2].assign(1, static_cast<char>(t.glyph[static_cast<std::size_t>(aspectogram_hit)]));
}

// The separation and the aspects of every pair of rows 1 to m.rows and columns 1 to m.columns
// (without the cells i, i when `skip_same`). The row body's position and class are in (i, 0) and
// (i, -1), the column body's in (0, j) and (-1, j); s is the separation of the column body from the
// row body.
void measure_pairs(const AspectTable& table, AspectMatrix& m, bool skip_same) {
    if (m.rows == 0 || m.columns == 0) return;
    const PreparedSet set(table);
    const float* column_positions = &m.cells[m.square_index(0, 1)];
    const float* column_classes = &m.cells[m.square_index(-1, 1)];
    for (int i = 1; i <= m.rows; ++i) {
        const float from = m.cell(i, 0);
        const int row_class = static_cast<int>(m.cell(i, -1));
        float* separations = &m.cells[m.square_index(i, 1)];
        for (int j = 1; j <= m.columns; ++j) {
            if (skip_same && j == i) continue;
            const auto c = static_cast<std::size_t>(j - 1);
            const float s = separation(from, column_positions[c]);
            separations[c] = s;
            const int pair = pair_class(row_class, static_cast<int>(column_classes[c]));
            if (set.class_orbs[static_cast<std::size_t>(pair)] && set.count > 0)
                try_aspects(set, pair, s, m, i, j);
        }
    }
}

void set_row(AspectMatrix& m, int i, double radians, int body) {
    m.cell(i, 0) = position_degrees(radians);
    m.cell(i, -1) = static_cast<float>(body);
}

void set_column(AspectMatrix& m, int j, double radians, int body) {
    m.cell(0, j) = position_degrees(radians);
    m.cell(-1, j) = static_cast<float>(body);
}

// A list of one event, kept while the other event of a cross search is calculated.
constexpr int kept_capacity =
    std::max({geo_capacity, helio_capacity, lemni_capacity, chart_capacity});
struct KeptList {
    std::array<double, kept_capacity> longitudes{};
    std::array<unsigned char, kept_capacity> glyphs{};
    int count = 0;

    AspectList list() const { return {longitudes.data(), glyphs.data(), count}; }
};

enum class CrossLists { chart, geo, helio, lemni };

template <std::size_t N>
KeptList keep(const std::array<double, N>& longitudes, const std::array<unsigned char, N>& glyphs,
              int count) {
    KeptList k;
    k.count = std::clamp(count, 0, static_cast<int>(N));
    std::copy_n(longitudes.begin(), k.count, k.longitudes.begin());
    std::copy_n(glyphs.begin(), k.count, k.glyphs.begin());
    return k;
}

KeptList keep_list(const PositionLists& p, CrossLists which) {
    switch (which) {
    case CrossLists::geo:
        return keep(p.geo_long, p.geo_glyph, p.geo_count);
    case CrossLists::helio:
        return keep(p.helio_long, p.helio_glyph, p.helio_count);
    case CrossLists::lemni:
        return keep(p.lemni_long, p.lemni_glyph, p.lemni_count);
    case CrossLists::chart:
        break;
    }
    return keep(p.chart_long, p.chart_glyph, p.chart_count);
}

void cross_search(Session& s, int inner_event, int outer_event, CrossLists which,
                  AspectMatrix& matrix) {
    calculate_cross_event(s, inner_event);
    const KeptList first = keep_list(s.engine.pos, which);
    calculate_cross_event(s, outer_event);
    const KeptList second = keep_list(s.engine.pos, which);
    search_cross_aspects(s.option_sets.aspects, first.list(), second.list(), s.stars.star_glyphs,
                         matrix);
}

AspectList chart_list(const PositionLists& p) {
    return {p.chart_long.data(), p.chart_glyph.data(), p.chart_count};
}
AspectList helio_list(const PositionLists& p) {
    return {p.helio_long.data(), p.helio_glyph.data(), p.helio_count};
}

} // namespace

int body_class(unsigned char code, const StarGlyphs& star_glyphs) {
    using namespace body_class_of;
    if (code == glyph::sun || code == glyph::earth) return sun;
    if (code == glyph::moon) return moon;
    if (code == glyph::ascendant || code == glyph::midheaven ||
        between(code, glyph::mercury, glyph::pluto))
        return planet;
    if (code == glyph::north_node || code == glyph::perigee || code == glyph::chiron ||
        code == glyph::sedna || code == glyph::quaoar || between(code, glyph::ceres, glyph::juno) ||
        code == glyph::part_of_fortune || code == glyph::part_of_chiron)
        return element;
    if (is_star(code, star_glyphs)) return star;
    if (between(code, 117, 124)) return element;
    return none;
}

int pair_class(int a, int b) {
    using namespace body_class_of;
    if (a == star && b == star) return none;
    if (a == star || b == star) return star;
    if (a == element || b == element) return element;
    if (a == sun || b == sun) return sun;
    if (a == moon || b == moon) return moon;
    return planet;
}

void search_aspects(const AspectTable& table, const AspectList& list, const StarGlyphs& star_glyphs,
                    AspectMatrix& matrix) {
    const int n = std::max(list.count, 0);
    matrix.make(n, n, n);
    for (int i = 1; i <= n; ++i) {
        const auto k = static_cast<std::size_t>(i - 1);
        const int body = body_class(list.glyphs[k], star_glyphs);
        set_row(matrix, i, list.longitudes[k], body);
        set_column(matrix, i, list.longitudes[k], body);
    }
    measure_pairs(table, matrix, true);
}

void search_cross_aspects(const AspectTable& table, const AspectList& rows,
                          const AspectList& columns, const StarGlyphs& star_glyphs,
                          AspectMatrix& matrix) {
    const int n1 = std::max(rows.count, 0), n2 = std::max(columns.count, 0);
    matrix.make(std::max(n1, n2), n1, n2);
    for (int i = 1; i <= n1; ++i) {
        const auto k = static_cast<std::size_t>(i - 1);
        set_row(matrix, i, rows.longitudes[k], body_class(rows.glyphs[k], star_glyphs));
    }
    for (int j = 1; j <= n2; ++j) {
        const auto k = static_cast<std::size_t>(j - 1);
        set_column(matrix, j, columns.longitudes[k], body_class(columns.glyphs[k], star_glyphs));
    }
    measure_pairs(table, matrix, false);
}

void search_element_aspects(const AspectTable& table, const double* longitudes, int count,
                            AspectMatrix& matrix) {
    const int n = std::max(count, 0);
    matrix.make(n, n, n);
    for (int i = 1; i <= n; ++i) {
        const double radians = longitudes[static_cast<std::size_t>(i - 1)];
        set_row(matrix, i, radians, body_class_of::element);
        set_column(matrix, i, radians, body_class_of::element);
    }
    measure_pairs(table, matrix, true);
}

void chart_aspect_search(Session& s) {
    search_aspects(s.option_sets.aspects, chart_list(s.engine.pos), s.stars.star_glyphs,
                   s.aspect_matrices.chart);
}

void geo_helio_aspect_search(Session& s) {
    const PositionLists& p = s.engine.pos;
    search_cross_aspects(s.option_sets.aspects, chart_list(p), helio_list(p), s.stars.star_glyphs,
                         s.aspect_matrices.geo_helio);
}

void helio_aspect_search(Session& s) {
    search_aspects(s.option_sets.aspects, helio_list(s.engine.pos), s.stars.star_glyphs,
                   s.aspect_matrices.helio);
}

void lemni_aspect_search(Session& s) {
    const PositionLists& p = s.engine.pos;
    search_aspects(s.option_sets.aspects,
                   {p.lemni_long.data(), p.lemni_glyph.data(), p.lemni_count}, s.stars.star_glyphs,
                   s.aspect_matrices.lemni);
}

void helio_node_aspect_search(Session& s) {
    const PositionLists& p = s.engine.pos;
    search_element_aspects(s.option_sets.aspects, p.helio_node.data(), p.helio_count,
                           s.aspect_matrices.node);
}

void helio_peri_aspect_search(Session& s) {
    const PositionLists& p = s.engine.pos;
    search_element_aspects(s.option_sets.aspects, p.helio_peri.data(), p.helio_count,
                           s.aspect_matrices.perihelion);
}

void calculate_cross_event(Session& s, int row) {
    // A progressed ring is drawn by the double pages, which calculate it from its birth row;
    // here every row is the chart of its own moment.
    calculate_chart(s, row, true);
}

void cross_aspect_search(Session& s, int inner_event, int outer_event) {
    cross_search(s, inner_event, outer_event, CrossLists::chart, s.aspect_matrices.chart);
}

void cross_geo_aspect_search(Session& s, int inner_event, int outer_event) {
    cross_search(s, inner_event, outer_event, CrossLists::geo, s.aspect_matrices.chart);
}

void cross_helio_aspect_search(Session& s, int inner_event, int outer_event) {
    cross_search(s, inner_event, outer_event, CrossLists::helio, s.aspect_matrices.helio);
}

void cross_lemni_aspect_search(Session& s, int inner_event, int outer_event) {
    cross_search(s, inner_event, outer_event, CrossLists::lemni, s.aspect_matrices.lemni);
}

} // namespace celestark
