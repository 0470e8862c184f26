#pragma once
// The program's windows around one session: the main chart window, the chart window, and every
// other window, opened by the name of the command that asks for it.
#include "drawing/display.h"
#include "screens/widgets/qt_message_sink.h"

#include <QObject>

class QPrinter;

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace celestark {
struct Session;
struct EventInput;
} // namespace celestark

namespace celestark::screens {

class ChartWindow;
class ChartDisplay;

class Desktop : public QObject {
    Q_OBJECT
  public:
    explicit Desktop(Session& session);
    ~Desktop() override;

    Session& session() { return session_; }
    drawing::Drawing& drawing() { return drawing_; }
    drawing::Canvases& canvases() { return canvases_; }

    ChartWindow& chart_window();
    ChartDisplay& chart_display();

    // Runs a command of the main chart window by its control name: a chart page, or the window
    // the command opens. False for a command that nothing answers yet.
    bool run(const std::string& command);
    bool knows(const std::string& command) const;
    // A window's way in: the command that opens it.
    void add_command(const std::string& command, std::function<void()> open);

    // The event input window on an event (the search window's EDIT EVENT); the input window
    // gives the way in.
    void edit_event(const EventInput& input);
    void set_event_editor(std::function<void(const EventInput&)> editor);

    // The main chart window shows the slots, the store and the options again.
    void refresh_chart_window();
    // Draws the page of the drawing values on the chart window and shows it.
    void show_page();

    // The printer of the session: its dialog keeps the choices from one print to the next.
    QPrinter& printer();
    // Whether a print opens the system's print dialog first; tests set the printer up themselves.
    bool print_dialog = true;
    // Runs `draw` with the printer as the session's paper and printing on; its answer.
    bool print(const std::function<bool()>& draw);

    // Set while the program ends, when the windows may close.
    bool quitting() const { return quitting_; }
    void quit();

  signals:
    void slots_changed();

  private:
    Session& session_;
    drawing::Canvases canvases_;
    drawing::Drawing drawing_;
    std::unique_ptr<ChartWindow> chart_window_;
    std::unique_ptr<ChartDisplay> chart_display_;
    std::unique_ptr<QPrinter> printer_;
    std::map<std::string, std::function<void()>> commands_;
    std::function<void(const EventInput&)> event_editor_;
    bool quitting_ = false;
};

// The windows of each part add their commands to the desktop.
void add_event_input_windows(Desktop& desktop);    // INPUT_CHART
void add_option_windows(Desktop& desktop);         // Program_options
void add_event_database_windows(Desktop& desktop); // the database and search windows
void add_option_set_windows(Desktop& desktop);     // zodiacs, aspect sets, colour sets
void add_star_windows(Desktop& desktop);           // star database, options, groups, fixed points
void add_help_windows(Desktop& desktop);           // the user guide and the About box
void add_print_windows(Desktop& desktop);          // the charts of an event, the page setup
void add_epoch_windows(Desktop& desktop);          // the prenatal epoch
void add_predictive_windows(Desktop& desktop);     // BIOGRAPHY and the run's report
void add_phenomena_windows(Desktop& desktop);      // planetary_aspects and its list
void add_monthly_window(Desktop& desktop);         // the monthly ephemeris

} // namespace celestark::screens
