#include "platform/x11/X11Workspace.h"

#include "platform/qt/SettingsProgram.h"
#include "platform/x11/ClientPid.h"
#include "platform/x11/EventWindow.h"
#include "platform/x11/WindowActivation.h"

#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace skylet::platform::x11 {

namespace {

constexpr int gateVersion = 27;

bool readVersionGate() {
    const QString version = qEnvironmentVariable("SKYLET_SYSTEM_VERSION");
    return version.section(u'.', 0, 0).toInt() >= gateVersion;
}

} // namespace

X11Workspace::X11Workspace(Connection& connection, MainQueue& mainQueue, SerialQueueFactory& queues,
                           RaisedWindows& raised)
    : connection_(connection)
    , raised_(raised)
    , isVersion27OrLater_(readVersionGate())
    , names_(connection, mainQueue, queues)
    , processes_([this](ProcessID pid) { handleTermination(pid); })
    , activeReader_(connection)
    , activation_(connection, [this] { return checkActivation(); }) {
    // Where processes do not tell of their end, windows that go are the sign for it.
    clientList_ = connection_.subscribe(
        connection_.root(), XCB_EVENT_MASK_PROPERTY_CHANGE, [this](const xcb_generic_event_t& event) {
            if (processes_.needsChecks() && eventType(event) == XCB_PROPERTY_NOTIFY &&
                as<xcb_property_notify_event_t>(event).atom == connection_.atoms().NET_CLIENT_LIST) {
                processes_.checkAll();
            }
        });
    frontmost_ = activeClient().pid;
}

ProcessID X11Workspace::ownProcessIdentifier() const {
    return getpid();
}

ActiveClientReader::Client X11Workspace::activeClient() {
    const auto client = activeReader_.read();
    if (client.pid) {
        lastActive_.insert_or_assign(*client.pid, client.window);
        processes_.watch(*client.pid);
    }
    return client;
}

RunningApplication X11Workspace::application(ProcessID pid, xcb_window_t window) {
    return {pid, names_.name(pid, window)};
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() {
    const auto active = activeClient();
    return active.pid ? std::optional(application(*active.pid, active.window)) : std::nullopt;
}

std::optional<RunningApplication> X11Workspace::runningApplication(ProcessID pid) {
    if (!isProcessAlive(pid)) {
        return std::nullopt;
    }
    processes_.watch(pid);
    if (names_.isKnown(pid)) {
        return application(pid, XCB_WINDOW_NONE);
    }
    const auto windows = windowsOf(pid, readClientWindows(connection_));
    return application(pid, windows.empty() ? xcb_window_t{XCB_WINDOW_NONE} : windows.front());
}

std::vector<xcb_window_t> X11Workspace::windowsOf(ProcessID pid, const ClientWindows& clients) {
    const auto pids = clientPids(connection_, clients.windows);
    std::vector<xcb_window_t> windows;
    for (const xcb_window_t window : clients.windows) {
        if (const auto it = pids.find(window); it != pids.end() && it->second == pid) {
            windows.push_back(window);
        }
    }
    return windows;
}

bool X11Workspace::activate(ProcessID pid) {
    const ClientWindows clients = readClientWindows(connection_);
    const auto windows = windowsOf(pid, clients);
    if (windows.empty()) {
        return false;
    }
    const auto has = [&windows](xcb_window_t window) {
        return std::find(windows.begin(), windows.end(), window) != windows.end();
    };
    xcb_window_t chosen = raised_.take(pid);
    if (const auto it = lastActive_.find(pid); !has(chosen) && it != lastActive_.end()) {
        chosen = it->second;
    }
    activateWindow(connection_, has(chosen) ? chosen : windows.front(), clients);
    return true;
}

xcb_window_t X11Workspace::checkActivation() {
    const auto active = activeClient();
    if (active.pid && active.pid != frontmost_) {
        frontmost_ = active.pid;
        activated_.notify(application(*active.pid, active.window));
    }
    return active.windowManager;
}

void X11Workspace::handleTermination(ProcessID pid) {
    const RunningApplication ended = application(pid, XCB_WINDOW_NONE);
    names_.forget(pid);
    lastActive_.erase(pid);
    static_cast<void>(raised_.take(pid));
    if (frontmost_ == pid) {
        frontmost_.reset(); // the pid may come again with another process
    }
    terminated_.notify(ended);
}

bool X11Workspace::openURL(const std::string& url) {
    const QString text = QString::fromStdString(url);
    std::optional<QStringList> command = QStringList{QStringLiteral("xdg-open"), text};
    if (qt::namesSettingsPane(text)) {
        command = qt::settingsProgram(
            text, qEnvironmentVariable("XDG_CURRENT_DESKTOP"),
            [](const QString& program) { return !QStandardPaths::findExecutable(program).isEmpty(); });
    }
    if (!command) {
        return false;
    }
    QProcess opener;
    opener.setProgram(command->takeFirst());
    opener.setArguments(*command);
    // A browser talks a lot, and for as long as it runs.
    opener.setStandardInputFile(QProcess::nullDevice());
    opener.setStandardOutputFile(QProcess::nullDevice());
    opener.setStandardErrorFile(QProcess::nullDevice());
    return opener.startDetached();
}

} // namespace skylet::platform::x11
