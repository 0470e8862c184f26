#include "drawing/predictive_report.h"

#include "drawing/page_furniture.h"
#include "drawing/report_frame.h"
#include "predict/hit_text.h"
#include "session/colour_fields.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace celestark::drawing {

namespace {

// The stops of each format, fractions of a column's width, by mode. The biography keeps those of
// the progressions: both reports open with a stepped date, a life date and the age.
struct FormatRow {
    const char* name;
    int columns;
    double divisor;
    std::vector<double> transit_stops, progression_stops;
};

const std::vector<FormatRow>& format_rows() {
    static const std::vector<FormatRow> rows = {
        {"1 Column",
         1,
         1200,
         {0.09, 0.16, 0.33, 0.47, 0.62},
         {0.09, 0.18, 0.23, 0.42, 0.53, 0.6, 0.64, 0.72, 0.75}},
        {"2 Columns", 2, 730, {0.13, 0.27, 0.45, 0.63}, {0.04, 0.14, 0.14, 0.45, 0.63, 0.8}},
        {"3 Columns", 3, 450, {0.22, 0.45}, {0.06, 0.22, 0.22, 0.72}},
        {"4 Columns", 4, 400, {0.22, 0.45}, {0.07, 0.23, 0.23, 0.65}},
        {"5 Columns", 5, 250, {0.14, 0.45}, {0.14, 0.45}},
        {"6 Columns", 6, 250, {0.14, 0.45}, {0.14, 0.45}},
        {"8 Columns", 8, 250, {0.14, 0.45}, {0.14, 0.45}},
    };
    return rows;
}

std::string glyph_text(unsigned char code) {
    return std::string(1, static_cast<char>(code));
}

// A row in the narrowest formats: the glyphs without their places.
RowColumns glyph_columns(const Session& s, const Hit& h) {
    RowColumns c = hit_columns(s, h, true);
    c.planet_1 = h.body_1 + (h.retro_1 == "R" ? " R" : "");
    const std::string& k = h.kind;
    if (k == "A" || k == "B" || k == "E" || k == "RA" || k == "RB" || k == "RE") {
        c.planet_2 = h.body_2 + (h.retro_2 == "R" ? " R" : "");
        if (k == "B" || k == "RB") c.planet_2 += " B";
        if (k == "E" || k == "RE") c.planet_2 += " E";
    } else if (k == "M" || k == "S") {
        c.planet_2.clear();
    }
    return c;
}

std::string upper(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return text;
}

std::string event_name(const EventRow& row) {
    std::string name;
    for (int c : {col::title, col::firstname, col::surname}) {
        const std::string part = trim(row[static_cast<std::size_t>(c)]);
        if (!part.empty()) name += (name.empty() ? "" : " ") + part;
    }
    const std::string version = trim(row[col::version]);
    if (!version.empty()) name += " (Version " + version + ")";
    return name;
}

// The left of the page head: what the run is, of whom.
std::string page_title(const Session& s) {
    const PredictiveParameters& p = s.predictive_params;
    const PredictiveRun& r = s.predictive;
    if (p.mode == "B")
        return std::string(r.ab_prenatal ? "PRENATAL " : "LIFETIME ") +
               upper(r.choices.world_view) + " Astrological Biography of: ";
    if (p.mode == "P") {
        const std::string& k = r.choices.progression;
        if (k == "Primary") return "Primary Progressions of: ";
        if (k == "Solar Arc") return "Solar Arc directions of:";
        if (k == "OD") return "OD directions of:";
        return "Secondary Progressions of: ";
    }
    return r.choices.world_view + " TRANSITS of: ";
}

const char* ratio_caption(double code) {
    switch (static_cast<int>(code)) {
    case 2:
        return "10 sidereal lunar months = 71.6 years";
    case 3:
        return "Synodic lunar month=7 years";
    case 4:
        return "9 synodic months=71.6 years";
    case 5:
        return "9 solar months=71.6 years";
    default:
        return "Sidereal lunar month = 7 years";
    }
}

// "BORN: " or "EPOCH: " and the moment, then the place on a line of its own.
std::vector<std::string> moment_lines(Drawing& g, const char* label, int row, bool epoch) {
    const EventFacts f = event_facts(g, row);
    std::string first = std::string(label) + f.date + (f.julian ? " Julian" : " Gregorian");
    if (epoch)
        first += "  Time: " + f.time + " GMT";
    else
        first += "  Time: " + f.time + ", " + f.time_kind + f.daylight;
    std::string second = "   at " + (f.place.empty() ? std::string("-") : f.place) + ", Latitude " +
                         f.latitude + ", Longitude " + f.longitude;
    return {first, second};
}

// The bodies of the planets table: the flag, and the glyph or the letters the table shows.
struct TableBody {
    const char* flag;
    std::string label;
};
const std::vector<TableBody>& table_bodies() {
    static const std::vector<TableBody> bodies = {
        {"sun", glyph_text(glyph::sun)},
        {"moon", glyph_text(glyph::moon)},
        {"mercury", glyph_text(glyph::mercury)},
        {"venus", glyph_text(glyph::venus)},
        {"mars", glyph_text(glyph::mars)},
        {"jupiter", glyph_text(glyph::jupiter)},
        {"saturn", glyph_text(glyph::saturn)},
        {"uranus", glyph_text(glyph::uranus)},
        {"neptune", glyph_text(glyph::neptune)},
        {"pluto", glyph_text(glyph::pluto)},
        {"node", glyph_text(glyph::north_node)},
        {"perigee", glyph_text(glyph::perigee)},
        {"ascendant", "AS"},
        {"mid_heaven", "MC"},
        {"earth", glyph_text(glyph::earth)},
        {"chiron", glyph_text(glyph::chiron)},
        {"asteroids", "a"},
        {"parts", glyph_text(glyph::part_of_fortune)},
        {"stars", "Stars"},
        {"helio_nodes", "Nodes (helio)"},
        {"helio_perihelions", "Perihelia (helio)"},
    };
    return bodies;
}

std::string angle_text(double degrees) {
    const long minutes = std::lround(degrees * 60);
    std::string t = std::to_string(minutes / 60) + "\xC2\xB0";
    if (minutes % 60 != 0) t += two_digits(minutes % 60) + "'";
    return t;
}

} // namespace

