// The star database, star options, star group and fixed point windows.
#include "screens/widgets/star_screens.h"

#include "drawing/program_fonts.h"
#include "engine/star_analysis.h"
#include "screens/widgets/desktop.h"
#include "session/session.h"
#include "session/star_state.h"
#include "session/text.h"
#include "store/option_schema.h"
#include "store/option_store.h"
#include "store/star_catalogue.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <charconv>
#include <memory>

namespace celestark::screens {

using store::Outcome;
using store::Value;

// A character of the chart symbol font drawn as charts draw it.
class GlyphView : public QWidget {
  public:
    GlyphView(QWidget* parent, const char* name) : QWidget(parent) {
        setObjectName(name);
        setFixedSize(34, 34);
        setToolTip("The glyph as charts draw it");
    }
    void set_code(const std::string& code) {
        code_ = code;
        update();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        p.fillRect(rect(), Qt::white);
        p.setPen(QColor(0x90, 0x90, 0x90));
        p.drawRect(rect().adjusted(0, 0, -1, -1));
        if (code_.empty()) return;
        const auto& fonts = drawing::ProgramFonts::instance();
        const double em = 22;
        const float w = fonts.width_em(drawing::ProgramFont::planet_symbols, code_) * em;
        const float h = (fonts.ascent_em(drawing::ProgramFont::planet_symbols) +
                         fonts.descent_em(drawing::ProgramFont::planet_symbols)) *
                        em;
        fonts.draw(p, drawing::ProgramFont::planet_symbols,
                   QPointF((width() - w) / 2.0, (height() - h) / 2.0), em, code_, Qt::black, 0,
                   false);
    }

