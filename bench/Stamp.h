// A number as the colour of a small square, which survives copying, scaling and a rough change of colours.
#pragma once

#include <cstdint>

namespace skylet::bench {

// The square in the first target window, in X pixels from its top left corner.
constexpr std::int16_t stampPlace = 64;
constexpr std::uint16_t stampSize = 128;
// Numbers are told apart modulo this.
constexpr unsigned stampRange = 512;

// Three bits in each channel, in the middle of their eighth.
constexpr std::uint32_t stampColour(unsigned number) {
    const auto channel = [number](unsigned shift) {
        return ((number >> shift) & 7U) * 32U + 16U;
    };
    return channel(0) << 16U | channel(3) << 8U | channel(6);
}

constexpr unsigned stampNumber(std::uint32_t colour) {
    const auto bits = [colour](unsigned shift) {
        return ((colour >> shift) & 0xFFU) / 32U;
    };
    return bits(16) | bits(8) << 3U | bits(0) << 6U;
}

} // namespace skylet::bench
