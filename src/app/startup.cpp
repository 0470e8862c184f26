#include "app/startup.h"

#include "app/body_tables.h"
#include "engine/table_bodies.h"
#include "session/session.h"
#include "store/option_sets.h"
#include "store/option_store.h"
#include "store/star_catalogue.h"
#include "store/store_files.h"

#include <filesystem>

namespace celestark {

namespace {

// outer3.mdb and asteroid.mdb, opened once for the session. A table that cannot be opened ends the
// session with the store's own words, as the other stores of the start do.
bool open_outer_and_asteroid_tables(Session& s, const std::string& program_directory) {
    std::string problems;
    auto tables = open_body_tables(program_directory, problems);
    const struct {
        const BodyTable& table;
        const char* operation;
        const char* file;
    } checks[] = {{tables->planets, "OPEN OUTER TABLE", "outer3.mdb"},
                  {tables->asteroids, "OPEN ASTEROID TABLE", "asteroid.mdb"},
                  {tables->chiron, "OPEN ASTEROID TABLE", "asteroid.mdb"}};
    for (const auto& c : checks) {
        if (c.table.loaded()) continue;
        session_fatal(s, c.operation,
                      std::string("Cannot open ") + c.file + ": " + problems +
                          "This is a fatal error. Please contact Ivan Marlow");
        return false;
    }
    s.body_tables = std::move(tables);
    return true;
}

// stars.mdb opened once for the session, then the star caches and the fixed points with their
// sigils read from it. A file that cannot be opened ends the session, as the other stores do.
bool open_and_load_star_tables(Session& s, MessageSink& sink) {
    if (const std::string problem = open_star_tables(s); !problem.empty()) {
        session_fatal(s, "OPEN STAR TABLES", problem + ". " + fatal_tail);
        return false;
    }
    load_star_tables(s, sink);
    load_fixed_points(s.stars);
    return true;
}

} // namespace

StartResult start_session(Session& s, const std::string& program_directory, MessageSink& sink,
                          const FatalHandler& handler, const StartSteps& steps) {
    StartResult result;
    // 1. Fixed tables and values; the session's messages go where the start's go.
    initialise_session(s, program_directory);
    s.stores.reset();
    s.stars = StarState{};
    s.sink = &sink;
    s.fatal_handler = handler;
    // 2 to 4. The option store: options, zodiac, aspect sets and colour sets.
    if (!open_option_database(s, sink, handler)) return result;
    result.started = true;
    // 5. The event database.
    result.events = open_event_store(s, sink);
    // 6. Charts open in print mode: the colours of the print set apply.
    s.chart.print_mode = true;
    auto step = [&](const std::function<std::string(Session&)>& run) {
        if (!run) return;
        if (std::string problem = run(s); !problem.empty())
            result.problems.push_back(std::move(problem));
    };
    // 7. The atlas.
    step(steps.open_place_database);
    // 8. The colour set of the print mode.
    load_active_colour_set(s, sink);
    // 9. The planet and asteroid tables.
    if (steps.open_body_tables)
        step(steps.open_body_tables);
    else if (!open_outer_and_asteroid_tables(s, program_directory))
        return result;
    // 10, 11. The star tables with the star caches, and the fixed points' sigils.
    if (steps.open_star_tables)
        step(steps.open_star_tables);
    else if (!open_and_load_star_tables(s, sink))
        return result;
    // 12. A biography database left over from an earlier run goes; a failure is of no account.
    store::remove_store_file(std::filesystem::path(program_directory) / biography_event_file);
    return result;
}

} // namespace celestark
