#pragma once
// `chart_display`: the window the chart pages are drawn on. It steps the time of the shown event,
// walks the event table, prints the page, saves it as a picture, and redraws at its new size.
#include "screens/chart_commands.h"
#include "screens/widgets/window_support.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QComboBox;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QRadioButton;

namespace celestark::drawing {
class RasterCanvas;
class RecordingSurface;
} // namespace celestark::drawing

namespace celestark::screens {

// The page as a picture at the widget's size; redrawn when the size changes.
class ChartCanvas : public QWidget {
    Q_OBJECT
  public:
    ChartCanvas(QWidget* parent, std::function<void()> redraw);
    ~ChartCanvas() override;
    // The image the page is drawn on, made for the widget's present size.
    drawing::RasterCanvas& canvas();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    std::function<void()> redraw_;
    std::unique_ptr<drawing::RasterCanvas> canvas_;
};

class ChartDisplay : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit ChartDisplay(Desktop& desktop);
    ~ChartDisplay() override;

    // Draws the page of the drawing values and shows the window.
    void show_page();
    // One step of the time: `step` one of the time steps ("1day"), backward for "minus".
    void step(const std::string& step, bool backward);
    // Writes the page to a file: PNG (as shown), PDF (the paper page) or SVG (as shown).
    bool save_page(const std::string& path);
    // The number of pages drawn so far (for the tests and the redraw time).
    int pages_drawn() const { return pages_drawn_; }
    // Every page drawn from now on is recorded there too (null: no longer).
    void record_into(drawing::RecordingSurface* recording) { recording_ = recording; }

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void redraw();
    void refresh_fields();
    void walk(bool forward);
    void print();
    void save_as();
    // The motion of the planets: the view, the span and the bodies, checked and drawn.
    QWidget* build_motion_panel();
    void fill_motion_dates();
    void display_motion();

    ChartCanvas* canvas_ = nullptr;
    QGroupBox* step_panel_ = nullptr;
    QLineEdit* ad_[6]{};
    QLabel* step_label_ = nullptr;
    QComboBox *ap_1_ = nullptr, *ap_2_ = nullptr, *ap_3_ = nullptr, *ap_search_orb_ = nullptr;
    QCheckBox* ap_4_ = nullptr;
    QRadioButton *ap_geo_ = nullptr, *ap_helio_ = nullptr, *ap_her_ = nullptr, *ap_lemni_ = nullptr;
    QRadioButton *ap_standard_ = nullptr, *ap_star_ = nullptr, *ap_none_ = nullptr;
    int step_index_ = 7; // ap_step: one day
    drawing::RecordingSurface* recording_ = nullptr;
    int pages_drawn_ = 0;
    QRadioButton* motion_views_[4]{};
    QLineEdit* motion_dates_[6]{};
    std::vector<QCheckBox*> motion_bodies_;
    bool drawing_ = false; // a page is being drawn (a long run lets the screen's events through)
};

} // namespace celestark::screens
