#include "program_session.h"

#include "app/startup.h"
#include "store/option_sets.h"

#include <sstream>

namespace celestark::cli {

namespace fs = std::filesystem;

bool prepare_session(const Options& o, const fs::path& folder, Prepared& p, std::string& error) {
    Session& s = p.s;
    const StartResult r = start_in(s, folder, p.sink, p.fatal);
    if (p.fatal || !r.started) {
        error = "the program folder " + folder.string() + " cannot start";
        return false;
    }
    s.sink = &p.sink;
    s.fatal_handler = [&p](const std::string&, const std::string&) { p.fatal = true; };
    if (!load_event_option(o, s, slot::first_user, error)) return false;
    if (const auto it = o.find("zodiac"); it != o.end()) {
        s.chart.zodiac = it->second;
        if (!select_zodiac(s, p.sink) && it->second != "Tropical" && it->second != "Draconic") {
            error = "--zodiac: there is no zodiac '" + it->second + "' in option.mdb";
            return false;
        }
    }
    if (const auto it = o.find("houses"); it != o.end()) {
        static constexpr const char* systems[] = {
            "None",    "Asc. MC only", "Meridian",    "Regiomontanus", "Porphyry", "Equal",
            "Morinus", "Koch",         "Topocentric", "Placidus",      "Campanus"};
        bool known = false;
        for (const char* name : systems) known = known || it->second == name;
        if (!known) {
            error = "--houses must be one of None, Asc. MC only, Meridian, Regiomontanus, "
                    "Porphyry, Equal, Morinus, Koch, Topocentric, Placidus, Campanus";
            return false;
        }
        s.chart.house_system = it->second;
    }
    if (const auto it = o.find("colour-set"); it != o.end()) {
        if (it->second != "None" && !load_colour_set(s, it->second, p.sink)) {
            error = "--colour-set: there is no colour set '" + it->second + "' in option.mdb";
            return false;
        }
        s.chart.display_colour_set = s.chart.print_colour_set = it->second;
    }
    return true;
}

bool apply_set_option(const Options& o, const ControlSetter& set, std::string& error) {
    const auto it = o.find("set");
    if (it == o.end()) return true;
    std::istringstream in(it->second);
    for (std::string item; std::getline(in, item, ',');) {
        const auto eq = item.find('=');
        if (eq == std::string::npos) {
            error = "--set takes NAME=VALUE pairs, not '" + item + "'";
            return false;
        }
        const std::string why = set(item.substr(0, eq), item.substr(eq + 1));
        if (!why.empty()) {
            error = "--set: " + why;
            return false;
        }
    }
    return true;
}

} // namespace celestark::cli
