// However the use of a window through its overlay ends, nothing of it stays: no pressed button, no second
// pointer, no hole in a window.
#include "DesktopTest.h"

#include <algorithm>
#include <csignal>
#include <random>
#include <sstream>

namespace skylet::desktop {
namespace {

class InputEndsTest : public DesktopTest {
  protected:
    void prepare() {
        PREPARE(openDesktop());
        PREPARE(openTarget());
    }
    void startAndPin(const Preferences& preferences = {}) {
        PREPARE(launchAndPin(preferences));
        overlay_ = overlayPlace();
        application().forget();
    }
    // As above, with a target that answers pings and grabs the pointer.
    void startAndPinGrabbing() {
        PREPARE(startAndPin());
        application().process().write("grabbing\n");
        EXPECT_TRUE(application().process().readLine());
    }
    // Presses on the overlay and drags a little; the target has seen it.
    void beginDrag();
    [[nodiscard]] std::pair<int, int> spot(int dx, int dy) const {
        return {overlay_.x + overlay_.width / 2 + dx, overlay_.y + overlay_.height / 2 + dy};
    }
    void moveTo(std::pair<int, int> place) { x().movePointer(place.first, place.second); }
    [[nodiscard]] bool hasSecondPointer() {
        return std::ranges::any_of(x().masterPointers(),
                                   [](const std::string& name) { return name.starts_with("Skylet"); });
    }
    [[nodiscard]] bool hasHole(Window window) {
        const Rectangle place = x().geometry(window).value_or(Rectangle{});
        const std::vector<Rectangle> parts = x().shape(window, XCB_SHAPE_SK_INPUT);
        return x().isViewable(window) && !x().isInputOnly(window) &&
               (parts.size() != 1 || parts.front().width < place.width ||
                parts.front().height < place.height);
    }
    [[nodiscard]] bool isClean() {
        const std::vector<Window> windows = x().children(x().root());
        return !hasSecondPointer() && x().numbers(x().root(), "_SKYLET_HOLES").empty() &&
               std::ranges::none_of(windows, [&](Window window) { return hasHole(window); });
    }
    // Ends the drag; the target has seen that too.
    void expectRelease() {
        x().button(1, false);
        EXPECT_TRUE(application().says("release1@")) << application().said();
    }
    // The user's own click reaches the window that is in front.
    void expectUsable();

