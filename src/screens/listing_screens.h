#pragma once
// The listing windows without their widgets: `listing_planetary`, `listing_aspects` (which lists
// separations too), `listings_elements` and `listings_stars`, each a set of check boxes by name
// and the listings a run makes; `list_only_stars` with its order and selection; and
// `Listing_tables`, the five tables a listing or a similars run walks, kept in the options.
#include "screens/event_database_screen.h"
#include "session/messages.h"
#include "tables/listings.h"

#include <set>
#include <string>
#include <vector>

namespace celestark {

struct Session;

inline constexpr const char* listing_planetary_title = "PLANETARY LISTINGS";
inline constexpr const char* listing_aspects_title = "ASPECT LISTINGS";
inline constexpr const char* listing_separations_title = "SEPARATION LISTINGS";
inline constexpr const char* listings_elements_title = "HELIOCENTRIC ELEMENTS LISTINGS";
inline constexpr const char* listings_stars_title = "STAR LISTINGS";
inline constexpr const char* list_only_stars_title = "LIST STARS";
inline constexpr const char* listings_display_title = "LISTINGS DISPLAY";
inline constexpr const char* listing_tables_title =
    "THE TABLES TO BE INCLUDED WHEN LISTING PLANETARY PHENOMENA OR SIMILARS";

// A check box of a listing window: its name, caption and the frame it stands in.
struct ListingControl {
    std::string name, caption, frame;
};

// One of the four listing windows over the tables.
class ListingScreen {
  public:
    // `report` is one of the report names; `separations` makes the aspects window list
    // separations.
    explicit ListingScreen(std::string report, bool separations = false);

    const std::string& report() const { return request_.report; }
    bool separations() const { return request_.separations; }
    void set_separations(bool on) { request_.separations = on; }
    const std::string& title() const;
    // The boxes of the window, frame by frame.
    const std::vector<ListingControl>& controls() const { return controls_; }
    std::vector<std::string> frames() const;

    // A box ticked or cleared; false for a name the window does not have.
    bool set(const std::string& name, bool on);
    bool on(const std::string& name) const { return ticked_.count(name) > 0; }
    void clear();

    // The run over the listing tables; false when refused or cancelled (the listings made before
    // stay).
    bool make(Session& s, MessageSink& sink);
    const std::vector<Listing>& listings() const { return listings_; }

  private:
    ListingRequest request_;
    std::vector<ListingControl> controls_;
    std::set<std::string> ticked_;
    std::vector<Listing> listings_;
};

// `list_only_stars`: the catalogue in an order, for a selection.
class ListOnlyStarsScreen {
  public:
    std::string order = "number", selection = "all_stars";
    bool make(Session& s, MessageSink& sink);
    const Listing& listing() const { return listing_; }

  private:
    Listing listing_;
};

// A slot of `Listing_tables`.
struct ListingTableSlot {
    std::string path, db, name; // empty when the slot is free
    bool used() const { return !db.empty() && !name.empty(); }
    // The line the window shows: the folder, the database and the table, or "(none)".
    std::string line() const;
};

// `Listing_tables`: the five slots, and the choice of a table for one of them.
class ListingTablesScreen {
  public:
    // Reads the slots from the options.
    void open(Session& s);
    const ListingTableSlot& slot(int n) const { return slots_.at(static_cast<std::size_t>(n - 1)); }
    int tables_in_use() const;

    // "ADD/CHANGE TABLE n": the folder the chooser lists first (that of the slot, else that of
    // the open database), its databases, a database's tables.
    void begin_choice(Session& s, int n);
    void choose_folder(const std::string& folder) { choose_event_folder(chooser_, folder); }
    const EventDatabaseScreen& chooser() const { return chooser_; }
    // The tables of a database of the folder; false with a message when it will not open.
    bool pick_database(const std::string& file, MessageSink& sink);
    // The table chosen: the slot takes the folder, database and table and they are stored.
    bool pick_table(Session& s, int n, const std::string& table, MessageSink& sink);
    // "REMOVE TABLE n": the slot is cleared in the options.
    bool remove(Session& s, int n, MessageSink& sink);

  private:
    bool store(Session& s, int n, const ListingTableSlot& slot, MessageSink& sink);
    std::vector<ListingTableSlot> slots_ = std::vector<ListingTableSlot>(5);
    EventDatabaseScreen chooser_;
};

} // namespace celestark
