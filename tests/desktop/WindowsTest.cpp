// Windows of every kind: many, on other desktops, with alpha, with a shadow of their own, too large, of a
// program that hangs; and the ways in which a pinned window ends.
#include "DesktopTest.h"

#include <csignal>
#include <functional>

namespace skylet::desktop {
namespace {

class WindowsTest : public DesktopTest {
  protected:
    void SetUp() override {
        PREPARE(openDesktop());
        PREPARE(openPuppet());
        cover_ = std::make_unique<Puppet>(desktop());
    }
    Window openCover() { return cover_->open("10 10 1000 760 title=cover"); }

    std::unique_ptr<Puppet> cover_;
};

TEST_F(WindowsTest, EndsOfAPinnedWindow) {
    struct Case {
        const char* description;
        std::function<void(Window)> end;
    };
    const Case cases[] = {
        {"the window is closed, its application lives",
         [this](Window window) {
             puppet().tell("destroy " + std::to_string(window));
         }},
        {"the application is killed",
         [this](Window) {
             puppet().process().signal(SIGKILL);
         }},
    };
    const Window cover = openCover();
    PREPARE(launch());
    for (const Case& test : cases) {
        SCOPED_TRACE(test.description);
        skylet().forgetLog();
        const Window window = puppet().open("100 90 480 320 title=ending");
        PREPARE(pinAndCover(window, cover));
        test.end(window);
        EXPECT_TRUE(skylet().waitForLog("overlay: hideOverlay wid=" + std::to_string(window)));
        EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
    }
    // Nothing is pinned any more, so the shortcut pins again.
    skylet().pressShortcut();
    EXPECT_TRUE(skylet().waitForLog("pin: overlay created for wid=" + std::to_string(cover)));
}

TEST_F(WindowsTest, ShortcutReleasesTheOnlyPinnedWindowFromAnywhere) {
    const Window first = puppet().open("100 90 480 320 title=first");
    const Window second = puppet().open("140 110 480 320 title=second");
    PREPARE(launch());
    ASSERT_TRUE(skylet().pin(first));
    PREPARE(bringToFront(second));
    skylet().pressShortcut();
    EXPECT_TRUE(skylet().waitForLog("togglePin: Unpinned 'first' (wid=" + std::to_string(first) + ")"));
    skylet().pressShortcut();
    EXPECT_TRUE(skylet().waitForLog("togglePin: Pinned 'second' (wid=" + std::to_string(second) + ")"));
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
    };
    const Window cover = openCover();
    PREPARE(launch());
    for (const Case& test : cases) {
        SCOPED_TRACE(test.description);
        const Window window = puppet().open(std::string(test.window) + " title=kind");
        puppet().tell("pattern 5 " + std::to_string(window));
        PREPARE(pinAndCover(window, cover));
        const Rectangle client = x().geometry(window).value_or(Rectangle{});
        const Rectangle wanted{client.x + test.visible.x, client.y + test.visible.y, test.visible.width,
                               test.visible.height};
        EXPECT_TRUE(eventually([&] {
            const auto overlay = skylet().overlayInFront();
            return overlay && x().geometry(*overlay) == wanted &&
                   x().screenshot(wanted) == patternPicture(5, wanted.width, wanted.height);
        }));
        skylet().pressShortcut();
        ASSERT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
        puppet().tell("destroy " + std::to_string(window));
    }
}

TEST_F(WindowsTest, WindowLargerThanTheScreen) {
    const Window window = puppet().open("0 0 1700 1100 title=large");
    x().moveResize(window, {-150, -100, 1700, 1100});
    const Window cover = openCover();
    PREPARE(launch());
    PREPARE(pinAndCover(window, cover));
    EXPECT_TRUE(eventually([&] {
        const auto overlay = skylet().overlayInFront();
        const auto place = x().geometry(window);
        return overlay && place && x().geometry(*overlay) == place && place->width == 1700 &&
               x().screenshot({200, 200, 400, 300}) ==
                   patternPicture(0, 1700, 1100).cut({200 - place->x, 200 - place->y, 400, 300});
    }));
}

TEST_F(WindowsTest, StoppedApplicationDoesNotBlock) {
    Application stopped(desktop(), ApplicationKind::xterm);
    const Window cover = openCover();
    PREPARE(launch());
    PREPARE(pinAndCover(stopped.window(), cover));
    ASSERT_TRUE(eventually([&] { return floatsOver(stopped.window()); }));
    stopped.process().signal(SIGSTOP);
    const int reasserted = skylet().count("overlay: reasserting front order wid=");
    EXPECT_TRUE(skylet().waitForLog("overlay: reasserting front order wid=", reasserted + 4));
    x().click(400, 200);
    EXPECT_TRUE(floatsOver(stopped.window()));
    skylet().pressShortcut();
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
    stopped.process().signal(SIGCONT);
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

TEST(TwoMonitorsTest, OverlayCrossesTheBorder) {
    VirtualDesktop desktop({.twoMonitors = true});
    ASSERT_EQ(desktop.problem(), "");
    Puppet puppet(desktop);
    const Window window = puppet.open("500 200 480 320 title=across");
    Puppet other(desktop);
    const Window cover = other.open("20 20 1200 740 title=cover");
    SkyletProgram skylet(desktop);
    ASSERT_TRUE(skylet.waitUntilLaunched()) << skylet.errorOutput();
    ASSERT_TRUE(skylet.pin(window));
    desktop.x().activate(cover);
    for (const int left : {500, 30, 700, 600}) {
        SCOPED_TRACE(left);
        desktop.x().moveResize(window, {left, 150, 480, 320});
        EXPECT_TRUE(eventually([&] {
            const auto overlay = skylet.overlayInFront();
            return overlay && desktop.x().geometry(*overlay) == desktop.x().geometry(window) &&
                   skylet.mirrors(window);
        }));
    }
    EXPECT_EQ(skylet.errorOutput(), "");
}

} // namespace
} // namespace skylet::desktop
