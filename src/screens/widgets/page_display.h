#pragma once
// What the windows of reports shown a page at a time share: the row of DISPLAY, PRINT and EXIT
// under the window that sets a report up, and the foot of the window that shows its pages, with
// the buttons, the state of the page, a bar of progress and Exit.
#include <QString>

#include <functional>
#include <initializer_list>

class QHBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace celestark::drawing {
class Surface;
}

namespace celestark::screens {

class Desktop;
class PageCanvas;

// The names of the three buttons under a window that sets a report up.
struct RunButtonNames {
    const char* display = "display";
    const char* print = "print";
    const char* exit = "exit";
};

// DISPLAY (the default), PRINT and, at the right, EXIT: `run` takes whether to print, EXIT hides
// the window.
QHBoxLayout* run_buttons(QWidget* window, const std::function<void(bool)>& run,
                         const RunButtonNames& names = {});

// A bar of progress from 0 to `range` for the foot of a page display.
QProgressBar* make_page_progress(QWidget* parent, const char* name, int range);

// The foot of a page display added to `layout`: the buttons of `lead`, a gap, the state of the
// page (named `state_name`) taking the room that is left, the widgets of `trail` (a bar of
// progress, a CANCEL) and `exit` at the right. `next` becomes the default button. Returns the
// state's label.
QLabel* add_page_foot(QWidget* window, QVBoxLayout* layout,
                      std::initializer_list<QPushButton*> lead, const char* state_name,
                      std::initializer_list<QWidget*> trail, QPushButton* exit, QPushButton* next);

// The canvas of a page display whose pages are drawn again at a new size, with `show_page`
// taking the page's number and `shown` telling the page shown, -1 while there are no pages; added
// to `layout`, where it takes the room.
PageCanvas* add_paged_canvas(QWidget* window, QVBoxLayout* layout, const char* name,
                             const std::function<int()>& shown,
                             const std::function<void(int)>& show_page);
// Continue shows the page after the one shown, Restart the first.
void connect_paging(QWidget* window, QPushButton* next, QPushButton* restart,
                    const std::function<int()>& shown, const std::function<void(int)>& show_page);

// The menu button of a page display hides it and shows the window that set the report up.
void connect_menu_button(QPushButton* menu, QWidget* window, std::function<void()> enter_menu);

// The window stands before its first page is drawn so that the page has its size.
void stand_before_first_page(QWidget* window);

// Shows the window in front with the focus.
void bring_to_front(QWidget* window);

// Prints a report in portrait: once the printer is set up, `pages` draws the report on the paper;
// then the session draws on `display_target` again. False when nothing was printed.
bool print_portrait(Desktop& desktop, const char* display_target,
                    const std::function<bool(drawing::Surface& paper)>& pages);

// "Page n of m".
QString page_of(int page, int count);

} // namespace celestark::screens
