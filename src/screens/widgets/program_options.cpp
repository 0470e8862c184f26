// Program_options, the display and print options.
#include "screens/widgets/program_options.h"

#include "screens/program_options.h"
#include "screens/widgets/desktop.h"
#include "session/session.h"
#include "store/option_schema.h"
#include "store/option_store.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <cctype>
#include <memory>
#include <set>

namespace celestark::screens {

namespace {

// The columns of the window, top to bottom; the last group spans the width under them.
const std::vector<std::vector<std::string>> columns = {
    {"Date Entry and Display", "Time Format", "Include SECONDS for:-", "Saving Events",
     "Your Name and Address"},
    {"Planetary Positions", "Display Planets and Houses", "CHART CENTRE", "MOON'S NODE",
     "MOON'S PERIGEE", "HELIOCENTRIC ELEMENTS", "Exclude from aspects", "Minimum Linewidths"},
    {"Zodiac Direction", "House Direction", "House Type", "Ascendant/House relationship",
     "Incluse Stars, Planetoids, Asteroids and Parts",
     "Include EPOCH to BIRTH SECTORS in prenatal charts", "Printer"},
};
constexpr const char* spanning_group = "Additional features";

// Groups of a few short captions, laid out across.
const std::set<std::string> across = {"Date Entry and Display",
                                      "Time Format",
                                      "Planetary Positions",
                                      "CHART CENTRE",
                                      "MOON'S NODE",
                                      "MOON'S PERIGEE",
                                      "HELIOCENTRIC ELEMENTS",
                                      "Zodiac Direction",
                                      "House Direction",
                                      "House Type",
                                      "Exclude from aspects"};

// The help link of a group: a small button at its foot.
const std::map<std::string, std::pair<const char*, const char*>> help_links = {
    {"Planetary Positions", {"apparent", "About apparent and actual positions"}},
    {"HELIOCENTRIC ELEMENTS", {"osculating", "About osculating and mean values"}},
    {"Incluse Stars, Planetoids, Asteroids and Parts",
     {"Picture1", "About the bodies and points included"}},
    {spanning_group, {"extra", "About the additional features"}},
};

// A group box's object name from its caption: "MOON'S NODE" becomes "f_moon_s_node".
std::string group_name(const std::string& caption) {
    std::string name = "f_";
    for (char c : caption) {
        const auto u = static_cast<unsigned char>(c);
        if (std::isalnum(u))
            name += static_cast<char>(std::tolower(u));
        else if (name.back() != '_')
            name += '_';
    }
    while (name.back() == '_') name.pop_back();
    return name;
}

int text_width(const char* field) {
    if (const store::OptionTableDef* t = store::option_table(store::general_options_table))
        for (const store::FieldDef& f : t->fields)
            if (f.name == field && f.width > 0) return f.width;
    return 0;
}

} // namespace

ProgramOptionsWindow::ProgramOptionsWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "Program_options", "CHART DISPLAY AND PRINT OPTIONS") {
    std::map<std::string, QGroupBox*> groups;
    std::map<std::string, QBoxLayout*> layouts;
    for (const std::string& caption : option_groups()) {
        QGroupBox* g = make_group(this, group_name(caption).c_str(), qt(caption));
        groups[caption] = g;
        if (across.count(caption)) {
            layouts[caption] = new QHBoxLayout(g);
            layouts[caption]->setSpacing(14);
        } else {
            layouts[caption] = new QVBoxLayout(g);
            layouts[caption]->setSpacing(3);
        }
    }

    // A change of the text forms (dates, clock, seconds) shows at once in the other windows.
    for (const OptionButton& b : option_buttons()) {
        QRadioButton* r = make_radio(groups[b.group], b.control, b.caption);
        layouts[b.group]->addWidget(r);
        buttons_[b.control] = r;
        const OptionButton* button = &b;
        connect(r, &QRadioButton::clicked, this, [this, button] {
            if (!choose_option_button(session(), *button, sink()))
                show_stored();
            else if (button->table == std::string(store::general_options_table))
                this->desktop().refresh_chart_window();
        });
    }

    // The additional features lay out two short captions on one line, the atlas under them.
    auto* features = new QGridLayout;
    layouts[spanning_group]->addLayout(features);
    int feature = 0;
    for (const OptionCheck& c : option_checks()) {
        QCheckBox* box = make_check(groups[c.group], c.control, c.caption);
        checks_[c.control] = box;
        if (c.group == std::string(spanning_group)) {
            const bool wide = feature >= 2;
            features->addWidget(box, wide ? 1 : 0, wide ? 0 : feature, 1, wide ? 2 : 1);
            ++feature;
        } else {
            layouts[c.group]->addWidget(box);
        }
        const OptionCheck* check = &c;
        connect(box, &QCheckBox::clicked, this, [this, check](bool ticked) {
            if (!tick_option_check(session(), *check, ticked, sink()))
                show_stored();
            else if (check->table == std::string(store::general_options_table))
                this->desktop().refresh_chart_window();
        });
    }

    std::map<std::string, QGridLayout*> forms;
    for (const OptionText& t : option_texts()) {
        QGridLayout*& form = forms[t.group];
        if (!form) {
            form = new QGridLayout;
            form->setColumnStretch(1, 1);
            layouts[t.group]->addLayout(form);
        }
        const int row = form->rowCount();
        QLineEdit* field = make_field(groups[t.group], t.control, t.line_width ? 3 : 0);
        if (!t.line_width) {
            field->setMinimumWidth(260);
            if (const int width = text_width(t.field); width > 0) field->setMaxLength(width);
        }
        QLabel* label =
            make_label(groups[t.group], (std::string(t.control) + "_label").c_str(), t.caption);
        label->setBuddy(field);
        form->addWidget(label, row, 0);
        form->addWidget(field, row, 1, Qt::AlignLeft);
        texts_[t.control] = field;
        const std::string control = t.control;
        connect(field, &QLineEdit::editingFinished, this, [this, control] { leave_text(control); });
    }

    for (const std::string& group : across) layouts[group]->addStretch(1);
    for (const auto& [group, link] : help_links) {
        auto* b = new QToolButton(groups[group]);
        b->setObjectName(link.first);
        b->setText("?");
        b->setToolTip(link.second);
        layouts[group]->addWidget(b, 0, Qt::AlignRight | Qt::AlignBottom);
        const std::string name = link.first;
        connect(b, &QToolButton::clicked, this, [this, name] { help(name); });
    }

    auto* layout = new QVBoxLayout(this);
    auto* row = new QHBoxLayout;
    layout->addLayout(row);
    for (const auto& column : columns) {
        auto* col = new QVBoxLayout;
        for (const std::string& caption : column) col->addWidget(groups[caption]);
        col->addStretch(1);
        row->addLayout(col);
    }
    auto* foot = new QHBoxLayout;
    foot->addWidget(groups[spanning_group], 1);
    auto* exit = make_button(this, "exit", "EXIT");
    exit->setMinimumSize(110, 34);
    connect(exit, &QPushButton::clicked, this, [this] { exit_window(); });
    foot->addWidget(exit, 0, Qt::AlignBottom);
    layout->addLayout(foot);
}

