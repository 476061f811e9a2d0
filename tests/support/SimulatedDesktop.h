// A whole desktop in memory: every platform interface, scripted by a test, on virtual time.
//
// Nothing happens until `advance`. Answers and notices never come inside the call that asked for them.
#pragma once

#include "foundation/DiagnosticsLog.h"
#include "input/AXScroller.h"
#include "overlay/OverlayEnvironment.h"
#include "support/SimCapture.h"
#include "support/SimDefaults.h"
#include "support/SimKeys.h"
#include "support/SimPanel.h"
#include "support/SimQueues.h"
#include "support/SimStatusBar.h"
#include "support/SimWorld.h"
#include "windows/ForeignWindow.h"

#include <QTemporaryDir>

#include <string>
#include <vector>

namespace skylet {

using Lines = std::vector<std::string>;

constexpr platform::ProcessID editor = 500;
constexpr platform::ProcessID browser = 600;

namespace sim {

class SimulatedDesktop {
  public:
    SimulatedDesktop();
    SimulatedDesktop(const SimulatedDesktop&) = delete;
    SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;
    // Work that is still queued may hold what the rest of the desktop keeps track of.
    ~SimulatedDesktop() { mainQueue.dropAll(); }

    // Script: an editor and a browser run from the start. Bounds are window-server coordinates.
    // A normal window in front of all others, focused within its application.
    platform::WindowID openWindow(platform::ProcessID pid, const std::string& title, platform::Rect bounds);
    void closeWindow(platform::WindowID windowID);
    // The application comes to the front with its windows, as by the user's hand.
    void activate(platform::ProcessID pid);
    void focus(platform::WindowID windowID);
    void quitApplication(platform::ProcessID pid);
    void moveWindow(platform::WindowID windowID, platform::Rect bounds);

    void advance(double seconds) { mainQueue.advance(seconds); }

    // The messages logged since the last call, without their timestamps.
    [[nodiscard]] Lines takeLog();
    [[nodiscard]] ForeignWindow foreign(platform::WindowID windowID);

  private:
    [[nodiscard]] std::string logPath() { return directory_.filePath(QStringLiteral("log")).toStdString(); }

    SimSerialQueueFactory logQueues_;
    QTemporaryDir directory_;

  public:
    SimMainQueue mainQueue;
    SimWorld world;
    SimDefaults defaults;
    SimWindowServer windowServer{world};
    SimAccessibility accessibility{world};
    SimWorkspace workspace{world, mainQueue};
    SimScreens screens;
    SimScreenCapture capture{world, mainQueue};
    SimPanelFactory panels;
    SimEventTap eventTap;
    SimEventPoster eventPoster;
    SimMainMenu application;
    SimStatusBar statusBar;
    DiagnosticsLog log{defaults, logQueues_, [this] {
                           return logPath();
                       }};
    OverlayEnvironment environment{windowServer, accessibility, capture,   panels, workspace,
                                   screens,      defaults,      mainQueue, log};
    SimSerialQueueFactory scrollQueues{&mainQueue};
    double wallClock = 1000; // as the scroller reads it
    AXScroller scroller{{accessibility, windowServer, workspace, defaults, mainQueue, scrollQueues, log},
                        [this] {
                            return wallClock;
                        }};
};

} // namespace sim
} // namespace skylet
