#include "foundation/Geometry.h"

#include <cmath>

namespace skylet {

using platform::Point;
using platform::Rect;
using platform::Size;

double primaryScreenHeight(platform::Screens& screens) {
    const auto all = screens.screens();
    return all.empty() ? 0 : all.front().frame.height;
}

Rect flip(Rect rect, double primaryScreenHeight) {
    return {rect.x, primaryScreenHeight - rect.y - rect.height, rect.width, rect.height};
}

bool intersects(Rect a, Rect b) {
    return a.minX() < b.maxX() && b.minX() < a.maxX() && a.minY() < b.maxY() && b.minY() < a.maxY();
}

bool differByLessThan(double tolerance, Rect a, Rect b) {
    return std::abs(a.x - b.x) < tolerance && std::abs(a.y - b.y) < tolerance &&
           std::abs(a.width - b.width) < tolerance && std::abs(a.height - b.height) < tolerance;
}

bool contains(Rect rect, Point point) {
    return point.x >= rect.minX() && point.x < rect.maxX() && point.y >= rect.minY() && point.y < rect.maxY();
}

Point mapOntoTarget(Point location, Size panelSize, Rect target) {
    return {target.minX() + target.width * (location.x / panelSize.width),
            target.minY() + target.height * ((panelSize.height - location.y) / panelSize.height)};
}

} // namespace skylet
