#include "platform/qt/QtNotifications.h"

#include <QDBusMessage>
#include <QGuiApplication>

#include <utility>

namespace skylet::platform::qt {

namespace {

constexpr std::string_view accessibilityAnnouncement = "com.apple.accessibility.api";

} // namespace

QtNotifications::QtNotifications(QDBusConnection sessionBus) : bus_(std::move(sessionBus)) {
    if (auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        activation_ = QObject::connect(application, &QGuiApplication::applicationStateChanged, application,
                                       [this](Qt::ApplicationState state) {
                                           if (state == Qt::ApplicationActive) {
                                               active_.notify();
                                           }
                                       });
    }
}

QtNotifications::~QtNotifications() {
    QObject::disconnect(activation_);
}

Subscription QtNotifications::observeDistributed(std::string_view name, std::function<void()> notice) {
    if (name != accessibilityAnnouncement) {
        return nullptr;
    }
    if (!accessibilityChanges_) {
        accessibilityChanges_ = std::make_unique<DBusSignal>(
            bus_,
            DBusSignal::Source{QString(), QStringLiteral("/org/a11y/bus"),
                               QStringLiteral("org.freedesktop.DBus.Properties"),
                               QStringLiteral("PropertiesChanged")},
            [this](const QDBusMessage& signal) {
                const auto arguments = signal.arguments();
                if (!arguments.isEmpty() && arguments.constFirst() == QStringLiteral("org.a11y.Status")) {
                    accessibility_.notify();
                }
            });
    }
    return accessibility_.add(std::move(notice));
}

} // namespace skylet::platform::qt
