#include "app/GlobalHotkey.h"

#include "app/KeyNames.h"
#include "foundation/PreferenceKeys.h"
#include "foundation/Text.h"
#include "settings/ZentroHotkeyRegistry.h"

#include <array>
#include <cstdlib>
#include <limits>
#include <utility>

namespace skylet {

namespace {

namespace Modifier = platform::ModifierFlags;

constexpr std::uint16_t keyP = 35;
constexpr double permissionRetrySeconds = 2.0;

} // namespace

GlobalHotkey::GlobalHotkey(const HotkeyEnvironment& environment, const AppCallbacks& callbacks,
                           std::function<void()> action)
    : environment_(environment)
    , callbacks_(callbacks)
    , hotkeyAction(std::move(action))
    , shortcutKeyCode_(keyP)
    , shortcutModifiers_(Modifier::command | Modifier::control) {}

void GlobalHotkey::setShortcut(std::uint16_t keyCode, std::uint64_t modifiers) {
    shortcutKeyCode_ = keyCode;
    shortcutModifiers_ = modifiers;
}

void GlobalHotkey::loadShortcut() {
    const auto keyCode = environment_.defaults.readInteger(PreferenceKeys::shortcutKeyCode).valueOr(0);
    const auto modifiers = environment_.defaults.readInteger(PreferenceKeys::shortcutModifiers).valueOr(0);
    if (keyCode == 0 || modifiers == 0) {
        return;
    }
    if (keyCode < 0 || keyCode > std::numeric_limits<std::uint16_t>::max()) {
        fail("the stored preference shortcutKeyCode is not between 0 and 65535: " + std::to_string(keyCode));
    }
    if (modifiers < 0) {
        fail("the stored preference shortcutModifiers is negative: " + std::to_string(modifiers));
    }
    setShortcut(static_cast<std::uint16_t>(keyCode), static_cast<std::uint64_t>(modifiers));
}

void GlobalHotkey::saveShortcut() {
    constexpr std::uint64_t highest = std::numeric_limits<std::int64_t>::max();
    if (shortcutModifiers_ > highest) {
        fail("the shortcut's modifiers cannot be stored: " + std::to_string(shortcutModifiers_));
    }
    environment_.defaults.setInteger(PreferenceKeys::shortcutKeyCode, shortcutKeyCode_);
    environment_.defaults.setInteger(PreferenceKeys::shortcutModifiers,
                                     static_cast<std::int64_t>(shortcutModifiers_));
    if (!activateShortcut()) {
        reportFailureReason();
    }
    if (permissionTimer != nullptr) {
        retry(); // the new one may be free where the former one was not
    }
    republishHotkey();
}

void GlobalHotkey::republishHotkey() {
    if (shortcutKeyCode_ == 0 && shortcutModifiers_ == 0) {
        ZentroHotkeyRegistry::publish(environment_.defaults, {});
        return;
    }
    ZentroHotkeyRegistry::publish(environment_.defaults,
                                  {{.actionTitle = "Fissa o sblocca finestra",
                                    .keyCode = shortcutKeyCode_,
                                    .modifiers = shortcutModifiers_,
                                    .activeContext = ZentroHotkey::ActiveContext::anywhere}});
}

void GlobalHotkey::registerHotkey() {
    activateShortcut();
    if (tryCreateEventTap()) {
        return;
    }
    wplog(environment_.log,
          [] { return std::string("registerHotkey: waiting for Accessibility permission…"); });
    permissionTimer =
        environment_.mainQueue.every(permissionRetrySeconds, lifetime_.guard([this] { retry(); }));
}

void GlobalHotkey::retry() {
    if (!environment_.eventTap.mayCreate()) {
        return;
    }
    wplog(environment_.log, [] { return std::string("registerHotkey: permission granted, retrying tap…"); });
    if (tryCreateEventTap()) {
        permissionTimer.reset();
    }
}

bool GlobalHotkey::tryCreateEventTap() {
    platform::EventTap& tap = environment_.eventTap;
    if (tap.exists()) {
        return true;
    }
    const bool created =
        tap.create(lifetime_.guard([this](platform::TapEventType type, const platform::KeyEvent& event) {
            return hotkeyTapCallback(type, event);
        }));
    if (!created) {
        wplog(environment_.log, [&] {
            return std::string("tryCreateEventTap: CGEvent.tapCreate failed (trusted=") +
                   formatBool(environment_.accessibility.isProcessTrusted()) + ")";
        });
        reportFailureReason();
        return false;
    }
    tap.setEnabled(true);
    wplog(environment_.log, [&] {
        return "tryCreateEventTap: SUCCESS — hotkey active for keyCode=" + std::to_string(shortcutKeyCode_);
    });
    return true;
}

bool GlobalHotkey::hotkeyTapCallback(platform::TapEventType type, const platform::KeyEvent& event) {
    if (type == platform::TapEventType::disabledByTimeout ||
        type == platform::TapEventType::disabledByUserInput) {
        if (environment_.eventTap.exists()) {
            environment_.eventTap.setEnabled(true);
        }
        return false;
    }
    const bool isSet = activeKeyCode_ != 0 || (activeFlags_ & Modifier::shortcutMask) != 0;
    if (type != platform::TapEventType::keyDown || !isSet || event.keyCode != activeKeyCode_ ||
        (event.flags & Modifier::shortcutMask) != (activeFlags_ & Modifier::shortcutMask)) {
        return false;
    }
    // The system waits for the answer, so the action runs later.
    environment_.mainQueue.async(lifetime_.guard([this] { hotkeyAction(); }));
    return true;
}

// Makes the tap look for the present pair; answers whether it can be had.
bool GlobalHotkey::activateShortcut() {
    activeKeyCode_ = shortcutKeyCode_;
    activeFlags_ = shortcutModifiers_ & Modifier::shortcutMask;
    return environment_.eventTap.setWantedKey(activeKeyCode_, activeFlags_);
}

void GlobalHotkey::reportFailureReason() {
    const auto reason = environment_.eventTap.failureReason();
    if (!reason || *reason == reportedReason_) {
        return;
    }
    reportedReason_ = *reason;
    wplog(environment_.log, [&] { return "registerHotkey: " + *reason; });
    if (callbacks_.reportToUser) {
        callbacks_.reportToUser(*reason);
    }
}

std::string GlobalHotkey::shortcutDisplayString() const {
    if (shortcutKeyCode_ == 0 && shortcutModifiers_ == 0) {
        return "Non impostata";
    }
    constexpr std::array<std::pair<std::uint64_t, const char*>, 4> symbols{{
        {Modifier::control, "⌃"},
        {Modifier::option, "⌥"},
        {Modifier::shift, "⇧"},
        {Modifier::command, "⌘"},
    }};
    std::string text;
    for (const auto& [flag, symbol] : symbols) {
        if ((shortcutModifiers_ & flag) != 0) {
            text += symbol;
        }
    }
    const std::string_view name = keyName(shortcutKeyCode_);
    return name.empty() ? text + "?" + std::to_string(shortcutKeyCode_) : text.append(name);
}

void GlobalHotkey::shutDown() {
    permissionTimer.reset();
    if (environment_.eventTap.exists()) {
        environment_.eventTap.setEnabled(false);
    }
}

void GlobalHotkey::fail(const std::string& message) const {
    callbacks_.fatal(message);
    // A callback that came back would leave a program that is half started.
    std::abort();
}

} // namespace skylet
