#include "store/store_types.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace celestark::store {

std::string_view describe(Outcome outcome) {
    switch (outcome) {
    case Outcome::ok:
        return "done";
    case Outcome::no_current_record:
        return "no current record";
    case Outcome::not_found:
        return "no matching record";
    case Outcome::bad_bookmark:
        return "not a valid bookmark";
    case Outcome::duplicate_key:
        return "a record with this key exists already";
    case Outcome::no_such_file:
        return "the file does not exist";
    case Outcome::file_exists:
        return "the file exists already";
    case Outcome::damaged_file:
        return "the file is not a database or is damaged";
    case Outcome::no_such_table:
        return "no such table";
    case Outcome::table_exists:
        return "the table exists already";
    case Outcome::no_such_field:
        return "no such field";
    case Outcome::no_such_index:
        return "no such index";
    case Outcome::invalid_name:
        return "not a valid name";
    case Outcome::bad_definition:
        return "the table definition is not valid";
    case Outcome::cannot_create:
        return "cannot create";
    case Outcome::type_mismatch:
        return "the value does not suit the field's type";
    case Outcome::value_out_of_range:
        return "the value is out of the field's range";
    case Outcome::field_too_small:
        return "the text is longer than the field";
    case Outcome::not_editing:
        return "no add or edit is in progress";
    case Outcome::bad_seek:
        return "not a valid seek";
    case Outcome::read_only:
        return "the file cannot be written";
    case Outcome::busy:
        return "the file is in use";
    case Outcome::not_open:
        return "the store is not open";
    case Outcome::not_in_transaction:
        return "not the innermost open transaction";
    case Outcome::io_error:
        return "the file could not be read or written";
    case Outcome::store_error:
        return "the store failed";
    }
    return "unknown outcome";
}

std::vector<std::string> split_field_list(std::string_view list) {
    std::vector<std::string> names;
    std::size_t start = 0;
    while (start <= list.size()) {
        std::size_t end = list.find(';', start);
        if (end == std::string_view::npos) end = list.size();
        std::string_view part = list.substr(start, end - start);
        auto blank = [](char c) { return c == ' ' || c == '\t'; };
        while (!part.empty() && blank(part.front())) part.remove_prefix(1);
        while (!part.empty() && blank(part.back())) part.remove_suffix(1);
        if (!part.empty() && part.front() == '+') {
            part.remove_prefix(1);
            while (!part.empty() && blank(part.front())) part.remove_prefix(1);
        }
        if (part.size() >= 2 && part.front() == '[' && part.back() == ']')
            part = part.substr(1, part.size() - 2);
        if (!part.empty()) names.emplace_back(part);
        start = end + 1;
    }
    return names;
}

bool parse_number(std::string_view text, double& out) {
    auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    if (text.empty() || text.size() > 400) return false;
    // strtod also takes hexadecimal, "inf" and "nan"; stored numbers are plain decimals.
    for (char c : text) {
        bool decimal =
            (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E';
        if (!decimal) return false;
    }
    std::string copy(text);
    char* end = nullptr;
    double value = std::strtod(copy.c_str(), &end);
    if (end != copy.c_str() + copy.size() || !std::isfinite(value)) return false;
    out = value;
    return true;
}

std::string Value::as_text() const {
    switch (kind()) {
    case Kind::null:
        return {};
    case Kind::integer:
        return std::to_string(std::get<std::int64_t>(data_));
    case Kind::real: {
        char buffer[40];
        std::snprintf(buffer, sizeof buffer, "%.15g", std::get<double>(data_));
        return buffer;
    }
    case Kind::text:
        return std::get<std::string>(data_);
    }
    return {};
}

double Value::as_double() const {
    switch (kind()) {
    case Kind::null:
        return 0.0;
    case Kind::integer:
        return static_cast<double>(std::get<std::int64_t>(data_));
    case Kind::real:
        return std::get<double>(data_);
    case Kind::text: {
        double v = 0.0;
        return parse_number(std::get<std::string>(data_), v) ? v : 0.0;
    }
    }
    return 0.0;
}

std::int64_t Value::as_int() const {
    if (kind() == Kind::integer) return std::get<std::int64_t>(data_);
    double v = std::nearbyint(as_double()); // the default rounding: half to even
    constexpr double limit = 9.2e18;
    if (!(v > -limit && v < limit))
        return v < 0 ? std::numeric_limits<std::int64_t>::min()
                     : std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(v);
}

} // namespace celestark::store
