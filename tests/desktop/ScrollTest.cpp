// Scrolling through accessibility, as from system version 27.0 on: the bars move as the application shows
// them, and nothing is clicked or focused.
#include "DesktopTest.h"
#include "harness/AccessibleTree.h"
#include "harness/QuietWatch.h"

namespace skylet::desktop {
namespace {

class ScrollTest : public DesktopTest, public testing::WithParamInterface<Toolkit> {};

TEST_P(ScrollTest, MovesTheBarBothWays) {
    PREPARE(openDesktop());
    desktop().setEnvironment("SKYLET_SYSTEM_VERSION", "27.0");
    // Browsers show accessibility their pages only when told to.
    desktop().setEnvironment("GNOME_ACCESSIBILITY", "1");
    PREPARE(openTarget(GetParam()));
    if (GetParam() == Toolkit::firefox) {
        // It works out where its page's parts are when it is first asked.
        const AccessibleTree tree(desktop());
        ASSERT_TRUE(eventually([&] {
            const auto page = tree.find("Firefox", "target");
            return page && page->place.width > 0;
        }));
    }
    PREPARE(launchAndPin({{"forwardEvents", "true"}, {"axScrollSensitivity", "0.02"}}));
    const Rectangle overlay = overlayPlace();
    const QuietWatch quiet(desktop().environment().at("DISPLAY"));
    x().movePointer(overlay.x + overlay.width / 3, overlay.y + overlay.height * 6 / 10);

    constexpr int down = 5;
    constexpr int up = 4;
    for (const int direction : {down, down, up}) {
        const auto before = x().content(target_);
        application().forget();
        x().button(direction, true);
        x().button(direction, false);
        EXPECT_TRUE(application().says("scrolled"))
            << direction << ": " << application().said() << skylet().logText();
        EXPECT_TRUE(eventually([&] { return x().content(target_) != before && skylet().mirrors(target_); }));
        EXPECT_EQ(application().said().find("down"), std::string::npos) << application().said();
    }
    EXPECT_EQ(quiet.disturbances(), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Full, ScrollTest,
                         testing::Values(Toolkit::gtk3, Toolkit::gtk4, Toolkit::qt5, Toolkit::qt6,
                                         Toolkit::office, Toolkit::chromium, Toolkit::firefox),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace
} // namespace skylet::desktop
