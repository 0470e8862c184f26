// render with the prenatal pages and the plan of the Solar System: a stored birth with its epoch
// is drawn, landscape on paper for the strips; a birth without one gets the epoch the rule
// selects.
#include "event_options.h"
#include "render.h"

#include "cli_support.h"

#include <QImage>

#include <gtest/gtest.h>

#include <filesystem>

namespace celestark::cli {
namespace {

class RenderPrenatal : public ::testing::Test {
  protected:
    store::testing::ScratchDir dir;
    std::string file(const std::string& name) const { return dir.file(name).string(); }

    // An event table with one stored birth and, when asked, its epoch.
    void store_birth(bool with_epoch) {
        testing::Cells cells = celestark::testing::einstein;
        if (with_epoch)
            cells.insert(cells.end(), {{col::epoch_place, "Ulm"},
                                       {col::epoch_day, "25"},
                                       {col::epoch_month, "6"},
                                       {col::epoch_year, "1878"},
                                       {col::epoch_hours, "9"},
                                       {col::epoch_mins, "42"},
                                       {col::epoch_lat_deg, "48"},
                                       {col::epoch_lat_ns, "N"},
                                       {col::epoch_long_deg, "10"},
                                       {col::epoch_long_ew, "E"},
                                       {col::epoch_exists, "Y"}});
        testing::store_one_event(dir.file("People.zod.mdb"), cells);
    }
    Options stored() const {
        return {{"db", file("People.zod.mdb")}, {"table", "Events"}, {"row", "1"}};
    }
};

TEST_F(RenderPrenatal, DrawsABirthWithItsEpochAndTheStripsLandscape) {
    store_birth(true);
    Options o = stored();
    o["page"] = "prenatal_rect";
    o["printing"] = "";
    o["out"] = file("strips.png");
    o["width"] = "700";
    ASSERT_EQ(command_render(o), 0);
    QImage strips;
    ASSERT_TRUE(strips.load(QString::fromStdString(file("strips.png"))));
    EXPECT_GT(strips.width(), strips.height()); // the sheet is turned
    for (const char* page : {"prenatal1", "plan display"}) {
        o = stored();
        o["page"] = page;
        o["out"] = file("page.png");
        o["width"] = "640";
        ASSERT_EQ(command_render(o), 0) << page;
        QImage image;
        ASSERT_TRUE(image.load(QString::fromStdString(file("page.png")))) << page;
        EXPECT_EQ(image.width(), 640) << page;
    }
}

TEST_F(RenderPrenatal, AnEventWithoutAnEpochGetsTheSelectedOne) {
    store_birth(false);
    const Options inline_birth = {{"date", "1946-06-14"}, {"time", "10:54:00"}, {"zone", "EST"},
                                  {"lat", "40N42"},       {"lon", "74W00"},     {"months", "9"}};
    for (Options o : {stored(), inline_birth}) {
        o["page"] = "lem_prenatal3dwith";
        o["out"] = file("x.png");
        EXPECT_EQ(command_render(o), 0);
        EXPECT_TRUE(std::filesystem::exists(file("x.png")));
        std::filesystem::remove(file("x.png"));
    }
    // The epoch options are read strictly.
    for (const auto& [option, value] : {std::pair{"months", "5"}, std::pair{"month", "lunar"}}) {
        Options o = inline_birth;
        o["page"] = "prenatal1";
        o["out"] = file("x.png");
        o[option] = value;
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(command_render(o), 2) << option;
        EXPECT_NE(::testing::internal::GetCapturedStderr().find(std::string("--") + option),
                  std::string::npos);
        EXPECT_FALSE(std::filesystem::exists(file("x.png")));
    }
}

} // namespace
} // namespace celestark::cli