ReportFormat report_format(const std::string& mode, const std::string& output_format) {
    for (const FormatRow& row : format_rows())
        if (output_format == row.name)
            return {row.columns, mode == "T" ? row.transit_stops : row.progression_stops,
                    row.divisor};
    return {};
}

PredictiveReport::PredictiveReport(Drawing& g) : g_(g), printing_(g.d.printing) {}

Surface* PredictiveReport::surface() {
    return printing_ ? g_.canvases.printer : g_.canvases.ab;
}

bool PredictiveReport::pages_follow() const {
    return printing_;
}

const Hit* PredictiveReport::hit_at(float x, float y) const {
    for (const ReportRow& r : rows_)
        if (x >= r.left && x < r.right && y >= r.top && y < r.bottom) return &r.hit;
    return nullptr;
}

void PredictiveReport::fitted_text(float x, float y, const std::string& text, float room) {
    if (text.empty()) return;
    const float w = mixed_text_width(g_, text);
    const bool smaller = room > 0 && w > room;
    if (smaller) g_.display_font_size(std::max(0.01f, font_ * room / w));
    draw_mixed_outside(g_, x, y, text);
    if (smaller) g_.display_font_size(font_);
}

std::string PredictiveReport::cell_text(Session& s, const Cell& cell, const Hit& hit) const {
    switch (cell.kind) {
    case Cell::date:
        return report_date(s, s.predictive_params.mode == "T" ? hit.life_date : hit.date).date;
    case Cell::life_date:
        return report_date(s, hit.life_date).date;
    case Cell::time:
        return report_date(s, hit.life_date).time;
    case Cell::from_event:
        return time_from_event(s, hit.life_date);
    case Cell::age:
        return age_text(s, hit.life_date);
    default:
        break;
    }
    const RowColumns c = glyphs_only_ ? glyph_columns(s, hit) : hit_columns(s, hit, narrow_);
    switch (cell.kind) {
    case Cell::planet_1:
        return c.planet_1;
    case Cell::phenomenon:
        return c.phenomenon;
    case Cell::planet_2:
        return c.planet_2;
    default:
        return c.phenomenon + (c.planet_2.empty() ? "" : "  " + c.planet_2);
    }
}

