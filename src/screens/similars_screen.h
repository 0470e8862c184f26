#pragma once
// The window `SIMILARS` without its widgets: every control by name with its caption, the choices
// kept in the options record (written the moment a control changes, read back at the next
// opening), the captions of the four body panels, which say what each panel selects for the list
// chosen, and their frame titles by the world view. DISPLAY and PRINT start a run of the list
// against the tables of the listing slots.
#include "tables/similars.h"

#include <string>
#include <string_view>

namespace celestark {

struct Session;

inline constexpr const char* similars_title = "SIMILARS";
inline constexpr const char* similars_purpose =
    "Comparing an event against a number of event tables looking for specified planetary "
    "similarities";
inline constexpr const char* similars_display_title = "SIMILARS - LIST";

class SimilarsScreen {
  public:
    // Every control at its value: the kept ones from the options record. `event_row` is the slot
    // of the event compared.
    void open(Session& s, int event_row);
    SimilarsParameters& params() { return params_; }
    const SimilarsParameters& params() const { return params_; }
    int event_row() const { return event_row_; }

    // A control changed by the user: the error names an unknown control or value. A kept choice is
    // written to the options record at once.
    std::string set(Session& s, std::string_view name, std::string_view value, MessageSink& sink);

    // The caption over a panel (`tables_text`, `tables_text_2`, `event_text`, `event_text_2`) for
    // the list chosen, and the panel's frame title for the world view ("GEOCENTRIC PLANETS").
    std::string panel_caption(std::string_view label) const;
    std::string frame_title(std::string_view panel) const;
    // Whether the second panels take part in the list chosen (the angles only).
    bool second_panels_used() const;

    // DISPLAY and PRINT: the checks, then a new run over the tables of the listing slots. False
    // when refused (the message has been shown). A session without any table says so.
    bool start(Session& s, MessageSink& sink);
    SimilarsRun& run() { return run_; }
    const SimilarsRun& run() const { return run_; }

  private:
    SimilarsParameters params_;
    int event_row_ = 1;
    SimilarsRun run_;
};

} // namespace celestark
