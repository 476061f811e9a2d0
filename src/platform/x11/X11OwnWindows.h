// Windows of this program, which Qt makes on its own connection, as the window manager sees them.
//
// Threads: main thread. Failure: a window that is gone is ignored; managers may refuse silently.
#pragma once

#include "platform/OwnWindows.h"
#include "platform/x11/ActiveWindow.h"
#include "platform/x11/Connection.h"

#include <unordered_map>

namespace skylet::platform::x11 {

class X11OwnWindows : public OwnWindows {
  public:
    explicit X11OwnWindows(Connection& connection) : connection_(connection) {}

    void bringToActiveSpace(NativeWindow window) override;

  private:
    void bringManaged(xcb_window_t window, const ClientWindows& clients);

    Connection& connection_;
    // Those that are to be brought forward once they are mapped.
    std::unordered_map<xcb_window_t, Subscription> awaited_;
};

} // namespace skylet::platform::x11
