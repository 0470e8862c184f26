#include "session/text.h"

#include "session/angles.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>

namespace celestark {

double text_to_number(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    std::string digits;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        if (text[i] == '-') digits += '-';
        ++i;
    }
    bool any_digit = false, point = false;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (c >= '0' && c <= '9') {
            digits += c;
            any_digit = true;
        } else if (c == '.' && !point) {
            digits += c;
            point = true;
        } else {
            break;
        }
    }
    if (!any_digit) return 0.0;
    double value = 0.0;
    const char* first = digits.data();
    if (*first == '-') ++first; // from_chars takes no sign; apply it after
    const auto [ptr, ec] = std::from_chars(first, digits.data() + digits.size(), value);
    (void)ptr;
    if (ec == std::errc::result_out_of_range)
        value = std::numeric_limits<double>::max();
    else if (ec != std::errc())
        value = 0.0;
    return digits[0] == '-' ? -value : value;
}

std::int16_t clamp_i16(double value) {
    if (!(value == value)) return 0; // NaN
    const double r = std::nearbyint(value);
    return static_cast<std::int16_t>(std::clamp(r, -32768.0, 32767.0));
}

std::int16_t text_to_i16(std::string_view text) {
    return clamp_i16(text_to_number(text));
}

std::string number_text(double value) {
    if (value == std::floor(value) && std::fabs(value) < 1e15)
        return number_text(static_cast<long long>(value));
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.15g", value);
    std::string s = buf;
    return value >= 0 ? " " + s : s;
}

std::string number_text(long long value) {
    return value >= 0 ? " " + std::to_string(value) : std::to_string(value);
}
std::string number_text(int value) {
    return number_text(static_cast<long long>(value));
}

std::string pad_left(const std::string& text, std::size_t width) {
    if (text.size() >= width) return text.substr(text.size() - width);
    return std::string(width - text.size(), ' ') + text;
}

std::string pad_right(const std::string& text, std::size_t width) {
    if (text.size() >= width) return text;
    return text + std::string(width - text.size(), ' ');
}

std::string trim(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(' ');
    return std::string(text.substr(first, last - first + 1));
}

std::string to_upper(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return out;
}

std::string two_digits(long long value) {
    std::string s = std::to_string(value < 0 ? -value : value);
    if (s.size() < 2) s = "0" + s;
    return value < 0 ? "-" + s : s;
}

std::string year_text(long long year) {
    if (year > 0) return std::to_string(year);
    return std::to_string(-year + 1) + " B.C.";
}

namespace {

std::string_view month_short_of(long long month) {
    if (month < 1 || month > 12) return "???";
    return month_short[static_cast<std::size_t>(month - 1)];
}

const std::string degree_mark(1, static_cast<char>(glyph::degree));
const std::string minute_mark(1, static_cast<char>(glyph::minute));

std::string sign_mark(long long sign) {
    return std::string(
        1, static_cast<char>(sign_glyphs[static_cast<std::size_t>(std::clamp(sign, 0LL, 12LL))]));
}

// A value as a whole number by truncation, 0 for what is not a finite number in range: text forms
// must never fault on a value that a damaged record or an overflow produced.
long long whole(double value) {
    if (!(std::fabs(value) < 9e18)) return 0;
    return static_cast<long long>(value);
}

// Whole units of `value` after rounding to 1 / `per_unit`, by adding 0.5 and truncating.
long long rounded(double value, double per_unit) {
    return whole(std::floor(value * per_unit + 0.5));
}

struct Dms {
    long long d = 0, m = 0, s = 0;
};
Dms split_seconds(long long total) {
    return {total / 3600, (total / 60) % 60, total % 60};
}

std::string dms_tail(long long m, long long s) {
    return pad_left(number_text(m), 2) + minute_mark + pad_left(number_text(s), 2) + "\"";
}

std::string am_pm_hour(long long& hour, const TextOptions& options) {
    if (!options.clock_format) return {};
    // Noon shows as hour 0 with " pm": the hour loses 12 from 12 on.
    if (hour >= 12) {
        hour -= 12;
        return " pm";
    }
    return " am";
}

std::string clock_text(std::string_view h, std::string_view m, std::string_view s, bool with_secs,
                       const TextOptions& options, std::string_view ms) {
    long long hour = whole(text_to_number(h));
    const std::string suffix = am_pm_hour(hour, options);
    std::string out = pad_left(number_text(hour), 2) + ":" + two_digits(whole(text_to_number(m)));
    if (with_secs) out += ":" + two_digits(whole(text_to_number(s)));
    if (!ms.empty()) {
        std::string msec = std::to_string(whole(std::fabs(text_to_number(ms))));
        out += "." + std::string(msec.size() < 3 ? 3 - msec.size() : 0, '0') + msec;
    }
    return out + suffix;
}

} // namespace

