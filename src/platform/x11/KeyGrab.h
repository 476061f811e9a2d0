// One key with modifiers, grabbed on the root under every state of the lock keys.
//
// The server matches modifiers exactly, locks included, so that each combination of locks takes a grab of its
// own. Threads: main thread. Failure: the X error of the first grab that was refused; then none is kept.
#pragma once

#include "platform/x11/Connection.h"
#include "platform/x11/ModifierMap.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace skylet::platform::x11 {

class KeyGrab {
  public:
    struct Result {
        std::unique_ptr<KeyGrab> grab; // null on failure
        std::optional<XError> error;
    };
    // One round trip for all combinations. `modifiers` are core state bits.
    [[nodiscard]] static Result make(Connection& connection, const ModifierMap& map, xcb_keycode_t keyCode,
                                     std::uint16_t modifiers);

    KeyGrab(const KeyGrab&) = delete;
    KeyGrab& operator=(const KeyGrab&) = delete;
    ~KeyGrab();

    [[nodiscard]] xcb_keycode_t keyCode() const { return keyCode_; }
    // Ends `former`, an earlier grab of this client; what both have stays grabbed all the while.
    void takeOver(std::unique_ptr<KeyGrab> former) const;

  private:
    KeyGrab(Connection& connection, xcb_keycode_t keyCode) : connection_(connection), keyCode_(keyCode) {}

    Connection& connection_;
    xcb_keycode_t keyCode_;
    std::vector<std::uint16_t> states_;
};

} // namespace skylet::platform::x11
