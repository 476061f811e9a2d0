// How the grips look, in a grip's own bounds (bottom-left origin), in points.
#pragma once

#include "platform/Panel.h"

namespace skylet {

// A four-way arrow.
[[nodiscard]] platform::Drawing moveGripDrawing(platform::Rect bounds);
// Three diagonal strokes in the bottom right corner.
[[nodiscard]] platform::Drawing resizeGripDrawing(platform::Rect bounds);

} // namespace skylet
