#include "tables/ephemeris_export.h"

#include "engine/chart.h"
#include "engine/table_bodies.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_sets.h"
#include "store/store_files.h"
#include "store/table_store.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <memory>

namespace celestark {

namespace fs = std::filesystem;
using store::FieldDef;
using store::FieldType;
using store::Outcome;
using store::Value;

namespace {

// Where a point's longitude is read.
enum class From { vp, geo, helio, helio_node, helio_peri, lemni };
struct Point {
    std::string name;
    From from;
    unsigned char glyph;
};

// The planets and the table-driven bodies in the order of the points, as each table lists them.
constexpr std::pair<const char*, unsigned char> planets[] = {
    {"MERCURY", glyph::mercury}, {"VENUS", glyph::venus},   {"MARS", glyph::mars},
    {"JUPITER", glyph::jupiter}, {"SATURN", glyph::saturn}, {"URANUS", glyph::uranus},
    {"NEPTUNE", glyph::neptune}, {"PLUTO", glyph::pluto},   {"CHIRON", glyph::chiron},
    {"VESTA", glyph::vesta},     {"JUNO", glyph::juno},     {"CERES", glyph::ceres},
    {"PALLAS", glyph::pallas}};

// The points of each table with their sources.
const std::array<std::vector<Point>, ephemeris_table_count>& point_table() {
    static const auto tables = [] {
        std::array<std::vector<Point>, ephemeris_table_count> t;
        for (int table : {0, 1}) {
            // In the Tychonic view the planets stand where the heliocentric list has them; the
            // Sun, the Moon and the lunar points stay geocentric.
            const From planet_from = table == 0 ? From::geo : From::helio;
            t[table] = {{"VP", From::vp, 0},
                        {"SUN", From::geo, glyph::sun},
                        {"MOON", From::geo, glyph::moon},
                        {"MOON_NODE", From::geo, glyph::north_node},
                        {"MOON_PERIGEE", From::geo, glyph::perigee}};
            for (const auto& [name, g] : planets) t[table].push_back({name, planet_from, g});
        }
        t[2] = {{"VP", From::vp, 0},
                {"EARTH", From::helio, glyph::earth},
                {"EARTH_PERIHELION", From::helio_peri, glyph::earth}};
        for (const auto& [name, g] : planets) {
            t[2].push_back({name, From::helio, g});
            t[2].push_back({std::string(name) + "_NODE", From::helio_node, g});
            t[2].push_back({std::string(name) + "_PERIHELION", From::helio_peri, g});
        }
        t[3] = {{"VP", From::vp, 0},
                {"SUN", From::lemni, glyph::sun},
                {"EARTH", From::lemni, glyph::earth}};
        for (const auto& [name, g] : planets) t[3].push_back({name, From::lemni, g});
        return t;
    }();
    return tables;
}

int find_glyph(const unsigned char* glyphs, int count, unsigned char g) {
    for (int i = 0; i < count; ++i)
        if (glyphs[i] == g) return i;
    return -1;
}

double circle_degrees(double radians) {
    double d = (radians - two_pi * std::floor(radians / two_pi)) * rad_to_deg;
    if (d >= 360.0 || d < 0) d = 0;
    return d;
}

// One day of the export: the date and the points of the four tables.
struct ExportDay {
    double jd = 0;
    CivilDate date;
    std::string_view weekday;
    std::array<std::vector<double>, ephemeris_table_count> degrees;
};

void calculate_day(Session& s, double jd, ExportDay& day) {
    // Each day as a moment of its own, whatever the engine calculated before.
    s.engine.earth_rates_level = 0;
    calculate_bodies_at(s, jd);
    day.jd = jd;
    day.weekday = day_names[static_cast<std::size_t>(day_of_week(jd))];
    for (int t = 0; t < ephemeris_table_count; ++t)
        ephemeris_longitudes(t, s.engine.pos, s.engine.zodiac_offset_degrees, day.degrees[t]);
}

// Degrees, minutes and seconds, each whole.
struct Dms {
    int degrees, minutes, seconds;
};
Dms split_degrees(double d) {
    const int deg = static_cast<int>(std::floor(d));
    const double m = (d - deg) * 60.0;
    const int min = std::min(59, static_cast<int>(std::floor(m)));
    const int sec = std::min(59, static_cast<int>(std::floor((m - min) * 60.0)));
    return {deg, min, sec};
}

// Runs the days of the span: `write` takes each day; false from it stops with a failure. The
// progress is the percentage of the span done.
ExportOutcome run_days(Session& s, const EphemerisSpan& span, MessageSink& sink,
                       const std::function<bool(const ExportDay&)>& write, long& days) {
    const double t0 = julian_date(1, 1, span.start_year, span.gj, 0);
    const double t1 = julian_date(1, 1, span.end_year + 1, span.gj, 0);
    TableCalculation calc(s);
    ExportDay day;
    int shown = -1;
    sink.progress_begin("SAVING EPHEMERIS TO DISK", 100);
    ExportOutcome outcome = ExportOutcome::written;
    for (double t = t0; t < t1; t += 1.0) {
        const int bar = static_cast<int>((t - t0) * 100 / (t1 - t0));
        if (bar != shown) {
            shown = bar;
            if (sink.progress(bar)) {
                s.run_cancelled = -1;
                outcome = ExportOutcome::cancelled;
                break;
            }
        }
        calculate_day(s, t, day);
        day.date = date_from_julian(t, span.gj);
        if (!write(day)) {
            outcome = ExportOutcome::failed;
            break;
        }
        ++days;
    }
    sink.progress_end();
    return outcome;
}

std::string common_text(const std::string& text, std::size_t width) {
    return text.size() > width ? text.substr(0, width) : text;
}

// A CSV cell: quoted when it holds a comma, a quote or a line end.
std::string csv_cell(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string out = "\"";
    for (char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + '"';
}

template <typename T> void append_number(std::string& out, T value) {
    char buffer[64];
    const auto r = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, r.ptr);
}

void remove_tree(const fs::path& p) {
    std::error_code ec;
    fs::remove_all(p, ec);
}

} // namespace

TableCalculation::TableCalculation(Session& session)
    : s_(session), chart_(std::make_unique<ChartSettings>(session.chart)),
      engine_(std::make_unique<EngineState>(session.engine)),
      work_row_(session.event_slots[slot::work]) {
    ChartSettings& c = s_.chart;
    c.world_view = "Geocentric";
    c.house_system = "None";
    c.stars_in_charts = 0;
    c.quaoar = c.sedna = 0;
    c.chiron = c.asteroids = 1;
    c.helio_moon = 0;
    c.part_of_fortune = 0;
    if (c.moon_node < 1) c.moon_node = 1;
    if (c.moon_peri < 1) c.moon_peri = 1;
    CalcSwitches& k = s_.engine.calc;
    k.calc_planets = k.calc_sun = k.calc_moon_long = k.calc_nodes = true;
    k.calc_moon_lat = k.calc_moon_dist = false;
}

TableCalculation::~TableCalculation() {
    s_.chart = *chart_;
    s_.engine = *engine_;
    s_.event_slots[slot::work] = work_row_;
}

const std::vector<std::string>& ephemeris_points(int table) {
    static const auto names = [] {
        std::array<std::vector<std::string>, ephemeris_table_count> n;
        for (int t = 0; t < ephemeris_table_count; ++t)
            for (const Point& p : point_table()[t]) n[t].push_back(p.name);
        return n;
    }();
    return names.at(static_cast<std::size_t>(table));
}

void ephemeris_longitudes(int table, const PositionLists& p, double vernal_point_degrees,
                          std::vector<double>& degrees) {
    const std::vector<Point>& points = point_table().at(static_cast<std::size_t>(table));
    degrees.assign(points.size(), std::numeric_limits<double>::quiet_NaN());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point& pt = points[i];
        int k = -1;
        switch (pt.from) {
        case From::vp:
            degrees[i] = vernal_point_degrees;
            continue;
        case From::geo:
            k = find_glyph(p.geo_glyph.data(), p.geo_count, pt.glyph);
            if (k >= 0) degrees[i] = circle_degrees(p.geo_long[k]);
            continue;
        case From::lemni:
            k = find_glyph(p.lemni_glyph.data(), p.lemni_count, pt.glyph);
            if (k >= 0) degrees[i] = circle_degrees(p.lemni_long[k]);
            continue;
        default:
            break;
        }
        k = find_glyph(p.helio_glyph.data(), p.helio_count, pt.glyph);
        if (k < 0) continue;
        const auto h = static_cast<std::size_t>(k);
        degrees[i] = circle_degrees(pt.from == From::helio        ? p.helio_long[h]
                                    : pt.from == From::helio_node ? p.helio_node[h]
                                                                  : p.helio_peri[h]);
    }
}

