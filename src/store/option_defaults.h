#pragma once
// A new option.mdb is built from a readable text of its first rows (data/options/first_rows.txt,
// built into the program). The text is a list of blocks:
//
//   [row TABLE]     one row: lines "field = value"
//   [rows TABLE]    several rows: a header line "field | field | ...", then one line a row
//   [colours]       names for colours: lines "name = #RRGGBB"
//
// Lines starting with "#" and blank lines are skipped. A value is the text with the blanks around
// it dropped; a value in double quotes is taken as it stands (" " is one blank). Flags are written
// True or False (stored -1 and 0). A colour is written #RRGGBB or by a name of the [colours]
// block, and stored as 0x00BBGGRR. A field that is not given stays null.
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace celestark::store {

// The text of the standard first rows, as built into the program.
std::string_view standard_option_source();

struct SourceRow {
    std::string table;
    std::vector<std::pair<std::string, std::string>> cells; // field, value as written
    int line = 0;                                           // where the row starts
};

struct OptionSource {
    std::vector<SourceRow> rows;
    std::map<std::string, std::string> colour_names; // name -> "#RRGGBB"
};

// Reads the text into rows. False with a message naming the line when the text is not well formed.
bool parse_option_source(std::string_view text, OptionSource& out, std::string& error);

// A colour written "#RRGGBB" as the stored 0x00BBGGRR; false when the text is not such a colour.
bool parse_colour(std::string_view text, long& bgr);

// Builds a new option.mdb at `file` from the text: the five tables with their indexes, then the
// rows. The file is written beside the target under a temporary name and moved into place only
// when complete, so a failure or an interrupted build never leaves a partial file; an existing
// file is replaced. False with a message on any fault of the text or the file.
bool build_option_database(const std::filesystem::path& file, std::string_view source,
                           std::string& error);

} // namespace celestark::store
