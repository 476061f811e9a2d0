// One posted event in X terms.
#pragma once

#include "platform/EventPoster.h"
#include "platform/x11/ModifierMap.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace skylet::platform::x11 {

struct PostedInput {
    enum class Kind { press, release, motion, wheel };

    Kind kind = Kind::motion;
    xcb_window_t window = XCB_WINDOW_NONE;
    ProcessID pid = 0;
    double x = 0; // root coordinates
    double y = 0;
    std::uint8_t button = 0; // press, release and motion: the X button
    std::uint16_t state = 0; // core modifier bits
    // Wheel: clicks of X buttons 4 to 7, in the order to send.
    std::vector<std::pair<std::uint8_t, int>> wheel;
};

// Collects what is less than a wheel click of precise deltas, so that no motion is lost.
class WheelAccumulator {
  public:
    // Whole clicks in `delta` points together with what was left before, on one axis of one window.
    [[nodiscard]] int take(xcb_window_t window, bool vertical, double delta);

  private:
    xcb_window_t window_ = XCB_WINDOW_NONE;
    double rest_[2] = {0, 0};
};

[[nodiscard]] PostedInput toPostedInput(const SyntheticEvent& event, ProcessID pid,
                                        const ModifierMap& modifiers, WheelAccumulator& accumulator);

} // namespace skylet::platform::x11
