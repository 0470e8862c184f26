#pragma once
// The report of a predictive run drawn on a surface: the window `ab_display`, a printer or a PDF.
// A page has its head (the title by mode, the name, the page number), on the first page the block
// of the run's parameters, then `output_format`'s columns side by side, each with its heads and
// rows. A row is a hit: its dates, the moving body, the phenomenon and the second body or place,
// the symbols in the program's symbol font.
#include "drawing/display.h"
#include "predict/predictive_run.h"

#include <string>
#include <vector>

namespace celestark::drawing {

// The columns of an output format in a mode: how many, the stops of a column (fractions of its
// width, where its cells begin after the first) and the divisor that gives the character size
// from the column's width. `columns` is 0 for a text that is no output format.
struct ReportFormat {
    int columns = 0;
    std::vector<double> stops;
    double divisor = 1200;
};
ReportFormat report_format(const std::string& mode, const std::string& output_format);

// Where a printed row stands on its page (twips) and the hit it shows.
struct ReportRow {
    float left = 0, top = 0, right = 0, bottom = 0;
    Hit hit;
};

class PredictiveReport : public HitPrinter {
  public:
    // The report goes to the printer when `printing` is set, else to the "AB" window.
    explicit PredictiveReport(Drawing& g);

    void begin_page(Session& s, int page) override;
    bool print_row(Session& s, const Hit& hit) override;
    bool pages_follow() const override;
    void end_run(Session& s) override;

    // The rows of the page last begun, and the one at a point of the page (null: none).
    const std::vector<ReportRow>& rows() const { return rows_; }
    const Hit* hit_at(float x, float y) const;
    int page() const { return page_; }
    // The run has ended; on paper its document too.
    bool ended() const { return ended_; }

  private:
    struct Cell {
        enum Kind { date, life_date, time, from_event, age, planet_1, phenomenon, planet_2, rest };
        Kind kind;
        std::string head;
        float x = 0; // from the column's left edge
    };

    Surface* surface();
    void lay_out_cells(Session& s);
    float first_page_block(Session& s, float top);
    float column_heads(float top);
    std::string cell_text(Session& s, const Cell& cell, const Hit& hit) const;
    // A text with symbol codes, no wider than `room` (drawn smaller when it would be).
    void fitted_text(float x, float y, const std::string& text, float room);

    Drawing& g_;
    bool printing_ = false;
    bool document_open_ = false;
    bool ended_ = false;
    int page_ = 0;
    ReportFormat format_;
    bool narrow_ = false, glyphs_only_ = false;
    float left_ = 0, right_ = 0, top_ = 0, bottom_ = 0; // the margins
    float column_width_ = 0, font_ = 0, row_height_ = 0, gap_ = 0;
    std::vector<Cell> cells_;
    float rows_top_ = 0, y_ = 0;
    int column_ = 0;
    std::vector<ReportRow> rows_;
};

} // namespace celestark::drawing