  private:
    std::string code_;
};

namespace {

constexpr const char* editable_style = "QLineEdit { background: white; color: black; }";
constexpr const char* read_only_style = "QLineEdit { background: #d8d8d8; color: #202020; }";

// A stored text as the window shows it (UTF-8, or the code page of the program's old files).
QString stored_text(const std::string& text) {
    const std::u32string u = drawing::decode_text(text);
    return QString::fromUcs4(u.data(), static_cast<qsizetype>(u.size()));
}

// A glyph is one character code of the symbol font: shown and typed as that Latin-1 character.
QString glyph_text(const std::string& code) {
    return QString::fromLatin1(code.data(), static_cast<qsizetype>(code.size()));
}
bool glyph_code(const QString& text, std::string& code) {
    if (text.size() > 1 || (text.size() == 1 && text[0].unicode() > 255)) return false;
    const QByteArray bytes = text.toLatin1();
    code.assign(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return true;
}

QString value_text(const Value& v) {
    switch (v.kind()) {
    case Value::Kind::null:
        return {};
    case Value::Kind::real: {
        // A value stored in single precision reads as it was typed (0.52, not 0.51999998); a
        // double to ten figures.
        const double d = v.as_double();
        const float single = static_cast<float>(d);
        if (static_cast<double>(single) != d) return QString::number(d, 'g', 10);
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof digits, single).ptr;
        return QString::fromLatin1(digits, end - digits);
    }
    case Value::Kind::integer:
        return QString::number(v.as_int());
    case Value::Kind::text:
        return stored_text(v.as_text());
    }
    return {};
}

QLabel* caption(QWidget* parent, const QString& text) {
    auto* l = new QLabel(text, parent);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return l;
}

QLabel* heading(QWidget* parent, const QString& text) {
    auto* l = new QLabel(text, parent);
    QFont f = l->font();
    f.setBold(true);
    l->setFont(f);
    l->setWordWrap(true);
    return l;
}

// The check boxes of the star's groups and the fields behind them.
struct StarBox {
    const char* control;
    const char* field;
};
constexpr StarBox star_boxes[] = {
    {"star_in_zodiac", "in_zodiac"},     {"star_selection_1", "sel_1"},
    {"star_selection_4", "sel_4"},       {"star_selection_2", "sel_2"},
    {"star_selection_3", "sel_3"},       {"star_selection_2_1", "sel_2_1"},
    {"star_selection_2_2", "sel_2_2"},   {"star_selection_2_3", "sel_2_3"},
    {"star_selection_2_4", "sel_2_4"},   {"star_selection_2_5", "sel_2_5"},
    {"star_selection_2_6", "sel_2_6"},   {"star_selection_2_7", "sel_2_7"},
    {"star_selection_2_8", "sel_2_8"},   {"star_selection_2_9", "sel_2_9"},
    {"star_selection_2_10", "sel_2_10"},
};
// The first three boxes have captions of their own; the others carry the group names.
constexpr int named_boxes = 3;

} // namespace

// ---- STAR DATABASE ------------------------------------------------------------------------------

StarDatabaseWindow::StarDatabaseWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "STAR_DATABASE", "STAR DATABASE") {
    auto* layout = new QHBoxLayout(this);

    auto* choose = make_group(this, "star_choice", "SELECT STARS");
    auto* cl = new QGridLayout(choose);
    constellations_ = make_list(choose, "constellation_list");
    for (std::string_view c : star_database_constellations)
        constellations_->addItem(qt(std::string(c)));
    constellations_->setCurrentIndex(-1);
    constellations_->setMaxVisibleItems(20);
    groups_ = make_list(choose, "group_list");
    auto* by_constellation = make_button(choose, "list_constellation", "LIST");
    auto* by_group = make_button(choose, "list_group", "LIST");
    cl->addWidget(caption(choose, "Constellation"), 0, 0);
    cl->addWidget(constellations_, 0, 1);
    cl->addWidget(by_constellation, 0, 2);
    cl->addWidget(caption(choose, "Group"), 1, 0);
    cl->addWidget(groups_, 1, 1);
    cl->addWidget(by_group, 1, 2);
    star_list_ = make_list_box(choose, "star_list");
    star_list_->setMinimumWidth(320);
    cl->addWidget(star_list_, 2, 0, 1, 3);
    cl->setRowStretch(2, 1);
    cl->setColumnStretch(1, 1);
    auto* left = new QVBoxLayout;
    left->addWidget(choose, 1);
    auto* exit = make_button(this, "star_exit", "EXIT");
    exit->setMinimumHeight(30);
    left->addWidget(exit);
    layout->addLayout(left, 2);

    details_ = make_group(this, "star_details", star_details_title);
    auto* grid = new QGridLayout(details_);
    grid->setHorizontalSpacing(8);
    // One field: white and written at once when `control` is given, grey and read-only else.
    auto field = [&](int row, int column, const QString& label, const char* control,
                     const char* stored, int span = 1) {
        const bool editable = control != nullptr;
        const char* name = editable ? control : stored;
        QLineEdit* f = make_field(details_, name);
        f->setStyleSheet(editable ? editable_style : read_only_style);
        f->setReadOnly(!editable);
        if (!editable) f->setFocusPolicy(Qt::ClickFocus);
        fields_[name] = f;
        stored_[name] = stored;
        grid->addWidget(caption(details_, label), row, column * 2);
        grid->addWidget(f, row, column * 2 + 1, 1, span * 2 - 1);
        if (editable) {
            const std::string c = control;
            connect(f, &QLineEdit::editingFinished, this, [this, f, c] {
                if (!f->isModified()) return;
                f->setModified(false);
                if (c == "star_glyph") {
                    std::string code;
                    if (!glyph_code(f->text(), code)) {
                        sink().message("ERROR IN GLYPH ENTRY",
                                       "The glyph must be a single character of the symbol font",
                                       MessageIcon::exclamation);
                        show_fields();
                        return;
                    }
                    write(c, code);
                } else {
                    write(c, f->text().toStdString());
                }
            });
        }
        return f;
    };
    field(0, 0, "Name", "star_name", "star_name", 2);
    field(0, 2, "Number", nullptr, "number");
    field(1, 0, "Name meaning", "star_name_meaning", "star_name_meaning", 3);
    field(2, 0, "Description", "star_description", "Description", 3);
    QLineEdit* glyph = field(3, 0, "Glyph", "star_glyph", "glyph");
    glyph->setMaxLength(1);
    glyph->setFixedWidth(40);
    // The glyph with the picture of it beside.
    grid->removeWidget(glyph);
    glyph_view_ = new GlyphView(details_, "star_glyph_view");
    auto* glyph_row = new QHBoxLayout;
    glyph_row->addWidget(glyph);
    glyph_row->addWidget(glyph_view_);
    glyph_row->addStretch(1);
    grid->addLayout(glyph_row, 3, 1);
    field(3, 1, "Greek letter", nullptr, "greek_letter");
    field(3, 2, "HIC number", "hic_number", "hic");
    field(4, 0, "Magnitude", nullptr, "magnitude");
    field(4, 1, "Absolute magnitude", "star_absolute_magnitude", "absolute_magnitude");
    field(4, 2, "Distance (light years)", "star_distance", "distance");
    field(5, 0, "Luminosity", "star_luminosity", "luminosity");
    field(5, 1, "Spectral type", "spectral_type", "spectral_type");
    field(5, 2, "Luminosity class", "luminosity_class", "luminosity_class");
    field(6, 0, "Longitude", nullptr, "longitude");
    field(6, 1, "Latitude", nullptr, "Latitude");
    field(7, 0, "Proper motion RA", nullptr, "pm_ra");
    field(7, 1, "Proper motion Dec", nullptr, "pm_dec");
    // Right ascension and declination, each in its parts.
    auto parts = [&](int row, int column, const QString& label,
                     std::initializer_list<const char*> names) {
        auto* box = new QHBoxLayout;
        for (const char* n : names) {
            QLineEdit* f = make_field(details_, n, std::string_view(n) == "dec_sign" ? 1 : 4);
            f->setStyleSheet(read_only_style);
            f->setReadOnly(true);
            f->setFocusPolicy(Qt::ClickFocus);
            fields_[n] = f;
            stored_[n] = n;
            box->addWidget(f);
        }
        box->addStretch(1);
        grid->addWidget(caption(details_, label), row, column * 2);
        grid->addLayout(box, row, column * 2 + 1);
    };
    parts(8, 0, "Right ascension (h m s)", {"ra_hours", "ra_mins", "ra_secs"});
    parts(8, 1, "Declination (d m s)", {"dec_sign", "dec_degs", "dec_mins", "dec_secs"});
    field(9, 0, "Line to star", "star_line_to", "line_to");
    field(9, 1, "Second line to star", "star_line_to_2", "line_to_2");
    field(9, 2, "Line to HD number", "star_line_to_hd", "line_to_hd");

    auto* marks = make_group(details_, "star_groups_marks", "STAR GROUPS");
    auto* ml = new QGridLayout(marks);
    const QString own_captions[named_boxes] = {
        "Display in star zodiac",
        "Select to include star in charts. A maximum of 8 stars can be selected for this group",
        "Select to exclude star from all charts and analysis"};
    int i = 0;
    for (const StarBox& b : star_boxes) {
        QCheckBox* c = make_check(marks, b.control, i < named_boxes ? own_captions[i] : QString());
        boxes_[b.control] = c;
        if (i < named_boxes)
            ml->addWidget(c, i, 0, 1, 3);
        else
            ml->addWidget(c, named_boxes + (i - named_boxes) / 3, (i - named_boxes) % 3);
        const std::string control = b.control;
        connect(c, &QCheckBox::clicked, this,
                [this, control](bool on) { write(control, on ? "True" : "False"); });
        ++i;
    }
    grid->addWidget(marks, 10, 0, 1, 6);
    grid->setRowStretch(11, 1);
    for (int column : {1, 3, 5}) grid->setColumnStretch(column, 1);
    layout->addWidget(details_, 5);
    details_->setEnabled(false);

    connect(by_constellation, &QPushButton::clicked, this,
            [this] { list_stars(false, constellations_->currentText().toStdString()); });
    connect(by_group, &QPushButton::clicked, this,
            [this] { list_stars(true, groups_->currentText().toStdString()); });
    connect(constellations_, &QComboBox::currentTextChanged, this, [this](const QString& name) {
        if (!filling_ && !name.isEmpty()) list_stars(false, name.toStdString());
    });
    connect(groups_, &QComboBox::currentTextChanged, this, [this](const QString& name) {
        if (!filling_ && !name.isEmpty()) list_stars(true, name.toStdString());
    });
    connect(star_list_, &QListWidget::currentRowChanged, this,
            [this](int row) { show_star_at(row); });
    connect(exit, &QPushButton::clicked, this, [this] { leave(); });
    resize(1280, 720);
}

