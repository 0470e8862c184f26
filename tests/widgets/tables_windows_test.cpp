// The analysis database and ephemeris export windows on the desktop: opened from the menus, a
// table added by picking a database and a table, the export refused and then written.
#include "desktop_support.h"

#include <QLabel>
#include <QListWidget>
#include <QProgressBar>

#include "screens/widgets/tables_windows.h"
#include "store/event_schema.h"

#include <filesystem>

namespace celestark::testing {
namespace {

namespace fs = std::filesystem;

// Clicks the line of a list that reads `text`.
void click_line(QListWidget* list, const QString& text) {
    ASSERT_NE(list, nullptr);
    const auto found = list->findItems(text, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << text.toStdString();
    list->setCurrentItem(found[0]);
    emit list->itemClicked(found[0]);
}

TEST(TablesWindows, AnalysisAddsThePickedTable) {
    DesktopSession ds;
    {
        store::TableStore db;
        ASSERT_EQ(db.create(ds.folder.file("people.zod.mdb")), store::Outcome::ok);
        ASSERT_EQ(
            db.create_table("Famous", store::event_table_fields(), store::event_table_indexes()),
            store::Outcome::ok);
        store::Recordset rs;
        ASSERT_EQ(db.open_recordset("Famous", rs), store::Outcome::ok);
        EventInput in = new_input(einstein);
        EventTable table{rs};
        ASSERT_EQ(save_event(in, table, ds.folder.sink), SaveResult::saved);
    }
    ds.press("analysis_database");
    auto* window = window_named("ALLDATA");
    ASSERT_TRUE(window && window->isVisible());
    EXPECT_EQ(window->windowTitle(), "CREATE THE CELESTARK ANALYSIS DATABASE");
    EXPECT_EQ(ds.find<QLabel>("no_events")->text(), "0");
    ds.press("add_table");
    EXPECT_EQ(ds.folder.sink.messages.back().title, "NO TABLE SELECTED");
    click_line(ds.find<QListWidget>("analysis_files"), "people.zod.mdb");
    click_line(ds.find<QListWidget>("analysis_tables"), "Famous");
    EXPECT_EQ(ds.find<QLineEdit>("analysis_sel_table")->text(), "FAMOUS");
    ds.press("add_table");
    EXPECT_EQ(ds.find<QLabel>("no_events")->text(), "1");
    EXPECT_TRUE(fs::exists(ds.folder.file("analysis.mdb")));
    window->grab().save("/tmp/celestark_alldata.png");
    ds.folder.sink.answers = {true};
    ds.press("clear_database");
    EXPECT_EQ(ds.find<QLabel>("no_events")->text(), "0");
    ds.press("exit_alldata");
    EXPECT_FALSE(window->isVisible());
}

TEST(TablesWindows, EphemerisExportChecksAndWrites) {
    DesktopSession ds;
    ds.press("save_ephemeris");
    auto* window = window_named("EPHEMERIS_TO_FILE");
    ASSERT_TRUE(window && window->isVisible());
    EXPECT_EQ(window->windowTitle(), "SAVE EPHEMERIS TO DISK");
    ds.type("start_year", "2000");
    ds.type("end_year", "2000");
    ds.type("file_name", "EPH2000");
    ds.press("start");
    EXPECT_EQ(ds.folder.sink.input_errors,
              std::vector<std::string>{"START YEAR must be less then the END YEAR"});
    ds.type("end_year", "2001");
    ds.press("julian");
    window->grab().save("/tmp/celestark_ephemeris_to_file.png");
    const ExportResult r = static_cast<screens::EphemerisExportWindow*>(window)->start();
    EXPECT_EQ(r.outcome, ExportOutcome::written) << r.error;
    EXPECT_TRUE(fs::exists(ds.folder.file("EPH2000.mdb")));
    EXPECT_EQ(ds.find<QProgressBar>("ephem_done")->value(), 0);
    EXPECT_FALSE(ds.folder.sink.progress_steps.empty());
    ds.press("cancel");
    EXPECT_FALSE(window->isVisible());
}

} // namespace
} // namespace celestark::testing
