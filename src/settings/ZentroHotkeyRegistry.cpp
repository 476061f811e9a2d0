#include "settings/ZentroHotkeyRegistry.h"

#include "foundation/PreferenceKeys.h"

namespace skylet::ZentroHotkeyRegistry {

void publish(platform::Defaults& defaults, const std::vector<ZentroHotkey>& hotkeys) {
    if (const auto json = encodeHotkeys(hotkeys)) {
        defaults.setData(PreferenceKeys::registeredHotkeys, *json);
    }
}

} // namespace skylet::ZentroHotkeyRegistry
