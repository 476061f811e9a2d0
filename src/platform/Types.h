// Value types shared by every platform interface.
//
// Two coordinate systems are in use, both in points:
//   * screen coordinates: origin at the bottom left of the first screen, y upwards (panels, screens);
//   * window-server coordinates: origin at the top left of the first screen, y downwards (window bounds,
//     accessibility frames, posted events).
// A Rect does not know its system; each interface states which one it uses.
#pragma once

#include <cstdint>

namespace skylet::platform {

// The window server's window number. Zero is never a window.
using WindowID = std::uint32_t;
using ProcessID = std::int32_t;

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double minX() const { return x; }
    [[nodiscard]] double minY() const { return y; }
    [[nodiscard]] double midX() const { return x + width / 2; }
    [[nodiscard]] double midY() const { return y + height / 2; }
    [[nodiscard]] double maxX() const { return x + width; }
    [[nodiscard]] double maxY() const { return y + height; }
    [[nodiscard]] Point origin() const { return {x, y}; }
    [[nodiscard]] Size size() const { return {width, height}; }
    bool operator==(const Rect&) const = default;
};

} // namespace skylet::platform
