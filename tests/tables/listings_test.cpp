// Listings over the listing tables: the sort keeps equal values in table order, the Sun's places
// of events at known moments come out in the order of their longitudes, the entry checks refuse a
// Draconic zodiac without a node, an unknown zodiac and a missing aspect set, a row that cannot be
// charted is reported and passed over, and the listing tables are kept in the options.
#include "../store/program_folder.h"
#include "listing_support.h"

#include "screens/listing_screens.h"
#include "session/text.h"
#include "tables/listings.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

namespace celestark::testing {
namespace {

// The moments the Sun enters each sign (1 Aries to 12 Pisces) from the reference events.
std::map<int, double> sun_ingresses_of_1951() {
    std::ifstream in(std::string(CELESTARK_TEST_DATA) + "/events.csv");
    std::map<int, double> out;
    std::string line;
    while (std::getline(in, line)) {
        std::stringstream cells(line);
        std::string what, body, detail, jd;
        std::getline(cells, what, ',');
        std::getline(cells, body, ',');
        std::getline(cells, detail, ',');
        std::getline(cells, jd, ',');
        if (what != "ingress" || body != "sun") continue;
        const double moment = std::stod(jd);
        // 1951: from JD 2433647.5 to 2434012.5.
        if (moment > 2433647.5 && moment < 2434012.5) out[std::stoi(detail)] = moment;
    }
    return out;
}

class ListingsTest : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    void SetUp() override {
        ASSERT_TRUE(folder.start(s).started);
        s.sink = &folder.sink;
    }
    void option(const char* table, const char* field, const store::Value& v) {
        ASSERT_EQ(set_option(s, table, field, v, folder.sink), store::Outcome::ok);
    }
    std::vector<Listing> run(const std::string& report, std::vector<std::string> ticked,
                             bool separations = false) {
        ListingRequest q;
        q.report = report;
        q.ticked = std::move(ticked);
        q.separations = separations;
        std::vector<Listing> out;
        EXPECT_TRUE(run_listing(s, q, out, folder.sink));
        return out;
    }
};

TEST(SortListing, EqualValuesKeepTheirTableOrder) {
    struct Case {
        std::vector<double> values;
        std::vector<std::string> order;
    };
    const Case cases[] = {
        {{3, 1, 2}, {"b", "c", "a"}},
        {{5, 5, 5}, {"a", "b", "c"}},
        {{2, 1, 2, 1}, {"b", "d", "a", "c"}},
        {{0.5, -1, 0.5, 360}, {"b", "a", "c", "d"}},
    };
    for (const Case& c : cases) {
        std::vector<ListingRow> rows;
        for (std::size_t i = 0; i < c.values.size(); ++i)
            rows.push_back(
                {"", std::string(1, static_cast<char>('a' + i)), "", c.values[i], "", "", ""});
        sort_listing(rows);
        std::vector<std::string> names;
        for (const ListingRow& r : rows) names.push_back(r.name);
        EXPECT_EQ(names, c.order);
    }
}

TEST_F(ListingsTest, TheSunsPlacesComeInTheOrderOfTheirLongitudes) {
    const std::map<int, double> ingress = sun_ingresses_of_1951();
    ASSERT_EQ(ingress.size(), 12u);
    // An hour after the ingress into a sign the Sun stands 0.04 degrees into it; the table holds
    // them out of order.
    const int signs[] = {7, 1, 10, 4, 12, 2};
    std::vector<RowCells> rows;
    for (int sign : signs)
        rows.push_back(event_at("S" + std::to_string(sign), ingress.at(sign) + 1.0 / 24));
    make_event_table(folder.file("Lists.zod.mdb"), "Suns", rows);
    choose_listing_table(s, 1, folder.path(), "Lists.zod.mdb", "Suns");

    const std::vector<Listing> out = run(planetary_listing, {"geo_sun"});
    ASSERT_EQ(out.size(), 1u);
    const Listing& l = out.front();
    EXPECT_EQ(l.title, "Sorted Planetary listing for GEO Sun");
    EXPECT_EQ(l.columns.back(), "   SID.         TROP.        DEGREES");
    ASSERT_EQ(l.rows.size(), 6u);
    const int expected[] = {1, 2, 4, 7, 10, 12};
    for (std::size_t i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(l.rows[i].name, "Test S" + std::to_string(expected[i]));
        EXPECT_NEAR(l.rows[i].value, (expected[i] - 1) * 30 + 0.0415, 0.006);
        EXPECT_EQ(l.rows[i].event, "Birth");
    }
    EXPECT_TRUE(l.skipped.empty());

    // CANCEL in the progress window ends the run with nothing listed.
    folder.sink.cancel_after = 3;
    ListingRequest q{planetary_listing, {"geo_sun"}, false, false, false};
    std::vector<Listing> cancelled;
    EXPECT_FALSE(run_listing(s, q, cancelled, folder.sink));
    EXPECT_TRUE(cancelled.empty());
    EXPECT_EQ(folder.sink.progress_steps.back(), 3);
}

TEST_F(ListingsTest, ARowThatCannotBeChartedIsReportedAndPassedOver) {
    const std::map<int, double> ingress = sun_ingresses_of_1951();
    RowCells broken = event_at("Broken", ingress.at(3));
    broken[4].second = "13"; // the month
    RowCells far = event_at("Far", ingress.at(3));
    far[5].second = "20000"; // the year
    make_event_table(
        folder.file("Lists.zod.mdb"), "Mixed",
        {event_at("Able", ingress.at(5)), broken, event_at("Cole", ingress.at(6)), far});
    choose_listing_table(s, 2, folder.path(), "Lists.zod.mdb", "Mixed");

    const std::vector<Listing> out = run(planetary_listing, {"geo_sun", "hel_earth"});
    ASSERT_EQ(out.size(), 2u);
    for (const Listing& l : out) {
        EXPECT_EQ(l.rows.size(), 2u);
        ASSERT_EQ(l.skipped.size(), 2u);
        // The table is read in name order: Able, Broken, Cole, Far.
        EXPECT_EQ(l.skipped[0], "Table 2 (Mixed), row 2, Test Broken: the date is not valid");
        EXPECT_EQ(l.skipped[1],
                  "Table 2 (Mixed), row 4, Test Far: the date lies outside the tables of the "
                  "planets");
    }
    // The Earth seen from the Sun stands opposite the Sun seen from the Earth.
    for (std::size_t i = 0; i < 2; ++i)
        EXPECT_NEAR(std::fabs(out[0].rows[i].value - out[1].rows[i].value), 180, 0.01);
}

TEST_F(ListingsTest, TheEntryChecksRefuse) {
    const std::map<int, double> ingress = sun_ingresses_of_1951();
    make_event_table(folder.file("Lists.zod.mdb"), "One",
                     {event_at("Able", ingress.at(1) + 1.0 / 24)});
    choose_listing_table(s, 1, folder.path(), "Lists.zod.mdb", "One");
    struct Case {
        const char* zodiac;
        int moon_node;
        const char* aspect_set;
        const char* report;
        const char* title;
        const char* text;
    };
    const Case cases[] = {
        {"Draconic", 0, "Standard", planetary_listing, "ERROR USING DRACONIC ZODIAC",
         "For the Draconic Zodiac either the Osculating or the Mean Moon Node Option must be "
         "selected"},
        {"Nowhere", 1, "Standard", planetary_listing, "CELESTARK",
         "Zodiac: Nowhere does not exist"},
        {"Tropical", 1, "None", aspects_listing, "Celestark", "No aspect set selected"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        option("option_name", "listings_zodiac", store::Value(c.zodiac));
        option("option_name", "listings_aspect_set", store::Value(c.aspect_set));
        option("options", "moon_node", store::Value(c.moon_node));
        folder.sink.messages.clear();
        ListingRequest q{c.report, {"geo_sun", "geo", "a_sun", "b_moon"}, false, false, false};
        std::vector<Listing> out;
        EXPECT_FALSE(run_listing(s, q, out, folder.sink));
        EXPECT_TRUE(out.empty());
        ASSERT_EQ(folder.sink.messages.size(), 1u);
        EXPECT_EQ(folder.sink.messages[0].title, c.title);
        EXPECT_EQ(folder.sink.messages[0].text, c.text);
    }
    // With a node option the Draconic zodiac lists; the Sun's place is then measured from the
    // node, far from its tropical place at the start of Aries.
    option("option_name", "listings_zodiac", store::Value("Draconic"));
    option("options", "moon_node", store::Value(1));
    const std::vector<Listing> out = run(planetary_listing, {"geo_sun"});
    ASSERT_EQ(out.size(), 1u);
    ASSERT_EQ(out[0].rows.size(), 1u);
    EXPECT_GT(std::fabs(out[0].rows[0].value - 0.0415), 1.0);
}

TEST_F(ListingsTest, SeparationsAndAspectsOfAPair) {
    const std::map<int, double> ingress = sun_ingresses_of_1951();
    make_event_table(folder.file("Lists.zod.mdb"), "Pairs",
                     {event_at("Able", ingress.at(1)), event_at("Baker", ingress.at(7))});
    choose_listing_table(s, 1, folder.path(), "Lists.zod.mdb", "Pairs");
    // The Sun and the Earth seen from the Sun are half a circle apart in any event.
    const std::vector<Listing> sep = run(aspects_listing, {"geo_hel", "a_sun", "b_earth"}, true);
    ASSERT_EQ(sep.size(), 1u);
    EXPECT_EQ(sep[0].title, " Sorted Angular Separation listing for GEO Sun and HEL Earth");
    EXPECT_EQ(sep[0].columns,
              (std::vector<std::string>{"EVENT", "NAME", "DATE", "SEPARATION", "  ORB"}));
    ASSERT_EQ(sep[0].rows.size(), 2u);
    for (const ListingRow& r : sep[0].rows) EXPECT_NEAR(r.value, 180, 0.01);
    // The opposition is an aspect of the standard set; its orb is nearly 0.
    const std::vector<Listing> asp = run(aspects_listing, {"geo_hel", "a_sun", "b_earth"});
    ASSERT_EQ(asp.size(), 1u);
    EXPECT_EQ(asp[0].title, " Sorted Aspects listing for GEO Sun and HEL Earth");
    ASSERT_EQ(asp[0].rows.size(), 2u);
    EXPECT_NEAR(std::fabs(text_to_number(asp[0].rows[0].orb.substr(1))), 0, 0.01);
}

TEST_F(ListingsTest, TheListingTablesAreKeptInTheOptions) {
    make_event_table(folder.file("Other.zod.mdb"), "Kings", {event_at("Able", 2433700.5)});
    ListingTablesScreen screen;
    screen.open(s);
    screen.begin_choice(s, 3);
    screen.choose_folder(folder.path());
    const auto& files = screen.chooser().db_files;
    ASSERT_NE(std::find(files.begin(), files.end(), "Other.zod.mdb"), files.end());
    ASSERT_TRUE(screen.pick_database("Other.zod.mdb", folder.sink));
    EXPECT_EQ(screen.chooser().table_list, std::vector<std::string>{"Kings"});
    ASSERT_TRUE(screen.pick_table(s, 3, "Kings", folder.sink));
    EXPECT_EQ(trim(read_option(s, "option_name", "table_3_name").as_text()), "Kings");
    EXPECT_EQ(trim(read_option(s, "option_name", "table_3_db").as_text()), "Other.zod.mdb");

    ListingTablesScreen again;
    again.open(s);
    EXPECT_EQ(again.tables_in_use(), 1);
    EXPECT_EQ(again.slot(3).db, "Other.zod.mdb");
    EXPECT_EQ(again.slot(3).name, "Kings");
    ListingTable opened;
    EXPECT_EQ(open_listing_table(s, 3, opened), store::Outcome::ok);
    EXPECT_TRUE(opened.has_rows);

    ASSERT_TRUE(again.remove(s, 3, folder.sink));
    ListingTablesScreen last;
    last.open(s);
    EXPECT_EQ(last.tables_in_use(), 0);
    EXPECT_EQ(last.slot(3).line(), "(none)");
    // Nothing to walk now.
    folder.sink.messages.clear();
    ListingRequest q{planetary_listing, {"geo_sun"}, false, false, false};
    std::vector<Listing> out;
    EXPECT_FALSE(run_listing(s, q, out, folder.sink));
    ASSERT_FALSE(folder.sink.messages.empty());
    EXPECT_EQ(folder.sink.messages.back().title, "NO TABLES SELECTED");
}

TEST_F(ListingsTest, TheCatalogueInTheOrdersOfTheWindow) {
    Listing by_longitude, by_constellation, greek;
    ASSERT_TRUE(list_only_stars(s, "longitude", "all_stars", by_longitude, folder.sink));
    ASSERT_TRUE(list_only_stars(s, "const_long", "all_stars", by_constellation, folder.sink));
    ASSERT_TRUE(list_only_stars(s, "number", "greek", greek, folder.sink));
    ASSERT_GT(by_longitude.rows.size(), 100u);
    EXPECT_EQ(by_constellation.rows.size(), by_longitude.rows.size());
    EXPECT_TRUE(
        std::is_sorted(by_longitude.rows.begin(), by_longitude.rows.end(),
                       [](const ListingRow& a, const ListingRow& b) { return a.value < b.value; }));
    // Each constellation's stars stand together, in longitude within it.
    std::vector<std::string> met;
    for (std::size_t i = 0; i < by_constellation.rows.size(); ++i) {
        const ListingRow& r = by_constellation.rows[i];
        if (i > 0 && by_constellation.rows[i - 1].event == r.event) {
            EXPECT_LE(by_constellation.rows[i - 1].value, r.value);
            continue;
        }
        EXPECT_EQ(std::find(met.begin(), met.end(), r.event), met.end()) << r.event;
        met.push_back(r.event);
    }
    EXPECT_LT(greek.rows.size(), by_longitude.rows.size());
    EXPECT_FALSE(list_only_stars(s, "sideways", "all_stars", greek, folder.sink));
}

TEST_F(ListingsTest, TheElementsOfMercuryAndMars) {
    make_event_table(folder.file("Lists.zod.mdb"), "One", {event_at("Able", 2433647.5)});
    choose_listing_table(s, 1, folder.path(), "Lists.zod.mdb", "One");
    const std::vector<Listing> out =
        run(elements_listing, {"node_mercury", "node_mars", "per_mercury", "per_mars"});
    // The mean elements of the ecliptic of date at the start of 1951 (Meeus, Astronomical
    // Algorithms, table 31.A): nodes 47.75 and 49.18, perihelia 76.69 and 335.16 degrees.
    struct Case {
        const char* title;
        double degrees;
    };
    const Case cases[] = {{"Sorted Elements listing for HEL Mercury Node", 47.75},
                          {"Sorted Elements listing for HEL Mars Node", 49.18},
                          {"Sorted Elements listing for HEL Mercury Perihelion", 76.69},
                          {"Sorted Elements listing for HEL Mars Perihelion", 335.16}};
    ASSERT_EQ(out.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(cases[i].title);
        EXPECT_EQ(out[i].title, cases[i].title);
        ASSERT_EQ(out[i].rows.size(), 1u);
        EXPECT_NEAR(out[i].rows[0].value, cases[i].degrees, 0.5);
    }
}

TEST_F(ListingsTest, AStarNearTheSun) {
    // At the ingress into Virgo the Sun stands at 150 degrees; Regulus (149 deg 50 min of J2000,
    // precessing 50.3 seconds a year) stood at 149.14 degrees in 1951.
    const std::map<int, double> ingress = sun_ingresses_of_1951();
    make_event_table(folder.file("Lists.zod.mdb"), "One", {event_at("Able", ingress.at(6))});
    choose_listing_table(s, 1, folder.path(), "Lists.zod.mdb", "One");
    option("option_name", "listings_longitude_star_group", store::Value("Basic Star Zodiac stars"));
    option("option_name", "listings_longitude_orb_set", store::Value("1"));
    option("option_name", "orb_1_degs", store::Value(2));
    option("option_name", "orb_1_magnitude", store::Value(1.5));
    ListingRequest q{stars_listing, {"geo", "sun"}, false, false, false};
    std::vector<Listing> out;
    ASSERT_TRUE(run_listing(s, q, out, folder.sink));
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].title, " Sorted Star listing for GEO Sun");
    ASSERT_EQ(out[0].rows.size(), 1u);
    EXPECT_NE(out[0].rows[0].text.find("Regulus"), std::string::npos) << out[0].rows[0].text;
    EXPECT_NEAR(text_to_number(out[0].rows[0].orb), -0.86, 0.05);
}

TEST_F(ListingsTest, ARetrogradeBodyIsMarked) {
    // Two days after Mercury's stations of 1950 (events.csv): retrograde after an R, direct
    // after a D.
    make_event_table(folder.file("Lists.zod.mdb"), "Turns",
                     {event_at("Able", 2433290.204173 + 2), event_at("Baker", 2433310.710130 + 2),
                      event_at("Cole", 2433405.170928 + 2), event_at("Dale", 2433429.019795 + 2)});
    choose_listing_table(s, 1, folder.path(), "Lists.zod.mdb", "Turns");
    const std::vector<Listing> out = run(planetary_listing, {"geo_mercury"});
    ASSERT_EQ(out.size(), 1u);
    ASSERT_EQ(out[0].rows.size(), 4u);
    for (const ListingRow& r : out[0].rows) {
        SCOPED_TRACE(r.name);
        const bool retrograde = r.name == "Test Able" || r.name == "Test Cole";
        EXPECT_EQ(r.text.find(" R") != std::string::npos, retrograde) << r.text;
    }
}

} // namespace
} // namespace celestark::testing
