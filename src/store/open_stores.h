#pragma once
// The stores a session holds open from its start to its end: option.mdb with its five tables, and
// the event database with its open table.
#include "store/table_store.h"

namespace celestark {

struct OpenStores {
    store::TableStore option_db;
    store::Recordset general_options; // option_name, one row
    store::Recordset chart_options;   // options, one row
    store::Recordset zodiacs;         // under zodiac_name
    store::Recordset aspects;         // under aspect_set
    store::Recordset colours;         // under name_index

    store::TableStore event_db;
    store::Recordset event_table; // under the index in use, Name_Event on every open
};

} // namespace celestark
