// X11Panel: the input on it.
#include "platform/x11/EventWindow.h"
#include "platform/x11/X11Panel.h"

#include <utility>

namespace skylet::platform::x11 {

void X11Panel::trackEvents(std::uint64_t mask, TrackingHandler handler) {
    trackingMask_ = mask;
    tracking_ = std::move(handler);
}

void X11Panel::performWindowDrag(const InputEvent& mouseDown, std::function<void()> done) {
    drag_ = WindowDrag{frame(), mouseDown.locationOnScreen, std::move(done)};
}

void X11Panel::handle(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_EXPOSE:
        expose(as<xcb_expose_event_t>(event));
        break;
    case XCB_ENTER_NOTIFY:
        crossing(as<xcb_enter_notify_event_t>(event), EventType::mouseEntered);
        break;
    case XCB_LEAVE_NOTIFY:
        flushMotion();
        crossing(as<xcb_enter_notify_event_t>(event), EventType::mouseExited);
        break;
    case XCB_MOTION_NOTIFY:
        motion_ = pointer_.translate(event, stacked_->rect);
        break;
    case XCB_BUTTON_PRESS:
        context_.stack.raise(*stacked_);
        [[fallthrough]];
    case XCB_BUTTON_RELEASE:
        flushMotion();
        if (const auto input = pointer_.translate(event, stacked_->rect)) {
            deliver(*input);
        }
        break;
    default:
        break;
    }
}

void X11Panel::expose(const xcb_expose_event_t& event) {
    canvas_->redraw({event.x, event.y, event.width, event.height});
}

void X11Panel::crossing(const xcb_enter_notify_event_t& event, EventType type) {
    // A grab by somebody else is no move of the pointer.
    if (event.mode != XCB_NOTIFY_MODE_NORMAL && event.mode != XCB_NOTIFY_MODE_UNGRAB) {
        return;
    }
    InputEvent input;
    input.type = type;
    input.locationInWindow = {double(event.event_x), double(stacked_->rect.height - event.event_y)};
    input.locationOnScreen = context_.layout.flipped(Point{double(event.root_x), double(event.root_y)});
    input.modifierFlags = context_.modifiers.flags(event.state);
    deliver(input);
}

void X11Panel::flushMotion() {
    if (const auto motion = std::exchange(motion_, std::nullopt)) {
        deliver(*motion);
    }
}

void X11Panel::deliver(const InputEvent& event) {
    const std::weak_ptr<int> alive = alive_;
    if (drag_) {
        const Point now = event.locationOnScreen;
        const bool ends = event.type == EventType::leftMouseUp;
        if (event.type == EventType::leftMouseDragged || ends) {
            Rect moved = drag_->startFrame;
            moved.x += now.x - drag_->startPointer.x;
            moved.y += now.y - drag_->startPointer.y;
            setFrame(moved, true);
        }
        if (!ends) {
            return;
        }
        const WindowDrag drag = std::move(*std::exchange(drag_, std::nullopt));
        drag.done();
        if (alive.expired()) {
            return;
        }
    } else if (tracking_) {
        const bool passes = event.type == EventType::mouseEntered || event.type == EventType::mouseExited ||
                            event.type == EventType::mouseMoved;
        if (!passes) {
            if ((eventMask(event.type) & trackingMask_) != 0) {
                const TrackingHandler handler = tracking_;
                const bool goesOn = handler(event);
                if (!alive.expired() && !goesOn) {
                    tracking_ = nullptr;
                }
            }
            return;
        }
    }
    if (eventHandler_) {
        const EventHandler handler = eventHandler_;
        handler(event);
    }
}

void X11Panel::endInteraction() {
    const std::weak_ptr<int> alive = alive_;
    motion_.reset();
    pointer_.reset();
    if (const TrackingHandler handler = std::exchange(tracking_, nullptr)) {
        handler(std::nullopt);
        if (alive.expired()) {
            return;
        }
    }
    if (auto drag = std::exchange(drag_, std::nullopt)) {
        drag->done();
        if (!alive.expired() && eventHandler_) {
            InputEvent released;
            released.type = EventType::leftMouseUp;
            const EventHandler handler = eventHandler_;
            handler(released);
        }
    }
}

} // namespace skylet::platform::x11
