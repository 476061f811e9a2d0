#include "input/EventForwarder.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace skylet::EventForwarder {

namespace {

using platform::EventType;
using platform::InputEvent;
using platform::Point;
using platform::PostedEventType;
using platform::PostedMouseButton;
using platform::ProcessID;
using platform::SyntheticEvent;
using platform::WindowID;
namespace Field = platform::EventField;

bool isOther(EventType type) {
    return type == EventType::otherMouseDown || type == EventType::otherMouseUp ||
           type == EventType::otherMouseDragged;
}

// Last of all fields, in this order; then the event goes out.
void addTargetAndPost(platform::EventPoster& poster, SyntheticEvent event, WindowID windowID, ProcessID pid) {
    const auto window = static_cast<std::int64_t>(windowID);
    event.fields.push_back({Field::eventTargetUnixProcessID, std::int64_t{pid}});
    event.fields.push_back({Field::mouseEventWindowUnderMousePointer, window});
    event.fields.push_back({Field::mouseEventWindowUnderMousePointerThatCanHandleThisEvent, window});
    event.fields.push_back({Field::windowNumber, window});
    event.fields.push_back({Field::windowRouting, std::int64_t{1}});
    poster.postToPid(event, pid);
}

} // namespace

void forward(platform::WindowServer& windowServer, platform::EventPoster& poster, const InputEvent& event,
             const ForwardingOverlay& overlay) {
    const auto bounds = cgBounds(windowServer, overlay.windowID);
    const auto [width, height] = overlay.size;
    if (!bounds || width <= 0 || height <= 0) {
        return;
    }
    const double fx = event.locationInWindow.x / width;
    const double fy = (height - event.locationInWindow.y) / height;
    if (fx < 0 || fx > 1 || fy < 0 || fy > 1) {
        return;
    }
    const Point point{bounds->minX() + fx * bounds->width, bounds->minY() + fy * bounds->height};
    if (event.type == EventType::scrollWheel) {
        postScroll(poster, event, point, overlay.windowID, overlay.pid);
    } else {
        postMouse(poster, event, point, overlay.windowID, overlay.pid);
    }
}

std::optional<platform::Rect> cgBounds(platform::WindowServer& windowServer, WindowID windowID) {
    const auto list = windowServer.copyWindowList(platform::WindowListOption::includingWindow, windowID);
    if (!list || list->empty() || !list->front().bounds) {
        return std::nullopt;
    }
    const platform::WindowBounds& bounds = *list->front().bounds;
    if (!bounds.x || !bounds.y || !bounds.width || !bounds.height) {
        return std::nullopt;
    }
    return bounds.rect();
}

std::optional<std::pair<PostedEventType, PostedMouseButton>> mouseType(EventType type) {
    switch (type) {
    case EventType::leftMouseDown:
    case EventType::leftMouseUp:
    case EventType::leftMouseDragged:
        return std::pair{static_cast<PostedEventType>(type), PostedMouseButton::left};
    case EventType::rightMouseDown:
    case EventType::rightMouseUp:
    case EventType::rightMouseDragged:
        return std::pair{static_cast<PostedEventType>(type), PostedMouseButton::right};
    case EventType::otherMouseDown:
    case EventType::otherMouseUp:
    case EventType::otherMouseDragged:
        return std::pair{static_cast<PostedEventType>(type), PostedMouseButton::center};
    default:
        return std::nullopt;
    }
}

std::int32_t scrollSteps(double value) {
    if (value == 0) {
        return 0;
    }
    const double rounded = std::round(value);
    if (rounded == 0) {
        return value > 0 ? 1 : -1;
    }
    if (!(rounded >= std::numeric_limits<std::int32_t>::min() &&
          rounded <= std::numeric_limits<std::int32_t>::max())) {
        std::fprintf(stderr, "skylet: a scroll of %g steps is impossible\n", value);
        std::abort();
    }
    return static_cast<std::int32_t>(rounded);
}

void postMouse(platform::EventPoster& poster, const InputEvent& event, Point point, WindowID windowID,
               ProcessID pid) {
    const auto type = mouseType(event.type);
    if (!type) {
        return;
    }
    SyntheticEvent posted;
    posted.type = type->first;
    posted.button = type->second;
    posted.location = point;
    posted.flags = event.modifierFlags & platform::ModifierFlags::shortcutMask;
    posted.fields.push_back({Field::mouseEventClickState, std::int64_t{std::max(event.clickCount, 1)}});
    posted.fields.push_back({Field::mouseEventPressure, event.pressure});
    if (isOther(event.type)) {
        posted.fields.push_back({Field::mouseEventButtonNumber, std::int64_t{event.buttonNumber}});
    }
    addTargetAndPost(poster, std::move(posted), windowID, pid);
}

void postScroll(platform::EventPoster& poster, const InputEvent& event, Point point, WindowID windowID,
                ProcessID pid) {
    SyntheticEvent posted;
    posted.type = PostedEventType::scrollWheel;
    posted.location = point;
    posted.flags = event.modifierFlags & platform::ModifierFlags::shortcutMask;
    posted.scrollUnit =
        event.hasPreciseScrollingDeltas ? platform::ScrollUnit::pixel : platform::ScrollUnit::line;
    posted.scrollSteps = {scrollSteps(event.scrollingDeltaY), scrollSteps(event.scrollingDeltaX)};
    if (event.hasPreciseScrollingDeltas) {
        posted.fields.push_back({Field::scrollWheelEventIsContinuous, std::int64_t{1}});
        posted.fields.push_back({Field::scrollWheelEventPointDeltaAxis1, event.scrollingDeltaY});
        posted.fields.push_back({Field::scrollWheelEventPointDeltaAxis2, event.scrollingDeltaX});
    }
    addTargetAndPost(poster, std::move(posted), windowID, pid);
}

} // namespace skylet::EventForwarder
