#include "session/messages.h"

#include "session/text.h"

#include <cstdlib>

namespace celestark {

void fatal_error(MessageSink& sink, const std::string& operation, const std::string& text,
                 const FatalHandler& handler) {
    fatal_box(sink, "Fatal Error in " + to_upper(operation), text, handler);
}

void fatal_box(MessageSink& sink, const std::string& title, const std::string& text,
               const FatalHandler& handler) {
    sink.message(title, text, MessageIcon::information);
    if (handler) {
        handler(title, text);
        return;
    }
    std::exit(EXIT_FAILURE);
}

std::string ck_text(int code, long number, const std::string& description,
                    const std::string& rest) {
    return "CK" + std::to_string(code) + "-Error " + std::to_string(number) + " - " + description +
           rest;
}

} // namespace celestark