void StarDatabaseWindow::enter() {
    refresh_groups();
    show();
    raise();
    activateWindow();
}

void StarDatabaseWindow::refresh_groups() {
    const std::vector<std::string> groups = star_database_groups(session());
    const QString chosen = groups_->currentText();
    filling_ = true;
    groups_->clear();
    for (const std::string& g : groups) groups_->addItem(stored_text(g));
    groups_->setCurrentIndex(groups_->findText(chosen));
    filling_ = false;
    // The user groups' boxes carry the groups' names.
    for (std::size_t k = named_boxes; k < std::size(star_boxes); ++k)
        boxes_[star_boxes[k].control]->setText(stored_text(groups[k - named_boxes + 2]));
}

void StarDatabaseWindow::list_stars(bool by_group, const std::string& name) {
    lines_ = by_group ? list_group(session(), name, sink())
                      : list_constellation(session(), name, sink());
    listed_by_group_ = by_group;
    listed_name_ = name;
    star_list_->blockSignals(true);
    star_list_->clear();
    for (const StarListLine& l : lines_) star_list_->addItem(stored_text(l.text));
    star_list_->blockSignals(false);
    show_star_at(lines_.empty() ? -1 : 0);
    if (!lines_.empty()) {
        star_list_->blockSignals(true);
        star_list_->setCurrentRow(0);
        star_list_->blockSignals(false);
    }
}

void StarDatabaseWindow::show_star_at(int row) {
    bookmark_ = row >= 0 && static_cast<std::size_t>(row) < lines_.size()
                    ? lines_[static_cast<std::size_t>(row)].bookmark
                    : std::string();
    show_fields();
}

