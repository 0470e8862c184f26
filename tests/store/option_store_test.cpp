// The option store in a session: the start's option part, the fatal paths, nulls and their
// defaults, setting options, the group readers, zodiacs, aspect sets and colour sets.
#include "program_folder.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/option_store.h"

#include <gtest/gtest.h>

#include <fstream>

namespace celestark {
namespace {

using store::Outcome;
using store::Value;
using testing::ProgramFolder;

// Changes the stored option file before a start.
void with_option_file(ProgramFolder& folder, const std::function<void(store::TableStore&)>& edit) {
    store::TableStore db;
    ASSERT_EQ(db.open(folder.file("option.mdb")), Outcome::ok);
    edit(db);
}

void set_stored(store::TableStore& db, const char* table, const char* field, const Value& v) {
    store::Recordset rs;
    ASSERT_EQ(db.open_recordset(table, rs), Outcome::ok);
    ASSERT_EQ(rs.move_first(), Outcome::ok);
    ASSERT_EQ(rs.edit(), Outcome::ok);
    ASSERT_EQ(rs.set(field, v), Outcome::ok) << field;
    ASSERT_EQ(rs.update(), Outcome::ok);
}

// A session started in a new program folder.
class OptionSession : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(folder.start(s).started); }
    ProgramFolder folder;
    Session s;
    RecordingSink sink;
};

TEST(OptionStoreStart, MissingDamagedOrForeignFilesTakeTheirFatalPath) {
    struct Case {
        const char* name;
        std::function<void(ProgramFolder&)> spoil;
        const char* text_start;
        const char* opening;
    };
    auto drop = [](const char* table) {
        return [table](ProgramFolder& f) {
            with_option_file(f, [&](store::TableStore& db) { db.delete_table(table); });
        };
    };
    const Case cases[] = {
        {"missing", [](ProgramFolder& f) { std::filesystem::remove(f.file("option.mdb")); },
         "CK1-Error ", "Opening OPTIONS database. "},
        {"not a database",
         [](ProgramFolder& f) { std::ofstream(f.file("option.mdb")) << "option=1\n"; },
         "CK1-Error ", "Opening OPTIONS database. "},
        {"cut short",
         [](ProgramFolder& f) { std::filesystem::resize_file(f.file("option.mdb"), 1000); },
         "CK1-Error ", "Opening OPTIONS database. "},
        {"foreign",
         [](ProgramFolder& f) {
             std::filesystem::remove(f.file("option.mdb"));
             store::TableStore db;
             db.create(f.file("option.mdb"));
             db.create_table("notes", std::vector<store::FieldDef>{{"text", {}, 20}});
         },
         "CK1-Error ", "Opening OPTIONS database. "},
        {"no option_name", drop("option_name"), "CK1-Error ", "Opening OPTIONS database. "},
        {"no options", drop("options"), "CK1-Error ", "Opening OPTIONS database. "},
        {"no zodiac", drop("zodiac"), "CK2-Error ", "Opening ZODIAC  database. "},
        {"no aspects", drop("aspects"), "CK3-Error ", "Opening ASPECT database. "},
        {"no colour", drop("colour"), "CK4-Error ", "Opening COLOUR database. "},
    };
    for (const Case& c : cases) {
        ProgramFolder folder;
        c.spoil(folder);
        Session s;
        const StartResult r = folder.start(s);
        EXPECT_FALSE(r.started) << c.name;
        ASSERT_EQ(folder.fatal_titles.size(), 1u) << c.name;
        EXPECT_EQ(folder.fatal_titles[0], "Fatal Error in OPEN OPTION DATABASE");
        const std::string& text = folder.fatal_texts[0];
        EXPECT_EQ(text.rfind(c.text_start, 0), 0u) << text;
        EXPECT_NE(text.find(std::string(c.opening) + fatal_tail), std::string::npos) << text;
        // Nothing of the event store was touched after the fatal error.
        EXPECT_FALSE(std::filesystem::exists(folder.file("Celestark.zod.mdb"))) << c.name;
    }
}

