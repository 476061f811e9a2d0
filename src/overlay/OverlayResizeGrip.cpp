#include "overlay/OverlayResizeGrip.h"

#include "overlay/GripDrawing.h"

namespace skylet {

using platform::EventType;
using platform::InputEvent;

OverlayResizeGrip::OverlayResizeGrip(platform::Panel& panel, platform::Decoration& decoration)
    : OverlayGrip(panel, decoration, resizeGripDrawing) {}

void OverlayResizeGrip::mouseDown(const InputEvent& event) {
    if (!onResizeBegin || !onResizeBegin(event)) {
        return;
    }
    panel().trackEvents(
        eventMask(EventType::leftMouseDragged) | eventMask(EventType::leftMouseUp),
        lifetime_.guard([this](const std::optional<InputEvent>& next) { return track(next); }));
}

bool OverlayResizeGrip::track(const std::optional<InputEvent>& event) {
    if (!event || event->type == EventType::leftMouseUp) {
        if (onResizeEnd) {
            onResizeEnd();
        }
        return false;
    }
    if (onResizeDrag) {
        onResizeDrag(*event);
    }
    return true;
}

} // namespace skylet
