// The COLOURS window's operations on the colour sets of option.mdb.
#include "../store/program_folder.h"

#include "screens/colour_window.h"
#include "session/colour_fields.h"

namespace celestark::testing {
namespace {

class ColourWindows : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    void SetUp() override { ASSERT_TRUE(folder.start(s).started); }
    ColourWindow window(const std::string& name) {
        auto w = colour_set_to_window(s, name);
        EXPECT_TRUE(w.has_value()) << name;
        return w.value_or(ColourWindow{});
    }
};

TEST_F(ColourWindows, SaveChecksTheNameAndRefusesATakenOne) {
    ColourWindow w = window("Paper");
    for (const char* bad : {"None", "", "   "}) {
        w.name = bad;
        EXPECT_EQ(save_colour_set(s, w, folder.sink), ColourSave::bad_name) << bad;
    }
    EXPECT_EQ(folder.sink.messages.back().text,
              "COLOUR SET MUST HAVE VALID NAME - Cannot be 'None',left blank or with only spaces");
    // A new set of the current values under a name that is taken is not saved...
    new_colour_set(s, w, folder.sink);
    EXPECT_TRUE(w.name.empty());
    w.name = "Dark Screen";
    EXPECT_EQ(save_colour_set(s, w, folder.sink), ColourSave::duplicate_name);
    EXPECT_EQ(folder.sink.messages.back().title, "DUPLICATE COLOUR SET NAME");
    // ...under a new name it is, and reads back with its colours.
    w.name = "Paper copy";
    choose_swatch(w, colour_field::sun, 0x0000FF);
    EXPECT_EQ(save_colour_set(s, w, folder.sink), ColourSave::saved);
    EXPECT_FALSE(w.changed);
    EXPECT_EQ(window("Paper copy").values[colour_field::sun], 0x0000FF);
    EXPECT_EQ(colour_set_list(s).size(), 3u);
}

// Moving on from a changed set asks first; No leaves the stored set as it was, Yes stores it.
TEST_F(ColourWindows, ChangesAreOfferedForSavingBeforeMovingOn) {
    ColourWindow w = window("Paper");
    const std::int32_t stored = w.values[colour_field::venus];
    choose_swatch(w, colour_field::venus, 0x123456);
    folder.sink.answers = {false};
    EXPECT_TRUE(pick_colour_set(s, w, "Dark Screen", folder.sink));
    EXPECT_EQ(folder.sink.questions.back().title, "SAVE ANY CHANGES TO COLOUR SET?");
    EXPECT_EQ(window("Paper").values[colour_field::venus], stored);

    w = window("Paper");
    choose_swatch(w, colour_field::venus, 0x123456);
    folder.sink.answers = {true};
    EXPECT_TRUE(exit_colour_window(s, w, folder.sink));
    EXPECT_EQ(window("Paper").values[colour_field::venus], 0x123456);
}

TEST_F(ColourWindows, DeleteAsksFirst) {
    EXPECT_FALSE(colour_set_to_window(s, "No Such Set").has_value());
    ColourWindow w = window("Paper");
    folder.sink.answers = {false, true};
    EXPECT_EQ(delete_colour_set(s, w, folder.sink), ColourDelete::declined);
    EXPECT_EQ(folder.sink.questions.back().title, "DELETE COLOUR SET ?");
    EXPECT_EQ(delete_colour_set(s, w, folder.sink), ColourDelete::deleted);
    EXPECT_EQ(colour_set_list(s), (std::vector<std::string>{"Dark Screen"}));
}

} // namespace
} // namespace celestark::testing
