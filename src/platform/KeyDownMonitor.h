// Taking the key-downs that are meant for this program's own windows.
//
// Threads: main thread. Failure: a null subscription when the monitor cannot be had.
#pragma once

#include "platform/EventTap.h"
#include "platform/Subscription.h"

#include <functional>

namespace skylet::platform {

class KeyDownMonitor {
  public:
    // `event.flags` may hold more than the four modifiers of shortcuts.
    using Handler = std::function<void(const KeyEvent& event)>;

    virtual ~KeyDownMonitor() = default;
    // Every key-down goes to `handler` instead of the window while the subscription lives. Modifier keys are
    // no key-downs of their own; they and keys without a virtual key code are taken without a call. The
    // handler may end the subscription.
    [[nodiscard]] virtual Subscription addLocalMonitorForKeyDown(Handler handler) = 0;
};

} // namespace skylet::platform
