#include "overlay/OverlayCanvasView.h"

#include <utility>

namespace skylet {

namespace {

using platform::InputEvent;

constexpr double gripSize = 26;
// Larger than the grip, so that it shows before the pointer reaches it.
constexpr double hoverZone = 42;

} // namespace

OverlayCanvasView::OverlayCanvasView(platform::Rect frame, platform::Layer& layer, platform::Panel& panel)
    : bounds_{0, 0, frame.width, frame.height}
    , capturedLayer(layer)
    , moveGrip(panel, panel.addDecoration())
    , resizeGrip(panel, panel.addDecoration()) {
    layout();
}

void OverlayCanvasView::setMoveHandler(std::function<void()> handler) {
    moveGrip.onMove = lifetime_.guard([this, handler = std::move(handler)] {
        moveIsInProgress = true;
        updateGripVisibility();
        handler();
    });
    moveGrip.onMoveEnd = lifetime_.guard([this] {
        moveIsInProgress = false;
        updateGripVisibility();
    });
}

void OverlayCanvasView::setResizeHandlers(ResizeBegin begin, ResizeDrag drag, std::function<void()> end) {
    resizeGrip.onResizeBegin = lifetime_.guard([this, begin = std::move(begin)](const InputEvent& event) {
        resizeIsInProgress = begin(event);
        updateGripVisibility();
        return resizeIsInProgress;
    });
    resizeGrip.onResizeDrag = std::move(drag);
    resizeGrip.onResizeEnd = lifetime_.guard([this, end = std::move(end)] {
        end();
        resizeIsInProgress = false;
        updateGripVisibility();
    });
}

void OverlayCanvasView::updateGripVisibility() {
    const auto& p = pointerLocation;
    const bool nearMoveCorner = p && p->x <= hoverZone && p->y <= hoverZone;
    const bool nearResizeCorner = p && p->y <= hoverZone && p->x >= bounds_.maxX() - hoverZone;
    moveGrip.setShown(pinIsVisible && (nearMoveCorner || moveIsInProgress));
    resizeGrip.setShown(pinIsVisible && (nearResizeCorner || resizeIsInProgress));
}

void OverlayCanvasView::setSize(platform::Size size) {
    bounds_ = {0, 0, size.width, size.height};
    layout();
}

void OverlayCanvasView::layout() {
    capturedLayer.setFrame(bounds_);
    moveGrip.setFrame({0, 0, gripSize, gripSize});
    resizeGrip.setFrame({bounds_.maxX() - gripSize, 0, gripSize, gripSize});
}

bool OverlayCanvasView::mouseDown(const InputEvent& event) {
    // The resize grip lies over the move grip where a narrow overlay makes them meet.
    if (resizeGrip.takesHit(event.locationInWindow)) {
        resizeGrip.mouseDown(event);
        return true;
    }
    if (moveGrip.takesHit(event.locationInWindow)) {
        moveGrip.mouseDown(event);
        return true;
    }
    return false;
}

void OverlayCanvasView::mouseEntered(const InputEvent& event) {
    mouseMoved(event);
}

void OverlayCanvasView::mouseMoved(const InputEvent& event) {
    pointerLocation = event.locationInWindow;
    updateGripVisibility();
}

void OverlayCanvasView::mouseExited(const InputEvent& /*event*/) {
    pointerLocation.reset();
    updateGripVisibility();
}

} // namespace skylet
