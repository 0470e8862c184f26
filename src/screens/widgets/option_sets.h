#pragma once
// The windows of the stored option sets: SIDEREAL ZODIAC OPTIONS, the aspects window and the
// COLOURS window. Each shows one record of its table and hands every command to the operations of
// its screen logic.
#include "screens/aspect_window.h"
#include "screens/colour_window.h"
#include "screens/widgets/window_support.h"
#include "screens/zodiac_window.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QWidget;

namespace celestark::screens {

// The zodiac window: the stored sidereal zodiacs, one at a time.
class ZodiacOptionsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit ZodiacOptionsWindow(Desktop& desktop);
    // Fills the list and shows the session's zodiac (or the first stored one).
    void open();
    const ZodiacWindow& record() const { return w_; }

  private:
    void fill_list(const std::string& selected);
    void show_record();
    void collect();
    void show_parts();
    void edited();
    void pick(const std::string& name);
    void new_zodiac();
    void save();
    void remove();
    void exit_window();
    void focus_field(const std::string& field);

    ZodiacWindow w_;
    bool filling_ = false;
    std::string listed_; // the entry of the list that was picked last
    QComboBox* list_ = nullptr;
    QLineEdit* name_ = nullptr;
    QComboBox *defined_ = nullptr, *constellation_ = nullptr, *star_ = nullptr;
    QLineEdit *deg_ = nullptr, *min_ = nullptr, *sec_ = nullptr;
    QLineEdit *day_ = nullptr, *month_ = nullptr, *year_ = nullptr, *gj_ = nullptr;
    QLabel *hint_ = nullptr, *position_caption_ = nullptr;
    QLabel *star_label_ = nullptr, *epoch_label_ = nullptr;
    QWidget *star_part_ = nullptr, *epoch_part_ = nullptr;
    QHBoxLayout* date_row_ = nullptr;
    QGroupBox* unequal_ = nullptr;
    std::array<QLineEdit*, 12> degs_{}, mins_{};
    QPushButton* delete_ = nullptr;
};

// The glyph of a standard aspect, drawn in the program's symbol font.
class SigilView : public QWidget {
    Q_OBJECT
  public:
    explicit SigilView(QWidget* parent);
    void set_code(unsigned char code);
    unsigned char code() const { return code_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    unsigned char code_ = ' ';
};

// The aspects window: the sets, the rows of one set, and the row shown.
class AspectSetsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit AspectSetsWindow(Desktop& desktop);
    // Fills the chooser and shows the chart's aspect set (or the first stored one).
    void open();
    const AspectWindow& record() const { return w_; }

  private:
    void fill_choices(const std::string& selected);
    void show_list(const std::string& selected_line);
    std::string pick_first_aspect();
    void show_row();
    void collect();
    void edited();
    void choose_set(const std::string& name);
    void pick_line(int row);
    void new_row();
    void new_set();
    void save();
    void remove();
    void exit_window();
    void focus_field(const std::string& field);
    void sets_changed();

    AspectWindow w_;
    bool filling_ = false;
    std::string chosen_set_;
    int picked_row_ = -1;
    QComboBox* choices_ = nullptr;
    QLineEdit* name_ = nullptr;
    QListWidget* list_ = nullptr;
    QCheckBox* aspectogram_ = nullptr;
    SigilView* sigil_ = nullptr;
    std::map<std::string, QLineEdit*> fields_; // the angle, the digraph and the ten orbs
};

// The COLOURS window: the colour sets, one swatch for each colour of the set shown.
class ColourSetsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit ColourSetsWindow(Desktop& desktop);
    // Fills the list and shows the display colour set (or the first stored one). With no set
    // stored the window says so and stays closed.
    void open();
    const ColourWindow& record() const { return w_; }

    // The colour dialog, started from the swatch's colour (none for an empty field); no colour
    // when it is cancelled. Colours are 0x00BBGGRR. Tests put their own in its place.
    std::function<std::optional<std::int32_t>(std::optional<std::int32_t>)> chooser;

  private:
    bool fill_list(const std::string& selected);
    void show_record();
    void show_swatch(int field);
    void swatch_clicked(int field);
    void pick(const std::string& name);
    void new_set();
    void save();
    void remove();
    void exit_window();
    std::optional<std::int32_t> ask_colour(std::optional<std::int32_t> start);

    ColourWindow w_;
    bool filling_ = false;
    std::string listed_;
    QListWidget* list_ = nullptr;
    QLineEdit* name_ = nullptr;
    QComboBox* use_ = nullptr;
    std::map<int, QPushButton*> swatches_;
    std::map<int, QCheckBox*> choices_;
};

} // namespace celestark::screens
