#pragma once
// The zodiac, aspect set and colour set of the session, loaded from the tables of option.mdb.
#include "session/messages.h"
#include "session/option_state.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace celestark {

struct Session;
namespace store {
class Recordset;
}

// With the session's zodiac set: "Tropical" and "Draconic" take sign form and the equal
// boundaries; any other name is sought in the zodiac table. With no such row the message
// "Zodiac: <name> does not exist" is shown and the previous zodiac stays; otherwise its bookmark is
// kept, its row goes to the zodiac window's record, sign form follows "Equal" and the row is
// loaded. False when the zodiac was not found or could not be read.
bool select_zodiac(Session& s, MessageSink& sink);

// The current row of the zodiac table; null fields count as 0 or empty.
ZodiacRecord read_zodiac_record(store::Recordset& zodiacs);
// Sets the zodiac state from a row: the boundaries (unequal ones unless `sign_form`) and, unless
// the zodiac is "Tropical" or "Draconic", the reference star with its longitude in the zodiac, or
// "Epoch" with the vernal point's position referred to J2000.0.
void load_zodiac(const ZodiacRecord& row, const std::string& zodiac, bool sign_form,
                 ZodiacState& state);

// General precession in longitude in degrees for `t` Julian centuries.
double precession_from(double t);

// Loads the rows of the named set in angle order into the aspect table. "None" and a set without
// rows give 0 aspects; a row that cannot be read (a null included) gives the message "Problem
// reading aspect set <name>. Check that it is correct." and 0 aspects.
void load_aspect_set(Session& s, const std::string& name, MessageSink& sink);
// The symbol code of a standard aspect angle, or a blank for any other angle.
unsigned char aspect_glyph(int degrees, int minutes);

// Copies the named colour set into the session's colour set. "None" does nothing; a set that is
// not in the table gives a message and leaves the colours as they were. False then.
bool load_colour_set(Session& s, const std::string& name, MessageSink& sink);
// The cleared colour set "None": white for every colour, 0 for the choices.
void clear_colour_set(ColourSet& colours);
// The set that the print mode asks for: the print set in print mode, the display set otherwise,
// "None" (monochrome) when colour printing is off. Loaded when it differs from the one loaded.
void load_active_colour_set(Session& s, MessageSink& sink);
// One value of a colour set by its field name (without regard to case); -1 when there is no such
// field.
std::int32_t colour_value(const ColourSet& colours, std::string_view field);

// After an option or event change: reads the zodiac, aspect set and colour set options, loads the
// aspect set, selects the zodiac (which recomputes sign form) and loads the active colour set.
void refresh_session_state(Session& s, MessageSink& sink);

} // namespace celestark
