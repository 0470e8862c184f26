#pragma once
// The aspect list of `celestark-cli chart`.
#include "session/messages.h"

namespace celestark {
struct Session;
}

namespace celestark::cli {

// Loads the charts' aspect set into the session: the set named by `aspect_set_charts` of the
// option.mdb in the current folder (or in the data folder of the build the program runs from),
// "Standard" when the option is empty; with no option.mdb at all, "Standard" of the program's own
// first rows. False, with the reason on standard error, when no set could be read.
bool load_chart_aspect_set(Session& s, MessageSink& sink);

// Runs chart_aspect_search on the session's chart list and prints each pair in aspect once, as
// CSV lines "aspect,body_a,body_b,digraph,orb_deg" under that header. Bodies left out of the
// positions (Uranus to Pluto without their table) are left out here too.
void print_chart_aspects(Session& s);

} // namespace celestark::cli
