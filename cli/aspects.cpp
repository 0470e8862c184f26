#include "aspects.h"

#include "aspects/aspect_search.h"
#include "positions.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "store/open_stores.h"
#include "store/option_defaults.h"
#include "store/option_schema.h"
#include "store/option_sets.h"
#include "store/store_files.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace celestark::cli {

namespace fs = std::filesystem;

namespace {

// option.mdb of the current folder, or of the build's data folder; empty when there is neither.
fs::path option_file() {
    std::error_code ec;
    const fs::path here = store::find_file(fs::current_path(), store::option_file_name);
    if (fs::exists(here, ec)) return here;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (ec) return {};
    const fs::path built =
        store::find_file(exe.parent_path().parent_path() / "data", store::option_file_name);
    return fs::exists(built, ec) ? built : fs::path();
}

// Opens the file's aspect table into the session and names the set of the charts.
bool open_aspects(Session& s, const fs::path& file, std::string& set_name, std::string& why) {
    auto stores = std::make_shared<OpenStores>();
    store::Outcome o = stores->option_db.open(file, store::TableStore::Access::read_only);
    if (o == store::Outcome::ok)
        o = stores->option_db.open_recordset(store::chart_options_table, stores->chart_options);
    if (o == store::Outcome::ok) {
        if (stores->chart_options.move_first() == store::Outcome::ok)
            set_name = trim(stores->chart_options.get("aspect_set_charts").as_text());
        o = stores->option_db.open_recordset(store::aspects_table, stores->aspects);
    }
    if (o != store::Outcome::ok) {
        why = file.string() + ": " + std::string(store::describe(o));
        return false;
    }
    if (set_name.empty()) set_name = "Standard";
    s.stores = std::move(stores);
    return true;
}

bool left_out(const Session& s, unsigned char code) {
    return !s.engine.outer_planets_ok &&
           (code == glyph::uranus || code == glyph::neptune || code == glyph::pluto);
}

} // namespace

bool load_chart_aspect_set(Session& s, MessageSink& sink) {
    std::string set_name, why;
    if (const fs::path file = option_file(); !file.empty()) {
        if (!open_aspects(s, file, set_name, why)) {
            std::fprintf(stderr, "celestark-cli: no aspects: %s\n", why.c_str());
            return false;
        }
        load_aspect_set(s, set_name, sink);
        return true;
    }
    // No option.mdb: the program's own first rows, built into a scratch file for the reading.
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    const fs::path scratch =
        fs::temp_directory_path() / ("celestark_options_" + std::to_string(stamp) + ".mdb");
    bool loaded = false;
    if (store::build_option_database(scratch, store::standard_option_source(), why) &&
        open_aspects(s, scratch, set_name, why)) {
        load_aspect_set(s, "Standard", sink);
        loaded = true;
    }
    s.stores.reset();
    store::remove_store_file(scratch);
    if (!loaded) std::fprintf(stderr, "celestark-cli: no aspects: %s\n", why.c_str());
    return loaded;
}

void print_chart_aspects(Session& s) {
    chart_aspect_search(s);
    const AspectMatrix& m = s.aspect_matrices.chart;
    const AspectTable& t = s.option_sets.aspects;
    const PositionLists& p = s.engine.pos;
    std::printf("aspect,body_a,body_b,digraph,orb_deg\n");
    for (int i = 1; i <= m.n; ++i)
        for (int j = i + 1; j <= m.n; ++j) {
            const unsigned char a = p.chart_glyph[static_cast<std::size_t>(i - 1)];
            const unsigned char b = p.chart_glyph[static_cast<std::size_t>(j - 1)];
            if (!m.in_aspect(i, j) || left_out(s, a) || left_out(s, b)) continue;
            const auto k = static_cast<std::size_t>(m.aspect(i, j) - 1);
            std::printf("%.6f,%s,%s,%s,%.6f\n", static_cast<double>(t.angle[k]),
                        body_name(a).c_str(), body_name(b).c_str(), m.mark(i, j, 0).c_str(),
                        static_cast<double>(m.orb(i, j)));
        }
}

} // namespace celestark::cli
