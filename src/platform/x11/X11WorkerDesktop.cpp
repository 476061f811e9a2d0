#include "platform/x11/X11WorkerDesktop.h"

#include <utility>

namespace skylet::platform::x11 {

X11WorkerDesktop::Opened X11WorkerDesktop::open(const std::string& display, MainQueue& mainQueue,
                                                const QDBusConnection& sessionBus) {
    auto opened = Connection::open(display, Connection::Events::byHand);
    if (!opened.connection) {
        return {nullptr, std::move(opened.failure)};
    }
    return {std::unique_ptr<X11WorkerDesktop>(
                new X11WorkerDesktop(std::move(opened.connection), mainQueue, sessionBus)),
            {}};
}

X11WorkerDesktop::X11WorkerDesktop(std::unique_ptr<Connection> connection, MainQueue& mainQueue,
                                   const QDBusConnection& sessionBus)
    : connection_(std::move(connection))
    , trust_(sessionBus)
    , windowServer_(*connection_)
    , accessibility_(*connection_, mainQueue, trust_, raised_, sessionBus) {}

} // namespace skylet::platform::x11
