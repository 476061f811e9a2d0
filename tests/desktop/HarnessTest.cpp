// That the harness itself tells the truth: a window manager that does not run must not pass for one that
// does.
#include "harness/Application.h"
#include "harness/VirtualDesktop.h"

#include <gtest/gtest.h>

namespace skylet::desktop {
namespace {

TEST(HarnessTest, PuppetShowsItsPattern) {
    VirtualDesktop desktop;
    ASSERT_EQ(desktop.problem(), "");
    Puppet puppet(desktop);
    const Window window = puppet.open("200 150 400 300 title=pattern");
    ASSERT_NE(window, Window{XCB_NONE});
    ASSERT_EQ(puppet.tell("pattern 7"), "ok");
    const auto place = desktop.x().geometry(window);
    ASSERT_TRUE(place);
    EXPECT_EQ(difference(desktop.x().screenshot(*place), patternPicture(7, 400, 300)), 0);
    EXPECT_NE(difference(desktop.x().screenshot(*place), patternPicture(8, 400, 300)), 0);
    EXPECT_EQ(desktop.x().pidOf(window), puppet.process().pid());
}

struct Combination {
    WindowManagerKind windowManager;
    ApplicationKind application;
};

class HarnessMatrix : public testing::TestWithParam<Combination> {};

TEST_P(HarnessMatrix, OpensAndActivates) {
    VirtualDesktop desktop({.windowManager = GetParam().windowManager});
    ASSERT_EQ(desktop.problem(), "");
    Application application(desktop, GetParam().application);
    ASSERT_NE(application.window(), Window{XCB_NONE}) << application.process().errorOutput();
    Puppet other(desktop);
    const Window cover = other.open("90 60 700 500 title=other");
    desktop.x().activate(cover);
    EXPECT_TRUE(eventually([&] { return desktop.x().activeWindow() == cover; }));
    desktop.x().activate(application.window());
    EXPECT_TRUE(eventually([&] { return desktop.x().activeWindow() == application.window(); }));
}

INSTANTIATE_TEST_SUITE_P(
    Full, HarnessMatrix,
    testing::Values(Combination{WindowManagerKind::openbox, ApplicationKind::xterm},
                    Combination{WindowManagerKind::openboxPicom, ApplicationKind::puppet},
                    Combination{WindowManagerKind::xfwm4, ApplicationKind::gtk3},
                    Combination{WindowManagerKind::xfwm4Compositing, ApplicationKind::gtk4},
                    Combination{WindowManagerKind::metacity, ApplicationKind::qt5},
                    Combination{WindowManagerKind::mutter, ApplicationKind::qt6},
                    Combination{WindowManagerKind::kwin, ApplicationKind::tk},
                    Combination{WindowManagerKind::kwinCompositing, ApplicationKind::xterm},
                    Combination{WindowManagerKind::i3, ApplicationKind::xterm}),
    [](const auto& test) { return nameOf(test.param.windowManager) + "_" + nameOf(test.param.application); });

} // namespace
} // namespace skylet::desktop
