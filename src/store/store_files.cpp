#include "store/store_files.h"

#include "store/table_store.h"

#include "store/sqlite_support.h"

#include <system_error>

namespace celestark::store {

namespace fs = std::filesystem;

fs::path find_file(const fs::path& directory, std::string_view name) {
    const fs::path exact = directory / fs::path(std::string(name));
    std::error_code ec;
    if (fs::exists(exact, ec)) return exact;
    for (fs::directory_iterator it(directory, ec), end; !ec && it != end; it.increment(ec))
        if (detail::same_name(it->path().filename().string(), name)) return it->path();
    return exact;
}

bool remove_store_file(const fs::path& file) {
    std::error_code ec;
    for (const char* suffix : {"-wal", "-shm", "-journal"}) {
        fs::path p = file;
        p += suffix;
        fs::remove(p, ec);
    }
    ec.clear();
    fs::remove(file, ec);
    return !ec && !fs::exists(file, ec);
}

namespace {

void remove_with_logs(const std::filesystem::path& file, bool and_file) {
    std::error_code ec;
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
        if (!and_file && *suffix == '\0') continue;
        std::filesystem::path p = file;
        p += suffix;
        std::filesystem::remove(p, ec);
    }
}

} // namespace

bool build_store_file(const std::filesystem::path& file,
                      const std::function<bool(TableStore& db, std::string& error)>& fill,
                      std::string& error) {
    std::filesystem::path temporary = file;
    temporary += ".new";
    remove_with_logs(temporary, true);
    bool built = false;
    {
        TableStore db;
        if (db.create(temporary) != Outcome::ok) {
            error = "cannot create " + temporary.string() + ": " + db.last_error();
            return false;
        }
        Transaction work = db.begin_transaction();
        if (!work.active()) {
            error = "cannot write: " + db.last_error();
        } else if (fill(db, error)) {
            built = work.commit() == Outcome::ok;
            if (!built) error = "cannot write: " + db.last_error();
        }
        if (built && db.check_integrity() != Outcome::ok) {
            error = "the new file is damaged";
            built = false;
        }
    }
    if (!built) {
        remove_with_logs(temporary, true);
        return false;
    }
    // The log of an older file must not meet the new one; the file itself is replaced in one step.
    remove_with_logs(file, false);
    std::error_code ec;
    std::filesystem::rename(temporary, file, ec);
    if (ec) {
        error = "cannot move the new file into place: " + ec.message();
        remove_with_logs(temporary, true);
        return false;
    }
    return true;
}

} // namespace celestark::store
