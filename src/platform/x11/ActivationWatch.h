// Tells when another window may have become the active one.
//
// A window manager announces it in a property of the root. Without one the signs are focus changes of the
// root's children and changes of the children themselves; those events are asked for only while there is no
// manager, because they are many.
//
// Threads: main thread. A check may find that nothing changed.
#pragma once

#include "platform/x11/ActiveWindow.h"

#include <functional>
#include <unordered_map>

namespace skylet::platform::x11 {

class ActivationWatch {
  public:
    // `check` is called after batches of events, from the event loop, and returns the window that stands for
    // the window manager.
    ActivationWatch(Connection& connection, std::function<xcb_window_t()> check);

  private:
    void handleRoot(const xcb_generic_event_t& event);
    void handleChildren(const xcb_generic_event_t& event);
    void watchFocus(xcb_window_t window);
    // Returns whether this is another one than before.
    bool follow(xcb_window_t windowManager);
    void runCheck();

    Connection& connection_;
    std::function<xcb_window_t()> check_;
    bool due_ = true;
    bool following_ = false;
    xcb_window_t windowManager_ = XCB_WINDOW_NONE;
    Subscription properties_;
    Subscription managerEnd_;
    Subscription children_;
    std::unordered_map<xcb_window_t, Subscription> focus_; // of the root's children, without a manager
    Subscription batch_;
};

} // namespace skylet::platform::x11
