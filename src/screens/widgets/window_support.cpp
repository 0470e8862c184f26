#include "screens/widgets/window_support.h"

#include "screens/widgets/desktop.h"
#include "session/session.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

namespace celestark::screens {

CelestarkWindow::CelestarkWindow(Desktop& desktop, const char* name, const QString& title)
    : QWidget(nullptr, Qt::Window), desktop_(desktop) {
    setObjectName(name);
    setWindowTitle(title);
}

Session& CelestarkWindow::session() {
    return desktop_.session();
}

MessageSink& CelestarkWindow::sink() {
    return session_sink(desktop_.session());
}

void CelestarkWindow::closeEvent(QCloseEvent* event) {
    if (desktop_.quitting()) {
        event->accept();
        return;
    }
    event->ignore();
    sink().message(product_word, "You can't close windows in Celestark", MessageIcon::information);
}

BusyPointer::BusyPointer() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

BusyPointer::~BusyPointer() {
    QApplication::restoreOverrideCursor();
}

QString qt(const std::string& text) {
    return QString::fromStdString(text);
}

std::string text_of(const QLineEdit* field) {
    return field->text().toStdString();
}

QPushButton* make_button(QWidget* parent, const char* name, const QString& caption) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    return b;
}

QLineEdit* make_field(QWidget* parent, const char* name, int characters) {
    auto* f = new QLineEdit(parent);
    f->setObjectName(name);
    // Room for `characters` digits or capitals and the frame.
    if (characters > 0)
        f->setFixedWidth(
            QFontMetrics(f->font()).horizontalAdvance(QString(characters, QChar('M'))) + 14);
    return f;
}

QLabel* make_label(QWidget* parent, const char* name, const QString& text) {
    auto* l = new QLabel(text, parent);
    l->setObjectName(name);
    return l;
}

QRadioButton* make_radio(QWidget* parent, const char* name, const QString& caption) {
    auto* r = new QRadioButton(caption, parent);
    r->setObjectName(name);
    return r;
}

QCheckBox* make_check(QWidget* parent, const char* name, const QString& caption) {
    auto* c = new QCheckBox(caption, parent);
    c->setObjectName(name);
    return c;
}

QComboBox* make_list(QWidget* parent, const char* name, bool editable) {
    auto* c = new QComboBox(parent);
    c->setObjectName(name);
    c->setEditable(editable);
    return c;
}

void list_lines(QListWidget* list, const std::vector<std::string>& lines) {
    list->clear();
    for (const std::string& line : lines) list->addItem(qt(line));
}

void fill_list(QComboBox* list, const std::vector<std::string>& names, const QString& current) {
    list->clear();
    for (const std::string& name : names) list->addItem(qt(name));
    if (list->findText(current) < 0) list->addItem(current);
}

QListWidget* make_list_box(QWidget* parent, const char* name) {
    auto* l = new QListWidget(parent);
    l->setObjectName(name);
    return l;
}

QGroupBox* make_group(QWidget* parent, const char* name, const QString& caption) {
    auto* g = new QGroupBox(caption, parent);
    g->setObjectName(name);
    return g;
}

} // namespace celestark::screens