std::vector<FieldDef> ephemeris_fields(int table) {
    std::vector<FieldDef> f = {
        {"Julian_Date", FieldType::double_precision, 0},
        {"Day", FieldType::integer, 0},
        {"Month", FieldType::integer, 0},
        {"Year", FieldType::integer, 0},
        {"Time_Zone", FieldType::text, 3},
        {"Calender", FieldType::text, 1},
        {"Zodiac", FieldType::text, 40},
        {"World_View", FieldType::text, 12},
        {"Day_of_Week", FieldType::text, 9},
    };
    for (const std::string& p : ephemeris_points(table)) {
        f.push_back({p + "_Floating", FieldType::single, 0});
        f.push_back({p + "_Degrees", FieldType::integer, 0});
        f.push_back({p + "_Minutes", FieldType::integer, 0});
        f.push_back({p + "_Seconds", FieldType::integer, 0});
    }
    return f;
}

fs::path partial_export_path(const fs::path& target) {
    fs::path p = target;
    p += ".new";
    return p;
}

ExportResult write_ephemeris_database(Session& s, const EphemerisSpan& span, const fs::path& target,
                                      MessageSink& sink, const ExportHooks& hooks) {
    ExportResult result;
    result.target = target;
    bool cancelled = false;
    if (hooks.partial) hooks.partial(partial_export_path(target));
    const std::string zodiac = common_text(s.chart.zodiac, 40);
    const auto fill = [&](store::TableStore& db, std::string& error) {
        std::array<store::Recordset, ephemeris_table_count> tables;
        for (int t = 0; t < ephemeris_table_count; ++t) {
            const std::vector<FieldDef> fields = ephemeris_fields(t);
            Outcome o = db.create_table(ephemeris_tables[t], fields);
            if (o == Outcome::ok) o = db.open_recordset(ephemeris_tables[t], tables[t]);
            if (o != Outcome::ok) {
                error = "cannot create the table " + std::string(ephemeris_tables[t]) + ": " +
                        std::string(store::describe(o));
                return false;
            }
        }
        const ExportOutcome outcome = run_days(
            s, span, sink,
            [&](const ExportDay& day) {
                for (int t = 0; t < ephemeris_table_count; ++t) {
                    store::Recordset& rs = tables[t];
                    Outcome o = rs.add_new();
                    int f = 0;
                    const auto put = [&](const Value& v) {
                        if (o == Outcome::ok) o = rs.set(f, v);
                        ++f;
                    };
                    put(Value(day.jd));
                    put(Value(static_cast<int>(std::floor(day.date.day))));
                    put(Value(static_cast<int>(day.date.month)));
                    put(Value(static_cast<int>(day.date.year)));
                    put(Value("GMT"));
                    put(Value(span.gj));
                    put(Value(zodiac));
                    put(Value(ephemeris_world_views[t]));
                    put(Value(day.weekday));
                    for (double d : day.degrees[t]) {
                        if (std::isnan(d)) {
                            for (int i = 0; i < 4; ++i) put(Value());
                            continue;
                        }
                        const Dms dms = split_degrees(d);
                        put(Value(d));
                        put(Value(dms.degrees));
                        put(Value(dms.minutes));
                        put(Value(dms.seconds));
                    }
                    if (o == Outcome::ok) o = rs.update();
                    if (o != Outcome::ok) {
                        error = "cannot add a row to " + std::string(ephemeris_tables[t]) + ": " +
                                std::string(store::describe(o));
                        return false;
                    }
                }
                return true;
            },
            result.days);
        cancelled = outcome == ExportOutcome::cancelled;
        if (cancelled) error = "cancelled";
        return outcome == ExportOutcome::written;
    };
    std::string error;
    const bool built = store::build_store_file(target, fill, error);
    if (hooks.partial) hooks.partial({});
    result.outcome = built       ? ExportOutcome::written
                     : cancelled ? ExportOutcome::cancelled
                                 : ExportOutcome::failed;
    if (!built && !cancelled) result.error = error;
    return result;
}

