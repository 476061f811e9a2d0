#include "windows/WindowLevelManager.h"

#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace skylet {
namespace {

constexpr platform::ProcessID editor = 500;

class WindowLevelManagerTest : public testing::Test {
  protected:
    WindowLevelManagerTest() {
        desktop.launchApplication(editor, "Editor");
        target = desktop.openWindow(editor, "one", {10, 20, 400, 300});
    }
    std::vector<std::string> raise(platform::WindowID windowID, bool activate) {
        WindowLevelManager::raiseWindow(desktop.accessibility, desktop.windowServer, desktop.workspace,
                                        desktop.log, editor, windowID, activate);
        return desktop.takeLog();
    }
    [[nodiscard]] bool matches() {
        return WindowLevelManager::axWindow(desktop.accessibility, desktop.windowServer, editor, target) !=
               nullptr;
    }

    sim::SimulatedDesktop desktop;
    platform::WindowID target = 0;
};

TEST_F(WindowLevelManagerTest, MatchesByEachOfTheFourValuesBelowFivePoints) {
    const platform::Rect listed{10, 20, 400, 300};
    for (const double offset : {4.9, -4.9, 5.0, -5.0}) {
        for (int value = 0; value < 4; ++value) {
            sim::SimWindow& window = *desktop.world.find(target);
            desktop.moveWindow(target, listed);
            double& moved = value == 0   ? window.axPosition->x
                            : value == 1 ? window.axPosition->y
                            : value == 2 ? window.axSize->width
                                         : window.axSize->height;
            moved += offset;
            EXPECT_EQ(matches(), std::abs(offset) < 5) << value << " off by " << offset;
        }
    }
}

TEST_F(WindowLevelManagerTest, NeverMatchesWhatIsOutOfViewOrUnreadableOrForeign) {
    EXPECT_TRUE(matches());
    sim::SimWindow& window = *desktop.world.find(target);
    window.onScreen = false;
    EXPECT_FALSE(matches());
    window.onScreen = true;
    window.axSize.reset();
    EXPECT_FALSE(matches());
    window.axSize = platform::Size{400, 300};
    window.entry.bounds.reset();
    EXPECT_FALSE(matches());
}

TEST_F(WindowLevelManagerTest, RaisesTheFirstOfTwoAtTheSamePlace) {
    const auto over = desktop.openWindow(editor, "two", {10, 20, 400, 300});
    const std::string id = std::to_string(target);
    EXPECT_EQ(raise(target, false),
              (std::vector<std::string>{"raiseWindow: AXRaise wid=" + id + " pid=500 result=0"}));
    EXPECT_EQ(desktop.accessibility.raised, std::vector{over});
    EXPECT_TRUE(desktop.workspace.activated.empty());
}

TEST_F(WindowLevelManagerTest, ActivatesAndLogsEachOutcome) {
    const std::string id = std::to_string(target);
    EXPECT_EQ(raise(target, true),
              (std::vector<std::string>{"raiseWindow: AXRaise wid=" + id + " pid=500 result=0",
                                        "raiseWindow: activated app 'Editor'"}));
    EXPECT_EQ(desktop.workspace.activated, std::vector{editor});
    EXPECT_EQ(raise(9, true),
              (std::vector<std::string>{"raiseWindow: no AX window matched wid=9 pid=500; doing nothing"}));
    desktop.accessibility.trusted = false;
    EXPECT_EQ(raise(target, true),
              (std::vector<std::string>{
                  "raiseWindow: could not get windows for pid=500 axErr=-25211 trusted=false"}));
}

} // namespace
} // namespace skylet
