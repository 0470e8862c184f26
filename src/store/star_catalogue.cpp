#include "store/star_catalogue.h"

#include "store/option_store.h"

#include "session/constants.h"
#include "session/session.h"
#include "session/text.h"
#include "store/store_files.h"

#include <algorithm>
#include <cmath>

namespace celestark {

using store::FieldDef;
using store::FieldType;
using store::Outcome;
using store::Recordset;
using store::Value;

int star_cache_row(std::string_view constellation) {
    for (int i = 0; i < 12; ++i)
        if (constellation == star_database_constellations[static_cast<std::size_t>(i)])
            return i + 1;
    return constellation == "Ophiuchus" ? 13 : 14;
}

namespace {

FieldDef text(const char* name, int width) {
    return {name, FieldType::text, width};
}
FieldDef typed(const char* name, FieldType type) {
    return {name, type, 0};
}

std::vector<FieldDef> make_star_fields() {
    std::vector<FieldDef> f = {
        text("constellation", 30),
        typed("number", FieldType::integer),
        text("star_number", 12),
        text("greek_letter", 2),
        text("greek_text", 10),
        text("same_letter", 4),
        text("star_name", 40),
        typed("star_name_meaning", FieldType::memo),
        typed("Description", FieldType::memo),
        text("glyph", 1),
        typed("ra_hours", FieldType::integer),
        typed("ra_mins", FieldType::integer),
        typed("ra_secs", FieldType::double_precision),
        typed("dec_degs", FieldType::integer),
        typed("dec_mins", FieldType::integer),
        typed("dec_secs", FieldType::double_precision),
        text("dec_sign", 1),
        typed("pm_ra", FieldType::double_precision),
        typed("pm_dec", FieldType::double_precision),
        typed("magnitude", FieldType::single),
        typed("absolute_magnitude", FieldType::single),
        typed("distance", FieldType::single),
        typed("luminosity", FieldType::single),
        text("luminosity_class", 12),
        text("spectral_type", 12),
        typed("hd_number", FieldType::long_integer),
        typed("hic", FieldType::long_integer),
        typed("longitude", FieldType::double_precision),
        typed("Latitude", FieldType::double_precision),
        typed("in_zodiac", FieldType::boolean),
        typed("line_to", FieldType::integer),
        typed("line_to_2", FieldType::integer),
        typed("line_to_hd", FieldType::long_integer),
        typed("sel_1", FieldType::boolean),
        typed("sel_2", FieldType::boolean),
        typed("sel_3", FieldType::boolean),
    };
    for (int i = 1; i <= 10; ++i)
        f.push_back({"sel_2_" + std::to_string(i), FieldType::boolean, 0});
    f.push_back(typed("sel_4", FieldType::boolean));
    return f;
}

} // namespace

const std::vector<FieldDef>& star_fields() {
    static const std::vector<FieldDef> fields = make_star_fields();
    return fields;
}

const std::vector<FieldDef>& fixed_fields() {
    static const std::vector<FieldDef> fields = {
        text("Name", 50),
        typed("active", FieldType::boolean),
        text("zodiac", 40),
        typed("degs", FieldType::integer),
        typed("mins", FieldType::integer),
        text("world_view", 20),
        text("sigil", 1),
    };
    return fields;
}

Outcome create_star_tables(store::TableStore& db) {
    const store::IndexDef index{star_index, {"constellation", "number"}, true, false};
    Outcome o = db.create_table(stars_table, star_fields(), std::span(&index, 1));
    if (o == Outcome::ok) o = db.create_table(fixed_table, fixed_fields());
    return o;
}

namespace {

// stars.mdb as the engine reads it.
class StoredCatalogue : public StarCatalogueSource {
  public:
    explicit StoredCatalogue(std::shared_ptr<StarStores> stores) : stores_(std::move(stores)) {}

