// Similars: an event held against a table of events. A planted twin matches on everything and a
// different event does not; rows that cannot be charted are reported by their row while the run
// goes on; the refusals; doubtful birth times; the place lookups; continuing a stopped run.
#include "../store/program_folder.h"
#include "../support/events.h"
#include "../support/stored_events.h"

#include "session/constants.h"
#include "session/fixed_tables.h"
#include "store/event_schema.h"
#include "store/table_store.h"
#include "tables/similars.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace celestark::testing {
namespace {

// A database `file` with the table "Events" holding the rows as they are (no checks).
void write_events(const std::filesystem::path& file, const std::vector<EventRow>& rows) {
    write_event_rows(file, "Events", rows);
}

class SimilarsTest : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    SimilarsParameters p;
    void SetUp() override {
        ASSERT_TRUE(folder.start(s).started);
        s.sink = &folder.sink;
        put_einstein(s, 1);
        p = similars_defaults(s);
    }
    void set(const std::string& name, const std::string& value) {
        ASSERT_EQ(set_similars_control(p, name, value), "");
    }
    std::vector<SimilarLine> run(const std::vector<EventRow>& rows) {
        std::filesystem::remove(folder.file("others.zod.mdb"));
        write_events(folder.file("others.zod.mdb"), rows);
        std::vector<SimilarLine> lines;
        EXPECT_TRUE(list_similars_all(s, p, 1, {{folder.path(), "others.zod.mdb", "Events"}},
                                      folder.sink, lines));
        return lines;
    }
};

TEST_F(SimilarsTest, APlantedTwinMatchesWholeAndOthersDoNot) {
    set("similar_charts", "1");
    set("similar_same_same", "1");
    set("similar_orb_degs", "1");
    set("similar_hits", "10"); // the Sun to Pluto, every one
    // In the table's order (by surname): a moment before the tables, a broken row, the twin under
    // another name, the event itself, and the same person a year later.
    const std::vector<SimilarLine> lines = run({
        einstein_with({{col::surname, "Einstein"}, {col::firstname, "Later"}, {col::year, "1880"}}),
        einstein_with({{col::surname, "Broken"}, {col::month, "13"}}),
        einstein_with({{col::surname, "Ancient"}, {col::year, "-9000"}}),
        einstein_with({{col::surname, "Copy"}, {col::firstname, "Twin"}}),
        einstein_with({}),
    });
    std::vector<std::string> hit_names, fault_rows;
    for (const SimilarLine& l : lines) {
        if (l.fault) {
            fault_rows.push_back(l.name + " " + std::to_string(l.row));
            continue;
        }
        EXPECT_EQ(l.score, 10);
        EXPECT_EQ(l.planet, l.event_planet);
        EXPECT_LT(l.orb, 1e-6);
        if (hit_names.empty() || hit_names.back() != l.name) hit_names.push_back(l.name);
    }
    EXPECT_EQ(fault_rows, (std::vector<std::string>{"Albert Ancient 1", "Albert Broken 2"}));
    EXPECT_EQ(hit_names, (std::vector<std::string>{"Twin Copy", "Albert Einstein"}));
    EXPECT_EQ(lines.size(), 2u + 20u);
}

TEST_F(SimilarsTest, AnEventOutsideTheOrbIsNotListed) {
    set("similar_planets", "1");
    set("planets_same", "1");
    // Only the Sun, which moves about a degree a day: twenty days later it is outside every orb
    // of the set (10 degrees of the conjunction, 2 of the semi-sextile), a year later within it.
    for (const auto& b : similars_bodies()) {
        set(panel_box(tables_panel, b.name), "0");
        set(panel_box(event_panel, b.name), "0");
    }
    set("tables_sun", "1");
    set("event_sun", "1");
    const std::vector<SimilarLine> lines = run({
        einstein_with({{col::surname, "Later"}, {col::month, "4"}, {col::day, "3"}}),
        einstein_with({{col::surname, "Year"}, {col::year, "1880"}}),
    });
    ASSERT_FALSE(lines.empty());
    for (const SimilarLine& l : lines) EXPECT_EQ(l.name, "Albert Year");
}

TEST_F(SimilarsTest, ADoubtfulTimeDropsOnlyTheHouses) {
    set("similar_planets", "1");
    set("planets_same", "1");
    for (const auto& b : similars_bodies()) {
        set(panel_box(tables_panel, b.name), "0");
        set(panel_box(event_panel, b.name), "0");
    }
    for (const char* box : {"tables_sun", "tables_h1", "event_sun", "event_h1"}) set(box, "1");
    const std::vector<SimilarLine> lines = run({
        einstein_with({{col::surname, "Sure"}, {col::version, "A"}}),
        einstein_with({{col::surname, "Unsure"}, {col::version, "?"}}),
    });
    std::vector<std::string> seen;
    for (const SimilarLine& l : lines)
        if (l.orb < 1e-6) seen.push_back(l.name + " " + similars_glyph_cell(l.planet));
    const std::string sun(1, static_cast<char>(glyph::sun));
    EXPECT_EQ(seen, (std::vector<std::string>{"Albert Sure " + sun, "Albert Sure ASH",
                                              "Albert Unsure " + sun}));
}

