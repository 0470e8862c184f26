#include "screens/widgets/qt_message_sink.h"

#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QVBoxLayout>

namespace celestark::screens {

namespace {

QString qt(const std::string& text) {
    return QString::fromStdString(text);
}

QMessageBox::Icon icon_of(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::information:
        return QMessageBox::Information;
    case MessageIcon::exclamation:
        return QMessageBox::Warning;
    case MessageIcon::critical:
        return QMessageBox::Critical;
    case MessageIcon::question:
        return QMessageBox::Question;
    }
    return QMessageBox::Information;
}

} // namespace

InputErrorsWindow::InputErrorsWindow(const std::vector<std::string>& lines, QWidget* parent)
    : QDialog(parent) {
    setObjectName("input_errors");
    setWindowTitle("PLEASE CORRECT THE FOLLOWING ERRORS");
    auto* layout = new QVBoxLayout(this);
    auto* list = new QListWidget(this);
    list->setObjectName("list_of_errors");
    for (const std::string& line : lines) list->addItem(qt(line));
    list->setMinimumWidth(560);
    layout->addWidget(list);
    auto* ok = new QPushButton("OK", this);
    ok->setObjectName("event_errors_ok");
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(ok, 0, Qt::AlignRight);
}

void QtMessageSink::message(const std::string& title, const std::string& text, MessageIcon icon) {
    QMessageBox box(icon_of(icon), qt(title), qt(text), QMessageBox::Ok,
                    QApplication::activeWindow());
    box.exec();
}

bool QtMessageSink::ask(const std::string& title, const std::string& text) {
    return QMessageBox::question(QApplication::activeWindow(), qt(title), qt(text),
                                 QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

void QtMessageSink::input_error(const std::string& line) {
    pending_.push_back(line);
}

void QtMessageSink::show_input_errors() {
    if (pending_.empty()) return;
    InputErrorsWindow window(pending_, QApplication::activeWindow());
    pending_.clear();
    window.exec();
}

QtMessageSink::QtMessageSink() = default;
QtMessageSink::~QtMessageSink() = default;

void QtMessageSink::progress_begin(const std::string& caption, int steps) {
    caption_ = caption;
    progress_ = std::make_unique<QProgressDialog>(qt(caption), "CANCEL", 0, steps,
                                                  QApplication::activeWindow());
    progress_->setObjectName("run_status");
    progress_->setWindowTitle(qt(product_word));
    progress_->setWindowModality(Qt::ApplicationModal);
    progress_->setMinimumDuration(0);
    progress_->setAutoClose(false);
    progress_->setAutoReset(false);
    progress_->setValue(0);
    QApplication::processEvents();
}

bool QtMessageSink::progress(int done) {
    if (!progress_) return false;
    progress_->setValue(done);
    // The one place where a run lets the screen's events through: CANCEL is heard here.
    QApplication::processEvents();
    return progress_->wasCanceled();
}

void QtMessageSink::progress_label(const std::string& text) {
    if (!progress_) return;
    progress_->setLabelText(qt(caption_ + "\n" + text));
}

void QtMessageSink::progress_end() {
    progress_.reset();
}

} // namespace celestark::screens
