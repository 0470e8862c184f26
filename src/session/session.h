#pragma once
// The session: every value the system keeps for the length of a run, cut into plain structs named
// after what they hold. Operations take the session explicitly; there is no global state, so two
// sessions can live in one process (a test per case, a search on a worker thread with its own).
#include "engine/positions.h"
#include "session/event.h"
#include "session/text.h"

#include <cstdint>
#include <string>

namespace celestark {

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
    std::int16_t chiron = 0, sedna = 0, quaoar = 0, asteroids = 0, part_of_fortune = 0,
                 stars_in_charts = 0;
    std::int16_t display_plan_degs = 0, display_agram = 0, zodiac_direction = 0,
                 house_direction = 0, house_start = 0, house_type = 0;
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
};

// Step one of the start: fixed values and the slot table, with the default event in row 21.
void initialise_session(Session& session, std::string program_directory);

} // namespace celestark
