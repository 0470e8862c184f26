#pragma once
// The analysis database `analysis.mdb`: whole event tables gathered into one calculated store, a
// row per event and world view, so that any tool that speaks SQL can query the positions of many
// events at once. Each of its tables `geocentric`, `hermetic`, `heliocentric`, `lemnicentric`
// holds the event's text fields as stored, then the longitude of each point of the ephemeris
// export's lists in degrees (`SUN_Floating` and so on), every point indexed.
#include "session/messages.h"
#include "store/store_types.h"

#include <filesystem>
#include <string>
#include <vector>

namespace celestark {

struct Session;

namespace store {
class Recordset;
}

inline constexpr const char* analysis_file_name = "analysis.mdb";

// The fields and indexes of a table (0 to 3, in the order of `ephemeris_tables`).
std::vector<store::FieldDef> analysis_fields(int table);
std::vector<store::IndexDef> analysis_indexes(int table);

// What an add or a recalculation came to.
struct AnalysisResult {
    bool done = false; // the work was stored (false: refused, failed or cancelled)
    bool cancelled = false;
    long added = 0;         // events added (or recalculated)
    long already_there = 0; // events whose name, event and version the database holds already
    long not_charted = 0;   // rows that could not be charted, each reported by its row number
    std::string error;      // why the store failed
};

// ADD TABLE TO DATABASE: every row of the event table (in name order) charted with the current
// zodiac and added to the four tables of `file`, which is made when missing; one transaction, so
// a failure or CANCEL adds nothing. "TABLE EMPTY" / "TABLE CORRUPT" refuse the table. A row that
// cannot be charted is a line of the input error list with its row number; an event already in
// the database is passed over and counted. The outcome is told in a box at the end.
AnalysisResult add_table_to_analysis(Session& s, store::Recordset& events,
                                     const std::filesystem::path& file, MessageSink& sink);

// RECALCULATE DATABASE WITH CURRENT ZODIAC: the points of every stored event calculated again.
AnalysisResult recalculate_analysis(Session& s, const std::filesystem::path& file,
                                    MessageSink& sink);

// CLEAR ANALYSIS DATABASE: empties the four tables (after a Yes); false when refused or failed.
bool clear_analysis(const std::filesystem::path& file, MessageSink& sink);

// The number of events in the database (`no_events`): 0 when there is no file.
long analysis_event_count(const std::filesystem::path& file);

} // namespace celestark
