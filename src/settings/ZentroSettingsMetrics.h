// How large the settings window may be. Points.
#pragma once

#include "platform/Types.h"

#include <optional>

namespace skylet::ZentroSettingsMetrics {

constexpr double minimumContentWidth = 420;
constexpr double minimumContentHeight = 400;
// The share of a screen's visible frame that the window takes at most.
constexpr double usableShare = 0.8;
// The largest size where no screen is known.
constexpr platform::Size sizeWithoutScreen{960, 720};
// When the content is scrolled to its top: it settles its size in the first layout passes.
constexpr double scrollSettleDelays[] = {0.0, 0.05, 0.25};

// The size of the window's content that wants `fitting`. `titleBarHeight` is what the window's frame adds to
// the content's height.
[[nodiscard]] platform::Size
contentSize(platform::Size fitting, const std::optional<platform::Rect>& visibleFrame, double titleBarHeight);

} // namespace skylet::ZentroSettingsMetrics
