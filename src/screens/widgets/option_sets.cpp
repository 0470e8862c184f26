// The zodiac, aspect set and colour set windows.
#include "screens/widgets/option_sets.h"

#include "drawing/program_fonts.h"
#include "screens/option_set_screens.h"
#include "screens/widgets/desktop.h"
#include "session/session.h"
#include "session/text.h"
#include "store/option_sets.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

namespace celestark::screens {

namespace {

constexpr std::array<const char*, 12> sign_captions = {
    "Aries", "Taurus",  "Gemini",      "Cancer",    "Leo",      "Virgo",
    "Libra", "Scorpio", "Sagittarius", "Capricorn", "Aquarius", "Pisces"};

void set_list_text(QComboBox* box, const std::string& text) {
    const int i = box->findText(qt(text));
    if (i >= 0) box->setCurrentIndex(i);
}

QPushButton* command_button(QWidget* parent, const char* name, const char* caption) {
    QPushButton* b = make_button(parent, name, caption);
    b->setMinimumSize(100, 30);
    return b;
}

// A window's command, opened from the main window: made at the first call, then opened again.
template <typename Window> void add_window_command(Desktop& desktop, const char* command) {
    auto window = std::make_shared<std::unique_ptr<Window>>();
    desktop.add_command(command, [&desktop, window] {
        if (!*window) *window = std::make_unique<Window>(desktop);
        (*window)->open();
    });
}

} // namespace

// ---------------------------------------------------------------------------------------------
// SIDEREAL ZODIAC OPTIONS

ZodiacOptionsWindow::ZodiacOptionsWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "SIDEREAL_ZODIAC", "SIDEREAL ZODIAC OPTIONS") {
    auto* layout = new QVBoxLayout(this);

    auto* top = new QHBoxLayout;
    top->addWidget(make_label(this, "edit_zodiac_label", "Zodiac to edit"));
    list_ = make_list(this, "Edit_zodiac");
    list_->setToolTip("Select the sidereal zodiac you wish to edit");
    list_->setMinimumWidth(240);
    top->addWidget(list_, 1);
    layout->addLayout(top);

    auto* zodiac = make_group(this, "f_zodiac", "Zodiac");
    auto* form = new QGridLayout(zodiac);
    form->setColumnStretch(2, 1);
    int row = 0;
    const auto add_row = [&](const char* name, const char* caption, QWidget* field) {
        QLabel* label = make_label(zodiac, name, caption);
        label->setBuddy(field);
        form->addWidget(label, row, 0);
        form->addWidget(field, row++, 1, Qt::AlignLeft);
    };
    name_ = make_field(zodiac, "z_name");
    name_->setMinimumWidth(240);
    name_->setMaxLength(40);
    add_row("z_name_label", "Name", name_);
    defined_ = make_list(zodiac, "z_defined", true);
    defined_->addItems({"Star", "Epoch"});
    add_row("z_defined_label", "Defined by", defined_);
    constellation_ = make_list(zodiac, "z_constellation", true);
    constellation_->addItems({"Equal", "Unequal"});
    add_row("z_constellation_label", "Constellations", constellation_);
    for (QComboBox* box : {defined_, constellation_}) box->setMinimumWidth(120);

    star_part_ = new QWidget(zodiac);
    auto* star_row = new QHBoxLayout(star_part_);
    star_row->setContentsMargins(0, 0, 0, 0);
    star_ = make_list(star_part_, "z_star", true);
    for (const char* star : zodiac_stars) star_->addItem(star);
    star_->setMinimumWidth(140);
    auto* star_label = make_label(star_part_, "z_star_label", "Star");
    star_label->setBuddy(star_);
    star_row->addWidget(star_);
    star_row->addStretch(1);
    form->addWidget(star_label, row, 0);
    form->addWidget(star_part_, row++, 1, 1, 2);

    position_caption_ = make_label(zodiac, "z_position_label");
    form->addWidget(position_caption_, row++, 0, 1, 3);
    auto* position = new QHBoxLayout;
    deg_ = make_field(zodiac, "z_deg", 3);
    min_ = make_field(zodiac, "z_min", 2);
    sec_ = make_field(zodiac, "z_sec", 2);
    position->addWidget(deg_);
    position->addWidget(make_label(zodiac, "z_deg_unit", "deg"));
    position->addWidget(min_);
    position->addWidget(make_label(zodiac, "z_min_unit", "min"));
    position->addWidget(sec_);
    position->addWidget(make_label(zodiac, "z_sec_unit", "sec"));
    position->addStretch(1);
    form->addLayout(position, row++, 1, 1, 2);

    epoch_part_ = new QWidget(zodiac);
    auto* epoch = new QVBoxLayout(epoch_part_);
    epoch->setContentsMargins(0, 0, 0, 0);
    epoch->setSpacing(2);
    hint_ = make_label(epoch_part_, "z_date_hint");
    epoch->addWidget(hint_);
    date_row_ = new QHBoxLayout;
    day_ = make_field(epoch_part_, "z_day", 2);
    month_ = make_field(epoch_part_, "z_month", 2);
    year_ = make_field(epoch_part_, "z_year", 5);
    gj_ = make_field(epoch_part_, "z_gj", 1);
    gj_->setMaxLength(1);
    for (QLineEdit* f : {day_, month_, year_, gj_}) date_row_->addWidget(f);
    date_row_->addStretch(1);
    epoch->addLayout(date_row_);
    auto* epoch_label = make_label(zodiac, "z_date_label", "Date");
    form->addWidget(epoch_label, row, 0, Qt::AlignBottom);
    form->addWidget(epoch_part_, row++, 1, 1, 2);
    star_label_ = star_label;
    epoch_label_ = epoch_label;
    layout->addWidget(zodiac);

    unequal_ = make_group(this, "f_unequal", "Constellation Boundaries");
    auto* bounds = new QGridLayout(unequal_);
    for (int c = 0; c < 2; ++c) {
        bounds->addWidget(make_label(unequal_, nullptr, "Degrees"), 0, c * 3 + 1);
        bounds->addWidget(make_label(unequal_, nullptr, "Minutes"), 0, c * 3 + 2);
    }
    bounds->setColumnMinimumWidth(3, 30);
    for (std::size_t i = 0; i < 12; ++i) {
        const std::string z = "z" + std::to_string(i + 1);
        const int r = static_cast<int>(i % 6) + 1, c = static_cast<int>(i / 6) * 3;
        degs_[i] = make_field(unequal_, (z + "_degs").c_str(), 3);
        mins_[i] = make_field(unequal_, (z + "_mins").c_str(), 2);
        QLabel* sign = make_label(unequal_, (z + "_label").c_str(), sign_captions[i]);
        sign->setBuddy(degs_[i]);
        bounds->addWidget(sign, r, c);
        bounds->addWidget(degs_[i], r, c + 1);
        bounds->addWidget(mins_[i], r, c + 2);
    }
    layout->addWidget(unequal_);
    layout->addStretch(1);

    auto* commands = new QHBoxLayout;
    auto* add = command_button(this, "z_new", "NEW ZODIAC");
    auto* save = command_button(this, "z_save", "SAVE");
    delete_ = command_button(this, "z_delete", "DELETE");
    auto* exit = command_button(this, "z_exit", "EXIT");
    for (QPushButton* b : {add, save, delete_}) commands->addWidget(b);
    commands->addStretch(1);
    commands->addWidget(exit);
    layout->addLayout(commands);

    connect(list_, &QComboBox::currentTextChanged, this,
            [this](const QString& name) { pick(name.toStdString()); });
    for (QLineEdit* f : findChildren<QLineEdit*>())
        connect(f, &QLineEdit::textEdited, this, [this] { edited(); });
    for (QComboBox* box : {defined_, constellation_, star_})
        connect(box, &QComboBox::currentTextChanged, this, [this] {
            if (filling_) return;
            edited();
            show_parts();
        });
    connect(defined_->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (!filling_) zodiac_defined_left(defined_->currentText().toStdString(), sink());
    });
    connect(constellation_->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (!filling_)
            zodiac_constellation_left(constellation_->currentText().toStdString(), sink());
    });
    // A change of the date option shows at once in the hint and the order of the date fields.
    connect(&desktop, &Desktop::slots_changed, this, [this] {
        if (isVisible()) show_parts();
    });
    connect(add, &QPushButton::clicked, this, [this] { new_zodiac(); });
    connect(save, &QPushButton::clicked, this, [this] { this->save(); });
    connect(delete_, &QPushButton::clicked, this, [this] { remove(); });
    connect(exit, &QPushButton::clicked, this, [this] { exit_window(); });
}

