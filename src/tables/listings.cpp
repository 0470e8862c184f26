#include "tables/listings.h"

#include "engine/chart.h"
#include "engine/star_analysis.h"
#include "engine/stars.h"
#include "engine/table_bodies.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/event_time.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "store/event_database.h"
#include "store/event_rows.h"
#include "store/option_sets.h"
#include "store/option_store.h"
#include "store/star_catalogue.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <tuple>

namespace celestark {

namespace {

using L = ListingList;

// The columns of the pages.
const std::vector<std::string> planetary_columns = {"EVENT", "NAME", "DATE",
                                                    "   SID.         TROP.        DEGREES"};
const std::vector<std::string> pair_columns = {"EVENT", "NAME", "DATE", "SEPARATION", "  ORB"};
const std::vector<std::string> star_columns = {"EVENT", "NAME", "DATE", "STAR", "  ORB"};

// A charted event: its cells as the pages show them.
struct ListedEvent {
    std::string event, name, date;
};

std::string fixed(double value, int decimals) {
    char text[32];
    std::snprintf(text, sizeof text, "%*.*f", decimals + 5, decimals, value);
    return text;
}

std::string option_text(Session& s, const std::string& field) {
    return trim(read_option(s, "option_name", field).as_text());
}

// The moments the outer planets' table answers for, with a month's room for the light time; an
// unbounded span without the tables (the session then leaves those bodies out).
bool within_tables(const Session& s, double jd) {
    const BodyTables* tables = s.body_tables.get();
    if (!tables || !tables->planets.loaded()) return true;
    return jd > tables->planets.first_date() + 31 && jd < tables->planets.last_date() - 31;
}

// Why a loaded row cannot be charted, or nothing.
std::string row_fault(const Session& s, const EventRow& row) {
    const double month = text_to_number(row[col::month]), day = text_to_number(row[col::day]);
    if (trim(row[col::year]).empty() || month < 1 || month > 12 || day < 1 || day > 31)
        return "the date is not valid";
    const EventMoment m = reduce_event_time(row);
    if (!std::isfinite(m.event_jd)) return "the date is not valid";
    if (!within_tables(s, m.event_jd)) return "the date lies outside the tables of the planets";
    return {};
}

// Walks every listing table and every event of it: the row into the work slot, the checks, the
// chart in `world_view`, then `each`. Rows that cannot be charted and tables that cannot be
// opened are described in `skipped`. False when CANCEL was pressed.
class TableWalk {
  public:
    TableWalk(Session& s, MessageSink& sink) : s_(s), sink_(sink) {}

    // The tables in use; false when none is chosen.
    bool open() {
        for (int n = 1; n <= listing_table_slots; ++n) {
            if (option_text(s_, "table_" + std::to_string(n) + "_db").empty()) continue;
            auto t = std::make_unique<Slot>();
            t->n = n;
            t->label = option_text(s_, "table_" + std::to_string(n) + "_name");
            if (open_listing_table(s_, n, t->table) != store::Outcome::ok) {
                problems_.push_back("Table " + std::to_string(n) + " (" +
                                    option_text(s_, "table_" + std::to_string(n) + "_db") + ", " +
                                    t->label + ") could not be opened");
                continue;
            }
            rows_ += t->table.table.record_count();
            tables_.push_back(std::move(t));
        }
        return !tables_.empty() || !problems_.empty();
    }
    std::int64_t rows() const { return rows_; }
    const std::vector<std::string>& problems() const { return problems_; }

    // `retrograde`: the charts take the retrograde marks too, which costs a second pass.
    bool walk(const std::string& world_view, bool retrograde, std::int64_t& done,
              const std::function<void(const ListedEvent&)>& each) {
        const std::string kept_view = s_.chart.world_view;
        s_.chart.world_view = world_view;
        bool cancelled = false;
        for (auto& t : tables_) {
            store::Recordset& rs = t->table.table;
            long row = 0;
            store::Outcome o = rs.move_first();
            for (; o == store::Outcome::ok && rs.has_current() && !cancelled; o = rs.move_next()) {
                ++row;
                load_event_row(rs, s_.event_slots, slot::work);
                const EventRow& r = s_.event_slots[slot::work];
                const ListedEvent e{trim(r[col::event]), event_name(r), event_date(r)};
                if (const std::string fault = row_fault(s_, r); !fault.empty()) {
                    problems_.push_back("Table " + std::to_string(t->n) + " (" + t->label +
                                        "), row " + std::to_string(row) + ", " + e.name + ": " +
                                        fault);
                } else {
                    calculate_chart(s_, slot::work, retrograde);
                    each(e);
                }
                if (sink_.progress(static_cast<int>(std::min<std::int64_t>(++done, 2000000000))))
                    cancelled = true;
            }
            if (!cancelled && o != store::Outcome::ok && o != store::Outcome::no_current_record)
                problems_.push_back("Table " + std::to_string(t->n) + " (" + t->label +
                                    "): the rows after row " + std::to_string(row) +
                                    " could not be read");
            if (cancelled) break;
        }
        s_.chart.world_view = kept_view;
        return !cancelled;
    }

