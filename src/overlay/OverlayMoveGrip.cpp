#include "overlay/OverlayMoveGrip.h"

#include "overlay/GripDrawing.h"

namespace skylet {

OverlayMoveGrip::OverlayMoveGrip(platform::Panel& panel, platform::Decoration& decoration)
    : OverlayGrip(panel, decoration, moveGripDrawing) {}

void OverlayMoveGrip::mouseDown(const platform::InputEvent& event) {
    if (onMove) {
        onMove();
    }
    panel().performWindowDrag(event, lifetime_.guard([this] {
        if (onMoveEnd) {
            onMoveEnd();
        }
    }));
}

} // namespace skylet