void ZodiacOptionsWindow::open() {
    // Already open, it keeps what is being typed.
    if (isVisible()) {
        raise();
        activateWindow();
        return;
    }
    const std::vector<std::string> names = zodiac_list(session());
    std::string target = session().chart.zodiac;
    if (zodiac_bookmark(session(), target).empty()) target = names.front();
    const std::string bookmark = zodiac_bookmark(session(), target);
    w_ = bookmark.empty() ? new_zodiac_window() : zodiac_to_window(session(), bookmark);
    fill_list(target);
    show_record();
    show();
    raise();
    activateWindow();
}

void ZodiacOptionsWindow::fill_list(const std::string& selected) {
    filling_ = true;
    list_->clear();
    for (const std::string& name : zodiac_list(session())) list_->addItem(qt(name));
    set_list_text(list_, selected);
    listed_ = list_->currentText().toStdString();
    filling_ = false;
}

void ZodiacOptionsWindow::show_record() {
    filling_ = true;
    name_->setText(qt(w_.z_name));
    defined_->setCurrentText(qt(trim(w_.z_defined)));
    constellation_->setCurrentText(qt(trim(w_.z_constellation)));
    star_->setCurrentText(qt(trim(w_.z_star)));
    const std::pair<QLineEdit*, const std::string*> fields[] = {
        {deg_, &w_.z_deg},     {min_, &w_.z_min},   {sec_, &w_.z_sec}, {day_, &w_.z_day},
        {month_, &w_.z_month}, {year_, &w_.z_year}, {gj_, &w_.z_gj}};
    for (const auto& [field, text] : fields) field->setText(qt(trim(*text)));
    for (std::size_t i = 0; i < 12; ++i) {
        degs_[i]->setText(qt(trim(w_.z_degs[i])));
        mins_[i]->setText(qt(trim(w_.z_mins[i])));
    }
    filling_ = false;
    show_parts();
}

void ZodiacOptionsWindow::collect() {
    w_.z_name = text_of(name_);
    w_.z_defined = defined_->currentText().toStdString();
    w_.z_constellation = constellation_->currentText().toStdString();
    w_.z_star = star_->currentText().toStdString();
    w_.z_deg = text_of(deg_);
    w_.z_min = text_of(min_);
    w_.z_sec = text_of(sec_);
    w_.z_day = text_of(day_);
    w_.z_month = text_of(month_);
    w_.z_year = text_of(year_);
    w_.z_gj = text_of(gj_);
    for (std::size_t i = 0; i < 12; ++i) {
        w_.z_degs[i] = text_of(degs_[i]);
        w_.z_mins[i] = text_of(mins_[i]);
    }
}

