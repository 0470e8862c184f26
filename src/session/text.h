#pragma once
// Text rules: the lenient text-to-number rule for event cells, the number-to-text rule with its
// leading blank, padding, and the text forms of dates, times and positions.
//
// Texts that carry symbols hold the symbol font's character codes as single bytes (the degree
// mark is byte 248, the signs 209 to 220); the drawing layer maps them to shapes.
#include <cstdint>
#include <string>
#include <string_view>

namespace celestark {

// Leading blanks are skipped; a sign, digits and one optional point are taken as far as they go;
// anything else ends the number; a text with no number gives 0. Never throws.
double text_to_number(std::string_view text);
// The same, rounded half to even and held to the 16-bit range, for cells that go through 16-bit
// integers (dates, hours, counts).
std::int16_t text_to_i16(std::string_view text);
std::int16_t clamp_i16(double value);

// Non-negative values get a leading blank: " 5", " 12", "-5", " 2.5".
std::string number_text(double value);
std::string number_text(long long value);
std::string number_text(int value);

// The rightmost `width` characters of `text` after left-padding it with blanks.
std::string pad_left(const std::string& text, std::size_t width);
// `text` padded on the right with blanks to at least `width` characters.
std::string pad_right(const std::string& text, std::size_t width);
std::string trim(std::string_view text);
std::string to_upper(std::string_view text);
// `value` as at least two digits, zero-padded.
std::string two_digits(long long value);

// The options that text forms read.
struct TextOptions {
    bool date_format = true;      // true: 3/JAN/2000; false: JAN 3, 2000; numeric dd/mm or mm/dd
    bool clock_format = false;    // true: 12-hour clock with am/pm
    bool time_output_secs = true; // seconds in times
};

// A year above 0 as it is; 0 or below as its absolute value plus 1 and " B.C.".
std::string year_text(long long year);

std::string format_date(std::string_view day, std::string_view month, std::string_view year,
                        const TextOptions& options);
std::string format_date_numeric(double jd, std::string_view gj, const TextOptions& options);
std::string format_time(std::string_view h, std::string_view m, std::string_view s,
                        const TextOptions& options);
std::string format_time_msecs(std::string_view h, std::string_view m, std::string_view s,
                              std::string_view ms, const TextOptions& options);

std::string format_long_dm(float degrees);
std::string format_signed_dm(float degrees);
std::string format_lat_dm(double radians);
std::string format_lat_dms(double radians);
std::string format_long_dms(double radians);
std::string format_signed_dms(double radians);
std::string format_position_deg(float radians, bool sign_form);
std::string format_position_dm(double radians, bool sign_form);
std::string format_position_dms(double radians, bool sign_form);

// A text with symbol-font codes as UTF-8 for plain output: the bodies, the signs and the degree
// and minute marks as their Unicode symbols; any other code above 127 as "?".
std::string symbol_text_utf8(std::string_view text);

struct HoursMinutesSeconds {
    int h = 0, m = 0, s = 0;
};
// Hours folded into 0 to 24, split with the seconds rounded; 60 seconds carry into the minutes.
HoursMinutesSeconds split_hours(double hours);

struct DayParts {
    long long days = 0;
    int hours = 0, minutes = 0, seconds = 0, msecs = 0;
};
// Each part by truncation on the absolute value; a negative value negates all five.
DayParts split_day_fraction(double value);

} // namespace celestark
