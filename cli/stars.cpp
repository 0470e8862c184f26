#include "stars.h"

#include "event_options.h"

#include "engine/chart.h"
#include "engine/stars.h"
#include "positions.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/session.h"
#include "session/text.h"
#include "store/star_catalogue.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace celestark::cli {

namespace fs = std::filesystem;

namespace {

// The folder holding stars.mdb: the current one, or the data folder of this program's build.
fs::path star_folder() {
    if (fs::exists(star_file_name)) return fs::current_path();
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (!ec) {
        const fs::path built = exe.parent_path().parent_path() / "data";
        if (fs::exists(built / star_file_name)) return built;
    }
    return fs::current_path();
}

// The names of a comma-separated list, trimmed, without empty ones.
std::vector<std::string> split_names(const std::string& list) {
    std::vector<std::string> names;
    std::size_t start = 0;
    while (start <= list.size()) {
        const std::size_t end = std::min(list.find(',', start), list.size());
        if (std::string name = trim(list.substr(start, end - start)); !name.empty())
            names.push_back(std::move(name));
        start = end + 1;
    }
    return names;
}

struct NamedStar {
    std::string name;
    StarValues values;
};

} // namespace

int command_stars(const std::map<std::string, std::string>& o) {
    std::vector<double> moments_ut;
    std::string error;
    if (!read_moments(o, moments_ut, error)) return fail("stars: " + error);
    const auto names_it = o.find("names");
    if (names_it == o.end()) return fail("stars needs --names NAME,...");
    const std::vector<std::string> names = split_names(names_it->second);
    if (names.empty()) return fail("--names must name at least one star");

    Session s;
    initialise_session(s, star_folder().string());
    if (const std::string problem = open_star_tables(s); !problem.empty()) return fail(problem);
    // The stars by their catalogue names, without regard to case.
    std::vector<NamedStar> stars;
    store::Recordset& rs = s.stars.stores->stars;
    const StarRowReader reader(rs);
    for (const std::string& wanted : names) {
        bool found = false;
        for (auto at = rs.move_first(); at == store::Outcome::ok && rs.has_current() && !found;
             at = rs.move_next()) {
            const std::string name = trim(reader.text(rs, reader.star_name));
            if (to_upper(name) != to_upper(wanted)) continue;
            stars.push_back({name, reader.values(rs)});
            found = true;
        }
        if (!found) return fail("no star named " + wanted + " in " + star_file_name);
    }

    // The Sun for the aberration and the nutation; nothing else is calculated.
    s.options.actual_position = o.count("actual") > 0;
    CalcSwitches& calc = s.engine.calc;
    calc.calc_planets = calc.calc_moon_long = calc.calc_moon_lat = calc.calc_moon_dist = false;
    calc.calc_nodes = false;
    s.chart.stars_in_charts = 0;
    std::printf("jd_tt,star,lon_deg,lat_deg\n");
    for (const double ut : moments_ut) {
        calculate_bodies_at(s, ut);
        const StarMoment m = star_moment(s);
        for (const NamedStar& star : stars) {
            double lon = 0, lat = 0;
            star_place_of_date(star.values.ra, star.values.dec, star.values.pm_ra,
                               star.values.pm_dec, m, lon, lat);
            std::printf("%.6f,%s,%.9f,%.9f\n", s.engine.time.jd_ephemeris, star.name.c_str(),
                        norm_rad(lon) * rad_to_deg, lat * rad_to_deg);
        }
    }
    return 0;
}

int command_build_stars(const std::vector<std::string>& positional,
                        const std::map<std::string, std::string>& options) {
    const auto source = options.find("source");
    if (positional.size() != 1 || source == options.end() || source->second.empty())
        return fail("build-stars needs the file and the catalogue: build-stars FILE --source DIR");
    const fs::path file = positional[0];
    std::error_code ec;
    if (file.has_parent_path()) fs::create_directories(file.parent_path(), ec);
    std::string error;
    if (!build_star_database(source->second, file, error))
        return fail("cannot build " + file.string() + ": " + error);
    return 0;
}

} // namespace celestark::cli
