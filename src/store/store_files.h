#pragma once
// Store files on disk: names found without regard to case (stored names and the names the program
// knows may differ in case), and removal of a file with its write-ahead log.
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace celestark::store {

// `directory / name` when it exists; otherwise the entry of `directory` whose name equals `name`
// without regard to case; otherwise `directory / name`.
std::filesystem::path find_file(const std::filesystem::path& directory, std::string_view name);

// Removes a store file and its log files; false when the file itself could not be removed.
bool remove_store_file(const std::filesystem::path& file);

class TableStore;

// Makes a new store file whole or not at all: `fill` writes a fresh file under a temporary name
// inside one transaction; only when it succeeds and the file checks out is it moved into place,
// replacing any older file in one step. False with the reason in `error` otherwise.
bool build_store_file(const std::filesystem::path& file,
                      const std::function<bool(TableStore& db, std::string& error)>& fill,
                      std::string& error);

} // namespace celestark::store
