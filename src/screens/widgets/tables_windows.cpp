// The analysis database and ephemeris export windows.
#include "screens/widgets/tables_windows.h"

#include "screens/widgets/database_chooser.h"
#include "screens/widgets/desktop.h"

#include <QButtonGroup>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <memory>

namespace celestark::screens {

namespace {

QLabel* wrapped_text(QWidget* parent, const char* text) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    return label;
}

// The desktop's sink, with the run's progress also on the window's own bar.
class BarSink : public MessageSink {
  public:
    BarSink(MessageSink& inner, QProgressBar* bar) : inner_(inner), bar_(bar) {}
    void message(const std::string& t, const std::string& x, MessageIcon i) override {
        inner_.message(t, x, i);
    }
    bool ask(const std::string& t, const std::string& x) override { return inner_.ask(t, x); }
    void input_error(const std::string& line) override { inner_.input_error(line); }
    void show_input_errors() override { inner_.show_input_errors(); }
    void progress_begin(const std::string& caption, int steps) override {
        bar_->setRange(0, steps);
        bar_->setValue(0);
        inner_.progress_begin(caption, steps);
    }
    bool progress(int done) override {
        bar_->setValue(done);
        return inner_.progress(done);
    }
    void progress_label(const std::string& text) override { inner_.progress_label(text); }
    void progress_end() override {
        bar_->setValue(0);
        inner_.progress_end();
    }

  private:
    MessageSink& inner_;
    QProgressBar* bar_;
};

} // namespace

// ---- ALLDATA ------------------------------------------------------------------------------------

AnalysisWindow::AnalysisWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "ALLDATA", "CREATE THE CELESTARK ANALYSIS DATABASE"),
      chooser_(choose_folder_dialog) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(wrapped_text(this, analysis_screen_text));

    auto* columns = new QHBoxLayout;
    const FolderFrame folder =
        make_folder_frame(this,
                          {"analysis_databases", "analysis_dir", "analysis_drive", "analysis_files",
                           "Databases of the folder (click one):"},
                          160);
    folder_ = folder.folder;
    files_ = folder.files;
    columns->addWidget(folder.group, 3);

    const TableFrame table =
        make_table_frame(this,
                         {"analysis_table_group", "analysis_tables", "analysis_sel_table",
                          "Tables of the database (click one):"},
                         160);
    tables_ = table.tables;
    sel_table_ = table.selected;
    columns->addWidget(table.group, 2);
    layout->addLayout(columns, 1);

    auto* commands = new QHBoxLayout;
    auto* buttons = new QVBoxLayout;
    auto* add = make_button(this, "add_table", "ADD TABLE TO DATABASE");
    auto* clear = make_button(this, "clear_database", "CLEAR ANALYSIS DATABASE");
    auto* recalc =
        make_button(this, "recalculate_database", "RECALCULATE DATABASE WITH CURRENT ZODIAC");
    for (QPushButton* b : {add, clear, recalc}) {
        b->setMinimumHeight(30);
        buttons->addWidget(b);
    }
    commands->addLayout(buttons, 2);
    auto* count = make_group(this, "events_frame", "Number of events in database");
    auto* cl = new QVBoxLayout(count);
    no_events_ = make_label(count, "no_events", "0");
    QFont big = no_events_->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    no_events_->setFont(big);
    no_events_->setAlignment(Qt::AlignCenter);
    cl->addWidget(no_events_);
    commands->addWidget(count, 1);
    layout->addLayout(commands);

    auto* bottom = new QHBoxLayout;
    auto* exit = make_button(this, "exit_alldata", "EXIT");
    exit->setMinimumHeight(30);
    bottom->addStretch(1);
    bottom->addWidget(exit);
    layout->addLayout(bottom);

    connect_folder_choice(
        this, folder, &chooser_, [this] { return shown_folder(screen_.choice.db_dir); },
        [this](const QString& f) { choose_folder(f); });
    connect(files_, &QListWidget::itemClicked, this, [this](QListWidgetItem* i) { pick_file(i); });
    connect(tables_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* i) { pick_table(i); });
    connect(add, &QPushButton::clicked, this, [this] {
        {
            BusyPointer busy;
            add_analysis_table(session(), screen_, sink());
        }
        show_state();
    });
    connect(clear, &QPushButton::clicked, this, [this] {
        clear_analysis_screen(screen_, sink());
        show_state();
    });
    connect(recalc, &QPushButton::clicked, this, [this] {
        {
            BusyPointer busy;
            recalculate_analysis_screen(session(), screen_, sink());
        }
        show_state();
    });
    connect(exit, &QPushButton::clicked, this, &QWidget::hide);
    resize(860, 560);
}

void AnalysisWindow::enter() {
    enter_analysis_screen(session(), screen_);
    show_state();
    show();
    raise();
    activateWindow();
}

void AnalysisWindow::show_state() {
    folder_->setText(shown_folder(screen_.choice.db_dir));
    list_lines(files_, screen_.choice.db_files);
    for (int i = 0; i < files_->count(); ++i)
        if (files_->item(i)->text().toStdString() == screen_.choice.sel_file)
            files_->setCurrentRow(i);
    list_lines(tables_, screen_.choice.table_list);
    sel_table_->setText(qt(screen_.choice.sel_table));
    no_events_->setText(QString::number(screen_.no_events));
}

void AnalysisWindow::choose_folder(const QString& folder) {
    const QString path = existing_folder(folder, sink());
    if (path.isEmpty()) {
        folder_->setText(shown_folder(screen_.choice.db_dir));
        return;
    }
    choose_analysis_folder(screen_, QDir(path).absolutePath().toStdString());
    show_state();
}

