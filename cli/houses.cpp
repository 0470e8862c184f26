#include "houses.h"

#include "event_options.h"

#include "engine/houses.h"
#include "positions.h"
#include "session/constants.h"
#include "session/text.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>
#include <vector>

namespace celestark::cli {

namespace {

// The system text for a name: the text itself, or a one-letter code.
std::optional<std::string_view> system_text(const std::string& name) {
    for (const std::string_view text : house_system_names)
        if (name == text) return text;
    static constexpr std::pair<char, std::string_view> letters[] = {
        {'P', "Placidus"},    {'K', "Koch"},     {'R', "Regiomontanus"},
        {'C', "Campanus"},    {'O', "Porphyry"}, {'E', "Equal"},
        {'T', "Topocentric"}, {'X', "Meridian"}, {'M', "Morinus"}};
    if (name.size() == 1)
        for (const auto& [letter, text] : letters)
            if (name[0] == letter) return text;
    return std::nullopt;
}

struct Case {
    double armc = 0, lat = 0, eps = 0;
    std::string_view system;
};

// Checks the ranges; empty when the case can be cast.
std::string check(const Case& c) {
    if (c.lat < -90 || c.lat > 90) return "latitude must lie within -90 to 90";
    if (std::fabs(c.lat) == 90) return "latitude must not be a pole";
    if (c.eps <= 0 || c.eps >= 90) return "obliquity must lie between 0 and 90";
    return "";
}

Houses cast(const Case& c, std::string_view polar) {
    HouseSky sky;
    sky.sidereal_hours = c.armc / 15;
    sky.latitude_degrees = c.lat;
    sky.true_obliquity = c.eps * deg_to_rad;
    sky.sin_obliquity = std::sin(sky.true_obliquity);
    sky.cos_obliquity = std::cos(sky.true_obliquity);
    HouseOptions options;
    options.system = c.system;
    options.polar_system = polar;
    return compute_houses(sky, options);
}

void print_houses(const Houses& h) {
    for (int i = 1; i <= 12; ++i)
        std::printf("%.9f,", h.cusps[static_cast<std::size_t>(i)] * rad_to_deg);
    std::printf("%.9f,%.9f\n", h.ascendant * rad_to_deg, h.midheaven * rad_to_deg);
}

// Notes on standard error when the polar test or the Placidus guard acted.
void note_system(const Case& c, const Houses& h, const std::string& where) {
    if (h.system_in_use != c.system)
        std::fprintf(stderr, "celestark-cli: %s%s taken for %s north of the Arctic circle\n",
                     where.c_str(), std::string(h.system_in_use).c_str(),
                     std::string(c.system).c_str());
    if (h.placidus_guarded)
        std::fprintf(stderr,
                     "celestark-cli: %sno Placidus houses at this latitude: the guard's cusps\n",
                     where.c_str());
}

constexpr const char* cusp_header = "cusp1,cusp2,cusp3,cusp4,cusp5,cusp6,cusp7,cusp8,cusp9,cusp10,"
                                    "cusp11,cusp12,asc,mc";

std::vector<std::string> split_fields(const std::string& line) {
    std::vector<std::string> out;
    std::istringstream in(line);
    std::string cell;
    while (std::getline(in, cell, ',')) out.push_back(trim(cell));
    return out;
}

int command_list(const std::string& path, std::string_view polar) {
    std::ifstream in(path);
    if (!in) return fail("cannot read " + path);
    struct Row {
        std::vector<std::string> fields;
        Case c;
        int line = 0;
    };
    std::vector<Row> rows;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::string t = trim(line);
        if (t.empty() || t[0] == '#') continue;
        Row r;
        r.fields = split_fields(t);
        r.line = number;
        const std::string where = path + ":" + std::to_string(number) + ": ";
        if (r.fields.size() < 4) return fail(where + "a line needs armc,lat,eps,system");
        const auto armc = strict_number(r.fields[0]), lat = strict_number(r.fields[1]),
                   eps = strict_number(r.fields[2]);
        if (!armc || !lat || !eps) {
            if (rows.empty() && !armc) continue; // a header line
            return fail(where + "armc, lat and eps must be numbers");
        }
        const auto system = system_text(r.fields[3]);
        if (!system) return fail(where + "unknown house system '" + r.fields[3] + "'");
        r.c = {*armc, *lat, *eps, *system};
        if (const std::string problem = check(r.c); !problem.empty()) return fail(where + problem);
        rows.push_back(std::move(r));
    }
    std::printf("armc,lat,eps,system,%s\n", cusp_header);
    for (const Row& r : rows) {
        const Houses h = cast(r.c, polar);
        note_system(r.c, h, path + ":" + std::to_string(r.line) + ": ");
        std::printf("%s,%s,%s,%s,", r.fields[0].c_str(), r.fields[1].c_str(), r.fields[2].c_str(),
                    r.fields[3].c_str());
        print_houses(h);
    }
    return 0;
}

} // namespace

int command_houses(const std::map<std::string, std::string>& o) {
    std::string_view polar = "Porphyry";
    if (const auto it = o.find("polar"); it != o.end()) {
        const auto p = system_text(it->second);
        if (!p) return fail("unknown polar house system '" + it->second + "'");
        polar = *p;
    }
    if (const auto it = o.find("list"); it != o.end()) {
        if (o.count("armc") || o.count("lat") || o.count("eps") || o.count("system"))
            return fail("houses takes either --list FILE or --armc, --lat, --eps and --system");
        return command_list(it->second, polar);
    }
    Case c;
    for (const auto& [name, target] :
         {std::pair<const char*, double*>{"armc", &c.armc}, {"lat", &c.lat}, {"eps", &c.eps}}) {
        const auto it = o.find(name);
        if (it == o.end())
            return fail(
                "houses needs --armc DEG --lat DEG --eps DEG --system NAME, or --list FILE");
        const auto v = strict_number(it->second);
        if (!v) return fail(std::string("--") + name + " must be a number of degrees");
        *target = *v;
    }
    const auto it = o.find("system");
    if (it == o.end()) return fail("houses needs --system NAME");
    const auto system = system_text(it->second);
    if (!system) return fail("unknown house system '" + it->second + "'");
    c.system = *system;
    if (const std::string problem = check(c); !problem.empty()) return fail(problem);
    const Houses h = cast(c, polar);
    note_system(c, h, "");
    std::printf("%s\n", cusp_header);
    print_houses(h);
    return 0;
}

} // namespace celestark::cli
