// Input sent as X events that carry the "sent by a client" mark: the way where no second pointer can be had,
// or where a real press would not stop at the target.
//
// Works for programs that take core events and ignore the mark; where it works is told in the README.
//
// Coordinates: root coordinates. Threads: main thread. Failure: a window that is gone gets nothing.
#pragma once

#include "platform/x11/Connection.h"
#include "platform/x11/PostedInput.h"

namespace skylet::platform::x11 {

class SendEventRoute {
  public:
    explicit SendEventRoute(Connection& connection) : connection_(connection) {}
    void post(const PostedInput& input);

  private:
    // The deepest window at the point, and the point in it.
    struct Place {
        xcb_window_t window = XCB_WINDOW_NONE;
        std::int16_t x = 0;
        std::int16_t y = 0;
    };
    [[nodiscard]] Place deepest(xcb_window_t client, int x, int y);
    void send(const Place& place, const PostedInput& input, std::uint8_t type, std::uint8_t detail,
              std::uint16_t state);
    void arrive(const Place& place, const PostedInput& input);

    Connection& connection_;
    Place pressedAt_;
    std::uint8_t heldButton_ = 0;
};

} // namespace skylet::platform::x11
