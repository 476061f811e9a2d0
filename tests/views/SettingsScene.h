// The settings window over the simulated desktop.
#pragma once

#include "ViewTest.h"
#include "foundation/Geometry.h"
#include "platform/qt/QtKeyDownMonitor.h"
#include "settings/views/SettingsWindow.h"
#include "settings/views/SkyletSettingsContent.h"
#include "support/SimSettings.h"
#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace skylet::test {

class SettingsScene : public testing::Test {
  protected:
    static constexpr std::uint64_t shift = 0x20000, control = 0x40000, option = 0x80000, command = 0x100000;

    SettingsScene() {
        desktop.screens.all = {{.frame = {0, 0, 800, 1600}, .visibleFrame = {0, 0, 800, 1600}}};
        static_cast<void>(
            desktop.eventTap.create([](platform::TapEventType, const platform::KeyEvent&) { return true; }));
        desktop.eventTap.setEnabled(true);
    }

    // Opens the window, or opens it again.
    QWidget& open() {
        settings.showWindow({.appName = QStringLiteral("Skylet"), .showsLaunchAtLogin = true}, [this] {
            ++contents;
            return new SkyletSettingsContent(subjects());
        });
        settings.widget()->activateWindow();
        settle();
        desktop.advance(0.3);
        settle();
        return *settings.widget();
    }

    [[nodiscard]] bool shows(const char* text) {
        return std::ranges::count(textsOf(*settings.widget()), text) > 0;
    }
    [[nodiscard]] bool isHidden() const { return desktop.defaults.readBool("hidden").value; }
    [[nodiscard]] SettingsSubjects subjects() {
        return {
            .tracker = tracker,
            .defaults = desktop.defaults,
            .mainQueue = desktop.mainQueue,
            .accessibility = desktop.accessibility,
            .screenCapture = desktop.capture,
            .eventPoster = desktop.eventPoster,
            .workspace = desktop.workspace,
            .notifications = notifications,
            .keyDownMonitor = monitor,
            .allowAccessibility = [this] { ++allowed; },
            .shortcut = {.label = "Fissa o sblocca la finestra",
                         .keyCode = sim::bound(keyCode),
                         .modifiers = sim::bound(modifiers),
                         .displayString = [this] { return keyCode == 0 ? "Non impostata" : "⌃⌘P"; },
                         .onChanged = [this] { ++saves; },
                         .onClear = [this] { keyCode = 0, modifiers = 0; },
                         .eventTapToDisable = &desktop.eventTap,
                         .onRecordingChanged = {},
                         .refusal =
                             [this] {
                                 return desktop.eventTap.refusal();
                             }},
            .statusItem = {.isVisible = [this] { return !isHidden(); },
                           .setVisible =
                               [this](bool on) {
                                   desktop.defaults.setBool("hidden", !on);
                               }},
            .updateIcon = [this] { ++iconUpdates; },
            .bundle = bundle,
        };
    }

    sim::SimulatedDesktop desktop;
    OverlayInputRoutes routes;
    PinnedWindowTracker tracker{desktop.environment, routes};
    sim::SimNotifications notifications;
    sim::SimLoginItem loginItem;
    sim::SimOwnWindows ownWindows;
    // Scan codes stand for the virtual key codes here, and 0 for a key that is none.
    platform::qt::QtKeyDownMonitor monitor{[](quint32 scanCode, quint32 state) {
        return scanCode == 0 ? std::nullopt
                             : std::optional(platform::KeyEvent{.keyCode = scanCode, .flags = state});
    }};
    std::uint16_t keyCode = 35;
    std::uint64_t modifiers = control | command;
    int saves = 0;
    std::size_t allowed = 0;
    int iconUpdates = 0;
    int contents = 0;
    BundleInfo bundle{.name = "Skylet", .shortVersion = "1.2.3"};
    SettingsWindow settings{{desktop.mainQueue, desktop.screens, ownWindows, loginItem}, bundle};
};

} // namespace skylet::test
