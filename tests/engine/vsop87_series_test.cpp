// Checks of the VSOP87D coefficient tables of src/engine/series/ (made by tools/gen_vsop87.py):
// the term counts of each accuracy level, and the positions of the published check file
// vsop87.chk reproduced within the largest truncation error that the generator measured for each
// level over the years -3000 to +3000.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "engine/series/vsop87_earth.h"
#include "engine/series/vsop87_jupiter.h"
#include "engine/series/vsop87_mars.h"
#include "engine/series/vsop87_mercury.h"
#include "engine/series/vsop87_saturn.h"
#include "engine/series/vsop87_venus.h"

namespace {

using namespace celestark::vsop87;

enum class Body { earth, mercury, venus, mars, jupiter, saturn };

const VsopBody& body_series(Body b) {
    switch (b) {
    case Body::earth:
        return earth_series;
    case Body::mercury:
        return mercury_series;
    case Body::venus:
        return venus_series;
    case Body::mars:
        return mars_series;
    case Body::jupiter:
        return jupiter_series;
    case Body::saturn:
        return saturn_series;
    }
    return earth_series;
}

double sum_series(const VsopSeries& s, int level, double tau) {
    const int n = vsop_term_count(s.groups, level);
    double sum = 0.0;
    for (int i = 0; i < n; ++i) sum += s.terms[i].a * std::cos(s.terms[i].b + s.terms[i].c * tau);
    return sum;
}

template <std::size_t N>
double sum_variable(const std::array<VsopSeries, N>& series, int level, double tau) {
    double sum = 0.0;
    double power = 1.0;
    for (const VsopSeries& s : series) {
        sum += sum_series(s, level, tau) * power;
        power *= tau;
    }
    return sum / 1e8;
}

template <std::size_t N> int count_terms(const std::array<VsopSeries, N>& series, int level) {
    int n = 0;
    for (const VsopSeries& s : series) n += vsop_term_count(s.groups, level);
    return n;
}

int count_terms(const VsopBody& body, int level) {
    return count_terms(body.l, level) + count_terms(body.b, level) + count_terms(body.r, level);
}

template <std::size_t N> void check_groups(const std::array<VsopSeries, N>& series) {
    for (const VsopSeries& s : series) {
        EXPECT_LE(0, s.groups[0]);
        EXPECT_LE(s.groups[0], s.groups[1]);
        EXPECT_LE(s.groups[1], s.groups[2]);
        EXPECT_EQ(static_cast<std::size_t>(s.groups[2]), s.terms.size());
    }
}

// Each level's groups nest, the header's totals agree with them, and levels outside 1 to 3 take
// the nearest level.
TEST(Vsop87Series, TermCountsPerLevel) {
    const std::pair<Body, std::array<int, 3>> totals[] = {
        {Body::earth, earth_term_counts},     {Body::mercury, mercury_term_counts},
        {Body::venus, venus_term_counts},     {Body::mars, mars_term_counts},
        {Body::jupiter, jupiter_term_counts}, {Body::saturn, saturn_term_counts}};
    for (const auto& [b, levels] : totals) {
        const VsopBody& body = body_series(b);
        check_groups(body.l);
        check_groups(body.b);
        check_groups(body.r);
        for (int level = 1; level <= 3; ++level)
            EXPECT_EQ(count_terms(body, level), levels[static_cast<std::size_t>(3 - level)]);
        EXPECT_LT(levels[0], levels[1]);
        EXPECT_LT(levels[1], levels[2]);
        EXPECT_EQ(count_terms(body, 0), levels[2]);
        EXPECT_EQ(count_terms(body, 4), levels[0]);
    }
}

struct CheckRow {
    Body body;
    double jd, l, b, r; // radians, radians, au
};

// VSOP87D positions of the published check file vsop87.chk (JD in TDB).
const CheckRow check_rows[] = {
    {Body::mercury, 2451545.0, 4.4293481036, -0.0527573409, 0.4664714751},
    {Body::mercury, 2415020.0, 3.4851161911, 0.0565906173, 0.4183426275},
    {Body::mercury, 2378495.0, 2.0737894888, 0.1168184804, 0.3233909533},
    {Body::mercury, 2341970.0, 0.1910149587, -0.0682441256, 0.3381563139},
    {Body::mercury, 2305445.0, 5.1836421820, -0.1170914848, 0.4326517759},
    {Body::mercury, 2268920.0, 4.2636517903, -0.0457048516, 0.4661523936},
    {Body::mercury, 2232395.0, 3.3115600862, 0.0639722347, 0.4152385205},
    {Body::mercury, 2195870.0, 1.8738888759, 0.1126774697, 0.3209366232},
    {Body::mercury, 2159345.0, 6.2819826060, -0.0768697084, 0.3414354250},
    {Body::mercury, 2122820.0, 5.0128397764, -0.1143275808, 0.4352063237},
    {Body::venus, 2451545.0, 3.1870221833, 0.0569782849, 0.7202129253},
    {Body::venus, 2415020.0, 5.9749622238, -0.0591260014, 0.7274719359},
    {Body::venus, 2378495.0, 2.5083656668, 0.0552309407, 0.7185473298},
    {Body::venus, 2341970.0, 5.3115708036, -0.0455979904, 0.7283407528},
    {Body::venus, 2305445.0, 1.8291359617, 0.0311394084, 0.7186375037},
    {Body::venus, 2268920.0, 4.6495448744, -0.0145437542, 0.7273363753},
    {Body::venus, 2232395.0, 1.1527504143, -0.0054100666, 0.7205428514},
    {Body::venus, 2195870.0, 3.9850309909, 0.0222342485, 0.7247441174},
    {Body::venus, 2159345.0, 0.4804699931, -0.0395505250, 0.7235430458},
    {Body::venus, 2122820.0, 3.3145399295, 0.0505016053, 0.7215819783},
    {Body::earth, 2451545.0, 1.7519238681, -0.0000039656, 0.9833276819},
    {Body::earth, 2415020.0, 1.7391225563, -0.0000005679, 0.9832689778},
    {Body::earth, 2378495.0, 1.7262638916, 0.0000002083, 0.9832274321},
    {Body::earth, 2341970.0, 1.7134419105, 0.0000025051, 0.9831498441},
    {Body::earth, 2305445.0, 1.7006065938, -0.0000016359, 0.9831254376},
    {Body::earth, 2268920.0, 1.6877624960, -0.0000020340, 0.9830816756},
    {Body::earth, 2232395.0, 1.6750110961, 0.0000037879, 0.9830754409},
    {Body::earth, 2195870.0, 1.6622048657, 0.0000015133, 0.9830942385},
    {Body::earth, 2159345.0, 1.6495143197, -0.0000013003, 0.9830440397},
    {Body::earth, 2122820.0, 1.6367193623, -0.0000031292, 0.9830331815},
    {Body::mars, 2451545.0, 6.2735389983, -0.0247779824, 1.3912076925},
    {Body::mars, 2415020.0, 4.9942005211, -0.0271965869, 1.4218777705},
    {Body::mars, 2378495.0, 3.8711855478, 0.0034969939, 1.5615140011},
    {Body::mars, 2341970.0, 2.9166648690, 0.0280268149, 1.6584697082},
    {Body::mars, 2305445.0, 2.0058210394, 0.0300702181, 1.6371997207},
    {Body::mars, 2268920.0, 1.0050966939, 0.0066676098, 1.5123622690},
    {Body::mars, 2232395.0, 6.0979760762, -0.0266794243, 1.3925964529},
    {Body::mars, 2195870.0, 4.8193924948, -0.0255031923, 1.4208707215},
    {Body::mars, 2159345.0, 3.6939294875, 0.0065885509, 1.5593802008},
    {Body::mars, 2122820.0, 2.7367104344, 0.0295522719, 1.6571002307},
    {Body::jupiter, 2451545.0, 0.6334614186, -0.0205001039, 4.9653813154},
    {Body::jupiter, 2415020.0, 4.0927527024, 0.0161446618, 5.3850276671},
    {Body::jupiter, 2378495.0, 1.5255696771, -0.0043606936, 5.1318457604},
    {Body::jupiter, 2341970.0, 4.8888943125, -0.0011098085, 5.1888133656},
    {Body::jupiter, 2305445.0, 2.3348832684, 0.0140523907, 5.3439455032},
    {Body::jupiter, 2268920.0, 5.7527666852, -0.0188346311, 5.0018007395},
    {Body::jupiter, 2232395.0, 3.0889515350, 0.0231157947, 5.4491570191},
    {Body::jupiter, 2195870.0, 0.3776503430, -0.0222448936, 4.9715071036},
    {Body::jupiter, 2159345.0, 3.8455069137, 0.0185554473, 5.3896206945},
    {Body::jupiter, 2122820.0, 1.2695066546, -0.0075335740, 5.1193587362},
    {Body::saturn, 2451545.0, 0.7980038761, -0.0401984149, 9.1838483715},
    {Body::saturn, 2415020.0, 4.6512836347, 0.0192701409, 10.0668531997},
    {Body::saturn, 2378495.0, 2.1956677359, 0.0104156566, 9.1043068639},
    {Body::saturn, 2341970.0, 5.8113963637, -0.0291472787, 9.7629994924},
    {Body::saturn, 2305445.0, 3.5217555199, 0.0437035058, 9.7571035629},
    {Body::saturn, 2268920.0, 0.8594235308, -0.0379350088, 9.0669212839},
    {Body::saturn, 2232395.0, 4.6913199264, 0.0146771898, 10.1065692994},
    {Body::saturn, 2195870.0, 2.2948875823, 0.0178533697, 9.1857599537},
    {Body::saturn, 2159345.0, 5.8660241564, -0.0333866503, 9.5927173940},
    {Body::saturn, 2122820.0, 3.5570108069, 0.0435371139, 9.8669939498},
};

// Largest error of levels 1, 2, 3 against the full series over the years -3000 to +3000, in
// arcseconds, as max(|dL cos B|, |dB|, |dR| / R), rounded up.
struct Tolerance {
    Body body;
    std::array<double, 3> arcsec;
};
const Tolerance tolerances[] = {
    {Body::earth, {1.5, 11.0, 65.0}},     {Body::mercury, {4.5, 23.0, 175.0}},
    {Body::venus, {3.0, 27.0, 165.0}},    {Body::mars, {6.5, 30.0, 175.0}},
    {Body::jupiter, {16.0, 40.0, 186.0}}, {Body::saturn, {100.0, 104.0, 283.0}},
};

TEST(Vsop87Series, CheckFileWithinTruncationError) {
    constexpr double pi = 3.14159265358979323846;
    constexpr double arcsec = pi / 180.0 / 3600.0;
    for (const CheckRow& row : check_rows) {
        const VsopBody& body = body_series(row.body);
        const double tau = (row.jd - 2451545.0) / 365250.0;
        for (int level = 1; level <= 3; ++level) {
            double tolerance = 0.0;
            for (const Tolerance& t : tolerances)
                if (t.body == row.body) tolerance = t.arcsec[level - 1] * arcsec;
            const double l = sum_variable(body.l, level, tau);
            const double b = sum_variable(body.b, level, tau);
            const double r = sum_variable(body.r, level, tau);
            const double dl = std::remainder(l - row.l, 2.0 * pi) * std::cos(row.b);
            EXPECT_LE(std::abs(dl), tolerance) << static_cast<int>(row.body) << " " << row.jd;
            EXPECT_LE(std::abs(b - row.b), tolerance)
                << static_cast<int>(row.body) << " " << row.jd;
            EXPECT_LE(std::abs(r - row.r) / row.r, tolerance)
                << static_cast<int>(row.body) << " " << row.jd;
        }
    }
}

} // namespace
