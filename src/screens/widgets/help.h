#pragma once
// The user guide (`help_info`), shown from the guide compiled into the program, and the About box
// (`about`) with the program's attributions.
#include "screens/widgets/window_support.h"

class QTextBrowser;

namespace celestark::screens {

// Where the guide lives among the program's resources.
inline constexpr const char* user_guide_resource = ":/help/user-guide.md";

class UserGuideWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit UserGuideWindow(Desktop& desktop);
    void enter();
    QTextBrowser* browser() const { return browser_; }

  private:
    QTextBrowser* browser_ = nullptr;
};

class AboutWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit AboutWindow(Desktop& desktop);
    void enter();
};

} // namespace celestark::screens
