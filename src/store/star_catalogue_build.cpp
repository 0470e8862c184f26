// Builds stars.mdb from the published catalogue in data/stars (see docs/data.md, "Star
// catalogue"): every star of the CSV in one row of `stars`, numbered by brightness within its
// constellation, and the sample rows of `fixed`.
#include "session/angles.h"
#include "session/constants.h"
#include "session/star_state.h"
#include "store/star_catalogue.h"
#include "store/store_files.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>

namespace celestark {

namespace fs = std::filesystem;
using store::Outcome;
using store::Recordset;
using store::TableStore;
using store::Value;

namespace {

// The zodiac band of the star zodiac: ecliptic latitude within 9 degrees either side, and bright
// enough to read on the wheel.
constexpr double zodiac_band_deg = 9.0;
constexpr double zodiac_magnitude_limit = 4.5;

// The Bayer letters as the letters of the Greek font that shows them (a = alpha, q = theta ...).
constexpr std::pair<const char*, const char*> greek_font_letters[] = {
    {"alpha", "a"},  {"beta", "b"}, {"gamma", "g"}, {"delta", "d"}, {"epsilon", "e"},
    {"zeta", "z"},   {"eta", "h"},  {"theta", "q"}, {"iota", "i"},  {"kappa", "k"},
    {"lambda", "l"}, {"mu", "m"},   {"nu", "n"},    {"xi", "x"},    {"omicron", "o"},
    {"pi", "p"},     {"rho", "r"},  {"sigma", "s"}, {"tau", "t"},   {"upsilon", "u"},
    {"phi", "f"},    {"chi", "c"},  {"psi", "y"},   {"omega", "w"}};

// Sample fixed points, all inactive: the user makes his own on the fixed points screen.
struct SamplePoint {
    const char* name;
    const char* zodiac;
    int degs, mins;
    const char* world_view;
    unsigned char sigil;
};
constexpr SamplePoint sample_points[] = {
    {"Galactic Centre (J2000)", "Tropical", 266, 51, "Geocentric", 174},
    {"North Galactic Pole (J2000)", "Tropical", 180, 1, "Geocentric", 175},
    {"Perihelion of the Earth (J2000)", "Tropical", 102, 56, "Heliocentric", 178},
};

// One record of a CSV file with the quoting of RFC 4180; false at the end of the file.
bool read_record(std::istream& in, std::vector<std::string>& cells) {
    cells.clear();
    std::string line;
    if (!std::getline(in, line)) return false;
    std::string cell;
    bool quoted = false;
    for (std::size_t i = 0;; ++i) {
        if (i == line.size()) {
            if (!quoted) break;
            // A quoted cell that runs over a line end.
            cell += '\n';
            if (!std::getline(in, line)) break;
            i = static_cast<std::size_t>(-1);
            continue;
        }
        const char ch = line[i];
        if (quoted) {
            if (ch == '"' && i + 1 < line.size() && line[i + 1] == '"') {
                cell += '"';
                ++i;
            } else if (ch == '"') {
                quoted = false;
            } else {
                cell += ch;
            }
        } else if (ch == '"') {
            quoted = true;
        } else if (ch == ',') {
            cells.push_back(std::move(cell));
            cell.clear();
        } else if (ch != '\r') {
            cell += ch;
        }
    }
    cells.push_back(std::move(cell));
    return true;
}

// A CSV file as rows of named cells.
struct CsvTable {
    std::map<std::string, std::size_t> columns;
    std::vector<std::vector<std::string>> rows;
    const std::string& at(std::size_t row, const std::string& column) const {
        return rows[row][columns.at(column)];
    }
};

bool read_csv(const fs::path& file, const std::vector<std::string>& needed, CsvTable& table,
              std::string& error) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        error = "cannot read " + file.string();
        return false;
    }
    std::vector<std::string> cells;
    if (!read_record(in, cells)) {
        error = file.string() + " is empty";
        return false;
    }
    for (std::size_t i = 0; i < cells.size(); ++i) table.columns[cells[i]] = i;
    for (const std::string& n : needed)
        if (!table.columns.count(n)) {
            error = file.string() + " has no column " + n;
            return false;
        }
    long line = 1;
    while (read_record(in, cells)) {
        ++line;
        if (cells.size() == 1 && cells[0].empty()) continue;
        if (cells.size() != table.columns.size()) {
            error = file.string() + ", line " + std::to_string(line) + ": " +
                    std::to_string(cells.size()) + " cells where the header has " +
                    std::to_string(table.columns.size());
            return false;
        }
        table.rows.push_back(cells);
    }
    return true;
}

