#pragma once
// The star windows: STAR DATABASE (browse stars.mdb by constellation or group and edit the white
// fields of a star, each written at once), STAR OPTIONS (the orb sets and the star chart and
// analysis options), NAME STAR GROUPS (the twelve user groups) and FIXED POINTS (the user's
// points of the zodiac).
#include "screens/star_windows.h"
#include "screens/widgets/window_support.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QListWidget;

namespace celestark::screens {

class GlyphView;

class StarDatabaseWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit StarDatabaseWindow(Desktop& desktop);
    void enter();
    // The group list again, after the groups were named.
    void refresh_groups();

  private:
    void list_stars(bool by_group, const std::string& name);
    void show_star_at(int row);
    void show_fields();
    void write(const std::string& control, const std::string& text);
    void leave();

    std::vector<StarListLine> lines_;
    std::string bookmark_; // the star shown
    bool listed_by_group_ = false;
    std::string listed_name_;
    bool filling_ = false;
    QComboBox* constellations_ = nullptr;
    QComboBox* groups_ = nullptr;
    QListWidget* star_list_ = nullptr;
    QGroupBox* details_ = nullptr;
    GlyphView* glyph_view_ = nullptr;
    std::map<std::string, QLineEdit*> fields_;  // by control or field name
    std::map<std::string, QCheckBox*> boxes_;   // by control name
    std::map<std::string, std::string> stored_; // control -> field of the row
};

class StarOptionsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit StarOptionsWindow(Desktop& desktop);
    void enter();

  private:
    QLineEdit* option_field(QWidget* parent, const char* field, int characters);
    QCheckBox* option_check(QWidget* parent, const char* field, const QString& caption);
    QComboBox* option_list(QWidget* parent, const char* field);
    void show_values();
    void fill_lists();

    std::map<std::string, QLineEdit*> fields_;
    std::map<std::string, QCheckBox*> checks_;
    std::map<std::string, QComboBox*> lists_;
    std::map<std::string, std::string> shown_; // the stored value of every option, as text
    bool filling_ = false;
};

class NameStarGroupsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    // `left` runs after the window is left, when the names are read again.
    NameStarGroupsWindow(Desktop& desktop, std::function<void()> left);
    void enter();

  private:
    void write(int group);
    std::vector<QLineEdit*> names_;
    std::vector<std::string> shown_;
    std::function<void()> left_;
};

class FixedPointsWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit FixedPointsWindow(Desktop& desktop);
    void enter();

  private:
    void fill_list(const std::string& keep_bookmark);
    void show_point(int row);
    void show_fields();
    void write(const std::string& control, const std::string& text);

    std::vector<StarListLine> lines_;
    std::string bookmark_;
    FixedPointWindow shown_;
    QListWidget* fixed_list_ = nullptr;
    QGroupBox* frame_ = nullptr;
    QLineEdit *name_ = nullptr, *degs_ = nullptr, *mins_ = nullptr, *sigil_ = nullptr;
    QCheckBox* active_ = nullptr;
    QComboBox *world_view_ = nullptr, *zodiac_ = nullptr;
    GlyphView* sigil_view_ = nullptr;
    bool filling_ = false;
};

} // namespace celestark::screens
