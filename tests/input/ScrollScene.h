// A scroller and one window of an editor, on the simulated desktop.
#pragma once

#include "input/AXScroller.h"
#include "support/SimulatedDesktop.h"

#include <algorithm>
#include <string>
#include <vector>

namespace skylet {

struct ScrollScene {
    static constexpr platform::ProcessID editor = 500;

    ScrollScene() {
        desktop.launchApplication(editor, "Editor");
        target = desktop.openWindow(editor, "doc", {100, 100, 800, 600});
    }

    [[nodiscard]] sim::SimNode& content() { return *desktop.world.find(target)->content; }
    // Scrolls and lets the queue do it, without any time passing.
    void scroll(double deltaY, platform::Point point = {300, 300}) {
        scroller.scroll(editor, target, deltaY, point);
        desktop.advance(0);
    }
    [[nodiscard]] std::string wid(const std::string& text) const {
        return "axscroll: " + text + std::to_string(target);
    }

    sim::SimulatedDesktop desktop;
    platform::WindowID target = 0;
    double wallClock = 1000;
    sim::SimSerialQueueFactory queues{&desktop.mainQueue};
    AXScroller scroller{{desktop.accessibility, desktop.windowServer, desktop.workspace, desktop.defaults,
                         desktop.mainQueue, queues, desktop.log},
                        [this] {
                            return wallClock;
                        }};
};

} // namespace skylet
