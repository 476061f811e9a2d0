// A private desktop: an X server, a session bus with accessibility, empty user folders, a window manager.
//
// Threads: the main thread. Failure: `problem` tells in words what did not start.
#pragma once

#include "Process.h"
#include "WindowManager.h"
#include "XSession.h"

#include <memory>
#include <string>

namespace skylet::desktop {

struct DesktopOptions {
    WindowManagerKind windowManager = WindowManagerKind::openbox;
    int width = 1280;
    int height = 800;
    bool twoMonitors = false; // of half the default width each
    bool sessionBus = true;
    bool accessibility = true; // needs the session bus
};

class VirtualDesktop {
  public:
    explicit VirtualDesktop(const DesktopOptions& options = {});
    VirtualDesktop(const VirtualDesktop&) = delete;
    VirtualDesktop& operator=(const VirtualDesktop&) = delete;
    ~VirtualDesktop();

    [[nodiscard]] const std::string& problem() const { return problem_; }
    [[nodiscard]] XSession& x() { return *session_; }
    [[nodiscard]] const Environment& environment() const { return environment_; }
    // For everything that is started from now on.
    void setEnvironment(const std::string& name, const std::string& value) { environment_[name] = value; }
    // A path below the folder that goes with the desktop.
    [[nodiscard]] std::string path(const std::string& name) const { return folder_ + "/" + name; }
    [[nodiscard]] std::string configPath(const std::string& name) const { return path("config/" + name); }
    [[nodiscard]] std::string statePath(const std::string& name) const { return path("state/" + name); }

    // Ends the present window manager, if any, and starts another.
    bool changeWindowManager(WindowManagerKind kind);
    // A compositor beside the window manager.
    bool startCompositor();
    void stopCompositor() { compositor_.stop(); }
    [[nodiscard]] Process& sessionBus() { return sessionBus_; }
    void killAccessibilityBus();
    void killServer() { server_.signal(9); }

    // The program with this desktop as its environment.
    [[nodiscard]] Process start(const Command& command, const std::string& errorFile = {}) const;

  private:
    bool startServer(const DesktopOptions& options);
    bool splitScreen();
    bool startSessionBus();
    bool enableAccessibility();

    std::string folder_;
    std::string problem_;
    Environment environment_;
    Process server_;
    Process sessionBus_;
    Process windowManager_;
    Process compositor_;
    std::unique_ptr<XSession> session_;
};

} // namespace skylet::desktop
