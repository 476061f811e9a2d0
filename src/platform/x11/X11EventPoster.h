// Posting input events to windows of other processes.
#pragma once

#include "platform/EventPoster.h"
#include "platform/x11/Connection.h"

namespace skylet::platform::x11 {

class X11EventPoster : public EventPoster {
  public:
    explicit X11EventPoster(const Connection& connection) : connection_(connection) {}

    // Whether the server can make events at all; it asks for no permission.
    [[nodiscard]] bool preflightPostAccess() override {
        return connection_.extensions().xtest && connection_.extensions().xinput;
    }

    bool requestPostAccess() override { return preflightPostAccess(); }

  private:
    const Connection& connection_;
};

} // namespace skylet::platform::x11
