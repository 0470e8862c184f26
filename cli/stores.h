#pragma once
// The commands of celestark-cli that work on the stores: preparing a program folder, starting a
// session in it, charting a stored event, and building a new option.mdb.
#include "session/messages.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace celestark {
struct Session;
struct StartResult;
} // namespace celestark

namespace celestark::cli {

// Boxes go to standard error; questions are answered No.
class ConsoleSink : public MessageSink {
  public:
    void message(const std::string& title, const std::string& text, MessageIcon) override {
        std::fprintf(stderr, "[%s] %s\n", title.c_str(), text.c_str());
    }
    bool ask(const std::string& title, const std::string& text) override {
        std::fprintf(stderr, "[%s] %s - answered No\n", title.c_str(), text.c_str());
        return false;
    }
    void input_error(const std::string& line) override {
        std::fprintf(stderr, "%s\n", line.c_str());
    }
};

// The data folder of the build this program runs from, where the build leaves the stores it
// makes; empty when there is none.
std::filesystem::path built_stores_folder();
// Makes `dir` a program folder: the built stores copied in where it lacks them (never over a
// file), option.mdb built when there is none. `tell` prints what was done.
bool prepare_program_folder(const std::filesystem::path& dir, bool tell, std::string& error);
// Starts a session in `folder`; `fatal` tells whether a fatal error ended the start.
StartResult start_in(Session& s, const std::filesystem::path& folder, MessageSink& sink,
                     bool& fatal);

// init DIR: makes DIR a program folder. The stores the build made (option.mdb, the body tables
// and stars.mdb of its data folder) are copied in where DIR lacks them, option.mdb is built from
// the program's own first rows when there is none to copy, and a first start then makes the
// standard event database. Nothing already in DIR is overwritten.
int command_init(const std::vector<std::string>& positional);

// start: starts a session in the current directory and tells what it opened.
int command_start();

// chart --db FILE --table NAME --row N: the Nth event (1 = first in name order) of a stored event
// table, calculated, as CSV "body,lon_deg,lat_deg,dist_au,retro"; then its aspects under the
// charts' aspect set, as CSV "aspect,body_a,body_b,digraph,orb_deg" (cli/aspects.h).
int command_chart(const std::map<std::string, std::string>& options);

// build-options FILE: a new option.mdb from the program's own first rows (replacing FILE).
int command_build_options(const std::vector<std::string>& positional);

} // namespace celestark::cli
