#include "platform/x11/SecondPointer.h"

#include "platform/x11/Xkb.h"

#include <xcb/xtest.h>

#include <array>
#include <cstring>
#include <numeric>
#include <string_view>

namespace skylet::platform::x11 {

namespace {

// The server adds " pointer", " keyboard", " XTEST pointer" and " XTEST keyboard".
constexpr std::string_view masterName = "Skylet";
// XInput 1 device events, counted from the extension's first event.
constexpr std::uint8_t deviceKeyPress = 1;
constexpr std::uint8_t deviceKeyRelease = 2;
constexpr std::uint8_t deviceButtonPress = 3;
constexpr std::uint8_t deviceButtonRelease = 4;
constexpr std::uint8_t wheelRight = 7;
constexpr std::uint8_t allModifiers = 0xFF;

xcb_input_fp1616_t toFixed(int value) {
    return static_cast<xcb_input_fp1616_t>(value) * 65536;
}

} // namespace

SecondPointerDevices findSecondPointer(Connection& connection) {
    SecondPointerDevices devices;
    auto pending = connection.ask<xcb_input_xi_query_device, xcb_input_xi_query_device_reply>(
        static_cast<xcb_input_device_id_t>(XCB_INPUT_DEVICE_ALL));
    const auto* reply = pending.get();
    if (!reply) {
        return devices;
    }
    for (auto it = xcb_input_xi_query_device_infos_iterator(reply); it.rem != 0;
         xcb_input_xi_device_info_next(&it)) {
        const std::string_view name(xcb_input_xi_device_info_name(it.data),
                                    static_cast<std::size_t>(xcb_input_xi_device_info_name_length(it.data)));
        if (!name.starts_with(masterName)) {
            continue;
        }
        const std::string_view role = name.substr(masterName.size());
        if (role == " pointer") {
            devices.pointer = it.data->deviceid;
        } else if (role == " keyboard") {
            devices.keyboard = it.data->deviceid;
        } else if (role == " XTEST pointer") {
            devices.testPointer = it.data->deviceid;
        } else if (role == " XTEST keyboard") {
            devices.testKeyboard = it.data->deviceid;
        }
    }
    return devices;
}

std::uint16_t clientPointer(Connection& connection, xcb_window_t window) {
    auto reply =
        connection.ask<xcb_input_xi_get_client_pointer, xcb_input_xi_get_client_pointer_reply>(window);
    return reply ? reply->deviceid : std::uint16_t{0};
}

std::unique_ptr<SecondPointer> SecondPointer::acquire(Connection& connection) {
    if (!connection.extensions().xtest || !connection.extensions().xinput) {
        return nullptr;
    }
    auto xkb = connection.ask<xcb_xkb_use_extension, xcb_xkb_use_extension_reply>(std::uint16_t{1},
                                                                                  std::uint16_t{0});
    SecondPointerDevices devices = findSecondPointer(connection);
    if (!devices.isComplete()) {
        // type, length in words, name length, send core events, enabled, name
        struct AddMaster {
            std::uint16_t type = XCB_INPUT_HIERARCHY_CHANGE_TYPE_ADD_MASTER;
            std::uint16_t length = 4;
            std::uint16_t nameLength = masterName.size();
            std::uint8_t sendCore = 1;
            std::uint8_t enable = 1;
            std::array<char, 8> name{};
        } change;
        static_assert(sizeof change == 16 && masterName.size() <= 8);
        std::memcpy(change.name.data(), masterName.data(), masterName.size());
        const auto error = connection.sendChecked<xcb_input_xi_change_hierarchy_checked>(
            std::uint8_t{1}, reinterpret_cast<const xcb_input_hierarchy_change_t*>(&change));
        if (error) {
            return nullptr;
        }
        devices = findSecondPointer(connection);
    }
    if (!devices.isComplete() || !xkb) {
        return nullptr;
    }
    auto pointer = std::make_unique<SecondPointer>(connection, devices);
    pointer->userPointer_ = clientPointer(connection, XCB_WINDOW_NONE);
    pointer->makePark();
    return pointer;
}

void SecondPointer::makePark() {
    const xcb_window_t root = connection_.root();
    // On the left edge, but not in a corner: corners are hot.
    parkX_ = 3;
    parkY_ = connection_.screen().height_in_pixels * 5 / 9;
    park_ = WindowId(connection_, connection_.generateId());
    constexpr std::uint32_t pointerEvents =
        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;
    const std::uint32_t values[] = {1, pointerEvents};
    connection_.send<xcb_create_window>(
        std::uint8_t{0}, xcb_window_t{park_.get()}, root, static_cast<std::int16_t>(parkX_),
        static_cast<std::int16_t>(parkY_), std::uint16_t{1}, std::uint16_t{1}, std::uint16_t{0},
        static_cast<std::uint16_t>(XCB_WINDOW_CLASS_INPUT_ONLY), xcb_visualid_t{0},
        std::uint32_t{XCB_CW_OVERRIDE_REDIRECT | XCB_CW_DONT_PROPAGATE}, static_cast<const void*>(values));
    connection_.send<xcb_map_window>(xcb_window_t{park_.get()});

    const PixmapId empty(connection_, connection_.generateId());
    connection_.send<xcb_create_pixmap>(std::uint8_t{1}, xcb_pixmap_t{empty.get()}, xcb_drawable_t{root},
                                        std::uint16_t{1}, std::uint16_t{1});
    const GContextId gc(connection_, connection_.generateId());
    const std::uint32_t nothing = 0;
    connection_.send<xcb_create_gc>(xcb_gcontext_t{gc.get()}, xcb_drawable_t{empty.get()},
                                    std::uint32_t{XCB_GC_FOREGROUND}, static_cast<const void*>(&nothing));
    const xcb_rectangle_t pixel{0, 0, 1, 1};
    connection_.send<xcb_poly_fill_rectangle>(xcb_drawable_t{empty.get()}, xcb_gcontext_t{gc.get()}, 1U,
                                              &pixel);
    blankCursor_ = XId<xcb_free_cursor>(connection_, connection_.generateId());
    connection_.send<xcb_create_cursor>(xcb_cursor_t{blankCursor_.get()}, xcb_pixmap_t{empty.get()},
                                        xcb_pixmap_t{empty.get()}, std::uint16_t{0}, std::uint16_t{0},
                                        std::uint16_t{0}, std::uint16_t{0}, std::uint16_t{0},
                                        std::uint16_t{0}, std::uint16_t{0}, std::uint16_t{0});
    hideCursorOver(root);
    muteSpare();
    warpUnnoticed(parkX_, parkY_);
}

// The target hears of the spare button's release. Under the name of a wheel button nobody minds: a wheel has
// no release that means anything, and the sideways ones have no bit in the state of later events.
void SecondPointer::muteSpare() {
    std::array<std::uint8_t, spareButton> map{};
    std::iota(map.begin(), map.end(), std::uint8_t{1});
    map.back() = wheelRight;
    for (const std::uint16_t device : {devices_.testPointer, devices_.pointer}) {
        // The answer tells only whether a button is down, which repairs have seen to.
        auto answer =
            connection_.ask<xcb_input_set_device_button_mapping, xcb_input_set_device_button_mapping_reply>(
                static_cast<std::uint8_t>(device), static_cast<std::uint8_t>(map.size()),
                static_cast<const std::uint8_t*>(map.data()));
    }
}

void SecondPointer::warp(int x, int y) {
    connection_.send<xcb_input_xi_warp_pointer>(
        xcb_window_t{XCB_NONE}, connection_.root(), xcb_input_fp1616_t{0}, xcb_input_fp1616_t{0},
        std::uint16_t{0}, std::uint16_t{0}, toFixed(x), toFixed(y), xcb_input_device_id_t{devices_.pointer});
}

void SecondPointer::beginGrab(std::uint16_t device) {
    const std::uint32_t noEvents = 0;
    // The answer is of no use: a grab that fails leaves the warp as it would be without.
    auto grab = connection_.ask<xcb_input_xi_grab_device, xcb_input_xi_grab_device_reply>(
        xcb_window_t{park_.get()}, xcb_timestamp_t{XCB_CURRENT_TIME}, xcb_cursor_t{XCB_NONE},
        xcb_input_device_id_t{device}, static_cast<std::uint8_t>(XCB_INPUT_GRAB_MODE_22_ASYNC),
        static_cast<std::uint8_t>(XCB_INPUT_GRAB_MODE_22_ASYNC),
        static_cast<std::uint8_t>(XCB_INPUT_GRAB_OWNER_NO_OWNER), std::uint16_t{1}, &noEvents);
}

void SecondPointer::endGrab(std::uint16_t device) {
    connection_.send<xcb_input_xi_ungrab_device>(xcb_timestamp_t{XCB_CURRENT_TIME},
                                                 xcb_input_device_id_t{device});
}

void SecondPointer::warpUnnoticed(int x, int y) {
    beginGrab(devices_.pointer);
    warp(x, y);
    endGrab(devices_.pointer);
}

void SecondPointer::fake(std::uint8_t type, std::uint8_t detail, std::uint16_t device) {
    connection_.send<xcb_test_fake_input>(
        static_cast<std::uint8_t>(connection_.extensions().xinputEvent + type), detail,
        std::uint32_t{XCB_CURRENT_TIME}, xcb_window_t{XCB_NONE}, std::int16_t{0}, std::int16_t{0},
        static_cast<std::uint8_t>(device));
}

void SecondPointer::press(std::uint8_t button) {
    fake(deviceButtonPress, button, devices_.testPointer);
}

void SecondPointer::release(std::uint8_t button) {
    fake(deviceButtonRelease, button, devices_.testPointer);
}

void SecondPointer::releaseAllButtons() {
    for (std::uint8_t button = 1; button <= spareButton; ++button) {
        release(button);
    }
}

void SecondPointer::park() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    connection_.send<xcb_configure_window>(xcb_window_t{park_.get()},
                                           std::uint16_t{XCB_CONFIG_WINDOW_STACK_MODE},
                                           static_cast<const void*>(&above));
    warpUnnoticed(parkX_, parkY_);
}

