// The root's children, back to front, and what each of them is: a window's frame, a menu, a helper.
//
// Kept from the root's events; the order itself is read afresh when something about it changed.
//
// Coordinates: root coordinates. Threads: main thread. Failure: windows that vanish while they are read are
// left out; the event about their end follows.
#pragma once

#include "platform/x11/Connection.h"
#include "platform/x11/PixelRect.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace skylet::platform::x11 {

class StackModel {
  public:
    struct Child {
        xcb_window_t window = XCB_WINDOW_NONE;
        PixelRect rect;
        bool overrideRedirect = false;
        bool inputOnly = false;
        bool mapped = false;
        // Stands for client windows: a frame, a window without a frame, a dock.
        bool managed = false;
        // The client window in it, if the window manager lists one.
        xcb_window_t client = XCB_WINDOW_NONE;
        bool desktop = false; // of desktop type
        bool hidden = false;  // _NET_WM_STATE_HIDDEN
    };

    explicit StackModel(Connection& connection) : connection_(connection) {}

    // Follows the root's events from here on, and no more after `stop`.
    void start();
    void stop();
    // Whether events came that may change what `refresh` gives, or another window's place on the desktop.
    [[nodiscard]] bool isStale() const { return stale_; }
    // Up to four round trips when windows came or went, one when only the order may have changed, none
    // otherwise.
    void refresh();

    // Back to front. Valid until the next refresh.
    [[nodiscard]] const std::vector<Child>& children() const { return children_; }
    [[nodiscard]] std::optional<std::uint32_t> currentDesktop() const { return currentDesktop_; }

  private:
    struct Known {
        PixelRect rect;
        bool overrideRedirect = false;
        bool inputOnly = false;
        bool mapped = false;
        bool tilingFrame = false; // an override-redirect frame, known by its class
    };
    void handle(const xcb_generic_event_t& event);
    void readOrder();
    void readNewChildren(const std::vector<xcb_window_t>& order);
    void readClients();
    void compose(const std::vector<xcb_window_t>& order);

    Connection& connection_;
    Subscription events_;
    bool stale_ = true;
    bool orderStale_ = true;
    bool clientsStale_ = true;
    std::vector<xcb_window_t> order_;
    std::unordered_map<xcb_window_t, Known> known_;
    std::unordered_map<xcb_window_t, xcb_window_t> frameOf_; // client -> child of the root
    std::unordered_set<xcb_window_t> desktopClients_;
    std::unordered_set<xcb_window_t> hiddenClients_;
    std::optional<std::uint32_t> currentDesktop_;
    std::vector<Child> children_;
};

} // namespace skylet::platform::x11
