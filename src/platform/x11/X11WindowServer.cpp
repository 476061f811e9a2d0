#include "platform/x11/X11WindowServer.h"

namespace skylet::platform::x11 {

namespace {

WindowEntry toEntry(const ListedWindow& listed) {
    WindowEntry entry;
    entry.number = listed.window;
    entry.ownerPID = listed.pid;
    entry.layer = listed.layer;
    entry.name = listed.name;
    const Rect& bounds = listed.bounds;
    entry.bounds = WindowBounds{bounds.x, bounds.y, bounds.width, bounds.height};
    return entry;
}

} // namespace

std::optional<std::vector<WindowEntry>> X11WindowServer::copyWindowList(std::uint32_t options,
                                                                        WindowID relativeTo) {
    std::vector<WindowEntry> entries;
    if ((options & WindowListOption::includingWindow) != 0) {
        if (const auto listed = list_.copyOne(relativeTo)) {
            entries.push_back(toEntry(*listed));
        }
        return entries;
    }
    const auto windows = list_.copy();
    if (!windows) {
        return std::nullopt;
    }
    for (const ListedWindow& listed : *windows) {
        const bool left = ((options & WindowListOption::onScreenOnly) != 0 && !listed.onScreen) ||
                          ((options & WindowListOption::excludeDesktopElements) != 0 && listed.isDesktop);
        if (!left) {
            entries.push_back(toEntry(listed));
        }
    }
    return entries;
}

} // namespace skylet::platform::x11
