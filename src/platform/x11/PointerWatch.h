// Raw button presses, releases and motion of the user's own devices, whoever has grabbed them.
//
// Threads: main thread. Needs XInput 2.1; without it nothing is told.
#pragma once

#include "platform/x11/Connection.h"

#include <functional>

namespace skylet::platform::x11 {

class PointerWatch {
  public:
    struct Handlers {
        std::function<void()> pressed;
        std::function<void()> released;
        std::function<void()> moved;
    };
    // `ownDevice` is the pointer that is not the user's.
    PointerWatch(Connection& connection, std::uint16_t ownDevice, Handlers handlers);
    PointerWatch(const PointerWatch&) = delete;
    PointerWatch& operator=(const PointerWatch&) = delete;
    ~PointerWatch();

  private:
    void select(std::uint32_t mask);
    void handle(const xcb_generic_event_t& event);

    Connection& connection_;
    std::uint16_t ownDevice_;
    Handlers handlers_;
    Subscription events_;
};

} // namespace skylet::platform::x11
