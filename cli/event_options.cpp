#include "event_options.h"

#include "engine/chart.h"
#include "session/calendar.h"
#include "session/event_time.h"
#include "session/session.h"
#include "session/text.h"
#include "session/zones.h"
#include "store/event_database.h"
#include "store/event_rows.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <fstream>

namespace celestark::cli {

std::optional<double> strict_number(const std::string& text) {
    const std::string t = trim(text);
    if (t.empty()) return std::nullopt;
    char* end = nullptr;
    const double v = std::strtod(t.c_str(), &end);
    if (end != t.c_str() + t.size() || !std::isfinite(v)) return std::nullopt;
    return v;
}

bool number_option(const Options& o, const char* name, double& out, std::string& error) {
    error.clear();
    const auto it = o.find(name);
    if (it == o.end()) return false;
    const auto v = strict_number(it->second);
    if (!v) {
        error = std::string("--") + name + " must be a number, not '" + it->second + "'";
        return false;
    }
    out = *v;
    return true;
}

namespace {

// Whole digits, nothing else.
std::optional<int> whole(const std::string& text) {
    if (text.empty() || text.size() > 9) return std::nullopt;
    for (char c : text)
        if (!std::isdigit(static_cast<unsigned char>(c))) return std::nullopt;
    return std::atoi(text.c_str());
}

// "a<sep>b<sep>c", each part whole digits; the first may carry a minus (years before 1 AD).
std::optional<std::array<int, 3>> three_parts(const std::string& text, char sep,
                                              bool signed_first) {
    std::array<int, 3> out{};
    std::size_t start = 0;
    for (int part = 0; part < 3; ++part) {
        std::size_t end = part == 2 ? text.size() : text.find(sep, start + (part == 0 ? 1 : 0));
        if (end == std::string::npos) return std::nullopt;
        std::string piece = text.substr(start, end - start);
        bool negative = false;
        if (part == 0 && signed_first && !piece.empty() && piece[0] == '-') {
            negative = true;
            piece.erase(0, 1);
        }
        const auto v = whole(piece);
        if (!v) return std::nullopt;
        out[static_cast<std::size_t>(part)] = negative ? -*v : *v;
        start = end + 1;
    }
    return out;
}

} // namespace

std::optional<PlaceAngle> parse_place_angle(const std::string& text, const char* letters,
                                            int limit) {
    const std::string t = to_upper(trim(text));
    const std::size_t at = t.find_first_of(letters);
    if (at == std::string::npos || at == 0) return std::nullopt;
    PlaceAngle a;
    a.direction = t[at];
    const auto degrees = whole(t.substr(0, at));
    if (!degrees) return std::nullopt;
    a.degrees = *degrees;
    std::string rest = t.substr(at + 1);
    std::string seconds;
    if (const std::size_t colon = rest.find(':'); colon != std::string::npos) {
        seconds = rest.substr(colon + 1);
        rest = rest.substr(0, colon);
    }
    const auto minutes = rest.empty() ? std::optional<int>(0) : whole(rest);
    const auto secs = seconds.empty() ? std::optional<int>(0) : whole(seconds);
    if (!minutes || !secs || *minutes > 59 || *secs > 59) return std::nullopt;
    a.minutes = *minutes;
    a.seconds = *secs;
    const double value = a.degrees + a.minutes / 60.0 + a.seconds / 3600.0;
    if (value > limit) return std::nullopt;
    return a;
}

bool has_inline_event(const Options& o) {
    for (const char* name : {"date", "time", "zone", "lat", "lon"})
        if (o.count(name)) return true;
    return false;
}

bool inline_event(const Options& o, EventRow& row, std::string& error) {
    for (const char* name : {"date", "time", "zone", "lat", "lon"})
        if (!o.count(name)) {
            error = "an inline event needs --date Y-M-D --time h:m:s --zone ZONE --lat 51N30 "
                    "--lon 0W07 (--" +
                    std::string(name) + " is missing)";
            return false;
        }
    const auto date = three_parts(o.at("date"), '-', true);
    if (!date || (*date)[1] < 1 || (*date)[1] > 12 || (*date)[2] < 1 || (*date)[2] > 31 ||
        std::abs((*date)[0]) > 32767) {
        error = "--date must read Y-M-D with a month 1 to 12 and a day 1 to 31, not '" +
                o.at("date") + "'";
        return false;
    }
    std::string cal = "G";
    if (const auto it = o.find("cal"); it != o.end()) cal = it->second;
    if (cal != "G" && cal != "J") {
        error = "--cal must be G or J, not '" + cal + "'";
        return false;
    }
    const int days = days_in_month((*date)[1], (*date)[0], cal);
    if ((*date)[2] > days) {
        error = "--date " + o.at("date") + ": that month has " + std::to_string(days) + " days";
        return false;
    }
    const auto time = three_parts(o.at("time"), ':', false);
    if (!time || (*time)[0] > 23 || (*time)[1] > 59 || (*time)[2] > 59) {
        error = "--time must read h:m:s within 0:0:0 to 23:59:59, not '" + o.at("time") + "'";
        return false;
    }
    const auto lat = parse_place_angle(o.at("lat"), "NS", 90);
    if (!lat) {
        error = "--lat must read like 51N30 or 33S52:10 (at most 90 degrees), not '" + o.at("lat") +
                "'";
        return false;
    }
    const auto lon = parse_place_angle(o.at("lon"), "EW", 180);
    if (!lon) {
        error = "--lon must read like 0W07 or 151E12:30 (at most 180 degrees), not '" +
                o.at("lon") + "'";
        return false;
    }
    const std::string zone = to_upper(trim(o.at("zone")));
    ZoneMeridian meridian;
    const bool local = zone == "LMT" || zone == "LOCAL";
    if (!local) {
        meridian = zone_meridian(zone);
        if (meridian.unknown) {
            error = "--zone must be a zone of the zone table (GMT, CET, EST, ...) or LMT, not '" +
                    o.at("zone") + "'";
            return false;
        }
    }

    row = make_default_event();
    row[col::bookmark] = "";
    row[col::event] = " ";
    row[col::title] = " ";
    row[col::firstname] = " ";
    row[col::surname] = o.count("name") ? o.at("name") : "Inline event";
    row[col::place] = o.count("place") ? o.at("place") : " ";
    row[col::day] = std::to_string((*date)[2]);
    row[col::month] = std::to_string((*date)[1]);
    row[col::year] = std::to_string((*date)[0]);
    row[col::gj] = cal;
    row[col::hours] = std::to_string((*time)[0]);
    row[col::mins] = std::to_string((*time)[1]);
    row[col::secs] = std::to_string((*time)[2]);
    row[col::msecs] = "0";
    row[col::lat_deg] = std::to_string(lat->degrees);
    row[col::lat_ns] = std::string(1, lat->direction);
    row[col::lat_min] = std::to_string(lat->minutes);
    row[col::lat_sec] = std::to_string(lat->seconds);
    row[col::long_deg] = std::to_string(lon->degrees);
    row[col::long_ew] = std::string(1, lon->direction);
    row[col::long_min] = std::to_string(lon->minutes);
    row[col::long_sec] = std::to_string(lon->seconds);
    if (local) {
        row[col::lz] = "L";
        row[col::time_zone] = " ";
        row[col::med_deg] = "0";
        row[col::med_ew] = "W";
        row[col::med_min] = "0";
        row[col::dst] = "0";
    } else {
        row[col::lz] = "Z";
        row[col::time_zone] = zone;
        row[col::med_deg] = meridian.degrees;
        row[col::med_ew] = meridian.ew;
        row[col::med_min] = meridian.minutes;
        row[col::dst] = meridian.dst;
    }
    row[col::epoch_exists] = "N";
    return true;
}

bool read_moments(const Options& o, std::vector<double>& moments_ut, std::string& error) {
    double value = 0;
    if (number_option(o, "jd", value, error)) {
        moments_ut.push_back(value);
        return true;
    }
    if (!error.empty()) return false;
    if (number_option(o, "tt", value, error)) {
        moments_ut.push_back(ut_from_ephemeris_time(value));
        return true;
    }
    if (!error.empty()) return false;
    if (const auto it = o.find("tt-list"); it != o.end()) {
        std::ifstream in(it->second);
        if (!in) {
            error = "cannot read " + it->second;
            return false;
        }
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            const std::string t = trim(line);
            if (t.empty() || t[0] == '#') continue;
            const auto jde = strict_number(t);
            if (!jde) {
                error = it->second + ", line " + std::to_string(number) + ": not a Julian date: '" +
                        t + "'";
                return false;
            }
            moments_ut.push_back(ut_from_ephemeris_time(*jde));
        }
        return true;
    }
    if (has_inline_event(o)) {
        EventRow row;
        if (!inline_event(o, row, error)) return false;
        moments_ut.push_back(reduce_event_time(row).event_jd);
        return true;
    }
    error = "give --jd JD, --tt JDE, --tt-list FILE or an inline event (--date Y-M-D --time "
            "h:m:s --zone ZONE --lat 51N30 --lon 0W07)";
    return false;
}

