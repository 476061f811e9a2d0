// Raising windows and giving them the focus, through the window manager where there is one.
//
// Threads: raiseWindow on any thread, activateWindow on the main thread. Failure: a window that is gone is
// told by raiseWindow; managers may refuse silently.
#pragma once

#include "platform/x11/ActiveWindow.h"

namespace skylet::platform::x11 {

// Asks that the window be brought in front of its siblings, without giving it the focus. Not every manager
// obliges. False when the window is gone. One round trip.
[[nodiscard]] bool raiseWindow(Connection& connection, xcb_window_t window);

// Brings the window to the front with the focus; switches to its desktop first, where it is on another one.
void activateWindow(Connection& connection, xcb_window_t window, const ClientWindows& desktop);

// The same, but brings the window to the user's desktop instead of the user to the window's.
void activateHere(Connection& connection, xcb_window_t window, const ClientWindows& desktop);

} // namespace skylet::platform::x11
