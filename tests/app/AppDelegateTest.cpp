#include "app/AppDelegate.h"

#include "foundation/PreferenceKeys.h"
#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace skylet {
namespace {

using Lines = std::vector<std::string>;
using platform::ProcessID;
using platform::WindowID;

constexpr ProcessID editor = 500;
constexpr ProcessID browser = 600;
constexpr platform::Rect place{100, 100, 800, 600};
const std::string hiddenKey = "ZentroStatusItemVisibility.Hidden.com.corvane.skylet";

class AppDelegateTest : public testing::Test {
  protected:
    AppDelegateTest() {
        desktop.launchApplication(editor, "Editor");
        desktop.launchApplication(browser, "Browser");
        document = desktop.openWindow(editor, "doc", place);
        page = desktop.openWindow(browser, "", place);
        app = make();
    }
    std::unique_ptr<AppDelegate> make() {
        return std::make_unique<AppDelegate>(
            desktop.environment, desktop.scroller, desktop.eventTap, desktop.eventPoster, desktop.application,
            desktop.statusBar, AppCallbacks{.reportToUser = {}, .fatal = {}, .terminate = [this] {
                                                ++terminations;
                                            }});
    }
    Lines toggle() {
        (void)desktop.takeLog();
        app->togglePinFrontmostWindow();
        Lines lines = desktop.takeLog();
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("togglePin: "); });
        return lines;
    }
    [[nodiscard]] std::string toggled(const std::string& text, WindowID windowID) const {
        return "togglePin: " + text + " (wid=" + std::to_string(windowID) + ")";
    }

    sim::SimulatedDesktop desktop;
    WindowID document = 0;
    WindowID page = 0;
    int terminations = 0;
    std::unique_ptr<AppDelegate> app;
};

TEST_F(AppDelegateTest, LaunchLogsPermissionsRegistersAndFinishes) {
    desktop.eventPoster.permitted = false;
    app->applicationDidFinishLaunching();
    EXPECT_EQ(desktop.takeLog(),
              (Lines{"Accessibility trusted: true", "PostEvent access: false  ListenEvent access: true",
                     "tryCreateEventTap: SUCCESS — hotkey active for keyCode=35", "Launched successfully"}));
    EXPECT_TRUE(desktop.defaults.contains(PreferenceKeys::registeredHotkeys));
}

TEST_F(AppDelegateTest, AsksForTrustOnceInALifetimeAndRemembersItFirst) {
    int prompts = 0;
    desktop.accessibility.onPrompt = [&] {
        ++prompts;
        EXPECT_TRUE(desktop.defaults.readBool(PreferenceKeys::didPromptForAccessibilityStableIdentity)
                        .valueOr(false));
    };
    app->applicationDidFinishLaunching();
    EXPECT_EQ(prompts, 0) << "trusted";
    desktop.accessibility.trusted = false;
    for (int launches = 0; launches < 2; ++launches) {
        app = make();
        app->applicationDidFinishLaunching();
        EXPECT_EQ(prompts, 1);
    }
}

TEST_F(AppDelegateTest, DiscardsTheLegacyColourOnce) {
    desktop.defaults.setInteger(PreferenceKeys::menuBarPillColor, 7);
    app->applicationDidFinishLaunching();
    EXPECT_FALSE(desktop.defaults.contains(PreferenceKeys::menuBarPillColor));
    desktop.defaults.setInteger(PreferenceKeys::menuBarPillColor, 7);
    make()->applicationDidFinishLaunching();
    EXPECT_TRUE(desktop.defaults.contains(PreferenceKeys::menuBarPillColor));
}

TEST_F(AppDelegateTest, TheShortcutTogglesByHowManyArePinned) {
    desktop.activate(editor);
    EXPECT_EQ(toggle(), Lines{toggled("Pinned 'doc'", document)});
    // One pinned: it is released, whether or not it is the one in front.
    desktop.activate(browser);
    EXPECT_EQ(toggle(), Lines{toggled("Unpinned 'doc'", document)});
    EXPECT_TRUE(app->tracker().pinnedWindows().empty());
    EXPECT_EQ(toggle(), Lines{toggled("Pinned 'Browser'", page)});
    EXPECT_EQ(toggle(), Lines{toggled("Unpinned 'Browser'", page)});
    // Two pinned: a third is pinned too, a pinned one in front is released.
    app->tracker().pin(desktop.foreign(document));
    app->tracker().pin(desktop.foreign(page));
    const WindowID third = desktop.openWindow(editor, "third", {0, 0, 50, 50});
    desktop.activate(editor);
    EXPECT_EQ(toggle(), Lines{toggled("Pinned 'third'", third)});
    EXPECT_EQ(toggle(), Lines{toggled("Unpinned 'third'", third)});
    EXPECT_EQ(app->tracker().pinnedWindows().size(), 2U);
}

