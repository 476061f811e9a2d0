// The menus and other popups that one process has on screen: its mapped override-redirect windows.
//
// Coordinates: root coordinates. Threads: main thread.
#pragma once

#include "platform/Types.h"
#include "platform/x11/Connection.h"
#include "platform/x11/PixelRect.h"

#include <functional>
#include <unordered_map>

namespace skylet::platform::x11 {

class PopupWatch {
  public:
    // `gone` is called when the last popup is gone; it must not destroy the watch.
    PopupWatch(Connection& connection, ProcessID pid, std::function<void()> gone);

    [[nodiscard]] bool isOpen() const { return !popups_.empty(); }
    [[nodiscard]] bool contains(int x, int y) const;

  private:
    void handle(const xcb_generic_event_t& event);
    void mapped(xcb_window_t window);
    void unmapped(xcb_window_t window);

    Connection& connection_;
    ProcessID pid_;
    std::function<void()> gone_;
    std::unordered_map<xcb_window_t, PixelRect> popups_;
    Subscription events_;
};

} // namespace skylet::platform::x11
