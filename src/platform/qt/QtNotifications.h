// Notices about this program from Qt, and the system's announcements from the session bus.
//
// Threads: main thread. Failure: without a session bus nothing is announced, without a GUI application it
// never becomes active.
#pragma once

#include "platform/Notifications.h"
#include "platform/qt/DBusSignal.h"
#include "platform/qt/Observers.h"

#include <QDBusConnection>
#include <QMetaObject>

#include <memory>

namespace skylet::platform::qt {

class QtNotifications : public Notifications {
  public:
    explicit QtNotifications(QDBusConnection sessionBus);
    QtNotifications(const QtNotifications&) = delete;
    QtNotifications& operator=(const QtNotifications&) = delete;
    ~QtNotifications() override;

    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> notice) override {
        return active_.add(std::move(notice));
    }
    // Knows "com.apple.accessibility.api": that accessibility was switched on or off for the session.
    [[nodiscard]] Subscription observeDistributed(std::string_view name,
                                                  std::function<void()> notice) override;

  private:
    QDBusConnection bus_;
    Observers<> active_;
    Observers<> accessibility_;
    QMetaObject::Connection activation_;
    // Made with the first observer.
    std::unique_ptr<DBusSignal> accessibilityChanges_;
};

} // namespace skylet::platform::qt
