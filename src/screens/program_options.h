#pragma once
// What the CHART DISPLAY AND PRINT OPTIONS window does: every control stands for one stored
// option of `option_name` or `options`, and a change is written into the option row at once.
// The option row is the window's only state; the window itself only shows the controls.
#include "session/messages.h"
#include "store/store_types.h"

#include <map>
#include <string>
#include <vector>

namespace celestark {

struct Session;

// An option button: a click writes `value` into `field`. The buttons of one field form a group.
// For a True/False field (`flag`) a stored value counts by being non-zero.
struct OptionButton {
    const char* control;
    const char* group; // the group box caption
    const char* caption;
    const char* table; // "option_name" or "options"
    const char* field;
    int value;
    bool flag;
};

// A check box: ticked writes True (-1) for a `flag` field, or the box's own value 1; not ticked 0.
struct OptionCheck {
    const char* control;
    const char* group;
    const char* caption;
    const char* table;
    const char* field;
    bool flag;
};

// A text field of `option_name`, written when the cursor leaves it; a line width is a whole
// number from 1 to 10.
struct OptionText {
    const char* control;
    const char* group;
    const char* caption; // the label beside the field
    const char* field;
    bool line_width;
};

const std::vector<OptionButton>& option_buttons();
const std::vector<OptionCheck>& option_checks();
const std::vector<OptionText>& option_texts();

// The group box captions in the order the window lays them out, each once.
std::vector<std::string> option_groups();

// The states of all controls as the option row gives them, by control name: option buttons and
// check boxes in `checked`, text fields in `texts`. Entering the screen repairs the nulls of
// `option_name` first (they take their defaults and are written back).
struct OptionControlStates {
    std::map<std::string, bool> checked;
    std::map<std::string, std::string> texts;
};
OptionControlStates program_options_states(Session& s, MessageSink& sink);

// A control's change, written at once; the session's values follow the stored row. False when
// the store refused it (the sink has been told).
bool choose_option_button(Session& s, const OptionButton& button, MessageSink& sink);
bool tick_option_check(Session& s, const OptionCheck& check, bool ticked, MessageSink& sink);

enum class OptionTextResult { stored, refused, failed };
// A text field left: the text is stored (an empty one as one blank). A line width outside 1 to 10
// (or not a whole number) shows its box and is not stored.
OptionTextResult leave_option_text(Session& s, const OptionText& text, const std::string& typed,
                                   MessageSink& sink);

// The controls by name; nullptr for a name that is no such control.
const OptionButton* find_option_button(const std::string& control);
const OptionCheck* find_option_check(const std::string& control);
const OptionText* find_option_text(const std::string& control);

// The short note a help link of the window shows (`apparent`, `extra`, `osculating`,
// `Picture1`); empty for another name.
std::string option_help_text(const std::string& link);

} // namespace celestark
