#pragma once
// The windows `ALLDATA` (CREATE THE CELESTARK ANALYSIS DATABASE), which gathers whole event tables
// into the analysis database, and `EPHEMERIS_TO_FILE` (SAVE EPHEMERIS TO DISK), which writes a
// day-by-day ephemeris of whole years to a file: their values and commands without widgets.
#include "screens/event_database_screen.h"
#include "session/messages.h"
#include "tables/analysis_database.h"
#include "tables/ephemeris_export.h"

#include <map>
#include <string>

namespace celestark {

struct Session;

// ---- ALLDATA ------------------------------------------------------------------------------------

inline constexpr const char* analysis_screen_text =
    "The events of the tables you add are charted with the current zodiac and stored with the "
    "longitude of every point, one row per event in each of the tables geocentric, hermetic, "
    "heliocentric and lemnicentric of analysis.mdb in the Celestark folder. It is an SQLite "
    "database: any outside tool can query it with SQL.";

struct AnalysisScreen {
    // The folder, its event databases, the chosen database and its table lines.
    EventDatabaseScreen choice;
    std::string sel_table;     // the chosen table, as listed
    long no_events = 0;        // "Number of events in database"
    std::string analysis_path; // analysis.mdb of the program folder
};

// Opens the window on the folder of the open event database, with the count of the analysis
// database.
void enter_analysis_screen(Session& s, AnalysisScreen& screen);
// Lists the event databases of another folder; the choice of database and table is dropped.
void choose_analysis_folder(AnalysisScreen& screen, const std::string& folder);
// A database of the list: its tables are listed (the session's open database stays). One that
// will not open gives "Error opening database".
bool pick_analysis_database(AnalysisScreen& screen, const std::string& file, MessageSink& sink);
// A line of the table list; "[NONE]" chooses nothing.
bool pick_analysis_table(AnalysisScreen& screen, const std::string& line);

// ADD TABLE TO DATABASE with the chosen table ("NO TABLE SELECTED" without one).
AnalysisResult add_analysis_table(Session& s, AnalysisScreen& screen, MessageSink& sink);
// RECALCULATE DATABASE WITH CURRENT ZODIAC.
AnalysisResult recalculate_analysis_screen(Session& s, AnalysisScreen& screen, MessageSink& sink);
// CLEAR ANALYSIS DATABASE.
bool clear_analysis_screen(AnalysisScreen& screen, MessageSink& sink);

// ---- EPHEMERIS_TO_FILE --------------------------------------------------------------------------

inline constexpr const char* ephemeris_export_text =
    "The files will be saved as SQLite databases (readable by any SQLite tool) in the currently "
    "selected folder, which will normally be the Celestark folder.";

struct EphemerisExportScreen {
    // start_year, end_year, file_name; the option buttons gregorian and julian, and the formats
    // sqlite_format and csv_format, read "1" when chosen.
    std::map<std::string, std::string, std::less<>> values;
    std::string folder; // the currently selected folder
};
// The active event's year to the next, Gregorian, an SQLite file, in the program folder.
EphemerisExportScreen ephemeris_export_defaults(Session& s);
// START: `save_ephemeris` with the screen's values.
ExportResult start_ephemeris_export(Session& s, const EphemerisExportScreen& screen,
                                    MessageSink& sink);

} // namespace celestark
