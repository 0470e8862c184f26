#pragma once
// The predictive run's windows: the screen `BIOGRAPHY` with the run's parameters, the report
// window `ab_display` with its pages and buttons, `ab_options` for a new life date, and `ab_events`
// that makes a moment of a row of the report.
#include "drawing/predictive_report.h"
#include "screens/predictive_screen.h"
#include "screens/widgets/page_canvas.h"
#include "screens/widgets/window_support.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;

namespace celestark::drawing {
class RasterCanvas;
}

namespace celestark::screens {

class ReportWindow;

class BiographyWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    BiographyWindow(Desktop& desktop, PredictiveScreen& model);
    void set_report_window(ReportWindow* report) { report_ = report; }
    // The menu command of a mode opens the screen on the active event.
    void open(const std::string& mode);
    // Shows the screen as it was left (the report's menu button).
    void enter();

  private:
    void changed(const std::string& name, const std::string& value);
    void collect_fields();
    void refresh();
    void run(bool printing);

    PredictiveScreen& model_;
    ReportWindow* report_ = nullptr;
    std::map<std::string, QWidget*> controls_;
    std::map<std::string, QWidget*> frames_;
    QLabel* mode_label_ = nullptr;
    QComboBox *zone_ = nullptr, *format_ = nullptr, *aspect_set_ = nullptr;
    bool filling_ = false;
};

// The report's page as a picture, and a click on a row.
class EventsWindow;
class NewDateWindow;

class ReportWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    ReportWindow(Desktop& desktop, BiographyWindow& biography);
    ~ReportWindow() override;
    // DISPLAY: a new run on the screen; PRINT: a new run on the printer. False when refused.
    bool start(const PredictiveParameters& params);
    bool print(const PredictiveParameters& params);
    // The run from a new life date (the window `ab_options`); false when refused.
    bool restart_at(const std::string& day, const std::string& month, const std::string& year);
    // Shows the window with the page last drawn.
    void enter();
    const drawing::PredictiveReport* report() const { return report_.get(); }
    EventsWindow& events() { return *events_; }

  private:
    // Runs an entry of the run frame on the screen's report and shows the page it stopped at.
    void screen_run(const std::function<RunOutcome(drawing::PredictiveReport&)>& entry);
    void lock(bool locked);
    void show_state(RunOutcome outcome);
    void row_clicked(float x, float y);

    BiographyWindow& biography_;
    PageCanvas* canvas_ = nullptr;
    QLabel* state_ = nullptr;
    bool can_continue_ = false;
    std::unique_ptr<drawing::PredictiveReport> report_;
    std::unique_ptr<EventsWindow> events_;
    std::unique_ptr<NewDateWindow> new_date_;
};

// `ab_options`: the new start date of the life, checked as the screen's start date.
class NewDateWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    NewDateWindow(Desktop& desktop, ReportWindow& report);
    void enter();

  private:
    ReportWindow& report_;
    QLineEdit *day_ = nullptr, *month_ = nullptr, *year_ = nullptr;
};

// `ab_events` ("EVENT"): the moment of a row, stored as an event or drawn.
class EventsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit EventsWindow(Desktop& desktop);
    void open(const Hit& hit);
    // Shows the window as it was left (the chart window's exit).
    void enter();

  private:
    RowMoment collect() const;
    void place_mode_changed();

    Hit hit_;
    QLabel* row_ = nullptr;
    QLineEdit *day_ = nullptr, *month_ = nullptr, *year_ = nullptr, *time_ = nullptr,
              *meridian_ = nullptr;
    QCheckBox* different_ = nullptr;
    QLineEdit *place_ = nullptr, *lat_deg_ = nullptr, *lat_ns_ = nullptr, *lat_min_ = nullptr,
              *long_deg_ = nullptr, *long_ew_ = nullptr, *long_min_ = nullptr;
};

} // namespace celestark::screens
