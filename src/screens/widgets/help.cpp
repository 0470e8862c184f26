// The user guide and the About box.
#include "screens/widgets/help.h"

#include "screens/widgets/desktop.h"
#include "session/about.h"

#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QVBoxLayout>

#include <memory>

namespace celestark::screens {

namespace {

QString guide_text() {
    QFile file(user_guide_resource);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return "# Celestark user guide\n\nThe guide could not be read from the program.";
    return QString::fromUtf8(file.readAll());
}

// The About text as HTML paragraphs: its first line as the heading, web addresses as links.
QString about_html() {
    const std::vector<std::string> lines = about_text();
    QString html;
    QString paragraph;
    auto close_paragraph = [&] {
        if (!paragraph.isEmpty()) html += "<p>" + paragraph + "</p>";
        paragraph.clear();
    };
    for (std::size_t i = 0; i < lines.size(); ++i) {
        QString line = qt(lines[i]).toHtmlEscaped();
        if (i == 0) {
            html += "<h2>" + line + "</h2>";
            continue;
        }
        if (line.isEmpty()) {
            close_paragraph();
            continue;
        }
        static const QRegularExpression address(R"((https?://[^\s)]+))");
        line.replace(address, R"(<a href="\1">\1</a>)");
        paragraph += (paragraph.isEmpty() ? "" : "<br>") + line;
    }
    close_paragraph();
    return html;
}

} // namespace

UserGuideWindow::UserGuideWindow(Desktop& desktop)
    : CelestarkWindow(desktop, "help_info", "CELESTARK - User Guide") {
    auto* layout = new QVBoxLayout(this);
    browser_ = new QTextBrowser(this);
    browser_->setObjectName("help_text");
    browser_->setOpenExternalLinks(false);
    browser_->setMarkdown(guide_text());
    layout->addWidget(browser_, 1);
    auto* exit = make_button(this, "help_exit", "EXIT");
    layout->addWidget(exit, 0, Qt::AlignRight);
    connect(exit, &QPushButton::clicked, this, [this] { hide(); });
    resize(820, 760);
}

void UserGuideWindow::enter() {
    show();
    raise();
    activateWindow();
}

AboutWindow::AboutWindow(Desktop& desktop) : CelestarkWindow(desktop, "about", "About Celestark") {
    auto* layout = new QVBoxLayout(this);
    auto* text = new QTextBrowser(this);
    text->setObjectName("about_text");
    text->setOpenExternalLinks(true);
    text->setHtml(about_html());
    text->setFrameShape(QFrame::NoFrame);
    layout->addWidget(text, 1);
    auto* ok = make_button(this, "about_ok", "OK");
    ok->setDefault(true);
    layout->addWidget(ok, 0, Qt::AlignRight);
    connect(ok, &QPushButton::clicked, this, [this] { hide(); });
    resize(640, 440);
}

void AboutWindow::enter() {
    show();
    raise();
    activateWindow();
}

namespace {

struct HelpWindows {
    std::unique_ptr<UserGuideWindow> guide;
    std::unique_ptr<AboutWindow> about;
};

} // namespace

void add_help_windows(Desktop& desktop) {
    auto windows = std::make_shared<HelpWindows>();
    desktop.add_command("help_info", [&desktop, windows] {
        if (!windows->guide) windows->guide = std::make_unique<UserGuideWindow>(desktop);
        windows->guide->enter();
    });
    desktop.add_command("about", [&desktop, windows] {
        if (!windows->about) windows->about = std::make_unique<AboutWindow>(desktop);
        windows->about->enter();
    });
}

} // namespace celestark::screens
