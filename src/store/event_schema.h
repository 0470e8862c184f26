#pragma once
// The shape of an event table: 54 text fields and four indexes. Every event table of every event
// database has this shape.
#include "store/store_types.h"

#include <vector>

namespace celestark::store {

const std::vector<FieldDef>& event_table_fields();
const std::vector<IndexDef>& event_table_indexes();

inline constexpr const char* event_primary_index = "Name_Event";

} // namespace celestark::store
