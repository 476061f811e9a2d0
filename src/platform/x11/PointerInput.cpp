#include "platform/x11/PointerInput.h"

#include "platform/x11/EventWindow.h"

#include <cstdlib>

namespace skylet::platform::x11 {

namespace {

// Of the common toolkits' defaults (GTK and Qt: 400 ms, 5 pixels).
constexpr xcb_timestamp_t multiClickMilliseconds = 400;
constexpr int multiClickDistance = 5;

// X button numbers: 1 left, 2 middle, 3 right, 4 to 7 wheel up, down, left, right, then further buttons.
constexpr int wheelFirst = 4;
constexpr int wheelLast = 7;

bool isWheel(int button) {
    return button >= wheelFirst && button <= wheelLast;
}

int buttonNumber(int button) {
    switch (button) {
    case 1:
        return 0;
    case 2:
        return 2;
    case 3:
        return 1;
    default:
        return button - 5; // 8 is the first after the middle one
    }
}

EventType typeOf(int button, EventType left, EventType right, EventType other) {
    return button == 1 ? left : button == 3 ? right : other;
}

} // namespace

std::optional<InputEvent> PointerInput::translate(const xcb_generic_event_t& event, const PixelRect& panel) {
    // All pointer events share the layout of the button event up to the state.
    const auto& pointer = as<xcb_button_press_event_t>(event);
    InputEvent input;
    input.locationInWindow = {double(pointer.event_x), double(panel.height - pointer.event_y)};
    input.locationOnScreen = layout_.flipped(Point{double(pointer.root_x), double(pointer.root_y)});
    input.modifierFlags = modifiers_.flags(pointer.state);
    switch (eventType(event)) {
    case XCB_BUTTON_PRESS:
        return press(pointer, input);
    case XCB_BUTTON_RELEASE:
        return release(pointer, input);
    case XCB_MOTION_NOTIFY:
        input.type = heldButton_ == 0 ? EventType::mouseMoved
                                      : typeOf(heldButton_, EventType::leftMouseDragged,
                                               EventType::rightMouseDragged, EventType::otherMouseDragged);
        input.buttonNumber = heldButton_ == 0 ? 0 : buttonNumber(heldButton_);
        input.pressure = heldButton_ == 0 ? 0 : 1;
        return input;
    default:
        return std::nullopt;
    }
}

std::optional<InputEvent> PointerInput::press(const xcb_button_press_event_t& event, InputEvent input) {
    const int button = event.detail;
    if (isWheel(button)) {
        input.type = EventType::scrollWheel;
        input.scrollingDeltaY = button == 4 ? 1 : button == 5 ? -1 : 0;
        input.scrollingDeltaX = button == 6 ? 1 : button == 7 ? -1 : 0;
        return input;
    }
    heldButton_ = heldButton_ == 0 ? button : heldButton_;
    input.type =
        typeOf(button, EventType::leftMouseDown, EventType::rightMouseDown, EventType::otherMouseDown);
    input.buttonNumber = buttonNumber(button);
    input.clickCount = countClicks(event);
    input.pressure = 1;
    return input;
}

std::optional<InputEvent> PointerInput::release(const xcb_button_release_event_t& event, InputEvent input) {
    const int button = event.detail;
    if (isWheel(button)) {
        return std::nullopt;
    }
    if (button == heldButton_) {
        heldButton_ = 0;
    }
    input.type = typeOf(button, EventType::leftMouseUp, EventType::rightMouseUp, EventType::otherMouseUp);
    input.buttonNumber = buttonNumber(button);
    input.clickCount = button == clickButton_ ? clickCount_ : 1;
    return input;
}

int PointerInput::countClicks(const xcb_button_press_event_t& event) {
    const bool continues = event.detail == clickButton_ &&
                           event.time - clickTime_ <= multiClickMilliseconds &&
                           std::abs(event.root_x - clickX_) <= multiClickDistance &&
                           std::abs(event.root_y - clickY_) <= multiClickDistance;
    clickCount_ = continues ? clickCount_ + 1 : 1;
    clickButton_ = event.detail;
    clickTime_ = event.time;
    clickX_ = event.root_x;
    clickY_ = event.root_y;
    return clickCount_;
}

} // namespace skylet::platform::x11
