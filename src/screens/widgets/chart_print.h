#pragma once
// `CHART_PRINT`: the charts of the active event (or its epoch) chosen page by page and printed
// as one document, with a progress window whose CANCEL stops after the current page.
#include "screens/widgets/window_support.h"

#include <map>
#include <string>

class QCheckBox;
class QRadioButton;

namespace celestark::screens {

class ChartPrintWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit ChartPrintWindow(Desktop& desktop);
    void enter();
    // Prints the ticked pages; false when nothing was printed.
    bool print();

  private:
    void ticked_changed();
    std::map<std::string, QCheckBox*> boxes_;
    QRadioButton* birth_ = nullptr;
    QRadioButton* epoch_ = nullptr;
    QPushButton* print_ = nullptr;
};

} // namespace celestark::screens
