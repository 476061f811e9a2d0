#include "platform/x11/X11Desktop.h"

#include "platform/x11/EventWindow.h"
#include "platform/x11/KeyCodes.h"

#include <limits>

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
    , eventPoster_(connection, modifiers_, services.mainQueue)
    , ownWindows_(connection) {
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

std::optional<KeyEvent> X11Desktop::keyDown(std::uint32_t keyCode, std::uint32_t state) const {
    const auto virtualKeyCode = toVirtualKeyCode(static_cast<xcb_keycode_t>(keyCode));
    if (!virtualKeyCode || keyCode > std::numeric_limits<xcb_keycode_t>::max()) {
        return std::nullopt;
    }
    return KeyEvent{*virtualKeyCode, modifiers_.flags(static_cast<std::uint16_t>(state))};
}

} // namespace skylet::platform::x11
