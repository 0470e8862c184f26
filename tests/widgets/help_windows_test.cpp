// The user guide and the About box.
#include "desktop_support.h"

#include <QTextBrowser>

namespace celestark::testing {
namespace {

TEST(HelpWindows, TheGuideOpensWithItsTitleAndAboutShowsTheAttributions) {
    DesktopSession ds;
    ds.press("help_info");
    auto* guide = ds.find<QWidget>("help_info");
    ASSERT_NE(guide, nullptr);
    EXPECT_TRUE(guide->isVisible());
    const QString text = ds.find<QTextBrowser>("help_text")->toPlainText();
    EXPECT_TRUE(text.startsWith("Celestark user guide")) << text.left(80).toStdString();
    // The first tasks come before the windows.
    EXPECT_LT(text.indexOf("Enter an event and see its chart"), text.indexOf("The windows"));

    ds.press("about");
    auto* about = ds.find<QWidget>("about");
    ASSERT_NE(about, nullptr);
    EXPECT_TRUE(about->isVisible());
    const QString attributions = ds.find<QTextBrowser>("about_text")->toPlainText();
    for (const char* source : {"VSOP87", "ELP 2000-82B", "Hipparcos", "Yale Bright Star",
                               "IAU Working Group on Star Names", "Skyfield"})
        EXPECT_TRUE(attributions.contains(source)) << source;
    ds.press("about_ok");
    EXPECT_FALSE(about->isVisible());
}

} // namespace
} // namespace celestark::testing
