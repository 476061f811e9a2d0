// A window of another application.
#pragma once

#include "platform/Types.h"

#include <string>

namespace skylet {

struct ForeignWindow {
    platform::WindowID windowID = 0;
    platform::ProcessID ownerPID = 0;
    std::string ownerName;   // the application's localised name, or "Unknown"
    std::string windowTitle; // empty when the window list gives none

    // What log lines and menus call the window: its title, or its owner's name when it has none.
    [[nodiscard]] const std::string& displayLabel() const {
        return windowTitle.empty() ? ownerName : windowTitle;
    }
};

} // namespace skylet
