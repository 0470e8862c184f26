#include "session/session.h"

#include <cstdio>
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

namespace celestark {

namespace {
// A sink for sessions without a window: boxes go to standard error, questions are answered No.
class StderrSink : public MessageSink {
  public:
    void message(const std::string& title, const std::string& text, MessageIcon) override {
        std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
    }
    bool ask(const std::string&, const std::string&) override { return false; }
    void input_error(const std::string& line) override {
        std::fprintf(stderr, "%s\n", line.c_str());
    }
};
} // namespace

void session_fatal(Session& session, const std::string& operation, const std::string& text) {
    fatal_error(session_sink(session), operation, text, session.fatal_handler);
}

void session_fatal_box(Session& session, const std::string& title, const std::string& text) {
    fatal_box(session_sink(session), title, text, session.fatal_handler);
}

MessageSink& session_sink(Session& session) {
    static StderrSink fallback;
    return session.sink ? *session.sink : fallback;
}

} // namespace celestark