void StarDatabaseWindow::show_fields() {
    std::map<std::string, Value> values;
    if (!bookmark_.empty())
        for (auto& [field, value] : show_star(session(), bookmark_)) values[field] = value;
    details_->setEnabled(!values.empty());
    auto value_of = [&](const std::string& field) {
        const auto it = values.find(field);
        return it == values.end() ? Value() : it->second;
    };
    for (auto& [name, f] : fields_) {
        const Value v = value_of(stored_[name]);
        f->setText(name == "star_glyph" ? glyph_text(v.as_text()) : value_text(v));
        f->setCursorPosition(0);
        f->setToolTip(f->text().size() > 40 ? f->text() : QString()); // a long text whole
    }
    glyph_view_->set_code(value_of("glyph").as_text());
    for (const StarBox& b : star_boxes) boxes_[b.control]->setChecked(value_of(b.field).as_int());
    // The line of the star in the list follows its name.
    const int row = star_list_->currentRow();
    if (!values.empty() && row >= 0 && static_cast<std::size_t>(row) < lines_.size() &&
        lines_[static_cast<std::size_t>(row)].bookmark == bookmark_) {
        const std::string line =
            star_list_line(value_of("star_number").as_text(), value_of("greek_text").as_text(),
                           value_of("same_letter").as_text(), value_of("constellation").as_text(),
                           value_of("star_name").as_text(), value_of("number").as_int());
        lines_[static_cast<std::size_t>(row)].text = line;
        star_list_->item(row)->setText(stored_text(line));
    }
}

void StarDatabaseWindow::write(const std::string& control, const std::string& text) {
    if (bookmark_.empty()) return;
    set_star_field(session(), bookmark_, control, text, sink());
    show_fields(); // what was stored, or what stays after a refusal
}

void StarDatabaseWindow::leave() {
    leave_star_database(session(), sink());
    hide();
}

// ---- STAR OPTIONS -------------------------------------------------------------------------------

namespace {

constexpr const char* orb_set_numbers[] = {"1", "2", "3", "4", "5", "6", "7", "8", "9"};
constexpr const char* conjunction_orb_types[] = {"Longitude", "Longitude and latitude"};

} // namespace

QLineEdit* StarOptionsWindow::option_field(QWidget* parent, const char* field, int characters) {
    QLineEdit* f = make_field(parent, field, characters);
    fields_[field] = f;
    const std::string name = field;
    connect(f, &QLineEdit::editingFinished, this, [this, f, name] {
        if (!f->isModified()) return;
        f->setModified(false);
        if (set_star_option(session(), name, f->text().toStdString(), sink()) == Outcome::ok)
            shown_[name] = value_text(read_option(session(), store::general_options_table, name))
                               .toStdString();
        f->setText(qt(shown_[name]));
    });
    return f;
}

QCheckBox* StarOptionsWindow::option_check(QWidget* parent, const char* field,
                                           const QString& caption_text) {
    QCheckBox* c = make_check(parent, field, caption_text);
    checks_[field] = c;
    const std::string name = field;
    connect(c, &QCheckBox::clicked, this, [this, c, name](bool on) {
        if (set_option(session(), store::general_options_table, name, Value(on ? 1 : 0), sink()) ==
            Outcome::ok)
            shown_[name] = on ? "1" : "0";
        else
            c->setChecked(!on);
    });
    return c;
}

QComboBox* StarOptionsWindow::option_list(QWidget* parent, const char* field) {
    QComboBox* l = make_list(parent, field);
    lists_[field] = l;
    const std::string name = field;
    connect(l, &QComboBox::currentTextChanged, this, [this, l, name](const QString& text) {
        if (filling_) return;
        if (set_star_option(session(), name, text.toStdString(), sink()) == Outcome::ok) {
            shown_[name] = text.toStdString();
            return;
        }
        filling_ = true;
        l->setCurrentText(qt(shown_[name]));
        filling_ = false;
    });
    return l;
}

