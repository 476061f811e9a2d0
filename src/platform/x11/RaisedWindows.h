// Which window of an application was raised last, so that bringing the application forward brings that one.
//
// Raising a window and activating its application are two steps; window managers know only one for both, the
// activation of a window. Threads: any.
#pragma once

#include "platform/Types.h"

#include <xcb/xcb.h>

#include <mutex>
#include <unordered_map>

namespace skylet::platform::x11 {

class RaisedWindows {
  public:
    void record(ProcessID pid, xcb_window_t window) {
        const std::lock_guard lock(mutex_);
        windows_.insert_or_assign(pid, window);
    }
    // Tells it once: an activation long after has nothing to do with the raise.
    [[nodiscard]] xcb_window_t take(ProcessID pid) {
        const std::lock_guard lock(mutex_);
        const auto node = windows_.extract(pid);
        return node ? node.mapped() : xcb_window_t{XCB_WINDOW_NONE};
    }

  private:
    std::mutex mutex_;
    std::unordered_map<ProcessID, xcb_window_t> windows_;
};

} // namespace skylet::platform::x11
