// The accessibility elements that stand for processes and their X windows.
//
// Threads: any; they never change.
#pragma once

#include "platform/Accessibility.h"
#include "platform/Types.h"

#include <xcb/xcb.h>

namespace skylet::platform::x11 {

class WindowElement : public AXElement {
  public:
    WindowElement(ProcessID ownerPID, xcb_window_t clientWindow) : pid(ownerPID), window(clientWindow) {}
    const ProcessID pid;
    const xcb_window_t window;
};

class ApplicationElement : public AXElement {
  public:
    explicit ApplicationElement(ProcessID processIdentifier) : pid(processIdentifier) {}
    const ProcessID pid;
};

} // namespace skylet::platform::x11
