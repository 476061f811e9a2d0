// Notices about this program and about the system.
//
// Threads: main thread; notices are delivered there, never inside a call. Failure: a notice that the platform
// does not know never comes.
#pragma once

#include "platform/Subscription.h"

#include <functional>
#include <string_view>

namespace skylet::platform {

class Notifications {
  public:
    virtual ~Notifications() = default;

    // This program became the one that the user works in.
    [[nodiscard]] virtual Subscription observeDidBecomeActive(std::function<void()> notice) = 0;
    // Something that the system announces to every program, by its name there.
    [[nodiscard]] virtual Subscription observeDistributed(std::string_view name,
                                                          std::function<void()> notice) = 0;
};

} // namespace skylet::platform