ExportResult write_ephemeris_csv(Session& s, const EphemerisSpan& span, const fs::path& target,
                                 MessageSink& sink, const ExportHooks& hooks) {
    ExportResult result;
    result.target = target;
    const fs::path partial = partial_export_path(target);
    remove_tree(partial);
    std::error_code ec;
    fs::create_directories(partial, ec);
    if (ec) {
        result.error = "cannot make the folder " + partial.string() + ": " + ec.message();
        return result;
    }
    if (hooks.partial) hooks.partial(partial);
    const std::string zodiac = csv_cell(common_text(s.chart.zodiac, 40));
    std::array<std::unique_ptr<std::ofstream>, ephemeris_table_count> files;
    std::string line;
    for (int t = 0; t < ephemeris_table_count; ++t) {
        files[t] = std::make_unique<std::ofstream>(
            partial / (std::string(ephemeris_tables[t]) + ".csv"), std::ios::binary);
        line.clear();
        for (const FieldDef& f : ephemeris_fields(t)) line += (line.empty() ? "" : ",") + f.name;
        *files[t] << line << '\n';
    }
    const ExportOutcome outcome = run_days(
        s, span, sink,
        [&](const ExportDay& day) {
            for (int t = 0; t < ephemeris_table_count; ++t) {
                line.clear();
                append_number(line, day.jd);
                for (int v : {static_cast<int>(std::floor(day.date.day)),
                              static_cast<int>(day.date.month), static_cast<int>(day.date.year)}) {
                    line += ',';
                    append_number(line, v);
                }
                line += ",GMT,";
                line += span.gj;
                line += ',';
                line += zodiac;
                line += ',';
                line += ephemeris_world_views[t];
                line += ',';
                line += day.weekday;
                for (double d : day.degrees[t]) {
                    if (std::isnan(d)) {
                        line += ",,,,";
                        continue;
                    }
                    const Dms dms = split_degrees(d);
                    line += ',';
                    append_number(line, static_cast<float>(d));
                    for (int v : {dms.degrees, dms.minutes, dms.seconds}) {
                        line += ',';
                        append_number(line, v);
                    }
                }
                line += '\n';
                if (!files[t]->write(line.data(), static_cast<std::streamsize>(line.size())))
                    return false;
            }
            return true;
        },
        result.days);
    bool ok = outcome == ExportOutcome::written;
    for (auto& f : files) {
        f->close();
        ok = ok && !f->fail();
    }
    if (ok) {
        // The four files appear together: the whole folder moves into place, or each file into
        // a folder that is there already.
        if (!fs::exists(target, ec)) {
            fs::rename(partial, target, ec);
        } else {
            for (const char* t : ephemeris_tables) {
                const std::string name = std::string(t) + ".csv";
                if (!ec) fs::rename(partial / name, target / name, ec);
            }
        }
        if (ec)
            result.error = "cannot move the files into " + target.string() + ": " + ec.message();
        ok = !ec;
    } else if (outcome != ExportOutcome::cancelled) {
        result.error = "cannot write the files in " + partial.string();
    }
    remove_tree(partial);
    if (hooks.partial) hooks.partial({});
    result.outcome = ok                                    ? ExportOutcome::written
                     : outcome == ExportOutcome::cancelled ? ExportOutcome::cancelled
                                                           : ExportOutcome::failed;
    return result;
}

