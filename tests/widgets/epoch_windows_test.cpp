// The prenatal epoch through its windows: the main window's command opens the options, the
// calculation fills the epoch window, the birth time moves, a line's chart is drawn and a click on
// a candidate stores the epoch in the active card.
#include "desktop_support.h"

#include "screens/epoch_window.h"
#include "screens/event_input.h"

#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRadioButton>

namespace celestark::testing {
namespace {

TEST(EpochWindows, FromTheCommandToAStoredEpoch) {
    DesktopSession ds;
    put_einstein(ds.s, 1);
    ds.desktop->refresh_chart_window();
    ds.press("calculate_epoch"); // the main window's command
    auto* options = ds.find<QWidget>("Epoch_options");
    ASSERT_NE(options, nullptr);
    ASSERT_TRUE(options->isVisible());
    EXPECT_TRUE(ds.find<QRadioButton>("epoch_10")->isChecked());
    EXPECT_TRUE(ds.find<QRadioButton>("Sidereal_month")->isChecked());
    EXPECT_FALSE(ds.find<QLineEdit>("epoch_lat_deg")->isEnabled());

    // A faulty epoch place is listed and nothing is calculated.
    ds.find<QRadioButton>("different_to_birth")->setChecked(true);
    ds.type("epoch_lat_deg", "91");
    ds.find<QAbstractButton>("calculate_epoch")->click();
    EXPECT_EQ(ds.folder.sink.input_errors.front(),
              "DEGREES OF LATITUDE - Invalid entry - Must be a number between 0 and 90");
    ds.find<QRadioButton>("same_as_birth")->setChecked(true);
    ds.find<QRadioButton>("epoch_9")->setChecked(true);
    ds.find<QAbstractButton>("calculate_epoch")->click();

    auto* dates = ds.find<QWidget>("Epoch_dates");
    ASSERT_NE(dates, nullptr);
    ASSERT_TRUE(dates->isVisible());
    EXPECT_FALSE(options->isVisible());
    EXPECT_EQ(ds.find<QLabel>("epoch_label")->text(), "9 Sidereal Months");
    for (const char* field : epoch_line_fields)
        EXPECT_FALSE(ds.find<QLineEdit>(field)->text().isEmpty()) << field;
    // One candidate shows green.
    int green = 0;
    for (const char* field : {"asc1", "asc2", "desc1", "desc2"})
        green += ds.find<QLineEdit>(field)->styleSheet().contains("#00FF00");
    EXPECT_EQ(green, 1);

    // Twenty minutes later by hand: the birth line says so.
    const QString birth = ds.find<QLineEdit>("original_birth")->text();
    ds.press("plus20min");
    EXPECT_NE(ds.find<QLineEdit>("original_birth")->text(), birth);
    EXPECT_TRUE(ds.find<QLineEdit>("original_birth")->text().contains("11:10:00"));

    // A line's chart, and back to the epoch window.
    ds.press("disp_asc1");
    EXPECT_TRUE(ds.find<QWidget>("chart_display")->isVisible());
    EXPECT_EQ(ds.s.drawing.working_event, epoch_row::asc1);
    ds.press("screen_cancel");
    EXPECT_TRUE(dates->isVisible());

    // A click on desc2 stores it in the active card.
    auto* desc2 = ds.find<QLineEdit>("desc2");
    QTest::mouseClick(desc2, Qt::LeftButton);
    EXPECT_FALSE(dates->isVisible());
    EXPECT_EQ(ds.s.event_slots[1][col::epoch_exists], "Y");
    EXPECT_EQ(ds.s.event_slots[1][col::moon_on_asc], "Des");
    EXPECT_EQ(ds.s.event_slots[1][col::mins], "50");
    EXPECT_FALSE(ds.find<QLabel>("EVENT1_EPOCH")->text().isEmpty());
    // The epoch charts of the card now draw.
    ds.press("epoch_normal_geo");
    EXPECT_EQ(ds.s.drawing.working_event, 1 + slot::epoch_offset);
}

TEST(EpochWindows, OnlyABirthOpensTheOptions) {
    DesktopSession ds;
    put_einstein(ds.s, 1);
    ds.s.event_slots[1][col::event] = "Marriage";
    ds.press("calculate_epoch");
    EXPECT_EQ(ds.folder.sink.messages.back().title, "NOT A BIRTH");
    auto* options = ds.find<QWidget>("Epoch_options");
    EXPECT_TRUE(options == nullptr || !options->isVisible());
}

} // namespace
} // namespace celestark::testing