std::string format_date(std::string_view day, std::string_view month, std::string_view year,
                        const TextOptions& options) {
    const std::string d = trim(day);
    const std::string_view mon = month_short_of(whole(text_to_number(month)));
    const std::string y = year_text(whole(text_to_number(year)));
    if (options.date_format) return d + "/" + std::string(mon) + "/" + y;
    return std::string(mon) + " " + d + ", " + y;
}

std::string format_date_numeric(double jd, std::string_view gj, const TextOptions& options) {
    const CivilDate date = date_from_julian(jd, gj);
    const std::string d = pad_left(number_text(whole(std::floor(date.day))), 2);
    const std::string m = pad_left(number_text(static_cast<long long>(date.month)), 2);
    const std::string y = year_text(date.year);
    return options.date_format ? d + "/" + m + "/" + y : m + "/" + d + "/" + y;
}

std::string format_time(std::string_view h, std::string_view m, std::string_view s,
                        const TextOptions& options) {
    return clock_text(h, m, s, options.time_output_secs, options, {});
}

std::string format_time_msecs(std::string_view h, std::string_view m, std::string_view s,
                              std::string_view ms, const TextOptions& options) {
    return clock_text(h, m, s, true, options, ms.empty() ? std::string_view("0") : ms);
}

std::string format_long_dm(float degrees) {
    const double minutes = norm_mod(static_cast<double>(degrees) * 60.0 + 0.5, 21600.0);
    const long long total = whole(minutes);
    return pad_left(number_text(total / 60), 4) + degree_mark +
           pad_left(number_text(total % 60), 2) + minute_mark;
}

std::string format_signed_dm(float degrees) {
    double v = degrees;
    if (v > 180.0) v = 360.0 - v;
    const std::string mark = v < 0 ? "  -" : "   ";
    const long long total = rounded(std::fabs(v), 60.0);
    return mark + pad_left(number_text(total / 60), 3) + degree_mark +
           pad_left(number_text(total % 60), 2) + minute_mark;
}

std::string format_lat_dm(double radians) {
    const long long total = rounded(std::fabs(radians) * rad_to_deg, 60.0);
    return pad_left(number_text(total / 60), 2) + (radians < 0 ? "S" : "N") +
           pad_left(number_text(total % 60), 2);
}

std::string format_lat_dms(double radians) {
    const Dms a = split_seconds(rounded(std::fabs(radians) * rad_to_deg, 3600.0));
    return " " + pad_left(number_text(a.d), 2) + (radians < 0 ? "S" : "N") + dms_tail(a.m, a.s);
}

std::string format_long_dms(double radians) {
    const long long total = rounded(norm_deg(radians * rad_to_deg), 3600.0) % (360 * 3600);
    const Dms a = split_seconds(total);
    return " " + pad_left(number_text(a.d), 3) + degree_mark + dms_tail(a.m, a.s);
}

std::string format_signed_dms(double radians) {
    const Dms a = split_seconds(rounded(std::fabs(radians) * rad_to_deg, 3600.0));
    return (radians < 0 ? "-" : "") + trim(number_text(a.d)) + degree_mark + dms_tail(a.m, a.s);
}

std::string format_position_deg(float radians, bool sign_form) {
    const long long d = rounded(norm_deg(static_cast<double>(radians) * rad_to_deg), 1.0);
    if (sign_form) return pad_left(number_text(d % 30), 2) + sign_mark(d / 30);
    return pad_left(number_text(d % 360), 3) + degree_mark;
}

std::string format_position_dm(double radians, bool sign_form) {
    const long long total = rounded(norm_deg(radians * rad_to_deg), 60.0);
    if (sign_form) {
        const long long within = total % 1800;
        return pad_left(number_text(within / 60), 2) + sign_mark(total / 1800) +
               pad_left(number_text(within % 60), 2);
    }
    return pad_left(number_text((total / 60) % 360), 3) + degree_mark +
           pad_left(number_text(total % 60), 2) + minute_mark;
}

