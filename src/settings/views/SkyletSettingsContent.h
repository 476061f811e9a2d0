// The application's own sections of the settings window.
//
// Threads: main thread.
#pragma once

#include "pinning/PinnedWindowTracker.h"
#include "platform/Accessibility.h"
#include "platform/Defaults.h"
#include "platform/EventPoster.h"
#include "platform/KeyDownMonitor.h"
#include "platform/Notifications.h"
#include "platform/Queues.h"
#include "platform/ScreenCapture.h"
#include "platform/Workspace.h"
#include "settings/BundleInfo.h"
#include "settings/OverlayPreferences.h"
#include "settings/ZentroPermissionWatcher.h"
#include "settings/ZentroShortcutRecorder.h"
#include "settings/views/MenuBarSettings.h"

#include <QWidget>

#include <functional>

class QComboBox;

namespace skylet {

class ToggleRow;

// What the content shows and changes; all of it must outlive the content.
struct SettingsSubjects {
    const PinnedWindowTracker& tracker;
    platform::Defaults& defaults;
    platform::MainQueue& mainQueue;
    platform::Accessibility& accessibility;
    platform::ScreenCapture& screenCapture;
    platform::EventPoster& eventPoster;
    platform::Workspace& workspace;
    platform::Notifications& notifications;
    platform::KeyDownMonitor& keyDownMonitor;
    // Switches accessibility on, which the user has just asked for.
    std::function<void()> allowAccessibility;
    ZentroShortcutRecorder::Connections shortcut;
    StatusItemVisibilityAccess statusItem;
    // May be empty: redraws the status item's icon.
    std::function<void()> updateIcon;
    BundleInfo bundle;
};

class SkyletSettingsContent : public QWidget {
  public:
    explicit SkyletSettingsContent(const SettingsSubjects& subjects);

  private:
    [[nodiscard]] FormSection* makeOverlaySection();
    [[nodiscard]] FormSection* makePermissionSection(const SettingsSubjects& subjects);
    void showCaptureRate();

    OverlayPreferences preferences_;
    ZentroPermissionWatcher accessibility_;
    ZentroPermissionWatcher screenRecording_;
    ZentroPermissionWatcher postEvent_;
    QComboBox* rate_ = nullptr;
    ToggleRow* forward_ = nullptr;
    ToggleRow* allSpaces_ = nullptr;
    platform::Subscription rateChanges_;
    platform::Subscription forwardChanges_;
    platform::Subscription spacesChanges_;
};

} // namespace skylet