std::optional<double> number(const std::string& text) {
    double v = 0;
    if (text.empty() || !store::parse_number(text, v)) return std::nullopt;
    return v;
}

Value number_or_null(const std::string& text) {
    const auto v = number(text);
    return v ? Value(*v) : Value();
}

const char* greek_font_letter(const std::string& bayer) {
    for (const auto& [word, letter] : greek_font_letters)
        if (bayer == word) return letter;
    return "";
}

// A star on its way into the table.
struct CatalogueStar {
    std::size_t source = 0; // row of stars.csv
    std::string constellation;
    double magnitude = 0;
    int number = 0;
};

constexpr const char* star_columns[] = {"hip",
                                        "hd",
                                        "hr",
                                        "con",
                                        "bayer",
                                        "bayer_index",
                                        "flamsteed",
                                        "designation",
                                        "ads_comp",
                                        "proper_name",
                                        "name_meaning",
                                        "ra_h",
                                        "ra_m",
                                        "ra_s",
                                        "dec_sign",
                                        "dec_d",
                                        "dec_m",
                                        "dec_s",
                                        "pmra_dadt_arcsec_yr",
                                        "pmdec_arcsec_yr",
                                        "vmag",
                                        "dist_ly",
                                        "absmag",
                                        "lum_solar",
                                        "spectral_type",
                                        "luminosity_class"};

