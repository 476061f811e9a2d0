#include "overlay/GripDrawing.h"

namespace skylet {

namespace {

using platform::Color;
using platform::FilledRoundedRect;
using platform::Point;
using platform::Rect;
using platform::StrokedLines;

FilledRoundedRect background(Rect bounds) {
    constexpr double inset = 3;
    constexpr double cornerRadius = 5;
    return {.rect = {bounds.x + inset, bounds.y + inset, bounds.width - 2 * inset, bounds.height - 2 * inset},
            .cornerRadius = cornerRadius,
            .color = {.alpha = 0.28}};
}

Color white(double alpha) {
    return {.red = 1, .green = 1, .blue = 1, .alpha = alpha};
}

// The two strokes of an arrowhead at `tip`; `inward` points from the tip into the arrow, with length 1.
void addArrowhead(StrokedLines& lines, Point tip, Point inward) {
    constexpr double length = 4;
    constexpr double halfWidth = 3;
    const Point base{tip.x + inward.x * length, tip.y + inward.y * length};
    const Point side{inward.y * halfWidth, inward.x * halfWidth};
    lines.segments.push_back({tip, {base.x + side.x, base.y + side.y}});
    lines.segments.push_back({tip, {base.x - side.x, base.y - side.y}});
}

} // namespace

platform::Drawing moveGripDrawing(Rect bounds) {
    constexpr double margin = 5;
    const Point left{margin, bounds.midY()};
    const Point right{bounds.maxX() - margin, bounds.midY()};
    const Point bottom{bounds.midX(), margin};
    const Point top{bounds.midX(), bounds.maxY() - margin};
    StrokedLines arrows{.segments = {{left, right}, {bottom, top}}, .lineWidth = 1.5, .color = white(0.9)};
    addArrowhead(arrows, left, {1, 0});
    addArrowhead(arrows, right, {-1, 0});
    addArrowhead(arrows, bottom, {0, 1});
    addArrowhead(arrows, top, {0, -1});
    return {background(bounds), arrows};
}

platform::Drawing resizeGripDrawing(Rect bounds) {
    constexpr double margin = 5;
    StrokedLines strokes{.segments = {}, .lineWidth = 1.6, .color = white(0.88)};
    for (const double reach : {7.0, 12.0, 17.0}) {
        strokes.segments.push_back({{bounds.maxX() - reach, margin}, {bounds.maxX() - margin, reach}});
    }
    return {background(bounds), strokes};
}

} // namespace skylet