// The chart options of the standard file reach the session, with their aspect set and, in print
// mode with colour printing, the print colour set; the global options take their defaults.
TEST_F(OptionSession, ReadsTheStandardOptionsIntoTheSession) {
    EXPECT_TRUE(folder.sink.messages.empty());
    EXPECT_EQ(s.chart.house_system, "Placidus");
    EXPECT_EQ(s.chart.moon_node, 1);
    EXPECT_EQ(s.option_sets.aspects.aspect_count, 11);
    EXPECT_TRUE(s.chart.print_mode);
    EXPECT_EQ(s.option_sets.colours.name, "Paper");
    EXPECT_EQ(s.options.option_save_chart, -1);
}

TEST_F(OptionSession, NullGlobalOptionsShowAndStoreTheirDefaults) {
    // An old row: the fields hold nothing.
    for (const char* field : {"star_zodiac_width", "user_name", "option_date_format", "tel"})
        ASSERT_EQ(set_option(s, "option_name", field, Value(), sink), Outcome::ok);
    ASSERT_EQ(set_option(s, "option_name", "add2", Value("Flat 2"), sink), Outcome::ok);

    const auto shown = load_option_screen(s, sink);
    std::map<std::string, Value> by_field(shown.begin(), shown.end());
    const std::pair<const char*, Value> expected[] = {
        {"star_zodiac_width", 8},   {"user_name", "Ivan Marlowe"},
        {"option_date_format", -1}, {"tel", " "},
        {"add2", "Flat 2"},         {"charts_conj_orb_type", "Longitude"},
    };
    for (const auto& [field, value] : expected) {
        EXPECT_EQ(by_field.at(field).as_text(), value.as_text()) << field << " shown";
        store::TableStore other; // another reader of the file sees the repair
        ASSERT_EQ(other.open(folder.file("option.mdb")), Outcome::ok);
        store::Recordset rs;
        ASSERT_EQ(other.open_recordset("option_name", rs), Outcome::ok);
        EXPECT_EQ(rs.get(field).as_text(), value.as_text()) << field << " stored";
    }
    // Options without a default stay null: the event database in use is set by its own part.
    EXPECT_TRUE(by_field.at("table_3_db").is_null());
    EXPECT_EQ(shown.size(), store::general_option_defaults().size());
    EXPECT_TRUE(sink.messages.empty());
}

TEST(OptionNulls, AnEmptyOptionTableGetsItsRow) {
    ProgramFolder folder;
    with_option_file(folder, [](store::TableStore& db) {
        for (const char* table : {"option_name", "options"}) {
            store::Recordset rs;
            ASSERT_EQ(db.open_recordset(table, rs), Outcome::ok);
            ASSERT_EQ(rs.delete_row(), Outcome::ok);
        }
    });
    Session s;
    ASSERT_TRUE(folder.start(s).started);
    // The chart options read as their null values; the global options were repaired.
    EXPECT_EQ(s.chart.house_system, "None");
    EXPECT_EQ(s.chart.aspect_set_charts, "None");
    EXPECT_EQ(s.option_sets.aspects.aspect_count, 0);
    EXPECT_EQ(read_option(s, "option_name", "star_zodiac_width").as_int(), 8);
    EXPECT_EQ(s.event_store.event_table_name, "EVENTS");
}

// An option file of an earlier version, without the star calendar's sets: they read as their
// defaults, can be stored, and the stored options stay.
TEST(OptionNulls, AnEarlierFileGetsTheOptionsAddedSince) {
    ProgramFolder folder;
    with_option_file(folder, [](store::TableStore& db) {
        std::vector<store::FieldDef> fields;
        for (const store::FieldDef& f : store::option_table("options")->fields)
            if (f.name.rfind("star_calender", 0) != 0) fields.push_back(f);
        ASSERT_EQ(db.delete_table("options"), Outcome::ok);
        ASSERT_EQ(db.create_table("options", fields), Outcome::ok);
        store::Recordset rs;
        ASSERT_EQ(db.open_recordset("options", rs), Outcome::ok);
        ASSERT_EQ(rs.add_new(), Outcome::ok);
        ASSERT_EQ(rs.set("house_system", Value("Koch")), Outcome::ok);
        ASSERT_EQ(rs.update(), Outcome::ok);
    });
    Session s;
    ASSERT_TRUE(folder.start(s).started);
    EXPECT_EQ(s.chart.house_system, "Koch");
    EXPECT_EQ(read_option(s, "options", "star_calender_helio").as_text(), "Standard");
    RecordingSink sink;
    EXPECT_EQ(set_option(s, "options", "star_calender_geo", Value("Major"), sink), Outcome::ok);
    EXPECT_EQ(read_option(s, "options", "star_calender_geo").as_text(), "Major");
}

