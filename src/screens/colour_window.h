#pragma once
// What the COLOURS window does with the colour sets of option.mdb: the list of sets, picking one,
// changing a swatch, a new set, save with its name check, delete, and the question to save changes
// before the window moves on. The window itself only shows the swatches and the boxes.
#include "session/colour_fields.h"
#include "session/messages.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace celestark {

struct Session;

struct ColourWindow {
    std::string name; // the set's name as typed
    std::string display_or_printer;
    std::array<std::int32_t, colour_field::count> values{}; // 0x00BBGGRR, or 16-bit choices
    std::bitset<colour_field::count> null_values;           // fields the row leaves empty
    std::string bookmark;                                   // empty for a new set
    bool changed = false;
};

inline constexpr const char* no_colour_sets = "NO COLOUR SETS TO EDIT";

// The names of the stored sets for the list COLOUR_SETS; empty when the table has none (the
// window then shows "NO COLOUR SETS TO EDIT" and closes).
std::vector<std::string> colour_set_list(Session& s);

// The stored set of that name, as the window shows it; nothing when there is none.
std::optional<ColourWindow> colour_set_to_window(Session& s, const std::string& name);

// The colour the colour dialog starts from for a swatch: the field's colour, unless it is empty.
std::optional<std::int32_t> swatch_start(const ColourWindow& w, int field);
// A colour chosen in the dialog goes to the field and marks the set changed; a dialog that was
// cancelled (no colour) keeps the old one.
void choose_swatch(ColourWindow& w, int field, std::optional<std::int32_t> chosen);
// A choice of the set (constellation lines, flowing colours, stars as glyphs or as planets).
void set_choice(ColourWindow& w, int field, bool on);

// When the set has changed: "SAVE ANY CHANGES TO COLOUR SET?"; on Yes it is saved. False when a
// save was asked for and failed, so that the window stays on the set.
bool offer_save_colours(Session& s, ColourWindow& w, MessageSink& sink);

// Picks another set from the list (after the save question).
bool pick_colour_set(Session& s, ColourWindow& w, const std::string& name, MessageSink& sink);
// A new set of the current values with an empty name (after the save question).
void new_colour_set(Session& s, ColourWindow& w, MessageSink& sink);

enum class ColourSave { saved, bad_name, duplicate_name, failed };
// Checks the name ("None", blank or only blanks are refused), then stores the row: at its
// bookmark, or as a new row. A new set whose name is taken is refused. When the saved set is the
// one the session shows, the session takes its new colours.
ColourSave save_colour_set(Session& s, ColourWindow& w, MessageSink& sink);

enum class ColourDelete { deleted, declined, failed };
ColourDelete delete_colour_set(Session& s, ColourWindow& w, MessageSink& sink);

// The window's exit: the save question, then it closes (false: it stays open).
bool exit_colour_window(Session& s, ColourWindow& w, MessageSink& sink);

} // namespace celestark
