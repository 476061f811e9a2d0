#include "windows/WindowDetector.h"

#include "foundation/Geometry.h"
#include "windows/WindowEntries.h"

#include <algorithm>
#include <string>
#include <vector>

namespace skylet::WindowDetector {

namespace {

using platform::AXElementRef;
using platform::Rect;
using platform::WindowEntry;

// How far accessibility and the window server may disagree about the same window, in points.
constexpr double frameTolerance = 2.0;

struct FocusedWindow {
    std::string title; // empty: not known
    std::optional<Rect> frame;
};

FocusedWindow readFocusedWindow(platform::Accessibility& accessibility, platform::ProcessID pid) {
    FocusedWindow focused;
    const auto application = accessibility.createApplication(pid);
    const auto result = accessibility.copyAttributeValue(application, "AXFocusedWindow");
    const auto* window = result.get<AXElementRef>();
    if (window == nullptr || *window == nullptr) {
        return focused;
    }
    const auto title = accessibility.copyAttributeValue(*window, "AXTitle");
    if (const auto* text = title.get<std::string>()) {
        focused.title = *text;
    }
    const auto position = accessibility.copyAttributeValue(*window, "AXPosition");
    const auto size = accessibility.copyAttributeValue(*window, "AXSize");
    const auto* origin = position.get<platform::Point>();
    const auto* extent = size.get<platform::Size>();
    if (origin != nullptr && extent != nullptr) {
        focused.frame = Rect{origin->x, origin->y, extent->width, extent->height};
    }
    return focused;
}

bool isCandidate(const WindowEntry& entry, platform::ProcessID pid) {
    return entry.ownerPID == std::int64_t{pid} && windowNumber(entry) && entry.layer == std::int64_t{0};
}

// The entry that stands for the focused window, or null when there is no candidate.
const WindowEntry* choose(const std::vector<const WindowEntry*>& candidates, const FocusedWindow& focused) {
    if (!focused.title.empty()) {
        const auto found = std::ranges::find_if(
            candidates, [&](const WindowEntry* entry) { return entry->name == focused.title; });
        if (found != candidates.end()) {
            return *found;
        }
    }
    if (focused.frame) {
        const auto found = std::ranges::find_if(candidates, [&](const WindowEntry* entry) {
            return entry->bounds && differByLessThan(frameTolerance, entry->bounds->rect(), *focused.frame);
        });
        if (found != candidates.end()) {
            return *found;
        }
    }
    return candidates.empty() ? nullptr : candidates.front();
}

} // namespace

std::optional<ForeignWindow> getFrontmostForeignWindow(platform::Workspace& workspace,
                                                       platform::Accessibility& accessibility,
                                                       platform::WindowServer& windowServer) {
    const auto application = workspace.frontmostApplication();
    if (!application || application->processIdentifier == workspace.ownProcessIdentifier()) {
        return std::nullopt;
    }
    const platform::ProcessID pid = application->processIdentifier;
    const FocusedWindow focused = readFocusedWindow(accessibility, pid);
    const auto list = windowServer.copyWindowList(onScreenWindows, platform::nullWindowID);
    if (!list) {
        return std::nullopt;
    }
    std::vector<const WindowEntry*> candidates;
    for (const WindowEntry& entry : *list) {
        if (isCandidate(entry, pid)) {
            candidates.push_back(&entry);
        }
    }
    const WindowEntry* chosen = choose(candidates, focused);
    if (chosen == nullptr) {
        return std::nullopt;
    }
    return ForeignWindow{.windowID = windowNumber(*chosen).value_or(platform::nullWindowID),
                         .ownerPID = pid,
                         .ownerName = application->localizedName.value_or("Unknown"),
                         .windowTitle = chosen->name.value_or("")};
}

std::unordered_set<platform::WindowID> allOnScreenWindowIDs(platform::WindowServer& windowServer) {
    std::unordered_set<platform::WindowID> ids;
    const auto list = windowServer.copyWindowList(platform::WindowListOption::excludeDesktopElements,
                                                  platform::nullWindowID);
    if (!list) {
        return ids;
    }
    for (const WindowEntry& entry : *list) {
        const auto number = windowNumber(entry);
        if (number && entry.layer && *entry.layer >= 0) {
            ids.insert(*number);
        }
    }
    return ids;
}

} // namespace skylet::WindowDetector
