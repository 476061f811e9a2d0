// A list of callbacks behind Subscriptions.
//
// Threads: one. A callback may end any subscription of the list, its own included, and may begin new ones;
// those are called from the next notice on. Subscriptions may outlive the list.
#pragma once

#include "platform/Subscription.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace skylet::platform::qt {

template <class... Args>
class Observers {
  public:
    using Callback = std::function<void(Args...)>;

    [[nodiscard]] Subscription add(Callback callback) {
        return std::make_unique<Entry>(list_, std::move(callback));
    }
    [[nodiscard]] bool isEmpty() const { return list_->empty(); }

    void notify(Args... args) const {
        const auto list = list_; // this object may go while a callback runs
        const std::vector<Shared> present(*list);
        for (const Shared& callback : present) {
            if (std::find(list->begin(), list->end(), callback) != list->end()) {
                (*callback)(args...);
            }
        }
    }

  private:
    using Shared = std::shared_ptr<const Callback>;
    using List = std::vector<Shared>;

    class Entry : public SubscriptionBase {
      public:
        Entry(std::shared_ptr<List> list, Callback callback)
            : list_(std::move(list))
            , callback_(std::make_shared<const Callback>(std::move(callback))) {
            list_->push_back(callback_);
        }
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;
        ~Entry() override { std::erase(*list_, callback_); }

      private:
        std::shared_ptr<List> list_;
        Shared callback_;
    };

    std::shared_ptr<List> list_ = std::make_shared<List>();
};

} // namespace skylet::platform::qt
