// The zodiac window's moves around its row: locks, the question on leaving, the date hint.
#include "../store/program_folder.h"
#include "screens/option_set_screens.h"
#include "store/option_store.h"

#include <gtest/gtest.h>

namespace celestark::testing {
namespace {

class ZodiacScreen : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(folder.start(s).started); }
    ZodiacWindow stored(const char* name) { return zodiac_to_window(s, zodiac_bookmark(s, name)); }
    ProgramFolder folder;
    Session s;
};

// The name and delete are locked for the standard zodiac and for one the options use, by the
// name it is stored under.
TEST_F(ZodiacScreen, TheStandardZodiacAndOneInUseAreLocked) {
    EXPECT_TRUE(zodiac_window_parts(s, stored("Sidereal SVP")).name_locked);
    ZodiacWindow spica = stored("Sidereal Spica");
    EXPECT_FALSE(zodiac_window_parts(s, spica).name_locked);
    ASSERT_EQ(
        set_option(s, "options", "zodiac_ephemeris", store::Value("Sidereal Spica"), folder.sink),
        store::Outcome::ok);
    EXPECT_TRUE(zodiac_window_parts(s, spica).name_locked);
    spica.z_name = "Renamed while typing";
    EXPECT_TRUE(zodiac_window_parts(s, spica).name_locked);
    // A new zodiac typed under a name in use is not locked: it is not stored yet.
    ZodiacWindow fresh = new_zodiac_window();
    fresh.z_name = "Sidereal Spica";
    EXPECT_FALSE(zodiac_window_parts(s, fresh).name_locked);
}

TEST_F(ZodiacScreen, LeavingAChangedZodiacAsksAndARefusedSaveStays) {
    ZodiacWindow w = new_zodiac_window();
    w.z_name = "Regulus Zero";
    w.z_star = "Regulus";
    // Yes with a fault: the error list shows and the window stays on the zodiac.
    w.changed = true;
    w.z_deg = "200";
    folder.sink.answers = {true};
    EXPECT_FALSE(zodiac_leave(s, w, folder.sink));
    EXPECT_EQ(folder.sink.input_errors.back(),
              "DEGREES OF LONGITUDE - Invalid entry - Must be a number between 0 and 180");
    std::string focus;
    EXPECT_EQ(zodiac_window_save(s, w, folder.sink, &focus), ZodiacSave::invalid);
    EXPECT_EQ(focus, "z_deg");

    w.z_deg = "0";
    folder.sink.answers = {true};
    EXPECT_TRUE(zodiac_leave(s, w, folder.sink));
    EXPECT_EQ(stored("Regulus Zero").z_star, "Regulus");
}

TEST_F(ZodiacScreen, LightChecksAndTheDateHint) {
    for (const char* bad : {"", "star", "Planet"}) {
        EXPECT_FALSE(zodiac_defined_left(bad, folder.sink)) << bad;
        EXPECT_EQ(folder.sink.messages.back().text, "Only 'Epoch' and 'Star' are valid entries");
        EXPECT_FALSE(zodiac_constellation_left(bad, folder.sink)) << bad;
        EXPECT_EQ(folder.sink.messages.back().text, "Only 'Equal' and 'Unequal' are valid entries");
    }
    EXPECT_TRUE(zodiac_defined_left(" Epoch ", folder.sink));
    EXPECT_TRUE(zodiac_constellation_left("Unequal", folder.sink));

    set_option(s, "option_name", "option_date_format", store::Value(false), folder.sink);
    EXPECT_EQ(zodiac_date_hint(s), " mm    dd     yyyy        G/J");
}

} // namespace
} // namespace celestark::testing
