// The About text carries every attribution that the star catalogue's sources ask the program to
// show.
#include "session/about.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace celestark {
namespace {

TEST(About, ShowsTheStarDataAttributions) {
    std::ifstream in(std::string(CELESTARK_TEST_DATA) + "/../../data/stars/PROVENANCE.md");
    ASSERT_TRUE(in) << "data/stars/PROVENANCE.md";
    std::stringstream text;
    text << in.rdbuf();
    const std::string provenance = text.str();
    const std::vector<std::string> about = about_text();
    ASSERT_FALSE(about.empty());
    EXPECT_EQ(about.front(), "Celestark");
    // Each `Show: "..."` sentence of the provenance stands as a line of its own.
    int shown = 0;
    for (std::size_t at = provenance.find("Show: \""); at != std::string::npos;
         at = provenance.find("Show: \"", at + 1)) {
        const std::size_t start = at + 7, end = provenance.find('"', start);
        const std::string sentence = provenance.substr(start, end - start);
        EXPECT_NE(std::find(about.begin(), about.end(), sentence), about.end()) << sentence;
        ++shown;
    }
    EXPECT_EQ(shown, 3);
    // And the copyright lines of the MIT-licensed sources.
    for (const char* holder : {"Brandon Rhodes", "Bretton Wade", "Cora Schneck"})
        EXPECT_TRUE(std::any_of(about.begin(), about.end(), [&](const std::string& line) {
            return line.find(holder) != std::string::npos &&
                   line.find("Copyright") != std::string::npos;
        })) << holder;
}

} // namespace
} // namespace celestark
