#include "VirtualDesktop.h"

#include <QByteArray>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace skylet::desktop {
namespace {

std::string makeFolder() {
    std::string name = std::filesystem::temp_directory_path() / "skylet-desktop-XXXXXX";
    return ::mkdtemp(name.data()) ? name : std::string();
}

} // namespace

VirtualDesktop::VirtualDesktop(const DesktopOptions& options) : folder_(makeFolder()) {
    adoptOrphans();
    for (const char* name : {"home", "config", "state", "data", "cache", "runtime"}) {
        std::filesystem::create_directories(path(name));
        std::filesystem::permissions(path(name), std::filesystem::perms::owner_all);
    }
    environment_ = {
        {"PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"},
        {"HOME", path("home")},
        {"LANG", "C.UTF-8"},
        {"XDG_CONFIG_HOME", path("config")},
        {"XDG_STATE_HOME", path("state")},
        {"XDG_DATA_HOME", path("data")},
        {"XDG_CACHE_HOME", path("cache")},
        {"XDG_RUNTIME_DIR", path("runtime")},
        {"XDG_SESSION_TYPE", "x11"},
        {"GSETTINGS_BACKEND", "memory"},
        {"LIBGL_ALWAYS_SOFTWARE", "1"},
        {"GSK_RENDERER", "cairo"},
    };
    // A sanitizer's report goes to standard error, which the tests read.
    for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name)) {
            environment_[name] = qgetenv(name).toStdString();
        }
    }
    if (!startServer(options)) {
        problem_ = "Xvfb did not start: " + readFile(path("server.err"));
    } else if (options.sessionBus && !startSessionBus()) {
        problem_ = "the session bus did not start: " + readFile(path("bus.err"));
    } else if (options.sessionBus && options.accessibility && !enableAccessibility()) {
        problem_ = "the accessibility bus did not answer: " + readFile(path("bus.err"));
    } else if (!changeWindowManager(options.windowManager)) {
        problem_ = nameOf(options.windowManager) + " did not start: " + readFile(path("wm.err"));
    }
}

VirtualDesktop::~VirtualDesktop() {
    compositor_.stop();
    windowManager_.stop();
    session_.reset();
    server_.stop();
    sessionBus_.stop();
    endDescendants();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

Process VirtualDesktop::start(const Command& command, const std::string& errorFile) const {
    return {command, environment_, errorFile.empty() ? std::string() : path(errorFile)};
}

bool VirtualDesktop::startServer(const DesktopOptions& options) {
    const std::string size = std::to_string(options.width) + "x" + std::to_string(options.height) + "x24";
    server_ = start({"Xvfb", "-displayfd", "1", "-screen", "0", size, "-nolisten", "tcp", "-noreset"},
                    "server.err");
    // The server writes its number once it takes clients.
    const std::optional<std::string> number = server_.readLine();
    if (!number) {
        return false;
    }
    environment_["DISPLAY"] = ":" + *number;
    session_ = std::make_unique<XSession>(environment_["DISPLAY"]);
    return session_->isConnected() && (!options.twoMonitors || splitScreen());
}

bool VirtualDesktop::splitScreen() {
    // Side by side, of the default size; the server's one output belongs to the left monitor.
    const std::string half = "640/160x800/200+";
    return run({"xrandr", "--setmonitor", "left", half + "0+0", "screen"}, environment_) == 0 &&
           run({"xrandr", "--setmonitor", "right", half + "640+0", "none"}, environment_) == 0;
}

bool VirtualDesktop::startSessionBus() {
    const std::string address = "unix:path=" + path("runtime/bus");
    environment_["DBUS_SESSION_BUS_ADDRESS"] = address;
    sessionBus_ = start(
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address},
        "bus.err");
    return sessionBus_.readLine().has_value();
}

bool VirtualDesktop::enableAccessibility() {
    const auto asks = [&](const Command& question) {
        Command command{
            "dbus-send",           "--session",    "--print-reply=literal", "--reply-timeout=20000",
            "--dest=org.a11y.Bus", "/org/a11y/bus"};
        command.insert(command.end(), question.begin(), question.end());
        return run(command, environment_) == 0;
    };
    // Its address is given out once it takes connections; Qt 5 tries only once.
    return asks({"org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
                 "variant:boolean:true"}) &&
           asks({"org.a11y.Bus.GetAddress"});
}

void VirtualDesktop::killAccessibilityBus() {
    // The kernel keeps 15 characters of a name.
    for (const pid_t pid : descendantsNamed("at-spi-bus-laun")) {
        ::kill(pid, SIGKILL);
    }
}

bool VirtualDesktop::changeWindowManager(WindowManagerKind kind) {
    stopCompositor();
    windowManager_.stop();
    const WindowManager& manager = describe(kind);
    if (manager.command.empty()) {
        return true;
    }
    if (!eventually([this] { return !session_->hasWindowManager(); })) {
        return false;
    }
    if (!manager.configPath.empty()) {
        writeFile(configPath(manager.configPath), manager.config);
    }
    Environment environment = environment_;
    environment.insert(manager.environment.begin(), manager.environment.end());
    windowManager_ = Process(manager.command, environment, path("wm.err"));
    const bool ready = eventually([&] {
        return (session_->hasWindowManager() && session_->hasCompositor() == manager.compositing) ||
               !windowManager_.isRunning();
    });
    return ready && windowManager_.isRunning() && session_->windowManagerAnswers() &&
           (!manager.withPicom || startCompositor());
}

bool VirtualDesktop::startCompositor() {
    compositor_ = start({"picom", "--backend", "xrender", "--config", "/dev/null"}, "compositor.err");
    return eventually([this] { return session_->hasCompositor(); });
}

} // namespace skylet::desktop
