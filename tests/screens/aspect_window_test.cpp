// Aspect sets in option.mdb: loading with the glyph match and its failure, and the aspects
// window's operations (chooser, list, pick, checks, save, new row, new set, delete, leave).
#include "../aspects/aspect_test_support.h"
#include "../store/program_folder.h"
#include "aspects/aspect_search.h"
#include "screens/aspect_window.h"
#include "session/fixed_tables.h"
#include "store/option_schema.h"
#include "store/option_sets.h"

#include <gtest/gtest.h>

namespace celestark {
namespace {

using store::Outcome;
using store::Value;
using testing::ProgramFolder;

// A window showing a valid new row of the set `name`.
AspectWindow septile_row(const char* name, const char* minutes) {
    AspectWindow w;
    w.aspect_set_name = name;
    aspect_new(w);
    w.angle_degs = "51";
    w.angle_mins = minutes;
    w.asp_digraph = "Sp";
    w.planets_degs = "2";
    w.changed = true;
    return w;
}

class AspectSets : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(folder.start(s).started); }
    ProgramFolder folder;
    Session s;
    RecordingSink sink;
};

TEST_F(AspectSets, TheSeptileAt51Degrees26MinutesHasItsGlyphAnd25MinutesNone) {
    // The septile takes no planets orb, so that 51 25 alone meets a pair at that angle.
    AspectWindow septile = septile_row("Sevens", "26");
    septile.planets_degs = "0";
    ASSERT_EQ(aspect_save(s, septile, sink), AspectSave::saved);
    AspectWindow other = septile_row("Sevens", "25");
    other.asp_digraph = "Sq";
    ASSERT_EQ(aspect_save(s, other, sink), AspectSave::saved);
    load_aspect_set(s, "Sevens", sink);
    const AspectTable& t = s.option_sets.aspects;
    ASSERT_EQ(t.aspect_count, 2);
    EXPECT_EQ(t.glyph[0], ' '); // 51 25, first in angle order
    EXPECT_EQ(t.glyph[1], 203);
    EXPECT_FLOAT_EQ(t.angle[1], 51.0f + 26.0f / 60.0f);
    EXPECT_FLOAT_EQ(t.orb_planets[0], 2.0f);
    // The blank-glyph angle works as an aspect all the same.
    const testing::Bodies bodies{{glyph::mars, 0.0}, {glyph::venus, 51.0 + 25.0 / 60.0}};
    AspectMatrix m;
    search_aspects(t, {bodies.radians.data(), bodies.glyphs.data(), 2}, {}, m);
    EXPECT_EQ(m.mark(1, 2, 1), " ");
    // A set stops where the next name starts, and a set of one row loads one.
    other = septile_row("Sevens2", "0");
    ASSERT_EQ(aspect_save(s, other, sink), AspectSave::saved);
    load_aspect_set(s, "Sevens", sink);
    EXPECT_EQ(s.option_sets.aspects.aspect_count, 2);
    load_aspect_set(s, "Sevens2", sink);
    EXPECT_EQ(s.option_sets.aspects.aspect_count, 1);
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(AspectSets, AFailedReadGivesTheMessageAndNoAspects) {
    // The aspects recordset on a table without the set index: the seek cannot be made.
    ASSERT_EQ(s.stores->option_db.open_recordset("zodiac", s.stores->aspects), Outcome::ok);
    load_aspect_set(s, "Standard", sink);
    EXPECT_EQ(s.option_sets.aspects.aspect_count, 0);
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0].title, "ERROR READING ASPECT SET");
    EXPECT_EQ(sink.messages[0].text,
              "Problem reading aspect set Standard. Check that it is correct.");
}

