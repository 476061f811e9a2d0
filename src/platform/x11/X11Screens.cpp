#include "platform/x11/X11Screens.h"

#include "platform/x11/ActiveWindow.h"
#include "platform/x11/ClientGeometry.h"

#include <algorithm>

namespace skylet::platform::x11 {

namespace {

constexpr std::uint32_t maximumDesktops = 256;

Rect intersection(const Rect& a, const Rect& b) {
    const double left = std::max(a.minX(), b.minX());
    const double top = std::max(a.minY(), b.minY());
    return {left, top, std::max(0.0, std::min(a.maxX(), b.maxX()) - left),
            std::max(0.0, std::min(a.maxY(), b.maxY()) - top)};
}

double area(const Rect& rect) {
    return rect.width * rect.height;
}

// The work area of the current desktop; nothing without a window manager that tells one.
std::optional<Rect> readWorkArea(Connection& connection) {
    const Atoms& atoms = connection.atoms();
    auto areas = askProperty(connection, connection.root(), atoms.NET_WORKAREA, XCB_ATOM_CARDINAL,
                             4 * maximumDesktops);
    auto current =
        askProperty(connection, connection.root(), atoms.NET_CURRENT_DESKTOP, XCB_ATOM_CARDINAL, 1);
    const auto values = items(areas, XCB_ATOM_CARDINAL);
    const std::size_t desktop = firstItem(current, XCB_ATOM_CARDINAL).value_or(0);
    // Some managers tell one area for all desktops.
    const std::size_t first = (desktop + 1) * 4 <= values.size() ? desktop * 4 : 0;
    if (values.size() < 4) {
        return std::nullopt;
    }
    return Rect{double(values[first]), double(values[first + 1]), double(values[first + 2]),
                double(values[first + 3])};
}

} // namespace

std::vector<Screen> X11Screens::screens() {
    const auto workArea = readWorkArea(connection_);
    std::vector<Screen> result;
    for (const Rect& monitor : layout_.monitors()) {
        Rect visible = workArea ? intersection(monitor, *workArea) : monitor;
        if (area(visible) == 0) {
            visible = monitor;
        }
        result.push_back({layout_.flipped(monitor), layout_.flipped(visible), 1});
    }
    return result;
}

std::optional<Screen> X11Screens::mainScreen() {
    const auto all = screens();
    const auto& monitors = layout_.monitors();
    const ActiveWindow active = readActiveWindow(connection_);
    Rect place;
    if (active.window != XCB_WINDOW_NONE) {
        const auto geometry = PendingClientGeometry(connection_, active.window).read();
        place = geometry ? geometry->bounds : Rect{};
    }
    const auto best = std::max_element(monitors.begin(), monitors.end(), [&](const Rect& a, const Rect& b) {
        return area(intersection(a, place)) < area(intersection(b, place));
    });
    if (area(intersection(*best, place)) > 0) {
        return all[static_cast<std::size_t>(best - monitors.begin())];
    }
    auto pointer = connection_.ask<xcb_query_pointer, xcb_query_pointer_reply>(connection_.root());
    for (std::size_t i = 0; pointer && i < monitors.size(); ++i) {
        const Rect& monitor = monitors[i];
        if (pointer->root_x >= monitor.minX() && pointer->root_x < monitor.maxX() &&
            pointer->root_y >= monitor.minY() && pointer->root_y < monitor.maxY()) {
            return all[i];
        }
    }
    return all.empty() ? std::nullopt : std::optional(all.front());
}

} // namespace skylet::platform::x11
