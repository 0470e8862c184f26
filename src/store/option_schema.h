#pragma once
// The shape of option.mdb: five tables, their fields and indexes, the values that a null field of
// `option_name` takes (and is written back as), and what a null field of `options` is read as.
#include "session/colour_fields.h"
#include "store/store_types.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace celestark::store {

inline constexpr const char* option_file_name = "option.mdb";

inline constexpr const char* general_options_table = "option_name";
inline constexpr const char* chart_options_table = "options";
inline constexpr const char* zodiac_table = "zodiac";
inline constexpr const char* aspects_table = "aspects";
inline constexpr const char* colour_table = "colour";

inline constexpr const char* zodiac_index = "zodiac_name";
inline constexpr const char* aspect_index = "aspect_set";
inline constexpr const char* colour_index = "name_index";

// A flag as the option tables keep it: 16-bit, True is -1 and False is 0.
inline constexpr int option_true = -1;
inline constexpr int option_false = 0;

struct OptionTableDef {
    std::string name;
    std::vector<FieldDef> fields;
    std::vector<IndexDef> indexes;
};

// The five tables in the order a new file is built: option_name, options, zodiac, aspects, colour.
const std::vector<OptionTableDef>& option_tables();
// The definition of one of them by name (without regard to case), or nullptr.
const OptionTableDef* option_table(std::string_view name);

// A field of `option_name` or `options` with the value its null stands for. For `option_name` the
// value is written back into the row when the option screens are entered; fields without one
// (the event database in use, the listing tables) stay null until they are set.
struct OptionDefault {
    std::string_view field;
    std::optional<Value> value;
};
const std::vector<OptionDefault>& general_option_defaults();
// What a null field of `options` is read as (never written back).
const std::vector<OptionDefault>& chart_option_defaults();

// The 138 values of a colour set, in table order after `Name` and `display_or_printer`.
inline constexpr int colour_value_count = colour_field::count;
const std::array<std::string_view, colour_value_count>& colour_value_fields();
// Whether a colour value field holds a colour (false: a 16-bit choice such as `print_embryo`).
bool is_colour_field(std::string_view field);

} // namespace celestark::store
