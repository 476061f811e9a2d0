// Geometry between the two coordinate systems, in points (see platform/Types.h).
#pragma once

#include "platform/Screens.h"
#include "platform/Types.h"

namespace skylet {

// The height of the first screen, on which the two coordinate systems meet; 0 when there is no screen.
[[nodiscard]] double primaryScreenHeight(platform::Screens& screens);

// The rectangle in the other coordinate system: y becomes H0 - y - height. Its own inverse.
[[nodiscard]] platform::Rect flip(platform::Rect rect, double primaryScreenHeight);

// Whether the two share an area; touching edges share none.
[[nodiscard]] bool intersects(platform::Rect a, platform::Rect b);

// Whether origin and size each differ by less than `tolerance` on both axes.
[[nodiscard]] bool differByLessThan(double tolerance, platform::Rect a, platform::Rect b);

// The left and bottom edges belong to the rectangle, the right and top ones do not.
[[nodiscard]] bool contains(platform::Rect rect, platform::Point point);

// The point of `target` (top-left origin) that lies where `location` (bottom-left origin) lies in a panel of
// `panelSize`: proportionally on each axis, which also extends beyond the edges. The size must not be zero.
[[nodiscard]] platform::Point mapOntoTarget(platform::Point location, platform::Size panelSize,
                                            platform::Rect target);

} // namespace skylet
