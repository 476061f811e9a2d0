// A window of the benchmark's own that notes when input reaches it, and answers its window manager's pings.
//
// Coordinates: window coordinates. Threads: main thread. Failure: what does not come within two seconds is
// nothing.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace skylet::bench {

class Receiver {
  public:
    explicit Receiver(const std::string& display);

    [[nodiscard]] xcb_window_t window() const { return window_; }
    // The monotonic time in ns at which the next event of this type came; pings are answered meanwhile.
    [[nodiscard]] std::optional<std::int64_t> next(std::uint8_t type);
    // Takes everything that has come so far, for `seconds`.
    void drain(double seconds);

  private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    // The type of the next event, or 0.
    std::uint8_t take(double seconds);

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    xcb_window_t root_ = XCB_NONE;
    xcb_window_t window_ = XCB_NONE;
    xcb_atom_t protocols_ = XCB_NONE;
    xcb_atom_t ping_ = XCB_NONE;
};

} // namespace skylet::bench
