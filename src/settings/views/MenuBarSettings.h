// The two sections about the status item: whether it is shown, and whether its icon has a background.
#pragma once

#include "platform/Defaults.h"
#include "platform/Subscription.h"
#include "settings/BundleInfo.h"
#include "settings/StoredValue.h"
#include "settings/views/FormSection.h"

#include <functional>

namespace skylet {

class ToggleRow;

// Whether the status item is shown, as its owner keeps it.
struct StatusItemVisibilityAccess {
    std::function<bool()> isVisible;
    std::function<void(bool)> setVisible;
};

class MenuBarVisibilitySettings : public FormSection {
  public:
    // The store must outlive the section.
    MenuBarVisibilitySettings(platform::Defaults& defaults, StatusItemVisibilityAccess access,
                              const BundleInfo& bundle);

  private:
    void follow();

    StatusItemVisibilityAccess access_;
    ToggleRow* toggle_;
    HintRow* hint_;
    platform::Subscription changes_;
};

class MenuBarPillSettings : public FormSection {
  public:
    // `onChanged` may be empty; called after each change has been stored. The store must outlive the section.
    MenuBarPillSettings(platform::Defaults& defaults, std::function<void()> onChanged);

  private:
    StoredValue<bool> enabled_;
    std::function<void()> onChanged_;
    ToggleRow* toggle_;
    platform::Subscription changes_;
};

} // namespace skylet
