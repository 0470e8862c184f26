#pragma once
// The commands of celestark-cli for the tables: adding events to an event table from a CSV file,
// the ephemeris export, and the analysis database.
#include <map>
#include <string>
#include <vector>

namespace celestark::cli {

// A CSV text as records of cells: fields quoted with double quotes may hold commas, line ends and
// doubled quotes; a leading byte order mark is dropped; lines end in LF or CRLF. `lines` gets the
// line each record begins on. False with the reason (and its line) for an unclosed quote.
bool parse_csv(std::string text, std::vector<std::vector<std::string>>& records,
               std::vector<long>& lines, std::string& error);

// What an add from CSV came to: the events added, and a line for every refused row ("line 4:
// DAY OF THE MONTH - Invalid entry").
struct CsvAddResult {
    bool read = false; // the file was read and its header accepted; false with `error`
    long added = 0;
    std::vector<std::string> refused;
    std::string error;
};
// Adds the rows of the CSV text to the event table `table` of the event database `db`: the header
// names stored event fields (any case); a field left out takes what a new event gets on the input
// screen; each row goes through the input screen's checks as if typed; the good rows are added in
// one transaction.
CsvAddResult add_events_from_csv(const std::string& db, const std::string& table,
                                 const std::string& csv_text);

// events add --db FILE --table NAME --csv FILE: the rows added; a refused row on standard error
// with its line and reason. Exit 1 when any row was refused (the others are added).
int command_events(const std::vector<std::string>& positional,
                   const std::map<std::string, std::string>& options);

// export --from-year Y --to-year Y --out FILE.mdb|DIR [--julian] [--replace] [--zodiac NAME]:
// the ephemeris of the years as an SQLite file, or as a CSV file a world view in the folder DIR.
// An existing target is replaced only with --replace; the target appears only when complete.
int command_export(const std::map<std::string, std::string>& options);

// analysis --db FILE --table NAME --out analysis.mdb [--zodiac NAME]: the event table added to
// the analysis database (made when missing); --recalculate instead recalculates the database with
// the zodiac, --clear empties it.
int command_analysis(const std::map<std::string, std::string>& options);

} // namespace celestark::cli
