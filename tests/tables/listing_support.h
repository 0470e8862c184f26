// Event tables for the listing tests: a database of the program folder with a table of events,
// and the options that make it listing table 1.
#pragma once

#include "session/calendar.h"
#include "session/event.h"
#include "session/messages.h"
#include "store/event_schema.h"
#include "store/option_store.h"
#include "store/table_store.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace celestark::testing {

using RowCells = std::vector<std::pair<int, std::string>>;

// An event at a moment of Universal Time, at Greenwich, named by its surname.
inline RowCells event_at(const std::string& surname, double jd_ut) {
    const CivilDate d = date_from_julian(jd_ut, "G");
    const double day = std::floor(d.day);
    const long seconds = std::lround((d.day - day) * 86400.0);
    return {{col::surname, surname},
            {col::firstname, "Test"},
            {col::event, "Birth"},
            {col::day, std::to_string(static_cast<int>(day))},
            {col::month, std::to_string(d.month)},
            {col::year, std::to_string(d.year)},
            {col::hours, std::to_string(seconds / 3600)},
            {col::mins, std::to_string(seconds / 60 % 60)},
            {col::secs, std::to_string(seconds % 60)},
            {col::time_zone, "GMT"},
            {col::lz, "Z"},
            {col::lat_deg, "51"},
            {col::lat_ns, "N"},
            {col::long_deg, "0"},
            {col::long_ew, "W"}};
}

// Makes `file` with the event table `table` holding the rows, in the order given.
inline void make_event_table(const std::filesystem::path& file, const std::string& table,
                             const std::vector<RowCells>& rows) {
    store::TableStore db;
    if (!std::filesystem::exists(file)) {
        ASSERT_EQ(db.create(file), store::Outcome::ok);
    } else {
        ASSERT_EQ(db.open(file), store::Outcome::ok);
    }
    ASSERT_EQ(db.create_table(table, store::event_table_fields(), store::event_table_indexes()),
              store::Outcome::ok);
    store::Recordset rs;
    ASSERT_EQ(db.open_recordset(table, rs), store::Outcome::ok);
    store::Transaction work = db.begin_transaction();
    for (const RowCells& row : rows) {
        ASSERT_EQ(rs.add_new(), store::Outcome::ok);
        for (const auto& [column, text] : row)
            rs.set(std::string(event_columns_table[static_cast<std::size_t>(column)].field),
                   store::Value(text));
        ASSERT_EQ(rs.update(), store::Outcome::ok);
    }
    ASSERT_EQ(work.commit(), store::Outcome::ok);
}

// Listing table `n` is the table of the database in the folder.
inline void choose_listing_table(Session& s, int n, const std::string& folder,
                                 const std::string& db, const std::string& table) {
    RecordingSink sink;
    const std::string t = "table_" + std::to_string(n) + "_";
    ASSERT_EQ(set_options(s, "option_name",
                          {{t + "path", store::Value(folder)},
                           {t + "db", store::Value(db)},
                           {t + "name", store::Value(table)}},
                          sink),
              store::Outcome::ok);
}

} // namespace celestark::testing
