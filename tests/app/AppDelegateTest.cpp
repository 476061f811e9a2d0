// Launching, the shortcut and the end.
#include "app/AppTest.h"

namespace skylet {
namespace {

class AppDelegateTest : public AppTest {
  protected:
    Lines toggle() {
        (void)desktop.takeLog();
        app->togglePinFrontmostWindow();
        Lines lines = desktop.takeLog();
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("togglePin: "); });
        return lines;
    }
    static Lines toggled(const std::string& text, platform::WindowID windowID) {
        return {"togglePin: " + text + " (wid=" + std::to_string(windowID) + ")"};
    }

    platform::WindowID page = desktop.openWindow(browser, "", place);
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
        EXPECT_TRUE(desktop.defaults.contains(PreferenceKeys::didPromptForAccessibilityStableIdentity));
    };
    app->applicationDidFinishLaunching();
    EXPECT_EQ(prompts, 0) << "trusted";
    desktop.accessibility.trusted = false;
    for (int launches = 0; launches < 2; ++launches) {
        make(desktop)->applicationDidFinishLaunching();
        EXPECT_EQ(prompts, 1);
    }
}

TEST_F(AppDelegateTest, DiscardsTheLegacyColourOnce) {
    for (const bool isKept : {false, true}) {
        desktop.defaults.setInteger(PreferenceKeys::menuBarPillColor, 7);
        make(desktop)->applicationDidFinishLaunching();
        EXPECT_EQ(desktop.defaults.contains(PreferenceKeys::menuBarPillColor), isKept);
    }
}

TEST_F(AppDelegateTest, TheShortcutTogglesByHowManyArePinned) {
    desktop.activate(editor);
    EXPECT_EQ(toggle(), toggled("Pinned 'doc'", document));
    // One pinned: it is released, whether or not it is the one in front.
    desktop.activate(browser);
    EXPECT_EQ(toggle(), toggled("Unpinned 'doc'", document));
    EXPECT_TRUE(app->tracker().pinnedWindows().empty());
    EXPECT_EQ(toggle(), toggled("Pinned 'Browser'", page));
    // Two pinned: a third is pinned too, a pinned one in front is released.
    app->tracker().pin(desktop.foreign(document));
    const auto third = desktop.openWindow(editor, "third", {0, 0, 50, 50});
    desktop.activate(editor);
    EXPECT_EQ(toggle(), toggled("Pinned 'third'", third));
    EXPECT_EQ(toggle(), toggled("Unpinned 'third'", third));
    EXPECT_EQ(app->tracker().pinnedWindows().size(), 2U);
}

TEST_F(AppDelegateTest, WithNothingInFrontTheShortcutReleasesTheOnlyOneOrDoesNothing) {
    desktop.activate(sim::SimWorld::ownPID);
    EXPECT_EQ(toggle(), Lines{"togglePin: No foreign window found"});
    app->tracker().pin(desktop.foreign(page));
    EXPECT_EQ(toggle(), toggled("Unpinned 'Browser'", page));
    app->tracker().pin(desktop.foreign(page));
    app->tracker().pin(desktop.foreign(document));
    EXPECT_EQ(toggle(), Lines{"togglePin: No foreign window found"});
    EXPECT_EQ(app->tracker().pinnedWindows().size(), 2U);
}

TEST_F(AppDelegateTest, ThePressOfTheShortcutReachesTheControllerWhileThereIsOne) {
    app->applicationDidFinishLaunching();
    desktop.activate(editor);
    desktop.eventTap.press(35, 0x140000);
    desktop.advance(0);
    EXPECT_TRUE(app->tracker().isPinned(document));
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
    const auto other = make(waiting);
    other->applicationDidFinishLaunching();
    other->applicationWillTerminate();
    waiting.advance(10);
    EXPECT_EQ(waiting.eventTap.attempts, 1);
}

} // namespace
} // namespace skylet
