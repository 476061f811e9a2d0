// The overlay's content: the mirrored picture and two grips in the bottom corners.
//
// A grip shows only while the overlay is the shown pin and the pointer is near its corner or its drag runs.
// The canvas knows nothing of windows or capture: gestures go to the handlers that the overlay installs.
// Coordinates: the panel's own (bottom-left origin), in points. Threads: main thread.
#pragma once

#include "foundation/Lifetime.h"
#include "overlay/OverlayMoveGrip.h"
#include "overlay/OverlayResizeGrip.h"
#include "platform/Panel.h"

#include <functional>
#include <optional>

namespace skylet {

class OverlayCanvasView {
  public:
    using ResizeBegin = std::function<bool(const platform::InputEvent&)>;
    using ResizeDrag = std::function<void(const platform::InputEvent&)>;

    // The layer must belong to the panel, which must outlive the canvas.
    OverlayCanvasView(platform::Rect frame, platform::Layer& capturedLayer, platform::Panel& panel);

    // `handler` is called when a move begins.
    void setMoveHandler(std::function<void()> handler);
    // `begin` answers whether the resize may start; `end` follows every `begin` that answered true.
    void setResizeHandlers(ResizeBegin begin, ResizeDrag drag, std::function<void()> end);

    // Whether the overlay is the shown pin; `updateGripVisibility` applies a change.
    bool pinIsVisible = false;
    void updateGripVisibility();

    // Called whenever the panel's size changed.
    void setSize(platform::Size size);

    // What a press, a release or the pointer's way over the canvas does. False when nothing of the canvas
    // took a press, which then is one on the picture.
    bool mouseDown(const platform::InputEvent& event);
    void mouseEntered(const platform::InputEvent& event);
    void mouseMoved(const platform::InputEvent& event);
    void mouseExited(const platform::InputEvent& event);

  private:
    void layout();

    platform::Rect bounds_;
    platform::Layer& capturedLayer;
    OverlayMoveGrip moveGrip;
    OverlayResizeGrip resizeGrip;
    std::optional<platform::Point> pointerLocation;
    bool moveIsInProgress = false;
    bool resizeIsInProgress = false;
    Lifetime lifetime_;
};

} // namespace skylet