void ZodiacOptionsWindow::show_parts() {
    collect();
    const ZodiacWindowParts parts = zodiac_window_parts(session(), w_);
    const bool resized = unequal_->isVisibleTo(this) != parts.boundaries ||
                         epoch_part_->isVisibleTo(this) != parts.epoch;
    // The label of a hidden part goes with it.
    for (QWidget* w : {star_part_, static_cast<QWidget*>(star_label_)}) w->setVisible(parts.star);
    for (QWidget* w : {epoch_part_, static_cast<QWidget*>(epoch_label_)})
        w->setVisible(parts.epoch);
    position_caption_->setText(parts.epoch ? "Position of the vernal point in this zodiac on the "
                                             "date below"
                                           : "Longitude of the star in this zodiac");
    unequal_->setVisible(parts.boundaries);
    name_->setEnabled(!parts.name_locked);
    delete_->setEnabled(!parts.name_locked && !w_.bookmark.empty());
    // The date fields in the order of the hint.
    hint_->setText(qt(zodiac_date_hint(session())));
    const bool day_first = session().options.text.date_format;
    date_row_->removeWidget(day_);
    date_row_->removeWidget(month_);
    date_row_->insertWidget(0, day_first ? day_ : month_);
    date_row_->insertWidget(1, day_first ? month_ : day_);
    setTabOrder(day_first ? day_ : month_, day_first ? month_ : day_);
    setTabOrder(day_first ? month_ : day_, year_);
    // The window fits the parts that show.
    if (resized) adjustSize();
}

void ZodiacOptionsWindow::edited() {
    if (!filling_) w_.changed = true;
}

void ZodiacOptionsWindow::pick(const std::string& name) {
    if (filling_ || name.empty() || name == "NO SIDEREAL ZODIACS TO EDIT") return;
    collect();
    if (!zodiac_leave(session(), w_, sink())) {
        filling_ = true;
        set_list_text(list_, listed_);
        filling_ = false;
        return;
    }
    const std::string bookmark = zodiac_bookmark(session(), name);
    if (!bookmark.empty()) w_ = zodiac_to_window(session(), bookmark);
    fill_list(bookmark.empty() ? listed_ : name);
    show_record();
}

void ZodiacOptionsWindow::new_zodiac() {
    collect();
    if (!zodiac_leave(session(), w_, sink())) return;
    w_ = new_zodiac_window();
    show_record();
    name_->setFocus();
}

void ZodiacOptionsWindow::save() {
    collect();
    std::string focus;
    if (zodiac_window_save(session(), w_, sink(), &focus) != ZodiacSave::saved) {
        focus_field(focus);
        return;
    }
    fill_list(trim(w_.z_name));
    show_record();
}

void ZodiacOptionsWindow::focus_field(const std::string& field) {
    if (field == "z_degs" || field == "z_mins") {
        const auto& fields = field == "z_degs" ? degs_ : mins_;
        for (QLineEdit* f : fields)
            if (trim(text_of(f)).empty()) {
                f->setFocus();
                return;
            }
    }
    if (field.empty()) return;
    if (auto* w = findChild<QWidget*>(qt(field))) w->setFocus();
}

void ZodiacOptionsWindow::remove() {
    collect();
    switch (delete_zodiac(session(), w_, sink())) {
    case ZodiacDelete::deleted: {
        const std::string first = zodiac_list(session()).front();
        const std::string bookmark = zodiac_bookmark(session(), first);
        w_ = bookmark.empty() ? new_zodiac_window() : zodiac_to_window(session(), bookmark);
        fill_list(first);
        show_record();
        break;
    }
    case ZodiacDelete::in_use:
        sink().message(product_word, "This zodiac is used by the options and cannot be deleted",
                       MessageIcon::exclamation);
        break;
    case ZodiacDelete::failed:
        sink().message(product_word, "The zodiac could not be deleted", MessageIcon::exclamation);
        break;
    default:
        break;
    }
}

void ZodiacOptionsWindow::exit_window() {
    collect();
    if (!zodiac_leave(session(), w_, sink())) return;
    hide();
    desktop().refresh_chart_window();
}

// ---------------------------------------------------------------------------------------------
// The aspects window

SigilView::SigilView(QWidget* parent) : QWidget(parent) {
    setObjectName("sigil");
    setFixedSize(44, 44);
    setToolTip("Aspect glyph - if a standard aspect");
}

void SigilView::set_code(unsigned char code) {
    if (code == code_) return;
    code_ = code;
    update();
}

void SigilView::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(palette().color(QPalette::Mid));
    p.drawRect(rect().adjusted(0, 0, -1, -1));
    if (code_ == ' ') return;
    const auto& fonts = drawing::ProgramFonts::instance();
    const std::string codes(1, static_cast<char>(code_));
    const double em = height() * 0.62;
    const double w = fonts.width_em(drawing::ProgramFont::planet_symbols, codes) * em;
    const double h = (fonts.ascent_em(drawing::ProgramFont::planet_symbols) +
                      fonts.descent_em(drawing::ProgramFont::planet_symbols)) *
                     em;
    fonts.draw(p, drawing::ProgramFont::planet_symbols,
               QPointF((width() - w) / 2, (height() - h) / 2), em, codes,
               palette().color(QPalette::WindowText), 0, false);
}

namespace {

struct OrbRow {
    const char* caption;
    const char* degrees;
    const char* minutes;
};
constexpr std::array<OrbRow, 5> orb_rows = {{
    {"Sun", "sun_degs", "sun_mins"},
    {"Moon", "moon_degs", "moon_mins"},
    {"Planets and houses", "planets_degs", "planets_mins"},
    {"Stars and fixed points", "stars_degs", "stars_mins"},
    {"Elements, asteroids and parts", "elements_degs", "elements_mins"},
}};

// The window's text fields and the record's strings, by control name.
std::string* aspect_text(AspectWindow& w, const std::string& field) {
    static const std::map<std::string, std::string AspectWindow::*> members = {
        {"angle_degs", &AspectWindow::angle_degs},
        {"angle_mins", &AspectWindow::angle_mins},
        {"asp_digraph", &AspectWindow::asp_digraph},
        {"sun_degs", &AspectWindow::sun_degs},
        {"sun_mins", &AspectWindow::sun_mins},
        {"moon_degs", &AspectWindow::moon_degs},
        {"moon_mins", &AspectWindow::moon_mins},
        {"planets_degs", &AspectWindow::planets_degs},
        {"planets_mins", &AspectWindow::planets_mins},
        {"stars_degs", &AspectWindow::stars_degs},
        {"stars_mins", &AspectWindow::stars_mins},
        {"elements_degs", &AspectWindow::elements_degs},
        {"elements_mins", &AspectWindow::elements_mins},
    };
    const auto it = members.find(field);
    return it == members.end() ? nullptr : &(w.*(it->second));
}

} // namespace

