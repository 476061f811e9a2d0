// The windows that the controller opens, put together from what the program has.
//
// Threads: main thread. Failure: none. Nothing is built before the first opening.
#pragma once

#include "app/AppDelegate.h"
#include "settings/views/AboutWindow.h"
#include "settings/views/SettingsWindow.h"
#include "settings/views/SkyletSettingsContent.h"

#include <functional>

namespace skylet {

class ProgramWindows {
  public:
    // All of it must outlive the windows.
    struct Services {
        AppDelegate& delegate;
        platform::EventTap& eventTap;
        platform::EventPoster& eventPoster;
        platform::Defaults& defaults;
        platform::MainQueue& mainQueue;
        platform::Accessibility& accessibility;
        platform::ScreenCapture& screenCapture;
        platform::Workspace& workspace;
        platform::Screens& screens; // in the toolkit's points
        platform::Notifications& notifications;
        platform::KeyDownMonitor& keyDownMonitor;
        platform::LoginItem& loginItem;
        platform::OwnWindows& ownWindows;
        // Switches accessibility on.
        std::function<void()> allowAccessibility;
        // Redraws the status item's icon; may be empty.
        std::function<void()> updateIcon;
        BundleInfo bundle;
    };

    explicit ProgramWindows(Services services);

    void openSettings();
    void openAbout();

  private:
    [[nodiscard]] SettingsSubjects subjects() const;
    [[nodiscard]] ZentroShortcutRecorder::Connections shortcutConnections() const;

    Services services_;
    SettingsWindow settings_;
    AboutWindow about_;
};

} // namespace skylet
