#pragma once
// The listing windows: `listing_planetary`, `listing_aspects` (separations too),
// `listings_elements` and `listings_stars`, each a set of check boxes with DISPLAY and PRINT;
// `list_only_stars`; `Listing_tables`, which chooses the tables the listings walk; and
// `LISTINGS_DISPLAY`, which shows the listings a page at a time and prints them.
#include "drawing/listing_pages.h"
#include "screens/listing_screens.h"
#include "screens/widgets/page_canvas.h"
#include "screens/widgets/window_support.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class QAbstractButton;
class QButtonGroup;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;

namespace celestark::screens {

class ListingsDisplay;

// A window that makes listings: the display's "Listing Menu" comes back to it.
class ListingMaker : public CelestarkWindow {
    Q_OBJECT
  public:
    using CelestarkWindow::CelestarkWindow;
    void set_display(ListingsDisplay* display) { display_ = display; }
    void enter();

  protected:
    // Shows or prints what a run made.
    void deliver(const std::vector<Listing>& listings, bool printing);
    ListingsDisplay* display_ = nullptr;
};

// One of the four windows over the tables.
class ListingWindow : public ListingMaker {
    Q_OBJECT
  public:
    ListingWindow(Desktop& desktop, const char* name, ListingScreen& model);
    // The menu command; `separations` for the aspects window opened to list separations.
    void open(bool separations);
    ListingScreen& model() { return model_; }

  private:
    void run(bool printing);
    void refresh();

    ListingScreen& model_;
    std::map<std::string, QAbstractButton*> boxes_;
};

class ListOnlyStarsWindow : public ListingMaker {
    Q_OBJECT
  public:
    ListOnlyStarsWindow(Desktop& desktop, ListOnlyStarsScreen& model);
    void open();

  private:
    void run(bool printing);
    ListOnlyStarsScreen& model_;
};

class ListingTablesWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    ListingTablesWindow(Desktop& desktop, ListingTablesScreen& model);
    void open();
    // The slot the chooser fills (0 while none is being chosen).
    int choosing() const { return choosing_; }

  private:
    void refresh();
    void begin(int n);
    void list_folder(const QString& folder);

    ListingTablesScreen& model_;
    std::vector<QLabel*> lines_;
    QWidget* chooser_ = nullptr;
    QLabel* chooser_title_ = nullptr;
    QLineEdit* db_dir_ = nullptr;
    QListWidget *db_files_ = nullptr, *table_list_ = nullptr;
    int choosing_ = 0;
};

// The pages of the listings.
class ListingsDisplay : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit ListingsDisplay(Desktop& desktop);
    ~ListingsDisplay() override;
    void show_listings(std::vector<Listing> listings, ListingMaker& menu);
    bool print_listings(std::vector<Listing> listings);
    const drawing::ListingPages* pages() const { return pages_.get(); }

  private:
    void show_page(int page);

    ListingMaker* menu_ = nullptr;
    PageCanvas* canvas_ = nullptr;
    QLabel* state_ = nullptr;
    QProgressBar* done_ = nullptr;
    std::unique_ptr<drawing::ListingPages> pages_;
};

void add_listing_windows(Desktop& desktop);

} // namespace celestark::screens
