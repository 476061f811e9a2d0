// The keyboard side of the simulated desktop: the event tap, and the permission to post events.
#pragma once

#include "platform/EventPoster.h"
#include "platform/EventTap.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace skylet::sim {

struct SimEventTap final : platform::EventTap {
    bool canCreate = true;
    bool permitted = true;
    bool keyIsFree = true;
    bool enabled = false;
    std::optional<std::string> reason;
    std::vector<std::pair<std::uint16_t, std::uint64_t>> wantedKeys;
    int attempts = 0;

    // The user presses a key; answers whether it was swallowed.
    bool press(std::int64_t keyCode, std::uint64_t flags) {
        return enabled && callback_(platform::TapEventType::keyDown, {.keyCode = keyCode, .flags = flags});
    }
    // The system disables the tap and says so; answers whether that notice was swallowed.
    bool disable(platform::TapEventType notice) {
        enabled = false;
        return callback_(notice, {});
    }

    bool setWantedKey(std::uint16_t keyCode, std::uint64_t flags) override {
        wantedKeys.emplace_back(keyCode, flags);
        return !callback_ || keyIsFree;
    }
    bool create(Callback callback) override {
        ++attempts;
        if (canCreate) {
            callback_ = std::move(callback);
        }
        return canCreate;
    }
    bool exists() const override { return static_cast<bool>(callback_); }
    void setEnabled(bool value) override { enabled = value; }
    std::optional<std::string> failureReason() const override { return reason; }
    std::optional<platform::KeyRefusal> refusal() const override {
        return keyIsFree ? std::nullopt : std::optional(platform::KeyRefusal::heldByAnotherProgram);
    }
    bool mayCreate() const override { return permitted; }
    bool preflightListenAccess() override { return permitted; }

    Callback callback_;
};

struct SimEventPoster final : platform::EventPoster {
    bool permitted = true;
    bool grantsOnRequest = false;
    std::vector<std::pair<platform::SyntheticEvent, platform::ProcessID>> posted;
    std::size_t requests = 0;

    void postToPid(const platform::SyntheticEvent& event, platform::ProcessID pid) override {
        posted.emplace_back(event, pid);
    }
    bool preflightPostAccess() override { return permitted; }
    bool requestPostAccess() override {
        ++requests;
        permitted = permitted || grantsOnRequest;
        return permitted;
    }
};

} // namespace skylet::sim
