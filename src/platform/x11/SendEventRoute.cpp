#include "platform/x11/SendEventRoute.h"

#include <cmath>

namespace skylet::platform::x11 {

namespace {

// The state bit of a held button; only the first five have one.
std::uint16_t buttonBit(std::uint8_t button) {
    return button >= 1 && button <= 5 ? static_cast<std::uint16_t>(1U << (7U + button)) : std::uint16_t{0};
}

} // namespace

void SendEventRoute::post(const PostedInput& input) {
    const int x = static_cast<int>(std::floor(input.x));
    const int y = static_cast<int>(std::floor(input.y));
    // While a button is held every event goes to the window that got the press, as under an implicit grab.
    Place place = deepest(input.window, x, y);
    if (heldButton_ != 0 && input.kind != PostedInput::Kind::wheel) {
        auto inside = connection_.ask<xcb_translate_coordinates, xcb_translate_coordinates_reply>(
            connection_.root(), pressedAt_.window, static_cast<std::int16_t>(x),
            static_cast<std::int16_t>(y));
        if (!inside) {
            heldButton_ = 0;
            return;
        }
        place = {pressedAt_.window, inside->dst_x, inside->dst_y};
    }
    if (place.window == XCB_WINDOW_NONE) {
        return;
    }
    const auto held = static_cast<std::uint16_t>(input.state | buttonBit(heldButton_));
    switch (input.kind) {
    case PostedInput::Kind::press:
        arrive(place, input);
        send(place, input, XCB_BUTTON_PRESS, input.button, held);
        heldButton_ = input.button;
        pressedAt_ = place;
        break;
    case PostedInput::Kind::motion:
        send(place, input, XCB_MOTION_NOTIFY, XCB_MOTION_NORMAL, held);
        break;
    case PostedInput::Kind::release:
        send(place, input, XCB_BUTTON_RELEASE, input.button, held);
        heldButton_ = 0;
        break;
    case PostedInput::Kind::wheel:
        arrive(place, input);
        for (const auto& [button, clicks] : input.wheel) {
            for (int i = 0; i < clicks; ++i) {
                send(place, input, XCB_BUTTON_PRESS, button, held);
                send(place, input, XCB_BUTTON_RELEASE, button,
                     static_cast<std::uint16_t>(held | buttonBit(button)));
            }
        }
        break;
    }
    connection_.flush();
}

SendEventRoute::Place SendEventRoute::deepest(xcb_window_t client, int x, int y) {
    Place place{client, 0, 0};
    for (;;) {
        auto inside = connection_.ask<xcb_translate_coordinates, xcb_translate_coordinates_reply>(
            connection_.root(), place.window, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
        if (!inside) {
            return {};
        }
        place.x = inside->dst_x;
        place.y = inside->dst_y;
        if (inside->child == XCB_WINDOW_NONE) {
            return place;
        }
        place.window = inside->child;
    }
}

// Toolkits believe a press only under a pointer that they saw coming.
void SendEventRoute::arrive(const Place& place, const PostedInput& input) {
    send(place, input, XCB_ENTER_NOTIFY, XCB_NOTIFY_DETAIL_NONLINEAR, input.state);
    send(place, input, XCB_MOTION_NOTIFY, XCB_MOTION_NORMAL, input.state);
}

void SendEventRoute::send(const Place& place, const PostedInput& input, std::uint8_t type,
                          std::uint8_t detail, std::uint16_t state) {
    // Button, motion and crossing events share this layout up to the state; a crossing's mode follows it.
    xcb_button_press_event_t event{};
    static_assert(sizeof event == 32);
    event.response_type = type;
    event.detail = detail;
    event.time = connection_.serverTime();
    event.root = connection_.root();
    event.event = place.window;
    event.root_x = static_cast<std::int16_t>(std::floor(input.x));
    event.root_y = static_cast<std::int16_t>(std::floor(input.y));
    event.event_x = place.x;
    event.event_y = place.y;
    event.state = state;
    // After the state a crossing has its mode, 0 for normal; the others have "same screen".
    event.same_screen = type == XCB_ENTER_NOTIFY ? 0 : 1;
    connection_.sendTolerant<xcb_send_event>(std::uint8_t{0}, place.window,
                                             std::uint32_t{XCB_EVENT_MASK_NO_EVENT},
                                             reinterpret_cast<const char*>(&event));
}

} // namespace skylet::platform::x11
