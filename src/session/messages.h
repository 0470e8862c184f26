#pragma once
// Effects at the edge: message boxes, Yes/No questions, the input error list, and the fatal error
// that ends the process. The desktop program installs a sink that shows real boxes; tests install
// one that records what was said and answers from a script.
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace celestark {

enum class MessageIcon { information, exclamation, critical, question };

inline constexpr const char* product_word = "Celestark";

class MessageSink {
  public:
    virtual ~MessageSink() = default;
    virtual void message(const std::string& title, const std::string& text, MessageIcon icon) = 0;
    // A Yes and No box; true is Yes.
    virtual bool ask(const std::string& title, const std::string& text) = 0;
    // One line of the input error list, which gathers all errors of a check.
    virtual void input_error(const std::string& line) = 0;
    // The check has ended: the lines gathered since the last call are shown together.
    virtual void show_input_errors() {}
    // A long run's progress window, with a CANCEL button: opened with a caption and the count of
    // its steps, advanced after each step, closed at the end. An advance is the one place where
    // the screen's pending events are let through while the run holds the thread; it answers
    // true once CANCEL has been pressed.
    virtual void progress_begin(const std::string& /*caption*/, int /*steps*/) {}
    virtual bool progress(int /*done*/) { return false; }
    // A line beside the bar: the date a run has reached.
    virtual void progress_label(const std::string& /*text*/) {}
    virtual void progress_end() {}
};

// Records everything; questions are answered from `answers` in order, then `default_answer`.
class RecordingSink : public MessageSink {
  public:
    struct Entry {
        std::string title, text;
        MessageIcon icon;
    };
    std::vector<Entry> messages;
    std::vector<Entry> questions;
    std::vector<std::string> input_errors;
    std::deque<bool> answers;
    bool default_answer = false;
    // The progress seen, and the step after which CANCEL is pressed (0 never).
    std::vector<int> progress_steps;
    int cancel_after = 0;

    void message(const std::string& title, const std::string& text, MessageIcon icon) override {
        messages.push_back({title, text, icon});
    }
    bool ask(const std::string& title, const std::string& text) override {
        questions.push_back({title, text, MessageIcon::question});
        if (answers.empty()) return default_answer;
        const bool a = answers.front();
        answers.pop_front();
        return a;
    }
    void input_error(const std::string& line) override { input_errors.push_back(line); }
    bool progress(int done) override {
        progress_steps.push_back(done);
        return cancel_after > 0 && done >= cancel_after;
    }
};

// The closing sentence of every fatal text.
inline constexpr const char* fatal_tail = "This is a fatal error. Please contact Ivan Marlow";

// What a fatal error does after its box: the program ends the process; tests record the call.
using FatalHandler = std::function<void(const std::string& title, const std::string& text)>;

// Shows the box with the title "Fatal Error in " + the operation in capitals through `sink`, then
// calls the handler: by default it ends the process.
void fatal_error(MessageSink& sink, const std::string& operation, const std::string& text,
                 const FatalHandler& handler = {});

// The same with the whole title given as it is written (some titles keep small letters).
void fatal_box(MessageSink& sink, const std::string& title, const std::string& text,
               const FatalHandler& handler = {});

// "CK<n>-Error <number> - <description>" + the rest, the shape of the fatal texts of the stores.
std::string ck_text(int code, long number, const std::string& description, const std::string& rest);

} // namespace celestark
