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
    [[nodiscard]] bool at(PixelPoint place) const { return find(place) != nullptr; }
    // Whether the popup at the place listens to core events. While its client holds a core grab on one
    // pointer, the server keeps the core events of all others from it.
    [[nodiscard]] bool isDeafAt(PixelPoint place) const;
    [[nodiscard]] bool hasDeaf() const;

  private:
    struct Popup {
        PixelRect place;
        bool isDeaf = false;
    };
    [[nodiscard]] const Popup* find(PixelPoint place) const;
    void handle(const xcb_generic_event_t& event);
    void mapped(xcb_window_t window);
    void unmapped(xcb_window_t window);

    Connection& connection_;
    ProcessID pid_;
    std::function<void()> gone_;
    std::unordered_map<xcb_window_t, Popup> popups_;
    Subscription events_;
};

} // namespace skylet::platform::x11
