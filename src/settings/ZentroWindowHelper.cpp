#include "settings/ZentroWindowHelper.h"

#include "foundation/Geometry.h"

#include <algorithm>

namespace skylet::ZentroWindowHelper {

using platform::Rect;
using platform::Screen;

std::optional<Screen> activeScreen(const std::vector<Screen>& screens,
                                   const std::optional<Screen>& mainScreen, platform::Point pointer) {
    const auto found =
        std::ranges::find_if(screens, [&](const Screen& screen) { return contains(screen.frame, pointer); });
    return found != screens.end() ? std::optional(*found) : mainScreen;
}

platform::Point centreOnActiveDisplay(platform::Size windowSize, Rect visibleFrame) {
    return {visibleFrame.midX() - windowSize.width / 2, visibleFrame.midY() - windowSize.height / 2};
}

std::optional<Screen> screenOf(Rect frame, const std::vector<Screen>& screens,
                               const std::optional<Screen>& mainScreen) {
    std::optional<Screen> best;
    double most = 0;
    for (const Screen& screen : screens) {
        const double width =
            std::min(frame.maxX(), screen.frame.maxX()) - std::max(frame.minX(), screen.frame.minX());
        const double height =
            std::min(frame.maxY(), screen.frame.maxY()) - std::max(frame.minY(), screen.frame.minY());
        if (width > 0 && height > 0 && width * height > most) {
            most = width * height;
            best = screen;
        }
    }
    return best ? best : mainScreen;
}

// The order of the steps decides where a frame that is too large ends.
Rect clampedInto(Rect visibleFrame, Rect frame) {
    frame.x = std::max(frame.x, visibleFrame.minX());
    frame.x = std::min(frame.x, visibleFrame.maxX() - frame.width);
    frame.y = std::max(frame.y, visibleFrame.minY());
    frame.y = std::min(frame.y, visibleFrame.maxY() - frame.height);
    return frame;
}

} // namespace skylet::ZentroWindowHelper
