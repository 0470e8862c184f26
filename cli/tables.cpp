#include "tables.h"

#include "positions.h"
#include "program_session.h"
#include "screens/event_checks.h"
#include "screens/event_input.h"
#include "session/session.h"
#include "session/text.h"
#include "store/event_database.h"
#include "store/event_schema.h"
#include "store/table_store.h"
#include "tables/analysis_database.h"
#include "tables/ephemeris_export.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <unistd.h>

namespace celestark::cli {

namespace fs = std::filesystem;
using store::Outcome;

namespace {

// ---- CSV ----------------------------------------------------------------------------------------

// A header cell that names no slot column: the stored field F_options.
constexpr int options_field = -2;

std::string upper(std::string_view text) {
    return to_upper(text);
}

// The slot column of a stored event field, by name in any case; -1 for an unknown name.
int column_of_field(const std::string& name) {
    const std::string wanted = upper(trim(name));
    for (int c = col::event; c < col::notused; ++c)
        if (upper(event_columns_table[static_cast<std::size_t>(c)].field) == wanted) return c;
    for (const store::FieldDef& f : store::event_table_fields())
        if (upper(f.name) == wanted) return options_field;
    return -1;
}

int field_width(int column) {
    const std::string_view name = column == options_field
                                      ? std::string_view("F_options")
                                      : event_columns_table[static_cast<std::size_t>(column)].field;
    for (const store::FieldDef& f : store::event_table_fields())
        if (upper(f.name) == upper(name)) return f.width;
    return 255;
}

// The screen's text of a column, its working copies included.
std::string& input_cell(EventInput& in, int column) {
    switch (column) {
    case col::msecs:
        return in.event_msecs;
    case col::epoch_msecs:
        return in.event_epoch_msecs;
    case col::epoch_exists:
        return in.event_epoch_exists;
    default:
        return in.cells[static_cast<std::size_t>(column)];
    }
}

// One row as the input screen takes it: a new event, the file's fields typed in the screen's
// order and left one by one (the light checks and their effects on the fields the file leaves
// out), then the full check. False with the reasons.
bool row_to_input(const std::vector<int>& columns, const std::vector<std::string>& cells,
                  EventInput& input, std::string& reason) {
    new_event_defaults(input);
    std::map<int, std::string> own;
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i] >= 0) own[columns[i]] = cells[i];
    const auto put_own = [&] {
        for (const auto& [column, text] : own) input_cell(input, column) = text;
    };
    put_own();
    InputOptions options;
    options.twelve_hour = false;
    options.time_input_secs = true;
    options.lat_long_secs = true;
    RecordingSink sink;
    reason.clear();
    const auto add = [&](const std::string& text) {
        const std::string t = trim(text);
        if (t.empty()) return;
        if (!reason.empty()) reason += "; ";
        reason += t;
    };
    bool ok = true;
    for (const InputField& f : input_fields()) {
        if (f.column < 0 || f.read_only || f.check == FieldCheck::none || !own.count(f.column))
            continue;
        const std::size_t said = sink.messages.size();
        if (!leave_field(input, f.name, options, sink).ok) ok = false;
        // The light check's boxes, under the stored field's name.
        for (std::size_t m = said; m < sink.messages.size(); ++m)
            add(std::string(event_columns_table[static_cast<std::size_t>(f.column)].field) + " - " +
                sink.messages[m].text);
        // The check's effects stand for the fields the file left out; the file's own stay.
        own[f.column] = input_cell(input, f.column);
        put_own();
    }
    if (ok) ok = check_event_fields(input, sink);
    for (const std::string& line : sink.input_errors) add(line);
    if (!ok && reason.empty()) reason = "the row does not pass the input checks";
    return ok;
}

// ---- Temporary files of an export, removed on a signal ------------------------------------------

// Paths a signal removes: files, then their folder. Plain arrays: a signal handler may only
// unlink and rmdir.
struct Removal {
    char files[12][4096] = {};
    int file_count = 0;
    char folder[4096] = {};

