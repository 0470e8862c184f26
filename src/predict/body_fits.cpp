#include "predict/body_fits.h"

#include "engine/chart.h"
#include "engine/world_views.h"
#include "session/constants.h"
#include "session/session.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace celestark {

namespace {

// The values a window fits, in a fixed order, read from the engine's lists.
template <typename F>
void for_each_value(PositionLists& p, Nutation& n, const FittedLists& lists, F&& f) {
    if (lists.geo) {
        for (int i = 0; i < p.geo_count; ++i) f(p.geo_long[static_cast<std::size_t>(i)], true);
        f(n.true_obliquity, false);
    }
    if (lists.helio)
        for (auto* list : {&p.helio_long, &p.helio_node, &p.helio_peri})
            for (int i = 0; i < p.helio_count; ++i) f((*list)[static_cast<std::size_t>(i)], true);
    // The lemnicentric places turn about a centre that the Earth's place sets and jump as it
    // passes through them: they are made from the fitted heliocentric places, never fitted.
    if (lists.lemni) {
        if (!lists.helio)
            for (int i = 0; i < p.helio_count; ++i)
                f(p.helio_long[static_cast<std::size_t>(i)], true);
        for (auto* list : {&p.helio_lat, &p.helio_dist})
            for (int i = 0; i < p.helio_count; ++i) f((*list)[static_cast<std::size_t>(i)], false);
    }
}

// The moments where the rule of delta T changes from one formula or table to another (948,
// 1620 and 2000): there it jumps, and every position with it, which no smooth series follows,
// so a window ends at the next one. (Within the table the rule only bends every second year,
// which costs the series nothing measurable.)
double next_seam(double jd, int direction) {
    static constexpr double seams[] = {j2000 + (948.0 - 2000.0) * 365.25,
                                       j2000 + (1620.0 - 2000.0) * 365.25, j2000};
    if (direction > 0) {
        for (const double seam : seams)
            if (seam > jd) return seam;
        return std::numeric_limits<double>::infinity();
    }
    for (int i = 2; i >= 0; --i)
        if (seams[i] < jd) return seams[i];
    return -std::numeric_limits<double>::infinity();
}

} // namespace

BodyFits::BodyFits(FittedLists lists, double days, int degree, int direction)
    : lists_(lists), days_(days), degree_(degree), direction_(direction < 0 ? -1 : 1) {
    const int nodes = degree_ + 1;
    cosines_.resize(static_cast<std::size_t>(nodes * nodes));
    for (int j = 0; j < nodes; ++j)
        for (int k = 0; k < nodes; ++k)
            cosines_[static_cast<std::size_t>(j * nodes + k)] =
                std::cos(pi * j * (k + 0.5) / nodes);
}

void BodyFits::make_window(Session& s, double jd) {
    // A window that is not smooth is made again at half the width, down to a sixty-fourth; the
    // moments of a window still not smooth are calculated directly.
    for (double width = days_;; width /= 2) {
        fit_window(s, jd, width);
        if (smooth_ || width <= days_ / 64) return;
    }
}