    Rectangle overlay_;
};

void InputEndsTest::beginDrag() {
    application().forget();
    moveTo(spot(0, 0));
    x().button(1, true);
    ASSERT_TRUE(application().says("press1@")) << application().said();
    moveTo(spot(30, 20));
    ASSERT_TRUE(application().says("motion")) << application().said();
}

void InputEndsTest::expectUsable() {
    (void)puppet().tell("events");
    x().click(1000, 690);
    std::string said;
    EXPECT_TRUE(eventually([&] {
        said += puppet().tell("events");
        return said.find("release1@") != std::string::npos;
    })) << said;
    x().movePointer(1270, 790);
}

TEST_F(InputEndsTest, SignalsEndADragCleanly) {
    PREPARE(prepare());
    for (const int signal : {SIGTERM, SIGINT, SIGKILL, SIGABRT}) {
        SCOPED_TRACE(signal);
        PREPARE(startAndPin());
        PREPARE(beginDrag());
        skylet().process().signal(signal);
        ASSERT_TRUE(skylet().process().waitForExit().has_value());
        EXPECT_TRUE(application().says("release1@")) << application().said();
        x().button(1, false);
        EXPECT_TRUE(eventually([&] { return isClean(); }));
        endSkylet();
        expectUsable();
    }
}

TEST_F(InputEndsTest, ADragEndsWithItsOverlayItsTargetOrOutside) {
    PREPARE(prepare());
    PREPARE(startAndPin());

    // It leaves the overlay, where its release is nobody's but the watch's.
    PREPARE(beginDrag());
    moveTo({1100, 760});
    expectRelease();

    // The overlay is released in the middle.
    PREPARE(beginDrag());
    skylet().pressShortcut();
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
    expectRelease();
    expectUsable();

    // The overlay steps behind in the middle.
    PREPARE(pinAndCover(target_, cover_));
    ASSERT_TRUE(eventually([&] { return floatsOver(target_); }));
    PREPARE(beginDrag());
    PREPARE(bringToFront(target_));
    EXPECT_TRUE(skylet().waitForLog("overlay: sendBehind wid="));
    expectRelease();

    // The target dies in the middle.
    PREPARE(bringToFront(cover_));
    ASSERT_TRUE(eventually([&] { return floatsOver(target_); }));
    PREPARE(beginDrag());
    application().process().signal(SIGKILL);
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
    x().button(1, false);
    expectUsable();
    EXPECT_EQ(endSkylet(), 0);
    EXPECT_TRUE(eventually([&] { return isClean(); }));
}

TEST_F(InputEndsTest, AClickWaitsForABusyTarget) {
    PREPARE(prepare());
    PREPARE(startAndPinGrabbing());
    application().process().signal(SIGSTOP);
    x().click(spot(0, 0).first, spot(0, 0).second);
    EXPECT_TRUE(throughout(std::chrono::milliseconds(400), [&] { return x().activeWindow() == cover_; }));
    application().process().signal(SIGCONT);
    EXPECT_TRUE(application().says("release1@")) << application().said();
    EXPECT_EQ(x().activeWindow(), cover_);
}

TEST_F(InputEndsTest, AFrozenTargetGetsNothingAndTakesNothing) {
    PREPARE(prepare());
    PREPARE(startAndPinGrabbing());
    application().process().signal(SIGSTOP);
    x().click(spot(0, 0).first, spot(0, 0).second);
    EXPECT_TRUE(throughout(std::chrono::milliseconds(1300), [&] { return x().activeWindow() == cover_; }));
    expectUsable();
    // The program goes on without it.
    const std::string line = "overlay: reasserting front order wid=";
    EXPECT_TRUE(skylet().waitForLog(line, skylet().count(line) + 4));
    EXPECT_TRUE(floatsOver(target_));
    skylet().pressShortcut();
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
    application().process().signal(SIGCONT);
    EXPECT_EQ(application().said().find("press1@"), std::string::npos) << application().said();
    application().process().write("focused\n");
    EXPECT_EQ(application().process().readLine(), "no");
    EXPECT_EQ(endSkylet(), 0);
    EXPECT_TRUE(eventually([&] { return isClean(); }));
}

TEST_F(InputEndsTest, WhatSwitchesToTheRealWindow) {
    struct Case {
        const char* name;
        Preferences preferences;
        const char* version;
        bool withCommand;
        int button;
    };
    const Case cases[] = {
        {"a Command-click", {}, "26.0", true, 1},
        {"a click without forwarding", {{"forwardEvents", "false"}}, "26.0", false, 1},
        {"a click from 27.0 on", {}, "27.0", false, 1},
        {"a right click from 27.0 on", {{"forwardEvents", "true"}}, "27.0", false, 3},
        {"a middle click from 27.0 on", {}, "27.1", false, 2},
    };
    PREPARE(prepare());
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        desktop().setEnvironment("SKYLET_SYSTEM_VERSION", one.version);
        PREPARE(startAndPin(one.preferences));
        moveTo(spot(0, 0));
        if (one.withCommand) {
            x().hold(Modifier::super, true);
        }
        x().button(one.button, true);
        x().button(one.button, false);
        if (one.withCommand) {
            x().hold(Modifier::super, false);
        }
        EXPECT_TRUE(eventually([&] { return x().activeWindow() == target_; }));
        EXPECT_TRUE(eventually([&] { return isOutOfTheWayOf(target_); }));
        EXPECT_EQ(x().inputFocus(), target_);
        EXPECT_EQ(application().said().find("press"), std::string::npos) << application().said();
        x().movePointer(1270, 790);
        EXPECT_EQ(endSkylet(), 0);
    }
}

class ManyClicksTest : public InputEndsTest, public testing::WithParamInterface<bool> {};

// A target that grabs the pointer at a press and lets go late would take the next press without its release.
TEST_P(ManyClicksTest, ArriveOnceAndInOrder) {
    constexpr int clicks = 400;
    PREPARE(prepare());
    if (GetParam()) {
        application().process().write("grabbing\n");
        ASSERT_EQ(application().process().readLine(), "ok");
    }
    PREPARE(startAndPin());
    std::string expected;
    for (int click = 0; click < clicks; ++click) {
        const auto place = spot(click % 17 * 5 - 40, click % 11 * 7 - 35);
        x().click(place.first, place.second);
        const auto client = x().geometry(target_).value_or(Rectangle{});
        const std::string at = "@" + std::to_string(place.first - client.x) + "," +
                               std::to_string(place.second - client.y) + " ";
        expected += "press1" + at;
        expected += "release1" + at;
    }
    std::string got;
    EXPECT_TRUE(eventually([&] {
        got.clear();
        std::istringstream words(application().said());
        for (std::string word; words >> word;) {
            if (word.starts_with("press") || word.starts_with("release1@")) {
                got += word + " ";
            }
        }
        return got.size() >= expected.size();
    }));
    EXPECT_EQ(got, expected);
}

INSTANTIATE_TEST_SUITE_P(Small, ManyClicksTest, testing::Bool(), [](const auto& which) {
    return which.param ? std::string("grabbing") : std::string("plain");
});

class FullInputEndsTest : public InputEndsTest {};

TEST_F(FullInputEndsTest, KillsAtAnyMomentLeaveACleanDesktop) {
    constexpr int kills = 100;
    PREPARE(prepare());
    std::minstd_rand random(20260101);
    for (int kill = 0; kill < kills; ++kill) {
        SCOPED_TRACE(kill);
        PREPARE(startAndPin());
        moveTo(spot(0, 0));
        // Anywhere in a click (even) or a drag (odd), before, in or after each of its steps.
        std::vector<std::function<void()>> steps{[&] {
            x().button(1, true);
        }};
        if (kill % 2 == 1) {
            for (int step = 1; step <= 4; ++step) {
                steps.emplace_back([this, step] { moveTo(spot(step * 10, step * 5)); });
            }
        }
        steps.emplace_back([&] { x().button(1, false); });
        const std::size_t last = random() % (steps.size() + 1);
        for (std::size_t step = 0; step < last; ++step) {
            steps[step]();
        }
        const auto moment = std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 12000);
        while (std::chrono::steady_clock::now() < moment) {
        }
        skylet().process().signal(SIGKILL);
        // Every tenth time nobody is left to clean up but the next start.
        const bool repairDies = kill % 10 == 9;
        if (repairDies) {
            for (const pid_t pid : descendantsNamed("skylet-repair")) {
                ::kill(pid, SIGKILL);
            }
        }
        ASSERT_TRUE(skylet().process().waitForExit().has_value());
        endSkylet();
        x().button(1, false);
        if (repairDies) {
            PREPARE(launch());
        }
        ASSERT_TRUE(eventually([&] { return isClean(); }));
        if (repairDies) {
            EXPECT_EQ(endSkylet(), 0);
        }
        PREPARE(expectUsable());
    }
}

} // namespace
} // namespace skylet::desktop
