#include "screens/widgets/page_canvas.h"

#include <QMouseEvent>
#include <QPainter>

namespace celestark::screens {

namespace {
constexpr float twips_per_pixel = 15;
}

PageCanvas::PageCanvas(QWidget* parent, const char* name, std::function<void(float, float)> clicked,
                       std::function<void()> resized)
    : QWidget(parent), clicked_(std::move(clicked)), resized_(std::move(resized)) {
    setObjectName(name);
    setMinimumSize(640, 420);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

PageCanvas::~PageCanvas() = default;

drawing::RasterCanvas& PageCanvas::canvas() {
    return drawing::window_canvas(canvas_, width(), height(), devicePixelRatioF());
}

void PageCanvas::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), QColor(0, 0, 0x40));
    if (!canvas_) return;
    QImage image = canvas_->image();
    image.setDevicePixelRatio(devicePixelRatioF());
    p.drawImage(0, 0, image);
}

void PageCanvas::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !clicked_) return;
    const QPointF at = event->position();
    clicked_(static_cast<float>(at.x()) * twips_per_pixel,
             static_cast<float>(at.y()) * twips_per_pixel);
}

void PageCanvas::resizeEvent(QResizeEvent*) {
    if (resized_) resized_();
}

} // namespace celestark::screens
