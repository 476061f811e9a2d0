#include "settings/ZentroSettingsWindowSizer.h"

#include "settings/ZentroSettingsMetrics.h"
#include "settings/ZentroWindowHelper.h"

namespace skylet {

ZentroSettingsWindowSizer::ZentroSettingsWindowSizer(Window& window, platform::Screens& screens,
                                                     platform::MainQueue& mainQueue)
    : window_(window)
    , screens_(screens)
    , mainQueue_(mainQueue) {
    const auto changed = lifetime_.guard([this] { displaysChanged(); });
    screenChanges_ = screens.observeDidChangeParameters(changed);
    windowChanges_ = window.observeDidChangeScreen(changed);
}

void ZentroSettingsWindowSizer::displaysChanged() {
    mainQueue_.async(lifetime_.guard([this] { clamp(); }));
}

void ZentroSettingsWindowSizer::clamp() {
    const auto screen =
        ZentroWindowHelper::screenOf(window_.frame(), screens_.screens(), screens_.mainScreen());
    if (!screen) {
        return;
    }
    const platform::Size size = ZentroSettingsMetrics::contentSize(
        window_.fittingSize(), screen->visibleFrame, window_.titleBarHeight());
    if (window_.contentSize() != size) {
        window_.setContentSize(size);
    }
    const platform::Rect frame = window_.frame();
    const platform::Rect clamped = ZentroWindowHelper::clampedInto(screen->visibleFrame, frame);
    if (clamped != frame) {
        window_.setFrame(clamped);
    }
}

} // namespace skylet
