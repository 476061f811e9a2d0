#include "Pixels.h"

#include <algorithm>

namespace skylet::desktop {

std::ostream& operator<<(std::ostream& stream, const Rectangle& rectangle) {
    return stream << rectangle.width << 'x' << rectangle.height << '+' << rectangle.x << '+' << rectangle.y;
}

Picture Picture::cut(Rectangle part) const {
    const int left = std::clamp(part.x, 0, width);
    const int top = std::clamp(part.y, 0, height);
    const int right = std::clamp(part.right(), left, width);
    const int bottom = std::clamp(part.bottom(), top, height);
    Picture result{right - left, bottom - top, {}};
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            result.pixels.push_back(at(x, y));
        }
    }
    return result;
}

int difference(const Picture& a, const Picture& b) {
    if (a.width != b.width || a.height != b.height) {
        return static_cast<int>(std::max(a.pixels.size(), b.pixels.size()));
    }
    int result = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        result += a.pixels[i] == b.pixels[i] ? 0 : 1;
    }
    return result;
}

int count(const Picture& picture, std::uint32_t colour) {
    return static_cast<int>(std::count(picture.pixels.begin(), picture.pixels.end(), colour));
}

std::uint32_t patternColour(std::uint32_t seed, int tileX, int tileY) {
    std::uint32_t hash = seed * 2654435761U + static_cast<std::uint32_t>(tileX) * 40503U +
                         static_cast<std::uint32_t>(tileY) * 2246822519U;
    hash ^= hash >> 15;
    hash *= 2246822519U;
    hash ^= hash >> 13;
    return hash & 0xFFFFFFU;
}

Picture patternPicture(std::uint32_t seed, int width, int height) {
    Picture result{width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            result.pixels.push_back(patternColour(seed, x / patternTile, y / patternTile));
        }
    }
    return result;
}

} // namespace skylet::desktop