AspectSetsWindow::AspectSetsWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "ASPECTS", "ASPECTS") {
    auto* layout = new QVBoxLayout(this);
    auto* head = new QGridLayout;
    choices_ = make_list(this, "edit_aspect");
    choices_->setToolTip("Select the aspect set you wish to edit");
    choices_->setMinimumWidth(220);
    name_ = make_field(this, "aspect_set_name");
    name_->setMinimumWidth(220);
    name_->setMaxLength(40);
    QLabel* set_label = make_label(this, "edit_aspect_label", "Aspect set to edit");
    set_label->setBuddy(choices_);
    QLabel* name_label = make_label(this, "aspect_set_name_label", "Name of the set");
    name_label->setBuddy(name_);
    head->addWidget(set_label, 0, 0);
    head->addWidget(choices_, 0, 1, Qt::AlignLeft);
    head->addWidget(name_label, 1, 0);
    head->addWidget(name_, 1, 1, Qt::AlignLeft);
    head->setColumnStretch(2, 1);
    layout->addLayout(head);

    auto* body = new QHBoxLayout;
    auto* rows = make_group(this, "f_aspects", "Aspects");
    auto* rows_layout = new QVBoxLayout(rows);
    list_ = make_list_box(rows, "list_of_aspects");
    list_->setFixedWidth(110);
    list_->setToolTip("The aspects of the set: degrees:minutes");
    rows_layout->addWidget(list_);
    body->addWidget(rows);

    auto* aspect = make_group(this, "f_aspect", "Aspect");
    auto* grid = new QGridLayout(aspect);
    const auto field = [&](const char* name, int characters) {
        QLineEdit* f = make_field(aspect, name, characters);
        fields_[name] = f;
        return f;
    };
    auto* angle = new QHBoxLayout;
    angle->addWidget(field("angle_degs", 3));
    angle->addWidget(make_label(aspect, "angle_degs_unit", "deg"));
    angle->addWidget(field("angle_mins", 2));
    angle->addWidget(make_label(aspect, "angle_mins_unit", "min"));
    angle->addStretch(1);
    QLabel* angle_label = make_label(aspect, "angle_label", "Angle");
    angle_label->setBuddy(fields_["angle_degs"]);
    grid->addWidget(angle_label, 0, 0);
    grid->addLayout(angle, 0, 1, 1, 2);
    sigil_ = new SigilView(aspect);
    grid->addWidget(sigil_, 0, 3, 2, 1, Qt::AlignRight | Qt::AlignTop);
    QLabel* digraph_label = make_label(aspect, "asp_digraph_label", "Digraph");
    digraph_label->setBuddy(field("asp_digraph", 2));
    fields_["asp_digraph"]->setMaxLength(2);
    grid->addWidget(digraph_label, 1, 0);
    grid->addWidget(fields_["asp_digraph"], 1, 1, Qt::AlignLeft);
    aspectogram_ = make_check(aspect, "aspectogram", "Include in Aspectogram");
    grid->addWidget(aspectogram_, 2, 0, 1, 3);

    auto* orbs = make_group(aspect, "f_orbs", "Orbs");
    auto* orb_grid = new QGridLayout(orbs);
    orb_grid->addWidget(make_label(orbs, "orb_degrees_label", "Degrees"), 0, 1);
    orb_grid->addWidget(make_label(orbs, "orb_minutes_label", "Minutes"), 0, 2);
    for (std::size_t i = 0; i < orb_rows.size(); ++i) {
        const OrbRow& r = orb_rows[i];
        QLineEdit* degrees = make_field(orbs, r.degrees, 2);
        QLineEdit* minutes = make_field(orbs, r.minutes, 2);
        fields_[r.degrees] = degrees;
        fields_[r.minutes] = minutes;
        QLabel* label = make_label(orbs, (std::string(r.degrees) + "_label").c_str(), r.caption);
        label->setBuddy(degrees);
        const int row = static_cast<int>(i) + 1;
        orb_grid->addWidget(label, row, 0);
        orb_grid->addWidget(degrees, row, 1);
        orb_grid->addWidget(minutes, row, 2);
    }
    orb_grid->setColumnStretch(3, 1);
    orb_grid->addWidget(make_label(orbs, "orb_note", "The aspect is ignored if the ORB is 0"),
                        static_cast<int>(orb_rows.size()) + 1, 0, 1, 4);
    grid->addWidget(orbs, 3, 0, 1, 4);
    grid->setRowStretch(4, 1);
    body->addWidget(aspect, 1);
    layout->addLayout(body, 1);

    auto* commands = new QHBoxLayout;
    auto* add_set = command_button(this, "add_aspect_set", "NEW ASPECT SET");
    auto* add_row = command_button(this, "add_new_aspect", "NEW ASPECT");
    auto* save = command_button(this, "save", "SAVE");
    auto* remove = command_button(this, "delete_aspect", "DELETE ASPECT");
    auto* exit = command_button(this, "exit_aspects", "EXIT");
    for (QPushButton* b : {add_set, add_row, save, remove}) commands->addWidget(b);
    commands->addStretch(1);
    commands->addWidget(exit);
    layout->addLayout(commands);

    connect(choices_, &QComboBox::currentTextChanged, this,
            [this](const QString& name) { choose_set(name.toStdString()); });
    connect(list_, &QListWidget::currentRowChanged, this, [this](int row) { pick_line(row); });
    for (const auto& [name, f] : fields_) {
        const bool angle_field = name == "angle_degs" || name == "angle_mins";
        connect(f, &QLineEdit::textEdited, this, [this, angle_field] {
            edited();
            if (angle_field) {
                collect();
                sigil_->set_code(aspect_sigil(w_));
            }
        });
    }
    connect(name_, &QLineEdit::textEdited, this, [this] { edited(); });
    connect(name_, &QLineEdit::editingFinished, this, [this] {
        if (filling_ || !name_->isModified()) return;
        name_->setModified(false);
        w_.aspect_set_name = text_of(name_);
        aspect_name_left(session(), w_, sink());
    });
    connect(aspectogram_, &QCheckBox::clicked, this, [this] { edited(); });
    connect(add_set, &QPushButton::clicked, this, [this] { new_set(); });
    connect(add_row, &QPushButton::clicked, this, [this] { new_row(); });
    connect(save, &QPushButton::clicked, this, [this] { this->save(); });
    connect(remove, &QPushButton::clicked, this, [this] { this->remove(); });
    connect(exit, &QPushButton::clicked, this, [this] { exit_window(); });
}

