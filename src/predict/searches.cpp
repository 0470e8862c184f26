#include "predict/searches.h"

#include "aspects/aspect_search.h"
#include "predict/predictive_controls.h"
#include "predict/predictive_run.h"
#include "predict/samples.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace celestark {

namespace {

constexpr double degree = 0.017453292519943278;

std::string glyph_text(unsigned char code) {
    return std::string(1, static_cast<char>(code));
}

// One list as a search reads it: the five samples of each body, their glyphs, and the list's
// name letter where two lists meet ("G", "H").
struct BodyList {
    int count = 0;
    const unsigned char* glyphs = nullptr;
    std::vector<Samples> samples;
    std::string mark;
};

template <std::size_t N>
BodyList window_list(const std::array<Sample, 5>& window, std::array<double, N> Sample::*member,
                     int count, const unsigned char* glyphs, std::string mark = {}) {
    BodyList l;
    l.count = count;
    l.glyphs = glyphs;
    l.mark = std::move(mark);
    l.samples.resize(static_cast<std::size_t>(count));
    for (int p = 0; p < count; ++p)
        for (std::size_t i = 0; i < 5; ++i)
            l.samples[static_cast<std::size_t>(p)][i] =
                (window[i].*member)[static_cast<std::size_t>(p)];
    return l;
}

// A fixed chart's list: each body's place stands in all five samples.
template <std::size_t N>
BodyList fixed_list(const std::array<double, N>& places, int count, const unsigned char* glyphs,
                    std::string mark = {}) {
    BodyList l;
    l.count = count;
    l.glyphs = glyphs;
    l.mark = std::move(mark);
    l.samples.resize(static_cast<std::size_t>(count));
    for (int p = 0; p < count; ++p)
        l.samples[static_cast<std::size_t>(p)].fill(places[static_cast<std::size_t>(p)]);
    return l;
}

// Whether the middle sample of a search lies within a tenth of a half circle of zero on the
// circle: no zero can be found otherwise, and most pairs are settled by this test alone.
bool middle_near_zero_within(double value, double reach) {
    return std::fabs(value - two_pi * std::nearbyint(value / two_pi)) < reach;
}
bool middle_near_zero(double value) {
    return middle_near_zero_within(value, pi / 10 + 1e-15);
}

// The value at the interpolating factor and the retrograde mark: "R" when the value lies below
// the sample of the earlier of the two slots about it.
struct Interpolated {
    double value;
    std::string retro;
};
Interpolated interpolate_body(Samples y, double n, int direction) {
    unwrap_samples(y);
    Interpolated out{interpolate_samples(y, n), " "};
    std::size_t a = n >= 0 ? 2 : 1, b = a + 1; // the slots about the moment
    if (direction < 0) std::swap(a, b);        // the earlier first
    if (out.value < y[a] || (out.value == y[a] && y[b] < y[a])) out.retro = "R";
    out.value = std::fmod(std::fmod(out.value, two_pi) + two_pi, two_pi);
    return out;
}

class Searcher {
  public:
    Searcher(Session& s, const BodySelection& bodies)
        : s_(s), run_(s.predictive), bodies_(bodies), table_(s.option_sets.aspects) {}

