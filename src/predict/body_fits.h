#pragma once
// The bodies of a run from polynomial fits of the engine's own positions. A run asks for the
// position lists at thousands of moments a few hours apart; the lists change smoothly, so each
// is fitted by a Chebyshev series over a window of days from the engine's positions at the
// window's Chebyshev nodes, and read from the series in between. A window is made when a moment
// falls outside the last one. The lemnicentric places are made from the fitted heliocentric
// ones. A window whose lists change their shape, or whose values jump, is made again at half the
// width, and down to a sixty-fourth its moments are calculated directly.
#include <array>
#include <cstddef>
#include <vector>

namespace celestark {

struct Session;

// Which lists a run reads: the geocentric longitudes (with the true obliquity), the heliocentric
// longitudes, nodes and perihelia, the lemnicentric longitudes.
struct FittedLists {
    bool geo = true, helio = false, lemni = false;
};

class BodyFits {
  public:
    // `days` the width of a window, `degree` of its series; `direction` +1 when the moments
    // advance, -1 when they go back (a window then ends at the moment that made it).
    BodyFits(FittedLists lists, double days, int degree, int direction);

    // The engine's lists at jd as calculate_bodies_at leaves them for the fitted lists (their
    // counts, glyphs and longitudes), and the true obliquity.
    void bodies_at(Session& s, double jd);

    // The windows made so far, and the moments calculated directly.
    long windows() const { return windows_; }
    long direct() const { return direct_; }

  private:
    void make_window(Session& s, double jd);
    void fit_window(Session& s, double jd, double width);
    // The series of value v at x, -1 to 1 across the window.
    double series_value(std::size_t v, double x) const;

    FittedLists lists_;
    double days_;
    int degree_, direction_;
    bool have_window_ = false, smooth_ = true;
    double start_ = 0, end_ = 0;
    // The lists' shapes at the window's first node.
    int geo_count_ = 0, helio_count_ = 0, lemni_count_ = 0;
    std::array<unsigned char, 64> geo_glyph_{}, helio_glyph_{}, lemni_glyph_{};
    // One series per fitted value, degree + 1 coefficients each, in list order: geo longitudes,
    // the obliquity, helio longitudes, nodes, perihelia, lemni longitudes.
    std::vector<double> coefficients_;
    std::vector<int> lengths_;    // the coefficients of each series that count
    std::vector<double> values_;  // the nodes' values while a window is made
    std::vector<double> cosines_; // cos(pi j (k + 1/2) / nodes), row j
    long windows_ = 0, direct_ = 0;
};

} // namespace celestark