// The cells of a column, each where its stop puts it. A cell whose widest text (or whose head)
// would run into the next stop pushes that stop on; when the row then runs past the column the
// characters are made smaller until it fits.
void PredictiveReport::lay_out_cells(Session& s) {
    const std::string& mode = s.predictive_params.mode;
    const int n = format_.columns;
    narrow_ = n >= 3;
    glyphs_only_ = n >= 4;
    using K = Cell::Kind;
    cells_.clear();
    const auto add = [&](K kind, std::string head) { cells_.push_back({kind, std::move(head)}); };
    const char* first_date = mode == "B" ? (narrow_ ? "Prenatal" : "Prenatal Date")
                                         : (narrow_ ? "Progr." : "Progressed Date");
    const char* life_head = narrow_ ? "Lifetime" : "Lifetime Date";
    if (mode == "T") {
        add(K::date, "Date of Transit");
        if (n <= 2) add(K::time, "");
        if (n == 1) add(K::from_event, "Time from Event");
    } else if (n >= 5) {
        add(K::life_date, life_head);
    } else {
        add(K::date, first_date);
        add(K::life_date, life_head);
        if (n <= 2) add(K::age, "Age");
    }
    // In the narrowest formats the moving body is a glyph too small for a head of its own: the
    // head before it reaches over it.
    add(K::planet_1, glyphs_only_ ? "" : "Planet 1");
    if (n <= 2 || (mode != "T" && n == 3)) {
        add(K::phenomenon, "Phenomena");
        add(K::planet_2, "Planet 2");
    } else {
        add(K::rest, "Phenomena");
    }

    // The widest texts of each kind of cell.
    Hit sample;
    sample.kind = "B";
    sample.body_1 = glyph_text(glyph::mercury);
    sample.pos_1 = 8.99 * 0.5236; // late in a sign: two digits of degrees and of minutes
    sample.retro_1 = "R";
    sample.body_2 = glyph_text(glyph::jupiter);
    sample.pos_2 = 8.99 * 0.5236;
    sample.retro_2 = "R";
    sample.aspect_glyph = glyph_text(aspect_glyphs[9]);
    sample.orb_kind = "AE";
    const RowColumns wide =
        glyphs_only_ ? glyph_columns(s, sample) : hit_columns(s, sample, narrow_);
    const auto widest = [&](K kind) -> float {
        switch (kind) {
        case K::date:
        case K::life_date:
            return text_width(g_, "8888-88-88");
        case K::time:
            return text_width(g_, "88:88");
        case K::from_event:
        case K::age:
            return text_width(g_, "88y 88m");
        case K::planet_1:
            return mixed_text_width(g_, wide.planet_1);
        case K::phenomenon:
            return std::max(mixed_text_width(g_, wide.phenomenon), text_width(g_, "FROM"));
        case K::planet_2:
            return mixed_text_width(g_, wide.planet_2);
        default:
            return mixed_text_width(g_, wide.phenomenon + "  " + wide.planet_2);
        }
    };

    const float w = column_width_;
    font_ = std::max(0.01f, w / static_cast<float>(format_.divisor));
    // The stops stay where they are while the characters shrink, so the fit is approached in
    // steps.
    for (int attempt = 0; attempt < 24; ++attempt) {
        g_.display_font_size(font_);
        gap_ = text_width(g_, "  ");
        const auto place = [&](bool heads) {
            float need = 0;
            int headed = -1;
            for (std::size_t i = 0; i < cells_.size(); ++i) {
                float x = 0;
                if (i > 0) {
                    const std::size_t k = i - 1;
                    const double stop = k < format_.stops.size() ? format_.stops[k] : 0.0;
                    x = std::max(static_cast<float>(stop) * w,
                                 cells_[k].x + widest(cells_[k].kind) + gap_);
                    if (heads && headed >= 0 && !cells_[i].head.empty()) {
                        const Cell& h = cells_[static_cast<std::size_t>(headed)];
                        x = std::max(x, h.x + text_width(g_, h.head) + gap_);
                    }
                }
                cells_[i].x = x;
                if (!cells_[i].head.empty()) headed = static_cast<int>(i);
                need = x + std::max(widest(cells_[i].kind),
                                    heads ? text_width(g_, cells_[i].head) : 0.0f);
            }
            return need;
        };
        // The heads keep their size unless that would make the rows much smaller; then a head
        // wider than its cell is drawn smaller.
        const float rows_need = place(false);
        float need = place(true);
        if (need > w && need > rows_need * 1.15f) need = place(false);
        if (need <= w || need <= 0) break;
        font_ *= std::min(0.98f, w / need);
    }
    g_.display_font_size(font_);
    row_height_ = line_height(g_) * 0.85f;
}