    void step(bool full) {
        const RunChoices& c = run_.choices;
        const std::string& view = c.world_view;
        if (view == "Geocentric" || view == "Tychonic") {
            const BodyList moving = life_list(&Sample::geo, run_.geo_count, run_.geo_glyph.data());
            if (c.retro) stations(moving);
            if (!full) return;
            if (c.constellations) ingresses(moving, "IC");
            if (c.signs) ingresses(moving, "IS");
            if (c.houses) ingresses(moving, "IH");
            if (c.aspects || c.orb) aspect_passes(moving, Lists::geo);
            if (c.recur) recurrence_passes(moving, Lists::geo);
            if (c.eclipses) eclipse_hits();
        } else if (view == "Geo/Helio") {
            if (!full) return;
            const BodyList geo =
                life_list(&Sample::geo, run_.geo_count, run_.geo_glyph.data(), "G");
            const BodyList helio =
                life_list(&Sample::helio, run_.helio_count, run_.helio_glyph.data(), "H");
            if (c.signs) {
                ingresses(geo, "IS");
                ingresses(helio, "IS");
            }
            if (c.houses) ingresses(helio, "IH");
            if (c.aspects || c.orb) {
                aspect_passes(geo, Lists::helio);
                aspect_passes(helio, Lists::geo);
            }
            if (c.recur) {
                recurrence_passes(geo, Lists::geo);
                recurrence_passes(helio, Lists::helio);
            }
        } else if (view == "Lemnicentric") {
            const BodyList moving = lemni_life_list();
            if (c.retro) stations(moving);
            if (!full) return;
            if (c.constellations) ingresses(moving, "IC");
            if (c.aspects) aspect_passes(moving, Lists::lemni);
            if (c.recur) recurrence_passes(moving, Lists::lemni);
        } else if (view == "Heliocentric") {
            if (!full) return;
            const BodyList moving =
                life_list(&Sample::helio, run_.helio_count, run_.helio_glyph.data());
            if (c.constellations) ingresses(moving, "IC", true);
            // Signs only where the screen allows them (the phenomena list does).
            if (c.signs) ingresses(moving, "IS");
            if (c.aspects || c.orb) {
                aspect_passes(moving, Lists::helio);
                if (bodies_.radical[glyph_helio_nodes]) aspect_passes(moving, Lists::helio_node);
                if (bodies_.radical[glyph_helio_perihelia])
                    aspect_passes(moving, Lists::helio_peri);
            }
            if (c.recur) recurrence_passes(moving, Lists::helio);
        }
    }

    // The selection's stand-ins for the two heliocentric element lists.
    static constexpr unsigned char glyph_helio_nodes = 1, glyph_helio_perihelia = 2;

  private:
    enum class Lists { geo, helio, helio_node, helio_peri, lemni };

    template <std::size_t N>
    BodyList life_list(std::array<double, N> Sample::*member, int count,
                       const unsigned char* glyphs, std::string mark = {}) const {
        return window_list(run_.life, member, count, glyphs, std::move(mark));
    }

    // The lemnicentric life list. A place whose centre passes through it jumps by half a circle,
    // which no interpolation follows: a body that jumps inside the window sits out this step.
    BodyList lemni_life_list() {
        BodyList l = life_list(&Sample::lemni, run_.lemni_count, run_.lemni_glyph.data());
        lemni_jumps_.assign(static_cast<std::size_t>(l.count), false);
        for (int p = 0; p < l.count; ++p) {
            const Samples& y = l.samples[static_cast<std::size_t>(p)];
            for (std::size_t i = 1; i < 5; ++i)
                if (!middle_near_zero_within(y[i] - y[i - 1], pi / 2))
                    lemni_jumps_[static_cast<std::size_t>(p)] = true;
        }
        return l;
    }
    bool skipped(const BodyList& l, int p) const {
        return l.glyphs == run_.lemni_glyph.data() && !lemni_jumps_.empty() &&
               lemni_jumps_[static_cast<std::size_t>(p)];
    }

    BodyList target_list(Lists which, bool stepped, const FixedChart& chart) const {
        if (stepped) {
            switch (which) {
            case Lists::geo:
                return window_list(run_.window, &Sample::geo, run_.geo_count, run_.geo_glyph.data(),
                                   mark_of(which));
            case Lists::helio:
                return window_list(run_.window, &Sample::helio, run_.helio_count,
                                   run_.helio_glyph.data(), mark_of(which));
            case Lists::helio_node:
                return window_list(run_.window, &Sample::helio_node, run_.helio_count,
                                   run_.helio_glyph.data());
            case Lists::helio_peri:
                return window_list(run_.window, &Sample::helio_peri, run_.helio_count,
                                   run_.helio_glyph.data());
            case Lists::lemni:
                return window_list(run_.window, &Sample::lemni, run_.lemni_count,
                                   run_.lemni_glyph.data());
            }
        }
        switch (which) {
        case Lists::geo:
            return fixed_list(chart.geo, chart.geo_count, chart.geo_glyph.data(), mark_of(which));
        case Lists::helio:
            return fixed_list(chart.helio, chart.helio_count, chart.helio_glyph.data(),
                              mark_of(which));
        case Lists::helio_node:
            return fixed_list(chart.helio_node, chart.helio_count, chart.helio_glyph.data());
        case Lists::helio_peri:
            return fixed_list(chart.helio_peri, chart.helio_count, chart.helio_glyph.data());
        case Lists::lemni:
            return fixed_list(chart.lemni, chart.lemni_count, chart.lemni_glyph.data());
        }
        return {};
    }
    std::string mark_of(Lists which) const {
        if (run_.choices.world_view != "Geo/Helio") return {};
        return which == Lists::geo ? "G" : which == Lists::helio ? "H" : "";
    }

