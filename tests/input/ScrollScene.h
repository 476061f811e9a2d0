// One window of an editor, and the scroller, on the simulated desktop.
#pragma once

#include "support/SimulatedDesktop.h"

#include <algorithm>

namespace skylet {

struct ScrollScene {
    static constexpr platform::Rect bounds{100, 100, 800, 600};

    // The contents of the window, and a scroll area that fills it.
    [[nodiscard]] sim::SimNode& content() { return *desktop.world.find(target)->ax; }
    sim::SimNodeRef addArea(double value = 0.5) { return content().addScrollArea(bounds, value); }
    sim::SimNodeRef addBar(double value = 0.5) { return addArea(value)->verticalBar; }
    // Scrolls and lets the queue do it, without any time passing.
    void scroll(double deltaY, platform::Point point = {300, 300}) {
        desktop.scroller.scroll(editor, target, deltaY, point);
        desktop.advance(0);
    }
    [[nodiscard]] std::string wid(const std::string& text) const {
        return "axscroll: " + text + std::to_string(target);
    }

    sim::SimulatedDesktop desktop;
    platform::WindowID target = desktop.openWindow(editor, "doc", bounds);
};

} // namespace skylet