TEST_F(AspectSets, ChooserListAndPick) {
    EXPECT_EQ(aspect_edit_choices(s), (std::vector<std::string>{"Major", "Standard"}));
    AspectWindow w;
    aspect_edit(s, w, "Major");
    EXPECT_EQ(w.list_of_aspects,
              (std::vector<std::string>{"0:0", "60:0", "90:0", "120:0", "180:0"}));
    ASSERT_TRUE(aspect_pick(s, w, "90:0"));
    EXPECT_EQ(w.sun_degs, "8");
    EXPECT_EQ(w.elements_degs, "2");
    EXPECT_TRUE(w.aspectogram);
    EXPECT_FALSE(w.aspect_bookmark.empty());
    EXPECT_FALSE(aspect_pick(s, w, "91:0"));

    // An empty table offers the one line; a failing store is the fatal CK29.
    {
        store::Transaction work = s.stores->option_db.begin_transaction();
        store::Recordset& rs = s.stores->aspects;
        while (rs.move_first() == Outcome::ok) ASSERT_EQ(rs.delete_row(), Outcome::ok);
        EXPECT_EQ(aspect_edit_choices(s), std::vector<std::string>{"NO ASPECT SETS TO EDIT"});
    }
    s.stores->option_db.close();
    folder.fatal_titles.clear();
    folder.fatal_texts.clear();
    aspect_edit_choices(s);
    ASSERT_EQ(folder.fatal_titles.size(), 1u);
    EXPECT_EQ(folder.fatal_titles[0], "Fatal Error in EDIT ASPECT-GOT FOCUS");
    EXPECT_EQ(folder.fatal_texts[0].rfind("CK29-Error ", 0), 0u);
    EXPECT_TRUE(folder.fatal_texts[0].ends_with(". This is a fatal error. Please contact Ivan "
                                                "Marlow"));
}

TEST(AspectWindowChecks, StopAtTheFirstFaultInOrder) {
    using W = AspectWindow;
    // Each case spoils one or two fields of a valid row; the first fault in order is told.
    struct Case {
        std::string W::*field;
        const char* value;
        std::string W::*also; // a later field spoilt too, or null
        const char* focus;
        const char* line;
    };
    const Case cases[] = {
        {&W::aspect_set_name, "  ", &W::angle_degs, "aspect_set_name",
         "ASPECT SET NAME FIELD - Cannot be left blank or with only spaces"},
        {&W::angle_degs, " ", nullptr, "angle_degs",
         "ASPECT DEGREE ANGLE FIELD - Cannot be left blank or with only spaces"},
        {&W::angle_degs, "181", nullptr, "angle_degs",
         "ASPECT DEGREE ANGLE FIELD - Invalid entry - Must be between 0 and 180 inclusive"},
        {&W::angle_mins, "", nullptr, "angle_mins",
         "ASPECT MINUTE ANGLE FIELD - Cannot be left blank or with only spaces"},
        {&W::angle_mins, "60", &W::asp_digraph, "angle_mins",
         "ASPECT MINUTE ANGLE FIELD - Invalid entry - Must be between 0 and 59 inclusive"},
        {&W::asp_digraph, "S", nullptr, "asp_digraph", "DIGRAPH FIELD - Must contain 2 letters"},
        {&W::asp_digraph, "Sep", nullptr, "asp_digraph", "DIGRAPH FIELD - Must contain 2 letters"},
        {&W::sun_degs, "46", &W::moon_degs, "sun_degs",
         "DEGREE ORB FOR SUN - Must be a number between 0 and 45"},
        {&W::moon_degs, "-1", nullptr, "moon_degs",
         "DEGREE ORB FOR MOON - Must be a number between 0 and 45"},
        {&W::planets_degs, "2.5", nullptr, "planets_degs",
         "DEGREE ORB FOR THE PLANETS - Must be a number between 0 and 45"},
        {&W::stars_degs, "", &W::elements_degs, "stars_degs",
         "DEGREE ORB FOR THE  STARS - Must be a number between 0 and 45"},
        {&W::elements_degs, "x", &W::sun_mins, "elements_degs",
         "DEGREE ORB FOR THE ELEMENTS - Must be a number between 0 and 45"},
        {&W::sun_mins, "60", nullptr, "sun_mins",
         "ORB FOR SUN (MINUTES) - Must be a number between 0 and 59"},
        {&W::moon_mins, "", nullptr, "moon_mins",
         "ORB FOR MOON (MINUTES) - Must be a number between 0 and 59"},
        {&W::planets_mins, "61", nullptr, "planets_mins",
         "ORB FOR THE PLANETS (MINUTES) - Must be a number between 0 and 59"},
        {&W::stars_mins, "-5", &W::elements_mins, "stars_mins",
         "ORB FOR THE STARS (MINUTES) - Must be a number between 0 and 59"},
        {&W::elements_mins, "a", nullptr, "elements_mins",
         "ORB FOR THE ELEMENTS (MINUTES) - Must be a number between 0 and 59"},
    };
    for (const Case& c : cases) {
        AspectWindow w = septile_row("Sevens", "26");
        w.*c.field = c.value;
        if (c.also) w.*c.also = "999";
        RecordingSink sink;
        const AspectCheck check = check_aspect_window(w, sink);
        EXPECT_FALSE(check.ok) << c.line;
        EXPECT_EQ(check.field, c.focus) << c.line;
        EXPECT_EQ(sink.input_errors, std::vector<std::string>{c.line});
    }
    RecordingSink sink;
    EXPECT_TRUE(check_aspect_window(septile_row("Sevens", "26"), sink).ok);
    EXPECT_TRUE(sink.input_errors.empty());
}