    // The retrograde mark a fixed chart keeps for a body of its list.
    static std::string fixed_mark(const FixedChart& chart, Lists which, int q) {
        if (which == Lists::geo && q >= 2 && q <= 9 && chart.geo_retro[static_cast<std::size_t>(q)])
            return "R";
        if (which == Lists::lemni && q >= 2 && q <= 9 &&
            chart.lemni_retro[static_cast<std::size_t>(q)])
            return "R";
        return " ";
    }

    int body_class_of(unsigned char glyph) const { return body_class(glyph, s_.stars.star_glyphs); }

    double orb_for(Lists which, int aspect, int class_p, int class_q) const {
        const auto k = static_cast<std::size_t>(aspect);
        if (which == Lists::helio_node || which == Lists::helio_peri) return table_.orb_elements[k];
        if (run_.choices.world_view == "Heliocentric") return table_.orb_planets[k];
        if (run_.choices.world_view == "Geo/Helio") {
            if (class_p == body_class_of::moon) return table_.orb_moon[k];
            if (class_p == body_class_of::sun) return table_.orb_sun[k];
            return table_.orb_planets[k];
        }
        return geocentric_orb(table_, aspect, class_p, class_q);
    }

    Hit& add_hit(const std::string& kind, double n) {
        Hit& h = run_.hits.emplace_back();
        h.kind = kind;
        h.date = run_.window[2].time + n * run_.run_direction * run_.run_step;
        h.life_date = map_to_life_date(s_, h.date, 0);
        return h;
    }
    void put_moving(Hit& h, const BodyList& moving, int p, double n) const {
        const Interpolated at =
            interpolate_body(moving.samples[static_cast<std::size_t>(p)], n, run_.run_direction);
        h.pos_1 = at.value;
        h.retro_1 = at.retro;
        h.body_1 = glyph_text(moving.glyphs[p]) + moving.mark;
    }

    // The aspect passes: the moving set (kind "A"), the epoch chart ("E"), the birth chart
    // ("B"), as the parameters ask.
    void aspect_passes(const BodyList& moving, Lists target) {
        const RunChoices& c = run_.choices;
        if (c.pass_moving) {
            const BodyList t = target_list(target, true, run_.birth);
            aspects(moving, t, target, "A", run_.ab_prenatal, nullptr);
        }
        if (c.pass_epoch)
            aspects(moving, target_list(target, false, run_.epoch), target, "E", false,
                    &run_.epoch);
        if (c.pass_birth)
            aspects(moving, target_list(target, false, run_.birth), target, "B", false,
                    &run_.birth);
    }

    bool pair_on(const BodyList& moving, int p, const BodyList& target, int q, Lists which,
                 bool same_set) const {
        const unsigned char gp = moving.glyphs[p], gq = target.glyphs[q];
        if (!bodies_.moving[gp]) return false;
        const bool radical = which == Lists::helio_node   ? bodies_.radical[glyph_helio_nodes]
                             : which == Lists::helio_peri ? bodies_.radical[glyph_helio_perihelia]
                                                          : bodies_.radical[gq];
        if (!radical) return false;
        if (same_set) {
            // The set compared with itself: each pair once, and no body with itself.
            if (p == q) return false;
            const bool mirror = bodies_.moving[gq] && bodies_.radical[gp];
            return !mirror || p > q;
        }
        if (run_.choices.self && gp != gq) return false;
        return true;
    }

