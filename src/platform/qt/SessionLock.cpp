#include "platform/qt/SessionLock.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QVariantMap>

#include <utility>

namespace skylet::platform::qt {

namespace {

const auto login = QStringLiteral("org.freedesktop.login1");
const auto loginSession = QStringLiteral("org.freedesktop.login1.Session");
const auto propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const auto lockedHint = QStringLiteral("LockedHint");

} // namespace

SessionLock::SessionLock(QDBusConnection sessionBus, QDBusConnection systemBus)
    : sessionBus_(std::move(sessionBus))
    , systemBus_(std::move(systemBus)) {
    if (sessionBus_.isConnected()) {
        watchScreenSaver(QStringLiteral("org.freedesktop.ScreenSaver"),
                         QStringLiteral("/org/freedesktop/ScreenSaver"));
        watchScreenSaver(QStringLiteral("org.gnome.ScreenSaver"), QStringLiteral("/org/gnome/ScreenSaver"));
    }
    if (systemBus_.isConnected()) {
        watchLoginManager();
    }
}

SessionLock::~SessionLock() = default;

void SessionLock::ask(const QDBusConnection& bus, const QDBusMessage& message,
                      std::function<void(const QDBusMessage&)> answered) {
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), &pending_);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, answered = std::move(answered)] {
                         watcher->deleteLater();
                         const QDBusMessage reply = watcher->reply();
                         if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()) {
                             answered(reply);
                         }
                     });
}

void SessionLock::update(bool& source, bool locked) {
    const bool before = isLocked();
    source = locked;
    if (isLocked() != before) {
        observers_.notify();
    }
}

// Where there are two screen savers, the one that spoke last is right.
void SessionLock::watchScreenSaver(const QString& service, const QString& path) {
    const auto take = [this](const QDBusMessage& message) {
        const QVariantList arguments = message.arguments();
        if (!arguments.isEmpty() && arguments.constFirst().userType() == QMetaType::Bool) {
            update(saverActive_, arguments.constFirst().toBool());
        }
    };
    // Some send from another path than they listen on; the interface says enough.
    signals_.push_back(std::make_unique<DBusSignal>(
        sessionBus_, DBusSignal::Source{{}, {}, service, QStringLiteral("ActiveChanged")}, take));
    auto message = QDBusMessage::createMethodCall(service, path, service, QStringLiteral("GetActive"));
    message.setAutoStartService(false);
    ask(sessionBus_, message, take);
}

// $XDG_SESSION_ID tells the session also where the program runs outside its own scope.
void SessionLock::watchLoginManager() {
    const QString id = qEnvironmentVariable("XDG_SESSION_ID");
    auto message = QDBusMessage::createMethodCall(
        login, QStringLiteral("/org/freedesktop/login1"), QStringLiteral("org.freedesktop.login1.Manager"),
        id.isEmpty() ? QStringLiteral("GetSessionByPID") : QStringLiteral("GetSession"));
    message.setAutoStartService(false);
    if (id.isEmpty()) {
        message << static_cast<uint>(QCoreApplication::applicationPid());
    } else {
        message << id;
    }
    ask(systemBus_, message, [this](const QDBusMessage& reply) {
        const QString path = reply.arguments().constFirst().value<QDBusObjectPath>().path();
        if (!path.isEmpty()) {
            watchSession(path);
        }
    });
}

void SessionLock::watchSession(const QString& path) {
    const auto add = [&](const QString& interface, const QString& name, DBusSignal::Callback callback) {
        signals_.push_back(std::make_unique<DBusSignal>(
            systemBus_, DBusSignal::Source{login, path, interface, name}, std::move(callback)));
    };
    add(loginSession, QStringLiteral("Lock"), [this](const QDBusMessage&) { update(loginLocked_, true); });
    add(loginSession, QStringLiteral("Unlock"), [this](const QDBusMessage&) { update(loginLocked_, false); });
    add(propertiesInterface, QStringLiteral("PropertiesChanged"), [this](const QDBusMessage& signal) {
        const QVariantList arguments = signal.arguments();
        if (arguments.size() < 2) {
            return;
        }
        const auto changed = qdbus_cast<QVariantMap>(arguments[1]);
        if (changed.contains(lockedHint)) {
            update(loginLocked_, changed.value(lockedHint).toBool());
        }
    });
    auto message = QDBusMessage::createMethodCall(login, path, propertiesInterface, QStringLiteral("Get"));
    message << loginSession << lockedHint;
    ask(systemBus_, message, [this](const QDBusMessage& reply) {
        update(loginLocked_, reply.arguments().constFirst().value<QDBusVariant>().variant().toBool());
    });
}

} // namespace skylet::platform::qt
