#pragma once
// The star catalogue: stars.mdb in the program directory with the tables `stars` (one row a star,
// index `star` on constellation and number) and `fixed` (the fixed points). The build makes it
// from the published catalogue in data/stars; a session opens it at the start, reads the star
// caches and the fixed points from it, and keeps it open.
#include "session/messages.h"
#include "session/star_state.h"
#include "store/table_store.h"

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace celestark {

struct Session;

inline constexpr const char* star_file_name = "stars.mdb";
inline constexpr const char* stars_table = "stars";
inline constexpr const char* star_index = "star";
inline constexpr const char* fixed_table = "fixed";

// The constellation list of the star database screen: the twelve of the zodiac, the others in
// alphabetical order, and the three pseudo-constellations.
inline constexpr std::array<std::string_view, 90> star_database_constellations = {
    "Aries",
    "Taurus",
    "Gemini",
    "Cancer",
    "Leo",
    "Virgo",
    "Libra",
    "Scorpio",
    "Sagittarius",
    "Capricorn",
    "Aquarius",
    "Pisces",
    "Andromeda",
    "Antila",
    "Apus",
    "Aquila",
    "Ara",
    "Auriga",
    "Bootes",
    "Camelopardalis",
    "Canes Venatici",
    "Canis Major",
    "Canis Minor",
    "Carina",
    "Cassiopeia",
    "Centaurus",
    "Cepheus",
    "Cetus",
    "Chamaeleon",
    "Circinus",
    "Columba",
    "Coma Berenices",
    "Corana Australis",
    "Corona Borealis",
    "Corvus",
    "Crater",
    "Crux",
    "Cygnus",
    "Delphinus",
    "Dorado",
    "Draco",
    "Equuleus",
    "Eridanus",
    "Fornax",
    "Grus",
    "Hercules",
    "Horologium",
    "Hydra",
    "Hydrus",
    "Indus",
    "Lacerta",
    "Leo Minor",
    "Lepus",
    "Lupus",
    "Lynx",
    "Lyra",
    "Mensa",
    "Microscopium",
    "Monoceros",
    "Musca",
    "Norma",
    "Octans",
    "Ophiuchus",
    "Orion",
    "Pavo",
    "Pegasus",
    "Perseus",
    "Phoenix",
    "Pictor",
    "Piscis Austrinus",
    "Puppis",
    "Pyxis",
    "Reticulum",
    "Sagitta",
    "Sculptor",
    "Scutum",
    "Serpens",
    "Sextans",
    "Telescopium",
    "Triangulum",
    "Triangulum Australe",
    "Tucana",
    "Ursa Major",
    "Ursa Minor",
    "Vela",
    "Volans",
    "Vulpecula",
    "Celestial Bodies",
    "Other Bright Stars",
    "Mega"};

// The star cache row of a constellation: 1 Aries to 12 Pisces, 13 Ophiuchus, 14 any other.
int star_cache_row(std::string_view constellation);

// An absolute magnitude the catalogue does not know (no parallax) is read as this: too faint for
// any orb that a limit of absolute magnitude gives.
inline constexpr float unknown_absolute_magnitude = 99;

// The tables' fields and the index, in the order a new file is built.
const std::vector<store::FieldDef>& star_fields();
const std::vector<store::FieldDef>& fixed_fields();
// Makes both tables (and the index `star`) in an open store.
store::Outcome create_star_tables(store::TableStore& db);

// The values of a star row with the catalogue's conversions: right ascension and declination
// J2000 in radians, proper motions in radians a year, magnitudes (a null absolute magnitude read as
// unknown_absolute_magnitude). The field positions are looked up once for a walk of the table.
struct StarValues {
    double ra = 0, dec = 0, pm_ra = 0, pm_dec = 0;
    float magnitude = 0, absolute_magnitude = 0;
};
class StarRowReader {
  public:
    explicit StarRowReader(const store::Recordset& rs);
    StarValues values(const store::Recordset& rs) const;
    // A field of the current row by its position, with null as 0 or empty.
    double number(const store::Recordset& rs, int column) const;
    std::string text(const store::Recordset& rs, int column) const;
    bool flag(const store::Recordset& rs, int column) const;

    int constellation, number_field, star_number, greek_letter, star_name, glyph, ra_hours, ra_mins,
        ra_secs, dec_degs, dec_mins, dec_secs, dec_sign, pm_ra, pm_dec, magnitude,
        absolute_magnitude, distance, spectral_type, luminosity_class, longitude, latitude,
        in_zodiac, line_to, line_to_2, line_to_hd, hd_number, sel_1, sel_4;
};

// stars.mdb with its two tables open for the session.
struct StarStores {
    store::TableStore db;
    store::Recordset stars; // under `star`
    store::Recordset fixed; // in table order
};

// Builds stars.mdb at `file` from the catalogue in `source_folder` (stars.csv and
// constellation_names.csv), written under a temporary name and moved into place when whole.
// False with the reason in `error`.
bool build_star_database(const std::filesystem::path& source_folder,
                         const std::filesystem::path& file, std::string& error);

// Opens stars.mdb of the program directory, `stars` under `star` and `fixed`; an empty text, or
// what went wrong.
std::string open_star_tables(Session& s);

// Walks `stars` once and fills the star cache and the chart star cache, then checks "Star Group
// for charts": more than eight stars, a star without a name, without a glyph, two with one glyph.
// Each fault shows its message and leaves the group empty (chart_star_count 0, no star glyphs).
// Excluded stars (sel_4) leave every group.
void load_star_tables(Session& s, MessageSink& sink);

// Reads the rows of `fixed` into the session's fixed points and `fixed_sigils`.
void load_fixed_points(StarState& stars);
// The same when stars.mdb has been written since the last read (a session without stars.mdb
// keeps the points it has).
void refresh_fixed_points(StarState& stars);

// The orb options of the star orb sets, read from the option record.
StarOrbOptions read_star_orb_options(Session& s);
// The names of the user star groups: the options star_1 to star_12.
std::array<std::string, 12> star_group_names(Session& s);

} // namespace celestark
