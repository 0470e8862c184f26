#pragma once
// The five samples of a search and what is read from them: made continuous across the full
// circle, differenced, and asked for the moment of a zero, of an extremum, or the value at a
// moment between them (five-point interpolation about the middle sample).
#include <array>

namespace celestark {

// Five samples, index 0 to 4 (slot 1 to 5 of the window), radians.
using Samples = std::array<double, 5>;

// Each sample within half a circle of the one before it, then the five together brought to
// within a circle of 0.
void unwrap_samples(Samples& y);

// The differences of the five samples, in the five-point notation: A B C D first differences,
// E F G second, H J third, K fourth.
struct Differences {
    double a, b, c, d, e, f, g, h, j, k;
};
Differences difference_samples(const Samples& y);

// The zeros between the second sample (left out) and the fourth (taken in). `n` is the
// interpolating factor (from -1 to 1 across the two middle intervals); `rising` whether the curve
// rises through it.
struct Zero {
    bool found = false;
    double n = 0;
    bool rising = false;
};
// A middle sample farther than a tenth of a half circle from zero has none; otherwise every
// crossing of the five-point curve in the two middle intervals, in order (two of them where a
// body turns back over a place between two samples).
struct Zeros {
    int count = 0;
    std::array<Zero, 4> at{};
};
Zeros find_zeros(const Samples& y);
// The first of them.
Zero find_zero(const Samples& y);

// The turning point about the middle sample, for stations.
struct Extremum {
    bool found = false;
    double n = 0;
    double value = 0;
    bool maximum = false;
};
Extremum find_extremum(const Samples& y);

// The value at the interpolating factor n from the middle sample.
double interpolate_samples(const Samples& y, double n);

} // namespace celestark
