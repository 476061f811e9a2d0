// A second master pointer and keyboard of our own, made with XInput 2 and driven by XTEST.
//
// Its clicks reach a window like those of a mouse, while the user's pointer, focus and modifiers stay
// untouched. When idle it is parked over a window of ours that listens to nothing.
//
// Everything here only queues requests; the caller decides when they go out together. Coordinates: root
// coordinates. Threads: main thread. Failure: `acquire` answers null where no second master can be had.
#pragma once

#include "platform/x11/PixelRect.h"
#include "platform/x11/XId.h"

#include <xcb/xinput.h>

#include <cstdint>
#include <memory>

namespace skylet::platform::x11 {

// The device ids of a master pair and of the XTEST devices under it; 0 where missing.
struct SecondPointerDevices {
    std::uint16_t pointer = 0;
    std::uint16_t keyboard = 0;
    std::uint16_t testPointer = 0;
    std::uint16_t testKeyboard = 0;
    [[nodiscard]] bool isComplete() const { return pointer && keyboard && testPointer && testKeyboard; }
};

// One round trip each.
[[nodiscard]] SecondPointerDevices findSecondPointer(Connection& connection);
[[nodiscard]] std::uint16_t clientPointer(Connection& connection, xcb_window_t window);

// The highest button of an XTEST pointer.
constexpr std::uint8_t spareButton = 10;

class SecondPointer {
  public:
    // Adopts a pair that an earlier run left behind, else makes one.
    [[nodiscard]] static std::unique_ptr<SecondPointer> acquire(Connection& connection);
    // For repairs: drives devices that exist, parks nowhere and removes nothing.
    SecondPointer(Connection& connection, const SecondPointerDevices& devices)
        : connection_(connection)
        , devices_(devices) {}
    SecondPointer(const SecondPointer&) = delete;
    SecondPointer& operator=(const SecondPointer&) = delete;
    ~SecondPointer() = default;

    [[nodiscard]] std::uint16_t pointerDevice() const { return devices_.pointer; }

    void warp(int x, int y);
    // A warp that no window learns of: while the device is grabbed nothing is entered, so that no focus
    // follows.
    void warpUnnoticed(int x, int y);
    void press(std::uint8_t button);
    void release(std::uint8_t button);
    // Blindly: the server does not show all of them as down.
    void releaseAllButtons();
    // Passive button grabs (click to focus) are looked up only for the first button that goes down on a
    // device. The spare button is that one; pressed while parked, no window hears of it.
    void pressSpare() { press(spareButton); }
    void releaseSpare() { release(spareButton); }
    void park();
    // Keeps the user's pointer from entering what a hole uncovers under it, where the focus would follow it.
    // Not while a button of it is down: its grab is the protection then, and would be lost.
    void holdUserPointer() { beginGrab(userPointer_); }
    void freeUserPointer() { endGrab(userPointer_); }
    void lockModifiers(std::uint16_t state);
    void unlockModifiers() { lockModifiers(0); }
    void tapKey(xcb_keycode_t keyCode);
    // The client of `window` takes this pointer for its own when it asks without naming a device.
    void becomeClientPointer(xcb_window_t window);
    void giveClientPointer(xcb_window_t window, std::uint16_t device);
    // Shows no cursor of this pointer over `window`, or the window's own again.
    void hideCursorOver(xcb_window_t window);
    void showCursorOver(xcb_window_t window);

    // Removes the pair. Buttons must be up for a while, or toolkits that still hold them fail.
    static void remove(Connection& connection, std::uint16_t pointerDevice);

  private:
    void makePark();
    void muteSpare();
    void fake(std::uint8_t type, std::uint8_t detail, std::uint16_t device);
    void beginGrab(std::uint16_t device);
    void endGrab(std::uint16_t device);

    Connection& connection_;
    SecondPointerDevices devices_;
    std::uint16_t userPointer_ = 0;
    WindowId park_;
    XId<xcb_free_cursor> blankCursor_;
    int parkX_ = 0;
    int parkY_ = 0;
};

} // namespace skylet::platform::x11
