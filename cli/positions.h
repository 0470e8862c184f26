#pragma once
// The positions and bench commands of celestark-cli.
#include <map>
#include <string>

namespace celestark::cli {

using Options = std::map<std::string, std::string>;

int command_positions(const Options& options);
int command_bench(const Options& options);

// Body name of a list entry by its glyph; `helio` names the Earth's entry.
std::string body_name(unsigned char glyph);

int fail(const std::string& message);

} // namespace celestark::cli
