#include "app/AppDelegate.h"

#include "app/LegacyPreferences.h"
#include "foundation/PreferenceKeys.h"
#include "foundation/Product.h"
#include "foundation/Text.h"
#include "windows/WindowDetector.h"

#include <string>
#include <utility>

namespace skylet {

namespace {

// An application that becomes active needs a moment to bring its window forward.
constexpr double foreignWindowDelay = 0.1;

} // namespace

AppDelegate::AppDelegate(const OverlayEnvironment& environment, OverlayInputRoutes routes,
                         platform::EventTap& eventTap, platform::EventPoster& eventPoster,
                         AppCallbacks callbacks)
    : environment_(environment)
    , routes_(std::move(routes))
    , callbacks_(std::move(callbacks))
    , eventTap_(eventTap)
    , eventPoster_(eventPoster)
    , tracker_(environment_, routes_)
    , hotkey_(
          {eventTap, environment.accessibility, environment.defaults, environment.mainQueue, environment.log},
          callbacks_, [this] { togglePinFrontmostWindow(); })
    , statusItemVisibility_(environment.defaults, bundleIdentifier) {}

void AppDelegate::applicationDidFinishLaunching() {
    promptForAccessibilityOnce();
    logPermissions();
    hotkey_.loadShortcut();
    hotkey_.republishHotkey();
    migrateLegacyPillColorKey(environment_.defaults);
    observeForeignWindows();
    hotkey_.registerHotkey();
    wplog(environment_.log, [] { return std::string("Launched successfully"); });
}

void AppDelegate::applicationWillTerminate() {
    hotkey_.shutDown();
    focusObserver.reset();
    tracker_.unpinAll();
}

bool AppDelegate::applicationShouldHandleReopen() {
    statusItemVisibility_.handleReopen();
    return true;
}

void AppDelegate::promptForAccessibilityOnce() {
    const bool trusted = environment_.accessibility.isProcessTrusted();
    wplog(environment_.log, [&] { return std::string("Accessibility trusted: ") + formatBool(trusted); });
    constexpr auto prompted = PreferenceKeys::didPromptForAccessibilityStableIdentity;
    if (!trusted && !environment_.defaults.readBool(prompted).valueOr(false)) {
        // Remembered first: whatever happens to the prompt, there is only one.
        environment_.defaults.setBool(prompted, true);
        environment_.accessibility.isProcessTrustedWithPrompt();
    }
}

void AppDelegate::logPermissions() {
    wplog(environment_.log, [&] {
        return std::string("PostEvent access: ") + formatBool(eventPoster_.preflightPostAccess()) +
               "  ListenEvent access: " + formatBool(eventTap_.preflightListenAccess());
    });
}

void AppDelegate::observeForeignWindows() {
    focusObserver = environment_.workspace.observeDidActivateApplication(
        lifetime_.guard([this](const std::optional<platform::RunningApplication>& application) {
            if (!application ||
                application->processIdentifier == environment_.workspace.ownProcessIdentifier()) {
                return;
            }
            environment_.mainQueue.after(foreignWindowDelay,
                                         lifetime_.guard([this] { rememberForeignWindow(); }));
        }));
}

void AppDelegate::rememberForeignWindow() {
    if (auto window = frontmostForeignWindow()) {
        lastForeignWindow_ = std::move(window);
    }
}

std::optional<ForeignWindow> AppDelegate::frontmostForeignWindow() const {
    return WindowDetector::getFrontmostForeignWindow(environment_.workspace, environment_.accessibility,
                                                     environment_.windowServer);
}

void AppDelegate::togglePinFrontmostWindow() {
    const auto window = frontmostForeignWindow();
    if (window && tracker_.isPinned(window->windowID)) {
        tracker_.unpin(window->windowID);
        logToggle("Unpinned", window->displayLabel(), window->windowID);
        return;
    }
    // With one window pinned the shortcut always releases it, whatever is in front.
    if (tracker_.pinnedWindows().size() == 1) {
        const PinnedWindow only = *tracker_.pinnedWindows().begin();
        tracker_.unpin(only.windowID);
        logToggle("Unpinned", only.windowTitle.empty() ? only.ownerName : only.windowTitle, only.windowID);
        return;
    }
    if (!window) {
        wplog(environment_.log, [] { return std::string("togglePin: No foreign window found"); });
        return;
    }
    tracker_.pin(*window);
    logToggle("Pinned", window->displayLabel(), window->windowID);
}

void AppDelegate::logToggle(const char* action, const std::string& label, platform::WindowID windowID) {
    wplog(environment_.log, [&] {
        return std::string("togglePin: ") + action + " '" + label + "' (wid=" + std::to_string(windowID) +
               ")";
    });
}

void AppDelegate::toggleFrontmost(const ForeignWindow& window) {
    if (tracker_.isPinned(window.windowID)) {
        tracker_.unpin(window.windowID);
    } else {
        tracker_.pin(window);
    }
}

void AppDelegate::unpinMenuItem(platform::WindowID windowID) {
    tracker_.unpin(windowID);
}

void AppDelegate::unpinAllAction() {
    tracker_.unpinAll();
}

void AppDelegate::openSettings() {
    if (callbacks_.openSettings) {
        callbacks_.openSettings();
    }
}

void AppDelegate::openAbout() {
    if (callbacks_.openAbout) {
        callbacks_.openAbout();
    }
}

void AppDelegate::quit() {
    tracker_.unpinAll();
    if (callbacks_.terminate) {
        callbacks_.terminate();
    }
}

} // namespace skylet
