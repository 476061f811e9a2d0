// The monitors in root coordinates, and the one flip between root coordinates and screen coordinates.
//
// Root coordinates (top-left origin, X pixels) are window-server coordinates here: one point is one X pixel.
// Screen coordinates have their origin at the bottom left; both meet in the height of the first monitor:
// y_screen = height - y_root - h.
// Threads: main thread. Failure: without RandR monitors the whole root counts as one monitor.
#pragma once

#include "platform/Subscription.h"
#include "platform/Types.h"
#include "platform/x11/Connection.h"

#include <functional>
#include <memory>
#include <vector>

namespace skylet::platform::x11 {

class ScreenLayout {
  public:
    explicit ScreenLayout(Connection& connection);

    // In root coordinates, the primary one first. Never empty.
    [[nodiscard]] const std::vector<Rect>& monitors() const { return monitors_; }
    [[nodiscard]] Rect rootRect() const { return root_; }
    // Turns a rectangle in root coordinates into screen coordinates, and back: the flip is its own inverse.
    [[nodiscard]] Rect flipped(Rect rect) const {
        rect.y = monitors_.front().height - rect.y - rect.height;
        return rect;
    }
    [[nodiscard]] Point flipped(Point point) const { return {point.x, monitors_.front().height - point.y}; }

    // After the monitors or the root changed.
    [[nodiscard]] Subscription observeDidChange(std::function<void()> notice);

  private:
    class Observer;
    void read();

    Connection& connection_;
    std::vector<Rect> monitors_;
    Rect root_;
    std::shared_ptr<std::vector<Observer*>> observers_;
    Subscription rootEvents_;
};

} // namespace skylet::platform::x11