StarOptionsWindow::StarOptionsWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "STAR_OPTIONS", "STAR OPTIONS") {
    auto* layout = new QVBoxLayout(this);
    auto* columns = new QHBoxLayout;
    layout->addLayout(columns, 1);

    // A row of an orb: its caption, degrees and minutes.
    auto orb_row = [&](QWidget* parent, QGridLayout* grid, int row, const QString& text,
                       const std::string& prefix) {
        grid->addWidget(caption(parent, text), row, 0);
        grid->addWidget(option_field(parent, (prefix + "degs").c_str(), 2), row, 1);
        grid->addWidget(new QLabel("deg", parent), row, 2);
        grid->addWidget(option_field(parent, (prefix + "mins").c_str(), 2), row, 3);
        grid->addWidget(new QLabel("min", parent), row, 4);
    };
    auto limit_row = [&](QWidget* parent, QGridLayout* grid, int row, const QString& text,
                         const char* field) {
        grid->addWidget(caption(parent, text), row, 0);
        grid->addWidget(option_field(parent, field, 4), row, 1, 1, 2);
    };

    // Sets 1 to 6.
    auto* left = new QVBoxLayout;
    auto* fixed = make_group(this, "fixed_orb_sets", "FIXED STAR ORB SETS.");
    auto* fg = new QGridLayout(fixed);
    int r = 0;
    fg->addWidget(heading(fixed, "STAR ORB SET 1 using visual magnitudes"), r++, 0, 1, 6);
    orb_row(fixed, fg, r++, "Orb", "orb_1_");
    limit_row(fixed, fg, r++, "For stars of visual magnitude up to", "orb_1_magnitude");
    fg->addWidget(heading(fixed, "STAR ORB SET 2 using absolute magnitudes"), r++, 0, 1, 6);
    orb_row(fixed, fg, r++, "Orb", "orb_2_");
    limit_row(fixed, fg, r++, "For stars of absolute magnitude up to", "orb_2_magnitude");
    auto* set3 = new QLabel("STAR ORB SET 3 is the combination of 1 and 2. The star must be "
                            "selected by both Star Orb Sets and the smaller of the two orbs will "
                            "be used.",
                            fixed);
    set3->setWordWrap(true);
    fg->addWidget(set3, r++, 0, 1, 6);
    fg->setColumnStretch(5, 1);
    left->addWidget(fixed);

    auto* progressive = make_group(this, "progressive_orb_sets", "PROGRESSIVE STAR ORB SETS");
    auto* pg = new QGridLayout(progressive);
    r = 0;
    pg->addWidget(heading(progressive, "STAR ORB SET 4 using visual magnitudes"), r++, 0, 1, 6);
    orb_row(progressive, pg, r++, "Orb for visual magnitude 1 stars", "orb_3_mag1_");
    orb_row(progressive, pg, r++, "Orb for visual magnitude 6 stars", "orb_3_mag6_");
    limit_row(progressive, pg, r++, "For stars of visual magnitude up to", "orb_3_magnitude");
    pg->addWidget(heading(progressive, "STAR ORB SET 5 using absolute magnitudes"), r++, 0, 1, 6);
    orb_row(progressive, pg, r++, "Orb for visual magnitude 1 stars", "orb_4_mag1_");
    orb_row(progressive, pg, r++, "Orb for visual magnitude 6 stars", "orb_4_mag6_");
    limit_row(progressive, pg, r++, "For stars of absolute magnitude up to", "orb_4_magnitude");
    auto* set6 = new QLabel("STAR ORB SET 6 is the combination of 4 and 5. The star must be "
                            "selected by both Star Orb Sets and the smaller of the two orbs will "
                            "be used.",
                            progressive);
    set6->setWordWrap(true);
    pg->addWidget(set6, r++, 0, 1, 6);
    pg->setColumnStretch(5, 1);
    left->addWidget(progressive);
    left->addStretch(1);
    columns->addLayout(left, 1);

    // Sets 7 to 9.
    auto* middle = new QVBoxLayout;
    auto* steps = make_group(this, "step_orb_sets", "STAR ORB SETS BY MAGNITUDE STEPS");
    auto* sg = new QGridLayout(steps);
    r = 0;
    sg->addWidget(heading(steps, "STAR ORB SET 7 using visual magnitudes"), r++, 0, 1, 6);
    static constexpr const char* visual[6] = {
        "Stars of visual magnitude 1 or less", "Stars of visual magnitude 2",
        "Stars of visual magnitude 3",         "Stars of visual magnitude 4",
        "Stars of visual magnitude 5",         "Stars of visual magnitude 6 plus"};
    for (int m = 1; m <= 6; ++m)
        orb_row(steps, sg, r++, visual[m - 1], "orb_5_mag" + std::to_string(m) + "_");
    sg->addWidget(heading(steps, "STAR ORB SET 8 using absolute magnitudes"), r++, 0, 1, 6);
    // From the faintest step down to the brightest.
    static constexpr const char* absolute[6] = {
        "Stars of absolute magnitudes 3 plus",    "Stars of absolute magnitudes 1 and 2",
        "Stars of absolute magnitudes -1 and 0",  "Stars of absolute magnitudes -3 and -2",
        "Stars of absolute magnitudes -5 and -4", "Stars of absolute magnitude -6 or less"};
    for (int m = 6; m >= 1; --m)
        orb_row(steps, sg, r++, absolute[6 - m], "orb_6_mag" + std::to_string(m) + "_");
    auto* set9 = new QLabel("STAR ORB SET 9 is the combination of 7 and 8. The smaller of the "
                            "two orbs will be used.",
                            steps);
    set9->setWordWrap(true);
    sg->addWidget(set9, r++, 0, 1, 6);
    sg->setColumnStretch(5, 1);
    middle->addWidget(steps);
    middle->addStretch(1);
    columns->addLayout(middle, 1);

    // Star charts and the analysis pages.
    auto* right = new QVBoxLayout;
    auto* charts = make_group(this, "star_chart_options", "STAR CHARTS");
    auto* cg = new QGridLayout(charts);
    r = 0;
    cg->addWidget(caption(charts, "Zodiac width (1 to 5)"), r, 0);
    cg->addWidget(option_field(charts, "star_zodiac_width", 2), r++, 1, Qt::AlignLeft);
    cg->addWidget(caption(charts, "Additional stars up to magnitude"), r, 0);
    cg->addWidget(option_field(charts, "additional_by_magnitude", 4), r++, 1, Qt::AlignLeft);
    const std::pair<const char*, const char*> boxes[] = {
        {"additional_ophiuchus", "Include the Zodiacal stars of the constellation Ophiuchus"},
        {"additional_non_zodiac", "Include non-zodiacal stars"},
        {"display_zodiac_lines", "Draw the zodiac lines"},
        {"display_planets", "Show the planets on the star ring"},
        {"display_outer_circle", "Draw the outer circle of the star ring"},
        {"display_ecliptic", "Draw the ecliptic"},
        {"display_equator", "Draw the equator"},
        {"display_horizon", "Draw the horizon"},
        {"display_meridian", "Draw the meridian"},
        {"d_mega_colours", "Show mega stars in colours"},
        {"charts_conj_stars", "Show the stars conjunct in chart pages"},
    };
    for (const auto& [field, text] : boxes)
        cg->addWidget(option_check(charts, field, text), r++, 0, 1, 2);
    cg->addWidget(caption(charts, "Orb set of those stars"), r, 0);
    cg->addWidget(option_list(charts, "charts_conj_orb_set"), r++, 1, Qt::AlignLeft);
    cg->addWidget(caption(charts, "Conjunctions measured in"), r, 0);
    cg->addWidget(option_list(charts, "charts_conj_orb_type"), r++, 1);
    cg->setColumnStretch(1, 1);
    right->addWidget(charts);

    auto* analysis = make_group(this, "star_analysis_options", "STAR ANALYSIS");
    auto* ag = new QGridLayout(analysis);
    ag->addWidget(heading(analysis, "Charts: star group"), 0, 1);
    ag->addWidget(heading(analysis, "Orb set"), 0, 2);
    ag->addWidget(heading(analysis, "Listings: star group"), 0, 3);
    ag->addWidget(heading(analysis, "Orb set"), 0, 4);
    const std::pair<const char*, const char*> kinds[] = {
        {"longitude", "Longitude"}, {"long_lat", "Long. and Lat."}, {"horizon", "Horizon"}};
    r = 1;
    for (const auto& [kind, text] : kinds) {
        ag->addWidget(caption(analysis, text), r, 0);
        int column = 1;
        for (const char* use : {"charts", "listings"}) {
            const std::string prefix = std::string(use) + "_" + kind;
            ag->addWidget(option_list(analysis, (prefix + "_star_group").c_str()), r, column++);
            ag->addWidget(option_list(analysis, (prefix + "_orb_set").c_str()), r, column++);
        }
        ++r;
    }
    ag->setColumnStretch(1, 1);
    ag->setColumnStretch(3, 1);
    right->addWidget(analysis);
    right->addStretch(1);
    columns->addLayout(right, 1);

    auto* bottom = new QHBoxLayout;
    auto* exit = make_button(this, "star_options_exit", "EXIT");
    exit->setMinimumHeight(30);
    bottom->addStretch(1);
    bottom->addWidget(exit);
    layout->addLayout(bottom);
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
}

