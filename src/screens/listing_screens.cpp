#include "screens/listing_screens.h"

#include "session/session.h"
#include "session/text.h"
#include "store/option_store.h"
#include "store/store_files.h"

#include <algorithm>
#include <filesystem>

namespace celestark {

namespace {

std::vector<ListingControl> make_controls(const std::string& report) {
    std::vector<ListingControl> c;
    if (report == planetary_listing) {
        for (const ListingBody& b : planetary_listing_bodies()) {
            const char* frame = b.list == ListingList::helio   ? "HELIOCENTRIC"
                                : b.list == ListingList::lemni ? "LEMNICENTRIC"
                                                               : "GEOCENTRIC";
            c.push_back({b.control, b.caption, frame});
        }
    } else if (report == elements_listing) {
        for (const char* kind : {"node_", "per_"})
            for (const ListingBody& b : element_listing_bodies())
                c.push_back({std::string(kind) + b.control, b.caption,
                             kind[0] == 'n' ? "NODES" : "PERIHELIONS"});
    } else if (report == aspects_listing || report == stars_listing) {
        for (const ListingView& v : listing_views())
            if (report == aspects_listing || std::string(v.control) != "geo_hel")
                c.push_back({v.control, v.world_view, "WORLD VIEWS"});
        if (report == aspects_listing) {
            for (const ListingBody& b : aspect_listing_bodies())
                c.push_back({std::string("a_") + b.control, b.caption, "FIRST BODY"});
            for (const ListingBody& b : aspect_listing_bodies())
                c.push_back({std::string("b_") + b.control, b.caption, "SECOND BODY"});
        } else {
            for (const ListingBody& b : aspect_listing_bodies())
                if (b.list != ListingList::ascendant && b.list != ListingList::midheaven)
                    c.push_back({b.control, b.caption, "BODIES"});
            c.push_back({"grouped", "Group Aspects", "OPTIONS"});
            c.push_back({"horizon", "List stars on the Horizon", "OPTIONS"});
        }
    }
    return c;
}

} // namespace

ListingScreen::ListingScreen(std::string report, bool separations)
    : controls_(make_controls(report)) {
    request_.report = std::move(report);
    request_.separations = separations;
}

const std::string& ListingScreen::title() const {
    static const std::string planetary = listing_planetary_title, aspects = listing_aspects_title,
                             separations = listing_separations_title,
                             elements = listings_elements_title, stars = listings_stars_title;
    if (request_.report == planetary_listing) return planetary;
    if (request_.report == elements_listing) return elements;
    if (request_.report == stars_listing) return stars;
    return request_.separations ? separations : aspects;
}

std::vector<std::string> ListingScreen::frames() const {
    std::vector<std::string> f;
    for (const ListingControl& c : controls_)
        if (std::find(f.begin(), f.end(), c.frame) == f.end()) f.push_back(c.frame);
    return f;
}

bool ListingScreen::set(const std::string& name, bool on) {
    if (std::none_of(controls_.begin(), controls_.end(),
                     [&](const ListingControl& c) { return c.name == name; }))
        return false;
    if (on)
        ticked_.insert(name);
    else
        ticked_.erase(name);
    return true;
}

void ListingScreen::clear() {
    ticked_.clear();
}

bool ListingScreen::make(Session& s, MessageSink& sink) {
    ListingRequest q = request_;
    q.ticked.assign(ticked_.begin(), ticked_.end());
    q.grouped = on("grouped");
    q.horizon = on("horizon");
    std::vector<Listing> made;
    if (!run_listing(s, q, made, sink)) return false;
    listings_ = std::move(made);
    return true;
}

bool ListOnlyStarsScreen::make(Session& s, MessageSink& sink) {
    Listing made;
    if (!list_only_stars(s, order, selection, made, sink)) return false;
    listing_ = std::move(made);
    return true;
}

std::string ListingTableSlot::line() const {
    if (!used()) return "(none)";
    return with_separator(path) + db + "  -  " + to_upper(name);
}

void ListingTablesScreen::open(Session& s) {
    for (int n = 1; n <= listing_table_slots; ++n) {
        const std::string t = "table_" + std::to_string(n) + "_";
        ListingTableSlot& slot = slots_[static_cast<std::size_t>(n - 1)];
        const auto text = [&](const char* field) {
            const store::Value v = read_option(s, "option_name", t + field);
            return v.is_null() ? std::string() : trim(v.as_text());
        };
        slot.path = text("path");
        slot.db = text("db");
        slot.name = text("name");
    }
}

int ListingTablesScreen::tables_in_use() const {
    return static_cast<int>(std::count_if(slots_.begin(), slots_.end(),
                                          [](const ListingTableSlot& t) { return t.used(); }));
}

void ListingTablesScreen::begin_choice(Session& s, int n) {
    chooser_ = EventDatabaseScreen();
    const ListingTableSlot& t = slot(n);
    std::string folder = t.used() && !t.path.empty() ? t.path : s.event_store.event_db_path;
    if (folder.empty()) folder = s.program_directory;
    choose_event_folder(chooser_, folder);
}

bool ListingTablesScreen::pick_database(const std::string& file, MessageSink& sink) {
    chooser_.sel_file = file;
    chooser_.sel_table.clear();
    chooser_.table_list.clear();
    store::TableStore db;
    const std::filesystem::path where = store::find_file(chooser_.db_dir, file);
    if (db.open(where, store::TableStore::Access::read_only) != store::Outcome::ok) {
        sink.message(product_word, "Error opening database", MessageIcon::exclamation);
        return false;
    }
    chooser_.table_list = event_table_lines(db);
    return true;
}

bool ListingTablesScreen::pick_table(Session& s, int n, const std::string& table,
                                     MessageSink& sink) {
    if (n < 1 || n > listing_table_slots || chooser_.sel_file.empty() || table.empty() ||
        table == "[NONE]")
        return false;
    // The table must be an event table that opens; its first row is tested as the database
    // window tests it.
    store::TableStore db;
    store::Recordset rs;
    if (open_event_file(store::find_file(chooser_.db_dir, chooser_.sel_file), table, db, rs,
                        store::TableStore::Access::read_only) != store::Outcome::ok) {
        sink.message("TABLE CORRUPT", "The table " + table + " is not a table of events",
                     MessageIcon::exclamation);
        return false;
    }
    test_event_table(rs, sink);
    ListingTableSlot slot{chooser_.db_dir, chooser_.sel_file, table};
    if (!store(s, n, slot, sink)) return false;
    chooser_.sel_table = table;
    return true;
}

bool ListingTablesScreen::remove(Session& s, int n, MessageSink& sink) {
    if (n < 1 || n > listing_table_slots) return false;
    return store(s, n, ListingTableSlot{}, sink);
}

bool ListingTablesScreen::store(Session& s, int n, const ListingTableSlot& slot,
                                MessageSink& sink) {
    const std::string t = "table_" + std::to_string(n) + "_";
    // A slot without a table holds one blank in each field.
    const auto cell = [](const std::string& v) { return store::Value(v.empty() ? " " : v); };
    if (set_options(s, "option_name",
                    {{t + "path", cell(slot.path)},
                     {t + "db", cell(slot.db)},
                     {t + "name", cell(slot.name)}},
                    sink) != store::Outcome::ok)
        return false;
    slots_[static_cast<std::size_t>(n - 1)] = slot;
    return true;
}

} // namespace celestark
