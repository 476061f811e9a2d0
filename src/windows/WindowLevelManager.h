// From a window's number to its accessibility element, and raising it.
//
// Accessibility gives no window numbers, so that an element and a number are known to be the same window by
// its owner and its place on screen. A window that is not on screen therefore has no element. Threads:
// raiseWindow on the main thread; the others wherever both interfaces may be used. Failure: raiseWindow logs
// it; the others answer none or false.
#pragma once

#include "foundation/DiagnosticsLog.h"
#include "platform/Accessibility.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"

namespace skylet::WindowLevelManager {

// Brings the window to the front of its application and, with `activate`, that application to the front.
void raiseWindow(platform::Accessibility& accessibility, platform::WindowServer& windowServer,
                 platform::Workspace& workspace, DiagnosticsLog& log, platform::ProcessID pid,
                 platform::WindowID windowID, bool activate);

// The first of the application's windows that matches, or null.
[[nodiscard]] platform::AXElementRef axWindow(platform::Accessibility& accessibility,
                                              platform::WindowServer& windowServer, platform::ProcessID pid,
                                              platform::WindowID windowID);

[[nodiscard]] bool matchesWindowID(platform::Accessibility& accessibility,
                                   platform::WindowServer& windowServer,
                                   const platform::AXElementRef& axWindow, platform::ProcessID pid,
                                   platform::WindowID targetWID);

} // namespace skylet::WindowLevelManager
