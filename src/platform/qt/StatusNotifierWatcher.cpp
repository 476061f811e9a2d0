#include "platform/qt/StatusNotifierWatcher.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace skylet::platform::qt {

namespace {

// A watcher that does not answer shows nothing.
constexpr int answerMilliseconds = 2000;
// A panel takes as long to restart; and when the bus itself goes, the library has noticed by then.
constexpr int farewellMilliseconds = 1000;

const auto service = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto path = QStringLiteral("/StatusNotifierWatcher");

QDBusMessage callTo(const QString& interface, const QString& method) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setAutoStartService(false);
    return message;
}

} // namespace

StatusNotifierWatcher::StatusNotifierWatcher(QDBusConnection bus, std::function<void()> changed)
    : bus_(std::move(bus))
    , changed_(std::move(changed))
    , owner_(service, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    if (!bus_.isConnected()) {
        state_ = State::noHost;
        return;
    }
    farewell_.setSingleShot(true);
    farewell_.setInterval(farewellMilliseconds);
    connect(&farewell_, &QTimer::timeout, this, [this] { setState(State::noHost); });
    connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { ask(); });
    for (const auto& name :
         {QStringLiteral("StatusNotifierHostRegistered"), QStringLiteral("StatusNotifierHostUnregistered")}) {
        signals_.push_back(std::make_unique<DBusSignal>(
            bus_, DBusSignal::Source{service, path, service, name}, [this](const QDBusMessage&) { ask(); }));
    }
    ask();
}

void StatusNotifierWatcher::ask() {
    auto message = callTo(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message << service << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(message, answerMilliseconds), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending, question = ++question_] {
        pending->deleteLater();
        if (question != question_) {
            return;
        }
        const QDBusPendingReply<QDBusVariant> reply = *pending;
        const bool isHost = reply.isValid() && reply.value().variant().toBool();
        if (!isHost && state_ == State::host) {
            farewell_.start();
            return;
        }
        farewell_.stop();
        setState(isHost ? State::host : State::noHost);
    });
}

void StatusNotifierWatcher::setState(State state) {
    if (state == state_ && state != State::host) {
        return;
    }
    state_ = state;
    changed_();
}

void StatusNotifierWatcher::registerItem(const QString& item) {
    auto message = callTo(service, QStringLiteral("RegisterStatusNotifierItem"));
    message << item;
    bus_.asyncCall(message, answerMilliseconds);
}

} // namespace skylet::platform::qt
