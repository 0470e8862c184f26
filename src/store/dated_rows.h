#pragma once
// The stored tables of the table-driven bodies (outer3.mdb, asteroid.mdb) as dated rows: the
// column `julian_day_number` under the index `day_number`, and the named value columns.
#include "session/dated_rows.h"
#include "store/store_types.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace celestark::store {

// Opens `table` of the store file read-only with the given value columns; the store stays open
// with the source. Null with the store's outcome when the file, the table, the index or a column
// is missing or the table holds fewer than six rows.
std::unique_ptr<DatedRowSource> open_dated_rows(const std::filesystem::path& file,
                                                const std::string& table,
                                                const std::vector<std::string>& columns,
                                                Outcome& outcome);

} // namespace celestark::store
