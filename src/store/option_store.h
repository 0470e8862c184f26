#pragma once
// The option store: option.mdb in the program directory, opened once at the start and kept open.
// Its two one-row tables hold the global options (`option_name`) and the chart options
// (`options`); every change is written into the row at once, as one atomic update.
#include "session/messages.h"
#include "store/store_types.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace celestark {

struct Session;

// Opens option.mdb of the program directory: `option_name` (its nulls repaired, the global
// options read), `options` (the chart options read), `zodiac` under `zodiac_name` with the
// options' zodiac selected, `aspects` under `aspect_set` and `colour` under `name_index`; then the
// colour set "None" with cleared values and the session state refreshed. A file that is missing,
// not a database, or without the two option tables is fatal with CK1; a missing zodiac, aspect or
// colour table with CK2, CK3 or CK4. False when the fatal handler returned.
bool open_option_database(Session& s, MessageSink& sink, const FatalHandler& handler = {});

// The options screens' entry: every null field of `option_name` that has a default takes it, and
// all of them are written back in one update. Returns every field with the value shown.
std::vector<std::pair<std::string, store::Value>> load_option_screen(Session& s, MessageSink& sink);

// Stores one option: first row, edit, set, update. A one-row table without its row gets one.
// Failures are reported through `sink` and returned.
store::Outcome set_option(Session& s, std::string_view table, std::string_view field,
                          const store::Value& value, MessageSink& sink);
// Stores several options of one table in one update: all of them or none.
store::Outcome set_options(Session& s, std::string_view table,
                           const std::vector<std::pair<std::string, store::Value>>& values,
                           MessageSink& sink);
// The stored value of an option of `option_name` or `options`, with the value a null stands for.
store::Value read_option(Session& s, std::string_view table, std::string_view field);

// The global options of `option_name` into the session (text forms, save option, exclusions).
void read_global_options(Session& s);

// The option group readers: each takes its fields of `options` (and of `option_name` for the
// listings) into the same session values, so that a run uses its own zodiac and aspect set. They
// set the values only; the caller selects the zodiac and loads the aspect set it then needs.
void read_chart_options(Session& s);
void read_biography_options(Session& s);
void read_ephemeris_options(Session& s);
void read_planetary_aspect_options(Session& s);
void read_motion_options(Session& s);
void read_star_list_options(Session& s);
void read_listing_options(Session& s);
void read_similars_options(Session& s);

} // namespace celestark
