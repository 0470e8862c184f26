#pragma once
// The rows of a reference table in tests/data: comma-separated cells without quoting, the header
// line left out, each row padded or cut to `columns` cells.
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace celestark::testing {

inline std::vector<std::vector<std::string>> csv_rows(const std::string& name,
                                                      std::size_t columns) {
    std::vector<std::vector<std::string>> rows;
    std::ifstream in(std::string(CELESTARK_TEST_DATA) + "/" + name);
    std::string line;
    std::getline(in, line); // header
    while (std::getline(in, line)) {
        std::vector<std::string> cells;
        std::istringstream fields(line);
        for (std::string cell; std::getline(fields, cell, ',');) cells.push_back(cell);
        cells.resize(columns);
        rows.push_back(std::move(cells));
    }
    return rows;
}

} // namespace celestark::testing
