#include "app/KeyNames.h"

#include <algorithm>
#include <array>

namespace skylet {

namespace {

struct NamedKey {
    std::uint16_t code;
    std::string_view name;
};

// Virtual key codes are positions on an American keyboard; letters and digits are named after it.
constexpr std::array<NamedKey, 76> namedKeys{{
    {0, "A"},     {1, "S"},     {2, "D"},     {3, "F"},     {4, "H"},     {5, "G"},     {6, "Z"},
    {7, "X"},     {8, "C"},     {9, "V"},     {11, "B"},    {12, "Q"},    {13, "W"},    {14, "E"},
    {15, "R"},    {16, "Y"},    {17, "T"},    {18, "1"},    {19, "2"},    {20, "3"},    {21, "4"},
    {22, "6"},    {23, "5"},    {24, "="},    {25, "9"},    {26, "7"},    {27, "-"},    {28, "8"},
    {29, "0"},    {30, "]"},    {31, "O"},    {32, "U"},    {33, "["},    {34, "I"},    {35, "P"},
    {36, "↩"},    {37, "L"},    {38, "J"},    {39, "'"},    {40, "K"},    {41, ";"},    {42, "\\"},
    {43, ","},    {44, "/"},    {45, "N"},    {46, "M"},    {47, "."},    {48, "⇥"},    {49, "Spazio"},
    {50, "`"},    {51, "⌫"},    {53, "⎋"},    {122, "F1"},  {120, "F2"},  {99, "F3"},   {118, "F4"},
    {96, "F5"},   {97, "F6"},   {98, "F7"},   {100, "F8"},  {101, "F9"},  {109, "F10"}, {103, "F11"},
    {111, "F12"}, {105, "F13"}, {107, "F14"}, {113, "F15"}, {106, "F16"}, {64, "F17"},  {79, "F18"},
    {80, "F19"},  {90, "F20"},  {123, "←"},   {124, "→"},   {125, "↓"},   {126, "↑"},
}};

} // namespace

std::string_view keyName(std::uint16_t keyCode) {
    const auto found = std::ranges::find(namedKeys, keyCode, &NamedKey::code);
    return found == namedKeys.end() ? std::string_view() : found->name;
}

} // namespace skylet
