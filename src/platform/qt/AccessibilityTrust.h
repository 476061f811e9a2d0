// Whether the desktop's accessibility bus may be used, and asking the user for it.
//
// The bus may be used when it is there and switched on (org.a11y.Status.IsEnabled). It is never started and
// never switched on but by the user's own word.
// Threads: main thread. Failure: no bus, no answer within 0.25 s: not trusted.
#pragma once

#include "platform/qt/DBusSignal.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>

#include <cstdint>
#include <memory>
#include <optional>

namespace skylet::platform::qt {

class AccessibilityTrust {
  public:
    explicit AccessibilityTrust(QDBusConnection sessionBus);
    AccessibilityTrust(const AccessibilityTrust&) = delete;
    AccessibilityTrust& operator=(const AccessibilityTrust&) = delete;
    ~AccessibilityTrust();

    [[nodiscard]] bool isTrusted() const;
    // Shows a notification with an action that switches accessibility on. Returns at once; where nobody shows
    // notifications nothing happens.
    void prompt();
    // Switches accessibility on. Returns at once.
    void enable();

  private:
    QDBusConnection bus_;
    std::unique_ptr<DBusSignal> actions_;
    std::unique_ptr<QDBusPendingCallWatcher> notifying_;
    std::optional<std::uint32_t> notification_; // the one that is shown
};

} // namespace skylet::platform::qt
