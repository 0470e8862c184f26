#pragma once
// What every window of the program shares: its name and title, the refusal to be closed by its
// frame, and the makers of controls that carry their names.
#include <QWidget>

#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace celestark {
struct Session;
class MessageSink;
} // namespace celestark

namespace celestark::screens {

class Desktop;

class CelestarkWindow : public QWidget {
    Q_OBJECT
  public:
    CelestarkWindow(Desktop& desktop, const char* name, const QString& title);
    Desktop& desktop() { return desktop_; }
    Session& session();
    MessageSink& sink();

  protected:
    // Closing by the frame is refused; the window's own exit hides it.
    void closeEvent(QCloseEvent* event) override;

  private:
    Desktop& desktop_;
};

// The pointer shows busy while it lives (a list filled, a correction run).
class BusyPointer {
  public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};

QString qt(const std::string& text);
std::string text_of(const QLineEdit* field);

QPushButton* make_button(QWidget* parent, const char* name, const QString& caption);
QLineEdit* make_field(QWidget* parent, const char* name, int characters = 0);
QLabel* make_label(QWidget* parent, const char* name, const QString& text = {});
QRadioButton* make_radio(QWidget* parent, const char* name, const QString& caption);
QCheckBox* make_check(QWidget* parent, const char* name, const QString& caption);
QComboBox* make_list(QWidget* parent, const char* name, bool editable = false);
QListWidget* make_list_box(QWidget* parent, const char* name);
// Shows `lines` in a list box, in place of what it held.
void list_lines(QListWidget* list, const std::vector<std::string>& lines);
// Fills a list with `names`, and with `current` after them when it is not one of them.
void fill_list(QComboBox* list, const std::vector<std::string>& names, const QString& current);
QGroupBox* make_group(QWidget* parent, const char* name, const QString& caption);

} // namespace celestark::screens
