#include "support/SimPanel.h"

#include <utility>

namespace skylet::sim {

using platform::EventType;
using platform::InputEvent;

void SimPanel::inject(EventType type, platform::Point location, std::uint64_t modifiers) {
    InputEvent event;
    event.type = type;
    event.locationInWindow = location;
    event.locationOnScreen = {frame_.x + location.x, frame_.y + location.y};
    event.modifierFlags = modifiers;
    inject(event);
}

void SimPanel::inject(InputEvent event) {
    const bool isPointerWay = event.type == EventType::mouseEntered || event.type == EventType::mouseExited ||
                              event.type == EventType::mouseMoved;
    if (trackingHandler_ && !isPointerWay) {
        if ((eventMask(event.type) & trackingMask_) != 0 && !TrackingHandler(trackingHandler_)(event)) {
            trackingHandler_ = nullptr;
        }
        return;
    }
    if (dragDone_ && event.type == EventType::leftMouseDragged) {
        setFrame({dragOrigin_.x + event.locationOnScreen.x - dragStart_.x,
                  dragOrigin_.y + event.locationOnScreen.y - dragStart_.y, frame_.width, frame_.height},
                 false);
        return;
    }
    if (dragDone_ && event.type == EventType::leftMouseUp) {
        std::exchange(dragDone_, nullptr)();
    }
    eventHandler_(event);
}

void SimPanel::setFrame(platform::Rect rect, bool /*display*/) {
    const bool resized = rect.size() != frame_.size();
    frame_ = rect;
    if (resized && resizeHandler_) {
        resizeHandler_();
    }
}

} // namespace skylet::sim
