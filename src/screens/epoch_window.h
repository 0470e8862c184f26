#pragma once
// The prenatal epoch's two windows without their widgets. `Epoch_options` takes the number and
// kind of lunar months and the epoch place; the epoch window `Epoch_dates` shows the birth, the
// month return and the four candidates, moves the birth time by hand or corrects it, draws the
// chart of a line, and stores the chosen candidate in the event.
#include "session/event.h"
#include "session/messages.h"

#include <array>
#include <string>
#include <vector>

namespace celestark {

struct Session;

// The place fields of `Epoch_options`, in the order of the event row's epoch place.
inline constexpr std::array<const char*, 9> epoch_place_fields = {
    "epoch_place",    "epoch_lat_deg", "epoch_lat_ns",   "epoch_lat_min", "epoch_lat_sec",
    "epoch_long_deg", "epoch_long_ew", "epoch_long_min", "epoch_long_sec"};

struct EpochOptionsScreen {
    int months = 10;      // epoch_6 to epoch_12
    bool sidereal = true; // Sidereal_month, else Synodic_month
    bool same_as_birth = true;
    std::array<std::string, 9> place; // the texts of epoch_place_fields
};

// The commands that move the birth time by hand: plus1hour ... pluspoint1sec and their minus
// twins, with the amounts of the plus command.
struct BirthTimeStep {
    const char* name; // without "plus" or "minus": "1hour", "20min", "point1sec"
    const char* caption;
    int hours, minutes, seconds, msecs;
};
const std::vector<BirthTimeStep>& birth_time_steps();

// The six lines of the window and the commands that draw each line's chart.
inline constexpr std::array<const char*, 6> epoch_line_fields = {
    "original_birth", "no_lunar_months", "asc1", "asc2", "desc1", "desc2"};
inline constexpr std::array<const char*, 6> epoch_display_commands = {
    "display_birth", "display_no_lunar_months", "disp_asc1", "disp_asc2", "disp_desc1",
    "disp_desc2"};

// The state of the two windows over one birth: the birth as it stands (moved or corrected) is
// kept here, so that the work rows it shares with the chart window may be used in between.
class EpochWindows {
  public:
    // The `calculate_epoch` command of the main window: the active slot must hold a birth; the
    // options take its stored months, month kind and epoch place. False, with the message, when
    // there is no birth to work on.
    bool start(Session& s, MessageSink& sink);

    EpochOptionsScreen& options() { return options_; }

    // The options' `calculate_epoch`: checks a different epoch place (its faults listed in the
    // input error list), takes the active event as the birth, and calculates. False when the
    // place failed its check.
    bool calculate(Session& s, MessageSink& sink);

    // A birth time command ("plus20min", "minus1sec", ...): the birth moves and all is
    // calculated again. False for an unknown command.
    bool adjust(Session& s, const std::string& command);
    // `forward` (1) or `backward` (-1): the correction. False when it did not settle.
    bool correct(Session& s, int direction);

    // The lines to show and which candidate field shows green (1 to 4, 0 none).
    const std::array<std::string, 6>& lines(const Session& s) const;
    int recommended(const Session& s) const;

    // A display command: the work row holding that line's moment (5 to 10), ready to draw, or 0
    // for an unknown command.
    int display_row(Session& s, const std::string& command);

    // A click on a candidate's field (1 asc1, 2 asc2, 3 desc1, 4 desc2): the birth (corrected or
    // not) and the candidate go into the active event, which is offered for saving; its epoch
    // row is rebuilt. False when nothing was stored.
    bool store(Session& s, int candidate, MessageSink& sink);

    // `cancel`: the active event stays as it was.
    void cancel();

    bool calculated() const { return calculated_; }

  private:
    // Puts the kept birth back in row 5 and calculates again, when another window may have
    // used the work rows since.
    void restore(Session& s);

    EpochOptionsScreen options_;
    EventRow birth_{};
    bool calculated_ = false;
};

} // namespace celestark
