#include "drawing/ephemeris_pages.h"

#include "predict/phenomena.h"
#include "session/calendar.h"
#include "session/constants.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_sets.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace celestark::drawing {

namespace {

constexpr std::uint32_t black = 0, white = 0xFFFFFF, grey = 0x909090;

std::string month_title(const EphemerisMonth& m, const std::string& gj) {
    static const char* names[12] = {"JANUARY",   "FEBRUARY", "MARCH",    "APRIL",
                                    "MAY",       "JUNE",     "JULY",     "AUGUST",
                                    "SEPTEMBER", "OCTOBER",  "NOVEMBER", "DECEMBER"};
    std::string year = m.year > 0 ? std::to_string(m.year) : std::to_string(1 - m.year) + " BC";
    return " Monthly Ephemeris for " + std::string(names[m.month - 1]) + " " + year +
           (gj == "J" ? "  Julian" : "  Gregorian") + " at 0 hours UT";
}

// Degrees and minutes within the sign, the sign's glyph between them: " 9" sign "51".
struct SignPlace {
    std::string degrees, sign, minutes;
};
SignPlace sign_place(double radians) {
    const long total = static_cast<long>(std::floor(radians * rad_to_deg * 60.0)) % 21600;
    const long in_sign = total % 1800;
    char d[8], m[8];
    std::snprintf(d, sizeof d, "%2ld", in_sign / 60);
    std::snprintf(m, sizeof m, "%02ld", in_sign % 60);
    return {d,
            std::string(1, static_cast<char>(sign_glyphs[static_cast<std::size_t>(total / 1800)])),
            m};
}

std::string hours_text(double hours) {
    const long seconds = std::lround(hours * 3600.0) % 86400;
    char text[16];
    std::snprintf(text, sizeof text, "%2ld:%02ld:%02ld", seconds / 3600, seconds / 60 % 60,
                  seconds % 60);
    return text;
}

// Rows of phenomena (day, time, text) in columns from `top`, going on to further pages.
void draw_list(Surface& out, const EphemerisMonth& month, const std::string& gj,
               const std::vector<MonthPhenomenon>& rows, float list_left, float list_right,
               float top, int columns) {
    const float w = out.width(), h = out.height();
    const float left = w * 0.03f, page_top = h * 0.04f, bottom = h - h * 0.04f;
    const float line = (bottom - page_top) / 35 * 0.8f;
    const float points = std::min(7.0f, line / 20.0f * 0.85f);
    float column_w = (list_right - list_left) / static_cast<float>(columns);
    const float day_col = out.measure(ProgramFont::arial, points, "222").width * 1.3f;
    const float time_col = out.measure(ProgramFont::arial, points, "222222").width;
    float x = list_left, y = top, first = top;
    int column = 0;
    for (const MonthPhenomenon& p : rows) {
        if (y + line > bottom) {
            if (++column < columns) {
                x += column_w;
            } else {
                out.end_page();
                out.clear(white);
                out.text(ProgramFont::arial, 13, left, page_top,
                         month_title(month, gj) + " (continued)", black, 0);
                first = page_top + line * 2.5f;
                x = left;
                column = 0;
                // A page of the list alone: four columns across it.
                columns = 4;
                column_w = (w - 2 * left) / 4;
            }
            y = first;
        }
        const double minutes = std::floor((p.jd + 0.5) * 1440.0 + 0.5);
        const int of_day = static_cast<int>(minutes - std::floor(minutes / 1440.0) * 1440.0);
        const CivilDate c = date_from_julian(p.jd, gj);
        char day[8], time[16];
        std::snprintf(day, sizeof day, "%2d", static_cast<int>(c.day));
        std::snprintf(time, sizeof time, "%02d:%02d", of_day / 60, of_day % 60);
        out.text(ProgramFont::arial, points, x, y, day, black, 0);
        out.text(ProgramFont::arial, points, x + day_col, y, time, black, 0);
        // The text: letters in the text font, symbol codes in the symbol font.
        float tx = x + day_col + time_col;
        std::size_t i = 0;
        while (i < p.text.size()) {
            const bool symbols = static_cast<unsigned char>(p.text[i]) >= 0x80;
            std::size_t j = i;
            while (j < p.text.size() && (static_cast<unsigned char>(p.text[j]) >= 0x80) == symbols)
                ++j;
            const std::string piece = p.text.substr(i, j - i);
            const ProgramFont font = symbols ? ProgramFont::planet_symbols : ProgramFont::arial;
            out.text(font, points, tx, y, piece, black, 0);
            tx += out.measure(font, points, piece).width;
            i = j;
        }
        y += line;
    }
}

} // namespace

