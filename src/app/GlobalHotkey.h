// The system-wide shortcut: an event tap that swallows one key-down and runs one action for it.
//
// Waiting (no tap, a retry every 2 s) -> active (tap exists); there is no way back. A change of the shortcut
// never makes the tap anew. Holding the shortcut runs the action again on every repeated key-down. Threads:
// main thread. Failure: a tap that cannot be had is logged and tried again; its reason, where the user can do
// something about it, is reported once. Impossible stored values are fatal.
#pragma once

#include "foundation/DiagnosticsLog.h"
#include "foundation/Lifetime.h"
#include "platform/Accessibility.h"
#include "platform/Defaults.h"
#include "platform/EventTap.h"
#include "platform/InputEvent.h"
#include "platform/Queues.h"

#include <cstdint>
#include <functional>
#include <string>

namespace skylet {

// How the program speaks to its user and ends.
struct AppCallbacks {
    // Shows one English sentence to the user.
    std::function<void(const std::string& message)> reportToUser;
    // Ends the program at once with the message; must not return.
    std::function<void(const std::string& message)> fatal;
    // Asks the application to terminate.
    std::function<void()> terminate;
    // Bring the program's windows forward. Empty: there is no such window.
    std::function<void()> openSettings{};
    std::function<void()> openAbout{};
};

// What the hotkey needs of the rest of the program; must outlive it.
struct HotkeyEnvironment {
    platform::EventTap& eventTap;
    platform::Accessibility& accessibility;
    platform::Defaults& defaults;
    platform::MainQueue& mainQueue;
    DiagnosticsLog& log;
};

class GlobalHotkey {
  public:
    // `hotkeyAction` runs on the main queue for every key-down of the shortcut.
    GlobalHotkey(const HotkeyEnvironment& environment, const AppCallbacks& callbacks,
                 std::function<void()> hotkeyAction);

    [[nodiscard]] std::uint16_t shortcutKeyCode() const { return shortcutKeyCode_; }
    [[nodiscard]] std::uint64_t shortcutModifiers() const { return shortcutModifiers_; }
    // Takes effect with `saveShortcut`. Both zero: no shortcut.
    void setShortcut(std::uint16_t keyCode, std::uint64_t modifiers);

    // Takes the stored pair if both values are set, else keeps the built-in one (Control-Command-P).
    void loadShortcut();
    void saveShortcut();
    void republishHotkey();
    void registerHotkey();
    [[nodiscard]] std::string shortcutDisplayString() const;

    // Ends the retry and disables the tap.
    void shutDown();

  private:
    [[nodiscard]] bool tryCreateEventTap();
    [[nodiscard]] bool hotkeyTapCallback(platform::TapEventType type, const platform::KeyEvent& event);
    void retry();
    bool activateShortcut();
    void reportFailureReason();
    [[noreturn]] void fail(const std::string& message) const;

    HotkeyEnvironment environment_;
    const AppCallbacks& callbacks_;
    std::function<void()> hotkeyAction;
    std::uint16_t shortcutKeyCode_;
    std::uint64_t shortcutModifiers_;
    std::uint16_t activeKeyCode_ = 0;
    std::uint64_t activeFlags_ = 0;
    std::string reportedReason_;
    platform::TimerRef permissionTimer;
    Lifetime lifetime_;
};

} // namespace skylet
