#pragma once
// The choice of an event database of a folder and of a table in it, as the windows that open
// event tables and build the analysis database make it: a frame with the folder, its browse
// button and the databases of the folder; a frame with the tables of the database and the one
// selected.
#include <QString>

#include <functional>
#include <string>

class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace celestark {
class MessageSink;
}

namespace celestark::screens {

// Asks the user for a folder, starting at `start`; an empty text when the user chose none.
using FolderChooser = std::function<QString(QWidget* parent, const QString& start)>;

// The system's folder dialog, for the folder of the event databases.
QString choose_folder_dialog(QWidget* parent, const QString& start);

// A folder as the field shows it: without the trailing separator, in the system's form.
QString shown_folder(const std::string& folder);

// The frame of the databases: "Folder:" with its field and CHOOSE FOLDER..., then the list of
// the folder's databases under its caption. The caller may add more to `layout`.
struct FolderFrame {
    QGroupBox* group = nullptr;
    QVBoxLayout* layout = nullptr;
    QLineEdit* folder = nullptr;
    QPushButton* browse = nullptr;
    QListWidget* files = nullptr;
};
struct FolderFrameNames {
    const char* group;
    const char* folder;
    const char* browse;
    const char* files;
    const char* files_caption;
};
FolderFrame make_folder_frame(QWidget* parent, const FolderFrameNames& names, int list_height);

// The frame of the tables: the list of the database's tables under its caption, then
// "Selected table:" with a field that is read only.
struct TableFrame {
    QGroupBox* group = nullptr;
    QVBoxLayout* layout = nullptr;
    QListWidget* tables = nullptr;
    QLineEdit* selected = nullptr;
};
struct TableFrameNames {
    const char* group;
    const char* tables;
    const char* selected;
    const char* tables_caption;
};
TableFrame make_table_frame(QWidget* parent, const TableFrameNames& names, int list_height);

// The folder's field takes a folder typed when it differs from the one shown; the browse button
// asks `*chooser` (when set) for one. Either goes to `choose`.
void connect_folder_choice(QWidget* window, const FolderFrame& frame, const FolderChooser* chooser,
                           std::function<QString()> shown,
                           std::function<void(const QString&)> choose);

// A folder typed or chosen, trimmed, when it stands; otherwise says so on `sink` and returns an
// empty text.
QString existing_folder(const QString& folder, MessageSink& sink);

} // namespace celestark::screens
