// celestark-cli similars: an inline event against a stored table, its CSV rows, a row that cannot
// be charted told on standard error, and the refusals.
#include "../store/store_test_support.h"
#include "../support/events.h"
#include "../support/stored_events.h"
#include "similars.h"

#include "store/event_schema.h"
#include "store/table_store.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace celestark::cli {
namespace {

using Options = std::map<std::string, std::string>;

// Einstein's birth stored three times: under his name, under another, and with a month that is
// not one.
void write_table(const std::filesystem::path& file) {
    using celestark::testing::einstein_with;
    celestark::testing::write_event_rows(
        file, "People",
        {einstein_with({{col::surname, "Einstein"}, {col::month, "3"}}),
         einstein_with({{col::surname, "Twin"}, {col::month, "3"}}),
         einstein_with({{col::surname, "Broken"}, {col::month, "13"}})});
}

struct Output {
    int code = 0;
    std::vector<std::string> lines;
    std::string errors;
};

Output run(const Options& o) {
    Output out;
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    out.code = command_similars(o);
    std::istringstream in(::testing::internal::GetCapturedStdout());
    out.errors = ::testing::internal::GetCapturedStderr();
    for (std::string line; std::getline(in, line);) out.lines.push_back(line);
    return out;
}

TEST(SimilarsCommand, FindsTheTwinAndTellsTheBrokenRow) {
    store::testing::ScratchDir dir;
    write_table(dir.file("people.zod.mdb"));
    const Options o = {
        {"date", "1879-03-14"}, {"time", "11:30:00"},
        {"zone", "LMT"},        {"lat", "48N24"},
        {"lon", "10E00"},       {"against-db", dir.file("people.zod.mdb").string()},
        {"tables", "People"},   {"set", "similar_charts=1,similar_orb_degs=1,similar_hits=10"}};
    const Output out = run(o);
    ASSERT_EQ(out.code, 0) << out.errors;
    ASSERT_FALSE(out.lines.empty());
    EXPECT_EQ(out.lines[0], "table,row,name,date,planet,event_planet,orb,rotation,score");
    // Ten rows for each of the two copies, the Sun first, each at no orb with all ten hits.
    ASSERT_EQ(out.lines.size(), 21u);
    EXPECT_EQ(out.lines[1], "People,2,Albert Einstein,14/MAR/1879,Sun,Sun,0.0000,0.0000,10");
    EXPECT_EQ(out.lines[11].rfind("People,3,Albert Twin,", 0), 0u);
    EXPECT_NE(out.errors.find("table People row 1 (Albert Broken)"), std::string::npos);
}

TEST(SimilarsCommand, Refusals) {
    store::testing::ScratchDir dir;
    write_table(dir.file("people.zod.mdb"));
    Options o = {{"default-event", ""},
                 {"against-db", dir.file("people.zod.mdb").string()},
                 {"tables", "People"}};
    const std::vector<std::pair<Options, std::string>> cases = {
        {{{"set", "similar_everything=1"}}, "no control 'similar_everything'"},
        {{{"set", "geo=2"}}, "takes 1 or 0"},
        {{{"tables", "Nobody"}}, "no event table 'Nobody'"},
        {{{"tables", "A,B,C,D,E,F"}}, "one to five"},
        {{{"set", "similar_angles=1"}}, "NO EVENT PLANETS SELECTED"},
    };
    for (const auto& [changes, said] : cases) {
        Options q = o;
        for (const auto& [k, v] : changes) q[k] = v;
        const Output out = run(q);
        EXPECT_NE(out.code, 0) << said;
        EXPECT_NE(out.errors.find(said), std::string::npos) << out.errors;
    }
}

} // namespace
} // namespace celestark::cli
