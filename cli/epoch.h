#pragma once
// `celestark-cli epoch`: the prenatal epoch of a stored or inline birth, a CSV row for each line
// of the epoch window.
#include <map>
#include <string>

namespace celestark::cli {

int command_epoch(const std::map<std::string, std::string>& options);

} // namespace celestark::cli
