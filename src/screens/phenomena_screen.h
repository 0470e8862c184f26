#pragma once
// The window `planetary_aspects` without its widgets: the controls by name, the two columns of
// bodies and their clearing, the checks of DISPLAY and PRINT, and the list they make with the
// head its pages carry.
#include "predict/phenomena.h"
#include "session/messages.h"

#include <string>
#include <string_view>
#include <vector>

namespace celestark {

struct Session;

inline constexpr const char* phenomena_title = "PLANETARY PHENOMENA";
inline constexpr const char* phenomena_display_title = "PLANETARY PHENOMENA - LIST";

// A body of the two columns: the stem of its boxes (`sun` gives `sun1` and `sun2`) and its caption.
struct PhenomenaBody {
    const char* stem;
    const char* caption;
};
const std::vector<PhenomenaBody>& phenomena_bodies();

// The world views and the contents of the window, by control name with their captions.
struct PhenomenaChoice {
    const char* name;
    const char* caption;
};
const std::vector<PhenomenaChoice>& phenomena_world_views();
const std::vector<PhenomenaChoice>& phenomena_contents();

// The caption of the world view chosen; the eclipse list is always geocentric.
std::string phenomena_world_view(const PhenomenaParameters& p);

class PhenomenaScreen {
  public:
    // Every control at its first value, the aspect set the session's.
    void open(Session& s);
    PhenomenaParameters& params() { return params_; }
    const PhenomenaParameters& params() const { return params_; }

    // A control changed by the user; the error names an unknown control or value.
    std::string set(std::string_view name, std::string_view value);
    // `planets_clear`: every box of both columns, the stars too, cleared.
    void clear_bodies();

    // DISPLAY and PRINT: the checks, their faults in the input error list, then the list. False
    // when refused; the list made before stays as it was.
    bool make_list(Session& s, MessageSink& sink);

    // The list last made, whether it is the eclipse list, and the head of its pages: the title,
    // the years and the world view.
    const std::vector<Phenomenon>& rows() const { return rows_; }
    bool eclipses() const { return eclipses_; }
    const std::string& calendar() const { return calendar_; }
    const std::string& page_title() const { return page_title_; }

  private:
    PhenomenaParameters params_;
    std::vector<Phenomenon> rows_;
    bool eclipses_ = false;
    std::string calendar_ = "G";
    std::string page_title_;
};

} // namespace celestark
