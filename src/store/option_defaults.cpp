#include "store/option_defaults.h"

#include "store/store_files.h"

#include "store/option_schema.h"
#include "store/sqlite_support.h"
#include "store/table_store.h"

#include <algorithm>
#include <cctype>
#include <system_error>

namespace celestark::store {

namespace fs = std::filesystem;

namespace {

std::string_view strip(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\r'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
        s.remove_suffix(1);
    return s;
}

// A value as written: quotes keep what is between them.
std::string value_of(std::string_view written) {
    written = strip(written);
    if (written.size() >= 2 && written.front() == '"' && written.back() == '"')
        return std::string(written.substr(1, written.size() - 2));
    return std::string(written);
}

std::vector<std::string_view> split_bars(std::string_view line) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    while (true) {
        const std::size_t bar = line.find('|', start);
        parts.push_back(
            line.substr(start, bar == std::string_view::npos ? line.npos : bar - start));
        if (bar == std::string_view::npos) break;
        start = bar + 1;
    }
    return parts;
}

std::string at_line(int line, const std::string& what) {
    return "line " + std::to_string(line) + ": " + what;
}

// The file's write-ahead log and journal; with `and_file` the file too.
// The value to store in `field` for the text of the source.
bool stored_value(const FieldDef& field, const std::string& written, const OptionSource& source,
                  Value& out, std::string& why) {
    if (field.type == FieldType::text || field.type == FieldType::memo) {
        out = Value(written);
        return true;
    }
    if (written == "True" || written == "False") {
        out = Value(written == "True" ? option_true : option_false);
        return true;
    }
    if (field.type == FieldType::long_integer) {
        long bgr = 0;
        std::string colour = written;
        if (auto it = source.colour_names.find(written); it != source.colour_names.end())
            colour = it->second;
        if (parse_colour(colour, bgr)) {
            out = Value(bgr);
            return true;
        }
    }
    double number = 0;
    if (!parse_number(written, number)) {
        why = "\"" + written + "\" is not a value for " + field.name;
        return false;
    }
    out = Value(number);
    return true;
}

} // namespace

bool parse_colour(std::string_view text, long& bgr) {
    text = strip(text);
    if (text.size() != 7 || text.front() != '#') return false;
    long rgb = 0;
    for (char c : text.substr(1)) {
        if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
        rgb = rgb * 16 + (std::isdigit(static_cast<unsigned char>(c))
                              ? c - '0'
                              : std::tolower(static_cast<unsigned char>(c)) - 'a' + 10);
    }
    const long r = (rgb >> 16) & 0xFF, g = (rgb >> 8) & 0xFF, b = rgb & 0xFF;
    bgr = (b << 16) | (g << 8) | r;
    return true;
}