TEST_F(OptionSession, SetOptionWritesAtOnceOrReportsAndKeepsTheRow) {
    struct Case {
        const char* table;
        const char* field;
        Value value;
        Outcome outcome;
        const char* stored; // what the row holds afterwards
    };
    const Case cases[] = {
        {"options", "house_system", "Koch", Outcome::ok, "Koch"},
        {"options", "moon_node", "2", Outcome::ok, "2"},
        {"options", "moon_node", "two", Outcome::type_mismatch, "2"},
        {"options", "moon_node", 70000, Outcome::value_out_of_range, "2"},
        {"option_name", "user_name", std::string(61, 'x'), Outcome::field_too_small,
         "Ivan Marlowe"},
        {"options", "no_such_option", 1, Outcome::no_such_field, ""},
        {"zodiac", "Name", "X", Outcome::not_open, ""},
    };
    for (const Case& c : cases) {
        sink.messages.clear();
        EXPECT_EQ(set_option(s, c.table, c.field, c.value, sink), c.outcome) << c.field;
        EXPECT_EQ(sink.messages.size(), c.outcome == Outcome::ok ? 0u : 1u) << c.field;
        if (*c.stored) {
            store::TableStore other;
            ASSERT_EQ(other.open(folder.file("option.mdb")), Outcome::ok);
            store::Recordset rs;
            ASSERT_EQ(other.open_recordset(c.table, rs), Outcome::ok);
            EXPECT_EQ(rs.get(c.field).as_text(), c.stored) << c.field;
        }
    }
    // A global option changes the session value with it.
    ASSERT_EQ(set_option(s, "option_name", "option_date_format", 0, sink), Outcome::ok);
    EXPECT_FALSE(s.options.text.date_format);
}

TEST_F(OptionSession, EachOptionReaderTakesItsOwnZodiacAndAspectSet) {
    const std::pair<const char*, const char*> options[] = {
        {"zodiac", "Z chart"},
        {"zodiac_ephemeris", "Z ephemeris"},
        {"option_list_only_stars_zodiac", "Z stars"},
        {"aspect_set_charts", "A chart"},
        {"aspect_set_biographies", "A biography"},
        {"aspect_set_transits", "A transits"},
        {"aspect_set_ephemeris", "A ephemeris"},
        {"similars_planets_aspect_set", "A similars"},
        {"house_system", "Koch"}};
    for (const auto& [field, value] : options)
        ASSERT_EQ(set_option(s, "options", field, Value(value), sink), Outcome::ok);
    ASSERT_EQ(set_option(s, "options", "zodiac_direction", 0, sink), Outcome::ok);
    ASSERT_EQ(set_option(s, "options", "part_of_fortune", 0, sink), Outcome::ok);
    ASSERT_EQ(set_option(s, "option_name", "listings_zodiac", "Z listing", sink), Outcome::ok);
    ASSERT_EQ(set_option(s, "option_name", "listings_aspect_set", "A listing", sink), Outcome::ok);

    struct Case {
        const char* reader;
        void (*read)(Session&);
        const char* zodiac;     // "-" when the reader leaves it
        const char* aspect_set; // "-" when the reader leaves it
        bool houses, wheel_direction, fortune;
    };
    const Case cases[] = {
        {"chart", read_chart_options, "Z chart", "A chart", true, true, true},
        {"biography", read_biography_options, "Z chart", "A biography", true, true, true},
        {"ephemeris", read_ephemeris_options, "Z ephemeris", "A ephemeris", true, true, false},
        {"planetary aspects", read_planetary_aspect_options, "Z chart", "A ephemeris", false, false,
         true},
        {"motion", read_motion_options, "-", "-", false, true, false},
        {"star list", read_star_list_options, "Z stars", "-", false, false, true},
        {"listing", read_listing_options, "Z listing", "A listing", true, false, true},
        {"similars", read_similars_options, "Z chart", "A similars", true, true, true},
    };
    for (const Case& c : cases) {
        Session fresh = s; // the same stores, values marked so that a reader's writes show
        fresh.chart.zodiac = fresh.chart.aspect_set_charts = fresh.chart.house_system = "-";
        fresh.chart.zodiac_direction = fresh.chart.part_of_fortune = 9;
        fresh.chart.helio_moon = 1;
        c.read(fresh);
        EXPECT_EQ(fresh.chart.zodiac, c.zodiac) << c.reader;
        EXPECT_EQ(fresh.chart.aspect_set_charts, c.aspect_set) << c.reader;
        EXPECT_EQ(fresh.chart.house_system, c.houses ? "Koch" : "-") << c.reader;
        EXPECT_EQ(fresh.chart.zodiac_direction, c.wheel_direction ? 0 : 9) << c.reader;
        EXPECT_EQ(fresh.chart.part_of_fortune, c.fortune ? 0 : 9) << c.reader;
        EXPECT_EQ(fresh.chart.display_colour_set, "Dark Screen") << c.reader;
        EXPECT_EQ(fresh.chart.helio_moon, 0) << c.reader;
    }
    Session biography = s;
    read_biography_options(biography);
    EXPECT_EQ(biography.option_sets.aspect_set_transits, "A transits");
}

