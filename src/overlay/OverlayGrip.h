// What both grips of an overlay share: a picture in a corner that is hidden until shown and takes presses
// only then.
//
// Coordinates: the panel's own (bottom-left origin), in points. Threads: main thread.
#pragma once

#include "platform/Panel.h"

namespace skylet {

class OverlayGrip {
  public:
    OverlayGrip(const OverlayGrip&) = delete;
    OverlayGrip& operator=(const OverlayGrip&) = delete;

    void setFrame(platform::Rect frame);
    void setShown(bool shown);
    // Whether the grip is shown and takes a press at this point of the panel.
    [[nodiscard]] bool takesHit(platform::Point location) const;

  protected:
    // Draws the grip for its bounds.
    using Draw = platform::Drawing (*)(platform::Rect bounds);

    // Both must outlive the grip.
    OverlayGrip(platform::Panel& panel, platform::Decoration& decoration, Draw draw);
    ~OverlayGrip() = default;

    [[nodiscard]] platform::Panel& panel() const { return panel_; }

  private:
    platform::Panel& panel_;
    platform::Decoration& decoration_;
    Draw draw_;
    platform::Rect frame_;
    bool isShown_ = false;
};

} // namespace skylet
