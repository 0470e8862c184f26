#pragma once
// An event row between the stored event table and the slots.
#include "session/event.h"

namespace celestark {

namespace store {
class Recordset;
}

// Copies the current stored record into a slot row: a null field takes the column's null value,
// the last column "NOTUSED", column 0 the record's bookmark.
void load_event_row(store::Recordset& records, EventSlots& slots, int row);

} // namespace celestark
