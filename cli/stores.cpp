#include "stores.h"

#include "app/startup.h"
#include "aspects.h"
#include "engine/chart.h"
#include "event_options.h"
#include "positions.h"
#include "predict/progressions.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "store/event_database.h"
#include "store/open_stores.h"
#include "store/option_defaults.h"
#include "store/option_schema.h"
#include "store/star_catalogue.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace celestark::cli {

namespace fs = std::filesystem;

fs::path built_stores_folder() {
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (ec) return {};
    const fs::path data = exe.parent_path().parent_path() / "data";
    return fs::is_directory(data, ec) ? data : fs::path();
}

namespace {

// Copies `from` to `to` unless `to` exists: under a temporary name first, so that an interrupted
// copy never leaves a partial store under the real name.
bool copy_missing(const fs::path& from, const fs::path& to, std::string& why) {
    std::error_code ec;
    if (fs::exists(to, ec)) return false;
    fs::path part = to;
    part += ".part";
    fs::copy_file(from, part, fs::copy_options::overwrite_existing, ec);
    if (!ec && !fs::exists(to)) fs::rename(part, to, ec);
    if (ec) {
        why = ec.message();
        fs::remove(part, ec);
        return false;
    }
    return true;
}

void print_state(Session& s, const StartResult& r) {
    std::printf("Program folder: %s\n", s.program_directory.c_str());
    if (r.events.outcome == EventStoreOpen::database_failed ||
        r.events.outcome == EventStoreOpen::table_failed) {
        std::printf("Event database: %s; choose another in the database window\n",
                    r.events.problem.c_str());
    } else {
        const long long rows = s.stores ? s.stores->event_table.record_count() : 0;
        std::printf("Event database: %s, table %s (%lld events)%s\n",
                    r.events.database_title.c_str(), r.events.table_title.c_str(), rows,
                    r.events.outcome == EventStoreOpen::created ? ", made at this start" : "");
    }
    std::printf("Charts: zodiac %s, houses %s (polar %s), aspect set %s (%d aspects), colour "
                "sets %s on screen and %s on paper\n",
                s.chart.zodiac.c_str(), s.chart.house_system.c_str(),
                s.chart.polar_house_system.c_str(), s.chart.aspect_set_charts.c_str(),
                s.option_sets.aspects.aspect_count, s.chart.display_colour_set.c_str(),
                s.chart.print_colour_set.c_str());
    if (s.stars.stores)
        std::printf("Star catalogue: %lld stars, %d in charts, %zu fixed points\n",
                    static_cast<long long>(s.stars.stores->stars.record_count()),
                    s.stars.chart_star_count, s.stars.fixed_points.size());
    for (const std::string& p : r.problems) std::printf("Note: %s\n", p.c_str());
}

} // namespace

bool prepare_program_folder(const fs::path& dir, bool tell, std::string& error) {
    std::error_code ec;
    fs::create_directories(dir, ec);
    if (!fs::is_directory(dir, ec)) {
        error = "cannot make the folder " + dir.string();
        return false;
    }
    const fs::path built = built_stores_folder();
    if (!built.empty()) {
        for (fs::directory_iterator it(built, ec), end; !ec && it != end; it.increment(ec)) {
            const fs::path from = it->path();
            if (!it->is_regular_file() || from.extension() != ".mdb") continue;
            std::string why;
            if (copy_missing(from, dir / from.filename(), why)) {
                if (tell) std::printf("Copied %s\n", from.filename().string().c_str());
            } else if (!why.empty()) {
                error = "cannot copy " + from.filename().string() + ": " + why;
                return false;
            }
        }
    }
    const fs::path options = dir / store::option_file_name;
    if (!fs::exists(options, ec)) {
        std::string why;
        if (!store::build_option_database(options, store::standard_option_source(), why)) {
            error = "cannot build option.mdb: " + why;
            return false;
        }
        if (tell) std::printf("Built option.mdb\n");
    }
    return true;
}

StartResult start_in(Session& s, const fs::path& folder, MessageSink& sink, bool& fatal) {
    fatal = false;
    return start_session(s, folder.string(), sink,
                         [&](const std::string&, const std::string&) { fatal = true; });
}

int command_init(const std::vector<std::string>& positional) {
    if (positional.size() != 1) return fail("init needs the folder: init DIR");
    const fs::path dir = fs::absolute(positional[0]);
    std::string error;
    if (!prepare_program_folder(dir, true, error)) return fail(error);

    Session s;
    ConsoleSink sink;
    bool fatal = false;
    const StartResult r = start_in(s, dir, sink, fatal);
    if (fatal || !r.started) return fail("the program folder " + dir.string() + " cannot start");
    print_state(s, r);
    return 0;
}