    // Each problem once, in the order met.
    std::vector<std::string> skipped() const {
        std::vector<std::string> out;
        for (const std::string& p : problems_)
            if (std::find(out.begin(), out.end(), p) == out.end()) out.push_back(p);
        return out;
    }

  private:
    struct Slot {
        int n = 0;
        std::string label;
        ListingTable table;
    };
    std::string event_name(const EventRow& r) const {
        return trim(trim(r[col::firstname]) + " " + trim(r[col::surname]));
    }
    std::string event_date(const EventRow& r) const {
        return format_date(r[col::day], r[col::month], r[col::year], s_.options.text) + " " +
               format_time(r[col::hours], r[col::mins], r[col::secs], s_.options.text);
    }

    Session& s_;
    MessageSink& sink_;
    std::vector<std::unique_ptr<Slot>> tables_;
    std::vector<std::string> problems_;
    std::int64_t rows_ = 0;
};

// The view a list of a body is read in.
std::string list_view(L list) {
    switch (list) {
    case L::helio:
        return "Heliocentric";
    case L::lemni:
        return "Lemnicentric";
    default:
        return "Geocentric";
    }
}

// A body's longitude in the last chart and its retrograde mark; false when the chart lacks it.
bool body_place(const Session& s, const ListingBody& b, L list, double& longitude, bool& retro) {
    const EngineState& e = s.engine;
    const PositionLists& p = e.pos;
    retro = false;
    if (b.list == L::ascendant || b.list == L::midheaven) {
        if (!e.chart_has_houses) return false;
        longitude = b.list == L::ascendant ? e.ascendant : e.midheaven;
        return true;
    }
    const int at = find_body(s, list_view(list), b.glyph);
    if (at == 0) return false;
    const auto k = static_cast<std::size_t>(at - 1);
    switch (list) {
    case L::helio:
        longitude = p.helio_long[k];
        break;
    case L::lemni:
        longitude = p.lemni_long[k];
        retro = p.lemni_retro[k + 1] == 'R';
        break;
    default:
        longitude = p.geo_long[k];
        retro = p.geo_retro[k + 1] == 'R';
        break;
    }
    return true;
}

// The orb class of a body for the aspect orbs: 1 the Sun and the Earth, 2 the Moon, 4 the node
// and the perigee, 3 the rest.
int orb_class(const ListingBody& b) {
    if (b.list == L::ascendant || b.list == L::midheaven) return 3;
    if (b.glyph == glyph::sun || b.glyph == glyph::earth) return 1;
    if (b.glyph == glyph::moon) return 2;
    if (b.glyph == glyph::north_node || b.glyph == glyph::perigee) return 4;
    return 3;
}
int pair_class(int a, int b) {
    if (a == 4 || b == 4) return 4;
    if (a == 1 || b == 1) return 1;
    if (a == 2 || b == 2) return 2;
    return 3;
}
float class_orb(const AspectTable& t, std::size_t i, int cls) {
    switch (cls) {
    case 1:
        return t.orb_sun[i];
    case 2:
        return t.orb_moon[i];
    case 4:
        return t.orb_elements[i];
    default:
        return t.orb_planets[i];
    }
}

// The aspect of the set nearest within its orb of a separation (degrees), as its glyph and the
// signed difference; false when none is.
bool aspect_within(const AspectTable& t, double separation, int cls, std::string& glyph,
                   double& orb) {
    bool found = false;
    for (std::size_t i = 0; i < static_cast<std::size_t>(t.aspect_count) && i < t.angle.size();
         ++i) {
        const double d = separation - static_cast<double>(t.angle[i]);
        if (std::fabs(d) > class_orb(t, i, cls)) continue;
        if (found && std::fabs(d) >= std::fabs(orb)) continue;
        found = true;
        orb = d;
        glyph = t.glyph[i] > ' ' ? std::string(1, static_cast<char>(t.glyph[i])) : t.digraph[i];
    }
    return found;
}

std::string position_text(double radians, bool retro) {
    return format_position_dms(radians, true) + (retro ? " R" : "  ");
}

Listing planetary_collection(const ListingBody& b, const char* short_name) {
    Listing l;
    l.title = "Sorted Planetary listing for " + listing_body_name(short_name, b);
    l.columns = planetary_columns;
    return l;
}

const char* short_of(L list) {
    switch (list) {
    case L::helio:
        return "HEL ";
    case L::lemni:
        return "LEM ";
    default:
        return "GEO ";
    }
}

// The planetary row of a place: sidereal (the listing zodiac), tropical, and the degrees.
ListingRow place_row(const Session& s, const ListedEvent& e, double longitude, bool retro) {
    const double sid = norm_rad(longitude);
    const double trop = norm_rad(longitude - s.engine.zodiac_offset);
    ListingRow r{e.event, e.name, e.date, norm_deg(sid * rad_to_deg), {}, {}, {}};
    r.text =
        position_text(sid, retro) + "   " + position_text(trop, false) + "  " + fixed(r.value, 4);
    return r;
}

void finish(std::vector<Listing>& lists, const TableWalk& walk) {
    const std::vector<std::string> skipped = walk.skipped();
    for (Listing& l : lists) {
        sort_listing(l.rows);
        l.skipped = skipped;
    }
}

// The stars of the listing's star group with their orbs, placed at the moment of the last chart.
struct ListedStar {
    double longitude = 0;
    float orb = 0;
    std::string label;
};
std::vector<ListedStar> place_stars(Session& s, const std::vector<CatalogueStar>& group,
                                    const std::vector<float>& orbs) {
    std::vector<ListedStar> placed;
    const StarMoment m = star_moment(s);
    for (std::size_t i = 0; i < group.size(); ++i) {
        if (orbs[i] <= 0) continue;
        const CatalogueStar& c = group[i];
        ListedStar p;
        double latitude = 0;
        star_place_of_date(c.ra, c.dec, c.pm_ra, c.pm_dec, m, p.longitude, latitude);
        p.longitude = norm_rad(p.longitude);
        p.orb = orbs[i];
        const std::string greek = trim(c.greek_letter);
        p.label = (greek.empty() ? trim(c.star_number) : greek) + " " + trim(c.constellation);
        if (!trim(c.star_name).empty()) p.label += " " + trim(c.star_name);
        placed.push_back(std::move(p));
    }
    return placed;
}

// The head of a pair's collection.
Listing pair_listing(const ListingView& view, const ListingBody& first, const ListingBody& second,
                     bool aspects) {
    Listing l;
    l.title = std::string(aspects ? " Sorted Aspects listing for "
                                  : " Sorted Angular Separation listing for ") +
              listing_body_name(view.first_short, first) + " and " +
              listing_body_name(view.second_short, second);
    l.columns = pair_columns;
    return l;
}

// What an event gives a pair's collection: the separation of the two bodies in the view, and for
// the aspects listing only an event whose separation is within the orb of an aspect of the set.
std::function<void(const ListedEvent&)> pair_filler(Session& s, std::vector<Listing>& lists,
                                                    std::size_t at, const ListingView& view,
                                                    const ListingBody& first,
                                                    const ListingBody& second, bool aspects) {
    const int cls = pair_class(orb_class(first), orb_class(second));
    return [&s, &lists, at, view, first, second, aspects, cls](const ListedEvent& e) {
        double x = 0, y = 0;
        bool rx = false, ry = false;
        if (!body_place(s, first, view.first_list, x, rx) ||
            !body_place(s, second, view.second_list, y, ry))
            return;
        const double sep = rad_sep(x, y) * rad_to_deg;
        ListingRow r{e.event, e.name, e.date, sep, fixed(sep, 4), {}, {}};
        if (aspects) {
            std::string g;
            double orb = 0;
            if (!aspect_within(s.option_sets.aspects, sep, cls, g, orb)) return;
            r.orb = g + fixed(orb, 2);
        }
        lists[at].rows.push_back(std::move(r));
    };
}

} // namespace

void sort_listing(std::vector<ListingRow>& rows) {
    std::stable_sort(rows.begin(), rows.end(),
                     [](const ListingRow& a, const ListingRow& b) { return a.value < b.value; });
}

int find_body(const Session& s, const std::string& world_view, unsigned char glyph, int index) {
    const PositionLists& p = s.engine.pos;
    const unsigned char* glyphs = p.geo_glyph.data();
    int count = p.geo_count;
    if (world_view == "Heliocentric") {
        glyphs = p.helio_glyph.data();
        count = p.helio_count;
    } else if (world_view == "Lemnicentric") {
        glyphs = p.lemni_glyph.data();
        count = p.lemni_count;
    }
    for (int i = std::max(0, index); i < count; ++i)
        if (glyphs[i] == glyph) return i + 1;
    return 0;
}

const std::vector<ListingBody>& planetary_listing_bodies() {
    static const std::vector<ListingBody> bodies = [] {
        std::vector<ListingBody> b = {{"ascendant", "Ascendant", L::ascendant, 0},
                                      {"mid_heaven", "Mid Heaven", L::midheaven, 0}};
        const char* names[] = {"sun",     "moon",   "mercury", "venus",   "mars",
                               "jupiter", "saturn", "uranus",  "neptune", "pluto"};
        const char* captions[] = {"Sun",     "Moon",   "Mercury", "Venus",   "Mars",
                                  "Jupiter", "Saturn", "Uranus",  "Neptune", "Pluto"};
        static std::vector<std::string> controls; // the names the table points into
        controls.reserve(64);
        const auto add = [&](const std::string& control, const char* caption, L list,
                             unsigned char g) {
            controls.push_back(control);
            b.push_back({controls.back().c_str(), caption, list, g});
        };
        for (int i = 0; i < 10; ++i)
            add(std::string("geo_") + names[i], captions[i], L::geo,
                static_cast<unsigned char>(glyph::sun + i));
        add("moon_node", "Moon Node", L::geo, glyph::north_node);
        add("moon_perigee", "Moon Perigee", L::geo, glyph::perigee);
        struct Extra {
            const char* stem;
            const char* caption;
            unsigned char g;
        };
        const Extra extras[] = {{"chiron", "Chiron", glyph::chiron},
                                {"vesta", "Vesta", glyph::vesta},
                                {"juno", "Juno", glyph::juno},
                                {"ceres", "Ceres", glyph::ceres},
                                {"pallas", "Pallas", glyph::pallas}};
        for (const Extra& x : extras) add(std::string("geo_") + x.stem, x.caption, L::geo, x.g);
        add("hel_earth", "Earth", L::helio, glyph::earth);
        for (int i = 2; i < 10; ++i)
            add(std::string("hel_") + names[i], captions[i], L::helio,
                static_cast<unsigned char>(glyph::sun + i));
        for (const Extra& x : extras) add(std::string("hel_") + x.stem, x.caption, L::helio, x.g);
        add("lem_sun", "Sun", L::lemni, glyph::sun);
        add("lem_earth", "Earth", L::lemni, glyph::earth);
        for (int i = 2; i < 10; ++i)
            add(std::string("lem_") + names[i], captions[i], L::lemni,
                static_cast<unsigned char>(glyph::sun + i));
        for (const Extra& x : extras) add(std::string("lem_") + x.stem, x.caption, L::lemni, x.g);
        return b;
    }();
    return bodies;
}

const std::vector<ListingBody>& element_listing_bodies() {
    static const std::vector<ListingBody> bodies = [] {
        std::vector<ListingBody> b;
        for (const ListingBody& p : planetary_listing_bodies())
            if (p.list == L::helio) b.push_back({p.control + 4, p.caption, L::helio, p.glyph});
        return b;
    }();
    return bodies;
}

const std::vector<ListingBody>& aspect_listing_bodies() {
    static const std::vector<ListingBody> bodies = {
        {"asc", "ASC", L::ascendant, 0},
        {"mc", "MC", L::midheaven, 0},
        {"sun", "Sun", L::geo, glyph::sun},
        {"earth", "Earth", L::geo, glyph::earth},
        {"moon", "Moon", L::geo, glyph::moon},
        {"mercury", "Mercury", L::geo, glyph::mercury},
        {"venus", "Venus", L::geo, glyph::venus},
        {"mars", "Mars", L::geo, glyph::mars},
        {"jupiter", "Jupiter", L::geo, glyph::jupiter},
        {"saturn", "Saturn", L::geo, glyph::saturn},
        {"uranus", "Uranus", L::geo, glyph::uranus},
        {"neptune", "Neptune", L::geo, glyph::neptune},
        {"pluto", "Pluto", L::geo, glyph::pluto},
        {"node", "Node", L::geo, glyph::north_node},
        {"perigee", "Perigee", L::geo, glyph::perigee},
        {"chiron", "Chiron", L::geo, glyph::chiron},
        {"vesta", "Vesta", L::geo, glyph::vesta},
        {"juno", "Juno", L::geo, glyph::juno},
        {"ceres", "Ceres", L::geo, glyph::ceres},
        {"pallas", "Pallas", L::geo, glyph::pallas},
    };
    return bodies;
}

const std::vector<ListingView>& listing_views() {
    static const std::vector<ListingView> views = {
        {"geo", "Geocentric", "GEO ", "GEO ", L::geo, L::geo},
        {"her", "Tychonic", "HEM ", "HEM ", L::geo, L::geo},
        {"geo_hel", "Geo/Helio", "GEO ", "HEL ", L::geo, L::helio},
        {"hel", "Heliocentric", "HEL ", "HEL ", L::helio, L::helio},
        {"lem", "Lemnicentric", "LEM ", "LEM ", L::lemni, L::lemni},
    };
    return views;
}

std::string listing_body_name(const char* short_name, const ListingBody& body) {
    if (body.list == L::ascendant || body.list == L::midheaven) return body.caption;
    return std::string(short_name) + body.caption;
}

bool start_listing(Session& s, const std::string& report, MessageSink& sink) {
    read_listing_options(s);
    if (s.chart.zodiac == "Draconic" && s.chart.moon_node == 0) {
        sink.message("ERROR USING DRACONIC ZODIAC",
                     "For the Draconic Zodiac either the Osculating or the Mean Moon Node Option "
                     "must be selected",
                     MessageIcon::information);
        return false;
    }
    if (!select_zodiac(s, sink)) return false;
    if (report == aspects_listing) {
        const std::string set = trim(s.chart.aspect_set_charts);
        if (set.empty() || set == "None") {
            sink.message(product_word, "No aspect set selected", MessageIcon::information);
            return false;
        }
        load_aspect_set(s, set, sink);
    }
    return true;
}

Listing collect_listing_pair(Session& s, const ListingView& view, const ListingBody& first,
                             const ListingBody& second, bool aspects, MessageSink& sink) {
    std::vector<Listing> lists(1, pair_listing(view, first, second, aspects));
    TableWalk walk(s, sink);
    if (!walk.open()) return lists.front();
    const auto fill = pair_filler(s, lists, 0, view, first, second, aspects);
    std::int64_t done = 0;
    walk.walk(view.world_view, false, done, fill);
    lists.front().skipped = walk.skipped();
    return lists.front();
}

namespace {

// The collections a run fills, each with what an event gives it and the world view it is charted
// in (the aspects listing charts each view separately).
struct Collections {
    using Filler = std::function<void(const ListedEvent&)>;
    Session& s;
    const ListingRequest& q;
    std::vector<Listing> lists;
    std::vector<std::pair<std::string, Filler>> fillers;

