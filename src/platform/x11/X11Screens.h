// The monitors as screens. The scale is always 1: one point is one X pixel.
//
// Threads: main thread. Failure: a work area that leaves nothing of a monitor is ignored there.
#pragma once

#include "platform/Screens.h"
#include "platform/x11/ScreenLayout.h"

namespace skylet::platform::x11 {

class X11Screens : public Screens {
  public:
    X11Screens(Connection& connection, ScreenLayout& layout) : connection_(connection), layout_(layout) {}

    [[nodiscard]] std::vector<Screen> screens() override;
    // The monitor that holds most of the active window, else the one with the pointer.
    [[nodiscard]] std::optional<Screen> mainScreen() override;
    [[nodiscard]] Subscription observeDidChangeParameters(std::function<void()> notice) override {
        return layout_.observeDidChange(std::move(notice));
    }

  private:
    Connection& connection_;
    ScreenLayout& layout_;
};

} // namespace skylet::platform::x11
