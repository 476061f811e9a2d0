#include "app/LegacyPreferences.h"

#include "foundation/PreferenceKeys.h"

namespace skylet {

void migrateLegacyPillColorKey(platform::Defaults& defaults) {
    if (defaults.readBool(PreferenceKeys::didMigratePillColorV2).valueOr(false)) {
        return;
    }
    defaults.remove(PreferenceKeys::menuBarPillColor);
    defaults.setBool(PreferenceKeys::didMigratePillColorV2, true);
}

} // namespace skylet
