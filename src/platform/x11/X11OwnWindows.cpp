#include "platform/x11/X11OwnWindows.h"

#include "platform/x11/ActiveWindow.h"
#include "platform/x11/EventWindow.h"
#include "platform/x11/WindowActivation.h"

namespace skylet::platform::x11 {

// A manager knows a window only once it has mapped it. Qt's requests go another way than ours, so that the
// order in which they are made says nothing.
void X11OwnWindows::bringToActiveSpace(NativeWindow native) {
    const auto window = static_cast<xcb_window_t>(native);
    awaited_.insert_or_assign(window,
                              connection_.subscribe(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                                    [this, window](const xcb_generic_event_t& event) {
                                                        if (eventType(event) == XCB_MAP_NOTIFY) {
                                                            bringMapped(window);
                                                        } else if (eventType(event) == XCB_DESTROY_NOTIFY) {
                                                            awaited_.erase(window);
                                                        }
                                                    }));
    auto attributes = connection_.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(window);
    if (!attributes) {
        awaited_.erase(window);
    } else if (attributes->map_state != XCB_MAP_STATE_UNMAPPED) {
        bringMapped(window);
    }
}

void X11OwnWindows::bringMapped(xcb_window_t window) {
    awaited_.erase(window);
    activateHere(connection_, window, readClientWindows(connection_));
}

} // namespace skylet::platform::x11
