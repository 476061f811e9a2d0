// The message buses, for callers that must not start one or wait for one.
#pragma once

#include <QDBusConnection>

namespace skylet::platform::qt {

// The session's bus, or an unconnected one where the session has none. The library would start a bus of its
// own then, which nobody else is on.
[[nodiscard]] QDBusConnection sessionBus();
[[nodiscard]] QDBusConnection systemBus();

} // namespace skylet::platform::qt