    void aspects(const BodyList& moving, const BodyList& target, Lists which,
                 const std::string& kind, bool same_set, const FixedChart* chart) {
        const RunChoices& c = run_.choices;
        const bool fixed = chart != nullptr;
        const bool orb_pass = c.orb && (c.world_view != "Lemnicentric");
        // The pairs and the bodies' classes once for all the aspects.
        // Kept between the steps, so that a step allocates nothing.
        static thread_local std::vector<int> class_p, class_q;
        class_p.resize(static_cast<std::size_t>(moving.count));
        class_q.resize(static_cast<std::size_t>(target.count));
        for (int p = 0; p < moving.count; ++p)
            class_p[static_cast<std::size_t>(p)] = body_class_of(moving.glyphs[p]);
        for (int q = 0; q < target.count; ++q)
            class_q[static_cast<std::size_t>(q)] = body_class_of(target.glyphs[q]);
        // Each pair with the difference of its middle samples on the circle, -pi to pi.
        struct Pair {
            int p, q;
            double middle;
        };
        static thread_local std::vector<Pair> pairs;
        pairs.clear();
        for (int p = 0; p < moving.count; ++p) {
            if (skipped(moving, p)) continue;
            for (int q = 0; q < target.count; ++q)
                if (pair_on(moving, p, target, q, which, same_set)) {
                    const double d = moving.samples[static_cast<std::size_t>(p)][2] -
                                     target.samples[static_cast<std::size_t>(q)][2];
                    pairs.push_back({p, q, d - two_pi * std::nearbyint(d / two_pi)});
                }
        }
        // A difference near an angle, either way round, within the widest reach of a search
        // (a tenth of a half circle beyond the orb).
        const auto near = [](double middle, double offset, double reach) {
            const double x = std::fabs(middle + offset);
            return x <= reach || std::fabs(x - two_pi) <= reach;
        };
        // The aspects each pair may be near, from the table of the separation's whole degrees,
        // then taken aspect by aspect in the order of the set.
        static thread_local std::vector<std::uint32_t> near_aspects;
        near_aspects.resize(pairs.size());
        std::uint32_t any = 0;
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            const auto bin = std::min<std::size_t>(
                static_cast<std::size_t>(std::fabs(pairs[i].middle) * rad_to_deg), 180);
            near_aspects[i] = bodies_.aspect_bins[bin];
            any |= near_aspects[i];
        }
        struct Candidate {
            int a;
            std::size_t pair;
        };
        static thread_local std::vector<Candidate> candidates;
        candidates.clear();
        for (std::uint32_t mask = any; mask != 0; mask &= mask - 1) {
            const int a = std::countr_zero(mask);
            for (std::size_t i = 0; i < pairs.size(); ++i)
                if (near_aspects[i] >> a & 1u) candidates.push_back({a, i});
        }
        // Each pair's difference, continued across the circle, made once for all its aspects.
        static thread_local std::vector<Samples> differences;
        static thread_local std::vector<char> made;
        differences.resize(pairs.size());
        made.assign(pairs.size(), 0);
        for (const auto& [a, pair] : candidates) {
            const auto& [p, q, middle] = pairs[pair];
            const double angle = table_.angle[static_cast<std::size_t>(a)];
            const double widest = c.orb ? max_orb(a) * degree : 0.0;
            const double reach = pi / 10 + widest;
            {
                if (!near(middle, -angle * degree, reach) && !near(middle, angle * degree, reach))
                    continue;
                {
                    const int cp = class_p[static_cast<std::size_t>(p)];
                    const int cq = class_q[static_cast<std::size_t>(q)];
                    if (!aspect_allowed(table_, a, cp, cq)) continue;
                    const Samples& P = moving.samples[static_cast<std::size_t>(p)];
                    const Samples& Q = target.samples[static_cast<std::size_t>(q)];
                    Samples& D = differences[pair];
                    if (!made[pair]) {
                        for (std::size_t i = 0; i < 5; ++i) D[i] = P[i] - Q[i];
                        unwrap_samples(D);
                        made[pair] = 1;
                    }
                    const bool one_sided = !(angle > 0 && angle < 180);
                    if (c.aspects) {
                        crossing(D, 1, -angle * degree, kind, "", moving, p, target, q, which,
                                 chart, a);
                        if (!one_sided)
                            crossing(D, 1, angle * degree, kind, "", moving, p, target, q, which,
                                     chart, a);
                    }
                    if (!orb_pass) continue;
                    const double o = orb_for(which, a, cp, cq);
                    // The faster of the pair goes first; against a chart the moving body does.
                    bool moving_first = true;
                    if (!fixed) {
                        const double sq = std::fabs(std::remainder(Q[3] - Q[2], two_pi));
                        const double sp = std::fabs(std::remainder(P[3] - P[2], two_pi));
                        moving_first = sq < sp;
                    }
                    const double sign = moving_first ? 1 : -1;
                    orb_edge(D, sign, -(angle - o) * degree, "AE", "AL", kind, moving, p, target, q,
                             which, chart, a);
                    if (!one_sided)
                        orb_edge(D, sign, (angle + o) * degree, "AE", "AL", kind, moving, p, target,
                                 q, which, chart, a);
                    orb_edge(D, sign, -(angle + o) * degree, "SL", "SE", kind, moving, p, target, q,
                             which, chart, a);
                    if (!one_sided)
                        orb_edge(D, sign, (angle - o) * degree, "SL", "SE", kind, moving, p, target,
                                 q, which, chart, a);
                }
            }
        }
    }

