#pragma once
// The predictive run's windows without their widgets: the screen `BIOGRAPHY` (which controls a
// mode shows, which a world view and the options enable, the captions of mode "P"), and the window
// `ab_events` that turns a row of the report into a moment: its fields, the event it stores in
// the open table, and the chart it draws.
#include "session/event.h"
#include "session/messages.h"
#include "session/predictive_state.h"

#include <string>
#include <string_view>

namespace celestark {

struct Session;

inline constexpr const char* biography_title = "ASTROLOGICAL BIOGRAPHY AND TRANSIT WINDOW";
inline constexpr const char* report_window_title =
    "ASTROLOGICAL BIOGRAPHY AND TRANSIT DISPLAY WINDOW";

// What the screen shows of one control in the state of the parameters and the options.
struct ControlState {
    bool shown = true;
    bool enabled = true;
    std::string caption;
};

class PredictiveScreen {
  public:
    // The menu command of a mode ("B", "T" or "P") opens the screen on the active event, with
    // every control at its first value. False, with the message, when the active card is empty.
    bool open(Session& s, const std::string& mode, MessageSink& sink);
    const std::string& mode() const { return params_.mode; }
    PredictiveParameters& params() { return params_; }
    const PredictiveParameters& params() const { return params_; }

    // A control changed by the user; the controls that depend on it follow. The error names an
    // unknown control or value; empty when set.
    std::string set(Session& s, std::string_view name, std::string_view value);
    // The boxes that the state of the screen clears (and the option buttons it forces) are put
    // right; called after every change and when the options may have changed.
    void apply_rules(Session& s);

    ControlState state(const Session& s, std::string_view name) const;
    // Whether a frame (a group of the control table) shows in the mode.
    bool frame_shown(std::string_view group) const;

    // The field that takes the cursor after the input errors of the dates: `start_day`, or
    // `start_month` when dates are written month first.
    static std::string first_date_field(Session& s);

  private:
    PredictiveParameters params_;
    bool geo_helio_allowed_ = true; // option_geo_hel
};

// The window `ab_events`: the moment of a row of the report and the place of its chart.
struct RowMoment {
    std::string day, month, year; // of the row, in the report's zone
    std::string time;             // ab_time, "hh:mm"
    std::string meridian;         // ab_meridian, the zone's meridian as "15E00" or "75W00"
    bool different_place = false;
    std::string place, lat_deg, lat_ns, lat_min, long_deg, long_ew, long_min;
    std::string describe; // the row as the report printed it
};

// The fields for a row of the last run: its date and time, the report's zone, the event's place.
// The prenatal biography and the progressions show the stepped moment, the others the life date.
RowMoment row_moment(const Session& s, const Hit& hit);

// What the name of a stored moment begins with ("Transit:", "Progressed:", ...) and the world
// view its event field tells ("Geocentric", "Geo/Helio", "Helio/Geo", ...), by the run and the row.
std::string moment_prefix(const Session& s);
std::string moment_world_view(const Session& s, const Hit& hit);

// `ab_save`: the moment as a new event of the open table, the name prefixed and the event field
// the world view. The fields are checked as the input window checks an event; their faults go to
// the input error list. False when nothing was stored.
bool save_row_moment(Session& s, const Hit& hit, const RowMoment& m, MessageSink& sink);

// `ab_display`: the moment in work row 5 with the chart page of its world view, ready for the
// chart window, which comes back to `ab_events`. False when its fields are wrong.
bool display_row_moment(Session& s, const Hit& hit, const RowMoment& m, MessageSink& sink);

} // namespace celestark
