#include "screens/widgets/listing_windows.h"

#include "drawing/painter_surface.h"
#include "screens/widgets/desktop.h"
#include "screens/widgets/page_display.h"
#include "session/session.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace celestark::screens {

namespace {

// The sink of a listing run: boxes go to the window's sink, the advance to the window
// `listings_progress` with its CANCEL button.
class ListingProgressSink : public MessageSink {
  public:
    ListingProgressSink(QWidget* parent, MessageSink& outer) : parent_(parent), outer_(outer) {}
    ~ListingProgressSink() override { progress_end(); }
    void message(const std::string& title, const std::string& text, MessageIcon icon) override {
        outer_.message(title, text, icon);
    }
    bool ask(const std::string& title, const std::string& text) override {
        return outer_.ask(title, text);
    }
    void input_error(const std::string& line) override { outer_.input_error(line); }
    void show_input_errors() override { outer_.show_input_errors(); }
    void progress_begin(const std::string& caption, int steps) override {
        dialog_ = std::make_unique<QProgressDialog>(qt(caption), "CANCEL", 0, std::max(1, steps),
                                                    parent_);
        dialog_->setObjectName("listings_progress");
        dialog_->setWindowTitle("LISTINGS");
        dialog_->setWindowModality(Qt::ApplicationModal);
        dialog_->setMinimumDuration(0);
        dialog_->setAutoClose(false);
        dialog_->setAutoReset(false);
        dialog_->setMinimumWidth(420);
        dialog_->setValue(0);
        clock_.start();
    }
    bool progress(int done) override {
        // The screen's events are let through a few times a second, which keeps CANCEL prompt.
        if (dialog_ && clock_.elapsed() >= 40) {
            dialog_->setValue(std::min(done, dialog_->maximum()));
            QCoreApplication::processEvents();
            clock_.restart();
        }
        const bool cancelled = dialog_ && dialog_->wasCanceled();
        return outer_.progress(done) || cancelled;
    }
    void progress_end() override { dialog_.reset(); }

  private:
    QWidget* parent_;
    MessageSink& outer_;
    std::unique_ptr<QProgressDialog> dialog_;
    QElapsedTimer clock_;
};

} // namespace

// ---- the windows that make listings -------------------------------------------------------------

void ListingMaker::enter() {
    bring_to_front(this);
}

void ListingMaker::deliver(const std::vector<Listing>& listings, bool printing) {
    if (!display_) return;
    if (printing) {
        display_->print_listings(listings);
        return;
    }
    display_->show_listings(listings, *this);
    hide();
}

ListingWindow::ListingWindow(Desktop& desktop, const char* name, ListingScreen& model)
    : ListingMaker(desktop, name, qt(model.title())), model_(model) {
    auto* layout = new QVBoxLayout(this);
    auto* frames = new QHBoxLayout;
    for (const std::string& frame : model_.frames()) {
        std::vector<const ListingControl*> in;
        for (const ListingControl& c : model_.controls())
            if (c.frame == frame) in.push_back(&c);
        std::string frame_name = "frame_" + frame;
        std::replace(frame_name.begin(), frame_name.end(), ' ', '_');
        auto* box = make_group(this, frame_name.c_str(), qt(frame));
        auto* grid = new QGridLayout(box);
        grid->setVerticalSpacing(2);
        const int rows =
            in.size() > 14 ? static_cast<int>((in.size() + 1) / 2) : static_cast<int>(in.size());
        for (std::size_t i = 0; i < in.size(); ++i) {
            const std::string control = in[i]->name;
            QCheckBox* check = make_check(box, control.c_str(), qt(in[i]->caption));
            connect(check, &QCheckBox::toggled, this,
                    [this, control](bool on) { model_.set(control, on); });
            grid->addWidget(check, static_cast<int>(i) % rows, static_cast<int>(i) / rows);
            boxes_[control] = check;
        }
        grid->setRowStretch(rows, 1);
        frames->addWidget(box, 0, Qt::AlignTop);
    }
    frames->addStretch(1);
    layout->addLayout(frames);

    auto* side = new QHBoxLayout;
    auto* clear = make_button(this, "clear", "CLEAR");
    clear->setToolTip("Clears every box of the window");
    connect(clear, &QPushButton::clicked, this, [this] {
        model_.clear();
        refresh();
    });
    side->addWidget(clear);
    if (model_.report() == planetary_listing) {
        // The heliocentric elements have a window of their own.
        auto* elements = make_button(this, "elements", "HELIOCENTRIC ELEMENTS");
        connect(elements, &QPushButton::clicked, this,
                [this] { this->desktop().run("list_elements"); });
        side->addWidget(elements);
    }
    side->addStretch(1);
    layout->addLayout(side);
    layout->addLayout(run_buttons(this, [this](bool printing) { run(printing); }));
}

