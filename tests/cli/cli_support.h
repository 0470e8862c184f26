// A scratch event database with one stored event, for the commands that read stored events.
#pragma once

#include "../store/store_test_support.h"
#include "screens/event_input.h"
#include "store/event_schema.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace celestark::cli::testing {

using Cells = std::vector<std::pair<int, const char*>>;

// Makes `file` with the table "Events" and stores one event with the given cells over the new
// event's defaults.
inline void store_one_event(const std::filesystem::path& file, const Cells& cells) {
    store::TableStore db;
    ASSERT_EQ(db.create(file), store::Outcome::ok);
    ASSERT_EQ(db.create_table("Events", store::event_table_fields(), store::event_table_indexes()),
              store::Outcome::ok);
    store::Recordset records;
    ASSERT_EQ(db.open_recordset("Events", records), store::Outcome::ok);
    EventInput in;
    new_event_defaults(in);
    for (const auto& [column, text] : cells) in.cells[static_cast<std::size_t>(column)] = text;
    in.event_epoch_exists = in.cells[col::epoch_exists] == "Y" ? "Y" : "N";
    in.event_dirty = true;
    EventTable table{records};
    RecordingSink sink;
    ASSERT_EQ(save_event(in, table, sink), SaveResult::saved);
}

} // namespace celestark::cli::testing
