// From the overlays to the accessibility scroller.
#pragma once

#include "input/AXScroller.h"
#include "overlay/OverlayEnvironment.h"

namespace skylet {

// Leads scrolls, forgotten windows and first frames to the scroller, which must outlive the routes' use.
inline void connectScroller(OverlayInputRoutes& routes, AXScroller& scroller) {
    routes.axScroll = [&scroller](platform::ProcessID pid, platform::WindowID windowID, double deltaY,
                                  platform::Point point) {
        scroller.scroll(pid, windowID, deltaY, point);
    };
    routes.axForget = [&scroller](platform::WindowID windowID) {
        scroller.forget(windowID);
    };
    routes.probe = [&scroller](platform::ProcessID pid, platform::WindowID windowID) {
        scroller.probe(pid, windowID);
    };
}

} // namespace skylet
