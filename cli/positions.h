#pragma once
// The positions and bench commands of celestark-cli.
#include <map>
#include <string>

namespace celestark {
struct Session;
}

namespace celestark::cli {

using Options = std::map<std::string, std::string>;

int command_positions(const Options& options);
int command_bench(const Options& options);

// Body name of a list entry by its glyph; `helio` names the Earth's entry.
std::string body_name(unsigned char glyph);

int fail(const std::string& message);

// A text as one CSV field, in double quotes (a quote inside doubled).
std::string csv_quoted(const std::string& text);

// Opens outer3.mdb and asteroid.mdb from the current directory, or from the data folder of the
// build the program runs from. Without them the table bodies are left out, with a warning.
bool attach_body_tables(Session& s);

} // namespace celestark::cli