void SecondPointer::lockModifiers(std::uint16_t state) {
    connection_.send<xcb_xkb_latch_lock_state>(
        static_cast<xcb_xkb_device_spec_t>(devices_.keyboard), allModifiers, static_cast<std::uint8_t>(state),
        std::uint8_t{0}, std::uint8_t{0}, std::uint8_t{0}, std::uint8_t{0}, std::uint16_t{0});
}

void SecondPointer::tapKey(xcb_keycode_t keyCode) {
    fake(deviceKeyPress, keyCode, devices_.testKeyboard);
    fake(deviceKeyRelease, keyCode, devices_.testKeyboard);
}

void SecondPointer::becomeClientPointer(xcb_window_t window) {
    giveClientPointer(window, devices_.pointer);
}

void SecondPointer::giveClientPointer(xcb_window_t window, std::uint16_t device) {
    connection_.sendTolerant<xcb_input_xi_set_client_pointer>(window, xcb_input_device_id_t{device});
}

void SecondPointer::hideCursorOver(xcb_window_t window) {
    connection_.sendTolerant<xcb_input_xi_change_cursor>(window, xcb_cursor_t{blankCursor_.get()},
                                                         xcb_input_device_id_t{devices_.pointer});
}

void SecondPointer::showCursorOver(xcb_window_t window) {
    connection_.sendTolerant<xcb_input_xi_change_cursor>(window, xcb_cursor_t{XCB_NONE},
                                                         xcb_input_device_id_t{devices_.pointer});
}

void SecondPointer::remove(Connection& connection, std::uint16_t pointerDevice) {
    // type, length in words, device, return mode, return devices
    struct RemoveMaster {
        std::uint16_t type = XCB_INPUT_HIERARCHY_CHANGE_TYPE_REMOVE_MASTER;
        std::uint16_t length = 3;
        std::uint16_t device = 0;
        std::uint8_t returnMode = XCB_INPUT_CHANGE_MODE_FLOAT;
        std::uint8_t padding = 0;
        std::uint16_t returnPointer = 0;
        std::uint16_t returnKeyboard = 0;
    } change;
    static_assert(sizeof change == 12);
    change.device = pointerDevice;
    connection.sendTolerant<xcb_input_xi_change_hierarchy>(
        std::uint8_t{1}, reinterpret_cast<const xcb_input_hierarchy_change_t*>(&change));
}

} // namespace skylet::platform::x11
