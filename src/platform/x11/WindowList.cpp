#include "platform/x11/WindowList.h"

#include "platform/x11/ClientGeometry.h"
#include "platform/x11/ClientPid.h"
#include "platform/x11/Property.h"
#include "platform/x11/RootChildren.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace skylet::platform::x11 {

namespace {

// Only the signs matter to readers; the values are those of the window levels that they stand for.
constexpr int belowLayer = -1;
constexpr int normalLayer = 0;
constexpr int aboveLayer = 3;
constexpr int dockLayer = 20;
constexpr int overrideRedirectLayer = 101;
constexpr int desktopLayer = -2147483603;

constexpr std::uint32_t allDesktops = 0xFFFFFFFF;
// WM_STATE of a window that nobody manages (ICCCM 4.1.3.1).
constexpr std::uint32_t withdrawnState = 0;

bool contains(const std::vector<std::uint32_t>& values, std::uint32_t value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

// Everything about one window, asked in one go.
class PendingWindow {
  public:
    PendingWindow(Connection& connection, xcb_window_t window)
        : atoms_(&connection.atoms())
        , window_(window)
        , attributes_(connection.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(window))
        , geometry_(connection, window)
        , name_(askText(connection, window, atoms_->NET_WM_NAME))
        , oldName_(askText(connection, window, XCB_ATOM_WM_NAME))
        , types_(askProperty(connection, window, atoms_->NET_WM_WINDOW_TYPE, XCB_ATOM_ATOM, 16))
        , states_(askProperty(connection, window, atoms_->NET_WM_STATE, XCB_ATOM_ATOM, 32))
        , desktop_(askProperty(connection, window, atoms_->NET_WM_DESKTOP, XCB_ATOM_CARDINAL, 1)) {}

    [[nodiscard]] std::optional<ListedWindow> read(std::optional<std::uint32_t> currentDesktop) {
        const auto geometry = geometry_.read();
        if (!attributes_ || !geometry) {
            return std::nullopt;
        }
        ListedWindow listed;
        listed.window = window_;
        listed.bounds = geometry->bounds;
        const auto name = text(name_, *atoms_);
        listed.name = name ? *name : text(oldName_, *atoms_).value_or("");
        const auto types = items(types_, XCB_ATOM_ATOM);
        const auto states = items(states_, XCB_ATOM_ATOM);
        listed.isDesktop = contains(types, atoms_->NET_WM_WINDOW_TYPE_DESKTOP);
        listed.layer = layer(types, states);
        const auto desktop = firstItem(desktop_, XCB_ATOM_CARDINAL);
        const bool onDesktop =
            !desktop || !currentDesktop || *desktop == allDesktops || *desktop == *currentDesktop;
        listed.onScreen = attributes_->map_state == XCB_MAP_STATE_VIEWABLE && onDesktop &&
                          !contains(states, atoms_->NET_WM_STATE_HIDDEN);
        return listed;
    }

  private:
    [[nodiscard]] int layer(const std::vector<std::uint32_t>& types,
                            const std::vector<std::uint32_t>& states) {
        if (attributes_->override_redirect) {
            return overrideRedirectLayer;
        }
        if (contains(types, atoms_->NET_WM_WINDOW_TYPE_DESKTOP)) {
            return desktopLayer;
        }
        if (contains(types, atoms_->NET_WM_WINDOW_TYPE_DOCK)) {
            return dockLayer;
        }
        if (contains(states, atoms_->NET_WM_STATE_ABOVE)) {
            return aboveLayer;
        }
        return contains(states, atoms_->NET_WM_STATE_BELOW) ? belowLayer : normalLayer;
    }

    const Atoms* atoms_;
    xcb_window_t window_;
    Pending<xcb_get_window_attributes_reply> attributes_;
    PendingClientGeometry geometry_;
    PendingProperty name_;
    PendingProperty oldName_;
    PendingProperty types_;
    PendingProperty states_;
    PendingProperty desktop_;
};

// Client windows back to front: the stacking list, then what only the mapping list knows.
std::vector<xcb_window_t> clientsOf(const PendingRootState::State& root) {
    std::vector<xcb_window_t> clients;
    for (const xcb_window_t client : root.clients) {
        if (!contains(root.stacking, client)) {
            clients.push_back(client);
        }
    }
    clients.insert(clients.end(), root.stacking.begin(), root.stacking.end());
    return clients;
}

} // namespace

std::optional<std::vector<ListedWindow>> WindowList::copy() {
    const PendingRootState::State root = PendingRootState(connection_).read();
    if (!connection_.isOpen() || root.children.empty()) {
        return connection_.isOpen() ? std::optional(std::vector<ListedWindow>{}) : std::nullopt;
    }

    auto wm = askWmCheck(connection_, root.wmCheck);
    std::vector<std::pair<xcb_window_t, Pending<xcb_get_window_attributes_reply>>> children;
    children.reserve(root.children.size());
    for (const xcb_window_t child : root.children) {
        children.emplace_back(
            child, connection_.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(child));
    }
    std::vector<std::pair<xcb_window_t, PendingProperty>> stateOfListed;
    for (const xcb_window_t window : listedBefore_) {
        stateOfListed.emplace_back(window, askProperty(connection_, window, connection_.atoms().WM_STATE,
                                                       connection_.atoms().WM_STATE, 2));
    }
    std::vector<xcb_window_t> menus;
    std::vector<xcb_window_t> unmanaged;
    for (auto& [child, attributes] : children) {
        if (!attributes || attributes->map_state == XCB_MAP_STATE_UNMAPPED ||
            attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
            continue;
        }
        (attributes->override_redirect ? menus : unmanaged).push_back(child);
    }
    // What a manager that is gone left behind says nothing about today.
    const std::vector<xcb_window_t> clients = isLiveWm(wm, root.wmCheck) ? clientsOf(root) : unmanaged;
    std::vector<xcb_window_t> kept;
    for (auto& [window, state] : stateOfListed) {
        const std::uint32_t value = firstItem(state, connection_.atoms().WM_STATE).value_or(withdrawnState);
        if (value != withdrawnState && !contains(clients, window)) {
            kept.push_back(window);
        }
    }
    listedBefore_ = {clients.begin(), clients.end()};
    listedBefore_.insert(kept.begin(), kept.end());

    std::vector<xcb_window_t> order(menus.rbegin(), menus.rend());
    order.insert(order.end(), clients.rbegin(), clients.rend());
    order.insert(order.end(), kept.begin(), kept.end());

    PendingClientPids pids(connection_, order);
    std::vector<PendingWindow> pending;
    pending.reserve(order.size());
    for (const xcb_window_t window : order) {
        pending.emplace_back(connection_, window);
    }
    const auto pidOf = pids.read();
    std::vector<ListedWindow> list;
    list.reserve(order.size());
    for (PendingWindow& one : pending) {
        if (auto listed = one.read(root.currentDesktop)) {
            if (const auto pid = pidOf.find(listed->window); pid != pidOf.end()) {
                listed->pid = pid->second;
            }
            list.push_back(std::move(*listed));
        }
    }
    return list;
}

std::optional<ListedWindow> WindowList::copyOne(xcb_window_t window) {
    auto desktop = askProperty(connection_, connection_.root(), connection_.atoms().NET_CURRENT_DESKTOP,
                               XCB_ATOM_CARDINAL, 1);
    PendingWindow pending(connection_, window);
    PendingClientPids pids(connection_, std::span(&window, 1));
    auto listed = pending.read(firstItem(desktop, XCB_ATOM_CARDINAL));
    if (listed) {
        if (const auto known = pids.read(); !known.empty()) {
            listed->pid = known.begin()->second;
        }
    }
    return listed;
}

} // namespace skylet::platform::x11
