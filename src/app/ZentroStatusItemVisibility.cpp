#include "app/ZentroStatusItemVisibility.h"

#include "foundation/PreferenceKeys.h"

#include <utility>

namespace skylet {

ZentroStatusItemVisibility::ZentroStatusItemVisibility(platform::Defaults& defaults,
                                                       const std::string& bundleIdentifier)
    : defaults_(defaults)
    , hiddenKey_(std::string(PreferenceKeys::statusItemHiddenPrefix) +
                 (bundleIdentifier.empty() ? "unknown" : bundleIdentifier)) {}

bool ZentroStatusItemVisibility::isVisible() const {
    return !defaults_.readBool(hiddenKey_).valueOr(false);
}

void ZentroStatusItemVisibility::setVisible(bool visible) {
    if (visible == isVisible()) {
        return;
    }
    defaults_.setBool(hiddenKey_, !visible);
    didChange_.post();
}

platform::Subscription ZentroStatusItemVisibility::observeDidChange(std::function<void()> notice) {
    return didChange_.observe(std::move(notice));
}

} // namespace skylet
