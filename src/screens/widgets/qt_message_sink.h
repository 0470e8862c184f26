#pragma once
// Boxes, Yes/No questions and the input error list as real dialogs.
#include "session/messages.h"

#include <QDialog>

#include <memory>
#include <string>
#include <vector>

class QListWidget;
class QProgressDialog;
class QWidget;

namespace celestark::screens {

// The `input_errors` window: "PLEASE CORRECT THE FOLLOWING ERRORS", the list `list_of_errors`,
// the button `event_errors_ok`.
class InputErrorsWindow : public QDialog {
    Q_OBJECT
  public:
    InputErrorsWindow(const std::vector<std::string>& lines, QWidget* parent);
};

class QtMessageSink : public MessageSink {
  public:
    // Boxes stand over the window that is active when they show.
    void message(const std::string& title, const std::string& text, MessageIcon icon) override;
    bool ask(const std::string& title, const std::string& text) override;
    void input_error(const std::string& line) override;
    void show_input_errors() override;
    // The window `run_status`: the caption, a bar and CANCEL; while it shows, the other windows
    // take no input.
    void progress_begin(const std::string& caption, int steps) override;
    bool progress(int done) override;
    // The date a run has reached, under the caption.
    void progress_label(const std::string& text) override;
    void progress_end() override;
    QtMessageSink();
    ~QtMessageSink() override;

  private:
    std::vector<std::string> pending_;
    std::string caption_;
    std::unique_ptr<QProgressDialog> progress_;
};

} // namespace celestark::screens
