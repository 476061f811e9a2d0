// The handle in the overlay's bottom right corner: dragging it resizes the overlay.
#pragma once

#include "foundation/Lifetime.h"
#include "overlay/OverlayGrip.h"

#include <functional>
#include <optional>

namespace skylet {

class OverlayResizeGrip final : public OverlayGrip {
  public:
    OverlayResizeGrip(platform::Panel& panel, platform::Decoration& decoration);

    // Given the press; answers whether the resize may start.
    std::function<bool(const platform::InputEvent&)> onResizeBegin;
    std::function<void(const platform::InputEvent&)> onResizeDrag;
    std::function<void()> onResizeEnd;

    void mouseDown(const platform::InputEvent& event);

  private:
    // Takes the next event of the drag, or nothing when none will come; answers whether the drag goes on.
    [[nodiscard]] bool track(const std::optional<platform::InputEvent>& event);

    Lifetime lifetime_;
};

} // namespace skylet
