#include "tables/analysis_database.h"

#include "engine/chart.h"
#include "engine/table_bodies.h"
#include "session/calendar.h"
#include "session/event_time.h"
#include "session/session.h"
#include "session/text.h"
#include "store/event_database.h"
#include "store/event_rows.h"
#include "store/event_schema.h"
#include "store/option_sets.h"
#include "store/table_store.h"
#include "tables/ephemeris_export.h"

#include <array>
#include <cctype>
#include <cmath>

namespace celestark {

namespace fs = std::filesystem;
using store::FieldDef;
using store::FieldType;
using store::IndexDef;
using store::Outcome;
using store::Recordset;
using store::TableStore;
using store::Value;

namespace {

// The event's text fields of a row, in the order of the event table.
constexpr const char* text_fields[] = {
    "F_Event",    "F_Version",  "F_Title",   "F_Surname", "F_Firstname",  "F_Place",
    "F_Lat_deg",  "F_Lat_ns",   "F_lat_min", "F_lat_sec", "F_long_deg",   "F_long_ew",
    "F_long_min", "F_long_sec", "F_day",     "F_month",   "F_year",       "F_gj",
    "F_hours",    "F_mins",     "F_secs",    "F_msecs",   "F_time_zone",  "F_lz",
    "F_med_deg",  "F_med_ew",   "F_med_min", "F_dst",     "F_search_date"};
constexpr int text_count = static_cast<int>(std::size(text_fields));

bool same_name(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(a[i])) !=
            std::toupper(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

// The slot column of each text field.
const std::array<int, text_count>& text_columns() {
    static const auto columns = [] {
        std::array<int, text_count> c{};
        for (int i = 0; i < text_count; ++i)
            for (int k = 0; k < event_columns; ++k)
                if (same_name(event_columns_table[static_cast<std::size_t>(k)].field,
                              text_fields[i]))
                    c[static_cast<std::size_t>(i)] = k;
        return c;
    }();
    return columns;
}

// "MOON_NODE" as an index name: "Moon_node".
std::string index_name(const std::string& point) {
    std::string n = point;
    for (std::size_t i = 1; i < n.size(); ++i)
        n[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(n[i])));
    return n;
}

// Whether a row can be charted: a real date and time within the years the planet tables cover.
bool chartable(const Session& s, const EventRow& row, std::string& why) {
    double day = 0, month = 0, year = 0, hours = 0, mins = 0;
    const bool numbers =
        store::parse_number(row[col::day], day) && store::parse_number(row[col::month], month) &&
        store::parse_number(row[col::year], year) && store::parse_number(row[col::hours], hours);
    const std::string gj = trim(row[col::gj]);
    if (!numbers || month < 1 || month > 12 || std::floor(year) != year || day < 1 ||
        (gj != "G" && gj != "J") ||
        day > days_in_month(static_cast<int>(month), static_cast<int>(year), gj)) {
        why = "the date is not a valid date";
        return false;
    }
    if (hours < 0 || hours > 24 ||
        (!trim(row[col::mins]).empty() &&
         (!store::parse_number(row[col::mins], mins) || mins < 0 || mins > 59))) {
        why = "the time is not a valid time";
        return false;
    }
    const BodyTables* tables = s.body_tables.get();
    if (tables && tables->planets.loaded()) {
        const double jd = reduce_event_time(row).event_jd;
        if (jd < tables->planets.first_date() + 31 || jd > tables->planets.last_date() - 31) {
            why = "the date lies outside the years of the planet tables";
            return false;
        }
    }
    return true;
}

std::string row_name(const EventRow& row) {
    std::string name = trim(row[col::surname]);
    const std::string first = trim(row[col::firstname]);
    if (!first.empty()) name += " " + first;
    return name + ", " + trim(row[col::event]);
}

// Opens the analysis database, making it (and any of its tables it lacks) when `create`.
Outcome open_analysis(const fs::path& file, TableStore& db, bool create, std::string& error) {
    std::error_code ec;
    Outcome o = fs::exists(file, ec) ? db.open(file)
                : create             ? db.create(file)
                                     : Outcome::no_such_file;
    if (o != Outcome::ok) {
        error = std::string(store::describe(o));
        return o;
    }
    for (int t = 0; t < ephemeris_table_count; ++t) {
        if (db.table_exists(ephemeris_tables[t])) {
            std::vector<FieldDef> fields;
            o = db.table_fields(ephemeris_tables[t], fields);
            if (o == Outcome::ok && fields.size() != analysis_fields(t).size())
                o = Outcome::bad_definition;
        } else {
            o = db.create_table(ephemeris_tables[t], analysis_fields(t), analysis_indexes(t));
        }
        if (o != Outcome::ok) {
            error = "the table " + std::string(ephemeris_tables[t]) + ": " +
                    std::string(store::describe(o));
            return o;
        }
    }
    return Outcome::ok;
}

struct AnalysisTables {
    TableStore db;
    std::array<Recordset, ephemeris_table_count> rs;
    std::array<std::vector<double>, ephemeris_table_count> degrees;

