#pragma once
// `celestark-cli epoch`: the prenatal epoch of a stored or inline birth, a CSV row for each line
// of the epoch window.
#include <map>
#include <string>

namespace celestark {
struct Session;
}

namespace celestark::cli {

// The epoch settings for the event in `slot`: the months and their kind stored with it, or those
// of --months and --month; the epoch place of --epoch-lat, --epoch-lon (and --epoch-place), or
// the birth's. The birth goes to work row 5 ready for calculate_epoch. False with the reason.
bool prepare_epoch(const std::map<std::string, std::string>& options, Session& s, int slot,
                   std::string& error);

int command_epoch(const std::map<std::string, std::string>& options);

} // namespace celestark::cli
