#pragma once
// The predict command of celestark-cli: a transit, biography or progression run of a stored or
// inline event, its hits as CSV rows in report order, and its report pages as PDF.
#include <map>
#include <string>

namespace celestark::cli {

// predict --mode T|B|P [--from YYYY-MM-DD] [--to YYYY-MM-DD] [--aspect-set NAME] [--zone ZONE]
// [--set NAME=VALUE,...] [--report FILE.pdf] with the event options of render.
int command_predict(const std::map<std::string, std::string>& options);

} // namespace celestark::cli
