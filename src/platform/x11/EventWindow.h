// Which window an event was reported to.
#pragma once

#include "platform/x11/Connection.h"

namespace skylet::platform::x11 {

// The response type without the "sent by a client" bit.
[[nodiscard]] inline std::uint8_t eventType(const xcb_generic_event_t& event) {
    return event.response_type & 0x7F;
}

// The event's own form. The caller has checked the type.
template <class T>
[[nodiscard]] const T& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event); // NOLINT: how xcb types its events
}

// XCB_WINDOW_NONE for events that are reported to no window.
[[nodiscard]] xcb_window_t eventWindow(const xcb_generic_event_t& event, const Extensions& extensions);

} // namespace skylet::platform::x11
