// The registration for a notice. Destroying it ends the notices; none arrives afterwards.
#pragma once

#include <memory>

namespace skylet::platform {

class SubscriptionBase {
  public:
    SubscriptionBase() = default;
    SubscriptionBase(const SubscriptionBase&) = delete;
    SubscriptionBase& operator=(const SubscriptionBase&) = delete;
    virtual ~SubscriptionBase() = default;
};

using Subscription = std::unique_ptr<SubscriptionBase>;

} // namespace skylet::platform
