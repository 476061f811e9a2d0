// The client windows of the desktop, and the one that the user works in.
//
// A window manager says both; what it says is checked, because a manager that died leaves its words behind.
// Without one the windows are the mapped children of the root, and the active one is the child with the
// keyboard focus, or, while the focus follows the pointer, the one under it, or the top-most.
//
// Threads: any; events are left alone. Failure: no windows.
#pragma once

#include "platform/Types.h"
#include "platform/x11/Property.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

namespace skylet::platform::x11 {

struct ClientWindows {
    // The window that stands for the window manager; none without one.
    xcb_window_t windowManager = XCB_WINDOW_NONE;
    std::vector<xcb_window_t> windows; // front to back
    std::optional<std::uint32_t> currentDesktop;
};

// Two round trips.
[[nodiscard]] ClientWindows readClientWindows(Connection& connection);

struct ActiveWindow {
    xcb_window_t windowManager = XCB_WINDOW_NONE;
    xcb_window_t window = XCB_WINDOW_NONE; // the client, not its frame
};

// Two round trips with a window manager, one if it is still `lastManager`; a few more without.
[[nodiscard]] ActiveWindow readActiveWindow(Connection& connection,
                                            xcb_window_t lastManager = XCB_WINDOW_NONE);

// Reads the active window over and over, with its process. What it found last is asked about along with the
// question: one round trip while that holds.
class ActiveClientReader {
  public:
    explicit ActiveClientReader(Connection& connection) : connection_(connection) {}

    struct Client {
        xcb_window_t windowManager = XCB_WINDOW_NONE;
        xcb_window_t window = XCB_WINDOW_NONE;
        std::optional<ProcessID> pid;
    };
    [[nodiscard]] Client read();

  private:
    Connection& connection_;
    std::atomic<ActiveWindow> last_;
};

} // namespace skylet::platform::x11