void PredictiveReport::begin_page(Session& s, int page) {
    DrawingState& d = g_.d;
    d.display_target = "AB";
    d.printing = printing_;
    Surface* out = surface();
    if (!out) return;
    if (printing_) {
        if (!document_open_) {
            out->begin_document();
            document_open_ = true;
        } else {
            out->end_page();
        }
    }
    page_ = page;
    ended_ = false;
    rows_.clear();
    column_ = 0;
    g_.read_page_options();
    g_.load_active_colour_set();
    if (!printing_)
        out->clear(g_.monochrome() ? chart_window_ground
                                   : g_.colour(colour_field::chart_background));

    // The margins: a hundredth of the page on the screen.
    const ReportFrame frame = report_frame(*out, printing_, 0.01f, 1200);
    left_ = frame.left;
    right_ = frame.right;
    top_ = frame.top;
    bottom_ = frame.bottom;
    const float H = out->height();
    if (printing_) {
        d.frame_left = d.page_left = left_;
        d.page_right = right_;
        d.page_bottom = out->top_offset() + H - H * 0.02f;
        g_.page_footer();
    }

    format_ = report_format(s.predictive_params.mode, s.predictive_params.text("output_format"));
    if (format_.columns < 1) format_ = report_format("T", "1 Column");
    column_width_ = (right_ - left_) / static_cast<float>(format_.columns);

    // The head: the run and the name at the left, the page number at the right, in the size of
    // a report of one column.
    const float head_font = std::max(0.01f, (right_ - left_) / 1200);
    const std::string title = page_title(s) + event_name(s.event_slots[s.event_slots.active_event]);
    float y = report_title(g_, frame, head_font, title, page, true, TitleText::name);
    if (page == 1) y = first_page_block(s, y);

    lay_out_cells(s);
    rows_top_ = column_heads(y);
    y_ = rows_top_;
}

