// A program folder for a test: a scratch folder with a new option.mdb from the standard first
// rows, and a session started in it with everything it says recorded.
#pragma once

#include "app/startup.h"
#include "session/session.h"
#include "store/open_stores.h"
#include "store/option_defaults.h"
#include "store_test_support.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace celestark::testing {

class ProgramFolder {
  public:
    explicit ProgramFolder(bool with_options = true, bool with_body_tables = true,
                           bool with_star_tables = true) {
#ifdef CELESTARK_TABLES_DIR
        // The built tables of the table-driven bodies, linked rather than copied.
        if (with_body_tables)
            for (const char* name : {"outer3.mdb", "asteroid.mdb"})
                std::filesystem::create_symlink(std::filesystem::path(CELESTARK_TABLES_DIR) / name,
                                                file(name));
        // The built star catalogue, copied: a session writes into its stars.mdb.
        if (with_star_tables)
            std::filesystem::copy_file(std::filesystem::path(CELESTARK_TABLES_DIR) / "stars.mdb",
                                       file("stars.mdb"));
#else
        (void)with_body_tables;
        (void)with_star_tables;
#endif
        if (!with_options) return;
        std::string error;
        EXPECT_TRUE(store::build_option_database(file("option.mdb"),
                                                 store::standard_option_source(), error))
            << error;
    }
    std::filesystem::path file(const std::string& name) const {
        return dir_.file(name);
    }
    std::string path() const {
        return dir_.file("").parent_path().string();
    }

    StartResult start(Session& s, const StartSteps& steps = {}) {
        return start_session(s, path(), sink, handler(), steps);
    }
    FatalHandler handler() {
        return [this](const std::string& title, const std::string& text) {
            fatal_titles.push_back(title);
            fatal_texts.push_back(text);
        };
    }
    // The texts of the recorded boxes with the given title.
    std::vector<std::string> messages_titled(const std::string& title) const {
        std::vector<std::string> out;
        for (const auto& m : sink.messages)
            if (m.title == title) out.push_back(m.text);
        return out;
    }

    RecordingSink sink;
    std::vector<std::string> fatal_titles, fatal_texts;

  private:
    store::testing::ScratchDir dir_;
};

} // namespace celestark::testing
