// The virtual desktop of a benchmark with the windows to mirror, and everything that can mirror them.
//
// The windows lie in a grid without gaps, and a mirror in the size of its window covers it, so that neither
// hides another mirror. A small window beside them is the active one: an overlay shows only while its own
// window is not.
// Threads: main thread. Failure: `failed` tells what did not work; the measures are then nothing worth.
#pragma once

#include "harness/Process.h"
#include "harness/VirtualDesktop.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace skylet::bench {

using desktop::Window;

constexpr int targetWidth = 1280;
constexpr int targetHeight = 800;

class Target {
  public:
    Target(desktop::VirtualDesktop& desktop, int count);

    [[nodiscard]] const std::vector<Window>& windows() const { return windows_; }
    // Says one command of bench_target.
    void say(const std::string& command) { process_.write(command + "\n"); }
    [[nodiscard]] std::string answer() { return process_.readLine().value_or(""); }
    std::string tell(const std::string& command) {
        say(command);
        return answer();
    }
    [[nodiscard]] double repaints() { return std::stod("0" + tell("count")); }

  private:
    desktop::Process process_;
    std::vector<Window> windows_;
};

enum class MirrorKind { copy, render, skylet, gstreamer, ffplay };

[[nodiscard]] const char* nameOf(MirrorKind kind);

class Stage;

// Mirrors running; gone with this object.
class Mirrors {
  public:
    Mirrors(Stage& stage, MirrorKind kind, double scale, Target& target);
    Mirrors(const Mirrors&) = delete;
    Mirrors& operator=(const Mirrors&) = delete;
    ~Mirrors();

    // One for each window of the target, in its order; empty when they did not come up.
    [[nodiscard]] const std::vector<Window>& windows() const { return windows_; }
    [[nodiscard]] pid_t pid() const;

  private:
    void pinAll(double scale);
    [[nodiscard]] bool shrink(Window overlay, double scale);
    void waitForPlayer();

    Stage& stage_;
    MirrorKind kind_;
    Target& target_;
    desktop::Process process_;
    std::vector<Window> windows_;
};

class Stage {
  public:
    Stage();

    [[nodiscard]] const std::string& problem() const { return desktop_.problem(); }
    [[nodiscard]] desktop::VirtualDesktop& desktop() { return desktop_; }
    [[nodiscard]] desktop::XSession& x() { return desktop_.x(); }
    [[nodiscard]] pid_t server() const { return server_; }
    // The program that holds any number of pins.
    [[nodiscard]] desktop::Process& host();
    std::string tellHost(const std::string& command);
    // Starts the host anew, as it is before anything was pinned.
    void restartHost();
    // Opens target windows and makes the window beside them the active one.
    [[nodiscard]] std::unique_ptr<Target> openTarget(int count);
    void activateOther();
    // The mapped windows of our own kind that a process has: panels, not managed windows.
    [[nodiscard]] std::vector<Window> panelsOf(pid_t pid);

  private:
    desktop::VirtualDesktop desktop_;
    pid_t server_ = 0;
    desktop::Process other_;
    Window otherWindow_ = XCB_NONE;
    desktop::Process host_;
};

} // namespace skylet::bench