void ListingWindow::open(bool separations) {
    model_.set_separations(separations);
    setWindowTitle(qt(model_.title()));
    refresh();
    layout()->activate();
    adjustSize();
    enter();
}

void ListingWindow::refresh() {
    for (auto& [name, box] : boxes_) {
        const QSignalBlocker quiet(box);
        box->setChecked(model_.on(name));
    }
}

void ListingWindow::run(bool printing) {
    ListingProgressSink progress(this, sink());
    bool made = false;
    {
        BusyPointer busy;
        made = model_.make(session(), progress);
    }
    if (made) deliver(model_.listings(), printing);
}

ListOnlyStarsWindow::ListOnlyStarsWindow(Desktop& desktop, ListOnlyStarsScreen& model)
    : ListingMaker(desktop, "list_only_stars", list_only_stars_title), model_(model) {
    auto* layout = new QVBoxLayout(this);
    auto* frames = new QHBoxLayout;
    const auto frame = [&](const char* name, const char* caption,
                           const std::vector<StarOrder>& choices, std::string& value) {
        auto* box = make_group(this, name, caption);
        auto* vl = new QVBoxLayout(box);
        vl->setSpacing(2);
        auto* group = new QButtonGroup(this);
        for (const StarOrder& o : choices) {
            QRadioButton* radio = make_radio(box, o.control, o.caption);
            group->addButton(radio);
            radio->setChecked(value == o.control);
            const std::string control = o.control;
            connect(radio, &QRadioButton::toggled, this, [&value, control](bool on) {
                if (on) value = control;
            });
            vl->addWidget(radio);
        }
        vl->addStretch(1);
        frames->addWidget(box);
    };
    frame("listing_order", "LISTING ORDER", star_listing_orders(), model_.order);
    frame("list_the_following", "LIST THE FOLLOWING STARS", star_listing_selections(),
          model_.selection);
    layout->addLayout(frames);
    layout->addLayout(run_buttons(this, [this](bool printing) { run(printing); }));
}

void ListOnlyStarsWindow::open() {
    layout()->activate();
    adjustSize();
    enter();
}

void ListOnlyStarsWindow::run(bool printing) {
    bool made = false;
    {
        BusyPointer busy;
        made = model_.make(session(), sink());
    }
    if (made) deliver({model_.listing()}, printing);
}

// ---- Listing_tables -----------------------------------------------------------------------------

