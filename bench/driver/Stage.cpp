#include "Stage.h"

#include "harness/Wait.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace skylet::bench {

namespace {

std::string targetProgram() {
    return std::string(SKYLET_BUILD_FOLDER) + "/bench_target";
}

using desktop::eventually;

constexpr int columns = 4;
constexpr int rows = 4;
// Room for the active window and the windows of players.
constexpr int spare = 1400;

std::vector<Window> readWindows(desktop::Process& process) {
    std::vector<Window> result;
    std::istringstream numbers(process.readLine().value_or(""));
    for (Window window = XCB_NONE; numbers >> window;) {
        result.push_back(window);
    }
    return result;
}

} // namespace

const char* nameOf(MirrorKind kind) {
    switch (kind) {
    case MirrorKind::copy:
        return "CopyArea";
    case MirrorKind::render:
        return "Render";
    case MirrorKind::skylet:
        return "Skylet";
    case MirrorKind::gstreamer:
        return "gst";
    case MirrorKind::ffplay:
        return "ffplay";
    }
    return "";
}

Target::Target(desktop::VirtualDesktop& desktop, int count)
    : process_(desktop.start({targetProgram(), std::to_string(count), std::to_string(columns),
                              std::to_string(targetWidth), std::to_string(targetHeight)}))
    , windows_(readWindows(process_)) {
    (void)eventually([&] {
        return std::ranges::all_of(windows_, [&](Window window) { return desktop.x().isViewable(window); });
    });
}

Stage::Stage() : desktop_({.width = columns * targetWidth + spare, .height = rows * targetHeight}) {
    const auto servers = desktop::descendantsNamed("Xvfb");
    server_ = servers.empty() ? 0 : servers.front();
    if (!problem().empty()) {
        return;
    }
    other_ = desktop_.start({targetProgram(), "1", "1", "100", "100"});
    const auto windows = readWindows(other_);
    otherWindow_ = windows.empty() ? Window{XCB_NONE} : windows.front();
    (void)eventually([this] { return x().isViewable(otherWindow_); });
    x().moveResize(otherWindow_, {columns * targetWidth + 20, 20, 100, 100});
    x().movePointer(columns * targetWidth + 5, 5);
    restartHost();
}

void Stage::restartHost() {
    host_.stop();
    // Anew each time: the program, where it was measured itself, had preferences of its own there.
    desktop::writeFile(desktop_.configPath("Skylet/skylet.conf"), "[General]\ncaptureRate=60\n");
    host_ = desktop_.start({SKYLET_BUILD_FOLDER "/bench_host"});
    (void)host_.readLine();
}

desktop::Process& Stage::host() {
    return host_;
}

std::string Stage::tellHost(const std::string& command) {
    host_.write(command + "\n");
    return host_.readLine().value_or("");
}

void Stage::activateOther() {
    x().activate(otherWindow_);
    (void)eventually([this] { return x().activeWindow() == otherWindow_; });
}

std::unique_ptr<Target> Stage::openTarget(int count) {
    auto target = std::make_unique<Target>(desktop_, count);
    activateOther();
    return target;
}

std::vector<Window> Stage::panelsOf(pid_t pid) {
    std::vector<Window> result = x().children(x().root());
    std::erase_if(result, [&](Window window) {
        return !x().isViewable(window) || !x().isOverrideRedirect(window) || x().isInputOnly(window) ||
               x().pidOf(window) != pid;
    });
    return result;
}

Mirrors::Mirrors(Stage& stage, MirrorKind kind, double scale, Target& target)
    : stage_(stage)
    , kind_(kind)
    , target_(target) {
    const Window first = target.windows().empty() ? Window{XCB_NONE} : target.windows().front();
    switch (kind) {
    case MirrorKind::copy:
    case MirrorKind::render: {
        desktop::Command command{SKYLET_BUILD_FOLDER "/bench_reference",
                                 kind == MirrorKind::copy ? "copy" : "render", std::to_string(scale)};
        for (const Window window : target.windows()) {
            command.push_back(std::to_string(window));
        }
        process_ = stage.desktop().start(command);
        windows_ = readWindows(process_);
        break;
    }
    case MirrorKind::skylet:
        pinAll(scale);
        break;
    case MirrorKind::gstreamer:
        process_ = stage.desktop().start({"gst-launch-1.0", "-q", "ximagesrc", "xid=" + std::to_string(first),
                                          "show-pointer=false", "use-damage=false", "!",
                                          "video/x-raw,framerate=60/1", "!", "ximagesink"},
                                         "gst.err");
        waitForPlayer();
        break;
    case MirrorKind::ffplay:
        process_ = stage.desktop().start(
            {"ffplay", "-hide_banner", "-loglevel", "error", "-fflags", "nobuffer", "-flags", "low_delay",
             "-framedrop", "-f", "x11grab", "-draw_mouse", "0", "-framerate", "60", "-window_id",
             std::to_string(first), "-i", stage.desktop().environment().at("DISPLAY")},
            "ffplay.err");
        waitForPlayer();
        break;
    }
}

Mirrors::~Mirrors() {
    if (kind_ == MirrorKind::skylet) {
        for (const Window window : target_.windows()) {
            (void)stage_.tellHost("unpin " + std::to_string(window));
        }
        (void)eventually([this] { return stage_.panelsOf(stage_.host().pid()).empty(); });
    }
    process_.stop();
}

pid_t Mirrors::pid() const {
    return kind_ == MirrorKind::skylet ? stage_.host().pid() : process_.pid();
}

void Mirrors::waitForPlayer() {
    (void)eventually([this] {
        windows_ = stage_.x().windowsOf(process_.pid());
        return !windows_.empty() || !process_.isRunning();
    });
    stage_.activateOther();
}

void Mirrors::pinAll(double scale) {
    for (const Window window : target_.windows()) {
        (void)stage_.tellHost("pin " + std::to_string(window));
    }
    std::vector<Window> panels;
    if (!eventually([&] {
            panels = stage_.panelsOf(pid());
            return panels.size() == target_.windows().size();
        })) {
        return;
    }
    for (const Window window : target_.windows()) {
        const auto place = stage_.x().geometry(window);
        const auto overlay =
            std::ranges::find_if(panels, [&](Window panel) { return stage_.x().geometry(panel) == place; });
        if (overlay == panels.end() || (scale != 1 && !shrink(*overlay, scale))) {
            windows_.clear();
            return;
        }
        windows_.push_back(*overlay);
    }
    stage_.x().movePointer(columns * targetWidth + 5, 5);
}

// As a user does it, by the grip in the bottom right corner.
bool Mirrors::shrink(Window overlay, double scale) {
    const auto place = stage_.x().geometry(overlay);
    if (!place) {
        return false;
    }
    const int width = static_cast<int>(std::lround(place->width * scale));
    const int height = static_cast<int>(std::lround(place->height * scale));
    constexpr int inGrip = 8;
    stage_.x().drag(place->right() - inGrip, place->bottom() - inGrip, place->x + width - inGrip,
                    place->y + height - inGrip);
    return eventually([&] {
        const auto size = stage_.x().geometry(overlay);
        return size && size->width == width && size->height == height;
    });
}

} // namespace skylet::bench
