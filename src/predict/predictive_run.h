#pragma once
// The predictive run: transits (mode "T"), the astrological biography ("B") and progressions
// ("P") share one frame. It steps time, keeps five samples of every body in a sliding window,
// lets the searches find the moments of the phenomena asked for inside the window, and hands the
// hits in date order to a printer a page at a time. A page that fills the screen stops the run;
// it goes on from the session's values when asked.
#include "session/predictive_state.h"

#include <string>
#include <vector>

namespace celestark {

struct Session;

// What the rows of a run go to: the report on the screen or on paper, or a list.
class HitPrinter {
  public:
    virtual ~HitPrinter() = default;
    // A new page: its head, and on the first page the block of the run's parameters.
    virtual void begin_page(Session& s, int page) = 0;
    // Prints a row; false when the page is full and the row was not printed.
    virtual bool print_row(Session& s, const Hit& hit) = 0;
    // True when a full page is followed by the next (paper, a list); false when the run waits
    // for the user (the screen).
    virtual bool pages_follow() const = 0;
    // The run has ended (not merely stopped at a full page).
    virtual void end_run(Session& /*s*/) {}
};

enum class RunOutcome { finished, page_full, cancelled, refused };

// A new run of the parameters on the active event (DISPLAY or PRINT). Refused, with the message,
// when the dates or zone are wrong, when the Draconic zodiac has no node, when the format is
// unknown, when the event is missing or (for a biography) has no epoch.
RunOutcome start_predictive_run(Session& s, const PredictiveParameters& params,
                                HitPrinter& printer);
// The next page of a run stopped at a full page.
RunOutcome continue_predictive_run(Session& s, HitPrinter& printer);
// The run again from its first date, or from a new one (day, month, year of the life).
RunOutcome restart_predictive_run(Session& s, HitPrinter& printer);
RunOutcome restart_predictive_run_at(Session& s, HitPrinter& printer, const std::string& day,
                                     const std::string& month, const std::string& year);

// The days in which the equinox moves one degree of general precession at t_ut (Julian
// centuries): about 71.6 years.
double precession_degree_days(double t_ut);

// The life date of a stepped moment; `slot` (1 to 5) when the moment is that of a window slot,
// else 0. Transits and progressions map by their ratio; the biography by its projection.
double map_to_life_date(const Session& s, double t, int slot);

// The rows in order of their life dates; rows of equal dates keep the order they were found in.
void sort_hits(std::vector<Hit>& hits);

// The window from the moment t: slot 5 holds t, the others a step apart before it.
void fill_sample_window(Session& s, double t);
// The window moves one step on: t advances by one step and becomes slot 5.
void add_next_interval(Session& s, double& t);

} // namespace celestark
