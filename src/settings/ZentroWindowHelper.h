// Where windows are placed. Screen coordinates (bottom-left origin), points.
#pragma once

#include "platform/Screens.h"
#include "platform/Types.h"

#include <optional>
#include <vector>

namespace skylet::ZentroWindowHelper {

// The first screen that holds the pointer, else the main screen; none without screens.
[[nodiscard]] std::optional<platform::Screen> activeScreen(const std::vector<platform::Screen>& screens,
                                                           const std::optional<platform::Screen>& mainScreen,
                                                           platform::Point pointer);

// The origin that centres a window of that size in the visible frame.
[[nodiscard]] platform::Point centreOnActiveDisplay(platform::Size windowSize, platform::Rect visibleFrame);

// The screen that shows most of the frame, else the main screen; none without screens.
[[nodiscard]] std::optional<platform::Screen> screenOf(platform::Rect frame,
                                                       const std::vector<platform::Screen>& screens,
                                                       const std::optional<platform::Screen>& mainScreen);

// The frame moved into the visible frame. One that is larger keeps its right and top edges inside, and with
// them its title bar.
[[nodiscard]] platform::Rect clampedInto(platform::Rect visibleFrame, platform::Rect frame);

} // namespace skylet::ZentroWindowHelper