    // The widest orb of an aspect for any pair of classes, degrees.
    double max_orb(int aspect) const {
        const auto k = static_cast<std::size_t>(aspect);
        return std::max({table_.orb_sun[k], table_.orb_moon[k], table_.orb_planets[k],
                         table_.orb_elements[k], table_.orb_stars[k]});
    }

    // y = sign * D + offset for a pair's continued difference D, its middle sample brought
    // within half a circle of zero, as unwrapping the five values would leave it; false when
    // that middle lies beyond a tenth of a half circle, where no zero is looked for.
    static bool offset_samples(const Samples& D, double sign, double offset, Samples& y) {
        const double middle = sign * D[2] + offset;
        const double turns = std::nearbyint(middle / two_pi);
        if (std::fabs(middle - two_pi * turns) > pi / 10 + 1e-15) return false;
        for (std::size_t i = 0; i < 5; ++i) y[i] = sign * D[i] + offset - two_pi * turns;
        return true;
    }

    // An exact aspect where P - Q + offset crosses zero.
    void crossing(const Samples& D, double sign, double offset, const std::string& kind,
                  const std::string& orb_kind, const BodyList& moving, int p,
                  const BodyList& target, int q, Lists which, const FixedChart* chart, int a) {
        Samples y;
        if (!offset_samples(D, sign, offset, y)) return;
        const Zeros zeros = find_zeros(y);
        for (int i = 0; i < zeros.count; ++i)
            store_aspect(kind, orb_kind, zeros.at[static_cast<std::size_t>(i)].n, moving, p, target,
                         q, which, chart, a);
    }
    // An orb's edge where F - G + offset crosses zero (F the faster of the pair).
    void orb_edge(const Samples& D, double sign, double offset, const char* rising_kind,
                  const char* falling_kind, const std::string& kind, const BodyList& moving, int p,
                  const BodyList& target, int q, Lists which, const FixedChart* chart, int a) {
        Samples y;
        if (!offset_samples(D, sign, offset, y)) return;
        const Zeros zeros = find_zeros(y);
        for (int i = 0; i < zeros.count; ++i) {
            const Zero& z = zeros.at[static_cast<std::size_t>(i)];
            store_aspect(kind, z.rising ? rising_kind : falling_kind, z.n, moving, p, target, q,
                         which, chart, a);
        }
    }

    void store_aspect(const std::string& kind, const std::string& orb_kind, double n,
                      const BodyList& moving, int p, const BodyList& target, int q, Lists which,
                      const FixedChart* chart, int a) {
        Hit& h = add_hit(kind, n);
        put_moving(h, moving, p, n);
        if (chart) {
            h.pos_2 = target.samples[static_cast<std::size_t>(q)][0];
            h.retro_2 = fixed_mark(*chart, which, q);
        } else {
            const Interpolated at = interpolate_body(target.samples[static_cast<std::size_t>(q)], n,
                                                     run_.run_direction);
            h.pos_2 = at.value;
            h.retro_2 = at.retro;
        }
        h.body_2 = glyph_text(target.glyphs[q]) + target.mark;
        h.aspect_glyph = glyph_text(table_.glyph[static_cast<std::size_t>(a)]);
        h.aspect_name = table_.digraph[static_cast<std::size_t>(a)];
        h.orb_kind = orb_kind;
        h.value = table_.angle[static_cast<std::size_t>(a)];
    }

