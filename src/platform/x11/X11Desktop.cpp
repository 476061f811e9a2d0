#include "platform/x11/X11Desktop.h"

#include "platform/x11/EventWindow.h"

namespace skylet::platform::x11 {

X11Desktop::X11Desktop(Connection& connection, const Services& services)
    : connection_(connection)
    , sessionLock_(services.sessionLock)
    , formats_(connection)
    , layout_(connection)
    , modifiers_(connection)
    , windowServer_(connection)
    , accessibility_(connection, services.mainQueue, services.accessibilityTrust, raised_)
    , screenCapture_(connection, formats_, windowServer_, services.mainQueue)
    , panelStack_(connection, layout_, services.mainQueue)
    , panelFactory_({connection, formats_, layout_, modifiers_, panelStack_, services.mainQueue})
    , workspace_(connection, services.mainQueue, services.queues, raised_)
    , screens_(connection, layout_)
    , eventTap_(connection)
    , eventPoster_(connection, modifiers_, services.mainQueue) {
    const auto passLock = [this] {
        panelStack_.setSessionLocked(sessionLock_.isLocked());
    };
    lockChanges_ = sessionLock_.observeDidChange(passLock);
    passLock();
    mappingChanges_ = connection_.subscribeBroadcast([this](const xcb_generic_event_t& event) {
        if (eventType(event) == XCB_MAPPING_NOTIFY) {
            modifiers_.read(connection_);
        }
    });
}

} // namespace skylet::platform::x11