void AspectSetsWindow::open() {
    // Already open, it keeps what is being typed.
    if (isVisible()) {
        raise();
        activateWindow();
        return;
    }
    const std::vector<std::string> sets = aspect_edit_choices(session());
    const auto stored = [&](const std::string& name) {
        return !name.empty() && std::find(sets.begin(), sets.end(), name) != sets.end();
    };
    std::string target = trim(w_.aspect_set_name);
    if (w_.new_set || !stored(target)) target = session().chart.aspect_set_charts;
    if (!stored(target)) target = sets.front();
    fill_choices(target);
    if (target == no_aspect_sets_text) {
        aspect_new_set(w_);
        aspect_new(w_);
    } else {
        aspect_edit(session(), w_, target);
    }
    const std::string first = pick_first_aspect();
    show_row();
    show_list(first);
    show();
    raise();
    activateWindow();
}

void AspectSetsWindow::fill_choices(const std::string& selected) {
    filling_ = true;
    choices_->clear();
    for (const std::string& name : aspect_edit_choices(session())) choices_->addItem(qt(name));
    set_list_text(choices_, selected);
    chosen_set_ = choices_->currentText().toStdString();
    filling_ = false;
}

void AspectSetsWindow::show_list(const std::string& selected_line) {
    filling_ = true;
    list_->clear();
    for (const std::string& line : w_.list_of_aspects) list_->addItem(qt(line));
    picked_row_ = -1;
    for (int i = 0; i < list_->count(); ++i)
        if (list_->item(i)->text().toStdString() == selected_line) picked_row_ = i;
    list_->setCurrentRow(picked_row_);
    filling_ = false;
}

void AspectSetsWindow::show_row() {
    filling_ = true;
    name_->setText(qt(w_.aspect_set_name));
    name_->setModified(false);
    for (const auto& [name, field] : fields_)
        if (const std::string* text = aspect_text(w_, name)) field->setText(qt(*text));
    aspectogram_->setChecked(w_.aspectogram);
    sigil_->set_code(aspect_sigil(w_));
    filling_ = false;
}

void AspectSetsWindow::collect() {
    w_.aspect_set_name = text_of(name_);
    for (const auto& [name, field] : fields_)
        if (std::string* text = aspect_text(w_, name)) *text = text_of(field);
    w_.aspectogram = aspectogram_->isChecked();
}

void AspectSetsWindow::edited() {
    if (!filling_) w_.changed = true;
}

void AspectSetsWindow::choose_set(const std::string& name) {
    if (filling_ || name.empty() || name == no_aspect_sets_text) return;
    collect();
    if (!aspect_leave(session(), w_, sink())) {
        filling_ = true;
        set_list_text(choices_, chosen_set_);
        filling_ = false;
        return;
    }
    aspect_edit(session(), w_, name);
    fill_choices(name);
    const std::string first = pick_first_aspect();
    show_row();
    show_list(first);
}

std::string AspectSetsWindow::pick_first_aspect() {
    // A set opens on its first aspect, so that its fields are never blank by surprise.
    if (w_.list_of_aspects.empty()) return "";
    const std::string first = w_.list_of_aspects.front();
    aspect_pick(session(), w_, first);
    return first;
}

void AspectSetsWindow::pick_line(int row) {
    if (filling_ || row < 0) return;
    const std::string line = list_->item(row)->text().toStdString();
    collect();
    if (!aspect_leave(session(), w_, sink())) {
        show_list(picked_row_ >= 0 ? list_->item(picked_row_)->text().toStdString() : "");
        return;
    }
    // A save on the way may have changed the lines; the row is sought by its angle.
    aspect_pick(session(), w_, line);
    show_row();
    show_list(line);
}

void AspectSetsWindow::new_row() {
    collect();
    if (!aspect_leave(session(), w_, sink())) return;
    aspect_new(w_);
    show_row();
    show_list("");
    fields_["angle_degs"]->setFocus();
}

void AspectSetsWindow::new_set() {
    collect();
    if (!aspect_leave(session(), w_, sink())) return;
    aspect_new_set(w_);
    // The first row of the new set starts from nought, as a new row does.
    aspect_new(w_);
    show_row();
    show_list("");
    name_->setFocus();
}

void AspectSetsWindow::focus_field(const std::string& field) {
    if (field == "aspect_set_name") {
        name_->setFocus();
    } else if (const auto it = fields_.find(field); it != fields_.end()) {
        it->second->setFocus();
        it->second->selectAll();
    }
}

