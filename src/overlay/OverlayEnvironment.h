// What an overlay needs of the rest of the program.
#pragma once

#include "foundation/DiagnosticsLog.h"
#include "platform/Accessibility.h"
#include "platform/Defaults.h"
#include "platform/InputEvent.h"
#include "platform/Panel.h"
#include "platform/Queues.h"
#include "platform/ScreenCapture.h"
#include "platform/Screens.h"
#include "platform/Types.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"

#include <functional>

namespace skylet {

class WindowOverlay;

// All of it must outlive the overlays and the work that they queued.
struct OverlayEnvironment {
    platform::WindowServer& windowServer;
    platform::Accessibility& accessibility;
    platform::ScreenCapture& screenCapture;
    platform::PanelFactory& panelFactory;
    platform::Workspace& workspace;
    platform::Screens& screens;
    platform::Defaults& defaults;
    platform::MainQueue& mainQueue;
    DiagnosticsLog& log;
};

// Where input made on an overlay goes. Called on the main thread; an empty function is a route that leads
// nowhere.
struct OverlayInputRoutes {
    // Posts the event to the target's process.
    std::function<void(const platform::InputEvent& event, const WindowOverlay& overlay)> forward;
    // Scrolls the target through accessibility; must not block. The point is in window-server coordinates.
    std::function<void(platform::ProcessID pid, platform::WindowID windowID, double deltaY,
                       platform::Point point)>
        axScroll;
    // Drops what the accessibility scroller keeps about the window.
    std::function<void(platform::WindowID windowID)> axForget;
    // Told once per stream, when its first frame is shown.
    std::function<void(platform::ProcessID pid, platform::WindowID windowID)> probe;
};

} // namespace skylet
