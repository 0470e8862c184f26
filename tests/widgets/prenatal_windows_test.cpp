// The prenatal charts from the main chart window's menu, and the motion of the planets from the
// chart window's panel.
#include "desktop_support.h"

#include "drawing/recording_surface.h"

#include <QCheckBox>
#include <QRadioButton>

namespace celestark::testing {
namespace {

// Einstein's birth in card 1, with an epoch when asked.
void put_birth(Session& s, bool with_epoch) {
    put_einstein(s, 1);
    EventRow& row = s.event_slots[1];
    const std::pair<int, const char*> epoch[] = {
        {col::epoch_day, "25"},   {col::epoch_month, "6"},    {col::epoch_year, "1878"},
        {col::epoch_hours, "9"},  {col::epoch_lat_deg, "48"}, {col::epoch_long_deg, "10"},
        {col::epoch_long_ew, "E"}};
    for (const auto& [column, text] : epoch) row[static_cast<std::size_t>(column)] = text;
    row[col::epoch_exists] = with_epoch ? "Y" : "N";
}

TEST(PrenatalWindows, ThePrenatalChartsStandInTheMenuAndNeedTheEpoch) {
    DesktopSession ds;
    for (const char* name : {"eb_circ_rad", "eb_circ_lat", "eb_rect", "geo_par", "her_par",
                             "hermetic_rect", "helio_rect", "helio_par", "lem_rect", "lem_par",
                             "lem_dist", "lem_3d_with", "lem_3d_se", "planetary_motion"}) {
        auto* a = ds.find<QAction>(name);
        ASSERT_NE(a, nullptr) << name;
        EXPECT_TRUE(a->isEnabled()) << name;
    }
    EXPECT_FALSE(ds.find<QAction>("tmm_event")->isEnabled()); // still to come
    put_birth(ds.s, false);
    ds.press("eb_circ_rad");
    EXPECT_EQ(ds.folder.sink.messages.back().title, "NO EPOCH");
    put_birth(ds.s, true);
    drawing::RecordingSurface recording(0, 0, false);
    ds.desktop->chart_display().record_into(&recording);
    ds.press("lem_rect");
    EXPECT_EQ(ds.s.drawing.screen_page, "prenatal_lem_rect");
    EXPECT_GT(ds.desktop->chart_display().pages_drawn(), 0);
    // The Sun on each of the four strips.
    int suns = 0;
    for (const drawing::DrawCall& c : recording.calls())
        suns += c.primitive == "display_glyph_inside" && c.codes == "\xA1";
    EXPECT_EQ(suns, 4);
    ds.desktop->chart_display().record_into(nullptr);
    EXPECT_TRUE(ds.folder.fatal_titles.empty());
}

TEST(PrenatalWindows, TheMotionPanelChecksItsFieldsAndRunsThePlanets) {
    DesktopSession ds;
    put_birth(ds.s, false);
    ds.press("planetary_motion");
    EXPECT_EQ(ds.s.drawing.screen_page, "plan display");
    // The dates start as a year from the event.
    ASSERT_NE(ds.find<QLineEdit>("start_year"), nullptr);
    EXPECT_EQ(ds.find<QLineEdit>("end_year")->text(), "1880");
    ds.find<QCheckBox>("moon")->setChecked(true);
    ds.type("end_year", "1890");
    ds.type("start_day", "40");
    ds.press("display_motion");
    EXPECT_EQ(ds.folder.sink.input_errors,
              (std::vector<std::string>{"START DAY - Invalid entry "}));
    ds.folder.sink.input_errors.clear();
    ds.type("start_day", "14");
    ds.press("display_motion");
    EXPECT_EQ(ds.folder.sink.input_errors,
              (std::vector<std::string>{"WITH THE MOON SELECTED THE MAXIMUM PERIOD IS 2 YEARS"}));
    ds.folder.sink.input_errors.clear();
    ds.find<QCheckBox>("moon")->setChecked(false);
    ds.find<QRadioButton>("motion_lem")->setChecked(true);
    const int drawn = ds.desktop->chart_display().pages_drawn();
    ds.press("display_motion");
    EXPECT_TRUE(ds.folder.sink.input_errors.empty());
    EXPECT_EQ(ds.s.drawing.screen_page, "planets motion");
    EXPECT_EQ(ds.s.chart.world_view, "Lemnicentric");
    EXPECT_GT(ds.desktop->chart_display().pages_drawn(), drawn);
    // Eleven years at ten days a step, the progress window told each step.
    EXPECT_GT(ds.folder.sink.progress_steps.size(), 400u);
    EXPECT_FALSE(ds.find<QWidget>("step_panel")->isVisible());
    EXPECT_TRUE(ds.folder.fatal_titles.empty());
}

} // namespace
} // namespace celestark::testing