    bool ticked(const std::string& name) const {
        return std::find(q.ticked.begin(), q.ticked.end(), name) != q.ticked.end();
    }
    std::size_t add(Listing l) {
        lists.push_back(std::move(l));
        return lists.size() - 1;
    }

    void planetary() {
        for (const ListingBody& b : planetary_listing_bodies()) {
            if (!ticked(b.control)) continue;
            const std::size_t at = add(planetary_collection(b, short_of(b.list)));
            fillers.push_back({"Geocentric", [this, at, b](const ListedEvent& e) {
                                   double lon = 0;
                                   bool retro = false;
                                   if (body_place(s, b, b.list, lon, retro))
                                       lists[at].rows.push_back(place_row(s, e, lon, retro));
                               }});
        }
    }

    void elements() {
        for (const char* kind : {"node_", "per_"}) {
            const bool node = kind[0] == 'n';
            for (const ListingBody& b : element_listing_bodies()) {
                if (!ticked(std::string(kind) + b.control)) continue;
                Listing l;
                l.title = std::string("Sorted Elements listing for HEL ") + b.caption +
                          (node ? " Node" : " Perihelion");
                l.columns = planetary_columns;
                const std::size_t at = add(std::move(l));
                fillers.push_back({"Geocentric", [this, at, b, node](const ListedEvent& e) {
                                       const int k = find_body(s, "Heliocentric", b.glyph);
                                       if (k == 0) return;
                                       const auto i = static_cast<std::size_t>(k - 1);
                                       const PositionLists& p = s.engine.pos;
                                       lists[at].rows.push_back(place_row(
                                           s, e, node ? p.helio_node[i] : p.helio_peri[i], false));
                                   }});
            }
        }
    }

