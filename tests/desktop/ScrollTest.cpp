// Scrolling through accessibility, as from system version 27.0 on: the bars move as the application shows
// them, and nothing is clicked or focused.
#include "DesktopTest.h"
#include "harness/AccessibleTree.h"
#include "harness/InputProbe.h"
#include "harness/QuietWatch.h"

#include <algorithm>

namespace skylet::desktop {
namespace {

std::string nameOf(const testing::TestParamInfo<Toolkit>& test) {
    return nameOf(test.param);
}

class ScrollTest : public DesktopTest, public testing::WithParamInterface<Toolkit> {};

TEST_P(ScrollTest, MovesTheBarBothWays) {
    PREPARE(openDesktop());
    desktop().setEnvironment("SKYLET_SYSTEM_VERSION", "27.0");
    InputProbe probe(desktop(), GetParam(), true);
    const Window target = probe.window();
    ASSERT_NE(target, Window{XCB_NONE}) << probe.process().errorOutput();
    if (GetParam() == Toolkit::firefox) {
        // It works out where its page's parts are when it is first asked.
        const AccessibleTree tree(desktop());
        ASSERT_TRUE(eventually([&] {
            return std::ranges::any_of(tree.shown("Firefox"), [](const AccessibleNode& node) {
                return node.role == roleDocumentWeb && node.place.width > 0;
            });
        }));
    }
    PREPARE(openPuppet());
    const Window cover = puppet().open("40 30 1000 700 title=cover");
    x().movePointer(1270, 790);
    PREPARE(launch({{"forwardEvents", "true"}, {"axScrollSensitivity", "0.02"}}));
    PREPARE(pinAndCover(target, cover));
    ASSERT_TRUE(eventually([&] { return floatsOver(target); }));
    const Rectangle overlay =
        x().geometry(skylet().overlayInFront().value_or(XCB_NONE)).value_or(Rectangle{});
    const QuietWatch quiet(desktop().environment().at("DISPLAY"));
    x().movePointer(overlay.x + overlay.width / 3, overlay.y + overlay.height * 6 / 10);

    constexpr int down = 5;
    constexpr int up = 4;
    for (const int direction : {down, down, up}) {
        const auto before = x().content(target);
        probe.forget();
        x().button(direction, true);
        x().button(direction, false);
        EXPECT_TRUE(probe.says("scrolled")) << direction << ": " << probe.said() << skylet().logText();
        EXPECT_TRUE(eventually([&] { return x().content(target) != before && skylet().mirrors(target); }));
        EXPECT_EQ(probe.said().find("down"), std::string::npos) << probe.said();
    }
    EXPECT_EQ(quiet.disturbances(), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Full, ScrollTest,
                         testing::Values(Toolkit::gtk3, Toolkit::gtk4, Toolkit::qt5, Toolkit::qt6,
                                         Toolkit::office, Toolkit::chromium, Toolkit::firefox),
                         nameOf);

} // namespace
} // namespace skylet::desktop
