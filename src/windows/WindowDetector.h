// Which window of another application is in front, and which windows exist.
//
// The window list alone does not tell which of an application's windows has the focus, and accessibility does
// not tell a window's number; together they do. Nothing is kept between two calls. Threads: main thread.
// Failure: whatever cannot be read is left out of the search.
#pragma once

#include "platform/Accessibility.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"
#include "windows/ForeignWindow.h"

#include <optional>
#include <unordered_set>

namespace skylet::WindowDetector {

// The focused window of the frontmost application, or none when that is this program or has no normal window.
[[nodiscard]] std::optional<ForeignWindow> getFrontmostForeignWindow(platform::Workspace& workspace,
                                                                     platform::Accessibility& accessibility,
                                                                     platform::WindowServer& windowServer);

// The numbers of all windows on a layer not below 0, also of those that are out of view: minimised, hidden or
// on another desktop. Empty when the window list cannot be had.
[[nodiscard]] std::unordered_set<platform::WindowID>
allOnScreenWindowIDs(platform::WindowServer& windowServer);

} // namespace skylet::WindowDetector
