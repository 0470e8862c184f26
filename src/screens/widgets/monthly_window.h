#pragma once
// The window `monthly`: the span and the settings of the monthly ephemeris, printed with PRINT.
#include "screens/monthly_screen.h"
#include "screens/widgets/window_support.h"

#include <map>
#include <string>

class QComboBox;
class QGroupBox;
class QLineEdit;
class QRadioButton;

namespace celestark::screens {

class MonthlyWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit MonthlyWindow(Desktop& desktop);
    // Opens the window for the monthly ephemeris, or for the star calendar.
    void enter(bool star_calendar = false);
    // Prints the months; the number printed (0 when refused or cancelled at the dialog).
    int print();

  private:
    MonthlyScreen screen() const;

    std::map<std::string, QLineEdit*> fields_;
    std::map<std::string, QRadioButton*> options_;
    // The star calendar's aspect sets, geo_calender and helio_calender.
    std::map<std::string, QComboBox*> sets_;
    QGroupBox* sets_group_ = nullptr;
    bool star_calendar_ = false;
    std::string ephemeris_aspect_set_;
};

// Registers the window with the desktop: the chart window's "monthly_ephemeris" and
// "star_calender" open it.
void add_monthly_window(Desktop& desktop);

} // namespace celestark::screens