void BodyFits::fit_window(Session& s, double jd, double width) {
    PositionLists& p = s.engine.pos;
    Nutation& nut = s.engine.nutation;
    if (direction_ > 0) {
        start_ = jd;
        end_ = std::min(jd + width, next_seam(jd, 1));
    } else {
        end_ = jd;
        start_ = std::max(jd - width, next_seam(jd, -1));
    }
    have_window_ = true;
    smooth_ = true;
    ++windows_;
    const int nodes = degree_ + 1;
    const double middle = (start_ + end_) / 2, half = (end_ - start_) / 2;
    // Geocentric longitudes alone take nothing from the Moon's latitude and distance series,
    // a quarter of the work of a moment; heliocentric and lemnicentric places without the
    // geocentric list take nothing from the Moon at all, unless it stands in the heliocentric
    // list.
    const CalcSwitches switches = s.engine.calc;
    if (!lists_.helio && !lists_.lemni) {
        s.engine.calc.calc_moon_lat = false;
        s.engine.calc.calc_moon_dist = false;
    }
    if (!lists_.geo && !s.chart.helio_moon) {
        s.engine.calc.calc_moon_long = s.engine.calc.calc_moon_lat = false;
        s.engine.calc.calc_moon_dist = s.engine.calc.calc_nodes = false;
    }
    struct Restore {
        Session& s;
        CalcSwitches switches;
        ~Restore() { s.engine.calc = switches; }
    } restore{s, switches};
    std::size_t count = 0;
    for (int k = 0; k < nodes; ++k) {
        const double x = std::cos(pi * (k + 0.5) / nodes);
        // Each node as a moment of its own: the Earth's series is not continued from the last
        // moment the engine calculated, which would make the values depend on the order of the
        // calls.
        s.engine.earth_rates_level = 0;
        calculate_bodies_at(s, middle + half * x);
        if (k == 0) {
            geo_count_ = p.geo_count;
            helio_count_ = p.helio_count;
            lemni_count_ = p.lemni_count;
            std::copy_n(p.geo_glyph.begin(), geo_capacity, geo_glyph_.begin());
            std::copy_n(p.helio_glyph.begin(), helio_capacity, helio_glyph_.begin());
            std::copy_n(p.lemni_glyph.begin(), lemni_capacity, lemni_glyph_.begin());
            count = 0;
            for_each_value(p, nut, lists_, [&](double&, bool) { ++count; });
            values_.assign(count * static_cast<std::size_t>(nodes), 0.0);
        } else if (p.geo_count != geo_count_ || p.helio_count != helio_count_ ||
                   p.lemni_count != lemni_count_) {
            smooth_ = false;
            return;
        }
        std::size_t v = 0;
        for_each_value(p, nut, lists_, [&](double& value, bool angle) {
            double y = value;
            if (k > 0 && angle) {
                // Each node's longitude continued from the one before it.
                const double before =
                    values_[v * static_cast<std::size_t>(nodes) + static_cast<std::size_t>(k - 1)];
                y = before + std::remainder(y - before, two_pi);
                if (std::fabs(y - before) >= half_pi) smooth_ = false;
            }
            values_[v * static_cast<std::size_t>(nodes) + static_cast<std::size_t>(k)] = y;
            ++v;
        });
    }
    // The series' coefficients from the values at the nodes.
    coefficients_.assign(values_.size(), 0.0);
    for (std::size_t v = 0; v < count; ++v)
        for (int j = 0; j < nodes; ++j) {
            double sum = 0;
            const double* row = &cosines_[static_cast<std::size_t>(j * nodes)];
            const double* y = &values_[v * static_cast<std::size_t>(nodes)];
            for (int k = 0; k < nodes; ++k) sum += y[k] * row[k];
            coefficients_[v * static_cast<std::size_t>(nodes) + static_cast<std::size_t>(j)] =
                sum * 2 / nodes;
        }
    // Each series cut where the coefficients left out sum to less than 1e-11 (two millionths
    // of a second of arc): the slow bodies need far fewer terms than the Moon.
    lengths_.assign(count, nodes);
    for (std::size_t v = 0; v < count; ++v) {
        const double* c = &coefficients_[v * static_cast<std::size_t>(nodes)];
        double tail = 0;
        int length = nodes;
        while (length > 1 && tail + std::fabs(c[length - 1]) < 1e-11)
            tail += std::fabs(c[--length]);
        lengths_[v] = length;
    }
}

void BodyFits::bodies_at(Session& s, double jd) {
    // A window holds from its start up to, not including, its end (the other way round going
    // back), so that a moment on a seam takes the piece after it.
    const bool inside = direction_ > 0 ? jd >= start_ && jd < end_ : jd > start_ && jd <= end_;
    if (!have_window_ || !inside) make_window(s, jd);
    if (!smooth_) {
        ++direct_;
        s.engine.earth_rates_level = 0;
        calculate_bodies_at(s, jd);
        return;
    }
    PositionLists& p = s.engine.pos;
    p.geo_count = geo_count_;
    p.helio_count = helio_count_;
    p.lemni_count = lemni_count_;
    std::copy_n(geo_glyph_.begin(), geo_capacity, p.geo_glyph.begin());
    std::copy_n(helio_glyph_.begin(), helio_capacity, p.helio_glyph.begin());
    std::copy_n(lemni_glyph_.begin(), lemni_capacity, p.lemni_glyph.begin());
    const double x = (2 * jd - start_ - end_) / (end_ - start_);
    std::size_t v = 0;
    for_each_value(p, s.engine.nutation, lists_, [&](double& value, bool angle) {
        double y = series_value(v++, x);
        if (angle) {
            y -= two_pi * std::floor(y / two_pi);
            if (y >= two_pi) y -= two_pi;
        }
        value = y;
    });
    if (lists_.lemni) calculate_lemni(s);
}

double BodyFits::series_value(std::size_t v, double x) const {
    // Clenshaw's recurrence.
    const int nodes = degree_ + 1;
    const double* c = coefficients_.data() + v * static_cast<std::size_t>(nodes);
    double b1 = 0, b2 = 0;
    for (int j = lengths_[v] - 1; j >= 1; --j) {
        const double b = 2 * x * b1 - b2 + c[j];
        b2 = b1;
        b1 = b;
    }
    return x * b1 - b2 + c[0] / 2;
}

} // namespace celestark