    // The recurrence of a separation of the chart (kinds "RB", "RE") or of the moving set ("RA").
    void recurrence_passes(const BodyList& moving, Lists which) {
        const RunChoices& c = run_.choices;
        if (c.pass_moving) recurrence(moving, which, "RA", nullptr);
        if (c.pass_epoch) recurrence(moving, which, "RE", &run_.epoch);
        if (c.pass_birth) recurrence(moving, which, "RB", &run_.birth);
    }
    void recurrence(const BodyList& moving, Lists which, const std::string& kind,
                    const FixedChart* chart) {
        const BodyList target = target_list(which, chart == nullptr, chart ? *chart : run_.birth);
        const int count = std::min(moving.count, target.count);
        for (int p = 0; p < count; ++p) {
            if (skipped(moving, p)) continue;
            for (int q = 0; q < count; ++q) {
                if (p == q || !bodies_.moving[moving.glyphs[p]] ||
                    !bodies_.radical[moving.glyphs[q]])
                    continue;
                if (run_.choices.self) continue; // a body is never paired with another
                const Samples& Pp = moving.samples[static_cast<std::size_t>(p)];
                const Samples& Pq = moving.samples[static_cast<std::size_t>(q)];
                const Samples& Wp = target.samples[static_cast<std::size_t>(p)];
                const Samples& Wq = target.samples[static_cast<std::size_t>(q)];
                for (int sense = 0; sense < (chart ? 2 : 1); ++sense) {
                    Samples y;
                    for (std::size_t i = 0; i < 5; ++i) {
                        const double separation = Wp[i] - Wq[i];
                        y[i] = Pp[i] - Pq[i] + (sense == 0 ? -separation : separation);
                    }
                    unwrap_samples(y);
                    const Zeros zeros = find_zeros(y);
                    for (int i = 0; i < zeros.count; ++i) {
                        const Zero& z = zeros.at[static_cast<std::size_t>(i)];
                        Hit& h = add_hit(kind, z.n);
                        put_moving(h, moving, p, z.n);
                        const Interpolated second = interpolate_body(Pq, z.n, run_.run_direction);
                        h.pos_2 = second.value;
                        h.retro_2 = second.retro;
                        h.body_2 = glyph_text(moving.glyphs[q]) + moving.mark;
                        h.aspect_glyph = sense == 0 ? "F" : "R";
                    }
                }
            }
        }
    }

    // Ingresses into signs ("IS"), houses of the birth chart ("IH") and constellations ("IC").
    void ingresses(const BodyList& moving, const char* kind, bool forward_only = false) {
        const std::string k = kind;
        for (int p = 0; p < moving.count; ++p) {
            if (!bodies_.moving[moving.glyphs[p]] || skipped(moving, p)) continue;
            const Samples& P = moving.samples[static_cast<std::size_t>(p)];
            for (int place = 1; place <= 12; ++place) {
                double boundary = 0;
                if (k == "IS")
                    boundary = s_.engine.zodiac_offset + 30.0 * (place - 1) * degree;
                else if (k == "IH")
                    boundary = run_.birth.cusps[static_cast<std::size_t>(place)];
                else
                    boundary = s_.option_sets.zodiac
                                   .constellation_start[static_cast<std::size_t>(place - 1)] *
                               degree;
                if (!middle_near_zero(P[2] - boundary)) continue;
                Samples y;
                for (std::size_t i = 0; i < 5; ++i) y[i] = P[i] - boundary;
                unwrap_samples(y);
                const Zeros zeros = find_zeros(y);
                for (int i = 0; i < zeros.count; ++i) {
                    const Zero& z = zeros.at[static_cast<std::size_t>(i)];
                    if (forward_only && !z.rising) continue;
                    Hit& h = add_hit(k, z.n);
                    put_moving(h, moving, p, z.n);
                    h.orb_kind = z.rising ? "TO" : "FROM";
                    const int before = place == 1 ? 12 : place - 1;
                    if (k == "IH") {
                        h.target_glyph = std::to_string(place);
                        h.target_next = std::to_string(before);
                    } else {
                        h.target_glyph =
                            glyph_text(sign_glyphs[static_cast<std::size_t>(place - 1)]);
                        h.target_next =
                            glyph_text(sign_glyphs[static_cast<std::size_t>(before - 1)]);
                    }
                }
            }
        }
    }

