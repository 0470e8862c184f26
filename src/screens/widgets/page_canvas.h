#pragma once
// The widget a window's pages are drawn on: an image of the widget's size that the pages paint,
// shown on the chart's dark ground, with a click told in twips and a resize told to its window.
#include "drawing/painter_surface.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace celestark::screens {

class PageCanvas : public QWidget {
    Q_OBJECT
  public:
    // `clicked` takes a left click's point in twips, `resized` a change of size; either may be
    // empty.
    PageCanvas(QWidget* parent, const char* name, std::function<void(float, float)> clicked,
               std::function<void()> resized = {});
    ~PageCanvas() override;
    // The image the next page is drawn on, made for the widget's present size.
    drawing::RasterCanvas& canvas();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    std::function<void(float, float)> clicked_;
    std::function<void()> resized_;
    std::unique_ptr<drawing::RasterCanvas> canvas_;
};

} // namespace celestark::screens
