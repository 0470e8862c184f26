#pragma once
// The moves of the SIDEREAL ZODIAC OPTIONS window around its zodiac row that the row operations
// of zodiac_window.h leave to the window: finding a row by name, a new zodiac, the question
// before leaving a changed one, the light checks as a field is left, which parts show and which
// controls are locked, and the date hint.
#include "screens/zodiac_window.h"
#include "session/messages.h"

#include <string>

namespace celestark {

struct Session;

// The bookmark of the stored zodiac of that name; empty when there is none.
std::string zodiac_bookmark(Session& s, const std::string& name);

// The fields of a new zodiac: a star zodiac of equal signs at 0 degrees.
ZodiacWindow new_zodiac_window();

// Leaving a zodiac (another picked, a new one, the window's exit): with changes pending, asks
// "Zodiac has changed. Do you want to save it ?" ("ZODIAC HAS CHANGED!"). Yes saves. True when
// the window may go on; false when the save was refused and the zodiac stays.
bool zodiac_leave(Session& s, ZodiacWindow& w, MessageSink& sink);

// Saves through save_zodiac; a failed check shows its input error list and names in `focus` the
// field that takes the focus (a refused name names `z_name`). When the zodiac saved is the
// session's, the session selects it again and takes its new values.
ZodiacSave zodiac_window_save(Session& s, ZodiacWindow& w, MessageSink& sink,
                              std::string* focus = nullptr);

// The light checks as `z_defined` or `z_constellation` is left: a value other than the two
// allowed ones is answered at once. False then.
bool zodiac_defined_left(const std::string& text, MessageSink& sink);
bool zodiac_constellation_left(const std::string& text, MessageSink& sink);

// Which parts of the window show for the typed values, and whether the name and the delete
// command are locked (a zodiac in use, or the standard sidereal zodiac).
struct ZodiacWindowParts {
    bool star = false, epoch = false, boundaries = false, name_locked = false;
};
ZodiacWindowParts zodiac_window_parts(Session& s, const ZodiacWindow& w);

// The hint above the date fields by the date option: day first or month first.
std::string zodiac_date_hint(const Session& s);

} // namespace celestark