TEST_F(SimilarsTest, RefusalsSayWhatIsMissing) {
    struct Case {
        std::vector<std::pair<std::string, std::string>> controls;
        const char* title;
        const char* text;
    };
    const std::vector<Case> cases = {
        {{{"event_sun", "0"},
          {"event_moon", "0"},
          {"event_mercury", "0"},
          {"event_venus", "0"},
          {"event_mars", "0"},
          {"event_jupiter", "0"},
          {"event_saturn", "0"},
          {"event_uranus", "0"},
          {"event_neptune", "0"},
          {"event_pluto", "0"}},
         "NO EVENT PLANETS SELECTED",
         "You must select one or more event planets"},
        {{{"tables_sun", "0"},
          {"tables_moon", "0"},
          {"tables_mercury", "0"},
          {"tables_venus", "0"},
          {"tables_mars", "0"},
          {"tables_jupiter", "0"},
          {"tables_saturn", "0"},
          {"tables_uranus", "0"},
          {"tables_neptune", "0"},
          {"tables_pluto", "0"}},
         "NO TABLE PLANETS SELECTED",
         "You must select one or more table planets"},
        {{{"same_constellation", "1"}, {"in_constellation", "0"}},
         "NO COMPARISON TYPE SELECTED",
         "You must select one or more of Constallation, Decan or House"},
        {{{"similar_elements", "1"}, {"orb_elements_degs", "0"}, {"orb_elements_mins", "0"}},
         "NO ORB ENTERED",
         "You must enter an orb greater than 0"},
        {{{"similar_charts", "1"}, {"similar_orb_degs", ""}, {"similar_orb_mins", "0"}},
         "NO ORB ENTERED",
         "You must enter an orb greater than 0"},
        {{{"similar_angles", "1"}, {"tables_mars_2", "1"}},
         "NO EVENT PLANETS SELECTED",
         "You must select at least one first and one second event planet"},
        {{{"similar_angles", "1"}, {"event_mars_2", "1"}},
         "NO TABLE PLANETS SELECTED",
         "You must select at least one first and one second table planet"},
        {{{"similar_angles", "1"}, {"event_mars_2", "1"}, {"tables_earth_2", "1"}},
         "IDENTICAL EVENT PLANETS SELECTED",
         "You must select different event planets"},
        {{{"similar_angles", "1"}, {"event_earth_2", "1"}, {"tables_mars_2", "1"}},
         "IDENTICAL TABLE PLANETS SELECTED",
         "You must select different table planets"},
        {{{"both", "1"}}, "NO EPOCH", "No EPOCH has been calculated for this event"},
    };
    for (const Case& c : cases) {
        SimilarsParameters q = similars_defaults(s);
        for (const auto& [name, value] : c.controls)
            ASSERT_EQ(set_similars_control(q, name, value), "") << name;
        RecordingSink sink;
        SimilarsRun run;
        EXPECT_FALSE(run.start(s, q, 1, {}, sink)) << c.title;
        ASSERT_EQ(sink.messages.size(), 1u) << c.title;
        EXPECT_EQ(sink.messages[0].title, c.title);
        EXPECT_EQ(sink.messages[0].text, c.text);
    }
    EXPECT_NE(set_similars_control(p, "tables_vulcan", "1"), "");
    EXPECT_NE(set_similars_control(p, "geo", "yes"), "");
    EXPECT_NE(set_similars_control(p, "similar_hits", "many"), "");
}

TEST_F(SimilarsTest, AStoppedRunGoesOnFromItsRow) {
    set("same_constellation", "1");
    set("in_decan", "1");
    const std::vector<EventRow> rows = {
        einstein_with({{col::surname, "A"}, {col::year, "1890"}}),
        einstein_with({{col::surname, "B"}, {col::year, "1900"}}),
        einstein_with({{col::surname, "C"}, {col::year, "1910"}}),
    };
    const std::vector<SimilarLine> whole = run(rows);
    ASSERT_GT(whole.size(), 3u);
    SimilarsRun r;
    ASSERT_TRUE(r.start(s, p, 1, {{folder.path(), "others.zod.mdb", "Events"}}, folder.sink));
    std::vector<SimilarLine> pieces;
    std::int64_t last_row = 0;
    while (!r.finished()) {
        for (SimilarLine& l : r.next(s, 2, folder.sink)) pieces.push_back(std::move(l));
        EXPECT_GE(r.table_row(), last_row);
        last_row = r.table_row();
    }
    ASSERT_EQ(pieces.size(), whole.size());
    for (std::size_t i = 0; i < whole.size(); ++i) {
        EXPECT_EQ(pieces[i].name, whole[i].name);
        EXPECT_EQ(pieces[i].place, whole[i].place);
    }
    EXPECT_EQ(r.rows_done(), 3);
}

