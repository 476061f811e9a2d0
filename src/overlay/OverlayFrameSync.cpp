// WindowOverlay: following the target's geometry and the user's resizing.
#include "foundation/Geometry.h"
#include "overlay/WindowOverlay.h"
#include "windows/WindowEntries.h"

#include <algorithm>
#include <cmath>

namespace skylet {

namespace {

using platform::Point;
using platform::Rect;
using platform::Size;

constexpr double frameSyncSeconds = 0.5;
constexpr Size smallestSize{320, 220};
// A smaller change of the size is not worth a new stream configuration.
constexpr double reconfigurationThreshold = 1.0;

} // namespace

std::optional<Rect> WindowOverlay::getWindowFrame(platform::WindowServer& windowServer,
                                                  platform::Screens& screens, platform::WindowID windowID) {
    const auto bounds = windowBounds(windowServer, windowID);
    if (!bounds) {
        return std::nullopt;
    }
    return flip(*bounds, primaryScreenHeight(screens));
}

std::optional<Rect> WindowOverlay::windowBounds(platform::WindowServer& windowServer,
                                                platform::WindowID windowID) {
    return listedBounds(windowServer, windowID);
}

void WindowOverlay::startFrameSync() {
    frameSyncTimer =
        environment_.mainQueue.every(frameSyncSeconds, lifetime_.guard([this] { syncFrameWithTarget(); }));
}

void WindowOverlay::syncFrameWithTarget() {
    const auto target = getWindowFrame(environment_.windowServer, environment_.screens, targetWindowID_);
    if (!target) {
        return;
    }
    const Rect current = panel_->frame();
    const Size size = hasCustomOverlaySize ? current.size() : target->size();
    Point origin = target->origin();
    if (hasCustomOverlayPosition) {
        origin = current.origin();
    } else if (hasCustomOverlaySize) {
        origin = {target->minX(), target->maxY() - size.height};
    }
    const Rect wanted{origin.x, origin.y, size.width, size.height};
    if (wanted != current) {
        panel_->setFrame(wanted, false);
    }
    const Size shown = panel_->frame().size();
    if (stream != nullptr && (std::abs(shown.width - lastStreamSize.width) > reconfigurationThreshold ||
                              std::abs(shown.height - lastStreamSize.height) > reconfigurationThreshold)) {
        lastStreamSize = shown;
        updateStreamConfiguration();
    }
}

bool WindowOverlay::beginResize(const platform::InputEvent& mouseDown) {
    if (isPinVisible_) {
        resizeStartFrame = panel_->frame();
        resizeStartPointer = mouseDown.locationOnScreen;
        hasCustomOverlaySize = true;
    }
    return isPinVisible_;
}

void WindowOverlay::dragResize(const platform::InputEvent& drag) {
    if (!resizeStartFrame || !resizeStartPointer) {
        return;
    }
    const Point pointer = drag.locationOnScreen;
    const Rect start = *resizeStartFrame;
    const double width = std::max(start.width + (pointer.x - resizeStartPointer->x), smallestSize.width);
    const double height = std::max(start.height - (pointer.y - resizeStartPointer->y), smallestSize.height);
    panel_->setFrame({start.minX(), start.maxY() - height, width, height}, true);
}

void WindowOverlay::endResize() {
    resizeStartFrame.reset();
    resizeStartPointer.reset();
}

} // namespace skylet