    void add_file(const fs::path& p) {
        std::snprintf(files[file_count++], sizeof files[0], "%s", p.string().c_str());
    }
    void add_store(const fs::path& p) {
        for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
            fs::path f = p;
            f += suffix;
            add_file(f);
        }
    }
    void set_folder(const fs::path& p) {
        std::snprintf(folder, sizeof folder, "%s", p.string().c_str());
    }
    void remove() const {
        for (int i = 0; i < file_count; ++i) unlink(files[i]);
        if (folder[0]) rmdir(folder);
    }
};
// The export's partial file or folder, and the scratch program folder of the command.
Removal partial_removal, scratch_removal;

void remove_partial_on_signal(int signal_number) {
    partial_removal.remove();
    scratch_removal.remove();
    std::signal(signal_number, SIG_DFL);
    std::raise(signal_number);
}

void set_removal(Removal& target, const Removal& fresh) {
    // Signals wait while the paths change.
    sigset_t all, old;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, &old);
    target = fresh;
    sigprocmask(SIG_SETMASK, &old, nullptr);
}

void watch_partial(const fs::path& p, bool folder) {
    Removal fresh;
    if (!p.empty() && folder) {
        for (const char* t : ephemeris_tables) fresh.add_file(p / (std::string(t) + ".csv"));
        fresh.set_folder(p);
    } else if (!p.empty()) {
        fresh.add_store(p);
    }
    set_removal(partial_removal, fresh);
}

// A program folder made for the command alone goes with it.
void watch_scratch_folder(const fs::path& folder) {
    std::error_code ec;
    Removal fresh;
    if (!fs::equivalent(folder, fs::current_path(), ec)) {
        fresh.add_store(folder / "option.mdb");
        fresh.add_store(folder / "Celestark.zod.mdb");
        for (const char* name : {"outer3.mdb", "asteroid.mdb", "stars.mdb"})
            fresh.add_file(folder / name);
        fresh.set_folder(folder);
    }
    set_removal(scratch_removal, fresh);
}

bool read_file(const std::string& path, std::string& text) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::ostringstream s;
    s << in.rdbuf();
    text = s.str();
    return true;
}

std::string option(const Options& o, const char* name) {
    const auto it = o.find(name);
    return it == o.end() ? std::string() : it->second;
}

} // namespace

bool parse_csv(std::string text, std::vector<std::vector<std::string>>& records,
               std::vector<long>& lines, std::string& error) {
    records.clear();
    lines.clear();
    if (text.rfind("\xEF\xBB\xBF", 0) == 0) text.erase(0, 3);
    long line = 1;
    std::vector<std::string> record;
    std::string cell;
    bool quoted = false, record_open = false, cell_quoted = false;
    long record_line = 1, quote_line = 1;
    const auto end_cell = [&] {
        record.push_back(cell);
        cell.clear();
        cell_quoted = false;
    };
    const auto end_record = [&] {
        end_cell();
        // A line with nothing on it holds no record.
        if (!(record.size() == 1 && record[0].empty())) {
            records.push_back(record);
            lines.push_back(record_line);
        }
        record.clear();
        record_open = false;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (!record_open) {
            record_open = true;
            record_line = line;
        }
        if (quoted) {
            if (c == '"') {
                if (i + 1 < text.size() && text[i + 1] == '"') {
                    cell += '"';
                    ++i;
                } else {
                    quoted = false;
                }
            } else {
                if (c == '\n') ++line;
                cell += c;
            }
            continue;
        }
        if (c == '"' && cell.empty() && !cell_quoted) {
            quoted = cell_quoted = true;
            quote_line = line;
        } else if (c == ',') {
            end_cell();
        } else if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            // CRLF: the LF ends the record.
        } else if (c == '\n') {
            end_record();
            ++line;
        } else {
            cell += c;
        }
    }
    if (quoted) {
        error = "line " + std::to_string(quote_line) + ": a quoted field is never closed";
        return false;
    }
    if (record_open) end_record();
    return true;
}

