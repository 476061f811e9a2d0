#include "platform/qt/DBusSignal.h"

#include <utility>

namespace skylet::platform::qt {

DBusSignal::DBusSignal(QDBusConnection bus, Source source, Callback callback)
    : bus_(std::move(bus))
    , source_(std::move(source))
    , callback_(std::move(callback)) {
    if (bus_.isConnected()) {
        bus_.connect(source_.service, source_.path, source_.interface, source_.name, this,
                     SLOT(receive(QDBusMessage)));
    }
}

DBusSignal::~DBusSignal() {
    if (bus_.isConnected()) {
        bus_.disconnect(source_.service, source_.path, source_.interface, source_.name, this,
                        SLOT(receive(QDBusMessage)));
    }
}

void DBusSignal::receive(const QDBusMessage& message) {
    callback_(message);
}

} // namespace skylet::platform::qt
