// Which keys make a shortcut by themselves.
#pragma once

#include <array>
#include <cstdint>

namespace skylet::ZentroShortcutPanel {

// F1 to F20 as virtual key codes, accepted without a modifier.
constexpr std::array<std::uint16_t, 20> functionKeyCodes{
    122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111, 105, 107, 113, 106, 64, 79, 80, 90,
};

} // namespace skylet::ZentroShortcutPanel
