#pragma once
// An aspect matrix: the square tables an aspect search fills and the wheel's aspect lines, the
// aspect grids and the cross aspect grids are drawn from. One matrix for each group of lists; a
// search makes its group's matrix anew, so every cell is empty until the search fills it.
//
// Indices are those of the lists' descriptions, not of C++ arrays: i and j run from -1 to n, and
// body i of a list (1 to n) is entry i - 1 of its position list.
//   cell(i, 0), cell(0, j)    the positions in degrees, 0 up to 360
//   cell(i, -1), cell(-1, j)  the body classes (0 to 5)
//   cell(i, j)                the signed separation of j from i, -180 up to 180
//   orb(i, j)                 for a pair in aspect: |angle - |separation||
//   mark(i, j, 0..2)          for a pair in aspect: the digraph, the glyph, and the glyph again
//                             when the aspect belongs in the aspectogram; empty otherwise
//   aspect(i, j)              the aspect number (1 to aspect_count) that holds the cell, or 0
// In a cross matrix the rows (i) take the first list and the columns (j) the second.
//
// A page that draws from a matrix while another search of the same group runs keeps a copy: the
// matrix is a plain value.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace celestark {

struct AspectMatrix {
    int n = 0;                      // the length of the list (the greater of the two in a cross)
    int rows = 0, columns = 0;      // the bodies in the rows and columns: n and n unless a cross
    std::vector<float> cells, orbs; // (n + 2) by (n + 2), from -1 to n
    std::vector<std::array<std::string, 3>> marks; // n by n, from 1 to n
    std::vector<std::int16_t> aspects;             // n by n, from 1 to n

    // Makes the tables anew for `size` bodies, every cell empty.
    void make(int size, int row_count, int column_count) {
        n = size;
        rows = row_count;
        columns = column_count;
        const auto side = static_cast<std::size_t>(n + 2);
        cells.assign(side * side, 0.0f);
        orbs.assign(side * side, 0.0f);
        const auto inner = static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
        // The strings keep their buffers: a search of the same size allocates nothing.
        if (marks.size() == inner) {
            for (std::array<std::string, 3>& m : marks)
                for (std::string& text : m) text.clear();
        } else {
            marks.assign(inner, {});
        }
        aspects.assign(inner, 0);
    }

    std::size_t square_index(int i, int j) const {
        return static_cast<std::size_t>(i + 1) * static_cast<std::size_t>(n + 2) +
               static_cast<std::size_t>(j + 1);
    }
    std::size_t inner_index(int i, int j) const {
        return static_cast<std::size_t>(i - 1) * static_cast<std::size_t>(n) +
               static_cast<std::size_t>(j - 1);
    }

    float cell(int i, int j) const { return cells[square_index(i, j)]; }
    float& cell(int i, int j) { return cells[square_index(i, j)]; }
    float orb(int i, int j) const { return orbs[square_index(i, j)]; }
    float& orb(int i, int j) { return orbs[square_index(i, j)]; }
    const std::string& mark(int i, int j, int k) const {
        return marks[inner_index(i, j)][static_cast<std::size_t>(k)];
    }
    std::int16_t aspect(int i, int j) const { return aspects[inner_index(i, j)]; }
    bool in_aspect(int i, int j) const { return aspect(i, j) != 0; }
};

// The matrices of the session, one for each group; each search erases its own group first.
struct AspectMatrices {
    AspectMatrix chart;      // chart_aspect_search, cross_aspect_search, cross_geo_aspect_search
    AspectMatrix geo_helio;  // geo_helio_aspect_search
    AspectMatrix helio;      // helio_aspect_search, cross_helio_aspect_search
    AspectMatrix lemni;      // lemni_aspect_search, cross_lemni_aspect_search
    AspectMatrix node;       // helio_node_aspect_search
    AspectMatrix perihelion; // helio_peri_aspect_search
};

} // namespace celestark
