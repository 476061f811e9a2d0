// The handle in the overlay's bottom left corner: dragging it moves the overlay.
#pragma once

#include "foundation/Lifetime.h"
#include "overlay/OverlayGrip.h"

#include <functional>

namespace skylet {

class OverlayMoveGrip final : public OverlayGrip {
  public:
    OverlayMoveGrip(platform::Panel& panel, platform::Decoration& decoration);

    // Called when a drag begins and when it ended.
    std::function<void()> onMove;
    std::function<void()> onMoveEnd;

    void mouseDown(const platform::InputEvent& event);

  private:
    Lifetime lifetime_;
};

} // namespace skylet
