#include "XSession.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstddef>

namespace skylet::desktop {

xcb_keycode_t XSession::keycode(xcb_keysym_t key) const {
    const xcb_setup_t* setup = xcb_get_setup(connection());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto reply = own(xcb_get_keyboard_mapping_reply(
        connection(), xcb_get_keyboard_mapping(connection(), setup->min_keycode, count), nullptr));
    if (!reply) {
        return 0;
    }
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    for (int i = 0; i < count; ++i) {
        if (symbols[static_cast<std::ptrdiff_t>(i) * reply->keysyms_per_keycode] == key) {
            return static_cast<xcb_keycode_t>(setup->min_keycode + i);
        }
    }
    return 0;
}

void XSession::fake(std::uint8_t type, int detail, int x, int y) const {
    xcb_test_fake_input(connection(), type, static_cast<std::uint8_t>(detail), XCB_CURRENT_TIME, root_,
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
}

void XSession::hold(Modifier modifier, bool down) const {
    fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keycode(static_cast<xcb_keysym_t>(modifier)), 0, 0);
    sync();
}

bool XSession::grabKey(xcb_keysym_t key, std::uint16_t modifiers) const {
    const auto grab = xcb_grab_key_checked(connection(), 0, root_, modifiers, keycode(key),
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    return !own(xcb_request_check(connection(), grab));
}

void XSession::ungrabKey(xcb_keysym_t key, std::uint16_t modifiers) const {
    xcb_ungrab_key(connection(), keycode(key), root_, modifiers);
    sync();
}

void XSession::announceKeyboard() const {
    const auto last = xcb_get_setup(connection())->max_keycode;
    const xcb_keysym_t nothing = XCB_NO_SYMBOL;
    xcb_change_keyboard_mapping(connection(), 1, last, 1, &nothing);
}

void XSession::press(xcb_keysym_t key, const std::vector<Modifier>& modifiers) const {
    for (const Modifier modifier : modifiers) {
        hold(modifier, true);
    }
    fake(XCB_KEY_PRESS, keycode(key), 0, 0);
    fake(XCB_KEY_RELEASE, keycode(key), 0, 0);
    std::for_each(modifiers.rbegin(), modifiers.rend(), [this](Modifier modifier) { hold(modifier, false); });
    sync();
}

void XSession::movePointer(int x, int y) const {
    fake(XCB_MOTION_NOTIFY, 0, x, y);
    sync();
}

void XSession::button(int number, bool down) const {
    fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number, 0, 0);
    sync();
}

void XSession::click(int x, int y, int number) const {
    movePointer(x, y);
    button(number, true);
    button(number, false);
}

void XSession::drag(int fromX, int fromY, int toX, int toY) const {
    constexpr int steps = 8;
    movePointer(fromX, fromY);
    button(1, true);
    for (int step = 1; step <= steps; ++step) {
        movePointer(fromX + (toX - fromX) * step / steps, fromY + (toY - fromY) * step / steps);
    }
    button(1, false);
}

std::pair<int, int> XSession::pointer() const {
    const auto reply =
        own(xcb_query_pointer_reply(connection(), xcb_query_pointer(connection(), root_), nullptr));
    return reply ? std::pair<int, int>{reply->root_x, reply->root_y} : std::pair{-1, -1};
}

std::vector<std::string> XSession::masterPointers() const {
    std::vector<std::string> names;
    const auto reply = own(xcb_input_xi_query_device_reply(
        connection(), xcb_input_xi_query_device(connection(), XCB_INPUT_DEVICE_ALL_MASTER), nullptr));
    if (!reply) {
        return names;
    }
    for (auto it = xcb_input_xi_query_device_infos_iterator(reply.get()); it.rem > 0;
         xcb_input_xi_device_info_next(&it)) {
        if (it.data->type == XCB_INPUT_DEVICE_TYPE_MASTER_POINTER) {
            names.emplace_back(xcb_input_xi_device_info_name(it.data),
                               static_cast<std::size_t>(xcb_input_xi_device_info_name_length(it.data)));
        }
    }
    return names;
}

} // namespace skylet::desktop
