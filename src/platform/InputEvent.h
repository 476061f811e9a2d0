// A mouse or scroll event on a panel.
#pragma once

#include "platform/Types.h"

#include <cstdint>

namespace skylet::platform {

// Raw values of the event types (NSEvent.EventType).
enum class EventType : std::uint32_t {
    leftMouseDown = 1,
    leftMouseUp = 2,
    rightMouseDown = 3,
    rightMouseUp = 4,
    mouseMoved = 5,
    leftMouseDragged = 6,
    rightMouseDragged = 7,
    mouseEntered = 8,
    mouseExited = 9,
    scrollWheel = 22,
    otherMouseDown = 25,
    otherMouseUp = 26,
    otherMouseDragged = 27,
};

// Event masks have bit (1 << type).
constexpr std::uint64_t eventMask(EventType type) {
    return std::uint64_t{1} << static_cast<std::uint32_t>(type);
}

// Device-independent modifier bits (NSEvent.ModifierFlags, and the same bits in event flags).
namespace ModifierFlags {
constexpr std::uint64_t capsLock = 0x10000;
constexpr std::uint64_t shift = 0x20000;
constexpr std::uint64_t control = 0x40000;
constexpr std::uint64_t option = 0x80000;
constexpr std::uint64_t command = 0x100000;
// The four bits that shortcuts are stored and compared under.
constexpr std::uint64_t shortcutMask = 0x1E0000;
} // namespace ModifierFlags

struct InputEvent {
    EventType type = EventType::mouseMoved;
    Point locationInWindow{}; // bottom-left origin of the panel, points
    // The same place in screen coordinates. The adapter gives it because converting `locationInWindow`
    // through the panel's current frame would be wrong while a frame change is under way.
    Point locationOnScreen{};
    std::uint64_t modifierFlags = 0;
    int clickCount = 0;   // presses and releases; 0 for drags
    double pressure = 0;  // 0 to 1
    int buttonNumber = 0; // 0 left, 1 right, 2 middle, then as numbered by the system
    double scrollingDeltaX = 0;
    double scrollingDeltaY = 0; // positive: content moves down, towards its top
    bool hasPreciseScrollingDeltas = false;
};

} // namespace skylet::platform
