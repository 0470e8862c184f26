#include "drawing/phenomena_pages.h"

#include "drawing/page_furniture.h"
#include "drawing/report_frame.h"
#include "session/calendar.h"
#include "session/session.h"
#include "session/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace celestark::drawing {

namespace {

// Where the cells of a row begin, as shares of the width between the margins; a cell wider than
// its share pushes the next one on.
constexpr float phenomena_stops[4] = {0, 0.19f, 0.66f, 0.83f};
constexpr float eclipse_stops[4] = {0, 0.25f, 0.52f, 0.72f};
// The width between the margins over the size of the letters.
constexpr float row_divisor = 1300, head_divisor = 1200;

std::string capitalised(std::string word) {
    if (!word.empty() && word[0] >= 'a' && word[0] <= 'z')
        word[0] = static_cast<char>(word[0] - 'a' + 'A');
    return word;
}

// The date and time of a row, Universal Time, to the minute.
std::string row_date(double jd, const std::string& gj) {
    if (!std::isfinite(jd)) return "-";
    const double minutes = std::floor((jd + 0.5) * 1440.0 + 0.5);
    const double day_start = std::floor(minutes / 1440.0);
    const CivilDate d = date_from_julian(day_start - 0.5 + 1e-9, gj);
    const int of_day = static_cast<int>(minutes - day_start * 1440.0);
    char text[48];
    std::snprintf(text, sizeof text, "%d-%02d-%02d  %02d:%02d", d.year, d.month,
                  static_cast<int>(std::floor(d.day)), of_day / 60, of_day % 60);
    return text;
}

} // namespace

PhenomenaCells phenomena_cells(const Phenomenon& row, bool eclipses, const std::string& gj) {
    PhenomenaCells c;
    c.date = row_date(row.jd, gj);
    if (!eclipses) {
        c.text = row.text;
        c.first = capitalised(row.body_1);
        c.second = capitalised(row.body_2);
        return c;
    }
    // An eclipse row reads "Sun eclipse T", then the places of the Sun and the Moon, each of
    // five characters (degrees, the sign's symbol, minutes) after two spaces.
    const std::string& t = row.text;
    constexpr std::size_t place = 5, tail = 2 * (place + 2);
    if (t.size() > tail && t.compare(t.size() - tail, 2, "  ") == 0 &&
        t.compare(t.size() - place - 2, 2, "  ") == 0) {
        c.text = trim(t.substr(0, t.size() - tail));
        c.first = trim(t.substr(t.size() - tail + 2, place));
        c.second = trim(t.substr(t.size() - place));
    } else {
        c.text = trim(t);
    }
    return c;
}

std::vector<std::string> phenomena_heads(bool eclipses) {
    if (eclipses) return {"DATE", "Type of Eclipse", "SUN", "MOON"};
    return {"DATE", "PHENOMENA", "PLANET 1", "PLANET 2"};
}

PhenomenaPages::PhenomenaPages(Drawing& g, PhenomenaSheet sheet)
    : g_(g), sheet_(std::move(sheet)) {}

Surface* PhenomenaPages::surface() {
    return g_.d.printing ? g_.canvases.printer : g_.canvases.phenomena;
}

double PhenomenaPages::shown() const {
    if (sheet_.rows.empty()) return page_ > 0 ? 1.0 : 0.0;
    const double through = static_cast<double>(per_page_) * static_cast<double>(page_);
    return std::min(1.0, through / static_cast<double>(sheet_.rows.size()));
}

void PhenomenaPages::lay_out() {
    Surface* out = surface();
    if (!out) return;
    g_.d.display_target = "Phenomena";
    // A hundredth of the window for the margins.
    frame_ = report_frame(*out, g_.d.printing, 0.01f, head_divisor);
    const float room = frame_.room();

    // The widest cell of each column, at the first size; the widths follow the size.
    const float first = std::max(0.01f, room / row_divisor);
    g_.display_font_size(first);
    const std::vector<std::string> heads = phenomena_heads(sheet_.eclipses);
    float widest[4] = {0, 0, 0, 0};
    for (std::size_t k = 0; k < 4; ++k) widest[k] = text_width(g_, heads[k]);
    for (const Phenomenon& row : sheet_.rows) {
        const PhenomenaCells c = phenomena_cells(row, sheet_.eclipses, sheet_.gj);
        const std::string* cells[4] = {&c.date, &c.text, &c.first, &c.second};
        for (std::size_t k = 0; k < 4; ++k)
            widest[k] = std::max(widest[k], mixed_text_width(g_, *cells[k]));
    }
    const float first_gap = text_width(g_, "   ");
    const float* shares = sheet_.eclipses ? eclipse_stops : phenomena_stops;
    const float scale = fit_column_stops(shares, widest, 4, room, first_gap, stops_);
    font_ = std::max(0.01f, first * scale);
    g_.display_font_size(font_);
    gap_ = text_width(g_, "  ");
    row_height_ = line_height(g_) * 1.05f;
    rows_top_ = head(0);
    const float room_down = frame_.bottom - rows_top_;
    per_page_ = static_cast<std::size_t>(std::max(1.0f, std::floor(room_down / row_height_)));
}

int PhenomenaPages::page_count() {
    lay_out();
    const std::size_t n = sheet_.rows.size();
    return std::max<int>(1, static_cast<int>((n + per_page_ - 1) / per_page_));
}

// The head of a page; returns where its rows begin. Page 0 only measures. The eclipse list has
// its title between the head and the column heads.
float PhenomenaPages::head(int page) {
    const bool draw = page > 0;
    float y = report_title(g_, frame_, frame_.head_font, sheet_.title, page, draw);
    if (sheet_.eclipses) {
        const float line = line_height(g_);
        if (draw) {
            const float w = text_width(g_, eclipse_list_title);
            g_.display_text_outside(frame_.left +
                                        std::max(0.0f, (frame_.right - frame_.left - w) / 2),
                                    y, eclipse_list_title);
        }
        y += line * 1.3f;
    }
    return report_column_heads(g_, frame_, y, font_, phenomena_heads(sheet_.eclipses), stops_, 4,
                               draw);
}

bool PhenomenaPages::draw_page(int page) {
    Surface* out = surface();
    if (!out) return false;
    const int pages = page_count();
    if (page < 1 || page > pages) return false;
    g_.d.display_target = "Phenomena";
    begin_report_page(g_, *out, frame_);
    page_ = page;
    rows_.clear();
    head(page);
    g_.display_font_size(font_);
    float y = rows_top_;
    if (sheet_.rows.empty()) {
        g_.display_text_outside(frame_.left, y, "No phenomena were found in these years.");
        return true;
    }
    const std::size_t from = per_page_ * static_cast<std::size_t>(page - 1);
    const std::size_t to = std::min(sheet_.rows.size(), from + per_page_);
    for (std::size_t i = from; i < to; ++i) {
        const PhenomenaCells c = phenomena_cells(sheet_.rows[i], sheet_.eclipses, sheet_.gj);
        const std::string* cells[4] = {&c.date, &c.text, &c.first, &c.second};
        for (std::size_t k = 0; k < 4; ++k)
            if (!cells[k]->empty()) draw_mixed_outside(g_, frame_.left + stops_[k], y, *cells[k]);
        rows_.push_back({frame_.left, y, frame_.right, y + row_height_, i});
        y += row_height_;
    }
    return true;
}

bool PhenomenaPages::print_all() {
    return print_report(
        g_, [this] { return surface(); }, [this] { return page_count(); },
        [this](int p) { return draw_page(p); });
}

} // namespace celestark::drawing
