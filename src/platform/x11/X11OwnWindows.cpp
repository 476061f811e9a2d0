#include "platform/x11/X11OwnWindows.h"

#include "platform/x11/EventWindow.h"
#include "platform/x11/WindowActivation.h"

#include <algorithm>

namespace skylet::platform::x11 {

// A manager knows a window only once it has mapped it. Qt's requests go another way than ours, so that the
// order in which they are made says nothing. One that it knows may be unmapped: on another desktop,
// minimised.
void X11OwnWindows::bringToActiveSpace(NativeWindow native) {
    const auto window = static_cast<xcb_window_t>(native);
    awaited_.insert_or_assign(
        window, connection_.subscribe(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                      [this, window](const xcb_generic_event_t& event) {
                                          if (eventType(event) == XCB_MAP_NOTIFY) {
                                              bringManaged(window, readClientWindows(connection_));
                                          } else if (eventType(event) == XCB_DESTROY_NOTIFY) {
                                              awaited_.erase(window);
                                          }
                                      }));
    const ClientWindows clients = readClientWindows(connection_);
    if (std::ranges::find(clients.windows, window) != clients.windows.end()) {
        bringManaged(window, clients);
    }
}

void X11OwnWindows::bringManaged(xcb_window_t window, const ClientWindows& clients) {
    awaited_.erase(window);
    activateHere(connection_, window, clients);
}

} // namespace skylet::platform::x11
