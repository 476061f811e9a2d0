#include "platform/x11/PostingRepair.h"

#include "platform/x11/InputHoles.h"
#include "platform/x11/SecondPointer.h"

#include <chrono>
#include <thread>

namespace skylet::platform::x11 {

namespace {

constexpr xcb_keycode_t escapeKey = 9; // evdev code 1 and the offset of 8
// Toolkits that still think a button of a device is down fail when the device goes.
constexpr std::chrono::milliseconds settling{100};

SecondPointerDevices repair(Connection& connection) {
    InputHoles::repair(connection);
    const SecondPointerDevices devices = findSecondPointer(connection);
    if (devices.isComplete()) {
        SecondPointer pointer(connection, devices);
        pointer.releaseAllButtons();
        pointer.unlockModifiers();
        pointer.tapKey(escapeKey);
    }
    connection.flush();
    return devices;
}

} // namespace

void repairPosting(Connection& connection) {
    if (connection.extensions().xtest && connection.extensions().xinput) {
        repair(connection);
    }
}

void cleanUpAfterPosting(Connection& connection) {
    if (!connection.extensions().xtest || !connection.extensions().xinput) {
        return;
    }
    const SecondPointerDevices devices = repair(connection);
    if (devices.pointer != 0) {
        // The round trip brings the releases before the wait.
        connection.ask<xcb_get_input_focus, xcb_get_input_focus_reply>().get();
        std::this_thread::sleep_for(settling);
        SecondPointer::remove(connection, devices.pointer);
        connection.ask<xcb_get_input_focus, xcb_get_input_focus_reply>().get();
    }
}

} // namespace skylet::platform::x11
