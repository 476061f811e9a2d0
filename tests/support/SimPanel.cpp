#include "support/SimPanel.h"

#include <utility>

namespace skylet::sim {

using platform::EventType;
using platform::InputEvent;

SimPanel::SimPanel(SimPanelFactory& factory, platform::Rect frame,
                   const platform::PanelConfiguration& panelConfiguration)
    : configuration(panelConfiguration)
    , level(panelConfiguration.level)
    , factory_(factory)
    , frame_(frame) {
    factory_.panels.push_back(this);
}

SimPanel::~SimPanel() {
    std::erase(factory_.panels, this);
}

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

void SimPanel::endTracking() {
    if (trackingHandler_) {
        std::exchange(trackingHandler_, nullptr)(std::nullopt);
    }
}

void SimPanel::setFrame(platform::Rect rect, bool /*display*/) {
    const bool resized = rect.size() != frame_.size();
    frame_ = rect;
    if (resized && resizeHandler_) {
        resizeHandler_();
    }
}

void SimPanel::animateAlpha(double value, double seconds) {
    alpha = value;
    animations.emplace_back(value, seconds);
}

platform::Decoration& SimPanel::addDecoration() {
    return *decorations.emplace_back(std::make_unique<SimDecoration>());
}

void SimPanel::trackEvents(std::uint64_t mask, TrackingHandler handler) {
    trackingMask_ = mask;
    trackingHandler_ = std::move(handler);
}

void SimPanel::performWindowDrag(const InputEvent& mouseDown, std::function<void()> done) {
    dragStart_ = mouseDown.locationOnScreen;
    dragOrigin_ = frame_.origin();
    dragDone_ = std::move(done);
}

} // namespace skylet::sim
