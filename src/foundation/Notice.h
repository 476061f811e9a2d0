// A notice that several observers can follow.
//
// Threads: one thread only. Observers may come and go during a post; one that goes is not called any more,
// one that comes is first called by the next post.
#pragma once

#include "platform/Subscription.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace skylet {

template <class... Arguments>
class Notice {
  public:
    using Observer = std::function<void(Arguments...)>;

    [[nodiscard]] platform::Subscription observe(Observer observer) {
        auto registered = std::make_shared<const Observer>(std::move(observer));
        observers_.push_back(registered);
        return std::make_unique<Registration>(std::move(registered));
    }

    void post(const Arguments&... arguments) {
        std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
        const auto present = observers_;
        for (const auto& weak : present) {
            if (const auto observer = weak.lock()) {
                (*observer)(arguments...);
            }
        }
    }

  private:
    class Registration final : public platform::SubscriptionBase {
      public:
        explicit Registration(std::shared_ptr<const Observer> observer) : observer_(std::move(observer)) {}

      private:
        std::shared_ptr<const Observer> observer_;
    };

    std::vector<std::weak_ptr<const Observer>> observers_;
};

} // namespace skylet
