// Preferences of earlier versions.
#pragma once

#include "platform/Defaults.h"

namespace skylet {

// Discards the colour that earlier versions stored for the menu bar icon, once per user.
void migrateLegacyPillColorKey(platform::Defaults& defaults);

} // namespace skylet
