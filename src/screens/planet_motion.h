#pragma once
// The motion of the planets on the chart window: the span typed in its date fields and the
// bodies ticked, the checks of both with their messages, and the request that draws the plan of
// the Solar System or the run of the planets through the span.
#include "session/messages.h"

#include <string>
#include <vector>

namespace celestark {

struct Session;

// The choices of the motion: the plan of the Solar System (at the start date), or the run of
// the planets seen from the Sun, from the lemnicentric centre, or from it in perspective.
enum class MotionView { geo, helio, lemni, lemni_3d };
struct MotionViewChoice {
    const char* name; // motion_geo, motion_hel, motion_lem, motion_lem_3d
    MotionView view;
    const char* caption;
};
const std::vector<MotionViewChoice>& motion_views();

// The box of a body: its name, the body's glyph code, its caption, and whether the body is held
// to spans of 100 years.
struct MotionBody {
    const char* name;
    unsigned char glyph;
    const char* caption;
    bool held_to_a_century;
};
const std::vector<MotionBody>& motion_bodies();

struct MotionInput {
    std::string start_day, start_month, start_year, end_day, end_month, end_year;
    std::vector<std::string> ticked; // the names of the ticked body boxes
};

// The span as Julian dates, at 0h Universal Time of each date.
struct MotionSpan {
    double start_jd = 0, end_jd = 0;
};

// The checks, each fault a line in the order of the checks; empty when all passed. `calendar`
// is the event's ("G" or "J"); `first_jd` and `last_jd` bound the dates the tables of the outer
// planets cover (both 0: no bound); `needs_bodies`: the run asks for a ticked body. The span
// comes back when both dates are good.
std::vector<std::string> motion_errors(const MotionInput& input, const std::string& calendar,
                                       double first_jd, double last_jd, bool needs_bodies,
                                       MotionSpan& span);

// `display_motion`: the checks, their lines gathered in the input error list and shown; then the
// drawing values of the chosen view. False when the active slot holds no event or a check failed.
bool motion_request(Session& s, const MotionInput& input, MotionView view, MessageSink& sink);

} // namespace celestark
