#include "platform/x11/EventWindow.h"

#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/shape.h>
#include <xcb/xfixes.h>

namespace skylet::platform::x11 {

xcb_window_t eventWindow(const xcb_generic_event_t& event, const Extensions& extensions) {
    const std::uint8_t type = eventType(event);
    switch (type) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
    case XCB_MOTION_NOTIFY:
    case XCB_ENTER_NOTIFY:
    case XCB_LEAVE_NOTIFY:
        return as<xcb_button_press_event_t>(event).event;
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
        return as<xcb_focus_in_event_t>(event).event;
    case XCB_EXPOSE:
        return as<xcb_expose_event_t>(event).window;
    case XCB_VISIBILITY_NOTIFY:
        return as<xcb_visibility_notify_event_t>(event).window;
    case XCB_CREATE_NOTIFY:
        return as<xcb_create_notify_event_t>(event).parent;
    case XCB_DESTROY_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_MAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_GRAVITY_NOTIFY:
    case XCB_CIRCULATE_NOTIFY:
        return as<xcb_map_notify_event_t>(event).event;
    case XCB_PROPERTY_NOTIFY:
        return as<xcb_property_notify_event_t>(event).window;
    case XCB_CLIENT_MESSAGE:
        return as<xcb_client_message_event_t>(event).window;
    case XCB_SELECTION_CLEAR:
        return as<xcb_selection_clear_event_t>(event).owner;
    default:
        break;
    }
    if (type == extensions.damageEvent + XCB_DAMAGE_NOTIFY) {
        return as<xcb_damage_notify_event_t>(event).drawable;
    }
    if (type == extensions.xfixesEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        return as<xcb_xfixes_selection_notify_event_t>(event).window;
    }
    if (extensions.randr && type == extensions.randrEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY) {
        return as<xcb_randr_screen_change_notify_event_t>(event).root;
    }
    if (extensions.shapeEvent != 0 && type == extensions.shapeEvent + XCB_SHAPE_NOTIFY) {
        return as<xcb_shape_notify_event_t>(event).affected_window;
    }
    return XCB_WINDOW_NONE;
}

} // namespace skylet::platform::x11
