#pragma once
// The controls of the run's screen `BIOGRAPHY`: every check box, option button and field by its
// name, with its caption, its group and its value as the screen starts, so that the window, the
// command line and the run read the same list.
#include "session/messages.h"
#include "session/predictive_state.h"

#include <string>
#include <string_view>
#include <vector>

namespace celestark {

struct Session;

enum class ControlKind { check, option, text };

struct PredictiveControl {
    const char* name;
    const char* caption;
    ControlKind kind;
    const char* group; // the frame; option buttons of one group exclude each other
    const char* start; // "1" ticked or chosen, "0" not; a field's first text
};
const std::vector<PredictiveControl>& predictive_controls();
const PredictiveControl* find_predictive_control(std::string_view name);

// The fields' choices: the fixed time zone rows ("GMT +0     0": the trigraph, the standard hours
// east, the hour of summer time) and the output formats.
const std::vector<std::string>& predictive_zone_rows();
const std::vector<std::string>& predictive_output_formats();

// The screen as it starts for a mode: every control at its first value, the span from the
// active event's date to ten years on, and the aspect set the options name for the mode.
PredictiveParameters predictive_defaults(Session& s, const std::string& mode);

// Sets one control by its name from a text: a check box takes 1 or 0; an option button takes 1
// (it is chosen, the others of its group cleared) or 0; a field takes its text. The error names
// the control or the value; empty when set.
std::string set_predictive_control(PredictiveParameters& p, std::string_view name,
                                   std::string_view value);

// The check of the dates and the zone before a run: each fault a line of the input error list,
// in order. True when a run may start.
bool validate_predictive_screen(const PredictiveParameters& p, std::string_view calendar,
                                MessageSink& sink);

// The parameters as the run tests them (the contents, the world view, the passes).
RunChoices read_predictive_parameters(const PredictiveParameters& p);

// The flag name of a body in a list, without its "t_" or "c_": "sun", "node", "asteroids"...,
// or empty when no flag selects it.
std::string body_flag(unsigned char glyph);

} // namespace celestark
