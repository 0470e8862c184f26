#include "screens/event_search.h"

#include "session/session.h"
#include "store/open_stores.h"
#include "store/table_store.h"

namespace celestark {

using store::Outcome;
using store::Recordset;

namespace {

// A cell of the row as a slot would hold it: a null takes the column's null value.
std::string cell(const Recordset& row, int column) {
    const EventColumn& c = event_columns_table[static_cast<std::size_t>(column)];
    const store::Value v = row.get(c.field);
    return v.is_null() ? std::string(c.null_value) : v.as_text();
}

bool present(const std::string& text) {
    return !trim(text).empty();
}

Recordset* open_table(Session& s) {
    return s.stores && s.stores->event_table.is_open() ? &s.stores->event_table : nullptr;
}

bool go_to_line(Session& s, const SearchList& list, std::size_t line, Recordset*& rs) {
    rs = open_table(s);
    return rs && line < list.bookmarks.size() && rs->go_to(list.bookmarks[line]) == Outcome::ok;
}

} // namespace

std::string search_line(const Recordset& row, const TextOptions& options) {
    std::string line = cell(row, col::surname);
    const std::string firstname = cell(row, col::firstname);
    if (present(firstname)) line += ", " + firstname;
    line += " - " + cell(row, col::event);
    const std::string version = cell(row, col::version);
    if (present(version)) line += "(" + version + ")";
    line += " - " + cell(row, col::place);
    const std::string day = cell(row, col::day), month = cell(row, col::month);
    line += " - " + (options.date_format ? day + "/" + month : month + "/" + day) + "/" +
            cell(row, col::year);
    return line;
}

TableTest fill_search_list(Session& s, std::string_view index, SearchList& list,
                           MessageSink& sink) {
    list = SearchList();
    Recordset* rs = open_table(s);
    if (!rs) {
        sink.message("TABLE CORRUPT", "The selected table is corrupt", MessageIcon::information);
        return TableTest::corrupt;
    }
    const Outcome o = rs->set_index(index);
    if (o != Outcome::ok && o != Outcome::no_current_record) {
        sink.message("TABLE CORRUPT", "The selected table is corrupt", MessageIcon::information);
        return TableTest::corrupt;
    }
    s.event_store.event_index_name = std::string(index);
    const TableTest test = test_event_table(*rs, sink);
    if (test != TableTest::has_events) return test;
    while (rs->has_current()) {
        if (list.lines.size() == search_list_capacity) {
            list.complete = false;
            sink.message("SEARCH LIST FULL",
                         "The table holds more events than the list can show: the first " +
                             std::to_string(search_list_capacity) +
                             " are listed. Use another index or a smaller table to reach the "
                             "others",
                         MessageIcon::information);
            break;
        }
        list.bookmarks.push_back(rs->bookmark());
        list.lines.push_back(search_line(*rs, s.options.text));
        const Outcome step = rs->move_next();
        if (step != Outcome::ok && step != Outcome::no_current_record) {
            sink.message("TABLE CORRUPT", "The selected table is corrupt",
                         MessageIcon::information);
            return TableTest::corrupt;
        }
    }
    return TableTest::has_events;
}

bool search_line_to_slot(Session& s, const SearchList& list, std::size_t line, int user_slot) {
    Recordset* rs = nullptr;
    if (user_slot < slot::first_user || user_slot > slot::last_user) return false;
    if (!go_to_line(s, list, line, rs)) return false;
    load_event_row(*rs, s.event_slots, user_slot);
    return true;
}

bool search_line_to_screen(Session& s, const SearchList& list, std::size_t line,
                           EventInput& input) {
    Recordset* rs = nullptr;
    if (!go_to_line(s, list, line, rs)) return false;
    EventSlots loaded;
    load_event_row(*rs, loaded, slot::work);
    slot_to_screen(loaded, slot::work, input);
    return true;
}

bool delete_search_line(Session& s, SearchList& list, std::size_t line, MessageSink& sink) {
    Recordset* rs = nullptr;
    if (line >= list.bookmarks.size()) return false;
    if (!sink.ask("DELETE SELECTED EVENT ?", "Are you sure you want to delete the selected Event"))
        return false;
    if (!go_to_line(s, list, line, rs) || rs->delete_row() != Outcome::ok) {
        sink.message(product_word, "The event could not be deleted", MessageIcon::exclamation);
        return false;
    }
    fill_search_list(s, s.event_store.event_index_name, list, sink);
    return true;
}

} // namespace celestark
