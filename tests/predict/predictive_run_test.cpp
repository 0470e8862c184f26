// The run frame on Einstein's birth: pages that stop and go on, cancel, the orders the searches
// give a phenomenon (orb entry, exact, orb exit; an aspect made three times by retrograde
// motion; a station and the sign left and entered again), the biography's life dates at both
// ends of the prenatal span, progressions, and the fitted bodies against direct calculation.
#include "../store/program_folder.h"
#include "../support/events.h"

#include "engine/chart.h"
#include "predict/body_fits.h"
#include "predict/predictive_controls.h"
#include "predict/predictive_run.h"
#include "predict/progressions.h"
#include "session/constants.h"
#include "session/fixed_tables.h"

#include <cmath>
#include <string>
#include <vector>

namespace celestark::testing {
namespace {

// Every row, or rows by pages of `capacity` that wait for the user.
class Rows : public HitPrinter {
  public:
    explicit Rows(int capacity = 0) : capacity_(capacity) {}
    std::vector<Hit> rows;
    std::vector<int> pages;
    void begin_page(Session&, int page) override {
        pages.push_back(page);
        on_page_ = 0;
    }
    bool print_row(Session&, const Hit& h) override {
        if (capacity_ > 0 && on_page_ == capacity_) return false;
        ++on_page_;
        rows.push_back(h);
        return true;
    }
    bool pages_follow() const override { return capacity_ == 0; }