TEST_F(AppDelegateTest, WithNothingInFrontTheShortcutReleasesTheOnlyOneOrDoesNothing) {
    desktop.activate(sim::SimWorld::ownPID);
    EXPECT_EQ(toggle(), Lines{"togglePin: No foreign window found"});
    app->tracker().pin(desktop.foreign(page));
    EXPECT_EQ(toggle(), Lines{toggled("Unpinned 'Browser'", page)});
    app->tracker().pin(desktop.foreign(page));
    app->tracker().pin(desktop.foreign(document));
    EXPECT_EQ(toggle(), Lines{"togglePin: No foreign window found"});
    EXPECT_EQ(app->tracker().pinnedWindows().size(), 2U);
}

TEST_F(AppDelegateTest, TheShortcutReachesTheControllerThroughTheTap) {
    app->applicationDidFinishLaunching();
    desktop.activate(editor);
    desktop.advance(0);
    EXPECT_TRUE(desktop.eventTap.press(35, 0x140000));
    EXPECT_TRUE(app->tracker().pinnedWindows().empty());
    desktop.advance(0);
    EXPECT_TRUE(app->tracker().isPinned(document));
    // A press whose controller is gone by then does nothing.
    desktop.eventTap.press(35, 0x140000);
    app.reset();
    desktop.advance(1);
}

TEST_F(AppDelegateTest, RemembersTheForeignWindowShortlyAfterAnActivation) {
    app->applicationDidFinishLaunching();
    const auto remembered = [this] {
        return app->lastForeignWindow() ? app->lastForeignWindow()->windowID : 0;
    };
    desktop.activate(editor);
    desktop.advance(0.09);
    EXPECT_EQ(remembered(), 0U);
    desktop.advance(0.01);
    EXPECT_EQ(remembered(), document);
    // Our own menu, a notice without an application, an application without windows.
    desktop.activate(sim::SimWorld::ownPID);
    desktop.workspace.postDidActivate(std::nullopt);
    desktop.advance(1);
    desktop.closeWindow(page);
    desktop.activate(browser);
    desktop.advance(1);
    EXPECT_EQ(remembered(), document);
}

TEST_F(AppDelegateTest, ShutdownEndsTheRetryTheTapTheObserverAndThePins) {
    app->applicationDidFinishLaunching();
    app->tracker().pin(desktop.foreign(document));
    app->applicationWillTerminate();
    EXPECT_FALSE(desktop.eventTap.enabled);
    EXPECT_TRUE(app->tracker().pinnedWindows().empty());
    desktop.activate(editor);
    desktop.advance(1);
    EXPECT_FALSE(app->lastForeignWindow());

    sim::SimulatedDesktop waiting;
    waiting.eventTap.canCreate = false;
    AppDelegate other(waiting.environment, waiting.scroller, waiting.eventTap, waiting.eventPoster,
                      waiting.application, waiting.statusBar, {});
    other.applicationDidFinishLaunching();
    other.applicationWillTerminate();
    waiting.advance(10);
    EXPECT_EQ(waiting.eventTap.attempts, 1);
}

TEST_F(AppDelegateTest, MenuActionsPinUnpinAndQuit) {
    app->toggleFrontmost(desktop.foreign(document));
    app->toggleFrontmost(desktop.foreign(page));
    app->toggleFrontmost(desktop.foreign(document));
    EXPECT_FALSE(app->tracker().isPinned(document));
    app->unpinMenuItem(page);
    EXPECT_TRUE(app->tracker().pinnedWindows().empty());
    app->toggleFrontmost(desktop.foreign(page));
    app->quit();
    EXPECT_TRUE(app->tracker().pinnedWindows().empty());
    EXPECT_EQ(terminations, 1);
}

TEST_F(AppDelegateTest, OpeningTheProgramAgainBringsAHiddenStatusItemBack) {
    int notices = 0;
    auto& visibility = app->statusItemVisibility();
    const auto observer = visibility.observeDidChange([&notices] { ++notices; });
    EXPECT_TRUE(app->applicationShouldHandleReopen());
    EXPECT_FALSE(desktop.defaults.contains(hiddenKey)) << "it was not hidden";
    visibility.setVisible(false);
    visibility.setVisible(false);
    EXPECT_FALSE(visibility.isVisible());
    EXPECT_EQ(notices, 1);
    app->applicationShouldHandleReopen();
    EXPECT_FALSE(desktop.defaults.readBool(hiddenKey).valueOr(true));
    EXPECT_EQ(notices, 2);
}

} // namespace
} // namespace skylet
