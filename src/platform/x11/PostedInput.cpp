#include "platform/x11/PostedInput.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace skylet::platform::x11 {

namespace {

// Points of precise scrolling that make a wheel click (Qt and GTK count 120 units a click).
constexpr double pointsPerClick = 120;
constexpr std::uint8_t wheelUp = 4;
constexpr std::uint8_t wheelDown = 5;
constexpr std::uint8_t wheelLeft = 6;
constexpr std::uint8_t wheelRight = 7;
// A mad delta must not flood the target.
constexpr int maximumClicks = 100;

std::uint8_t xButton(const SyntheticEvent& event) {
    switch (event.button) {
    case PostedMouseButton::left:
        return 1;
    case PostedMouseButton::right:
        return 3;
    case PostedMouseButton::center:
        break;
    }
    // 2 is the middle button; further ones follow the four wheel buttons. The last one has a use of its own.
    const auto number = event.integerField(EventField::mouseEventButtonNumber).value_or(2);
    return number >= 3 && number <= 4 ? static_cast<std::uint8_t>(number + 5) : 2;
}

void addClicks(PostedInput& input, int clicks, std::uint8_t positive, std::uint8_t negative) {
    if (clicks != 0) {
        input.wheel.emplace_back(clicks > 0 ? positive : negative, std::min(std::abs(clicks), maximumClicks));
    }
}

} // namespace

int WheelAccumulator::take(xcb_window_t window, bool vertical, double delta) {
    if (window != window_) {
        window_ = window;
        rest_[0] = rest_[1] = 0;
    }
    double& rest = rest_[vertical ? 0 : 1];
    rest += delta;
    const double clicks = std::trunc(rest / pointsPerClick);
    rest -= clicks * pointsPerClick;
    return static_cast<int>(std::clamp(clicks, -double(maximumClicks), double(maximumClicks)));
}

PostedInput toPostedInput(const SyntheticEvent& event, ProcessID pid, const ModifierMap& modifiers,
                          WheelAccumulator& accumulator) {
    PostedInput input;
    input.window = static_cast<xcb_window_t>(event.integerField(EventField::windowNumber).value_or(0));
    input.pid = pid;
    input.x = event.location.x;
    input.y = event.location.y;
    input.state = modifiers.state(event.flags);
    switch (event.type) {
    case PostedEventType::leftMouseDown:
    case PostedEventType::rightMouseDown:
    case PostedEventType::otherMouseDown:
        input.kind = PostedInput::Kind::press;
        input.button = xButton(event);
        break;
    case PostedEventType::leftMouseUp:
    case PostedEventType::rightMouseUp:
    case PostedEventType::otherMouseUp:
        input.kind = PostedInput::Kind::release;
        input.button = xButton(event);
        break;
    case PostedEventType::leftMouseDragged:
    case PostedEventType::rightMouseDragged:
    case PostedEventType::otherMouseDragged:
        input.kind = PostedInput::Kind::motion;
        break;
    case PostedEventType::scrollWheel: {
        input.kind = PostedInput::Kind::wheel;
        int vertical = event.scrollSteps[0];
        int horizontal = event.scrollSteps[1];
        if (event.scrollUnit == ScrollUnit::pixel) {
            const auto points = [&](std::uint32_t field) {
                return event.doubleField(field).value_or(0);
            };
            vertical =
                accumulator.take(input.window, true, points(EventField::scrollWheelEventPointDeltaAxis1));
            horizontal =
                accumulator.take(input.window, false, points(EventField::scrollWheelEventPointDeltaAxis2));
        }
        addClicks(input, vertical, wheelUp, wheelDown);
        addClicks(input, horizontal, wheelLeft, wheelRight);
        break;
    }
    }
    return input;
}

} // namespace skylet::platform::x11
