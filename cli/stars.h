#pragma once
// The star commands of celestark-cli.
#include <map>
#include <string>
#include <vector>

namespace celestark::cli {

// stars (--jd JD | --tt JDE | --tt-list FILE) [--actual] --names NAME,...: the apparent (or with
// --actual geometric) ecliptic longitude and latitude of date of catalogue stars by name, as CSV
// "jd_tt,star,lon_deg,lat_deg". stars.mdb is read from the current folder, or from the data
// folder of the build the program runs from.
int command_stars(const std::map<std::string, std::string>& options);

// build-stars FILE --source DIR: a new stars.mdb from the catalogue in DIR (replacing FILE).
int command_build_stars(const std::vector<std::string>& positional,
                        const std::map<std::string, std::string>& options);

} // namespace celestark::cli
