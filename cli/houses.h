#pragma once
// The houses command of celestark-cli: cusps, Ascendant and Midheaven from an ARMC, a latitude and
// an obliquity, with zodiac offset 0 and the plain wheel (normal direction, the Ascendant on the
// first cusp, normal type).
#include <map>
#include <string>

namespace celestark::cli {

// --armc DEG --lat DEG --eps DEG --system NAME [--polar NAME], or --list FILE of
// `armc,lat,eps,system` lines (further fields are ignored). NAME is a system text ("Placidus",
// "Asc. MC only") or one of the letters P K R C O E T X M.
int command_houses(const std::map<std::string, std::string>& options);

} // namespace celestark::cli
