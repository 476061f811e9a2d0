// Virtual key codes and X key codes of the same key of the keyboard.
//
// A virtual key code names a place on the keyboard, whatever letter the layout puts there; so does an X key
// code, which is the kernel's event code plus 8.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

namespace skylet::platform::x11 {

// Nothing for codes that no key here has.
[[nodiscard]] std::optional<xcb_keycode_t> toXKeyCode(std::uint16_t virtualKeyCode);
[[nodiscard]] std::optional<std::uint16_t> toVirtualKeyCode(xcb_keycode_t keyCode);

} // namespace skylet::platform::x11
