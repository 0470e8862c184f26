#pragma once
// Program_options, "CHART DISPLAY AND PRINT OPTIONS": one control for each stored display and
// print option, written the moment it changes.
#include "screens/widgets/window_support.h"

#include <map>
#include <string>

class QCheckBox;
class QLineEdit;
class QRadioButton;

namespace celestark::screens {

class ProgramOptionsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit ProgramOptionsWindow(Desktop& desktop);

    // Sets every control from the option row (its nulls repaired first) and shows the window.
    void open();
    // Sets the controls from the option row without writing anything.
    void show_stored();

  private:
    void leave_text(const std::string& control);
    void exit_window();
    void help(const std::string& link);

    std::map<std::string, QRadioButton*> buttons_;
    std::map<std::string, QCheckBox*> checks_;
    std::map<std::string, QLineEdit*> texts_;
};

} // namespace celestark::screens
