// The application controller: owns what lives for the whole run and reacts to the shortcut and the system's
// notices.
//
// Threads: main thread. Failure: see GlobalHotkey; everything else is logged.
#pragma once

#include "app/GlobalHotkey.h"
#include "app/ZentroStatusItemVisibility.h"
#include "foundation/Lifetime.h"
#include "overlay/OverlayEnvironment.h"
#include "pinning/PinnedWindowTracker.h"
#include "platform/EventPoster.h"
#include "platform/EventTap.h"
#include "platform/Subscription.h"
#include "windows/ForeignWindow.h"

#include <optional>

namespace skylet {

class AppDelegate {
  public:
    // The interfaces must outlive the controller. Nothing is observed before the launch but what the tracker
    // does.
    AppDelegate(const OverlayEnvironment& environment, OverlayInputRoutes routes,
                platform::EventTap& eventTap, platform::EventPoster& eventPoster, AppCallbacks callbacks);

    void applicationDidFinishLaunching();
    void applicationWillTerminate();
    // The program was opened again. Always answers true: it was handled.
    bool applicationShouldHandleReopen();

    // Pins the frontmost window of another application, or releases it or the only pinned window.
    void togglePinFrontmostWindow();
    void toggleFrontmost(const ForeignWindow& window);
    void unpinMenuItem(platform::WindowID windowID);
    void unpinAllAction();
    void openSettings();
    void openAbout();
    void quit();

    [[nodiscard]] PinnedWindowTracker& tracker() { return tracker_; }
    [[nodiscard]] GlobalHotkey& hotkey() { return hotkey_; }
    [[nodiscard]] ZentroStatusItemVisibility& statusItemVisibility() { return statusItemVisibility_; }
    // The frontmost window as it was when another application last became active. While our own menu is open
    // the frontmost window would be our own.
    [[nodiscard]] const std::optional<ForeignWindow>& lastForeignWindow() const { return lastForeignWindow_; }

  private:
    void logPermissions();
    void promptForAccessibilityOnce();
    void observeForeignWindows();
    void rememberForeignWindow();
    [[nodiscard]] std::optional<ForeignWindow> frontmostForeignWindow() const;
    void logToggle(const char* action, const std::string& label, platform::WindowID windowID);

    // Kept here, because tracker, overlays and hotkey refer to them.
    OverlayEnvironment environment_;
    OverlayInputRoutes routes_;
    AppCallbacks callbacks_;
    platform::EventTap& eventTap_;
    platform::EventPoster& eventPoster_;

    PinnedWindowTracker tracker_;
    std::optional<ForeignWindow> lastForeignWindow_;
    platform::Subscription focusObserver;
    GlobalHotkey hotkey_;
    ZentroStatusItemVisibility statusItemVisibility_;
    Lifetime lifetime_;
};

} // namespace skylet
