// Windows of every kind: on other desktops, with alpha, with a shadow of their own, too large; and the ways
// in which a pinned window ends.
#include "DesktopTest.h"

#include <csignal>
#include <cstdlib>

namespace skylet::desktop {
namespace {

class WindowsTest : public DesktopTest {
  protected:
    void SetUp() override {
        PREPARE(openDesktop());
        PREPARE(openPuppet());
        other_ = std::make_unique<Puppet>(desktop());
    }
    Window openCover() { return other_->open("10 10 1000 760 title=cover"); }

    std::unique_ptr<Puppet> other_;
};

TEST_F(WindowsTest, EndsOfAPinnedWindow) {
    const Window cover = openCover();
    PREPARE(launch());
    for (const bool isKilled : {false, true}) {
        SCOPED_TRACE(isKilled ? "the application is killed" : "the window is closed, its application lives");
        skylet().forgetLog();
        const Window window = puppet().open("100 90 480 320 title=ending");
        PREPARE(pinAndCover(window, cover));
        if (isKilled) {
            puppet().process().signal(SIGKILL);
        } else {
            puppet().tell("destroy " + std::to_string(window));
        }
        EXPECT_TRUE(skylet().waitForLog("overlay: hideOverlay wid=" + std::to_string(window)));
        EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
    }
    // Nothing is pinned any more, so the shortcut pins again.
    skylet().pressShortcut();
    EXPECT_TRUE(skylet().waitForLog("pin: overlay created for wid=" + std::to_string(cover)));
}

TEST_F(WindowsTest, MirrorsEveryKindOfWindow) {
    struct Case {
        const char* description;
        const char* window;
        Rectangle visible; // relative to the client
    };
    const Case cases[] = {
        {"24 bits", "100 90 480 320", {0, 0, 480, 320}},
        {"32 bits", "100 90 480 320 depth=32", {0, 0, 480, 320}},
        {"a shadow of its own", "100 90 480 320 depth=32 shadow=26,20,23,29", {26, 23, 434, 268}},
        {"odd size", "101 93 333 227", {0, 0, 333, 227}},
        {"larger than the screen", "0 0 1700 1100", {0, 0, 1700, 1100}},
    };
    const Window cover = openCover();
    PREPARE(launch());
    for (const Case& test : cases) {
        SCOPED_TRACE(test.description);
        const Window window = puppet().open(std::string(test.window) + " title=kind");
        puppet().tell("pattern 5 " + std::to_string(window));
        if (test.visible.width > x().screen().width) {
            x().moveResize(window, {-150, -100, test.visible.width, test.visible.height});
        }
        PREPARE(pinAndCover(window, cover));
        const Rectangle screen = x().screen();
        EXPECT_TRUE(eventually([&] {
            const Rectangle client = x().geometry(window).value_or(Rectangle{});
            const Rectangle wanted{client.x + test.visible.x, client.y + test.visible.y, test.visible.width,
                                   test.visible.height};
            const Picture all = patternPicture(5, wanted.width, wanted.height);
            return overlayPlace() == wanted &&
                   x().screenshot(wanted) == all.cut({-wanted.x, -wanted.y, screen.width, screen.height});
        }));
        skylet().pressShortcut();
        ASSERT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
        puppet().tell("destroy " + std::to_string(window));
    }
}

TEST_F(WindowsTest, StaysOnItsDesktopUnlessOnAll) {
    for (const bool onAll : {false, true}) {
        SCOPED_TRACE(onAll ? "on all desktops" : "on its own desktop");
        const Window window = puppet().open("100 90 480 320 title=here");
        const Window cover = openCover();
        PREPARE(launch({{"pinToAllSpaces", onAll ? "true" : "false"}}));
        PREPARE(pinAndCover(window, cover));
        x().switchDesktop(1);
        const auto isShown = [&] {
            return !skylet().overlays().empty();
        };
        EXPECT_TRUE(eventually([&] { return isShown() == onAll; }));
        EXPECT_TRUE(throughout(std::chrono::milliseconds(800), [&] { return isShown() == onAll; }));
        x().switchDesktop(0);
        EXPECT_TRUE(eventually(isShown));
        // Frozen or live, but still pinned: the window has only gone elsewhere.
        x().moveToDesktop(window, 1);
        EXPECT_TRUE(throughout(std::chrono::milliseconds(2500), isShown));
        endSkylet();
        puppet().tell("destroy " + std::to_string(window));
    }
}

TEST_F(WindowsTest, OverlayCrossesTheBorderOfMonitors) {
    other_.reset();
    PREPARE(openDesktop({.twoMonitors = true}));
    PREPARE(openTarget());
    PREPARE(launchAndPin());
    for (const int left : {500, 30, 700, 600}) {
        SCOPED_TRACE(left);
        x().moveResize(target_, {left, 150, 480, 320});
        // A frame may take the window a little to the side.
        EXPECT_TRUE(eventually([&] {
            return std::abs(x().geometry(target_).value_or(Rectangle{}).x - left) < 20 && floatsOver(target_);
        }));
    }
}

} // namespace
} // namespace skylet::desktop
