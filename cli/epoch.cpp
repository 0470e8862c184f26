#include "epoch.h"

#include "engine/epoch.h"
#include "event_options.h"
#include "positions.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/session.h"
#include "session/text.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

namespace celestark::cli {

namespace {

double degrees(double radians) {
    return std::fmod(std::fmod(radians * rad_to_deg, 360.0) + 360.0, 360.0);
}

// The epoch place from --epoch-lat and --epoch-lon (and --epoch-place), or the birth's.
bool put_epoch_place(const Options& o, EventRow& row, std::string& error) {
    for (int c = col::place; c <= col::long_sec; ++c)
        row[static_cast<std::size_t>(c + 23)] = row[static_cast<std::size_t>(c)];
    const bool lat = o.count("epoch-lat") > 0, lon = o.count("epoch-lon") > 0;
    if (!lat && !lon) return true;
    if (lat != lon) {
        error = "a different epoch place needs both --epoch-lat and --epoch-lon";
        return false;
    }
    const auto la = parse_place_angle(o.at("epoch-lat"), "NS", 90);
    const auto lo = parse_place_angle(o.at("epoch-lon"), "EW", 180);
    if (!la || !lo) {
        error = "--epoch-lat and --epoch-lon read like 51N30 and 0W07, not '" + o.at("epoch-lat") +
                "' and '" + o.at("epoch-lon") + "'";
        return false;
    }
    row[col::epoch_place] = o.count("epoch-place") ? o.at("epoch-place") : " ";
    row[col::epoch_lat_deg] = std::to_string(la->degrees);
    row[col::epoch_lat_ns] = std::string(1, la->direction);
    row[col::epoch_lat_min] = std::to_string(la->minutes);
    row[col::epoch_lat_sec] = std::to_string(la->seconds);
    row[col::epoch_long_deg] = std::to_string(lo->degrees);
    row[col::epoch_long_ew] = std::string(1, lo->direction);
    row[col::epoch_long_min] = std::to_string(lo->minutes);
    row[col::epoch_long_sec] = std::to_string(lo->seconds);
    return true;
}

} // namespace

bool prepare_epoch(const Options& o, Session& s, int slot, std::string& error) {
    EventRow birth = s.event_slots[slot];
    const std::string kind = trim(birth[col::event]);
    if (!kind.empty() && kind != "Birth") {
        error = "the event is a " + kind + ": only a birth has a prenatal epoch";
        return false;
    }
    // The stored choices of the event, unless the options say otherwise.
    EpochState& ep = s.epoch;
    const int stored_months = text_to_i16(birth[col::epoch_months]);
    ep.months = stored_months >= 6 && stored_months <= 12 ? stored_months : 10;
    ep.sidereal = trim(birth[col::epoch_moon]) != "F";
    double months = ep.months;
    if (!number_option(o, "months", months, error) && !error.empty()) return false;
    if (months != std::floor(months) || months < 6 || months > 12) {
        error = "--months must be a whole number of lunar months from 6 to 12";
        return false;
    }
    ep.months = static_cast<int>(months);
    if (const auto it = o.find("month"); it != o.end()) {
        if (it->second != "sidereal" && it->second != "synodic") {
            error = "--month must be sidereal or synodic, not '" + it->second + "'";
            return false;
        }
        ep.sidereal = it->second == "sidereal";
    }
    if (!put_epoch_place(o, birth, error)) return false;
    s.event_slots[epoch_row::birth] = birth;
    return true;
}

int command_epoch(const Options& o) {
    Session s;
    initialise_session(s, std::filesystem::current_path().string());
    std::string error;
    if (!load_event_option(o, s, slot::first_user, error)) return fail(error);
    if (!prepare_epoch(o, s, slot::first_user, error)) return fail(error);
    // The ascendants come from the houses of each moment.
    s.chart.house_system = "Placidus";
    calculate_epoch(s);
    const EpochState& ep = s.epoch;

    static constexpr const char* names[6] = {"birth", "return", "asc1", "asc2", "desc1", "desc2"};
    std::printf("row,jd_ut,date,time,moon_lon_deg,asc_lon_deg,recommended,text\n");
    for (int k = 0; k < 6; ++k) {
        const auto i = static_cast<std::size_t>(k);
        const EpochMoment& m = ep.moments[i];
        // The date and time in Greenwich time, on the event's calendar.
        EventRow row = s.event_slots[epoch_row::birth + k];
        if (k == 0) to_greenwich(row);
        std::printf("%s,%.6f,%s-%s-%s,%s:%s:%s.%s,%.6f,%.6f,%d,%s\n", names[k], m.jd,
                    trim(row[col::year]).c_str(), trim(row[col::month]).c_str(),
                    trim(row[col::day]).c_str(), trim(row[col::hours]).c_str(),
                    two_digits(text_to_i16(row[col::mins])).c_str(),
                    two_digits(text_to_i16(row[col::secs])).c_str(),
                    pad_left("00" + trim(row[col::msecs]), 3).c_str(), degrees(m.moon),
                    degrees(m.ascendant), k >= 2 && ep.recommended == k - 1 ? 1 : 0,
                    csv_quoted(symbol_text_utf8(ep.lines[i])).c_str());
    }
    return 0;
}

} // namespace celestark::cli
