// Whether the session is locked, as the login manager and the screen savers tell it.
//
// Threads: main thread; changes come from the event loop. Nothing is started and nothing waited for.
// Failure: without a bus, or when nobody there tells, never locked.
#pragma once

#include "platform/qt/DBusSignal.h"
#include "platform/qt/Observers.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>

#include <memory>
#include <vector>

namespace skylet::platform::qt {

class SessionLock {
  public:
    SessionLock(QDBusConnection sessionBus, QDBusConnection systemBus);
    SessionLock(const SessionLock&) = delete;
    SessionLock& operator=(const SessionLock&) = delete;
    ~SessionLock();

    [[nodiscard]] bool isLocked() const { return loginLocked_ || saverActive_; }
    // After `isLocked` changed.
    [[nodiscard]] Subscription observeDidChange(std::function<void()> notice) {
        return observers_.add(std::move(notice));
    }

  private:
    void watchScreenSaver(const QString& service, const QString& path);
    void watchLoginManager();
    void watchSession(const QString& path);
    void update(bool& source, bool locked);
    // Calls back with the reply, unless it is an error or this object is gone.
    void ask(const QDBusConnection& bus, const QDBusMessage& message,
             std::function<void(const QDBusMessage&)> answered);

    QDBusConnection sessionBus_;
    QDBusConnection systemBus_;
    bool loginLocked_ = false;
    bool saverActive_ = false;
    std::vector<std::unique_ptr<DBusSignal>> signals_;
    Observers<> observers_;
    QObject pending_; // parent of the calls under way
};

} // namespace skylet::platform::qt
