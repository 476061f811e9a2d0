// Posting synthetic input events to other processes.
//
// Coordinates: window-server coordinates (top-left origin), in points.
// Threads: main thread. Failure: events that cannot be posted are dropped.
#pragma once

#include "platform/Types.h"

#include <array>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace skylet::platform {

// Event types and buttons of posted events (CGEventType, CGMouseButton); scroll events have type 22.
enum class PostedEventType : std::uint32_t {
    leftMouseDown = 1,
    leftMouseUp = 2,
    rightMouseDown = 3,
    rightMouseUp = 4,
    leftMouseDragged = 6,
    rightMouseDragged = 7,
    scrollWheel = 22,
    otherMouseDown = 25,
    otherMouseUp = 26,
    otherMouseDragged = 27,
};
enum class PostedMouseButton : std::uint32_t { left = 0, right = 1, center = 2 };

enum class ScrollUnit : std::uint32_t { pixel = 0, line = 1 };

// Numbers of the event fields in use (CGEventField). 51 and 58 have no public name.
namespace EventField {
constexpr std::uint32_t mouseEventClickState = 1;
constexpr std::uint32_t mouseEventPressure = 2;
constexpr std::uint32_t mouseEventButtonNumber = 3;
constexpr std::uint32_t eventTargetUnixProcessID = 40;
constexpr std::uint32_t windowNumber = 51;
constexpr std::uint32_t windowRouting = 58;
constexpr std::uint32_t scrollWheelEventIsContinuous = 88;
constexpr std::uint32_t mouseEventWindowUnderMousePointer = 91;
constexpr std::uint32_t mouseEventWindowUnderMousePointerThatCanHandleThisEvent = 92;
constexpr std::uint32_t scrollWheelEventPointDeltaAxis1 = 96;
constexpr std::uint32_t scrollWheelEventPointDeltaAxis2 = 97;
} // namespace EventField

struct SyntheticEvent {
    struct Field {
        std::uint32_t number = 0;
        std::variant<std::int64_t, double> value;
        bool operator==(const Field&) const = default;
    };

    PostedEventType type = PostedEventType::leftMouseDown;
    PostedMouseButton button = PostedMouseButton::left; // mouse events
    Point location;
    std::uint64_t flags = 0; // see ModifierFlags
    ScrollUnit scrollUnit = ScrollUnit::line;
    std::array<std::int32_t, 2> scrollSteps{}; // vertical, horizontal
    std::vector<Field> fields;                 // in the order in which they were set

    [[nodiscard]] std::optional<std::int64_t> integerField(std::uint32_t number) const {
        return field<std::int64_t>(number);
    }
    [[nodiscard]] std::optional<double> doubleField(std::uint32_t number) const {
        return field<double>(number);
    }

  private:
    template <class T>
    [[nodiscard]] std::optional<T> field(std::uint32_t number) const {
        std::optional<T> found;
        for (const Field& one : fields) {
            if (const T* value = one.number == number ? std::get_if<T>(&one.value) : nullptr) {
                found = *value;
            }
        }
        return found;
    }
};

class EventPoster {
  public:
    virtual ~EventPoster() = default;
    // Posts to the process; a mouse or scroll event reaches the window named in its fields.
    virtual void postToPid(const SyntheticEvent& event, ProcessID pid) = 0;

    // The permission to post events.
    [[nodiscard]] virtual bool preflightPostAccess() = 0;
    // Asks the system for the permission; answers whether it is there now.
    virtual bool requestPostAccess() = 0;
};

} // namespace skylet::platform
