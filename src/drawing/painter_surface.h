#pragma once
// The surfaces that paint: an image (the chart window's canvas, and PNG files), a PDF, an SVG
// file and the system printer. Each converts twips to its device units and draws with QPainter
// and the program's fonts.
#include "drawing/surface.h"

#include <QImage>
#include <QPainter>

#include <memory>
#include <string>

class QPdfWriter;
class QPrinter;
class QSvgGenerator;

namespace celestark::drawing {

// A page size in millimetres and the margins that stand for a printer's unprintable edge.
struct PageFormat {
    double width_mm = 210, height_mm = 297; // A4
    double margin_mm = 10;
    bool landscape = false;
};

class PainterSurface : public Surface {
  public:
    float width() const override { return width_; }
    float height() const override { return height_; }
    float left_offset() const override { return left_offset_; }
    float top_offset() const override { return top_offset_; }
    bool is_page() const override { return page_; }

    void clear(Colour ground) override;
    void text(ProgramFont font, float points, float x, float y, std::string_view codes,
              Colour colour, float angle_degrees) override;
    TextSize measure(ProgramFont font, float points, std::string_view codes) override;
    void line(float x1, float y1, float x2, float y2, Colour colour, int style,
              float width) override;
    void circle(float x, float y, float r, Colour colour, float width) override;
    void disc(float x, float y, float r, Colour colour) override;
    void pie(float x, float y, float r, float from_radians, float span_radians,
             Colour colour) override;

  protected:
    struct Geometry {
        float width = 0, height = 0;           // drawable size, twips
        float left_offset = 0, top_offset = 0; // printable offsets of a page, twips
        double device_per_twip = 1;
        double twips_per_pen = 15; // a pen unit: a screen pixel, or a hairline on paper
        bool page = false;
    };
    explicit PainterSurface(const Geometry& g);
    // A sheet of the format with its margins as the printable offsets.
    static Geometry page_geometry(const PageFormat& format);
    // Starts painting on the device; called by each kind once its device exists.
    void begin(QPaintDevice* device);
    // Called before each drawing call: a kind that pages starts its next page here.
    virtual void before_drawing() {}
    QPointF device(float x, float y) const;
    QPen pen(Colour colour, int style, float width) const;

    QPainter painter_;
    float width_, height_, left_offset_, top_offset_;
    double scale_, twips_per_pen_;
    bool page_;
    bool outlines_ = false; // glyphs as filled outlines (SVG)
};

// An anti-aliased image: the chart window's canvas, and PNG files. `pixels_wide` by
// `pixels_high` showing `twips_wide` twips across.
class RasterCanvas : public PainterSurface {
  public:
    RasterCanvas(int pixels_wide, int pixels_high, float twips_wide, bool page = false);
    ~RasterCanvas() override;
    const QImage& image();
    bool save_png(const std::string& path, std::string& error);

  private:
    QImage image_;
};

// A window's canvas at its size in device pixels (15 twips a logical pixel), made again when the
// size has changed.
RasterCanvas& window_canvas(std::unique_ptr<RasterCanvas>& canvas, int width, int height,
                            double pixel_ratio);

// A PDF document, one page a call of end_page; fonts embedded with their Unicode map.
class PdfCanvas : public PainterSurface {
  public:
    PdfCanvas(const std::string& path, const PageFormat& format = {});
    ~PdfCanvas() override;
    void end_page() override;
    void end_document() override;
    void set_title(const std::string& title);

  private:
    void before_drawing() override;
    std::unique_ptr<QPdfWriter> writer_;
    bool new_page_pending_ = false;
};

// An SVG file of one page (or of the screen layout); glyphs as outlines.
class SvgCanvas : public PainterSurface {
  public:
    // A page of the format, or with `twips_wide` > 0 a picture of that size in twips.
    SvgCanvas(const std::string& path, const PageFormat& format, float twips_wide = 0,
              float twips_high = 0);
    ~SvgCanvas() override;
    void end_document() override;

  private:
    std::unique_ptr<QSvgGenerator> generator_;
};

// The system printer: page size and printable offsets from the printer; the setup dialog is
// the system print dialog.
class PrinterCanvas : public PainterSurface {
  public:
    explicit PrinterCanvas(QPrinter& printer);
    ~PrinterCanvas() override;
    // The system print dialog, unless `dialog` is off (the printer is set up already).
    bool setup_dialog() override;
    bool dialog = true;
    void begin_document() override;
    void end_page() override;
    void end_document() override;

  private:
    void before_drawing() override;
    static Geometry geometry_of(QPrinter& printer);
    QPrinter& printer_;
    bool new_page_pending_ = false;
};

} // namespace celestark::drawing
