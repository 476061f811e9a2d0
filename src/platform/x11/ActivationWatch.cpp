#include "platform/x11/ActivationWatch.h"

#include "platform/x11/EventWindow.h"

#include <utility>

namespace skylet::platform::x11 {

ActivationWatch::ActivationWatch(Connection& connection, std::function<xcb_window_t()> check)
    : connection_(connection)
    , check_(std::move(check)) {
    properties_ = connection_.subscribe(connection_.root(), XCB_EVENT_MASK_PROPERTY_CHANGE,
                                        [this](const xcb_generic_event_t& event) { handleRoot(event); });
    batch_ = connection_.subscribeAfterBatch([this] { runCheck(); });
    follow(readActiveWindow(connection_).windowManager);
}

void ActivationWatch::handleRoot(const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_PROPERTY_NOTIFY) {
        return;
    }
    const Atoms& atoms = connection_.atoms();
    const xcb_atom_t atom = as<xcb_property_notify_event_t>(event).atom;
    due_ |= atom == atoms.NET_ACTIVE_WINDOW || atom == atoms.NET_SUPPORTING_WM_CHECK;
}

void ActivationWatch::handleChildren(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_MAP_NOTIFY: {
        const auto& map = as<xcb_map_notify_event_t>(event);
        if (map.override_redirect == 0) {
            watchFocus(map.window);
            due_ = true;
        }
        break;
    }
    case XCB_UNMAP_NOTIFY:
        due_ |= focus_.erase(as<xcb_unmap_notify_event_t>(event).window) > 0;
        break;
    case XCB_DESTROY_NOTIFY:
        due_ |= focus_.erase(as<xcb_destroy_notify_event_t>(event).window) > 0;
        break;
    case XCB_CONFIGURE_NOTIFY:
        due_ |= focus_.contains(as<xcb_configure_notify_event_t>(event).window);
        break;
    default:
        break;
    }
}

void ActivationWatch::watchFocus(xcb_window_t window) {
    focus_.insert_or_assign(window, connection_.subscribe(window, XCB_EVENT_MASK_FOCUS_CHANGE,
                                                          [this](const xcb_generic_event_t& event) {
                                                              due_ |= eventType(event) == XCB_FOCUS_IN;
                                                          }));
}

bool ActivationWatch::follow(xcb_window_t windowManager) {
    if (following_ && windowManager == windowManager_) {
        return false;
    }
    following_ = true;
    windowManager_ = windowManager;
    if (windowManager != XCB_WINDOW_NONE) {
        children_.reset();
        focus_.clear();
        managerEnd_ = connection_.subscribe(
            windowManager, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
            [this](const xcb_generic_event_t& event) { due_ |= eventType(event) == XCB_DESTROY_NOTIFY; });
        return true;
    }
    managerEnd_.reset();
    children_ = connection_.subscribe(connection_.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                                      [this](const xcb_generic_event_t& event) { handleChildren(event); });
    for (const xcb_window_t window : readClientWindows(connection_).windows) {
        watchFocus(window);
    }
    return true;
}

void ActivationWatch::runCheck() {
    if (!std::exchange(due_, false) || !connection_.isOpen()) {
        return;
    }
    if (follow(check_())) {
        check_(); // nobody told what changed before its signs were asked for
    }
}

} // namespace skylet::platform::x11
