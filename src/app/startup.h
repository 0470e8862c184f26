#pragma once
// The start of a session, from the fixed tables to the main chart window, in this order: fixed
// values; option.mdb (global options, chart options, zodiac, aspect sets, colour sets); the event
// database; the print mode; the atlas; the colour set of the print mode; the planet and asteroid
// tables; the star tables; and last the removal of a left-over biography database.
#include "session/messages.h"
#include "store/event_database.h"

#include <functional>
#include <string>

namespace celestark {

struct Session;

// The stores that join the start with their own parts. Each is called at its place in the order
// and says what went wrong, or returns an empty text.
struct StartSteps {
    std::function<std::string(Session&)> open_place_database;
    std::function<std::string(Session&)> open_body_tables;
    std::function<std::string(Session&)> open_star_tables;
};

struct StartResult {
    bool started = false;    // false: a fatal error of the option store (its handler returned)
    EventStoreResult events; // the event store's start; a failure brings up the database screen
    std::vector<std::string> problems; // what the later steps reported
};

// The whole start in `program_directory` (the program's own folder, the current directory of the
// desktop program). Messages and fatal errors go through `sink` and `handler`.
StartResult start_session(Session& s, const std::string& program_directory, MessageSink& sink,
                          const FatalHandler& handler = {}, const StartSteps& steps = {});

} // namespace celestark
