// The window server's list on X11: a window's number is the id of its client window, not of its frame.
//
// Coordinates: root coordinates are window-server coordinates here, see ScreenLayout. Threads: main thread.
#pragma once

#include "platform/WindowServer.h"
#include "platform/x11/WindowList.h"

namespace skylet::platform::x11 {

class X11WindowServer : public WindowServer {
  public:
    explicit X11WindowServer(Connection& connection) : list_(connection) {}

    [[nodiscard]] std::optional<std::vector<WindowEntry>> copyWindowList(std::uint32_t options,
                                                                         WindowID relativeTo) override;
    [[nodiscard]] int normalWindowLevel() const override { return 0; }

  private:
    WindowList list_;
};

} // namespace skylet::platform::x11
