// A scratch event database with one stored event, for the commands that read stored events.
#pragma once

#include "../store/store_test_support.h"
#include "../support/events.h"
#include "store/event_schema.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace celestark::cli::testing {

using Cells = celestark::testing::EventCells;

// Makes `file` with the table "Events" and stores one event with the given cells over the new
// event's defaults.
inline void store_one_event(const std::filesystem::path& file, const Cells& cells) {
    store::TableStore db;
    ASSERT_EQ(db.create(file), store::Outcome::ok);
    ASSERT_EQ(db.create_table("Events", store::event_table_fields(), store::event_table_indexes()),
              store::Outcome::ok);
    store::Recordset records;
    ASSERT_EQ(db.open_recordset("Events", records), store::Outcome::ok);
    EventInput in = celestark::testing::new_input(cells);
    in.event_epoch_exists = in.cells[col::epoch_exists] == "Y" ? "Y" : "N";
    EventTable table{records};
    RecordingSink sink;
    ASSERT_EQ(save_event(in, table, sink), SaveResult::saved);
}

} // namespace celestark::cli::testing
