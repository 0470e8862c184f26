#include "screens/tables_screens.h"

#include "session/session.h"
#include "session/text.h"
#include "store/event_database.h"
#include "store/store_files.h"
#include "store/table_store.h"

#include <filesystem>

namespace celestark {

namespace fs = std::filesystem;

namespace {

std::string value(const EphemerisExportScreen& m, const char* name) {
    const auto it = m.values.find(name);
    return it == m.values.end() ? std::string() : it->second;
}

void drop_choice(AnalysisScreen& screen) {
    screen.choice.sel_file.clear();
    screen.choice.sel_table.clear();
    screen.choice.table_list.clear();
    screen.sel_table.clear();
}

} // namespace

void enter_analysis_screen(Session& s, AnalysisScreen& screen) {
    screen = AnalysisScreen();
    const std::string& open_path = s.event_store.event_db_path;
    choose_event_folder(screen.choice, open_path.empty() ? s.program_directory : open_path);
    screen.analysis_path = (fs::path(s.program_directory) / analysis_file_name).string();
    screen.no_events = analysis_event_count(screen.analysis_path);
}

void choose_analysis_folder(AnalysisScreen& screen, const std::string& folder) {
    choose_event_folder(screen.choice, folder);
    drop_choice(screen);
}

bool pick_analysis_database(AnalysisScreen& screen, const std::string& file, MessageSink& sink) {
    drop_choice(screen);
    store::TableStore db;
    if (db.open(store::find_file(screen.choice.db_dir, file),
                store::TableStore::Access::read_only) != store::Outcome::ok) {
        sink.message(product_word, "Error opening database", MessageIcon::exclamation);
        return false;
    }
    screen.choice.sel_file = file;
    screen.choice.table_list = event_table_lines(db);
    return true;
}

bool pick_analysis_table(AnalysisScreen& screen, const std::string& line) {
    if (line.empty() || line == "[NONE]" || screen.choice.sel_file.empty()) return false;
    screen.sel_table = line;
    screen.choice.sel_table = to_upper(line);
    return true;
}

AnalysisResult add_analysis_table(Session& s, AnalysisScreen& screen, MessageSink& sink) {
    AnalysisResult result;
    if (screen.choice.sel_file.empty() || screen.sel_table.empty()) {
        sink.message("NO TABLE SELECTED", "You must select a database and a table to add",
                     MessageIcon::information);
        return result;
    }
    store::TableStore db;
    store::Recordset events;
    if (open_event_file(store::find_file(screen.choice.db_dir, screen.choice.sel_file),
                        screen.sel_table, db, events,
                        store::TableStore::Access::read_only) != store::Outcome::ok) {
        sink.message("TABLE CORRUPT", "The selected table is corrupt", MessageIcon::information);
        return result;
    }
    result = add_table_to_analysis(s, events, screen.analysis_path, sink);
    screen.no_events = analysis_event_count(screen.analysis_path);
    return result;
}

AnalysisResult recalculate_analysis_screen(Session& s, AnalysisScreen& screen, MessageSink& sink) {
    AnalysisResult result = recalculate_analysis(s, screen.analysis_path, sink);
    screen.no_events = analysis_event_count(screen.analysis_path);
    return result;
}

bool clear_analysis_screen(AnalysisScreen& screen, MessageSink& sink) {
    const bool cleared = clear_analysis(screen.analysis_path, sink);
    screen.no_events = analysis_event_count(screen.analysis_path);
    return cleared;
}

EphemerisExportScreen ephemeris_export_defaults(Session& s) {
    EphemerisExportScreen m;
    std::string year = trim(s.event_slots[s.event_slots.active_event][col::year]);
    if (year.empty()) year = "2000";
    const long next = static_cast<long>(text_to_number(year)) + 1;
    m.values = {{"start_year", year}, {"end_year", std::to_string(next)},
                {"gregorian", "1"},   {"julian", "0"},
                {"file_name", ""},    {"sqlite_format", "1"},
                {"csv_format", "0"}};
    m.folder = s.program_directory;
    return m;
}

ExportResult start_ephemeris_export(Session& s, const EphemerisExportScreen& m, MessageSink& sink) {
    EphemerisRequest r;
    r.start_year = value(m, "start_year");
    r.end_year = value(m, "end_year");
    r.julian = value(m, "julian") == "1";
    r.file_name = value(m, "file_name");
    r.folder = m.folder;
    r.csv = value(m, "csv_format") == "1";
    return save_ephemeris(s, r, sink);
}

} // namespace celestark
