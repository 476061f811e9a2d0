// Every key of the preferences store, with its stored type and what its absence means.
//
// There is no registration of defaults: each reader applies its own when a key is absent.
#pragma once

#include <string_view>

namespace skylet::PreferenceKeys {

// bool, false: whether diagnostics are logged. Set by the user outside the program.
constexpr std::string_view debugLogging = "debugLogging";

// integers, 0: the global shortcut; taken only when both are set.
constexpr std::string_view shortcutKeyCode = "shortcutKeyCode";
constexpr std::string_view shortcutModifiers = "shortcutModifiers";

// double, frames per second: the highest capture rate.
constexpr std::string_view captureRate = "captureRate";

// bool; absent means true where posted clicks reach background windows, else false.
constexpr std::string_view forwardEvents = "forwardEvents";

// bool, false: whether new overlays show on every desktop.
constexpr std::string_view pinToAllSpaces = "pinToAllSpaces";

// bool, false: whether the status item's icon has a background.
constexpr std::string_view menuBarPillEnabled = "menuBarPillEnabled";

// Legacy, any type: removed once, see LegacyPreferences.h.
constexpr std::string_view menuBarPillColor = "menuBarPillColor";
// bool, false: whether the legacy key was removed.
constexpr std::string_view didMigratePillColorV2 = "didMigratePillColorV2";

// bool, false: whether the user was ever asked for accessibility trust.
constexpr std::string_view didPromptForAccessibilityStableIdentity =
    "didPromptForAccessibilityStableIdentity";

// bool, false (status item shown); followed by the bundle identifier.
constexpr std::string_view statusItemHiddenPrefix = "ZentroStatusItemVisibility.Hidden.";

// data, UTF-8 JSON: the hotkeys published for other programs.
constexpr std::string_view registeredHotkeys = "ZentroRegisteredHotkeys";

} // namespace skylet::PreferenceKeys
