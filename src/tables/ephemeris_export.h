#pragma once
// The ephemeris written to disk: a row a day at 0 hours Universal Time over whole years, one
// table per world view (`geocentric`, `hermetic`, `heliocentric`, `lemnicentric`), each with the
// nine common fields and four fields per point. The file is an SQLite database named NAME.mdb, or
// a folder of four CSV files with the same columns; either is written whole or not at all.
#include "session/event.h"
#include "session/messages.h"
#include "store/store_types.h"

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace celestark {

struct Session;
struct PositionLists;
struct ChartSettings;
struct EngineState;

// The four tables in the order they are written, with the world view each row names.
inline constexpr int ephemeris_table_count = 4;
inline constexpr std::array<const char*, ephemeris_table_count> ephemeris_tables = {
    "geocentric", "hermetic", "heliocentric", "lemnicentric"};
inline constexpr std::array<const char*, ephemeris_table_count> ephemeris_world_views = {
    "GEOCENTRIC", "TYCHONIC", "HELIOCENTRIC", "LEMNICENTRIC"};

// The points of a table (0 to 3) in column order: "VP", "SUN", "MOON", ...
const std::vector<std::string>& ephemeris_points(int table);

// The longitudes of a table's points in degrees, 0 to below 360, from the position lists the
// engine left and the vernal point in degrees; NaN for a point the lists lack (a table-driven
// body outside its table). The lists must hold the lunar node and perigee, Chiron and the four
// asteroids.
void ephemeris_longitudes(int table, const PositionLists& lists, double vernal_point_degrees,
                          std::vector<double>& degrees);

// While it lives, the session calculates what the tables read and nothing else: every body of the
// lists (Chiron and the asteroids too), the lunar node and perigee, no stars, no houses, the
// geocentric view (the Tychonic points are taken from the heliocentric list). The settings, the
// engine and the work row of the slots are put back when it ends.
class TableCalculation {
  public:
    explicit TableCalculation(Session& s);
    ~TableCalculation();
    TableCalculation(const TableCalculation&) = delete;
    TableCalculation& operator=(const TableCalculation&) = delete;

  private:
    Session& s_;
    std::unique_ptr<ChartSettings> chart_;
    std::unique_ptr<EngineState> engine_;
    EventRow work_row_;
};

// The fields of a table: Julian_Date, Day, Month, Year, Time_Zone, Calender, Zodiac, World_View,
// Day_of_Week, then P_Floating, P_Degrees, P_Minutes, P_Seconds for every point P.
std::vector<store::FieldDef> ephemeris_fields(int table);

// The span of whole years, `end_year` included, on the calendar "G" or "J".
struct EphemerisSpan {
    int start_year = 0, end_year = 0;
    std::string gj = "G";
};

enum class ExportOutcome { written, refused, cancelled, failed };
struct ExportResult {
    ExportOutcome outcome = ExportOutcome::failed;
    std::string error;            // why it failed
    std::filesystem::path target; // the file or folder written (or meant)
    long days = 0;                // rows written to each table
};

// What a program around the export wants to know: `partial` is told the temporary path while
// one exists (and an empty path when it is gone), so that a signal can remove it.
struct ExportHooks {
    std::function<void(const std::filesystem::path&)> partial;
};

// The temporary path a database file or CSV folder is built under, beside it.
std::filesystem::path partial_export_path(const std::filesystem::path& target);

// Writes the span into the database file `target`, replacing an older one only once the new one
// is complete. Progress goes through the sink as a percentage; CANCEL leaves the target as it was.
ExportResult write_ephemeris_database(Session& s, const EphemerisSpan& span,
                                      const std::filesystem::path& target, MessageSink& sink,
                                      const ExportHooks& hooks = {});
// The same tables as CSV files `<table>.csv` in the folder `target` (made when missing), with a
// header line of the field names; the four files appear together at the end.
ExportResult write_ephemeris_csv(Session& s, const EphemerisSpan& span,
                                 const std::filesystem::path& target, MessageSink& sink,
                                 const ExportHooks& hooks = {});

// The screen's values as typed.
struct EphemerisRequest {
    std::string start_year, end_year;
    bool julian = false; // the option `julian` rather than `gregorian`
    std::string file_name;
    std::string folder; // the currently selected folder
    bool csv = false;   // a folder of CSV files rather than the database file
};

// The checks of the screen, each fault a line of the input error list (shown together); true
// with the span when the export may start.
bool check_ephemeris_request(Session& s, const EphemerisRequest& request, EphemerisSpan& span,
                             MessageSink& sink);

// START: the checks, the file name (NAME.mdb, or the folder NAME for CSV files) in the folder, the
// question "DUPLICATE FILE NAME" when it exists (No stops and keeps it), and the export with the
// active zodiac.
ExportResult save_ephemeris(Session& s, const EphemerisRequest& request, MessageSink& sink,
                            const ExportHooks& hooks = {});

} // namespace celestark