void StarOptionsWindow::enter() {
    shown_.clear();
    for (auto& [field, value] : load_option_screen(session(), sink()))
        shown_[field] = value_text(value).toStdString();
    show_values();
    show();
    raise();
    activateWindow();
}

void StarOptionsWindow::fill_lists() {
    const std::vector<std::string> groups = star_analysis_groups(session());
    for (auto& [field, list] : lists_) {
        list->clear();
        if (field == "charts_conj_orb_type")
            for (const char* t : conjunction_orb_types) list->addItem(t);
        else if (field.ends_with("_star_group"))
            for (const std::string& g : groups) list->addItem(stored_text(g));
        else
            for (const char* n : orb_set_numbers) list->addItem(n);
        // A stored value the list does not offer (a group renamed since) still shows.
        const QString stored = stored_text(shown_[field]);
        if (list->findText(stored) < 0) list->addItem(stored);
        list->setCurrentText(stored);
    }
}

void StarOptionsWindow::show_values() {
    filling_ = true;
    for (auto& [field, f] : fields_) f->setText(qt(shown_[field]));
    for (auto& [field, c] : checks_) c->setChecked(text_to_number(shown_[field]) != 0);
    fill_lists();
    filling_ = false;
}

// ---- NAME STAR GROUPS ---------------------------------------------------------------------------

