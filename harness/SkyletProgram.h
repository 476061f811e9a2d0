// The program under test: started on a virtual desktop, watched through its log and its windows.
//
// Threads: the main thread.
#pragma once

#include "VirtualDesktop.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace skylet::desktop {

using Preferences = std::map<std::string, std::string>;

class SkyletProgram {
  public:
    // Writes the preferences, with the log switched on, and starts the program.
    explicit SkyletProgram(VirtualDesktop& desktop, Preferences preferences = {});
    // Starts it with the preferences as they are.
    struct Bare {};
    SkyletProgram(VirtualDesktop& desktop, Bare);

    [[nodiscard]] Process& process() { return process_; }
    [[nodiscard]] std::string errorOutput() const { return process_.errorOutput(); }

    // The log, without the time stamps. Lines before the last `forgetLog` are left out.
    [[nodiscard]] std::vector<std::string> log() const;
    void forgetLog() { skipped_ += log().size(); }
    [[nodiscard]] int count(const std::string& beginning) const;
    [[nodiscard]] bool waitForLog(const std::string& beginning, int times = 1,
                                  std::chrono::milliseconds deadline = patience) const;
    [[nodiscard]] bool waitUntilLaunched() const { return waitForLog("Launched successfully"); }
    // The whole log as it is in the file.
    [[nodiscard]] std::string logText() const;

    // Presses the built-in shortcut.
    void pressShortcut();
    // Pins a window that is in front, and waits for it.
    [[nodiscard]] bool pin(Window window);

    // The overlay windows that are mapped, from the bottom to the top.
    [[nodiscard]] std::vector<Window> overlays() const;
    // Whether exactly one overlay is mapped and floats with its whole area in sight.
    [[nodiscard]] std::optional<Window> overlayInFront() const;
    // The only overlay shows exactly the target's present picture, at 1:1, and in the same place if asked.
    [[nodiscard]] bool mirrors(Window target) const;

    // Its red icon in a panel at the screen's lower edge.
    struct Icon {
        int pixels = 0;
        Rectangle place;
    };
    [[nodiscard]] Icon icon() const;

    [[nodiscard]] long proportionalMemory() const; // kB
    [[nodiscard]] int openDescriptors() const;

  private:
    VirtualDesktop& desktop_;
    Process process_;
    std::size_t skipped_ = 0;
};

} // namespace skylet::desktop
