#include "support/SimulatedDesktop.h"

#include "foundation/PreferenceKeys.h"

#include <filesystem>
#include <fstream>

namespace skylet::sim {

using platform::ProcessID;
using platform::Rect;
using platform::WindowID;

SimulatedDesktop::SimulatedDesktop() {
    defaults.setBool(PreferenceKeys::debugLogging, true);
    world.applications = {{SimWorld::ownPID, {"Skylet"}}, {editor, {"Editor"}}, {browser, {"Browser"}}};
}

WindowID SimulatedDesktop::openWindow(ProcessID pid, const std::string& title, Rect bounds) {
    const WindowID windowID = ++world.lastWindowID;
    SimWindow window;
    window.entry.number = windowID;
    window.entry.ownerPID = pid;
    window.entry.layer = 0;
    window.entry.name = title;
    window.ax->title = title;
    world.windows.push_front(window);
    moveWindow(windowID, bounds);
    world.applications[pid].focusedWindow = windowID;
    return windowID;
}

void SimulatedDesktop::closeWindow(WindowID windowID) {
    world.windows.remove_if([&](const SimWindow& window) { return window.id() == windowID; });
}

void SimulatedDesktop::activate(ProcessID pid) {
    world.frontmost = pid;
    world.windows.sort([pid](const SimWindow& a, const SimWindow& b) {
        return a.entry.ownerPID == std::int64_t{pid} && b.entry.ownerPID != std::int64_t{pid};
    });
    workspace.postDidActivate(world.running(pid));
}

void SimulatedDesktop::focus(WindowID windowID) {
    world.applications[foreign(windowID).ownerPID].focusedWindow = windowID;
}

void SimulatedDesktop::quitApplication(ProcessID pid) {
    workspace.postDidTerminate(world.running(pid));
    world.windows.remove_if(
        [&](const SimWindow& window) { return window.entry.ownerPID == std::int64_t{pid}; });
    world.applications.erase(pid);
    if (world.frontmost == pid) {
        world.frontmost.reset();
    }
}

void SimulatedDesktop::moveWindow(WindowID windowID, Rect bounds) {
    SimWindow& window = *world.find(windowID);
    window.entry.bounds = {bounds.x, bounds.y, bounds.width, bounds.height};
    window.ax->position = bounds.origin();
    window.ax->size = bounds.size();
}

Lines SimulatedDesktop::takeLog() {
    constexpr std::size_t timestampLength = 25;
    Lines lines;
    std::ifstream file(logPath());
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line.substr(std::min(timestampLength, line.size())));
    }
    std::filesystem::remove(logPath());
    return lines;
}

ForeignWindow SimulatedDesktop::foreign(WindowID windowID) {
    const platform::WindowEntry& entry = world.find(windowID)->entry;
    const auto pid = static_cast<ProcessID>(entry.ownerPID.value_or(0));
    return {.windowID = windowID,
            .ownerPID = pid,
            .ownerName = world.applications[pid].name.value_or("Unknown"),
            .windowTitle = entry.name.value_or("")};
}

} // namespace skylet::sim