TEST_F(OptionSession, ZodiacsSelectedByNameOrReportedMissing) {
    s.chart.zodiac = "Sidereal SVP";
    ASSERT_TRUE(select_zodiac(s, sink));
    EXPECT_TRUE(s.chart.sign_form); // "Equal" constellations
    EXPECT_FALSE(s.chart.zodiac_bookmark.empty());
    EXPECT_EQ(s.option_sets.zodiac.reference, "Aldebaran");
    EXPECT_FLOAT_EQ(s.option_sets.zodiac.star_longitude, 45.0f + 2.0f / 60 + 53.0f / 3600);
    EXPECT_EQ(s.option_sets.zodiac.window.name, "Sidereal SVP");

    // A zodiac named in the options but missing: the message, and the previous state stays.
    s.chart.zodiac = "Sidereal Lost";
    EXPECT_FALSE(select_zodiac(s, sink));
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0].title, "CELESTARK");
    EXPECT_EQ(sink.messages[0].text, "Zodiac: Sidereal Lost does not exist");
    EXPECT_EQ(s.option_sets.zodiac.reference, "Aldebaran");

    s.chart.zodiac = "Draconic";
    EXPECT_TRUE(select_zodiac(s, sink));
    EXPECT_TRUE(s.option_sets.zodiac.reference.empty());
    EXPECT_EQ(sink.messages.size(), 1u);

    // An unequal epoch zodiac takes its own boundaries.
    ZodiacRecord unequal;
    unequal.defined = "Epoch";
    unequal.constellation = "Unequal";
    unequal.deg = 10;
    unequal.z_degs[1] = 33;
    unequal.z_mins[1] = 30;
    ZodiacState state;
    load_zodiac(unequal, "Mine", false, state);
    EXPECT_EQ(state.reference, "Epoch");
    EXPECT_FLOAT_EQ(state.constellation_start[1], 33.5f);
    EXPECT_FLOAT_EQ(state.constellation_start[2], 0.0f);
}

TEST(Zodiacs, AMissingZodiacAtTheStartIsReportedOnceAndTheStartGoesOn) {
    ProgramFolder folder;
    with_option_file(folder, [](store::TableStore& db) {
        set_stored(db, "options", "zodiac", "Sidereal Lost");
    });
    Session s;
    const StartResult r = folder.start(s);
    EXPECT_TRUE(r.started);
    EXPECT_EQ(folder.messages_titled("CELESTARK"),
              std::vector<std::string>{"Zodiac: Sidereal Lost does not exist"});
    EXPECT_EQ(r.events.database_title, "CELESTARK");
}

