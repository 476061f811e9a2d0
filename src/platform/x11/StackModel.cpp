#include "platform/x11/StackModel.h"

#include "platform/x11/EventWindow.h"
#include "platform/x11/Property.h"

#include <algorithm>
#include <string_view>

namespace skylet::platform::x11 {

namespace {
constexpr std::uint32_t maximumWindows = 16384;
// i3 draws its frames as override-redirect windows of this class.
constexpr std::string_view tilingFrameClass = "i3-frame";

PixelRect rectOf(const xcb_configure_notify_event_t& event) {
    return {event.x, event.y, event.width + 2 * event.border_width, event.height + 2 * event.border_width};
}
} // namespace

void StackModel::start() {
    if (events_) {
        return;
    }
    events_ = connection_.subscribe(connection_.root(),
                                    XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE,
                                    [this](const xcb_generic_event_t& event) { handle(event); });
    known_.clear();
    frameOf_.clear();
    stale_ = orderStale_ = clientsStale_ = true;
}

void StackModel::stop() {
    events_.reset();
}

void StackModel::handle(const xcb_generic_event_t& event) {
    const Atoms& atoms = connection_.atoms();
    bool order = false;
    bool clients = false;
    switch (eventType(event)) {
    case XCB_CREATE_NOTIFY:
        // Read when it is mapped: most created windows never are.
        known_.erase(as<xcb_create_notify_event_t>(event).window);
        break;
    case XCB_DESTROY_NOTIFY:
        known_.erase(as<xcb_destroy_notify_event_t>(event).window);
        order = true;
        break;
    case XCB_MAP_NOTIFY:
        if (const auto it = known_.find(as<xcb_map_notify_event_t>(event).window); it != known_.end()) {
            it->second.mapped = true;
            it->second.overrideRedirect = as<xcb_map_notify_event_t>(event).override_redirect != 0;
        }
        order = true;
        break;
    case XCB_UNMAP_NOTIFY:
        if (const auto it = known_.find(as<xcb_unmap_notify_event_t>(event).window); it != known_.end()) {
            it->second.mapped = false;
        }
        stale_ = true;
        break;
    case XCB_REPARENT_NOTIFY:
        frameOf_.erase(as<xcb_reparent_notify_event_t>(event).window);
        known_.erase(as<xcb_reparent_notify_event_t>(event).window);
        order = clients = true;
        break;
    case XCB_CONFIGURE_NOTIFY: {
        const auto& configure = as<xcb_configure_notify_event_t>(event);
        if (const auto it = known_.find(configure.window); it != known_.end()) {
            it->second.rect = rectOf(configure);
        }
        order = true;
        break;
    }
    case XCB_CIRCULATE_NOTIFY:
        order = true;
        break;
    case XCB_PROPERTY_NOTIFY: {
        const xcb_atom_t atom = as<xcb_property_notify_event_t>(event).atom;
        clients = atom == atoms.NET_CLIENT_LIST || atom == atoms.NET_CLIENT_LIST_STACKING ||
                  atom == atoms.NET_CURRENT_DESKTOP || atom == atoms.NET_SUPPORTING_WM_CHECK;
        break;
    }
    default:
        break;
    }
    orderStale_ |= order;
    clientsStale_ |= clients;
    stale_ |= order || clients;
}

void StackModel::refresh() {
    if (!stale_) {
        return;
    }
    stale_ = false;
    if (std::exchange(orderStale_, false)) {
        readOrder();
    }
    if (std::exchange(clientsStale_, false)) {
        readClients();
    }
    compose(order_);
}

void StackModel::readOrder() {
    auto tree = connection_.ask<xcb_query_tree, xcb_query_tree_reply>(connection_.root());
    if (!tree) {
        return;
    }
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    order_.assign(first, first + xcb_query_tree_children_length(tree.get()));
    readNewChildren(order_);
}

void StackModel::readNewChildren(const std::vector<xcb_window_t>& order) {
    struct Asked {
        xcb_window_t window;
        Pending<xcb_get_window_attributes_reply> attributes;
        Pending<xcb_get_geometry_reply> geometry;
        PendingProperty windowClass;
    };
    std::vector<Asked> asked;
    for (const xcb_window_t window : order) {
        if (!known_.contains(window)) {
            asked.push_back(
                {window, connection_.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(window),
                 connection_.ask<xcb_get_geometry, xcb_get_geometry_reply>(window),
                 askText(connection_, window, XCB_ATOM_WM_CLASS)});
        }
    }
    for (Asked& one : asked) {
        if (!one.attributes || !one.geometry) {
            continue;
        }
        const int border = 2 * one.geometry->border_width;
        const auto names = windowClass(one.windowClass);
        known_[one.window] = {
            {one.geometry->x, one.geometry->y, one.geometry->width + border, one.geometry->height + border},
            one.attributes->override_redirect != 0,
            one.attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY,
            one.attributes->map_state != XCB_MAP_STATE_UNMAPPED,
            names && (names->instance == tilingFrameClass || names->className == tilingFrameClass)};
    }
}

void StackModel::readClients() {
    const Atoms& atoms = connection_.atoms();
    const xcb_window_t root = connection_.root();
    auto list = askProperty(connection_, root, atoms.NET_CLIENT_LIST, XCB_ATOM_WINDOW, maximumWindows);
    auto desktop = askProperty(connection_, root, atoms.NET_CURRENT_DESKTOP, XCB_ATOM_CARDINAL, 1);
    const auto clients = items(list, XCB_ATOM_WINDOW);
    currentDesktop_ = firstItem(desktop, XCB_ATOM_CARDINAL);

    struct Asked {
        xcb_window_t client;
        xcb_window_t at; // on the way up to the child of the root
        Pending<xcb_query_tree_reply> tree;
        PendingProperty type;
        PendingProperty state;
    };
    std::vector<Asked> asked;
    std::unordered_map<xcb_window_t, xcb_window_t> frames;
    for (const xcb_window_t client : clients) {
        const auto it = frameOf_.find(client);
        const bool known = it != frameOf_.end() && known_.contains(it->second);
        if (known) {
            frames[client] = it->second;
        }
        asked.push_back({client, client,
                         known ? Pending<xcb_query_tree_reply>()
                               : connection_.ask<xcb_query_tree, xcb_query_tree_reply>(client),
                         askProperty(connection_, client, atoms.NET_WM_WINDOW_TYPE, XCB_ATOM_ATOM, 16),
                         askProperty(connection_, client, atoms.NET_WM_STATE, XCB_ATOM_ATOM, 32)});
    }
    desktopClients_.clear();
    hiddenClients_.clear();
    for (Asked& one : asked) {
        const auto types = items(one.type, XCB_ATOM_ATOM);
        if (std::find(types.begin(), types.end(), atoms.NET_WM_WINDOW_TYPE_DESKTOP) != types.end()) {
            desktopClients_.insert(one.client);
        }
        const auto states = items(one.state, XCB_ATOM_ATOM);
        if (std::find(states.begin(), states.end(), atoms.NET_WM_STATE_HIDDEN) != states.end()) {
            hiddenClients_.insert(one.client);
        }
    }
    // All clients climb one step per round; frames are one or two deep.
    std::erase_if(asked, [&](const Asked& one) { return frames.contains(one.client); });
    while (!asked.empty()) {
        for (Asked& one : asked) {
            const auto* reply = one.tree.get();
            if (!reply) {
                one.at = XCB_WINDOW_NONE;
            } else if (reply->parent == root) {
                frames[one.client] = std::exchange(one.at, XCB_WINDOW_NONE);
            } else {
                one.at = reply->parent;
            }
        }
        std::erase_if(asked, [](const Asked& one) { return one.at == XCB_WINDOW_NONE; });
        for (Asked& one : asked) {
            one.tree = connection_.ask<xcb_query_tree, xcb_query_tree_reply>(one.at);
        }
    }
    frameOf_ = std::move(frames);
}

void StackModel::compose(const std::vector<xcb_window_t>& order) {
    std::unordered_map<xcb_window_t, xcb_window_t> clientOf;
    for (const auto& [client, frame] : frameOf_) {
        clientOf[frame] = client;
    }
    children_.clear();
    children_.reserve(order.size());
    for (const xcb_window_t window : order) {
        const auto it = known_.find(window);
        if (it == known_.end()) {
            continue;
        }
        const Known& known = it->second;
        Child child;
        child.window = window;
        child.rect = known.rect;
        child.overrideRedirect = known.overrideRedirect;
        child.inputOnly = known.inputOnly;
        child.mapped = known.mapped;
        if (const auto client = clientOf.find(window); client != clientOf.end()) {
            child.client = client->second;
            child.desktop = desktopClients_.contains(child.client);
            child.hidden = hiddenClients_.contains(child.client);
        }
        child.managed = child.client != XCB_WINDOW_NONE || known.tilingFrame ||
                        (!known.overrideRedirect && !known.inputOnly && known.mapped);
        children_.push_back(child);
    }
}

} // namespace skylet::platform::x11