bool write_catalogue(TableStore& db, const CsvTable& stars, const CsvTable& names,
                     std::string& error) {
    std::map<std::string, std::string> list_name, genitive;
    for (std::size_t i = 0; i < names.rows.size(); ++i) {
        const std::string& abbr = names.at(i, "abbr");
        const std::string& listed = names.at(i, "workbench_list_name");
        list_name[abbr] = listed.empty() ? names.at(i, "name") : listed;
        genitive[abbr] = names.at(i, "genitive");
    }
    // Designations that more than one row carries (components of one double star).
    std::map<std::string, int> designations;
    for (std::size_t i = 0; i < stars.rows.size(); ++i)
        if (!stars.at(i, "designation").empty()) ++designations[stars.at(i, "designation")];

    std::vector<CatalogueStar> order;
    for (std::size_t i = 0; i < stars.rows.size(); ++i) {
        const auto it = list_name.find(stars.at(i, "con"));
        if (it == list_name.end()) {
            error = "stars.csv, star " + std::to_string(i + 1) + ": no constellation " +
                    stars.at(i, "con") + " in constellation_names.csv";
            return false;
        }
        const auto magnitude = number(stars.at(i, "vmag"));
        if (!magnitude) {
            error = "stars.csv, star " + std::to_string(i + 1) + " has no magnitude";
            return false;
        }
        order.push_back({i, it->second, *magnitude, 0});
    }
    // Numbers by brightness within each constellation; equal magnitudes keep the file's order.
    std::stable_sort(order.begin(), order.end(), [](const auto& a, const auto& b) {
        return a.constellation != b.constellation ? a.constellation < b.constellation
                                                  : a.magnitude < b.magnitude;
    });
    std::map<std::string, int> counts;
    for (CatalogueStar& star : order) {
        star.number = ++counts[star.constellation];
        if (star.number > star_cache_numbers) {
            error = star.constellation + " has more than " + std::to_string(star_cache_numbers) +
                    " stars";
            return false;
        }
    }
    // The rows go in in the order of the screen's constellation list.
    auto list_place = [](const std::string& name) {
        const auto& l = star_database_constellations;
        return std::find(l.begin(), l.end(), name) - l.begin();
    };
    std::stable_sort(order.begin(), order.end(), [&](const auto& a, const auto& b) {
        const auto pa = list_place(a.constellation), pb = list_place(b.constellation);
        return pa != pb                             ? pa < pb
               : a.constellation != b.constellation ? a.constellation < b.constellation
                                                    : a.number < b.number;
    });

    Recordset rs;
    if (const Outcome o = db.open_recordset(stars_table, rs);
        o != Outcome::ok && o != Outcome::no_current_record) {
        error = "cannot open the new table stars: " + db.last_error();
        return false;
    }
    for (const CatalogueStar& star : order) {
        const std::size_t i = star.source;
        auto cell = [&](const char* column) -> const std::string& { return stars.at(i, column); };
        const std::string& bayer = cell("bayer");
        const std::string& flamsteed = cell("flamsteed");
        std::string star_number = "0";
        if (bayer.empty()) {
            star_number = !flamsteed.empty()    ? flamsteed
                          : !cell("hr").empty() ? "HR " + cell("hr")
                          : !cell("hd").empty() ? "HD " + cell("hd")
                                                : "HIP " + cell("hip");
        }
        std::string same_letter = cell("bayer_index");
        if (same_letter.empty() && designations[cell("designation")] > 1)
            same_letter = cell("ads_comp");
        // The designations in words: "alpha Tauri, 87 Tauri, HR 1457".
        const std::string& gen = genitive[cell("con")];
        std::string description;
        auto add = [&](const std::string& part) {
            description += (description.empty() ? "" : ", ") + part;
        };
        if (!bayer.empty()) add(bayer + cell("bayer_index") + " " + gen);
        if (!flamsteed.empty()) add(flamsteed + " " + gen);
        if (!cell("hr").empty()) add("HR " + cell("hr"));

        const double ra_h = number(cell("ra_h")).value_or(0),
                     ra_m = number(cell("ra_m")).value_or(0),
                     ra_s = number(cell("ra_s")).value_or(0);
        const double dec_d = number(cell("dec_d")).value_or(0),
                     dec_m = number(cell("dec_m")).value_or(0),
                     dec_s = number(cell("dec_s")).value_or(0);
        const std::string dec_sign = cell("dec_sign") == "-" ? "-" : "+";
        const double ra = (ra_h + ra_m / 60 + ra_s / 3600) * 15 * deg_to_rad;
        double dec = (dec_d + dec_m / 60 + dec_s / 3600) * deg_to_rad;
        if (dec_sign == "-") dec = -dec;
        double lon = 0, lat = 0;
        equatorial_to_ecliptic_j2000(ra, dec, lon, lat);
        lon = std::fmod(lon * rad_to_deg + 360.0, 360.0);
        lat *= rad_to_deg;
        const bool in_zodiac = star_cache_row(star.constellation) <= 12 &&
                               std::fabs(lat) <= zodiac_band_deg &&
                               star.magnitude <= zodiac_magnitude_limit;

        std::string glyph;
        bool in_chart_group = false;
        for (const StarMark& mark : star_marks)
            if (cell("proper_name") == mark.star) {
                glyph.assign(1, static_cast<char>(mark.code));
                in_chart_group = true;
            }

        const std::vector<std::pair<const char*, Value>> values = {
            {"constellation", Value(star.constellation)},
            {"number", Value(star.number)},
            {"star_number", Value(star_number)},
            {"greek_letter", Value(greek_font_letter(bayer))},
            {"greek_text", Value(bayer)},
            {"same_letter", Value(same_letter)},
            {"star_name", Value(cell("proper_name"))},
            {"star_name_meaning", Value(cell("name_meaning"))},
            {"Description", Value(description)},
            {"glyph", Value(glyph)},
            {"ra_hours", Value(ra_h)},
            {"ra_mins", Value(ra_m)},
            {"ra_secs", Value(ra_s)},
            {"dec_degs", Value(dec_d)},
            {"dec_mins", Value(dec_m)},
            {"dec_secs", Value(dec_s)},
            {"dec_sign", Value(dec_sign)},
            {"pm_ra", Value(number(cell("pmra_dadt_arcsec_yr")).value_or(0))},
            {"pm_dec", Value(number(cell("pmdec_arcsec_yr")).value_or(0))},
            {"magnitude", Value(star.magnitude)},
            {"absolute_magnitude", number_or_null(cell("absmag"))},
            {"distance", number_or_null(cell("dist_ly"))},
            {"luminosity", number_or_null(cell("lum_solar"))},
            {"luminosity_class", Value(cell("luminosity_class"))},
            {"spectral_type", Value(cell("spectral_type"))},
            {"hd_number", number_or_null(cell("hd"))},
            {"hic", number_or_null(cell("hip"))},
            {"longitude", Value(lon)},
            {"Latitude", Value(lat)},
            {"in_zodiac", Value(in_zodiac)},
            {"line_to", Value(0)},
            {"line_to_2", Value(0)},
            {"line_to_hd", Value(0)},
            {"sel_1", Value(in_chart_group)},
        };
        Outcome o = rs.add_new();
        for (const auto& [field, value] : values)
            if (o == Outcome::ok) o = rs.set(field, value);
        for (const char* flag : {"sel_2", "sel_3", "sel_4"})
            if (o == Outcome::ok) o = rs.set(flag, Value(false));
        for (const char* flag : user_group_fields)
            if (o == Outcome::ok) o = rs.set(flag, Value(false));
        if (o == Outcome::ok) o = rs.update();
        if (o != Outcome::ok) {
            error = "stars.csv, star " + std::to_string(i + 1) + " (" + star.constellation + " " +
                    std::to_string(star.number) + "): " + std::string(store::describe(o));
            return false;
        }
    }

    Recordset fixed;
    if (const Outcome o = db.open_recordset(fixed_table, fixed);
        o != Outcome::ok && o != Outcome::no_current_record) {
        error = "cannot open the new table fixed: " + db.last_error();
        return false;
    }
    for (const SamplePoint& p : sample_points) {
        const std::vector<std::pair<const char*, Value>> values = {
            {"Name", Value(p.name)},
            {"active", Value(false)},
            {"zodiac", Value(p.zodiac)},
            {"degs", Value(p.degs)},
            {"mins", Value(p.mins)},
            {"world_view", Value(p.world_view)},
            {"sigil", Value(std::string(1, static_cast<char>(p.sigil)))},
        };
        Outcome o = fixed.add_new();
        for (const auto& [field, value] : values)
            if (o == Outcome::ok) o = fixed.set(field, value);
        if (o == Outcome::ok) o = fixed.update();
        if (o != Outcome::ok) {
            error =
                std::string("the fixed point ") + p.name + ": " + std::string(store::describe(o));
            return false;
        }
    }
    return true;
}

} // namespace

bool build_star_database(const fs::path& source_folder, const fs::path& file, std::string& error) {
    CsvTable stars, names;
    if (!read_csv(source_folder / "constellation_names.csv",
                  {"abbr", "name", "genitive", "workbench_list_name"}, names, error))
        return false;
    if (!read_csv(source_folder / "stars.csv",
                  std::vector<std::string>(std::begin(star_columns), std::end(star_columns)), stars,
                  error))
        return false;

    return store::build_store_file(
        file,
        [&](TableStore& db, std::string& why_not) {
            if (create_star_tables(db) != Outcome::ok) {
                why_not = "cannot create the tables: " + db.last_error();
                return false;
            }
            return write_catalogue(db, stars, names, why_not);
        },
        error);
}

} // namespace celestark
