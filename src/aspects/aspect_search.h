#pragma once
// The aspects of calculated charts: every pair of a position list (or of two lists) is measured
// against the whole loaded aspect set and the hits go to an aspect matrix
// (session/aspect_matrix.h). No drawing here; the predictive searches have loops of their own.
//
// The caller has loaded the aspect set (load_aspect_set) and, for the searches over one event,
// calculated the chart.
#include "session/aspect_matrix.h"
#include "session/option_state.h"

#include <array>

namespace celestark {

struct Session;

// The glyph codes of the eight stars in charts (the session's `stars.star_glyphs`, filled by the
// star group in use); an entry 0 is empty and matches no glyph.
using StarGlyphs = std::array<unsigned char, 8>;

// Body classes, from the body's glyph code.
namespace body_class_of {
inline constexpr int none = 0, sun = 1, moon = 2, planet = 3, element = 4, star = 5;
}

// 1 Sun and Earth; 2 Moon; 3 Ascendant, Midheaven, Mercury to Pluto; 4 north node, perigee,
// Chiron, Sedna, Quaoar, the asteroids, the parts of Fortune and Chiron; 5 a glyph among
// `star_glyphs` (an entry 0 is empty and matches nothing); then 4 for the codes 117 to 124; 0
// anything else. The first match decides, so a star whose glyph is one of 117 to 124 is a star.
int body_class(unsigned char glyph, const StarGlyphs& star_glyphs);

// The class whose orb a pair takes: 0 for two stars (no orb: never in aspect), then 5 for a star,
// 4 for an element, 1 for the Sun, 2 for the Moon, whatever the other body; otherwise 3. A body
// of class 0 beside a planet makes a pair of class 3.
int pair_class(int class_a, int class_b);

// A position list as the searches read it: longitudes in radians and glyph codes, `count` long.
struct AspectList {
    const double* longitudes = nullptr;
    const unsigned char* glyphs = nullptr;
    int count = 0;
};

// The search of one list with itself: every ordered pair i, j with j unlike i fills its own cell.
// For each aspect of the set in order, d = |angle - |s||; the pair is in aspect when d is not above
// the orb of the pair's class. The loop does not stop at a hit: the last aspect of the set that
// holds wins the cell, and mark 2 of an earlier aspect stays when the later one is not in the
// aspectogram. An aspect belongs in the aspectogram when its flag is set (True is stored as -1).
void search_aspects(const AspectTable& table, const AspectList& list, const StarGlyphs& star_glyphs,
                    AspectMatrix& matrix);
// The cross search: rows the first list, columns the second, every i against every j (a body
// also against its own place in the other list). The matrix is made for the greater size.
void search_cross_aspects(const AspectTable& table, const AspectList& rows,
                          const AspectList& columns, const StarGlyphs& star_glyphs,
                          AspectMatrix& matrix);
// The search of the heliocentric nodes or perihelia: every body is of class 4, so only the
// elements orb applies.
void search_element_aspects(const AspectTable& table, const double* longitudes, int count,
                            AspectMatrix& matrix);

// The searches of the session, on its loaded aspect set, its star glyphs and its position lists.
void chart_aspect_search(Session& s);      // the chart list, into the chart matrix
void geo_helio_aspect_search(Session& s);  // rows the chart list, columns the helio list
void helio_aspect_search(Session& s);      // the helio list
void lemni_aspect_search(Session& s);      // the lemni list (the Sun and the Earth are class 1)
void helio_node_aspect_search(Session& s); // the helio nodes, helio_count long
void helio_peri_aspect_search(Session& s); // the helio perihelia, helio_count long

// The cross searches of two events in the slots `inner_event` (rows) and `outer_event`
// (columns): each event is calculated in turn and its list kept. cross_aspect_search and
// cross_geo_aspect_search take the chart lists and geo lists into the chart matrix; the helio and
// lemni forms take their lists into the helio and lemni matrices. The session's positions are
// those of the outer event afterwards.
void cross_aspect_search(Session& s, int inner_event, int outer_event);
void cross_geo_aspect_search(Session& s, int inner_event, int outer_event);
void cross_helio_aspect_search(Session& s, int inner_event, int outer_event);
void cross_lemni_aspect_search(Session& s, int inner_event, int outer_event);

// The calculation of one event of a cross search: the chart of the row's moment with its
// retrograde marks. (The double pages calculate a progressed ring themselves, from its birth.)
void calculate_cross_event(Session& s, int row);

} // namespace celestark
