// One overlay over one window of an editor, on the simulated desktop.
#pragma once

#include "overlay/WindowOverlay.h"
#include "support/SimulatedDesktop.h"

#include <memory>
#include <string>
#include <vector>

namespace skylet {

struct OverlayScene {
    static constexpr platform::ProcessID editor = 500;
    // In window-server coordinates, and the same place in screen coordinates on the 1080 points high screen.
    static constexpr platform::Rect bounds{100, 200, 800, 500};
    static constexpr platform::Rect frame{100, 380, 800, 500};

    OverlayScene() {
        desktop.launchApplication(editor, "Editor");
        target = desktop.openWindow(editor, "doc", bounds);
        routes.forward = [this](const platform::InputEvent& event, const WindowOverlay&) {
            forwarded.push_back(event.type);
        };
        routes.axScroll = [this](platform::ProcessID, platform::WindowID, double deltaY,
                                 platform::Point point) {
            scrolls.emplace_back(deltaY, point);
        };
        routes.axForget = [this](platform::WindowID windowID) {
            forgotten.push_back(windowID);
        };
        routes.probe = [this](platform::ProcessID, platform::WindowID) {
            ++probes;
        };
    }

    void create() { overlay = std::make_unique<WindowOverlay>(desktop.environment, routes, target, editor); }
    // Creates the overlay, finds its window and shows it with a running stream.
    void show() {
        create();
        desktop.advance(0);
        overlay->bringToFront();
        desktop.advance(0);
        (void)desktop.takeLog();
    }
    [[nodiscard]] sim::SimPanel& panel() const { return *desktop.panels.panels.at(0); }
    [[nodiscard]] sim::SimStream& stream() const { return *desktop.capture.streams.back(); }
    [[nodiscard]] std::string wid(const std::string& text) const {
        return "overlay: " + text + "wid=" + std::to_string(target);
    }
    // What was logged since the last call that contains `part`.
    std::vector<std::string> logged(const std::string& part) {
        std::vector<std::string> lines = desktop.takeLog();
        std::erase_if(lines, [&](const std::string& line) { return line.find(part) == std::string::npos; });
        return lines;
    }

    sim::SimulatedDesktop desktop;
    platform::WindowID target = 0;
    OverlayInputRoutes routes;
    std::vector<platform::EventType> forwarded;
    std::vector<std::pair<double, platform::Point>> scrolls;
    std::vector<platform::WindowID> forgotten;
    int probes = 0;
    std::unique_ptr<WindowOverlay> overlay;
};

using Order = sim::SimPanel::Order;

} // namespace skylet
