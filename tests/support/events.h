// Events for the tests: Einstein's birth, and new events as the input screen holds them.
#pragma once

#include "screens/event_input.h"
#include "session/event.h"
#include "session/session.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace celestark::testing {

using EventCells = std::vector<std::pair<int, const char*>>;

// Einstein's birth: Ulm, 14 March 1879, 11:30 local mean time.
inline const EventCells einstein = {{col::surname, "Einstein"},
                                    {col::firstname, "Albert"},
                                    {col::event, "Birth"},
                                    {col::place, "Ulm"},
                                    {col::day, "14"},
                                    {col::month, "3"},
                                    {col::year, "1879"},
                                    {col::gj, "G"},
                                    {col::hours, "11"},
                                    {col::mins, "30"},
                                    {col::lz, "L"},
                                    {col::lat_deg, "48"},
                                    {col::lat_min, "24"},
                                    {col::lat_ns, "N"},
                                    {col::long_deg, "10"},
                                    {col::long_ew, "E"},
                                    {col::long_min, "0"},
                                    {col::epoch_exists, "N"}};

// A new event on the input screen: the cells given over the new event's defaults, not yet stored.
inline EventInput new_input(const EventCells& cells) {
    EventInput in;
    new_event_defaults(in);
    for (const auto& [column, text] : cells) in.cells[static_cast<std::size_t>(column)] = text;
    in.event_dirty = true;
    return in;
}

// Einstein's birth in a card, which becomes the active one.
inline void put_einstein(Session& s, int slot) {
    EventRow& row = s.event_slots[slot];
    row = make_default_event();
    for (const auto& [column, text] : einstein) row[static_cast<std::size_t>(column)] = text;
    s.event_slots.active_event = static_cast<std::int16_t>(slot);
}

} // namespace celestark::testing
