#include "platform/x11/ServerCheck.h"

#include "platform/x11/Connection.h"

#include <QString>

namespace skylet::platform::x11 {

std::optional<std::string> findServerProblem() {
    const QString display = qEnvironmentVariable("DISPLAY");
    if (display.isEmpty()) {
        return qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
                   ? "cannot connect to an X server: DISPLAY is not set; start skylet inside an X11 session"
                   : "cannot connect to an X server: this is a Wayland session without X11; log in to an X11 "
                     "session to use skylet";
    }
    const auto opened = Connection::open({});
    if (opened.connection) {
        return std::nullopt;
    }
    // Without an open connection there is no telling an absent server from one that refuses.
    auto plain = xcb_connect(nullptr, nullptr);
    const bool refused = xcb_connection_has_error(plain) != 0;
    xcb_disconnect(plain);
    if (refused) {
        return "cannot connect to an X server: DISPLAY \"" + display.toStdString() +
               "\" does not answer; check that the server runs and that you may use it";
    }
    return opened.failure;
}

} // namespace skylet::platform::x11
