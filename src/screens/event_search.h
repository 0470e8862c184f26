#pragma once
// The event search window's list: one line per row of the open event table in the order of the
// chosen index, each with the row's bookmark, and what the window's commands do with a line.
#include "screens/event_input.h"
#include "session/messages.h"
#include "session/text.h"
#include "store/event_database.h"

#include <string>
#include <string_view>
#include <vector>

namespace celestark {

struct Session;

// The list holds at most this many lines.
inline constexpr std::size_t search_list_capacity = 20001;

// The four orders of the window's index list.
inline constexpr const char* search_indexes[] = {"Name_Event", "Event_Name", "Place_Name",
                                                 "Date_Name"};

struct SearchList {
    std::vector<std::string> lines;
    std::vector<std::string> bookmarks; // search_bookmarks: one per line
    bool complete = true;               // false when the table has more rows than the list holds
};

// A line: surname, ", " and first name unless blank, " - " event, "(version)" unless blank,
// " - " place, " - " day/month/year (month first when the date format is month first).
std::string search_line(const store::Recordset& row, const TextOptions& options);

// Sets the index and remembers it as the index in use, then fills the list from the first row to
// the end. An empty or unreadable table gives the table test's message. A table of more rows than
// the list holds fills it and says so ("SEARCH LIST FULL").
TableTest fill_search_list(Session& s, std::string_view index, SearchList& list, MessageSink& sink);

// "Copy to Event Number": the line's row into user slot 1 to 4. False when the line or its row is
// gone.
bool search_line_to_slot(Session& s, const SearchList& list, std::size_t line, int user_slot);
// "EDIT EVENT": the line's row onto the event input screen.
bool search_line_to_screen(Session& s, const SearchList& list, std::size_t line, EventInput& input);
// "DELETE EVENT": asks, deletes the line's row on Yes and refills the list. True when deleted.
bool delete_search_line(Session& s, SearchList& list, std::size_t line, MessageSink& sink);

} // namespace celestark