NameStarGroupsWindow::NameStarGroupsWindow(Desktop& desktop, std::function<void()> left)
    : CelestarkWindow(desktop, "NAME_STAR_GROUPS", "NAME STAR GROUPS"), left_(std::move(left)) {
    auto* layout = new QVBoxLayout(this);
    auto* box = make_group(this, "star_group_names", "THE NAMES OF THE TWELVE STAR GROUPS");
    auto* form = new QFormLayout(box);
    for (int g = 1; g <= 12; ++g) {
        QLineEdit* f = make_field(box, ("star_" + std::to_string(g)).c_str());
        f->setMaxLength(40);
        f->setMinimumWidth(280);
        names_.push_back(f);
        form->addRow("Star group " + QString::number(g), f);
        connect(f, &QLineEdit::editingFinished, this, [this, g] { write(g); });
    }
    layout->addWidget(box);
    auto* exit = make_button(this, "star_groups_exit", "EXIT");
    layout->addWidget(exit, 0, Qt::AlignRight);
    connect(exit, &QPushButton::clicked, this, [this] {
        leave_name_star_groups(session(), sink());
        hide();
        if (left_) left_();
    });
    shown_.resize(12);
}

void NameStarGroupsWindow::enter() {
    const auto names = star_group_names(session());
    for (std::size_t g = 0; g < names.size(); ++g) {
        shown_[g] = names[g];
        names_[g]->setText(stored_text(names[g]));
    }
    show();
    raise();
    activateWindow();
}

void NameStarGroupsWindow::write(int group) {
    const std::size_t k = static_cast<std::size_t>(group - 1);
    QLineEdit* f = names_[k];
    if (!f->isModified()) return;
    f->setModified(false);
    const std::string name = trim(f->text().toStdString());
    auto refuse = [&](const char* title, const std::string& text) {
        sink().message(title, text, MessageIcon::exclamation);
        f->setText(stored_text(shown_[k]));
    };
    if (name.empty()) return refuse("NO GROUP NAME", "A star group must have a name");
    // A name must tell its group apart from every other group of the lists.
    std::vector<std::string> taken = {zodiac_group,   chart_group,       excluded_group,
                                      no_star_group,  zodiac_star_group, chart_star_group,
                                      all_stars_group};
    for (std::size_t o = 0; o < shown_.size(); ++o)
        if (o != k) taken.push_back(shown_[o]);
    for (const std::string& t : taken)
        if (to_upper(trim(t)) == to_upper(name))
            return refuse("GROUP NAME IN USE", "Another star group is named " + name);
    if (set_star_group_name(session(), group, name, sink()) == Outcome::ok) shown_[k] = name;
    f->setText(stored_text(shown_[k]));
}

// ---- FIXED POINTS -------------------------------------------------------------------------------

FixedPointsWindow::FixedPointsWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "FIXED_POINTS", "FIXED POINTS") {
    auto* layout = new QHBoxLayout(this);
    auto* left = new QVBoxLayout;
    left->addWidget(new QLabel("Fixed points (click one to edit it):", this));
    fixed_list_ = make_list_box(this, "fixed_list");
    fixed_list_->setMinimumWidth(260);
    left->addWidget(fixed_list_, 1);
    layout->addLayout(left, 1);

    auto* right = new QVBoxLayout;
    frame_ = make_group(this, "edit_fixed_point", "EDIT FIXED POINT");
    auto* form = new QFormLayout(frame_);
    name_ = make_field(frame_, "fixed_name");
    name_->setMaxLength(50);
    name_->setMinimumWidth(260);
    active_ = make_check(frame_, "fixed_active", "Active");
    degs_ = make_field(frame_, "fixed_degs", 3);
    mins_ = make_field(frame_, "fixed_mins", 3);
    world_view_ = make_list(frame_, "fixed_world_view");
    for (const char* w : fixed_world_views) world_view_->addItem(w);
    zodiac_ = make_list(frame_, "fixed_zodiac");
    sigil_ = make_field(frame_, "fixed_sigil", 1);
    sigil_->setReadOnly(true);
    sigil_->setStyleSheet(read_only_style);
    sigil_view_ = new GlyphView(frame_, "fixed_sigil_view");
    auto* sigil_row = new QHBoxLayout;
    sigil_row->addWidget(sigil_);
    sigil_row->addWidget(sigil_view_);
    sigil_row->addStretch(1);
    form->addRow("Description", name_);
    form->addRow("", active_);
    form->addRow("Degrees", degs_);
    form->addRow("Minutes", mins_);
    form->addRow("World view", world_view_);
    form->addRow("Zodiac", zodiac_);
    form->addRow("Assigned Sigil", sigil_row);
    right->addWidget(frame_);
    right->addStretch(1);
    auto* exit = make_button(this, "fixed_exit", "EXIT");
    right->addWidget(exit, 0, Qt::AlignRight);
    layout->addLayout(right, 1);
    frame_->setEnabled(false);

    connect(fixed_list_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!filling_) show_point(row);
    });
    for (QLineEdit* f : {name_, degs_, mins_}) {
        const std::string control = f->objectName().toStdString();
        connect(f, &QLineEdit::editingFinished, this, [this, f, control] {
            if (!f->isModified()) return;
            f->setModified(false);
            write(control, f->text().toStdString());
        });
    }
    connect(active_, &QCheckBox::clicked, this,
            [this](bool on) { write("fixed_active", on ? "True" : "False"); });
    connect(world_view_, &QComboBox::currentTextChanged, this,
            [this](const QString& view) { write("fixed_world_view", view.toStdString()); });
    connect(zodiac_, &QComboBox::currentTextChanged, this,
            [this](const QString& zodiac) { write("fixed_zodiac", zodiac.toStdString()); });
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
    resize(680, 400);
}

