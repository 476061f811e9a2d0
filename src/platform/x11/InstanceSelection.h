// One instance for each X screen, also without a session bus: the owner of the selection _SKYLET_S<screen>.
//
// Threads: main thread; activation comes from the event loop. Failure: none; a server that breaks ends the
// program anyway.
#pragma once

#include "platform/x11/Connection.h"

#include <functional>

namespace skylet::platform::x11 {

class InstanceSelection {
  public:
    // `activated` is called when a later instance found this one.
    InstanceSelection(Connection& connection, std::function<void()> activated);
    InstanceSelection(const InstanceSelection&) = delete;
    InstanceSelection& operator=(const InstanceSelection&) = delete;
    ~InstanceSelection();

    // Takes the selection, or tells the instance that has it to come forward. Whether it was taken.
    [[nodiscard]] bool claim();

  private:
    void handle(const xcb_generic_event_t& event);

    Connection& connection_;
    xcb_atom_t selection_ = XCB_ATOM_NONE;
    xcb_window_t window_ = XCB_WINDOW_NONE; // never mapped; owns the selection
    std::function<void()> activated_;
    Subscription events_;
};

} // namespace skylet::platform::x11
