// Publishes the program's hotkeys in its preferences, for other programs to read.
//
// Threads: main thread. Failure: a list that cannot be encoded leaves the earlier one in place.
#pragma once

#include "platform/Defaults.h"
#include "settings/ZentroHotkey.h"

#include <vector>

namespace skylet::ZentroHotkeyRegistry {

// Replaces the published list; an empty one is published too.
void publish(platform::Defaults& defaults, const std::vector<ZentroHotkey>& hotkeys);

} // namespace skylet::ZentroHotkeyRegistry
