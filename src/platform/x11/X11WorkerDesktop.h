// What a thread beside the main one needs of an X11 desktop: windows and accessibility over a connection of
// its own, so that neither thread's requests and events are in the other's way.
//
// Threads: made and destroyed on the main thread while the other one does not use it; used on that one only,
// which need not run an event loop. Failure: `open` answers nothing, with the reason; a connection that
// breaks later answers as if there were no windows.
#pragma once

#include "platform/Queues.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/x11/AtspiAccessibility.h"
#include "platform/x11/Connection.h"
#include "platform/x11/RaisedWindows.h"
#include "platform/x11/X11WindowServer.h"

#include <QDBusConnection>

#include <memory>
#include <string>

namespace skylet::platform::x11 {

class X11WorkerDesktop {
  public:
    struct Opened {
        std::unique_ptr<X11WorkerDesktop> desktop; // null on failure
        std::string failure;                       // one English line
    };
    [[nodiscard]] static Opened open(const std::string& display, MainQueue& mainQueue,
                                     const QDBusConnection& sessionBus);

    X11WorkerDesktop(const X11WorkerDesktop&) = delete;
    X11WorkerDesktop& operator=(const X11WorkerDesktop&) = delete;
    ~X11WorkerDesktop() = default;

    [[nodiscard]] WindowServer& windowServer() { return windowServer_; }
    [[nodiscard]] Accessibility& accessibility() { return accessibility_; }

  private:
    X11WorkerDesktop(std::unique_ptr<Connection> connection, MainQueue& mainQueue,
                     const QDBusConnection& sessionBus);

    std::unique_ptr<Connection> connection_;
    qt::AccessibilityTrust trust_;
    RaisedWindows raised_;
    X11WindowServer windowServer_;
    AtspiAccessibility accessibility_;
};

} // namespace skylet::platform::x11