    std::vector<CatalogueStar> group_stars(const std::string& field) override {
        std::vector<CatalogueStar> out;
        Recordset& rs = stores_->stars;
        if (!rs.is_open()) return out;
        const StarRowReader c(rs);
        const int group_column = field.empty() ? -1 : rs.field_index(field);
        if (!field.empty() && group_column < 0) return out;
        for (auto o = rs.move_first(); o == Outcome::ok && rs.has_current(); o = rs.move_next()) {
            if (group_column >= 0 && !c.flag(rs, group_column)) continue;
            if (field != "sel_4" && c.flag(rs, c.sel_4)) continue;
            const StarValues v = c.values(rs);
            CatalogueStar& star = out.emplace_back();
            star.ra = v.ra;
            star.dec = v.dec;
            star.pm_ra = v.pm_ra;
            star.pm_dec = v.pm_dec;
            star.magnitude = v.magnitude;
            star.absolute_magnitude = v.absolute_magnitude;
            star.greek_letter = trim(c.text(rs, c.greek_letter));
            star.star_number = trim(c.text(rs, c.star_number));
            star.star_name = trim(c.text(rs, c.star_name));
            star.constellation = c.text(rs, c.constellation);
            star.spectral_type = c.text(rs, c.spectral_type);
            star.luminosity_class = c.text(rs, c.luminosity_class);
            star.distance = c.number(rs, c.distance);
        }
        rs.move_first();
        return out;
    }

    void refresh_fixed_points(StarState& stars) override { celestark::refresh_fixed_points(stars); }

