// The five orb operations: the class rules in their order, the numbering of bodies and aspects,
// and the fatal box of a wrong tag.
#include "aspect_test_support.h"
#include "aspects/aspect_orbs.h"
#include "session/session.h"

#include <gtest/gtest.h>

#include <functional>

namespace celestark {
namespace {

TEST(AspectOrbs, TheLaterRuleWinsAndAnyTagButBIsFatal) {
    Session s;
    RecordingSink sink;
    std::vector<std::string> fatal; // title and text of each fatal call
    s.sink = &sink;
    s.fatal_handler = [&](const std::string& title, const std::string& text) {
        fatal = {title, text};
    };
    // Orbs: Sun 5, Moon 4, planets 3, elements 2, stars 1 for aspect 1; tenfold for aspect 2.
    s.option_sets.aspects = testing::aspect_table(
        {{0.0f, "Cj", 192, -1, 5, 4, 3, 2, 1}, {90.0f, "Sq", 197, -1, 50, 40, 30, 20, 10}});
    struct Case {
        const char* what;
        std::function<float(const char* tag)> orb;
        float expected;
        const char* title; // of the fatal box of the tag "A"
        int code;
    };
    const char* geo = "Fatal Error in ASPECT ORB GEO";
    const char* helio = "Fatal Error in ASPECT ORB HELIO";
    const char* lemni = "Fatal Error in ASPECT ORB LEMNISCATE";
    const Case cases[] = {
        {"geo planets", [&](auto t) { return aspect_orb_geo(s, t, 3, 4, 1); }, 3, geo, 8},
        {"geo Moon", [&](auto t) { return aspect_orb_geo(s, t, 5, 2, 1); }, 4, geo, 8},
        {"geo Sun and Moon: Sun", [&](auto t) { return aspect_orb_geo(s, t, 2, 1, 1); }, 5, geo, 8},
        {"geo aspect 2", [&](auto t) { return aspect_orb_geo(s, t, 1, 7, 2); }, 50, geo, 8},
        {"geo aspect 0", [&](auto t) { return aspect_orb_geo(s, t, 1, 2, 0); }, 0, geo, 8},
        {"helio body 1", [&](auto t) { return aspect_orb_helio(s, t, 1, 1); }, 5, helio, 9},
        {"helio body 2", [&](auto t) { return aspect_orb_helio(s, t, 2, 2); }, 40, helio, 9},
        {"helio other", [&](auto t) { return aspect_orb_helio(s, t, 9, 1); }, 3, helio, 9},
        {"lemni Moon 11", [&](auto t) { return aspect_orb_lemni(s, t, 11, 4, 1); }, 4, lemni, 11},
        {"lemni 2 no Moon", [&](auto t) { return aspect_orb_lemni(s, t, 2, 4, 1); }, 3, lemni, 11},
        {"lemni Sun, Moon", [&](auto t) { return aspect_orb_lemni(s, t, 11, 1, 2); }, 50, lemni,
         11},
        {"helio pair", [&](auto t) { return aspect_orb_helio_pair(s, t, 2); }, 30, helio, 10},
        {"elements", [&](auto t) { return aspect_orb_elements(s, t, 1); }, 2,
         "Fatal Error in ASPECT ORB ELEMENTS", 7},
        {"elements aspect 3", [&](auto t) { return aspect_orb_elements(s, t, 3); }, 0,
         "Fatal Error in ASPECT ORB ELEMENTS", 7},
    };
    for (const Case& c : cases) {
        fatal.clear();
        EXPECT_FLOAT_EQ(c.orb("B"), c.expected) << c.what;
        EXPECT_TRUE(fatal.empty()) << c.what;
        for (const char* tag : {"A", "b", "", "B "}) {
            EXPECT_EQ(c.orb(tag), 0.0f) << c.what;
            EXPECT_EQ(fatal,
                      (std::vector<std::string>{
                          c.title, "CK" + std::to_string(c.code) +
                                       "-This is a fatal error. Please contact Ivan Marlow"}))
                << c.what << " " << tag;
            EXPECT_EQ(sink.messages.back().title, c.title); // the box went through the sink
        }
    }
}

} // namespace
} // namespace celestark
