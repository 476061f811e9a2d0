// What happens around the program: window managers, compositors and buses come and go, servers are missing,
// another client holds the shortcut, it is started twice.
#include "DesktopTest.h"

#include <algorithm>
#include <csignal>
#include <functional>

namespace skylet::desktop {
namespace {

constexpr int controlAndSuper = 0x44; // the modifier map of the server: Control, Mod4
const std::string program = SKYLET_PROGRAM;

class SurroundingsTest : public DesktopTest {
  protected:
    // A pinned window whose overlay floats.
    void pinSomething(const DesktopOptions& options = {}) {
        PREPARE(openDesktop(options));
        PREPARE(openPuppet());
        window_ = puppet().open("100 90 480 320 title=target");
        other_ = std::make_unique<Puppet>(desktop());
        cover_ = other_->open("10 10 1000 700 title=cover");
        PREPARE(launch());
        PREPARE(pinAndCover(window_, cover_));
        ASSERT_TRUE(eventually([&] { return floatsOver(window_); }));
    }
    void expectStillWorking(std::uint32_t pattern) {
        puppet().tell("pattern " + std::to_string(pattern));
        EXPECT_TRUE(eventually([&] { return skylet().mirrors(window_); }));
        x().activate(window_);
        EXPECT_TRUE(eventually([&] { return isOutOfTheWayOf(window_); }));
        x().activate(cover_);
        EXPECT_TRUE(eventually([&] { return skylet().mirrors(window_); }));
    }

