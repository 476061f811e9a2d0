// Pictures of what the X server shows.
//
// Units: X pixels; a pixel is 0xRRGGBB.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

namespace skylet::desktop {

struct Rectangle {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const Rectangle&) const = default;
    [[nodiscard]] int right() const { return x + width; }
    [[nodiscard]] int bottom() const { return y + height; }
};

std::ostream& operator<<(std::ostream& stream, const Rectangle& rectangle);

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; // row by row

    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
    // The part inside this picture.
    [[nodiscard]] Picture cut(Rectangle part) const;
    bool operator==(const Picture&) const = default;
};

// How many pixels differ; all of them when the sizes do.
[[nodiscard]] int difference(const Picture& a, const Picture& b);
// How many pixels have this colour.
[[nodiscard]] int count(const Picture& picture, std::uint32_t colour);

// Test pattern of tiles whose colours follow from the seed: any shift, scaling or older state shows.
[[nodiscard]] std::uint32_t patternColour(std::uint32_t seed, int tileX, int tileY);
[[nodiscard]] Picture patternPicture(std::uint32_t seed, int width, int height);
constexpr int patternTile = 16;

} // namespace skylet::desktop