void AspectSetsWindow::save() {
    collect();
    // The check is made first here, for the field that takes the focus.
    RecordingSink quiet;
    if (const AspectCheck c = check_aspect_window(w_, quiet); !c.ok) {
        sink().input_error(c.message);
        sink().show_input_errors();
        focus_field(c.field);
        return;
    }
    const AspectSave r = aspect_save(session(), w_, sink());
    if (r == AspectSave::duplicate_name) focus_field("aspect_set_name");
    if (r != AspectSave::saved) return;
    const std::string line = std::to_string(text_to_i16(w_.angle_degs)) + ":" +
                             std::to_string(text_to_i16(w_.angle_mins));
    fill_choices(trim(w_.aspect_set_name));
    show_row();
    show_list(line);
    sets_changed();
}

void AspectSetsWindow::remove() {
    collect();
    switch (aspect_delete(session(), w_, sink())) {
    case AspectDelete::deleted:
        fill_choices(trim(w_.aspect_set_name));
        show_row();
        show_list("");
        sets_changed();
        break;
    case AspectDelete::no_row:
        sink().message(product_word, "Pick the aspect to delete in the list first",
                       MessageIcon::information);
        break;
    case AspectDelete::failed:
        sink().message(product_word, "The aspect could not be deleted", MessageIcon::exclamation);
        break;
    case AspectDelete::declined:
        break;
    }
}

void AspectSetsWindow::sets_changed() {
    // The charts' set takes the stored rows at once.
    Session& s = session();
    if (trim(w_.aspect_set_name) == trim(s.chart.aspect_set_charts))
        load_aspect_set(s, s.chart.aspect_set_charts, sink());
}

void AspectSetsWindow::exit_window() {
    collect();
    if (!aspect_leave(session(), w_, sink())) return;
    hide();
    load_aspect_set(session(), session().chart.aspect_set_charts, sink());
    desktop().refresh_chart_window();
}

// ---------------------------------------------------------------------------------------------
// COLOURS

namespace {

// A row of swatches: its caption and a field for each column (-1 for none).
struct SwatchRow {
    QString caption;
    std::vector<int> fields;
};
struct SwatchGroup {
    const char* name;
    const char* caption;
    QStringList columns;
    std::vector<SwatchRow> rows;
};

std::vector<SwatchGroup> swatch_groups() {
    using namespace colour_field;
    std::vector<SwatchGroup> groups;
    SwatchGroup signs{
        "f_signs", "Signs", {"Band", "Glyph on band", "Glyph inside", "Glyph outside"}, {}};
    for (int i = 0; i < 12; ++i)
        signs.rows.push_back({sign_captions[static_cast<std::size_t>(i)],
                              {aries_b + i, aries_g + i, aries_i + i, aries_o + i}});
    groups.push_back(signs);

    static constexpr const char* bodies[] = {
        "Sun",    "Moon",   "Mercury",   "Venus",     "Mars",    "Jupiter",
        "Saturn", "Uranus", "Neptune",   "Pluto",     "Sedna",   "Quaoar",
        "Earth",  "Chiron", "Midheaven", "Ascendant", "Perigee", "Moon's node"};
    SwatchGroup body{"f_bodies", "Bodies and points", {"Inside", "Outside"}, {}};
    for (int i = 0; i < 18; ++i) body.rows.push_back({bodies[i], {sun + i, sun_o + i}});
    groups.push_back(body);

    static constexpr const char* aspects[] = {
        "Nonile",      "Septile",    "Square",      "Opposition", "Trine",
        "Conjunction", "Quintile",   "Semisextile", "Sextile",    "Sesquiquadrate",
        "Semisquare",  "Biquintile", "Quincunx"};
    SwatchGroup aspect{"f_aspect_colours", "Aspects", {"Inside", "Outside"}, {}};
    for (int i = 0; i < 13; ++i) aspect.rows.push_back({aspects[i], {Nonile + i, nonile_o + i}});
    groups.push_back(aspect);

    groups.push_back({"f_stars",
                      "Stars, asteroids and eclipses",
                      {"Inside", "Outside"},
                      {{"Chart stars", {stars_in_charts, stars_in_charts_outside}},
                       {"Stars in the zodiac", {stars_in_zodiac, -1}},
                       {"Stars in conjunction", {stars_in_conjunction, -1}},
                       {"Mega stars", {mega_stars, -1}},
                       {"Asteroids", {asteroids, asteroids_outside}},
                       {"Solar eclipse", {Sun_eclipse, sun_eclipse_o}},
                       {"Lunar eclipse", {Moon_Eclipse, moon_eclipse_o}}}});
    groups.push_back({"f_lines",
                      "Text, lines and grounds",
                      {"Inside", "Outside"},
                      {{"Text", {text_inside, text_outside}},
                       {"Event name", {-1, name_outside}},
                       {"Lines", {Lines_inside, lines_outside}},
                       {"Chart background", {chart_background, -1}},
                       {"Inside background", {inside_background, -1}},
                       {"Embryo", {embryo_colour, -1}}}});
    groups.push_back({"f_star_wheel",
                      "Star wheel lines",
                      {"Colour"},
                      {{"Ecliptic", {ecliptic}},
                       {"Equator", {equator}},
                       {"Horizon", {horizon}},
                       {"Meridian", {meridian}}}});
    return groups;
}

// The control of a colour field: named as the field, but the sign glyph colours inside and
// outside the wheel as `aries_gi` and `aries_go`.
std::string swatch_name(int field) {
    const std::string f(colour_field_names[static_cast<std::size_t>(field)]);
    if ((field >= colour_field::aries_i && field <= colour_field::pisces_i) ||
        (field >= colour_field::aries_o && field <= colour_field::pisces_o))
        return f.substr(0, f.size() - 2) + "_g" + f.back();
    return f;
}

struct Choice {
    int field;
    const char* caption;
};
constexpr std::array<Choice, 5> colour_choices = {{
    {colour_field::constellation_lines, "Constellation lines across the band"},
    {colour_field::flow_colours, "Colours flowing from sign to sign"},
    {colour_field::stars_as_glyphs, "Stars drawn as glyphs"},
    {colour_field::stars_as_planets, "Stars coloured as planets"},
    {colour_field::print_embryo, "Print the embryo"},
}};

QColor swatch_colour(std::int32_t bgr) {
    return drawing::to_qcolor(static_cast<Colour>(bgr));
}

} // namespace