// The run's parameters under the head of the first page: the span, the charts, the zodiac and
// the options at the left; the bodies in the middle; the aspect set and its orbs at the right.
float PredictiveReport::first_page_block(Session& s, float top) {
    const PredictiveParameters& p = s.predictive_params;
    const PredictiveRun& r = s.predictive;
    const RunChoices& c = r.choices;
    const std::string& mode = p.mode;
    const int active = s.event_slots.active_event;

    std::vector<std::string> lines;
    lines.push_back("from " + report_date(s, r.life_start).date + "   to " +
                    report_date(s, r.life_end).date);
    if (mode == "B")
        for (const std::string& l : moment_lines(g_, "EPOCH: ", active + slot::epoch_offset, true))
            lines.push_back(l);
    for (const std::string& l : moment_lines(g_, "BORN: ", active, false)) lines.push_back(l);
    const std::string& zodiac = s.chart.zodiac;
    if (zodiac == "Tropical" || zodiac == "Draconic")
        lines.push_back("ZODIAC: " + zodiac);
    else
        lines.push_back("ZODIAC: " + zodiac + ", Vernal Point: " +
                        trim(format_position_dms(s.engine.zodiac_offset, false)));
    lines.push_back("OPTIONS SELECTED:");
    if (mode == "B") {
        lines.push_back(std::string("Prenatal time direction: ") +
                        (r.ab_mode == 1   ? "EPOCH to BIRTH"
                         : r.ab_mode == 3 ? "BIRTH to EPOCH"
                                          : "From BIRTH forwards"));
        lines.push_back(std::string("Time ratio: ") + ratio_caption(r.time_ratio_code));
        lines.push_back(std::string("Time projection: ") +
                        (r.projection_mode == 2 ? " true (using actual position of SUN or MOON)"
                                                : " mean (linear)"));
        if (p.on("ab")) lines.push_back("ASTROLOGICAL BIOGRAPHY");
        if (p.on("epoch_transits")) lines.push_back("TRANSITS OF EPOCH CHART");
        if (p.on("birth_transits")) lines.push_back("TRANSITS OF BIRTH CHART");
    } else if (mode == "T") {
        if (p.on("transit_transit")) lines.push_back("TRANSITS OF TRANSIT CHART");
        if (p.on("transit_event")) lines.push_back("TRANSITS OF EVENT CHART");
    } else {
        lines.push_back(std::string("Time direction: ") +
                        (r.run_direction > 0 ? "FORWARD" : "BACKWARDS"));
        if (p.on("pr_event")) lines.push_back("ASPECTS TO EVENT CHART");
        if (p.on("pr_progressed")) lines.push_back("ASPECTS TO PROGRESSED CHART");
    }
    lines.push_back("PRINT");
    const std::pair<bool, const char*> contents[] = {
        {c.aspects, "    Aspects"},
        {c.orb, "    Entering and Leaving Orbs"},
        {c.recur, "    Recurrence of Aspects"},
        {c.houses, "    Ingresses into Houses"},
        {c.signs, "    Ingresses into Signs"},
        {c.constellations, "    Ingresses into Constellations"},
        {c.retro, "    Retrograde motion"},
        {c.eclipses, "    Sun and Moon Eclipses"},
    };
    for (const auto& [on, line] : contents)
        if (on) lines.push_back(line);

    struct Marked {
        std::string label;
        bool moving, radical;
    };
    std::vector<Marked> bodies;
    for (const TableBody& b : table_bodies()) {
        const bool moving = p.on(std::string("t_") + b.flag);
        const bool radical = p.on(std::string("c_") + b.flag);
        if (moving || radical) bodies.push_back({b.label, moving, radical});
    }
    const AspectTable& a = s.option_sets.aspects;
    const int aspects = std::max<int>(0, a.aspect_count);
    const int aspect_lines = 2 + aspects;
    const int rows = std::max<int>({static_cast<int>(lines.size()), aspect_lines, 6});
    const int per_column = rows - 1;
    const int body_columns =
        std::max(1, (static_cast<int>(bodies.size()) + per_column - 1) / per_column);

    const float room = right_ - left_;
    float font = std::max(0.01f, room / 1200);
    const std::string planets_head = " PLANETS:  Transiting   Aspected";
    const char* orb_heads[] = {"  Sun", "  Moon", "  Planets", "  Elements", "  Stars"};
    const std::string aspect_head = "- - Aspect - -  Orbs:";
    float a_w = 0, b_w = 0, c_w = 0, gap = 0, orb_w = 0, line = 0;
    for (int attempt = 0; attempt < 3; ++attempt) {
        g_.display_font_size(font);
        gap = text_width(g_, "      ");
        a_w = 0;
        for (const std::string& l : lines) a_w = std::max(a_w, text_width(g_, l));
        b_w = text_width(g_, planets_head) * static_cast<float>(body_columns) +
              gap * static_cast<float>(body_columns - 1);
        orb_w = text_width(g_, "  Elements");
        c_w = text_width(g_, aspect_head) + orb_w * 5;
        const float need = a_w + b_w + c_w + gap * 2;
        if (need <= room) break;
        font *= room / need;
    }
    line = line_height(g_);

    // The left block.
    float y = top;
    for (const std::string& l : lines) {
        g_.display_text_outside(left_, y, l);
        y += line;
    }
    float bottom = y;

    // The bodies, in as many columns as the block's height asks for.
    const float tx = text_width(g_, " PLANETS:  "), ax = text_width(g_, " PLANETS:  Transiting   ");
    const float t_mid = tx + text_width(g_, "Transiting") / 2;
    const float a_mid = ax + text_width(g_, "Aspected") / 2;
    const float mark_half = text_width(g_, "X") / 2;
    float x = left_ + a_w + gap;
    for (int k = 0; k < body_columns; ++k) {
        float by = top;
        g_.display_text_outside(x, by, k == 0 ? planets_head : "           Transiting   Aspected");
        by += line;
        for (int i = k * per_column;
             i < std::min<int>((k + 1) * per_column, static_cast<int>(bodies.size())); ++i) {
            const Marked& b = bodies[static_cast<std::size_t>(i)];
            draw_mixed_outside(g_, x + text_width(g_, " "), by, b.label);
            if (b.moving) g_.display_text_outside(x + t_mid - mark_half, by, "X");
            if (b.radical) g_.display_text_outside(x + a_mid - mark_half, by, "X");
            by += line;
        }
        bottom = std::max(bottom, by);
        x += text_width(g_, planets_head) + gap;
    }

    // The aspect set with its orbs.
    x = left_ + a_w + gap + b_w + gap;
    float ay = top;
    g_.display_text_outside(x, ay, "Aspect set: " + p.text("aspect_set"));
    ay += line;
    const float orbs_x = x + text_width(g_, aspect_head);
    g_.display_text_outside(x, ay, aspect_head);
    for (int k = 0; k < 5; ++k)
        g_.display_text_outside(orbs_x + orb_w * static_cast<float>(k), ay, orb_heads[k]);
    ay += line;
    float glyph_w = 0;
    for (const unsigned char code : a.glyph) {
        float w = 0, h = 0;
        g_.display_symbol_w_h(glyph_text(code), 1.0f, w, h);
        glyph_w = std::max(glyph_w, w);
    }
    glyph_w += text_width(g_, " ");
    for (int i = 0; i < aspects; ++i) {
        const auto k = static_cast<std::size_t>(i);
        if (k < a.glyph.size() && a.glyph[k] != ' ')
            g_.display_glyph_outside(x, ay, glyph_text(a.glyph[k]));
        std::string name = k < a.angle.size() ? angle_text(a.angle[k]) : "";
        if (k < a.digraph.size()) name += "  " + trim(a.digraph[k]);
        g_.display_text_outside(x + glyph_w, ay, name);
        const std::vector<float>* orbs[] = {&a.orb_sun, &a.orb_moon, &a.orb_planets,
                                            &a.orb_elements, &a.orb_stars};
        for (int o = 0; o < 5; ++o) {
            const std::vector<float>& v = *orbs[o];
            if (k < v.size())
                g_.display_text_outside(orbs_x + orb_w * static_cast<float>(o) +
                                            text_width(g_, "  "),
                                        ay, angle_text(v[k]));
        }
        ay += line;
    }
    bottom = std::max(bottom, ay);
    bottom += line * 0.3f;
    g_.display_line(left_, right_, bottom, bottom, g_.d.line_colour_outside, solid);
    return bottom + line * 0.3f;
}

