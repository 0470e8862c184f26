#pragma once
// The phenomena of the sky itself over a span of years, without an event: aspects between the
// bodies of two columns, ingresses into signs, stations, the heliocentric nodes and perihelia,
// or the eclipses. The list is made by the run of transits on one moving set, with the steps of
// its own table.
#include "session/messages.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace celestark {

struct Session;

// The controls of the window `planetary_aspects` by name: the years `start` and `end_year`, the
// calendar `gj`, the world view (`geo`, `tych`, `helio`, `lemni`), the contents
// (`aspects_search`, `ingresses_search`, `stationary_search`, `nodes_apsides_search`,
// `eclipse_phenomena`), the aspect set `aspects`, and the bodies of the two columns (`sun1` ...
// `sedna1`, `sun2` ... `sedna2`, `stars2`).
struct PhenomenaParameters {
    std::map<std::string, std::string, std::less<>> values;
    bool on(std::string_view name) const;
};
PhenomenaParameters phenomena_defaults(Session& s);
// Sets a control from a text; the error names the control or the value, empty when set.
std::string set_phenomena_control(PhenomenaParameters& p, std::string_view name,
                                  std::string_view value);
// The checks of the years and the aspect set, each fault a title and a text in the input error
// list; true when the list may be made.
bool validate_phenomena(const PhenomenaParameters& p, MessageSink& sink);

struct Phenomenon {
    double jd = 0; // Universal Time
    std::string text, body_1, body_2;
    std::string kind; // "A" aspect, "IS" ingress, "R" station, "S" or "M" eclipse
};
// The list in date order; empty, with the messages said, when the parameters are refused.
std::vector<Phenomenon> list_phenomena(Session& s, const PhenomenaParameters& p);

// The aspects of the Moon, as the Tychonic view places it, to the heliocentric bodies, from
// `first` to `last` (Julian dates, Universal Time), by the aspect set the session has loaded and
// its Moon orbs; in date order. These are the only heliocentric aspects with the Moon.
std::vector<Phenomenon> moon_aspects_to_heliocentric(Session& s, double first, double last);

} // namespace celestark