    // The eclipses of the list that fall between the second and the fourth slot, by the stepped
    // moments, or the life dates when the life set is the real sky.
    void eclipse_hits() {
        const auto& slots = run_.ab_prenatal ? run_.window : run_.life;
        const double a = std::min(slots[1].time, slots[3].time),
                     b = std::max(slots[1].time, slots[3].time);
        for (const auto& e : run_.eclipses) {
            if (e.date < a || e.date > b) continue;
            Hit& h = run_.hits.emplace_back();
            h.kind = e.kind;
            h.date = e.date;
            h.life_date = run_.ab_prenatal ? map_to_life_date(s_, e.date, 0) : e.date;
            h.aspect_glyph = e.type;
            h.pos_1 = e.sun;
            h.pos_2 = e.moon;
            h.body_1 = glyph_text(e.kind == "S" ? glyph::sun : glyph::moon);
        }
    }

    // Stations: the moving body turns.
    void stations(const BodyList& moving) {
        for (int p = 0; p < moving.count; ++p) {
            if (!bodies_.moving[moving.glyphs[p]] || skipped(moving, p)) continue;
            Samples y = moving.samples[static_cast<std::size_t>(p)];
            unwrap_samples(y);
            const Extremum x = find_extremum(y);
            if (!x.found) continue;
            Hit& h = add_hit("R", x.n);
            put_moving(h, moving, p, x.n);
            // In stepped time running backward a maximum of the samples is a minimum of the
            // motion.
            const bool maximum = run_.run_direction > 0 ? x.maximum : !x.maximum;
            h.note = maximum ? "R" : "D";
        }
    }

    Session& s_;
    PredictiveRun& run_;
    const BodySelection& bodies_;
    const AspectTable& table_;
    std::vector<bool> lemni_jumps_;
};

} // namespace

double geocentric_orb(const AspectTable& table, int aspect, int class_p, int class_q) {
    const auto k = static_cast<std::size_t>(aspect);
    if (class_p == body_class_of::sun || class_q == body_class_of::sun) return table.orb_sun[k];
    if (class_p == body_class_of::moon || class_q == body_class_of::moon) return table.orb_moon[k];
    return table.orb_planets[k];
}

bool aspect_allowed(const AspectTable& table, int aspect, int class_p, int class_q) {
    const auto k = static_cast<std::size_t>(aspect);
    const auto orb = [&](int c) -> double {
        switch (c) {
        case body_class_of::sun:
            return table.orb_sun[k];
        case body_class_of::moon:
            return table.orb_moon[k];
        case body_class_of::element:
            return table.orb_elements[k];
        case body_class_of::star:
            return table.orb_stars[k];
        default:
            return table.orb_planets[k];
        }
    };
    return orb(class_p) != 0 && orb(class_q) != 0;
}

BodySelection select_bodies(const Session& s, const PredictiveParameters& params) {
    BodySelection b;
    for (int code = 0; code < 256; ++code) {
        const auto glyph = static_cast<unsigned char>(code);
        const std::string flag = body_flag(glyph);
        if (!flag.empty()) {
            b.moving[glyph] = params.on("t_" + flag);
            b.radical[glyph] = params.on("c_" + flag);
        }
    }
    // The stars of the charts are aspected only.
    for (unsigned char star : s.stars.star_glyphs)
        if (star != 0) b.radical[star] = params.on("c_stars");
    // For each whole degree of separation (0 to 180), the aspects within reach of it: a tenth of
    // a half circle, and the widest orb when the orbs are searched.
    const AspectTable& table = s.option_sets.aspects;
    const bool orb = params.on("orb");
    for (int a = 0; a < table.aspect_count && a < 32; ++a) {
        const auto k = static_cast<std::size_t>(a);
        const double widest =
            orb ? std::max({table.orb_sun[k], table.orb_moon[k], table.orb_planets[k],
                            table.orb_elements[k], table.orb_stars[k]})
                : 0.0;
        const double reach = 18.0 + widest + 1e-9;
        for (int bin = 0; bin <= 180; ++bin)
            if (bin + 1 >= table.angle[k] - reach && bin <= table.angle[k] + reach)
                b.aspect_bins[static_cast<std::size_t>(bin)] |= std::uint32_t{1} << a;
    }
    b.radical[Searcher::glyph_helio_nodes] = params.on("c_helio_nodes");
    b.radical[Searcher::glyph_helio_perihelia] = params.on("c_helio_perihelions");
    return b;
}

void search_step(Session& s, const BodySelection& bodies, bool full) {
    Searcher(s, bodies).step(full);
}

} // namespace celestark