bool parse_option_source(std::string_view text, OptionSource& out, std::string& error) {
    out = OptionSource();
    enum class Block { none, row, rows, colours } block = Block::none;
    std::string table;
    std::vector<std::string> header; // of a [rows] block, once read
    int number = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        const std::string_view line = strip(text.substr(start, end - start));
        start = end + 1;
        ++number;
        if (line.empty() || line.front() == '#') continue;

        if (line.front() == '[') {
            if (line.back() != ']') {
                error = at_line(number, "a block heading ends with ]");
                return false;
            }
            const std::string_view inside = strip(line.substr(1, line.size() - 2));
            const std::size_t blank = inside.find(' ');
            const std::string_view kind = inside.substr(0, blank);
            table = blank == std::string_view::npos ? "" : std::string(strip(inside.substr(blank)));
            header.clear();
            if (kind == "colours" && table.empty()) {
                block = Block::colours;
            } else if ((kind == "row" || kind == "rows") && !table.empty()) {
                if (!option_table(table)) {
                    error = at_line(number, "no table named " + table);
                    return false;
                }
                block = kind == "row" ? Block::row : Block::rows;
                if (block == Block::row) out.rows.push_back({table, {}, number});
            } else {
                error = at_line(number, "expected [row TABLE], [rows TABLE] or [colours]");
                return false;
            }
            continue;
        }

        switch (block) {
        case Block::none:
            error = at_line(number, "a value before any block");
            return false;
        case Block::colours:
        case Block::row: {
            const std::size_t eq = line.find('=');
            if (eq == std::string_view::npos) {
                error = at_line(number, "expected field = value");
                return false;
            }
            const std::string name(strip(line.substr(0, eq)));
            const std::string value = value_of(line.substr(eq + 1));
            if (name.empty()) {
                error = at_line(number, "a name is missing before =");
                return false;
            }
            if (block == Block::colours) {
                long ignored = 0;
                if (!parse_colour(value, ignored)) {
                    error = at_line(number, "a colour is written #RRGGBB");
                    return false;
                }
                out.colour_names[name] = value;
            } else {
                out.rows.back().cells.emplace_back(name, value);
            }
            break;
        }
        case Block::rows: {
            const auto parts = split_bars(line);
            if (header.empty()) {
                for (std::string_view p : parts) header.emplace_back(strip(p));
                break;
            }
            if (parts.size() != header.size()) {
                error = at_line(number, std::to_string(parts.size()) + " values for " +
                                            std::to_string(header.size()) + " fields");
                return false;
            }
            SourceRow row{table, {}, number};
            for (std::size_t i = 0; i < parts.size(); ++i)
                row.cells.emplace_back(header[i], value_of(parts[i]));
            out.rows.push_back(std::move(row));
            break;
        }
        }
    }
    return true;
}

bool build_option_database(const fs::path& file, std::string_view source, std::string& error) {
    OptionSource parsed;
    if (!parse_option_source(source, parsed, error)) return false;
    for (const char* one_row : {general_options_table, chart_options_table}) {
        const auto count = std::count_if(parsed.rows.begin(), parsed.rows.end(), [&](auto& r) {
            return detail::same_name(r.table, one_row);
        });
        if (count != 1) {
            error = std::string("the table ") + one_row + " takes exactly one row";
            return false;
        }
    }

    return build_store_file(
        file,
        [&](TableStore& db, std::string& why_not) {
            auto fail = [&](const std::string& why) {
                why_not = why;
                return false;
            };
            for (const OptionTableDef& t : option_tables())
                if (db.create_table(t.name, t.fields, t.indexes) != Outcome::ok)
                    return fail("cannot create table " + t.name + ": " + db.last_error());
            for (const SourceRow& row : parsed.rows) {
                const OptionTableDef& def = *option_table(row.table);
                if (detail::same_name(def.name, colour_table) &&
                    row.cells.size() != def.fields.size())
                    return fail(at_line(row.line, "a colour set gives all " +
                                                      std::to_string(def.fields.size()) +
                                                      " fields; this one gives " +
                                                      std::to_string(row.cells.size())));
                Recordset rs;
                if (db.open_recordset(def.name, rs) != Outcome::ok || rs.add_new() != Outcome::ok)
                    return fail("cannot add a row to " + def.name + ": " + db.last_error());
                for (const auto& [field, written] : row.cells) {
                    const auto it =
                        std::find_if(def.fields.begin(), def.fields.end(),
                                     [&](const FieldDef& f) { return f.name == field; });
                    if (it == def.fields.end())
                        return fail(at_line(row.line, "no field " + field + " in " + def.name));
                    Value value;
                    std::string why;
                    if (!stored_value(*it, written, parsed, value, why))
                        return fail(at_line(row.line, why));
                    if (Outcome o = rs.set(field, value); o != Outcome::ok)
                        return fail(at_line(row.line, field + ": " + std::string(describe(o))));
                }
                if (Outcome o = rs.update(); o != Outcome::ok)
                    return fail(
                        at_line(row.line, "row of " + def.name + ": " + std::string(describe(o))));
            }
            return true;
        },
        error);
}

} // namespace celestark::store
