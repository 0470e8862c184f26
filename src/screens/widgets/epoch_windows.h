#pragma once
// The prenatal epoch: `Epoch_options` (the lunar months, their kind, the epoch place) and the
// epoch window `Epoch_dates` (the six lines, the birth time moved by hand or corrected, the
// chart of a line, a candidate stored by a click on its line).
#include "screens/epoch_window.h"
#include "screens/widgets/window_support.h"

#include <array>
#include <map>
#include <string>

class QLabel;
class QLineEdit;
class QRadioButton;

namespace celestark::screens {

class EpochDatesWindow;

class EpochOptionsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    EpochOptionsWindow(Desktop& desktop, EpochWindows& model);
    // Shows the options of the model (after its start).
    void enter();
    void set_dates_window(EpochDatesWindow* dates) { dates_ = dates; }

  private:
    void collect();
    void place_mode_changed();
    void calculate();

    EpochWindows& model_;
    EpochDatesWindow* dates_ = nullptr;
    std::map<int, QRadioButton*> months_;
    QRadioButton *sidereal_ = nullptr, *synodic_ = nullptr;
    QRadioButton *same_ = nullptr, *different_ = nullptr;
    std::array<QLineEdit*, 9> place_{};
    std::array<QWidget*, 2> seconds_{}; // the seconds of arc, shown by the option
};

class EpochDatesWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    EpochDatesWindow(Desktop& desktop, EpochWindows& model);
    void set_options_window(EpochOptionsWindow* options) { options_ = options; }
    // Shows the lines of the last calculation.
    void enter();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void show_lines();
    void display(const std::string& command);
    void store(int candidate);

    EpochWindows& model_;
    EpochOptionsWindow* options_ = nullptr;
    QLabel* heading_ = nullptr;
    QLabel* state_ = nullptr;
    std::array<QLineEdit*, 6> lines_{};
};

} // namespace celestark::screens
