// Helpers shared by the store tests: a scratch folder and small table builders.
#pragma once

#include "store/table_store.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace celestark::store::testing {

// A folder of its own under the system's temporary folder, removed with everything in it.
class ScratchDir {
  public:
    ScratchDir() {
        static std::atomic<int> counter{0};
        auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
        path_ = std::filesystem::temp_directory_path() /
                ("celestark_store_" + std::to_string(stamp) + "_" + std::to_string(++counter));
        std::filesystem::create_directories(path_);
    }
    ~ScratchDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    std::filesystem::path file(const std::string& name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

// Adds one row with the given fields and values through `rs`; the outcome of update().
inline Outcome add_row(Recordset& rs, const std::vector<std::pair<std::string, Value>>& cells) {
    if (Outcome o = rs.add_new(); o != Outcome::ok) return o;
    for (const auto& [field, value] : cells)
        if (Outcome o = rs.set(field, value); o != Outcome::ok) return o;
    return rs.update();
}

// The values of one field over the rows from the current one to the end of the table.
inline std::vector<Value> walk_forward(Recordset& rs, const std::string& field) {
    std::vector<Value> seen;
    while (rs.has_current()) {
        seen.push_back(rs.get(field));
        rs.move_next();
    }
    return seen;
}

} // namespace celestark::store::testing
