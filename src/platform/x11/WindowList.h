// A copy of the desktop's windows.
//
// Client windows are what the window manager lists; without one, the mapped children of the root that ask to
// be managed. Menus, tooltips and other override-redirect windows come with them. A window that was listed
// before and still has a managed state (ICCCM WM_STATE Normal or Iconic) stays listed while no manager lists
// it: a manager that is being replaced does not close windows.
//
// Coordinates: root coordinates. Threads: main thread. Failure: nothing when the server does not answer.
#pragma once

#include "platform/Types.h"
#include "platform/x11/Connection.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace skylet::platform::x11 {

struct ListedWindow {
    xcb_window_t window = XCB_WINDOW_NONE;
    Rect bounds; // without border and client-drawn shadow
    std::string name;
    std::optional<ProcessID> pid;
    int layer = 0;
    bool isDesktop = false;
    bool onScreen = false; // viewable, on the current desktop, not minimised
};

class WindowList {
  public:
    explicit WindowList(Connection& connection) : connection_(connection) {}

    // Front to back. Three round trips at most, whatever the number of windows.
    [[nodiscard]] std::optional<std::vector<ListedWindow>> copy();
    // One window, on screen or not; nothing when it is gone. One round trip.
    [[nodiscard]] std::optional<ListedWindow> copyOne(xcb_window_t window);

  private:
    Connection& connection_;
    std::unordered_set<xcb_window_t> listedBefore_;
};

} // namespace skylet::platform::x11
