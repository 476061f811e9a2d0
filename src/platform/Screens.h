// The screens of the desktop.
//
// Coordinates: screen coordinates (origin at the bottom left of the first screen), in points.
// Threads: main thread; notices are delivered there.
#pragma once

#include "platform/Subscription.h"
#include "platform/Types.h"

#include <functional>
#include <optional>
#include <vector>

namespace skylet::platform {

struct Screen {
    Rect frame;
    Rect visibleFrame; // less docks and menu bars
    double backingScaleFactor = 1;
};

class Screens {
  public:
    virtual ~Screens() = default;
    // The first one is the primary screen. Empty when there is none.
    [[nodiscard]] virtual std::vector<Screen> screens() = 0;
    // The screen with the keyboard focus, else the first one.
    [[nodiscard]] virtual std::optional<Screen> mainScreen() = 0;
    [[nodiscard]] virtual Subscription observeDidChangeParameters(std::function<void()> notice) = 0;
};

} // namespace skylet::platform
