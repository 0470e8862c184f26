#include "drawing/painter_surface.h"

#include "drawing/program_fonts.h"

#include <QPageLayout>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <QSvgGenerator>

#include <algorithm>
#include <cmath>

namespace celestark::drawing {

namespace {
constexpr double twips_per_inch = 1440.0;
constexpr double twips_per_mm = twips_per_inch / 25.4;
constexpr double radians_to_degrees = 57.29577951308232;
// The thinnest line a page draws: 0.3 point.
constexpr double page_twips_per_pen = 6.0;
} // namespace

PainterSurface::PainterSurface(const Geometry& g)
    : width_(g.width), height_(g.height), left_offset_(g.left_offset), top_offset_(g.top_offset),
      scale_(g.device_per_twip), twips_per_pen_(g.twips_per_pen), page_(g.page) {}

void PainterSurface::begin(QPaintDevice* device) {
    painter_.begin(device);
    painter_.setRenderHint(QPainter::Antialiasing, true);
    painter_.setRenderHint(QPainter::TextAntialiasing, true);
}

QPointF PainterSurface::device(float x, float y) const {
    return {x * scale_, y * scale_};
}

QPen PainterSurface::pen(Colour colour, int style, float width) const {
    QPen p(to_qcolor(colour));
    // A pen never thinner than about a pixel, so that a hairline stays visible.
    p.setWidthF(std::max(0.8, std::max(1.0f, width) * twips_per_pen_ * scale_));
    switch (style) {
    case dash:
        p.setStyle(Qt::DashLine);
        break;
    case dot:
        p.setStyle(Qt::DotLine);
        break;
    case dash_dot:
        p.setStyle(Qt::DashDotLine);
        break;
    case dash_dot_dot:
        p.setStyle(Qt::DashDotDotLine);
        break;
    case invisible:
        p.setStyle(Qt::NoPen);
        break;
    default:
        p.setStyle(Qt::SolidLine);
        break;
    }
    p.setCapStyle(Qt::FlatCap);
    return p;
}

void PainterSurface::clear(Colour ground) {
    before_drawing();
    painter_.fillRect(
        QRectF(QPointF(0, 0), device(width_ + left_offset_ * 2, height_ + top_offset_ * 2)),
        to_qcolor(ground));
}

void PainterSurface::text(ProgramFont font, float points, float x, float y, std::string_view codes,
                          Colour colour, float angle_degrees) {
    if (codes.empty()) return;
    before_drawing();
    ProgramFonts::instance().draw(painter_, font, device(x, y), points * 20.0 * scale_, codes,
                                  to_qcolor(colour), angle_degrees, outlines_);
}

TextSize PainterSurface::measure(ProgramFont font, float points, std::string_view codes) {
    return ProgramFonts::instance().measure(font, points, codes);
}

void PainterSurface::line(float x1, float y1, float x2, float y2, Colour colour, int style,
                          float width) {
    if (style == invisible) return;
    before_drawing();
    painter_.setPen(pen(colour, style, width));
    painter_.drawLine(device(x1, y1), device(x2, y2));
}

void PainterSurface::circle(float x, float y, float r, Colour colour, float width) {
    before_drawing();
    painter_.setPen(pen(colour, solid, width));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawEllipse(device(x, y), r * scale_, r * scale_);
}

void PainterSurface::disc(float x, float y, float r, Colour colour) {
    before_drawing();
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(to_qcolor(colour));
    painter_.drawEllipse(device(x, y), r * scale_, r * scale_);
}

void PainterSurface::pie(float x, float y, float r, float from_radians, float span_radians,
                         Colour colour) {
    before_drawing();
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(to_qcolor(colour));
    const double rr = r * scale_;
    const QPointF c = device(x, y);
    // Qt counts sixteenths of a degree, counterclockwise from three o'clock, as seen.
    painter_.drawPie(QRectF(c.x() - rr, c.y() - rr, 2 * rr, 2 * rr),
                     static_cast<int>(std::lround(from_radians * radians_to_degrees * 16)),
                     static_cast<int>(std::lround(span_radians * radians_to_degrees * 16)));
}

// --- the image ---

RasterCanvas::RasterCanvas(int pixels_wide, int pixels_high, float twips_wide, bool page)
    : PainterSurface(Geometry{twips_wide,
                              twips_wide * static_cast<float>(pixels_high) /
                                  static_cast<float>(std::max(1, pixels_wide)),
                              0, 0, pixels_wide / static_cast<double>(twips_wide),
                              page ? page_twips_per_pen : 15.0, page}),
      image_(std::max(1, pixels_wide), std::max(1, pixels_high),
             QImage::Format_ARGB32_Premultiplied) {
    image_.fill(page ? Qt::white : Qt::black);
    begin(&image_);
}

RasterCanvas::~RasterCanvas() {
    if (painter_.isActive()) painter_.end();
}

const QImage& RasterCanvas::image() {
    // Everything painted so far is in the image; QPainter draws straight into it.
    return image_;
}

bool RasterCanvas::save_png(const std::string& path, std::string& error) {
    if (painter_.isActive()) painter_.end();
    if (!image_.save(QString::fromStdString(path), "PNG")) {
        error = "cannot write the image " + path;
        return false;
    }
    begin(&image_);
    return true;
}

// --- PDF ---

namespace {

QPageLayout page_layout(const PageFormat& f) {
    return QPageLayout(QPageSize(QSizeF(f.width_mm, f.height_mm), QPageSize::Millimeter),
                       f.landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
                       QMarginsF(f.margin_mm, f.margin_mm, f.margin_mm, f.margin_mm),
                       QPageLayout::Millimeter);
}

} // namespace

PainterSurface::Geometry PainterSurface::page_geometry(const PageFormat& f) {
    const double w = (f.landscape ? f.height_mm : f.width_mm) * twips_per_mm;
    const double h = (f.landscape ? f.width_mm : f.height_mm) * twips_per_mm;
    const double m = f.margin_mm * twips_per_mm;
    return Geometry{static_cast<float>(w - 2 * m),
                    static_cast<float>(h - 2 * m),
                    static_cast<float>(m),
                    static_cast<float>(m),
                    1.0,
                    page_twips_per_pen,
                    true};
}

PdfCanvas::PdfCanvas(const std::string& path, const PageFormat& f)
    : PainterSurface(page_geometry(f)),
      writer_(std::make_unique<QPdfWriter>(QString::fromStdString(path))) {
    // A device unit of the writer is a twip.
    writer_->setResolution(static_cast<int>(twips_per_inch));
    writer_->setPageLayout(page_layout(f));
    writer_->setCreator(QStringLiteral("Celestark"));
    begin(writer_.get());
    // Paint in the coordinates of the whole sheet, as a printer's offsets are given.
    painter_.translate(-left_offset_, -top_offset_);
}

PdfCanvas::~PdfCanvas() {
    if (painter_.isActive()) painter_.end();
}

void PdfCanvas::set_title(const std::string& title) {
    writer_->setTitle(QString::fromStdString(title));
}

void PdfCanvas::before_drawing() {
    if (!new_page_pending_) return;
    new_page_pending_ = false;
    writer_->newPage();
}

void PdfCanvas::end_page() {
    new_page_pending_ = true;
}

void PdfCanvas::end_document() {
    new_page_pending_ = false;
    if (painter_.isActive()) painter_.end();
}

// --- SVG ---

SvgCanvas::SvgCanvas(const std::string& path, const PageFormat& f, float twips_wide,
                     float twips_high)
    : PainterSurface(twips_wide > 0 ? Geometry{twips_wide, twips_high, 0, 0, 1.0, 15.0, false}
                                    : page_geometry(f)),
      generator_(std::make_unique<QSvgGenerator>()) {
    outlines_ = true;
    const double w = width_ + 2 * left_offset_, h = height_ + 2 * top_offset_;
    generator_->setFileName(QString::fromStdString(path));
    generator_->setSize(
        QSize(static_cast<int>(std::lround(w / 15)), static_cast<int>(std::lround(h / 15))));
    generator_->setViewBox(QRectF(0, 0, w, h));
    generator_->setResolution(96);
    generator_->setTitle(QStringLiteral("Celestark chart"));
    begin(generator_.get());
    if (page_) {
        painter_.fillRect(QRectF(0, 0, w, h), Qt::white);
    }
}

SvgCanvas::~SvgCanvas() {
    if (painter_.isActive()) painter_.end();
}

void SvgCanvas::end_document() {
    if (painter_.isActive()) painter_.end();
}

// --- the printer ---

PainterSurface::Geometry PrinterCanvas::geometry_of(QPrinter& printer) {
    // The printable area from the printer's margins; painting then counts from the sheet's
    // corner, as the offsets are given.
    const QPageLayout layout = printer.pageLayout();
    const QRectF paper = layout.fullRectPoints();
    const QMarginsF margins = layout.marginsPoints();
    printer.setFullPage(true);
    const double dpi = printer.resolution();
    constexpr double twips_per_point = 20;
    return Geometry{
        static_cast<float>((paper.width() - margins.left() - margins.right()) * twips_per_point),
        static_cast<float>((paper.height() - margins.top() - margins.bottom()) * twips_per_point),
        static_cast<float>(margins.left() * twips_per_point),
        static_cast<float>(margins.top() * twips_per_point),
        dpi / twips_per_inch,
        page_twips_per_pen,
        true};
}

PrinterCanvas::PrinterCanvas(QPrinter& printer)
    : PainterSurface(geometry_of(printer)), printer_(printer) {}

PrinterCanvas::~PrinterCanvas() {
    if (painter_.isActive()) painter_.end();
}

bool PrinterCanvas::setup_dialog() {
    if (dialog) {
        QPrintDialog box(&printer_);
        if (box.exec() != QDialog::Accepted) return false;
    }
    const Geometry g = geometry_of(printer_);
    width_ = g.width;
    height_ = g.height;
    left_offset_ = g.left_offset;
    top_offset_ = g.top_offset;
    scale_ = g.device_per_twip;
    return true;
}

void PrinterCanvas::begin_document() {
    if (!painter_.isActive()) begin(&printer_);
    new_page_pending_ = false;
}

void PrinterCanvas::before_drawing() {
    if (!painter_.isActive()) begin(&printer_);
    if (!new_page_pending_) return;
    new_page_pending_ = false;
    printer_.newPage();
}

void PrinterCanvas::end_page() {
    new_page_pending_ = true;
}

void PrinterCanvas::end_document() {
    new_page_pending_ = false;
    if (painter_.isActive()) painter_.end();
}

RasterCanvas& window_canvas(std::unique_ptr<RasterCanvas>& canvas, int width, int height,
                            double pixel_ratio) {
    const int w = std::max(1, static_cast<int>(std::lround(width * pixel_ratio)));
    const int h = std::max(1, static_cast<int>(std::lround(height * pixel_ratio)));
    if (!canvas || canvas->image().width() != w || canvas->image().height() != h)
        canvas = std::make_unique<RasterCanvas>(w, h, static_cast<float>(width) * 15.0f);
    return *canvas;
}

} // namespace celestark::drawing
