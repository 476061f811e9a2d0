// Whether the user wants the status item shown. The truth is one preferences key.
//
// Threads: main thread.
#pragma once

#include "foundation/Notice.h"
#include "platform/Defaults.h"

#include <functional>
#include <string>

namespace skylet {

class ZentroStatusItemVisibility {
  public:
    // The notice's name where it is seen outside the program.
    static constexpr const char* didChangeNotification =
        "cc.zentrosoftware.ZentroKit.StatusItemVisibilityDidChange";

    // `bundleIdentifier` is empty when the program has none.
    ZentroStatusItemVisibility(platform::Defaults& defaults, const std::string& bundleIdentifier);

    [[nodiscard]] bool isVisible() const;
    // Stores and announces a change; does nothing when there is none.
    void setVisible(bool visible);
    // Opening the program again brings a hidden item back.
    void handleReopen() { setVisible(true); }

    [[nodiscard]] platform::Subscription observeDidChange(std::function<void()> notice);

  private:
    platform::Defaults& defaults_;
    std::string hiddenKey_;
    Notice<> didChange_;
};

} // namespace skylet
