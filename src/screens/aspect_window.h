#pragma once
// What the ASPECTS WINDOW does with the aspect sets of option.mdb (table `aspects`, index
// `aspect_set` on Name, angle_degs, angle_mins): choose a set, list its rows, pick a row, check
// the fields in their order, save (edit at the bookmark, or add a row), start a new row or a new
// set, and delete. The window itself only shows the fields; every write is one transaction.
#include "session/messages.h"

#include <string>
#include <vector>

namespace celestark {

struct Session;

// The fields as typed, with the window's list and the bookmark of the row shown.
struct AspectWindow {
    std::string aspect_set_name;
    std::vector<std::string> list_of_aspects; // "degrees:minutes", one line a row of the set
    std::string angle_degs, angle_mins, asp_digraph;
    bool aspectogram = false; // "Include in Aspectogram"
    std::string sun_degs, sun_mins, moon_degs, moon_mins, planets_degs, planets_mins, stars_degs,
        stars_mins, elements_degs, elements_mins;
    std::string aspect_bookmark; // empty for a new row
    bool new_set = false;        // the name is that of a set not yet saved
    bool changed = false;
};

inline constexpr const char* no_aspect_sets_text = "NO ASPECT SETS TO EDIT";

// The names of the stored sets, each once, in index order, for the `edit_aspect` chooser; the
// one line "NO ASPECT SETS TO EDIT" when there is none. A failure of the store while filling it
// is the fatal CK29 ("Fatal Error in EDIT ASPECT-GOT FOCUS").
std::vector<std::string> aspect_edit_choices(Session& s);
// The same names for another chooser (the option screens'), a failure being the fatal `code`
// under `operation`. Empty when there is none.
std::vector<std::string> stored_aspect_set_names(Session& s, int code,
                                                 const std::string& operation);

// The lines of a set, "degrees:minutes" in angle order.
std::vector<std::string> aspect_set_lines(Session& s, const std::string& name);

// `aspect_edit`: the set picked in the chooser: its name, its list, no row shown.
void aspect_edit(Session& s, AspectWindow& w, const std::string& name);

// A line of the list picked: the row of the set with that angle is sought, its bookmark kept
// and its fields shown. False when there is no such row.
bool aspect_pick(Session& s, AspectWindow& w, const std::string& line);

// `add_new_aspect`: no bookmark, the two angle fields and the ten orb fields "0", no digraph.
void aspect_new(AspectWindow& w);
// `add_aspect_set`: name, list and fields cleared for a new set. The name field takes the focus.
void aspect_new_set(AspectWindow& w);

// The glyph the `sigil` field shows for the typed angle: a standard aspect's symbol code, or a
// blank.
unsigned char aspect_sigil(const AspectWindow& w);

// Leaving the name field: a new set whose name is stored already is warned of ("DUPLICATE
// ASPECT SET NAME"). True when the name is free (or the set is not new).
bool aspect_name_left(Session& s, const AspectWindow& w, MessageSink& sink);

struct AspectCheck {
    bool ok = true;
    std::string field;   // the field that takes the focus at the first fault
    std::string message; // the line given to the input error list
};
// Checks the fields in order and stops at the first fault: name, angle degrees, angle minutes,
// digraph, the five orb degrees (Sun, Moon, planets, stars, elements), the five orb minutes.
AspectCheck check_aspect_window(const AspectWindow& w, MessageSink& sink);

enum class AspectSave { saved, invalid, duplicate_name, failed };
// `save`: checks, then writes the row at the bookmark, or adds it and keeps the new row's
// bookmark; then the list is read again. A new set whose name is stored already is not saved.
AspectSave aspect_save(Session& s, AspectWindow& w, MessageSink& sink);

enum class AspectDelete { deleted, declined, no_row, failed };
// `delete_aspect`, for the row shown (no_row without one): asks "Are you sure you want to delete
// this Aspect" ("DELETE ASPECT ?"); Yes deletes the row at the bookmark, clears the fields and
// reads the list again.
AspectDelete aspect_delete(Session& s, AspectWindow& w, MessageSink& sink);

// Leaving a row or a set: with changes pending, asks "Aspect has changed. Do you want to save it
// ?" ("ASPECT HAS CHANGED!"). Yes saves. True when the window may go on (nothing pending, No, or
// saved); false when the save was refused and the row stays.
bool aspect_leave(Session& s, AspectWindow& w, MessageSink& sink);

} // namespace celestark
