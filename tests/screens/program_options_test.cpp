// The display and print options: every control against the option row it writes, the line
// widths, and the session values that follow a change.
#include "../store/program_folder.h"
#include "screens/program_options.h"
#include "store/option_store.h"

#include <gtest/gtest.h>

#include <set>

namespace celestark::testing {
namespace {

class ProgramOptions : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(folder.start(s).started); }
    std::int64_t stored(const char* table, const char* field) {
        return read_option(s, table, field).as_int();
    }
    ProgramFolder folder;
    Session s;
};

// Each button, clicked, writes its value; read back, the states show it checked and every other
// button of its field clear.
TEST_F(ProgramOptions, EveryOptionButtonWritesItsValueAndShowsAlone) {
    for (const OptionButton& b : option_buttons()) {
        ASSERT_TRUE(choose_option_button(s, b, folder.sink)) << b.control;
        EXPECT_EQ(stored(b.table, b.field), b.value) << b.control;
        const OptionControlStates states = program_options_states(s, folder.sink);
        for (const OptionButton& other : option_buttons()) {
            if (std::string(other.field) != b.field) continue;
            EXPECT_EQ(states.checked.at(other.control), other.control == b.control)
                << b.control << " / " << other.control;
        }
    }
    EXPECT_TRUE(folder.sink.messages.empty());
}

// Every control name is used once.
TEST_F(ProgramOptions, ControlNamesAreUnique) {
    std::set<std::string> names;
    for (const OptionButton& b : option_buttons()) EXPECT_TRUE(names.insert(b.control).second);
    for (const OptionCheck& c : option_checks()) EXPECT_TRUE(names.insert(c.control).second);
    for (const OptionText& t : option_texts()) EXPECT_TRUE(names.insert(t.control).second);
}

// Check boxes: True/False fields store -1, the body boxes their own 1; unticked is 0.
TEST_F(ProgramOptions, CheckBoxesStoreFlagsOrOnes) {
    for (const OptionCheck& c : option_checks()) {
        ASSERT_TRUE(tick_option_check(s, c, true, folder.sink)) << c.control;
        EXPECT_EQ(stored(c.table, c.field), c.flag ? -1 : 1) << c.control;
        EXPECT_TRUE(program_options_states(s, folder.sink).checked.at(c.control)) << c.control;
        ASSERT_TRUE(tick_option_check(s, c, false, folder.sink)) << c.control;
        EXPECT_EQ(stored(c.table, c.field), 0) << c.control;
    }
    EXPECT_FALSE(find_option_check("opt_chiron")->flag);
    EXPECT_TRUE(find_option_check("exclude_mc")->flag);
}

// The session values follow the stored row at once.
TEST_F(ProgramOptions, TheSessionTakesTheChangeAtOnce) {
    choose_option_button(s, *find_option_button("def_opt_save_always"), folder.sink);
    EXPECT_EQ(s.options.option_save_chart, 0);
    choose_option_button(s, *find_option_button("actual_pos"), folder.sink);
    EXPECT_TRUE(s.options.actual_position);
    tick_option_check(s, *find_option_check("exclude_asc"), true, folder.sink);
    EXPECT_TRUE(s.options.exclude_ascendant);
    // Black and white printing takes the colour set "None".
    choose_option_button(s, *find_option_button("def_opt_bw"), folder.sink);
    EXPECT_EQ(s.option_sets.colours.name, "None");
    choose_option_button(s, *find_option_button("def_opt_colour"), folder.sink);
    EXPECT_NE(s.option_sets.colours.name, "None");
}

TEST_F(ProgramOptions, LineWidthsOutsideOneToTenAreRefused) {
    struct Case {
        const char* control;
        const char* typed;
        bool stored;
    };
    const Case cases[] = {
        {"def_opt_screen_line_width", "0", false},    {"def_opt_screen_line_width", "11", false},
        {"def_opt_screen_line_width", "1", true},     {"def_opt_screen_line_width", "10", true},
        {"def_opt_screen_line_width", "2.5", false},  {"def_opt_printer_line_width", "11", false},
        {"def_opt_printer_line_width", " 10 ", true}, {"def_opt_printer_line_width", "x", false}};
    for (const Case& c : cases) {
        const OptionText& t = *find_option_text(c.control);
        const std::int64_t before = stored("option_name", t.field);
        folder.sink.messages.clear();
        const OptionTextResult r = leave_option_text(s, t, c.typed, folder.sink);
        if (c.stored) {
            EXPECT_EQ(r, OptionTextResult::stored) << c.control << " " << c.typed;
            EXPECT_EQ(stored("option_name", t.field), std::stoi(c.typed));
            EXPECT_TRUE(folder.sink.messages.empty());
            continue;
        }
        EXPECT_EQ(r, OptionTextResult::refused) << c.control << " " << c.typed;
        EXPECT_EQ(stored("option_name", t.field), before) << c.control << " " << c.typed;
        ASSERT_EQ(folder.sink.messages.size(), 1u);
        const bool screen = std::string(c.control) == "def_opt_screen_line_width";
        EXPECT_EQ(folder.sink.messages[0].title,
                  screen ? "SCREEN LINE WIDTH ERROR" : "PRINTER LINE WIDTH ERROR");
        EXPECT_EQ(folder.sink.messages[0].text,
                  screen ? "Screen line width must be between 1 and 10"
                         : "Printer line width must be between 1 and 10");
    }
}

TEST_F(ProgramOptions, TextFieldsAreStoredAndAnEmptyOneAsABlank) {
    const OptionText& name = *find_option_text("def_opt_user_name");
    EXPECT_EQ(leave_option_text(s, name, "Jane Doe", folder.sink), OptionTextResult::stored);
    EXPECT_EQ(read_option(s, "option_name", "user_name").as_text(), "Jane Doe");
    EXPECT_EQ(program_options_states(s, folder.sink).texts.at("def_opt_user_name"), "Jane Doe");
    const OptionText& tel = *find_option_text("def_opt_tel");
    EXPECT_EQ(leave_option_text(s, tel, "", folder.sink), OptionTextResult::stored);
    EXPECT_EQ(read_option(s, "option_name", "tel").as_text(), " ");
    // Longer than the stored field: refused by the store, with a box, and nothing half-written.
    EXPECT_EQ(leave_option_text(s, name, std::string(200, 'x'), folder.sink),
              OptionTextResult::failed);
    EXPECT_FALSE(folder.sink.messages.empty());
    EXPECT_EQ(read_option(s, "option_name", "user_name").as_text(), "Jane Doe");
}

// Entering the screen repairs an old row's nulls and shows the defaults.
TEST_F(ProgramOptions, NullsShowTheirDefaults) {
    ASSERT_EQ(set_option(s, "option_name", "option_screen_line_width", store::Value(), folder.sink),
              store::Outcome::ok);
    ASSERT_EQ(set_option(s, "option_name", "option_clock_format", store::Value(), folder.sink),
              store::Outcome::ok);
    const OptionControlStates states = program_options_states(s, folder.sink);
    EXPECT_EQ(states.texts.at("def_opt_screen_line_width"), "1");
    EXPECT_TRUE(states.checked.at("def_opt_clock_12"));
    EXPECT_FALSE(states.checked.at("def_opt_clock_24"));
    EXPECT_EQ(stored("option_name", "option_screen_line_width"), 1);
}

} // namespace
} // namespace celestark::testing
