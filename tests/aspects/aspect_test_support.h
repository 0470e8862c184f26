// Small aspect sets and position lists built in code, for the aspect tests.
#pragma once

#include "aspects/aspect_search.h"
#include "session/constants.h"
#include "session/option_state.h"

#include <cmath>
#include <initializer_list>
#include <string>
#include <vector>

namespace celestark::testing {

// One aspect of a set: angle, digraph, glyph, aspectogram flag (True is -1) and the five orbs.
struct AspectRow {
    float angle;
    const char* digraph;
    unsigned char glyph;
    std::int16_t aspectogram;
    float sun, moon, planets, elements, stars;
};

inline AspectTable aspect_table(std::initializer_list<AspectRow> rows) {
    AspectTable t;
    for (const AspectRow& r : rows) {
        t.angle.push_back(r.angle);
        t.digraph.emplace_back(r.digraph);
        t.glyph.push_back(r.glyph);
        t.in_aspectogram.push_back(r.aspectogram);
        t.orb_sun.push_back(r.sun);
        t.orb_moon.push_back(r.moon);
        t.orb_planets.push_back(r.planets);
        t.orb_elements.push_back(r.elements);
        t.orb_stars.push_back(r.stars);
    }
    t.aspect_count = static_cast<std::int16_t>(rows.size());
    return t;
}

// A list of bodies given by glyph and longitude in degrees.
struct Bodies {
    std::vector<double> radians;
    std::vector<unsigned char> glyphs;

    Bodies() = default;
    Bodies(std::initializer_list<std::pair<unsigned char, double>> bodies) {
        for (const auto& [code, degrees] : bodies) {
            glyphs.push_back(code);
            radians.push_back(degrees * deg_to_rad);
        }
    }
    AspectList list() const {
        return {radians.data(), glyphs.data(), static_cast<int>(glyphs.size())};
    }
};

} // namespace celestark::testing
