// Turns a mouse or scroll event made on an overlay into a synthetic event at the matching point of the real
// window.
//
// The mapping is proportional on each axis: a point at 30 % of the overlay's width lands at 30 % of the
// window's. Threads: main thread. Failure: the event is dropped silently when the window is not listed any
// more, the overlay is empty, the point lies outside it or the type is not one that is forwarded.
#pragma once

#include "platform/EventPoster.h"
#include "platform/InputEvent.h"
#include "platform/WindowServer.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace skylet {

// What forwarding has to know of the overlay on which the event was made.
struct ForwardingOverlay {
    platform::WindowID windowID = 0;
    platform::ProcessID pid = 0;
    platform::Size size;
};

namespace EventForwarder {

void forward(platform::WindowServer& windowServer, platform::EventPoster& poster,
             const platform::InputEvent& event, const ForwardingOverlay& overlay);

// The real window's bounds; nothing unless it is listed with all four of them.
[[nodiscard]] std::optional<platform::Rect> cgBounds(platform::WindowServer& windowServer,
                                                     platform::WindowID windowID);

// Nothing for types that are not forwarded.
[[nodiscard]] std::optional<std::pair<platform::PostedEventType, platform::PostedMouseButton>>
mouseType(platform::EventType type);

// Whole steps of a scroll delta: halves round away from zero, and the smallest motion is still one step.
// A delta outside the 32-bit range is a defect of the caller and ends the program.
[[nodiscard]] std::int32_t scrollSteps(double value);

void postMouse(platform::EventPoster& poster, const platform::InputEvent& event, platform::Point point,
               platform::WindowID windowID, platform::ProcessID pid);
void postScroll(platform::EventPoster& poster, const platform::InputEvent& event, platform::Point point,
                platform::WindowID windowID, platform::ProcessID pid);

} // namespace EventForwarder

} // namespace skylet
