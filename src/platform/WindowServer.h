// The window server's list of windows.
//
// Coordinates: bounds are window-server coordinates (top-left origin), in points.
// Threads: main thread. Failure: an empty optional; a window that vanishes while the list is made is left
// out.
#pragma once

#include "platform/Types.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace skylet::platform {

// Every key of the list can be missing: what a missing key means is the reader's rule.
struct WindowBounds {
    std::optional<double> x;
    std::optional<double> y;
    std::optional<double> width;
    std::optional<double> height;

    // The rectangle with missing keys read as 0.
    [[nodiscard]] Rect rect() const {
        return {x.value_or(0), y.value_or(0), width.value_or(0), height.value_or(0)};
    }
};

struct WindowEntry {
    std::optional<std::int64_t> number;
    std::optional<std::int64_t> ownerPID;
    std::optional<std::int64_t> layer;
    std::optional<std::string> name;
    std::optional<WindowBounds> bounds;
};

// Values of the list options of the window server (CGWindowListOption).
namespace WindowListOption {
constexpr std::uint32_t onScreenOnly = 1;
constexpr std::uint32_t includingWindow = 8;
constexpr std::uint32_t excludeDesktopElements = 16;
} // namespace WindowListOption

// "Relative to no window" (kCGNullWindowID).
constexpr WindowID nullWindowID = 0;

class WindowServer {
  public:
    virtual ~WindowServer() = default;

    // The windows selected by `options` (a union of WindowListOption bits), front to back. With
    // `includingWindow` only the window `relativeTo` is listed, on screen or not.
    // Windows of this program's own panels are listed like any others.
    [[nodiscard]] virtual std::optional<std::vector<WindowEntry>> copyWindowList(std::uint32_t options,
                                                                                 WindowID relativeTo) = 0;

    // The level of ordinary windows (CGWindowLevelForKey of the normal window level).
    [[nodiscard]] virtual int normalWindowLevel() const = 0;
};

} // namespace skylet::platform
