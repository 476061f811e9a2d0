// One-pixel holes in the input shape of every window that lies over a point, so that an event made there
// falls through to the window below.
//
// What is cut is written to a property of the root first: whoever finds it after a crash can put it back.
//
// Coordinates: root coordinates. Threads: main thread. Failure: a window that is gone needs no hole.
#pragma once

#include "platform/x11/Connection.h"

#include <vector>

namespace skylet::platform::x11 {

class InputHoles {
  public:
    explicit InputHoles(Connection& connection) : connection_(connection) {}

    // Finds the windows above `topLevel` (a child of the root) at the point, and how their input is shaped
    // now. Three round trips. False when `topLevel` does not lie under the point at all.
    [[nodiscard]] bool find(xcb_window_t topLevel, int x, int y);
    // Queues the cuts that `find` found, and their undoing.
    void cut();
    void close();

    // Puts back what the root's property says was cut. One round trip.
    static void repair(Connection& connection);

  private:
    struct Hole {
        xcb_window_t window = XCB_WINDOW_NONE;
        bool wasShaped = false;
        std::vector<xcb_rectangle_t> shape; // relative to the window, when it was shaped
        xcb_rectangle_t hole{};             // relative to the window
    };
    static void restore(Connection& connection, xcb_window_t window, bool wasShaped,
                        const std::vector<xcb_rectangle_t>& shape);

    Connection& connection_;
    std::vector<Hole> holes_;
    bool isCut_ = false;
};

} // namespace skylet::platform::x11
