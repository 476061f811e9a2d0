// Rectangles of whole X pixels.
#pragma once

#include "platform/Types.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace skylet::platform::x11 {

struct PixelPoint {
    int x = 0;
    int y = 0;
};

struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] int right() const { return x + width; }
    [[nodiscard]] int bottom() const { return y + height; }
    [[nodiscard]] bool isEmpty() const { return width <= 0 || height <= 0; }
    [[nodiscard]] PixelRect translated(int dx, int dy) const { return {x + dx, y + dy, width, height}; }
    bool operator==(const PixelRect&) const = default;
};

[[nodiscard]] inline PixelRect intersection(const PixelRect& a, const PixelRect& b) {
    const int left = std::max(a.x, b.x);
    const int top = std::max(a.y, b.y);
    return {left, top, std::max(0, std::min(a.right(), b.right()) - left),
            std::max(0, std::min(a.bottom(), b.bottom()) - top)};
}

// The smallest rectangle around both; an empty one does not count.
[[nodiscard]] inline PixelRect united(const PixelRect& a, const PixelRect& b) {
    if (a.isEmpty() || b.isEmpty()) {
        return a.isEmpty() ? b : a;
    }
    const int left = std::min(a.x, b.x);
    const int top = std::min(a.y, b.y);
    return {left, top, std::max(a.right(), b.right()) - left, std::max(a.bottom(), b.bottom()) - top};
}

// What is left of every rectangle of `from` without `hole`, as rectangles that do not overlap if those did
// not.
[[nodiscard]] inline std::vector<PixelRect> subtracted(const std::vector<PixelRect>& from,
                                                       const PixelRect& hole) {
    std::vector<PixelRect> rest;
    for (const PixelRect& rect : from) {
        const PixelRect cut = intersection(rect, hole);
        if (cut.isEmpty()) {
            rest.push_back(rect);
            continue;
        }
        const PixelRect parts[] = {{rect.x, rect.y, rect.width, cut.y - rect.y},
                                   {rect.x, cut.bottom(), rect.width, rect.bottom() - cut.bottom()},
                                   {rect.x, cut.y, cut.x - rect.x, cut.height},
                                   {cut.right(), cut.y, rect.right() - cut.right(), cut.height}};
        for (const PixelRect& part : parts) {
            if (!part.isEmpty()) {
                rest.push_back(part);
            }
        }
    }
    return rest;
}

// The pixels nearest to a rectangle in points; at least one pixel in size. X positions and sizes are 16-bit.
[[nodiscard]] inline PixelRect toPixels(const Rect& rect) {
    const auto position = [](double value) {
        return static_cast<int>(std::lround(std::clamp(value, -32768.0, 32767.0)));
    };
    const auto extent = [](double value) {
        return static_cast<int>(std::lround(std::clamp(value, 1.0, 32767.0)));
    };
    return {position(rect.x), position(rect.y), extent(rect.width), extent(rect.height)};
}

[[nodiscard]] inline Rect toPoints(const PixelRect& rect) {
    return {double(rect.x), double(rect.y), double(rect.width), double(rect.height)};
}

[[nodiscard]] inline xcb_rectangle_t toXRectangle(const PixelRect& rect) {
    return {static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
            static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height)};
}

} // namespace skylet::platform::x11