ColourSetsWindow::ColourSetsWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "COLOURS", "COLOURS SETS USED TO DISPLAY CHARTS AND") {
    auto* layout = new QHBoxLayout(this);

    auto* side_panel = new QWidget(this);
    side_panel->setFixedWidth(250);
    auto* side = new QVBoxLayout(side_panel);
    side->setContentsMargins(0, 0, 0, 0);
    auto* sets_label = make_label(this, "colour_sets_label", "Colour sets");
    list_ = make_list_box(this, "COLOUR_SETS");
    list_->setMinimumHeight(110);
    sets_label->setBuddy(list_);
    side->addWidget(sets_label);
    side->addWidget(list_, 1);
    auto* name_label = make_label(this, "colour_set_name_label", "Name of the set");
    name_ = make_field(this, "colour_set_name");
    name_->setMaxLength(40);
    name_label->setBuddy(name_);
    side->addWidget(name_label);
    side->addWidget(name_);
    auto* use_label = make_label(this, "display_or_printer_label", "Used for");
    use_ = make_list(this, "display_or_printer");
    use_->addItems({"Display", "Printer"});
    use_label->setBuddy(use_);
    side->addWidget(use_label);
    side->addWidget(use_);

    auto* choices = make_group(this, "f_choices", "Choices");
    auto* choice_layout = new QVBoxLayout(choices);
    for (const Choice& c : colour_choices) {
        QCheckBox* box = make_check(
            choices, std::string(colour_field_names[static_cast<std::size_t>(c.field)]).c_str(),
            c.caption);
        choices_[c.field] = box;
        choice_layout->addWidget(box);
        const int field = c.field;
        connect(box, &QCheckBox::clicked, this, [this, field](bool on) {
            if (!filling_) set_choice(w_, field, on);
        });
    }
    side->addWidget(choices);
    for (const auto& [name, caption] : std::initializer_list<std::pair<const char*, const char*>>{
             {"NEW_SET", "NEW SET"}, {"save", "SAVE"}, {"delete", "DELETE"}}) {
        QPushButton* b = command_button(this, name, caption);
        side->addWidget(b);
    }
    side->addSpacing(8);
    auto* info = command_button(this, "colour_info", "ABOUT COLOUR SETS");
    side->addWidget(info);
    auto* exit = command_button(this, "exit", "EXIT");
    side->addWidget(exit);
    layout->addWidget(side_panel);

    // The swatches: signs, then bodies and aspects, then the rest in one column.
    std::vector<QGroupBox*> boxes;
    for (const SwatchGroup& g : swatch_groups()) {
        QGroupBox* box = make_group(this, g.name, g.caption);
        auto* grid = new QGridLayout(box);
        grid->setHorizontalSpacing(8);
        grid->setVerticalSpacing(3);
        for (int c = 0; c < g.columns.size(); ++c) {
            QLabel* head = make_label(box, nullptr, g.columns[c]);
            head->setAlignment(Qt::AlignCenter);
            head->setWordWrap(true);
            head->setMaximumWidth(64);
            grid->addWidget(head, 0, c + 1, Qt::AlignHCenter | Qt::AlignBottom);
        }
        int row = 1;
        for (const SwatchRow& r : g.rows) {
            grid->addWidget(make_label(box, nullptr, r.caption), row, 0);
            for (std::size_t c = 0; c < r.fields.size(); ++c) {
                const int field = r.fields[c];
                if (field < 0) continue;
                QPushButton* swatch = make_button(box, swatch_name(field).c_str(), QString());
                swatch->setFixedSize(40, 18);
                swatch->setFocusPolicy(Qt::TabFocus);
                swatch->setToolTip(r.caption + " - " + g.columns[static_cast<int>(c)].toLower());
                swatches_[field] = swatch;
                connect(swatch, &QPushButton::clicked, this,
                        [this, field] { swatch_clicked(field); });
                grid->addWidget(swatch, row, static_cast<int>(c) + 1, Qt::AlignHCenter);
            }
            ++row;
        }
        grid->setRowStretch(row, 1);
        boxes.push_back(box);
    }
    auto* signs = new QVBoxLayout;
    signs->addWidget(boxes[0]);
    signs->addWidget(boxes[5]);
    signs->addStretch(1);
    layout->addLayout(signs);
    layout->addWidget(boxes[1], 0, Qt::AlignTop);
    auto* rest = new QVBoxLayout;
    rest->addWidget(boxes[2]);
    rest->addStretch(1);
    layout->addLayout(rest);
    auto* more = new QVBoxLayout;
    more->addWidget(boxes[3]);
    more->addWidget(boxes[4]);
    more->addStretch(1);
    layout->addLayout(more);

    chooser = [this](std::optional<std::int32_t> start) { return ask_colour(start); };

    connect(list_, &QListWidget::currentTextChanged, this,
            [this](const QString& name) { pick(name.toStdString()); });
    connect(name_, &QLineEdit::textEdited, this, [this](const QString& text) {
        w_.name = text.toStdString();
        w_.changed = true;
    });
    connect(use_, &QComboBox::currentTextChanged, this, [this](const QString& text) {
        if (filling_) return;
        w_.display_or_printer = text.toStdString();
        w_.changed = true;
    });
    connect(findChild<QPushButton*>("NEW_SET"), &QPushButton::clicked, this, [this] { new_set(); });
    connect(findChild<QPushButton*>("save"), &QPushButton::clicked, this, [this] { save(); });
    connect(findChild<QPushButton*>("delete"), &QPushButton::clicked, this, [this] { remove(); });
    connect(info, &QPushButton::clicked, this, [this] {
        sink().message(
            product_word,
            "Each swatch shows one colour of the set: click it to choose another colour. A sign "
            "has a colour for its sector of the band, for its glyph on the band, and for its "
            "glyph inside and outside the wheel; bodies and aspects have one colour inside the "
            "wheel and one outside it.\n\n"
            "NEW SET starts a new set from the colours shown: give it a name and SAVE it. No set "
            "can be called None, which always means black and white.",
            MessageIcon::information);
    });
    connect(exit, &QPushButton::clicked, this, [this] { exit_window(); });
}

