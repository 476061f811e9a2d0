// The screens in Qt's own points, for windows that Qt places.
//
// Qt's points are larger than X pixels where the user scales the desktop. What panels leave of a screen is
// taken from `pixels`, because Qt does not ask for it with several monitors.
// Threads: main thread, with a GUI application. Failure: a screen that `pixels` does not know counts as
// wholly visible.
#pragma once

#include "platform/Screens.h"

#include <utility>

namespace skylet::platform::qt {

class QtScreens : public Screens {
  public:
    // `pixels` gives the screens in the window system's pixels and must outlive this.
    explicit QtScreens(Screens& pixels) : pixels_(pixels) {}

    [[nodiscard]] std::vector<Screen> screens() override;
    // The one of the active window, else the primary one.
    [[nodiscard]] std::optional<Screen> mainScreen() override;
    [[nodiscard]] Subscription observeDidChangeParameters(std::function<void()> notice) override {
        return pixels_.observeDidChangeParameters(std::move(notice));
    }

  private:
    Screens& pixels_;
};

} // namespace skylet::platform::qt
