// What happens around the program: window managers, compositors and buses come and go, servers are missing,
// another client holds the shortcut, it is started twice.
#include "DesktopTest.h"

#include <algorithm>

namespace skylet::desktop {
namespace {

constexpr std::uint16_t controlAndSuper = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;

class SurroundingsTest : public DesktopTest {
  protected:
    // A pinned window whose overlay floats.
    void pinSomething(const DesktopOptions& options = {}) {
        PREPARE(openDesktop(options));
        PREPARE(openTarget());
        PREPARE(launchAndPin());
    }
    void expectStillWorking() {
        application().changeContent();
        EXPECT_TRUE(eventually([&] { return skylet().mirrors(target_); }));
        x().activate(target_);
        EXPECT_TRUE(eventually([&] { return isOutOfTheWayOf(target_); }));
        x().activate(cover_);
        EXPECT_TRUE(eventually([&] { return skylet().mirrors(target_); }));
    }
};

TEST_F(SurroundingsTest, WorksWithoutBuses) {
    for (const DesktopOptions& options :
         {DesktopOptions{.sessionBus = false}, DesktopOptions{.accessibility = false}}) {
        SCOPED_TRACE(options.sessionBus ? "no accessibility" : "no session bus");
        PREPARE(pinSomething(options));
        expectStillWorking();
        endSkylet();
    }
}

TEST_F(SurroundingsTest, OutlivesTheAccessibilityBus) {
    PREPARE(pinSomething());
    desktop().killAccessibilityBus();
    expectStillWorking();
}

TEST_F(SurroundingsTest, ShortcutHeldByAnotherClient) {
    PREPARE(openDesktop());
    PREPARE(openTarget());
    ASSERT_TRUE(x().grabKey('p', controlAndSuper));
    PREPARE(launch());
    EXPECT_TRUE(skylet().waitForLog("tryCreateEventTap: CGEvent.tapCreate failed"));
    EXPECT_TRUE(eventually([&] { return !skylet().errorOutput().empty(); }));
    EXPECT_FALSE(skylet().waitForLog("tryCreateEventTap: SUCCESS", 1, std::chrono::milliseconds(2500)));
    const std::string told = skylet().errorOutput();
    EXPECT_EQ(std::ranges::count(told, '\n'), 1) << told;
    expectedErrors_ = told;

    x().ungrabKey('p', controlAndSuper);
    EXPECT_TRUE(skylet().waitForLog("tryCreateEventTap: SUCCESS"));
    EXPECT_TRUE(skylet().pin(target_));
    // The key went to nobody else.
    EXPECT_EQ(application().said().find("key" + std::to_string(x().keycode('p'))), std::string::npos);
}

TEST_F(SurroundingsTest, ShortcutIsNeverLostToAChangeOfKeyboard) {
    PREPARE(openDesktop());
    PREPARE(openTarget());
    PREPARE(launch());
    PREPARE(bringToFront(target_));
    constexpr int rounds = 40;
    for (int round = 1; round <= rounds; ++round) {
        x().announceKeyboard();
        x().sync();
        // A round trip more each time, so that every phase of what the program does about it is met once.
        for (int trips = 0; trips < round; ++trips) {
            x().sync();
        }
        skylet().pressShortcut();
        ASSERT_TRUE(skylet().waitForLog("togglePin: ", round)) << "round " << round;
    }
}

TEST_F(SurroundingsTest, TellsWhyItCannotStart) {
    struct Case {
        const char* description;
        const char* named; // what the user has to look at
        Environment change;
    };
    const Case cases[] = {
        {"no display", "DISPLAY", {}},
        {"nobody on the display", ":4071", {{"DISPLAY", ":4071"}}},
        {"Wayland without X", "Wayland", {{"WAYLAND_DISPLAY", "wayland-0"}, {"XDG_SESSION_TYPE", "wayland"}}},
    };
    PREPARE(openDesktop());
    for (const Case& test : cases) {
        SCOPED_TRACE(test.description);
        Environment environment = test.change;
        environment.insert(desktop().environment().begin(), desktop().environment().end());
        if (!test.change.contains("DISPLAY")) {
            environment.erase("DISPLAY");
        }
        const std::string errors = desktop().path(std::string(test.description) + ".err");
        Process process({SKYLET_PROGRAM}, environment, errors);
        expectFailure(process, test.named);
    }
}

TEST_F(SurroundingsTest, EndsWithTheXServer) {
    PREPARE(pinSomething());
    desktop().killServer();
    expectFailure(skylet().process());
    expectedErrors_ = skylet().errorOutput();
    endSkylet();
}

// Replacing needs a second window manager.
class FullSurroundingsTest : public SurroundingsTest {};

TEST_F(FullSurroundingsTest, WindowManagerIsReplaced) {
    PREPARE(pinSomething());
    for (const auto kind : {WindowManagerKind::xfwm4, WindowManagerKind::metacity, WindowManagerKind::none,
                            WindowManagerKind::openbox, WindowManagerKind::kwin}) {
        SCOPED_TRACE(nameOf(kind));
        ASSERT_TRUE(desktop().changeWindowManager(kind));
        x().activate(cover_);
        expectStillWorking();
    }
}

TEST_F(FullSurroundingsTest, CompositorComesAndGoes) {
    PREPARE(pinSomething());
    ASSERT_TRUE(desktop().startCompositor());
    expectStillWorking();
    desktop().stopCompositor();
    expectStillWorking();
    ASSERT_TRUE(desktop().startCompositor());
    expectStillWorking();
}

} // namespace
} // namespace skylet::desktop
