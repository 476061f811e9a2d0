// Readers of window properties that trust nothing: type, format and length are checked before a value is
// taken.
//
// Any client can set any property of any window to anything. A property that is not what its convention says
// reads as absent.
#pragma once

#include "platform/x11/Connection.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace skylet::platform::x11 {

using PendingProperty = Pending<xcb_get_property_reply>;

// Longest part of a text that is read, in bytes; the rest of a longer one is cut at a character boundary.
constexpr std::uint32_t maximumTextBytes = 4096;

// `maximumItems` 32-bit items are asked for.
[[nodiscard]] PendingProperty askProperty(Connection& connection, xcb_window_t window, xcb_atom_t property,
                                          xcb_atom_t type, std::uint32_t maximumItems);
// Any text type, up to maximumTextBytes.
[[nodiscard]] PendingProperty askText(Connection& connection, xcb_window_t window, xcb_atom_t property);

// The 32-bit items of a property of exactly `type`; empty when it is absent or not of that form.
[[nodiscard]] std::vector<std::uint32_t> items(PendingProperty& pending, xcb_atom_t type);
// The first item, if there is one.
[[nodiscard]] std::optional<std::uint32_t> firstItem(PendingProperty& pending, xcb_atom_t type);
// A text of type UTF8_STRING or STRING (Latin-1), up to its first NUL. Bytes that are not valid UTF-8 become
// U+FFFD. Nothing when the property is absent or of another type.
[[nodiscard]] std::optional<std::string> text(PendingProperty& pending, const Atoms& atoms);
// WM_CLASS: instance and class names; empty strings where missing.
struct WindowClass {
    std::string instance;
    std::string className;
};
[[nodiscard]] std::optional<WindowClass> windowClass(PendingProperty& pending);

} // namespace skylet::platform::x11