// The heads of every column, a rule under them and between the columns; returns where the rows
// begin.
float PredictiveReport::column_heads(float top) {
    g_.display_font_size(font_);
    const float line = line_height(g_);
    for (int c = 0; c < format_.columns; ++c) {
        const float x0 = left_ + column_width_ * static_cast<float>(c);
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            if (cells_[i].head.empty()) continue;
            // A head reaches to the next cell that has a head of its own.
            float end = column_width_ - gap_ / 2;
            for (std::size_t k = i + 1; k < cells_.size(); ++k)
                if (!cells_[k].head.empty()) {
                    end = cells_[k].x - gap_ / 2;
                    break;
                }
            fitted_text(x0 + cells_[i].x, top, cells_[i].head, end - cells_[i].x);
        }
    }
    const float rule = top + line * 1.05f;
    g_.display_line(left_, right_, rule, rule, g_.d.line_colour_outside, solid);
    for (int c = 1; c < format_.columns; ++c) {
        const float x = left_ + column_width_ * static_cast<float>(c) - gap_ / 2;
        g_.display_line(x, x, top, bottom_, g_.d.line_colour_outside, dot);
    }
    return rule + line * 0.2f;
}

bool PredictiveReport::print_row(Session& s, const Hit& hit) {
    Surface* out = surface();
    if (!out || cells_.empty()) return false;
    DrawingState& d = g_.d;
    d.display_target = "AB";
    d.printing = printing_;
    if (y_ + row_height_ > bottom_ && !rows_.empty()) {
        if (column_ + 1 >= format_.columns) return false;
        ++column_;
        y_ = rows_top_;
    }
    g_.display_font_size(font_);
    const float x0 = left_ + column_width_ * static_cast<float>(column_);
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        const float end = i + 1 < cells_.size() ? cells_[i + 1].x : column_width_;
        fitted_text(x0 + cells_[i].x, y_, cell_text(s, cells_[i], hit), end - cells_[i].x - gap_);
    }
    rows_.push_back({x0, y_, x0 + column_width_, y_ + row_height_, hit});
    y_ += row_height_;
    return true;
}

void PredictiveReport::end_run(Session& /*s*/) {
    ended_ = true;
    if (printing_ && document_open_) {
        if (Surface* out = surface()) out->end_document();
        document_open_ = false;
    }
}

} // namespace celestark::drawing
