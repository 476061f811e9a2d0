// Keeps the settings window on its screen, and no larger than that allows, when displays change.
//
// Coordinates: screen coordinates (bottom-left origin), points. Threads: main thread. Failure: without a
// screen nothing is done.
#pragma once

#include "foundation/Lifetime.h"
#include "platform/Queues.h"
#include "platform/Screens.h"
#include "platform/Subscription.h"
#include "platform/Types.h"

#include <functional>

namespace skylet {

class ZentroSettingsWindowSizer {
  public:
    // The window as the sizer sees it.
    class Window {
      public:
        virtual ~Window() = default;
        [[nodiscard]] virtual platform::Rect frame() const = 0;
        [[nodiscard]] virtual platform::Size contentSize() const = 0;
        // What the content wants.
        [[nodiscard]] virtual platform::Size fittingSize() const = 0;
        // What the frame adds to the content's height.
        [[nodiscard]] virtual double titleBarHeight() const = 0;
        // Keeps the top left corner.
        virtual void setContentSize(platform::Size size) = 0;
        virtual void setFrame(platform::Rect frame) = 0;
        // The window came to another screen.
        [[nodiscard]] virtual platform::Subscription observeDidChangeScreen(std::function<void()> notice) = 0;
    };

    // All must outlive the sizer.
    ZentroSettingsWindowSizer(Window& window, platform::Screens& screens, platform::MainQueue& mainQueue);
    ZentroSettingsWindowSizer(const ZentroSettingsWindowSizer&) = delete;
    ZentroSettingsWindowSizer& operator=(const ZentroSettingsWindowSizer&) = delete;

    // Clamps soon.
    void displaysChanged();
    void clamp();

  private:
    Window& window_;
    platform::Screens& screens_;
    platform::MainQueue& mainQueue_;
    platform::Subscription screenChanges_;
    platform::Subscription windowChanges_;
    Lifetime lifetime_;
};

} // namespace skylet
