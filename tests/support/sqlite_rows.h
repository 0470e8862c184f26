// The rows of an SQL query on a database file, for the tests that read what the program wrote
// with SQLite itself.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>
#include <vector>

namespace celestark::testing {

// Rows of an SQL query on a file, each cell as text.
inline std::vector<std::vector<std::string>> query(const std::filesystem::path& file,
                                                   const std::string& sql) {
    sqlite3* db = nullptr;
    std::vector<std::vector<std::string>> rows;
    EXPECT_EQ(sqlite3_open_v2(file.string().c_str(), &db, SQLITE_OPEN_READONLY, nullptr),
              SQLITE_OK);
    sqlite3_stmt* st = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(db, sql.c_str(), -1, &st, nullptr), SQLITE_OK) << sql;
    while (st && sqlite3_step(st) == SQLITE_ROW) {
        std::vector<std::string> row;
        for (int c = 0; c < sqlite3_column_count(st); ++c) {
            const unsigned char* t = sqlite3_column_text(st, c);
            row.push_back(t ? reinterpret_cast<const char*>(t) : "");
        }
        rows.push_back(row);
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
    return rows;
}

} // namespace celestark::testing
