// The applications that a test can open on a virtual desktop, and change the content of.
//
// Threads: the main thread. Failure: a window that did not appear is 0.
#pragma once

#include "VirtualDesktop.h"

#include <fstream>
#include <string>
#include <vector>

namespace skylet::desktop {

enum class ApplicationKind { puppet, xterm, gtk3, gtk4, qt5, qt6, tk };

[[nodiscard]] std::string nameOf(ApplicationKind kind);

class Application {
  public:
    // Opens it and waits until its window can be seen and has been drawn on.
    Application(VirtualDesktop& desktop, ApplicationKind kind, const std::string& title = "target",
                const Command& options = {});

    [[nodiscard]] Window window() const { return window_; }
    [[nodiscard]] std::string id() const { return std::to_string(window_); }
    [[nodiscard]] Process& process() { return process_; }
    // Makes the window show something else. Applications that move by themselves do so without.
    void changeContent();

  private:
    ApplicationKind kind_;
    // A terminal's program reads a named pipe; whatever else a terminal has open is closed to it.
    std::fstream pipe_;
    Process process_;
    Window window_ = XCB_NONE;
    int changes_ = 0;
};

// The client of our own, spoken to in lines; see puppet/main.cpp for its commands.
class Puppet {
  public:
    explicit Puppet(VirtualDesktop& desktop, const std::vector<std::string>& arguments = {});

    [[nodiscard]] Process& process() { return process_; }
    // Says one command and waits until the X server has carried it out. The answer.
    std::string tell(const std::string& command);
    // Opens a window ("x y width height" and options) and waits until it can be seen.
    Window open(const std::string& description);

  private:
    VirtualDesktop& desktop_;
    Process process_;
};

} // namespace skylet::desktop
