#pragma once
// The phenomena windows: `planetary_aspects` ("PLANETARY PHENOMENA") with the span, the world
// view, what to search for, the aspect set and the two columns of bodies; and
// `phenomena_display`, which shows the list a page at a time and prints it.
#include "drawing/phenomena_pages.h"
#include "screens/phenomena_screen.h"
#include "screens/widgets/page_canvas.h"
#include "screens/widgets/window_support.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

class QComboBox;
class QLabel;
class QProgressBar;

namespace celestark::drawing {
class RasterCanvas;
}

namespace celestark::screens {

class PhenomenaDisplay;

class PhenomenaWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    PhenomenaWindow(Desktop& desktop, PhenomenaScreen& model);
    void set_display(PhenomenaDisplay* display) { display_ = display; }
    // The menu command: every control at its first value.
    void open();
    // Shows the window as it was left (the display's menu button).
    void enter();

  private:
    void refresh();
    void collect_fields();
    void run(bool printing);

    PhenomenaScreen& model_;
    PhenomenaDisplay* display_ = nullptr;
    std::map<std::string, QWidget*> controls_;
    QComboBox *gj_ = nullptr, *aspects_ = nullptr;
    bool filling_ = false;
};

// The page of the list as a picture, drawn again for a new size.
class PhenomenaDisplay : public CelestarkWindow {
    Q_OBJECT
  public:
    PhenomenaDisplay(Desktop& desktop, PhenomenaWindow& menu);
    ~PhenomenaDisplay() override;
    // The list last made, from its first page.
    void show_list(const PhenomenaScreen& model);
    // Every page of the list on the printer; false when nothing was printed.
    bool print_list(const PhenomenaScreen& model);
    const drawing::PhenomenaPages* pages() const { return pages_.get(); }

  private:
    void show_page(int page);
    bool print_sheet(const drawing::PhenomenaSheet& sheet);

    PhenomenaWindow& menu_;
    PageCanvas* canvas_ = nullptr;
    QLabel* state_ = nullptr;
    QProgressBar* done_ = nullptr;
    std::unique_ptr<drawing::PhenomenaPages> pages_;
    int page_count_ = 0;
};

} // namespace celestark::screens
