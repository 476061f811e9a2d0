// A tap that sees global key-downs and may swallow them.
//
// Threads: main thread. Failure: `create` answers false.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace skylet::platform {

enum class TapEventType : std::uint32_t {
    keyDown = 10,
    disabledByTimeout = 0xFFFFFFFE,
    disabledByUserInput = 0xFFFFFFFF,
};

// Why a key-down cannot be had.
enum class KeyRefusal {
    heldByAnotherProgram,
    notOnKeyboard, // no such key, or no such modifier
};

struct KeyEvent {
    std::int64_t keyCode = 0; // virtual key code
    std::uint64_t flags = 0;  // event flags, see ModifierFlags
};

class EventTap {
  public:
    // True swallows the event.
    using Callback = std::function<bool(TapEventType, const KeyEvent&)>;

    virtual ~EventTap() = default;

    // Tells which key-down is wanted. A platform that sees every key ignores it; one that has to ask for
    // single keys asks for this one, at `create` and, once created, at once. Key code and flags both zero:
    // none. Answers whether the key-down can be had (always true before `create`).
    virtual bool setWantedKey(std::uint16_t keyCode, std::uint64_t flags) = 0;

    // Creates the tap, disabled. False when it cannot be had now; `failureReason` then tells the user why.
    [[nodiscard]] virtual bool create(Callback callback) = 0;
    [[nodiscard]] virtual bool exists() const = 0;
    virtual void setEnabled(bool enabled) = 0;
    // One English sentence with the way out, or nothing when there is nothing the user could do.
    [[nodiscard]] virtual std::optional<std::string> failureReason() const = 0;

    // Why the wanted key-down cannot be had; nothing when it can.
    [[nodiscard]] virtual std::optional<KeyRefusal> refusal() const = 0;

    // Whether a retry of `create` makes sense: the permission that the platform asks for a tap, if any.
    [[nodiscard]] virtual bool mayCreate() const = 0;

    // The permission to listen to key events.
    [[nodiscard]] virtual bool preflightListenAccess() = 0;
};

} // namespace skylet::platform
