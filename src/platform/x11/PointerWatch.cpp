#include "platform/x11/PointerWatch.h"

#include "platform/x11/EventWindow.h"

#include <xcb/xinput.h>

#include <utility>

namespace skylet::platform::x11 {

PointerWatch::PointerWatch(Connection& connection, std::uint16_t ownDevice, Handlers handlers)
    : connection_(connection)
    , ownDevice_(ownDevice)
    , handlers_(std::move(handlers)) {
    select(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
           XCB_INPUT_XI_EVENT_MASK_RAW_MOTION);
    events_ = connection_.subscribeBroadcast([this](const xcb_generic_event_t& event) { handle(event); });
}

PointerWatch::~PointerWatch() {
    select(0);
}

void PointerWatch::select(std::uint32_t mask) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, mask};
    connection_.send<xcb_input_xi_select_events>(connection_.root(), std::uint16_t{1},
                                                 static_cast<const xcb_input_event_mask_t*>(&selection.head));
}

void PointerWatch::handle(const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_GE_GENERIC) {
        return;
    }
    const auto& generic = as<xcb_input_raw_button_press_event_t>(event);
    if (generic.extension != connection_.extensions().xinputOpcode || generic.deviceid == ownDevice_) {
        return;
    }
    if (generic.event_type == XCB_INPUT_RAW_BUTTON_PRESS) {
        handlers_.pressed();
    } else if (generic.event_type == XCB_INPUT_RAW_BUTTON_RELEASE) {
        handlers_.released();
    } else if (generic.event_type == XCB_INPUT_RAW_MOTION) {
        handlers_.moved();
    }
}

} // namespace skylet::platform::x11
