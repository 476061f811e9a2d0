#include "platform/x11/KeyCodes.h"

#include <algorithm>
#include <array>

namespace skylet::platform::x11 {

namespace {

struct Key {
    std::uint16_t virtualCode;
    std::uint8_t eventCode; // linux/input-event-codes.h
};

constexpr int eventToX = 8;

// The row of a key is its place on an ANSI keyboard; the letters are those of the US layout.
constexpr auto keys = std::to_array<Key>({
    // clang-format off
    // A S D F H G Z X C V
    {0, 30}, {1, 31}, {2, 32}, {3, 33}, {4, 35}, {5, 34}, {6, 44}, {7, 45}, {8, 46}, {9, 47},
    // ISO key, B Q W E R Y T
    {10, 86}, {11, 48}, {12, 16}, {13, 17}, {14, 18}, {15, 19}, {16, 21}, {17, 20},
    // 1 2 3 4 6 5 = 9 7 - 8 0
    {18, 2}, {19, 3}, {20, 4}, {21, 5}, {22, 7}, {23, 6}, {24, 13}, {25, 10}, {26, 8}, {27, 12}, {28, 9}, {29, 11},
    // ] O U [ I P Return L J ' K ; backslash , / N M .
    {30, 27}, {31, 24}, {32, 22}, {33, 26}, {34, 23}, {35, 25}, {36, 28}, {37, 38}, {38, 36}, {39, 40}, {40, 37},
    {41, 39}, {42, 43}, {43, 51}, {44, 53}, {45, 49}, {46, 50}, {47, 52},
    // Tab Space ` Backspace Escape
    {48, 15}, {49, 57}, {50, 41}, {51, 14}, {53, 1},
    // F1 to F12
    {122, 59}, {120, 60}, {99, 61}, {118, 62}, {96, 63}, {97, 64}, {98, 65}, {100, 66}, {101, 67}, {109, 68},
    {103, 87}, {111, 88},
    // F13 to F20
    {105, 183}, {107, 184}, {113, 185}, {106, 186}, {64, 187}, {79, 188}, {80, 189}, {90, 190},
    // Left Right Down Up Home End PageUp PageDown ForwardDelete
    {123, 105}, {124, 106}, {125, 108}, {126, 103}, {115, 102}, {119, 107}, {116, 104}, {121, 109}, {117, 111},
    // Keypad 0 to 9
    {82, 82}, {83, 79}, {84, 80}, {85, 81}, {86, 75}, {87, 76}, {88, 77}, {89, 71}, {91, 72}, {92, 73},
    // Keypad . * + / Enter - = Clear
    {65, 83}, {67, 55}, {69, 78}, {75, 98}, {76, 96}, {78, 74}, {81, 117}, {71, 69},
    // clang-format on
});

} // namespace

std::optional<xcb_keycode_t> toXKeyCode(std::uint16_t virtualKeyCode) {
    const auto* key = std::find_if(keys.begin(), keys.end(),
                                   [&](const Key& one) { return one.virtualCode == virtualKeyCode; });
    return key == keys.end() ? std::nullopt
                             : std::optional(static_cast<xcb_keycode_t>(key->eventCode + eventToX));
}

std::optional<std::uint16_t> toVirtualKeyCode(xcb_keycode_t keyCode) {
    const auto* key = std::find_if(keys.begin(), keys.end(),
                                   [&](const Key& one) { return one.eventCode + eventToX == keyCode; });
    return key == keys.end() ? std::nullopt : std::optional(key->virtualCode);
}

} // namespace skylet::platform::x11
