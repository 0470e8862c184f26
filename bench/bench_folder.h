#pragma once
// The program folder of the benchmarks that draw: a new option.mdb, the built body and star
// tables, and a session started in it with Einstein's birth in the first user slot.
#include "app/startup.h"
#include "session/session.h"
#include "store/option_defaults.h"

#include <filesystem>
#include <string>
#include <utility>

namespace celestark::bench {

namespace fs = std::filesystem;

struct Folder {
    explicit Folder(const char* name) : dir(fs::temp_directory_path() / name) { fill(); }
    fs::path dir;
    Session s;
    RecordingSink sink;
    void fill() {
        fs::remove_all(dir);
        fs::create_directories(dir);
        std::string error;
        store::build_option_database(dir / "option.mdb", store::standard_option_source(), error);
#ifdef CELESTARK_TABLES_DIR
        for (const char* name : {"outer3.mdb", "asteroid.mdb", "stars.mdb"})
            fs::create_symlink(fs::path(CELESTARK_TABLES_DIR) / name, dir / name);
#endif
        start_session(s, dir.string(), sink, [](const std::string&, const std::string&) {});
        EventRow& row = s.event_slots[slot::first_user];
        row = make_default_event();
        const std::pair<int, const char*> cells[] = {
            {col::surname, "Einstein"}, {col::firstname, "Albert"}, {col::day, "14"},
            {col::month, "3"},          {col::year, "1879"},        {col::gj, "G"},
            {col::hours, "11"},         {col::mins, "30"},          {col::lz, "L"},
            {col::lat_deg, "48"},       {col::lat_min, "24"},       {col::long_deg, "10"},
            {col::long_ew, "E"},        {col::long_min, "0"}};
        for (const auto& [column, text] : cells) row[static_cast<std::size_t>(column)] = text;
    }
    ~Folder() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

} // namespace celestark::bench