TEST_F(SimilarsTest, EpochChartsAreComparedWithEpochCharts) {
    // An epoch nine months before the birth, stored with the event and with its copy.
    const EventCells epoch = {{col::epoch_exists, "Y"},    {col::epoch_day, "20"},
                              {col::epoch_month, "6"},     {col::epoch_year, "1878"},
                              {col::epoch_hours, "8"},     {col::epoch_mins, "0"},
                              {col::epoch_lat_deg, "48"},  {col::epoch_lat_ns, "N"},
                              {col::epoch_long_deg, "10"}, {col::epoch_long_ew, "E"}};
    for (const auto& [column, text] : epoch)
        s.event_slots[1][static_cast<std::size_t>(column)] = text;
    set("similar_charts", "1");
    set("similar_orb_degs", "1");
    set("similar_hits", "10");
    EventCells twin = epoch;
    twin.push_back({col::surname, "Copy"});
    for (const char* which : {"epoch", "both"}) {
        set(which, "1");
        std::size_t births = 0, epochs = 0;
        for (const SimilarLine& l : run({einstein_with(twin)})) (l.epoch ? epochs : births) += 1;
        EXPECT_EQ(epochs, 10u) << which;
        EXPECT_EQ(births, std::string(which) == "both" ? 10u : 0u) << which;
    }
}

TEST_F(SimilarsTest, CancelEndsTheRunAfterItsRow) {
    std::vector<EventRow> rows;
    for (int i = 0; i < 40; ++i) {
        rows.push_back(einstein_with({}));
        rows.back()[col::surname] = "P" + std::to_string(100 + i);
    }
    write_events(folder.file("many.zod.mdb"), rows);
    RecordingSink sink;
    sink.cancel_after = 32;
    SimilarsRun r;
    ASSERT_TRUE(r.start(s, p, 1, {{folder.path(), "many.zod.mdb", "Events"}}, sink));
    while (!r.finished()) r.next(s, 1000, sink);
    EXPECT_TRUE(r.cancelled());
    EXPECT_EQ(r.rows_done(), 32);
    EXPECT_EQ(r.rows_total(), 40);
}

TEST(SimilarsRules, OrbClassesAndStars) {
    struct Case {
        int a, b, cls;
    };
    for (const Case& c : std::vector<Case>{{5, 5, 0},
                                           {5, 1, 5},
                                           {4, 5, 5},
                                           {4, 1, 4},
                                           {3, 4, 4},
                                           {1, 2, 1},
                                           {2, 3, 2},
                                           {3, 3, 3},
                                           {-3, 3, 3},
                                           {-3, 1, 1}})
        EXPECT_EQ(pair_orb_class(c.a, c.b), c.cls) << c.a << "," << c.b;
    for (const char* mark : {"?", "!", "+", "=", "#", "*"}) EXPECT_TRUE(doubtful_version(mark));
    for (const char* mark : {"", " ", "A", "1", "??"}) EXPECT_FALSE(doubtful_version(mark));
}

TEST(SimilarsRules, PlacesAmongBoundaries) {
    const std::array<float, 12> equal{0, 30, 60, 90, 120, 150, 180, 210, 240, 270, 300, 330};
    // Sidereal-like boundaries, turned by 25 degrees.
    std::array<float, 12> turned{};
    for (std::size_t i = 0; i < 12; ++i) turned[i] = std::fmod(equal[i] + 25.0f, 360.0f);
    struct Case {
        double position;
        int sign, sign_turned, decan;
    };
    for (const Case& c : std::vector<Case>{{0, 1, 12, 1},
                                           {15, 1, 12, 2},
                                           {30, 2, 1, 4},
                                           {29.999, 1, 1, 3},
                                           {359.9, 12, 12, 36},
                                           {200, 7, 6, 21}}) {
        EXPECT_EQ(constellation_number(c.position, equal), c.sign) << c.position;
        EXPECT_EQ(constellation_number(c.position, turned), c.sign_turned) << c.position;
        EXPECT_EQ(decan_number(c.position), c.decan) << c.position;
    }
    // Houses of unequal size, the first cusp at 100 degrees and the last before it.
    std::array<double, 13> cusps{};
    const double deg[12] = {100, 125, 160, 200, 230, 250, 280, 305, 340, 20, 50, 70};
    for (int i = 0; i < 12; ++i) cusps[static_cast<std::size_t>(i + 1)] = deg[i] * pi / 180;
    EXPECT_EQ(house_number(110, cusps), 1);
    EXPECT_EQ(house_number(10, cusps), 9);
    EXPECT_EQ(house_number(85, cusps), 12);
    EXPECT_EQ(house_number(200, cusps), 4);
}

} // namespace
} // namespace celestark::testing
