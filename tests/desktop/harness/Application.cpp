#include "Application.h"

#include <cstdlib>
#include <sys/stat.h>

namespace skylet::desktop {
namespace {

constexpr const char* qt5Examples = "/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/widgets/";

// Programs that a command line opens; they show each line of their standard input, or move by themselves.
Command commandOf(ApplicationKind kind, const std::string& title, const std::string& pipe) {
    switch (kind) {
    case ApplicationKind::puppet:
        return {SKYLET_BUILD_FOLDER "/puppet"};
    case ApplicationKind::xterm:
        return {"xterm", "-title", title, "-geometry", "60x20+100+90", "-e", "cat", pipe};
    case ApplicationKind::gtk3:
        return {"zenity", "--text-info", "--title", title, "--width", "480", "--height", "320"};
    case ApplicationKind::gtk4:
        return {"gtk4-demo", "--run=paintable_animated"};
    case ApplicationKind::qt5:
        return {std::string(qt5Examples) + "analogclock/analogclock", "-geometry", "400x300"};
    case ApplicationKind::qt6:
        return {SKYLET_BUILD_FOLDER "/qt6_window", title};
    case ApplicationKind::tk:
        return {"wish", SKYLET_APPS_FOLDER "/window.tcl", title};
    }
    return {};
}

} // namespace

std::string nameOf(ApplicationKind kind) {
    switch (kind) {
    case ApplicationKind::puppet:
        return "puppet";
    case ApplicationKind::xterm:
        return "xterm";
    case ApplicationKind::gtk3:
        return "gtk3";
    case ApplicationKind::gtk4:
        return "gtk4";
    case ApplicationKind::qt5:
        return "qt5";
    case ApplicationKind::qt6:
        return "qt6";
    case ApplicationKind::tk:
        return "tk";
    }
    return {};
}

Application::Application(VirtualDesktop& desktop, ApplicationKind kind, const std::string& title,
                         const Command& options)
    : kind_(kind) {
    const std::string pipe = desktop.path(title + ".pipe");
    if (kind == ApplicationKind::xterm && ::mkfifo(pipe.c_str(), 0600) == 0) {
        pipe_.open(pipe, std::ios::in | std::ios::out);
    }
    Command command = commandOf(kind, title, pipe);
    command.insert(command.begin() + 1, options.begin(), options.end());
    process_ = desktop.start(command, title + ".err");
    if (kind == ApplicationKind::puppet) {
        process_.write("window 100 90 480 320 title=" + title + "\n");
    }
    const bool shown = eventually([&] {
        const std::vector<Window> windows = desktop.x().windowsOf(process_.pid());
        window_ = windows.empty() ? XCB_NONE : windows.front();
        return window_ != XCB_NONE || !process_.isRunning();
    });
    if (!shown || window_ == XCB_NONE) {
        return;
    }
    changeContent();
    // Toolkits paint some time after they map.
    (void)eventually([&] {
        const auto place = desktop.x().visibleGeometry(window_);
        const Picture seen = desktop.x().screenshot(place.value_or(Rectangle{}));
        return !seen.pixels.empty() &&
               count(seen, seen.pixels.front()) < static_cast<int>(seen.pixels.size());
    });
}

void Application::changeContent() {
    ++changes_;
    if (kind_ == ApplicationKind::puppet) {
        process_.write("pattern " + std::to_string(changes_) + "\n");
    } else if (kind_ == ApplicationKind::xterm) {
        pipe_ << "change number " << changes_ << std::endl;
    } else {
        process_.write("change number " + std::to_string(changes_) + "\n");
    }
}

Puppet::Puppet(VirtualDesktop& desktop, const std::vector<std::string>& arguments) : desktop_(desktop) {
    Command command{SKYLET_BUILD_FOLDER "/puppet"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    process_ = desktop.start(command, "puppet.err");
}

std::string Puppet::tell(const std::string& command) {
    process_.write(command + "\n");
    return process_.readLine().value_or("no answer");
}

Window Puppet::open(const std::string& description) {
    const std::string answer = tell("window " + description);
    const auto window = static_cast<Window>(std::strtoul(answer.c_str(), nullptr, 10));
    const bool seen = eventually([&] { return desktop_.x().isViewable(window); });
    return seen ? window : XCB_NONE;
}

} // namespace skylet::desktop