int command_start() {
    Session s;
    ConsoleSink sink;
    bool fatal = false;
    const StartResult r = start_in(s, fs::current_path(), sink, fatal);
    if (fatal || !r.started) return 1;
    print_state(s, r);
    return 0;
}

namespace {

// The life date of --to: YYYY-MM-DD, with THH:MM:SS Universal Time, on the event's calendar.
bool life_date_option(const std::string& text, std::string_view gj, double& jd) {
    int y = 0, m = 0, d = 0, hh = 0, mm = 0, ss = 0;
    char tail = 0;
    const int n =
        std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d%c", &y, &m, &d, &hh, &mm, &ss, &tail);
    if (!(n == 3 || n == 6) || m < 1 || m > 12 || d < 1 || d > days_in_month(m, y, gj) || hh < 0 ||
        hh > 23 || mm < 0 || mm > 59 || ss < 0 || ss > 59)
        return false;
    jd = julian_date(d, m, y, gj, (hh + (mm + ss / 60.0) / 60.0) / 24.0);
    return true;
}

} // namespace

int command_chart(const std::map<std::string, std::string>& options) {
    Session s;
    initialise_session(s, fs::current_path().string());
    std::string error;
    if (!load_event_option(options, s, slot::first_user, error)) return fail(error);
    if (!attach_body_tables(s)) return 2;
    if (const auto it = options.find("houses"); it != options.end())
        s.chart.house_system = it->second;
    int row = slot::first_user;
    if (const auto it = options.find("progressed"); it != options.end()) {
        static const std::map<std::string, std::string> kinds = {{"secondary", "Secondary"},
                                                                 {"primary", "Primary"},
                                                                 {"solar-arc", "Solar Arc"},
                                                                 {"od", "OD"}};
        const auto kind = kinds.find(it->second);
        if (kind == kinds.end())
            return fail("--progressed must be secondary, primary, solar-arc or od, not '" +
                        it->second + "'");
        if (kind->second == "Primary")
            return fail("primary directions are not calculated by this version: use secondary, "
                        "solar-arc or od");
        const auto to = options.find("to");
        const std::string gj =
            trim(s.event_slots[row][col::gj]).empty() ? "G" : trim(s.event_slots[row][col::gj]);
        double life = 0;
        if (to == options.end() || !life_date_option(to->second, gj, life))
            return fail(
                "--progressed needs --to YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS (Universal Time)");
        calculate_chart(s, row, false);
        const double birth = s.engine.event_jd;
        row = slot::work;
        s.event_slots[row] = s.event_slots[slot::first_user];
        put_progressed_moment(s.event_slots[row], progressed_moment(kind->second, birth, life, 1));
        calculate_progressed_event(s, slot::first_user, row, kind->second);
    } else {
        calculate_chart(s, row, true);
    }

    const PositionLists& p = s.engine.pos;
    std::printf("body,lon_deg,lat_deg,dist_au,retro\n");
    for (int i = 0; i < p.geo_count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const bool outer = p.geo_glyph[k] == glyph::uranus || p.geo_glyph[k] == glyph::neptune ||
                           p.geo_glyph[k] == glyph::pluto;
        if (outer && !s.engine.outer_planets_ok) continue;
        const double lon = std::fmod(p.geo_long[k] * rad_to_deg + 360.0, 360.0);
        std::printf("%s,%.6f,%.6f,%.9f,%s\n", body_name(p.geo_glyph[k]).c_str(), lon,
                    p.geo_lat[k] * rad_to_deg, p.geo_dist[k], p.geo_retro[k + 1] == 'R' ? "R" : "");
    }
    // The cusps and the angles in the same columns.
    const EngineState& e = s.engine;
    if (e.chart_has_houses) {
        const auto angle = [](double a) {
            return std::fmod(std::fmod(a * rad_to_deg, 360.0) + 360.0, 360.0);
        };
        for (int i = 1; i <= 12; ++i)
            std::printf("cusp%d,%.6f,0.000000,0.000000000,\n", i,
                        angle(e.house_cusps[static_cast<std::size_t>(i)]));
        std::printf("asc,%.6f,0.000000,0.000000000,\nmc,%.6f,0.000000,0.000000000,\n",
                    angle(e.ascendant), angle(e.midheaven));
    }
    // Then the aspects of the chart list.
    ConsoleSink messages;
    if (load_chart_aspect_set(s, messages)) print_chart_aspects(s);
    return 0;
}

int command_build_options(const std::vector<std::string>& positional) {
    if (positional.size() != 1) return fail("build-options needs the file: build-options FILE");
    const fs::path file = positional[0];
    std::error_code ec;
    if (file.has_parent_path()) fs::create_directories(file.parent_path(), ec);
    std::string error;
    if (!store::build_option_database(file, store::standard_option_source(), error))
        return fail("cannot build " + file.string() + ": " + error);
    return 0;
}

} // namespace celestark::cli
