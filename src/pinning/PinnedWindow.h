// The record of a pinned window. Two records of the same window are equal whatever its title says by now.
#pragma once

#include "foundation/Text.h"
#include "platform/Types.h"
#include "windows/ForeignWindow.h"

#include <cstddef>
#include <functional>
#include <string>

namespace skylet {

struct PinnedWindow {
    platform::WindowID windowID = 0;
    platform::ProcessID ownerPID = 0;
    std::string ownerName;
    std::string windowTitle; // may be empty

    explicit PinnedWindow(const ForeignWindow& window)
        : windowID(window.windowID)
        , ownerPID(window.ownerPID)
        , ownerName(window.ownerName)
        , windowTitle(window.windowTitle) {}

    bool operator==(const PinnedWindow& other) const { return windowID == other.windowID; }

    // The owner's name and, if there is one, the title, shortened to 40 characters.
    [[nodiscard]] std::string displayLabel() const {
        constexpr std::size_t longestTitle = 40;
        return windowTitle.empty() ? ownerName : ownerName + " — " + shortened(windowTitle, longestTitle);
    }
};

} // namespace skylet

template <>
struct std::hash<skylet::PinnedWindow> {
    std::size_t operator()(const skylet::PinnedWindow& window) const noexcept {
        return std::hash<skylet::platform::WindowID>()(window.windowID);
    }
};
