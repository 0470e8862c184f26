#pragma once
// Options of celestark-cli read strictly (a number option must be a number, a place must be a
// place), and the event a command works on: a stored one (--db FILE --table NAME --row N) or one
// given inline (--date Y-M-D --time h:m:s --zone ZONE --lat 51N30 --lon 0W07 [--cal G|J]
// [--name TEXT]).
#include "session/event.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace celestark {
struct Session;
}

namespace celestark::cli {

using Options = std::map<std::string, std::string>;

// A number: the whole text, nothing before or after it.
std::optional<double> strict_number(const std::string& text);

// The option `name` as a number. Absent: false with `error` empty. Present but not a number:
// false with `error` naming the option.
bool number_option(const Options& o, const char* name, double& out, std::string& error);

// "51N30", "51N30:15" or "0W07": degrees, the direction letter, minutes and seconds.
struct PlaceAngle {
    int degrees = 0, minutes = 0, seconds = 0;
    char direction = 'N';
};
// `letters` are the two directions allowed ("NS" or "EW"), `limit` the largest degrees.
std::optional<PlaceAngle> parse_place_angle(const std::string& text, const char* letters,
                                            int limit);

// Whether the options give an inline event (any of --date, --time, --zone, --lat, --lon).
bool has_inline_event(const Options& o);
// The inline event as an event row, or false with the reason.
bool inline_event(const Options& o, EventRow& row, std::string& error);
// The moments of --jd JD (Universal Time), --tt JDE (ephemeris time), --tt-list FILE (one
// ephemeris time a line) or an inline event, as Universal Time; false with the reason.
bool read_moments(const Options& o, std::vector<double>& moments_ut, std::string& error);

// Puts the event of the options into `slot` of the session: a stored row, an inline one, or with
// --default-event the program's built-in default event.
bool load_event_option(const Options& o, Session& s, int slot, std::string& error);

} // namespace celestark::cli
