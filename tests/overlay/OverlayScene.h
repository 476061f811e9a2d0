// One overlay over one window of an editor, on the simulated desktop.
#pragma once

#include "foundation/PreferenceKeys.h"
#include "overlay/WindowOverlay.h"
#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>
#include <memory>

namespace skylet {

using Order = sim::SimPanel::Order;

inline platform::Frame completeFrame() {
    return {.status = platform::FrameStatus::complete,
            .surface = std::make_shared<sim::SimSurface>(),
            .pixelWidth = 1600,
            .pixelHeight = 1000};
}

struct OverlayScene {
    // In window-server coordinates, and the same place in screen coordinates on the 1080 points high screen.
    static constexpr platform::Rect bounds{100, 200, 800, 500};
    static constexpr platform::Rect frame{100, 380, 800, 500};

    // Creates the overlay, which finds its window once the time goes on.
    void create() { overlay = std::make_unique<WindowOverlay>(desktop.environment, routes, target, editor); }
    // And lets the answers come.
    void bringToFront() {
        overlay->bringToFront();
        desktop.advance(0);
    }
    void sendBehind() {
        overlay->sendBehind();
        desktop.advance(0);
    }
    void resolve() {
        create();
        desktop.advance(0);
    }
    // Creates the overlay, finds its window and shows it with a running stream.
    void show() {
        resolve();
        bringToFront();
        (void)desktop.takeLog();
    }
    [[nodiscard]] sim::SimPanel& panel() const { return *desktop.panels.panels.at(0); }
    [[nodiscard]] sim::SimStream& stream() const { return *desktop.capture.streams.back(); }
    [[nodiscard]] std::string wid(const std::string& text) const {
        return "overlay: " + text + "wid=" + std::to_string(target);
    }
    // What was logged since the last call that contains `part`.
    Lines logged(const std::string& part) {
        Lines lines = desktop.takeLog();
        std::erase_if(lines, [&](const std::string& line) { return line.find(part) == std::string::npos; });
        return lines;
    }

    sim::SimulatedDesktop desktop;
    platform::WindowID target = desktop.openWindow(editor, "doc", bounds);
    std::vector<platform::EventType> forwarded;
    std::vector<std::pair<double, platform::Point>> scrolls;
    std::vector<platform::WindowID> forgotten;
    int probes = 0;
    OverlayInputRoutes routes{
        .forward = [this](const auto& event, const WindowOverlay&) { forwarded.push_back(event.type); },
        .axScroll = [this](auto, auto, double deltaY, auto point) { scrolls.emplace_back(deltaY, point); },
        .axForget = [this](platform::WindowID windowID) { forgotten.push_back(windowID); },
        .probe =
            [this](auto, auto) {
                ++probes;
            }};
    std::unique_ptr<WindowOverlay> overlay;
};

} // namespace skylet