bool check_ephemeris_request(Session& s, const EphemerisRequest& r, EphemerisSpan& span,
                             MessageSink& sink) {
    bool ok = true;
    const auto line = [&](const std::string& text) {
        sink.input_error(text);
        ok = false;
    };
    // A whole number of 16 bits, possibly negative, and nothing else.
    const auto year = [](const std::string& typed, int& out) {
        const std::string text = trim(typed);
        if (text.empty()) return false;
        int v = 0;
        const char* first = text.data() + (text[0] == '+' ? 1 : 0);
        const auto [end, ec] = std::from_chars(first, text.data() + text.size(), v);
        if (ec != std::errc() || end != text.data() + text.size()) return false;
        if (v < -32768 || v > 32766) return false;
        out = v;
        return true;
    };
    const bool start_ok = year(r.start_year, span.start_year);
    if (!start_ok) {
        line("START YEAR - Cannot be left blank or with only spaces ");
        line("             0 and negative years are allowed");
        line("             NOTE: enter for example year -35 for 36BC");
    }
    const bool end_ok = year(r.end_year, span.end_year);
    if (!end_ok) {
        line("END YEAR - Cannot be left blank or with only spaces ");
        line("           0 and negative years are allowed");
        line("           NOTE: enter for example year -35 for 36BC");
    }
    if (start_ok && end_ok && span.start_year >= span.end_year)
        line("START YEAR must be less then the END YEAR");
    const std::string name = trim(r.file_name);
    if (name.empty()) {
        line("FILE NAME - Cannot be left blank or with only spaces ");
    } else {
        for (unsigned char c : name)
            if (!std::isalnum(c) || c > 127) {
                line("FILE NAME - NOVA-LINK only accepts letters and digits");
                break;
            }
    }
    span.gj = r.julian ? "J" : "G";
    // The outer planets come from their table, which ends the session outside its dates: a
    // month's margin within them for the light time.
    const BodyTables* tables = s.body_tables.get();
    if (start_ok && end_ok && span.start_year < span.end_year && tables &&
        tables->planets.loaded()) {
        const double first = tables->planets.first_date() + 31;
        const double last = tables->planets.last_date() - 31;
        int lowest = date_from_julian(first, span.gj).year;
        if (julian_date(1, 1, lowest, span.gj, 0) < first) ++lowest;
        const int highest = date_from_julian(last, span.gj).year - 1;
        if (span.start_year < lowest || span.end_year > highest)
            line("THE YEARS MUST LIE BETWEEN " + std::to_string(lowest) + " AND " +
                 std::to_string(highest) + ", THE YEARS OF THE PLANET TABLES");
    }
    if (!ok) sink.show_input_errors();
    return ok;
}

ExportResult save_ephemeris(Session& s, const EphemerisRequest& r, MessageSink& sink,
                            const ExportHooks& hooks) {
    ExportResult result;
    EphemerisSpan span;
    if (!check_ephemeris_request(s, r, span, sink)) {
        result.outcome = ExportOutcome::refused;
        return result;
    }
    const fs::path folder = r.folder.empty() ? fs::path(s.program_directory) : fs::path(r.folder);
    const std::string name = trim(r.file_name) + (r.csv ? "" : ".mdb");
    const fs::path target = folder / name;
    result.target = target;
    std::error_code ec;
    if (fs::exists(target, ec) &&
        !sink.ask("DUPLICATE FILE NAME",
                  "The database file " + name + " already exists. Do you wish to overwrite it?")) {
        result.outcome = ExportOutcome::refused;
        return result;
    }
    select_zodiac(s, sink);
    s.run_cancelled = 0;
    result = r.csv ? write_ephemeris_csv(s, span, target, sink, hooks)
                   : write_ephemeris_database(s, span, target, sink, hooks);
    if (result.outcome == ExportOutcome::failed)
        sink.message(product_word, "The ephemeris could not be saved: " + result.error,
                     MessageIcon::exclamation);
    return result;
}

} // namespace celestark