void FixedPointsWindow::enter() {
    filling_ = true;
    zodiac_->clear();
    for (const std::string& z : fixed_zodiac_list(session(), sink())) zodiac_->addItem(qt(z));
    filling_ = false;
    fill_list(bookmark_);
    show();
    raise();
    activateWindow();
}

void FixedPointsWindow::fill_list(const std::string& keep_bookmark) {
    lines_ = fixed_list(session());
    filling_ = true;
    fixed_list_->clear();
    int keep = -1;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        fixed_list_->addItem(stored_text(lines_[i].text));
        if (!keep_bookmark.empty() && lines_[i].bookmark == keep_bookmark)
            keep = static_cast<int>(i);
    }
    fixed_list_->setCurrentRow(keep);
    filling_ = false;
    show_point(keep);
}

void FixedPointsWindow::show_point(int row) {
    bookmark_ = row >= 0 && static_cast<std::size_t>(row) < lines_.size()
                    ? lines_[static_cast<std::size_t>(row)].bookmark
                    : std::string();
    shown_ = bookmark_.empty() ? FixedPointWindow() : show_fixed_point(session(), bookmark_);
    show_fields();
}

void FixedPointsWindow::show_fields() {
    filling_ = true;
    frame_->setEnabled(!bookmark_.empty());
    name_->setText(stored_text(shown_.fixed_name));
    active_->setChecked(shown_.fixed_active);
    degs_->setText(qt(shown_.fixed_degs));
    mins_->setText(qt(shown_.fixed_mins));
    world_view_->setCurrentIndex(world_view_->findText(qt(shown_.fixed_world_view)));
    // A zodiac that is no longer in the zodiac table still shows as the point's own.
    if (!shown_.fixed_zodiac.empty() && zodiac_->findText(stored_text(shown_.fixed_zodiac)) < 0)
        zodiac_->addItem(stored_text(shown_.fixed_zodiac));
    zodiac_->setCurrentIndex(zodiac_->findText(stored_text(shown_.fixed_zodiac)));
    sigil_->setText(glyph_text(shown_.fixed_sigil));
    sigil_view_->set_code(shown_.fixed_sigil);
    filling_ = false;
}

void FixedPointsWindow::write(const std::string& control, const std::string& text) {
    if (bookmark_.empty() || filling_) return;
    const Outcome o = set_fixed_field(session(), bookmark_, control, text, sink());
    if (o == Outcome::ok && control == "fixed_name") {
        fill_list(bookmark_);
        return;
    }
    shown_ = show_fixed_point(session(), bookmark_);
    show_fields();
}

// ---- The commands -------------------------------------------------------------------------------

namespace {

struct StarWindows {
    std::unique_ptr<StarDatabaseWindow> database;
    std::unique_ptr<StarOptionsWindow> options;
    std::unique_ptr<NameStarGroupsWindow> groups;
    std::unique_ptr<FixedPointsWindow> fixed;
};

} // namespace

void add_star_windows(Desktop& desktop) {
    auto windows = std::make_shared<StarWindows>();
    StarWindows* w = windows.get();
    desktop.add_command("star_database_options", [&desktop, windows] {
        if (!windows->database) windows->database = std::make_unique<StarDatabaseWindow>(desktop);
        windows->database->enter();
    });
    desktop.add_command("star_options_config", [&desktop, windows] {
        if (!windows->options) windows->options = std::make_unique<StarOptionsWindow>(desktop);
        windows->options->enter();
    });
    desktop.add_command("star_groups", [&desktop, windows, w] {
        // The other windows show the new names once the groups are named.
        if (!windows->groups)
            windows->groups = std::make_unique<NameStarGroupsWindow>(desktop, [w] {
                if (w->database && w->database->isVisible()) w->database->refresh_groups();
                if (w->options && w->options->isVisible()) w->options->enter();
            });
        windows->groups->enter();
    });
    desktop.add_command("Fixed_points_activate", [&desktop, windows] {
        if (!windows->fixed) windows->fixed = std::make_unique<FixedPointsWindow>(desktop);
        windows->fixed->enter();
    });
}

} // namespace celestark::screens