void draw_star_calendar_page(Surface& out, const EphemerisMonth& month, const std::string& gj,
                             const std::vector<MonthPhenomenon>& phenomena, bool heliocentric) {
    const float w = out.width(), h = out.height();
    const float left = w * 0.03f, right = w - w * 0.03f, top = h * 0.04f, bottom = h - h * 0.04f;
    out.end_page();
    out.clear(white);
    out.text(ProgramFont::arial, 13, left, top, month_title(month, gj), black, 0);
    const float line = (bottom - top) / 35 * 0.8f;
    const float points = std::min(7.0f, line / 20.0f * 0.85f);
    std::vector<MonthPhenomenon> ingresses, aspects;
    for (const MonthPhenomenon& p : phenomena) (p.kind == "IS" ? ingresses : aspects).push_back(p);
    const float middle = left + (right - left) * 0.34f;
    const float heads = top + line * 2.5f;
    out.text(ProgramFont::arial, points * 1.2f, left, heads, " INGRESSES :", black, 0);
    out.text(ProgramFont::arial, points * 1.2f, middle, heads,
             heliocentric ? " ASPECTS (HELIOCENTRIC +MOON(TYCHONIC)) :" : " ASPECTS & ECLIPSES :",
             black, 0);
    draw_list(out, month, gj, ingresses, left, middle - line, heads + line * 1.5f, 1);
    draw_list(out, month, gj, aspects, middle, right, heads + line * 1.5f, 2);
}

void draw_ephemeris_month(Surface& out, const EphemerisMonth& month, const std::string& gj,
                          const std::vector<MonthPhenomenon>& phenomena, const std::string& heading,
                          bool first_page) {
    const float w = out.width(), h = out.height();
    const float left = w * 0.03f, right = w - w * 0.03f, top = h * 0.04f, bottom = h - h * 0.04f;
    if (!first_page) out.end_page();
    out.clear(white);
    // The title.
    const float title_points = 13;
    out.text(ProgramFont::arial, title_points, left, top, month_title(month, gj), black, 0);
    const float table_top = top + out.measure(ProgramFont::arial, title_points, "M").height * 1.6f;
    // The table takes the left three fifths: the day, the sidereal time and a column a body.
    const std::size_t bodies = month.glyphs.size();
    const float table_right = left + (right - left) * 0.62f;
    const float unit = (table_right - left) / static_cast<float>(4 + 3 * bodies);
    const float day_w = unit * 2, time_w = unit * 2.2f;
    const float rows = 35;
    const float pitch = (bottom - table_top) / rows;
    // The size at which the widest cells fit their columns, and the rows their pitch.
    const float cell_at_1 = out.measure(ProgramFont::arial, 1, "00").width +
                            out.measure(ProgramFont::planet_symbols, 1, "\xd1").width +
                            out.measure(ProgramFont::arial, 1, "00R").width;
    const float day_at_1 = out.measure(ProgramFont::arial, 1, "WE 30").width;
    const float time_at_1 = out.measure(ProgramFont::arial, 1, "Sid. Time").width;
    const float points = std::min({8.0f, pitch / 20.0f * 0.85f, unit * 3 * 0.88f / cell_at_1,
                                   day_w * 0.85f / day_at_1, time_w * 0.9f / time_at_1});
    const auto column_x = [&](std::size_t k) {
        return left + day_w + time_w + static_cast<float>(k) * unit * 3;
    };
    out.text(ProgramFont::arial, points, left + unit * 0.2f, table_top, "DAY", black, 0);
    out.text(ProgramFont::arial, points, left + day_w + unit * 0.15f, table_top, "Sid. Time", black,
             0);
    for (std::size_t k = 0; k < bodies; ++k)
        out.text(ProgramFont::planet_symbols, points * 1.2f, column_x(k) + unit, table_top,
                 std::string(1, static_cast<char>(month.glyphs[k])), black, 0);
    float y = table_top + pitch * 1.5f;
    out.line(left, y - pitch * 0.2f, table_right, y - pitch * 0.2f, black, solid, 1);
    for (const EphemerisDay& d : month.days) {
        char day[16];
        std::snprintf(day, sizeof day, "%s %2d", d.weekday.c_str(), d.day);
        out.text(ProgramFont::arial, points, left + unit * 0.2f, y, day, black, 0);
        out.text(ProgramFont::arial, points, left + day_w + unit * 0.15f, y,
                 hours_text(d.sidereal_hours), black, 0);
        for (std::size_t k = 0; k < bodies && k < d.longitudes.size(); ++k) {
            const SignPlace p = sign_place(d.longitudes[k]);
            const float x = column_x(k) + unit * 0.15f;
            const float dw = out.measure(ProgramFont::arial, points, "00").width;
            const float sw = out.measure(ProgramFont::planet_symbols, points, p.sign).width;
            out.text(ProgramFont::arial, points, x, y, p.degrees, black, 0);
            out.text(ProgramFont::planet_symbols, points, x + dw, y, p.sign, black, 0);
            out.text(ProgramFont::arial, points, x + dw + sw, y, p.minutes + d.marks[k], black, 0);
        }
        y += pitch;
        if (d.weekday == "SU")
            out.line(left, y - pitch * 0.2f, table_right, y - pitch * 0.2f, grey, solid, 1);
    }
    // The grid: the frame and a line between the columns.
    const float frame_top = table_top - pitch * 0.2f, frame_bottom = y - pitch * 0.2f;
    out.line(left, frame_top, table_right, frame_top, black, solid, 1);
    out.line(left, frame_bottom, table_right, frame_bottom, black, solid, 1);
    for (const float x : {left, left + day_w, table_right})
        out.line(x, frame_top, x, frame_bottom, black, solid, 1);
    for (std::size_t k = 0; k < bodies; ++k)
        out.line(column_x(k), frame_top, column_x(k), frame_bottom, black, solid, 1);

    // The phenomena: the heading, then day, time and text in columns, page after page.
    const float list_left = table_right + unit;
    const float line = pitch * 0.8f;
    const float list_points = std::min(7.0f, line / 20.0f * 0.85f);
    out.text(ProgramFont::arial, list_points, list_left, table_top, heading, black, 0);
    draw_list(out, month, gj, phenomena, list_left, right, table_top + line * 1.5f, 2);
}

