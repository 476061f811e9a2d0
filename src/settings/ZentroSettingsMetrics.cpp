#include "settings/ZentroSettingsMetrics.h"

#include <algorithm>

namespace skylet::ZentroSettingsMetrics {

platform::Size contentSize(platform::Size fitting, const std::optional<platform::Rect>& visibleFrame,
                           double titleBarHeight) {
    platform::Size maximum = sizeWithoutScreen;
    if (visibleFrame) {
        maximum = {usableShare * visibleFrame->width, usableShare * visibleFrame->height - titleBarHeight};
    }
    // On a very small screen the minimum wins.
    maximum.width = std::max(maximum.width, minimumContentWidth);
    maximum.height = std::max(maximum.height, minimumContentHeight);
    return {std::min(maximum.width, std::max(fitting.width, minimumContentWidth)),
            std::min(maximum.height, std::max(fitting.height, minimumContentHeight))};
}

} // namespace skylet::ZentroSettingsMetrics
