#include "overlay/OverlayGrip.h"

#include "foundation/Geometry.h"

namespace skylet {

OverlayGrip::OverlayGrip(platform::Panel& panel, platform::Decoration& decoration, Draw draw)
    : panel_(panel)
    , decoration_(decoration)
    , draw_(draw) {}

void OverlayGrip::setFrame(platform::Rect frame) {
    frame_ = frame;
    decoration_.setFrame(frame);
}

void OverlayGrip::setShown(bool shown) {
    // The picture never changes, so that it need only be drawn when the grip comes up.
    if (shown == isShown_) {
        return;
    }
    isShown_ = shown;
    if (shown) {
        decoration_.setDrawing(draw_({0, 0, frame_.width, frame_.height}));
    }
    decoration_.setHidden(!shown);
}

bool OverlayGrip::takesHit(platform::Point location) const {
    return isShown_ && contains(frame_, location);
}

} // namespace skylet
