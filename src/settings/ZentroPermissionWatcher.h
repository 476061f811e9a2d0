// Keeps one permission of this program under observation and tells its changes.
//
// The permission is read again once a second, when this program becomes active and, where the system
// announces changes, a while after each announcement: right then the new state cannot be relied on yet, so
// that the watcher keeps quiet until it can. A watcher never asks for a permission.
// Threads: main thread. Failure: none; a probe that answers false is a permission that is not granted.
#pragma once

#include "foundation/Lifetime.h"
#include "foundation/Notice.h"
#include "platform/Accessibility.h"
#include "platform/EventPoster.h"
#include "platform/Notifications.h"
#include "platform/Queues.h"
#include "platform/ScreenCapture.h"
#include "platform/Subscription.h"
#include "platform/Workspace.h"

#include <functional>
#include <optional>
#include <string>

namespace skylet {

class ZentroPermissionWatcher {
  public:
    static constexpr double pollSeconds = 1.0;
    static constexpr double commitSeconds = 1.5;
    // The system's announcement that the programs trusted for accessibility changed.
    static constexpr const char* accessibilityAnnouncement = "com.apple.accessibility.api";

    // The system's settings of one permission each.
    enum class Pane { accessibility, screenRecording, inputMonitoring, camera, microphone };
    // The URL that opens the pane.
    [[nodiscard]] static const char* rawValue(Pane pane);
    static void openSettings(platform::Workspace& workspace, Pane pane);

    // Must outlive the watcher.
    struct Services {
        platform::MainQueue& mainQueue;
        platform::Notifications& notifications;
    };
    using Check = std::function<bool()>;

    // Calls `check` right away. Without an announcement the permission has none.
    ZentroPermissionWatcher(const Services& services, const std::optional<std::string>& announcement,
                            Check check);
    ZentroPermissionWatcher(const ZentroPermissionWatcher&) = delete;
    ZentroPermissionWatcher& operator=(const ZentroPermissionWatcher&) = delete;

    // The interfaces must outlive the watcher.
    [[nodiscard]] static ZentroPermissionWatcher accessibility(const Services& services,
                                                               platform::Accessibility& accessibility);
    [[nodiscard]] static ZentroPermissionWatcher screenRecording(const Services& services,
                                                                 platform::ScreenCapture& screenCapture);
    [[nodiscard]] static ZentroPermissionWatcher postEvent(const Services& services,
                                                           platform::EventPoster& eventPoster);

    // Have the system ask the user; answer whether the permission is granted now.
    static bool promptForAccessibility(platform::Accessibility& accessibility);
    static bool promptForPostEvent(platform::EventPoster& eventPoster);

    [[nodiscard]] bool isGranted() const { return isGranted_; }
    // Reads the permission, unless the watcher is quiet.
    void reread();
    void announced();

    // Called with the next state before `isGranted` takes it.
    [[nodiscard]] platform::Subscription observeWillChange(std::function<void(bool next)> observer) {
        return willChange_.observe(std::move(observer));
    }

  private:
    platform::MainQueue& mainQueue_;
    Check check_;
    bool isGranted_;
    double quietUntil_;
    platform::TimerRef poll_;
    platform::Subscription announcements_;
    platform::Subscription activations_;
    Notice<bool> willChange_;
    Lifetime lifetime_;
};

} // namespace skylet
