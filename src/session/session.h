#pragma once
// The session: every value the system keeps for the length of a run, cut into plain structs named
// after what they hold. Operations take the session explicitly; there is no global state, so two
// sessions can live in one process (a test per case, a search on a worker thread with its own).
#include "session/aspect_matrix.h"
#include "session/drawing_state.h"
#include "session/epoch_state.h"
#include "session/event.h"
#include "session/messages.h"
#include "session/option_state.h"
#include "session/positions.h"
#include "session/predictive_state.h"
#include "session/star_state.h"
#include "session/text.h"

#include <cstdint>
#include <memory>
#include <string>

namespace celestark {

struct BodyTables;
struct OpenStores; // store/open_stores.h

// The open event database and table.
struct EventStoreState {
    std::string event_db_path, event_db_name, event_table_name, event_index_name;
};

// Values that the option readers set from the option record and every chart reads.
struct ChartSettings {
    std::string world_view = "Geocentric"; // "Geocentric", "Heliocentric", "Tychonic",
                                           // "Lemnicentric" or "Geo/Helio"
    std::string zodiac = "Tropical";
    std::string zodiac_bookmark;
    bool sign_form = true;
    std::string house_system = "None", polar_house_system = "Porphyry";
    std::int16_t moon_node = 1, moon_peri = 0, helio_elem = 0;
    std::int16_t helio_moon = 0; // the Moon as the last helio entry; every option reader clears it
    std::int16_t chiron = 0, sedna = 0, quaoar = 0, asteroids = 0, part_of_fortune = 0,
                 stars_in_charts = 0;
    std::int16_t part_of_chiron = 0; // set by the chart builders that want the part of Chiron
    std::int16_t display_plan_degs = 0, display_agram = 0, zodiac_direction = 0;
    // House wheel: direction -1 (True) "Normal" or 0 "Oppostie"; start 0, 1 or 2 (engine/houses.h);
    // type -1 (True) "Normal" or 0 "Hermetic". The option readers overwrite these.
    std::int16_t house_direction = -1, house_start = 0, house_type = -1;
    std::string aspect_set_charts, display_colour_set, print_colour_set;
    bool print_mode = true;
};

// The global options that many operations read (kept here as the option record's current view).
struct GlobalOptions {
    TextOptions text;
    std::int16_t option_save_chart = 1; // 0 never, 1 ask, other values save without asking
    bool actual_position = false;
    bool exclude_ascendant = false, exclude_midheaven = false;
};

struct Session {
    std::string program_directory;
    std::string line_break = "\r\n";
    EventSlots event_slots;
    EventStoreState event_store;
    ChartSettings chart;
    GlobalOptions options;
    std::int16_t accuracy_level = 1; // 1 full, 2 medium, 3 low: how many series terms are taken
    EngineState engine;
    bool event_dirty = false;
    // Set by the CANCEL of a long run's progress window; the run ends after its current step.
    std::int16_t run_cancelled = 0;
    // Where boxes, questions and fatal errors go. Without a sink they are written to standard
    // error; without a handler a fatal error ends the process.
    MessageSink* sink = nullptr;
    FatalHandler fatal_handler;
    // The tables of Uranus to Pluto, the asteroids and Chiron, read once and shared read-only.
    std::shared_ptr<const BodyTables> body_tables;
    // The zodiac, aspect set and colour set loaded from the option stores.
    OptionSets option_sets;
    // The aspect matrices of the last searches, one for each group of lists.
    AspectMatrices aspect_matrices;
    // option.mdb and the event database, open from the start to the end of the session.
    std::shared_ptr<OpenStores> stores;
    // stars.mdb, the star caches, the stars in charts and the fixed points.
    StarState stars;
    // Where pages go, their frame, the wheel's plot list and ring, the table sizes.
    DrawingState drawing;
    // The prenatal epoch of the birth in work row 5.
    EpochState epoch;
    // The predictive run: its parameters and its values, kept between its pages.
    PredictiveParameters predictive_params;
    PredictiveRun predictive;
};

// Shows a fatal box through the session's sink and ends the process (or calls the handler).
void session_fatal(Session& session, const std::string& operation, const std::string& text);
// The same with the whole title as it is written.
void session_fatal_box(Session& session, const std::string& title, const std::string& text);
// The session's sink, or one that writes to standard error when it has none.
MessageSink& session_sink(Session& session);

// Step one of the start: fixed values and the slot table, with the default event in row 21.
void initialise_session(Session& session, std::string program_directory);

} // namespace celestark