    std::unique_ptr<Puppet> other_;
    Window window_ = XCB_NONE;
    Window cover_ = XCB_NONE;
};

TEST_F(SurroundingsTest, WorksWithoutBuses) {
    struct Case {
        const char* description;
        DesktopOptions options;
    };
    const Case cases[] = {
        {"no session bus", {.sessionBus = false}},
        {"no accessibility", {.accessibility = false}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.description);
        PREPARE(pinSomething(test.options));
        expectStillWorking(2);
        endSkylet();
        other_.reset();
    }
}

TEST_F(SurroundingsTest, OutlivesBuses) {
    PREPARE(pinSomething());
    desktop().killAccessibilityBus();
    expectStillWorking(2);
    desktop().sessionBus().signal(SIGKILL);
    ASSERT_TRUE(desktop().sessionBus().waitForExit());
    expectStillWorking(3);
}

TEST_F(SurroundingsTest, OutlivesTheXServerOfItsWindowOnly) {
    PREPARE(pinSomething());
    x().killClient(window_);
    EXPECT_TRUE(skylet().waitForLog("overlay: hideOverlay wid="));
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
}

TEST_F(SurroundingsTest, SecondStartActivatesTheFirst) {
    PREPARE(pinSomething());
    Process second = desktop().start({program}, "second.err");
    EXPECT_EQ(second.waitForExit(), 0);
    EXPECT_EQ(second.errorOutput(), "");
    EXPECT_EQ(skylet().count("Launched successfully"), 1);
    expectStillWorking(2);
}

TEST_F(SurroundingsTest, EndsCleanlyWhenAsked) {
    PREPARE(pinSomething());
    skylet().process().signal(SIGTERM);
    EXPECT_EQ(skylet().process().waitForExit(), 0);
    EXPECT_TRUE(skylet().waitForLog("overlay: hideOverlay wid="));
    endSkylet();
}

TEST_F(SurroundingsTest, ShortcutHeldByAnotherClient) {
    PREPARE(openDesktop());
    PREPARE(openPuppet());
    const Window window = puppet().open("100 90 480 320 title=target");
    const std::string grab = std::to_string(x().keycode('p')) + " " + std::to_string(controlAndSuper);
    ASSERT_EQ(puppet().tell("grab " + grab), "ok");
    PREPARE(launch());
    EXPECT_TRUE(skylet().waitForLog("tryCreateEventTap: CGEvent.tapCreate failed"));
    EXPECT_TRUE(eventually([&] { return !skylet().errorOutput().empty(); }));
    EXPECT_FALSE(skylet().waitForLog("tryCreateEventTap: SUCCESS", 1, std::chrono::milliseconds(2500)));
    const std::string told = skylet().errorOutput();
    EXPECT_EQ(std::ranges::count(told, '\n'), 1) << told;
    expectedErrors_ = told;

    ASSERT_EQ(puppet().tell("ungrab " + grab), "ok");
    EXPECT_TRUE(skylet().waitForLog("tryCreateEventTap: SUCCESS"));
    EXPECT_TRUE(skylet().pin(window));
    // The key went to nobody else.
    EXPECT_EQ(puppet().tell("events").find("key" + std::to_string(x().keycode('p'))), std::string::npos);
}

TEST_F(SurroundingsTest, ShortcutIsNeverLostToAChangeOfKeyboard) {
    PREPARE(openDesktop());
    PREPARE(openPuppet());
    const Window window = puppet().open("100 90 480 320 title=target");
    PREPARE(launch());
    PREPARE(bringToFront(window));
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
        std::function<void(Environment&)> change;
    };
    const Case cases[] = {
        {"no display", "DISPLAY",
         [](Environment& environment) {
             environment.erase("DISPLAY");
         }},
        {"nobody on the display", ":4071",
         [](Environment& environment) {
             environment["DISPLAY"] = ":4071";
         }},
        {"Wayland without X", "Wayland",
         [](Environment& environment) {
             environment.erase("DISPLAY");
             environment["WAYLAND_DISPLAY"] = "wayland-0";
             environment["XDG_SESSION_TYPE"] = "wayland";
         }},
    };
    PREPARE(openDesktop());
    for (const Case& test : cases) {
        SCOPED_TRACE(test.description);
        Environment environment = desktop().environment();
        test.change(environment);
        const std::string errors = desktop().path(std::string(test.description) + ".err");
        Process process({program}, environment, errors);
        const std::optional<int> code = process.waitForExit();
        ASSERT_TRUE(code);
        EXPECT_GT(*code, 0);
        EXPECT_LT(*code, 126) << "it crashed";
        const std::string told = process.errorOutput();
        EXPECT_EQ(std::ranges::count(told, '\n'), 1) << told;
        EXPECT_NE(told.find(test.named), std::string::npos) << told;
    }
}

TEST_F(SurroundingsTest, EndsWithTheXServer) {
    PREPARE(pinSomething());
    desktop().killServer();
    const std::optional<int> code = skylet().process().waitForExit();
    ASSERT_TRUE(code) << "it runs on without its server";
    EXPECT_GT(*code, 0);
    EXPECT_LT(*code, 126) << "it crashed";
    expectedErrors_ = skylet().errorOutput();
    EXPECT_EQ(std::ranges::count(expectedErrors_, '\n'), 1) << expectedErrors_;
    endSkylet();
}

// Replacing needs a second window manager.
class FullSurroundingsTest : public SurroundingsTest {};

TEST_F(FullSurroundingsTest, WindowManagerIsReplaced) {
    PREPARE(pinSomething());
    std::uint32_t pattern = 2;
    for (const auto kind : {WindowManagerKind::xfwm4, WindowManagerKind::metacity, WindowManagerKind::none,
                            WindowManagerKind::openbox, WindowManagerKind::kwin}) {
        SCOPED_TRACE(nameOf(kind));
        ASSERT_TRUE(desktop().changeWindowManager(kind));
        x().activate(cover_);
        expectStillWorking(pattern++);
    }
}

TEST_F(FullSurroundingsTest, CompositorComesAndGoes) {
    PREPARE(pinSomething());
    ASSERT_TRUE(desktop().startCompositor());
    expectStillWorking(2);
    desktop().stopCompositor();
    expectStillWorking(3);
    ASSERT_TRUE(desktop().startCompositor());
    expectStillWorking(4);
}

} // namespace
} // namespace skylet::desktop