std::string format_position_dms(double radians, bool sign_form) {
    const long long total = rounded(norm_deg(radians * rad_to_deg), 3600.0) % (360 * 3600);
    const Dms a = split_seconds(total);
    if (sign_form)
        return pad_left(number_text(a.d % 30), 2) + sign_mark(a.d / 30) + dms_tail(a.m, a.s);
    return format_long_dms(radians).substr(1);
}

HoursMinutesSeconds split_hours(double hours) {
    HoursMinutesSeconds out;
    if (!std::isfinite(hours)) return out;
    hours = norm_mod(hours, 24.0);
    out.h = static_cast<int>(hours);
    const double minutes = (hours - out.h) * 60.0;
    out.m = static_cast<int>(minutes);
    out.s = static_cast<int>((minutes - out.m) * 60.0 + 0.5);
    if (out.s >= 60) {
        out.s -= 60;
        ++out.m;
    }
    if (out.m >= 60) {
        out.m -= 60;
        out.h = (out.h + 1) % 24;
    }
    return out;
}

DayParts split_day_fraction(double value) {
    DayParts p;
    double v = std::fabs(value);
    if (!(v < 9e18)) return p;
    p.days = static_cast<long long>(v);
    v = (v - static_cast<double>(p.days)) * 24.0;
    p.hours = static_cast<int>(v);
    v = (v - p.hours) * 60.0;
    p.minutes = static_cast<int>(v);
    v = (v - p.minutes) * 60.0;
    p.seconds = static_cast<int>(v);
    p.msecs = static_cast<int>((v - p.seconds) * 1000.0 + 0.5);
    if (value < 0) {
        p.days = -p.days;
        p.hours = -p.hours;
        p.minutes = -p.minutes;
        p.seconds = -p.seconds;
        p.msecs = -p.msecs;
    }
    return p;
}

} // namespace celestark

namespace celestark {

namespace {

void append_utf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

char32_t symbol_of(unsigned char code) {
    // The Sun to Pluto, then the Earth.
    static constexpr char32_t bodies[] = {0x2609, 0x263D, 0x263F, 0x2640, 0x2642, 0x2643,
                                          0x2644, 0x2645, 0x2646, 0x2647, 0x2641};
    if (code >= glyph::sun && code <= glyph::earth) return bodies[code - glyph::sun];
    if (code >= sign_glyphs[0] && code < sign_glyphs[0] + 12)
        return 0x2648 + (code - sign_glyphs[0]); // Aries to Pisces
    // The aspects by their codes from 192, in the order of their angles: 0, 30, 45, 60, 72, 90,
    // 120, 135, 144, 150, 180, then the septiles and noniles, which have no symbol of their own.
    static constexpr char32_t aspects[] = {0x260C, 0x26BA, 0x2220, 0x26B9, U'Q',   0x25A1,
                                           0x25B3, 0x26BC, U'B',   0x26BB, 0x260D, U'S',
                                           U'S',   U'S',   U'N',   U'N',   U'N'};
    if (code >= 192 && code < 192 + std::size(aspects)) return aspects[code - 192];
    switch (code) {
    case glyph::north_node:
        return 0x260A;
    case glyph::south_node:
        return 0x260B;
    case glyph::chiron:
        return 0x26B7;
    case glyph::ceres:
        return 0x26B3;
    case glyph::pallas:
        return 0x26B4;
    case glyph::juno:
        return 0x26B5;
    case glyph::vesta:
        return 0x26B6;
    default:
        break;
    }
    if (code == glyph::degree) return 0xB0;
    if (code == glyph::minute) return U'\'';
    return U'?';
}

} // namespace

std::string symbol_text_utf8(std::string_view text) {
    std::string out;
    for (const char ch : text) {
        const auto code = static_cast<unsigned char>(ch);
        // The aspects without a symbol of their own are written with their letters: the
        // quintiles, the septiles and the noniles.
        static constexpr std::string_view lettered[] = {"Q",  "",   "",   "",  "bQ", "",  "",
                                                        "S7", "bS", "tS", "N", "bN", "qN"};
        if (code < 0x80)
            out += ch;
        else if (code >= 196 && code < 196 + std::size(lettered) && !lettered[code - 196].empty())
            out += lettered[code - 196];
        else
            append_utf8(out, symbol_of(code));
    }
    return out;
}

} // namespace celestark
