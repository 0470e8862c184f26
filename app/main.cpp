// celestark: the desktop program. It takes no arguments: its program folder is the current
// directory, where option.mdb, the event databases and the other stores lie.
#include "app/startup.h"
#include "screens/widgets/chart_window.h"
#include "screens/widgets/desktop.h"
#include "screens/widgets/qt_message_sink.h"
#include "session/session.h"

#include <QApplication>

#include <cstdlib>
#include <filesystem>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("Celestark");
    using namespace celestark;
    screens::QtMessageSink sink;
    Session session;
    session.sink = &sink;
    // A fatal error's box has been shown by the sink: the program ends.
    const StartResult started =
        start_session(session, std::filesystem::current_path().string(), sink,
                      [](const std::string&, const std::string&) { std::exit(EXIT_FAILURE); });
    if (!started.started) return EXIT_FAILURE;
    screens::Desktop desktop(session);
    desktop.chart_window().show();
    // A database or table that would not open brings up the database window.
    if (started.events.outcome == EventStoreOpen::database_failed ||
        started.events.outcome == EventStoreOpen::table_failed)
        desktop.run("open_db");
    return QApplication::exec();
}
