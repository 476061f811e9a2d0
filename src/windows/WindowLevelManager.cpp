#include "windows/WindowLevelManager.h"

#include "foundation/Geometry.h"
#include "foundation/Text.h"
#include "windows/WindowEntries.h"

#include <algorithm>
#include <string>
#include <vector>

namespace skylet::WindowLevelManager {

namespace {

using platform::AXElementRef;

// How far accessibility and the window server may disagree about the same window, in points. Wide, because
// the two are read one after the other while the window may be moving.
constexpr double frameTolerance = 5.0;

AXElementRef firstMatch(platform::Accessibility& accessibility, platform::WindowServer& windowServer,
                        const std::vector<AXElementRef>& windows, platform::ProcessID pid,
                        platform::WindowID windowID) {
    const auto found = std::ranges::find_if(windows, [&](const AXElementRef& window) {
        return matchesWindowID(accessibility, windowServer, window, pid, windowID);
    });
    return found == windows.end() ? nullptr : *found;
}

} // namespace

void raiseWindow(platform::Accessibility& accessibility, platform::WindowServer& windowServer,
                 platform::Workspace& workspace, DiagnosticsLog& log, platform::ProcessID pid,
                 platform::WindowID windowID, bool activate) {
    const auto result = accessibility.copyAttributeValue(accessibility.createApplication(pid), "AXWindows");
    const auto* windows = result.get<std::vector<AXElementRef>>();
    if (windows == nullptr) {
        wplog(log, [&] {
            return "raiseWindow: could not get windows for pid=" + std::to_string(pid) +
                   " axErr=" + std::to_string(result.error) +
                   " trusted=" + formatBool(accessibility.isProcessTrusted());
        });
        return;
    }
    const AXElementRef window = firstMatch(accessibility, windowServer, *windows, pid, windowID);
    if (window == nullptr) {
        wplog(log, [&] {
            return "raiseWindow: no AX window matched wid=" + std::to_string(windowID) +
                   " pid=" + std::to_string(pid) + "; doing nothing";
        });
        return;
    }
    const int raised = accessibility.performAction(window, "AXRaise");
    wplog(log, [&] {
        return "raiseWindow: AXRaise wid=" + std::to_string(windowID) + " pid=" + std::to_string(pid) +
               " result=" + std::to_string(raised);
    });
    if (!activate) {
        return;
    }
    if (const auto application = workspace.runningApplication(pid)) {
        workspace.activate(pid);
        wplog(log, [&] {
            return "raiseWindow: activated app '" + application->localizedName.value_or("Unknown") + "'";
        });
    }
}

AXElementRef axWindow(platform::Accessibility& accessibility, platform::WindowServer& windowServer,
                      platform::ProcessID pid, platform::WindowID windowID) {
    const auto result = accessibility.copyAttributeValue(accessibility.createApplication(pid), "AXWindows");
    const auto* windows = result.get<std::vector<AXElementRef>>();
    return windows == nullptr ? nullptr : firstMatch(accessibility, windowServer, *windows, pid, windowID);
}

bool matchesWindowID(platform::Accessibility& accessibility, platform::WindowServer& windowServer,
                     const AXElementRef& axWindow, platform::ProcessID pid, platform::WindowID targetWID) {
    const auto position = accessibility.copyAttributeValue(axWindow, "AXPosition");
    const auto size = accessibility.copyAttributeValue(axWindow, "AXSize");
    const auto* origin = position.get<platform::Point>();
    const auto* extent = size.get<platform::Size>();
    if (origin == nullptr || extent == nullptr) {
        return false;
    }
    const auto list = windowServer.copyWindowList(onScreenWindows, platform::nullWindowID);
    if (!list) {
        return false;
    }
    const auto entry = std::ranges::find_if(*list, [&](const platform::WindowEntry& candidate) {
        return windowNumber(candidate) == targetWID && candidate.ownerPID == std::int64_t{pid} &&
               candidate.bounds;
    });
    return entry != list->end() &&
           differByLessThan(frameTolerance, {origin->x, origin->y, extent->width, extent->height},
                            entry->bounds->rect());
}

} // namespace skylet::WindowLevelManager