TEST_F(OptionSession, AspectSetsLoadedInAngleOrderWithTheirGlyphsAndOrbs) {
    struct Case {
        const char* name;
        int count;
    };
    for (const Case c : {Case{"Standard", 11}, Case{"Major", 5}, Case{"None", 0},
                         Case{"Nothing", 0}, Case{"Majo", 0}}) {
        load_aspect_set(s, c.name, sink);
        EXPECT_EQ(s.option_sets.aspects.aspect_count, c.count) << c.name;
        EXPECT_EQ(s.option_sets.aspects.angle.size(), static_cast<std::size_t>(c.count));
    }
    load_aspect_set(s, "Standard", sink);
    const AspectTable& t = s.option_sets.aspects;
    EXPECT_FLOAT_EQ(t.angle[4], 72.0f);
    EXPECT_EQ(t.glyph[4], 196);  // quintile
    EXPECT_EQ(t.glyph[10], 202); // opposition
    EXPECT_EQ(t.digraph[6], "Tr");
    EXPECT_FLOAT_EQ(t.orb_sun[2], 2.5f); // semisquare: 2 deg 30'
    EXPECT_FLOAT_EQ(t.orb_stars[0], 1.0f);
    EXPECT_TRUE(sink.messages.empty());

    // An aspect set option of "None" leaves no aspects after the refresh.
    ASSERT_EQ(set_option(s, "options", "aspect_set_charts", "None", sink), Outcome::ok);
    refresh_session_state(s, sink);
    EXPECT_EQ(s.option_sets.aspects.aspect_count, 0);
    EXPECT_TRUE(s.option_sets.aspects.orb_sun.empty());

    // The glyph is matched to the minute.
    EXPECT_EQ(aspect_glyph(51, 26), 203);
    EXPECT_EQ(aspect_glyph(51, 25), ' ');
    EXPECT_EQ(aspect_glyph(154, 17), 205);
    EXPECT_EQ(aspect_glyph(160, 0), 208);
}

TEST(AspectSets, AnUnreadableRowGivesTheMessageAndNoAspects) {
    ProgramFolder folder;
    with_option_file(folder, [](store::TableStore& db) {
        store::Recordset rs;
        ASSERT_EQ(db.open_recordset("aspects", rs), Outcome::ok);
        ASSERT_EQ(rs.set_index("aspect_set"), Outcome::ok);
        ASSERT_EQ(rs.seek("=", {Value("Major"), Value(90), Value(0)}), Outcome::ok);
        ASSERT_EQ(rs.edit(), Outcome::ok);
        ASSERT_EQ(rs.set("moon_mins", Value()), Outcome::ok);
        ASSERT_EQ(rs.update(), Outcome::ok);
    });
    Session s;
    ASSERT_TRUE(folder.start(s).started);
    RecordingSink sink;
    load_aspect_set(s, "Major", sink);
    EXPECT_EQ(s.option_sets.aspects.aspect_count, 0);
    EXPECT_TRUE(s.option_sets.aspects.angle.empty());
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0].title, "ERROR READING ASPECT SET");
    EXPECT_EQ(sink.messages[0].text, "Problem reading aspect set Major. Check that it is correct.");
}

TEST_F(OptionSession, PrintModeAndColourPrintingChooseTheColourSet) {
    struct Case {
        bool print_mode;
        int colour_printing;
        const char* loaded;
        std::int32_t ground;
    };
    const Case cases[] = {
        {false, -1, "Dark Screen", 0x400000},
        {true, -1, "Paper", 0xFFFFFF},
        {false, 0, "None", 0xFFFFFF}, // monochrome: the cleared set
        {false, -1, "Dark Screen", 0x400000},
    };
    for (const Case& c : cases) {
        s.chart.print_mode = c.print_mode;
        ASSERT_EQ(set_option(s, "option_name", "option_print_colour", c.colour_printing, sink),
                  Outcome::ok);
        load_active_colour_set(s, sink);
        EXPECT_EQ(s.option_sets.colours.name, c.loaded);
        EXPECT_EQ(colour_value(s.option_sets.colours, "chart_background"), c.ground);
    }
    EXPECT_EQ(colour_value(s.option_sets.colours, "Sagitarius_G"),
              colour_value(s.option_sets.colours, "sagitarius_g"));
    EXPECT_EQ(colour_value(s.option_sets.colours, "no_such_colour"), -1);
    EXPECT_FALSE(load_colour_set(s, "Pastel", sink));
    EXPECT_EQ(s.option_sets.colours.name, "Dark Screen");
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0].text, "Colour set: Pastel does not exist");
}

} // namespace
} // namespace celestark