void ProgramOptionsWindow::show_stored() {
    const OptionControlStates states = program_options_states(session(), sink());
    for (const auto& [control, button] : buttons_) {
        // A stored value that matches no button of its group leaves them all clear.
        button->setAutoExclusive(false);
        button->setChecked(states.checked.at(control));
        button->setAutoExclusive(true);
    }
    for (const auto& [control, box] : checks_) box->setChecked(states.checked.at(control));
    for (const auto& [control, field] : texts_) field->setText(qt(states.texts.at(control)));
}

void ProgramOptionsWindow::open() {
    show_stored();
    show();
    raise();
    activateWindow();
}

void ProgramOptionsWindow::leave_text(const std::string& control) {
    const OptionText* text = find_option_text(control);
    QLineEdit* field = texts_.at(control);
    if (!text || !field->isModified()) return;
    // Cleared first: a box of the check takes the focus and leaves the field once more.
    field->setModified(false);
    const OptionTextResult r = leave_option_text(session(), *text, text_of(field), sink());
    // What is not stored is not shown: the field goes back to the stored value.
    if (r != OptionTextResult::stored)
        field->setText(
            qt(read_option(session(), store::general_options_table, text->field).as_text()));
}

void ProgramOptionsWindow::exit_window() {
    // A field being typed in is left first.
    for (const auto& [control, field] : texts_)
        if (field->hasFocus()) leave_text(control);
    hide();
    read_chart_options(session());
    desktop().refresh_chart_window();
}

void ProgramOptionsWindow::help(const std::string& link) {
    sink().message(product_word, option_help_text(link), MessageIcon::information);
}

void add_option_windows(Desktop& desktop) {
    auto window = std::make_shared<std::unique_ptr<ProgramOptionsWindow>>();
    desktop.add_command("chart_options", [&desktop, window] {
        if (!*window) *window = std::make_unique<ProgramOptionsWindow>(desktop);
        (*window)->open();
    });
}

} // namespace celestark::screens