ListingTablesWindow::ListingTablesWindow(Desktop& desktop, ListingTablesScreen& model)
    : CelestarkWindow(desktop, "Listing_tables", listing_tables_title), model_(model) {
    auto* layout = new QVBoxLayout(this);
    auto* heading = new QLabel(listing_tables_title, this);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    layout->addWidget(heading);
    auto* slot_grid = new QGridLayout;
    for (int n = 1; n <= listing_table_slots; ++n) {
        const std::string number = std::to_string(n);
        auto* add =
            make_button(this, ("add_table_" + number).c_str(), qt("ADD/CHANGE TABLE " + number));
        auto* remove =
            make_button(this, ("remove_table_" + number).c_str(), qt("REMOVE TABLE " + number));
        QLabel* line = make_label(this, ("table_" + number).c_str());
        line->setMinimumWidth(460);
        line->setTextInteractionFlags(Qt::TextSelectableByMouse);
        slot_grid->addWidget(add, n - 1, 0);
        slot_grid->addWidget(line, n - 1, 1);
        slot_grid->addWidget(remove, n - 1, 2);
        lines_.push_back(line);
        connect(add, &QPushButton::clicked, this, [this, n] { begin(n); });
        connect(remove, &QPushButton::clicked, this, [this, n] {
            if (model_.remove(session(), n, sink())) refresh();
        });
    }
    slot_grid->setColumnStretch(1, 1);
    layout->addLayout(slot_grid);

    // The chooser: a folder, its event databases, and the tables of the one clicked.
    auto* chooser = make_group(this, "choose_table", "");
    chooser_ = chooser;
    chooser_title_ = make_label(chooser, "choose_caption");
    auto* cl = new QGridLayout(chooser);
    cl->addWidget(chooser_title_, 0, 0, 1, 3);
    cl->addWidget(new QLabel("Folder:", chooser), 1, 0);
    db_dir_ = make_field(chooser, "db_dir");
    db_dir_->setToolTip("Type a folder and press Enter, or choose one with the button");
    cl->addWidget(db_dir_, 1, 1);
    auto* browse = make_button(chooser, "browse", "Folder...");
    cl->addWidget(browse, 1, 2);
    cl->addWidget(new QLabel("Databases (click one):", chooser), 2, 0, 1, 2);
    cl->addWidget(new QLabel("Tables (double click one):", chooser), 2, 2);
    db_files_ = make_list_box(chooser, "db_files");
    table_list_ = make_list_box(chooser, "table_list");
    cl->addWidget(db_files_, 3, 0, 1, 2);
    cl->addWidget(table_list_, 3, 2);
    auto* cancel = make_button(chooser, "cancel_choice", "CANCEL");
    cl->addWidget(cancel, 4, 2, Qt::AlignRight);
    layout->addWidget(chooser);
    chooser->hide();

    connect(db_dir_, &QLineEdit::returnPressed, this, [this] { list_folder(db_dir_->text()); });
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString folder = QFileDialog::getExistingDirectory(
            this, "Choose the folder of the event databases", db_dir_->text());
        if (!folder.isEmpty()) list_folder(folder);
    });
    connect(db_files_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        table_list_->clear();
        if (model_.pick_database(item->text().toStdString(), sink()))
            for (const std::string& t : model_.chooser().table_list) table_list_->addItem(qt(t));
    });
    connect(table_list_, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
        if (choosing_ == 0) return;
        if (model_.pick_table(session(), choosing_, item->text().toStdString(), sink())) {
            choosing_ = 0;
            chooser_->hide();
            refresh();
            adjustSize();
        }
    });
    connect(cancel, &QPushButton::clicked, this, [this] {
        choosing_ = 0;
        chooser_->hide();
        adjustSize();
    });

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto* exit = make_button(this, "exit", "EXIT");
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
}

void ListingTablesWindow::open() {
    model_.open(session());
    choosing_ = 0;
    chooser_->hide();
    refresh();
    layout()->activate();
    adjustSize();
    show();
    raise();
    activateWindow();
}

void ListingTablesWindow::refresh() {
    for (int n = 1; n <= listing_table_slots; ++n)
        lines_[static_cast<std::size_t>(n - 1)]->setText(
            QDir::toNativeSeparators(qt(model_.slot(n).line())));
}

void ListingTablesWindow::begin(int n) {
    choosing_ = n;
    model_.begin_choice(session(), n);
    chooser_title_->setText(qt("Choose the event table for table " + std::to_string(n)));
    list_folder(qt(model_.chooser().db_dir));
    chooser_->show();
    adjustSize();
}

void ListingTablesWindow::list_folder(const QString& folder) {
    const QString path = folder.trimmed();
    if (!QDir(path).exists()) {
        sink().message(product_word, "There is no folder " + path.toStdString(),
                       MessageIcon::exclamation);
        return;
    }
    model_.choose_folder(QDir(path).absolutePath().toStdString());
    db_dir_->setText(QDir::toNativeSeparators(path));
    table_list_->clear();
    list_lines(db_files_, model_.chooser().db_files);
}

// ---- LISTINGS_DISPLAY ---------------------------------------------------------------------------