  private:
    std::shared_ptr<StarStores> stores_;
};

} // namespace

std::string open_star_tables(Session& s) {
    auto stores = std::make_shared<StarStores>();
    const auto file = store::find_file(s.program_directory, star_file_name);
    Outcome o = stores->db.open(file);
    std::string failed = "stars.mdb";
    if (o == Outcome::ok) {
        failed = std::string("the table ") + stars_table;
        o = stores->db.open_recordset(stars_table, stores->stars);
        if (o == Outcome::ok || o == Outcome::no_current_record)
            o = stores->stars.set_index(star_index);
    }
    if (o == Outcome::ok || o == Outcome::no_current_record) {
        failed = std::string("the table ") + fixed_table;
        o = stores->db.open_recordset(fixed_table, stores->fixed);
    }
    if (o != Outcome::ok && o != Outcome::no_current_record) {
        std::string why(store::describe(o));
        if (!stores->db.last_error().empty() && stores->db.last_error() != why)
            why += " (" + stores->db.last_error() + ")";
        s.stars.stores.reset();
        s.stars.catalogue.reset();
        return "Cannot open " + failed + " of " + file.string() + ": " + why;
    }
    s.stars.catalogue = std::make_shared<StoredCatalogue>(stores);
    s.stars.stores = std::move(stores);
    s.stars.fixed_points_read = false;
    return {};
}

StarRowReader::StarRowReader(const Recordset& rs)
    : constellation(rs.field_index("constellation")), number_field(rs.field_index("number")),
      star_number(rs.field_index("star_number")), greek_letter(rs.field_index("greek_letter")),
      star_name(rs.field_index("star_name")), glyph(rs.field_index("glyph")),
      ra_hours(rs.field_index("ra_hours")), ra_mins(rs.field_index("ra_mins")),
      ra_secs(rs.field_index("ra_secs")), dec_degs(rs.field_index("dec_degs")),
      dec_mins(rs.field_index("dec_mins")), dec_secs(rs.field_index("dec_secs")),
      dec_sign(rs.field_index("dec_sign")), pm_ra(rs.field_index("pm_ra")),
      pm_dec(rs.field_index("pm_dec")), magnitude(rs.field_index("magnitude")),
      absolute_magnitude(rs.field_index("absolute_magnitude")),
      distance(rs.field_index("distance")), spectral_type(rs.field_index("spectral_type")),
      luminosity_class(rs.field_index("luminosity_class")), longitude(rs.field_index("longitude")),
      latitude(rs.field_index("Latitude")), in_zodiac(rs.field_index("in_zodiac")),
      line_to(rs.field_index("line_to")), line_to_2(rs.field_index("line_to_2")),
      line_to_hd(rs.field_index("line_to_hd")), hd_number(rs.field_index("hd_number")),
      sel_1(rs.field_index("sel_1")), sel_4(rs.field_index("sel_4")) {}

double StarRowReader::number(const Recordset& rs, int column) const {
    return column < 0 ? 0.0 : rs.get(column).as_double();
}
std::string StarRowReader::text(const Recordset& rs, int column) const {
    return column < 0 ? std::string() : rs.get(column).as_text();
}
bool StarRowReader::flag(const Recordset& rs, int column) const {
    return column >= 0 && rs.get(column).as_int() != 0;
}

StarValues StarRowReader::values(const Recordset& rs) const {
    StarValues v;
    v.ra = (number(rs, ra_hours) + number(rs, ra_mins) / 60 + number(rs, ra_secs) / 3600) * 15 *
           deg_to_rad;
    v.dec = (std::fabs(number(rs, dec_degs)) + number(rs, dec_mins) / 60 +
             number(rs, dec_secs) / 3600) *
            deg_to_rad;
    if (trim(text(rs, dec_sign)) == "-") v.dec = -v.dec;
    v.pm_ra = number(rs, pm_ra) / 3600 * deg_to_rad;
    v.pm_dec = number(rs, pm_dec) / 3600 * deg_to_rad;
    v.magnitude = static_cast<float>(number(rs, magnitude));
    const Value absolute = absolute_magnitude < 0 ? Value() : rs.get(absolute_magnitude);
    v.absolute_magnitude =
        absolute.is_null() ? unknown_absolute_magnitude : static_cast<float>(absolute.as_double());
    return v;
}

namespace {

struct GroupFaults {
    bool too_many = false, without_name = false, without_glyph = false, same_glyph = false;
};

void show_group_faults(const GroupFaults& f, MessageSink& sink) {
    const struct {
        bool on;
        const char* title;
        const char* text;
    } faults[] = {
        {f.too_many, "USER ERROR - TOO MANY STARS IN GROUP STARS IN CHARTS",
         "You have selected more than 8 stars in the group 'stars in charts'. You must reduce the "
         "number to 8 or less and until then this option will not function"},
        {f.without_name, "USER ERROR - YOU HAVE A STAR IN GROUP STARS IN CHARTS WITHOUT A NAME",
         "At least one of the stars in the group 'stars in charts' does not have a name. You must "
         "correct this and until then this option will not function"},
        {f.without_glyph, "USER ERROR - YOU HAVE A STAR IN GROUP STARS IN CHARTS WITHOUT A GLYPH",
         "At least one of the stars in the group 'stars in charts' does not have a glyph assigned "
         "to it. You must correct this and until then this option will not function"},
        {f.same_glyph,
         "USER ERROR - YOU HAVE A TWO STARS IN GROUP STARS IN CHARTS WITH THE SAME GLYPH",
         "At least two stars in the group 'stars in charts' have the same glyph. You must correct "
         "this and until then this option will not function"},
    };
    for (const auto& fault : faults)
        if (fault.on) sink.message(fault.title, fault.text, MessageIcon::exclamation);
}

} // namespace

void load_star_tables(Session& s, MessageSink& sink) {
    StarState& st = s.stars;
    st.star_cache.assign(static_cast<std::size_t>(star_cache_rows * star_cache_numbers), {});
    st.star_count.fill(0);
    st.chart_star_cache = {};
    st.chart_star_count = 0;
    st.star_glyphs.fill(0);
    if (!st.stores || !st.stores->stars.is_open()) return;

    Recordset& rs = st.stores->stars;
    const StarRowReader c(rs);
    GroupFaults faults;
    int members = 0;
    std::vector<unsigned char> glyphs;
    for (Outcome o = rs.move_first(); o == Outcome::ok && rs.has_current(); o = rs.move_next()) {
        const StarValues v = c.values(rs);
        const bool excluded = c.flag(rs, c.sel_4);
        const int row = star_cache_row(c.text(rs, c.constellation));
        const auto number = static_cast<int>(c.number(rs, c.number_field));
        if (number >= 1 && number <= star_cache_numbers) {
            StarCacheCell& cell = st.cell(row, number);
            cell.ra = v.ra;
            cell.dec = v.dec;
            cell.longitude = static_cast<float>(c.number(rs, c.longitude));
            cell.latitude = static_cast<float>(c.number(rs, c.latitude));
            cell.pm_ra = static_cast<float>(v.pm_ra);
            cell.pm_dec = static_cast<float>(v.pm_dec);
            cell.magnitude = v.magnitude;
            cell.absolute_magnitude = v.absolute_magnitude;
            cell.in_zodiac = c.flag(rs, c.in_zodiac) && !excluded;
            cell.line_to = static_cast<std::int32_t>(c.number(rs, c.line_to));
            cell.line_to_2 = static_cast<std::int32_t>(c.number(rs, c.line_to_2));
            cell.line_to_hd = static_cast<std::int32_t>(c.number(rs, c.line_to_hd));
            cell.hd_number = static_cast<std::int32_t>(c.number(rs, c.hd_number));
            cell.filled = true;
            auto& count = st.star_count[static_cast<std::size_t>(row - 1)];
            count = std::max(count, number);
        }

        if (!c.flag(rs, c.sel_1) || excluded) continue;
        const std::string name = trim(c.text(rs, c.star_name));
        const std::string glyph = trim(c.text(rs, c.glyph));
        if (name.empty()) faults.without_name = true;
        if (glyph.empty()) faults.without_glyph = true;
        const auto code = static_cast<unsigned char>(glyph.empty() ? 0 : glyph[0]);
        if (code != 0 && std::find(glyphs.begin(), glyphs.end(), code) != glyphs.end())
            faults.same_glyph = true;
        glyphs.push_back(code);
        if (++members > max_chart_stars) {
            faults.too_many = true;
            continue;
        }
        ChartStar& star = st.chart_star_cache[static_cast<std::size_t>(members - 1)];
        star.ra = v.ra;
        star.dec = v.dec;
        star.longitude = c.number(rs, c.longitude);
        star.latitude = c.number(rs, c.latitude);
        star.pm_ra = v.pm_ra;
        star.pm_dec = v.pm_dec;
        star.magnitude = v.magnitude;
        star.star_name = name;
        star.glyph = code;
    }
    rs.move_first();

    if (faults.too_many || faults.without_name || faults.without_glyph || faults.same_glyph) {
        show_group_faults(faults, sink);
        st.chart_star_cache = {};
        return;
    }
    st.chart_star_count = members;
    for (int i = 0; i < members; ++i)
        st.star_glyphs[static_cast<std::size_t>(i)] =
            st.chart_star_cache[static_cast<std::size_t>(i)].glyph;
}

void load_fixed_points(StarState& st) {
    st.fixed_points.clear();
    st.fixed_sigils.clear();
    st.fixed_points_read = true;
    if (!st.stores || !st.stores->fixed.is_open()) return;
    st.fixed_points_read_at = st.stores->db.change_count();
    Recordset& rs = st.stores->fixed;
    auto text_at = [&](int column) {
        return column < 0 ? std::string() : rs.get(column).as_text();
    };
    auto number_at = [&](int column) { return column < 0 ? 0.0 : rs.get(column).as_double(); };
    const int name = rs.field_index("Name"), active = rs.field_index("active"),
              zodiac = rs.field_index("zodiac"), degs = rs.field_index("degs"),
              mins = rs.field_index("mins"), view = rs.field_index("world_view"),
              sigil = rs.field_index("sigil");
    for (Outcome o = rs.move_first(); o == Outcome::ok && rs.has_current(); o = rs.move_next()) {
        FixedPoint f;
        f.name = text_at(name);
        f.active = active >= 0 && rs.get(active).as_int() != 0;
        f.zodiac = text_at(zodiac);
        f.degs = number_at(degs);
        f.mins = number_at(mins);
        f.world_view = text_at(view);
        const std::string code = text_at(sigil);
        f.sigil = static_cast<unsigned char>(code.empty() ? 0 : code[0]);
        st.fixed_sigils.push_back(f.sigil);
        st.fixed_points.push_back(std::move(f));
    }
}

void refresh_fixed_points(StarState& st) {
    if (!st.stores) return;
    if (!st.fixed_points_read || st.stores->db.change_count() != st.fixed_points_read_at)
        load_fixed_points(st);
}

StarOrbOptions read_star_orb_options(Session& s) {
    auto value = [&](const std::string& field) {
        return read_option(s, "option_name", field).as_double();
    };
    auto orb = [&](const std::string& prefix) {
        return value(prefix + "degs") + value(prefix + "mins") / 60.0;
    };
    StarOrbOptions o;
    o.orb_1 = orb("orb_1_");
    o.orb_2 = orb("orb_2_");
    o.orb_1_magnitude = static_cast<float>(value("orb_1_magnitude"));
    o.orb_2_magnitude = static_cast<float>(value("orb_2_magnitude"));
    o.orb_3_mag1 = orb("orb_3_mag1_");
    o.orb_3_mag6 = orb("orb_3_mag6_");
    o.orb_4_mag1 = orb("orb_4_mag1_");
    o.orb_4_mag6 = orb("orb_4_mag6_");
    o.orb_3_magnitude = static_cast<float>(value("orb_3_magnitude"));
    o.orb_4_magnitude = static_cast<float>(value("orb_4_magnitude"));
    for (int mag = 1; mag <= 6; ++mag) {
        const std::string step = "mag" + std::to_string(mag) + "_";
        o.orb_5[mag - 1] = orb("orb_5_" + step);
        o.orb_6[mag - 1] = orb("orb_6_" + step);
    }
    return o;
}

std::array<std::string, 12> star_group_names(Session& s) {
    std::array<std::string, 12> names;
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = trim(read_option(s, "option_name", "star_" + std::to_string(i + 1)).as_text());
    return names;
}

} // namespace celestark