void AnalysisWindow::pick_file(QListWidgetItem* item) {
    if (!item) return;
    pick_analysis_database(screen_, item->text().toStdString(), sink());
    list_lines(tables_, screen_.choice.table_list);
    sel_table_->clear();
}

void AnalysisWindow::pick_table(QListWidgetItem* item) {
    if (!item) return;
    pick_analysis_table(screen_, item->text().toStdString());
    sel_table_->setText(qt(screen_.choice.sel_table));
}

// ---- EPHEMERIS_TO_FILE --------------------------------------------------------------------------

EphemerisExportWindow::EphemerisExportWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "EPHEMERIS_TO_FILE", "SAVE EPHEMERIS TO DISK") {
    auto* layout = new QVBoxLayout(this);

    auto* years = make_group(this, "years", "ENTER THE STAR AND FINISH YEAR FOR THE EPHEMERIS");
    auto* yl = new QGridLayout(years);
    int row = 0;
    for (const auto& [name, caption] :
         {std::pair{"start_year", "Start year"}, {"end_year", "Finish year"}}) {
        fields_[name] = make_field(years, name, 8);
        yl->addWidget(new QLabel(caption, years), row, 0);
        yl->addWidget(fields_[name], row++, 1);
    }
    yl->addWidget(new QLabel("Enter for example year -35 for 36BC", years), row, 0, 1, 2);
    yl->setColumnStretch(2, 1);

    auto* calendar = make_group(this, "calendar", "SELECT REQUIRED CALENDER");
    auto* cl = new QVBoxLayout(calendar);
    auto* calendars = new QButtonGroup(this);
    for (const auto& [name, caption] :
         {std::pair{"gregorian", "GREGORIAN"}, {"julian", "JULIAN"}}) {
        options_[name] = make_radio(calendar, name, caption);
        calendars->addButton(options_[name]);
        cl->addWidget(options_[name]);
    }
    auto* top = new QHBoxLayout;
    top->addWidget(years, 2);
    top->addWidget(calendar, 1);
    layout->addLayout(top);

    auto* file = make_group(this, "file", "ENTER THE FILE NAME");
    auto* fl = new QGridLayout(file);
    fields_["file_name"] = make_field(file, "file_name", 20);
    fl->addWidget(fields_["file_name"], 0, 0);
    fl->addWidget(new QLabel("Letters and digits only", file), 0, 1);
    auto* formats = new QButtonGroup(this);
    int f = 1;
    for (const auto& [name, caption] :
         {std::pair{"sqlite_format", "One SQLite database NAME.mdb with the four tables"},
          {"csv_format", "A folder NAME with one CSV file per world view"}}) {
        options_[name] = make_radio(file, name, caption);
        formats->addButton(options_[name]);
        fl->addWidget(options_[name], f++, 0, 1, 2);
    }
    fl->setColumnStretch(1, 1);
    layout->addWidget(file);

    layout->addWidget(wrapped_text(this, ephemeris_export_text));
    folder_ = make_label(this, "folder");
    folder_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(folder_);

    bar_ = new QProgressBar(this);
    bar_->setObjectName("ephem_done");
    bar_->setRange(0, 100);
    bar_->setValue(0);
    layout->addWidget(bar_);

    auto* buttons = new QHBoxLayout;
    auto* start_button = make_button(this, "start", "START");
    auto* cancel_button = make_button(this, "cancel", "EXIT");
    for (QPushButton* b : {start_button, cancel_button}) b->setMinimumHeight(30);
    buttons->addWidget(start_button);
    buttons->addStretch(1);
    buttons->addWidget(cancel_button);
    layout->addLayout(buttons);
    connect(start_button, &QPushButton::clicked, this, [this] { start(); });
    connect(cancel_button, &QPushButton::clicked, this, &QWidget::hide);
    setMinimumWidth(560);
}

void EphemerisExportWindow::enter() {
    const EphemerisExportScreen defaults = ephemeris_export_defaults(session());
    for (auto& [name, field] : fields_) field->setText(qt(defaults.values.at(name)));
    for (auto& [name, option] : options_) option->setChecked(defaults.values.at(name) == "1");
    folder_path_ = defaults.folder;
    folder_->setText("Folder: " + shown_folder(folder_path_));
    bar_->setValue(0);
    adjustSize();
    show();
    raise();
    activateWindow();
}

EphemerisExportScreen EphemerisExportWindow::screen() const {
    EphemerisExportScreen m;
    for (const auto& [name, field] : fields_) m.values[name] = text_of(field);
    for (const auto& [name, option] : options_) m.values[name] = option->isChecked() ? "1" : "0";
    m.folder = folder_path_;
    return m;
}

ExportResult EphemerisExportWindow::start() {
    BarSink bar(sink(), bar_);
    return start_ephemeris_export(session(), screen(), bar);
}

void add_tables_windows(Desktop& desktop) {
    auto analysis = std::make_shared<std::unique_ptr<AnalysisWindow>>();
    desktop.add_command("analysis_database", [&desktop, analysis] {
        if (!*analysis) *analysis = std::make_unique<AnalysisWindow>(desktop);
        (*analysis)->enter();
    });
    auto ephemeris = std::make_shared<std::unique_ptr<EphemerisExportWindow>>();
    desktop.add_command("save_ephemeris", [&desktop, ephemeris] {
        if (!*ephemeris) *ephemeris = std::make_unique<EphemerisExportWindow>(desktop);
        (*ephemeris)->enter();
    });
}

} // namespace celestark::screens
