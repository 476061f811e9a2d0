// Posting synthetic input events to other processes.
//
// Threads: main thread. Failure: events that cannot be posted are dropped.
#pragma once

namespace skylet::platform {

class EventPoster {
  public:
    virtual ~EventPoster() = default;
    // The permission to post events.
    [[nodiscard]] virtual bool preflightPostAccess() = 0;
    // Asks the system for the permission; answers whether it is there now.
    virtual bool requestPostAccess() = 0;
};

} // namespace skylet::platform
