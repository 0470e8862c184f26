#pragma once
// The windows `ALLDATA` (CREATE THE CELESTARK ANALYSIS DATABASE) and `EPHEMERIS_TO_FILE` (SAVE
// EPHEMERIS TO DISK).
#include "screens/tables_screens.h"
#include "screens/widgets/database_chooser.h"
#include "screens/widgets/window_support.h"

#include <functional>
#include <map>
#include <string>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QProgressBar;
class QRadioButton;

namespace celestark::screens {

class AnalysisWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit AnalysisWindow(Desktop& desktop);
    void enter();
    // The folder dialog behind the browse button (a QFileDialog unless replaced).
    void set_folder_chooser(FolderChooser chooser) { chooser_ = std::move(chooser); }
    const AnalysisScreen& screen() const { return screen_; }

  private:
    void choose_folder(const QString& folder);
    void pick_file(QListWidgetItem* item);
    void pick_table(QListWidgetItem* item);
    void show_state();

    AnalysisScreen screen_;
    FolderChooser chooser_;
    QLineEdit* folder_ = nullptr;
    QListWidget* files_ = nullptr;
    QListWidget* tables_ = nullptr;
    QLineEdit* sel_table_ = nullptr;
    QLabel* no_events_ = nullptr;
};

class EphemerisExportWindow : public CelestarkWindow {
    Q_OBJECT
  public:
    explicit EphemerisExportWindow(Desktop& desktop);
    void enter();
    // START: the export; its outcome.
    ExportResult start();

  private:
    EphemerisExportScreen screen() const;

    std::map<std::string, QLineEdit*> fields_;
    std::map<std::string, QRadioButton*> options_;
    QLabel* folder_ = nullptr;
    QProgressBar* bar_ = nullptr;
    std::string folder_path_;
};

// Registers the windows with the desktop: the chart window's "analysis_database" and
// "save_ephemeris" open them.
void add_tables_windows(Desktop& desktop);

} // namespace celestark::screens
