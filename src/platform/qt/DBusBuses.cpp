#include "platform/qt/DBusBuses.h"

#include <QFileInfo>

namespace skylet::platform::qt {

QDBusConnection sessionBus() {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const bool isTold = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS");
    if (!isTold && (runtime.isEmpty() || !QFileInfo::exists(runtime + QStringLiteral("/bus")))) {
        return QDBusConnection(QStringLiteral("skylet-no-session-bus"));
    }
    return QDBusConnection::sessionBus();
}

QDBusConnection systemBus() {
    return QDBusConnection::systemBus();
}

} // namespace skylet::platform::qt
