#include "screens/phenomena_screen.h"

#include "session/session.h"
#include "session/text.h"

namespace celestark {

const std::vector<PhenomenaBody>& phenomena_bodies() {
    static const std::vector<PhenomenaBody> bodies = {
        {"sun", "Sun"},         {"earth", "Earth"},   {"moon", "Moon"},
        {"mercury", "Mercury"}, {"venus", "Venus"},   {"mars", "Mars"},
        {"jupiter", "Jupiter"}, {"saturn", "Saturn"}, {"uranus", "Uranus"},
        {"neptune", "Neptune"}, {"pluto", "Pluto"},   {"node", "Node"},
        {"perigee", "Perigee"}, {"chiron", "Chiron"}, {"vesta", "Vesta"},
        {"juno", "Juno"},       {"ceres", "Ceres"},   {"pallas", "Pallas"},
        {"quaoar", "Quaoar"},   {"sedna", "Sedna"},
    };
    return bodies;
}

const std::vector<PhenomenaChoice>& phenomena_world_views() {
    static const std::vector<PhenomenaChoice> views = {
        {"geo", "Geocentric"},
        {"tych", "Tychonic"},
        {"helio", "Heliocentric"},
        {"lemni", "Lemnicentric"},
    };
    return views;
}

const std::vector<PhenomenaChoice>& phenomena_contents() {
    static const std::vector<PhenomenaChoice> contents = {
        {"aspects_search", "Aspects"},
        {"ingresses_search", "Ingresses into signs"},
        {"stationary_search", "Stations"},
        {"nodes_apsides_search", "Nodes and apsides"},
        {"eclipse_phenomena", "Sun and Moon eclipses"},
    };
    return contents;
}

std::string phenomena_world_view(const PhenomenaParameters& p) {
    if (p.on("eclipse_phenomena")) return "Geocentric";
    for (const PhenomenaChoice& v : phenomena_world_views())
        if (p.on(v.name)) return v.caption;
    return "Geocentric";
}

void PhenomenaScreen::open(Session& s) {
    params_ = phenomena_defaults(s);
}

std::string PhenomenaScreen::set(std::string_view name, std::string_view value) {
    return set_phenomena_control(params_, name, value);
}

void PhenomenaScreen::clear_bodies() {
    for (const PhenomenaBody& b : phenomena_bodies())
        for (const char* column : {"1", "2"}) params_.values[std::string(b.stem) + column] = "0";
    params_.values["stars2"] = "0";
}

bool PhenomenaScreen::make_list(Session& s, MessageSink& sink) {
    if (!validate_phenomena(params_, sink)) return false;
    // The list reports through the session's sink; the checks have passed, so it says nothing
    // of them again.
    rows_ = list_phenomena(s, params_);
    eclipses_ = params_.on("eclipse_phenomena");
    calendar_ = params_.values.at("gj");
    const std::string years =
        trim(params_.values.at("start")) + " - " + trim(params_.values.at("end_year"));
    page_title_ =
        std::string(phenomena_title) + "   " + years + "   " + phenomena_world_view(params_);
    return true;
}

} // namespace celestark
