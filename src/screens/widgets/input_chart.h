#pragma once
// INPUT_CHART, the "EVENT DETAILS WINDOW": an event typed, checked field by field as each is left,
// checked in full before it is stored, saved, added, deleted, stepped through the open event
// table, and copied into one of the four event slots of the main chart window.
#include "screens/event_checks.h"
#include "screens/widgets/window_support.h"

#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <vector>

class QComboBox;
class QDialog;
class QGridLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace celestark::screens {

class InputChart : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit InputChart(Desktop& desktop);

    // `chart_edit_active_event`: the window on the active slot's event (a window left with
    // unsaved changes is only brought to the front).
    void open_active_event();
    // The search window's EDIT EVENT: the window on that event, once the shown one is settled.
    void open_event(const EventInput& input);

    const EventInput& input() const { return input_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget* build_event_group();
    QWidget* build_place_group();
    QWidget* build_date_group();
    QWidget* build_zone_group();
    QWidget* build_notes_group();
    QWidget* build_epoch_group();
    QWidget* build_commands();

    // A field of the screen bound to its value; a short field has a fixed `width` in pixels.
    QLineEdit* field(QWidget* parent, const char* name, int width = 0);
    QComboBox* list(QWidget* parent, const char* name, const std::vector<std::string>& entries);
    QPushButton* button(QWidget* parent, const char* name, const QString& caption,
                        void (InputChart::*action)());
    QLabel* caption(QWidget* parent, const char* name, const QString& text = {});

    // The options' captions, field order and shown fields.
    void apply_options();
    // Every control from the screen's values, and the zone and meridian controls by the time code.
    void show_input();
    void show_mode();
    // A row of the zone group that shows only with some time codes.
    QWidget* mode_row(std::initializer_list<QWidget*> widgets);
    void set_status(const QString& text);

    void field_edited(const std::string& name, const QString& text);
    void field_left(const std::string& name);
    void focus_later(const std::string& name);

    void save_command();
    void add_command();
    void delete_command();
    void next_command();
    void previous_command();
    void step(bool forward);
    void search_command();
    void store_command(int slot);
    void exit_command();
    void show_help(const QString& title, const QString& text, bool fixed_pitch);
    void back_to_chart();

    EventInput input_;
    InputOptions options_;
    std::map<std::string, QLineEdit*> fields_; // every field, the lists' edit lines included
    std::map<std::string, QComboBox*> lists_;
    std::map<std::string, QWidget*> mode_controls_;
    std::vector<QWidget*> mode_rows_;
    std::map<std::string, QLabel*> captions_;
    QWidget* date_fields(QWidget* box, const char* day, const char* month, const char* year,
                         QGridLayout*& row);
    // A newly opened event: no faults or edits marked; then the window shown and raised.
    void show_fresh();
    void present();
    QGridLayout* date_grid_ = nullptr;
    QGridLayout* epoch_grid_ = nullptr;
    QGroupBox* epoch_ = nullptr;
    QLabel* status_ = nullptr; // what the last command did
    QLabel* state_ = nullptr;  // whether the event is stored, and changed since
    QDialog* help_ = nullptr;  // the help texts, shown beside the window
    QPlainTextEdit* help_text_ = nullptr;
    QPushButton* search_ = nullptr;
    bool loading_ = false;
    bool checking_ = false;
    std::set<std::string> edited_; // fields changed since they were last checked
    std::string failed_;           // the field whose light check failed last, until it passes
    std::string recheck_;          // a failed field left unchanged, checked again on the next turn
};

} // namespace celestark::screens
