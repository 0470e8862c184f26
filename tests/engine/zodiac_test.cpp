#include "engine/chart.h"
#include "engine/zodiac.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/session.h"
#include "store/option_sets.h"

#include <gtest/gtest.h>

#include <cmath>

namespace celestark {
namespace {

Session sidereal(const char* star, int deg, int min, int sec) {
    Session s;
    initialise_session(s, ".");
    s.chart.zodiac = "Test";
    s.chart.sign_form = true;
    s.option_sets.zodiac.reference = star;
    s.option_sets.zodiac.star_longitude = static_cast<float>(deg + min / 60.0 + sec / 3600.0);
    return s;
}

double offset_at(Session& s, double jd) {
    calculate_bodies_at(s, jd);
    return s.engine.zodiac_offset_degrees;
}

const double jd_1950 = 2433282.5; // 1950 January 0.5 is close enough for the 1950.0 reference
const double t50_zero_jd = j2000 - 0.5 * days_per_century; // exactly 1950.0 of the formula

TEST(Zodiac, StarZodiacsAndTheSyneticVernalPoint) {
    // Aldebaran at 45 2' 53" gives the usual synetic vernal point: 24 2' 31" of precession at
    // 1950.0.
    Session svp = sidereal("Aldebaran", 45, 2, 53);
    const double precession = 360.0 - offset_at(svp, t50_zero_jd);
    EXPECT_NEAR(precession, 24 + 2 / 60.0 + 31 / 3600.0, 0.5 / 3600);
    // Two zodiacs of one star differ by exactly the difference of their degrees.
    Session a = sidereal("Spica", 180, 0, 0), b = sidereal("Spica", 181, 30, 0);
    const double oa = offset_at(a, jd_1950), ob = offset_at(b, jd_1950);
    EXPECT_NEAR(norm_deg(ob - oa), 1.5, 1e-5); // the star's place is held in single precision
    // The offset is folded into 0 up to 360 and carried into every longitude.
    EXPECT_GE(oa, 0.0);
    EXPECT_LT(oa, 360.0);
    Session tropical;
    initialise_session(tropical, ".");
    calculate_bodies_at(tropical, jd_1950);
    const double sun_tropical = tropical.engine.pos.geo_long[0];
    calculate_bodies_at(a, jd_1950);
    EXPECT_NEAR(rad_diff(a.engine.pos.geo_long[0], sun_tropical + oa * deg_to_rad), 0.0, 1e-12);
    double unused = 0;
    EXPECT_FALSE(reference_star_longitude("Sirius", 0, unused));
}

TEST(Zodiac, TropicalDraconicEpochAndTheUnknownReference) {
    Session s;
    initialise_session(s, ".");
    EXPECT_EQ(offset_at(s, 2451545.0), 0.0);

    // Draconic: the node at 0 Aries; moon_node 0 takes the osculating node, 2 the mean one.
    s.chart.zodiac = "Draconic";
    for (int node : {0, 1, 2}) {
        s.chart.moon_node = static_cast<std::int16_t>(node);
        const double offset = offset_at(s, 2451545.0);
        const double expected =
            node == 2 ? s.engine.lunar.omega : s.engine.true_node - s.engine.zodiac_offset;
        EXPECT_NEAR(norm_deg(offset + expected * rad_to_deg), 0.0, 1e-9) << node;
        // The Moon's node itself then stands at 0 Aries.
        if (node == 1) {
            EXPECT_NEAR(rad_diff(s.engine.true_node, 0.0), 0.0, 1e-9);
        }
    }

    // Epoch: the vernal point's place at a date, carried by precession; year 0 and below allowed.
    Session e;
    initialise_session(e, ".");
    e.chart.zodiac = "Epoch test";
    ZodiacRecord row;
    row.name = "Epoch test";
    row.defined = "Epoch";
    row.constellation = "Equal";
    row.deg = 10;
    row.day = "21";
    row.month = "3";
    row.year = "-100";
    row.gj = "J";
    load_zodiac(row, e.chart.zodiac, true, e.option_sets.zodiac);
    EXPECT_EQ(e.option_sets.zodiac.reference, "Epoch");
    // At the epoch's own date the vernal point stands at the row's 10 degrees.
    EXPECT_NEAR(offset_at(e, julian_date(21, 3, -100, "J", 0)), 10.0, 2e-4);

    // A reference the program does not know is the fatal CK13.
    Session bad = sidereal("Vega", 0, 0, 0);
    RecordingSink sink;
    std::string title;
    bad.sink = &sink;
    bad.fatal_handler = [&](const std::string& t, const std::string&) { title = t; };
    calculate_bodies_at(bad, 2451545.0);
    EXPECT_EQ(title, "Fatal Error in CALCULATE VERNAL POINT");
    ASSERT_FALSE(sink.messages.empty());
    EXPECT_EQ(sink.messages[0].text, "CK13-This is a fatal error. Please contact Ivan Marlow");
}

} // namespace
} // namespace celestark
