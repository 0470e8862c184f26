#include "positions.h"

#include "app/body_tables.h"
#include "engine/chart.h"
#include "engine/table_bodies.h"
#include "event_options.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/event_time.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>

namespace celestark::cli {

int fail(const std::string& message) {
    std::fprintf(stderr, "celestark-cli: %s\n", message.c_str());
    return 2;
}

std::string csv_quoted(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + '"';
}

std::string body_name(unsigned char code) {
    if (code >= glyph::sun && code <= glyph::earth)
        return std::string(body_words[code - glyph::sun]);
    switch (code) {
    case glyph::chiron:
        return "chiron";
    case glyph::juno:
        return "juno";
    case glyph::vesta:
        return "vesta";
    case glyph::ceres:
        return "ceres";
    case glyph::pallas:
        return "pallas";
    case glyph::quaoar:
        return "quaoar";
    case glyph::sedna:
        return "sedna";
    case glyph::north_node:
        return "north_node";
    case glyph::south_node:
        return "south_node";
    case glyph::perigee:
        return "perigee";
    case glyph::apogee:
        return "apogee";
    case glyph::part_of_fortune:
        return "fortune";
    case glyph::part_of_chiron:
        return "part_of_chiron";
    case glyph::ascendant:
        return "asc";
    case glyph::midheaven:
        return "mc";
    default:
        return "glyph_" + std::to_string(code);
    }
}

std::filesystem::path body_tables_directory() {
    namespace fs = std::filesystem;
    if (fs::exists("outer3.mdb")) return fs::current_path();
    // Beside a build of the program the tables lie in the build's data folder.
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (!ec) {
        const fs::path built = exe.parent_path().parent_path() / "data";
        if (fs::exists(built / "outer3.mdb")) return built;
    }
    return fs::current_path();
}

bool attach_body_tables(Session& s) {
    std::string problems;
    auto tables = open_body_tables(body_tables_directory(), problems);
    if (tables->planets.loaded()) {
        s.body_tables = std::move(tables);
        return true;
    }
    std::fprintf(stderr,
                 "celestark-cli: without outer3.mdb (%s) Uranus, Neptune, Pluto, Chiron and the "
                 "asteroids are left out\n",
                 trim(problems).c_str());
    return true;
}

namespace {

bool is_outer(unsigned char code) {
    return code == glyph::uranus || code == glyph::neptune || code == glyph::pluto;
}

void print_list(double jd_tt, const double* lon, const double* lat, const double* dist,
                const unsigned char* glyphs, int count, const EngineState& e) {
    for (int i = 0; i < count; ++i) {
        if (is_outer(glyphs[i]) && !e.outer_planets_ok) continue;
        std::printf("%.6f,%s,%.9f,%.9f,%.12f\n", jd_tt, body_name(glyphs[i]).c_str(),
                    norm_rad(lon[i]) * rad_to_deg, lat[i] * rad_to_deg, dist[i]);
    }
}

} // namespace

int command_positions(const Options& o) {
    // The moments, as Universal Time with the ephemeris time printed beside each.
    std::vector<double> moments_ut;
    std::string error;
    if (!read_moments(o, moments_ut, error)) return fail("positions: " + error);

    std::string view = "geo";
    if (const auto it = o.find("view"); it != o.end()) view = it->second;
    if (view != "geo" && view != "helio" && view != "lemni" && view != "tycho")
        return fail("--view must be geo, helio, lemni or tycho");
    double level = 1;
    if (!number_option(o, "level", level, error) && !error.empty()) return fail(error);
    if (level != 1 && level != 2 && level != 3) return fail("--level must be 1, 2 or 3");

    Session s;
    initialise_session(s, ".");
    if (!attach_body_tables(s)) return 2;
    s.accuracy_level = static_cast<std::int16_t>(level);
    s.options.actual_position = o.count("actual") > 0;
    s.chart.moon_node = 0;
    if (view == "tycho") s.chart.world_view = "Tychonic";
    if (o.count("all-bodies")) {
        s.chart.chiron = s.chart.asteroids = s.chart.quaoar = s.chart.sedna = 1;
    }

    std::printf("jd_tt,body,lon_deg,lat_deg,dist_au\n");
    for (const double ut : moments_ut) {
        calculate_bodies_at(s, ut);
        const EngineState& e = s.engine;
        const PositionLists& p = e.pos;
        const double jd_tt = e.time.jd_ephemeris;
        if (view == "helio")
            print_list(jd_tt, p.helio_long.data(), p.helio_lat.data(), p.helio_dist.data(),
                       p.helio_glyph.data(), p.helio_count, e);
        else if (view == "lemni")
            print_list(jd_tt, p.lemni_long.data(), p.lemni_lat.data(), p.lemni_dist.data(),
                       p.lemni_glyph.data(), p.lemni_count, e);
        else
            print_list(jd_tt, p.geo_long.data(), p.geo_lat.data(), p.geo_dist.data(),
                       p.geo_glyph.data(), p.geo_count, e);
    }
    return 0;
}

int command_bench(const Options& o) {
    double moments = 1000, step = 1, level = 1;
    std::string error;
    for (auto [name, out] :
         {std::pair<const char*, double*>{"moments", &moments}, {"step", &step}, {"level", &level}})
        if (!number_option(o, name, *out, error) && !error.empty()) return fail(error);
    if (moments < 1 || moments > 1e7) return fail("--moments must be 1 to 10000000");
    if (level != 1 && level != 2 && level != 3) return fail("--level must be 1, 2 or 3");
    std::string what = "bodies";
    if (const auto it = o.find("what"); it != o.end()) what = it->second;
    if (what != "bodies" && what != "chart") return fail("--what must be bodies or chart");

    Session s;
    initialise_session(s, ".");
    if (!attach_body_tables(s)) return 2;
    s.accuracy_level = static_cast<std::int16_t>(level);
    s.chart.chiron = s.chart.asteroids = s.chart.quaoar = s.chart.sedna = 1;
    const int n = static_cast<int>(moments);
    double checksum = 0;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < n; ++i) {
        const double jd = j2000 + i * step;
        if (what == "chart") {
            EventRow& row = s.event_slots[slot::work];
            row = make_default_event();
            row[col::gj] = "G";
            row[col::year] = "2000";
            row[col::day] = std::to_string(1 + i % 28);
            row[col::month] = std::to_string(1 + (i / 28) % 12);
            calculate_chart(s, slot::work, true);
        } else {
            calculate_bodies_at(s, jd);
        }
        checksum += s.engine.pos.geo_long[0];
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("what,level,moments,us_per_call\n%s,%d,%d,%.3f\n", what.c_str(),
                static_cast<int>(level), n, seconds * 1e6 / n);
    std::fprintf(stderr, "checksum %.6f\n", checksum);
    return 0;
}

} // namespace celestark::cli
