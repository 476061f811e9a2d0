// Reading the entries of the window list, whose keys may be missing or out of range.
#pragma once

#include "platform/WindowServer.h"

#include <cstdint>
#include <limits>
#include <optional>

namespace skylet {

// The windows that are shown now, without desktop elements.
constexpr std::uint32_t onScreenWindows =
    platform::WindowListOption::onScreenOnly | platform::WindowListOption::excludeDesktopElements;

// The number if it is there and an unsigned 32-bit one.
[[nodiscard]] inline std::optional<platform::WindowID> windowNumber(const platform::WindowEntry& entry) {
    if (!entry.number || *entry.number < 0 ||
        *entry.number > std::numeric_limits<platform::WindowID>::max()) {
        return std::nullopt;
    }
    return static_cast<platform::WindowID>(*entry.number);
}

// The bounds of one window, on screen or not, in window-server coordinates. None when the window server does
// not list it or lists it without bounds.
[[nodiscard]] inline std::optional<platform::Rect> listedBounds(platform::WindowServer& windowServer,
                                                                platform::WindowID windowID) {
    const auto list = windowServer.copyWindowList(platform::WindowListOption::includingWindow, windowID);
    if (!list || list->empty() || !list->front().bounds) {
        return std::nullopt;
    }
    return list->front().bounds->rect();
}

} // namespace skylet