CsvAddResult add_events_from_csv(const std::string& db_file, const std::string& table,
                                 const std::string& csv_text) {
    CsvAddResult result;
    std::vector<std::vector<std::string>> records;
    std::vector<long> lines;
    if (!parse_csv(csv_text, records, lines, result.error)) return result;
    if (records.empty()) {
        result.error = "the CSV file is empty: its first line must name the event fields";
        return result;
    }
    std::vector<int> columns;
    for (const std::string& name : records[0]) {
        const int c = column_of_field(name);
        if (c == -1) {
            result.error = "the header names an unknown field '" + trim(name) +
                           "': the fields are the stored event fields, F_Event, F_Surname, "
                           "F_day, F_month, F_year and so on";
            return result;
        }
        if (std::find(columns.begin(), columns.end(), c) != columns.end()) {
            result.error = "the header names the field '" + trim(name) + "' twice";
            return result;
        }
        columns.push_back(c);
    }
    store::TableStore db;
    store::Recordset rs;
    if (const Outcome o = open_event_file(db_file, table, db, rs); o != Outcome::ok) {
        result.error = "cannot open the table " + table + " of " + db_file + ": " +
                       std::string(store::describe(o));
        return result;
    }
    rs.set_index(store::event_primary_index);
    store::Transaction work = db.begin_transaction();
    if (!work.active()) {
        result.error = "cannot write to " + db_file + ": " + db.last_error();
        return result;
    }
    for (std::size_t r = 1; r < records.size(); ++r) {
        const std::vector<std::string>& cells = records[r];
        const std::string where = "line " + std::to_string(lines[r]) + ": ";
        if (cells.size() != columns.size()) {
            result.refused.push_back(where + "has " + std::to_string(cells.size()) +
                                     " fields where the header names " +
                                     std::to_string(columns.size()));
            continue;
        }
        std::string too_long;
        for (std::size_t i = 0; i < cells.size() && too_long.empty(); ++i)
            if (static_cast<int>(cells[i].size()) > field_width(columns[i]))
                too_long = trim(records[0][i]) + " is longer than " +
                           std::to_string(field_width(columns[i])) + " characters";
        if (!too_long.empty()) {
            result.refused.push_back(where + too_long);
            continue;
        }
        EventInput input;
        std::string reason;
        if (!row_to_input(columns, cells, input, reason)) {
            result.refused.push_back(where + reason);
            continue;
        }
        Outcome o = rs.add_new();
        if (o == Outcome::ok) {
            write_event_row(input, rs);
            for (std::size_t i = 0; i < cells.size(); ++i)
                if (columns[i] == options_field)
                    rs.set("F_options", store::Value(cells[i].empty() ? " " : cells[i]));
            o = rs.update();
        }
        if (rs.editing()) rs.cancel_update();
        if (o == Outcome::duplicate_key)
            result.refused.push_back(where + "DUPLICATE EVENT - the table holds an event of "
                                             "this surname, firstname, event and version already");
        else if (o != Outcome::ok)
            result.refused.push_back(where +
                                     "cannot be stored: " + std::string(store::describe(o)));
        else
            ++result.added;
    }
    if (const Outcome o = work.commit(); o != Outcome::ok) {
        result.error = "cannot write to " + db_file + ": " + std::string(store::describe(o));
        result.added = 0;
        return result;
    }
    result.read = true;
    return result;
}

int command_events(const std::vector<std::string>& positional, const Options& o) {
    if (positional.empty() || positional[0] != "add")
        return fail("events takes the action add: events add --db FILE --table NAME --csv FILE");
    const std::string db = option(o, "db"), table = option(o, "table"), csv = option(o, "csv");
    if (db.empty() || table.empty() || csv.empty())
        return fail("events add needs --db FILE --table NAME --csv FILE");
    std::string text;
    if (!read_file(csv, text)) return fail("cannot read " + csv);
    const CsvAddResult r = add_events_from_csv(db, table, text);
    if (!r.read) return fail(csv + ": " + r.error);
    for (const std::string& line : r.refused)
        std::fprintf(stderr, "%s: %s\n", csv.c_str(), line.c_str());
    std::printf("added,refused\n%ld,%zu\n", r.added, r.refused.size());
    return r.refused.empty() ? 0 : 1;
}

namespace {

// Readies the program folder and a session on the default event, with --zodiac when given; null
// with the reason when either cannot be had.
std::unique_ptr<Prepared> start_on_default_event(const Options& o, ProgramFolder& folder,
                                                 std::string& error) {
    if (!folder.prepare(error)) return nullptr;
    auto prepared = std::make_unique<Prepared>();
    Options start = {{"default-event", ""}};
    if (o.count("zodiac")) start["zodiac"] = option(o, "zodiac");
    if (!prepare_session(start, folder.path(), *prepared, error)) return nullptr;
    return prepared;
}

} // namespace

