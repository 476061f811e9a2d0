// What every copy of the desktop's windows starts from: the window manager's lists and the root's children.
#pragma once

#include "platform/x11/Property.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace skylet::platform::x11 {

// Asked in one go; `read` waits for all of it (one round trip).
class PendingRootState {
  public:
    explicit PendingRootState(Connection& connection);

    struct State {
        std::vector<xcb_window_t> stacking;     // client windows, back to front
        std::vector<xcb_window_t> clients;      // client windows in mapping order
        std::vector<xcb_window_t> children;     // the root's children, back to front
        xcb_window_t wmCheck = XCB_WINDOW_NONE; // claimed by _NET_SUPPORTING_WM_CHECK; may be dead
        std::optional<std::uint32_t> currentDesktop;
    };
    [[nodiscard]] State read();

  private:
    PendingProperty stacking_;
    PendingProperty clients_;
    PendingProperty wmCheck_;
    PendingProperty currentDesktop_;
    Pending<xcb_query_tree_reply> tree_;
};

// Asks the window that claims to stand for the window manager whether it does: a live manager's check window
// names itself, one that died without cleaning up leaves the name of a dead window behind.
[[nodiscard]] PendingProperty askWmCheck(Connection& connection, xcb_window_t wmCheck);
[[nodiscard]] bool isLiveWm(PendingProperty& pending, xcb_window_t wmCheck);

} // namespace skylet::platform::x11
