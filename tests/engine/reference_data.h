#pragma once
// Reads the reference positions of tests/data/bodies.csv.
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace celestark::testing {

struct ReferenceRow {
    double jd_tt = 0;
    std::string body, mode;
    double lon = 0, lat = 0, dist = 0;
};

inline std::vector<ReferenceRow> read_reference_bodies() {
    std::vector<ReferenceRow> rows;
    std::ifstream in(std::string(CELESTARK_TEST_DATA) + "/bodies.csv");
    std::string line;
    std::getline(in, line); // header
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        ReferenceRow r;
        std::string cell;
        std::getline(fields, cell, ',');
        r.jd_tt = std::stod(cell);
        std::getline(fields, r.body, ',');
        std::getline(fields, r.mode, ',');
        std::getline(fields, cell, ',');
        r.lon = std::stod(cell);
        std::getline(fields, cell, ',');
        r.lat = std::stod(cell);
        std::getline(fields, cell, ',');
        r.dist = std::stod(cell);
        rows.push_back(r);
    }
    return rows;
}

// Julian dates of 1 January of the years that bound the accuracy spans.
inline constexpr double jd_1800 = 2378496.5, jd_2200 = 2524593.5;

} // namespace celestark::testing
