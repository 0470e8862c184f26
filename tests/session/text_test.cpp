#include "session/fixed_tables.h"
#include "session/text.h"
#include "session/zones.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace celestark {
namespace {

const std::string deg(1, static_cast<char>(glyph::degree));
const std::string min(1, static_cast<char>(glyph::minute));
std::string sign(int i) {
    return std::string(1, static_cast<char>(sign_glyphs[static_cast<std::size_t>(i)]));
}

TEST(TextToNumber, LenientRuleNeverThrows) {
    struct Case {
        const char* text;
        double value;
    };
    constexpr Case cases[] = {
        {"", 0},    {" ", 0},       {"abc", 0},  {"12", 12},        {"  12abc", 12}, {"-3.5", -3.5},
        {"+7", 7},  {"1.2.3", 1.2}, {".5", 0.5}, {"-", 0},          {"- 5", 0},      {"1e5", 1},
        {"5 6", 5}, {"\t9", 9},     {"007", 7},  {"-0.25x", -0.25}, {"NOTUSED", 0},
    };
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(text_to_number(c.text), c.value) << '"' << c.text << '"';
    EXPECT_GT(text_to_number(std::string(400, '9')), 1e300);
    // 16-bit cells round half to even and stay in range.
    EXPECT_EQ(text_to_i16("2.5"), 2);
    EXPECT_EQ(text_to_i16("3.5"), 4);
    EXPECT_EQ(text_to_i16("99999"), 32767);
    EXPECT_EQ(text_to_i16("-99999"), -32768);
}

TEST(NumberText, LeadingBlankAndPads) {
    EXPECT_EQ(number_text(5), " 5");
    EXPECT_EQ(number_text(-5), "-5");
    EXPECT_EQ(number_text(2.5), " 2.5");
    EXPECT_EQ(pad_left(number_text(5), 2), " 5");
    EXPECT_EQ(pad_left(number_text(12), 2), "12");
    EXPECT_EQ(pad_left(number_text(7), 4), "   7");
    EXPECT_EQ(year_text(2000), "2000");
    EXPECT_EQ(year_text(0), "1 B.C.");
    EXPECT_EQ(year_text(-43), "44 B.C.");
}

TEST(TextForms, DatesAndTimes) {
    TextOptions dmy;
    TextOptions mdy;
    mdy.date_format = false;
    EXPECT_EQ(format_date("7", "3", "-43", dmy), "7/MAR/44 B.C.");
    EXPECT_EQ(format_date("7", "3", "2001", mdy), "MAR 7, 2001");
    EXPECT_EQ(format_date("7", "13", "2001", mdy), "??? 7, 2001"); // never a fault
    EXPECT_EQ(format_date_numeric(2451545.0, "G", dmy), " 1/ 1/2000");
    EXPECT_EQ(format_date_numeric(2451545.0, "G", mdy), " 1/ 1/2000");
    EXPECT_EQ(format_date_numeric(2451575.0, "G", mdy), " 1/31/2000");

    TextOptions clock12;
    clock12.clock_format = true;
    struct Case {
        const char *h, *m, *s;
        const TextOptions* options;
        const char* expected;
    };
    TextOptions no_secs;
    no_secs.time_output_secs = false;
    const Case cases[] = {
        {"9", "5", "7", &dmy, " 9:05:07"},         {"23", "59", "0", &no_secs, "23:59"},
        {"12", "0", "0", &clock12, " 0:00:00 pm"}, // noon is hour 0 with pm
        {"0", "30", "0", &clock12, " 0:30:00 am"}, {"15", "0", "0", &clock12, " 3:00:00 pm"},
    };
    for (const auto& c : cases) EXPECT_EQ(format_time(c.h, c.m, c.s, *c.options), c.expected);
    EXPECT_EQ(format_time_msecs("15", "4", "3", "7", clock12), " 3:04:03.007 pm");
}

TEST(TextForms, AnglesRoundAndCarry) {
    constexpr double d2r = 0.017453292519943278;
    // Latitude whose seconds round up to 60 carries into minutes and degrees.
    EXPECT_EQ(format_lat_dms((51 + 59.0 / 60 + 59.6 / 3600) * d2r), " 52N 0" + min + " 0\"");
    EXPECT_EQ(format_lat_dms(-(33 + 52.0 / 60 + 4.0 / 3600) * d2r), " 33S52" + min + " 4\"");
    EXPECT_EQ(format_lat_dm((51 + 29.6 / 60) * d2r), "51N30");
    EXPECT_EQ(format_long_dms(-10 * d2r), " 350" + deg + " 0" + min + " 0\"");
    EXPECT_EQ(format_long_dms((359 + 59.0 / 60 + 59.7 / 3600) * d2r),
              "   0" + deg + " 0" + min + " 0\"");
    EXPECT_EQ(format_signed_dms(-(5 + 6.0 / 60 + 7.0 / 3600) * d2r),
              "-5" + deg + " 6" + min + " 7\"");
    EXPECT_EQ(format_long_dm(359.995f), "   0" + deg + " 0" + min);
    EXPECT_EQ(format_long_dm(123.5f), " 123" + deg + "30" + min);
    EXPECT_EQ(format_signed_dm(350.0f), "    10" + deg + " 0" + min);
    EXPECT_EQ(format_signed_dm(-2.5f), "  -  2" + deg + "30" + min);
}

TEST(TextForms, PositionsInSignsAndDegrees) {
    constexpr double d2r = 0.017453292519943278;
    EXPECT_EQ(format_position_dm((45 + 30.0 / 60) * d2r, true), "15" + sign(1) + "30");
    EXPECT_EQ(format_position_dm((45 + 30.0 / 60) * d2r, false), " 45" + deg + "30" + min);
    // Rounded up to 360 degrees: Aries by the thirteenth sign entry.
    EXPECT_EQ(format_position_dm((359 + 59.8 / 60) * d2r, true), " 0" + sign(12) + " 0");
    EXPECT_EQ(format_position_deg(static_cast<float>(359.7 * d2r), true), " 0" + sign(0));
    EXPECT_EQ(format_position_deg(static_cast<float>(200.2 * d2r), false), "200" + deg);
    EXPECT_EQ(format_position_dms((359 + 59.0 / 60 + 59.9 / 3600) * d2r, false),
              "  0" + deg + " 0" + min + " 0\"");
    EXPECT_EQ(format_position_dms((100 + 1.0 / 60 + 2.0 / 3600) * d2r, true),
              "10" + sign(3) + " 1" + min + " 2\"");
}

TEST(Conversions, SplitHoursAndDayFraction) {
    const auto hms = split_hours(25.5);
    EXPECT_EQ(hms.h, 1);
    EXPECT_EQ(hms.m, 30);
    EXPECT_EQ(hms.s, 0);
    const auto carried = split_hours(1.0 + 59.0 / 60 + 59.7 / 3600);
    EXPECT_EQ(carried.h, 2);
    EXPECT_EQ(carried.m, 0);
    EXPECT_EQ(carried.s, 0);
    const auto negative = split_hours(-1.0);
    EXPECT_EQ(negative.h, 23);
    const auto nan = split_hours(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(nan.h, 0);

    const auto p = split_day_fraction(-(2 + (3 + (4 + 5.25 / 60) / 60) / 24));
    EXPECT_EQ(p.days, -2);
    EXPECT_EQ(p.hours, -3);
    EXPECT_EQ(p.minutes, -4);
    EXPECT_EQ(p.seconds, -5);
    EXPECT_EQ(p.msecs, -250);
}

TEST(Zones, HoursWestAndMeridians) {
    float hours = 99.0f;
    EXPECT_TRUE(zone_hours_west("OZT", hours));
    EXPECT_FLOAT_EQ(hours, 1.0f);
    EXPECT_TRUE(zone_hours_west("ESTERN", hours)); // the first three characters count
    EXPECT_FLOAT_EQ(hours, 5.0f);
    EXPECT_TRUE(zone_hours_west("SAT", hours));
    EXPECT_FLOAT_EQ(hours, -9.5f);
    hours = 42.0f;
    EXPECT_FALSE(zone_hours_west("XYZ", hours));
    EXPECT_FALSE(zone_hours_west("EDT", hours)); // only standard trigraphs here
    EXPECT_FALSE(zone_hours_west("", hours));
    EXPECT_FLOAT_EQ(hours, 42.0f);

    std::set<std::string_view> all;
    for (const Zone& z : zones) {
        for (std::string_view t : {z.standard, z.dst, z.war}) {
            all.insert(t);
            const ZoneMeridian m = zone_meridian(t);
            EXPECT_FALSE(m.unknown) << t;
            EXPECT_EQ(m.dst, t == z.standard ? "0" : "1") << t;
            EXPECT_EQ(m.degrees, z.meridian_degrees) << t;
        }
    }
    EXPECT_EQ(all.size(), 96u);
    const ZoneMeridian irt = zone_meridian("IRW");
    EXPECT_EQ(irt.degrees + " " + irt.minutes + " " + irt.ew, "57 30 E");
    EXPECT_TRUE(zone_meridian("QQQ").unknown);

    const std::string screen = time_zones_text();
    EXPECT_EQ(screen.rfind("The following are the International Time Zones.", 0), 0u);
    EXPECT_NE(screen.find("-52.5"), std::string::npos);
    EXPECT_NE(screen.find("NB The drop menu only allows the standard time zones."),
              std::string::npos);
}

} // namespace
} // namespace celestark