    void pairs() {
        const bool aspects = !q.separations;
        for (const ListingView& v : listing_views()) {
            if (!ticked(v.control)) continue;
            for (const ListingBody& a : aspect_listing_bodies()) {
                if (!ticked(std::string("a_") + a.control)) continue;
                for (const ListingBody& b : aspect_listing_bodies()) {
                    if (!ticked(std::string("b_") + b.control) || a.control == b.control) continue;
                    const std::size_t at = add(pair_listing(v, a, b, aspects));
                    fillers.push_back({v.world_view, pair_filler(s, lists, at, v, a, b, aspects)});
                }
            }
        }
    }

    // One routine for every world view: the group's stars placed once an event, then each body
    // of the view (or the angles) against them. False when the listings have no star group.
    bool stars(MessageSink& sink) {
        const std::array<std::string, 12> user_groups = star_group_names(s);
        const std::string kind = q.horizon ? "horizon" : "longitude";
        const auto field =
            star_group_field(option_text(s, "listings_" + kind + "_star_group"), user_groups);
        if (!field || !s.stars.catalogue) {
            sink.message("NO STAR GROUP",
                         "Choose the star group of the listings on the star options window",
                         MessageIcon::information);
            return false;
        }
        const std::string orb_set = option_text(s, "listings_" + kind + "_orb_set");
        const StarOrbOptions orb_options = read_star_orb_options(s);
        auto group =
            std::make_shared<std::vector<CatalogueStar>>(s.stars.catalogue->group_stars(*field));
        auto orbs = std::make_shared<std::vector<float>>();
        for (const CatalogueStar& c : *group)
            orbs->push_back(star_orb(orb_options, orb_set, c.magnitude, c.absolute_magnitude));

        std::vector<ListingBody> bodies;
        if (q.horizon) {
            bodies = {{"asc", "Ascendant", L::ascendant, 0}, {"mc", "Mid Heaven", L::midheaven, 0}};
        } else {
            for (const ListingBody& b : aspect_listing_bodies())
                if (ticked(b.control)) bodies.push_back(b);
        }
        for (const ListingView& v : listing_views()) {
            if (!ticked(v.control) || std::string(v.control) == "geo_hel") continue;
            const std::size_t first = lists.size();
            for (std::size_t i = 0; i < (q.grouped ? 1 : bodies.size()); ++i) {
                Listing l;
                l.title = " Sorted Star listing for " +
                          (q.grouped ? std::string("the bodies, ") + v.world_view
                                     : listing_body_name(v.first_short, bodies[i]));
                l.columns = star_columns;
                add(std::move(l));
            }
            const bool grouped = q.grouped;
            fillers.push_back(
                {v.world_view,
                 [this, first, bodies, v, grouped, group, orbs](const ListedEvent& e) {
                     const std::vector<ListedStar> placed = place_stars(s, *group, *orbs);
                     for (std::size_t i = 0; i < bodies.size(); ++i) {
                         double lon = 0;
                         bool retro = false;
                         if (!body_place(s, bodies[i], v.first_list, lon, retro)) continue;
                         Listing& l = lists[first + (grouped ? 0 : i)];
                         for (const ListedStar& star : placed) {
                             const double d = rad_diff(star.longitude, lon) * rad_to_deg;
                             if (std::fabs(d) >= star.orb) continue;
                             // Grouped, the hits of a star stand together.
                             ListingRow r;
                             r.event = e.event;
                             r.name = e.name;
                             r.date = e.date;
                             r.value = grouped ? star.longitude * rad_to_deg : std::fabs(d);
                             r.text = star.label;
                             if (grouped)
                                 r.text += ", " + listing_body_name(v.first_short, bodies[i]);
                             r.orb = fixed(d, 2);
                             l.rows.push_back(std::move(r));
                         }
                     }
                 }});
        }
        return true;
    }
};

} // namespace

bool run_listing(Session& s, const ListingRequest& q, std::vector<Listing>& out,
                 MessageSink& sink) {
    out.clear();
    if (!start_listing(s, q.report, sink)) return false;
    Collections c{s, q, {}, {}};
    if (q.report == planetary_listing)
        c.planetary();
    else if (q.report == elements_listing)
        c.elements();
    else if (q.report == aspects_listing)
        c.pairs();
    else if (q.report == stars_listing && !c.stars(sink))
        return false;
    if (c.lists.empty()) {
        sink.message("NOTHING SELECTED", "Tick at least one body (and a world view) to list",
                     MessageIcon::information);
        return false;
    }

    TableWalk walk(s, sink);
    if (!walk.open()) {
        sink.message("NO TABLES SELECTED",
                     "Choose the tables to list on the window of the listing tables",
                     MessageIcon::information);
        return false;
    }
    // One walk a world view, every collection of the view filled from the same chart.
    std::vector<std::string> views;
    for (const auto& f : c.fillers)
        if (std::find(views.begin(), views.end(), f.first) == views.end()) views.push_back(f.first);
    sink.progress_begin("Listing the events of the tables",
                        static_cast<int>(std::min<std::int64_t>(
                            walk.rows() * static_cast<std::int64_t>(views.size()), 2000000000)));
    std::int64_t done = 0;
    bool whole = true;
    for (const std::string& view : views) {
        // Only the planetary listing prints retrograde marks.
        whole = walk.walk(view, q.report == planetary_listing, done, [&](const ListedEvent& e) {
            for (const auto& f : c.fillers)
                if (f.first == view) f.second(e);
        });
        if (!whole) break;
    }
    sink.progress_end();
    if (!whole) return false;
    finish(c.lists, walk);
    out = std::move(c.lists);
    return true;
}

const std::vector<StarOrder>& star_listing_orders() {
    static const std::vector<StarOrder> orders = {
        {"number", "Constellation, star number "},
        {"longitude", "Star Longitude"},
        {"const_long", "Constellation, star longitude"},
        {"const_app_mag", "Constellation, visible magnitude"},
        {"const_abs_mag", "Constellation, absolute magnitude"},
        {"const_ly", "Constellation, distance"},
        {"type_abs", "Spectral type, absolute magnitude"},
        {"class_abs", "Luminosity class, absolute magnitude"},
        {"type_class_abs", "Spectral type, luminosity class,absolute magnitude"},
        {"abs_mag", "Absolute Magnitude"},
    };
    return orders;
}

const std::vector<StarOrder>& star_listing_selections() {
    static const std::vector<StarOrder> selections = {
        {"all_stars", "ALL"},
        {"greek", "All stars with Greek letters"},
        {"star_charts", "The stars displayed in star charts"},
        {"stars_in_charts", "Star Group for charts"},
        {"star_group_3", "Star group 3"},
        {"star_group_4", "Star group 4"},
        {"star_group_5", "Star group 5"},
        {"star_group_6", "Star group 6"},
        {"star_group_7", "Star group 7"},
        {"star_group_8", "Star group 8"},
        {"star_group_9", "Star group 9"},
        {"star_group_10", "Star group 10"},
        {"star_group_11", "Star group 11"},
        {"Star_group_12", "Star group 12"},
    };
    return selections;
}

bool list_only_stars(Session& s, const std::string& order, const std::string& selection,
                     Listing& out, MessageSink& sink) {
    out = Listing();
    const auto& orders = star_listing_orders();
    const auto o = std::find_if(orders.begin(), orders.end(),
                                [&](const StarOrder& x) { return order == x.control; });
    const auto& selections = star_listing_selections();
    const auto sel = std::find_if(selections.begin(), selections.end(),
                                  [&](const StarOrder& x) { return selection == x.control; });
    if (o == orders.end() || sel == selections.end()) {
        sink.message("LIST STARS", "Choose a listing order and the stars to list",
                     MessageIcon::information);
        return false;
    }
    if (!s.stars.stores || !s.stars.stores->stars.is_open()) {
        sink.message("LIST STARS", "The star catalogue stars.mdb is not open",
                     MessageIcon::exclamation);
        return false;
    }
    // The field that marks the chosen stars; empty for all of them.
    std::string field;
    const std::string sc = sel->control;
    if (sc == "star_charts") field = "in_zodiac";
    if (sc == "stars_in_charts") field = "sel_1";
    if (sc.size() > 11 && (sc.rfind("star_group_", 0) == 0 || sc.rfind("Star_group_", 0) == 0))
        field = user_group_fields[static_cast<std::size_t>(std::stoi(sc.substr(11)) - 1)];

    store::Recordset& rs = s.stars.stores->stars;
    const StarRowReader c(rs);
    const int column = field.empty() ? -1 : rs.field_index(field);
    struct Entry {
        std::tuple<int, std::string, std::string, double, double> key;
        ListingRow row;
    };
    std::vector<Entry> entries;
    const std::string oc = o->control;
    for (auto m = rs.move_first(); m == store::Outcome::ok && rs.has_current();
         m = rs.move_next()) {
        if (column >= 0 && !c.flag(rs, column)) continue;
        if (field != "sel_4" && c.flag(rs, c.sel_4)) continue;
        const std::string greek = trim(c.text(rs, c.greek_letter));
        if (sc == "greek" && greek.empty()) continue;
        const StarValues v = c.values(rs);
        const std::string constellation = trim(c.text(rs, c.constellation));
        const double number = c.number(rs, c.number_field);
        const std::string designation = trim(c.text(rs, c.star_number));
        const double longitude = c.number(rs, c.longitude);
        const double distance = c.number(rs, c.distance);
        const std::string type = trim(c.text(rs, c.spectral_type));
        const std::string lum = trim(c.text(rs, c.luminosity_class));
        const auto at = std::find(star_database_constellations.begin(),
                                  star_database_constellations.end(), constellation);
        const int cn = static_cast<int>(at - star_database_constellations.begin());
        Entry e;
        const double absm = v.absolute_magnitude;
        if (oc == "number")
            e.key = {cn, "", "", number, 0};
        else if (oc == "longitude")
            e.key = {0, "", "", longitude, 0};
        else if (oc == "const_long")
            e.key = {cn, "", "", longitude, 0};
        else if (oc == "const_app_mag")
            e.key = {cn, "", "", v.magnitude, 0};
        else if (oc == "const_abs_mag")
            e.key = {cn, "", "", absm, 0};
        else if (oc == "const_ly")
            e.key = {cn, "", "", distance, 0};
        else if (oc == "type_abs")
            e.key = {0, type, "", absm, 0};
        else if (oc == "class_abs")
            e.key = {0, lum, "", absm, 0};
        else if (oc == "type_class_abs")
            e.key = {0, type, lum, absm, 0};
        else
            e.key = {0, "", "", absm, 0};
        ListingRow& r = e.row;
        r.event = constellation;
        r.value = longitude;
        // The star by its Greek letter, else its number in the constellation, then its name.
        r.greek = greek;
        const std::string star_name = trim(c.text(rs, c.star_name));
        if (!greek.empty())
            r.name = star_name;
        else if (!designation.empty() && designation != "0")
            r.name = designation + " " + star_name;
        else
            r.name = trim(trim(number_text(static_cast<long long>(number))) + " " + star_name);
        r.date = format_long_dm(static_cast<float>(longitude));
        char mags[64];
        std::snprintf(mags, sizeof mags, "%6.2f %6.2f  ", v.magnitude,
                      absm >= unknown_absolute_magnitude ? 0.0 : absm);
        r.text = mags + type + " " + lum;
        r.orb = distance > 0 ? fixed(distance, 0) : "";
        entries.push_back(std::move(e));
    }
    rs.move_first();
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.key < b.key; });
    out.title = std::string("Star listing: ") + sel->caption + ", in order of " + trim(o->caption);
    out.columns = {"CONSTELLATION", "STAR", "LONGITUDE", "     m      M  SPECTRUM", "     LY"};
    for (Entry& e : entries) out.rows.push_back(std::move(e.row));
    return true;
}

} // namespace celestark
