// Which process a window belongs to.
//
// The X server itself knows the process at the other end of a local connection; what the client claims in
// _NET_WM_PID counts only where the server has no answer (a client that connected over the network, a server
// without X-Resource 1.2), because it may be missing or from another process namespace.
//
// Threads: main thread. Failure: a window whose process is not known is left out.
#pragma once

#include "platform/Types.h"
#include "platform/x11/Property.h"

#include <xcb/res.h>

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace skylet::platform::x11 {

// Asked at construction in one request for all windows; `read` waits for the answer, once.
class PendingClientPids {
  public:
    PendingClientPids(Connection& connection, std::span<const xcb_window_t> windows);

    [[nodiscard]] std::unordered_map<xcb_window_t, ProcessID> read();

  private:
    Connection& connection_;
    std::vector<xcb_window_t> windows_;
    Pending<xcb_res_query_client_ids_reply> ids_;
    std::vector<PendingProperty> claims_; // one per window where the server is not asked, else empty
};

[[nodiscard]] std::unordered_map<xcb_window_t, ProcessID> clientPids(Connection& connection,
                                                                     std::span<const xcb_window_t> windows);
// One round trip for one window.
[[nodiscard]] std::optional<ProcessID> clientPid(Connection& connection, xcb_window_t window);

} // namespace skylet::platform::x11
