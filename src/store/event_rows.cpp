#include "store/event_rows.h"

#include "store/table_store.h"

namespace celestark {

void load_event_row(store::Recordset& records, EventSlots& slots, int row) {
    EventRow& r = slots[row];
    for (int c = col::event; c < col::notused; ++c) {
        const EventColumn& column = event_columns_table[static_cast<std::size_t>(c)];
        const store::Value v = records.get(column.field);
        r[static_cast<std::size_t>(c)] = v.is_null() ? std::string(column.null_value) : v.as_text();
    }
    r[col::bookmark] = records.bookmark();
    r[col::notused] = std::string(notused_text);
}

} // namespace celestark
