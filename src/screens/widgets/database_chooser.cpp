#include "screens/widgets/database_chooser.h"

#include "screens/widgets/window_support.h"
#include "session/messages.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace celestark::screens {

QString choose_folder_dialog(QWidget* parent, const QString& start) {
    return QFileDialog::getExistingDirectory(parent, "Choose the folder of the event databases",
                                             start);
}

QString shown_folder(const std::string& folder) {
    return QDir::toNativeSeparators(QDir::cleanPath(qt(folder)));
}

FolderFrame make_folder_frame(QWidget* parent, const FolderFrameNames& names, int list_height) {
    FolderFrame f;
    f.group = make_group(parent, names.group, "EVENT DATABASES");
    f.layout = new QVBoxLayout(f.group);
    auto* folder_row = new QHBoxLayout;
    folder_row->addWidget(new QLabel("Folder:", f.group));
    f.folder = make_field(f.group, names.folder);
    folder_row->addWidget(f.folder, 1);
    f.browse = make_button(f.group, names.browse, "CHOOSE FOLDER...");
    folder_row->addWidget(f.browse);
    f.layout->addLayout(folder_row);
    f.layout->addWidget(new QLabel(names.files_caption, f.group));
    f.files = make_list_box(f.group, names.files);
    f.files->setMinimumHeight(list_height);
    f.layout->addWidget(f.files, 1);
    return f;
}

TableFrame make_table_frame(QWidget* parent, const TableFrameNames& names, int list_height) {
    TableFrame t;
    t.group = make_group(parent, names.group, "TABLES");
    t.layout = new QVBoxLayout(t.group);
    t.layout->addWidget(new QLabel(names.tables_caption, t.group));
    t.tables = make_list_box(t.group, names.tables);
    t.tables->setMinimumHeight(list_height);
    t.layout->addWidget(t.tables, 1);
    auto* chosen = new QHBoxLayout;
    chosen->addWidget(new QLabel("Selected table:", t.group));
    t.selected = make_field(t.group, names.selected);
    t.selected->setReadOnly(true);
    chosen->addWidget(t.selected, 1);
    t.layout->addLayout(chosen);
    return t;
}

void connect_folder_choice(QWidget* window, const FolderFrame& frame, const FolderChooser* chooser,
                           std::function<QString()> shown,
                           std::function<void(const QString&)> choose) {
    QLineEdit* field = frame.folder;
    QObject::connect(field, &QLineEdit::editingFinished, window, [field, shown, choose] {
        if (field->text() != shown()) choose(field->text());
    });
    QObject::connect(frame.browse, &QPushButton::clicked, window, [window, chooser, shown, choose] {
        const QString folder = *chooser ? (*chooser)(window, shown()) : QString();
        if (!folder.isEmpty()) choose(folder);
    });
}

QString existing_folder(const QString& folder, MessageSink& sink) {
    const QString path = folder.trimmed();
    if (path.isEmpty() || !QFileInfo(path).isDir()) {
        sink.message("FOLDER NOT FOUND",
                     "There is no folder " + (path.isEmpty() ? "of that name" : path.toStdString()),
                     MessageIcon::exclamation);
        return {};
    }
    return path;
}

} // namespace celestark::screens