  private:
    int capacity_, on_page_ = 0;
};

std::string key(const Hit& h) {
    return h.kind + h.body_1 + "|" + h.body_2 + h.aspect_name + h.orb_kind + h.target_glyph +
           h.note;
}

const std::string mars(1, static_cast<char>(glyph::mars)),
    venus(1, static_cast<char>(glyph::venus)), mercury(1, static_cast<char>(glyph::mercury)),
    sun(1, static_cast<char>(glyph::sun));

class PredictiveRunTest : public ::testing::Test {
  protected:
    ProgramFolder folder;
    Session s;
    void SetUp() override {
        ASSERT_TRUE(folder.start(s).started);
        put_einstein(s, 1);
        s.sink = &folder.sink;
    }
    PredictiveParameters params(const std::string& mode, const std::string& from,
                                const std::string& to,
                                std::vector<std::pair<std::string, std::string>> set) {
        PredictiveParameters p = predictive_defaults(s, mode);
        const auto date = [&](const std::string& text, const char* prefix) {
            const std::string pre = prefix;
            p.texts[pre + "_year"] = text.substr(0, 4);
            p.texts[pre + "_month"] = text.substr(5, 2);
            p.texts[pre + "_day"] = text.substr(8, 2);
        };
        date(from, "start");
        date(to, "end");
        for (const auto& [name, value] : set) EXPECT_EQ(set_predictive_control(p, name, value), "");
        return p;
    }
};

TEST_F(PredictiveRunTest, PagesGoOnWithTheRowsOfAnUnbrokenRun) {
    const PredictiveParameters p =
        params("T", "1990-01-01", "1990-03-01", {{"aspects", "1"}, {"signs", "1"}, {"retro", "1"}});
    Rows whole;
    ASSERT_EQ(start_predictive_run(s, p, whole), RunOutcome::finished);
    ASSERT_GT(whole.rows.size(), 100u);

    Rows paged(37);
    RunOutcome outcome = start_predictive_run(s, p, paged);
    int pages = 1;
    while (outcome == RunOutcome::page_full && pages < 100) {
        outcome = continue_predictive_run(s, paged);
        ++pages;
    }
    EXPECT_EQ(outcome, RunOutcome::finished);
    ASSERT_EQ(paged.rows.size(), whole.rows.size());
    for (std::size_t i = 0; i < whole.rows.size(); ++i) {
        EXPECT_EQ(key(paged.rows[i]), key(whole.rows[i])) << i;
        EXPECT_DOUBLE_EQ(paged.rows[i].life_date, whole.rows[i].life_date);
    }
    EXPECT_EQ(paged.pages.back(), pages);
    // The rows come in date order, all inside the span.
    for (std::size_t i = 1; i < whole.rows.size(); ++i)
        EXPECT_LE(whole.rows[i - 1].life_date, whole.rows[i].life_date);
    EXPECT_GE(whole.rows.front().life_date, s.predictive.life_start);
    EXPECT_LE(whole.rows.back().life_date, s.predictive.life_end);
}

TEST_F(PredictiveRunTest, CancelEndsTheRunAndAnEmptySpanPrintsOnlyTheHead) {
    folder.sink.cancel_after = 1;
    Rows rows;
    EXPECT_EQ(
        start_predictive_run(s, params("T", "1990-01-01", "2000-01-01", {{"aspects", "1"}}), rows),
        RunOutcome::cancelled);
    EXPECT_LT(s.predictive.progress_percent, 50);

    folder.sink.cancel_after = 0;
    Rows none;
    // Pluto enters no sign in a month.
    const PredictiveParameters p = params("T", "1990-01-01", "1990-02-01",
                                          {{"aspects", "0"},
                                           {"signs", "1"},
                                           {"t_sun", "0"},
                                           {"t_moon", "0"},
                                           {"t_mercury", "0"},
                                           {"t_venus", "0"},
                                           {"t_mars", "0"},
                                           {"t_jupiter", "0"},
                                           {"t_saturn", "0"},
                                           {"t_uranus", "0"},
                                           {"t_neptune", "0"},
                                           {"t_node", "0"},
                                           {"t_perigee", "0"}});
    EXPECT_EQ(start_predictive_run(s, p, none), RunOutcome::finished);
    EXPECT_TRUE(none.rows.empty());
    EXPECT_EQ(none.pages, std::vector<int>{1});
    EXPECT_EQ(s.predictive.progress_percent, 100);
}

TEST_F(PredictiveRunTest, InputErrorsRefuseTheRun) {
    PredictiveParameters p = params("T", "1990-01-01", "1990-02-01", {});
    p.texts["start_day"] = "31";
    p.texts["start_month"] = "02";
    p.texts["end_year"] = " ";
    p.texts["time_zone"] = "XYZ";
    Rows rows;
    EXPECT_EQ(start_predictive_run(s, p, rows), RunOutcome::refused);
    EXPECT_EQ(
        folder.sink.input_errors,
        (std::vector<std::string>{"TIME ZONE ENTRY INVALID - Only the pre-set values can be used",
                                  "START DATE - Invalid number of days for the month",
                                  "END YEAR - Cannot be left blank or with only spaces ",
                                  "           0 and negative years are allowed",
                                  "           NOTE: enter for example year -35 for 36BC"}));
    EXPECT_TRUE(rows.pages.empty());
}

TEST_F(PredictiveRunTest, RetrogradeMotionInTheRows) {
    // 2020: Mars turns back at 28 Aries over Einstein's Venus (17 Aries) and forward at 15
    // Aries; Mercury turns back at 11 Scorpio, re-enters Libra, and enters Scorpio again (the
    // dates of any almanac of that year).
    Rows rows;
    ASSERT_EQ(
        start_predictive_run(
            s,
            params(
                "T", "2020-06-01", "2021-01-31",
                {{"aspects", "1"}, {"orb", "1"}, {"signs", "1"}, {"retro", "1"}, {"t_moon", "0"}}),
            rows),
        RunOutcome::finished);
    std::vector<std::string> mars_venus, mercury_scorpio;
    const std::string scorpio(1, static_cast<char>(sign_glyphs[7]));
    for (const Hit& h : rows.rows) {
        if (h.kind == "B" && h.body_1 == mars && h.body_2 == venus && h.value == 0)
            mars_venus.push_back(h.orb_kind.empty() ? "exact" : h.orb_kind);
        if (h.body_1 == mercury && h.kind == "R") mercury_scorpio.push_back(h.note);
        if (h.body_1 == mercury && h.kind == "IS" && h.target_glyph == scorpio)
            mercury_scorpio.push_back(h.orb_kind);
    }
    // Mars enters the orb applying, passes Venus, leaves the orb separating at 25 Aries, turns
    // back and enters it again on the separating side, passes Venus backward and forward, and
    // leaves for good: each entry before its exit.
    EXPECT_EQ(mars_venus,
              (std::vector<std::string>{"AE", "exact", "SL", "SE", "exact", "exact", "SL"}));
    // Mercury's stations of June and July, then Scorpio entered, left backward after the
    // station of October, entered again after the station of November; the station of January.
    EXPECT_EQ(mercury_scorpio,
              (std::vector<std::string>{"R", "D", "TO", "R", "FROM", "D", "TO", "R"}));
}

TEST_F(PredictiveRunTest, BiographyLifeDatesAtBothEndsOfThePrenatalSpan) {
    s.event_slots[1][col::epoch_exists] = "Y";
    s.event_slots[1][col::epoch_day] = "8";
    s.event_slots[1][col::epoch_month] = "6";
    s.event_slots[1][col::epoch_year] = "1878";
    s.event_slots[1][col::epoch_hours] = "10";
    s.event_slots[1][col::epoch_mins] = "0";
    for (const char* direction : {"eb", "be"}) {
        SCOPED_TRACE(direction);
        Rows rows;
        start_predictive_run(s,
                             params("B", "1879-03-14", "1879-04-01",
                                    {{direction, "1"}, {"tr1", "1"}, {"aspects", "1"}}),
                             rows);
        const PredictiveRun& r = s.predictive;
        ASSERT_GT(r.birth_jd, r.epoch_jd + 250);
        const double ratio = 7 * 365.25 / 27.32166;
        const double origin = std::string(direction) == "eb" ? r.epoch_jd : r.birth_jd;
        const double other = std::string(direction) == "eb" ? r.birth_jd : r.epoch_jd;
        // The start of the stepped span is the birth; its other end lies a whole life on.
        EXPECT_NEAR(map_to_life_date(s, origin, 0), r.birth_jd, 1e-9);
        EXPECT_NEAR(map_to_life_date(s, other, 0), r.birth_jd + (r.birth_jd - r.epoch_jd) * ratio,
                    1e-6);
    }
}

TEST_F(PredictiveRunTest, ProgressionsAgainstHandWorkedArcs) {
    calculate_chart(s, 1, true);
    const PositionLists birth = s.engine.pos;
    const double birth_mc = s.engine.midheaven, birth_jd = s.engine.event_jd;
    // The progressed row: one day after the birth, which stands for the first year.
    EventRow& row = s.event_slots[2];
    row = s.event_slots[1];
    row[col::day] = "15";
    const auto shift = [&](double d) {
        for (int i = 0; i < s.engine.pos.geo_count; ++i) {
            const auto k = static_cast<std::size_t>(i);
            EXPECT_NEAR(std::remainder(s.engine.pos.geo_long[k] - birth.geo_long[k] - d, two_pi), 0,
                        1e-12)
                << i;
        }
    };
    // OD: a degree for each 365.2422 days: a day after the birth, 1/365.2422 degree.
    ASSERT_TRUE(calculate_progressed_event(s, 1, 2, "OD"));
    shift(deg_to_rad / 365.2422);
    // Solar Arc: the Sun's motion in that day, about 59 minutes of arc in March.
    ASSERT_TRUE(calculate_progressed_event(s, 1, 2, "Solar Arc"));
    const double arc =
        std::remainder(s.engine.pos.geo_long[geo::sun] - birth.geo_long[geo::sun], two_pi);
    EXPECT_NEAR(arc * rad_to_deg, 0.995, 0.01);
    shift(arc);
    // Secondary: the bodies of the next day, the angles moved by the mean Sun's sidereal day: the
    // Midheaven about one degree on.
    ASSERT_TRUE(calculate_progressed_event(s, 1, 2, "Secondary"));
    EXPECT_NEAR(std::remainder(s.engine.midheaven - birth_mc, two_pi) * rad_to_deg, 1.0, 0.1);
    EXPECT_NEAR(s.engine.event_jd - birth_jd, 1.0, 1e-9);
    EXPECT_FALSE(calculate_progressed_event(s, 1, 2, "Primary"));
    // The run's symbolic time: a year of life is a day, backward as well as forward.
    EXPECT_DOUBLE_EQ(progressed_moment("Secondary", 100.0, 100.0 + 365.2422, -1), 99.0);
    EXPECT_DOUBLE_EQ(progressed_moment("OD", 100.0, 130.0, 1), 130.0);
}

TEST_F(PredictiveRunTest, FittedBodiesAgreeWithTheEngine) {
    // Two lists against direct calculation at moments spread over two centuries; the Earth's
    // series is calculated afresh for each direct moment, as the fits do.
    struct Case {
        FittedLists lists;
        double days;
        int degree;
    };
    for (const Case& c :
         {Case{{true, false, false}, 128.0, 112}, Case{{true, true, false}, 128.0, 112},
          Case{{true, false, true}, 16.0, 32}, Case{{false, false, true}, 8.0, 40}}) {
        BodyFits fits(c.lists, c.days, c.degree, 1);
        Session direct = s;
        double worst_series = 0, worst_tables = 0;
        for (int i = 0; i < 100; ++i) {
            const double jd = 2415020.5 + i * 731.2371;
            for (const double t : {jd, jd + 0.37, jd + 5.3}) {
                fits.bodies_at(s, t);
                direct.engine.earth_rates_level = 0;
                calculate_bodies_at(direct, t);
                const PositionLists &a = s.engine.pos, &b = direct.engine.pos;
                const auto compare = [&](const auto& x, const auto& y, int n, const auto& glyphs) {
                    for (int k = 0; k < n; ++k) {
                        const auto j = static_cast<std::size_t>(k);
                        const double e =
                            std::fabs(std::remainder(x[j] - y[j], two_pi)) / arcsec_to_rad;
                        const bool table = glyphs[j] == glyph::uranus ||
                                           glyphs[j] == glyph::neptune || glyphs[j] == glyph::pluto;
                        (table ? worst_tables : worst_series) =
                            std::max(table ? worst_tables : worst_series, e);
                    }
                };
                if (c.lists.geo) compare(a.geo_long, b.geo_long, b.geo_count, b.geo_glyph);
                if (c.lists.helio)
                    compare(a.helio_long, b.helio_long, b.helio_count, b.helio_glyph);
                if (c.lists.lemni)
                    compare(a.lemni_long, b.lemni_long, b.lemni_count, b.lemni_glyph);
            }
        }
        EXPECT_LT(worst_series, 0.001);
        // The stored tables are read piece by piece, with a seam at each half step of the table
        // that no smooth series follows exactly; their own error is ten times this.
        EXPECT_LT(worst_tables, 0.006);
    }
}

TEST_F(PredictiveRunTest, FittedRunFindsTheHitsOfTheDirectOne) {
    const PredictiveParameters p =
        params("T", "1995-01-01", "1996-01-01", {{"aspects", "1"}, {"signs", "1"}, {"retro", "1"}});
    Rows fitted, direct;
    ASSERT_EQ(start_predictive_run(s, p, fitted), RunOutcome::finished);
    ASSERT_TRUE(s.predictive.stepped_fits);
    s.predictive.use_fits = false;
    ASSERT_EQ(start_predictive_run(s, p, direct), RunOutcome::finished);
    ASSERT_EQ(fitted.rows.size(), direct.rows.size());
    for (std::size_t i = 0; i < direct.rows.size(); ++i) {
        EXPECT_EQ(key(fitted.rows[i]), key(direct.rows[i])) << i;
        // Within the minute; stations, where the motion stops, within five.
        EXPECT_NEAR(fitted.rows[i].life_date, direct.rows[i].life_date,
                    (direct.rows[i].kind == "R" ? 5.0 : 1.0) / 1440)
            << i << " " << direct.rows[i].kind;
    }
}

} // namespace
} // namespace celestark::testing
