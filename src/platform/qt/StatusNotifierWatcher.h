// Whether a StatusNotifier host is there: the part of a panel that shows status items over the message bus
// (org.kde.StatusNotifierWatcher).
//
// Threads: main thread; notices come from the event loop. Failure: on a bus that is not connected there is
// none.
#pragma once

#include "platform/qt/DBusSignal.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace skylet::platform::qt {

class StatusNotifierWatcher : public QObject {
    Q_OBJECT

  public:
    enum class State { unknown, noHost, host };

    // A host that is gone counts as there for another second, which a panel takes to restart. `changed` is
    // called when the state changes, and also when hosts are registered anew: items have to be announced
    // again then.
    StatusNotifierWatcher(QDBusConnection bus, std::function<void()> changed);

    [[nodiscard]] State state() const { return state_; }
    // Tells the watcher of an item's bus name.
    void registerItem(const QString& service);

  private:
    void ask();
    void setState(State state);

    QDBusConnection bus_;
    std::function<void()> changed_;
    State state_ = State::unknown;
    int question_ = 0; // answers to earlier ones are out of date
    QTimer farewell_;  // runs while the host is gone and still counts
    QDBusServiceWatcher owner_;
    std::vector<std::unique_ptr<DBusSignal>> signals_;
};

} // namespace skylet::platform::qt