std::optional<std::int32_t> ColourSetsWindow::ask_colour(std::optional<std::int32_t> start) {
    const QColor chosen =
        QColorDialog::getColor(start ? swatch_colour(*start) : QColor(Qt::white), this, "Colour");
    if (!chosen.isValid()) return std::nullopt;
    return static_cast<std::int32_t>(chosen.red() | (chosen.green() << 8) | (chosen.blue() << 16));
}

void ColourSetsWindow::open() {
    if (isVisible()) {
        raise();
        activateWindow();
        return;
    }
    const std::vector<std::string> names = colour_set_list(session());
    if (names.empty()) {
        sink().message(product_word, no_colour_sets, MessageIcon::information);
        hide();
        return;
    }
    const auto stored = [&](const std::string& name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    std::string target = w_.name;
    if (w_.bookmark.empty() || !stored(target)) target = session().chart.display_colour_set;
    if (!stored(target)) target = names.front();
    if (auto set = colour_set_to_window(session(), target)) w_ = *set;
    fill_list(target);
    show_record();
    show();
    raise();
    activateWindow();
}

bool ColourSetsWindow::fill_list(const std::string& selected) {
    filling_ = true;
    list_->clear();
    const std::vector<std::string> names = colour_set_list(session());
    for (const std::string& name : names) list_->addItem(qt(name));
    const auto found = list_->findItems(qt(selected), Qt::MatchExactly);
    list_->setCurrentItem(found.isEmpty() ? nullptr : found.front());
    listed_ = found.isEmpty() ? std::string() : selected;
    filling_ = false;
    return !names.empty();
}

void ColourSetsWindow::show_swatch(int field) {
    QPushButton* swatch = swatches_.at(field);
    const auto colour = swatch_start(w_, field);
    swatch->setStyleSheet(colour ? QString("QPushButton { background-color: %1; border: 1px solid "
                                           "#606060; }")
                                       .arg(swatch_colour(*colour).name())
                                 : QString("QPushButton { background-color: transparent; border: "
                                           "1px dashed #909090; }"));
}

void ColourSetsWindow::show_record() {
    filling_ = true;
    name_->setText(qt(w_.name));
    const QString use = qt(trim(w_.display_or_printer));
    if (!use.isEmpty() && use_->findText(use) < 0) use_->addItem(use);
    use_->setCurrentIndex(use.isEmpty() ? -1 : use_->findText(use));
    for (const auto& [field, swatch] : swatches_) show_swatch(field);
    for (const auto& [field, box] : choices_)
        box->setChecked(w_.values[static_cast<std::size_t>(field)] != 0);
    filling_ = false;
}

void ColourSetsWindow::swatch_clicked(int field) {
    choose_swatch(w_, field, chooser(swatch_start(w_, field)));
    show_swatch(field);
}

void ColourSetsWindow::pick(const std::string& name) {
    if (filling_ || name.empty() || name == listed_) return;
    if (!pick_colour_set(session(), w_, name, sink())) {
        fill_list(listed_);
        return;
    }
    fill_list(name);
    show_record();
}

void ColourSetsWindow::new_set() {
    if (!offer_save_colours(session(), w_, sink())) return;
    new_colour_set(session(), w_, sink());
    fill_list("");
    show_record();
    name_->setFocus();
}

void ColourSetsWindow::save() {
    w_.name = text_of(name_);
    switch (save_colour_set(session(), w_, sink())) {
    case ColourSave::saved:
        fill_list(w_.name);
        show_record();
        break;
    case ColourSave::bad_name:
    case ColourSave::duplicate_name:
        name_->setFocus();
        break;
    case ColourSave::failed:
        break;
    }
}

void ColourSetsWindow::remove() {
    if (w_.bookmark.empty()) {
        sink().message(product_word,
                       "This colour set has not been saved: there is nothing to delete",
                       MessageIcon::information);
        return;
    }
    switch (delete_colour_set(session(), w_, sink())) {
    case ColourDelete::deleted: {
        const std::vector<std::string> names = colour_set_list(session());
        if (names.empty()) {
            fill_list("");
            sink().message(product_word, no_colour_sets, MessageIcon::information);
            hide();
            desktop().refresh_chart_window();
            return;
        }
        if (auto set = colour_set_to_window(session(), names.front())) w_ = *set;
        fill_list(names.front());
        show_record();
        break;
    }
    case ColourDelete::failed:
        sink().message(product_word, "The colour set could not be deleted",
                       MessageIcon::exclamation);
        break;
    case ColourDelete::declined:
        break;
    }
}

void ColourSetsWindow::exit_window() {
    w_.name = text_of(name_);
    if (!exit_colour_window(session(), w_, sink())) return;
    hide();
    load_active_colour_set(session(), sink());
    desktop().refresh_chart_window();
}

// ---------------------------------------------------------------------------------------------

void add_option_set_windows(Desktop& desktop) {
    add_window_command<ZodiacOptionsWindow>(desktop, "zodiac_options");
    add_window_command<AspectSetsWindow>(desktop, "aspect_set_options");
    add_window_command<ColourSetsWindow>(desktop, "colour_options");
}

} // namespace celestark::screens
