#include "platform/x11/PopupWatch.h"

#include "platform/x11/ClientPid.h"
#include "platform/x11/EventWindow.h"

#include <algorithm>
#include <utility>

namespace skylet::platform::x11 {

PopupWatch::PopupWatch(Connection& connection, ProcessID pid, std::function<void()> gone)
    : connection_(connection)
    , pid_(pid)
    , gone_(std::move(gone)) {
    events_ = connection_.subscribe(connection_.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                                    [this](const xcb_generic_event_t& event) { handle(event); });
}

const PopupWatch::Popup* PopupWatch::find(PixelPoint place) const {
    const auto it = std::ranges::find_if(popups_, [&](const auto& popup) {
        return !intersection(popup.second.place, {place.x, place.y, 1, 1}).isEmpty();
    });
    return it == popups_.end() ? nullptr : &it->second;
}

bool PopupWatch::isDeafAt(PixelPoint place) const {
    const Popup* popup = find(place);
    return popup && popup->isDeaf;
}

bool PopupWatch::hasDeaf() const {
    return std::ranges::any_of(popups_, [](const auto& popup) { return popup.second.isDeaf; });
}

void PopupWatch::handle(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_MAP_NOTIFY:
        if (as<xcb_map_notify_event_t>(event).override_redirect) {
            mapped(as<xcb_map_notify_event_t>(event).window);
        }
        break;
    case XCB_UNMAP_NOTIFY:
        unmapped(as<xcb_unmap_notify_event_t>(event).window);
        break;
    case XCB_DESTROY_NOTIFY:
        unmapped(as<xcb_destroy_notify_event_t>(event).window);
        break;
    case XCB_CONFIGURE_NOTIFY: {
        const auto& configure = as<xcb_configure_notify_event_t>(event);
        if (const auto it = popups_.find(configure.window); it != popups_.end()) {
            it->second.place = {configure.x, configure.y, configure.width, configure.height};
        }
        break;
    }
    default:
        break;
    }
}

void PopupWatch::mapped(xcb_window_t window) {
    auto geometry = connection_.ask<xcb_get_geometry, xcb_get_geometry_reply>(window);
    // Input-only helpers and one-pixel windows are no menus.
    if (clientPid(connection_, window) == pid_ && geometry && geometry->depth != 0 && geometry->width > 1) {
        auto attributes = connection_.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(window);
        const bool isDeaf = attributes && (attributes->all_event_masks & XCB_EVENT_MASK_BUTTON_RELEASE) != 0;
        popups_[window] = {{geometry->x, geometry->y, geometry->width, geometry->height}, isDeaf};
    }
}

void PopupWatch::unmapped(xcb_window_t window) {
    if (popups_.erase(window) != 0 && popups_.empty()) {
        gone_();
    }
}

} // namespace skylet::platform::x11