bool load_event_option(const Options& o, Session& s, int slot, std::string& error) {
    if (o.count("default-event")) {
        s.event_slots[slot] = s.event_slots[slot::default_event];
        return true;
    }
    if (has_inline_event(o)) {
        EventRow row;
        if (!inline_event(o, row, error)) return false;
        s.event_slots[slot] = row;
        return true;
    }
    const auto db = o.find("db"), table = o.find("table"), row = o.find("row");
    if (db == o.end() || table == o.end() || row == o.end()) {
        error = "give a stored event (--db FILE --table NAME --row N), an inline one (--date "
                "Y-M-D --time h:m:s --zone ZONE --lat 51N30 --lon 0W07) or --default-event";
        return false;
    }
    const auto wanted = whole(trim(row->second));
    if (!wanted || *wanted < 1) {
        error = "--row must be a whole number from 1, not '" + row->second + "'";
        return false;
    }
    store::TableStore file;
    store::Recordset records;
    const store::Outcome opened = open_event_file(db->second, table->second, file, records,
                                                  store::TableStore::Access::read_only);
    if (opened == store::Outcome::bad_definition) {
        error = "the table " + table->second + " of " + db->second +
                " is not an event table: it lacks the event fields or their index";
        return false;
    }
    if (opened != store::Outcome::ok) {
        error = "cannot open the table " + table->second + " of " + db->second + ": " +
                std::string(store::describe(opened));
        return false;
    }
    store::Outcome at = records.move_first();
    for (int i = 1; i < *wanted && at == store::Outcome::ok; ++i) at = records.move_next();
    if (at != store::Outcome::ok || !records.has_current()) {
        error = "there is no event " + std::to_string(*wanted) + ": the table holds " +
                std::to_string(records.record_count());
        return false;
    }
    load_event_row(records, s.event_slots, slot);
    return true;
}

} // namespace celestark::cli