ListingsDisplay::ListingsDisplay(Desktop& desktop)
    : CelestarkWindow(desktop, "LISTINGS_DISPLAY", listings_display_title) {
    auto* layout = new QVBoxLayout(this);
    const auto shown = [this] { return pages_ ? pages_->page() : -1; };
    const auto show = [this](int page) { show_page(page); };
    canvas_ = add_paged_canvas(this, layout, "listing_canvas", shown, show);
    auto* print = make_button(this, "print_listing", "Print");
    auto* next = make_button(this, "continue", "Continue: Next Page");
    auto* restart = make_button(this, "restart", "Restart: Beginning");
    auto* menu = make_button(this, "listing_menu", "Listing Menu");
    auto* exit = make_button(this, "exit", "Exit");
    done_ = make_page_progress(this, "listing_done", 100);
    state_ = add_page_foot(this, layout, {print, next, restart, menu}, "listing_state", {done_},
                           exit, next);

    connect_paging(this, next, restart, shown, show);
    connect(print, &QPushButton::clicked, this, [this] {
        if (pages_) print_listings(pages_->listings());
    });
    connect_menu_button(menu, this, [this] {
        if (menu_) menu_->enter();
    });
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
    resize(1200, 860);
}

ListingsDisplay::~ListingsDisplay() = default;

void ListingsDisplay::show_listings(std::vector<Listing> listings, ListingMaker& menu) {
    menu_ = &menu;
    stand_before_first_page(this);
    pages_ = std::make_unique<drawing::ListingPages>(desktop().drawing(), std::move(listings));
    show_page(1);
    raise();
    activateWindow();
}

void ListingsDisplay::show_page(int page) {
    if (!pages_) return;
    session().drawing.printing = false;
    desktop().canvases().listings = &canvas_->canvas();
    const int count = pages_->page_count();
    pages_->draw_page(std::clamp(page, 1, count));
    canvas_->update();
    state_->setText(page_of(pages_->page(), count));
    done_->setValue(static_cast<int>(std::lround(pages_->shown() * 100)));
    findChild<QPushButton*>("continue")->setEnabled(pages_->page() < count);
}

bool ListingsDisplay::print_listings(std::vector<Listing> listings) {
    return print_portrait(desktop(), "Listings", [&](drawing::Surface&) {
        drawing::ListingPages printed_pages(desktop().drawing(), std::move(listings));
        return printed_pages.print_all();
    });
}

namespace {

struct ListingWindows {
    ListingScreen planetary{planetary_listing}, aspects{aspects_listing},
        elements{elements_listing}, stars{stars_listing};
    ListOnlyStarsScreen only_stars;
    ListingTablesScreen tables;
    std::unique_ptr<ListingWindow> planetary_window, aspects_window, elements_window, stars_window;
    std::unique_ptr<ListOnlyStarsWindow> only_stars_window;
    std::unique_ptr<ListingTablesWindow> tables_window;
    std::unique_ptr<ListingsDisplay> display;

    void make(Desktop& desktop) {
        if (display) return;
        display = std::make_unique<ListingsDisplay>(desktop);
        planetary_window = std::make_unique<ListingWindow>(desktop, "listing_planetary", planetary);
        aspects_window = std::make_unique<ListingWindow>(desktop, "listing_aspects", aspects);
        elements_window = std::make_unique<ListingWindow>(desktop, "listings_elements", elements);
        stars_window = std::make_unique<ListingWindow>(desktop, "listings_stars", stars);
        only_stars_window = std::make_unique<ListOnlyStarsWindow>(desktop, only_stars);
        tables_window = std::make_unique<ListingTablesWindow>(desktop, tables);
        for (ListingMaker* w : std::initializer_list<ListingMaker*>{
                 planetary_window.get(), aspects_window.get(), elements_window.get(),
                 stars_window.get(), only_stars_window.get()})
            w->set_display(display.get());
    }
};

} // namespace

void add_listing_windows(Desktop& desktop) {
    auto w = std::make_shared<ListingWindows>();
    const auto on = [&desktop, w](const char* command, std::function<void(ListingWindows&)> open) {
        desktop.add_command(command, [&desktop, w, open] {
            w->make(desktop);
            open(*w);
        });
    };
    on("list_planetary", [](ListingWindows& x) { x.planetary_window->open(false); });
    on("list_aspects", [](ListingWindows& x) { x.aspects_window->open(false); });
    on("list_seperations", [](ListingWindows& x) { x.aspects_window->open(true); });
    on("list_elements", [](ListingWindows& x) { x.elements_window->open(false); });
    on("list_star_aspects", [](ListingWindows& x) { x.stars_window->open(false); });
    on("list_stars", [](ListingWindows& x) { x.only_stars_window->open(); });
    on("selected_tables", [](ListingWindows& x) { x.tables_window->open(); });
}

} // namespace celestark::screens
