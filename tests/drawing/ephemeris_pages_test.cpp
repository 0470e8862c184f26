// The monthly ephemeris on paper: a page a month, and a CANCEL that ends the document early with
// the pages printed so far.
#include "drawing_support.h"

#include "drawing/ephemeris_pages.h"
#include "drawing/painter_surface.h"

#include <QTemporaryDir>

#include <filesystem>

namespace celestark::testing {
namespace {

TEST(EphemerisPages, CancelLeavesAShorterDocument) {
    DrawingSession ds;
    QTemporaryDir dir;
    MonthlyRequest r;
    r.first_year = r.last_year = 1999;
    r.first_month = 1;
    r.last_month = 12;
    r.phenomena = false;
    const auto print = [&](const std::string& name) {
        drawing::PageFormat format;
        format.landscape = true;
        drawing::PdfCanvas paper(dir.filePath(QString::fromStdString(name)).toStdString(), format);
        const int months = drawing::print_monthly_ephemeris(ds.s, paper, r);
        return std::pair{months, std::filesystem::file_size(
                                     dir.filePath(QString::fromStdString(name)).toStdString())};
    };
    const auto whole = print("year.pdf");
    EXPECT_EQ(whole.first, 12);
    ds.folder.sink.cancel_after = 3;
    const auto cut = print("cut.pdf");
    EXPECT_EQ(cut.first, 3);
    EXPECT_GT(cut.second, 5000u);
    EXPECT_LT(cut.second, whole.second);
}

} // namespace
} // namespace celestark::testing
