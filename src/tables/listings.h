#pragma once
// Listings: every event of the listing tables (the options `table_1_*` to `table_5_*`) charted in
// turn and one chosen respect collected from each (the place of a body, the separation or aspect
// of a pair, a heliocentric node or perihelion, the stars near a body), sorted on its value, each
// collection with the head of its pages. The star catalogue is listed alone too, without events.
#include "session/messages.h"

#include <cstddef>
#include <string>
#include <vector>

namespace celestark {

struct Session;

// The report names.
inline constexpr const char* planetary_listing = "planetary listing";
inline constexpr const char* aspects_listing = "aspects listing";
inline constexpr const char* elements_listing = "elements listing";
inline constexpr const char* stars_listing = "stars listing";
inline constexpr const char* list_only_stars_report = "list only stars";

inline constexpr int listing_table_slots = 5;

// One line of a collection: the event's kind, its name and date, the value it is sorted on
// (degrees) with the text the value column prints, and the orb column.
struct ListingRow {
    std::string event, name, date;
    double value = 0;
    std::string text, orb;
    // A star's Greek letter, in the Latin letters of the Greek font, printed before the name.
    std::string greek;
};

// A collection with the head of its pages: the title, the column heads, the rows, and the events
// that could not be listed (their table, row and the reason), which follow the rows.
struct Listing {
    std::string title;
    std::vector<std::string> columns;
    std::vector<ListingRow> rows;
    std::vector<std::string> skipped;
};

// Stable and ascending on the value: rows of equal value keep the order the tables gave them.
void sort_listing(std::vector<ListingRow>& rows);

// The place from 1 of the body with this glyph in the list of the world view ("Geocentric" and
// "Tychonic": the geo list, "Heliocentric": the helio list, "Lemnicentric": the lemni list), or 0
// when the last chart has no such body. `index` is where the search begins (0 from the start).
int find_body(const Session& s, const std::string& world_view, unsigned char glyph, int index = 0);

// A body as the listing screens name it: its control, caption, the list it is read from and its
// glyph. The angles have no glyph of a list: they are read from the houses.
enum class ListingList { geo, helio, lemni, ascendant, midheaven };
struct ListingBody {
    const char* control;
    const char* caption;
    ListingList list;
    unsigned char glyph;
};
// The bodies of `listing_planetary` in the order of its boxes.
const std::vector<ListingBody>& planetary_listing_bodies();
// The heliocentric bodies with elements: Earth, Mercury to Pallas (node_ and per_ controls).
const std::vector<ListingBody>& element_listing_bodies();
// The bodies of a pair of `listing_aspects` (first column `a_`, second `b_` + the stem).
const std::vector<ListingBody>& aspect_listing_bodies();

// The world views of the aspects listing in the order they run, with their controls and the short
// names of their first and second bodies.
struct ListingView {
    const char* control;
    const char* world_view; // the session's world view while the view runs
    const char* first_short;
    const char* second_short;
    ListingList first_list, second_list; // geo or helio list, whichever the view reads
};
const std::vector<ListingView>& listing_views();

// The entry checks: the Draconic zodiac without a node option; the listing zodiac looked up in
// the zodiac table ("Zodiac: <name> does not exist"); for the aspects listing the aspect set
// ("No aspect set selected"). Reads the listing options into the session and selects the zodiac.
// False when a check refused, with its message shown.
bool start_listing(Session& s, const std::string& report, MessageSink& sink);

// What a run is asked for: the ticked controls of its screen.
struct ListingRequest {
    std::string report;
    std::vector<std::string> ticked; // control names
    bool separations = false;        // the aspects screen lists separations only
    bool grouped = false;            // stars: the hits of all bodies in one list, by star
    bool horizon = false;            // stars: the four angles instead of the bodies
};

// A run over the listing tables: the checks of `start_listing`, then one walk of every table that
// fills every collection asked for, each sorted. Progress and CANCEL through the sink; a cancelled
// run gives nothing. Refused (false) with a message when nothing is ticked or no table is chosen.
bool run_listing(Session& s, const ListingRequest& request, std::vector<Listing>& out,
                 MessageSink& sink);

// The pair walk: every event of the listing tables charted and the separation of the two bodies
// (world view `view`) collected, not yet sorted.
Listing collect_listing_pair(Session& s, const ListingView& view, const ListingBody& first,
                             const ListingBody& second, bool aspects, MessageSink& sink);

// The star catalogue alone, in one of the orders of "LISTING ORDER" and for one selection of
// "LIST THE FOLLOWING STARS" (the controls of `list_only_stars`).
struct StarOrder {
    const char* control;
    const char* caption;
};
const std::vector<StarOrder>& star_listing_orders();
const std::vector<StarOrder>& star_listing_selections();
bool list_only_stars(Session& s, const std::string& order, const std::string& selection,
                     Listing& out, MessageSink& sink);

// The name a listing head gives a body: the short name of its world view and its caption.
std::string listing_body_name(const char* short_name, const ListingBody& body);

} // namespace celestark
