#include "app/views/ProgramWindows.h"

#include "foundation/Product.h"

#include <utility>

namespace skylet {

ProgramWindows::ProgramWindows(Services services)
    : services_(std::move(services))
    , settings_({services_.mainQueue, services_.screens, services_.ownWindows, services_.loginItem},
                services_.bundle)
    , about_(services_.ownWindows, services_.bundle) {}

void ProgramWindows::openSettings() {
    settings_.showWindow({.appName = QString::fromLatin1(productName), .showsLaunchAtLogin = true},
                         [this] { return new SkyletSettingsContent(subjects()); });
}

void ProgramWindows::openAbout() {
    about_.showWindow(QString::fromLatin1(productName));
}

SettingsSubjects ProgramWindows::subjects() const {
    ZentroStatusItemVisibility& statusItem = services_.delegate.statusItemVisibility();
    return {
        .tracker = services_.delegate.tracker(),
        .defaults = services_.defaults,
        .mainQueue = services_.mainQueue,
        .accessibility = services_.accessibility,
        .screenCapture = services_.screenCapture,
        .eventPoster = services_.eventPoster,
        .workspace = services_.workspace,
        .notifications = services_.notifications,
        .keyDownMonitor = services_.keyDownMonitor,
        .allowAccessibility = services_.allowAccessibility,
        .shortcut = shortcutConnections(),
        .statusItem = {.isVisible = [&statusItem] { return statusItem.isVisible(); },
                       .setVisible =
                           [&statusItem](bool visible) {
                               statusItem.setVisible(visible);
                           }},
        .updateIcon = services_.updateIcon,
        .bundle = services_.bundle,
    };
}

ZentroShortcutRecorder::Connections ProgramWindows::shortcutConnections() const {
    GlobalHotkey& hotkey = services_.delegate.hotkey();
    return {
        .label = "Fissa o sblocca la finestra",
        .keyCode = {.get = [&hotkey] { return hotkey.shortcutKeyCode(); },
                    .set =
                        [&hotkey](std::uint16_t code) {
                            hotkey.setShortcut(code, hotkey.shortcutModifiers());
                        }},
        .modifiers = {.get = [&hotkey] { return hotkey.shortcutModifiers(); },
                      .set =
                          [&hotkey](std::uint64_t flags) {
                              hotkey.setShortcut(hotkey.shortcutKeyCode(), flags);
                          }},
        .displayString = [&hotkey] { return hotkey.shortcutDisplayString(); },
        .onChanged = [&hotkey] { hotkey.saveShortcut(); },
        .onClear =
            [&hotkey] {
                hotkey.setShortcut(0, 0);
                hotkey.saveShortcut();
            },
        .eventTapToDisable = &services_.eventTap,
        .onRecordingChanged = {},
        .refusal = [&eventTap = services_.eventTap] { return eventTap.refusal(); },
    };
}

} // namespace skylet
