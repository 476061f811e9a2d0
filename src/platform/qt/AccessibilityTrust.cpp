#include "platform/qt/AccessibilityTrust.h"

#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QStringList>
#include <QVariantMap>

#include <utility>

namespace skylet::platform::qt {

namespace {

constexpr int answerMilliseconds = 250;
constexpr int expiresByServer = -1;
const auto notifications = QStringLiteral("org.freedesktop.Notifications");
const auto notificationsPath = QStringLiteral("/org/freedesktop/Notifications");
const auto allowAction = QStringLiteral("allow");

QDBusMessage statusCall(const QString& method) {
    auto message =
        QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                       QStringLiteral("org.freedesktop.DBus.Properties"), method);
    message << QStringLiteral("org.a11y.Status") << QStringLiteral("IsEnabled");
    return message;
}

} // namespace

AccessibilityTrust::AccessibilityTrust(QDBusConnection sessionBus) : bus_(std::move(sessionBus)) {}

AccessibilityTrust::~AccessibilityTrust() = default;

bool AccessibilityTrust::isTrusted() const {
    if (!bus_.isConnected()) {
        return false;
    }
    auto message = statusCall(QStringLiteral("Get"));
    message.setAutoStartService(false);
    const QDBusMessage answer = bus_.call(message, QDBus::Block, answerMilliseconds);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) {
        return false;
    }
    const QVariant value = answer.arguments().constFirst();
    return value.userType() == qMetaTypeId<QDBusVariant>() && value.value<QDBusVariant>().variant() == true;
}

void AccessibilityTrust::prompt() {
    if (!bus_.isConnected()) {
        return;
    }
    actions_ = std::make_unique<DBusSignal>(
        bus_,
        DBusSignal::Source{notifications, notificationsPath, notifications, QStringLiteral("ActionInvoked")},
        [this](const QDBusMessage& signal) {
            const auto arguments = signal.arguments();
            if (notification_ && arguments.size() == 2 && arguments[0].toUInt() == *notification_ &&
                arguments[1].toString() == allowAction) {
                notification_.reset();
                enable();
            }
        });
    auto message = QDBusMessage::createMethodCall(notifications, notificationsPath, notifications,
                                                  QStringLiteral("Notify"));
    message << QStringLiteral("Skylet") << 0U << QStringLiteral("com.corvane.skylet")
            << QStringLiteral("Skylet")
            << QStringLiteral("Skylet chiede di usare le funzioni di accessibilità.")
            << QStringList{allowAction, QStringLiteral("Consenti accesso")}
            << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("com.corvane.skylet")}}
            << expiresByServer;
    notifying_ = std::make_unique<QDBusPendingCallWatcher>(bus_.asyncCall(message));
    QObject::connect(notifying_.get(), &QDBusPendingCallWatcher::finished, notifying_.get(),
                     [this](QDBusPendingCallWatcher* watcher) {
                         const QDBusPendingReply<uint> answer = *watcher;
                         if (answer.isValid()) {
                             notification_ = answer.value();
                         }
                     });
}

void AccessibilityTrust::enable() {
    auto message = statusCall(QStringLiteral("Set"));
    message << QVariant::fromValue(QDBusVariant(true));
    bus_.asyncCall(message);
}

} // namespace skylet::platform::qt
