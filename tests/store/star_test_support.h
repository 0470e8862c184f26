// Small star catalogues for tests: stars.mdb with the two tables and the rows a test gives, opened
// for a session.
#pragma once

#include "session/session.h"
#include "store/star_catalogue.h"
#include "store_test_support.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace celestark::testing {

using Cells = std::vector<std::pair<std::string, store::Value>>;

// A star row: Aldebaran's place and motion unless the test says otherwise.
inline Cells star_row(const std::string& constellation, int number, const std::string& name,
                      const std::string& glyph, bool sel_1 = false, bool sel_4 = false) {
    return {{"constellation", store::Value(constellation)},
            {"number", store::Value(number)},
            {"star_number", store::Value("0")},
            {"greek_letter", store::Value("a")},
            {"greek_text", store::Value("alpha")},
            {"star_name", store::Value(name)},
            {"glyph", store::Value(glyph)},
            {"ra_hours", store::Value(4)},
            {"ra_mins", store::Value(35)},
            {"ra_secs", store::Value(55.2)},
            {"dec_degs", store::Value(16)},
            {"dec_mins", store::Value(30)},
            {"dec_secs", store::Value(35.1)},
            {"dec_sign", store::Value("+")},
            {"pm_ra", store::Value(0.0657)},
            {"pm_dec", store::Value(-0.18936)},
            {"magnitude", store::Value(0.87)},
            {"absolute_magnitude", store::Value(-0.64)},
            {"longitude", store::Value(69.7897)},
            {"Latitude", store::Value(-5.4673)},
            {"in_zodiac", store::Value(true)},
            {"sel_1", store::Value(sel_1)},
            {"sel_4", store::Value(sel_4)}};
}

inline Cells fixed_row(const std::string& name, bool active, const std::string& zodiac, int degs,
                       int mins, const std::string& world_view, unsigned char sigil) {
    return {{"Name", store::Value(name)},
            {"active", store::Value(active)},
            {"zodiac", store::Value(zodiac)},
            {"degs", store::Value(degs)},
            {"mins", store::Value(mins)},
            {"world_view", store::Value(world_view)},
            {"sigil", store::Value(std::string(1, static_cast<char>(sigil)))}};
}

// Writes stars.mdb into `folder` with the rows given.
inline void make_star_file(const std::filesystem::path& folder, const std::vector<Cells>& stars,
                           const std::vector<Cells>& fixed = {}) {
    store::TableStore db;
    ASSERT_EQ(db.create(folder / star_file_name), store::Outcome::ok);
    ASSERT_EQ(create_star_tables(db), store::Outcome::ok);
    store::Recordset rs;
    db.open_recordset(stars_table, rs);
    for (const Cells& row : stars) ASSERT_EQ(store::testing::add_row(rs, row), store::Outcome::ok);
    store::Recordset points;
    db.open_recordset(fixed_table, points);
    for (const Cells& row : fixed)
        ASSERT_EQ(store::testing::add_row(points, row), store::Outcome::ok);
}

// A session whose program directory is `folder`, with stars.mdb opened and its caches read.
inline void open_stars(Session& s, const std::filesystem::path& folder, MessageSink& sink) {
    initialise_session(s, folder.string());
    ASSERT_EQ(open_star_tables(s), "");
    load_star_tables(s, sink);
    load_fixed_points(s.stars);
}

} // namespace celestark::testing
