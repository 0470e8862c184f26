#pragma once
// The stored tables of the table-driven bodies, opened for the engine.
#include "engine/table_bodies.h"

#include <filesystem>
#include <memory>
#include <string>

namespace celestark {

// Opens outer3.mdb and asteroid.mdb in `directory` and their three tables. A table that cannot be
// opened stays unloaded: the planets then fail at their first use, the asteroids and Chiron drop
// out of the charts. The text says what failed, empty when all opened.
std::shared_ptr<const BodyTables> open_body_tables(const std::filesystem::path& directory,
                                                   std::string& problems);

} // namespace celestark
