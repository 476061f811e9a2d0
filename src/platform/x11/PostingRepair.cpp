#include "platform/x11/PostingRepair.h"

#include "platform/x11/InputHoles.h"
#include "platform/x11/SecondPointer.h"

#include <thread>

namespace skylet::platform::x11 {

namespace {

constexpr xcb_keycode_t escapeKey = 9; // evdev code 1 and the offset of 8

} // namespace

std::uint16_t repairPosting(Connection& connection) {
    if (!connection.extensions().xtest || !connection.extensions().xinput) {
        return 0;
    }
    InputHoles::repair(connection);
    const SecondPointerDevices devices = findSecondPointer(connection);
    if (devices.isComplete()) {
        SecondPointer pointer(connection, devices);
        pointer.releaseAllButtons();
        pointer.unlockModifiers();
        pointer.tapKey(escapeKey);
    }
    connection.flush();
    return devices.pointer;
}

void cleanUpAfterPosting(Connection& connection) {
    const std::uint16_t pointer = repairPosting(connection);
    if (pointer != 0) {
        // The round trip brings the releases before the wait.
        connection.ask<xcb_get_input_focus, xcb_get_input_focus_reply>().get();
        std::this_thread::sleep_for(settlingAfterRepair);
        SecondPointer::remove(connection, pointer);
        connection.ask<xcb_get_input_focus, xcb_get_input_focus_reply>().get();
    }
}

} // namespace skylet::platform::x11
