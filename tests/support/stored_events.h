// Event tables written straight to a database for the tests: rows as they are, without the
// checks of the input screen, so that a row that cannot be charted can be stored too.
#pragma once

#include "events.h"
#include "session/event.h"
#include "store/event_schema.h"
#include "store/table_store.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace celestark::testing {

// Einstein's birth with some cells changed.
inline EventRow einstein_with(const EventCells& changes) {
    EventRow row = make_default_event();
    for (const auto& [column, text] : einstein) row[static_cast<std::size_t>(column)] = text;
    for (const auto& [column, text] : changes) row[static_cast<std::size_t>(column)] = text;
    return row;
}

// A new database `file` with the event table `table` holding the rows as they are; an empty cell
// is stored as one blank.
inline void write_event_rows(const std::filesystem::path& file, const std::string& table,
                             const std::vector<EventRow>& rows) {
    store::TableStore db;
    ASSERT_EQ(db.create(file), store::Outcome::ok);
    ASSERT_EQ(db.create_table(table, store::event_table_fields(), store::event_table_indexes()),
              store::Outcome::ok);
    store::Recordset rs;
    ASSERT_EQ(db.open_recordset(table, rs), store::Outcome::ok);
    for (const EventRow& row : rows) {
        ASSERT_EQ(rs.add_new(), store::Outcome::ok);
        for (int c = col::event; c < col::notused; ++c) {
            const std::string& v = row[static_cast<std::size_t>(c)];
            rs.set(event_columns_table[static_cast<std::size_t>(c)].field,
                   store::Value(v.empty() ? std::string(" ") : v));
        }
        ASSERT_EQ(rs.update(), store::Outcome::ok);
    }
}

} // namespace celestark::testing
