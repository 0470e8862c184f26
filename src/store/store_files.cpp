#include "store/store_files.h"

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

} // namespace celestark::store