int print_monthly_ephemeris(Session& s, Surface& paper, const MonthlyRequest& r) {
    const std::string& view = r.world_view;
    const std::string saved_view = s.chart.world_view;
    if (view == "Tychonic") s.chart.world_view = "Tychonic";
    const auto months =
        monthly_ephemeris(s, r.first_year, r.first_month, r.last_year, r.last_month, r.gj, view);
    // The phenomena of the years: aspects, ingresses and stations of the Sun, the Moon and the
    // planets a day apart, and in the geocentric views the eclipses.
    std::vector<Phenomenon> all;
    const bool geocentric = view == "Geocentric" || view == "Tychonic";
    PhenomenaParameters p = phenomena_defaults(s);
    if (r.phenomena || r.star_calendar) {
        p.values["start"] = std::to_string(r.first_year);
        p.values["end_year"] = std::to_string(r.last_year);
        p.values["gj"] = r.gj;
        p.values["aspects"] = r.aspect_set;
        for (const char* control : {"moon1", "moon2", "ingresses_search", "stationary_search"})
            p.values[control] = "1";
        if (view == "Heliocentric") set_phenomena_control(p, "helio", "1");
        if (view == "Lemnicentric") set_phenomena_control(p, "lemni", "1");
        if (view == "Tychonic") set_phenomena_control(p, "tych", "1");
        all = list_phenomena(s, p);
        if (r.star_calendar && view == "Heliocentric") {
            // The Moon joins the heliocentric bodies from the Tychonic list.
            load_aspect_set(s, r.aspect_set, session_sink(s));
            const double first = julian_date(1, 1, r.first_year, r.gj, 0);
            const double last = julian_date(1, 1, r.last_year + 1, r.gj, 0);
            for (const Phenomenon& m : moon_aspects_to_heliocentric(s, first, last))
                all.push_back(m);
        }
        if (geocentric) {
            p.values["eclipse_phenomena"] = "1";
            for (const Phenomenon& e : list_phenomena(s, p)) all.push_back(e);
        }
        std::stable_sort(all.begin(), all.end(),
                         [](const Phenomenon& a, const Phenomenon& b) { return a.jd < b.jd; });
    }
    s.chart.world_view = saved_view;
    const std::string heading = r.phenomena ? "Phenomena: Aspects (" + p.values["aspects"] +
                                                  "), Ingresses" +
                                                  (geocentric ? ", Eclipses, Retrograde Motion"
                                                   : view == "Lemnicentric" ? ", Retrograde Motion"
                                                                            : "")
                                            : std::string();
    MessageSink& sink = session_sink(s);
    sink.progress_begin("Click CANCEL to stop printout", static_cast<int>(months.size()));
    paper.begin_document();
    int printed = 0;
    for (const EphemerisMonth& m : months) {
        std::vector<MonthPhenomenon> rows;
        for (const Phenomenon& ph : all) {
            const CivilDate c = date_from_julian(ph.jd, r.gj);
            if (c.year == m.year && c.month == m.month) rows.push_back({ph.jd, ph.text, ph.kind});
        }
        draw_ephemeris_month(paper, m, r.gj, r.phenomena ? rows : std::vector<MonthPhenomenon>{},
                             heading, printed == 0);
        if (r.star_calendar) draw_star_calendar_page(paper, m, r.gj, rows, view == "Heliocentric");
        ++printed;
        if (sink.progress(printed)) break;
    }
    paper.end_document();
    sink.progress_end();
    return printed;
}

} // namespace celestark::drawing
