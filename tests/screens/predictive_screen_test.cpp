// The screen of the predictive runs and the window that makes a moment of a row of the report,
// without their widgets.
#include "../store/program_folder.h"
#include "../support/events.h"

#include "screens/predictive_screen.h"
#include "session/fixed_tables.h"
#include "store/open_stores.h"
#include "store/option_schema.h"
#include "store/option_store.h"

namespace celestark::testing {
namespace {

class PredictiveScreenTest : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    PredictiveScreen screen;
    void SetUp() override {
        ASSERT_TRUE(folder.start(s).started);
        put_einstein(s, 1);
    }
    bool enabled(const char* name) const { return screen.state(s, name).enabled; }
};

TEST_F(PredictiveScreenTest, AnEmptyCardOpensNothing) {
    s.event_slots[1] = EventRow{};
    EXPECT_FALSE(screen.open(s, "T", folder.sink));
    EXPECT_FALSE(folder.sink.messages.empty());
}

TEST_F(PredictiveScreenTest, EachModeShowsItsOwnFrames) {
    struct Case {
        const char* mode;
        const char* group;
        bool shown;
    };
    const Case cases[] = {
        {"B", "Biography", true},   {"B", "Time ratio", true},
        {"B", "Transits", false},   {"B", "Progression", false},
        {"B", "Type", true},        {"T", "Transits", true},
        {"T", "Type", false},       {"T", "Direction", false},
        {"P", "Progression", true}, {"P", "Progressions", true},
        {"P", "Projection", false}, {"P", "Type", true},
        {"T", "Contents", true},    {"P", "Radical/aspected", true},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(screen.open(s, c.mode, folder.sink));
        EXPECT_EQ(screen.frame_shown(c.group), c.shown) << c.mode << " " << c.group;
    }
}

TEST_F(PredictiveScreenTest, TheWorldViewEnablesWhatItCanSearch) {
    s.chart.moon_node = 1;
    s.chart.helio_elem = 1;
    struct Case {
        const char* view;
        const char* control;
        bool enabled;
    };
    const Case cases[] = {
        {"geo", "retro", true},
        {"geo", "eclipses", true},
        {"geo", "t_earth", false},
        {"geo", "c_helio_nodes", false},
        {"hermetic", "retro", false},
        {"hermetic", "constellations", true},
        {"geo_helio", "t_earth", true},
        {"geo_helio", "constellations", false},
        {"geo_helio", "signs", true},
        {"lemniscate", "t_moon", false},
        {"lemniscate", "retro", true},
        {"lemniscate", "houses", false},
        {"lemniscate", "c_node", false},
        {"lemniscate", "t_sun", true},
        {"helio", "t_sun", false},
        {"helio", "c_helio_nodes", true},
        {"helio", "constellations", true},
        {"helio", "retro", false},
        {"helio", "t_mercury", true},
        {"helio", "aspects", true},
    };
    ASSERT_TRUE(screen.open(s, "T", folder.sink));
    // Geo/Helio is offered only when the options say so.
    EXPECT_FALSE(enabled("geo_helio"));
    screen.set(s, "geo_helio", "1");
    EXPECT_TRUE(screen.params().on("geo"));
    set_option(s, store::general_options_table, "option_geo_hel", store::Value(true), folder.sink);
    for (const Case& c : cases) {
        ASSERT_EQ(screen.set(s, c.view, "1"), "");
        EXPECT_EQ(enabled(c.control), c.enabled) << c.view << " " << c.control;
    }
}

TEST_F(PredictiveScreenTest, RulesClearTheBoxesASearchCannotServe) {
    s.chart.house_system = "None";
    s.chart.chiron = 0;
    ASSERT_TRUE(screen.open(s, "T", folder.sink));
    screen.set(s, "houses", "1");
    screen.set(s, "t_chiron", "1");
    EXPECT_FALSE(screen.params().on("houses"));
    EXPECT_FALSE(screen.params().on("t_chiron"));
    EXPECT_FALSE(enabled("houses"));
    ASSERT_TRUE(screen.params().on("t_moon"));
    screen.set(s, "lemniscate", "1");
    EXPECT_FALSE(screen.params().on("t_moon"));
    EXPECT_FALSE(screen.params().on("c_moon"));
    // A sidereal zodiac has no tropical signs to enter.
    s.chart.zodiac = "Fagan/Bradley";
    screen.set(s, "geo", "1");
    EXPECT_FALSE(enabled("signs"));
}

TEST_F(PredictiveScreenTest, OnlyProgressionsMoveTheAngles) {
    for (const char* mode : {"B", "T", "P"}) {
        ASSERT_TRUE(screen.open(s, mode, folder.sink));
        EXPECT_EQ(enabled("t_ascendant"), std::string(mode) == "P") << mode;
        EXPECT_EQ(enabled("t_mid_heaven"), std::string(mode) == "P") << mode;
        EXPECT_TRUE(enabled("c_ascendant")) << mode;
    }
}

TEST_F(PredictiveScreenTest, ProgressionsRecaptionTheTypes) {
    ASSERT_TRUE(screen.open(s, "P", folder.sink));
    EXPECT_EQ(screen.state(s, "prenatal").caption, "Normal");
    EXPECT_EQ(screen.state(s, "lifetime").caption, "Transits to Progressed Ch.");
    EXPECT_EQ(screen.state(s, "pr_progressed").caption, "Aspects in Progressed Chart");
    EXPECT_FALSE(enabled("recur"));
    screen.set(s, "lifetime", "1");
    EXPECT_EQ(screen.state(s, "pr_progressed").caption, "Transits to Progressed Chart");
    EXPECT_TRUE(enabled("recur"));
    EXPECT_FALSE(enabled("pr_event"));
    EXPECT_FALSE(screen.params().on("pr_event"));
    // Primary directions have only the normal type.
    screen.set(s, "pr_primary", "1");
    EXPECT_TRUE(screen.params().on("prenatal"));
    EXPECT_FALSE(enabled("lifetime"));
    // The biography keeps the captions of the table.
    ASSERT_TRUE(screen.open(s, "B", folder.sink));
    EXPECT_EQ(screen.state(s, "prenatal").caption, "PRENATAL");
}

// A row of a transit run in Central European Time.
class RowMomentTest : public PredictiveScreenTest {
  protected:
    Hit hit;
    void SetUp() override {
        PredictiveScreenTest::SetUp();
        s.predictive_params.mode = "T";
        s.predictive.ab_prenatal = true;
        s.predictive.zone_hours = 1;
        s.predictive.zone_code = "CET";
        s.predictive.choices.world_view = "Geocentric";
        hit.kind = "B";
        hit.body_1 = std::string(1, static_cast<char>(glyph::mars));
        hit.body_2 = std::string(1, static_cast<char>(glyph::sun));
        hit.aspect_glyph = std::string(1, static_cast<char>(aspect_glyphs[0]));
        hit.date = hit.life_date = 2415020.5 + 0.5; // 1900-01-01 12:00 UT
    }
};

TEST_F(RowMomentTest, TheFieldsShowTheRowInTheReportsZone) {
    const RowMoment m = row_moment(s, hit);
    EXPECT_EQ(m.day, "1");
    EXPECT_EQ(m.month, "1");
    EXPECT_EQ(m.year, "1900");
    EXPECT_EQ(m.time, "13:00");
    EXPECT_EQ(m.meridian, "15E00");
    EXPECT_EQ(m.place, "Ulm");
    EXPECT_EQ(m.lat_deg, "48");
}

TEST_F(RowMomentTest, ThePrefixAndTheWorldViewFollowTheRun) {
    struct Case {
        const char* mode;
        bool prenatal;
        const char* view;
        const char* body_mark;
        const char* prefix;
        const char* event;
    };
    const Case cases[] = {
        {"T", true, "Geocentric", "", "Transit:", "Geocentric"},
        {"T", true, "Tychonic", "", "Transit:", "Geocentric"},
        {"B", true, "Heliocentric", "", "Prenatal AB:", "Heliocentric"},
        {"B", false, "Lemnicentric", "", "Lifetime AB:", "Lemnicentric"},
        {"P", true, "Geo/Helio", "G", "Progressed:", "Geo/Helio"},
        {"P", false, "Geo/Helio", "H", "Trans. of Prog.:", "Helio/Geo"},
    };
    for (const Case& c : cases) {
        s.predictive_params.mode = c.mode;
        s.predictive.ab_prenatal = c.prenatal;
        s.predictive.choices.world_view = c.view;
        Hit h = hit;
        h.body_1 += c.body_mark;
        EXPECT_EQ(moment_prefix(s), c.prefix) << c.mode;
        EXPECT_EQ(moment_world_view(s, h), c.event) << c.view << c.body_mark;
    }
}

TEST_F(RowMomentTest, SavingStoresTheMomentAsANewEvent) {
    RowMoment m = row_moment(s, hit);
    ASSERT_TRUE(save_row_moment(s, hit, m, folder.sink));
    store::Recordset& rs = s.stores->event_table;
    ASSERT_EQ(rs.move_last(), store::Outcome::ok);
    EXPECT_EQ(rs.get("F_firstname").as_text(), "Transit: Albert");
    EXPECT_EQ(rs.get("F_event").as_text(), "Geocentric");
    EXPECT_EQ(rs.get("F_year").as_text(), "1900");
    EXPECT_EQ(rs.get("F_hours").as_text(), "13");
    EXPECT_EQ(rs.get("F_lz").as_text(), "M");
    EXPECT_EQ(rs.get("F_med_ew").as_text(), "E");
    // The same moment again is the same key: the duplicate box, nothing stored.
    EXPECT_FALSE(save_row_moment(s, hit, m, folder.sink));
    EXPECT_NE(folder.sink.messages.back().text.find("DUPLICATE EVENT"), std::string::npos);
}

TEST_F(RowMomentTest, WrongFieldsAreListedAndNothingIsDrawn) {
    RowMoment m = row_moment(s, hit);
    m.time = "25:00";
    m.different_place = true;
    m.lat_deg = "95";
    EXPECT_FALSE(display_row_moment(s, hit, m, folder.sink));
    const auto& lines = folder.sink.input_errors;
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "TIME - Invalid entry - Enter hours and minutes as 13:05");
    EXPECT_NE(std::find(lines.begin(), lines.end(),
                        "DEGREES OF LATITUDE - Invalid entry - Must be a number between 0 and 90"),
              lines.end());
}

TEST_F(RowMomentTest, TheMomentsChartComesBackToTheWindow) {
    s.predictive.choices.world_view = "Heliocentric";
    RowMoment m = row_moment(s, hit);
    m.different_place = true;
    m.place = "Bern";
    ASSERT_TRUE(display_row_moment(s, hit, m, folder.sink));
    // The event inside, the moment outside.
    EXPECT_EQ(s.drawing.inner_event, s.event_slots.active_event);
    const int moment = s.drawing.outer_event;
    EXPECT_EQ(s.drawing.screen_page, "helio_double");
    EXPECT_EQ(s.drawing.chart_kind, "T");
    EXPECT_EQ(s.chart.world_view, "Heliocentric");
    EXPECT_EQ(s.drawing.chart_calling, "ab_events");
    EXPECT_EQ(s.event_slots[moment][col::place], "Bern");
    EXPECT_EQ(s.event_slots[moment][col::hours], "13");
}

} // namespace
} // namespace celestark::testing