int command_export(const Options& o) {
    const std::string out = option(o, "out");
    if (out.empty() || !o.count("from-year") || !o.count("to-year"))
        return fail("export needs --from-year Y --to-year Y --out FILE.mdb|DIR");
    std::string error;
    ProgramFolder folder;
    const std::unique_ptr<Prepared> prepared = start_on_default_event(o, folder, error);
    if (!prepared) return fail(error);
    Session& s = prepared->s;
    EphemerisRequest request;
    request.start_year = option(o, "from-year");
    request.end_year = option(o, "to-year");
    request.julian = o.count("julian") > 0;
    request.file_name = "export"; // the name the window asks for; here the path is given whole
    EphemerisSpan span;
    if (!check_ephemeris_request(s, request, span, prepared->sink)) return 1;
    const fs::path target = fs::absolute(out);
    std::string ext = target.extension().string();
    const bool database = upper(ext) == ".MDB";
    std::error_code ec;
    if (fs::exists(target, ec) && !o.count("replace"))
        return fail(target.string() + " exists: add --replace to overwrite it");
    if (!database && fs::exists(target, ec) && !fs::is_directory(target, ec))
        return fail(target.string() + " is a file: give a folder, or a name ending in .mdb");
    if (!fs::is_directory(target.parent_path(), ec))
        return fail("there is no folder " + target.parent_path().string());
    watch_scratch_folder(folder.path());
    for (int signal_number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal_number, remove_partial_on_signal);
    ExportHooks hooks;
    hooks.partial = [database](const fs::path& p) { watch_partial(p, !database); };
    const ExportResult r = database
                               ? write_ephemeris_database(s, span, target, prepared->sink, hooks)
                               : write_ephemeris_csv(s, span, target, prepared->sink, hooks);
    for (int signal_number : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal_number, SIG_DFL);
    set_removal(scratch_removal, Removal());
    if (prepared->fatal) return 1;
    if (r.outcome != ExportOutcome::written) return fail("the export failed: " + r.error);
    std::printf("target,days,tables\n%s,%ld,4\n", csv_quoted(target.string()).c_str(), r.days);
    return 0;
}

int command_analysis(const Options& o) {
    const std::string out = option(o, "out");
    const bool recalculate = o.count("recalculate") > 0, clear = o.count("clear") > 0;
    const std::string db = option(o, "db"), table = option(o, "table");
    if (out.empty() || (!recalculate && !clear && (db.empty() || table.empty())))
        return fail("analysis needs --db FILE --table NAME --out analysis.mdb (or --out FILE "
                    "with --recalculate or --clear)");
    std::string error;
    ProgramFolder folder;
    const std::unique_ptr<Prepared> prepared = start_on_default_event(o, folder, error);
    if (!prepared) return fail(error);
    Session& s = prepared->s;
    const fs::path target = fs::absolute(out);
    if (clear) {
        // The command line asks nobody: --clear is the answer.
        struct Yes : ConsoleSink {
            bool ask(const std::string&, const std::string&) override { return true; }
        } yes;
        if (!clear_analysis(target, yes)) return 1;
        std::printf("events\n%ld\n", analysis_event_count(target));
        return 0;
    }
    AnalysisResult r;
    if (recalculate) {
        r = recalculate_analysis(s, target, prepared->sink);
    } else {
        store::TableStore events_db;
        store::Recordset events;
        if (const Outcome e =
                open_event_file(db, table, events_db, events, store::TableStore::Access::read_only);
            e != Outcome::ok)
            return fail("cannot open the table " + table + " of " + db + ": " +
                        std::string(store::describe(e)));
        r = add_table_to_analysis(s, events, target, prepared->sink);
    }
    if (prepared->fatal || !r.done) return 1;
    std::printf("%s,already_there,not_charted,in_database\n%ld,%ld,%ld,%ld\n",
                recalculate ? "recalculated" : "added", r.added, r.already_there, r.not_charted,
                analysis_event_count(target));
    return 0;
}

} // namespace celestark::cli
