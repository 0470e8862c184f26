#pragma once
// The similars windows: `SIMILARS`, where the world view, the charts, the list and its choices
// and the four panels of bodies are chosen; and `similars_display`, which shows the report a page
// at a time as the run goes on (Continue, Restart, Print, Exit) with the run's progress and its
// CANCEL.
#include "drawing/similars_pages.h"
#include "screens/similars_screen.h"
#include "screens/widgets/page_canvas.h"
#include "screens/widgets/window_support.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class QComboBox;
class QGroupBox;
class QLabel;
class QProgressBar;
class QPushButton;

namespace celestark::screens {

class SimilarsDisplay;

class SimilarsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    SimilarsWindow(Desktop& desktop, SimilarsScreen& model);
    void set_display(SimilarsDisplay* display) { display_ = display; }
    // The menu command: the controls as the options keep them, for the event of `event_row`.
    void open(int event_row);
    // Shows the window as it was left (the display's menu button).
    void enter();

  private:
    void refresh();
    void run(bool printing);

    SimilarsScreen& model_;
    SimilarsDisplay* display_ = nullptr;
    std::map<std::string, QWidget*> controls_;
    std::map<std::string, QLabel*> captions_;
    std::map<std::string, QGroupBox*> frames_;
    QComboBox* aspects_ = nullptr;
    QLabel* event_ = nullptr;
    bool filling_ = false;
};

class SimilarsDisplay : public CelestarkWindow {
    Q_OBJECT
  public:
    SimilarsDisplay(Desktop& desktop, SimilarsScreen& model, SimilarsWindow& menu);
    ~SimilarsDisplay() override;
    // A run started by the model: its first page.
    void show_run();
    // The whole list from its beginning on the printer; false when nothing was printed.
    bool print_all();
    // The lines of the page shown, as cells.
    const std::vector<std::vector<std::string>>& page_lines() const { return lines_; }
    int page() const { return page_; }

  private:
    void next_page();
    void draw();
    void update_state();

    SimilarsScreen& model_;
    SimilarsWindow& menu_;
    PageCanvas* canvas_ = nullptr;
    QLabel* state_ = nullptr;
    QProgressBar* done_ = nullptr;
    QPushButton* cancel_ = nullptr;
    std::unique_ptr<drawing::SimilarsPages> pages_;
    std::vector<std::vector<std::string>> lines_;
    int page_ = 0;
    bool cancel_pressed_ = false;
    friend class DisplayProgress;
};

void add_similars_windows(Desktop& desktop);

} // namespace celestark::screens