    Outcome open(const fs::path& file, bool create, std::string& error) {
        Outcome o = open_analysis(file, db, create, error);
        for (int t = 0; o == Outcome::ok && t < ephemeris_table_count; ++t) {
            o = db.open_recordset(ephemeris_tables[t], rs[static_cast<std::size_t>(t)]);
            if (o != Outcome::ok) error = std::string(store::describe(o));
        }
        return o;
    }
    // The points of the chart the engine holds.
    void take_points(const Session& s) {
        for (int t = 0; t < ephemeris_table_count; ++t)
            ephemeris_longitudes(t, s.engine.pos, s.engine.zodiac_offset_degrees,
                                 degrees[static_cast<std::size_t>(t)]);
    }
    // Writes the points of table t into its record being added or edited.
    Outcome set_points(int t) {
        Recordset& r = rs[static_cast<std::size_t>(t)];
        Outcome o = Outcome::ok;
        int f = text_count;
        for (double d : degrees[static_cast<std::size_t>(t)]) {
            const Outcome one = r.set(f++, std::isnan(d) ? Value() : Value(d));
            if (o == Outcome::ok) o = one;
        }
        return o;
    }
};

// An event charted for the tables: its text fields and the points of each table.
struct Charted {
    std::array<std::string, text_count> texts;
    std::array<std::vector<double>, ephemeris_table_count> degrees;
};

// The steps of a long run told to the sink: every step of a short run, every 32nd of a long one,
// which keeps CANCEL prompt.
struct Steps {
    MessageSink& sink;
    long total = 0, done = 0;
    bool cancelled = false;
    bool next() {
        ++done;
        if (total < 1024 || (done & 31) == 0) cancelled = sink.progress(static_cast<int>(done));
        return !cancelled;
    }
};

// Writes the charted events into the four tables, one table after the other so that each
// table's pages stay at hand while its rows go in. An event whose name, event and version the
// geocentric table holds already is passed over in all four and counted.
Outcome insert_charted(AnalysisTables& a, const std::vector<Charted>& charted, Steps& steps,
                       AnalysisResult& result) {
    std::vector<char> already(charted.size(), 0);
    Outcome o = Outcome::ok;
    for (int t = 0; t < ephemeris_table_count && o == Outcome::ok && !steps.cancelled; ++t) {
        const auto tt = static_cast<std::size_t>(t);
        Recordset& r = a.rs[tt];
        for (std::size_t i = 0; i < charted.size() && o == Outcome::ok; ++i) {
            if (!steps.next()) break;
            if (already[i]) continue;
            o = r.add_new();
            for (int f = 0; f < text_count && o == Outcome::ok; ++f)
                o = r.set(f, Value(charted[i].texts[static_cast<std::size_t>(f)]));
            a.degrees[tt] = charted[i].degrees[tt];
            if (o == Outcome::ok) o = a.set_points(t);
            if (o == Outcome::ok) o = r.update();
            if (t == 0 && o == Outcome::duplicate_key) {
                r.cancel_update();
                already[i] = 1;
                ++result.already_there;
                o = Outcome::ok;
            } else if (t == 0 && o == Outcome::ok) {
                ++result.added;
            }
        }
    }
    return o;
}

void summary(MessageSink& sink, const std::string& done, const AnalysisResult& r) {
    std::string text = done;
    if (r.already_there > 0)
        text += "\n" + std::to_string(r.already_there) +
                (r.already_there == 1 ? " event was" : " events were") +
                " already in the analysis database and " + (r.already_there == 1 ? "was" : "were") +
                " skipped.";
    if (r.not_charted > 0)
        text += "\n" + std::to_string(r.not_charted) + (r.not_charted == 1 ? " row" : " rows") +
                " could not be charted and " + (r.not_charted == 1 ? "was" : "were") +
                " skipped: see the list of rows.";
    sink.message("ANALYSIS DATABASE", text, MessageIcon::information);
}

void failed(MessageSink& sink, const std::string& what, const std::string& error) {
    sink.message("ANALYSIS DATABASE", what + ": " + error + ". Nothing was changed.",
                 MessageIcon::exclamation);
}

} // namespace

std::vector<FieldDef> analysis_fields(int table) {
    std::vector<FieldDef> fields;
    for (const char* name : text_fields)
        for (const FieldDef& f : store::event_table_fields())
            if (f.name == name) fields.push_back(f);
    for (const std::string& p : ephemeris_points(table))
        fields.push_back({p + "_Floating", FieldType::single, 0});
    return fields;
}

std::vector<IndexDef> analysis_indexes(int table) {
    std::vector<IndexDef> indexes;
    for (const IndexDef& ix : store::event_table_indexes()) indexes.push_back(ix);
    for (const std::string& p : ephemeris_points(table))
        if (p != "VP") indexes.push_back({index_name(p), {p + "_Floating"}, false, false});
    return indexes;
}

AnalysisResult add_table_to_analysis(Session& s, Recordset& events, const fs::path& file,
                                     MessageSink& sink) {
    AnalysisResult result;
    if (test_event_table(events, sink) != TableTest::has_events) return result;
    AnalysisTables a;
    if (a.open(file, true, result.error) != Outcome::ok) {
        failed(sink, "The analysis database " + file.filename().string() + " cannot be opened",
               result.error);
        return result;
    }
    select_zodiac(s, sink);
    TableCalculation calc(s);
    const std::string index = events.index_name();
    events.set_index(store::event_primary_index);
    const long count = static_cast<long>(events.record_count());
    store::Transaction work = a.db.begin_transaction();
    // The events are charted first, then written table by table. The progress counts the
    // charts and then the rows of the four tables.
    Steps steps{sink, count * (1 + ephemeris_table_count)};
    sink.progress_begin("ADDING THE TABLE TO THE ANALYSIS DATABASE", static_cast<int>(steps.total));
    std::vector<Charted> charted;
    charted.reserve(static_cast<std::size_t>(count));
    long row_number = 0;
    Outcome o = work.active() ? events.move_first() : work.outcome();
    for (; o == Outcome::ok && !events.eof(); o = events.move_next()) {
        ++row_number;
        if (!steps.next()) break;
        load_event_row(events, s.event_slots, slot::work);
        const EventRow& row = s.event_slots[slot::work];
        std::string why;
        if (!chartable(s, row, why)) {
            sink.input_error("ROW " + std::to_string(row_number) + " (" + row_name(row) +
                             ") - cannot be charted: " + why);
            ++result.not_charted;
            continue;
        }
        calculate_chart(s, slot::work, false);
        a.take_points(s);
        Charted& c = charted.emplace_back();
        for (int f = 0; f < text_count; ++f) {
            const std::string& text = row[static_cast<std::size_t>(text_columns()[f])];
            c.texts[static_cast<std::size_t>(f)] = text.empty() ? std::string(" ") : text;
        }
        c.degrees = a.degrees;
    }
    if (o == Outcome::no_current_record) o = Outcome::ok;
    if (o == Outcome::ok && !steps.cancelled) o = insert_charted(a, charted, steps, result);
    result.cancelled = steps.cancelled;
    sink.progress_end();
    events.set_index(index);
    if (result.cancelled) {
        work.rollback();
        sink.message("ANALYSIS DATABASE",
                     "The adding was cancelled: no event of the table was added.",
                     MessageIcon::information);
        return result;
    }
    if (o != Outcome::ok && o != Outcome::no_current_record) {
        result.error = std::string(store::describe(o)) + " " + a.db.last_error();
        work.rollback();
        failed(sink, "The table could not be added", result.error);
        return result;
    }
    if (const Outcome c = work.commit(); c != Outcome::ok) {
        result.error = std::string(store::describe(c));
        failed(sink, "The table could not be added", result.error);
        return result;
    }
    result.done = true;
    if (result.not_charted > 0) sink.show_input_errors();
    summary(sink,
            std::to_string(result.added) + (result.added == 1 ? " event was" : " events were") +
                " added to the analysis database.",
            result);
    return result;
}

AnalysisResult recalculate_analysis(Session& s, const fs::path& file, MessageSink& sink) {
    AnalysisResult result;
    std::error_code ec;
    if (!fs::exists(file, ec)) {
        sink.message("ANALYSIS DATABASE", "There is no analysis database to recalculate yet.",
                     MessageIcon::information);
        return result;
    }
    AnalysisTables a;
    if (a.open(file, false, result.error) != Outcome::ok) {
        failed(sink, "The analysis database cannot be opened", result.error);
        return result;
    }
    select_zodiac(s, sink);
    TableCalculation calc(s);
    Outcome o = Outcome::ok;
    for (Recordset& r : a.rs)
        if (o == Outcome::ok) {
            o = r.set_index(store::event_primary_index);
            if (o == Outcome::no_current_record) o = Outcome::ok;
        }
    Recordset& geo = a.rs[0];
    const long count = static_cast<long>(geo.record_count());
    store::Transaction work = a.db.begin_transaction();
    // Every event charted from its stored fields (one that cannot be charted keeps its points),
    // then the tables made again from the charts, as an add makes them.
    Steps steps{sink, count * (1 + ephemeris_table_count)};
    sink.progress_begin("RECALCULATING THE ANALYSIS DATABASE", static_cast<int>(steps.total));
    std::vector<Charted> charted;
    charted.reserve(static_cast<std::size_t>(count));
    long row_number = 0;
    if (o == Outcome::ok) o = work.active() ? geo.move_first() : work.outcome();
    EventRow& row = s.event_slots[slot::work];
    for (; o == Outcome::ok && !geo.eof(); o = geo.move_next()) {
        ++row_number;
        if (!steps.next()) break;
        for (int c = 0; c < event_columns; ++c)
            row[static_cast<std::size_t>(c)] =
                std::string(event_columns_table[static_cast<std::size_t>(c)].null_value);
        Charted& c = charted.emplace_back();
        for (int f = 0; f < text_count; ++f) {
            std::string text = geo.get(f).as_text();
            if (text.empty()) text = " ";
            row[static_cast<std::size_t>(text_columns()[f])] = text;
            c.texts[static_cast<std::size_t>(f)] = text;
        }
        std::string why;
        if (chartable(s, row, why)) {
            calculate_chart(s, slot::work, false);
            a.take_points(s);
            c.degrees = a.degrees;
            continue;
        }
        sink.input_error("ROW " + std::to_string(row_number) + " (" + row_name(row) +
                         ") - cannot be charted: " + why);
        ++result.not_charted;
        const std::array<Value, 4> key = {geo.get("F_Surname"), geo.get("F_Firstname"),
                                          geo.get("F_Event"), geo.get("F_Version")};
        for (int t = 0; t < ephemeris_table_count; ++t) {
            Recordset& r = a.rs[static_cast<std::size_t>(t)];
            std::vector<double>& d = c.degrees[static_cast<std::size_t>(t)];
            d.assign(ephemeris_points(t).size(), std::nan(""));
            if (t > 0 && r.seek("=", key) != Outcome::ok) continue;
            for (std::size_t k = 0; k < d.size(); ++k) {
                const Value v = r.get(text_count + static_cast<int>(k));
                if (!v.is_null()) d[k] = v.as_double();
            }
        }
    }
    if (o == Outcome::no_current_record) o = Outcome::ok;
    for (int t = 0; t < ephemeris_table_count && o == Outcome::ok && !steps.cancelled; ++t) {
        const auto tt = static_cast<std::size_t>(t);
        a.rs[tt] = Recordset();
        o = a.db.delete_table(ephemeris_tables[tt]);
        if (o == Outcome::ok)
            o = a.db.create_table(ephemeris_tables[tt], analysis_fields(t), analysis_indexes(t));
        if (o == Outcome::ok) o = a.db.open_recordset(ephemeris_tables[tt], a.rs[tt]);
    }
    AnalysisResult written;
    if (o == Outcome::ok && !steps.cancelled) o = insert_charted(a, charted, steps, written);
    result.added = written.added - result.not_charted;
    result.cancelled = steps.cancelled;
    sink.progress_end();
    if (result.cancelled) {
        work.rollback();
        sink.message("ANALYSIS DATABASE", "The recalculation was cancelled: nothing was changed.",
                     MessageIcon::information);
        return result;
    }
    if (o != Outcome::ok && o != Outcome::no_current_record) {
        result.error = std::string(store::describe(o));
        work.rollback();
        failed(sink, "The analysis database could not be recalculated", result.error);
        return result;
    }
    if (const Outcome c = work.commit(); c != Outcome::ok) {
        result.error = std::string(store::describe(c));
        failed(sink, "The analysis database could not be recalculated", result.error);
        return result;
    }
    result.done = true;
    if (result.not_charted > 0) sink.show_input_errors();
    summary(sink,
            std::to_string(result.added) + (result.added == 1 ? " event was" : " events were") +
                " recalculated with the zodiac " + s.chart.zodiac + ".",
            result);
    return result;
}

bool clear_analysis(const fs::path& file, MessageSink& sink) {
    std::error_code ec;
    if (!fs::exists(file, ec)) return true;
    if (!sink.ask("CLEAR ANALYSIS DATABASE",
                  "Are you sure you want to remove all the events from the analysis database?"))
        return false;
    TableStore db;
    std::string error;
    if (open_analysis(file, db, false, error) != Outcome::ok) {
        failed(sink, "The analysis database cannot be opened", error);
        return false;
    }
    store::Transaction work = db.begin_transaction();
    Outcome o = work.active() ? Outcome::ok : work.outcome();
    for (int t = 0; t < ephemeris_table_count && o == Outcome::ok; ++t) {
        o = db.delete_table(ephemeris_tables[t]);
        if (o == Outcome::ok)
            o = db.create_table(ephemeris_tables[t], analysis_fields(t), analysis_indexes(t));
    }
    if (o == Outcome::ok) o = work.commit();
    if (o != Outcome::ok) {
        failed(sink, "The analysis database could not be cleared", std::string(store::describe(o)));
        return false;
    }
    return true;
}

long analysis_event_count(const fs::path& file) {
    std::error_code ec;
    if (!fs::exists(file, ec)) return 0;
    TableStore db;
    Recordset geo;
    if (db.open(file, TableStore::Access::read_only) != Outcome::ok ||
        db.open_recordset(ephemeris_tables[0], geo) != Outcome::ok)
        return 0;
    return static_cast<long>(geo.record_count());
}

} // namespace celestark
