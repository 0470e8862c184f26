#include "session/session.h"

#include <utility>

namespace celestark {

void initialise_session(Session& session, std::string program_directory) {
    session.program_directory = std::move(program_directory);
    session.line_break = "\r\n";
    initialise_event_slots(session.event_slots);
    session.event_slots.active_event = 1;
    session.accuracy_level = 1;
    session.event_dirty = false;
}

} // namespace celestark
