#include "platform/x11/ActiveWindow.h"

#include "platform/x11/ClientPid.h"
#include "platform/x11/RootChildren.h"

#include <algorithm>

namespace skylet::platform::x11 {

namespace {

constexpr int maximumDepth = 64; // of windows in windows, far beyond any toolkit's

bool contains(const std::vector<xcb_window_t>& windows, xcb_window_t window) {
    return std::find(windows.begin(), windows.end(), window) != windows.end();
}

// Ordinary windows among the root's children, front to back: mapped, visible ones that are no menus.
std::vector<xcb_window_t> ordinaryChildren(Connection& connection,
                                           const std::vector<xcb_window_t>& backToFront) {
    std::vector<Pending<xcb_get_window_attributes_reply>> attributes;
    attributes.reserve(backToFront.size());
    for (const xcb_window_t window : backToFront) {
        attributes.push_back(
            connection.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(window));
    }
    std::vector<xcb_window_t> result;
    for (std::size_t i = backToFront.size(); i-- > 0;) {
        const auto* reply = attributes[i].get();
        if (reply && reply->map_state == XCB_MAP_STATE_VIEWABLE && reply->override_redirect == 0 &&
            reply->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT) {
            result.push_back(backToFront[i]);
        }
    }
    return result;
}

// The child of the root that `window` is in, or is.
xcb_window_t topLevelOf(Connection& connection, xcb_window_t window) {
    for (int depth = 0; depth < maximumDepth; ++depth) {
        auto tree = connection.ask<xcb_query_tree, xcb_query_tree_reply>(window);
        if (!tree || tree->parent == XCB_WINDOW_NONE) {
            return XCB_WINDOW_NONE;
        }
        if (tree->parent == connection.root()) {
            return window;
        }
        window = tree->parent;
    }
    return XCB_WINDOW_NONE;
}

xcb_window_t activeByFocus(Connection& connection, Pending<xcb_get_input_focus_reply>& focusReply,
                           Pending<xcb_query_pointer_reply>& pointer,
                           const std::vector<xcb_window_t>& children) {
    const auto windows = ordinaryChildren(connection, children);
    const xcb_window_t focus = focusReply ? focusReply->focus : xcb_window_t{XCB_INPUT_FOCUS_NONE};
    if (focus != XCB_INPUT_FOCUS_NONE && focus != XCB_INPUT_FOCUS_POINTER_ROOT &&
        focus != connection.root()) {
        const xcb_window_t topLevel = topLevelOf(connection, focus);
        if (contains(windows, topLevel)) {
            return topLevel;
        }
    }
    if (pointer && contains(windows, pointer->child)) {
        return pointer->child;
    }
    return windows.empty() ? xcb_window_t{XCB_WINDOW_NONE} : windows.front();
}

} // namespace

ClientWindows readClientWindows(Connection& connection) {
    PendingRootState pending(connection);
    auto state = pending.read();
    auto check = askWmCheck(connection, state.wmCheck);
    ClientWindows result;
    if (!isLiveWm(check, state.wmCheck)) {
        result.windows = ordinaryChildren(connection, state.children);
        return result;
    }
    result.windowManager = state.wmCheck;
    result.currentDesktop = state.currentDesktop;
    const auto& listed = state.stacking.empty() ? state.clients : state.stacking;
    result.windows.assign(listed.rbegin(), listed.rend());
    return result;
}

ActiveWindow readActiveWindow(Connection& connection, xcb_window_t lastManager) {
    auto active =
        askProperty(connection, connection.root(), connection.atoms().NET_ACTIVE_WINDOW, XCB_ATOM_WINDOW, 2);
    auto focus = connection.ask<xcb_get_input_focus, xcb_get_input_focus_reply>();
    auto pointer = connection.ask<xcb_query_pointer, xcb_query_pointer_reply>(connection.root());
    PendingRootState pending(connection);
    auto check = askWmCheck(connection, lastManager);
    const auto state = pending.read();
    if (state.wmCheck != lastManager) {
        check = askWmCheck(connection, state.wmCheck);
    }
    if (!isLiveWm(check, state.wmCheck)) {
        return {XCB_WINDOW_NONE, activeByFocus(connection, focus, pointer, state.children)};
    }
    // Some managers write a second item, some leave a window behind that is gone.
    const xcb_window_t window = firstItem(active, XCB_ATOM_WINDOW).value_or(XCB_WINDOW_NONE);
    return {state.wmCheck, contains(state.clients, window) ? window : xcb_window_t{XCB_WINDOW_NONE}};
}

ActiveClientReader::Client ActiveClientReader::read() {
    const ActiveWindow last = last_;
    PendingClientPids lastPid(connection_, std::span(&last.window, last.window == XCB_WINDOW_NONE ? 0 : 1));
    const ActiveWindow active = readActiveWindow(connection_, last.windowManager);
    last_ = active;
    if (active.window == XCB_WINDOW_NONE) {
        return {active.windowManager, XCB_WINDOW_NONE, std::nullopt};
    }
    if (active.window != last.window) {
        return {active.windowManager, active.window, clientPid(connection_, active.window)};
    }
    const auto pids = lastPid.read();
    return {active.windowManager, active.window,
            pids.empty() ? std::nullopt : std::optional(pids.begin()->second)};
}

} // namespace skylet::platform::x11
