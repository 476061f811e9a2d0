// What the settings see of the simulated desktop: notices, key-downs of this program's windows, the login
// item.
#pragma once

#include "foundation/Notice.h"
#include "platform/KeyDownMonitor.h"
#include "platform/LoginItem.h"
#include "platform/Notifications.h"
#include "platform/OwnWindows.h"
#include "settings/Binding.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace skylet::sim {

// What the settings keep in a plain variable.
template <class T>
Binding<T> bound(T& variable) {
    return {.get = [&variable] { return variable; },
            .set =
                [&variable](T value) {
                    variable = value;
                }};
}

struct SimNotifications final : platform::Notifications {
    void becomeActive() { active_.post(); }
    void announce(const std::string& name) { distributed_[name].post(); }

    platform::Subscription observeDidBecomeActive(std::function<void()> notice) override {
        return active_.observe(std::move(notice));
    }
    platform::Subscription observeDistributed(std::string_view name, std::function<void()> notice) override {
        return distributed_[std::string(name)].observe(std::move(notice));
    }

    Notice<> active_;
    std::map<std::string, Notice<>> distributed_;
};

struct SimKeyDownMonitor final : platform::KeyDownMonitor {
    // The user presses a key in one of the windows; answers whether a monitor took it.
    bool press(std::int64_t keyCode, std::uint64_t flags = 0) {
        const auto handler = handler_.lock();
        if (handler != nullptr) {
            (*handler)({.keyCode = keyCode, .flags = flags});
        }
        return handler != nullptr;
    }
    [[nodiscard]] bool isInstalled() const { return !handler_.expired(); }

    platform::Subscription addLocalMonitorForKeyDown(Handler handler) override {
        struct Installed final : platform::SubscriptionBase {
            std::shared_ptr<const Handler> handler;
        };
        auto installed = std::make_unique<Installed>();
        handler_ = installed->handler = std::make_shared<const Handler>(std::move(handler));
        return installed;
    }

    std::weak_ptr<const Handler> handler_;
};

struct SimLoginItem final : platform::LoginItem {
    bool enabled = false;
    bool refuses = false;

    bool isEnabled() const override { return enabled; }
    bool registerItem() override {
        enabled = enabled || !refuses;
        return !refuses;
    }
    bool unregisterItem() override {
        enabled = enabled && refuses;
        return !refuses;
    }
};

struct SimOwnWindows final : platform::OwnWindows {
    std::vector<platform::NativeWindow> brought;

    void bringToActiveSpace(platform::NativeWindow window) override { brought.push_back(window); }
};

} // namespace skylet::sim
