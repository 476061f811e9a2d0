// The event tap for one key-down at a time, by a passive key grab on the root.
//
// The server gives a grabbed key to nobody else, so every delivered key-down is swallowed whatever the
// callback answers; that is no loss, because only the wanted one is asked for. Disabled, nothing is grabbed.
// Threads: main thread. Failure: see failureReason.
#pragma once

#include "platform/EventTap.h"
#include "platform/x11/Connection.h"
#include "platform/x11/KeyGrab.h"
#include "platform/x11/ModifierMap.h"

#include <memory>

namespace skylet::platform::x11 {

class X11EventTap : public EventTap {
  public:
    explicit X11EventTap(Connection& connection);

    bool setWantedKey(std::uint16_t keyCode, std::uint64_t flags) override;
    [[nodiscard]] bool create(Callback callback) override;
    [[nodiscard]] bool exists() const override { return callback_ != nullptr; }
    void setEnabled(bool enabled) override;
    [[nodiscard]] std::optional<std::string> failureReason() const override { return failureReason_; }
    [[nodiscard]] std::optional<KeyRefusal> refusal() const override { return refusal_; }

    // The X server asks for no permission.
    [[nodiscard]] bool mayCreate() const override { return true; }
    [[nodiscard]] bool preflightListenAccess() override { return true; }

  private:
    // Grabs the wanted key anew; false, with the reason, when it cannot be had.
    bool grab();
    bool refuse(KeyRefusal refusal, std::string reason);
    void handleKey(const xcb_generic_event_t& event);
    void handleMapping(const xcb_generic_event_t& event);
    [[nodiscard]] std::string wantedInWords();

    Connection& connection_;
    ModifierMap modifiers_;
    std::uint16_t wantedKey_ = 0;
    std::uint64_t wantedFlags_ = 0;
    bool enabled_ = false;
    bool mappingChanged_ = false;
    Callback callback_;
    std::unique_ptr<KeyGrab> grab_;
    std::optional<std::string> failureReason_;
    std::optional<KeyRefusal> refusal_;
    Subscription keys_;
    Subscription mapping_;
    Subscription batch_;
};

} // namespace skylet::platform::x11
