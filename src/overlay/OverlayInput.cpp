// WindowOverlay: where the user's mouse and scroll events go.
#include "foundation/Geometry.h"
#include "overlay/WindowOverlay.h"
#include "windows/WindowLevelManager.h"

#include <string>

namespace skylet {

namespace {

using platform::EventType;
using platform::InputEvent;

// The squares in the bottom corners whose presses belong to the grips.
constexpr double cornerSquare = 28;

bool isMouseDown(EventType type) {
    return type == EventType::leftMouseDown || type == EventType::rightMouseDown ||
           type == EventType::otherMouseDown;
}

bool isMouseUpOrDrag(EventType type) {
    switch (type) {
    case EventType::leftMouseUp:
    case EventType::rightMouseUp:
    case EventType::otherMouseUp:
    case EventType::leftMouseDragged:
    case EventType::rightMouseDragged:
    case EventType::otherMouseDragged:
        return true;
    default:
        return false;
    }
}

} // namespace

void WindowOverlay::sendEvent(const InputEvent& event) {
    if (routeToGrips(event)) {
        return;
    }
    if (!isMouseDown(event.type) && !isMouseUpOrDrag(event.type) && event.type != EventType::scrollWheel) {
        handleByPanel(event);
        return;
    }
    const bool forwards = isPinVisible_ && forwardEvents(environment_.defaults, environment_.workspace);
    if (environment_.workspace.isSystemVersion27OrLater()) {
        if (event.type == EventType::scrollWheel && forwards) {
            scrollThroughAccessibility(event);
            return;
        }
        if (isPinVisible_ && isMouseUpOrDrag(event.type)) {
            return;
        }
        if (isPinVisible_ && isMouseDown(event.type)) {
            activateReal();
            return;
        }
    }
    if (forwards) {
        forwardOrSwitch(event);
    } else {
        handleByPanel(event);
    }
}

// Whether the event belongs to a grip's drag or may begin one; it then went to the panel's own handling.
bool WindowOverlay::routeToGrips(const InputEvent& event) {
    if (moveDragInProgress) {
        handleByPanel(event);
        if (event.type == EventType::leftMouseUp) {
            moveDragInProgress = false;
        }
        return true;
    }
    if (!isPinVisible_ || event.type != EventType::leftMouseDown) {
        return false;
    }
    const platform::Point location = event.locationInWindow;
    if (location.y > cornerSquare) {
        return false;
    }
    if (location.x <= cornerSquare) {
        moveDragInProgress = true;
        handleByPanel(event);
        return true;
    }
    if (location.x >= panel_->frame().width - cornerSquare) {
        handleByPanel(event);
        return true;
    }
    return false;
}

void WindowOverlay::scrollThroughAccessibility(const InputEvent& event) const {
    const platform::Size size = panel_->frame().size();
    if (size.width <= 0 || size.height <= 0) {
        return;
    }
    const auto bounds = windowBounds(environment_.windowServer, targetWindowID_);
    if (!bounds || event.scrollingDeltaY == 0 || !routes_.axScroll) {
        return;
    }
    routes_.axScroll(targetPID_, targetWindowID_, event.scrollingDeltaY,
                     mapOntoTarget(event.locationInWindow, size, *bounds));
}

// A press with Command switches to the real window, everything else goes there.
void WindowOverlay::forwardOrSwitch(const InputEvent& event) {
    if (event.type == EventType::leftMouseDown &&
        (event.modifierFlags & platform::ModifierFlags::command) != 0) {
        activateReal();
    } else if (routes_.forward) {
        routes_.forward(event, *this);
    }
}

// The panel's own handling: a press goes to the grip under it, else to the picture; the pointer's way to the
// canvas.
void WindowOverlay::handleByPanel(const InputEvent& event) {
    switch (event.type) {
    case EventType::leftMouseDown:
        if (!canvas_->mouseDown(event)) {
            mouseDown();
        }
        break;
    case EventType::mouseEntered:
        canvas_->mouseEntered(event);
        break;
    case EventType::mouseMoved:
        canvas_->mouseMoved(event);
        break;
    case EventType::mouseExited:
        canvas_->mouseExited(event);
        break;
    default:
        break;
    }
}

void WindowOverlay::mouseDown() {
    activateReal();
}

void WindowOverlay::activateReal() {
    wplog(environment_.log,
          [&] { return "overlay: switching to real window wid=" + std::to_string(targetWindowID_); });
    sendBehind();
    WindowLevelManager::raiseWindow(environment_.accessibility, environment_.windowServer,
                                    environment_.workspace, environment_.log, targetPID_, targetWindowID_,
                                    true);
}

} // namespace skylet