TEST_F(AspectSets, SaveEditsAtTheBookmarkOrAddsAndNewSetsNeedANewName) {
    AspectWindow w;
    aspect_edit(s, w, "Major");
    // A new row joins the set and the list; its bookmark is kept.
    aspect_new(w);
    EXPECT_EQ(w.sun_mins, "0");
    EXPECT_EQ(w.asp_digraph, "");
    w.angle_degs = "150";
    w.asp_digraph = "Qx";
    ASSERT_EQ(aspect_save(s, w, sink), AspectSave::saved);
    EXPECT_EQ(w.list_of_aspects.size(), 6u);
    EXPECT_EQ(w.list_of_aspects[4], "150:0");
    EXPECT_FALSE(w.aspect_bookmark.empty());
    // The same angle twice in a set is refused by the store.
    aspect_new(w);
    w.angle_degs = "150";
    w.asp_digraph = "Qx";
    EXPECT_EQ(aspect_save(s, w, sink), AspectSave::failed);

    // A new set under a stored name is warned of and not saved; under a new name it is.
    aspect_new_set(w);
    EXPECT_TRUE(w.list_of_aspects.empty());
    w.aspect_set_name = "Standard";
    EXPECT_FALSE(aspect_name_left(s, w, sink));
    EXPECT_EQ(sink.messages.back().title, "DUPLICATE ASPECT SET NAME");
    EXPECT_EQ(sink.messages.back().text,
              "This aspect will not be saved\nTo save it you must first change its name");
    aspect_new(w);
    w.asp_digraph = "Cj";
    EXPECT_EQ(aspect_save(s, w, sink), AspectSave::duplicate_name);
    w.aspect_set_name = "Minor";
    EXPECT_TRUE(aspect_name_left(s, w, sink));
    ASSERT_EQ(aspect_save(s, w, sink), AspectSave::saved);
    EXPECT_EQ(aspect_edit_choices(s), (std::vector<std::string>{"Major", "Minor", "Standard"}));
}

TEST_F(AspectSets, DeleteAsksAndLeaveOffersTheSave) {
    AspectWindow w;
    aspect_edit(s, w, "Major");
    EXPECT_EQ(aspect_delete(s, w, sink), AspectDelete::no_row);
    ASSERT_TRUE(aspect_pick(s, w, "120:0"));
    sink.answers = {false, true};
    EXPECT_EQ(aspect_delete(s, w, sink), AspectDelete::declined);
    EXPECT_EQ(aspect_delete(s, w, sink), AspectDelete::deleted);
    ASSERT_EQ(sink.questions.size(), 2u);
    EXPECT_EQ(sink.questions[0].title, "DELETE ASPECT ?");
    EXPECT_EQ(sink.questions[0].text, "Are you sure you want to delete this Aspect");
    EXPECT_EQ(w.list_of_aspects, (std::vector<std::string>{"0:0", "60:0", "90:0", "180:0"}));
    EXPECT_TRUE(w.aspect_bookmark.empty());

    // Leaving with changes: No drops them, Yes saves, a refused save keeps the row.
    ASSERT_TRUE(aspect_pick(s, w, "90:0"));
    EXPECT_TRUE(aspect_leave(s, w, sink)); // nothing pending: no question
    EXPECT_EQ(sink.questions.size(), 2u);
    w.changed = true;
    w.sun_degs = "50";
    sink.answers = {true, false, true};
    EXPECT_FALSE(aspect_leave(s, w, sink));
    EXPECT_EQ(sink.questions.back().title, "ASPECT HAS CHANGED!");
    EXPECT_EQ(sink.questions.back().text, "Aspect has changed. Do you want to save it ?");
    EXPECT_TRUE(aspect_leave(s, w, sink));
    EXPECT_FALSE(w.changed);
    w.changed = true;
    w.sun_degs = "11";
    EXPECT_TRUE(aspect_leave(s, w, sink));
    load_aspect_set(s, "Major", sink);
    EXPECT_FLOAT_EQ(s.option_sets.aspects.orb_sun[2], 11.0f);
}

} // namespace
} // namespace celestark
