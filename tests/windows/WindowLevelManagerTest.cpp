#include "windows/WindowLevelManager.h"

#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>

namespace skylet {
namespace {

class WindowLevelManagerTest : public testing::Test {
  protected:
    static constexpr platform::Rect place{10, 20, 400, 300};

    Lines raise(platform::WindowID windowID, bool activate) {
        WindowLevelManager::raiseWindow(desktop.accessibility, desktop.windowServer, desktop.workspace,
                                        desktop.log, editor, windowID, activate);
        return desktop.takeLog();
    }
    [[nodiscard]] bool matches() {
        return WindowLevelManager::axWindow(desktop.accessibility, desktop.windowServer, editor, target) !=
               nullptr;
    }

    sim::SimulatedDesktop desktop;
    platform::WindowID target = desktop.openWindow(editor, "one", place);
    const std::string id = std::to_string(target);
};

TEST_F(WindowLevelManagerTest, MatchesByEachOfTheFourValuesBelowFivePoints) {
    platform::Rect told = place;
    for (double* value : {&told.x, &told.y, &told.width, &told.height}) {
        for (const double offset : {4.9, -4.9, 5.0, -5.0}) {
            told = place;
            *value += offset;
            sim::SimNode& window = *desktop.world.find(target)->ax;
            window.position = told.origin();
            window.size = told.size();
            EXPECT_EQ(matches(), std::abs(offset) < 5) << *value << " off by " << offset;
        }
    }
}

TEST_F(WindowLevelManagerTest, NeverMatchesWhatIsOutOfViewOrUnreadableOrForeign) {
    EXPECT_TRUE(matches());
    sim::SimWindow& window = *desktop.world.find(target);
    window.onScreen = false;
    EXPECT_FALSE(matches());
    window.onScreen = true;
    window.ax->size.reset();
    EXPECT_FALSE(matches());
    window.ax->size = platform::Size{400, 300};
    window.entry.bounds.reset();
    EXPECT_FALSE(matches());
}

TEST_F(WindowLevelManagerTest, RaisesTheFirstOfTwoAtTheSamePlace) {
    const auto over = desktop.openWindow(editor, "two", place);
    EXPECT_EQ(raise(target, false), (Lines{"raiseWindow: AXRaise wid=" + id + " pid=500 result=0"}));
    EXPECT_EQ(desktop.accessibility.raised, std::vector{over});
    EXPECT_TRUE(desktop.workspace.activated.empty());
}

TEST_F(WindowLevelManagerTest, ActivatesAndLogsEachOutcome) {
    EXPECT_EQ(raise(target, true), (Lines{"raiseWindow: AXRaise wid=" + id + " pid=500 result=0",
                                          "raiseWindow: activated app 'Editor'"}));
    EXPECT_EQ(desktop.workspace.activated, std::vector{editor});
    EXPECT_EQ(raise(9, true), (Lines{"raiseWindow: no AX window matched wid=9 pid=500; doing nothing"}));
    desktop.accessibility.trusted = false;
    EXPECT_EQ(raise(target, true),
              (Lines{"raiseWindow: could not get windows for pid=500 axErr=-25211 trusted=false"}));
}

} // namespace
} // namespace skylet
