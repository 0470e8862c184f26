#include "../store/program_folder.h"
#include "screens/zodiac_window.h"
#include "store/option_store.h"

#include <gtest/gtest.h>

namespace celestark::testing {
namespace {

ZodiacWindow star_zodiac(const char* name) {
    ZodiacWindow w;
    w.z_name = name;
    w.z_defined = "Star";
    w.z_constellation = "Equal";
    w.z_star = "Regulus";
    w.z_deg = "150";
    w.z_min = "0";
    w.z_sec = "0";
    return w;
}

TEST(ZodiacWindow, ChecksStopAtTheFirstFaultInOrder) {
    using W = ZodiacWindow;
    struct Case {
        std::vector<std::pair<std::string W::*, const char*>> edits;
        const char* field;
        const char* first_line;
    };
    const auto epoch = [](const char* day, const char* month, const char* year, const char* gj) {
        return std::vector<std::pair<std::string W::*, const char*>>{{&W::z_defined, "Epoch"},
                                                                     {&W::z_day, day},
                                                                     {&W::z_month, month},
                                                                     {&W::z_year, year},
                                                                     {&W::z_gj, gj}};
    };
    const Case cases[] = {
        {{{&W::z_defined, "  "}},
         "z_defined",
         "ZODIAC DEFINED BY FIELD - Cannot be left blank or with only spaces"},
        {{{&W::z_defined, "Planet"}, {&W::z_name, ""}},
         "z_defined",
         "ZODIAC can only be DEFINED by either 'Star' or 'Epoch'"},
        {{{&W::z_constellation, ""}},
         "z_constellation",
         "CONSTELLATION type field - Cannot be left blank or with only spaces"},
        {{{&W::z_constellation, "Odd"}},
         "z_constellation",
         "CONSTELLATION TYPE can only be 'Equal' or 'Unequal'"},
        {{{&W::z_name, " "}, {&W::z_deg, "x"}},
         "z_name",
         "ZODIAC NAME - Cannot be left blank or with only spaces"},
        {{{&W::z_deg, "181"}},
         "z_deg",
         "DEGREES OF LONGITUDE - Invalid entry - Must be a number between 0 and 180"},
        {{{&W::z_min, "60"}},
         "z_min",
         "MINUTES OF LONGITUDE - Invalid entry - Must be a number between 0 and 59"},
        {{{&W::z_sec, "4.5"}},
         "z_sec",
         "SECONDS OF LONGITUDE - Invalid entry - Must be a number between 0 and 59"},
        {{{&W::z_star, ""}},
         "z_star",
         "STAR NAME FIELD - Cannot be left blank or with only spaces"},
        {{{&W::z_star, "Sirius"}},
         "z_star",
         "Illegal star name. Only those in the drop down list are valid"},
        {epoch("32", "", "", ""), "z_day", "DAY OF THE MONTH -  Invalid entry"},
        {epoch("1", "0", "", ""), "z_month", "MONTH OF THE YEAR - Invalid entry"},
        {epoch("1", "2", "", ""), "z_year", "YEAR - Cannot be left blank or with only spaces "},
        {epoch("1", "2", "-35", "X"), "z_gj",
         "GREGORIAN/JULIAN DATE - 'G' or 'J' are the only valid entries"},
        {epoch("29", "2", "1900", "G"), "z_day", "DATE - Invalid number of days for the month"},
        {{{&W::z_constellation, "Unequal"}},
         "z_mins",
         "CANCER MINUTES - Cannot be left blank or with only spaces"},
        {{{&W::z_constellation, "Unequal"}},
         "z_degs",
         "PISCES DEGREES - Cannot be left blank or with only spaces"},
    };
    for (const Case& c : cases) {
        ZodiacWindow w = star_zodiac("Mine");
        for (const auto& [field, text] : c.edits) w.*field = text;
        // The boundaries of an unequal zodiac, one of them blank.
        w.z_degs.fill("0");
        w.z_mins.fill("0");
        if (std::string(c.field) == "z_mins") w.z_mins[3] = " ";
        if (std::string(c.field) == "z_degs") w.z_degs[11] = "";
        RecordingSink sink;
        const ZodiacCheck check = check_zodiac_window(w, sink);
        EXPECT_FALSE(check.ok) << c.first_line;
        EXPECT_EQ(check.field, c.field) << c.first_line;
        ASSERT_FALSE(sink.input_errors.empty()) << c.first_line;
        EXPECT_EQ(sink.input_errors[0], c.first_line);
    }
    // The year's fault brings its two hint lines; 29 February 1900 is fine on the Julian calendar.
    ZodiacWindow w = star_zodiac("Mine");
    for (const auto& [field, text] : epoch("29", "2", "1900", "J")) w.*field = text;
    RecordingSink sink;
    EXPECT_TRUE(check_zodiac_window(w, sink).ok);
    EXPECT_EQ(w.z_star, " ");
    EXPECT_EQ(w.z_degs[5], "0");
    w.z_year = "";
    EXPECT_EQ(check_zodiac_window(w, sink).messages.size(), 3u);
    // A star zodiac has its date set to nothing.
    ZodiacWindow star = star_zodiac("Mine");
    star.z_day = "5";
    EXPECT_TRUE(check_zodiac_window(star, sink).ok);
    EXPECT_EQ(star.z_day + star.z_month + star.z_year + star.z_gj, "000G");
}

TEST(ZodiacWindow, SaveDeleteAndTheStandardZodiac) {
    ProgramFolder folder;
    Session s;
    ASSERT_TRUE(folder.start(s).started);
    RecordingSink sink;
    const auto names = [&] { return zodiac_list(s); };
    const std::size_t before = names().size();

    ZodiacWindow w = star_zodiac("Sidereal Regulus");
    EXPECT_EQ(save_zodiac(s, w, sink), ZodiacSave::saved);
    EXPECT_FALSE(w.bookmark.empty());
    EXPECT_EQ(names().size(), before + 1);
    // Edit at the bookmark: the row changes, the count does not.
    w.z_deg = "151";
    EXPECT_EQ(save_zodiac(s, w, sink), ZodiacSave::saved);
    EXPECT_EQ(names().size(), before + 1);
    EXPECT_EQ(zodiac_to_window(s, w.bookmark).z_deg, "151");
    // A new zodiac with a name that exists is refused.
    ZodiacWindow again = star_zodiac("Sidereal Regulus");
    EXPECT_EQ(save_zodiac(s, again, sink), ZodiacSave::duplicate_name);
    EXPECT_EQ(sink.messages.back().title, "DUPLICATE ZODIAC NAME");
    EXPECT_TRUE(again.bookmark.empty());

    // The standard sidereal zodiac is never deleted, one in use neither, the rest after a Yes.
    ZodiacWindow svp = star_zodiac(standard_sidereal_zodiac);
    EXPECT_EQ(delete_zodiac(s, svp, sink), ZodiacDelete::standard_zodiac);
    EXPECT_EQ(sink.messages.back().text, "You can't delete the standard sidereal zodiac");
    ASSERT_EQ(set_option(s, "options", "zodiac", store::Value("Sidereal Regulus"), sink),
              store::Outcome::ok);
    EXPECT_EQ(delete_zodiac(s, w, sink), ZodiacDelete::in_use);
    ASSERT_EQ(set_option(s, "options", "zodiac", store::Value("Tropical"), sink),
              store::Outcome::ok);
    sink.answers = {false, true};
    EXPECT_EQ(delete_zodiac(s, w, sink), ZodiacDelete::declined);
    EXPECT_EQ(sink.questions.back().title, "DELETE ZODIAC ?");
    EXPECT_EQ(delete_zodiac(s, w, sink), ZodiacDelete::deleted);
    EXPECT_EQ(names().size(), before);
}

} // namespace
} // namespace celestark::testing
