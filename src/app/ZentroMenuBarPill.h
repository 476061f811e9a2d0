// Composes a status image: a symbol centred on a filled capsule.
#pragma once

#include "platform/StatusBar.h"

namespace skylet::ZentroMenuBarPill {

// `tint` replaces the symbol's own colours, which follow the appearance, when there is one. Points.
[[nodiscard]] platform::StatusImage compose(const platform::Symbol& symbol, platform::Size symbolSize,
                                            double statusBarThickness,
                                            const std::optional<platform::AppearanceColor>& tint);

} // namespace skylet::ZentroMenuBarPill
