#include "app/ZentroMenuBarPill.h"

#include <algorithm>

namespace skylet::ZentroMenuBarPill {

namespace {

using platform::AppearanceColor;
using platform::Color;

constexpr double horizontalPadding = 12; // both sides together
constexpr double verticalPadding = 4;
constexpr double smallestWidth = 22;
constexpr double barMargin = 2;

constexpr Color white(double level, double alpha) {
    return {level, level, level, alpha};
}

constexpr AppearanceColor capsuleColor{.light = white(0.2, 0.85), .dark = white(0.85, 1)};
constexpr AppearanceColor symbolColor{.light = white(1, 1), .dark = white(0.1, 1)};

} // namespace

platform::StatusImage compose(const platform::Symbol& symbol, platform::Size symbolSize,
                              double statusBarThickness, const std::optional<AppearanceColor>& tint) {
    const platform::Size size{std::max(symbolSize.width + horizontalPadding, smallestWidth),
                              std::min(statusBarThickness - barMargin, symbolSize.height + verticalPadding)};
    return {.symbol = symbol,
            .tint = tint.value_or(symbolColor),
            .size = size,
            .symbolOrigin = {(size.width - symbolSize.width) / 2, (size.height - symbolSize.height) / 2},
            .background = {{.cornerRadius = size.height / 2, .color = capsuleColor}}};
}

} // namespace skylet::ZentroMenuBarPill
